#pragma once

#include <string>
#include <vector>

#include "plugin/zeliIOHandle.h"
#include "zelcore/IPluginManager.h"
#include "zelcore/TCIMClass.h"
#include "zelcore/TCIMInstance.h"
#include "zelcore/TCIMProperty.h"
#include "zelcore/TCIMPropertyDecl.h"
#include "zelcore/TCIMQualifier.h"
#include "zelcore/TCIMQualifierDecl.h"
#include "zelcore/TCIMReference.h"
#include "zelcore/TCIMValue.h"
#include "zelcore/TContainer.h"
#include "zelcore/TPluginManager.h"
#include "zelcore/zel.h"

using TType = TCIMValue::TCIMType;

// A container with two classes and a data-collection handle on it.
//
// Test_Thing has the string key "Id" and one property for each type, named after it ("uint8") or,
// for arrays, after the element ("uint8s"). Test_Link is an association with the references "From"
// and "To" to it, both keys.
class Handle {
 public:
  explicit Handle(IPlugin* plugin = nullptr) : fHandle(&fContainer, plugin) { Declare(); }

  operator zelIOHandle*() { return &fHandle; }
  zelIOHandle* operator->() { return &fHandle; }

  TContainer& Container() { return fContainer; }
  std::vector<TCIMInstance*> Instances(const std::string& className) const {
    return fContainer.GetClass(className)->EnumerateInstances(false);
  }
  // Of the current instance.
  TCIMValue Value(const std::string& property) const {
    return fHandle.GetCurrentInstance()->GetProperty(property)->GetValue();
  }

 private:
  void DeclareQualifier(const std::string& name, TCIMQualifierDecl::EScope scope) {
    fContainer
        .AllocateQualifierDecl(name, TCIMValue(TType::TypeBoolean, 0), scope,
                               TCIMQualifierDecl::FlavorToSubclass)
        ->AddToContainer();
  }
  TCIMQualifier* True(const std::string& name) {
    return new TCIMQualifier(*fContainer.GetQualifierDecl(name), TCIMValue(true));
  }
  void DeclareProperty(TCIMClass& cls, const std::string& name, const TCIMValue& value,
                       bool isKey = false) {
    auto* decl = new TCIMPropertyDecl(name, cls, value);
    if (isKey) decl->AddQualifier(*True("KEY"));
    decl->AddToContainer();
  }
  void Declare() {
    DeclareQualifier("KEY", TCIMQualifierDecl::ScopeProperty);
    DeclareQualifier("ASSOCIATION", TCIMQualifierDecl::ScopeAssociation);

    TCIMClass* thing = fContainer.AllocateClass("Test_Thing", nullptr);
    DeclareProperty(*thing, "Id", TCIMValue(TType::TypeString, 0), true);
    for (const char* name : {"boolean", "uint8", "sint8", "uint16", "sint16", "uint32", "sint32",
                             "uint64", "sint64", "real64", "string", "datetime"}) {
      DeclareProperty(*thing, name, TCIMValue(TType(name), 0));
      DeclareProperty(*thing, std::string(name) + "s", TCIMValue(TType(name), 1));
    }
    thing->AddToContainer();

    TCIMValue toThing(TType::TypeReference, 0);
    toThing.SetReferencedClass(*thing);
    TCIMClass* link = fContainer.AllocateClass("Test_Link", nullptr);
    link->AddQualifier(*True("ASSOCIATION"));
    DeclareProperty(*link, "From", toThing, true);
    DeclareProperty(*link, "To", toThing, true);
    link->AddToContainer();
  }

  TContainer fContainer;
  zeliIOHandle fHandle;
};
