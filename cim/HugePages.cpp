#include "cim/HugePages.h"

#include <sys/mman.h>

namespace zelcore::detail {

void* AllocatePages(std::size_t size) {
  const bool isLarge = size >= kHugePage;
  if (isLarge) size = (size + kHugePage - 1) / kHugePage * kHugePage;
  void* const pages = isLarge ? std::aligned_alloc(kHugePage, size) : std::malloc(size);
  if (!pages) throw std::bad_alloc();
  if (isLarge) madvise(pages, size, MADV_HUGEPAGE);  // advice: a refusal does no harm
  return pages;
}

}  // namespace zelcore::detail
