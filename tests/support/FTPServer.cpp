#include "tests/support/FTPServer.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr int kStartingSeconds = 20;

[[noreturn]] void BecomeServer(const std::string& directory, const std::string& log) {
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  const int output = open(log.c_str(), O_WRONLY | O_CREAT, 0600);
  dup2(output, STDOUT_FILENO);
  dup2(output, STDERR_FILENO);
  if (chdir(directory.c_str()) != 0) _exit(1);  // it wants one that exists
  // By its path: Python looks for its modules from where it is called.
  execl("/usr/bin/python3", "/usr/bin/python3", "-m", "pyftpdlib", "-i", "127.0.0.1", "-p", "0",
        "-w", "-d", directory.c_str(), nullptr);
  _exit(1);
}

// The server chooses a free port and tells which: "... FTP server on 127.0.0.1:PORT, ...".
std::string HostIn(const std::string& log) {
  const std::size_t begin = log.find("127.0.0.1:");
  const std::size_t end = log.find(',', begin);
  return end == std::string::npos ? "" : log.substr(begin, end - begin);
}

}  // namespace

FTPServer::FTPServer() : fPid(fork()) {
  const std::string log = fLogDir.PathOf("log");
  if (fPid == 0) BecomeServer(fDir.GetPath(), log);
  for (int tenths = 0; fHost.empty() && tenths < kStartingSeconds * 10; ++tenths) {
    usleep(100 * 1000);
    fHost = HostIn(ReadFile(log));
  }
  EXPECT_NE("", fHost) << ReadFile(log);
}

FTPServer::~FTPServer() {
  kill(fPid, SIGKILL);
  waitpid(fPid, nullptr, 0);
}
