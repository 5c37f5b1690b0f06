#pragma once

#include <string>
#include <vector>

class TCIMInstance;
class TCIMProperty;

namespace zel {

class TInventory;

struct TComparisonOptions {
  bool withVolatile = false;       // also what changes from one moment to the next
  bool redactedAlike = false;      // what is hidden is hidden in both with one key
  std::vector<std::string> names;  // only these classes and sections; empty: all
};

// A property whose value differs. `after` holds the old value as its previous one, unless the new
// schema has no place for it: another type, or a reference to a class that it does not know.
struct TChangedProperty {
  const TCIMProperty* before;  // of the old inventory
  const TCIMProperty* after;   // of the new one
};

struct TChangedInstance {
  TCIMInstance* before;
  TCIMInstance* after;
  std::vector<TChangedProperty> properties;  // at least one, in the order of the lower-case names
};

// The differences of one class; there is at least one. Instances are in the order of their paths.
struct TClassDifferences {
  std::string section;
  std::string className;               // as the new inventory spells it
  std::vector<TCIMInstance*> added;    // of the new inventory
  std::vector<TCIMInstance*> removed;  // of the old inventory
  std::vector<TChangedInstance> changed;
};

struct TClassNotCompared {
  std::string className;
  std::string reason;
};

// What differs between two inventories. Points into both, which must outlive it.
struct TComparison {
  std::vector<TClassDifferences> classes;      // in the order of the new inventory's sections
  std::vector<TClassNotCompared> notCompared;  // that one of the two could have told about
  std::vector<std::string> notes;              // why some properties were not compared, or how

  bool HasDifferences() const { return !classes.empty(); }
  std::size_t CountAdded() const;
  std::size_t CountRemoved() const;
  std::size_t CountChanged() const;
};

// Compares `after` with what `before` was. Instances are matched by their object path, those that
// share one in their order; values are compared as such, those of different types as text.
//
// Makes the container of `after` a diff container that lists its changed and added instances, the
// changed ones with their previous values. Throws TCommandError (kExitUsage) for a name that
// neither of the two knows.
TComparison Compare(const TInventory& before, const TInventory& after,
                    const TComparisonOptions& options = {});

// The same after hiding what is sensitive in both, as Redact() does; with one key, so that it is
// compared all the same.
TComparison RedactAndCompare(TInventory& before, TInventory& after,
                             TComparisonOptions options = {});

// Old and new value as they are shown, the raw values where that would not tell them apart.
struct TChangeTexts {
  std::string before;
  std::string after;
};
TChangeTexts TextsOf(const TChangedProperty& property);

}  // namespace zel
