// From a class or an instance to the associations that refer to it, and through them to what is at
// their other ends.

#include <algorithm>
#include <string>
#include <vector>

#include "cim/Names.h"
#include "cim/TCIMClassImpl.h"
#include "cim/TCIMInstanceImpl.h"
#include "cim/TCIMObjectValueImpl.h"
#include "cim/TCIMPropertyDeclImpl.h"
#include "cim/TCIMPropertyImpl.h"
#include "cim/TCIMReferenceImpl.h"
#include "zelcore/TCIMClass.h"
#include "zelcore/TCIMInstance.h"
#include "zelcore/TContainer.h"
#include "zelcore/TZELException.h"

using zelcore::detail::CheckName;
using zelcore::detail::EqualsIgnoringAsciiCase;

namespace {

const TCIMValue& ValueOf(const TCIMPropertyDecl& decl) { return decl.GetBody()->Value(); }
const TCIMValue& ValueOf(const TCIMProperty& property) { return property.GetShownBody().Value(); }

// Whether the value is a reference to `cls` or a subclass of it.
bool RefersToSubclassOf(const TCIMValue& value, const TCIMClass& cls) {
  const TCIMClass* referenced = value.IsReference() ? value.GetReferencedClass() : nullptr;
  return referenced && referenced->IsSubclassOf(&cls);
}

// Of what `owner` has: all, or with a name the one of that name, if there is one.
template <class TOwner, class TEnd>
std::vector<TEnd const*> Select(const std::string& name, const TOwner& owner,
                                std::vector<TEnd const*> (TOwner::*enumerate)() const,
                                TEnd* (TOwner::*find)(const std::string&) const) {
  if (name.empty()) return (owner.*enumerate)();
  TEnd const* found = (owner.*find)(name);
  return found ? std::vector<TEnd const*>{found} : std::vector<TEnd const*>{};
}

std::vector<TCIMPropertyDecl const*> DeclsOf(const TCIMClass& association,
                                             const std::string& role) {
  return Select(role, association, &TCIMClass::EnumeratePropertyDecls,
                &TCIMClass::FindPropertyDecl);
}

std::vector<TCIMProperty const*> PropertiesOf(const TCIMInstance& association,
                                              const std::string& role) {
  return Select(role, association, &TCIMInstance::EnumerateProperties, &TCIMInstance::FindProperty);
}

// Leaves out the own end: of the ends of one association, in order, the first that is named `role`,
// or, without a role, the first reference whose class `isOwnClass` accepts.
template <class TEnd, class TIsOwnClass>
void DropOwnEnd(std::vector<TEnd const*>& ends, const std::string& role, TIsOwnClass isOwnClass) {
  const auto isOwn = [&](const TEnd* end) {
    if (!role.empty()) return EqualsIgnoringAsciiCase(end->GetName(), role);
    const TCIMValue& value = ValueOf(*end);
    return value.IsReference() && value.GetReferencedClass() &&
           isOwnClass(*value.GetReferencedClass());
  };
  const auto own = std::find_if(ends.begin(), ends.end(), isOwn);
  if (own != ends.end()) ends.erase(own);
}

// What a reference leads to; null when it leads to nothing or to a class, and for other values.
TCIMInstance* Follow(const TCIMValue& value) {
  if (!value.IsReference() || value.IsNull()) return nullptr;
  const TCIMReference& path = TCIMReferenceValueImpl::ValueOf(value);
  try {
    return path.GetBody()->FindInstance(path);
  } catch (const TZELException&) {
    return nullptr;  // a path with a NULL key
  }
}

bool LeadsTo(const TCIMInstance& association, const std::string& role, const TCIMInstance* target) {
  const std::vector<TCIMProperty const*> ends = PropertiesOf(association, role);
  return std::any_of(ends.begin(), ends.end(),
                     [&](const TCIMProperty* end) { return Follow(ValueOf(*end)) == target; });
}

}  // namespace

std::vector<TCIMClass*> TCIMClassImpl::References(const std::string& assocClass,
                                                  const std::string& role) const {
  const TCIMClass* const general = fContainer->FindClass(assocClass);
  // sic: declared to this class itself, even where a superclass has the association.
  const auto hasRole = [&](const TCIMClass& association) {
    const TCIMPropertyDecl* decl = association.FindPropertyDecl(role);
    return decl && ValueOf(*decl).IsReference() && ValueOf(*decl).GetReferencedClass() == fOwner;
  };
  std::vector<TCIMClass*> associations;
  for (const TCIMClassImpl* cls = this; !cls->IsRootClass();
       cls = cls->fSuperClass->GetBody().get()) {
    for (TCIMClass* association : cls->fAssociationClasses) {
      if (!association->IsSubclassOf(general)) continue;
      if (role.empty() || hasRole(*association)) associations.push_back(association);
    }
  }
  return associations;
}

std::vector<TCIMClass*> TCIMClassImpl::Associators(const std::string& assocClass,
                                                   const std::string& resultClass,
                                                   const std::string& role,
                                                   const std::string& resultRole) const {
  std::vector<TCIMClass*> associated;
  const TCIMClass* const wanted =
      fContainer->FindClass(assocClass) ? fContainer->FindClass(resultClass) : nullptr;
  if (!wanted) return associated;
  CheckName(role);
  for (const TCIMClass* association : References(assocClass, role)) {
    std::vector<TCIMPropertyDecl const*> ends = DeclsOf(*association, resultRole);
    if (resultRole.empty()) {
      DropOwnEnd(ends, role, [this](const TCIMClass& cls) { return cls == *fOwner; });
    }
    for (const TCIMPropertyDecl* end : ends) {
      const TCIMValue& value = ValueOf(*end);
      if (RefersToSubclassOf(value, *wanted)) associated.push_back(value.GetReferencedClass());
    }
  }
  return associated;
}

std::vector<TCIMInstance*> TCIMInstanceImpl::References(const std::string& assocClass,
                                                        const std::string& role) const {
  std::vector<TCIMInstance*> associations;
  for (const TCIMClass* cls : fClass->References(assocClass, role)) {
    for (TCIMInstance* association : cls->GetBody()->FindReferrers(*this)) {
      if (LeadsTo(*association, role, fOwner)) associations.push_back(association);
    }
  }
  return associations;
}

std::vector<TCIMInstance*> TCIMInstanceImpl::Associators(const std::string& assocClass,
                                                         const std::string& resultClass,
                                                         const std::string& role,
                                                         const std::string& resultRole) const {
  std::vector<TCIMInstance*> associated;
  const TCIMClass* const wanted = GetContainer()->FindClass(resultClass);
  if (!wanted) return associated;
  CheckName(role);
  for (const TCIMInstance* association : References(assocClass, role)) {
    std::vector<TCIMProperty const*> ends = PropertiesOf(*association, resultRole);
    if (resultRole.empty()) {
      DropOwnEnd(ends, role, [this](const TCIMClass& cls) { return &cls == fClass; });
    }
    for (const TCIMProperty* end : ends) {
      if (!RefersToSubclassOf(ValueOf(*end), *wanted)) continue;
      if (TCIMInstance* instance = Follow(ValueOf(*end))) associated.push_back(instance);
    }
  }
  return associated;
}
