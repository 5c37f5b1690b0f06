#pragma once

#include <cstddef>
#include <cstdlib>
#include <new>

namespace zelcore::detail {

constexpr std::size_t kHugePage = 1 << 21;

// Memory for std::free(). From the size of a huge page on it is rounded up to whole ones and asked
// for as such: they are faulted in at once and found with fewer steps. Throws std::bad_alloc.
void* AllocatePages(std::size_t size);

// For containers that may grow large and are read in no order.
template <class T>
struct THugePageAllocator {
  using value_type = T;
  THugePageAllocator() = default;
  template <class U>
  THugePageAllocator(const THugePageAllocator<U>&) {}  // NOLINT(google-explicit-constructor)
  T* allocate(std::size_t count) { return static_cast<T*>(AllocatePages(count * sizeof(T))); }
  void deallocate(T* items, std::size_t) { std::free(items); }
  bool operator==(const THugePageAllocator&) const { return true; }
  bool operator!=(const THugePageAllocator&) const { return false; }
};

}  // namespace zelcore::detail
