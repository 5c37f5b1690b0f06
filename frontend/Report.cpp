#include "frontend/Report.h"

#include <time.h>

#include "frontend/Comparison.h"
#include "frontend/Inventory.h"
#include "frontend/ReportAssets.h"
#include "frontend/ReportParts.h"
#include "frontend/Summary.h"
#include "frontend/ValueText.h"
#include "zelcore/zelcore.h"

namespace zel {
namespace {

constexpr char kSummaryAnchor[] = "summary";

// A small picture for the tab, so that browsers do not ask for one.
constexpr char kIcon[] =
    "data:image/svg+xml,%3Csvg xmlns='http://www.w3.org/2000/svg' viewBox='0 0 16 16'%3E"
    "%3Crect width='16' height='16' rx='3' fill='%230f6b76'/%3E"
    "%3Cpath d='M4 5h8M4 8h8M4 11h5' stroke='white' stroke-width='1.5'/%3E%3C/svg%3E";

struct TChanges {
  const TInventory& before;
  const TComparison& comparison;
};

class TPage {
 public:
  TPage(const TInventory& inventory, const TChanges* changes, std::ostream& out)
      : fInventory(inventory),
        fChanges(changes),
        fAnchors(inventory),
        fOut(out),
        fFacts(FactsOf(inventory)) {
    const std::string& name = fFacts.front().facts.front().text;
    fName = name == kNotAvailable ? inventory.GetTitle() : name;
    for (const TSection& section : inventory.GetSections()) {
      if (CountOf(section) != 0) fSections.push_back(&section);
    }
    fHasEmpty = fSections.size() != inventory.GetSections().size();
  }

  void Write() {
    WriteHead();
    WriteHeader();
    WriteSide();
    fOut << "<main id=\"content\" tabindex=\"-1\">\n";
    WriteNotices();
    if (fChanges) WriteChanges(fChanges->before, fChanges->comparison, fAnchors, fOut);
    WriteSummary();
    for (const TSection* section : fSections) {
      WriteSection(*section, fInventory, fAnchors, fOut);
    }
    if (fHasEmpty) WriteEmptySections(fInventory, fOut);
    fOut << "</main>\n";
    WriteFooter();
    fOut << Markup("<script>{}</script>\n</body>\n</html>\n",
                   TMarkup{std::string(kReportScript.text)});
  }

 private:
  // Nothing but what stands in the page may have an effect.
  static TMarkup Policy() {
    return Markup(
        "default-src 'none'; style-src '{}'; script-src '{}'; img-src data:; base-uri 'none'; "
        "form-action 'none'",
        TMarkup{std::string(kReportStyle.hash)}, TMarkup{std::string(kReportScript.hash)});
  }

  void WriteHead() {
    fOut << "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
         << Markup("<meta http-equiv=\"Content-Security-Policy\" content=\"{}\">\n", Policy())
         << "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
            "<meta name=\"color-scheme\" content=\"light dark\">\n"
            "<meta name=\"referrer\" content=\"no-referrer\">\n"
            "<meta name=\"generator\" content=\"zel " ZEL_VERSION "\">\n"
         << Markup("<link rel=\"icon\" href=\"{}\">\n<title>{}: inventory</title>\n", kIcon, fName)
         << Markup("<style>{}</style>\n</head>\n", TMarkup{std::string(kReportStyle.text)});
  }

  void WriteHeader() {
    fOut << "<body>\n<a class=\"skip\" href=\"#content\">Skip to the content</a>\n"
         << Markup(
                "<header>\n<p class=\"kind\">Inventory</p>\n<h1>{}</h1>\n<p class=\"lead\">{}</p>\n"
                "</header>\n",
                fName, NameOf(fInventory));
  }

