#include "cim/TContainerImpl.h"

#include <algorithm>
#include <cassert>
#include <utility>

#include "cim/OrNotFound.h"
#include "cim/TCIMClassImpl.h"
#include "zelcore/TContainer.h"
#include "zelcore/detail/Fail.h"

using zelcore::detail::CheckName;
using zelcore::detail::Fail;
using zelcore::detail::LogCore;
using zelcore::detail::OrNotFound;
using zelcore::detail::Text;
using zelcore::detail::TNameLess;

namespace {

template <class TRegistry>
auto FindIn(const TRegistry& registry, const std::string& name) {
  const auto found = registry.find(name);
  if (found == registry.end()) CheckName(name);
  return found == registry.end() ? nullptr : found->second.get();
}

template <class TRegistry>
auto GetFrom(TRegistry& registry, const std::string& name) {
  CheckName(name);
  const auto found = registry.find(name);
  if (found == registry.end()) Fail(zelStatusNotFound);
  return found;
}

// Duplicates are nobody's error until somebody says so: a debug line.
[[noreturn]] void RefuseDuplicate(const char* kind, const std::string& name) {
  LogCore(zelLogDebug, Text("TContainer: ", kind, " ", name, " already defined"));
  Fail(zelStatusAlreadyExists);
}

}  // namespace

TContainerImpl::TContainerImpl(TContainer* owner)
    : fOwner(owner), fInstanceMemory(TBlockPool::Make()), fIsDiff(false) {}

TContainerImpl::~TContainerImpl() = default;

std::string TContainerImpl::NormalizeName(const std::string& name) {
  CheckName(name);
  return zelcore::detail::ToAsciiLower(name);
}

void TContainerImpl::Initialize() { fRootClass.reset(fOwner->AllocateClass("<root>", nullptr)); }

void TContainerImpl::AddClass(TCIMClass& cls) {
  const std::string key = NormalizeName(cls.GetName());
  if (fClasses.count(key) != 0) RefuseDuplicate("class", cls.GetName());
  const auto ret = fClasses.emplace(key, boost::shared_ptr<TCIMClass>(&cls));
  assert(ret.second);
}

TCIMClass* TContainerImpl::GetClass(const std::string& name) const {
  return OrNotFound(FindClass(name));
}

TCIMClass* TContainerImpl::FindClass(const std::string& name) const {
  return name.empty() ? fRootClass.get() : FindIn(fClasses, name);
}

void TContainerImpl::RemoveClass(TCIMClass& cls) {
  const auto found = GetFrom(fClasses, cls.GetName());
  found->second->GetBody()->LeaveOtherClasses();
  fClasses.erase(found);
}

void TContainerImpl::AddQualifierDecl(TCIMQualifierDecl& decl) {
  const auto there = fQualifierDecls.find(decl.GetName());
  if (there != fQualifierDecls.end() && there->second.get() == &decl) {
    RefuseDuplicate("qualifier", decl.GetName());
  }
  const boost::shared_ptr<TCIMQualifierDecl> owned(&decl);  // sic: a duplicate is destroyed
  if (!fQualifierDecls.emplace(NormalizeName(decl.GetName()), owned).second) {
    RefuseDuplicate("qualifier", decl.GetName());
  }
}

TCIMQualifierDecl* TContainerImpl::GetQualifierDecl(const std::string& name) const {
  return OrNotFound(FindQualifierDecl(name));
}

TCIMQualifierDecl* TContainerImpl::FindQualifierDecl(const std::string& name) const {
  return FindIn(fQualifierDecls, name);
}

std::vector<TCIMQualifierDecl*> TContainerImpl::EnumerateQualifiers() const {
  std::vector<TCIMQualifierDecl*> decls;
  decls.reserve(fQualifierDecls.size());
  for (const auto& [key, decl] : fQualifierDecls) decls.push_back(decl.get());
  std::sort(decls.begin(), decls.end(),
            [](const auto* a, const auto* b) { return TNameLess()(a->GetName(), b->GetName()); });
  return decls;
}

void TContainerImpl::RemoveQualifierDecl(TCIMQualifierDecl& decl) {
  fQualifierDecls.erase(GetFrom(fQualifierDecls, decl.GetName()));
}

void TContainerImpl::CheckIsDiff() const {
  if (fIsDiff) return;
  // sic: "containter".
  Fail(zelStatusNotSupported,
       "TContainer: Cannot access DiffInstances if the containter is not a Diff Container");
}

void TContainerImpl::SetDiffInstances(std::vector<TCIMInstance*> instances) {
  CheckIsDiff();
  fDiffInstances = std::move(instances);
}

std::vector<TCIMInstance*> TContainerImpl::GetDiffInstances() const {
  CheckIsDiff();
  return fDiffInstances;
}

bool TContainerImpl::HasDifferences() const {
  CheckIsDiff();
  return !fDiffInstances.empty();
}
