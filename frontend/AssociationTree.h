#pragma once

#include <ostream>
#include <vector>

#include "frontend/Streams.h"

class TCIMInstance;

namespace zel {

class TInventory;

struct TTreeOptions {
  unsigned depth = 64;  // levels below the first; every one makes the lines longer
  bool isUtf8 = false;  // whether branches may be more than ASCII
};

// Prints what each of `roots` consists of, what that consists of, and so on, as the association
// instances tell it: from the whole to its parts where the association says which is which, and
// both ways where it does not.
//
// An instance stands once with what is below it, elsewhere as "(see above)". It is not repeated
// directly below an instance that has it further down already: a cache that belongs to a processor
// is a device of the system, too, but stands below the processor. "(+N)" tells of N instances that
// `depth` hides.
void PrintTree(const TInventory& inventory, const std::vector<TCIMInstance*>& roots,
               const TTreeOptions& options, const TTerminal& terminal, std::ostream& out);

}  // namespace zel
