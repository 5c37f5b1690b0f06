#pragma once

#include <boost/shared_ptr.hpp>
#include <string>
#include <vector>

#include "zelcore/ICIMAllowQualifiers.h"
#include "zelcore/ICIMElement.h"
#include "zelcore/detail/Export.h"

class TCIMClassImpl;
class TCIMInstance;
class TCIMPropertyDecl;
class TCIMReference;

// A CIM class: name, superclass, qualifiers, property declarations (own and inherited), and the
// instances of it. Made by TContainer::AllocateClass(), filled, registered by AddToContainer() and
// owned by the container from then on; copies of the handle share one class.
//
// Inheritance is a snapshot: a new class starts with the property declarations of its superclass
// and with those qualifiers that go to subclasses, and sees nothing that is added there later.
class ZEL_API TCIMClass : public ICIMElement, public ICIMAllowQualifiers {
 public:
  // A null `superClass` stands for the container's root class.
  TCIMClass(TContainer& container, const std::string& name, TCIMClass* superClass);
  ~TCIMClass() override;

  // Throws zelStatusInvalidClass for a class that is neither abstract nor has a key.
  void Validate() const override;
  // Throws as Validate() and TContainer::AddClass(); nothing is registered then. Called on a copy
  // of the handle, it hands over the one that made the class.
  void AddToContainer() const override;
  TContainer* GetContainer() const override;

  const std::string& GetName() const;
  // The root class for a top-level class, null for the root class.
  TCIMClass* GetSuperClass() const;
  bool IsRootClass() const;
  // Whether the qualifier is there and true. Throw zelStatusTypeMismatch when it is no boolean.
  bool IsAssociation() const;
  bool IsAbstract() const;
  // Every class is a subclass of itself and of the root class. `other` may be null: false.
  bool IsSubclassOf(const TCIMClass* other) const;
  // The direct subclasses in the order in which they were added; with `deep`, each followed by all
  // of its own.
  std::vector<TCIMClass*> EnumerateSubClasses(bool deep) const;

  void AddQualifier(TCIMQualifier& qualifier) override;
  TCIMQualifier* GetQualifier(const std::string& name) const override;
  TCIMQualifier* FindQualifier(const std::string& name) const;
  std::vector<TCIMQualifier const*> EnumerateQualifiers() const override;
  void RemoveQualifier(TCIMQualifier& qualifier) override;

  // Adds `decl`, made with `new`; the class owns it from then on, together with later subclasses.
  // Throws zelStatusNotAssociation for a reference in an ordinary class, zelStatusAlreadyExists for
  // a duplicate (inherited ones included) unless `decl` carries OVERRIDE; then zelStatusNotFound
  // when there is nothing to override and zelStatusTypeMismatch when the types differ. On a throw
  // nothing has changed and `decl` stays with the caller.
  void AddPropertyDecl(TCIMPropertyDecl& decl);
  TCIMPropertyDecl* GetPropertyDecl(const std::string& name) const;
  TCIMPropertyDecl* FindPropertyDecl(const std::string& name) const;
  // Inherited ones included, in the order of the lower-case names.
  std::vector<TCIMPropertyDecl const*> EnumeratePropertyDecls() const;
  // Throws zelStatusNotFound. Instances of the class must be gone before.
  void RemovePropertyDecl(TCIMPropertyDecl& decl);
  // The names of the key properties as declared, in the order of the lower-case names.
  std::vector<std::string> EnumerateKeyNames() const;

  // Registers `instance`, made with `new`, under the path that it has now. The class owns it.
  // Instances with one path are kept side by side. An instance that is already in is left alone.
  // Throws zelStatusValueIsNULL when a key is NULL.
  void AddInstance(TCIMInstance& instance);
  // Destroys every instance that is registered under the path of `instance`.
  void RemoveInstance(TCIMInstance& instance);
  // The first instance registered under the path.
  TCIMInstance* GetInstance(const TCIMReference& path) const;
  TCIMInstance* FindInstance(const TCIMReference& path) const;
  // In the order of their paths; with `deep`, followed by those of each direct subclass in order,
  // gathered the same way.
  std::vector<TCIMInstance*> EnumerateInstances(bool deep) const;

  // The associations that refer to this class: those recorded on it by name, then those recorded on
  // each superclass upwards. Only those that are a subclass of `assocClass` and, with a `role`,
  // whose reference of that name is declared to this very class. Empty texts restrict nothing; an
  // unknown `assocClass` matches nothing. Throw zelStatusInvalidCIMName for an invalid name.
  std::vector<TCIMClass*> References(const std::string& assocClass, const std::string& role) const;
  // What the other references of these associations are declared to, as far as it is a subclass of
  // `resultClass`: the reference named `resultRole`, or without it all by name but the first that
  // is this class's own end (named `role`, or without it declared to this class). May tell a class
  // more than once.
  std::vector<TCIMClass*> Associators(const std::string& assocClass, const std::string& resultClass,
                                      const std::string& role, const std::string& resultRole) const;

  // By name, case-sensitively, unlike every other comparison of the model.
  bool operator==(const TCIMClass& other) const;
  bool operator<(const TCIMClass& other) const;

  const boost::shared_ptr<TCIMClassImpl>& GetBody() const;

 private:
  boost::shared_ptr<TCIMClassImpl> fBody;
};
