#pragma once

#include <ostream>

#include "frontend/Selection.h"
#include "frontend/Streams.h"

// What was selected, for people.

namespace zel {

struct TPresentation {
  TTerminal terminal = {};
  bool isRaw = false;  // without units and value maps
};

// Each instance with its path, a line for each property.
void PrintList(const TSelection& selection, const TPresentation& presentation, std::ostream& out);

// A line for each instance.
void PrintTable(const TSelection& selection, const TPresentation& presentation, std::ostream& out);

}  // namespace zel
