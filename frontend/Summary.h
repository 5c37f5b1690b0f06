#pragma once

#include <ostream>

namespace zel {

class TInventory;

// One screen about the machine, read from the instances that were collected. A fact that is missing
// is said to be missing, and why.
void PrintSummary(const TInventory& inventory, std::ostream& out);

}  // namespace zel
