#pragma once

#include <ostream>

namespace zel {

class TInventory;
struct TComparison;

// Writes `inventory` as one HTML page that needs nothing else: it fetches nothing, and without
// scripts it is still a page to read.
void WriteReport(const TInventory& inventory, std::ostream& out);

// The same, with what differs from `before` first. `comparison` is Compare(before, inventory).
void WriteReport(const TInventory& before, const TInventory& inventory,
                 const TComparison& comparison, std::ostream& out);

}  // namespace zel
