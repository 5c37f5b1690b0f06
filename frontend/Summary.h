#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "frontend/Streams.h"

namespace zel {

class TInventory;

struct TFact {
  std::string label;
  std::string text;  // for people, also where it says that the fact is missing
};

struct TFactGroup {
  std::string heading;
  std::vector<TFact> facts;
};

// The machine in a few facts.
std::vector<TFactGroup> FactsOf(const TInventory& inventory);

// The machine on one screen, and how much was collected; for a file also when. A document that
// tells nothing of a machine's facts shows its classes instead.
void PrintSummary(const TInventory& inventory, std::ostream& out, const TTerminal& terminal = {});

// "5 plug-ins, 27 classes, 100 instances in 57 ms"; empty for a document that does not tell.
std::string OutcomeText(const TInventory& inventory);

}  // namespace zel
