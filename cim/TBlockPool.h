#pragma once

#include <cstddef>
#include <memory>
#include <unordered_map>

#include "cim/TArena.h"

// The memory of a container's instances: it comes in large chunks and goes as a whole, when it has
// been abandoned and its last block released. Until then a block that is released serves the next
// one of its size.
class TBlockPool {
 public:
  struct TAbandon {
    void operator()(TBlockPool* pool) const { pool->Abandon(); }
  };
  using TOwner = std::unique_ptr<TBlockPool, TAbandon>;
  static TOwner Make() { return TOwner(new TBlockPool()); }

  void* Allocate(std::size_t size) {
    void* const block = fReleased.empty() ? fMemory.At(fMemory.Allocate(size)) : Reuse(size);
    ++fBlocks;
    return block;
  }
  // The pool may be gone afterwards.
  void Release(void* block, std::size_t size);

 private:
  struct TReleased {
    TReleased* next;
  };

  void* Reuse(std::size_t size);
  void Abandon();

  TArena fMemory;
  std::unordered_map<std::size_t, TReleased*> fReleased;  // by size
  std::size_t fBlocks = 0;                                // that are in use
  bool fIsAbandoned = false;
};

// Makes objects in the memory of a pool.
template <class T>
struct TBlockPoolAllocator {
  using value_type = T;
  explicit TBlockPoolAllocator(TBlockPool& p) : pool(&p) {}
  template <class U>
  TBlockPoolAllocator(const TBlockPoolAllocator<U>& other)  // NOLINT(google-explicit-constructor)
      : pool(other.pool) {}
  T* allocate(std::size_t count) { return static_cast<T*>(pool->Allocate(count * sizeof(T))); }
  void deallocate(T* items, std::size_t count) { pool->Release(items, count * sizeof(T)); }
  bool operator==(const TBlockPoolAllocator& other) const { return pool == other.pool; }
  bool operator!=(const TBlockPoolAllocator& other) const { return pool != other.pool; }

  TBlockPool* pool;
};
