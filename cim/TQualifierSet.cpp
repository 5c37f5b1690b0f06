#include "cim/TQualifierSet.h"

#include <boost/make_shared.hpp>
#include <string_view>

#include "cim/OrNotFound.h"
#include "cim/SchemaChanges.h"
#include "cim/TCIMQualifierImpl.h"
#include "cim/TContainerImpl.h"
#include "zelcore/detail/Fail.h"

using zelcore::detail::CheckName;
using zelcore::detail::Fail;
using zelcore::detail::OrNotFound;
using zelcore::detail::TSchemaChanges;

void TQualifierSet::Add(TCIMQualifier& qualifier) {
  const std::string key = TContainerImpl::NormalizeName(qualifier.GetName());
  const auto there = fQualifiers.find(key);
  if (there != fQualifiers.end()) {
    const TCIMQualifier& existing = *there->second;
    if (&existing == &qualifier) return;
    if (!(existing.GetFlavor() & TCIMQualifierDecl::FlavorOverridable)) {
      if (existing.GetValue() != qualifier.GetValue() ||
          existing.GetFlavor() != qualifier.GetFlavor()) {
        Fail(zelStatusNotOverridable);
      }
      return;
    }
    fQualifiers.erase(there);
  }
  TSchemaChanges::Note();
  fQualifiers.emplace(key, boost::shared_ptr<TCIMQualifier>(&qualifier));
}

TCIMQualifier* TQualifierSet::Get(const std::string& name) const { return OrNotFound(Find(name)); }

TCIMQualifier* TQualifierSet::Find(const std::string& name) const {
  CheckName(name);
  const auto found = fQualifiers.find(name);
  return found == fQualifiers.end() ? nullptr : found->second.get();
}

std::vector<TCIMQualifier const*> TQualifierSet::Enumerate() const {
  std::vector<TCIMQualifier const*> qualifiers;
  qualifiers.reserve(fQualifiers.size());
  for (const auto& [key, qualifier] : fQualifiers) qualifiers.push_back(qualifier.get());
  return qualifiers;
}

void TQualifierSet::Remove(TCIMQualifier& qualifier) {
  CheckName(qualifier.GetName());
  const auto found = fQualifiers.find(qualifier.GetName());
  if (found == fQualifiers.end()) Fail(zelStatusNotFound);
  TSchemaChanges::Note();
  fQualifiers.erase(found);
}

const TCIMValue* TQualifierSet::FindValue(const char* name) const {
  const auto found = fQualifiers.find(std::string_view(name));
  if (found == fQualifiers.end()) return nullptr;
  const TCIMValue& value = found->second->GetBody()->Value();
  return value.IsNull() ? nullptr : &value;
}

bool TQualifierSet::IsTrue(const char* name) const {
  const TCIMValue* const value = FindValue(name);
  return value && static_cast<bool>(*value);
}

void TQualifierSet::InheritFrom(const TQualifierSet& superClass) {
  for (const auto& [key, qualifier] : superClass.fQualifiers) {
    if (!(qualifier->GetFlavor() & TCIMQualifierDecl::FlavorToSubclass)) continue;
    const auto copy = boost::make_shared<TCIMQualifier>(*qualifier);
    copy->SetPropagated(true);
    fQualifiers.emplace_hint(fQualifiers.end(), key, copy);
  }
}
