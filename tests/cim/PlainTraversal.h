#pragma once

#include <algorithm>
#include <string>
#include <vector>

#include "cim/TContainerImpl.h"
#include "zelcore/ICIMElement.h"
#include "zelcore/TCIMClass.h"
#include "zelcore/TCIMInstance.h"
#include "zelcore/TCIMProperty.h"
#include "zelcore/TCIMPropertyDecl.h"
#include "zelcore/TCIMReference.h"
#include "zelcore/TContainer.h"
#include "zelcore/TZELException.h"

// Association traversal step by step, looking at everything each time: what the library's is
// compared with. It uses nothing but the public operations.
namespace plain {

using TClasses = std::vector<TCIMClass*>;
using TInstances = std::vector<TCIMInstance*>;

inline std::string Lower(const std::string& name) { return TContainerImpl::NormalizeName(name); }

inline TClasses ReferencedBy(const TCIMClass& association) {
  TClasses referenced;
  for (const TCIMPropertyDecl* decl : association.EnumeratePropertyDecls()) {
    const TCIMValue value = decl->GetValue();
    if (value.IsReference() && value.GetReferencedClass()) {
      referenced.push_back(value.GetReferencedClass());
    }
  }
  return referenced;
}

// Whether `association` refers to `cls`, and to no superclass of it.
inline bool IsRecordedOn(const TCIMClass& association, const TCIMClass& cls) {
  const TClasses referenced = ReferencedBy(association);
  const auto has = [&](const TCIMClass* other) {
    return std::find(referenced.begin(), referenced.end(), other) != referenced.end();
  };
  if (!has(&cls)) return false;
  for (const TCIMClass* up = cls.GetSuperClass(); up; up = up->GetSuperClass()) {
    if (has(up)) return false;
  }
  return true;
}

inline TClasses AssociationsOf(const TCIMClass& cls) {
  TClasses associations;
  for (TCIMClass* other : cls.GetContainer()->GetRootClass()->EnumerateSubClasses(true)) {
    if (other->IsAssociation() && IsRecordedOn(*other, cls)) associations.push_back(other);
  }
  std::sort(associations.begin(), associations.end(), [](const TCIMClass* a, const TCIMClass* b) {
    return Lower(a->GetName()) < Lower(b->GetName());
  });
  return associations;
}

inline TClasses References(const TCIMClass& cls, const std::string& assocClass,
                           const std::string& role) {
  const TCIMClass* const general = cls.GetContainer()->FindClass(assocClass);
  TClasses result;
  for (const TCIMClass* up = &cls; !up->IsRootClass(); up = up->GetSuperClass()) {
    for (TCIMClass* association : AssociationsOf(*up)) {
      if (!association->IsSubclassOf(general)) continue;
      if (!role.empty()) {
        const TCIMPropertyDecl* decl = association->FindPropertyDecl(role);
        if (!decl || !decl->GetValue().IsReference()) continue;
        if (decl->GetValue().GetReferencedClass() != &cls) continue;
      }
      result.push_back(association);
    }
  }
  return result;
}

inline TClasses Associators(const TCIMClass& cls, const std::string& assocClass,
                            const std::string& resultClass, const std::string& role,
                            const std::string& resultRole) {
  const TCIMClass* const general = cls.GetContainer()->FindClass(assocClass);
  const TCIMClass* const wanted = cls.GetContainer()->FindClass(resultClass);
  TClasses result;
  if (!general || !wanted) return result;
  for (TCIMClass* association : References(cls, assocClass, role)) {
    bool isSkipped = !resultRole.empty();
    for (const TCIMPropertyDecl* decl : association->EnumeratePropertyDecls()) {
      const TCIMValue value = decl->GetValue();
      TCIMClass* const referenced = value.GetReferencedClass();
      if (!resultRole.empty() && Lower(decl->GetName()) != Lower(resultRole)) continue;
      if (!isSkipped) {
        isSkipped = role.empty() ? value.IsReference() && referenced && *referenced == cls
                                 : Lower(decl->GetName()) == Lower(role);
        if (isSkipped) continue;
      }
      if (value.IsReference() && referenced && referenced->IsSubclassOf(wanted)) {
        result.push_back(referenced);
      }
    }
  }
  return result;
}

// Null when the value leads to no instance. What a path remembers may be gone: it is not looked at.
__attribute__((no_sanitize("vptr"))) inline TCIMInstance* Resolve(const TCIMValue& value) {
  try {
    const TCIMReference path = value;
    ICIMElement* const element = path.GetCIMElement();
    return path.EnumerateKeyBindings().empty() ? nullptr : static_cast<TCIMInstance*>(element);
  } catch (const TZELException&) {
    return nullptr;
  }
}

inline TInstances References(const TCIMInstance& instance, const std::string& assocClass,
                             const std::string& role) {
  TInstances result;
  for (const TCIMClass* cls : References(*instance.GetClass(), assocClass, role)) {
    for (TCIMInstance* association : cls->EnumerateInstances(false)) {
      bool qualifies = false;
      for (const TCIMProperty* property : association->EnumerateProperties()) {
        if (!role.empty() && Lower(property->GetName()) != Lower(role)) continue;
        const TCIMValue value = property->GetValue();
        if (value.IsReference() && Resolve(value) == &instance) qualifies = true;
      }
      if (qualifies) result.push_back(association);
    }
  }
  return result;
}

inline TInstances Associators(const TCIMInstance& instance, const std::string& assocClass,
                              const std::string& resultClass, const std::string& role,
                              const std::string& resultRole) {
  const TCIMClass* const wanted = instance.GetContainer()->FindClass(resultClass);
  TInstances result;
  if (!wanted) return result;
  for (const TCIMInstance* association : References(instance, assocClass, role)) {
    bool isSkipped = !resultRole.empty();
    for (const TCIMProperty* property : association->EnumerateProperties()) {
      const TCIMValue value = property->GetValue();
      TCIMClass* const referenced = value.GetReferencedClass();
      if (!resultRole.empty() && Lower(property->GetName()) != Lower(resultRole)) continue;
      if (!isSkipped) {
        isSkipped = role.empty() ? value.IsReference() && referenced == instance.GetClass()
                                 : Lower(property->GetName()) == Lower(role);
        if (isSkipped) continue;
      }
      if (!value.IsReference() || !referenced || !referenced->IsSubclassOf(wanted)) continue;
      if (TCIMInstance* other = Resolve(value)) result.push_back(other);
    }
  }
  return result;
}

}  // namespace plain
