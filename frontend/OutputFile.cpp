#include "frontend/OutputFile.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>

#include <cerrno>
#include <filesystem>

#include "frontend/ExitCode.h"
#include "frontend/ValueText.h"

namespace zel {

TOutputFile::TOutputFile(std::string path) : fPath(std::move(path)) {
  if (IsStandardOutput()) return;
  struct stat status = {};
  if (stat(fPath.c_str(), &status) == 0 && S_ISDIR(status.st_mode)) {
    errno = EISDIR;
    Fail();
  }
  const std::string parent = std::filesystem::path(fPath).parent_path();
  fDirectory = parent.empty() ? "." : parent;
  // Without a name there is nothing that an interruption could leave behind.
  fFile = TDescriptor(open(fDirectory.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0600));
  if (!fFile && (errno == EOPNOTSUPP || errno == EISDIR)) OpenNamed();
  if (!fFile) Fail();
}

TOutputFile::~TOutputFile() {
  if (!fTemporary.empty()) unlink(fTemporary.c_str());
}

void TOutputFile::OpenNamed() {
  std::string name = fPath + ".XXXXXX";
  fFile = TDescriptor(mkostemp(name.data(), O_CLOEXEC));
  if (fFile) fTemporary = name;
}

int TOutputFile::GetDescriptor() const { return IsStandardOutput() ? STDOUT_FILENO : fFile.Get(); }

void TOutputFile::Write(std::string_view text) {
  while (!text.empty()) {
    const ssize_t count = write(GetDescriptor(), text.data(), text.size());
    if (count >= 0) {
      text.remove_prefix(static_cast<std::size_t>(count));
    } else if (errno != EINTR) {
      Fail();
    }
  }
}

void TOutputFile::Commit() {
  if (IsStandardOutput()) return;
  if (fsync(fFile.Get()) != 0) Fail();
  if (fTemporary.empty()) GiveName();
  if (rename(fTemporary.c_str(), fPath.c_str()) != 0) Fail();
  fTemporary.clear();
  const TDescriptor directory(open(fDirectory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (directory) fsync(directory.Get());  // not every file system can
}

// The file gets a name of its own first: a link cannot take the place of a file.
void TOutputFile::GiveName() {
  const std::string self = fmt::format("/proc/self/fd/{}", fFile.Get());
  for (int attempt = 0;; ++attempt) {
    std::string name = fmt::format("{}.{}-{}", fPath, getpid(), attempt);
    if (linkat(AT_FDCWD, self.c_str(), AT_FDCWD, name.c_str(), AT_SYMLINK_FOLLOW) == 0) {
      fTemporary = std::move(name);
      return;
    }
    if (errno != EEXIST) Fail();
  }
}

void TOutputFile::Fail() const {
  const int error = errno;
  const char* advice = error == ENOSPC || error == EDQUOT ? "make room"
                       : IsStandardOutput()               ? "look at where it goes"
                                                          : "name another file";
  throw TCommandError(kExitNotWritten,
                      Printable(fmt::format("cannot write '{}': {}; {}",
                                            IsStandardOutput() ? "standard output" : fPath,
                                            strerror(error), advice)));
}

}  // namespace zel
