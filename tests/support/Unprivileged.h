#pragma once

#include <unistd.h>

// Without root's rights for as long as this lives: permission bits count.
class Unprivileged {
 public:
  Unprivileged() : fFormer(geteuid()) {
    if (fFormer == 0) fChanged = seteuid(kNobody) == 0;
  }
  ~Unprivileged() {
    if (fChanged && seteuid(fFormer) != 0) _exit(1);
  }
  Unprivileged(const Unprivileged&) = delete;
  Unprivileged& operator=(const Unprivileged&) = delete;

 private:
  static constexpr uid_t kNobody = 65534;

  uid_t fFormer;
  bool fChanged = false;
};
