#include <algorithm>
#include <map>

#include "frontend/Columns.h"
#include "frontend/Inventory.h"
#include "frontend/ReportParts.h"
#include "frontend/Titles.h"
#include "frontend/ValueText.h"
#include "zelcore/zelcore.h"

namespace zel {
namespace {

using TInstances = std::vector<TCIMInstance*>;

// A number that people compare as one; codes with a value map are words.
bool IsNumber(const TCIMPropertyDecl& decl) {
  const TCIMValue::TCIMType type = decl.GetType();
  return TCIMValue::TCIMType::TypeUint8 <= type && type <= TCIMValue::TCIMType::TypeReal64 &&
         !decl.FindQualifier("VALUES");
}

// What the property is called, and more about it for who asks.
TMarkup Heading(const char* element, const TCIMPropertyDecl& decl) {
  const std::string description = TextOf(decl.FindQualifier("DESCRIPTION"));
  return Markup("<{} title=\"{}{}{}\">{}", TMarkup{element}, decl.GetName(),
                description.empty() ? "" : ": ", Printable(description), LabelOf(decl));
}

std::string Capitalized(std::string text) {
  if (!text.empty() && 'a' <= text[0] && text[0] <= 'z') text[0] = static_cast<char>(text[0] - 32);
  return text;
}

// Why there is nothing of these classes.
void WriteEmpty(const std::vector<TCIMClass*>& classes, const std::string& section,
                const TInventory& inventory, std::ostream& out) {
  std::map<bool, std::string> names;
  for (const TCIMClass* cls : classes) {
    std::string& list = names[inventory.WasCollected(*cls)];
    list += (list.empty() ? "" : ", ") + TitleOf(*cls);
  }
  for (const auto& [wasCollected, list] : names) {
    const std::string what = section + (wasCollected ? "none found" : "not collected");
    out << Markup("<p class=\"empty\"><b>{}:</b> {}</p>\n", Printable(Capitalized(what)),
                  Printable(list));
  }
}

class TSectionWriter {
 public:
  TSectionWriter(const TInventory& inventory, const TAnchors& anchors, std::ostream& out)
      : fInventory(inventory), fAnchors(anchors), fOut(out) {}

  void Write(const TSection& section) {
    OpenSection(AnchorOf(section), Printable(section.name), fOut);
    std::vector<const TCIMClass*> links;
    std::vector<TCIMClass*> empty;
    bool hasOthers = false;
    for (TCIMClass* cls : section.classes) {
      if (cls->EnumerateInstances(false).empty()) {
        empty.push_back(cls);
      } else if (cls->IsAssociation()) {
        links.push_back(cls);
      } else {
        hasOthers = true;
        WriteClass(*cls);
      }
    }
    WriteLinks(links, hasOthers);
    WriteEmpty(empty, "", fInventory, fOut);
    fOut << "</section>\n";
  }

 private:
  void WriteClass(const TCIMClass& cls) {
    const TInstances instances = cls.EnumerateInstances(false);
    const TColumns columns = ColumnsOf(cls);
    fOut << Markup("<div class=\"class\" id=\"class-{}\">\n", cls.GetName());
    if (instances.size() == 1) {
      WriteFacts(*instances.front(), columns);
    } else {
      WriteTable(cls, instances, columns);
    }
    fOut << "</div>\n";
  }

  static TMarkup ClassHeading(const TCIMClass& cls) {
    return Markup("<h3>{} <code>{}</code></h3>", TitleOf(cls), cls.GetName());
  }

  void WriteLinks(const std::vector<const TCIMClass*>& links, bool isFolded) {
    if (links.empty()) return;
    std::size_t count = 0;
    for (const TCIMClass* cls : links) count += cls->EnumerateInstances(false).size();
    if (isFolded) {
      fOut << Markup("<details class=\"links\">\n<summary>{}</summary>\n", Counted(count, "link"));
    }
    for (const TCIMClass* cls : links) WriteClass(*cls);
    if (isFolded) fOut << "</details>\n";
  }

  void WriteFacts(const TCIMInstance& instance, const TColumns& columns) {
    fOut << ClassHeading(*instance.GetClass())
         << Markup("\n<div class=\"facts\" id=\"{}\">\n<dl>\n", fAnchors.Of(instance));
    for (const TCIMPropertyDecl* decl : columns.shown) {
      WriteFact(Heading("dt", *decl), instance, *decl);
    }
    fOut << "</dl>\n";
    WriteRest(instance, columns);
    fOut << "</div>\n";
  }

