#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "zelcore/TCIMProperty.h"
#include "zelcore/TCIMPropertyDecl.h"
#include "zelcore/detail/Export.h"

class ZEL_API TCIMPropertyImpl {
 public:
  static constexpr std::uint32_t kUnwatched = 0xFFFFFFFF;

  TCIMPropertyImpl(TCIMProperty* owner, const TCIMPropertyDecl* declaration, bool inBlock = false,
                   std::uint32_t watchedSlot = kUnwatched)
      : fOwner(owner), fDeclaration(declaration), fInBlock(inBlock), fWatchedSlot(watchedSlot) {}
  // Checks the values of `other` against the declaration again.
  TCIMPropertyImpl(TCIMProperty* owner, const TCIMPropertyImpl& other);
  TCIMPropertyImpl(const TCIMPropertyImpl&) = delete;
  TCIMPropertyImpl& operator=(const TCIMPropertyImpl&) = delete;

  // Ends a body, which is part of a block or was made by itself.
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
  const bool fInBlock;               // part of an instance's block of properties, which frees it
  const std::uint32_t fWatchedSlot;  // in a block with a TReferenceWatch; or kUnwatched
};
