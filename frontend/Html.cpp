#include "frontend/Html.h"

#include "frontend/Utf8.h"

namespace zel {
namespace {

constexpr char kReplacement[] = "\uFFFD";

bool IsUpper(char c) { return 'A' <= c && c <= 'Z'; }
bool IsLower(char c) { return 'a' <= c && c <= 'z'; }
bool IsDigit(char c) { return '0' <= c && c <= '9'; }

bool IsAllowed(char32_t code) {
  const bool isControl = code < 0x20 || (0x7F <= code && code < 0xA0);
  const bool isNoncharacter = (code & 0xFFFE) == 0xFFFE || (0xFDD0 <= code && code <= 0xFDEF);
  return code == '\t' || code == '\n' || !(isControl || isNoncharacter);
}

// Whether a new word begins at `i`: at a capital after a small letter, or at the last capital of
// some when it begins an ordinary word. "CPUs" is one.
bool StartsWord(std::string_view name, std::size_t i) {
  if (i == 0 || !IsUpper(name[i])) return false;
  if (!IsUpper(name[i - 1])) return true;
  return i + 2 < name.size() && IsLower(name[i + 1]) && IsLower(name[i + 2]);
}

bool IsOrdinaryWord(std::string_view name, std::size_t start) {
  return start + 1 < name.size() && IsLower(name[start + 1]);
}

}  // namespace

std::string HtmlText(std::string_view text) {
  std::string html;
  html.reserve(text.size());
  while (!text.empty()) {
    const TCharacter character = FirstCharacter(text);
    switch (character.code) {
      case '&': html += "&amp;"; break;
      case '<': html += "&lt;"; break;
      case '>': html += "&gt;"; break;
      case '"': html += "&quot;"; break;
      case '\'': html += "&#39;"; break;
      default: html += IsAllowed(character.code) ? text.substr(0, character.size) : kReplacement;
    }
    text.remove_prefix(character.size);
  }
  return html;
}

std::string Words(std::string_view name) {
  std::string words;
  for (std::size_t i = 0; i < name.size(); ++i) {
    if (!StartsWord(name, i)) {
      words += name[i];
      continue;
    }
    words += ' ';
    words += IsOrdinaryWord(name, i) ? static_cast<char>(name[i] - 'A' + 'a') : name[i];
  }
  return words;
}

std::string AnchorText(std::string_view text) {
  std::string anchor;
  for (const char c : text) {
    if (IsUpper(c) || IsLower(c) || IsDigit(c) || c == '-' || c == '_' || c == '.') {
      anchor += c;
    } else {
      anchor += fmt::format("~{:02X}", static_cast<unsigned char>(c));
    }
  }
  return anchor;
}

}  // namespace zel
