#include "frontend/OutputFile.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <string.h>
#include <sys/stat.h>

#include <cerrno>
#include <filesystem>
#include <streambuf>
#include <vector>

#include "frontend/Descriptor.h"
#include "frontend/ExitCode.h"
#include "frontend/TemporaryName.h"
#include "frontend/ValueText.h"

namespace zel {
namespace {

namespace fs = std::filesystem;

// For a failure that `errno` tells of.
[[noreturn]] void Fail(const std::string& what, const std::string& advice) {
  const int error = errno;
  const bool isFull = error == ENOSPC || error == EDQUOT;
  throw TCommandError(kExitNotWritten,
                      Printable(fmt::format("cannot write {}: {}; {}{}", what, strerror(error),
                                            isFull ? "make room or " : "", advice)));
}

[[noreturn]] void Fail(const std::string& path) {
  Fail(fmt::format("'{}'", path), "name another file");
}

void WriteTo(int fd, const char* text, std::size_t size, const std::string& path) {
  while (size != 0) {
    const ssize_t count = write(fd, text, size);
    if (count >= 0) {
      text += count;
      size -= static_cast<std::size_t>(count);
    } else if (errno != EINTR) {
      Fail(path);
    }
  }
}

}  // namespace

// Where the bytes go.
class TOutputFile::TTarget {
 public:
  virtual ~TTarget() = default;
  virtual void Write(const char* text, std::size_t size) = 0;
  virtual void Commit() = 0;
};

class TOutputFile::TStandardOutput : public TTarget {
 public:
  explicit TStandardOutput(std::ostream& out) : fOut(out) {}

  void Write(const char* text, std::size_t size) override {
    errno = EIO;  // should the stream not tell
    fOut.write(text, static_cast<std::streamsize>(size));
    Check();
  }

  void Commit() override {
    errno = EIO;
    fOut.flush();
    Check();
  }

 private:
  void Check() const {
    if (!fOut) Fail("standard output", "send it elsewhere");
  }

  std::ostream& fOut;
};

// A pipe or a device.
class TOutputFile::TDirect : public TTarget {
 public:
  explicit TDirect(const std::string& path)
      : fPath(path), fFile(open(path.c_str(), O_WRONLY | O_CLOEXEC | O_NOCTTY)) {
    if (!fFile) Fail(fPath);
  }

  void Write(const char* text, std::size_t size) override {
    WriteTo(fFile.Get(), text, size, fPath);
  }
  void Commit() override {}

 private:
  std::string fPath;
  TDescriptor fFile;
};

// A regular file, there already or not.
class TOutputFile::TReplacement : public TTarget {
 public:
  // `shown` is what the user calls `path`.
  TReplacement(const std::string& path, const std::string& shown)
      : fPath(path), fShown(shown), fDirectory(fs::path(path).parent_path()) {
    if (fDirectory.empty()) fDirectory = ".";
    // Without a name there is nothing that could be left behind.
    fFile = TDescriptor(open(fDirectory.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, kMode));
    if (!fFile) {
      fFile = TDescriptor(fTemporary.Find(fDirectory, [](const char* name) {
        return open(name, O_CREAT | O_EXCL | O_RDWR | O_CLOEXEC, kMode);
      }));
    }
    if (!fFile || fchmod(fFile.Get(), kMode) != 0) Fail(fShown);
  }

  void Write(const char* text, std::size_t size) override {
    WriteTo(fFile.Get(), text, size, fShown);
  }

  void Commit() override {
    if (fsync(fFile.Get()) != 0) Fail(fShown);
    if (!fTemporary.IsSet()) {
      // A link cannot take the place of a file, but what it names can.
      const std::string self = fmt::format("/proc/self/fd/{}", fFile.Get());
      const int linked = fTemporary.Find(fDirectory, [&](const char* name) {
        return linkat(AT_FDCWD, self.c_str(), AT_FDCWD, name, AT_SYMLINK_FOLLOW);
      });
      if (linked < 0) Fail(fShown);
    }
    if (!fTemporary.Rename(fPath)) Fail(fShown);
    const TDescriptor directory(open(fDirectory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (directory) fsync(directory.Get());  // not every file system can
  }

 private:
  static constexpr mode_t kMode = 0600;

  std::string fPath;
  std::string fShown;
  std::string fDirectory;
  TDescriptor fFile;
  TTemporaryName fTemporary;
};

// Throws out of the stream's operations what the target throws: the stream is told to let it pass.
class TOutputFile::TBuffer : public std::streambuf {
 public:
  explicit TBuffer(TTarget& target) : fTarget(target), fBytes(65536) { Reset(); }

  std::uint64_t GetSize() const { return fSize; }

 protected:
  int_type overflow(int_type c) override {
    sync();
    return traits_type::eq_int_type(c, traits_type::eof()) ? traits_type::not_eof(c)
                                                           : sputc(traits_type::to_char_type(c));
  }

  int sync() override {
    const auto size = static_cast<std::size_t>(pptr() - pbase());
    Reset();
    fTarget.Write(fBytes.data(), size);
    fSize += size;
    return 0;
  }

 private:
  void Reset() { setp(fBytes.data(), fBytes.data() + fBytes.size()); }

  TTarget& fTarget;
  std::vector<char> fBytes;
  std::uint64_t fSize = 0;
};

TOutputFile::TOutputFile(const std::string& path, std::ostream& standardOutput)
    : fTarget(Open(path, standardOutput)),
      fBuffer(std::make_unique<TBuffer>(*fTarget)),
      fStream(fBuffer.get()) {
  fStream.exceptions(std::ios::badbit);
}

TOutputFile::~TOutputFile() = default;

std::unique_ptr<TOutputFile::TTarget> TOutputFile::Open(const std::string& path,
                                                        std::ostream& standardOutput) {
  if (path == "-") return std::make_unique<TStandardOutput>(standardOutput);
  const TDescriptor there(open(path.c_str(), O_PATH | O_CLOEXEC));
  if (!there) {
    if (errno != ENOENT) Fail(path);
    return std::make_unique<TReplacement>(path, path);
  }
  struct stat status = {};
  if (fstat(there.Get(), &status) != 0) Fail(path);
  if (S_ISDIR(status.st_mode)) {
    errno = EISDIR;
    Fail(path);
  }
  if (!S_ISREG(status.st_mode)) return std::make_unique<TDirect>(path);
  // Of a link, what it leads to is replaced; the system has judged whether to follow it.
  std::error_code failure;
  const fs::path real = fs::read_symlink(fmt::format("/proc/self/fd/{}", there.Get()), failure);
  return std::make_unique<TReplacement>(failure ? path : real.string(), path);
}

void TOutputFile::Commit() {
  fStream.flush();
  fTarget->Commit();
}

std::uint64_t TOutputFile::GetSize() const { return fBuffer->GetSize(); }

}  // namespace zel
