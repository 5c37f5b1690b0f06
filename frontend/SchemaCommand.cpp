#include "frontend/Commands.h"
#include "frontend/DocumentText.h"
#include "frontend/Locations.h"
#include "frontend/Options.h"
#include "frontend/SchemaListing.h"

namespace zel {
namespace {

enum class TFormat { kText, kJson, kMarkdown };

const std::map<std::string, TFormat> kFormats = {
    {"text", TFormat::kText    },
    {"json", TFormat::kJson    },
    {"md",   TFormat::kMarkdown}
};

class TSchemaCommand : public TCommand {
 public:
  explicit TSchemaCommand(CLI::App& options) {
    options.add_option("FILE|NAME", fArguments,
                       "A document to describe instead of this installation, then classes or "
                       "sections (default: a list of all)");
    AddChoice(options, "--format", fFormat, kFormats, "How to print");
    AddSchemaOptions(options, fOptions);
  }

  TExitCode Run(TStreams& streams) override {
    const std::string file = TakeFile(fArguments);
    const TInventory inventory = file.empty() ? TInventory::Declare(fOptions) : Read(file);
    const TSchema schema(inventory);
    const auto& sections = fArguments.empty() ? schema.GetSections() : schema.Select(fArguments);
    switch (fFormat) {
      case TFormat::kJson: PrintSchemaJson(sections, inventory.GetTitle(), streams.out); break;
      case TFormat::kMarkdown: PrintSchemaMarkdown(sections, streams.out); break;
      case TFormat::kText:
        (fArguments.empty() ? PrintSchemaTable : PrintSchemaText)(sections, streams);
    }
    return kExitDone;
  }

 private:
  // A plug-in's document builds on the base schema.
  TInventory Read(const TInput& input) const {
    std::vector<std::string> bases;
    const TDocumentText document = ReadText(input);
    if (!document.fault && !DeclaresKey(document.text)) {
      bases.push_back(fOptions.baseSchema.empty() ? DefaultLocations().baseSchema
                                                  : fOptions.baseSchema);
    }
    return TInventory::Read(input, bases);
  }

  TCollectionOptions fOptions;
  std::vector<std::string> fArguments;
  TFormat fFormat = TFormat::kText;
};

}  // namespace

std::unique_ptr<TCommand> MakeSchemaCommand(CLI::App& options) {
  return std::make_unique<TSchemaCommand>(options);
}

}  // namespace zel
