#pragma once

#include <functional>
#include <string>

namespace zel {

// The name of a file that is not to stay: taken away at the end, and before SIGINT, SIGTERM or
// SIGHUP ends the process. One at a time.
class TTemporaryName {
 public:
  TTemporaryName() = default;
  ~TTemporaryName();
  TTemporaryName(const TTemporaryName&) = delete;
  TTemporaryName& operator=(const TTemporaryName&) = delete;

  bool IsSet() const { return fIsSet; }

  // Tries names in `directory` until `make`, a system call that returns -1 and sets errno when it
  // fails, finds one that is free. Returns what `make` returned last.
  int Find(const std::string& directory, const std::function<int(const char*)>& make);

  // Gives the file the name that stays. False, with errno set, when that fails.
  bool Rename(const std::string& path);

 private:
  void Watch();
  void Forget();

  bool fIsSet = false;
};

}  // namespace zel
