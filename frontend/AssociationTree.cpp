// The tree is made first, as lines with their depth, and printed afterwards: which line is the last
// of its branch is known only then. Neither recurses, whatever the associations look like.

#include "frontend/AssociationTree.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <set>
#include <string>
#include <tuple>

#include "frontend/Inventory.h"
#include "frontend/Style.h"
#include "frontend/ValueMatch.h"
#include "frontend/ValueText.h"
#include "zelcore/zelcore.h"

namespace zel {
namespace {

using TInstances = std::vector<TCIMInstance*>;

// The dependencies in which the whole is the dependent: a system on its firmware, a logical thing
// on the physical one that it is made of. In all others the whole is the antecedent: a disk of a
// controller, an extent of a disk.
constexpr const char* kWholeIsDependent[] = {"CIM_RunningOS", "CIM_SystemBIOS",
                                             "CIM_SystemPackaging", "CIM_Realizes",
                                             "CIM_AssociatedMemory"};

// By which people know an instance; the first that is set.
constexpr const char* kNames[] = {"ElementName", "Name", "Model", "DeviceID", "Tag"};

std::string NameOf(const TCIMInstance& instance) {
  for (const char* name : kNames) {
    const std::string text = TextOf(instance, name);
    if (!text.empty()) return Printable(text);
  }
  const std::vector<std::string> keys = instance.GetClass()->EnumerateKeyNames();
  return keys.empty() ? "" : Printable(TextOf(instance, keys.front().c_str()));
}

// What an association instance connects.
struct TEnd {
  std::string role;  // in lower case
  TCIMInstance* instance;
};

std::vector<TEnd> EndsOf(const TCIMInstance& association) {
  std::vector<TEnd> ends;
  for (const TCIMProperty* property : association.EnumerateProperties()) {
    const TCIMValue value = property->GetValue();
    if (value.IsNull() || !value.IsReference()) continue;
    try {
      const TCIMReference path = value;
      auto* instance = dynamic_cast<TCIMInstance*>(path.GetCIMElement());
      if (instance) ends.push_back({LowerCase(property->GetName()), instance});
    } catch (const TZELException&) {
      // It leads to nothing that is there.
    }
  }
  return ends;
}

// What is part of what.
class TParts {
 public:
  explicit TParts(const TInventory& inventory) {
    for (const TCIMClass* cls : inventory.AllClasses()) fPlaces.emplace(cls, fPlaces.size());
    for (const char* name : kWholeIsDependent) {
      const TCIMClass* cls = inventory.GetContainer().FindClass(name);
      if (cls) fWholeIsDependent.push_back(cls);
    }
  }

  // Each once, in the order of the sections, their classes and the paths.
  const TInstances& Of(const TCIMInstance& whole) {
    const auto [found, isNew] = fParts.try_emplace(&whole);
    if (isNew) found->second = Sorted(Find(whole));
    return found->second;
  }

  // The same with those at the end that are parts of others of them, too.
  TInstances WithInnerLast(const TCIMInstance& whole) {
    TInstances parts = Of(whole);
    const std::set<const TCIMInstance*> own(parts.begin(), parts.end());
    std::set<const TCIMInstance*> inner;
    for (const TCIMInstance* part : parts) {
      for (const TCIMInstance* below : Of(*part)) {
        if (below != part && own.count(below) != 0) inner.insert(below);
      }
    }
    std::stable_partition(parts.begin(), parts.end(),
                          [&](const TCIMInstance* part) { return inner.count(part) == 0; });
    return parts;
  }

 private:
  TInstances Find(const TCIMInstance& whole) const {
    TInstances parts;
    std::set<const TCIMInstance*> known;
    for (const TCIMInstance* association : whole.References("", "")) {
      const std::vector<TEnd> ends = EndsOf(*association);
      for (const TEnd& own : ends) {
        if (own.instance != &whole || !IsWhole(*association->GetClass(), own.role)) continue;
        for (const TEnd& end : ends) {
          if (&end == &own || !known.insert(end.instance).second) continue;
          parts.push_back(end.instance);
        }
      }
    }
    return parts;
  }

  // Whether the instance in this role has the others as its parts.
  bool IsWhole(const TCIMClass& association, const std::string& role) const {
    if (role == "partcomponent" || role == "member") return false;
    const bool isAntecedent = role == "antecedent";
    if (!isAntecedent && role != "dependent") return true;
    const bool isDependentWhole =
        std::any_of(fWholeIsDependent.begin(), fWholeIsDependent.end(),
                    [&](const TCIMClass* cls) { return association.IsSubclassOf(cls); });
    return isAntecedent != isDependentWhole;
  }

