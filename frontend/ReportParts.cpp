#include "frontend/ReportParts.h"

#include "frontend/Inventory.h"
#include "frontend/Titles.h"
#include "frontend/ValueText.h"
#include "zelcore/zelcore.h"

namespace zel {
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
