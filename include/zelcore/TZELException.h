#pragma once

#include <exception>

#include "zelcore/detail/Export.h"
#include "zelcore/zel.h"

// The one exception type of the library. It carries a status code and nothing else: where a failure
// has a message, the code that throws has written it to the core logger just before.
class ZEL_API TZELException : public std::exception {
 public:
  TZELException(zelStatusCode code);  // NOLINT(google-explicit-constructor): by design
  ~TZELException() override;

  // The code as thrown; a plug-in's odd status may lie outside 0 to zelStatusEnd.
  zelStatusCode GetStatusCode() const noexcept { return fCode; }

  // The code's symbolic name, "zelStatusTypeMismatch" for example; "zelStatusEnd" for a code that
  // the table does not have. A constant string.
  const char* what() const noexcept override;

 private:
  zelStatusCode fCode;
};
