#include "frontend/PluginHost.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <poll.h>
#include <signal.h>
#include <string.h>
#include <sys/prctl.h>
#include <sys/wait.h>

#include <algorithm>
#include <cerrno>
#include <nlohmann/json.hpp>
#include <stdexcept>

#include "frontend/Descriptor.h"
#include "zelcore/TOSSpecific.h"

namespace zel {
namespace {

using nlohmann::json;
using TClock = std::chrono::steady_clock;

// The child's answer: a line of JSON, then the instance document.
std::string Pack(const TPluginOutcome& outcome) {
  json records = json::array();
  for (const TPluginRecord& record : outcome.records) {
    records.push_back({record.name, record.version, record.interfaceVersion, record.type,
                       record.initialized, record.documentRead});
  }
  json log = json::array();
  for (const TLogLine& line : outcome.log) log.push_back({int{line.severity}, line.text});
  const json header = {
      {"records", records      },
      {"log",     log          },
      {"fault",   outcome.fault}
  };
  return header.dump(-1, ' ', false, json::error_handler_t::replace) + "\n" + outcome.instances;
}

void Unpack(const std::string& answer, TPluginOutcome& outcome) {
  const std::size_t end = answer.find('\n');
  if (end == std::string::npos) throw std::runtime_error("incomplete");
  const json header = json::parse(answer.substr(0, end));
  for (const json& record : header.at("records")) {
    outcome.records.push_back(
        {record.at(0), record.at(1), record.at(2), record.at(3), record.at(4), record.at(5)});
  }
  for (const json& line : header.at("log")) {
    outcome.log.push_back({static_cast<zelLogSeverity>(line.at(0).get<int>()), line.at(1)});
  }
  outcome.fault = header.at("fault");
  outcome.instances = answer.substr(end + 1);
}

void WriteAll(int fd, const std::string& text) {
  for (std::size_t done = 0; done < text.size();) {
    const ssize_t count = write(fd, text.data() + done, text.size() - done);
    if (count >= 0) {
      done += static_cast<std::size_t>(count);
    } else if (errno != EINTR) {
      return;  // the parent has gone or given up
    }
  }
}

[[noreturn]] void Serve(pid_t parent, int answer,
                        const std::function<void(TPluginOutcome&)>& work) {
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  if (getppid() != parent) _exit(0);  // it has gone already
  // What a plug-in prints must not end up in the data.
  const TDescriptor null(open("/dev/null", O_RDONLY | O_CLOEXEC));
  dup2(null.Get(), STDIN_FILENO);
  dup2(STDERR_FILENO, STDOUT_FILENO);
  TPluginOutcome outcome;
  try {
    work(outcome);
  } catch (const std::exception& error) {
    outcome.fault = error.what();
  } catch (...) {
    outcome.fault = "threw something that is no exception";
  }
  WriteAll(answer, Pack(outcome));
  _exit(0);  // buffers and singletons are the parent's
}

// Reads to the end; false when the deadline came first.
bool ReadUntil(int fd, TClock::time_point deadline, const std::function<void()>& tick,
               std::string& text) {
  constexpr std::chrono::milliseconds kTick{100};
  char block[65536];
  for (;;) {
    tick();
    const auto left =
        std::chrono::duration_cast<std::chrono::milliseconds>(deadline - TClock::now());
    pollfd waiting = {fd, POLLIN, 0};
    const int ready = poll(&waiting, 1, static_cast<int>(std::clamp(left, {}, kTick).count()));
    if (ready < 0 && errno == EINTR) continue;
    if (ready < 0 || (ready == 0 && left <= kTick)) return false;
    if (ready == 0) continue;
    const ssize_t count = read(fd, block, sizeof block);
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return true;
    text.append(block, static_cast<std::size_t>(count));
  }
}

int WaitFor(pid_t child) {
  int status = 0;
  while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
  }
  return status;
}

}  // namespace

std::string TPluginOutcome::Reason() const {
  if (!fault.empty()) return fault;
  for (const TLogLine& line : log) {
    if (line.severity <= zelLogError) return line.text;
  }
  for (const TPluginRecord& record : records) {
    if (!record.initialized) return "its Init failed";
  }
  return records.empty() ? "it registered no plug-in" : "";
}

std::string TPluginOutcome::Name() const {
  if (!records.empty() && !records.front().name.empty()) return records.front().name;
  std::string name = path.substr(path.rfind('/') + 1);
  name = name.substr(0, name.find(TOSSpecific::kPluginExtension));
  return name.compare(0, 3, "lib") == 0 ? name.substr(3) : name;
}

TPluginOutcome RunInChild(const std::string& path, std::chrono::milliseconds deadline,
                          const std::function<void(TPluginOutcome&)>& work,
                          const std::function<void()>& tick) {
  TPluginOutcome outcome;
  outcome.path = path;
  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0) {
    outcome.fault = fmt::format("no pipe: {}", strerror(errno));
    return outcome;
  }
  const TDescriptor reading(ends[0]);
  TDescriptor writing(ends[1]);
  const TClock::time_point end = TClock::now() + deadline;
  const pid_t self = getpid();
  const pid_t child = fork();
  if (child < 0) {
    outcome.fault = fmt::format("no process: {}", strerror(errno));
    return outcome;
  }
  if (child == 0) Serve(self, writing.Get(), work);
  writing.Close();

  std::string answer;
  const bool inTime = ReadUntil(reading.Get(), end, tick, answer);
  if (!inTime) kill(child, SIGKILL);
  const int status = WaitFor(child);
  if (!inTime) {
    outcome.fault =
        fmt::format("did not answer within {} s", static_cast<double>(deadline.count()) / 1000);
  } else if (WIFSIGNALED(status)) {
    outcome.fault =
        fmt::format("was ended by signal {} ({})", WTERMSIG(status), strsignal(WTERMSIG(status)));
  } else {
    try {
      Unpack(answer, outcome);
    } catch (const std::exception&) {
      outcome.fault = fmt::format("ended its process with status {}", WEXITSTATUS(status));
    }
  }
  return outcome;
}

}  // namespace zel
