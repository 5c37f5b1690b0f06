#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>

class TCIMDateTime;
class TCIMProperty;
class TCIMQualifier;
class TCIMValue;

namespace zel {

// A value as people read it: arrays joined by ", ", datetimes in ISO 8601, control characters shown
// escaped. `value` must not be NULL.
std::string ValueText(const TCIMValue& value);

// Whether the qualifier is there, boolean and true.
bool IsTrue(const TCIMQualifier* qualifier);

// "16 GiB", "1.5 MiB", "512 B".
std::string BytesText(unsigned long bytes);

inline constexpr char kNeedsRoot[] = "needs root";
inline constexpr char kNotAvailable[] = "not available";

// Why a property is NULL: kNeedsRoot when its declaration says so and this process is not root,
// else kNotAvailable.
std::string MissingText(const TCIMProperty& property);

// The value as its declaration says it is to be shown, with units and value map, or why it is
// missing.
std::string PropertyText(const TCIMProperty& property);
// The same of its previous value.
std::string PrevPropertyText(const TCIMProperty& property);

// A value as JSON: numbers and booleans as such, uint64 and sint64 beyond 2^53 as text, datetimes
// in ISO 8601, references as their path, arrays as arrays, NULL as null.
nlohmann::ordered_json ValueJson(const TCIMValue& value);

// "2026-11-21T10:55:00.000000+01:00", or "P1DT2H3M4.500000S" for an interval.
std::string Iso8601(const TCIMDateTime& datetime);

// "2026-11-21 10:55:00" as the clock showed it; empty when `value` is no point in time.
std::string MomentText(const TCIMValue& value);

// `text` on one line that cannot steer a terminal: control characters as \xNN.
std::string Printable(const std::string& text);

}  // namespace zel
