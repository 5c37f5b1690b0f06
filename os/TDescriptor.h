#pragma once

#include <errno.h>
#include <unistd.h>

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
  TDescriptor(TDescriptor&& other) noexcept : fFd(other.fFd) { other.fFd = -1; }
  TDescriptor& operator=(TDescriptor&&) = delete;
  ~TDescriptor() { Close(); }

  bool IsOpen() const { return fFd >= 0; }
  int Get() const { return fFd; }

  // Whether closing went well; nothing to close went well, too. Not repeated after a signal: Linux
  // has given the descriptor back by then.
  bool Close() {
    const int fd = fFd;
    fFd = -1;
    return fd < 0 || close(fd) == 0 || errno == EINTR;
  }

 private:
  int fFd;
};
