#pragma once

#include <ostream>
#include <vector>

#include "frontend/Selection.h"

// What was selected, for other programs.

namespace zel {

// One JSON document, as docs/json.md says; with the texts for people beside the values if
// `withText`.
void PrintJson(const TInventory& inventory, const std::vector<TSelection>& selections,
               bool withText, std::ostream& out);

// RFC 4180: a line with the names of the properties, then one for each instance. Values are raw, or
// texts for people if `withText`; NULL is an empty field, an empty text is "".
void PrintCsv(const TSelection& selection, bool withText, std::ostream& out);

}  // namespace zel
