#pragma once

#include <boost/shared_ptr.hpp>
#include <map>
#include <string>

#include "zelcore/TCIMValue.h"
#include "zelcore/detail/Export.h"

class ICIMElement;
class TCIMReferenceImpl;

// A CIM object path inside one container: a class and, for the path of an instance, its key
// bindings. Built from its parts, container first, then class, then bindings; its text form is
// produced and never read. Copies are independent. A call that fails changes nothing.
class ZEL_API TCIMReference {
 public:
  // `container` may be null; it is not owned.
  TCIMReference(const TContainer* container);  // NOLINT(google-explicit-constructor): by design
  // Calls SetPath(), so it always throws.
  TCIMReference(const TContainer* container, const std::string& path);
  TCIMReference(const TCIMReference& other);
  // `other` may only be destroyed or assigned to afterwards.
  TCIMReference(TCIMReference&& other) noexcept;
  TCIMReference& operator=(const TCIMReference& other);
  ~TCIMReference();

  void SetContainer(TContainer* container);

  // Removes container, class, bindings and the resolved element.
  void Clear();

  // Always throws: zelStatusNotImplemented with a container, zelStatusInvalidOpSequence without.
  void SetPath(const std::string& path);

  // Throws zelStatusInvalidReference when no class is set.
  TCIMClass* GetClass() const;
  // A class must be set.
  std::string GetClassName() const;

  // Throws zelStatusInvalidOpSequence without a container or with bindings, zelStatusNotFound for
  // an unknown class. An empty name gives the root class.
  void SetClassName(const std::string& name);
  // Throws zelStatusInvalidOpSequence when there are bindings. Leaves the container alone.
  void SetClass(TCIMClass& cls);

  // Binds a key property. The property is found without regard to case; the binding keeps `name` as
  // it is passed, and the first value bound to a name stays. Throws zelStatusNotFound for an
  // unknown property, zelStatusTypeMismatch for a value of another type than declared, and
  // zelStatusInvalidOpSequence for a property that is no key or when no class is set.
  void AddKeyValue(const std::string& name, const TCIMValue& value);
  void AddKeyValue(const std::string& name, TCIMValue&& value);

  // A copy, ordered by the bytes of the names.
  std::map<std::string, TCIMValue> EnumerateKeyBindings() const;

  // The class's name and, where there are bindings, `.Id="7",Name="abc"` in their order. Values are
  // not escaped. Throws zelStatusValueIsNULL when a bound value is NULL, zelStatusInvalidReference
  // when no class is set.
  std::string GetPath() const;

  // The class without bindings, else the class's first instance under this path. The instance is
  // found once and remembered until Clear(), even when it is removed meanwhile. Throws
  // zelStatusNotFound. Owned by the container.
  ICIMElement* GetCIMElement() const;

  // The same class object, the same names and equal values.
  bool operator==(const TCIMReference& other) const;
  // By the address of the class, then by the bindings.
  bool operator<(const TCIMReference& other) const;

  const boost::shared_ptr<TCIMReferenceImpl>& GetBody() const;

 private:
  boost::shared_ptr<TCIMReferenceImpl> fBody;
};
