// The part of TOSSpecific that runs child processes.

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <utility>

#include "os/TDescriptor.h"
#include "zelcore/TOSSpecific.h"
#include "zelcore/detail/Fail.h"

using zelcore::detail::Fail;
using zelcore::detail::LogCore;

namespace {

struct TPipe {
  TDescriptor readEnd, writeEnd;
};

// Both ends above the standard descriptors, which the child rearranges: a parent that has closed
// one of those would get its number here.
TDescriptor AboveStandard(TDescriptor end) {
  if (!end.IsOpen() || end.Get() > STDERR_FILENO) return end;
  return TDescriptor(fcntl(end.Get(), F_DUPFD_CLOEXEC, STDERR_FILENO + 1));
}

TPipe OpenPipe() {
  int ends[2] = {-1, -1};
  const bool opened = pipe2(ends, O_CLOEXEC) == 0;
  TPipe both{TDescriptor(ends[0]), TDescriptor(ends[1])};
  TPipe moved{AboveStandard(std::move(both.readEnd)), AboveStandard(std::move(both.writeEnd))};
  if (!opened || !moved.readEnd.IsOpen() || !moved.writeEnd.IsOpen()) {
    Fail(zelStatusFail, "ERROR: SpawnProcess - pipe call failed");
  }
  return moved;
}

void ClosePipeEnd(TDescriptor& end) {
  if (!end.Close()) Fail(zelStatusFail, "ERROR: SpawnProcess - close pipe call failed");
}

// In the child: becomes the command. The pipe's own descriptors close as it does.
[[noreturn]] void Become(char* const* arguments, int output) {
  // An empty file in the place of standard input: the command reads end-of-file at once, and no
  // file that it opens gets number 0.
  close(STDIN_FILENO);
  open("/dev/null", O_RDONLY);
  if (dup2(output, STDOUT_FILENO) >= 0 && dup2(output, STDERR_FILENO) >= 0) {
    // Streams, such as the log file's, do not open their descriptors close-on-exec.
    close_range(STDERR_FILENO + 1, ~0U, CLOSE_RANGE_CLOEXEC);
    execvp(arguments[0], arguments);
  }
  _exit(1);
}

// A child process, which is waited for on every way out.
class TChild {
 public:
  TChild() = default;
  ~TChild() { Wait(); }
  TChild(const TChild&) = delete;
  TChild& operator=(const TChild&) = delete;

  pid_t Fork() { return fPid = fork(); }
  bool Wait() {
    const pid_t pid = std::exchange(fPid, -1);
    return pid > 0 && Uninterrupted([&] { return waitpid(pid, &fStatus, 0); }) == pid;
  }
  bool Exited() const { return WIFEXITED(fStatus); }
  int GetExitCode() const { return WEXITSTATUS(fStatus); }

 private:
  pid_t fPid = -1;
  int fStatus = 0;
};

std::vector<char*> ArgumentsOf(const std::string& command, const std::vector<std::string>& args) {
  std::vector<char*> arguments{const_cast<char*>(command.c_str())};
  for (const std::string& arg : args) arguments.push_back(const_cast<char*>(arg.c_str()));
  arguments.push_back(nullptr);
  return arguments;
}

}  // namespace

int TOSSpecific::SpawnProcess(const std::string& command, const std::vector<std::string>& args,
                              std::string& output) {
  LogCore(zelLogDebug, "SpawnProcess: process " + command);
  const std::vector<char*> arguments = ArgumentsOf(command, args);
  TChild child;  // outlives the pipe: a child that is still writing ends when that is closed
  TPipe pipe = OpenPipe();
  const pid_t pid = child.Fork();
  if (pid < 0) Fail(zelStatusFail, "ERROR: SpawnProcess - fork call failed");
  if (pid == 0) Become(arguments.data(), pipe.writeEnd.Get());

  ClosePipeEnd(pipe.writeEnd);
  output = GetFileContents(pipe.readEnd.Get());
  ClosePipeEnd(pipe.readEnd);
  if (!child.Wait()) Fail(zelStatusFail, "ERROR: SpawnProcess - waitpid call failed");
  if (!child.Exited()) Fail(zelStatusFail, "ERROR: SpawnProcess - child terminated abnormally");
  return child.GetExitCode();
}

std::string TOSSpecific::SpawnProcess(const std::string& command,
                                      const std::vector<std::string>& args) {
  std::string output;
  SpawnProcess(command, args, output);
  return output;
}

std::string TOSSpecific::SpawnProcess(const std::string& command) {
  return SpawnProcess(command, {});
}
