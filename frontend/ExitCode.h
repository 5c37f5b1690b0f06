#pragma once

#include <stdexcept>
#include <string>

namespace zel {

// What the command's exit code tells.
enum TExitCode : int {
  kExitDone = 0,
  kExitDifferent = 1,
  kExitUsage = 2,
  kExitPartial = 3,
  kExitBadInput = 4,
  kExitNoPlugins = 5,
  kExitNotSent = 6,
  kExitNotWritten = 7,
};

struct TExitCodeRow {
  int code;
  const char* meaning;
};

inline constexpr TExitCodeRow kExitCodes[] = {
    {kExitDone,       "done"                                         },
    {kExitDifferent,  "'diff' found differences, 'get' found nothing"},
    {kExitUsage,      "usage"                                        },
    {kExitPartial,    "collected in part"                            },
    {kExitBadInput,   "input unreadable or invalid"                  },
    {kExitNoPlugins,  "no plug-ins"                                  },
    {kExitNotSent,    "upload failed"                                },
    {kExitNotWritten, "output could not be written"                  },
    {130,             "interrupted"                                  },
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
