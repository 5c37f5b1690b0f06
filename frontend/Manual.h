#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "frontend/OptionTable.h"

namespace zel {

// Manual pages, as roff for man(7), from the table of options.

// zel(1): all commands.
void WriteManual(const std::string& text, const std::vector<TOptionRow>& options,
                 const std::vector<TCommandTable>& commands, std::ostream& out);

// zel-COMMAND(1).
void WriteManual(const TCommandTable& command, const std::vector<std::string>& examples,
                 const std::vector<TCommandTable>& commands, std::ostream& out);

}  // namespace zel
