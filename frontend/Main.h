#pragma once

#include <ostream>

namespace zel {

// The whole command: data goes to `out`, everything else to `err`. Returns the exit code.
int Main(int argc, const char* const* argv, std::ostream& out, std::ostream& err);

}  // namespace zel
