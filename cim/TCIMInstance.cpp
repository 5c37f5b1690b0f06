#include "zelcore/TCIMInstance.h"

#include <utility>

#include "cim/TCIMInstanceImpl.h"
#include "zelcore/TCIMClass.h"
#include "zelcore/detail/Fail.h"

using zelcore::detail::Fail;

TCIMInstance::TCIMInstance(TCIMClass* cls) : fBody(TCIMInstanceImpl::Make(this, cls)) {}

TCIMInstance::TCIMInstance(TCIMInstance&, TCIMClass&) { Fail(zelStatusNotImplemented); }

TCIMInstance::~TCIMInstance() = default;

void TCIMInstance::Validate() const { fBody->Validate(); }

void TCIMInstance::AddToContainer() const {
  fBody->AddToContainer(const_cast<TCIMInstance&>(*this));
}

TContainer* TCIMInstance::GetContainer() const { return fBody->GetContainer(); }
TCIMClass* TCIMInstance::GetClass() const { return fBody->GetClass(); }

void TCIMInstance::SetProperty(const TCIMProperty& property) {
  *GetProperty(property.GetName()) = property;
}
void TCIMInstance::SetPropertyValue(const std::string& name, const TCIMValue& value) {
  GetProperty(name)->SetValue(value);
}
void TCIMInstance::SetPropertyValue(const std::string& name, TCIMValue&& value) {
  GetProperty(name)->SetValue(std::move(value));
}
void TCIMInstance::SetPrevPropertyValue(const std::string& name, const TCIMValue& value) {
  GetProperty(name)->SetPrevValue(value);
}
void TCIMInstance::SetPrevPropertyValue(const std::string& name) {
  GetProperty(name)->SetPrevValue();
}
TCIMProperty* TCIMInstance::GetProperty(const std::string& name) const {
  return fBody->GetProperty(name);
}
TCIMProperty* TCIMInstance::FindProperty(const std::string& name) const {
  return fBody->FindProperty(name);
}
std::vector<TCIMProperty const*> TCIMInstance::EnumerateProperties() const {
  return fBody->EnumerateProperties();
}
TCIMReference TCIMInstance::BuildPath() const { return fBody->BuildPath(); }
std::vector<TCIMInstance*> TCIMInstance::References(const std::string& assocClass,
                                                    const std::string& role) const {
  return fBody->References(assocClass, role);
}
std::vector<TCIMInstance*> TCIMInstance::Associators(const std::string& assocClass,
                                                     const std::string& resultClass,
                                                     const std::string& role,
                                                     const std::string& resultRole) const {
  return fBody->Associators(assocClass, resultClass, role, resultRole);
}
bool TCIMInstance::operator==(const TCIMInstance& other) const { return *fBody == *other.fBody; }
bool TCIMInstance::operator<(const TCIMInstance& other) const { return *fBody < *other.fBody; }
const boost::shared_ptr<TCIMInstanceImpl>& TCIMInstance::GetBody() const { return fBody; }
