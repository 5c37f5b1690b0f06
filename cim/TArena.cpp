#include "cim/TArena.h"

#include <algorithm>

#include "cim/HugePages.h"

using zelcore::detail::AllocatePages;
using zelcore::detail::kHugePage;

// Each chunk is twice as large as the one before, up to a huge page.
void TArena::Grow(std::size_t size) {
  constexpr std::size_t kFirst = 1024;
  fChunkSize = std::clamp(2 * fChunkSize, kFirst, kHugePage);
  const std::size_t room = std::max(fChunkSize, size);
  fChunks.emplace_back(AllocatePages(room));
  fNext = static_cast<char*>(fChunks.back().get());
  fFree = room;
}
