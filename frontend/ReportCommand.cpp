#include <fmt/format.h>

#include <sstream>

#include "frontend/Commands.h"
#include "frontend/Comparison.h"
#include "frontend/Inventory.h"
#include "frontend/Options.h"
#include "frontend/OutputFile.h"
#include "frontend/OutputPath.h"
#include "frontend/Redaction.h"
#include "frontend/Report.h"
#include "frontend/Summary.h"
#include "frontend/ValueText.h"

namespace zel {
namespace {

class TReportCommand : public TCommand {
 public:
  explicit TReportCommand(CLI::App& options) {
    AddFile(options, "FILE", fFile,
            "A saved collection, - for standard input; without it, this machine");
    AddFile(options, "--diff", fOld, "Begin with what has changed since this saved collection")
        ->type_name("OLD-FILE");
    options
        .add_option("-o,--output", fOutput,
                    "Write it here, - to standard output, without a name to HOST-TIME.html")
        ->type_name("FILE")
        ->expected(0, 1);
    AddRedactOption(options, fRedact);
    AddCollectionOptions(options, fCollection);
  }

  TExitCode Run(TStreams& streams) override {
    if (fFile == "-" && fOld == "-") {
      throw TCommandError(kExitUsage,
                          "standard input can be one of the two only; name a file as the other");
    }
    fCollection.progress = &streams;
    TInventory inventory =
        fFile.empty() ? TInventory::Collect(fCollection) : TInventory::Read(fFile);
    // Whole before any of it is written: what is wrong with a document may show late.
    std::ostringstream page;
    if (fOld.empty()) {
      if (fRedact) Redact({&inventory});
      WriteReport(inventory, page);
    } else {
      TInventory before = TInventory::Read(fOld);
      WriteReport(before, inventory,
                  fRedact ? RedactAndCompare(before, inventory) : Compare(before, inventory), page);
    }
    Save(inventory, page.str(), streams);
    return fFile.empty() && inventory.IsPartial() ? kExitPartial : kExitDone;
  }

 private:
  void Save(const TInventory& inventory, const std::string& page, TStreams& streams) const {
    const std::string path = OutputPath(fOutput, inventory, ".html");
    TOutputFile file(path, streams.out);
    file.GetStream() << page;
    file.Commit();
    if (path == "-") return;
    streams.err << fmt::format("saved {} ({}{})\n", Printable(path), BytesText(file.GetSize()),
                               inventory.IsRedacted() ? ", redacted" : "");
  }

  TCollectionOptions fCollection;
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
