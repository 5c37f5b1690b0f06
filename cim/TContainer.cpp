#include "zelcore/TContainer.h"

#include <boost/make_shared.hpp>
#include <utility>

#include "cim/TContainerImpl.h"
#include "zelcore/TCIMClass.h"
#include "zelcore/TCIMInstance.h"

TContainer::TContainer() : fBody(boost::make_shared<TContainerImpl>(this)) { fBody->Initialize(); }

TContainer::~TContainer() = default;

TCIMClass* TContainer::AllocateClass(const std::string& name, TCIMClass* superClass) const {
  return new TCIMClass(const_cast<TContainer&>(*this), name, superClass);
}

TCIMInstance* TContainer::AllocateInstance(TCIMClass* cls) const { return new TCIMInstance(cls); }

TCIMQualifierDecl* TContainer::AllocateQualifierDecl(const std::string& name,
                                                     const TCIMValue& value,
                                                     TCIMQualifierDecl::EScope scope,
                                                     TCIMQualifierDecl::EFlavor flavor) const {
  return new TCIMQualifierDecl(const_cast<TContainer&>(*this), name, value, scope, flavor);
}

void TContainer::AddClass(TCIMClass& cls) { fBody->AddClass(cls); }
void TContainer::AddQualifierDecl(TCIMQualifierDecl& decl) { fBody->AddQualifierDecl(decl); }
TCIMClass* TContainer::GetClass(const std::string& name) const { return fBody->GetClass(name); }
TCIMClass* TContainer::FindClass(const std::string& name) const { return fBody->FindClass(name); }
// The root class asks for it while it is being made.
TCIMClass* TContainer::GetRootClass() const { return fBody->GetRootClass(); }
TCIMQualifierDecl* TContainer::GetQualifierDecl(const std::string& name) const {
  return fBody->GetQualifierDecl(name);
}
TCIMQualifierDecl* TContainer::FindQualifierDecl(const std::string& name) const {
  return fBody->FindQualifierDecl(name);
}
std::vector<TCIMQualifierDecl*> TContainer::EnumerateQualifiers() const {
  return fBody->EnumerateQualifiers();
}
void TContainer::RemoveClass(TCIMClass& cls) { fBody->RemoveClass(cls); }
void TContainer::RemoveQualifierDecl(TCIMQualifierDecl& decl) { fBody->RemoveQualifierDecl(decl); }
std::vector<TCIMClass*> TContainer::PopulateContainerFromFile(const std::string& path) {
  return fBody->PopulateContainerFromFile(path);
}
void TContainer::hackhack_TurnIntoADiffContainer() { fBody->TurnIntoADiffContainer(); }
bool TContainer::isDiffContainer() const { return fBody->IsDiffContainer(); }
void TContainer::setDiffInstances(std::vector<TCIMInstance*> instances) {
  fBody->SetDiffInstances(std::move(instances));
}
std::vector<TCIMInstance*> TContainer::getDiffInstances() const {
  return fBody->GetDiffInstances();
}
bool TContainer::hasDifferences() const { return fBody->HasDifferences(); }
const boost::shared_ptr<TContainerImpl>& TContainer::GetBody() const { return fBody; }
