#pragma once

#include <string>
#include <string_view>

#include "zelcore/detail/Ascii.h"

// CIM names: a letter or underscore, then letters, digits and underscores (ASCII); compared without
// regard to case.
namespace zelcore::detail {

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
