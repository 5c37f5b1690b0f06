#include <set>

#include "frontend/Commands.h"
#include "frontend/Comparison.h"
#include "frontend/DiffListing.h"
#include "frontend/Inventory.h"
#include "frontend/Options.h"
#include "frontend/Report.h"
#include "frontend/ValueMatch.h"
#include "zelcore/zelcore.h"

namespace zel {
namespace {

enum class TFormat { kText, kJson, kHtml };

const std::map<std::string, TFormat> kFormats = {
    {"text", TFormat::kText},
    {"json", TFormat::kJson},
    {"html", TFormat::kHtml}
};

// Collects of this machine what `before` holds, or of that what `names` stand for.
TInventory CollectLike(const TInventory& before, const std::vector<std::string>& names,
                       const TCollectionOptions& options) {
  std::set<std::string> wanted;
  for (const TCIMClass* cls : names.empty() ? before.AllClasses() : before.Resolve(names)) {
    if (before.WasCollected(*cls)) wanted.insert(LowerCase(cls->GetName()));
  }
  return TInventory::Collect(
      options, [&](const TCIMClass& cls) { return wanted.count(LowerCase(cls.GetName())) != 0; });
}

class TDiffCommand : public TCommand {
 public:
  explicit TDiffCommand(CLI::App& options) {
    AddFile(options, "OLD", fOld, "A saved collection, - for standard input")->required();
    AddFile(options, "NEW", fNew, "A later one, - for standard input; without it, this machine");
    options
        .add_option("--class", fComparison.names,
                    "Compare only these classes, their subclasses, or sections")
        ->type_name("NAME");
    AddChoice(options, "--format", fFormat, kFormats, "How to print");
    options.add_flag("--volatile", fComparison.withVolatile,
                     "Compare also what changes from one moment to the next");
    AddRedactOption(options, fRedact);
    AddCollectionOptions(options, fCollection);
  }

  TExitCode Run(TStreams& streams) override {
    fCollection.progress = &streams;
    if (fOld == "-" && fNew == "-") {
      throw TCommandError(kExitUsage,
                          "standard input can be one of the two only; name a file as the other");
    }
    TInventory before = TInventory::Read(fOld);
    TInventory after =
        fNew.empty() ? CollectLike(before, fComparison.names, fCollection) : TInventory::Read(fNew);
    const TComparison comparison = fRedact ? RedactAndCompare(before, after, fComparison)
                                           : Compare(before, after, fComparison);
    switch (fFormat) {
      case TFormat::kText:
        PrintDiffText(before, after, comparison, streams.terminal, streams.out);
        break;
      case TFormat::kJson: PrintDiffJson(before, after, comparison, streams.out); break;
      case TFormat::kHtml: WriteReport(before, after, comparison, streams.out); break;
    }
    if (comparison.HasDifferences()) return kExitDifferent;
    return fNew.empty() && after.IsPartial() ? kExitPartial : kExitDone;
  }

 private:
  std::string fOld;
  std::string fNew;  // empty: this machine
  TComparisonOptions fComparison;
  TFormat fFormat = TFormat::kText;
  bool fRedact = false;
  TCollectionOptions fCollection;
};

}  // namespace

std::unique_ptr<TCommand> MakeDiffCommand(CLI::App& options) {
  return std::make_unique<TDiffCommand>(options);
}

}  // namespace zel
