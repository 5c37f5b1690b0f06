#pragma once

#include <stdexcept>
#include <string>

namespace zel {

// What the command's exit code tells; documented in the help.
enum TExitCode : int {
  kExitDone = 0,
  kExitDifferent = 1,  // or nothing found
  kExitUsage = 2,
  kExitPartial = 3,
  kExitBadInput = 4,
  kExitNoPlugins = 5,
  kExitNotSent = 6,
  kExitNotWritten = 7,
};

// Ends a command: one line for people that says what to do next, and the exit code.
class TCommandError : public std::runtime_error {
 public:
  TCommandError(TExitCode code, const std::string& message)
      : std::runtime_error(message), fCode(code) {}
  TExitCode GetExitCode() const { return fCode; }

 private:
  TExitCode fCode;
};

}  // namespace zel
