#pragma once

#include <locale>
#include <sstream>
#include <string>
#include <string_view>
#include <type_traits>

#include "zelcore/TZELException.h"
#include "zelcore/detail/Export.h"
#include "zelcore/zel.h"

// How the library reports: one line to the core logger, then one exception.
namespace zelcore::detail {

// Writes `message` to the core logger without a plug-in; does nothing before TLogger::Initialize().
ZEL_API void LogCore(zelLogSeverity severity, const std::string& message);

// Throws TZELException(code); nothing is logged.
[[noreturn]] ZEL_API void Fail(zelStatusCode code);

// Logs `message` at zelLogError, then throws TZELException(code).
[[noreturn]] ZEL_API void Fail(zelStatusCode code, const std::string& message);

// Joins the printed forms of `parts`, in the classic locale.
template <class... TParts>
std::string Text(const TParts&... parts) {
  if constexpr ((std::is_convertible_v<const TParts&, std::string_view> && ...)) {
    std::string text;
    (text.append(std::string_view(parts)), ...);
    return text;
  } else {
    std::ostringstream text;
    text.imbue(std::locale::classic());
    (text << ... << parts);
    return text.str();
  }
}

}  // namespace zelcore::detail
