#include "frontend/ValueMatch.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <vector>

#include "frontend/Inventory.h"
#include "frontend/ValueText.h"
#include "zelcore/zelcore.h"

namespace zel {
namespace {

using TType = TCIMValue::TCIMType;

constexpr char kRedacted[] = "[redacted:";

// Texts carry their length, so that no value can look like two.
void AppendText(std::string& text, const std::string& part) {
  text += fmt::format("{}:{}", part.size(), part);
}

std::string PlainText(const TCIMValue& value) {
  if (value.GetType() != TType::TypeDateTime) return value.ToString(10);
  const TCIMDateTime datetime = value;
  return datetime.IsNull() ? "" : datetime.ToString();
}

void AppendValue(std::string& text, const TCIMValue& value, const TRedactedProperties& redacted);

// The bindings in the order of their lower-case names.
void AppendReference(std::string& text, const TCIMReference& reference,
                     const TRedactedProperties& redacted) {
  const std::string cls = LowerCase(reference.GetClassName());
  std::multimap<std::string, TCIMValue> bindings;
  for (const auto& [name, value] : reference.EnumerateKeyBindings()) {
    const std::string key = LowerCase(name);
    if (!redacted.Contains(cls, key)) bindings.emplace(key, value);
  }
  text += fmt::format("&{}.{}", cls, bindings.size());
  for (const auto& [name, value] : bindings) {
    text += "," + name + "=";
    AppendValue(text, value, redacted);
  }
}

// As deep as the references in keys of references, which the reader limits.
void AppendValue(std::string& text, const TCIMValue& value, const TRedactedProperties& redacted) {
  if (value.IsNull()) {
    text += "~";
  } else if (value.IsArray()) {
    const std::vector<TCIMValue>& elements = value;
    text += fmt::format("[{}]", elements.size());
    for (const TCIMValue& element : elements) AppendValue(text, element, redacted);
  } else if (value.IsReference()) {
    AppendReference(text, value, redacted);
  } else {
    AppendText(text, PlainText(value));
  }
}

// Two points in time are the same in whatever offset they are told.
bool IsSameMoment(const TCIMValue& a, const TCIMValue& b) {
  if (PlainText(a) == PlainText(b)) return true;
  const TCIMDateTime first = a;
  const TCIMDateTime second = b;
  if (first.IsNull() || second.IsNull() || first.IsInterval() || second.IsInterval()) return false;
  try {
    return first == second;
  } catch (const TZELException&) {
    return false;  // outside of what the system's clock can tell
  }
}

template <class TReal>
bool IsSameReal(const TCIMValue& a, const TCIMValue& b) {
  const TReal first = a;
  const TReal second = b;
  return first == second || (std::isnan(first) && std::isnan(second));
}

bool IsSameArray(const TCIMValue& a, const TCIMValue& b, const TRedactedProperties& redacted) {
  const std::vector<TCIMValue>& first = a;
  const std::vector<TCIMValue>& second = b;
  return std::equal(first.begin(), first.end(), second.begin(), second.end(),
                    [&](const TCIMValue& x, const TCIMValue& y) { return IsSame(x, y, redacted); });
}

TCIMReference ReferenceIn(TContainer& container, const TCIMReference& reference) {
  TCIMReference translated(&container);
  translated.SetClassName(reference.GetClassName());
  for (const auto& [name, value] : reference.EnumerateKeyBindings()) {
    translated.AddKeyValue(name, ValueIn(container, value));
  }
  return translated;
}

}  // namespace

std::string LowerCase(const std::string& name) {
  std::string lower = name;
  for (char& c : lower) c = 'A' <= c && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  return lower;
}

TRedactedProperties::TRedactedProperties(const TInventory& before, const TInventory& after) {
  if (!before.IsRedacted() && !after.IsRedacted()) return;
  for (const TInventory* inventory : {&before, &after}) {
    AddSensitive(*inventory);
    if (inventory->IsRedacted()) AddRedacted(*inventory);
  }
}

bool TRedactedProperties::Contains(const std::string& cls, const std::string& property) const {
  return !IsEmpty() && fNames.count({cls, property}) != 0;
}

void TRedactedProperties::AddSensitive(const TInventory& inventory) {
  for (const TCIMClass* cls : inventory.AllClasses()) {
    for (const TCIMPropertyDecl* property : cls->EnumeratePropertyDecls()) {
      if (IsTrue(property->FindQualifier("SENSITIVE"))) {
        fNames.emplace(LowerCase(cls->GetName()), LowerCase(property->GetName()));
      }
    }
  }
}

void TRedactedProperties::AddRedacted(const TInventory& inventory) {
  for (const TCIMClass* cls : inventory.AllClasses()) {
    const std::string name = LowerCase(cls->GetName());
    for (const TCIMInstance* instance : cls->EnumerateInstances(false)) {
      for (const TCIMProperty* property : instance->EnumerateProperties()) {
        AddRedacted(name, LowerCase(property->GetName()), property->GetValue());
      }
    }
  }
}

void TRedactedProperties::AddRedacted(const std::string& cls, const std::string& property,
                                      const TCIMValue& value) {
  if (value.IsNull()) return;
  if (value.IsReference()) {
    const TCIMReference reference = value;
    const std::string target = LowerCase(reference.GetClassName());
    for (const auto& [name, key] : reference.EnumerateKeyBindings()) {
      AddRedacted(target, LowerCase(name), key);
    }
  } else if (value.IsArray()) {
    const std::vector<TCIMValue>& elements = value;
    for (const TCIMValue& element : elements) AddRedacted(cls, property, element);
  } else if (value.GetType() == TType::TypeString &&
             value.ToString(10).find(kRedacted) != std::string::npos) {
    fNames.emplace(cls, property);
  }
}

std::string MatchText(const TCIMValue& value, const TRedactedProperties& redacted) {
  std::string text;
  AppendValue(text, value, redacted);
  return text;
}

std::string MatchText(const TCIMInstance& instance, const TRedactedProperties& redacted) {
  return MatchText(TCIMValue(instance.BuildPath()), redacted);
}

bool IsSame(const TCIMValue& a, const TCIMValue& b, const TRedactedProperties& redacted) {
  if (a.IsNull() || b.IsNull()) return a.IsNull() && b.IsNull();
  if (a.GetType() != b.GetType()) return ValueText(a) == ValueText(b);
  if (a.IsArray()) return IsSameArray(a, b, redacted);
  switch (a.GetType()) {
    case TType::TypeReference: return MatchText(a, redacted) == MatchText(b, redacted);
    case TType::TypeDateTime: return IsSameMoment(a, b);
    case TType::TypeReal32: return IsSameReal<float>(a, b);
    case TType::TypeReal64: return IsSameReal<double>(a, b);
    default: return a == b;
  }
}

TCIMValue ValueIn(TContainer& container, const TCIMValue& value) {
  if (value.IsNull() || !(value.IsReference() || value.IsArray())) return value;
  if (value.IsReference()) return ReferenceIn(container, value);
  const std::vector<TCIMValue>& foreign = value;
  std::vector<TCIMValue> elements;
  elements.reserve(foreign.size());
  for (const TCIMValue& element : foreign) elements.push_back(ValueIn(container, element));
  return {value.GetType(), value.GetMaxArraySize(), elements};
}

}  // namespace zel
