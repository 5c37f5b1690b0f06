#include <fmt/format.h>

#include "frontend/Commands.h"
#include "frontend/Listing.h"
#include "frontend/Summary.h"
#include "frontend/ValueText.h"

namespace zel {
namespace {

void ReportFailures(const TCollection& collection, std::ostream& err) {
  for (const TPluginOutcome& outcome : collection.GetOutcomes()) {
    if (!outcome.Failed()) continue;
    err << fmt::format("zel: plug-in {} failed: {}; 'zel plugins' tells its state\n",
                       Printable(outcome.Name()), Printable(outcome.Reason()));
  }
}

}  // namespace

TExitCode Run(const TCollectCommand& command, std::ostream& out, std::ostream& err) {
  TCollection collection(command.options);
  const std::vector<TCIMClass*> classes =
      command.classes.empty() ? collection.AllClasses() : collection.Resolve(command.classes);
  collection.Collect(classes);
  if (command.format == TFormat::kJson) {
    PrintJson(collection, classes, out);
  } else if (command.classes.empty()) {
    PrintSummary(collection, out);
  } else {
    PrintList(classes, out);
  }
  ReportFailures(collection, err);
  return collection.IsPartial() ? kExitPartial : kExitDone;
}

}  // namespace zel
