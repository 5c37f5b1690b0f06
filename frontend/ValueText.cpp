#include "frontend/ValueText.h"

#include <fmt/format.h>

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <nlohmann/json.hpp>

#include "frontend/Inventory.h"
#include "frontend/RunRecord.h"
#include "frontend/Units.h"
#include "frontend/Utf8.h"
#include "zelcore/zelcore.h"

namespace zel {
namespace {

using TType = TCIMValue::TCIMType;

constexpr std::int64_t kExactInJson = std::int64_t{1} << 53;

template <class TInteger>
nlohmann::ordered_json IntegerJson(TInteger value) {
  if (value > static_cast<TInteger>(kExactInJson)) return std::to_string(value);
  if constexpr (std::is_signed_v<TInteger>) {
    if (value < -kExactInJson) return std::to_string(value);
  }
  return value;
}

nlohmann::ordered_json RealJson(double value, std::string text) {
  if (std::isfinite(value)) return value;
  return text;
}

// Control characters beyond ASCII, separators of lines, and what turns the direction of writing.
bool Steers(char32_t code) {
  return (0x80 <= code && code <= 0x9F) || (0x2028 <= code && code <= 0x202E) ||
         (0x2066 <= code && code <= 0x2069);
}

std::string RawScalar(const TCIMValue& value) {
  if (value.IsNull()) return "";
  if (value.GetType() != TType::TypeDateTime) return value.ToString(10);
  const TCIMDateTime datetime = value;
  return datetime.IsNull() ? "" : Iso8601(datetime);
}

// Durations end with a blank.
std::string Trimmed(std::string text) {
  while (!text.empty() && text.back() == ' ') text.pop_back();
  return text;
}

// Whether the values that the property belongs to were collected as root; this process's rights
// when nothing tells.
bool WasRoot(const TCIMPropertyDecl& declaration) {
  const TCIMClass* run = declaration.GetClass()->GetContainer()->FindClass(kRunClass);
  const auto runs = run ? run->EnumerateInstances(false) : std::vector<TCIMInstance*>();
  return runs.empty() ? TOSSpecific::IsAdmin() : FlagOf(*runs.front(), "IsRoot");
}

// A property's value, the current or the previous one, as the library shows it.
struct TShow {
  std::string (TCIMProperty::*whole)() const;
  std::vector<std::string> (TCIMProperty::*elements)() const;
};
constexpr TShow kCurrent = {&TCIMProperty::ToString, &TCIMProperty::ToStringVector};
constexpr TShow kPrevious = {&TCIMProperty::PrevToString, &TCIMProperty::PrevToStringVector};

// One text, or one for each element; none when the qualifiers do not suit the value.
std::vector<std::string> LibraryTexts(const TCIMProperty& property, const TShow& show) {
  try {
    if (property.IsArray()) return (property.*show.elements)();
    return {(property.*show.whole)()};
  } catch (const TZELException&) {
    return {};
  }
}

std::vector<std::string> ShownTexts(const TCIMProperty& property, const TCIMValue& value,
                                    const TShow& show) {
  if (value.IsNull()) return {};
  const unsigned type = value.GetType() & ~unsigned{TType::TypeArray};
  std::vector<std::string> bare = ValueTexts(value);
  // The library's datetimes lack the time zone.
  if (type == TType::TypeDateTime) return bare;
  std::vector<std::string> texts = LibraryTexts(property, show);
  if (texts.size() != bare.size()) texts = bare;
  const bool isNumeric = TType::TypeUint8 <= type && type <= TType::TypeReal64;
  for (std::size_t i = 0; i < texts.size(); ++i) {
    texts[i] = Trimmed(Printable(texts[i]));
    if (!isNumeric || bare[i].empty()) continue;
    const bool isBare = texts[i] == bare[i] || texts[i].empty();  // empty: a duration of nothing
    const std::string unit =
        isBare ? TextOf(property.GetDeclaration()->FindQualifier("UNITS")) : "";
    if (!unit.empty()) texts[i] = bare[i] + " " + Printable(UnitSymbol(unit));
  }
  return texts;
}

std::string ShownText(const TCIMProperty& property, const TCIMValue& value, const TShow& show) {
  if (value.IsNull()) return MissingText(property);
  return fmt::format("{}", fmt::join(ShownTexts(property, value, show), ", "));
}

}  // namespace

std::string TextOf(const TCIMQualifier* qualifier) {
  if (!qualifier || qualifier->GetType() != TType::TypeString) return "";
  const TCIMValue value = qualifier->GetValue();
  return value.IsNull() || value.IsArray() ? "" : value.ToString(10);
}

bool IsTrue(const TCIMQualifier* qualifier) {
  if (!qualifier || qualifier->GetType() != TType::TypeBoolean) return false;
  const TCIMValue value = qualifier->GetValue();
  return !value.IsNull() && bool(value);
}

std::string Printable(const std::string& text) {
  std::string shown;
  for (std::string_view rest = text; !rest.empty();) {
    const auto [code, size] = FirstCharacter(rest);
    if (code < 0x20 || code == 0x7F || code == kNoCharacter) {
      shown += fmt::format("\\x{:02X}", static_cast<unsigned char>(rest[0]));
    } else if (Steers(code)) {
      shown += fmt::format("\\u{:04X}", static_cast<unsigned>(code));
    } else {
      shown += rest.substr(0, size);
    }
    rest.remove_prefix(size);
  }
  return shown;
}

std::string Iso8601(const TCIMDateTime& datetime) {
  if (datetime.IsInterval()) {
    return fmt::format("P{}DT{}H{}M{}.{:06}S", datetime.GetDay(), datetime.GetHour(),
                       datetime.GetMinute(), datetime.GetSecond(), datetime.GetMicroSeconds());
  }
  const int offset = datetime.GetUTCOffset();
  return fmt::format("{:04}-{:02}-{:02}T{:02}:{:02}:{:02}.{:06}{}{:02}:{:02}", datetime.GetYear(),
                     datetime.GetMonth(), datetime.GetDay(), datetime.GetHour(),
                     datetime.GetMinute(), datetime.GetSecond(), datetime.GetMicroSeconds(),
                     offset < 0 ? '-' : '+', std::abs(offset) / 60, std::abs(offset) % 60);
}

std::string MomentText(const TCIMValue& value) {
  if (value.IsNull() || value.GetType() != TType::TypeDateTime) return "";
  const TCIMDateTime moment = value;
  if (moment.IsNull() || moment.IsInterval()) return "";
  return fmt::format("{:04}-{:02}-{:02} {:02}:{:02}:{:02}", moment.GetYear(), moment.GetMonth(),
                     moment.GetDay(), moment.GetHour(), moment.GetMinute(), moment.GetSecond());
}

std::vector<std::string> RawTexts(const TCIMValue& value) {
  if (value.IsNull()) return {};
  if (!value.IsArray()) return {RawScalar(value)};
  const std::vector<TCIMValue>& elements = value;
  std::vector<std::string> texts;
  texts.reserve(elements.size());
  for (const TCIMValue& element : elements) texts.push_back(RawScalar(element));
  return texts;
}

std::vector<std::string> ValueTexts(const TCIMValue& value) {
  std::vector<std::string> texts = RawTexts(value);
  for (std::string& text : texts) text = Printable(text);
  return texts;
}

std::string ValueText(const TCIMValue& value) {
  return fmt::format("{}", fmt::join(ValueTexts(value), ", "));
}

std::string BytesText(unsigned long bytes) {
  constexpr const char* kUnits[] = {"B", "KiB", "MiB", "GiB", "TiB", "PiB", "EiB"};
  auto number = static_cast<double>(bytes);
  std::size_t unit = 0;
  while (number >= 1024 && unit + 1 < std::size(kUnits)) {
    number /= 1024;
    ++unit;
  }
  std::string text = fmt::format("{:.1f}", number);
  if (text.size() > 2 && text.compare(text.size() - 2, 2, ".0") == 0) text.resize(text.size() - 2);
  return fmt::format("{} {}", text, kUnits[unit]);
}

std::string MissingText(const TCIMProperty& property) {
  const TCIMPropertyDecl& declaration = *property.GetDeclaration();
  if (IsTrue(declaration.FindQualifier("NEEDSROOT")) && !WasRoot(declaration)) return kNeedsRoot;
  const std::string text = TextOf(declaration.FindQualifier("NULLDISPLAY"));
  return text.empty() ? kNotAvailable : Printable(text);
}

std::vector<std::string> PropertyTexts(const TCIMProperty& property) {
  return ShownTexts(property, property.GetValue(), kCurrent);
}

std::string PropertyText(const TCIMProperty& property) {
  return ShownText(property, property.GetValue(), kCurrent);
}

std::string PrevPropertyText(const TCIMProperty& property) {
  return ShownText(property, property.GetPrevValue(), kPrevious);
}

nlohmann::ordered_json ValueJson(const TCIMValue& value) {
  if (value.IsNull()) return nullptr;
  if (value.IsArray()) {
    nlohmann::ordered_json array = nlohmann::ordered_json::array();
    const std::vector<TCIMValue>& elements = value;
    for (const TCIMValue& element : elements) array.push_back(ValueJson(element));
    return array;
  }
  switch (value.GetType()) {
    case TType::TypeBoolean: return bool(value);
    case TType::TypeUint8: return static_cast<unsigned char>(value);
    case TType::TypeSint8: return static_cast<signed char>(value);
    case TType::TypeUint16: return static_cast<unsigned short>(value);
    case TType::TypeSint16: return static_cast<short>(value);
    case TType::TypeUint32: return static_cast<unsigned int>(value);
    case TType::TypeSint32: return static_cast<int>(value);
    case TType::TypeUint64: return IntegerJson(static_cast<unsigned long>(value));
    case TType::TypeSint64: return IntegerJson(static_cast<long>(value));
    case TType::TypeReal32: return RealJson(static_cast<float>(value), value.ToString(10));
    case TType::TypeReal64: return RealJson(static_cast<double>(value), value.ToString(10));
    case TType::TypeDateTime: {
      const TCIMDateTime datetime = value;
      if (datetime.IsNull()) return nullptr;
      return Iso8601(datetime);
    }
    default: return value.ToString(10);
  }
}

}  // namespace zel
