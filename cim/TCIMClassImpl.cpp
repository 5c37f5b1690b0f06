#include "cim/TCIMClassImpl.h"

#include <algorithm>
#include <boost/make_shared.hpp>
#include <functional>
#include <utility>

#include "cim/OrNotFound.h"
#include "cim/TCIMInstanceImpl.h"
#include "cim/TCIMPropertyDeclImpl.h"
#include "cim/TCIMReferenceImpl.h"
#include "cim/TContainerImpl.h"
#include "cim/TPathText.h"
#include "cim/TReferenceIndex.h"
#include "zelcore/TCIMClass.h"
#include "zelcore/TCIMReference.h"
#include "zelcore/TContainer.h"
#include "zelcore/detail/Fail.h"

using zelcore::detail::CheckName;
using zelcore::detail::Fail;
using zelcore::detail::OrNotFound;
using zelcore::detail::Text;
using zelcore::detail::TNameLess;

namespace {

TCIMClassImpl& Body(const TCIMClass& cls) { return *cls.GetBody(); }

// All subclasses below a class, each before its own, without recursion.
class TSubclassWalk {
 public:
  explicit TSubclassWalk(const std::vector<TCIMClass*>& top) { Push(top); }

  // Null at the end.
  TCIMClass* Next() {
    if (fPending.empty()) return nullptr;
    TCIMClass* cls = fPending.back();
    fPending.pop_back();
    Push(cls->EnumerateSubClasses(false));
    return cls;
  }

 private:
  void Push(const std::vector<TCIMClass*>& classes) {
    fPending.insert(fPending.end(), classes.rbegin(), classes.rend());
  }

  std::vector<TCIMClass*> fPending;  // the next one last
};

}  // namespace

bool TCIMClassImpl::TByName::operator()(const TCIMClass* a, const TCIMClass* b) const {
  const TNameLess isLess;
  if (isLess(a->GetName(), b->GetName())) return true;
  return !isLess(b->GetName(), a->GetName()) && std::less<>()(a, b);
}

TCIMClassImpl::TCIMClassImpl(TCIMClass* owner, TContainer* container, const std::string& name,
                             TCIMClass* superClass)
    : fOwner(owner),
      fContainer(container),
      fName(name),
      // Still null while the root class itself is being made.
      fSuperClass(superClass ? superClass : container->GetRootClass()) {
  if (!superClass) {
    fTable = boost::make_shared<TDeclTable>();
    return;
  }
  fTable = Body(*superClass).fTable;
  fQualifiers.InheritFrom(Body(*superClass).fQualifiers);
}

TCIMClassImpl::~TCIMClassImpl() = default;

void TCIMClassImpl::LeaveOtherClasses() {
  TCIMClassImpl& superClass = Body(*fSuperClass);
  superClass.RemoveChildClass(*fOwner);
  for (TCIMClass* child : fSubClasses) {
    Body(*child).fSuperClass = fSuperClass;
    superClass.AddChildClass(*child);
  }
  for (TCIMClass* associated : fAssociated) Body(*associated).fAssociationClasses.erase(fOwner);
  for (TCIMClass* association : fAssociationClasses) {
    std::vector<TCIMClass*>& remembered = Body(*association).fAssociated;
    remembered.erase(std::remove(remembered.begin(), remembered.end(), fOwner), remembered.end());
  }
  fSubClasses.clear();
  fAssociationClasses.clear();
  fAssociated.clear();
}

void TCIMClassImpl::Validate() const {
  if (IsAbstract()) return;
  const bool hasKey =
      std::any_of(fTable->decls.begin(), fTable->decls.end(),
                  [](const auto& entry) { return entry.second->GetBody()->IsKey(); });
  if (!hasKey) Fail(zelStatusInvalidClass, Text("Class ", fName, " has no keys"));
}

void TCIMClassImpl::AddToContainer() {
  fOwner->Validate();
  const bool isAssociation = IsAssociation();  // may throw: nothing is registered yet
  fContainer->AddClass(*fOwner);
  Body(*fSuperClass).AddChildClass(*fOwner);
  if (isAssociation) LinkAssociatedClasses();
}

// Records the association on the most general ones of the classes that it refers to.
void TCIMClassImpl::LinkAssociatedClasses() {
  const auto byName = [](const TCIMClass* a, const TCIMClass* b) { return *a < *b; };
  std::set<TCIMClass*, decltype(byName)> referenced(byName);
  for (const auto& [key, decl] : fTable->decls) {
    const TCIMValue& value = decl->GetBody()->Value();
    if (value.IsReference() && value.GetReferencedClass()) {
      referenced.insert(value.GetReferencedClass());
    }
  }
  for (TCIMClass* cls : referenced) {
    TCIMClass* above = cls->GetSuperClass();
    while (above && referenced.count(above) == 0) above = above->GetSuperClass();
    if (above) continue;
    Body(*cls).AddAssociationClass(*fOwner);
    fAssociated.push_back(cls);
  }
}

bool TCIMClassImpl::IsSubclassOf(const TCIMClass* other) const {
  if (!other) return false;
  const TCIMClassImpl* cls = this;
  while (cls->fSuperClass && cls->fName != other->GetName()) cls = &Body(*cls->fSuperClass);
  return cls->fName == other->GetName();
}

std::vector<TCIMClass*> TCIMClassImpl::EnumerateSubClasses(bool deep) const {
  if (!deep) return fSubClasses;
  std::vector<TCIMClass*> classes;
  TSubclassWalk walk(fSubClasses);
  while (TCIMClass* cls = walk.Next()) classes.push_back(cls);
  return classes;
}

