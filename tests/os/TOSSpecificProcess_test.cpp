#include <errno.h>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pthread.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

#include <utility>

#include "tests/support/LogSpy.h"
#include "tests/support/Status.h"
#include "tests/support/TempDir.h"
#include "zelcore/TOSSpecific.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

std::string StatusOfSpawning(const std::string& script) {
  return StatusOf([&] { TOSSpecific::SpawnProcess("sh", {"-c", script}); });
}

// Nothing is left behind when this ends: no descriptor, no child to wait for.
class NothingLeft {
 public:
  NothingLeft() : fDescriptors(Count()) {}
  ~NothingLeft() {
    EXPECT_EQ(fDescriptors, Count());
    EXPECT_EQ(-1, waitpid(-1, nullptr, WNOHANG));
    EXPECT_EQ(ECHILD, errno);
  }

 private:
  static std::size_t Count() { return TOSSpecific::ListDir("/proc/self/fd").size(); }

  std::size_t fDescriptors;
};

// Closes one end of the next pipe, 0 or 1, in the parent as soon as it has forked.
void LosePipeEnd(int end) {
  static int lost = -1;
  int ends[2];
  ASSERT_EQ(0, pipe(ends));  // the next one gets the same numbers
  close(ends[0]);
  close(ends[1]);
  if (lost < 0) {
    pthread_atfork(
        nullptr, [] { close(std::exchange(lost, 1000)); }, nullptr);
  }
  lost = ends[end];
}

}  // namespace

TEST(SpawnProcess, ReturnsExitCodeAndOutput) {
  struct {
    std::string command;
    std::vector<std::string> args;
    int code;
    std::string output;
  } const rows[] = {
      {"true",                {},                                           0,   ""               },
      {"false",               {},                                           1,   ""               },
      {"sh",                  {"-c", "exit 7"},                             7,   ""               },
      {"sh",                  {"-c", "exit 255"},                           255, ""               },
      {"zel-no-such-command", {},                                           1,   ""               },
      {"/no/such/command",    {"x"},                                        1,   ""               },
      {"/etc/passwd",         {},                                           1,   ""               },
      {"",                    {},                                           1,   ""               },
      {"echo",                {"text"},                                     0,   "text\n"         },
      {"printf",              {"%s|", "a b", "", "$HOME", "*", "'"},        0,   "a b||$HOME|*|'|"},
      {"sh",                  {"-c", "echo 1; echo 2 >&2; echo 3; exit 4"}, 4,   "1\n2\n3\n"      },
      {"cat",                 {},                                           0,   ""               },
      {"sh",                  {"-c", "read line || echo end"},              0,   "end\n"          },
  };
  const NothingLeft check;
  for (const auto& row : rows) {
    SCOPED_TRACE(row.command);
    std::string output = "former";
    EXPECT_EQ(row.code, TOSSpecific::SpawnProcess(row.command, row.args, output));
    EXPECT_EQ(row.output, output);
    EXPECT_EQ(row.output, TOSSpecific::SpawnProcess(row.command, row.args));
    if (row.args.empty()) {
      EXPECT_EQ(row.output, TOSSpecific::SpawnProcess(row.command));
    }
  }
  EXPECT_THAT(LogLines(), IsEmpty());
}

TEST(SpawnProcess, LogsTheCommandAtDebug) {
  SetLogThreshold(zelLogDebug);
  TOSSpecific::SpawnProcess("printf", {"x"});
  EXPECT_THAT(LogLines(zelLogDebug), ElementsAre("SpawnProcess: process printf"));
  EXPECT_EQ(1u, LogLines().size());
}

TEST(SpawnProcess, CapturesMoreThanAPipeHolds) {
  const std::string output = TOSSpecific::SpawnProcess("head", {"-c", "1000001", "/dev/zero"});
  EXPECT_TRUE(output == std::string(1000001, '\0'));
}

TEST(SpawnProcess, KeepsTheOutputOfAChildThatASignalEnds) {
  const NothingLeft check;
  std::string output;
  EXPECT_EQ("zelStatusFail", StatusOf([&] {
              TOSSpecific::SpawnProcess("sh", {"-c", "echo last words; kill -9 $$"}, output);
            }));
  EXPECT_EQ("last words\n", output);
  EXPECT_THAT(LogLines(zelLogError),
              ElementsAre("ERROR: SpawnProcess - child terminated abnormally"));
}

TEST(SpawnProcess, WaitsThroughSignals) {
  struct sigaction interrupt {};
  interrupt.sa_handler = [](int) {};
  sigaction(SIGALRM, &interrupt, nullptr);
  const itimerval often{
      {0, 5000},
      {0, 5000}
  };
  const itimerval never{};
  setitimer(ITIMER_REAL, &often, nullptr);
  std::string output;
  const int code = TOSSpecific::SpawnProcess(
      "sh", {"-c", "sleep 0.1; echo 1; exec >&- 2>&-; sleep 0.1; exit 3"}, output);
  setitimer(ITIMER_REAL, &never, nullptr);
  EXPECT_EQ(3, code);
  EXPECT_EQ("1\n", output);
}

