#include "cim/TCIMQualifierImpl.h"

#include "cim/SchemaChanges.h"

using zelcore::detail::TSchemaChanges;

TCIMQualifierImpl::TCIMQualifierImpl(const TCIMQualifierDecl& declaration, const TCIMValue& value,
                                     EFlavor flavor)
    : fDeclaration(const_cast<TCIMQualifierDecl*>(&declaration)),
      fValue(value),
      fFlavor(flavor),
      fPropagated(false) {}

void TCIMQualifierImpl::SetValue(const TCIMValue& value) {
  TSchemaChanges::Note();
  fValue = value;
  fPropagated = false;
}

void TCIMQualifierImpl::SetFlavor(EFlavor flavor) {
  fFlavor = fFlavor | flavor;
  fPropagated = false;
}

void TCIMQualifierImpl::UnsetFlavor(EFlavor flavor) {
  fFlavor = static_cast<EFlavor>(fFlavor & ~flavor);
  fPropagated = false;
}
