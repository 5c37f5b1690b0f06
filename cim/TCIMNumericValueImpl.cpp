#include "cim/TCIMNumericValueImpl.h"

#include <charconv>
#include <functional>
#include <limits>
#include <locale>
#include <sstream>
#include <string_view>

#include "zelcore/detail/Ascii.h"

using zelcore::detail::Fail;
using zelcore::detail::IsAsciiDigit;
using zelcore::detail::NumericCode;
using zelcore::detail::Text;
using zelcore::detail::VisitNumeric;

namespace {

// The 8-bit types would be read as characters.
template <class T>
using TRead = std::conditional_t<sizeof(T) != 1 || std::is_same_v<T, bool>, T,
                                 std::conditional_t<std::is_signed_v<T>, int, unsigned int>>;

// What the stream and std::from_chars() read alike: the whole text as a boolean word, as a decimal
// integer without a leading 0 (which would make it octal) or as a real of digits, point and
// exponent (no "inf", no "nan", which only the latter knows). Anything else is left to the stream.
template <class T>
bool IsPlain(std::string_view text) {
  if constexpr (std::is_floating_point_v<T>) {
    return text.find_first_not_of("0123456789.eE+-") == std::string_view::npos;
  } else {
    if (text == "0") return true;
    if (!text.empty() && text[0] == '-') text.remove_prefix(1);
    return !text.empty() && IsAsciiDigit(text[0]) && text[0] != '0';
  }
}

template <class T>
bool ReadPlain(std::string_view text, T& value) {
  if constexpr (std::is_same_v<T, bool>) {
    value = text == "true";
    return value || text == "false";
  } else {
    if (!IsPlain<T>(text)) return false;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    return error == std::errc() && stop == end;
  }
}

template <class T>
T ReadStream(std::string_view text) {
  std::istringstream in{std::string(text)};
  in.imbue(std::locale::classic());
  in.unsetf(std::ios::basefield);
  in.setf(std::ios::boolalpha);
  T value{};
  in >> value;
  return value;
}

std::string PrintUnsigned(unsigned long value, unsigned char base, std::size_t width) {
  char digits[std::numeric_limits<unsigned long>::digits];
  std::string text(digits, std::to_chars(digits, std::end(digits), value, base).ptr);
  if (base != 16) return text;
  for (char& digit : text) {
    if (!IsAsciiDigit(digit)) digit = static_cast<char>(digit - 'a' + 'A');
  }
  if (text.size() < width) text.insert(0, width - text.size(), '0');
  return text;
}

template <class T>
std::string Print(T value, unsigned char base) {
  if constexpr (std::is_same_v<T, bool>) {
    return value ? "true" : "false";
  } else if constexpr (std::is_unsigned_v<T>) {
    return PrintUnsigned(value, base, 2 * sizeof(T));
  } else {
    if (base != 10) Fail(zelStatusNotSupported);
    if constexpr (std::is_floating_point_v<T>) {
      return Text(value);
    } else {
      return std::to_string(value);
    }
  }
}

}  // namespace

namespace zelcore::detail {

template <class T>
T ParseNumber(std::string_view text) {
  TRead<T> value{};
  if (!ReadPlain(text, value)) value = ReadStream<TRead<T>>(text);
  return static_cast<T>(value);
}

template ZEL_API bool ParseNumber(std::string_view);
template ZEL_API unsigned char ParseNumber(std::string_view);
template ZEL_API signed char ParseNumber(std::string_view);
template ZEL_API unsigned short ParseNumber(std::string_view);
template ZEL_API short ParseNumber(std::string_view);
template ZEL_API unsigned int ParseNumber(std::string_view);
template ZEL_API int ParseNumber(std::string_view);
template ZEL_API unsigned long ParseNumber(std::string_view);
template ZEL_API long ParseNumber(std::string_view);
template ZEL_API float ParseNumber(std::string_view);
template ZEL_API double ParseNumber(std::string_view);

}  // namespace zelcore::detail

template <class T>
T TCIMNumericValueImpl::Native() const {
  T value;
  std::memcpy(&value, fNative, sizeof value);
  return value;
}

template <class T>
T TCIMNumericValueImpl::Convert() const {
  if (fType != NumericCode<T>()) Fail(zelStatusTypeMismatch);
  return Native<T>();
}

TCIMNumericValueImpl::operator bool() const { return Convert<bool>(); }
TCIMNumericValueImpl::operator unsigned char() const { return Convert<unsigned char>(); }
TCIMNumericValueImpl::operator signed char() const { return Convert<signed char>(); }
TCIMNumericValueImpl::operator unsigned short() const { return Convert<unsigned short>(); }
TCIMNumericValueImpl::operator short() const { return Convert<short>(); }
TCIMNumericValueImpl::operator unsigned int() const { return Convert<unsigned int>(); }
TCIMNumericValueImpl::operator int() const { return Convert<int>(); }
TCIMNumericValueImpl::operator unsigned long() const { return Convert<unsigned long>(); }
TCIMNumericValueImpl::operator long() const { return Convert<long>(); }
TCIMNumericValueImpl::operator float() const { return Convert<float>(); }
TCIMNumericValueImpl::operator double() const { return Convert<double>(); }

std::string TCIMNumericValueImpl::ToString(unsigned char base) const {
  if (base != 10 && base != 16 && base != 8) Fail(zelStatusNotSupported);
  return VisitNumeric(
      fType, [&](auto tag) { return Print(Native<typename decltype(tag)::type>(), base); });
}

template <class TCompare>
bool TCIMNumericValueImpl::Compare(const TCIMValue& other, TCompare compare) const {
  return other.GetType() == fType && VisitNumeric(fType, [&](auto tag) {
           using T = typename decltype(tag)::type;
           return compare(Native<T>(), static_cast<T>(other));
         });
}

bool TCIMNumericValueImpl::operator==(const TCIMValue& other) const {
  return Compare(other, std::equal_to<>());
}

bool TCIMNumericValueImpl::operator<(const TCIMValue& other) const {
  return Compare(other, std::less<>());
}
