#pragma once

#include <cstddef>
#include <unordered_map>

#include "cim/TArena.h"

// The memory of a container's instances: it comes in large chunks and goes as a whole. A block that
// is released serves the next one of its size.
class TBlockPool {
 public:
  void* Allocate(std::size_t size) {
    return fReleased.empty() ? fMemory.At(fMemory.Allocate(size)) : Reuse(size);
  }
  void Release(void* block, std::size_t size);

 private:
  struct TReleased {
    TReleased* next;
  };

  void* Reuse(std::size_t size);

  TArena fMemory;
  std::unordered_map<std::size_t, TReleased*> fReleased;  // by size
};
