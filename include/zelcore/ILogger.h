#pragma once

#include <list>
#include <string>

#include "zelcore/TCIMDateTime.h"
#include "zelcore/detail/Export.h"
#include "zelcore/zel.h"

// Where the library, the plug-ins and the front end report what happens. Messages of severity Error
// to Debug that pass the threshold are remembered; all that pass it are written to the log file
// once there is one. Lower numbers are more severe.
class ZEL_API ILogger {
 public:
  struct TLogEntry {
    IPlugin const* plugin;  // null for the library itself; not owned
    zelLogSeverity severity;
    std::string message;  // the caller's text, or the dump
    TCIMDateTime time;    // local time at which it was logged
  };

  virtual ~ILogger();

  // Throws zelStatusFail for a severity that passes the threshold but has no name; a negative one
  // has been remembered by then. zelLogMemoryOnly is remembered whatever the threshold and never
  // written.
  virtual void OutputLogEntry(IPlugin const* plugin, zelLogSeverity severity,
                              const std::string& message) = 0;
  // The same for a dump of `length` bytes, "0a ff 00 "; at most 10240 bytes, and zelLogMemoryOnly
  // dumps are dropped.
  virtual void OutputLogEntry(IPlugin const* plugin, zelLogSeverity severity, void const* data,
                              int length) = 0;

  // The remembered entries, oldest first.
  virtual std::list<TLogEntry>& GetLog() = 0;
  virtual void ClearLog() = 0;

  // zelLogStatus at first.
  virtual void SetLogThreshold(zelLogSeverity threshold) = 0;
  virtual zelLogSeverity GetLogThreshold() = 0;

  // Replaces the file's contents and writes from now on, each line at once. Throws
  // zelStatusAccessDenied or zelStatusFileSystemError; lines are lost then, entries still kept.
  virtual void SetLogFilename(const std::string& name) = 0;
};
