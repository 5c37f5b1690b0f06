#include "cim/TReferenceIndex.h"

#include <algorithm>
#include <boost/make_shared.hpp>
#include <functional>

#include "cim/SchemaChanges.h"
#include "cim/TCIMInstanceImpl.h"
#include "cim/TCIMObjectValueImpl.h"
#include "cim/TCIMPropertyDeclImpl.h"
#include "cim/TCIMPropertyImpl.h"
#include "cim/TCIMReferenceImpl.h"
#include "cim/TInstanceRegistry.h"
#include "zelcore/TZELException.h"

using zelcore::detail::TSchemaChanges;

namespace {

// A reference that remembers what it led to leads there whatever its text: it is kept under the
// instance itself.
std::uint32_t KeyOf(const TCIMInstance* instance) {
  return static_cast<std::uint32_t>(std::hash<const void*>()(instance) >> 4);
}

// Whether the value leads anywhere at all; if so, `key` is set.
bool FindKey(const TCIMValue& value, std::uint32_t& key) {
  if (!value.IsReference() || value.IsNull()) return false;
  const TCIMReferenceImpl& path = *TCIMReferenceValueImpl::ValueOf(value).GetBody();
  if (!path.HasKeyBindings()) return false;
  try {
    key = path.Remembered() ? KeyOf(path.Remembered()) : TInstanceRegistry::Hash(path.GetPath());
  } catch (const TZELException&) {
    return false;  // a NULL key
  }
  return true;
}

bool Refers(const TCIMInstanceImpl& instance, std::uint32_t key) {
  for (std::size_t slot = 0; slot < instance.Layout()->Size(); ++slot) {
    std::uint32_t found;
    if (FindKey(instance.PropertyAt(slot).GetShownBody().Value(), found) && found == key)
      return true;
  }
  return false;
}

void SortUnique(std::vector<std::uint32_t>& entries) {
  std::sort(entries.begin(), entries.end());
  entries.erase(std::unique(entries.begin(), entries.end()), entries.end());
}

}  // namespace

std::vector<TCIMInstance*> TReferenceIndex::Find(const TInstanceRegistry& associations,
                                                 const TCIMInstanceImpl& target) {
  Update(associations);
  std::vector<TCIMInstance*> found;
  if (IsAReferenceDeclared()) {
    associations.AppendTo(found);
    return found;
  }
  TEntries entries = fUnwatched;
  if (target.IsAdded()) AppendEntries(associations, target.PathHash(), entries);
  AppendEntries(associations, KeyOf(target.GetOwner()), entries);
  SortUnique(entries);
  associations.AppendTo(found, entries);
  return found;
}

void TReferenceIndex::Update(const TInstanceRegistry& associations) {
  // Enough that is stale, or other numbers: from the start.
  if (!fChanged || fCompactions != associations.Compactions() || 2 * fStale > fSize + fEntered) {
    *this = TReferenceIndex();
    fChanged = boost::make_shared<TReferenceWatch::TChanges>();
    fCompactions = associations.Compactions();
  }
  for (const std::uint32_t entry : *fChanged) fStale += 1 + Enter(associations, entry);
  fChanged->clear();
  for (; fEntered < associations.Entries(); ++fEntered) Enter(associations, fEntered);
}

// Returns how many references it has.
std::size_t TReferenceIndex::Enter(const TInstanceRegistry& associations, std::uint32_t entry) {
  const TCIMInstance* const association = associations.At(entry);
  if (!association) return 0;
  const TCIMInstanceImpl& instance = *association->GetBody();
  TReferenceWatch* const watch = instance.Watch();
  if (!watch) {
    fUnwatched.push_back(entry);
    return 0;
  }
  watch->Start(fChanged, entry);
  NoteDeclarations(instance);
  const std::size_t before = fSize;
  for (std::size_t slot = 0; slot < instance.Layout()->Size(); ++slot) {
    const TCIMPropertyImpl& property = instance.PropertyAt(slot).GetShownBody();
    std::uint32_t key;
    if (!property.HasValue() || !FindKey(property.Value(), key)) continue;
    fReferrers[key].push_back(entry);
    ++fSize;
  }
  return fSize - before;
}

void TReferenceIndex::NoteDeclarations(const TCIMInstanceImpl& instance) {
  const bool isNew = instance.Layout() != fLayout;
  fLayout = instance.Layout();
  for (std::size_t slot = 0; slot < fLayout->Size(); ++slot) {
    // A property that was assigned may have brought a declaration along.
    const TCIMPropertyDecl* declaration = instance.PropertyAt(slot).GetDeclaration();
    if (!isNew && declaration == &fLayout->Decl(slot)) continue;
    if (fDeclarations.insert(declaration->GetBody()).second) fSchemaChanges = kNotLooked;
  }
}

bool TReferenceIndex::IsAReferenceDeclared() {
  if (fSchemaChanges != TSchemaChanges::Count()) {
    fSchemaChanges = TSchemaChanges::Count();
    std::uint32_t key;
    fIsAReferenceDeclared =
        std::any_of(fDeclarations.begin(), fDeclarations.end(),
                    [&](const auto& declaration) { return FindKey(declaration->Value(), key); });
  }
  return fIsAReferenceDeclared;
}

// Forgets on the way what is gone or refers to something else by now.
void TReferenceIndex::AppendEntries(const TInstanceRegistry& associations, std::uint32_t key,
                                    TEntries& entries) {
  const auto found = fReferrers.find(key);
  if (found == fReferrers.end()) return;
  TEntries& referrers = found->second;
  const std::size_t before = referrers.size();
  const auto isPast = [&](std::uint32_t entry) {
    const TCIMInstance* const association = associations.At(entry);
    return !association || (fStale > 0 && !Refers(*association->GetBody(), key));
  };
  referrers.erase(std::remove_if(referrers.begin(), referrers.end(), isPast), referrers.end());
  fSize -= before - referrers.size();
  entries.insert(entries.end(), referrers.begin(), referrers.end());
}
