#include "cim/TCIMArrayValueImpl.h"

#include <utility>

#include "zelcore/detail/Fail.h"

using zelcore::detail::Fail;

TCIMArrayValueImpl::TCIMArrayValueImpl(std::vector<TCIMValue> elements)
    : fElements(std::move(elements)) {}

std::string TCIMArrayValueImpl::ToString(unsigned char base) const {
  std::string text = "{ ";
  const char* separator = "";
  for (const TCIMValue& element : fElements) {
    text += separator + element.ToString(base);
    separator = ", ";
  }
  return text + " }";
}

bool TCIMArrayValueImpl::operator==(const TCIMValue& other) const {
  return other.IsArray() &&
         fElements == static_cast<const TCIMArrayValueImpl&>(VariantOf(other)).fElements;
}

bool TCIMArrayValueImpl::operator<(const TCIMValue&) const { Fail(zelStatusNotImplemented); }
