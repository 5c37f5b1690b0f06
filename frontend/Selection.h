#pragma once

#include <string>
#include <vector>

class TCIMClass;
class TCIMInstance;
class TCIMPropertyDecl;

namespace zel {

class TInventory;

// What a command shows of one class.
struct TSelection {
  const TCIMClass* cls;
  bool wasCollected;                                // whether it could have instances
  std::vector<const TCIMInstance*> instances;       // in the order of their paths
  std::vector<const TCIMPropertyDecl*> properties;  // of which each instance has one
};

// Every instance and, by name, every property.
std::vector<TSelection> SelectAll(const TInventory& inventory,
                                  const std::vector<TCIMClass*>& classes);

// A property, and what it must be.
struct TCondition {
  std::string property;
  std::string value;
};

// Reads PROPERTY=VALUE. Throws TCommandError (kExitUsage).
TCondition ParseCondition(const std::string& text);

// Keeps the instances that fulfil all conditions: whose property reads like the value, raw or as
// text for people, in any case, or has an element that does. An empty value stands for NULL, too.
// Throws TCommandError (kExitUsage) when no class has the property.
void KeepInstances(std::vector<TSelection>& selections, const std::vector<TCondition>& conditions);

// Keeps the named properties in the order of the names. Throws TCommandError (kExitUsage) for one
// that no class has.
void KeepProperties(std::vector<TSelection>& selections, const std::vector<std::string>& names);

// Keeps the properties that people look for first: those with the COLUMN qualifier in its order. In
// a class without, all, first those that tell the instances apart, keys before others; and of them
// only those that are not NULL everywhere. Of the former, too, unless `withMissing`.
void KeepColumns(TSelection& selection, bool withMissing);

}  // namespace zel
