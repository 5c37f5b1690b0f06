#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "zelcore/TCIMProperty.h"
#include "zelcore/TCIMPropertyDecl.h"
#include "zelcore/detail/Export.h"

class ZEL_API TCIMPropertyImpl {
 public:
  static constexpr std::uint32_t kNoSlot = 0xFFFFFFFF;

  // `slot` is that of the handle in an instance; without an owner, one that all instances of a
  // class share for as long as there is no value.
  TCIMPropertyImpl(TCIMProperty* owner, const TCIMPropertyDecl* declaration,
                   std::uint32_t slot = kNoSlot)
      : fOwner(owner), fDeclaration(declaration), fSlot(slot) {}
  // Checks the values of `other` against the declaration again.
  TCIMPropertyImpl(TCIMProperty* owner, const TCIMPropertyImpl& other);
  TCIMPropertyImpl(const TCIMPropertyImpl&) = delete;
  TCIMPropertyImpl& operator=(const TCIMPropertyImpl&) = delete;

  bool IsShared() const { return !fOwner; }
  // One of the same declaration for `owner`, which shares this one until then.
  TCIMPropertyImpl* MakeOwn(TCIMProperty* owner) const;
  // Ends a body unless it is shared.
  static void Release(TCIMPropertyImpl* body);
  // Takes the declaration and the values of `other`.
  void Take(TCIMPropertyImpl&& other);

  TCIMProperty* GetOwner() const { return fOwner; }
  const TCIMPropertyDecl* GetDeclaration() const { return fDeclaration; }
  // The own value, or the declaration's default.
  const TCIMValue& Value() const;
  bool HasValue() const { return fHasValue; }
  void SetValue(const TCIMValue& value);
  void SetValue(TCIMValue&& value);
  // Sets the value that `text` has in `type`, the declared one, in place. False, with nothing
  // changed, when there is a value already, and for references, arrays and datetimes that are bad.
  bool SetFromText(TCIMValue::TCIMType type, std::string_view text) {
    if (fHasValue) return false;
    fHasValue = fValue.SetFromText(type, text);
    return fHasValue;
  }

  // The same of an array.
  bool SetArray(TCIMValue::TCIMType elementType, unsigned int maxArraySize,
                std::vector<TCIMValue>&& elements) {
    if (fHasValue) return false;
    fValue.Set(elementType, maxArraySize, std::move(elements));
    return fHasValue = true;
  }

  const TCIMValue& PrevValue() const;
  bool IsPrevValueDifferent() const { return fPrevValue != nullptr; }
  void SetPrevValue(const TCIMValue& value);

  // Text for people, in TCIMPropertyDisplay.cpp.

  // One row of a value map: the codes from `low` to `high` show as `text`.
  struct TValueMapEntry {
    unsigned long low;
    unsigned long high;  // all ones: open-ended
    std::string text;
  };

  std::string ToString() const;
  std::string PrevToString() const;
  std::vector<std::string> ToStringVector() const;
  std::vector<std::string> PrevToStringVector() const;
  // Without the value map.
  std::vector<std::string> ToStringVectorWithBase() const;
  std::vector<std::string> PrevToStringVectorWithBase() const;
  // What NULL, the units and the base make of one value.
  std::string ToStringWithQualifiers(const TCIMValue& value) const;
  std::string ToStringWithBase(const TCIMValue& value) const;

  // Whether the declaration has a usable value map; it then replaces what `entries` and
  // `defaultText` hold. A broken one is logged, each time.
  bool BuildValueMapEntryArray(std::vector<TValueMapEntry>& entries,
                               std::string& defaultText) const;
  // The text of the first row that holds `value`, else `defaultText`, else its number. Throws
  // zelStatusValueIsNULL for NULL, zelStatusTypeMismatch for what is no boolean or unsigned
  // integer.
  std::string LookupInTable(const TCIMValue& value, const std::vector<TValueMapEntry>& entries,
                            const std::string& defaultText) const;

 private:
  std::string Show(const TCIMValue& value) const;
  std::vector<std::string> ShowEach(const TCIMValue& value) const;
  std::vector<std::string> ShowEachWithBase(const TCIMValue& value) const;

  void Check(const char* operation, const TCIMValue& value) const;
  void ReplaceValue(TCIMValue&& value);
  void ReportChange();

  TCIMProperty* fOwner;
  const TCIMPropertyDecl* fDeclaration;  // kept alive by its class
  TCIMValue fValue;
  std::unique_ptr<TCIMValue> fPrevValue;  // null: none was set
  bool fHasValue = false;                 // whether fValue counts
  const std::uint32_t fSlot;              // of the handle in an instance; or kNoSlot
};
