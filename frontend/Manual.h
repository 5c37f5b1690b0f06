#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "frontend/OptionTable.h"

namespace zel {

struct TCommandRow;

// Manual pages, as roff for man(7).

// zel(1), with all commands; `options` are the program's own.
void WriteManual(const std::string& text, const std::vector<TOptionRow>& options,
                 std::ostream& out);

// zel-COMMAND(1).
void WriteManual(const TCommandRow& command, const std::vector<TOptionRow>& options,
                 std::ostream& out);

}  // namespace zel
