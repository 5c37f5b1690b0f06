#include "zelcore/TCIMReference.h"

#include <boost/make_shared.hpp>
#include <utility>

#include "cim/TCIMReferenceImpl.h"
#include "zelcore/TCIMClass.h"

TCIMReference::TCIMReference(const TContainer* container)
    : fBody(boost::make_shared<TCIMReferenceImpl>(this, container)) {}

TCIMReference::TCIMReference(const TContainer* container, const std::string& path)
    : TCIMReference(container) {
  SetPath(path);
}

TCIMReference::TCIMReference(const TCIMReference& other)
    : fBody(boost::make_shared<TCIMReferenceImpl>(this, *other.fBody)) {}

TCIMReference::TCIMReference(TCIMReference&& other) noexcept : fBody(std::move(other.fBody)) {
  fBody->SetOwner(this);
}

TCIMReference& TCIMReference::operator=(const TCIMReference& other) {
  fBody = boost::make_shared<TCIMReferenceImpl>(this, *other.fBody);
  return *this;
}

TCIMReference::~TCIMReference() = default;

void TCIMReference::SetContainer(TContainer* container) { fBody->SetContainer(container); }
void TCIMReference::Clear() { fBody->Clear(); }
void TCIMReference::SetPath(const std::string& path) { fBody->SetPath(path); }
TCIMClass* TCIMReference::GetClass() const { return fBody->GetClass(); }
std::string TCIMReference::GetClassName() const { return fBody->GetClass()->GetName(); }
void TCIMReference::SetClassName(const std::string& name) { fBody->SetClassName(name); }
void TCIMReference::SetClass(TCIMClass& cls) { fBody->SetClass(cls); }
void TCIMReference::AddKeyValue(const std::string& name, const TCIMValue& value) {
  fBody->AddKeyValue(name, value);
}
void TCIMReference::AddKeyValue(const std::string& name, TCIMValue&& value) {
  fBody->AddKeyValue(name, std::move(value));
}
std::map<std::string, TCIMValue> TCIMReference::EnumerateKeyBindings() const {
  std::map<std::string, TCIMValue> bindings;
  for (const TKeyBinding& key : fBody->KeyBindings()) {
    bindings.emplace_hint(bindings.end(), key.name.View(), key.value);
  }
  return bindings;
}
std::string TCIMReference::GetPath() const { return fBody->GetPath(); }
ICIMElement* TCIMReference::GetCIMElement() const { return fBody->GetCIMElement(*this); }
bool TCIMReference::operator==(const TCIMReference& other) const { return *fBody == *other.fBody; }
bool TCIMReference::operator<(const TCIMReference& other) const { return *fBody < *other.fBody; }
const boost::shared_ptr<TCIMReferenceImpl>& TCIMReference::GetBody() const { return fBody; }
