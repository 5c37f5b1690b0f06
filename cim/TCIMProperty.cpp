#include "zelcore/TCIMProperty.h"

#include <utility>

#include "cim/TCIMPropertyImpl.h"
#include "zelcore/TCIMPropertyDecl.h"

TCIMProperty::TCIMProperty(const TCIMPropertyDecl& decl)
    : fBody(new TCIMPropertyImpl(this, &decl)) {}

TCIMProperty::TCIMProperty(const TCIMPropertyDecl& decl, const TCIMValue& value)
    : TCIMProperty(decl) {
  SetValue(value);
}

TCIMProperty::TCIMProperty(const TCIMProperty& other)
    : fBody(new TCIMPropertyImpl(this, *other.fBody)) {}

TCIMProperty& TCIMProperty::operator=(const TCIMProperty& other) {
  if (&other != this) GetBody()->Take(TCIMPropertyImpl(this, *other.fBody));
  return *this;
}

TCIMProperty::~TCIMProperty() { TCIMPropertyImpl::Release(fBody); }

TCIMPropertyImpl* TCIMProperty::GetBody() const {
  if (fBody->IsShared()) fBody = fBody->MakeOwn(const_cast<TCIMProperty*>(this));
  return fBody;
}

const std::string& TCIMProperty::GetName() const { return GetDeclaration()->GetName(); }
TCIMValue::TCIMType TCIMProperty::GetType() const { return GetDeclaration()->GetType(); }
bool TCIMProperty::IsArray() const { return GetDeclaration()->IsArray(); }
const TCIMPropertyDecl* TCIMProperty::GetDeclaration() const { return fBody->GetDeclaration(); }
TCIMValue TCIMProperty::GetValue() const { return fBody->Value(); }
void TCIMProperty::SetValue(const TCIMValue& value) { GetBody()->SetValue(value); }
void TCIMProperty::SetValue(TCIMValue&& value) { GetBody()->SetValue(std::move(value)); }
bool TCIMProperty::GetPropagated() const { return !fBody->HasValue(); }
TCIMValue TCIMProperty::GetPrevValue() const { return fBody->PrevValue(); }
void TCIMProperty::SetPrevValue(const TCIMValue& value) { GetBody()->SetPrevValue(value); }
void TCIMProperty::SetPrevValue() { GetBody()->SetPrevValue(TCIMValue()); }
bool TCIMProperty::IsPrevValueDifferent() const { return fBody->IsPrevValueDifferent(); }

std::string TCIMProperty::ToString() const { return fBody->ToString(); }
std::vector<std::string> TCIMProperty::ToStringVector() const { return fBody->ToStringVector(); }
std::string TCIMProperty::PrevToString() const { return fBody->PrevToString(); }
std::vector<std::string> TCIMProperty::PrevToStringVector() const {
  return fBody->PrevToStringVector();
}

bool TCIMProperty::operator==(const TCIMProperty& other) const {
  return *GetDeclaration() == *other.GetDeclaration() && fBody->Value() == other.fBody->Value();
}

bool TCIMProperty::operator<(const TCIMProperty& other) const {
  if (*GetDeclaration() < *other.GetDeclaration()) return true;
  return *GetDeclaration() == *other.GetDeclaration() && fBody->Value() < other.fBody->Value();
}
