#pragma once

#include <string>
#include <string_view>

// Letters and digits by the ASCII table alone: no result depends on the process's locale, and a
// byte of 0x80 or above is neither letter nor digit.
namespace zelcore::detail {

constexpr bool IsAsciiDigit(char c) { return c >= '0' && c <= '9'; }
constexpr bool IsAsciiLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
constexpr bool IsAsciiAlnum(char c) { return IsAsciiLetter(c) || IsAsciiDigit(c); }
constexpr char ToAsciiLower(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

inline std::string ToAsciiLower(std::string text) {
  for (char& c : text) c = ToAsciiLower(c);
  return text;
}

constexpr bool EqualsIgnoringAsciiCase(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  for (std::size_t i = 0; i < a.size(); ++i) {
    if (a[i] != b[i] && ToAsciiLower(a[i]) != ToAsciiLower(b[i])) return false;
  }
  return true;
}

}  // namespace zelcore::detail
