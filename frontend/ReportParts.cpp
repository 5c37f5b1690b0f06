#include "frontend/ReportParts.h"

#include "frontend/Columns.h"
#include "frontend/Inventory.h"
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
  return own == title ? title : fmt::format("{} {}", title, own);
}

std::string PathWith(const TCIMReference& path, TNameKey name) {
  return fmt::format("{}.{}", path.GetClassName(), Joined(TellingKeys(path, name), "."));
}

// "KVRSG_Processor.CPU0"
std::string ShortPath(const TCIMReference& path) {
  return PathWith(path, [](const TCIMReference& key) { return PathWith(key, nullptr); });
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

std::string NameOf(const TInventory& inventory) {
  const TCIMProperty* start =
      inventory.GetRun() ? inventory.GetRun()->FindProperty("StartTime") : nullptr;
  const std::string time = start ? MomentText(start->GetValue()) : "";
  return time.empty() ? inventory.GetTitle()
                      : fmt::format("{}, collected {}", inventory.GetTitle(), time);
}

std::string Counted(std::size_t count, const std::string& what) {
  return fmt::format("{} {}{}", count, what, count == 1 ? "" : "s");
}

void OpenSection(const std::string& anchor, const std::string& title, std::ostream& out) {
  out << Markup(
      "<section id=\"{0}\" aria-labelledby=\"title-of-{0}\">\n<h2 id=\"title-of-{0}\">{1}</h2>\n",
      anchor, title);
}

TAnchors::TAnchors(const TInventory& inventory) {
  std::unordered_map<std::string, std::size_t> uses;
  for (const TCIMClass* cls : inventory.AllClasses()) {
    for (const TCIMInstance* instance : cls->EnumerateInstances(false)) {
      std::string anchor = AnchorText(ShortPath(instance->BuildPath()));
      const std::size_t use = ++uses[anchor];
      if (use > 1) anchor += fmt::format("~~{}", use);  // as no text does
      fAnchors.emplace(instance, std::move(anchor));
    }
  }
}

TMarkup TAnchors::LinkTo(const TCIMInstance& instance) const {
  return Markup("<a href=\"#{}\">{}</a>", Of(instance), TitleOf(instance.BuildPath()));
}

TMarkup TAnchors::LinkTo(const TCIMReference& path) const {
  try {
    const auto* instance = dynamic_cast<const TCIMInstance*>(path.GetCIMElement());
    if (instance && fAnchors.count(instance) != 0) return LinkTo(*instance);
  } catch (const TZELException&) {
    // It is not there.
  }
  return Markup("{}", Printable(path.GetPath()));
}

TMarkup ValueMarkup(const TCIMProperty& property, const TAnchors& anchors) {
  const TCIMValue value = property.GetValue();
  const bool isOne = !value.IsNull() && !value.IsArray();
  if (isOne && value.IsReference()) return anchors.LinkTo(static_cast<TCIMReference>(value));
  const std::string moment = isOne ? MomentText(value) : "";
  return Markup("{}", moment.empty() ? PropertyText(property) : moment);
}

}  // namespace zel
