#include "frontend/Main.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <exception>
#include <map>

#include "frontend/Commands.h"
#include "frontend/ExitCode.h"
#include "frontend/Manual.h"
#include "frontend/OptionTable.h"
#include "zelcore/zelcore.h"

namespace zel {
namespace {

// "Exit codes: 0 done, 2 usage, ...", in lines.
std::string ExitCodesText() {
  constexpr std::size_t kWidth = 96;
  std::string text = "Exit codes:";
  std::size_t lineStart = 0;
  for (const TExitCodeRow& row : kExitCodes) {
    const std::string entry = fmt::format(" {} {}", row.code, row.meaning);
    if (&row != std::begin(kExitCodes)) text += ',';
    if (text.size() + entry.size() - lineStart > kWidth) {
      text += "\n ";
      lineStart = text.size() - 1;
    }
    text += entry;
  }
  return text + ".";
}

// Help that opens with examples.
class TFormatter : public CLI::Formatter {
 public:
  std::string make_description(const CLI::App* app) const override {
    std::string text = app->get_description() + ".\n\n";
    const TCommandRow* command = FindCommand(app->get_name());
    if (!command) return text;
    text += "Examples:\n";
    for (const std::string& example : command->examples) text += "  " + example + "\n";
    return text + "\n";
  }
};

// The command line, and the commands that stand on it.
class TCommandLine {
 public:
  TCommandLine()
      : fFormatter(std::make_shared<TFormatter>()),
        fApp("Collects a typed inventory of this machine", "zel") {
    fApp.set_version_flag("--version", "zel " ZEL_VERSION);
    fApp.footer(ExitCodesText());
    fApp.require_subcommand(1);
    fApp.formatter(fFormatter);
    for (const TCommandRow& row : AllCommands()) {
      CLI::App& command = *fApp.add_subcommand(row.name, row.text);
      if (row.make) {
        fCommands[row.name] = row.make(command);
      } else {
        AddHelpOptions(command);
      }
    }
  }

  CLI::App& App() { return fApp; }

  TExitCode Run(TStreams& streams) {
    const auto found = fCommands.find(fApp.get_subcommands().front()->get_name());
    return found == fCommands.end() ? Help(streams.out) : found->second->Run(streams);
  }

 private:
  void AddHelpOptions(CLI::App& help) {
    help.add_option("COMMAND", fTopic, "The command to explain");
    help.add_flag("--man", fAsManual, "As a manual page, for man(1)");
  }

  TExitCode Help(std::ostream& out) {
    if (!fTopic.empty() && !FindCommand(fTopic)) {
      throw TCommandError(kExitUsage,
                          fmt::format("no command '{}'; 'zel help' lists them", fTopic));
    }
    const CLI::App* topic = fTopic.empty() ? &fApp : fApp.get_subcommand(fTopic);
    if (fAsManual) {
      WriteManual(*topic, out);
      return kExitDone;
    }
    const std::string name = fTopic.empty() ? "zel" : "zel " + fTopic;
    out << fFormatter->make_help(topic, name, CLI::AppFormatMode::Normal);
    return kExitDone;
  }

  void WriteManual(const CLI::App& topic, std::ostream& out) const {
    if (&topic == &fApp) {
      zel::WriteManual(fApp.get_description(), OptionsOf(fApp), out);
    } else {
      zel::WriteManual(*FindCommand(fTopic), OptionsOf(topic), out);
    }
  }

  std::shared_ptr<TFormatter> fFormatter;
  CLI::App fApp;
  std::map<std::string, std::unique_ptr<TCommand>> fCommands;
  std::string fTopic;
  bool fAsManual = false;
};

TExitCode ParseAndRun(int argc, const char* const* argv, TStreams& streams) {
  TCommandLine line;
  try {
    line.App().parse(argc, argv);
  } catch (const CLI::Success& success) {  // --help, --version
    line.App().exit(success, streams.out, streams.err);
    return kExitDone;
  } catch (const CLI::ParseError& error) {
    throw TCommandError(kExitUsage, fmt::format("{}; see 'zel --help'", error.what()));
  }
  return line.Run(streams);
}

}  // namespace

int Main(int argc, const char* const* argv, TStreams streams) {
  int code = kExitDone;
  try {
    code = ParseAndRun(argc, argv, streams);
  } catch (const TCommandError& error) {
    streams.err << "zel: " << error.what() << "\n";
    code = error.GetExitCode();
  } catch (const std::exception& error) {
    streams.err << "zel: " << error.what() << "\n";
    code = kExitBadInput;
  }
  streams.out.flush();
  if (!streams.out && code != kExitNotWritten) {
    streams.err << "zel: the output could not be written; is the disk full?\n";
    code = kExitNotWritten;
  }
  delete TLogger::GetInstance();  // writes the log's last line
  return code;
}

}  // namespace zel
