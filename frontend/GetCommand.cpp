#include <fmt/format.h>

#include <algorithm>

#include "frontend/Commands.h"
#include "frontend/ExitCode.h"
#include "frontend/Inventory.h"
#include "frontend/Options.h"
#include "frontend/ValueText.h"
#include "zelcore/zelcore.h"

namespace zel {
namespace {

class TGetCommand : public TCommand {
 public:
  explicit TGetCommand(CLI::App& options) {
    AddFileAndNames(options, fArguments, "CLASS.PROPERTY",
                    "The property; of the class and its subclasses")
        ->expected(1);
    options.add_flag("--text", fText, "With units and value maps");
    AddConditions(options, fConditions);
    AddCollectionOptions(options, fOptions);
  }

  TExitCode Run(TStreams& streams) override {
    TakeArguments();
    fOptions.progress = &streams;
    const TInventory inventory = TInventory::Open(fFile, fOptions, {fClass});
    const std::vector<TCIMClass*> classes = inventory.Resolve({fClass});
    std::vector<TSelection> selections = SelectAll(inventory, classes);
    KeepProperties(selections, {fProperty});
    KeepInstances(selections, fConditions);
    bool isFound = false;
    for (const TSelection& selection : selections) isFound |= Print(selection, streams.out);
    ReportFailures(inventory, streams.err);
    const bool isPartial =
        std::any_of(selections.begin(), selections.end(),
                    [](const TSelection& selection) { return !selection.wasCollected; });
    if (inventory.IsPartial() && isPartial) return kExitPartial;
    return isFound ? kExitDone : kExitDifferent;
  }

 private:
  // [FILE] CLASS.PROPERTY
  void TakeArguments() {
    if (fArguments.empty()) {
      throw TCommandError(kExitUsage,
                          "name a property: 'zel get [FILE] CLASS.PROPERTY'; 'zel schema CLASS' "
                          "lists them");
    }
    const std::size_t point = fArguments.back().rfind('.');
    std::vector<std::string> last = {fArguments.back()};
    const bool isFile = fArguments.size() == 1 && !TakeFile(last).empty();
    if (fArguments.size() > 2 || isFile || point == std::string::npos || point == 0 ||
        point + 1 == fArguments.back().size()) {
      throw TCommandError(
          kExitUsage,
          Printable(fmt::format(
              "'{}' is no property; 'zel get [FILE] CLASS.PROPERTY' takes one, 'zel schema CLASS' "
              "lists them",
              fmt::join(fArguments, " "))));
    }
    if (fArguments.size() == 2) fFile = fArguments.front();
    fClass = fArguments.back().substr(0, point);
    fProperty = fArguments.back().substr(point + 1);
  }

  // Whether there is a value.
  bool Print(const TSelection& selection, std::ostream& out) const {
    bool isFound = false;
    for (const TCIMInstance* instance : selection.instances) {
      for (const TCIMPropertyDecl* declaration : selection.properties) {
        const TCIMProperty& property = *instance->GetProperty(declaration->GetName());
        for (const std::string& text :
             fText ? PropertyTexts(property) : ValueTexts(property.GetValue())) {
          out << text << "\n";
          isFound = true;
        }
      }
    }
    return isFound;
  }

  TCollectionOptions fOptions;
  std::vector<std::string> fArguments;
  std::string fFile;
  std::string fClass;
  std::string fProperty;
  std::vector<TCondition> fConditions;
  bool fText = false;
};

}  // namespace

std::unique_ptr<TCommand> MakeGetCommand(CLI::App& options) {
  return std::make_unique<TGetCommand>(options);
}

}  // namespace zel
