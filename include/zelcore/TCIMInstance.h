#pragma once

#include <boost/shared_ptr.hpp>
#include <string>
#include <vector>

#include "zelcore/ICIMElement.h"
#include "zelcore/detail/Export.h"

class TCIMClass;
class TCIMInstanceImpl;
class TCIMProperty;
class TCIMReference;
class TCIMValue;

// An instance of a class: one property for each property declaration that the class has when the
// instance is made. Made by TContainer::AllocateInstance(), filled, committed by AddToContainer()
// and owned by its class from then on. A property named DateTimeOfCollection is set to the local
// time at which the instance is made. Copies of the handle share one instance.
class ZEL_API TCIMInstance : public ICIMElement {
 public:
  TCIMInstance(TCIMClass* cls);  // NOLINT(google-explicit-constructor): by design
  // Always throws zelStatusNotImplemented.
  TCIMInstance(TCIMInstance& other, TCIMClass& cls);
  ~TCIMInstance() override;

  // Throws zelStatusInvalidInstance when a key is NULL; in a diff container accepts everything.
  void Validate() const override;
  // Validates, then TCIMClass::AddInstance(). Does nothing on an instance that is already in. A key
  // that is changed afterwards does not move it there.
  void AddToContainer() const override;
  TContainer* GetContainer() const override;
  TCIMClass* GetClass() const;

  // All four throw zelStatusNotFound for a property that the class does not have, and as
  // TCIMProperty::SetValue() and SetPrevValue().
  void SetProperty(const TCIMProperty& property);
  void SetPropertyValue(const std::string& name, const TCIMValue& value);
  void SetPropertyValue(const std::string& name, TCIMValue&& value);
  void SetPrevPropertyValue(const std::string& name, const TCIMValue& value);
  void SetPrevPropertyValue(const std::string& name);

  // Owned by the instance.
  TCIMProperty* GetProperty(const std::string& name) const;
  TCIMProperty* FindProperty(const std::string& name) const;
  // In the order of the lower-case names.
  std::vector<TCIMProperty const*> EnumerateProperties() const;

  // The class and its key values as they are now. The path has no container.
  TCIMReference BuildPath() const;

  // The instances of the class's References() of which a reference, the one named `role` if that is
  // not empty, leads to this instance: class by class, in the order of their paths. Each is told
  // once. References that lead nowhere are passed over.
  std::vector<TCIMInstance*> References(const std::string& assocClass,
                                        const std::string& role) const;
  // What the other references of these instances lead to, as far as the class that a reference
  // names is a subclass of `resultClass`: the reference named `resultRole`, or without it all by
  // name but the first that is the own end (named `role`, or without it to this instance's class).
  // An instance that is reached twice is told twice.
  std::vector<TCIMInstance*> Associators(const std::string& assocClass,
                                         const std::string& resultClass, const std::string& role,
                                         const std::string& resultRole) const;

  // The same class object and equal properties.
  bool operator==(const TCIMInstance& other) const;
  // By the address of the class alone.
  bool operator<(const TCIMInstance& other) const;

  const boost::shared_ptr<TCIMInstanceImpl>& GetBody() const;

 private:
  boost::shared_ptr<TCIMInstanceImpl> fBody;
};
