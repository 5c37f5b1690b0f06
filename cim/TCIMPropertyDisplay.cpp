// The operations of TCIMPropertyImpl that make text for people of a value.

#include <charconv>
#include <cstdint>
#include <iterator>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "cim/SchemaChanges.h"
#include "cim/TCIMNumericValueImpl.h"
#include "cim/TCIMPropertyDeclImpl.h"
#include "cim/TCIMPropertyImpl.h"
#include "cim/TQualifierSet.h"
#include "cim/TValueMap.h"
#include "zelcore/TCIMDateTime.h"
#include "zelcore/detail/Ascii.h"
#include "zelcore/detail/Fail.h"

using zelcore::detail::Fail;
using zelcore::detail::LogCore;
using zelcore::detail::Text;
using zelcore::detail::ToAsciiLower;
using zelcore::detail::TSchemaChanges;
using zelcore::detail::VisitNumeric;

namespace {

using TCIMType = TCIMValue::TCIMType;
using TValueMapEntry = TCIMPropertyImpl::TValueMapEntry;

struct TMultiple {
  std::string_view longName;
  std::string_view shortName;
  std::uint64_t parts;  // how many of them a second has; 0: none that are counted
};

// One row up is the next larger one.
constexpr TMultiple kMultiples[] = {
    {"Peta",  "P", 0         },
    {"Tera",  "T", 0         },
    {"Giga",  "G", 0         },
    {"Mega",  "M", 0         },
    {"Kilo",  "K", 0         }, // sic: there are no kiloseconds
    {"",      "",  1         },
    {"Milli", "m", 1000      },
    {"Micro", "u", 1000000   },
    {"Nano",  "n", 1000000000},
};
constexpr int kPlain = 5;
constexpr int kSmallestTarget = 4;
constexpr int kLargestTarget = 1;

struct TScalableUnit {
  std::string_view name;
  float step;
  std::string_view shortName;
};

constexpr TScalableUnit kScalableUnits[] = {
    {"Bytes",            1024, "B"   },
    {"Bits",             1024, "Bits"}, // sic: bits are never abbreviated
    {"Bytes per Second", 1024, "B/s" },
    {"Bits per Second",  1000, "bps" },
};

bool IsUnsignedInteger(TCIMType type) {
  return type == TCIMType::TypeUint8 || type == TCIMType::TypeUint16 ||
         type == TCIMType::TypeUint32 || type == TCIMType::TypeUint64;
}

bool IsMappable(TCIMType type) { return type == TCIMType::TypeBoolean || IsUnsignedInteger(type); }

bool IsMappableArray(TCIMType type) {
  return type.IsArray() && IsMappable(TCIMType::ECIMType(type & ~TCIMType::TypeArray));
}

const std::vector<TCIMValue>& ElementsOf(const TCIMValue& array) { return array; }

unsigned long CodeOf(const TCIMValue& value) {
  return VisitNumeric(value.GetType(), [&](auto tag) -> unsigned long {
    using T = typename decltype(tag)::type;
    if constexpr (std::is_unsigned_v<T>) {
      return static_cast<T>(value);
    } else {
      Fail(zelStatusTypeMismatch);
    }
  });
}

// A qualifier of another type counts as absent.
const TCIMValue* FindValue(const TQualifierSet& qualifiers, const char* name, TCIMType type) {
  const TCIMValue* const value = qualifiers.FindValue(name);
  return value && value->GetType() == type ? value : nullptr;
}

std::string FindText(const TQualifierSet& qualifiers, const char* name) {
  const TCIMValue* const value = FindValue(qualifiers, name, TCIMType::TypeString);
  return value ? static_cast<std::string>(*value) : std::string();
}

std::string TextOf(const TValueMapEntry* row, const std::string& defaultText,
                   const TCIMValue& value) {
  if (row) return row->text;
  return defaultText.empty() ? value.ToString(10) : defaultText;
}

std::string Translate(const TCIMValue& value, const TValueMap& map) {
  return TextOf(map.Find(CodeOf(value)), map.defaultText, value);
}

int SplitMultiple(std::string_view& unit) {
  for (int i = 0; i < static_cast<int>(std::size(kMultiples)); ++i) {
    const std::string_view prefix = kMultiples[i].longName;
    if (i == kPlain || unit.substr(0, prefix.size()) != prefix) continue;
    unit.remove_prefix(prefix.size());
    return i;
  }
  return kPlain;
}

const TScalableUnit* FindScalable(std::string_view name) {
  for (const TScalableUnit& unit : kScalableUnits) {
    if (unit.name == name) return &unit;
  }
  return nullptr;
}

std::optional<int> FindTarget(std::string_view name) {
  for (int i = kLargestTarget; i <= kSmallestTarget; ++i) {
    if (kMultiples[i].longName == name) return i;
  }
  return std::nullopt;
}

struct TScaled {
  float number;
  int multiple;
};

TScaled Scale(float number, int multiple, float step, std::optional<int> target) {
  while (target ? multiple > *target : number > step && multiple > 0) {
    number /= step;
    --multiple;
  }
  return {number, multiple};
}

// One decimal place unless it is 0, and commas between thousands. Done here because few machines
// have the locale "en_US", and because making one takes its time.
std::string PrintNumber(float number) {
  constexpr std::size_t kDecimals = 2;  // point and digit
  char digits[64];
  const auto end = std::to_chars(digits, std::end(digits), number, std::chars_format::fixed, 1).ptr;
  std::string_view text(digits, static_cast<std::size_t>(end - digits));
  const std::size_t whole = text.size() - kDecimals;
  if (text.substr(whole) == ".0") text.remove_suffix(kDecimals);
  std::string grouped;
  grouped.reserve(text.size() + whole / 3 + 24);  // the label goes here, too
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (i > 0 && i < whole && (whole - i) % 3 == 0) grouped += ',';
    grouped += text[i];
  }
  return grouped;
}

