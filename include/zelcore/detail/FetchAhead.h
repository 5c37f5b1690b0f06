#pragma once

#include <cstddef>
#include <vector>

class TCIMInstance;

namespace zelcore::detail {

// Asks for the memory of the instances that stand behind the one at `place` and are to be looked at
// soon. In the order of their paths they are all over the memory: without this, most of the time
// passes waiting for it.
void FetchAhead(const std::vector<TCIMInstance*>& instances, std::size_t place);

}  // namespace zelcore::detail
