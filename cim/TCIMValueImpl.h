#pragma once

#include <string>
#include <vector>

#include "zelcore/TCIMValue.h"
#include "zelcore/detail/Export.h"

// The data of a TCIMValue that is not NULL. Each variant overrides the conversions that it
// supports; all others throw zelStatusTypeMismatch.
class ZEL_API TCIMValueImpl {
 public:
  using TCIMType = TCIMValue::TCIMType;

  virtual ~TCIMValueImpl() = default;

  // GCC takes a conversion for hidden by one to another type, which it is not.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Woverloaded-virtual"
  // NOLINTBEGIN(google-explicit-constructor): converts as the value does
  virtual operator bool() const;
  virtual operator unsigned char() const;
  virtual operator signed char() const;
  virtual operator unsigned short() const;
  virtual operator short() const;
  virtual operator unsigned int() const;
  virtual operator int() const;
  virtual operator unsigned long() const;
  virtual operator long() const;
  virtual operator float() const;
  virtual operator double() const;
  virtual operator std::string() const;
  virtual operator TCIMDateTime() const;
  virtual operator TCIMReference() const;
  virtual operator std::vector<TCIMValue>&();
  // NOLINTEND(google-explicit-constructor)
#pragma GCC diagnostic pop

  virtual std::string ToString(unsigned char base) const = 0;

  // `other` of another type is neither equal nor greater.
  virtual bool operator==(const TCIMValue& other) const = 0;
  virtual bool operator<(const TCIMValue& other) const = 0;

 protected:
  TCIMValueImpl() = default;
  TCIMValueImpl(const TCIMValueImpl&) = default;
  TCIMValueImpl(TCIMValueImpl&&) = default;
  TCIMValueImpl& operator=(const TCIMValueImpl&) = delete;

  // The variant of `value`, to be read without a copy. Throws zelStatusValueIsNULL.
  static const TCIMValueImpl& VariantOf(const TCIMValue& value);
};
