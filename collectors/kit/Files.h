#pragma once

#include <dirent.h>
#include <errno.h>
#include <fcntl.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "collectors/kit/Text.h"

// Files of the machine, or of a captured tree that stands for it: every path is taken below
// ZEL_SYSROOT.
namespace kit {

// The directory that stands for "/"; "" for the live machine.
inline std::string Sysroot() {
  const char* root = getenv("ZEL_SYSROOT");
  return root ? root : "";
}

// Whether what system calls and instructions tell belongs to what the files tell.
inline bool IsLiveMachine() { return Sysroot().empty(); }

inline std::string FullPath(const std::string& path) { return Sysroot() + path; }

namespace detail {

// Opens without waiting for the other end of a pipe.
inline int Open(const std::string& path) {
  int descriptor;
  do {
    descriptor = open(FullPath(path).c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
  } while (descriptor < 0 && errno == EINTR);
  return descriptor;
}

class TDescriptor {
 public:
  explicit TDescriptor(int descriptor) : fDescriptor(descriptor) {}
  ~TDescriptor() {
    if (fDescriptor >= 0) close(fDescriptor);
  }
  TDescriptor(const TDescriptor&) = delete;
  TDescriptor& operator=(const TDescriptor&) = delete;
  int Get() const { return fDescriptor; }

 private:
  int fDescriptor;
};

// Orders runs of digits by their value: "cpu2" before "cpu10".
inline bool NaturallyLess(const std::string& left, const std::string& right) {
  size_t l = 0, r = 0;
  while (l < left.size() && r < right.size()) {
    if (IsDigit(left[l]) && IsDigit(right[r])) {
      const auto run = [](const std::string& text, size_t& position) {
        position = std::min(text.find_first_not_of('0', position), text.size());
        const size_t start = position;
        while (position < text.size() && IsDigit(text[position])) ++position;
        return text.substr(start, position - start);
      };
      const std::string a = run(left, l), b = run(right, r);
      if (a != b) return a.size() != b.size() ? a.size() < b.size() : a < b;
    } else if (left[l] != right[r]) {
      return left[l] < right[r];
    } else {
      ++l, ++r;
    }
  }
  if (left.size() - l != right.size() - r) return left.size() - l < right.size() - r;
  return left < right;
}

}  // namespace detail

constexpr size_t kLargestFile = 64u << 20;

// The whole file, at most kLargestFile bytes of it; nothing when it cannot be read.
inline std::optional<std::string> ReadFile(const std::string& path) {
  const detail::TDescriptor file(detail::Open(path));
  if (file.Get() < 0) return std::nullopt;
  std::string contents;
  char piece[16384];
  while (contents.size() < kLargestFile) {
    const ssize_t count = read(file.Get(), piece, sizeof piece);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return std::nullopt;
    if (count == 0) break;
    contents.append(piece, static_cast<size_t>(count));
  }
  return contents;
}

// The first line of the file, cleaned; nothing when it cannot be read or is empty.
inline std::optional<std::string> ReadLine(const std::string& path) {
  const auto contents = ReadFile(path);
  if (!contents) return std::nullopt;
  std::string line = Clean(std::string_view(*contents).substr(0, contents->find('\n')));
  if (line.empty()) return std::nullopt;
  return line;
}

// The number that the first line of the file spells.
template <class TNumber>
std::optional<TNumber> ReadNumber(const std::string& path, int base = 10) {
  const auto line = ReadLine(path);
  return line ? ParseNumber<TNumber>(*line, base) : std::nullopt;
}

inline bool Exists(const std::string& path) {
  struct stat info;
  return stat(FullPath(path).c_str(), &info) == 0;
}

inline bool IsDirectory(const std::string& path) {
  struct stat info;
  return stat(FullPath(path).c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

// Whether root could read what this process may not.
inline bool NeedsRoot(const std::string& path) {
  const detail::TDescriptor file(detail::Open(path));
  return file.Get() < 0 && (errno == EACCES || errno == EPERM);
}

// The name of the machine, "localhost" when it has none. A captured tree tells what the kernel or
// the boot configuration had.
inline std::string HostName() {
  char name[256] = "";
  if (IsLiveMachine()) gethostname(name, sizeof name - 1);
  if (const std::string clean = Clean(name); !clean.empty()) return clean;
  if (const auto kernels = ReadLine("/proc/sys/kernel/hostname")) return *kernels;
  return ReadLine("/etc/hostname").value_or("localhost");
}

// The names in a directory without "." and "..", numbers in them ordered by value; none when the
// directory cannot be read.
inline std::vector<std::string> ListDir(const std::string& path) {
  const std::unique_ptr<DIR, int (*)(DIR*)> directory(opendir(FullPath(path).c_str()), closedir);
  std::vector<std::string> names;
  if (!directory) return names;
  while (const dirent* entry = readdir(directory.get())) {
    const std::string name = entry->d_name;
    if (name != "." && name != "..") names.push_back(name);
  }
  std::sort(names.begin(), names.end(), detail::NaturallyLess);
  return names;
}

}  // namespace kit
