#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "frontend/Collection.h"
#include "frontend/ExitCode.h"

namespace zel {

// How the result of a collection is shown.
enum class TFormat { kText, kJson };

struct TCollectCommand {
  TCollectionOptions options;
  std::vector<std::string> classes;  // empty: all, and the summary as text
  TFormat format = TFormat::kText;
};

struct TPluginsCommand {
  TCollectionOptions options;
};

// Collects this machine and prints the result.
TExitCode Run(const TCollectCommand& command, std::ostream& out, std::ostream& err);

// Lists the plug-ins, and why those that do not load do not.
TExitCode Run(const TPluginsCommand& command, std::ostream& out, std::ostream& err);

}  // namespace zel
