#pragma once

#include <memory>

#include "zelcore/TCIMProperty.h"
#include "zelcore/TCIMPropertyDecl.h"
#include "zelcore/detail/Export.h"

class ZEL_API TCIMPropertyImpl {
 public:
  TCIMPropertyImpl(TCIMProperty* owner, const TCIMPropertyDecl* declaration, bool inBlock = false);
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

  const TCIMValue& PrevValue() const;
  bool IsPrevValueDifferent() const { return fPrevDiffers; }
  void SetPrevValue(const TCIMValue& value);

 private:
  void Check(const char* operation, const TCIMValue& value) const;
  void ReplaceValue(TCIMValue&& value);

  TCIMProperty* fOwner;
  const TCIMPropertyDecl* fDeclaration;  // kept alive by its class
  TCIMValue fValue;
  std::unique_ptr<TCIMValue> fPrevValue;
  bool fHasValue = false;  // whether fValue counts
  bool fPrevDiffers = false;
  const bool fInBlock;  // part of an instance's block of properties, which frees it
};
