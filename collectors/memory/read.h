#pragma once

#include <string>

#include "collectors/kit/Plugin.h"
#include "collectors/kit/Smbios.h"

namespace memory_collector {

// The texts of the machine, as read. What is missing is empty.
struct TMachine {
  std::string memInfo, swaps;
  kit::TSmbios smbios;
};

// The texts of the live machine, or of the tree that stands for it. Logs a warning for each source
// that is missing.
TMachine ReadMachine(const kit::TLog& log);

}  // namespace memory_collector
