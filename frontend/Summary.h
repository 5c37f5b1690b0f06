#pragma once

#include <ostream>

namespace zel {

class TCollection;

// One screen about the machine, read from the instances that were collected. A fact that is missing
// is said to be missing, and why.
void PrintSummary(const TCollection& collection, std::ostream& out);

}  // namespace zel
