#include "xml/XmlText.h"

#include <array>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace {

// How many bytes the character has that begins with the byte; 0 for what cannot stand as it is.
constexpr std::array<unsigned char, 256> MakeLengths() {
  std::array<unsigned char, 256> lengths{};
  for (unsigned int c = ' '; c < 0x80; ++c) lengths[c] = 1;
  for (const unsigned char c : {'&', '<', '>'}) lengths[c] = 0;
  for (const unsigned char c : {'\t', '\n'}) lengths[c] = 1;
  for (unsigned int c = 0xC2; c < 0xE0; ++c) lengths[c] = 2;
  for (unsigned int c = 0xE0; c < 0xF0; ++c) lengths[c] = 3;
  for (unsigned int c = 0xF0; c < 0xF5; ++c) lengths[c] = 4;
  return lengths;
}

constexpr std::array<unsigned char, 256> kLengths = MakeLengths();

// Over printable ASCII in which nothing need be escaped, as far as it can be seen at a glance.
const char* SkipPlainBlocks(const char* at, [[maybe_unused]] const char* end) {
#ifdef __SSE2__
  constexpr std::ptrdiff_t kBlock = 16;
  const auto isPlain = [](const char* from) {
    const __m128i block = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from));
    const auto has = [&](char c) { return _mm_cmpeq_epi8(block, _mm_set1_epi8(c)); };
    // As signed numbers, the bytes above ASCII are less than a blank, too.
    const __m128i isOther = _mm_cmplt_epi8(block, _mm_set1_epi8(' '));
    const __m128i isMarkup = _mm_or_si128(_mm_or_si128(has('<'), has('>')), has('&'));
    return _mm_movemask_epi8(_mm_or_si128(isOther, isMarkup)) == 0;
  };
  if (end - at < kBlock) return at;
  for (; end - at >= kBlock; at += kBlock) {
    if (!isPlain(at)) return at;
  }
  if (isPlain(end - kBlock)) return end;
#endif
  return at;
}

unsigned int ByteAt(std::string_view text, std::size_t at) {
  return static_cast<unsigned char>(text[at]);
}

// Whether the UTF-8 character of `length` bytes in front of `text` is whole and one of XML's.
bool IsCharacter(std::string_view text, std::size_t length) {
  if (length > text.size()) return false;
  unsigned int code = ByteAt(text, 0) & (0xFFu >> (length + 1));
  for (std::size_t i = 1; i < length; ++i) {
    if ((ByteAt(text, i) & 0xC0) != 0x80) return false;
    code = code << 6 | (ByteAt(text, i) & 0x3F);
  }
  switch (length) {
    case 2: return true;
    case 3: return code >= 0x800 && (code < 0xD800 || code > 0xDFFF) && code < 0xFFFE;
    default: return code >= 0x10000 && code <= 0x10FFFF;
  }
}

}  // namespace

namespace zelcore::detail {

std::size_t CountPlain(std::string_view text) {
  const char* at = text.data();
  const char* const end = at + text.size();
  for (;;) {
    at = SkipPlainBlocks(at, end);
    std::size_t length = 0;
    while (at != end && (length = kLengths[static_cast<unsigned char>(*at)]) == 1) ++at;
    const std::string_view rest(at, static_cast<std::size_t>(end - at));
    if (at == end || length == 0 || !IsCharacter(rest, length)) break;
    at += length;
  }
  return static_cast<std::size_t>(at - text.data());
}

std::string Escape(char c) {
  switch (c) {
    case '&': return "&amp;";
    case '<': return "&lt;";
    case '>': return "&gt;";
    default: break;
  }
  constexpr int kPrivateUse = 0xE000;  // a multiple of 256, by which the reader divides
  const int code = static_cast<unsigned char>(c);
  return "&#" + std::to_string(IsForbidden(c) ? kPrivateUse + code : code) + ";";
}

bool IsForbidden(char c) {
  const auto code = static_cast<unsigned char>(c);
  return code < ' ' && c != '\t' && c != '\n' && c != '\r';
}

}  // namespace zelcore::detail
