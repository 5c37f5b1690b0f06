#pragma once

#include <fstream>
#include <list>
#include <string>

#include "zelcore/ILogger.h"
#include "zelcore/detail/Export.h"

// The process's logger. The front end makes it with Initialize() before anything else and may
// delete it at the end, which writes the log file's closing banner.
class ZEL_API TLogger : public ILogger {
 public:
  // Makes the logger and returns 0. A second call replaces the pointer; the first logger is neither
  // closed nor destroyed.
  static int Initialize();
  // Null before Initialize() and after the logger was deleted.
  static TLogger* GetInstance();

  ~TLogger() override;

  void OutputLogEntry(IPlugin const* plugin, zelLogSeverity severity,
                      const std::string& message) override;
  void OutputLogEntry(IPlugin const* plugin, zelLogSeverity severity, void const* data,
                      int length) override;
  std::list<TLogEntry>& GetLog() override;
  void ClearLog() override;
  void SetLogThreshold(zelLogSeverity threshold) override;
  zelLogSeverity GetLogThreshold() override;
  void SetLogFilename(const std::string& name) override;

 private:
  TLogger();
  void Accept(IPlugin const* plugin, zelLogSeverity severity, const std::string& message);

  static TLogger* fgInstance;

  zelLogSeverity fThreshold;
  std::string fLogFilename;  // empty: no log file is in use
  std::ofstream fLogFile;
  std::list<TLogEntry> fLog;
};
