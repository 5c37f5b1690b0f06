#pragma once

#include <string>
#include <utility>

#include "cim/TCIMDateTimeImpl.h"
#include "cim/TCIMValueImpl.h"
#include "cim/TShortText.h"
#include "zelcore/TCIMDateTime.h"
#include "zelcore/TCIMReference.h"
#include "zelcore/detail/Export.h"

// What the variants that hold one object have in common: they convert to T alone and compare as the
// TStored does that they keep of it.
template <class T, TCIMValue::TCIMType::ECIMType kType, class TStored = T>
class TCIMObjectValueImpl : public TCIMValueImpl {
 public:
  template <class... TArgs>
  explicit TCIMObjectValueImpl(std::in_place_t, TArgs&&... args)
      : fValue(std::forward<TArgs>(args)...) {}

  // NOLINTNEXTLINE(google-explicit-constructor): converts as the value does
  operator T() const override { return static_cast<T>(fValue); }

  bool operator==(const TCIMValue& other) const override {
    return other.GetType() == kType && fValue == ValueOf(other);
  }
  bool operator<(const TCIMValue& other) const override {
    return other.GetType() == kType && fValue < ValueOf(other);
  }

  // What `value`, of this variant's type, holds, to be read without a copy. Throws
  // zelStatusValueIsNULL.
  static const TStored& ValueOf(const TCIMValue& value) {
    return static_cast<const TCIMObjectValueImpl&>(VariantOf(value)).fValue;
  }

 protected:
  TStored fValue;
};

class ZEL_API TCIMStringValueImpl final
    : public TCIMObjectValueImpl<std::string, TCIMValue::TCIMType::TypeString, TShortText> {
 public:
  using TCIMObjectValueImpl::TCIMObjectValueImpl;
  std::string ToString(unsigned char) const override { return std::string(fValue); }
};

class ZEL_API TCIMDateTimeValueImpl final
    : public TCIMObjectValueImpl<TCIMDateTime, TCIMValue::TCIMType::TypeDateTime,
                                 TCIMDateTimeImpl> {
 public:
  using TCIMObjectValueImpl::TCIMObjectValueImpl;
  TCIMDateTimeValueImpl(std::in_place_t, const TCIMDateTime& value)
      : TCIMObjectValueImpl(std::in_place, *value.GetBody()) {}
  std::string ToString(unsigned char) const override { return fValue.ToString(); }
};

class ZEL_API TCIMReferenceValueImpl final
    : public TCIMObjectValueImpl<TCIMReference, TCIMValue::TCIMType::TypeReference> {
 public:
  using TCIMObjectValueImpl::TCIMObjectValueImpl;
  std::string ToString(unsigned char) const override { return fValue.GetPath(); }
};
