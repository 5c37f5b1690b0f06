#pragma once

#include <fmt/format.h>

#include <string>

#include "frontend/Streams.h"

namespace zel {

// What a piece of text is; it shows on a terminal with colour and nowhere else.
enum class TLook { kPlain, kHeading, kColumnHead, kKey, kMissing, kAdded, kRemoved, kChanged };

inline std::string Styled(TLook look, const std::string& text, const TTerminal& terminal) {
  constexpr const char* kBold = "1";
  constexpr const char* kDim = "2";
  constexpr const char* kUnderlined = "4";
  constexpr const char* kGreen = "32";
  constexpr const char* kRed = "31";
  constexpr const char* kYellow = "33";
  constexpr const char* kCodes[] = {"", kBold, kUnderlined, kDim, kDim, kGreen, kRed, kYellow};
  const char* code = kCodes[static_cast<int>(look)];
  if (!terminal.colour || *code == 0 || text.empty()) return text;
  return fmt::format("\033[{}m{}\033[0m", code, text);
}

}  // namespace zel
