#pragma once

#include <cstddef>
#include <cstdlib>
#include <memory>
#include <vector>

// Memory that is handed out piece by piece and given back as a whole.
class TArena {
 public:
  // Aligned for pointers; stays where it is for as long as the arena lives.
  void* Allocate(std::size_t size) {
    size = (size + kAlignment - 1) / kAlignment * kAlignment;
    if (size > fFree) Grow(size);
    void* const piece = fNext;
    fNext += size;
    fFree -= size;
    return piece;
  }

 private:
  static constexpr std::size_t kAlignment = alignof(void*);

  struct TFree {
    void operator()(void* chunk) const { std::free(chunk); }
  };

  void Grow(std::size_t size);

  std::vector<std::unique_ptr<void, TFree>> fChunks;
  char* fNext = nullptr;
  std::size_t fFree = 0;  // behind fNext
  std::size_t fChunkSize = 0;
};
