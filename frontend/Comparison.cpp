#include "frontend/Comparison.h"

#include <fmt/format.h>

#include <algorithm>
#include <nlohmann/json.hpp>
#include <set>
#include <unordered_map>

#include "frontend/ExitCode.h"
#include "frontend/Inventory.h"
#include "frontend/Redaction.h"
#include "frontend/ValueMatch.h"
#include "frontend/ValueText.h"
#include "zelcore/zelcore.h"

namespace zel {
namespace {

// When a collection was taken tells nothing of the machine, whatever the schema says.
constexpr char kTimeOfCollection[] = "datetimeofcollection";

template <class TElement>
bool IsVolatile(const TElement& element) {
  return IsTrue(element.FindQualifier("VOLATILE"));
}

std::set<std::string> LowerCased(const std::vector<std::string>& names) {
  std::set<std::string> lower;
  for (const std::string& name : names) lower.insert(LowerCase(name));
  return lower;
}

// Lower-case names of the classes that `names` stand for in either of the two.
std::set<std::string> ChosenClasses(const TInventory& before, const TInventory& after,
                                    const std::vector<std::string>& names) {
  std::set<std::string> chosen;
  const auto add = [&](const TInventory& inventory, const std::string& name) {
    for (const TCIMClass* cls : inventory.Resolve({name})) chosen.insert(LowerCase(cls->GetName()));
  };
  for (const std::string& name : names) {
    try {
      add(before, name);
    } catch (const TCommandError&) {
      add(after, name);  // who throws when it does not know the name either
      continue;
    }
    try {
      add(after, name);
    } catch (const TCommandError&) {
      // Only the old one knows the name.
    }
  }
  return chosen;
}

// Which properties of a class are compared.
struct TPlan {
  std::vector<std::string> compared;
  std::vector<std::string> onlyBefore;
  std::vector<std::string> onlyAfter;
  std::vector<std::string> hidden;   // whose values are gone in both
  std::vector<std::string> retyped;  // "Size (uint32 and uint64)"
};

std::string TypeText(const TCIMPropertyDecl& property) {
  return property.GetType().ToString() + (property.IsArray() ? "[]" : "");
}

std::string Joined(const std::vector<std::string>& names) {
  return fmt::format("{}", fmt::join(names, ", "));
}

class TComparer {
 public:
  TComparer(const TInventory& before, const TInventory& after, const TComparisonOptions& options)
      : fBefore(before),
        fAfter(after),
        fOptions(options),
        fChosen(ChosenClasses(before, after, options.names)),
        fRedacted(options.redactedAlike ? TRedactedProperties()
                                        : TRedactedProperties(before, after)) {}

  TComparison Run() {
    NoteVersions();
    NoteRedaction();
    for (const TSection& section : fAfter.GetSections()) {
      for (TCIMClass* cls : section.classes) {
        const TCIMClass* old = fBefore.GetContainer().FindClass(cls->GetName());
        if (old && old->IsAbstract()) old = nullptr;
        if ((old && IsLeftOut(*old)) || IsLeftOut(*cls)) continue;
        if (MayCompare(old, cls)) CompareClass(section.name, *old, *cls);
      }
    }
    for (TCIMClass* old : fBefore.AllClasses()) {
      const TCIMClass* cls = fAfter.GetContainer().FindClass(old->GetName());
      if ((!cls || cls->IsAbstract()) && !IsLeftOut(*old)) MayCompare(old, nullptr);
    }
    MarkContainer();
    return std::move(fResult);
  }

 private:
  bool IsLeftOut(const TCIMClass& cls) const {
    if (!fOptions.names.empty() && fChosen.count(LowerCase(cls.GetName())) == 0) return true;
    return !fOptions.withVolatile && IsVolatile(cls);
  }

  void NoteVersions() {
    const auto versionOf = [](const TInventory& inventory) {
      return inventory.GetRun() ? TextOf(*inventory.GetRun(), "SchemaVersion") : "";
    };
    const std::string before = versionOf(fBefore);
    const std::string after = versionOf(fAfter);
    if (before.empty() || after.empty() || before == after) return;
    fResult.notes.push_back(fmt::format(
        "the schema versions differ: {} and {}; classes may have other properties", before, after));
  }

  void NoteRedaction() {
    if (fOptions.redactedAlike || (!fBefore.IsRedacted() && !fAfter.IsRedacted())) return;
    const std::string who =
        fBefore.IsRedacted() && fAfter.IsRedacted()
            ? "both are redacted, each in its own way"
            : (fBefore.IsRedacted() ? fBefore : fAfter).GetTitle() + " is redacted";
    fResult.notes.push_back(who + ": sensitive properties are not compared");
  }

