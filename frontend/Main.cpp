#include "frontend/Main.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <exception>
#include <map>
#include <new>

#include "frontend/Commands.h"
#include "frontend/ExitCode.h"
#include "frontend/Manual.h"
#include "frontend/NearMatch.h"
#include "frontend/OptionTable.h"
#include "frontend/ValueText.h"
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

// What there is none of, what was meant perhaps, and where to look.
TCommandError Unknown(const char* what, const std::string& name,
                      const std::vector<std::string>& names, const std::string& where) {
  const std::string meant = DidYouMean(name, names);
  return {kExitUsage,
          fmt::format("no {} '{}'{} {}", what, name, meant.empty() ? ";" : meant, where)};
}

TCommandError UnknownCommand(const std::string& name) {
  std::vector<std::string> names;
  for (const TCommandRow& row : AllCommands()) names.push_back(row.name);
  return Unknown("command", name, names, "'zel help' lists them");
}

TCommandError UnknownOption(const CLI::App& app, const std::string& name, const std::string& help) {
  const bool isLong = name.compare(0, 2, "--") == 0;
  std::vector<std::string> names;
  for (const TOptionRow& row : OptionsOf(app)) {
    if (isLong) names.insert(names.end(), row.names.begin(), row.names.end());
  }
  return Unknown("option", name.substr(0, name.find('=')), names, help);
}

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
    if (!fTopic.empty() && !FindCommand(fTopic)) throw UnknownCommand(fTopic);
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

// In the words of the parser, but where they are hard to read.
std::string Explain(const CLI::App& command, const CLI::ParseError& error) {
  const std::vector<std::string> rest = command.remaining();
  if (!rest.empty()) return fmt::format("unexpected argument '{}'", rest.front());
  const std::string text = error.what();
  const CLI::Option* const option =
      error.get_name() == "ArgumentMismatch"
          ? command.get_option_no_throw(text.substr(0, text.find(':')))
          : nullptr;
  return option ? fmt::format("{} needs a value: {}", option->get_name(), option->get_type_name())
                : text;
}

// Why the words of the command line were refused.
TCommandError UsageError(const CLI::App& program, const std::vector<std::string>& words,
                         const CLI::ParseError& error) {
  const auto isOption = [](const std::string& word) { return word.compare(0, 1, "-") == 0; };
  const auto commands = program.get_subcommands();
  if (commands.empty()) {
    if (words.empty()) return {kExitUsage, "name a command; 'zel help' lists them"};
    if (!isOption(words.front())) return UnknownCommand(words.front());
    return UnknownOption(program, words.front(), "see 'zel --help'");
  }
  const CLI::App& command = *commands.front();
  const std::string help = fmt::format("see 'zel {} --help'", command.get_name());
  const std::vector<std::string> rest = command.remaining();
  const auto unknown = std::find_if(rest.begin(), rest.end(), isOption);
  if (unknown != rest.end()) return UnknownOption(command, *unknown, help);
  return {kExitUsage, fmt::format("{}; {}", Explain(command, error), help)};
}

TExitCode ParseAndRun(int argc, const char* const* argv, TStreams& streams) {
  TCommandLine line;
  try {
    line.App().parse(argc, argv);
  } catch (const CLI::Success& success) {  // --help, --version
    line.App().exit(success, streams.out, streams.err);
    return kExitDone;
  } catch (const CLI::ParseError& error) {
    throw UsageError(line.App(), {argv + 1, argv + argc}, error);
  }
  return line.Run(streams);
}

}  // namespace

int Main(int argc, const char* const* argv, TStreams streams) {
  int code = kExitDone;
  try {
    code = ParseAndRun(argc, argv, streams);
  } catch (const TCommandError& error) {
    streams.err << "zel: " << Printable(error.what()) << "\n";
    code = error.GetExitCode();
  } catch (const std::bad_alloc&) {
    streams.err << "zel: out of memory\n";
    code = kExitBadInput;
  } catch (const std::exception& error) {
    streams.err << "zel: " << Printable(error.what()) << "\n";
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
