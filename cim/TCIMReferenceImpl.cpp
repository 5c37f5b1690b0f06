#include "cim/TCIMReferenceImpl.h"

#include <algorithm>

#include "cim/OrNotFound.h"
#include "cim/TCIMPropertyDeclImpl.h"
#include "cim/TypeText.h"
#include "zelcore/ICIMElement.h"
#include "zelcore/TCIMClass.h"
#include "zelcore/TCIMInstance.h"
#include "zelcore/TCIMPropertyDecl.h"
#include "zelcore/TContainer.h"
#include "zelcore/detail/Fail.h"

using zelcore::detail::Fail;
using zelcore::detail::OrNotFound;
using zelcore::detail::Text;
using zelcore::detail::TypeText;

namespace {

// Unlike a class's own test: a KEY that is no boolean makes no key, rather than a failure.
bool IsKey(const TCIMPropertyDecl& decl) {
  const TCIMQualifier* qualifier = decl.FindQualifier("KEY");
  return qualifier && qualifier->GetType() == TCIMValue::TCIMType::TypeBoolean &&
         decl.GetBody()->IsKey();
}

}  // namespace

TCIMReferenceImpl::TCIMReferenceImpl(TCIMReference* owner, const TContainer* container)
    : fOwner(owner), fContainer(container), fClass(nullptr), fElement(nullptr) {}

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

void TCIMReferenceImpl::AddKeyValue(const std::string& name, TCIMValue&& value) {
  if (!fClass) Fail(zelStatusInvalidOpSequence, "AddKeyValue() called before class set");
  const TCIMPropertyDecl& decl = *fClass->GetPropertyDecl(name);
  if (decl.GetType() != value.GetType()) {
    Fail(zelStatusTypeMismatch, Text("Declaration type: ", TypeText(decl.GetType()),
                                     " Value type: ", TypeText(value.GetType())));
  }
  if (!IsKey(decl)) {
    Fail(zelStatusInvalidOpSequence, "AddKeyValue() called with a non-key property " + name);
  }
  const auto place = std::find_if(fBindings.begin(), fBindings.end(),
                                  [&](const auto& binding) { return !(binding.first < name); });
  if (place != fBindings.end() && place->first == name) return;  // the first value stays
  const auto index = place - fBindings.begin();
  fBindings.emplace_back(name, std::move(value));
  // Values have no moving assignment: the new binding is swapped down to its place.
  for (auto i = fBindings.end() - 1; i != fBindings.begin() + index; --i) {
    i->first.swap((i - 1)->first);
    i->second.Swap((i - 1)->second);
  }
}

std::map<std::string, TCIMValue> TCIMReferenceImpl::EnumerateKeyBindings() const {
  return {fBindings.begin(), fBindings.end()};
}

std::string TCIMReferenceImpl::GetPath() const {
  std::string path = fClass->GetName();
  char separator = '.';
  for (const auto& [name, value] : fBindings) {
    path += separator;
    path += name;
    path += "=\"";
    path += value.ToString(10);
    path += '"';
    separator = ',';
  }
  return path;
}

ICIMElement* TCIMReferenceImpl::GetCIMElement(const TCIMReference& path) const {
  if (fBindings.empty()) return fClass;
  if (!fElement) fElement = fClass->FindInstance(path);
  return OrNotFound(fElement);
}

bool TCIMReferenceImpl::operator==(const TCIMReferenceImpl& other) const {
  return fClass == other.fClass && fBindings == other.fBindings;
}

bool TCIMReferenceImpl::operator<(const TCIMReferenceImpl& other) const {
  if (fClass != other.fClass) return std::less<>()(fClass, other.fClass);
  return fBindings < other.fBindings;
}
