#include "cim/TCIMValueImpl.h"

#include "zelcore/TCIMDateTime.h"
#include "zelcore/TCIMReference.h"
#include "zelcore/detail/Fail.h"

using zelcore::detail::Fail;

TCIMValueImpl::operator bool() const { Fail(zelStatusTypeMismatch); }
TCIMValueImpl::operator unsigned char() const { Fail(zelStatusTypeMismatch); }
TCIMValueImpl::operator signed char() const { Fail(zelStatusTypeMismatch); }
TCIMValueImpl::operator unsigned short() const { Fail(zelStatusTypeMismatch); }
TCIMValueImpl::operator short() const { Fail(zelStatusTypeMismatch); }
TCIMValueImpl::operator unsigned int() const { Fail(zelStatusTypeMismatch); }
TCIMValueImpl::operator int() const { Fail(zelStatusTypeMismatch); }
TCIMValueImpl::operator unsigned long() const { Fail(zelStatusTypeMismatch); }
TCIMValueImpl::operator long() const { Fail(zelStatusTypeMismatch); }
TCIMValueImpl::operator float() const { Fail(zelStatusTypeMismatch); }
TCIMValueImpl::operator double() const { Fail(zelStatusTypeMismatch); }
TCIMValueImpl::operator std::string() const { Fail(zelStatusTypeMismatch); }
TCIMValueImpl::operator TCIMDateTime() const { Fail(zelStatusTypeMismatch); }
TCIMValueImpl::operator TCIMReference() const { Fail(zelStatusTypeMismatch); }
TCIMValueImpl::operator std::vector<TCIMValue>&() { Fail(zelStatusTypeMismatch); }

const TCIMValueImpl& TCIMValueImpl::VariantOf(const TCIMValue& value) {
  if (value.IsNull()) Fail(zelStatusValueIsNULL);
  return value.Variant();
}
