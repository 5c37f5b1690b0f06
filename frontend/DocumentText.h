#pragma once

#include <optional>
#include <string>

#include "frontend/Findings.h"
#include "frontend/Input.h"

namespace zel {

// The text of a document on disk, or why the library's reader cannot come by it either.
struct TDocumentText {
  std::string text;
  std::optional<TRule> fault;
};

// Reads a plain file, or what is in a gzip file, by the rules of the library's reader; of standard
// input, either. Throws TCommandError (kExitBadInput) for what is no file.
TDocumentText ReadText(const TInput& input);

// The text of a plain file or of a gzip file, whatever it is called.
TDocumentText Unpack(const std::string& path);

// Whether the file begins as gzip files do.
bool IsGzip(const std::string& path);

// Whether the document declares the qualifier KEY. One that does not builds on another.
bool DeclaresKey(const std::string& text);

}  // namespace zel
