#pragma once

#include <cstdint>
#include <cstring>

// The place of a virtual operation in its class's table, counted from 0. A pointer to a virtual
// member holds 1 plus its offset there; the destructor takes the first two places.
template <class TOperation>
std::size_t Slot(TOperation operation) {
  std::uintptr_t bits = 0;
  std::memcpy(&bits, &operation, sizeof bits);
  return (bits - 1) / sizeof(void*);
}