TEST(SpawnProcess, TellsThatThereIsNoPipe) {
  // UBSan needs a pipe of its own to look at objects that it has not met before: let it meet them.
  StatusOf([] { TOSSpecific::CaptureFile("/no/such/file"); });
  ClearLog();
  rlimit former;
  getrlimit(RLIMIT_NOFILE, &former);
  const rlimit few{3, former.rlim_max};
  setrlimit(RLIMIT_NOFILE, &few);
  const std::string status = StatusOfSpawning("true");
  setrlimit(RLIMIT_NOFILE, &former);
  EXPECT_EQ("zelStatusFail", status);
  EXPECT_THAT(LogLines(zelLogError), ElementsAre("ERROR: SpawnProcess - pipe call failed"));
}

TEST(SpawnProcess, TellsThatItCannotFork) {
  const auto work = [] {
    const rlimit none{0, 0};
    if (setrlimit(RLIMIT_NPROC, &none) != 0 || (getuid() == 0 && setuid(65534) != 0)) _exit(2);
    const std::string status = StatusOfSpawning("true");
    std::cerr << status << ", " << LastLogLine() << std::flush;
    _exit(0);
  };
  EXPECT_EXIT(work(), testing::ExitedWithCode(0),
              "zelStatusFail, ERROR: SpawnProcess - fork call failed");
}

TEST(SpawnProcess, TellsThatItCannotCloseThePipe) {
  const NothingLeft check;
  LosePipeEnd(1);
  EXPECT_EQ("zelStatusFail", StatusOfSpawning("yes"));  // ends by the broken pipe
  EXPECT_THAT(LogLines(zelLogError), ElementsAre("ERROR: SpawnProcess - close pipe call failed"));
}

TEST(SpawnProcess, TellsThatItCannotReadThePipe) {
  const NothingLeft check;
  LosePipeEnd(0);
  EXPECT_EQ("zelStatusFail", StatusOfSpawning("yes"));
  EXPECT_THAT(LogLines(zelLogError), ElementsAre("ERROR: GetFileContents failed to read file"));
}

TEST(SpawnProcess, TellsThatItCannotWait) {
  signal(SIGCHLD, SIG_IGN);  // the system forgets children at once
  EXPECT_EQ("zelStatusFail", StatusOfSpawning("true"));
  signal(SIGCHLD, SIG_DFL);
  EXPECT_THAT(LogLines(zelLogError), ElementsAre("ERROR: SpawnProcess - waitpid call failed"));
}

TEST(SpawnProcess, WorksWithoutStandardDescriptors) {
  const auto work = [](std::vector<int> closed) {
    const int report = fcntl(STDERR_FILENO, F_DUPFD, 10);
    for (const int fd : closed) close(fd);
    std::string output;
    const int code =
        TOSSpecific::SpawnProcess("sh", {"-c", "echo out; echo err >&2; cat; exit 5"}, output);
    const bool good = output == "out\nerr\n" && code == 5;
    dup2(report, STDERR_FILENO);
    std::cerr << code << ": " << output << std::flush;
    _exit(good ? 0 : 1);
  };
  EXPECT_EXIT(work({0}), testing::ExitedWithCode(0), "");
  EXPECT_EXIT(work({1}), testing::ExitedWithCode(0), "");
  EXPECT_EXIT(work({2}), testing::ExitedWithCode(0), "");
  EXPECT_EXIT(work({0, 1, 2}), testing::ExitedWithCode(0), "");
}

TEST(SpawnProcess, HandsOnNothingButOutput) {
  const LogFile log;
  const int other = open("/dev/null", O_RDONLY);
  // The last one is that of the directory itself.
  EXPECT_EQ("0\n1\n2\n3\n", TOSSpecific::SpawnProcess("ls", {"/proc/self/fd"}));
  EXPECT_EQ(0, close(other));
}

TEST(SpawnProcess, LeavesTheParentsStandardInputAlone) {
  int ends[2];
  ASSERT_EQ(0, pipe(ends));
  const int former = dup(STDIN_FILENO);
  dup2(ends[0], STDIN_FILENO);
  ASSERT_EQ(1, write(ends[1], "x", 1));
  EXPECT_EQ("", TOSSpecific::SpawnProcess("cat"));
  char c = 0;
  EXPECT_EQ(1, read(STDIN_FILENO, &c, 1));
  dup2(former, STDIN_FILENO);
  for (const int fd : {former, ends[0], ends[1]}) close(fd);
}