  // The search, which needs the script to show, and the contents.
  void WriteSide() {
    fOut << "<div class=\"side\">\n"
            "<div id=\"search\" role=\"search\" hidden>\n"
            "<label for=\"query\">Search <kbd aria-hidden=\"true\">/</kbd></label>\n"
            "<input id=\"query\" type=\"search\" autocomplete=\"off\" spellcheck=\"false\" "
            "aria-describedby=\"found\" aria-keyshortcuts=\"/\">\n"
            "<p id=\"found\" role=\"status\" aria-live=\"polite\"></p>\n</div>\n"
            "<nav aria-label=\"Contents\">\n<ol>\n";
    if (fChanges) WriteEntry(kChangesAnchor, "Changes", CountChanges(fChanges->comparison));
    WriteEntry(kSummaryAnchor, "Summary", 0);
    for (const TSection* section : fSections) {
      WriteEntry(AnchorOf(*section), Printable(section->name), CountOf(*section));
    }
    if (fHasEmpty) WriteEntry(kEmptyAnchor, kEmptyTitle, 0);
    fOut << "</ol>\n</nav>\n</div>\n";
  }

  void WriteEntry(const std::string& anchor, const std::string& name, std::size_t count) {
    fOut << Markup("<li><a href=\"#{}\">{}", anchor, name);
    if (count != 0) fOut << Markup(" <span class=\"count\">{}</span>", count);
    fOut << "</a></li>\n";
  }

  static std::size_t CountChanges(const TComparison& comparison) {
    return comparison.CountAdded() + comparison.CountRemoved() + comparison.CountChanged();
  }

  // What one must know before believing the rest.
  void WriteNotices() {
    std::string failures;
    for (const TCIMInstance* status : fInventory.GetStatuses()) {
      const std::string reason = TextOf(*status, "Message");
      if (reason.empty()) continue;
      failures +=
          Markup("<li>{}: {}</li>\n", Printable(TextOf(*status, "PluginName")), Printable(reason))
              .html;
    }
    if (fInventory.IsPartial() || !failures.empty()) {
      fOut
          << "<div class=\"notice warning\" role=\"note\">\n<p><strong>Collected in part.</strong> "
             "What these plug-ins collect is missing:</p>\n<ul>\n"
          << failures << "</ul>\n</div>\n";
    }
    if (fInventory.IsRedacted()) {
      fOut
          << "<p class=\"notice\" role=\"note\"><strong>Redacted.</strong> What tells who or where "
             "the machine is has been replaced; equal values are still equal.</p>\n";
    }
    const TCIMInstance* run = fInventory.GetRun();
    if (run && run->FindProperty("IsRoot") && !FlagOf(*run, "IsRoot")) {
      fOut
          << "<p class=\"notice\" role=\"note\"><strong>Not collected as root.</strong> Some facts "
             "are for root alone; they say so.</p>\n";
    }
  }

  void WriteSummary() {
    OpenSection(kSummaryAnchor, "Summary", fOut);
    fOut << "<div class=\"cards\">\n";
    for (const TFactGroup& group : fFacts) {
      fOut << Markup("<div class=\"facts card\">\n<h3>{}</h3>\n<dl>\n", group.heading);
      for (const TFact& fact : group.facts) {
        const bool isMissing = fact.text == kNotAvailable || fact.text == kNeedsRoot;
        fOut << Markup("<div><dt>{}</dt><dd{}>{}</dd></div>\n", fact.label,
                       TMarkup{isMissing ? " class=\"missing\"" : ""}, fact.text);
      }
      fOut << "</dl>\n</div>\n";
    }
    fOut << "</div>\n</section>\n";
  }

  void WriteFooter() {
    char now[sizeof "2026-11-21 12:19:01"] = "";
    const time_t seconds = time(nullptr);
    tm local = {};
    localtime_r(&seconds, &local);
    strftime(now, sizeof now, "%Y-%m-%d %H:%M:%S", &local);
    fOut << Markup("<footer>\n<p>Generated by zel {} on {} from {}.</p>\n</footer>\n", ZEL_VERSION,
                   now, NameOf(fInventory));
  }

  const TInventory& fInventory;
  const TChanges* fChanges;  // null: not compared
  TAnchors fAnchors;
  std::ostream& fOut;
  std::vector<TFactGroup> fFacts;
  std::string fName;                       // of the machine, or else of the file
  std::vector<const TSection*> fSections;  // that have instances
  bool fHasEmpty;
};

}  // namespace

void WriteReport(const TInventory& inventory, std::ostream& out) {
  TPage(inventory, nullptr, out).Write();
}

void WriteReport(const TInventory& before, const TInventory& inventory,
                 const TComparison& comparison, std::ostream& out) {
  const TChanges changes = {before, comparison};
  TPage(inventory, &changes, out).Write();
}

}  // namespace zel
