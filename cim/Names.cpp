#include "cim/Names.h"

#include <algorithm>
#include <functional>

#include "zelcore/detail/Fail.h"

namespace zelcore::detail {

bool IsValidName(std::string_view name) {
  if (name.empty()) return true;
  const auto mayFollow = [](char c) { return IsAsciiAlnum(c) || c == '_'; };
  return !IsAsciiDigit(name.front()) && std::all_of(name.begin(), name.end(), mayFollow);
}

void CheckName(const std::string& name) {
  if (!IsValidName(name)) {
    Fail(zelStatusInvalidCIMName, Text("CIM name '", name, "' is invalid"));
  }
}

bool TNameLess::operator()(std::string_view a, std::string_view b) const {
  const std::size_t common = std::min(a.size(), b.size());
  for (std::size_t i = 0; i < common; ++i) {
    if (a[i] == b[i]) continue;
    const auto x = static_cast<unsigned char>(ToAsciiLower(a[i]));
    const auto y = static_cast<unsigned char>(ToAsciiLower(b[i]));
    if (x != y) return x < y;
  }
  return a.size() < b.size();
}

std::size_t TNameHash::operator()(std::string_view name) const {
  char lower[64];
  if (name.size() > sizeof lower) return std::hash<std::string>()(ToAsciiLower(std::string(name)));
  std::transform(name.begin(), name.end(), lower, [](char c) { return ToAsciiLower(c); });
  return std::hash<std::string_view>()({lower, name.size()});
}

}  // namespace zelcore::detail
