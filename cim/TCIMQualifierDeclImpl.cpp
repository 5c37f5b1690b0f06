#include "cim/TCIMQualifierDeclImpl.h"

TCIMQualifierDeclImpl::TCIMQualifierDeclImpl(TCIMQualifierDecl* owner, TContainer* container)
    : TCIMQualifierDeclImpl(owner, container, "", TCIMValue(), TCIMQualifierDecl::ScopeNone,
                            TCIMQualifierDecl::FlavorNone) {}

TCIMQualifierDeclImpl::TCIMQualifierDeclImpl(TCIMQualifierDecl* owner, TContainer* container,
                                             const std::string& name, const TCIMValue& value,
                                             EScope scope, EFlavor flavor)
    : fOwner(owner),
      fContainer(container),
      fName(name),
      fValue(value),
      fScope(scope),
      fFlavor(flavor) {}

TCIMQualifierDeclImpl::TCIMQualifierDeclImpl(const TCIMQualifierDeclImpl& other,
                                             TContainer* container)
    : TCIMQualifierDeclImpl(other.fOwner, container, other.fName, other.fValue, other.fScope,
                            other.fFlavor) {}