void AddLabel(int multiple, const TScalableUnit& unit, bool isShort, std::string& text) {
  const TMultiple& prefix = kMultiples[multiple];
  if (isShort) {
    text.append(prefix.shortName).append(unit.shortName);
    return;
  }
  const std::size_t start = text.size();
  text.append(prefix.longName).append(unit.name);
  for (std::size_t i = start + 1; i < text.size(); ++i) text[i] = ToAsciiLower(text[i]);
}

// NULL for multiples of a second.
TCIMDateTime ToInterval(std::uint64_t count, int multiple) {
  constexpr std::uint64_t kMicroSeconds = 1000000;
  const std::uint64_t parts = kMultiples[multiple].parts;
  TCIMDateTime interval;
  if (parts == 0) return interval;
  const std::uint64_t seconds = count / parts;
  const std::uint64_t rest = count % parts;
  interval.Set(
      static_cast<unsigned int>(seconds / 86400), static_cast<unsigned short>(seconds / 3600 % 24),
      static_cast<unsigned short>(seconds / 60 % 60), static_cast<unsigned short>(seconds % 60),
      static_cast<unsigned int>(rest * kMicroSeconds / parts));
  return interval;
}

}  // namespace

// What the qualifiers of a declaration say about showing values.
struct TDisplayRules {
  TDisplayRules(const TQualifierSet& qualifiers, std::uint64_t currentChanges)
      : changes(currentChanges),
        nullText(FindText(qualifiers, "NULLDISPLAY")),
        target(FindTarget(FindText(qualifiers, "DISPLAYFIXEDUNITS"))),
        isShort(qualifiers.FindValue("ABBREVIATEUNITS") != nullptr),
        isCPUTime(qualifiers.FindValue("DISPLAYCPUTIME") != nullptr) {
    const TCIMValue* const declaredBase = FindValue(qualifiers, "BASE", TCIMType::TypeUint8);
    if (declaredBase) base = *declaredBase;
    const std::string declaredUnit = FindText(qualifiers, "UNITS");
    std::string_view name = declaredUnit;
    multiple = SplitMultiple(name);
    isSeconds = name == "Seconds";
    unit = FindScalable(name);
  }

  const std::uint64_t changes;  // TSchemaChanges::Count() when they were read
  std::string nullText;
  unsigned char base = 10;
  int multiple = kPlain;  // of the unit
  const TScalableUnit* unit = nullptr;
  bool isSeconds = false;
  std::optional<int> target;
  bool isShort;
  bool isCPUTime;
  std::optional<TValueMap> valueMap;  // once it was asked for
};

