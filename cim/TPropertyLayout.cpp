#include "cim/TPropertyLayout.h"

#include <algorithm>

#include "cim/SchemaChanges.h"
#include "cim/TCIMPropertyDeclImpl.h"
#include "cim/TContainerImpl.h"
#include "zelcore/detail/SameText.h"

using zelcore::detail::EqualsIgnoringAsciiCase;
using zelcore::detail::IsSameText;
using zelcore::detail::TNameLess;
using zelcore::detail::ToAsciiLower;
using zelcore::detail::TSchemaChanges;

TPropertyLayout::TPropertyLayout(const TPropertyDecls& decls)
    : fFollowers(decls.size()), fChanges(TSchemaChanges::Count()) {
  // By the names that the declarations have now: one that was renamed keeps its place in its class.
  TPropertyDecls byName;
  for (const auto& [key, decl] : decls) {
    byName.emplace(TContainerImpl::NormalizeName(decl->GetName()), decl);
  }
  fSlots.reserve(byName.size());
  for (const auto& [key, decl] : byName) {
    fSlots.push_back({key, decl->GetName(), decl, decl->GetType()});
  }
  fIsAsDeclared = std::equal(decls.begin(), decls.end(), byName.begin(), byName.end());

  BuildIndex();
  fStampSlot = Find("DateTimeOfCollection");
  fHasReferences = std::any_of(fSlots.begin(), fSlots.end(), [](const TSlot& slot) {
    return slot.type == TCIMValue::TCIMType::TypeReference;
  });
}

void TPropertyLayout::BuildIndex() {
  constexpr std::size_t kMaxSteps = 64;
  std::size_t places = 4;
  while (places < 2 * fSlots.size()) places *= 2;
  fIndex.resize(places);
  for (std::size_t slot = 0; slot < fSlots.size(); ++slot) {
    std::size_t place = Hash(fSlots[slot].key) & (places - 1);
    for (std::size_t steps = 0; fIndex[place] != 0; ++steps) {
      if (steps == kMaxSteps) return fIndex.clear();
      place = (place + 1) & (places - 1);
    }
    fIndex[place] = static_cast<std::uint32_t>(slot + 1);
  }
}

bool TPropertyLayout::IsCurrent() const { return fChanges == TSchemaChanges::Count(); }

std::deque<TCIMPropertyImpl>& TPropertyLayout::SharedBodies() const {
  for (std::size_t slot = fSharedBodies.size(); slot < fSlots.size(); ++slot) {
    fSharedBodies.emplace_back(nullptr, fSlots[slot].decl.get(), static_cast<std::uint32_t>(slot));
  }
  return fSharedBodies;
}

std::uint32_t TPropertyLayout::Hash(std::string_view name) {
  std::uint32_t hash = 2166136261u;
  for (const char c : name) hash = (hash ^ static_cast<unsigned char>(ToAsciiLower(c))) * 16777619u;
  return hash ^ (hash >> 15);
}

std::size_t TPropertyLayout::Find(std::string_view name) const {
  if (fSlots.empty()) return kNoSlot;
  constexpr auto kRelaxed = std::memory_order_relaxed;
  constexpr int kSteps = 3;  // of instances alike, one may leave out what another has
  const std::uint32_t last = fLastAsked.load(kRelaxed);
  if (IsSameText(fSlots[last].name, name)) return last;
  std::uint32_t expected = last;
  for (int step = 0; step < kSteps; ++step) {
    expected = fFollowers[expected].load(kRelaxed);
    if (IsSameText(fSlots[expected].name, name)) {
      fLastAsked.store(expected, kRelaxed);
      return expected;
    }
  }
  const std::size_t slot = Search(name);
  if (slot == kNoSlot) return kNoSlot;
  fFollowers[last].store(static_cast<std::uint32_t>(slot), kRelaxed);
  fLastAsked.store(static_cast<std::uint32_t>(slot), kRelaxed);
  return slot;
}

std::size_t TPropertyLayout::Search(std::string_view name) const {
  if (fIndex.empty()) {
    const auto isLess = [](const TSlot& slot, std::string_view key) {
      return TNameLess()(slot.key, key);
    };
    const auto found = std::lower_bound(fSlots.begin(), fSlots.end(), name, isLess);
    const bool isFound = found != fSlots.end() && EqualsIgnoringAsciiCase(found->key, name);
    return isFound ? static_cast<std::size_t>(found - fSlots.begin()) : kNoSlot;
  }
  const std::size_t mask = fIndex.size() - 1;
  for (std::size_t place = Hash(name) & mask; fIndex[place] != 0; place = (place + 1) & mask) {
    const std::size_t slot = fIndex[place] - 1;
    if (EqualsIgnoringAsciiCase(fSlots[slot].key, name)) return slot;
  }
  return kNoSlot;
}

const std::vector<std::size_t>& TPropertyLayout::KeySlots() const {
  if (!fKeysFound) FindKeys();
  return fKeySlots;
}

const std::vector<TPropertyLayout::TPathPart>& TPropertyLayout::PathParts() const {
  if (!fKeysFound) FindKeys();
  return fPathParts;
}

void TPropertyLayout::FindKeys() const {
  std::vector<std::size_t> keys;
  for (std::size_t slot = 0; slot < fSlots.size(); ++slot) {
    if (fSlots[slot].decl->GetBody()->IsKey()) keys.push_back(slot);
  }
  fKeySlots = keys;
  std::sort(keys.begin(), keys.end(),
            [this](std::size_t a, std::size_t b) { return fSlots[a].name < fSlots[b].name; });
  fPathParts.clear();
  for (const std::size_t slot : keys) {
    const char* const separator = fPathParts.empty() ? "." : "\",";
    fPathParts.push_back(
        {slot, fSlots[slot].decl->GetType(), separator + fSlots[slot].name + "=\""});
  }
  fKeysFound = true;
}
