#include "zelcore/TCIMClass.h"

#include <boost/make_shared.hpp>

#include "cim/TCIMClassImpl.h"

TCIMClass::TCIMClass(TContainer& container, const std::string& name, TCIMClass* superClass)
    : fBody(boost::make_shared<TCIMClassImpl>(this, &container, name, superClass)) {}

TCIMClass::~TCIMClass() = default;

void TCIMClass::Validate() const { fBody->Validate(); }
void TCIMClass::AddToContainer() const { fBody->AddToContainer(); }
TContainer* TCIMClass::GetContainer() const { return fBody->GetContainer(); }
const std::string& TCIMClass::GetName() const { return fBody->GetName(); }
TCIMClass* TCIMClass::GetSuperClass() const { return fBody->GetSuperClass(); }
bool TCIMClass::IsRootClass() const { return fBody->IsRootClass(); }
bool TCIMClass::IsAssociation() const { return fBody->IsAssociation(); }
bool TCIMClass::IsAbstract() const { return fBody->IsAbstract(); }
bool TCIMClass::IsSubclassOf(const TCIMClass* other) const { return fBody->IsSubclassOf(other); }
std::vector<TCIMClass*> TCIMClass::EnumerateSubClasses(bool deep) const {
  return fBody->EnumerateSubClasses(deep);
}
void TCIMClass::AddQualifier(TCIMQualifier& qualifier) { fBody->Qualifiers().Add(qualifier); }
TCIMQualifier* TCIMClass::GetQualifier(const std::string& name) const {
  return fBody->Qualifiers().Get(name);
}
TCIMQualifier* TCIMClass::FindQualifier(const std::string& name) const {
  return fBody->Qualifiers().Find(name);
}
std::vector<TCIMQualifier const*> TCIMClass::EnumerateQualifiers() const {
  return fBody->Qualifiers().Enumerate();
}
void TCIMClass::RemoveQualifier(TCIMQualifier& qualifier) { fBody->Qualifiers().Remove(qualifier); }
void TCIMClass::AddPropertyDecl(TCIMPropertyDecl& decl) { fBody->AddPropertyDecl(decl); }
TCIMPropertyDecl* TCIMClass::GetPropertyDecl(const std::string& name) const {
  return fBody->GetPropertyDecl(name);
}
TCIMPropertyDecl* TCIMClass::FindPropertyDecl(const std::string& name) const {
  return fBody->FindPropertyDecl(name);
}
std::vector<TCIMPropertyDecl const*> TCIMClass::EnumeratePropertyDecls() const {
  return fBody->EnumeratePropertyDecls();
}
void TCIMClass::RemovePropertyDecl(TCIMPropertyDecl& decl) { fBody->RemovePropertyDecl(decl); }
std::vector<std::string> TCIMClass::EnumerateKeyNames() const { return fBody->EnumerateKeyNames(); }
void TCIMClass::AddInstance(TCIMInstance& instance) { fBody->AddInstance(instance); }
void TCIMClass::RemoveInstance(TCIMInstance& instance) { fBody->RemoveInstance(instance); }
TCIMInstance* TCIMClass::GetInstance(const TCIMReference& path) const {
  return fBody->GetInstance(path);
}
TCIMInstance* TCIMClass::FindInstance(const TCIMReference& path) const {
  return fBody->FindInstance(path);
}
std::vector<TCIMInstance*> TCIMClass::EnumerateInstances(bool deep) const {
  return fBody->EnumerateInstances(deep);
}
std::vector<TCIMClass*> TCIMClass::References(const std::string& assocClass,
                                              const std::string& role) const {
  return fBody->References(assocClass, role);
}
std::vector<TCIMClass*> TCIMClass::Associators(const std::string& assocClass,
                                               const std::string& resultClass,
                                               const std::string& role,
                                               const std::string& resultRole) const {
  return fBody->Associators(assocClass, resultClass, role, resultRole);
}
// sic: the names as given, with their case.
bool TCIMClass::operator==(const TCIMClass& other) const { return GetName() == other.GetName(); }
bool TCIMClass::operator<(const TCIMClass& other) const { return GetName() < other.GetName(); }
const boost::shared_ptr<TCIMClassImpl>& TCIMClass::GetBody() const { return fBody; }
