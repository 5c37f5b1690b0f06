#pragma once

#include <string>

#include "cim/TQualifierSet.h"
#include "zelcore/TCIMValue.h"
#include "zelcore/detail/Export.h"

class TCIMPropertyDecl;

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

 private:
  TCIMPropertyDecl* fOwner;  // the handle that made this
  std::string fName;
  TCIMClass* fClass;  // the class that declared it
  TCIMValue fValue;
  TQualifierSet fQualifiers;
};
