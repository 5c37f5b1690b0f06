#include "cim/Names.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
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
  // The bit by which small letters differ from capitals is set in all bytes, block by block.
  constexpr std::uint64_t kSmall = 0x2020202020202020;
  constexpr std::size_t kBlocks = 8;
  std::uint64_t blocks[kBlocks];
  if (name.size() > sizeof blocks) return std::hash<std::string>()(ToAsciiLower(std::string(name)));
  const std::size_t count = (name.size() + sizeof kSmall - 1) / sizeof kSmall;
  if (count != 0) blocks[count - 1] = 0;
  if (!name.empty()) std::memcpy(blocks, name.data(), name.size());
  for (std::size_t i = 0; i < count; ++i) blocks[i] |= kSmall;
  return std::hash<std::string_view>()({reinterpret_cast<const char*>(blocks), name.size()});
}

}  // namespace zelcore::detail
