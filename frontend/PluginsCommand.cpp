#include <fmt/format.h>

#include <algorithm>

#include "frontend/Commands.h"
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

}  // namespace

TExitCode Run(const TPluginsCommand& command, std::ostream& out, std::ostream&) {
  TCollection collection(command.options);
  collection.Probe();
  for (const TPluginOutcome& outcome : collection.GetOutcomes()) {
    const bool loaded = !outcome.records.empty();
    out << Printable(
               fmt::format("{} {}", outcome.Name(), loaded ? outcome.records.front().version : "-"))
        << "\n"
        << "  state    " << State(outcome) << "\n"
        << "  path     " << Printable(outcome.path) << "\n";
    if (outcome.Failed()) out << "  reason   " << Printable(outcome.Reason()) << "\n";
    const auto& plugins = collection.GetPlugins();
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
  return collection.IsPartial() ? kExitPartial : kExitDone;
}

}  // namespace zel
