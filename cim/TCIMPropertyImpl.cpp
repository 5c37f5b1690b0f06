#include "cim/TCIMPropertyImpl.h"

#include <new>
#include <utility>

#include "cim/TCIMPropertyDeclImpl.h"
#include "cim/TPropertyHead.h"
#include "zelcore/TCIMClass.h"
#include "zelcore/detail/Fail.h"
#include "zelcore/detail/TypeText.h"

using zelcore::detail::Fail;
using zelcore::detail::Text;
using zelcore::detail::TypeText;

// Documents hold millions of them.
static_assert(sizeof(TCIMPropertyImpl) <= 80);

namespace {

// The default value of a declaration, to be read without a copy.
const TCIMValue& DefaultOf(const TCIMPropertyDecl& declaration) {
  return declaration.GetBody()->Value();
}

std::string NameOf(const TCIMClass* cls) { return cls ? cls->GetName() : ""; }

}  // namespace

TCIMPropertyImpl::TCIMPropertyImpl(TCIMProperty* owner, const TCIMPropertyImpl& other)
    : TCIMPropertyImpl(owner, other.fDeclaration) {
  if (other.fHasValue) SetValue(other.fValue);
  if (other.fPrevValue) SetPrevValue(*other.fPrevValue);
}

TCIMPropertyImpl* TCIMPropertyImpl::MakeOwn(TCIMProperty* owner) const {
  void* const place = TPropertyHead::Before(owner - fSlot)->memory->Allocate(sizeof *this);
  return new (place) TCIMPropertyImpl(owner, fDeclaration, fSlot);
}

void TCIMPropertyImpl::Release(TCIMPropertyImpl* body) {
  if (body->IsShared()) return;
  if (body->fSlot == kNoSlot) {
    delete body;
    return;
  }
  TBlockPool& memory = *TPropertyHead::Before(body->fOwner - body->fSlot)->memory;
  body->~TCIMPropertyImpl();
  memory.Release(body, sizeof *body);
}

void TCIMPropertyImpl::Take(TCIMPropertyImpl&& other) {
  fDeclaration = other.fDeclaration;
  fValue.Take(other.fValue);
  fPrevValue = std::move(other.fPrevValue);
  fHasValue = other.fHasValue;
  ReportChange();
}

const TCIMValue& TCIMPropertyImpl::Value() const {
  return fHasValue ? fValue : DefaultOf(*fDeclaration);
}

void TCIMPropertyImpl::SetValue(const TCIMValue& value) {
  Check("SetValue", value);
  ReplaceValue(TCIMValue(value));
}

void TCIMPropertyImpl::SetValue(TCIMValue&& value) {
  Check("SetValue", value);
  ReplaceValue(std::move(value));
}

void TCIMPropertyImpl::ReplaceValue(TCIMValue&& value) {
  if (value.IsReference()) ReportChange();
  fValue.Take(value);
  fHasValue = true;
}

void TCIMPropertyImpl::ReportChange() {
  if (fSlot != kNoSlot) TPropertyHead::Before(fOwner - fSlot)->watch.Report();
}

const TCIMValue& TCIMPropertyImpl::PrevValue() const { return fPrevValue ? *fPrevValue : Value(); }

// sic: unlike SetValue(), any NULL passes.
void TCIMPropertyImpl::SetPrevValue(const TCIMValue& value) {
  if (!value.IsNull()) Check("SetPrevValue", value);
  fPrevValue = std::make_unique<TCIMValue>(value);
}

// Throws zelStatusTypeMismatch unless `value` is of the declared type and, for a reference, refers
// to the declared class or a subclass. A declaration that names no class takes any.
void TCIMPropertyImpl::Check(const char* operation, const TCIMValue& value) const {
  const TCIMValue::TCIMType declared = fDeclaration->GetType();
  if (declared != value.GetType()) {
    Fail(zelStatusTypeMismatch, Text(operation, ": decl is type ", TypeText(declared),
                                     " but value is type ", TypeText(value.GetType())));
  }
  if (declared != TCIMValue::TCIMType::TypeReference) return;
  const TCIMClass* declaredClass = DefaultOf(*fDeclaration).GetReferencedClass();
  const TCIMClass* valueClass = value.GetReferencedClass();
  if (declaredClass && !(valueClass && valueClass->IsSubclassOf(declaredClass))) {
    Fail(zelStatusTypeMismatch, Text(operation, ": decl references type ", declaredClass->GetName(),
                                     " but value references ", NameOf(valueClass)));
  }
}
