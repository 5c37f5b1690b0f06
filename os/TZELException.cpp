#include "zelcore/TZELException.h"

TZELException::TZELException(zelStatusCode code) : fCode(code) {}

TZELException::~TZELException() = default;

const char* TZELException::what() const noexcept {
  const bool known = fCode >= zelStatusOK && fCode <= zelStatusEnd;
  return kZELErrorMessages[known ? fCode : zelStatusEnd];
}
