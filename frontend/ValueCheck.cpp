#include "frontend/ValueCheck.h"

#include <charconv>
#include <cstdint>
#include <optional>
#include <string_view>
#include <system_error>

#include "zelcore/TCIMDateTime.h"
#include "zelcore/TZELException.h"

namespace zel {
namespace {

using TType = TCIMValue::TCIMType;

constexpr std::size_t kExcerpt = 60;
constexpr unsigned kKeptDays = 65535;
constexpr char kDefaultDateTime[] = "19700101000000.000000+000";

std::string_view Trimmed(std::string_view text) {
  constexpr char kSpace[] = " \t\r\n";
  const std::size_t begin = text.find_first_not_of(kSpace);
  if (begin == std::string_view::npos) return {};
  return text.substr(begin, text.find_last_not_of(kSpace) - begin + 1);
}

// What the reader makes of it.
std::string TextRead(TType type, const std::string& text, TContainer& container) {
  return TCIMValue(type, text, container).ToString(10);
}

bool IsWord(std::string_view text, std::string_view word) {
  if (text.size() != word.size()) return false;
  for (std::size_t i = 0; i < word.size(); ++i) {
    if ((static_cast<unsigned char>(text[i]) | 0x20U) != static_cast<unsigned char>(word[i])) {
      return false;
    }
  }
  return true;
}

void CheckBoolean(const std::string& text, TContainer& container, const TValueReport& report) {
  const std::string read = TextRead(TType::TypeBoolean, text, container);
  if (!IsWord(Trimmed(text), read)) report(TRule::kBoolean, {Excerpt(text), read});
}

// A number as CIM writes it: an optional sign, then decimal or hexadecimal digits.
struct TInteger {
  bool isNegative = false;
  bool isTooLarge = false;  // for 64 bits
  std::uint64_t magnitude = 0;
};

std::optional<TInteger> ParseInteger(std::string_view text) {
  TInteger number;
  if (!text.empty() && (text[0] == '-' || text[0] == '+')) {
    number.isNegative = text[0] == '-';
    text.remove_prefix(1);
  }
  int base = 10;
  if (text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X')) {
    base = 16;
    text.remove_prefix(2);
  }
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number.magnitude, base);
  if (stop != end || error == std::errc::invalid_argument) return std::nullopt;
  number.isTooLarge = error != std::errc();
  return number;
}

bool Fits(const TInteger& number, TType type) {
  const unsigned pair = (type - TType::TypeUint8) / 2;  // 8, 16, 32, 64 bits
  const bool isSigned = (type - TType::TypeUint8) % 2 == 1;
  const unsigned bits = (8U << pair) - (isSigned ? 1 : 0);
  const std::uint64_t most = ~std::uint64_t{0} >> (64 - bits);
  if (number.isTooLarge) return false;
  if (!number.isNegative) return number.magnitude <= most;
  return isSigned ? number.magnitude <= most + 1 : number.magnitude == 0;
}

void CheckInteger(TType type, const std::string& text, TContainer& container,
                  const TValueReport& report) {
  const std::string read = TextRead(type, text, container);
  const std::optional<TInteger> number = ParseInteger(Trimmed(text));
  if (!number) {
    report(TRule::kNotANumber, {Excerpt(text), type.ToString(), read});
  } else if (!Fits(*number, type)) {
    report(TRule::kOutOfRange, {Excerpt(text), type.ToString(), read});
  } else {
    const bool isNegative = number->isNegative && number->magnitude != 0;
    const std::string meant = (isNegative ? "-" : "") + std::to_string(number->magnitude);
    if (read != meant) report(TRule::kOctal, {Excerpt(text), read});
  }
}

template <class TReal>
void CheckReal(TType type, const std::string& text, TContainer& container,
               const TValueReport& report) {
  std::string_view digits = Trimmed(text);
  if (!digits.empty() && digits[0] == '+') digits.remove_prefix(1);
  TReal value{};
  const char* const end = digits.data() + digits.size();
  const auto [stop, error] = std::from_chars(digits.data(), end, value);
  // std::from_chars() knows infinities and NaN, the reader does not.
  const bool isNumber = stop == end && error != std::errc::invalid_argument &&
                        digits.find_first_not_of("0123456789.eE+-") == std::string_view::npos;
  if (isNumber && error == std::errc()) return;
  report(isNumber ? TRule::kOutOfRange : TRule::kNotANumber,
         {Excerpt(text), type.ToString(), TextRead(type, text, container)});
}

bool IsMoment(const TCIMDateTime& moment) {
  constexpr unsigned kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  const unsigned year = moment.GetYear();
  const unsigned month = moment.GetMonth();
  if (month < 1 || month > 12) return false;
  const bool isLeap = year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
  const unsigned days = kDays[month - 1] + (month == 2 && isLeap ? 1 : 0);
  return moment.GetDay() >= 1 && moment.GetDay() <= days && moment.GetHour() < 24 &&
         moment.GetMinute() < 60 && moment.GetSecond() <= 60;  // a leap second has 60
}

void CheckDateTime(const std::string& text, const TValueReport& report) {
  TCIMDateTime read;
  try {
    read.Set(text);
  } catch (const TZELException&) {
    report(TRule::kDateTime, {Excerpt(text), kDefaultDateTime});
    return;
  }
  if (!read.IsInterval()) {
    if (!IsMoment(read)) report(TRule::kDateTimeFields, {text});
  } else if (std::stoul(text.substr(0, 8)) > kKeptDays) {
    report(TRule::kIntervalDays, {text, std::to_string(read.GetDay())});
  }
}

}  // namespace

void CheckValue(TType type, const std::string& text, TContainer& container,
                const TValueReport& report) {
  switch (type) {
    case TType::TypeBoolean: return CheckBoolean(text, container, report);
    case TType::TypeUint8:
    case TType::TypeSint8:
    case TType::TypeUint16:
    case TType::TypeSint16:
    case TType::TypeUint32:
    case TType::TypeSint32:
    case TType::TypeUint64:
    case TType::TypeSint64: return CheckInteger(type, text, container, report);
    case TType::TypeReal32: return CheckReal<float>(type, text, container, report);
    case TType::TypeReal64: return CheckReal<double>(type, text, container, report);
    case TType::TypeDateTime: return CheckDateTime(text, report);
    default: return;
  }
}

std::string Excerpt(const std::string& text) {
  if (text.size() <= kExcerpt) return text;
  std::size_t end = kExcerpt;
  while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80U) --end;  // in UTF-8
  return text.substr(0, end) + "...";
}

}  // namespace zel
