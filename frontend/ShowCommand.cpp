#include <fmt/format.h>

#include <algorithm>

#include "frontend/Commands.h"
#include "frontend/ExitCode.h"
#include "frontend/Export.h"
#include "frontend/Inventory.h"
#include "frontend/Listing.h"
#include "frontend/Options.h"
#include "frontend/Redaction.h"
#include "frontend/Summary.h"
#include "frontend/ValueText.h"
#include "zelcore/zelcore.h"

namespace zel {
namespace {

enum class TFormat { kBest, kTable, kList, kJson, kCsv, kXml };

const std::map<std::string, TFormat> kFormats = {
    {"table", TFormat::kTable},
    {"list",  TFormat::kList },
    {"json",  TFormat::kJson },
    {"csv",   TFormat::kCsv  },
    {"xml",   TFormat::kXml  }
};

void RequireOne(const std::vector<TCIMClass*>& classes) {
  if (classes.size() == 1) return;
  constexpr std::size_t kOneLine = 10;
  std::vector<std::string> names;
  names.reserve(classes.size());
  for (const TCIMClass* cls : classes) names.push_back(cls->GetName());
  const bool isShort = !names.empty() && names.size() <= kOneLine;
  throw TCommandError(kExitUsage,
                      fmt::format("--format csv shows one class; name {}",
                                  isShort ? fmt::format("one of {}", fmt::join(names, ", "))
                                          : "one, 'zel schema' lists them"));
}

// The document of whole classes.
void PrintXml(const std::vector<TCIMClass*>& classes, std::ostream& out) {
  try {
    TCIMXMLWriter(out).WriteClasses(classes);
  } catch (const TZELException&) {
    if (out) throw;  // lost output is told where all commands end
  }
}

class TShowCommand : public TCommand {
 public:
  explicit TShowCommand(CLI::App& options) {
    AddFileAndNames(options, fNames, "NAME", "Classes and sections; without any, a summary");
    AddChoice(options, "--format", fFormat, kFormats,
              "How to show it; a table, or a list when there is one instance, is the default");
    options.add_flag("--all", fAll, "Every property and, when no class is named, every class");
    CLI::Option* raw = options.add_flag("--raw", fRaw, "Without units and value maps");
    options.add_flag("--text", fText, "The texts for people in JSON and CSV")->excludes(raw);
    AddConditions(options, fConditions);
    options.add_option("--columns", fColumns, "Only these properties, in this order")
        ->type_name("PROPERTY,...")
        ->delimiter(',')
        ->allow_extra_args(false);
    AddRedactOption(options, fRedact);
    AddCollectionOptions(options, fOptions);
  }

  TExitCode Run(TStreams& streams) override {
    const std::string file = TakeFile(fNames);
    RequireSense();
    fOptions.progress = &streams;
    TInventory inventory = TInventory::Open(file, fOptions, fNames);
    if (fRedact) Redact({&inventory});
    if (IsSummary()) {
      PrintSummary(inventory, streams.out, streams.terminal);
    } else {
      Print(inventory, streams);
    }
    ReportFailures(inventory, streams.err);
    return inventory.IsPartial() ? kExitPartial : kExitDone;
  }

 private:
  void RequireSense() const {
    if (fFormat == TFormat::kCsv && fNames.empty()) RequireOne({});
    if (fFormat != TFormat::kXml || (fConditions.empty() && fColumns.empty())) return;
    throw TCommandError(kExitUsage,
                        "--format xml shows whole classes; leave out --where and --columns");
  }

  bool IsSummary() const {
    return fNames.empty() && fFormat == TFormat::kBest && !fAll && fConditions.empty() &&
           fColumns.empty();
  }

  void Print(const TInventory& inventory, TStreams& streams) const {
    const std::vector<TCIMClass*> classes =
        fNames.empty() ? inventory.AllClasses() : inventory.Resolve(fNames);
    if (fFormat == TFormat::kCsv) RequireOne(classes);
    std::vector<TSelection> selections = SelectAll(inventory, classes);
    if (!fColumns.empty()) KeepProperties(selections, fColumns);
    KeepInstances(selections, fConditions);
    switch (fFormat) {
      case TFormat::kJson: return PrintJson(inventory, selections, fText, streams.out);
      case TFormat::kCsv: return PrintCsv(selections.front(), fText, streams.out);
      case TFormat::kXml: return PrintXml(classes, streams.out);
      default: DropUnwanted(inventory, selections); PrintForPeople(selections, streams);
    }
  }

  // Whether the class, or one that it derives from, is called by its name.
  bool IsNamed(const TInventory& inventory, const TCIMClass& cls) const {
    return std::any_of(fNames.begin(), fNames.end(), [&](const std::string& name) {
      const TCIMClass* named = FindClass(inventory.GetContainer(), name);
      return named && cls.IsSubclassOf(named);
    });
  }

  // Leaves out what nobody asked for: links, and in the whole inventory classes without instances.
  void DropUnwanted(const TInventory& inventory, std::vector<TSelection>& selections) const {
    const auto isLink = [](const TSelection& selection) {
      return IsTrue(selection.cls->FindQualifier("ASSOCIATION"));
    };
    const bool withLinks = fAll || std::all_of(selections.begin(), selections.end(), isLink);
    const bool withEmpty = fConditions.empty() && (fAll || !fNames.empty());
    const auto isUnwanted = [&](const TSelection& selection) {
      if (selection.instances.empty() && !withEmpty) return true;
      return !withLinks && isLink(selection) && !IsNamed(inventory, *selection.cls);
    };
    selections.erase(std::remove_if(selections.begin(), selections.end(), isUnwanted),
                     selections.end());
  }

  void PrintForPeople(std::vector<TSelection>& selections, TStreams& streams) const {
    for (TSelection& selection : selections) {
      const bool isList = fFormat == TFormat::kList ||
                          (fFormat == TFormat::kBest && selection.instances.size() == 1);
      if (!fAll && fColumns.empty()) KeepColumns(selection, isList);
      const auto print = isList ? PrintList : PrintTable;
      print(selection, {streams.terminal, fRaw}, streams.out);
    }
    if (selections.empty()) streams.err << "zel: no instances\n";
  }

  TCollectionOptions fOptions;
  std::vector<std::string> fNames;
  TFormat fFormat = TFormat::kBest;
  bool fAll = false;
  bool fRaw = false;
  bool fText = false;
  bool fRedact = false;
  std::vector<TCondition> fConditions;
  std::vector<std::string> fColumns;
};

}  // namespace

std::unique_ptr<TCommand> MakeShowCommand(CLI::App& options) {
  return std::make_unique<TShowCommand>(options);
}

}  // namespace zel
