#pragma once

#include <initializer_list>
#include <memory>
#include <string>
#include <utility>

#include "zelcore/TCIMClass.h"
#include "zelcore/TCIMInstance.h"
#include "zelcore/TCIMPropertyDecl.h"
#include "zelcore/TCIMQualifier.h"
#include "zelcore/TCIMReference.h"
#include "zelcore/TCIMValue.h"
#include "zelcore/TContainer.h"

// Hands `object` to its container, which owns it from then on; when that throws it is the caller's.
template <class T>
T& HandOver(std::unique_ptr<T> object) {
  object->AddToContainer();
  return *object.release();
}

// A container in which KEY, ASSOCIATION, ABSTRACT and OVERRIDE are declared, and short ways to fill
// it.
class Schema {
 public:
  Schema() {
    for (const char* name : {"KEY", "ASSOCIATION", "ABSTRACT", "OVERRIDE"}) {
      Declare(name, TCIMQualifierDecl::FlavorOverridable);
    }
  }

  TContainer& Container() { return fContainer; }

  TCIMQualifierDecl& Declare(const std::string& name, TCIMQualifierDecl::EFlavor flavor,
                             const TCIMValue& value = TCIMValue(false)) {
    return HandOver(std::unique_ptr<TCIMQualifierDecl>(
        fContainer.AllocateQualifierDecl(name, value, TCIMQualifierDecl::ScopeProperty, flavor)));
  }

  std::unique_ptr<TCIMQualifier> Qualifier(const std::string& name,
                                           const TCIMValue& value = TCIMValue(true)) {
    return std::make_unique<TCIMQualifier>(*fContainer.GetQualifierDecl(name), value);
  }

  TCIMQualifier& Qualify(ICIMAllowQualifiers& element, const std::string& name,
                         const TCIMValue& value = TCIMValue(true)) {
    std::unique_ptr<TCIMQualifier> qualifier = Qualifier(name, value);
    element.AddQualifier(*qualifier);
    return *qualifier.release();
  }

  // A declaration that is not added yet, with the qualifiers named, all true.
  std::unique_ptr<TCIMPropertyDecl> Property(TCIMClass& cls, const std::string& name,
                                             const TCIMValue& value,
                                             std::initializer_list<const char*> qualifiers = {}) {
    auto decl = std::make_unique<TCIMPropertyDecl>(name, cls, value);
    for (const char* qualifier : qualifiers) Qualify(*decl, qualifier);
    return decl;
  }

  TCIMPropertyDecl& AddProperty(TCIMClass& cls, const std::string& name, const TCIMValue& value,
                                std::initializer_list<const char*> qualifiers = {}) {
    return HandOver(Property(cls, name, value, qualifiers));
  }

  // A class that is not registered yet.
  std::unique_ptr<TCIMClass> Class(const std::string& name, TCIMClass* superClass = nullptr) {
    return std::unique_ptr<TCIMClass>(fContainer.AllocateClass(name, superClass));
  }

  // A registered class with the string key Name, its own or inherited.
  TCIMClass& AddClass(const std::string& name, TCIMClass* superClass = nullptr) {
    std::unique_ptr<TCIMClass> cls = Class(name, superClass);
    if (!cls->FindPropertyDecl("Name")) AddProperty(*cls, "Name", NullString(), {"KEY"});
    return HandOver(std::move(cls));
  }

  // A registered association between two classes, with the key references Antecedent and Dependent.
  TCIMClass& AddAssociation(const std::string& name, TCIMClass& antecedent, TCIMClass& dependent) {
    std::unique_ptr<TCIMClass> cls = Class(name);
    Qualify(*cls, "ASSOCIATION");
    AddProperty(*cls, "Antecedent", NullReference(&antecedent), {"KEY"});
    AddProperty(*cls, "Dependent", NullReference(&dependent), {"KEY"});
    return HandOver(std::move(cls));
  }

  std::unique_ptr<TCIMInstance> Instance(TCIMClass& cls) {
    return std::unique_ptr<TCIMInstance>(fContainer.AllocateInstance(&cls));
  }

  TCIMInstance& AddInstance(TCIMClass& cls, const std::string& name) {
    std::unique_ptr<TCIMInstance> instance = Instance(cls);
    instance->SetPropertyValue("Name", TCIMValue(name));
    return HandOver(std::move(instance));
  }

  TCIMReference PathOf(TCIMClass& cls) {
    TCIMReference path(&fContainer);
    path.SetClass(cls);
    return path;
  }
  TCIMReference PathOf(TCIMClass& cls, const std::string& name) {
    TCIMReference path = PathOf(cls);
    path.AddKeyValue("Name", TCIMValue(name));
    return path;
  }

  static TCIMValue Null(TCIMValue::TCIMType type) { return TCIMValue(type, 0); }
  static TCIMValue NullString() { return Null(TCIMValue::TCIMType::TypeString); }
  static TCIMValue NullReference(TCIMClass* cls) {
    TCIMValue value = Null(TCIMValue::TCIMType::TypeReference);
    if (cls) value.SetReferencedClass(*cls);
    return value;
  }

 private:
  TContainer fContainer;
};

// The names of what is pointed at, in order.
template <class TElements>
std::vector<std::string> NamesOf(const TElements& elements) {
  std::vector<std::string> names;
  for (const auto* element : elements) names.push_back(element->GetName());
  return names;
}
