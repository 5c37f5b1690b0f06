#pragma once

#include <chrono>
#include <functional>
#include <string>
#include <vector>

#include "zelcore/zel.h"

namespace zel {

// One line that a plug-in, or the library on its behalf, logged.
struct TLogLine {
  zelLogSeverity severity;
  std::string text;
};

// What one library registered.
struct TPluginRecord {
  std::string name;
  std::string version;
  std::string interfaceVersion;
  int type = 0;
  bool initialized = false;
  bool documentRead = false;
};

// What came of one plug-in.
struct TPluginOutcome {
  std::string path;
  std::vector<TPluginRecord> records;
  std::vector<TLogLine> log;
  std::string instances;  // the document of what it collected
  std::size_t instanceCount = 0;
  std::vector<std::string> classes;  // what it was asked for
  std::chrono::microseconds duration{0};
  std::string fault;  // why its process did not come back by itself; empty when it did

  bool Failed() const { return !Reason().empty(); }
  // Why it failed, in one line; empty when it did not.
  std::string Reason() const;
  // As the plug-in names itself, or as its file is named.
  std::string Name() const;
};

// Runs `work` in a child process and returns what it filled in. The child is killed when it takes
// longer than `deadline`; whatever happens to it ends up in `fault`. The child writes nothing to
// this process's standard output. While it works, `tick` is called about ten times a second.
TPluginOutcome RunInChild(const std::string& path, std::chrono::milliseconds deadline,
                          const std::function<void(TPluginOutcome&)>& work,
                          const std::function<void()>& tick);

}  // namespace zel
