#include "frontend/Summary.h"

#include "frontend/Collection.h"

namespace zel {

void PrintSummary(const TCollection&, std::ostream&) {}

}  // namespace zel
