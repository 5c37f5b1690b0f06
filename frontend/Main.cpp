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

struct TCommandRow {
  const char* name;
  const char* text;
  std::vector<std::string> examples;
  std::unique_ptr<TCommand> (*make)(CLI::App& options);
};

// In the order of the help.
const std::vector<TCommandRow> kCommands = {
    {"collect",
     "Collect this machine: print a summary or all of some classes, or save it",           {"zel collect -o web01.xml.gz",
      "zel collect --class KVRSG_Processor KVRSG_Memory --format json"},
     MakeCollectCommand   },
    {"show",
     "Show a saved collection or this machine: a summary, or classes as tables",           {"zel show machine.xml.gz", "zel show machine.xml.gz Processors --format json --text"},
     MakeShowCommand      },
    {"get",
     "Print the bare values of a property",                                                {"zel get KVRSG_Processor.MaxClockSpeed",
      "zel get machine.xml.gz KVRSG_ComputerSystem.SerialNumber"},
     MakeGetCommand       },
    {"tree",
     "Show what the system consists of, as a tree",                                        {"zel tree", "zel tree server.xml.gz --from KVRSG_Processor --depth 2"},
     MakeTreeCommand      },
    {"diff",
     "Tell what has changed since a saved collection, or between two",                     {"zel diff server.xml.gz", "zel diff before.xml.gz after.xml.gz --class Memory"},
     MakeDiffCommand      },
    {"report",
     "Write a collection as one HTML page",                                                {"zel report -o machine.html", "zel report new.xml.gz --diff old.xml.gz -o changes.html"},
     MakeReportCommand    },
    {"upload",
     "Send a saved collection to an FTP server",                                           {"zel upload web01.xml.gz --to ftp://ftp.example.org/incoming/ --dry-run",
      "zel upload web01.xml.gz --to ftp://ftp.example.org/incoming/ --name rack7"},
     MakeUploadCommand    },
    {"schema",
     "List the classes, or describe some with all their properties",                       {"zel schema", "zel schema KVRSG_Processor --format md"},
     MakeSchemaCommand    },
    {"plugins",
     "List the plug-ins, their classes, and why one does not load",                        {"zel plugins", "zel plugins --plugin-dir /opt/acme/plugins"},
     MakePluginsCommand   },
    {"validate",
     "Check a CIM-XML document, and tell what would be read otherwise than it is written", {"zel validate acme.properties.xml", "zel validate host.xml.gz --format json"},
     MakeValidateCommand  },
    {"completion",
     "Write the completion of a shell",                                                    {"source <(zel completion bash)", "zel completion fish > ~/.config/fish/completions/zel.fish"},
     MakeCompletionCommand},
};

// Help that opens with examples.
class TFormatter : public CLI::Formatter {
 public:
  void AddExamples(const std::string& command, const std::vector<std::string>& examples) {
    fExamples[command] = examples;
  }

  const std::vector<std::string>& GetExamples(const std::string& command) const {
    return fExamples.at(command);
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
    for (const TCommandRow& row : kCommands) {
      fCommands[row.name] = row.make(*AddCommand(row.name, row.text, row.examples));
    }
    CLI::App* help = AddCommand("help", "Explain a command", {"zel help", "zel help collect"});
    help->add_option("COMMAND", fTopic, "The command to explain");
    help->add_flag("--man", fAsManual, "As a manual page, for man(1)");
  }

  CLI::App& App() { return fApp; }

  TExitCode Run(TStreams& streams) {
    const auto found = fCommands.find(fApp.get_subcommands().front()->get_name());
    return found == fCommands.end() ? Help(streams.out) : found->second->Run(streams);
  }

 private:
  CLI::App* AddCommand(const std::string& name, const std::string& text,
                       const std::vector<std::string>& examples) {
    fFormatter->AddExamples(name, examples);
    return fApp.add_subcommand(name, text);
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
    if (fAsManual) {
      WriteManual(*topic, out);
      return kExitDone;
    }
    const std::string name = fTopic.empty() ? "zel" : "zel " + fTopic;
    out << fFormatter->make_help(topic, name, CLI::AppFormatMode::Normal);
    return kExitDone;
  }

  void WriteManual(const CLI::App& topic, std::ostream& out) const {
    const std::vector<TCommandTable> commands = CommandsOf(fApp);
    if (&topic == &fApp) {
      zel::WriteManual(fApp.get_description(), OptionsOf(fApp), commands, out);
      return;
    }
    const TCommandTable command = {fTopic, topic.get_description(), OptionsOf(topic)};
    zel::WriteManual(command, fFormatter->GetExamples(fTopic), commands, out);
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
