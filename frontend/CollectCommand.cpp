#include <fmt/format.h>

#include "frontend/Commands.h"
#include "frontend/Export.h"
#include "frontend/Inventory.h"
#include "frontend/Listing.h"
#include "frontend/Options.h"
#include "frontend/OutputFile.h"
#include "frontend/OutputPath.h"
#include "frontend/Redaction.h"
#include "frontend/Summary.h"
#include "frontend/ValueText.h"
#include "zelcore/zelcore.h"

namespace zel {
namespace {

enum class TFormat { kText, kJson };

const std::map<std::string, TFormat> kFormats = {
    {"text", TFormat::kText},
    {"json", TFormat::kJson}
};

class TCollectCommand : public TCommand {
 public:
  explicit TCollectCommand(CLI::App& options) {
    AddCollectionOptions(options, fOptions);
    options
        .add_option("--class", fNames,
                    "Print every instance of these classes, of their subclasses, or of sections")
        ->type_name("NAME");
    CLI::Option* format = AddChoice(options, "--format", fFormat, kFormats, "How to print");
    fSave =
        options
            .add_option("-o,--output", fOutput,
                        "Save it as CIM-XML: compressed to a name in .gz, - to standard output, "
                        "without a name to HOST-TIME.xml.gz")
            ->type_name("FILE")
            ->expected(0, 1)
            ->excludes(format);
    AddRedactOption(options, fRedact);
  }

  TExitCode Run(TStreams& streams) override {
    fOptions.progress = &streams;
    TInventory inventory = TInventory::Collect(fOptions, fNames);
    if (fRedact) Redact({&inventory});
    if (*fSave) {
      Save(inventory, streams);
    } else {
      Print(inventory, streams);
    }
    ReportFailures(inventory, streams.err);
    return inventory.IsPartial() ? kExitPartial : kExitDone;
  }

 private:
  void Print(const TInventory& inventory, TStreams& streams) const {
    const std::vector<TCIMClass*> classes =
        fNames.empty() ? inventory.AllClasses() : inventory.Resolve(fNames);
    if (fFormat == TFormat::kJson) {
      PrintJson(inventory, SelectAll(inventory, classes), false, streams.out);
    } else if (fNames.empty()) {
      PrintSummary(inventory, streams.out, streams.terminal);
    } else {
      for (const TSelection& selection : SelectAll(inventory, classes)) {
        PrintList(selection, {streams.terminal}, streams.out);
      }
    }
  }

  void Save(const TInventory& inventory, TStreams& streams) const {
    const std::string path = OutputPath(fOutput, inventory, ".xml.gz");
    TOutputFile file(path, streams.out);
    const auto compression = EndsIn(path, ".gz") ? TCIMXMLWriter::ECompression::kGzip
                                                 : TCIMXMLWriter::ECompression::kNone;
    TCIMXMLWriter(file.GetStream(), compression).WriteContainer(inventory.GetContainer());
    file.Commit();
    if (path == "-") return;
    streams.err << fmt::format("saved {} ({}{}): {}\n", Printable(path), BytesText(file.GetSize()),
                               inventory.IsRedacted() ? ", redacted" : "", OutcomeText(inventory));
  }

  TCollectionOptions fOptions;
  std::vector<std::string> fNames;  // empty: all, and the summary as text
  TFormat fFormat = TFormat::kText;
  bool fRedact = false;
  CLI::Option* fSave = nullptr;
  std::string fOutput;
};

}  // namespace

std::unique_ptr<TCommand> MakeCollectCommand(CLI::App& options) {
  return std::make_unique<TCollectCommand>(options);
}

}  // namespace zel
