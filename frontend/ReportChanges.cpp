#include "frontend/Columns.h"
#include "frontend/Comparison.h"
#include "frontend/Inventory.h"
#include "frontend/ReportParts.h"
#include "frontend/Titles.h"
#include "frontend/ValueText.h"
#include "zelcore/zelcore.h"

namespace zel {
namespace {

class TChangesWriter {
 public:
  TChangesWriter(const TAnchors& anchors, std::ostream& out) : fAnchors(anchors), fOut(out) {}

  void WriteClass(const TClassDifferences& differences, const TCIMClass& cls) {
    fOut << Markup(
        "<div class=\"class\">\n<div class=\"scroll\" role=\"group\" aria-label=\"Changes: {0}\" "
        "tabindex=\"0\">\n<table class=\"changes\">\n"
        "<caption><h3>{0} <code>{1}</code></h3></caption>\n"
        "<thead><tr><th scope=\"col\">Change</th><th scope=\"col\">Instance</th>"
        "<th scope=\"col\">Property</th><th scope=\"col\">Before</th><th scope=\"col\">After</th>"
        "</tr></thead>\n",
        TitleOf(cls), differences.className);
    fColumns = ColumnsOf(cls);
    for (const TChangedInstance& changed : differences.changed) WriteChanged(changed);
    for (const TCIMInstance* instance : differences.added) {
      WriteWhole("added", fAnchors.LinkTo(*instance), *instance);
    }
    for (const TCIMInstance* instance : differences.removed) {
      WriteWhole("removed", Markup("{}", TitleOf(instance->BuildPath())), *instance);
    }
    fOut << "</table>\n</div>\n</div>\n";
  }

 private:
  void OpenGroup(const char* change, const TMarkup& name, std::size_t rows) {
    fOut << Markup(
        "<tbody class=\"{0}\"><tr><td rowspan=\"{1}\"><span class=\"change\">{0}</span></td>"
        "<th scope=\"rowgroup\" rowspan=\"{1}\">{2}</th>",
        change, rows, name);
  }

  void WriteChanged(const TChangedInstance& changed) {
    OpenGroup("changed", fAnchors.LinkTo(*changed.after), changed.properties.size());
    const char* row = "";
    for (const TChangedProperty& property : changed.properties) {
      const TChangeTexts texts = TextsOf(property);
      fOut << row
           << Markup("<td>{}</td><td><del>{}</del></td><td><ins>{}</ins></td></tr>\n",
                     LabelOf(*property.after->GetDeclaration()), texts.before, texts.after);
      row = "<tr>";
    }
    fOut << "</tbody>\n";
  }

  // An instance that one of the two does not have, in a few words.
  void WriteWhole(const char* change, const TMarkup& name, const TCIMInstance& instance) {
    OpenGroup(change, name, 1);
    std::string facts;
    for (const TCIMPropertyDecl* decl : fColumns.shown) {
      const TCIMProperty* property = instance.FindProperty(decl->GetName());
      if (!property || property->GetValue().IsNull()) continue;
      facts += fmt::format("{}{} {}", facts.empty() ? "" : ", ", LabelOf(*decl),
                           PropertyText(*property));
    }
    fOut << Markup("<td colspan=\"3\">{}</td></tr></tbody>\n", facts);
  }

  const TAnchors& fAnchors;
  std::ostream& fOut;
  TColumns fColumns;  // of the class that is being written
};

const TCIMClass& ClassOf(const TClassDifferences& differences) {
  const TCIMInstance* one = !differences.changed.empty() ? differences.changed.front().after
                            : !differences.added.empty() ? differences.added.front()
                                                         : differences.removed.front();
  return *one->GetClass();
}

}  // namespace

void WriteChanges(const TInventory& before, const TComparison& comparison, const TAnchors& anchors,
                  std::ostream& out) {
  OpenSection(kChangesAnchor, "Changes", out);
  if (comparison.HasDifferences()) {
    out << Markup("<p class=\"lead-in\">{} added, {} removed, {} changed",
                  Counted(comparison.CountAdded(), "instance"), comparison.CountRemoved(),
                  comparison.CountChanged());
  } else {
    out << "<p class=\"lead-in\">Nothing differs";
  }
  out << Markup(" since {}.</p>\n", NameOf(before));
  TChangesWriter writer(anchors, out);
  for (const TClassDifferences& differences : comparison.classes) {
    writer.WriteClass(differences, ClassOf(differences));
  }
  for (const TClassNotCompared& cls : comparison.notCompared) {
    out << Markup("<p class=\"empty\"><b>Not compared:</b> {}, {}</p>\n", cls.className,
                  Printable(cls.reason));
  }
  for (const std::string& note : comparison.notes) {
    out << Markup("<p class=\"empty\">{}</p>\n", Printable(note));
  }
  out << "</section>\n";
}

}  // namespace zel
