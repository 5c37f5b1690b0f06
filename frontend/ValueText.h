#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

class TCIMDateTime;
class TCIMProperty;
class TCIMQualifier;
class TCIMValue;

namespace zel {

// A value without units and value map, byte by byte: one text for a scalar, one for each element of
// an array, none for NULL. Datetimes in ISO 8601, a NULL element empty.
std::vector<std::string> RawTexts(const TCIMValue& value);
// The same, printable.
std::vector<std::string> ValueTexts(const TCIMValue& value);
// These, joined by ", ".
std::string ValueText(const TCIMValue& value);

// The value of a qualifier that is there and a string, else empty.
std::string TextOf(const TCIMQualifier* qualifier);

// Whether the qualifier is there, boolean and true.
bool IsTrue(const TCIMQualifier* qualifier);

// "16 GiB", "1.5 MiB", "512 B".
std::string BytesText(unsigned long bytes);

inline constexpr char kNeedsRoot[] = "needs root";
inline constexpr char kNotAvailable[] = "not available";

// Why a property is NULL: kNeedsRoot when its declaration says so and it was not collected as root,
// else the text that the declaration has for it, or kNotAvailable.
std::string MissingText(const TCIMProperty& property);

// The value as its declaration says it is to be shown, with units and value map: one text for a
// scalar, one for each element of an array, none for NULL.
std::vector<std::string> PropertyTexts(const TCIMProperty& property);
// These, joined by ", ", or why there is none.
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

// `text` on one line of UTF-8 that cannot steer a terminal: control characters and bytes that are
// not UTF-8 as \xNN, those beyond ASCII and what turns the direction of writing as \uNNNN.
std::string Printable(const std::string& text);

}  // namespace zel
