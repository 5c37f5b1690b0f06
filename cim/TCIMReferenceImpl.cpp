#include "cim/TCIMReferenceImpl.h"

#include <algorithm>
#include <functional>
#include <utility>

#include "cim/OrNotFound.h"
#include "cim/TCIMPropertyDeclImpl.h"
#include "cim/TPathText.h"
#include "zelcore/ICIMElement.h"
#include "zelcore/TCIMClass.h"
#include "zelcore/TCIMInstance.h"
#include "zelcore/TCIMPropertyDecl.h"
#include "zelcore/TContainer.h"
#include "zelcore/detail/Fail.h"
#include "zelcore/detail/TypeText.h"

using zelcore::detail::Fail;
using zelcore::detail::OrNotFound;
using zelcore::detail::Text;
using zelcore::detail::TypeText;

TCIMReferenceImpl::TCIMReferenceImpl(TCIMReference* owner, const TContainer* container)
    : fOwner(owner), fContainer(container), fClass(nullptr), fElement(nullptr) {}

TCIMReferenceImpl::TCIMReferenceImpl(TCIMReference* owner, const TCIMReferenceImpl& other)
    : TCIMReferenceImpl(other) {
  fOwner = owner;
}

void TCIMReferenceImpl::Clear() {
  fContainer = nullptr;
  fClass = nullptr;
  fBindings.clear();
  fElement = nullptr;
}

void TCIMReferenceImpl::SetPath(const std::string&) {
  if (!fContainer) Fail(zelStatusInvalidOpSequence, "SetPath() called before container set");
  Fail(zelStatusNotImplemented);
}

TCIMClass* TCIMReferenceImpl::GetClass() const {
  // sic: the text names the container.
  if (!fClass) Fail(zelStatusInvalidReference, "GetClass() called before container set");
  return fClass;
}

void TCIMReferenceImpl::SetClassName(const std::string& name) {
  if (!fContainer) Fail(zelStatusInvalidOpSequence, "SetClassName() called before container set");
  if (!fBindings.empty()) {
    Fail(zelStatusInvalidOpSequence, "SetClassName() called with keybindings filled in");
  }
  fClass = fContainer->GetClass(name);
}

void TCIMReferenceImpl::SetClass(TCIMClass& cls) {
  if (!fBindings.empty()) {
    Fail(zelStatusInvalidOpSequence, "SetClass() called with keybindings filled in");
  }
  fClass = &cls;
}

void TCIMReferenceImpl::AddKeyValue(const std::string& name, const TCIMValue& value) {
  CheckKeyValue(name, value);
  Insert(name, TCIMValue(value));
}

void TCIMReferenceImpl::AddKeyValue(const std::string& name, TCIMValue&& value) {
  CheckKeyValue(name, value);
  Insert(name, std::move(value));
}

void TCIMReferenceImpl::Bind(const TCIMPropertyDecl& decl, TCIMValue&& value) {
  CheckBinding(decl, decl.GetName(), value);
  Insert(decl.GetName(), std::move(value));
}

void TCIMReferenceImpl::CheckKeyValue(const std::string& name, const TCIMValue& value) const {
  if (!fClass) Fail(zelStatusInvalidOpSequence, "AddKeyValue() called before class set");
  CheckBinding(*fClass->GetPropertyDecl(name), name, value);
}

void TCIMReferenceImpl::CheckBinding(const TCIMPropertyDecl& decl, const std::string& name,
                                     const TCIMValue& value) {
  if (decl.GetType() != value.GetType()) {
    Fail(zelStatusTypeMismatch, Text("Declaration type: ", TypeText(decl.GetType()),
                                     " Value type: ", TypeText(value.GetType())));
  }
  if (!decl.GetBody()->MayBeBound()) {
    Fail(zelStatusInvalidOpSequence, "AddKeyValue() called with a non-key property " + name);
  }
}

// The first value bound to a name stays.
void TCIMReferenceImpl::Insert(std::string_view name, TCIMValue&& value) {
  const auto place = std::lower_bound(
      fBindings.begin(), fBindings.end(), name,
      [](const TKeyBinding& binding, std::string_view n) { return binding.name.View() < n; });
  if (place != fBindings.end() && place->name.View() == name) return;
  fBindings.emplace(place, name, std::move(value));
}

std::string TCIMReferenceImpl::GetPath() const {
  TPathText path;
  AppendPath(path);
  return std::string(path.View());
}

void TCIMReferenceImpl::AppendPath(TPathText& text) const {
  text.Append(GetClass()->GetName());
  std::string_view separator = ".";
  for (const TKeyBinding& key : fBindings) {
    text.Append(separator);
    text.Append(key.name.View());
    text.Append("=\"");
    text.AppendValue(key.value);
    separator = "\",";
  }
  if (!fBindings.empty()) text.Append("\"");
}

ICIMElement* TCIMReferenceImpl::GetCIMElement(const TCIMReference& path) const {
  if (fBindings.empty()) return fClass;
  fElement = FindInstance(path);
  return OrNotFound(fElement);
}

TCIMInstance* TCIMReferenceImpl::FindInstance(const TCIMReference& path) const {
  if (fBindings.empty()) return nullptr;
  return fElement ? fElement : fClass->FindInstance(path);
}

bool TCIMReferenceImpl::operator==(const TCIMReferenceImpl& other) const {
  return fClass == other.fClass && fBindings == other.fBindings;
}

bool TCIMReferenceImpl::operator<(const TCIMReferenceImpl& other) const {
  if (fClass != other.fClass) return std::less<>()(fClass, other.fClass);
  return fBindings < other.fBindings;
}
