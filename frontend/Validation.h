#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "frontend/DocumentCheck.h"
#include "frontend/Findings.h"
#include "frontend/Input.h"

namespace zel {

struct TValidationOptions {
  std::vector<std::string> bases;  // read first, in this order; none: the base schema, if needed
  std::size_t limit = 20;          // findings of one kind
};

struct TValidation {
  TFindings findings;
  TCounts read;                  // what the library's reader took from the document
  std::optional<TCounts> holds;  // what is in it; unknown when it is no XML to its end
};

// Reads the document with the library's reader into a container of its own, and then strictly, and
// tells what is wrong with it and what the one takes otherwise than it is written. Throws
// TCommandError when there is no such file, or a base cannot be read.
TValidation Validate(const TInput& input, const TValidationOptions& options);

}  // namespace zel
