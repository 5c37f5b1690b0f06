#include "cim/TCIMInstanceImpl.h"

#include <algorithm>
#include <boost/make_shared.hpp>
#include <new>

#include "cim/OrNotFound.h"
#include "cim/TCIMClassImpl.h"
#include "cim/TCIMPropertyImpl.h"
#include "cim/TContainerImpl.h"
#include "cim/TPathText.h"
#include "zelcore/TCIMClass.h"
#include "zelcore/TCIMDateTime.h"
#include "zelcore/TContainer.h"
#include "zelcore/TOSSpecific.h"
#include "zelcore/detail/Fail.h"

using zelcore::detail::CheckName;
using zelcore::detail::Fail;
using zelcore::detail::OrNotFound;
using zelcore::detail::Text;

static_assert(sizeof(TPropertyHead) % alignof(TCIMProperty) == 0);

TCIMInstanceImpl::TPropertyBlock::TPropertyBlock(const TPropertyLayout& layout, TBlockPool& memory)
    : fSize(static_cast<std::uint32_t>(layout.Size())) {
  std::deque<TCIMPropertyImpl>& bodies = layout.SharedBodies();  // may throw
  auto* const head = new (memory.Allocate(MemorySize())) TPropertyHead{&memory, {}};
  fProperties = reinterpret_cast<TCIMProperty*>(head + 1);
  TCIMProperty* next = fProperties;
  for (TCIMPropertyImpl& body : bodies) new (next++) TCIMProperty(body);
}

TCIMInstanceImpl::TPropertyBlock::~TPropertyBlock() {
  std::destroy_n(fProperties, fSize);
  TPropertyHead& head = Head();
  TBlockPool& memory = *head.memory;
  head.~TPropertyHead();
  memory.Release(&head, MemorySize());
}

std::size_t TCIMInstanceImpl::TPropertyBlock::MemorySize() const {
  return sizeof(TPropertyHead) + fSize * sizeof(TCIMProperty);
}

boost::shared_ptr<TCIMInstanceImpl> TCIMInstanceImpl::Make(TCIMInstance* owner, TCIMClass* cls) {
  TBlockPool& memory = cls->GetContainer()->GetBody()->InstanceMemory();
  return boost::allocate_shared<TCIMInstanceImpl>(TBlockPoolAllocator<TCIMInstanceImpl>(memory),
                                                  owner, cls, memory);
}

TCIMInstanceImpl::TCIMInstanceImpl(TCIMInstance* owner, TCIMClass* cls, TBlockPool& memory)
    : fOwner(owner),
      fClass(cls),
      fLayout(cls->GetBody()->Layout()),
      fProperties(*fLayout, memory),
      fAdded(false),
      fPathHash(0) {
  const std::size_t stamp = fLayout->StampSlot();
  if (stamp != TPropertyLayout::kNoSlot) {
    fProperties[stamp].SetValue(TCIMValue(TOSSpecific::GetLocalTime()));
  }
}

TCIMInstanceImpl::~TCIMInstanceImpl() = default;

TContainer* TCIMInstanceImpl::GetContainer() const { return fClass->GetContainer(); }

void TCIMInstanceImpl::Validate() const {
  if (GetContainer()->isDiffContainer()) return;
  const boost::shared_ptr<const TPropertyLayout>& current = fClass->GetBody()->Layout();
  for (const std::size_t slot : current->KeySlots()) {
    const std::string& name = current->Decl(slot).GetName();
    const TCIMProperty* property = current == fLayout ? &fProperties[slot] : GetProperty(name);
    if (property->GetShownBody().Value().IsNull()) {
      Fail(zelStatusInvalidInstance, Text("Instance ", fClass->GetName(), ": key property ",
                                          property->GetName(), " is NULL"));
    }
  }
}

void TCIMInstanceImpl::AddToContainer(TCIMInstance& handle) {
  if (fAdded) return;
  handle.Validate();
  fClass->AddInstance(handle);
}

TCIMProperty* TCIMInstanceImpl::GetProperty(const std::string& name) const {
  return OrNotFound(FindProperty(name));
}

TCIMProperty* TCIMInstanceImpl::FindProperty(const std::string& name) const {
  const std::size_t slot = fLayout->Find(name);
  if (slot != TPropertyLayout::kNoSlot) return &fProperties[slot];
  CheckName(name);
  return nullptr;
}

std::vector<TCIMProperty const*> TCIMInstanceImpl::EnumerateProperties() const {
  std::vector<TCIMProperty const*> properties;
  properties.reserve(fLayout->Size());
  for (std::size_t slot = 0; slot < fLayout->Size(); ++slot) {
    properties.push_back(&fProperties[slot]);
  }
  return properties;
}

TCIMReference TCIMInstanceImpl::BuildPath() const {
  TCIMReference path(nullptr);
  path.SetClass(*fClass);
  for (const std::string& name : fClass->EnumerateKeyNames()) {
    path.AddKeyValue(name, GetProperty(name)->GetValue());
  }
  return path;
}

void TCIMInstanceImpl::AppendPath(TPathText& text) const {
  const boost::shared_ptr<const TPropertyLayout>& current = fClass->GetBody()->Layout();
  if (!HasPlainPath(*current)) return text.Append(BuildPath().GetPath());
  text.Append(fClass->GetName());
  for (const TPropertyLayout::TPathPart& part : current->PathParts()) {
    text.Append(part.opening);
    text.AppendValue(fProperties[part.slot].GetShownBody().Value());
  }
  if (!current->PathParts().empty()) text.Append("\"");
}

// Whether the class is as it was and every key has a value of its type, so that nothing can be
// wrong with the path.
bool TCIMInstanceImpl::HasPlainPath(const TPropertyLayout& current) const {
  if (&current != fLayout.get()) return false;
  const std::vector<TPropertyLayout::TPathPart>& keys = current.PathParts();
  return std::all_of(keys.begin(), keys.end(), [&](const TPropertyLayout::TPathPart& key) {
    const TCIMValue& value = fProperties[key.slot].GetShownBody().Value();
    return !value.IsNull() && value.GetType() == key.type;
  });
}

bool TCIMInstanceImpl::operator==(const TCIMInstanceImpl& other) const {
  if (fClass != other.fClass || fLayout->Size() != other.fLayout->Size()) return false;
  for (std::size_t slot = 0; slot < fLayout->Size(); ++slot) {
    if (fLayout->Key(slot) != other.fLayout->Key(slot) ||
        !(fProperties[slot] == other.fProperties[slot])) {
      return false;
    }
  }
  return true;
}
