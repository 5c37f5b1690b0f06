#pragma once

#include <ostream>

#include "frontend/Streams.h"

namespace zel {

class TInventory;
struct TComparison;

// What differs between two inventories, for people.
void PrintDiffText(const TInventory& before, const TInventory& after, const TComparison& comparison,
                   const TTerminal& terminal, std::ostream& out);

// The same as one JSON document.
void PrintDiffJson(const TInventory& before, const TInventory& after, const TComparison& comparison,
                   std::ostream& out);

}  // namespace zel
