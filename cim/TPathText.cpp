#include "cim/TPathText.h"

#include "cim/TCIMObjectValueImpl.h"
#include "cim/TCIMReferenceImpl.h"

using TCIMType = TCIMValue::TCIMType;

void TPathText::AppendValue(const TCIMValue& value) {
  if (value.GetType() == TCIMType::TypeString) {
    Append(TCIMStringValueImpl::ValueOf(value).View());
  } else if (value.IsReference()) {
    TCIMReferenceValueImpl::ValueOf(value).GetBody()->AppendPath(*this);
  } else {
    Append(value.ToString(10));
  }
}

void TPathText::Grow(std::size_t size) {
  const std::size_t room = 2 * (fSize + size);
  std::unique_ptr<char[]> larger(new char[room]);
  std::memcpy(larger.get(), fText, fSize);
  fFar = std::move(larger);
  fText = fFar.get();
  fRoom = room;
}
