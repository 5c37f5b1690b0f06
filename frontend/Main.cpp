#include "frontend/Main.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <exception>
#include <map>

#include "frontend/Commands.h"
#include "frontend/ExitCode.h"
#include "zelcore/zelcore.h"

namespace zel {
namespace {

constexpr char kExitCodes[] =
    "Exit codes: 0 done, 2 usage, 3 collected in part, 4 input unreadable or invalid,\n"
    "5 no plug-ins, 7 output could not be written, 130 interrupted.";

const std::map<std::string, zelLogSeverity> kLogLevels = {
    {"error",   zelLogError  },
    {"warning", zelLogWarning},
    {"status",  zelLogStatus },
    {"debug",   zelLogDebug  },
    {"verbose", zelLogVerbose}
};

const std::map<std::string, TFormat> kFormats = {
    {"text", TFormat::kText},
    {"json", TFormat::kJson}
};

// The names of `table`, for the help.
template <class TTable>
std::string Names(const TTable& table) {
  std::string names;
  for (const auto& row : table) names += (names.empty() ? "" : "|") + row.first;
  return names;
}

// Help that opens with examples.
class TFormatter : public CLI::Formatter {
 public:
  void AddExamples(const std::string& command, const std::vector<std::string>& examples) {
    fExamples[command] = examples;
  }

  std::string make_description(const CLI::App* app) const override {
    std::string text = app->get_description() + ".\n\n";
    const auto found = fExamples.find(app->get_name());
    if (found == fExamples.end()) return text;
    text += "Examples:\n";
    for (const std::string& example : found->second) text += "  " + example + "\n";
    return text + "\n";
  }

 private:
  std::map<std::string, std::vector<std::string>> fExamples;
};

// What a command needs of the command line.
class TArguments {
 public:
  TArguments()
      : fFormatter(std::make_shared<TFormatter>()),
        fApp("Collects a typed inventory of this machine", "zel") {
    fApp.set_version_flag("--version", "zel " ZEL_VERSION);
    fApp.footer(kExitCodes);
    fApp.require_subcommand(1);
    fApp.formatter(fFormatter);

    CLI::App* collect = AddCommand(
        "collect", "Collect this machine and print a summary, or all there is of some classes",
        {"zel collect", "zel collect --class KVRSG_Processor KVRSG_Memory --format json"});
    AddCollectionOptions(*collect, fCollect.options);
    collect
        ->add_option("--class", fCollect.classes,
                     "Print every instance of these classes and of their subclasses")
        ->type_name("NAME");
    collect->add_option("--format", fCollect.format, "How to print")
        ->transform(CLI::CheckedTransformer(kFormats, CLI::ignore_case).description(""))
        ->type_name(Names(kFormats));

    CLI::App* plugins =
        AddCommand("plugins", "List the plug-ins, their classes, and why one does not load",
                   {"zel plugins", "zel plugins --plugin-dir /opt/acme/plugins"});
    AddCollectionOptions(*plugins, fPlugins.options);

    CLI::App* help = AddCommand("help", "Explain a command", {"zel help", "zel help collect"});
    help->add_option("COMMAND", fTopic, "The command to explain");
  }

  CLI::App& App() { return fApp; }

  TExitCode Run(std::ostream& out, std::ostream& err) {
    if (fApp.got_subcommand("collect")) return zel::Run(fCollect, out, err);
    if (fApp.got_subcommand("plugins")) return zel::Run(fPlugins, out, err);
    return Help(out);
  }

 private:
  CLI::App* AddCommand(const std::string& name, const std::string& text,
                       const std::vector<std::string>& examples) {
    fFormatter->AddExamples(name, examples);
    return fApp.add_subcommand(name, text);
  }

  static void AddCollectionOptions(CLI::App& command, TCollectionOptions& options) {
    command.add_option("--plugin-dir", options.pluginDirectory, "Take the plug-ins from here")
        ->type_name("DIR");
    command.add_option("--base", options.baseSchema, "Take the base schema from here")
        ->type_name("FILE");
    command.add_option("--log", options.logFile, "Write the log to this file")->type_name("FILE");
    command.add_option("--log-level", options.logLevel, "What to log")
        ->transform(CLI::CheckedTransformer(kLogLevels, CLI::ignore_case).description(""))
        ->type_name(Names(kLogLevels));
    command
        .add_option_function<double>(
            "--timeout",
            [&options](double seconds) {
              options.deadline =
                  std::chrono::milliseconds(static_cast<std::int64_t>(seconds * 1000));
            },
            "Give each plug-in this long (default 30)")
        ->check(CLI::Range(0.1, 86400.0).description(""))
        ->type_name("SECONDS");
  }

  TExitCode Help(std::ostream& out) {
    const auto isTopic = [this](const CLI::App* command) { return command->get_name() == fTopic; };
    const CLI::App* topic = &fApp;
    if (!fTopic.empty()) {
      const auto found = fApp.get_subcommands(isTopic);
      if (found.empty()) {
        throw TCommandError(kExitUsage,
                            fmt::format("no command '{}'; 'zel help' lists them", fTopic));
      }
      topic = found.front();
    }
    const std::string name = fTopic.empty() ? "zel" : "zel " + fTopic;
    out << fFormatter->make_help(topic, name, CLI::AppFormatMode::Normal);
    return kExitDone;
  }

  std::shared_ptr<TFormatter> fFormatter;
  CLI::App fApp;
  TCollectCommand fCollect;
  TPluginsCommand fPlugins;
  std::string fTopic;
};

TExitCode ParseAndRun(int argc, const char* const* argv, std::ostream& out, std::ostream& err) {
  TArguments arguments;
  try {
    arguments.App().parse(argc, argv);
  } catch (const CLI::Success& success) {  // --help, --version
    arguments.App().exit(success, out, err);
    return kExitDone;
  } catch (const CLI::ParseError& error) {
    throw TCommandError(kExitUsage, fmt::format("{}; see 'zel --help'", error.what()));
  }
  return arguments.Run(out, err);
}

}  // namespace

int Main(int argc, const char* const* argv, std::ostream& out, std::ostream& err) {
  int code = kExitDone;
  try {
    code = ParseAndRun(argc, argv, out, err);
  } catch (const TCommandError& error) {
    err << "zel: " << error.what() << "\n";
    code = error.GetExitCode();
  } catch (const std::exception& error) {
    err << "zel: " << error.what() << "\n";
    code = kExitBadInput;
  }
  out.flush();
  if (!out) {
    err << "zel: the output could not be written; is the disk full?\n";
    code = kExitNotWritten;
  }
  delete TLogger::GetInstance();  // writes the log's last line
  return code;
}

}  // namespace zel
