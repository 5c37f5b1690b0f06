#pragma once

#include <errno.h>
#include <unistd.h>

#include <utility>

// Calls `call` until no signal interrupts it; its result.
template <class TCall>
auto Uninterrupted(TCall call) {
  decltype(call()) result;
  do {
    result = call();
  } while (result == -1 && errno == EINTR);
  return result;
}

// An open file descriptor and its owner.
class TDescriptor {
 public:
  explicit TDescriptor(int fd = -1) : fFd(fd) {}
  TDescriptor(TDescriptor&& other) noexcept : fFd(other.Release()) {}
  TDescriptor& operator=(TDescriptor&&) = delete;
  ~TDescriptor() { Close(); }

  bool IsOpen() const { return fFd >= 0; }
  int Get() const { return fFd; }
  // Gives it away: another owner closes it.
  int Release() { return std::exchange(fFd, -1); }

  // Whether closing went well; nothing to close went well, too. Not repeated after a signal: Linux
  // has given the descriptor back by then.
  bool Close() {
    const int fd = Release();
    return fd < 0 || close(fd) == 0 || errno == EINTR;
  }

 private:
  int fFd;
};
