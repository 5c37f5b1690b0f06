#include "frontend/Titles.h"

#include <fmt/format.h>

#include <vector>

#include "frontend/Columns.h"
#include "frontend/Html.h"
#include "frontend/ValueMatch.h"
#include "frontend/ValueText.h"
#include "zelcore/zelcore.h"

namespace zel {
namespace {

std::string Joined(const std::vector<std::string>& texts, const char* separator) {
  return fmt::format("{}", fmt::join(texts, separator));
}

// A reference in a key is named by its own keys; what these refer to is not followed.
using TNameKey = std::string (*)(const TCIMReference&);

std::vector<std::string> TellingKeys(const TCIMReference& path, TNameKey name) {
  std::vector<std::string> telling;
  std::vector<std::string> all;
  for (const auto& [key, value] : path.EnumerateKeyBindings()) {
    const bool isNamed = name && !value.IsNull() && value.IsReference();
    all.push_back(isNamed ? name(value) : value.IsNull() ? "" : ValueText(value));
    if (!IsSurroundingKey(key)) telling.push_back(all.back());
  }
  return telling.empty() ? all : telling;
}

std::string TitleWith(const TCIMReference& path, TNameKey name) {
  const std::vector<std::string> keys = TellingKeys(path, name);
  if (path.GetClass()->IsAssociation()) return Joined(keys, ", ");
  const std::string title = TitleOf(*path.GetClass());
  const std::string own = Joined(keys, " ");
  if (own.empty()) return title;
  const bool saysWhat = LowerCase(own + " ").rfind(LowerCase(title + " "), 0) == 0;
  return saysWhat ? own : fmt::format("{} {}", title, own);
}

std::string PathWith(const TCIMReference& path, TNameKey name) {
  return fmt::format("{}.{}", path.GetClassName(), Joined(TellingKeys(path, name), "."));
}

}  // namespace

std::string TitleOf(const TCIMClass& cls) {
  const std::string display = TextOf(cls.FindQualifier("DISPLAYNAME"));
  if (!display.empty()) return Printable(display);
  return Words(cls.GetName().substr(cls.GetName().find('_') + 1));
}

std::string LabelOf(const TCIMPropertyDecl& decl) {
  const std::string display = TextOf(decl.FindQualifier("DISPLAYNAME"));
  return display.empty() ? Words(decl.GetName()) : Printable(display);
}

std::string TitleOf(const TCIMReference& path) {
  return TitleWith(path, [](const TCIMReference& key) { return TitleWith(key, nullptr); });
}

std::string TargetOf(const TCIMValue& value) {
  const bool isReference = !value.IsNull() && !value.IsArray() && value.IsReference();
  return isReference ? TitleOf(static_cast<TCIMReference>(value)) : "";
}

std::string ShortPath(const TCIMReference& path) {
  return PathWith(path, [](const TCIMReference& key) { return PathWith(key, nullptr); });
}

}  // namespace zel
