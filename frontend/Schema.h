#pragma once

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "frontend/Inventory.h"

namespace zel {

// What there is to tell of a property; empty texts: nothing.
struct TPropertySheet {
  std::string name;
  std::string type;  // "reference" for those
  bool isArray = false;
  unsigned int maxSize = 0;     // of an array; 0: any
  std::string referencedClass;  // of a reference
  bool isKey = false;
  std::string displayName;
  std::string description;
  std::string units;
  std::vector<std::pair<std::string, std::string>> values;  // code and meaning
  std::vector<std::string> sources;
  bool isVolatile = false;
  bool isSensitive = false;
  bool needsRoot = false;
  std::string inheritedFrom;  // the class that declares it, if that is another
};

struct TClassSheet {
  std::string name;
  std::vector<std::string> superclasses;  // from the nearest up
  std::vector<std::string> subclasses;    // direct ones
  std::string section;
  std::string plugin;  // whose document declares it
  bool isAbstract = false;
  bool isAssociation = false;
  std::string description;
  std::vector<std::string> keys;
  std::vector<TPropertySheet> properties;  // in the order of their lower-case names
};

// A heading and the classes below it.
struct TSchemaSection {
  std::string name;
  std::vector<TClassSheet> classes;
};

// The classes of this installation or of a document, described.
class TSchema {
 public:
  explicit TSchema(const TInventory& inventory);

  // All classes: those that have instances in the sections of the summary, then those that others
  // are derived from.
  const std::vector<TSchemaSection>& GetSections() const { return fSections; }

  // The sections, with nothing in them but what `names` stand for, which are classes and sections.
  // Throws TCommandError (kExitUsage) that tells what is called alike.
  std::vector<TSchemaSection> Select(const std::vector<std::string>& names) const;

 private:
  TClassSheet Describe(const TCIMClass& cls, const std::string& section) const;
  [[noreturn]] void RefuseName(const std::string& name) const;

  std::map<const TCIMClass*, std::string> fPlugins;
  std::vector<TSchemaSection> fSections;
};

// The first sentence of a text.
std::string FirstSentence(const std::string& text);

}  // namespace zel
