#include <fmt/format.h>

#include "frontend/Commands.h"
#include "frontend/Inventory.h"
#include "frontend/Listing.h"
#include "frontend/Options.h"
#include "frontend/Redaction.h"
#include "frontend/Summary.h"
#include "frontend/ValueText.h"

namespace zel {
namespace {

enum class TFormat { kText, kJson };

const std::map<std::string, TFormat> kFormats = {
    {"text", TFormat::kText},
    {"json", TFormat::kJson}
};

void ReportFailures(const TInventory& inventory, std::ostream& err) {
  for (const TCIMInstance* status : inventory.GetStatuses()) {
    const std::string reason = TextOf(*status, "Message");
    if (reason.empty()) continue;
    err << fmt::format("zel: plug-in {} failed: {}; 'zel plugins' tells its state\n",
                       Printable(TextOf(*status, "PluginName")), Printable(reason));
  }
}

class TCollectCommand : public TCommand {
 public:
  explicit TCollectCommand(CLI::App& options) {
    AddCollectionOptions(options, fOptions);
    options
        .add_option("--class", fNames,
                    "Print every instance of these classes, of their subclasses, or of sections")
        ->type_name("NAME");
    AddChoice(options, "--format", fFormat, kFormats, "How to print");
    AddRedactOption(options, fRedact);
  }

  TExitCode Run(TStreams& streams) override {
    TInventory inventory = TInventory::Collect(fOptions, fNames);
    if (fRedact) Redact({&inventory});
    const std::vector<TCIMClass*> classes =
        fNames.empty() ? inventory.AllClasses() : inventory.Resolve(fNames);
    if (fFormat == TFormat::kJson) {
      PrintJson(inventory, classes, streams.out);
    } else if (fNames.empty()) {
      PrintSummary(inventory, streams.out);
    } else {
      PrintList(classes, streams.out);
    }
    ReportFailures(inventory, streams.err);
    return inventory.IsPartial() ? kExitPartial : kExitDone;
  }

 private:
  TCollectionOptions fOptions;
  std::vector<std::string> fNames;  // empty: all, and the summary as text
  TFormat fFormat = TFormat::kText;
  bool fRedact = false;
};

}  // namespace

std::unique_ptr<TCommand> MakeCollectCommand(CLI::App& options) {
  return std::make_unique<TCollectCommand>(options);
}

}  // namespace zel