  void WriteFact(const TMarkup& heading, const TCIMInstance& instance,
                 const TCIMPropertyDecl& decl) {
    constexpr std::size_t kLong = 150;  // needs a line of its own
    const TMarkup value = Cell("dd", instance, decl);
    fOut << (value.html.size() > kLong ? "<div class=\"long\">" : "<div>") << heading << "</dt>"
         << value << "</div>\n";
  }

  void WriteTable(const TCIMClass& cls, const TInstances& instances, const TColumns& columns) {
    fOut << Markup(
        "<div class=\"scroll\" role=\"group\" aria-label=\"{}\" tabindex=\"0\">\n<table>\n"
        "<caption>{} <span class=\"count\">{}</span></caption>\n<thead><tr>",
        TitleOf(cls), ClassHeading(cls), instances.size());
    for (const TCIMPropertyDecl* decl : columns.shown) {
      fOut << Heading(IsNumber(*decl) ? "th scope=\"col\" class=\"number\"" : "th scope=\"col\"",
                      *decl)
           << "</th>";
    }
    fOut << (columns.rest.empty() ? "" : "<td></td>") << "</tr></thead>\n";
    for (const TCIMInstance* instance : instances) WriteRow(*instance, columns);
    fOut << "</table>\n</div>\n";
  }

  // A group of rows: the instance, and below it what has no column.
  void WriteRow(const TCIMInstance& instance, const TColumns& columns) {
    fOut << Markup("<tbody id=\"{}\"><tr>", fAnchors.Of(instance));
    const char* element = "th scope=\"row\"";
    for (const TCIMPropertyDecl* decl : columns.shown) {
      fOut << Cell(element, instance, *decl);
      element = "td";
    }
    if (!columns.rest.empty()) {
      fOut << fmt::format("<td></td></tr>\n<tr class=\"rest\"><td colspan=\"{}\">",
                          columns.shown.size() + 1);
      WriteRest(instance, columns);
      fOut << "</td>";
    }
    fOut << "</tr></tbody>\n";
  }

  TMarkup Cell(const std::string& element, const TCIMInstance& instance,
               const TCIMPropertyDecl& decl) const {
    const TCIMProperty& property = *instance.GetProperty(decl.GetName());
    const TCIMValue value = property.GetValue();
    const TMarkup shown = ValueMarkup(property, fAnchors);
    TMarkup attributes;
    if (value.IsNull()) {
      attributes = {" class=\"missing\""};
    } else if (IsNumber(decl) && element != "dd") {
      attributes = Markup(" class=\"number\" data-value=\"{}\"", value.ToString(10));
    }
    return Markup("<{}{}>{}</{}>", TMarkup{element}, attributes, shown,
                  TMarkup{element.substr(0, 2)});
  }

  // What has no column, and the names of what is missing by the reason why it is.
  void WriteRest(const TCIMInstance& instance, const TColumns& columns) {
    if (columns.rest.empty()) return;
    std::map<std::string, std::string> missing;
    fOut << Markup("<details><summary>More<span class=\"unseen\"> of {}</span></summary><dl>\n",
                   TitleOf(instance.BuildPath()));
    for (const TCIMPropertyDecl* decl : columns.rest) {
      const TCIMProperty& property = *instance.GetProperty(decl->GetName());
      if (property.GetValue().IsNull()) {
        std::string& names = missing[MissingText(property)];
        names += (names.empty() ? "" : ", ") + LabelOf(*decl);
      } else {
        WriteFact(Markup("<dt>{}", LabelOf(*decl)), instance, *decl);
      }
    }
    for (const auto& [reason, names] : missing) {
      fOut << Markup("<div class=\"missing\"><dt>{}</dt><dd>{}</dd></div>\n", Capitalized(reason),
                     names);
    }
    fOut << "</dl></details>";
  }

  const TInventory& fInventory;
  const TAnchors& fAnchors;
  std::ostream& fOut;
};

}  // namespace

std::string AnchorOf(const TSection& section) { return "section-" + AnchorText(section.name); }

std::size_t CountOf(const TSection& section) {
  std::size_t count = 0;
  for (const TCIMClass* cls : section.classes) count += cls->EnumerateInstances(false).size();
  return count;
}

void WriteEmptySections(const TInventory& inventory, std::ostream& out) {
  OpenSection(kEmptyAnchor, kEmptyTitle, out);
  for (const TSection& section : inventory.GetSections()) {
    if (CountOf(section) == 0) WriteEmpty(section.classes, section.name + ", ", inventory, out);
  }
  out << "</section>\n";
}

void WriteSection(const TSection& section, const TInventory& inventory, const TAnchors& anchors,
                  std::ostream& out) {
  TSectionWriter(inventory, anchors, out).Write(section);
}

}  // namespace zel
