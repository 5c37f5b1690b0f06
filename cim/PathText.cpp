#include "cim/PathText.h"

#include "cim/TCIMObjectValueImpl.h"
#include "cim/TCIMReferenceImpl.h"

using TCIMType = TCIMValue::TCIMType;

void zelcore::detail::AppendPathText(std::string& text, const TCIMValue& value) {
  if (value.GetType() == TCIMType::TypeString) {
    text += TCIMStringValueImpl::ValueOf(value).View();
  } else if (value.IsReference()) {
    TCIMReferenceValueImpl::ValueOf(value).GetBody()->AppendPath(text);
  } else {
    text += value.ToString(10);
  }
}
