#pragma once

#include <cstring>
#include <string>
#include <string_view>
#include <type_traits>

#include "cim/TCIMValueImpl.h"
#include "zelcore/detail/Export.h"
#include "zelcore/detail/Fail.h"

namespace zelcore::detail {

template <class T>
struct TTag {
  using type = T;
};

// Calls `visit` with the tag of the native type that belongs to `code`: visit(TTag<bool>{}) ...
// Throws zelStatusNotImplemented for TypeChar, zelStatusTypeMismatch for what is no number.
template <class TVisitor>
constexpr auto VisitNumeric(TCIMValue::TCIMType::ECIMType code, TVisitor&& visit) {
  using TCIMType = TCIMValue::TCIMType;
  switch (code) {
    case TCIMType::TypeBoolean: return visit(TTag<bool>{});
    case TCIMType::TypeUint8: return visit(TTag<unsigned char>{});
    case TCIMType::TypeSint8: return visit(TTag<signed char>{});
    case TCIMType::TypeUint16: return visit(TTag<unsigned short>{});
    case TCIMType::TypeSint16: return visit(TTag<short>{});
    case TCIMType::TypeUint32: return visit(TTag<unsigned int>{});
    case TCIMType::TypeSint32: return visit(TTag<int>{});
    case TCIMType::TypeUint64: return visit(TTag<unsigned long>{});
    case TCIMType::TypeSint64: return visit(TTag<long>{});
    case TCIMType::TypeReal32: return visit(TTag<float>{});
    case TCIMType::TypeReal64: return visit(TTag<double>{});
    case TCIMType::TypeChar: Fail(zelStatusNotImplemented);
    default: Fail(zelStatusTypeMismatch);
  }
}

// The type code of the native type T, looked up in VisitNumeric().
template <class T>
constexpr TCIMValue::TCIMType::ECIMType NumericCode() {
  unsigned int code = TCIMValue::TCIMType::TypeBoolean;
  while (!VisitNumeric(TCIMValue::TCIMType::ECIMType(code),
                       [](auto tag) { return std::is_same_v<typename decltype(tag)::type, T>; })) {
    ++code;
  }
  return TCIMValue::TCIMType::ECIMType(code);
}

// `text` as the stream reads it in the classic locale with its base left open: blanks in front are
// skipped, what follows the number is ignored, values out of range become the nearest one, and a
// text that is no number gives 0. Booleans are "true" and "false". The 8-bit types are read as
// 32-bit ones and cut.
template <class T>
T ParseNumber(std::string_view text);

}  // namespace zelcore::detail

// A boolean, an integer or a real.
class ZEL_API TCIMNumericValueImpl final : public TCIMValueImpl {
 public:
  template <class T>
  explicit TCIMNumericValueImpl(T value) : fType(zelcore::detail::NumericCode<T>()) {
    std::memcpy(fNative, &value, sizeof value);
  }

  // NOLINTBEGIN(google-explicit-constructor): converts as the value does
  operator bool() const override;
  operator unsigned char() const override;
  operator signed char() const override;
  operator unsigned short() const override;
  operator short() const override;
  operator unsigned int() const override;
  operator int() const override;
  operator unsigned long() const override;
  operator long() const override;
  operator float() const override;
  operator double() const override;
  // NOLINTEND(google-explicit-constructor)

  // Throws zelStatusNotSupported for bases other than 10, 16 and 8, and for signed integers and
  // reals in another base than 10.
  std::string ToString(unsigned char base) const override;

  bool operator==(const TCIMValue& other) const override;
  bool operator<(const TCIMValue& other) const override;

 private:
  template <class T>
  T Convert() const;
  template <class T>
  T Native() const;
  template <class TCompare>
  bool Compare(const TCIMValue& other, TCompare compare) const;

  alignas(8) unsigned char fNative[8];  // the native value, in its own width
  TCIMType fType;
};
