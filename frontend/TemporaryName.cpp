#include "frontend/TemporaryName.h"

#include <fmt/format.h>
#include <limits.h>
#include <signal.h>
#include <stdio.h>
#include <unistd.h>

#include <cerrno>
#include <iterator>

namespace zel {
namespace {

constexpr int kInterruptions[] = {SIGINT, SIGTERM, SIGHUP};

// For the handler.
char gName[PATH_MAX];
struct sigaction gFormer[std::size(kInterruptions)];

// The system has its own handling back by now, and gets the signal when this returns.
void RemoveFirst(int signal) {
  unlink(gName);
  raise(signal);
}

// Holds interruptions back.
class TNoInterruption {
 public:
  TNoInterruption() {
    sigset_t signals;
    sigemptyset(&signals);
    for (const int signal : kInterruptions) sigaddset(&signals, signal);
    sigprocmask(SIG_BLOCK, &signals, &fFormer);
  }
  ~TNoInterruption() { sigprocmask(SIG_SETMASK, &fFormer, nullptr); }
  TNoInterruption(const TNoInterruption&) = delete;
  TNoInterruption& operator=(const TNoInterruption&) = delete;

 private:
  sigset_t fFormer;
};

}  // namespace

TTemporaryName::~TTemporaryName() {
  if (!fIsSet) return;
  const TNoInterruption guard;
  unlink(gName);
  Forget();
}

int TTemporaryName::Find(const std::string& directory,
                         const std::function<int(const char*)>& make) {
  const TNoInterruption guard;
  for (int attempt = 0;; ++attempt) {
    const std::string name = fmt::format("{}/.zel-{}-{}", directory, getpid(), attempt);
    if (name.size() >= sizeof gName) {
      errno = ENAMETOOLONG;
      return -1;
    }
    const int result = make(name.c_str());
    if (result < 0 && errno == EEXIST) continue;
    if (result >= 0) {
      gName[name.copy(gName, name.size())] = '\0';
      Watch();
    }
    return result;
  }
}

bool TTemporaryName::Rename(const std::string& path) {
  const TNoInterruption guard;
  if (rename(gName, path.c_str()) != 0) return false;
  Forget();
  return true;
}

// What is ignored stays ignored.
void TTemporaryName::Watch() {
  struct sigaction watch = {};
  watch.sa_handler = RemoveFirst;
  watch.sa_flags = static_cast<int>(SA_RESETHAND);
  for (std::size_t i = 0; i < std::size(kInterruptions); ++i) {
    sigaction(kInterruptions[i], nullptr, &gFormer[i]);
    if (gFormer[i].sa_handler == SIG_DFL) sigaction(kInterruptions[i], &watch, nullptr);
  }
  fIsSet = true;
}

void TTemporaryName::Forget() {
  for (std::size_t i = 0; i < std::size(kInterruptions); ++i) {
    sigaction(kInterruptions[i], &gFormer[i], nullptr);
  }
  fIsSet = false;
}

}  // namespace zel