namespace {

TDisplayRules& RulesOf(const TCIMPropertyDecl& declaration) {
  const auto& body = declaration.GetBody();
  std::shared_ptr<TDisplayRules>& rules = body->DisplayRules();
  const std::uint64_t changes = TSchemaChanges::Count();
  if (!rules || rules->changes != changes) {
    rules = std::make_shared<TDisplayRules>(body->Qualifiers(), changes);
  }
  return *rules;
}

// Null when there is no usable value map.
const TValueMap* FindValueMap(const TCIMPropertyDecl& declaration) {
  std::optional<TValueMap>& map = RulesOf(declaration).valueMap;
  if (!map) map.emplace(declaration.GetBody()->Qualifiers());
  if (map->complaint) {
    LogCore(zelLogDebug, Text("Property ", declaration.GetName(), map->complaint));
  }
  return map->isUsable ? &*map : nullptr;
}

}  // namespace

std::string TCIMPropertyImpl::ToString() const { return Show(Value()); }
std::string TCIMPropertyImpl::PrevToString() const { return Show(PrevValue()); }
std::vector<std::string> TCIMPropertyImpl::ToStringVector() const { return ShowEach(Value()); }
std::vector<std::string> TCIMPropertyImpl::PrevToStringVector() const {
  return ShowEach(PrevValue());
}
std::vector<std::string> TCIMPropertyImpl::ToStringVectorWithBase() const {
  return ShowEachWithBase(Value());
}
std::vector<std::string> TCIMPropertyImpl::PrevToStringVectorWithBase() const {
  return ShowEachWithBase(PrevValue());
}

std::string TCIMPropertyImpl::Show(const TCIMValue& value) const {
  const bool isMapped = !value.IsNull() && IsMappable(fDeclaration->GetType());
  const TValueMap* const map = isMapped ? FindValueMap(*fDeclaration) : nullptr;
  return map ? Translate(value, *map) : ToStringWithQualifiers(value);
}

// sic: the value map shows the elements of arrays only, not a scalar.
std::vector<std::string> TCIMPropertyImpl::ShowEach(const TCIMValue& value) const {
  const bool isMapped = !value.IsNull() && IsMappableArray(fDeclaration->GetType());
  const TValueMap* const map = isMapped ? FindValueMap(*fDeclaration) : nullptr;
  if (!map) return ShowEachWithBase(value);
  std::vector<std::string> texts;
  for (const TCIMValue& element : ElementsOf(value)) texts.push_back(Translate(element, *map));
  return texts;
}

std::vector<std::string> TCIMPropertyImpl::ShowEachWithBase(const TCIMValue& value) const {
  if (value.IsNull() || !fDeclaration->IsArray()) return {ToStringWithQualifiers(value)};
  std::vector<std::string> texts;
  for (const TCIMValue& element : ElementsOf(value)) {
    texts.push_back(ToStringWithQualifiers(element));
  }
  return texts;
}

std::string TCIMPropertyImpl::ToStringWithQualifiers(const TCIMValue& value) const {
  const TDisplayRules& rules = RulesOf(*fDeclaration);
  if (value.IsNull()) return rules.nullText;
  if (!IsUnsignedInteger(value.GetType())) return ToStringWithBase(value);
  if (rules.isSeconds) {
    const TCIMDateTime interval = ToInterval(CodeOf(value), rules.multiple);
    return rules.isCPUTime ? interval.ToAbbrUIString() : interval.ToUIString();
  }
  if (!rules.unit) return ToStringWithBase(value);
  const TScaled scaled =
      Scale(static_cast<float>(CodeOf(value)), rules.multiple, rules.unit->step, rules.target);
  std::string text = PrintNumber(scaled.number);
  text += ' ';
  AddLabel(scaled.multiple, *rules.unit, rules.isShort, text);
  return text;
}

std::string TCIMPropertyImpl::ToStringWithBase(const TCIMValue& value) const {
  return value.ToString(RulesOf(*fDeclaration).base);
}

bool TCIMPropertyImpl::BuildValueMapEntryArray(std::vector<TValueMapEntry>& entries,
                                               std::string& defaultText) const {
  const TValueMap* const map = FindValueMap(*fDeclaration);
  if (!map) return false;
  entries = map->entries;
  defaultText = map->defaultText;
  return true;
}

std::string TCIMPropertyImpl::LookupInTable(const TCIMValue& value,
                                            const std::vector<TValueMapEntry>& entries,
                                            const std::string& defaultText) const {
  return TextOf(TValueMap::FindFirst(entries, CodeOf(value)), defaultText, value);
}
