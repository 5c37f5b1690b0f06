#include <fmt/format.h>

#include <algorithm>

#include "frontend/Commands.h"
#include "frontend/Options.h"
#include "frontend/ValueText.h"
#include "zelcore/TCIMClass.h"

namespace zel {
namespace {

std::string State(const TPluginOutcome& outcome) {
  if (outcome.records.empty()) return "not loaded";
  const TPluginRecord& record = outcome.records.front();
  if (!record.initialized) return "not initialised";
  const bool needsDocument = record.type == 0 || record.type == 1;
  if (needsDocument && !record.documentRead) return "document refused";
  return outcome.Failed() ? "failed" : "ready";
}

class TPluginsCommand : public TCommand {
 public:
  explicit TPluginsCommand(CLI::App& options) { AddCollectionOptions(options, fOptions); }

  TExitCode Run(TStreams& streams) override {
    fOptions.progress = &streams;
    TCollection collection(fOptions);
    collection.Probe();
    for (const TPluginOutcome& outcome : collection.GetOutcomes()) {
      Print(outcome, collection.GetPlugins(), streams.out);
    }
    return collection.IsPartial() ? kExitPartial : kExitDone;
  }

 private:
  static void Print(const TPluginOutcome& outcome, const std::vector<TFoundPlugin>& plugins,
                    std::ostream& out) {
    const bool loaded = !outcome.records.empty();
    out << Printable(
               fmt::format("{} {}", outcome.Name(), loaded ? outcome.records.front().version : "-"))
        << "\n"
        << "  state    " << State(outcome) << "\n"
        << "  path     " << Printable(outcome.path) << "\n";
    if (outcome.Failed()) out << "  reason   " << Printable(outcome.Reason()) << "\n";
    const auto found = std::find_if(plugins.begin(), plugins.end(), [&](const TFoundPlugin& p) {
      return p.display == outcome.path;
    });
    const char* heading = "  classes  ";
    for (const TCIMClass* cls : found->classes) {
      out << heading << cls->GetName() << "\n";
      heading = "           ";
    }
    out << "\n";
  }

  TCollectionOptions fOptions;
};

}  // namespace

std::unique_ptr<TCommand> MakePluginsCommand(CLI::App& options) {
  return std::make_unique<TPluginsCommand>(options);
}

}  // namespace zel