void TCIMClassImpl::AddPropertyDecl(TCIMPropertyDecl& decl) {
  const std::string& name = decl.GetName();
  if (decl.GetType() == TCIMValue::TCIMType::TypeReference && !IsAssociation()) {
    Fail(zelStatusNotAssociation,
         Text("Attempt to add reference property ", name, " to non-association class ", fName));
  }
  const std::string key = TContainerImpl::NormalizeName(name);
  const TCIMPropertyDecl* existing = FindPropertyDecl(name);
  if (decl.FindQualifier("OVERRIDE")) {
    CheckOverride(decl, existing);
  } else if (existing) {
    Fail(zelStatusAlreadyExists,
         Text("Attempt to add property ", name, " to class ", fName, ": already exists"));
  }
  if (existing != &decl) OwnDecls()[key].reset(&decl);
}

void TCIMClassImpl::CheckOverride(const TCIMPropertyDecl& decl,
                                  const TCIMPropertyDecl* existing) const {
  const auto refuse = [&](zelStatusCode code, const char* why) {
    Fail(code,
         Text("Attempt to override property ", decl.GetName(), " in class ", fName, ": ", why));
  };
  if (!existing) refuse(zelStatusNotFound, "property doesn't exist in base class");
  if (existing->GetType() != decl.GetType()) refuse(zelStatusTypeMismatch, "different types");
  if (existing->GetClass()->GetName() == fName) {
    refuse(zelStatusAlreadyExists, "original was defined in this class");
  }
}

// The declarations, to be changed: not shared, and the layout forgotten.
TPropertyDecls& TCIMClassImpl::OwnDecls() {
  if (fTable.use_count() > 1) {
    const auto shared = std::exchange(fTable, boost::make_shared<TDeclTable>());
    fTable->decls = shared->decls;
  }
  fTable->layout.reset();
  return fTable->decls;
}

TCIMPropertyDecl* TCIMClassImpl::GetPropertyDecl(const std::string& name) const {
  return OrNotFound(FindPropertyDecl(name));
}

TCIMPropertyDecl* TCIMClassImpl::FindPropertyDecl(const std::string& name) const {
  if (fTable->layout && fTable->layout->IsCurrent() && fTable->layout->IsAsDeclared()) {
    const std::size_t slot = fTable->layout->Find(name);
    if (slot != TPropertyLayout::kNoSlot) return &fTable->layout->Decl(slot);
  }
  CheckName(name);
  const auto found = fTable->decls.find(name);
  return found == fTable->decls.end() ? nullptr : found->second.get();
}

std::vector<TCIMPropertyDecl const*> TCIMClassImpl::EnumeratePropertyDecls() const {
  std::vector<TCIMPropertyDecl const*> decls;
  decls.reserve(fTable->decls.size());
  for (const auto& [key, decl] : fTable->decls) decls.push_back(decl.get());
  return decls;
}

void TCIMClassImpl::RemovePropertyDecl(TCIMPropertyDecl& decl) {
  const std::string key = TContainerImpl::NormalizeName(decl.GetName());
  if (fTable->decls.count(key) == 0) Fail(zelStatusNotFound);
  OwnDecls().erase(key);
}

std::vector<std::string> TCIMClassImpl::EnumerateKeyNames() const {
  std::vector<std::string> names;
  for (const std::size_t slot : Layout()->KeySlots()) {
    names.push_back(Layout()->Decl(slot).GetName());
  }
  return names;
}

const boost::shared_ptr<const TPropertyLayout>& TCIMClassImpl::Layout() const {
  boost::shared_ptr<const TPropertyLayout>& layout = fTable->layout;
  if (!layout || !layout->IsCurrent()) {
    layout = boost::make_shared<const TPropertyLayout>(fTable->decls);
  }
  return layout;
}

void TCIMClassImpl::AddInstance(TCIMInstance& instance) {
  TCIMInstanceImpl& body = *instance.GetBody();
  if (body.IsAdded()) return;
  TPathText path;
  body.AppendPath(path);
  body.SetAdded(fInstances.Add(path.View(), std::unique_ptr<TCIMInstance>(&instance)));
}

void TCIMClassImpl::RemoveInstance(TCIMInstance& instance) {
  TPathText path;
  instance.GetBody()->AppendPath(path);
  fInstances.Remove(path.View());
}

TCIMInstance* TCIMClassImpl::GetInstance(const TCIMReference& path) const {
  return OrNotFound(FindInstance(path));
}

TCIMInstance* TCIMClassImpl::FindInstance(const TCIMReference& path) const {
  TPathText text;
  path.GetBody()->AppendPath(text);
  return fInstances.Find(text.View());
}

std::vector<TCIMInstance*> TCIMClassImpl::EnumerateInstances(bool deep) const {
  std::vector<TCIMInstance*> instances;
  fInstances.AppendTo(instances);
  if (deep) {
    TSubclassWalk walk(fSubClasses);
    while (const TCIMClass* cls = walk.Next()) Body(*cls).fInstances.AppendTo(instances);
  }
  return instances;
}

std::vector<TCIMInstance*> TCIMClassImpl::FindReferrers(const TCIMInstanceImpl& target) const {
  if (!fReferenceIndex) fReferenceIndex = std::make_unique<TReferenceIndex>();
  return fReferenceIndex->Find(fInstances, target);
}

void TCIMClassImpl::AddChildClass(TCIMClass& child) { fSubClasses.push_back(&child); }

void TCIMClassImpl::RemoveChildClass(TCIMClass& child) {
  const auto found = std::find(fSubClasses.begin(), fSubClasses.end(), &child);
  if (found != fSubClasses.end()) fSubClasses.erase(found);
}

void TCIMClassImpl::AddAssociationClass(TCIMClass& association) {
  fAssociationClasses.insert(&association);
}