  // Whether both have the class and know its instances; tells why not when one of them does. One
  // of the classes may be null.
  bool MayCompare(const TCIMClass* old, const TCIMClass* cls) {
    const std::string before = WhyUnknown(fBefore, old);
    const std::string after = WhyUnknown(fAfter, cls);
    if (old && cls && before.empty() && after.empty()) return HasSameKeys(*old, *cls);
    if (old && before.empty() && MayTell(fBefore, *old)) AddNotCompared(*old, after);
    if (cls && after.empty() && MayTell(fAfter, *cls)) AddNotCompared(*cls, before);
    return false;
  }

  // Why the inventory does not know the instances of `cls`; empty when it does.
  static std::string WhyUnknown(const TInventory& inventory, const TCIMClass* cls) {
    if (!cls) return inventory.GetTitle() + ": unknown class";
    if (inventory.WasCollected(*cls)) return "";
    const TCIMInstance* status = inventory.FindStatus(*cls);
    if (!status) return inventory.GetTitle() + ": not collected";
    return fmt::format("{}: plug-in {} failed: {}", inventory.GetTitle(),
                       TextOf(*status, "PluginName"), TextOf(*status, "Message"));
  }

  // A document that does not say what was collected declares many classes of which it has nothing.
  static bool MayTell(const TInventory& inventory, const TCIMClass& cls) {
    return !inventory.GetStatuses().empty() || !cls.EnumerateInstances(false).empty();
  }

  bool HasSameKeys(const TCIMClass& old, const TCIMClass& cls) {
    const std::vector<std::string> before = old.EnumerateKeyNames();
    const std::vector<std::string> after = cls.EnumerateKeyNames();
    if (LowerCased(before) == LowerCased(after)) return true;
    AddNotCompared(cls, fmt::format("its keys differ: {} and {}", Joined(before), Joined(after)));
    return false;
  }

  void AddNotCompared(const TCIMClass& cls, const std::string& reason) {
    fResult.notCompared.push_back({cls.GetName(), reason});
  }

  void CompareClass(const std::string& section, const TCIMClass& old, const TCIMClass& cls) {
    const TPlan plan = PlanFor(old, cls);
    NotePlan(cls, plan);
    TClassDifferences found{section, cls.GetName(), {}, {}, {}};

    const std::vector<TCIMInstance*> before = old.EnumerateInstances(false);
    // Of each path, the instances from the last to the first.
    std::unordered_map<std::string, std::vector<TCIMInstance*>> unmatched;
    unmatched.reserve(before.size());
    for (auto it = before.rbegin(); it != before.rend(); ++it) {
      unmatched[MatchText(**it, fRedacted)].push_back(*it);
    }
    std::set<const TCIMInstance*> gone(before.begin(), before.end());
    for (TCIMInstance* instance : cls.EnumerateInstances(false)) {
      const auto match = unmatched.find(MatchText(*instance, fRedacted));
      if (match == unmatched.end() || match->second.empty()) {
        found.added.push_back(instance);
        continue;
      }
      CompareInstance(plan, *match->second.back(), *instance, found.changed);
      gone.erase(match->second.back());
      match->second.pop_back();
    }
    std::copy_if(before.begin(), before.end(), std::back_inserter(found.removed),
                 [&](const TCIMInstance* instance) { return gone.count(instance) != 0; });

    if (!found.added.empty() || !found.removed.empty() || !found.changed.empty()) {
      fResult.classes.push_back(std::move(found));
    }
  }

  TPlan PlanFor(const TCIMClass& old, const TCIMClass& cls) const {
    TPlan plan;
    const std::set<std::string> keys = LowerCased(cls.EnumerateKeyNames());
    for (const TCIMPropertyDecl* property : cls.EnumeratePropertyDecls()) {
      const std::string& name = property->GetName();
      if (IsLeftOut(cls, *property)) continue;
      const TCIMPropertyDecl* former = old.FindPropertyDecl(name);
      if (!former) {
        plan.onlyAfter.push_back(name);
      } else if (IsHidden(*property)) {
        plan.hidden.push_back(name);
      } else if (!IsLeftOut(old, *former)) {
        if (former->GetType() != property->GetType()) {
          plan.retyped.push_back(
              fmt::format("{} ({} and {})", name, TypeText(*former), TypeText(*property)));
        }
        if (keys.count(LowerCase(name)) == 0) plan.compared.push_back(name);
      }
    }
    for (const TCIMPropertyDecl* former : old.EnumeratePropertyDecls()) {
      if (!IsLeftOut(old, *former) && !cls.FindPropertyDecl(former->GetName())) {
        plan.onlyBefore.push_back(former->GetName());
      }
    }
    return plan;
  }

