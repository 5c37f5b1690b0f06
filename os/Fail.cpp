#include "zelcore/detail/Fail.h"

#include "zelcore/ILogger.h"
#include "zelcore/TRootObject.h"

namespace zelcore::detail {

void LogCore(zelLogSeverity severity, const std::string& message) {
  if (ILogger* logger = TRootObject::GetCoreLogger()) {
    logger->OutputLogEntry(nullptr, severity, message);
  }
}

void Fail(zelStatusCode code) { throw TZELException(code); }

void Fail(zelStatusCode code, const std::string& message) {
  LogCore(zelLogError, message);
  Fail(code);
}

}  // namespace zelcore::detail
