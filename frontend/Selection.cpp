#include "frontend/Selection.h"

#include <fmt/format.h>

#include <algorithm>
#include <set>
#include <tuple>

#include "frontend/ExitCode.h"
#include "frontend/Inventory.h"
#include "frontend/NearMatch.h"
#include "frontend/Titles.h"
#include "frontend/ValueMatch.h"
#include "frontend/ValueText.h"
#include "zelcore/zelcore.h"

namespace zel {
namespace {

const TCIMPropertyDecl* FindProperty(const TCIMClass& cls, const std::string& name) {
  try {
    return cls.FindPropertyDecl(name);
  } catch (const TZELException&) {
    return nullptr;  // a text that cannot be a name
  }
}

void RequireProperty(const std::vector<TSelection>& selections, const std::string& name) {
  std::set<std::string> declared;
  for (const TSelection& selection : selections) {
    if (FindProperty(*selection.cls, name)) return;
    for (const TCIMPropertyDecl* property : selection.cls->EnumeratePropertyDecls()) {
      declared.insert(property->GetName());
    }
  }
  if (selections.empty()) return;
  constexpr std::size_t kOneLine = 40;  // more names are no help
  const std::vector<std::string> names(declared.begin(), declared.end());
  const std::string one = selections.size() == 1 ? selections.front().cls->GetName() : "";
  const std::string meant = DidYouMean(name, names);
  const std::string all =
      names.size() <= kOneLine
          ? fmt::format("there are {}", fmt::join(names, ", "))
          : fmt::format("'zel schema {}' lists them", one.empty() ? "CLASS" : one);
  throw TCommandError(kExitUsage, Printable(fmt::format("no property '{}' in {}{} {}", name,
                                                        one.empty() ? "any of the classes" : one,
                                                        meant.empty() ? ";" : meant, all)));
}

bool Fulfils(const TCIMInstance& instance, const TCondition& condition) {
  if (!FindProperty(*instance.GetClass(), condition.property)) return false;
  const TCIMProperty& property = *instance.GetProperty(condition.property);
  const TCIMValue value = property.GetValue();
  if (value.IsNull() && condition.value.empty()) return true;
  const std::string wanted = LowerCase(condition.value);
  const auto isWanted = [&](const std::string& text) { return LowerCase(text) == wanted; };
  const std::vector<std::string> raw = RawTexts(value);
  const std::vector<std::string> shown = PropertyTexts(property);
  return std::any_of(raw.begin(), raw.end(), isWanted) ||
         std::any_of(shown.begin(), shown.end(), isWanted) || isWanted(ValueText(value)) ||
         isWanted(PropertyText(property)) || (!wanted.empty() && isWanted(TargetOf(value)));
}

// The COLUMN qualifier; 0 without.
unsigned ColumnOf(const TCIMPropertyDecl& property) {
  const TCIMQualifier* column = property.FindQualifier("COLUMN");
  if (!column || column->GetType() != TCIMValue::TCIMType::TypeUint32) return 0;
  const TCIMValue value = column->GetValue();
  return value.IsNull() ? 0 : static_cast<unsigned>(value);
}

TCIMValue ValueOf(const TCIMInstance& instance, const TCIMPropertyDecl& property) {
  return instance.GetProperty(property.GetName())->GetValue();
}

bool IsMissing(const TSelection& selection, const TCIMPropertyDecl& property) {
  return std::all_of(
      selection.instances.begin(), selection.instances.end(),
      [&](const TCIMInstance* instance) { return ValueOf(*instance, property).IsNull(); });
}

bool TellsApart(const TSelection& selection, const TCIMPropertyDecl& property) {
  if (selection.instances.empty()) return false;
  const TCIMValue first = ValueOf(*selection.instances.front(), property);
  return std::any_of(
      selection.instances.begin(), selection.instances.end(),
      [&](const TCIMInstance* instance) { return !(ValueOf(*instance, property) == first); });
}

// Sorts by what `rankOf` gives; equal ones stay in their order.
template <class TRank>
void SortBy(std::vector<const TCIMPropertyDecl*>& properties, const TRank& rankOf) {
  std::vector<std::pair<decltype(rankOf(*properties[0])), const TCIMPropertyDecl*>> ranked;
  ranked.reserve(properties.size());
  for (const TCIMPropertyDecl* property : properties)
    ranked.emplace_back(rankOf(*property), property);
  std::stable_sort(ranked.begin(), ranked.end(),
                   [](const auto& a, const auto& b) { return a.first < b.first; });
  for (std::size_t i = 0; i < ranked.size(); ++i) properties[i] = ranked[i].second;
}

}  // namespace

std::vector<TSelection> SelectAll(const TInventory& inventory,
                                  const std::vector<TCIMClass*>& classes) {
  std::vector<TSelection> selections;
  for (const TCIMClass* cls : classes) {
    const std::vector<TCIMInstance*> instances = cls->EnumerateInstances(false);
    selections.push_back({
        cls,
        inventory.WasCollected(*cls),
        {instances.begin(), instances.end()},
        cls->EnumeratePropertyDecls()
    });
  }
  return selections;
}

TCondition ParseCondition(const std::string& text) {
  const std::size_t equals = text.find('=');
  if (equals == std::string::npos || equals == 0) {
    throw TCommandError(
        kExitUsage,
        Printable(fmt::format("'{}' is no condition; --where takes PROPERTY=VALUE", text)));
  }
  return {text.substr(0, equals), text.substr(equals + 1)};
}

void KeepInstances(std::vector<TSelection>& selections, const std::vector<TCondition>& conditions) {
  for (const TCondition& condition : conditions) {
    RequireProperty(selections, condition.property);
    for (TSelection& selection : selections) {
      auto& instances = selection.instances;
      const auto isOut = [&](const TCIMInstance* instance) {
        return !Fulfils(*instance, condition);
      };
      instances.erase(std::remove_if(instances.begin(), instances.end(), isOut), instances.end());
    }
  }
}

void KeepProperties(std::vector<TSelection>& selections, const std::vector<std::string>& names) {
  for (const std::string& name : names) RequireProperty(selections, name);
  for (TSelection& selection : selections) {
    selection.properties.clear();
    for (const std::string& name : names) {
      const TCIMPropertyDecl* property = FindProperty(*selection.cls, name);
      if (property) selection.properties.push_back(property);
    }
  }
}

void KeepColumns(TSelection& selection, bool withMissing) {
  auto& properties = selection.properties;
  const auto drop = [&](const auto& isOut) {
    properties.erase(std::remove_if(properties.begin(), properties.end(), isOut), properties.end());
  };
  const auto isColumn = [](const TCIMPropertyDecl* property) { return ColumnOf(*property) != 0; };
  const bool hasColumns = std::any_of(properties.begin(), properties.end(), isColumn);
  if (hasColumns) drop([&](const TCIMPropertyDecl* property) { return !isColumn(property); });
  if (!hasColumns || !withMissing) {
    drop([&](const TCIMPropertyDecl* property) { return IsMissing(selection, *property); });
  }
  if (hasColumns) {
    SortBy(properties, ColumnOf);
  } else {
    SortBy(properties, [&](const TCIMPropertyDecl& property) {
      return std::make_pair(!TellsApart(selection, property),
                            !IsTrue(property.FindQualifier("KEY")));
    });
  }
}

}  // namespace zel
