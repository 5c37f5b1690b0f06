#include <iterator>
#include <ostream>

#include "zelcore/TCIMValue.h"
#include "zelcore/detail/Ascii.h"
#include "zelcore/detail/Fail.h"
#include "zelcore/detail/SameText.h"
#include "zelcore/detail/TypeText.h"

using zelcore::detail::Fail;
using zelcore::detail::ToAsciiLower;
using zelcore::detail::TypeText;

namespace {

using TCIMType = TCIMValue::TCIMType;

// Indexed by type code.
constexpr std::string_view kTypeTexts[] = {
    "",       "boolean", "uint8",  "sint8",  "uint16", "sint16", "uint32",   "sint32",
    "uint64", "sint64",  "real32", "real64", "char",   "string", "datetime", "reference",
};
static_assert(std::size(kTypeTexts) == TCIMType::TypeReference + 1);

// No two names of types have the same.
constexpr std::size_t PlaceOf(std::string_view name) {
  const auto letter = [&](std::size_t i) {
    return static_cast<std::size_t>(ToAsciiLower(name[i]));
  };
  return (5 * letter(0) + 6 * letter(name.size() - 1) + name.size()) % 16;
}

// The types that are found by name, each at the place of its name.
struct TTypesByName {
  constexpr TTypesByName() {
    for (unsigned int code = TCIMType::TypeBoolean; code <= TCIMType::TypeDateTime; ++code) {
      if (code != TCIMType::TypeChar) {
        unsigned int& place = fCodes[PlaceOf(kTypeTexts[code])];
        fIsPerfect = fIsPerfect && place == TCIMType::TypeNone;
        place = code;
      }
    }
  }

  unsigned int fCodes[16] = {};
  bool fIsPerfect = true;
};
constexpr TTypesByName kTypesByName;
static_assert(kTypesByName.fIsPerfect);

}  // namespace

namespace zelcore::detail {

std::string_view TypeText(TCIMType type) {
  const unsigned int code = type & ~TCIMType::TypeArray;
  return code < std::size(kTypeTexts) ? kTypeTexts[code] : "";
}

TCIMType::ECIMType TypeNamed(std::string_view name) {
  if (!name.empty()) {
    const unsigned int code = kTypesByName.fCodes[PlaceOf(name)];
    const std::string_view text = kTypeTexts[code];
    if (IsSameText(name, text) || EqualsIgnoringAsciiCase(name, text)) {
      return TCIMType::ECIMType(code);
    }
  }
  Fail(zelStatusTypeMismatch);
}

}  // namespace zelcore::detail

TCIMValue::TCIMType::TCIMType(const std::string& name) : fCode(zelcore::detail::TypeNamed(name)) {}

std::string TCIMValue::TCIMType::ToString() const {
  const std::string_view text = TypeText(*this);
  if (text.empty()) Fail(zelStatusTypeMismatch);
  return std::string(text);
}

std::ostream& operator<<(std::ostream& out, const TCIMValue::TCIMType& type) {
  return out << type.ToString();
}
