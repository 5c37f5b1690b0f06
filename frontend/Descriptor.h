#pragma once

#include <unistd.h>

#include <utility>

namespace zel {

// Owns a file descriptor.
class TDescriptor {
 public:
  explicit TDescriptor(int fd = -1) : fFd(fd) {}
  TDescriptor(TDescriptor&& other) noexcept : fFd(std::exchange(other.fFd, -1)) {}
  TDescriptor& operator=(TDescriptor&& other) noexcept {
    std::swap(fFd, other.fFd);
    return *this;
  }
  ~TDescriptor() { Close(); }

  int Get() const { return fFd; }
  explicit operator bool() const { return fFd >= 0; }
  void Close() {
    if (fFd >= 0) close(std::exchange(fFd, -1));
  }

 private:
  int fFd;
};

}  // namespace zel
