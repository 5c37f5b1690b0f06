#include "cim/TCIMPropertyDeclImpl.h"

#include "cim/SchemaChanges.h"

using zelcore::detail::TSchemaChanges;

TCIMPropertyDeclImpl::TCIMPropertyDeclImpl(TCIMPropertyDecl* owner, const std::string& name,
                                           TCIMClass* cls, const TCIMValue& value)
    : fOwner(owner), fName(name), fClass(cls), fValue(value) {}

void TCIMPropertyDeclImpl::SetName(const std::string& name) {
  TSchemaChanges::Note();
  fName = name;
}

void TCIMPropertyDeclImpl::SetValue(const TCIMValue& value) {
  TSchemaChanges::Note();
  fValue = value;
}
