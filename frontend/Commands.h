#pragma once

#include <memory>

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

// Each in the source that is named like it; what they do and how they are used stands in the table
// in Main.cpp.
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
