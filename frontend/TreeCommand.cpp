#include <fmt/format.h>

#include "frontend/AssociationTree.h"
#include "frontend/Commands.h"
#include "frontend/Inventory.h"
#include "frontend/Options.h"
#include "frontend/Redaction.h"
#include "frontend/ValueText.h"
#include "zelcore/zelcore.h"

namespace zel {
namespace {

using TInstances = std::vector<TCIMInstance*>;

constexpr unsigned kDeepest = 1000;

TInstances InstancesOf(const TInventory& inventory, const std::string& className, bool deep) {
  try {
    const TCIMClass* cls =
        className.empty() ? nullptr : inventory.GetContainer().FindClass(className);
    return cls ? cls->EnumerateInstances(deep) : TInstances();
  } catch (const TZELException&) {
    return {};  // a text that cannot be a class name
  }
}

TInstances FindSystems(const TInventory& inventory) {
  for (const char* name :
       {TCIMSchemaHelper::kSystemCreationClassName.c_str(), "CIM_ComputerSystem"}) {
    TInstances systems = InstancesOf(inventory, name, true);
    if (!systems.empty()) return systems;
  }
  throw TCommandError(kExitUsage,
                      Printable(fmt::format("{} has no computer system; say with --from CLASS or "
                                            "--from PATH where to start",
                                            inventory.GetTitle())));
}

// The instances of a class, or that of an object path as it is shown.
TInstances FindStart(const TInventory& inventory, const std::string& from) {
  TInstances found = InstancesOf(inventory, from, true);
  if (!found.empty()) return found;
  for (TCIMInstance* instance : InstancesOf(inventory, from.substr(0, from.find('.')), false)) {
    const std::string path = instance->BuildPath().GetPath();
    if (path == from || Printable(path) == from) found.push_back(instance);
  }
  if (!found.empty()) return found;
  throw TCommandError(kExitUsage, Printable(fmt::format("{} has no instance '{}'; 'zel diff' and "
                                                        "'zel collect --class' print their paths",
                                                        inventory.GetTitle(), from)));
}

// What became of `instances`.
TInstances Redacted(TInventory& inventory, const TInstances& instances) {
  const TReplacedInstances replaced = Redact({&inventory});
  TInstances redacted;
  for (TCIMInstance* instance : instances) {
    const auto found = replaced.find(instance);
    redacted.push_back(found == replaced.end() ? instance : found->second);
  }
  return redacted;
}

class TTreeCommand : public TCommand {
 public:
  explicit TTreeCommand(CLI::App& options) {
    AddFile(options, "FILE", fFile,
            "A saved collection, - for standard input; without it, this machine");
    options.add_option("--from", fFrom, "Start with this instance, or with those of this class")
        ->type_name("PATH");
    options.add_option("--depth", fTree.depth, "Show this many levels below the first")
        ->check(CLI::Range(0u, kDeepest).description(""))
        ->type_name("N");
    AddRedactOption(options, fRedact);
    AddCollectionOptions(options, fCollection);
  }

  TExitCode Run(TStreams& streams) override {
    fCollection.progress = &streams;
    TInventory inventory =
        fFile.empty() ? TInventory::Collect(fCollection) : TInventory::Read(fFile);
    TInstances start = fFrom.empty() ? FindSystems(inventory) : FindStart(inventory, fFrom);
    if (fRedact) start = Redacted(inventory, start);
    fTree.isUtf8 = IsUtf8Locale();
    PrintTree(inventory, start, fTree, streams.terminal, streams.out);
    return fFile.empty() && inventory.IsPartial() ? kExitPartial : kExitDone;
  }

 private:
  std::string fFile;  // empty: this machine
  std::string fFrom;  // empty: the system
  TTreeOptions fTree;
  bool fRedact = false;
  TCollectionOptions fCollection;
};

}  // namespace

std::unique_ptr<TCommand> MakeTreeCommand(CLI::App& options) {
  return std::make_unique<TTreeCommand>(options);
}

}  // namespace zel
