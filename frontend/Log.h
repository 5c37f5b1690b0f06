#pragma once

#include <exception>
#include <string>

#include "zelcore/zel.h"

namespace zel {

// Starts the library's logger, which keeps what is at most as severe as `level`, in `file` too
// unless that is empty. Throws TCommandError when the file cannot be written.
void StartLog(const std::string& file, zelLogSeverity level);

// The text of the first error that the library logged since the log was cleared; empty when there
// is none.
std::string FirstLoggedError();

// Why the library failed with this: what it logged first tells more than the exception. For people.
std::string WhyFailed(const std::exception& error);

}  // namespace zel
