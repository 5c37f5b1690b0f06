#include "frontend/Schema.h"

#include <fmt/format.h>

#include <algorithm>

#include "frontend/ExitCode.h"
#include "frontend/ValueText.h"
#include "zelcore/zelcore.h"

namespace zel {
namespace {

constexpr char kBaseSection[] = "Base classes";
constexpr std::size_t kMaxHints = 3;

using TType = TCIMValue::TCIMType;

// Of a class or a property declaration; NULL when it has no such qualifier.
template <class TElement>
TCIMValue QualifierOf(const TElement& element, const char* name) {
  const TCIMQualifier* const qualifier = element.FindQualifier(name);
  return qualifier ? qualifier->GetValue() : TCIMValue();
}

template <class TElement>
std::string QualifierText(const TElement& element, const char* name) {
  const TCIMValue value = QualifierOf(element, name);
  return value.IsNull() || value.IsArray() ? "" : value.ToString(10);
}

std::vector<std::string> QualifierList(const TCIMPropertyDecl& decl, const char* name) {
  const TCIMValue value = QualifierOf(decl, name);
  std::vector<std::string> list;
  if (value.IsNull() || !value.IsArray()) return list;
  const std::vector<TCIMValue>& elements = value;
  for (const TCIMValue& element : elements) {
    list.push_back(element.IsNull() ? "" : element.ToString(10));
  }
  return list;
}

// Without codes of their own, meanings are counted from 0.
std::vector<std::pair<std::string, std::string>> ValuesOf(const TCIMPropertyDecl& decl) {
  const std::vector<std::string> codes = QualifierList(decl, "VALUEMAP");
  const std::vector<std::string> meanings = QualifierList(decl, "VALUES");
  std::vector<std::pair<std::string, std::string>> values;
  for (std::size_t i = 0; i < std::max(codes.size(), meanings.size()); ++i) {
    const std::string code = codes.empty() ? std::to_string(i) : i < codes.size() ? codes[i] : "";
    values.emplace_back(code, i < meanings.size() ? meanings[i] : "");
  }
  return values;
}

TPropertySheet Describe(const TCIMPropertyDecl& decl, const TCIMClass& cls) {
  const TCIMValue value = decl.GetValue();
  TPropertySheet sheet;
  sheet.name = decl.GetName();
  sheet.type = value.GetType().ToString();
  sheet.isArray = value.IsArray();
  sheet.maxSize = value.IsArray() ? value.GetMaxArraySize() : 0;
  if (value.IsReference() && value.GetReferencedClass()) {
    sheet.referencedClass = value.GetReferencedClass()->GetName();
  }
  sheet.isKey = IsTrue(decl.FindQualifier("KEY"));
  sheet.displayName = QualifierText(decl, "DISPLAYNAME");
  sheet.description = QualifierText(decl, "DESCRIPTION");
  sheet.units = QualifierText(decl, "UNITS");
  sheet.values = ValuesOf(decl);
  sheet.sources = QualifierList(decl, "MAPPINGSTRINGS");
  sheet.isVolatile = IsTrue(decl.FindQualifier("VOLATILE"));
  sheet.isSensitive = IsTrue(decl.FindQualifier("SENSITIVE"));
  sheet.needsRoot = IsTrue(decl.FindQualifier("NEEDSROOT"));
  const std::string origin = decl.GetClass()->GetName();
  if (origin != cls.GetName()) sheet.inheritedFrom = origin;
  return sheet;
}

std::vector<const TCIMClass*> AbstractClasses(const TContainer& container) {
  std::vector<const TCIMClass*> classes;
  for (const TCIMClass* cls : container.GetRootClass()->EnumerateSubClasses(true)) {
    if (cls->IsAbstract()) classes.push_back(cls);
  }
  std::sort(classes.begin(), classes.end(),
            [](const TCIMClass* a, const TCIMClass* b) { return a->GetName() < b->GetName(); });
  return classes;
}

// A plug-in is called as the directory that it is in.
std::string NameOf(const TFoundPlugin& plugin) {
  const std::string directory = plugin.display.substr(0, plugin.display.rfind('/'));
  return directory.substr(directory.rfind('/') + 1);
}

// How many letters must be put in, left out or exchanged to make one of the other.
std::size_t Distance(const std::string& a, const std::string& b) {
  std::vector<std::size_t> row(b.size() + 1);
  for (std::size_t j = 0; j <= b.size(); ++j) row[j] = j;
  for (std::size_t i = 1; i <= a.size(); ++i) {
    std::size_t diagonal = row[0];
    row[0] = i;
    for (std::size_t j = 1; j <= b.size(); ++j) {
      const std::size_t exchanged = diagonal + (a[i - 1] == b[j - 1] ? 0 : 1);
      diagonal = row[j];
      row[j] = std::min({row[j] + 1, row[j - 1] + 1, exchanged});
    }
  }
  return row[b.size()];
}

// 0 for the best; names that are not alike have none.
bool IsAlike(const std::string& name, const std::string& wanted, std::size_t& distance) {
  const std::string a = Folded(name);
  const std::string b = Folded(wanted);
  if (b.size() < 3 || b.size() > 3 * a.size()) return false;
  distance = a.find(b) != std::string::npos ? 1 : Distance(a, b);
  return distance <= std::max<std::size_t>(2, b.size() / 4);
}

}  // namespace

TSchema::TSchema(const TInventory& inventory) {
  if (const TCollection* collection = inventory.GetCollection()) {
    for (const TFoundPlugin& plugin : collection->GetPlugins()) {
      for (const TCIMClass* cls : plugin.classes) fPlugins[cls] = NameOf(plugin);
    }
  }
  for (const TSection& section : inventory.GetSections()) {
    fSections.push_back({section.name, {}});
    for (const TCIMClass* cls : section.classes) {
      fSections.back().classes.push_back(Describe(*cls, section.name));
    }
  }
  const std::vector<const TCIMClass*> bases = AbstractClasses(inventory.GetContainer());
  if (bases.empty()) return;
  fSections.push_back({kBaseSection, {}});
  for (const TCIMClass* cls : bases) {
    fSections.back().classes.push_back(Describe(*cls, kBaseSection));
  }
}

TClassSheet TSchema::Describe(const TCIMClass& cls, const std::string& section) const {
  TClassSheet sheet;
  sheet.name = cls.GetName();
  for (const TCIMClass* super = cls.GetSuperClass(); !super->IsRootClass();
       super = super->GetSuperClass()) {
    sheet.superclasses.push_back(super->GetName());
  }
  for (const TCIMClass* sub : cls.EnumerateSubClasses(false)) {
    sheet.subclasses.push_back(sub->GetName());
  }
  std::sort(sheet.subclasses.begin(), sheet.subclasses.end());
  sheet.section = section;
  const auto plugin = fPlugins.find(&cls);
  sheet.plugin = plugin == fPlugins.end() ? QualifierText(cls, "PLUGINNAME") : plugin->second;
  sheet.isAbstract = cls.IsAbstract();
  sheet.isAssociation = cls.IsAssociation();
  const TCIMQualifier* const description = cls.FindQualifier("DESCRIPTION");
  const bool isOwn = description && !description->GetPropagated();  // not what was handed down
  if (isOwn) sheet.description = QualifierText(cls, "DESCRIPTION");
  sheet.keys = cls.EnumerateKeyNames();
  for (const TCIMPropertyDecl* decl : cls.EnumeratePropertyDecls()) {
    sheet.properties.push_back(zel::Describe(*decl, cls));
  }
  return sheet;
}

std::vector<TSchemaSection> TSchema::Select(const std::vector<std::string>& names) const {
  std::vector<bool> isUsed(names.size());
  std::vector<TSchemaSection> selected;
  for (const TSchemaSection& section : fSections) {
    TSchemaSection part{section.name, {}};
    for (const TClassSheet& cls : section.classes) {
      bool isWanted = false;
      for (std::size_t i = 0; i < names.size(); ++i) {
        const std::string name = Folded(names[i]);
        if (name != Folded(cls.name) && name != Folded(section.name)) continue;
        isWanted = isUsed[i] = true;
      }
      if (isWanted) part.classes.push_back(cls);
    }
    if (!part.classes.empty()) selected.push_back(std::move(part));
  }
  for (std::size_t i = 0; i < names.size(); ++i) {
    if (!isUsed[i]) RefuseName(names[i]);
  }
  return selected;
}

void TSchema::RefuseName(const std::string& name) const {
  std::vector<std::pair<std::size_t, std::string>> alike;
  const auto consider = [&](const std::string& candidate) {
    std::size_t distance = 0;
    if (IsAlike(candidate, name, distance)) alike.emplace_back(distance, candidate);
  };
  for (const TSchemaSection& section : fSections) {
    consider(section.name);
    for (const TClassSheet& cls : section.classes) consider(cls.name);
  }
  std::sort(alike.begin(), alike.end());
  std::string hints;
  for (std::size_t i = 0; i < std::min(alike.size(), kMaxHints); ++i) {
    hints += (i == 0 ? "; did you mean " : ", ") + alike[i].second;
  }
  if (!hints.empty()) hints += "?";
  throw TCommandError(kExitUsage,
                      Printable(fmt::format("no class or section '{}'{}{} 'zel schema' lists them",
                                            name, hints, hints.empty() ? ";" : "")));
}

std::string FirstSentence(const std::string& text) {
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '\n') return text.substr(0, i);
    const bool endsHere = i + 1 == text.size() || text[i + 1] == ' ' || text[i + 1] == '\n';
    if (text[i] == '.' && endsHere) return text.substr(0, i + 1);
  }
  return text;
}

}  // namespace zel
