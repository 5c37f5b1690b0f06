#pragma once

#include "collectors/cpu/parse.h"
#include "collectors/kit/Plugin.h"

namespace cpu_collector {

// The texts of the live machine, or of the tree that stands for it. Logs a warning for each kind of
// fact without a source.
TMachine ReadMachine(const kit::TLog& log);

}  // namespace cpu_collector
