#pragma once

#include <cstddef>
#include <string>

#include "frontend/Descriptor.h"

namespace zel {

// Of text, in bytes, that the library reads as one document.
constexpr std::size_t kMaxDocument = 100U << 20U;

// Where a command reads a document: a file or, called "-", standard input, all of which is kept in
// memory, so that it has a path, too, and can be read again.
class TInput {
 public:
  // Does not touch a file. Throws TCommandError (kExitBadInput) when standard input fails, or is
  // longer than any document.
  TInput(const std::string& name);  // NOLINT(google-explicit-constructor): a name stands for it

  bool IsStandardInput() const { return static_cast<bool>(fMemory); }
  const std::string& GetPath() const { return fPath; }
  // For people.
  const std::string& GetTitle() const { return fTitle; }

  // Throws TCommandError (kExitBadInput) unless it is a regular file that can be read: to open
  // anything else may take for ever. `hint` says what else to do than to ask for permission.
  void RequireFile(const std::string& hint) const;

 private:
  TDescriptor fMemory;
  std::string fPath;
  std::string fTitle;
};

// A file in memory that holds `text`.
TDescriptor KeepText(const std::string& text);

// By which the descriptor's file is opened anew.
std::string PathOf(const TDescriptor& file);

}  // namespace zel
