#pragma once

#include <string>
#include <vector>

#include "tests/support/TempDir.h"
#include "zelcore/zel.h"

// The logger's memory as a spy. Every test starts with a new logger at threshold zelLogStatus, so
// zelLogDebug lines show only after SetLogThreshold(zelLogDebug). zelLogVerbose lines are never
// remembered: read them with a LogFile. The texts carry neither prefix nor tag.

// Replaces the logger by a new one.
void RestartLog();
void SetLogThreshold(zelLogSeverity threshold);
void ClearLog();

// The text of the newest entry; "" when there is none.
std::string LastLogLine();
// Its severity; -1 when there is none.
int LastLogSeverity();

// The texts of all entries, or of those with just this severity, oldest first.
std::vector<std::string> LogLines();
std::vector<std::string> LogLines(zelLogSeverity severity);

// A log file that everything of at most `threshold` goes to from now on, until RestartLog().
class LogFile {
 public:
  explicit LogFile(zelLogSeverity threshold = zelLogVerbose);

  // The lines so far as they stand in the file, with prefix and tag, without the opening banner.
  std::vector<std::string> Lines() const;

 private:
  TempDir fDir;
};
