#pragma once

#include <cstddef>
#include <cstring>
#include <string_view>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

#include "zelcore/detail/Ascii.h"
#include "zelcore/detail/SameText.h"

// What stands ahead in a document that is read in place: a cursor for those who know what to
// expect there. A copy of it looks further ahead and may be thrown away.
class TAhead {
 public:
  // The document's NUL is at `end`.
  TAhead(char* at, const char* end) : fAt(at), fEnd(end) {}

  char* At() const { return fAt; }

  [[gnu::always_inline]] bool IsAt(std::string_view markup) const {
    return static_cast<std::size_t>(fEnd - fAt) >= markup.size() &&
           zelcore::detail::IsSameText({fAt, markup.size()}, markup);
  }
  // Passes over `markup`, if it stands here byte for byte.
  [[gnu::always_inline]] bool Take(std::string_view markup) {
    if (!IsAt(markup)) return false;
    fAt += markup.size();
    return true;
  }
  void Skip(std::size_t size) { fAt += size; }
  void TakeSpace() {
    while (*fAt == ' ' || *fAt == '\n' || *fAt == '\t' || *fAt == '\r') ++fAt;
  }
  // Passes over letters, digits and underscores.
  std::string_view TakeName() {
    const char* const name = fAt;
    while (zelcore::detail::IsAsciiAlnum(*fAt) || *fAt == '_') ++fAt;
    return {name, static_cast<std::size_t>(fAt - name)};
  }
  // Text as the document has it.
  struct TText {
    std::string_view raw;
    bool hasReferences;  // that must be decoded
  };
  // Passes over text up to the next '<' or NUL.
  [[gnu::always_inline]] TText TakeText() {
    char* const text = fAt;
    fAt = FindTextEnd(text, fEnd);
    const bool hasReferences = *fAt == '&';
    while (*fAt == '&') fAt = FindTextEnd(fAt + 1, fEnd);
    return {
        {text, static_cast<std::size_t>(fAt - text)},
        hasReferences
    };
  }
  // Writes over what stands here, and passes over it.
  void Put(std::string_view markup) {
    std::memcpy(fAt, markup.data(), markup.size());
    fAt += markup.size();
  }

  static char* FindTextEnd(char* at, const char* end) {
#ifdef __SSE2__
    for (; end - at >= 16; at += 16) {
      const __m128i block = _mm_loadu_si128(reinterpret_cast<const __m128i*>(at));
      const auto has = [&](char c) { return _mm_cmpeq_epi8(block, _mm_set1_epi8(c)); };
      const __m128i found = _mm_or_si128(_mm_or_si128(has('<'), has('&')), has('\0'));
      const int places = _mm_movemask_epi8(found);
      if (places != 0) return at + __builtin_ctz(static_cast<unsigned int>(places));
    }
#endif
    while (at != end && *at != '<' && *at != '&' && *at != '\0') ++at;
    return at;
  }

 private:
  char* fAt;
  const char* fEnd;
};
