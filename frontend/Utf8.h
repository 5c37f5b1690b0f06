#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace zel {

inline constexpr char32_t kNoCharacter = 0xFFFFFFFF;

// A character of UTF-8 text, and the bytes that it takes; kNoCharacter and one byte where the text
// is not UTF-8.
struct TCharacter {
  char32_t code;
  std::size_t size;
};

// The first character of `text`, which must not be empty.
TCharacter FirstCharacter(std::string_view text);

// The columns that `text` takes on a terminal, whatever the locale: two for East Asian wide
// characters, none for combining marks.
std::size_t WidthOf(std::string_view text);

// `text`, or where it is wider than `width` columns, the start of it and an ellipsis: of one
// character, or of as many points as fit where there is none but ASCII.
std::string Fitted(std::string_view text, std::size_t width, bool isUtf8 = true);

}  // namespace zel
