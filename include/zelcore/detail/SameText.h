#pragma once

#include <cstdint>
#include <cstring>
#include <string_view>

namespace zelcore::detail {

// Whether two texts are the same bytes: for short ones, to which a call would be most of the work.
[[gnu::always_inline]] inline bool IsSameText(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  // The bits by which two blocks of a type differ.
  const auto differ = [&](auto block, std::size_t at) {
    auto other = block;
    std::memcpy(&block, a.data() + at, sizeof block);
    std::memcpy(&other, b.data() + at, sizeof other);
    return block ^ other;
  };
  constexpr std::size_t kWord = sizeof(std::uint64_t);
  constexpr std::size_t kHalf = sizeof(std::uint32_t);
  const auto differAt = [&](std::size_t at) {
    return (differ(std::uint64_t{}, at) | differ(std::uint64_t{}, at + kWord)) != 0;
  };
  const std::size_t size = a.size();
  if (size >= 2 * kWord) {
    const std::size_t last = size - 2 * kWord;
    for (std::size_t at = 0; at < last; at += 2 * kWord) {
      if (differAt(at)) return false;
    }
    return !differAt(last);
  }
  if (size >= kWord) {
    return (differ(std::uint64_t{}, 0) | differ(std::uint64_t{}, size - kWord)) == 0;
  }
  if (size >= kHalf) {
    return (differ(std::uint32_t{}, 0) | differ(std::uint32_t{}, size - kHalf)) == 0;
  }
  for (std::size_t at = 0; at < size; ++at) {
    if (a[at] != b[at]) return false;
  }
  return true;
}

}  // namespace zelcore::detail
