#include "frontend/Utf8.h"

#include <algorithm>
#include <iterator>

namespace zel {
namespace {

struct TRange {
  char32_t first;
  char32_t last;
};

// Marks that are drawn over the character before them, and what is not drawn at all.
constexpr TRange kNarrowest[] = {
    {0x0300,  0x036F },
    {0x0483,  0x0489 },
    {0x0591,  0x05BD },
    {0x05BF,  0x05BF },
    {0x05C1,  0x05C2 },
    {0x05C4,  0x05C5 },
    {0x0610,  0x061A },
    {0x064B,  0x065F },
    {0x0670,  0x0670 },
    {0x06D6,  0x06DC },
    {0x06DF,  0x06E4 },
    {0x06E7,  0x06E8 },
    {0x06EA,  0x06ED },
    {0x0900,  0x0902 },
    {0x093C,  0x093C },
    {0x0941,  0x0948 },
    {0x094D,  0x094D },
    {0x0E31,  0x0E31 },
    {0x0E34,  0x0E3A },
    {0x0E47,  0x0E4E },
    {0x1AB0,  0x1AFF },
    {0x1DC0,  0x1DFF },
    {0x200B,  0x200F },
    {0x2060,  0x2064 },
    {0x20D0,  0x20FF },
    {0x302A,  0x302D },
    {0x3099,  0x309A },
    {0xFE00,  0xFE0F },
    {0xFE20,  0xFE2F },
    {0xFEFF,  0xFEFF },
    {0xE0100, 0xE01EF},
};

// Ideographs, syllables, full-width forms and pictures.
constexpr TRange kWide[] = {
    {0x1100,  0x115F },
    {0x231A,  0x231B },
    {0x2329,  0x232A },
    {0x23E9,  0x23EC },
    {0x2614,  0x2615 },
    {0x2648,  0x2653 },
    {0x26A1,  0x26A1 },
    {0x2705,  0x2705 },
    {0x274C,  0x274C },
    {0x2E80,  0x303E },
    {0x3041,  0x4DBF },
    {0x4E00,  0xA4CF },
    {0xA960,  0xA97F },
    {0xAC00,  0xD7A3 },
    {0xF900,  0xFAFF },
    {0xFE10,  0xFE19 },
    {0xFE30,  0xFE6F },
    {0xFF00,  0xFF60 },
    {0xFFE0,  0xFFE6 },
    {0x1F300, 0x1F64F},
    {0x1F680, 0x1F6FF},
    {0x1F900, 0x1F9FF},
    {0x20000, 0x3FFFD},
};

template <std::size_t size>
bool IsIn(const TRange (&ranges)[size], char32_t code) {
  const auto range =
      std::lower_bound(std::begin(ranges), std::end(ranges), code,
                       [](const TRange& row, char32_t wanted) { return row.last < wanted; });
  return range != std::end(ranges) && range->first <= code;
}

std::size_t WidthOf(char32_t code) {
  if (code < kNarrowest[0].first) return 1;
  if (IsIn(kNarrowest, code)) return 0;
  return IsIn(kWide, code) ? 2 : 1;
}

}  // namespace

TCharacter FirstCharacter(std::string_view text) {
  constexpr TCharacter kBroken = {kNoCharacter, 1};
  // By the number of bytes: the bits that mark the first, and the least code that needs so many.
  constexpr struct {
    unsigned char mask;
    unsigned char mark;
    char32_t least;
  } kForms[] = {
      {0x80, 0x00, 0      },
      {0xE0, 0xC0, 0x80   },
      {0xF0, 0xE0, 0x800  },
      {0xF8, 0xF0, 0x10000}
  };
  const auto byte = [text](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  std::size_t size = 0;
  while (size < std::size(kForms) && (byte(0) & kForms[size].mask) != kForms[size].mark) ++size;
  if (size == std::size(kForms) || text.size() <= size) return kBroken;
  char32_t code = byte(0) & static_cast<unsigned char>(~kForms[size].mask);
  for (std::size_t i = 1; i <= size; ++i) {
    if ((byte(i) & 0xC0) != 0x80) return kBroken;
    code = code << 6 | (byte(i) & 0x3F);
  }
  const bool isSurrogate = 0xD800 <= code && code <= 0xDFFF;
  if (code < kForms[size].least || code > 0x10FFFF || isSurrogate) return kBroken;
  return {code, size + 1};
}

std::size_t WidthOf(std::string_view text) {
  std::size_t width = 0;
  while (!text.empty()) {
    const TCharacter character = FirstCharacter(text);
    width += WidthOf(character.code);
    text.remove_prefix(character.size);
  }
  return width;
}

std::string Fitted(std::string_view text, std::size_t width, bool isUtf8) {
  const std::string ellipsis =
      isUtf8 ? "\u2026" : std::string(std::min<std::size_t>(width, 3), '.');
  const std::size_t dots = WidthOf(ellipsis);
  std::size_t kept = 0;  // bytes that leave room for the ellipsis
  std::size_t columns = 0;
  for (std::size_t i = 0; i < text.size();) {
    const TCharacter character = FirstCharacter(text.substr(i));
    columns += WidthOf(character.code);
    if (columns > width) return std::string(text.substr(0, kept)) + ellipsis;
    i += character.size;
    if (columns + dots <= width) kept = i;
  }
  return std::string(text);
}

}  // namespace zel
