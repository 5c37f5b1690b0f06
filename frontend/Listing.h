#pragma once

#include <ostream>
#include <vector>

class TCIMClass;

namespace zel {

class TInventory;

// All instances of `classes` with all their properties, for people.
void PrintList(const std::vector<TCIMClass*>& classes, std::ostream& out);

// The same as one JSON document.
void PrintJson(const TInventory& inventory, const std::vector<TCIMClass*>& classes,
               std::ostream& out);

}  // namespace zel
