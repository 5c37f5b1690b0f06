#pragma once

#include <string>
#include <string_view>

#include "frontend/Descriptor.h"

namespace zel {

// A file that is there whole or not at all: it gets its name, and takes the place of what had it,
// when it is complete and on the disk. Mode 0600. "-" is standard output, to which none of this
// applies.
//
// All operations throw TCommandError (kExitNotWritten) that says why and what to do.
class TOutputFile {
 public:
  explicit TOutputFile(std::string path);
  // Without Commit() nothing is left of it.
  ~TOutputFile();
  TOutputFile(const TOutputFile&) = delete;
  TOutputFile& operator=(const TOutputFile&) = delete;

  bool IsStandardOutput() const { return fPath == "-"; }
  int GetDescriptor() const;
  void Write(std::string_view text);
  void Commit();

  // For a failure that `errno` tells of.
  [[noreturn]] void Fail() const;

 private:
  void OpenNamed();
  void GiveName();

  std::string fPath;
  std::string fDirectory;
  std::string fTemporary;  // the name that it has for now; empty: none
  TDescriptor fFile;
};

}  // namespace zel