  bool IsLeftOut(const TCIMClass& cls, const TCIMPropertyDecl& property) const {
    const std::string name = LowerCase(property.GetName());
    if (fRedacted.Contains(LowerCase(cls.GetName()), name)) return true;
    return !fOptions.withVolatile && (name == kTimeOfCollection || IsVolatile(property));
  }

  // Texts are the same under one key; anything else is not there any more.
  bool IsHidden(const TCIMPropertyDecl& property) const {
    return fOptions.redactedAlike && IsTrue(property.FindQualifier("SENSITIVE")) &&
           (property.GetType() & ~TCIMValue::TCIMType::TypeArray) !=
               TCIMValue::TCIMType::TypeString;
  }

  void NotePlan(const TCIMClass& cls, const TPlan& plan) {
    const auto note = [&](const std::string& what, const std::vector<std::string>& names) {
      if (names.empty()) return;
      fResult.notes.push_back(fmt::format("{}: {}: {}", cls.GetName(), what, Joined(names)));
    };
    note("not compared, " + fAfter.GetTitle() + " does not have it", plan.onlyBefore);
    note("not compared, " + fBefore.GetTitle() + " does not have it", plan.onlyAfter);
    note("not compared, redacted", plan.hidden);
    note("compared as text, the types differ", plan.retyped);
  }

  void CompareInstance(const TPlan& plan, TCIMInstance& before, TCIMInstance& after,
                       std::vector<TChangedInstance>& changed) {
    std::vector<TChangedProperty> properties;
    for (const std::string& name : plan.compared) {
      const TCIMProperty* former = before.FindProperty(name);
      const TCIMProperty* property = after.FindProperty(name);
      if (!former || !property) continue;
      const TCIMValue value = former->GetValue();
      if (IsSame(value, property->GetValue(), fRedacted)) continue;
      RecordPrevious(after, *property, value);
      properties.push_back({former, property});
    }
    if (!properties.empty()) changed.push_back({&before, &after, std::move(properties)});
  }

  void RecordPrevious(TCIMInstance& instance, const TCIMProperty& property,
                      const TCIMValue& value) const {
    if (value.IsNull()) return instance.SetPrevPropertyValue(property.GetName());
    if (value.GetType() != property.GetType()) return;
    try {
      instance.SetPrevPropertyValue(property.GetName(), ValueIn(fAfter.GetContainer(), value));
    } catch (const TZELException&) {
      // A reference to what the new schema does not have; the old instance tells it.
    }
  }

  void MarkContainer() {
    std::vector<TCIMInstance*> differing;
    for (const TClassDifferences& cls : fResult.classes) {
      for (const TChangedInstance& instance : cls.changed) differing.push_back(instance.after);
      differing.insert(differing.end(), cls.added.begin(), cls.added.end());
    }
    fAfter.GetContainer().hackhack_TurnIntoADiffContainer();
    fAfter.GetContainer().setDiffInstances(std::move(differing));
  }

  const TInventory& fBefore;
  const TInventory& fAfter;
  const TComparisonOptions& fOptions;
  const std::set<std::string> fChosen;
  const TRedactedProperties fRedacted;
  TComparison fResult;
};

template <class TPart>
std::size_t Sum(const std::vector<TClassDifferences>& classes, TPart part) {
  std::size_t sum = 0;
  for (const TClassDifferences& cls : classes) sum += (cls.*part).size();
  return sum;
}

// Tells apart whatever differs: NULL and "", 1024 and 1025 bytes.
std::string RawText(const TCIMProperty& property) {
  return Printable(ValueJson(property.GetValue())
                       .dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace));
}

}  // namespace

std::size_t TComparison::CountAdded() const { return Sum(classes, &TClassDifferences::added); }

std::size_t TComparison::CountRemoved() const { return Sum(classes, &TClassDifferences::removed); }

std::size_t TComparison::CountChanged() const { return Sum(classes, &TClassDifferences::changed); }

TComparison Compare(const TInventory& before, const TInventory& after,
                    const TComparisonOptions& options) {
  return TComparer(before, after, options).Run();
}

TComparison RedactAndCompare(TInventory& before, TInventory& after, TComparisonOptions options) {
  options.redactedAlike = !before.IsRedacted() && !after.IsRedacted();
  Redact({&before, &after});
  return Compare(before, after, options);
}

TChangeTexts TextsOf(const TChangedProperty& property) {
  const bool isRecorded = property.after->IsPrevValueDifferent();
  TChangeTexts texts{
      isRecorded ? PrevPropertyText(*property.after) : PropertyText(*property.before),
      PropertyText(*property.after)};
  if (texts.before == texts.after) texts = {RawText(*property.before), RawText(*property.after)};
  return texts;
}

}  // namespace zel
