#include "xml/References.h"

#include <algorithm>

#include "zelcore/detail/Ascii.h"

namespace {

using zelcore::detail::IsAsciiDigit;
using zelcore::detail::ToAsciiLower;

struct TEntity {
  std::string_view name;
  char byte;
};

constexpr TEntity kEntities[] = {
    {"amp;",  '&' },
    {"apos;", '\''},
    {"gt;",   '>' },
    {"lt;",   '<' },
    {"quot;", '"' },
};

// How much of `name` stands at `text`, in any case of letters.
std::size_t CountCommon(const char* text, std::string_view name) {
  std::size_t count = 0;
  while (count < name.size() && ToAsciiLower(text[count]) == name[count]) ++count;
  return count;
}

// 16 for what is no hexadecimal digit.
unsigned int DigitValue(char c) {
  if (IsAsciiDigit(c)) return static_cast<unsigned int>(c - '0');
  const char lower = ToAsciiLower(c);
  return lower >= 'a' && lower <= 'f' ? static_cast<unsigned int>(lower - 'a' + 10) : 16;
}

// The size of a whole reference behind a '&', and its byte; 0 for another one.
std::size_t ReadReference(const char* text, char& byte) {
  if (text[0] != '#') {
    const auto reference = zelcore::detail::ReadNamedReference(text);
    byte = reference.byte;
    return reference.isWhole ? reference.size : 0;
  }
  const bool isHex = ToAsciiLower(text[1]) == 'x';
  zelcore::detail::TNumericReference number(isHex);
  const char* at = text + (isHex ? 2 : 1);
  while (number.Add(*at)) ++at;
  byte = number.Byte();
  return *at == ';' && number.HasDigit() ? static_cast<std::size_t>(at + 1 - text) : 0;
}

}  // namespace

namespace zelcore::detail {

TNamedReference ReadNamedReference(const char* text) {
  std::size_t most = 0;
  for (const TEntity& entity : kEntities) {
    const std::size_t common = CountCommon(text, entity.name);
    if (common == entity.name.size()) return {common, true, entity.byte};
    most = std::max(most, common);
  }
  return {most, false, '\0'};
}

bool TNumericReference::Add(char digit) {
  const unsigned int value = DigitValue(digit);
  if (value >= fBase) return false;
  fCode = (fCode * fBase + value) & 0xFF;
  fHasDigit = true;
  return true;
}

bool DecodeReferences(std::string_view text, std::string& decoded) {
  decoded.clear();
  for (;;) {
    const std::size_t plain = std::min(text.find('&'), text.size());
    decoded.append(text, 0, plain);
    text.remove_prefix(plain);
    if (text.empty()) return true;
    char byte = '\0';
    const std::size_t size = ReadReference(text.data() + 1, byte);
    if (size == 0 || byte == '\0') return false;
    decoded += byte;
    text.remove_prefix(1 + size);
  }
}

}  // namespace zelcore::detail
