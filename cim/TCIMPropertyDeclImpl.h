#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "cim/TQualifierSet.h"
#include "zelcore/TCIMValue.h"
#include "zelcore/detail/Export.h"

class TCIMPropertyDecl;
struct TDisplayRules;

class ZEL_API TCIMPropertyDeclImpl {
 public:
  TCIMPropertyDeclImpl(TCIMPropertyDecl* owner, const std::string& name, TCIMClass* cls,
                       const TCIMValue& value);

  TCIMPropertyDecl* GetOwner() const { return fOwner; }
  const std::string& GetName() const { return fName; }
  void SetName(const std::string& name);
  const TCIMValue& Value() const { return fValue; }
  void SetValue(const TCIMValue& value);
  TCIMClass* GetClass() const { return fClass; }

  TQualifierSet& Qualifiers() { return fQualifiers; }
  bool IsKey() const { return fQualifiers.IsTrue("KEY"); }
  // The same, but a KEY that is no boolean makes no key rather than a failure. Kept worked out.
  bool MayBeBound() const;

  // What TCIMPropertyDisplay.cpp keeps of the qualifiers; null at first.
  std::shared_ptr<TDisplayRules>& DisplayRules() { return fDisplayRules; }

 private:
  TCIMPropertyDecl* fOwner;  // the handle that made this
  std::string fName;
  TCIMClass* fClass;  // the class that declared it
  TCIMValue fValue;
  TQualifierSet fQualifiers;
  std::shared_ptr<TDisplayRules> fDisplayRules;
  mutable std::uint64_t fKeyLookedAt = static_cast<std::uint64_t>(-1);  // by TSchemaChanges
  mutable bool fMayBeBound = false;
};
