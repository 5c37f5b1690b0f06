#include <fmt/format.h>

#include <sstream>

#include "frontend/Commands.h"
#include "frontend/Comparison.h"
#include "frontend/Inventory.h"
#include "frontend/Options.h"
#include "frontend/OutputFile.h"
#include "frontend/Redaction.h"
#include "frontend/Report.h"
#include "frontend/ValueText.h"

namespace zel {
namespace {

class TReportCommand : public TCommand {
 public:
  explicit TReportCommand(CLI::App& options) {
    options.add_option("FILE", fFile, "A saved collection; this machine without it");
    options.add_option("--diff", fOld, "Begin with what changed since this saved collection")
        ->type_name("FILE");
    options.add_option("-o,--output", fOutput, "Write the page to this file (-: standard output)")
        ->type_name("FILE")
        ->required();
    AddRedactOption(options, fRedact);
    AddCollectionOptions(options, fOptions);
  }

  TExitCode Run(TStreams& streams) override {
    fOptions.progress = &streams;
    TInventory inventory = fFile.empty() ? TInventory::Collect(fOptions) : TInventory::Read(fFile);
    std::ostringstream page;
    if (fOld.empty()) {
      if (fRedact) Redact({&inventory});
      WriteReport(inventory, page);
    } else {
      TInventory before = TInventory::Read(fOld);
      if (fRedact) Redact({&before, &inventory});
      WriteReport(before, inventory, Compare(before, inventory), page);
    }
    Save(page.str(), streams);
    return inventory.IsPartial() ? kExitPartial : kExitDone;
  }

 private:
  void Save(const std::string& page, TStreams& streams) const {
    TOutputFile file(fOutput, streams.out);
    file.GetStream() << page;
    file.Commit();
    if (fOutput == "-") return;
    streams.err << fmt::format("saved {} ({})\n", Printable(fOutput), BytesText(page.size()));
  }

  TCollectionOptions fOptions;
  std::string fFile;
  std::string fOld;
  std::string fOutput;
  bool fRedact = false;
};

}  // namespace

std::unique_ptr<TCommand> MakeReportCommand(CLI::App& options) {
  return std::make_unique<TReportCommand>(options);
}

}  // namespace zel
