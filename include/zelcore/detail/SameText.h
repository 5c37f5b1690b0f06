#pragma once

#include <cstdint>
#include <cstring>
#include <string_view>

namespace zelcore::detail {

// Whether two texts are the same bytes: for short ones, to which a call would be most of the work.
inline bool IsSameText(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  const auto isSame = [&](auto block, std::size_t at) {
    auto other = block;
    std::memcpy(&block, a.data() + at, sizeof block);
    std::memcpy(&other, b.data() + at, sizeof other);
    return block == other;
  };
  const std::size_t size = a.size();
  if (size >= sizeof(std::uint64_t)) {
    const std::size_t last = size - sizeof(std::uint64_t);
    for (std::size_t at = 0; at < last; at += sizeof(std::uint64_t)) {
      if (!isSame(std::uint64_t{}, at)) return false;
    }
    return isSame(std::uint64_t{}, last);
  }
  if (size >= sizeof(std::uint32_t)) {
    return isSame(std::uint32_t{}, 0) && isSame(std::uint32_t{}, size - sizeof(std::uint32_t));
  }
  for (std::size_t at = 0; at < size; ++at) {
    if (a[at] != b[at]) return false;
  }
  return true;
}

}  // namespace zelcore::detail