  TInstances Sorted(const TInstances& parts) const {
    std::vector<std::tuple<std::size_t, std::string, TCIMInstance*>> places;
    for (TCIMInstance* part : parts) {
      const auto place = fPlaces.find(part->GetClass());
      places.emplace_back(place == fPlaces.end() ? fPlaces.size() : place->second,
                          part->BuildPath().GetPath(), part);
    }
    std::stable_sort(places.begin(), places.end(), [](const auto& a, const auto& b) {
      return std::tie(std::get<0>(a), std::get<1>(a)) < std::tie(std::get<0>(b), std::get<1>(b));
    });
    TInstances sorted;
    for (const auto& place : places) sorted.push_back(std::get<2>(place));
    return sorted;
  }

  std::map<const TCIMClass*, std::size_t> fPlaces;
  std::vector<const TCIMClass*> fWholeIsDependent;
  std::map<const TCIMInstance*, TInstances> fParts;  // as far as they were asked for
};

struct TLine {
  const TCIMInstance* instance;
  std::size_t depth;
  bool isRepeated;      // it stands above with what is below it
  std::size_t hidden;   // how many parts are too deep to be shown
  bool isLast = false;  // of its branch
};

class TLines {
 public:
  TLines(const TInventory& inventory, std::size_t depth) : fParts(inventory), fDepth(depth) {}

  const std::vector<TLine>& Make(const TInstances& roots) {
    for (TCIMInstance* root : roots) {
      Add(*root);
      while (!fOpen.empty()) Step();
    }
    MarkLast();
    return fLines;
  }

 private:
  // An instance whose parts are being added.
  struct TLevel {
    const TCIMInstance* whole;
    TInstances parts;
    std::size_t next;
  };

  void Step() {
    TLevel& level = fOpen.back();
    if (level.next == level.parts.size()) {
      fOpen.pop_back();
      return;
    }
    const TCIMInstance& part = *level.parts[level.next++];
    const bool isParent = fOpen.size() > 1 && fOpen[fOpen.size() - 2].whole == &part;
    if (!isParent && !IsBelow(part, *level.whole)) Add(part);
  }

  // The parts of `whole` are being added: whatever has come after it is below it.
  bool IsBelow(const TCIMInstance& part, const TCIMInstance& whole) const {
    const auto found = fFirst.find(&part);
    return found != fFirst.end() && found->second > fFirst.at(&whole);
  }

  void Add(const TCIMInstance& instance) {
    const std::size_t depth = fOpen.size();
    const bool isRepeated = !fFirst.emplace(&instance, fLines.size()).second;
    const bool isTooDeep = !isRepeated && depth == fDepth;
    fLines.push_back({&instance, depth, isRepeated, isTooDeep ? fParts.Of(instance).size() : 0});
    if (!isRepeated && !isTooDeep) fOpen.push_back({&instance, fParts.WithInnerLast(instance), 0});
  }

  void MarkLast() {
    std::vector<bool> continues;  // by depth: whether the branch has a line further down
    for (auto line = fLines.rbegin(); line != fLines.rend(); ++line) {
      continues.resize(line->depth + 1, false);
      line->isLast = !continues[line->depth];
      continues[line->depth] = true;
    }
  }

  TParts fParts;
  const std::size_t fDepth;
  std::vector<TLine> fLines;
  std::map<const TCIMInstance*, std::size_t> fFirst;  // the line on which each one stands first
  std::vector<TLevel> fOpen;                          // from the root to where we are
};

struct TBranches {
  const char* part;
  const char* lastPart;
  const char* below;
  const char* belowLast;
};

constexpr TBranches kAscii = {"|-- ", "`-- ", "|   ", "    "};
constexpr TBranches kUtf8 = {"├── ", "└── ", "│   ", "    "};

}  // namespace

void PrintTree(const TInventory& inventory, const std::vector<TCIMInstance*>& roots,
               const TTreeOptions& options, const TTerminal& terminal, std::ostream& out) {
  const TBranches& branches = options.isUtf8 ? kUtf8 : kAscii;
  std::vector<std::string> prefixes = {""};  // by depth
  TLines lines(inventory, options.depth);
  for (const TLine& line : lines.Make(roots)) {
    prefixes.resize(line.depth + 1);
    out << prefixes.back();
    if (line.depth > 0) out << (line.isLast ? branches.lastPart : branches.part);
    out << NameOf(*line.instance) << "  "
        << Styled(TLook::kKey, line.instance->GetClass()->GetName(), terminal);
    if (line.isRepeated) out << " (see above)";
    if (line.hidden > 0) out << fmt::format(" (+{})", line.hidden);
    out << "\n";
    const char* below = line.isLast ? branches.belowLast : branches.below;
    prefixes.push_back(line.depth == 0 ? "" : prefixes.back() + below);
  }
}

}  // namespace zel
