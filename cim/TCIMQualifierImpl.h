#pragma once

#include "zelcore/TCIMQualifierDecl.h"
#include "zelcore/detail/Export.h"

class ZEL_API TCIMQualifierImpl {
 public:
  using EFlavor = TCIMQualifierDecl::EFlavor;

  TCIMQualifierImpl(const TCIMQualifierDecl& declaration, const TCIMValue& value, EFlavor flavor);

  TCIMQualifierDecl* GetDeclaration() const { return fDeclaration; }
  const TCIMValue& Value() const { return fValue; }
  void SetValue(const TCIMValue& value);
  EFlavor GetFlavor() const { return fFlavor; }
  void SetFlavor(EFlavor flavor);
  void UnsetFlavor(EFlavor flavor);
  bool GetPropagated() const { return fPropagated; }
  void SetPropagated(bool propagated) { fPropagated = propagated; }

 private:
  TCIMQualifierDecl* fDeclaration;  // the container's
  TCIMValue fValue;
  EFlavor fFlavor;
  bool fPropagated;
};
