#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <vector>

// Memory that is handed out piece by piece and given back as a whole. A piece stays where it is; it
// has a number, which is shorter than its address.
class TArena {
 public:
  // The number of a new piece, aligned for pointers. Throws std::bad_alloc.
  std::uint32_t Allocate(std::size_t size) {
    size = (size + kAlignment - 1) / kAlignment * kAlignment;
    if (size > fSize - fUsed) Grow(size);
    const std::size_t offset = fUsed;
    fUsed += size;
    return static_cast<std::uint32_t>((fChunks.size() - 1) << kOffsetBits | offset / kAlignment);
  }
  void* At(std::uint32_t piece) const {
    return fChunks[piece >> kOffsetBits].get() + (piece & kMaxOffset) * kAlignment;
  }

 private:
  static constexpr std::size_t kAlignment = alignof(void*);
  // Of an offset in its chunk, counted in kAlignment: chunks of 2 MiB, or of one piece.
  static constexpr unsigned int kOffsetBits = 18;
  static constexpr std::uint32_t kMaxOffset = (1u << kOffsetBits) - 1;

  struct TFree {
    void operator()(char* chunk) const { std::free(chunk); }
  };

  void Grow(std::size_t size);

  std::vector<std::unique_ptr<char, TFree>> fChunks;
  std::size_t fSize = 0;  // of the last chunk
  std::size_t fUsed = 0;  // of that
  std::size_t fChunkSize = 0;
};
