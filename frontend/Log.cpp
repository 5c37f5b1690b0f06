#include "frontend/Log.h"

#include <fmt/format.h>
#include <string.h>

#include <cerrno>
#include <new>

#include "frontend/ExitCode.h"
#include "zelcore/TLogger.h"
#include "zelcore/TZELException.h"

namespace zel {

void StartLog(const std::string& file, zelLogSeverity level) {
  if (!TLogger::GetInstance()) TLogger::Initialize();
  TLogger::GetInstance()->SetLogThreshold(level);
  if (file.empty()) return;
  try {
    TLogger::GetInstance()->SetLogFilename(file);
  } catch (const TZELException&) {
    throw TCommandError(kExitNotWritten,
                        fmt::format("cannot write the log file '{}': {}; name another with --log",
                                    file, strerror(errno)));
  }
}

std::string FirstLoggedError() {
  for (const ILogger::TLogEntry& entry : TLogger::GetInstance()->GetLog()) {
    if (entry.severity <= zelLogError) return entry.message;
  }
  return "";
}

std::string WhyFailed(const std::exception& error) {
  if (dynamic_cast<const std::bad_alloc*>(&error)) {
    return "what it describes does not fit into memory";
  }
  const std::string logged = FirstLoggedError();
  return logged.empty() ? error.what() : logged;
}

}  // namespace zel
