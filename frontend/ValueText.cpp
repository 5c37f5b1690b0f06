#include "frontend/ValueText.h"

#include <fmt/format.h>

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <nlohmann/json.hpp>

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

// Durations end with a blank.
std::string Trimmed(std::string text) {
  while (!text.empty() && text.back() == ' ') text.pop_back();
  return text;
}

}  // namespace

bool IsTrue(const TCIMQualifier* qualifier) {
  if (!qualifier || qualifier->GetType() != TType::TypeBoolean) return false;
  const TCIMValue value = qualifier->GetValue();
  return !value.IsNull() && bool(value);
}

std::string Printable(const std::string& text) {
  std::string shown;
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte < 0x20 || byte == 0x7F) {
      shown += fmt::format("\\x{:02X}", byte);
    } else {
      shown += c;
    }
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

std::string ValueText(const TCIMValue& value) {
  if (value.IsArray()) {
    std::string text;
    const std::vector<TCIMValue>& elements = value;
    for (const TCIMValue& element : elements) {
      if (!text.empty()) text += ", ";
      if (!element.IsNull()) text += ValueText(element);
    }
    return text;
  }
  if (value.GetType() == TType::TypeDateTime) {
    const TCIMDateTime datetime = value;
    return datetime.IsNull() ? "" : Iso8601(datetime);
  }
  return Printable(value.ToString(10));
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
  const bool needsRoot = IsTrue(property.GetDeclaration()->FindQualifier("NEEDSROOT"));
  return needsRoot && !TOSSpecific::IsAdmin() ? kNeedsRoot : kNotAvailable;
}

namespace {

// `value` as the property shows it by `toText`.
std::string ShownText(const TCIMProperty& property, const TCIMValue& value,
                      std::string (TCIMProperty::*toText)() const) {
  if (value.IsNull()) return MissingText(property);
  // What has neither unit nor value map is shown our own way: datetimes in ISO 8601.
  const bool isPlain = value.GetType() == TType::TypeDateTime || value.IsArray();
  if (isPlain) return ValueText(value);
  try {
    return Trimmed(Printable((property.*toText)()));
  } catch (const TZELException&) {
    return ValueText(value);  // qualifiers that do not fit the type
  }
}

}  // namespace

std::string PropertyText(const TCIMProperty& property) {
  return ShownText(property, property.GetValue(), &TCIMProperty::ToString);
}

std::string PrevPropertyText(const TCIMProperty& property) {
  return ShownText(property, property.GetPrevValue(), &TCIMProperty::PrevToString);
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
