#pragma once

#include <atomic>
#include <boost/shared_ptr.hpp>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "cim/Names.h"
#include "cim/TCIMPropertyImpl.h"
#include "zelcore/TCIMPropertyDecl.h"

// The property declarations of a class, keyed by the lower-case name.
using TPropertyDecls =
    std::map<std::string, boost::shared_ptr<TCIMPropertyDecl>, zelcore::detail::TNameLess>;

// Where each property of an instance stands: worked out once per class and shared by its instances.
// Slots are in the order of the lower-case names. Valid for as long as neither the declarations nor
// anything that TSchemaChanges counts has changed.
class TPropertyLayout {
 public:
  static constexpr std::size_t kNoSlot = static_cast<std::size_t>(-1);

  explicit TPropertyLayout(const TPropertyDecls& decls);

  bool IsCurrent() const;

  std::size_t Size() const { return fSlots.size(); }
  const std::string& Key(std::size_t slot) const { return fSlots[slot].key; }
  TCIMPropertyDecl& Decl(std::size_t slot) const { return *fSlots[slot].decl; }
  // The declared type as it is now.
  TCIMValue::TCIMType Type(std::size_t slot) const {
    return IsCurrent() ? fSlots[slot].type : fSlots[slot].decl->GetType();
  }
  // What properties without a value of their own share, by slot.
  std::deque<TCIMPropertyImpl>& SharedBodies() const;
  // Without regard to case; `name` need not be valid. Quickest, in the spelling of the declaration,
  // for the name that was asked for last, and for those that were asked for behind it before.
  std::size_t Find(std::string_view name) const;
  // Whether every declaration is called as it was when its class took it.
  bool IsAsDeclared() const { return fIsAsDeclared; }

  // Whether a property is declared a reference.
  bool HasReferences() const { return fHasReferences; }

  // The slot of DateTimeOfCollection, or kNoSlot.
  std::size_t StampSlot() const { return fStampSlot; }

  // The key properties, in the order of the slots. Throws what testing KEY throws.
  const std::vector<std::size_t>& KeySlots() const;

  // A key property in a path.
  struct TPathPart {
    std::size_t slot;
    TCIMValue::TCIMType type;
    std::string opening;  // what stands in front of its value: `.Name="`, `",Id="`
  };
  // The key properties in the order in which a path names them: by the bytes of the names as
  // declared.
  const std::vector<TPathPart>& PathParts() const;

 private:
  struct TSlot {
    std::string key;
    std::string name;  // as declared
    boost::shared_ptr<TCIMPropertyDecl> decl;
    TCIMValue::TCIMType type;
  };

  std::size_t Search(std::string_view name) const;
  void BuildIndex();
  static std::uint32_t Hash(std::string_view name);
  void FindKeys() const;

  std::vector<TSlot> fSlots;
  // Which slot was asked for after which. Several threads may read instances of one class.
  mutable std::vector<std::atomic<std::uint32_t>> fFollowers;
  mutable std::atomic<std::uint32_t> fLastAsked{0};
  // Open addressing: slot plus 1, or 0. Empty when names crowd, as a hostile document can arrange.
  std::vector<std::uint32_t> fIndex;
  std::size_t fStampSlot;
  bool fHasReferences;
  bool fIsAsDeclared;
  std::uint64_t fChanges;
  mutable bool fKeysFound = false;
  mutable std::vector<std::size_t> fKeySlots;
  mutable std::vector<TPathPart> fPathParts;
  mutable std::deque<TCIMPropertyImpl> fSharedBodies;  // once there is an instance
};
