#include "frontend/Options.h"

#include <chrono>
#include <cstdint>

namespace zel {
namespace {

const std::map<std::string, zelLogSeverity> kLogLevels = {
    {"error",   zelLogError  },
    {"warning", zelLogWarning},
    {"status",  zelLogStatus },
    {"debug",   zelLogDebug  },
    {"verbose", zelLogVerbose}
};

}  // namespace

void AddCollectionOptions(CLI::App& command, TCollectionOptions& options) {
  command.add_option("--plugin-dir", options.pluginDirectory, "Take the plug-ins from here")
      ->type_name("DIR");
  command.add_option("--base", options.baseSchema, "Take the base schema from here")
      ->type_name("FILE");
  command
      .add_option_function<double>(
          "--timeout",
          [&options](double seconds) {
            options.deadline = std::chrono::milliseconds(static_cast<std::int64_t>(seconds * 1000));
          },
          "Give each plug-in this long (default 30)")
      ->check(CLI::Range(0.1, 86400.0).description(""))
      ->type_name("SECONDS");
  command.add_option("--log", options.logFile, "Write the log to this file")->type_name("FILE");
  AddChoice(command, "--log-level", options.logLevel, kLogLevels, "What to log");
}

void AddRedactOption(CLI::App& command, bool& redact) {
  command.add_flag("--redact", redact, "Hide names, serial numbers and what else is sensitive");
}

}  // namespace zel
