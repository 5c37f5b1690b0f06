#pragma once

#include <boost/shared_ptr.hpp>
#include <string>
#include <vector>

#include "zelcore/ICIMAllowQualifiers.h"
#include "zelcore/TCIMValue.h"
#include "zelcore/detail/Export.h"

class TCIMPropertyDeclImpl;

// Declares a property of a class: its name, its qualifiers and, in one value, its type and default.
// Copies of the handle share one declaration.
class ZEL_API TCIMPropertyDecl : public ICIMAllowQualifiers {
 public:
  // `value` is NULL when there is no default; for references it names the referenced class.
  TCIMPropertyDecl(const std::string& name, TCIMClass& cls, const TCIMValue& value);
  // Always throws zelStatusNotImplemented.
  TCIMPropertyDecl(TCIMPropertyDecl& other, TCIMClass& cls);
  ~TCIMPropertyDecl() override;

  // Accepts every declaration.
  void Validate() const;
  // Hands this object, made with `new`, to its class; throws as TCIMClass::AddPropertyDecl().
  void AddToContainer() const;

  const std::string& GetName() const;
  // Renaming a declaration does not move it in its class.
  void SetName(const std::string& name);
  TCIMValue GetValue() const;
  void SetValue(const TCIMValue& value);
  TCIMValue::TCIMType GetType() const;
  bool IsArray() const;
  // The class that declared it; subclasses share the declaration.
  TCIMClass* GetClass() const;

  void AddQualifier(TCIMQualifier& qualifier) override;
  TCIMQualifier* GetQualifier(const std::string& name) const override;
  TCIMQualifier* FindQualifier(const std::string& name) const;
  std::vector<TCIMQualifier const*> EnumerateQualifiers() const override;
  void RemoveQualifier(TCIMQualifier& qualifier) override;

  // By name only, in any case.
  bool operator==(const TCIMPropertyDecl& other) const;
  bool operator<(const TCIMPropertyDecl& other) const;

  const boost::shared_ptr<TCIMPropertyDeclImpl>& GetBody() const;

 private:
  boost::shared_ptr<TCIMPropertyDeclImpl> fBody;
};
