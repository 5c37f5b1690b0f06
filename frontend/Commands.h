#pragma once

#include <memory>
#include <string>
#include <vector>

#include "frontend/ExitCode.h"
#include "frontend/Streams.h"

namespace CLI {
class App;
}

namespace zel {

// A command of `zel`. It is made with the part of the command line that is its own, and puts its
// options there; when it runs they are filled in.
class TCommand {
 public:
  virtual ~TCommand() = default;

  // Throws TCommandError.
  virtual TExitCode Run(TStreams& streams) = 0;
};

// All that is said of a command. What its options are, it says itself when it is made.
struct TCommandRow {
  std::string name;
  std::string text;  // in one line of the help
  std::vector<std::string> examples;
  std::string details;  // for the manual page; an empty line between paragraphs
  std::unique_ptr<TCommand> (*make)(CLI::App& options);  // null for `help`, which is Main's own
};

// In the order of the help.
const std::vector<TCommandRow>& AllCommands();
// Null when there is none of that name.
const TCommandRow* FindCommand(const std::string& name);

// Each in the source that is named like it.
std::unique_ptr<TCommand> MakeCollectCommand(CLI::App& options);
std::unique_ptr<TCommand> MakeShowCommand(CLI::App& options);
std::unique_ptr<TCommand> MakeGetCommand(CLI::App& options);
std::unique_ptr<TCommand> MakeTreeCommand(CLI::App& options);
std::unique_ptr<TCommand> MakeDiffCommand(CLI::App& options);
std::unique_ptr<TCommand> MakeReportCommand(CLI::App& options);
std::unique_ptr<TCommand> MakeUploadCommand(CLI::App& options);
std::unique_ptr<TCommand> MakeSchemaCommand(CLI::App& options);
std::unique_ptr<TCommand> MakePluginsCommand(CLI::App& options);
std::unique_ptr<TCommand> MakeValidateCommand(CLI::App& options);
std::unique_ptr<TCommand> MakeCompletionCommand(CLI::App& options);

}  // namespace zel
