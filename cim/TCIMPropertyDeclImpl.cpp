#include "cim/TCIMPropertyDeclImpl.h"

#include "cim/SchemaChanges.h"

using zelcore::detail::TSchemaChanges;

TCIMPropertyDeclImpl::TCIMPropertyDeclImpl(TCIMPropertyDecl* owner, const std::string& name,
                                           TCIMClass* cls, const TCIMValue& value)
    : fOwner(owner), fName(name), fClass(cls), fValue(value) {}

bool TCIMPropertyDeclImpl::MayBeBound() const {
  if (fKeyLookedAt != TSchemaChanges::Count()) {
    const TCIMValue* const key = fQualifiers.FindValue("KEY");
    fMayBeBound = key && key->GetType() == TCIMValue::TCIMType::TypeBoolean && bool(*key);
    fKeyLookedAt = TSchemaChanges::Count();
  }
  return fMayBeBound;
}

void TCIMPropertyDeclImpl::SetName(const std::string& name) {
  TSchemaChanges::Note();
  fName = name;
}

void TCIMPropertyDeclImpl::SetValue(const TCIMValue& value) {
  TSchemaChanges::Note();
  fValue = value;
}
