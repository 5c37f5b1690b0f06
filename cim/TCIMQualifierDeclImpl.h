#pragma once

#include <string>

#include "zelcore/TCIMQualifierDecl.h"
#include "zelcore/detail/Export.h"

class ZEL_API TCIMQualifierDeclImpl {
 public:
  using EFlavor = TCIMQualifierDecl::EFlavor;
  using EScope = TCIMQualifierDecl::EScope;

  TCIMQualifierDeclImpl(TCIMQualifierDecl* owner, TContainer* container);
  TCIMQualifierDeclImpl(TCIMQualifierDecl* owner, TContainer* container, const std::string& name,
                        const TCIMValue& value, EScope scope, EFlavor flavor);
  // A copy of `other` for another container; the owner stays.
  TCIMQualifierDeclImpl(const TCIMQualifierDeclImpl& other, TContainer* container);

  TCIMQualifierDecl* GetOwner() const { return fOwner; }
  const std::string& GetName() const { return fName; }
  void SetName(const std::string& name) { fName = name; }
  const TCIMValue& Value() const { return fValue; }
  void SetValue(const TCIMValue& value) { fValue = value; }
  TContainer* GetContainer() const { return fContainer; }
  EScope GetScope() const { return fScope; }
  EFlavor GetFlavor() const { return fFlavor; }
  void SetFlavor(EFlavor flavor) { fFlavor = fFlavor | flavor; }
  void UnsetFlavor(EFlavor flavor) { fFlavor = static_cast<EFlavor>(fFlavor & ~flavor); }

 private:
  TCIMQualifierDecl* fOwner;  // the handle that made this
  TContainer* fContainer;
  std::string fName;
  TCIMValue fValue;
  EScope fScope;
  EFlavor fFlavor;
};
