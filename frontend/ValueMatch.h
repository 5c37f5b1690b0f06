#pragma once

#include <set>
#include <string>
#include <utility>

class TCIMInstance;
class TCIMValue;
class TContainer;

namespace zel {

class TInventory;

// CIM names are compared without regard to case.
std::string LowerCase(const std::string& name);

// The properties of which one of two inventories does not tell the value, because it is redacted:
// those with the SENSITIVE qualifier, and whatever else holds a redacted value in some instance.
class TRedactedProperties {
 public:
  // None.
  TRedactedProperties() = default;
  // None, unless one of the two is redacted.
  TRedactedProperties(const TInventory& before, const TInventory& after);

  bool IsEmpty() const { return fNames.empty(); }
  // Names in lower case.
  bool Contains(const std::string& cls, const std::string& property) const;

 private:
  void AddSensitive(const TInventory& inventory);
  void AddRedacted(const TInventory& inventory);
  void AddRedacted(const std::string& cls, const std::string& property, const TCIMValue& value);

  std::set<std::pair<std::string, std::string>> fNames;  // class and property
};

// A text that is the same for values that mean the same, whatever container they are of, and for no
// others: what an object path says, without regard to the case of names, and without what is
// redacted.
std::string MatchText(const TCIMValue& value, const TRedactedProperties& redacted);
// The same of an instance's own path, without its class.
std::string MatchText(const TCIMInstance& instance, const TRedactedProperties& redacted);

// Whether the two values, of two containers, are the same; those of different types are when they
// read the same.
bool IsSame(const TCIMValue& a, const TCIMValue& b, const TRedactedProperties& redacted);

// `value`, of another container, as a value of `container`: references lead to its own classes.
// Throws TZELException when it lacks a class or key.
TCIMValue ValueIn(TContainer& container, const TCIMValue& value);

}  // namespace zel
