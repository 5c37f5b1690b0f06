#include "frontend/DiffListing.h"

#include <fmt/format.h>

#include <nlohmann/json.hpp>

#include "frontend/Comparison.h"
#include "frontend/Inventory.h"
#include "frontend/Style.h"
#include "frontend/ValueText.h"
#include "zelcore/zelcore.h"

namespace zel {
namespace {

using nlohmann::ordered_json;

std::string PathOf(const TCIMInstance& instance) { return instance.BuildPath().GetPath(); }

// "server.xml (2026-11-21 10:55:00)"; without the time when the document does not say.
std::string Named(const TInventory& inventory) {
  const TCIMProperty* start =
      inventory.GetRun() ? inventory.GetRun()->FindProperty("StartTime") : nullptr;
  const std::string time = start ? MomentText(start->GetValue()) : "";
  const std::string title = Printable(inventory.GetTitle());
  return time.empty() ? title : fmt::format("{} ({})", title, time);
}

// "1 class", "2 classes"
std::string Counted(std::size_t count, const char* one, const char* many) {
  return fmt::format("{} {}", count, count == 1 ? one : many);
}

class TTextListing {
 public:
  TTextListing(const TTerminal& terminal, std::ostream& out) : fTerminal(terminal), fOut(out) {}

  void Print(const TComparison& comparison) {
    for (const TClassDifferences& cls : comparison.classes) PrintClass(cls);
    if (!comparison.notCompared.empty()) Heading("Not compared");
    for (const TClassNotCompared& cls : comparison.notCompared) {
      fOut << fmt::format("  {}: {}\n", cls.className, Printable(cls.reason));
    }
    if (!comparison.notes.empty()) Heading("Notes");
    for (const std::string& note : comparison.notes) fOut << "  " << Printable(note) << "\n";
    if (fSection.empty()) return;
    fOut << "\n";
  }

 private:
  void Heading(const std::string& text) {
    fOut << "\n" << Styled(TLook::kHeading, Printable(text), fTerminal) << "\n";
    fSection = text;
  }

  void PrintClass(const TClassDifferences& cls) {
    if (fSection != cls.section) Heading(cls.section);
    fOut << "  " << cls.className << "\n";
    for (const TCIMInstance* instance : cls.added) Path(TLook::kAdded, '+', *instance);
    for (const TCIMInstance* instance : cls.removed) Path(TLook::kRemoved, '-', *instance);
    for (const TChangedInstance& instance : cls.changed) {
      Path(TLook::kChanged, '~', *instance.after);
      for (const TChangedProperty& property : instance.properties) {
        const TChangeTexts texts = TextsOf(property);
        fOut << fmt::format("        {}: {} -> {}\n", property.after->GetName(),
                            Styled(TLook::kRemoved, texts.before, fTerminal),
                            Styled(TLook::kAdded, texts.after, fTerminal));
      }
    }
  }

  void Path(TLook look, char sign, const TCIMInstance& instance) {
    const std::string line = fmt::format("{} {}", sign, Printable(PathOf(instance)));
    fOut << "    " << Styled(look, line, fTerminal) << "\n";
  }

  const TTerminal& fTerminal;
  std::ostream& fOut;
  std::string fSection;  // the last heading
};

std::string CountsText(const TComparison& comparison) {
  std::string text = comparison.HasDifferences()
                         ? fmt::format("{} added, {} removed, {} changed", comparison.CountAdded(),
                                       comparison.CountRemoved(), comparison.CountChanged())
                         : "no differences";
  if (!comparison.notCompared.empty()) {
    text += "; " + Counted(comparison.notCompared.size(), "class", "classes") + " not compared";
  }
  return text;
}

ordered_json SourceJson(const TInventory& inventory) {
  const TCIMInstance* run = inventory.GetRun();
  const TCIMProperty* start = run ? run->FindProperty("StartTime") : nullptr;
  return {
      {"title",    inventory.GetTitle()                                 },
      {"time",     start ? ValueJson(start->GetValue()) : ordered_json()},
      {"partial",  inventory.IsPartial()                                },
      {"redacted", inventory.IsRedacted()                               }
  };
}

ordered_json PathsJson(const std::vector<TCIMInstance*>& instances) {
  ordered_json paths = ordered_json::array();
  for (const TCIMInstance* instance : instances) paths.push_back(PathOf(*instance));
  return paths;
}

ordered_json ChangedJson(const TChangedInstance& instance) {
  ordered_json properties = ordered_json::object();
  for (const TChangedProperty& property : instance.properties) {
    const TChangeTexts texts = TextsOf(property);
    properties[property.after->GetName()] = {
        {"old",     ValueJson(property.before->GetValue())},
        {"new",     ValueJson(property.after->GetValue()) },
        {"oldText", texts.before                          },
        {"newText", texts.after                           }
    };
  }
  return {
      {"path",       PathOf(*instance.after)},
      {"properties", std::move(properties)  }
  };
}

ordered_json ClassJson(const TClassDifferences& cls) {
  ordered_json changed = ordered_json::array();
  for (const TChangedInstance& instance : cls.changed) changed.push_back(ChangedJson(instance));
  return {
      {"class",   cls.className         },
      {"section", cls.section           },
      {"added",   PathsJson(cls.added)  },
      {"removed", PathsJson(cls.removed)},
      {"changed", std::move(changed)    }
  };
}

}  // namespace

void PrintDiffText(const TInventory& before, const TInventory& after, const TComparison& comparison,
                   const TTerminal& terminal, std::ostream& out) {
  out << fmt::format("Changes from {} to {}\n", Named(before), Named(after));
  TTextListing(terminal, out).Print(comparison);
  out << CountsText(comparison) << "\n";
}

void PrintDiffJson(const TInventory& before, const TInventory& after, const TComparison& comparison,
                   std::ostream& out) {
  ordered_json document = {
      {"format",  "zel-diff"        },
      {"version", 1                 },
      {"zel",     ZEL_VERSION       },
      {"old",     SourceJson(before)},
      {"new",     SourceJson(after) }
  };
  document["different"] = comparison.HasDifferences();
  document["added"] = comparison.CountAdded();
  document["removed"] = comparison.CountRemoved();
  document["changed"] = comparison.CountChanged();
  document["classes"] = ordered_json::array();
  for (const TClassDifferences& cls : comparison.classes) {
    document["classes"].push_back(ClassJson(cls));
  }
  document["notCompared"] = ordered_json::array();
  for (const TClassNotCompared& cls : comparison.notCompared) {
    document["notCompared"].push_back({
        {"class",  cls.className},
        {"reason", cls.reason   }
    });
  }
  document["notes"] = comparison.notes;
  out << document.dump(2, ' ', false, ordered_json::error_handler_t::replace) << "\n";
}

}  // namespace zel
