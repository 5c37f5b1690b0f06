// The part of TOSSpecific that is about files and directories.

#include <dirent.h>
#include <errno.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <memory>

#include "os/TDescriptor.h"
#include "zelcore/TOSSpecific.h"
#include "zelcore/detail/Fail.h"

using zelcore::detail::Fail;

namespace {

constexpr std::size_t kCopyBlock = 32768;
constexpr std::size_t kReadChunk = 4096;

bool Examine(const std::string& path, struct stat& status) {
  return stat(path.c_str(), &status) == 0;
}

bool WriteAll(int fd, const char* data, ssize_t size) {
  while (size > 0) {
    const ssize_t written = Uninterrupted([&] { return write(fd, data, size); });
    if (written < 0) return false;
    data += written;
    size -= written;
  }
  return true;
}

bool CopyAll(int from, int to) {
  const std::unique_ptr<char[]> block(new char[kCopyBlock]);
  ssize_t size;
  while ((size = Uninterrupted([&] { return read(from, block.get(), kCopyBlock); })) > 0) {
    if (!WriteAll(to, block.get(), size)) return false;
  }
  return size == 0;
}

}  // namespace

bool TOSSpecific::FileExists(const std::string& path) {
  struct stat status;
  return Examine(path, status) && !S_ISDIR(status.st_mode);
}

bool TOSSpecific::DirExists(const std::string& path) {
  struct stat status;
  return Examine(path, status) && S_ISDIR(status.st_mode);
}

std::size_t TOSSpecific::GetFileSize(const std::string& path) {
  struct stat status;
  if (!Examine(path, status) || S_ISDIR(status.st_mode)) Fail(zelStatusFileNotFound);
  return static_cast<std::size_t>(status.st_size);
}

void TOSSpecific::CreateDir(const std::string& path) {
  if (mkdir(path.c_str(), 0777) == 0) return;
  switch (errno) {
    case EEXIST: Fail(zelStatusDirectoryAlreadyExists);
    case EACCES:
    case EROFS: Fail(zelStatusAccessDenied);
    default: Fail(zelStatusFileSystemError);
  }
}

std::vector<std::string> TOSSpecific::ListDir(const std::string& path) {
  const std::unique_ptr<DIR, int (*)(DIR*)> directory(opendir(path.c_str()), closedir);
  if (!directory) Fail(zelStatusFileSystemError);
  std::vector<std::string> names;
  errno = 0;
  while (const dirent* entry = readdir(directory.get())) {
    const std::string name = entry->d_name;
    if (name != "." && name != "..") names.push_back(name);
  }
  if (errno != 0) Fail(zelStatusFileSystemError);
  return names;
}

void TOSSpecific::FileCopy(const std::string& from, const std::string& to) {
  const TDescriptor source(Uninterrupted([&] { return open(from.c_str(), O_RDONLY | O_CLOEXEC); }));
  struct stat status;
  if (!source.IsOpen() || fstat(source.Get(), &status) != 0) Fail(zelStatusFileSystemError);

  const mode_t mode = status.st_mode & 0777;
  TDescriptor target(Uninterrupted(
      [&] { return open(to.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode); }));
  if (!target.IsOpen()) Fail(zelStatusFileSystemError);

  // The process's mask may have cut the bits that open() was given.
  const bool copied = fchmod(target.Get(), mode) == 0 && CopyAll(source.Get(), target.Get());
  if (!target.Close() || !copied) {
    unlink(to.c_str());
    Fail(zelStatusFileSystemError);
  }
}

std::string TOSSpecific::GetCurrentDir() {
  std::string path(64, '\0');
  while (!getcwd(path.data(), path.size())) {
    if (errno != ERANGE) Fail(zelStatusFail);
    path.resize(path.size() * 2);
  }
  return path.c_str();
}

std::string TOSSpecific::GetFileContents(int fd) {
  std::string contents;
  char chunk[kReadChunk];
  ssize_t size;
  while ((size = Uninterrupted([&] { return read(fd, chunk, sizeof chunk); })) > 0) {
    contents.append(chunk, static_cast<std::size_t>(size));
  }
  if (size < 0) Fail(zelStatusFail, "ERROR: GetFileContents failed to read file");
  return contents;
}

std::string TOSSpecific::CaptureFile(const std::string& path) {
  const TDescriptor file(Uninterrupted([&] { return open(path.c_str(), O_RDONLY | O_CLOEXEC); }));
  if (!file.IsOpen()) {
    Fail(zelStatusFileSystemError, "ERROR: CaptureFile failed to open: " + path);
  }
  return GetFileContents(file.Get());
}
