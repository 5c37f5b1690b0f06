#include "cim/TBlockPool.h"

#include <sanitizer/asan_interface.h>  // does nothing without AddressSanitizer

#include <new>

// A released block of that size, or a new one.
void* TBlockPool::Reuse(std::size_t size) {
  const auto found = fReleased.find(size);
  if (found == fReleased.end() || !found->second) {
    return fMemory.At(fMemory.Allocate(size));
  }
  TReleased* const block = found->second;
  ASAN_UNPOISON_MEMORY_REGION(block, size);
  found->second = block->next;
  return block;
}

void TBlockPool::Release(void* block, std::size_t size) {
  --fBlocks;
  if (fIsAbandoned) {
    if (fBlocks == 0) delete this;
    return;
  }
  TReleased*& last = fReleased[size];
  last = new (block) TReleased{last};
  ASAN_POISON_MEMORY_REGION(block, size);
}

void TBlockPool::Abandon() {
  fIsAbandoned = true;
  if (fBlocks == 0) delete this;
}
