#include "zelcore/TCIMPropertyDecl.h"

#include <boost/make_shared.hpp>

#include "cim/Names.h"
#include "cim/TCIMPropertyDeclImpl.h"
#include "zelcore/TCIMClass.h"
#include "zelcore/detail/Fail.h"

using zelcore::detail::Fail;
using zelcore::detail::HaveEqualNames;
using zelcore::detail::IsNameLess;

TCIMPropertyDecl::TCIMPropertyDecl(const std::string& name, TCIMClass& cls, const TCIMValue& value)
    : fBody(boost::make_shared<TCIMPropertyDeclImpl>(this, name, &cls, value)) {}

TCIMPropertyDecl::TCIMPropertyDecl(TCIMPropertyDecl&, TCIMClass&) { Fail(zelStatusNotImplemented); }

TCIMPropertyDecl::~TCIMPropertyDecl() = default;

void TCIMPropertyDecl::Validate() const {}

void TCIMPropertyDecl::AddToContainer() const {
  Validate();
  GetClass()->AddPropertyDecl(const_cast<TCIMPropertyDecl&>(*this));
}

const std::string& TCIMPropertyDecl::GetName() const { return fBody->GetName(); }
void TCIMPropertyDecl::SetName(const std::string& name) { fBody->SetName(name); }
TCIMValue TCIMPropertyDecl::GetValue() const { return fBody->Value(); }
void TCIMPropertyDecl::SetValue(const TCIMValue& value) { fBody->SetValue(value); }
TCIMValue::TCIMType TCIMPropertyDecl::GetType() const { return fBody->Value().GetType(); }
bool TCIMPropertyDecl::IsArray() const { return fBody->Value().IsArray(); }
TCIMClass* TCIMPropertyDecl::GetClass() const { return fBody->GetClass(); }
void TCIMPropertyDecl::AddQualifier(TCIMQualifier& qualifier) {
  fBody->Qualifiers().Add(qualifier);
}
TCIMQualifier* TCIMPropertyDecl::GetQualifier(const std::string& name) const {
  return fBody->Qualifiers().Get(name);
}
TCIMQualifier* TCIMPropertyDecl::FindQualifier(const std::string& name) const {
  return fBody->Qualifiers().Find(name);
}
std::vector<TCIMQualifier const*> TCIMPropertyDecl::EnumerateQualifiers() const {
  return fBody->Qualifiers().Enumerate();
}
void TCIMPropertyDecl::RemoveQualifier(TCIMQualifier& qualifier) {
  fBody->Qualifiers().Remove(qualifier);
}
bool TCIMPropertyDecl::operator==(const TCIMPropertyDecl& other) const {
  return HaveEqualNames(*this, other);
}
bool TCIMPropertyDecl::operator<(const TCIMPropertyDecl& other) const {
  return IsNameLess(*this, other);
}
const boost::shared_ptr<TCIMPropertyDeclImpl>& TCIMPropertyDecl::GetBody() const { return fBody; }
