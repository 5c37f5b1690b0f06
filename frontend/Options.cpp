#include "frontend/Options.h"

#include <charconv>
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

// As of a variable that is not set: it must not stand for this machine.
std::string RefuseEmpty(const std::string& name) { return name.empty() ? "the name is empty" : ""; }

}  // namespace

void AddCollectionOptions(CLI::App& command, TCollectionOptions& options) {
  AddSchemaOptions(command, options);
  AddSeconds(command, "--timeout", options.deadline, "Give each plug-in this long (default 30)");
}

void AddSchemaOptions(CLI::App& command, TCollectionOptions& options) {
  command.add_option("--plugin-dir", options.pluginDirectory, "Take the plug-ins from here")
      ->type_name("DIR");
  command.add_option("--base", options.baseSchema, "Take the base schema from here")
      ->type_name("FILE");
  command.add_option("--log", options.logFile, "Write the log to this file")->type_name("FILE");
  AddChoice(command, "--log-level", options.logLevel, kLogLevels, "What to log");
}

void AddSeconds(CLI::App& command, const std::string& name, std::chrono::milliseconds& value,
                const std::string& text) {
  command
      .add_option_function<std::string>(
          name,
          [&value, name](const std::string& word) {
            double seconds = 0;
            const char* const end = word.data() + word.size();
            const bool isNumber = std::from_chars(word.data(), end, seconds).ptr == end;
            if (!isNumber || !(0.1 <= seconds && seconds <= 86400)) {  // nor not a number
              throw CLI::ValidationError(name, "takes seconds, from 0.1 to 86400");
            }
            value = std::chrono::milliseconds(static_cast<std::int64_t>(seconds * 1000));
          },
          text)
      ->type_name("SECONDS");
}

CLI::Option* AddFile(CLI::App& command, const std::string& name, std::string& file,
                     const std::string& text) {
  return command.add_option(name, file, text)->type_name("FILE")->check(RefuseEmpty);
}

void AddRedactOption(CLI::App& command, bool& redact) {
  command.add_flag("--redact", redact, "Hide names, serial numbers and what else is sensitive");
}

CLI::Option* AddFileAndNames(CLI::App& command, std::vector<std::string>& arguments,
                             const std::string& name, const std::string& text) {
  command
      .add_option_function<std::string>(
          "FILE",
          [&arguments](const std::string& first) { arguments.insert(arguments.begin(), first); },
          "A saved collection, - for standard input; without it, this machine")
      ->type_name("")
      ->check(RefuseEmpty);
  return command
      .add_option_function<std::vector<std::string>>(
          name,
          [&arguments](const std::vector<std::string>& rest) {
            arguments.insert(arguments.end(), rest.begin(), rest.end());
          },
          text)
      ->type_name("");
}

void AddConditions(CLI::App& command, std::vector<TCondition>& conditions) {
  command
      .add_option_function<std::vector<std::string>>(
          "--where",
          [&conditions](const std::vector<std::string>& texts) {
            for (const std::string& text : texts) conditions.push_back(ParseCondition(text));
          },
          "Only instances of which this holds, raw or as shown; all of several")
      ->type_name("PROPERTY=VALUE")
      ->allow_extra_args(false);
}

}  // namespace zel
