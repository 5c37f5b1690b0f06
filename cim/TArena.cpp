#include "cim/TArena.h"

#include <algorithm>
#include <new>

#include "cim/HugePages.h"

using zelcore::detail::AllocatePages;
using zelcore::detail::kHugePage;

// Each chunk is twice as large as the one before, up to a huge page.
void TArena::Grow(std::size_t size) {
  static_assert(kHugePage == kAlignment << kOffsetBits);
  constexpr std::size_t kFirst = 1024;
  if (fChunks.size() == std::size_t{1} << (32 - kOffsetBits)) throw std::bad_alloc();
  fChunkSize = std::clamp(2 * fChunkSize, kFirst, kHugePage);
  const std::size_t room = std::max(fChunkSize, size);
  fChunks.emplace_back(static_cast<char*>(AllocatePages(room)));
  fSize = room;
  fUsed = 0;
}
