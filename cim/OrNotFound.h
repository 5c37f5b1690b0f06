#pragma once

#include "zelcore/detail/Fail.h"

namespace zelcore::detail {

// What a look-up found; throws zelStatusNotFound for null.
template <class T>
T* OrNotFound(T* found) {
  if (!found) Fail(zelStatusNotFound);
  return found;
}

}  // namespace zelcore::detail
