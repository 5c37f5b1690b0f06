#pragma once

#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

#include "zelcore/detail/Ascii.h"

// CIM names: a letter or underscore, then letters, digits and underscores (ASCII); compared without
// regard to case.
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

// The empty name is valid.
bool IsValidName(std::string_view name);

// Logs and throws zelStatusInvalidCIMName for a name that is not valid.
void CheckName(const std::string& name);

// Orders names as their lower-case forms are ordered, byte by byte, without making them.
struct TNameLess {
  using is_transparent = void;
  bool operator()(std::string_view a, std::string_view b) const;
};

// The hash that fits.
struct TNameHash {
  std::size_t operator()(std::string_view name) const;
};
struct TNameEqual {
  bool operator()(std::string_view a, std::string_view b) const {
    return EqualsIgnoringAsciiCase(a, b);
  }
};

// The name order and equality of two named objects; both names are checked.
template <class T>
bool HaveEqualNames(const T& a, const T& b) {
  CheckName(a.GetName());
  CheckName(b.GetName());
  return EqualsIgnoringAsciiCase(a.GetName(), b.GetName());
}

template <class T>
bool IsNameLess(const T& a, const T& b) {
  CheckName(a.GetName());
  CheckName(b.GetName());
  return TNameLess()(a.GetName(), b.GetName());
}

}  // namespace zelcore::detail
