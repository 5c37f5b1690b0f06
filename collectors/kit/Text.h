#pragma once

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// What firmware and the kernel write, made fit to be shown. Letters are ASCII letters whatever the
// locale.
namespace kit {

inline bool IsDigit(char c) { return c >= '0' && c <= '9'; }
inline bool IsLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
inline bool IsAlphanumeric(char c) { return IsDigit(c) || IsLetter(c); }
inline bool IsBlank(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

inline std::string LowerCase(std::string_view text) {
  std::string lower(text);
  for (char& c : lower) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return lower;
}

inline std::string_view Trim(std::string_view text) {
  while (!text.empty() && IsBlank(text.front())) text.remove_prefix(1);
  while (!text.empty() && IsBlank(text.back())) text.remove_suffix(1);
  return text;
}

inline bool StartsWith(std::string_view text, std::string_view start) {
  return text.substr(0, start.size()) == start;
}

// The pieces between `separator`s; empty ones included, so there is always at least one.
inline std::vector<std::string_view> Split(std::string_view text, char separator) {
  std::vector<std::string_view> pieces;
  for (;;) {
    const size_t end = text.find(separator);
    pieces.push_back(text.substr(0, end));
    if (end == text.npos) return pieces;
    text.remove_prefix(end + 1);
  }
}

// The pieces between runs of blanks; never empty ones.
inline std::vector<std::string_view> Words(std::string_view text) {
  std::vector<std::string_view> words;
  while (!(text = Trim(text)).empty()) {
    const auto end = std::find_if(text.begin(), text.end(), IsBlank);
    words.push_back(text.substr(0, static_cast<size_t>(end - text.begin())));
    text.remove_prefix(words.back().size());
  }
  return words;
}

struct TNamedLine {
  std::string_view name;
  std::string_view value;
};

// The lines "name : value" of /proc/cpuinfo, /proc/meminfo and their like; the others are skipped.
inline std::vector<TNamedLine> NamedLines(std::string_view text) {
  std::vector<TNamedLine> lines;
  for (const std::string_view line : Split(text, '\n')) {
    const size_t colon = line.find(':');
    if (colon != line.npos) {
      lines.push_back({Trim(line.substr(0, colon)), Trim(line.substr(colon + 1))});
    }
  }
  return lines;
}

// The number that the whole of the trimmed text spells; nothing when it is no number or does not
// fit. A "0x" is taken in base 16.
template <class TNumber>
std::optional<TNumber> ParseNumber(std::string_view text, int base = 10) {
  text = Trim(text);
  if (base == 16 && (StartsWith(text, "0x") || StartsWith(text, "0X"))) text.remove_prefix(2);
  TNumber number{};
  const char* end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number, base);
  if (error != std::errc() || stop != end) return std::nullopt;
  return number;
}

// "16384 kB", as the kernel writes sizes, in bytes.
inline std::optional<uint64_t> ParseKilobytes(std::string_view text) {
  const auto words = Words(text);
  if (words.size() != 2 || words[1] != "kB") return std::nullopt;
  const auto kilobytes = ParseNumber<uint64_t>(words[0]);
  if (!kilobytes || *kilobytes > UINT64_MAX / 1024) return std::nullopt;
  return *kilobytes * 1024;
}

namespace detail {

// The length of the character that `text` begins with; 0 when it is broken, overlong, a surrogate
// or none that a document may hold.
inline size_t CharacterLength(std::string_view text) {
  const auto byte = [&](size_t i) { return static_cast<unsigned char>(text[i]); };
  const unsigned lead = byte(0);
  if (lead < 0x80) return lead >= 0x20 && lead != 0x7F ? 1 : 0;
  const size_t length = lead < 0xC2 ? 0 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : lead < 0xF5 ? 4 : 0;
  if (length == 0 || text.size() < length) return 0;
  unsigned code = lead & (0x7Fu >> length);
  for (size_t i = 1; i < length; ++i) {
    if ((byte(i) & 0xC0) != 0x80) return 0;
    code = code << 6 | (byte(i) & 0x3F);
  }
  static constexpr unsigned kSmallest[] = {0, 0, 0xA0, 0x800, 0x10000};  // 0x80-0x9F are controls
  const bool refused = code < kSmallest[length] || (code >= 0xD800 && code <= 0xDFFF) ||
                       (code & 0xFFFE) == 0xFFFE || code > 0x10FFFF;
  return refused ? 0 : length;
}

}  // namespace detail

// `text` trimmed, tabs and line ends as blanks, without control bytes and broken UTF-8.
inline std::string Clean(std::string_view text) {
  std::string clean;
  while (!text.empty()) {
    size_t length = 1;
    if (IsBlank(text.front())) {
      clean += ' ';
    } else if ((length = detail::CharacterLength(text)) > 0) {
      clean += text.substr(0, length);
    }
    text.remove_prefix(std::max<size_t>(length, 1));
  }
  return std::string(Trim(clean));
}

// Whether firmware wrote this where its maker left a fact out.
inline bool IsPlaceholder(std::string_view text) {
  static constexpr std::string_view kPlaceholders[] = {
      "to be filled by o.e.m.",
      "to be filled by oem",
      "to be filled",
      "filled by o.e.m.",
      "o.e.m.",
      "oem",
      "default",
      "default string",
      "system manufacturer",
      "system product name",
      "system version",
      "system serial number",
      "system sku",
      "system sku number",
      "system family",
      "sku",
      "base board manufacturer",
      "base board product name",
      "base board version",
      "base board serial number",
      "board manufacturer",
      "board product name",
      "board version",
      "board serial number",
      "type2 - board manufacturer",
      "type2 - board product name",
      "type2 - board version",
      "type2 - board serial number",
      "chassis manufacturer",
      "chassis manufacture",
      "chassis version",
      "chassis serial number",
      "chassis asset tag",
      "board asset tag",
      "type2 - board asset tag",
      "(none)",
      "asset tag",
      "asset-1234567890",
      "no asset tag",
      "no asset information",
      "not specified",
      "not applicable",
      "not available",
      "not defined",
      "not present",
      "not provided",
      "not set",
      "none",
      "null",
      "n/a",
      "empty",
      "invalid",
      "undefined",
      "unknown",
      "unspecified",
      "serial number",
      "serialnumber",
      "part number",
      "partnumber",
      "manufacturer",
      "product name",
      "<bad index>",
      "<out of spec>",
      "0123456789",
      "123456789",
      "1234567890",
      "12345678",
  };
  const std::string trimmed = LowerCase(Trim(text));
  if (trimmed.empty()) return true;
  const std::string_view* end = std::end(kPlaceholders);
  if (std::find(std::begin(kPlaceholders), end, trimmed) != end) return true;
  // All one character: "00000000", "......", "-"; but "A" may well be a version.
  const bool isUniform = trimmed.find_first_not_of(trimmed[0]) == trimmed.npos;
  return isUniform && (trimmed.size() > 1 || trimmed[0] == '0' || !IsAlphanumeric(trimmed[0]));
}

// The cleaned text, or nothing when it is empty or a placeholder.
inline std::optional<std::string> Fact(std::string_view text) {
  std::string clean = Clean(text);
  if (IsPlaceholder(clean)) return std::nullopt;
  return clean;
}

}  // namespace kit
