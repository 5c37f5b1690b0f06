#pragma once

#include <cstdint>
#include <memory>
#include <ostream>
#include <string>

namespace zel {

// A file that is there whole or not at all: it gets its name, and takes the place of what had it,
// when it is complete and on the disk. Until then nothing can be seen of it, and nothing is left of
// it without Commit(), not even by SIGINT, SIGTERM or SIGHUP. Mode 0600.
//
// "-" stands for `standardOutput`. To that, and to a path that leads to a pipe or a device, none of
// this applies.
//
// All operations, those on the stream included, throw TCommandError (kExitNotWritten) that says why
// and what to do.
class TOutputFile {
 public:
  TOutputFile(const std::string& path, std::ostream& standardOutput);
  ~TOutputFile();
  TOutputFile(const TOutputFile&) = delete;
  TOutputFile& operator=(const TOutputFile&) = delete;

  std::ostream& GetStream() { return fStream; }
  void Commit();

  // How many bytes have gone out.
  std::uint64_t GetSize() const;

 private:
  class TTarget;
  class TStandardOutput;
  class TDirect;
  class TReplacement;
  class TBuffer;

  static std::unique_ptr<TTarget> Open(const std::string& path, std::ostream& standardOutput);

  std::unique_ptr<TTarget> fTarget;
  std::unique_ptr<TBuffer> fBuffer;
  std::ostream fStream;
};

}  // namespace zel
