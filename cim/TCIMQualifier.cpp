#include "zelcore/TCIMQualifier.h"

#include <boost/make_shared.hpp>

#include "cim/Names.h"
#include "cim/SchemaChanges.h"
#include "cim/TCIMQualifierImpl.h"

using zelcore::detail::HaveEqualNames;
using zelcore::detail::IsNameLess;

TCIMQualifier::TCIMQualifier(const TCIMQualifierDecl& decl, const TCIMValue& value)
    : TCIMQualifier(decl, value, decl.GetFlavor()) {}

TCIMQualifier::TCIMQualifier(const TCIMQualifierDecl& decl, const TCIMValue& value,
                             TCIMQualifierDecl::EFlavor flavor)
    : fBody(boost::make_shared<TCIMQualifierImpl>(decl, value, flavor)) {}

TCIMQualifier::TCIMQualifier(const TCIMQualifier& other)
    : fBody(boost::make_shared<TCIMQualifierImpl>(*other.fBody)) {}

TCIMQualifier& TCIMQualifier::operator=(const TCIMQualifier& other) {
  zelcore::detail::TSchemaChanges::Note();
  fBody = boost::make_shared<TCIMQualifierImpl>(*other.fBody);
  return *this;
}

TCIMQualifier::~TCIMQualifier() = default;

const std::string& TCIMQualifier::GetName() const { return fBody->GetDeclaration()->GetName(); }
TCIMQualifierDecl* TCIMQualifier::GetDeclaration() const { return fBody->GetDeclaration(); }
TCIMValue::TCIMType TCIMQualifier::GetType() const { return fBody->Value().GetType(); }
bool TCIMQualifier::IsArray() const { return fBody->Value().IsArray(); }
TCIMValue TCIMQualifier::GetValue() const { return fBody->Value(); }
TCIMQualifierDecl::EFlavor TCIMQualifier::GetFlavor() const { return fBody->GetFlavor(); }
bool TCIMQualifier::GetPropagated() const { return fBody->GetPropagated(); }
void TCIMQualifier::SetPropagated(bool propagated) { fBody->SetPropagated(propagated); }
void TCIMQualifier::SetValue(const TCIMValue& value) { fBody->SetValue(value); }
void TCIMQualifier::SetFlavor(TCIMQualifierDecl::EFlavor flavor) { fBody->SetFlavor(flavor); }
void TCIMQualifier::UnsetFlavor(TCIMQualifierDecl::EFlavor flavor) { fBody->UnsetFlavor(flavor); }
bool TCIMQualifier::operator==(const TCIMQualifier& other) const {
  return HaveEqualNames(*this, other);
}
bool TCIMQualifier::operator<(const TCIMQualifier& other) const { return IsNameLess(*this, other); }
const boost::shared_ptr<TCIMQualifierImpl>& TCIMQualifier::GetBody() const { return fBody; }
