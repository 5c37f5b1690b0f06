#pragma once

#include <boost/shared_ptr.hpp>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "cim/TCIMElementImpl.h"
#include "cim/TInstanceRegistry.h"
#include "cim/TPropertyLayout.h"
#include "cim/TQualifierSet.h"
#include "zelcore/detail/Export.h"

class TCIMClass;
class TCIMInstanceImpl;
class TCIMReference;
class TReferenceIndex;

class ZEL_API TCIMClassImpl : public TCIMElementImpl {
 public:
  // Classes of different containers may have one name.
  struct TByName {
    bool operator()(const TCIMClass* a, const TCIMClass* b) const;
  };
  using TAssociationClasses = std::set<TCIMClass*, TByName>;

  TCIMClassImpl(TCIMClass* owner, TContainer* container, const std::string& name,
                TCIMClass* superClass);
  ~TCIMClassImpl() override;
  TCIMClassImpl(const TCIMClassImpl&) = delete;
  TCIMClassImpl& operator=(const TCIMClassImpl&) = delete;

  void Validate() const override;
  TContainer* GetContainer() const override { return fContainer; }

  // Registers the class and links it to its superclass and to the classes that it associates.
  void AddToContainer();
  // To be called before a registered class goes. Undoes these links: what pointed at this class
  // points at its superclass afterwards.
  void LeaveOtherClasses();

  const std::string& GetName() const { return fName; }
  TCIMClass* GetSuperClass() const { return fSuperClass; }
  bool IsRootClass() const { return fSuperClass == nullptr; }
  bool IsAssociation() const { return fQualifiers.IsTrue("ASSOCIATION"); }
  bool IsAbstract() const { return fQualifiers.IsTrue("ABSTRACT"); }
  bool IsSubclassOf(const TCIMClass* other) const;
  std::vector<TCIMClass*> EnumerateSubClasses(bool deep) const;

  TQualifierSet& Qualifiers() { return fQualifiers; }

  void AddPropertyDecl(TCIMPropertyDecl& decl);
  TCIMPropertyDecl* GetPropertyDecl(const std::string& name) const;
  TCIMPropertyDecl* FindPropertyDecl(const std::string& name) const;
  std::vector<TCIMPropertyDecl const*> EnumeratePropertyDecls() const;
  void RemovePropertyDecl(TCIMPropertyDecl& decl);
  std::vector<std::string> EnumerateKeyNames() const;
  // As the declarations are now.
  const boost::shared_ptr<const TPropertyLayout>& Layout() const;

  void AddInstance(TCIMInstance& instance);
  void RemoveInstance(TCIMInstance& instance);
  TCIMInstance* GetInstance(const TCIMReference& path) const;
  TCIMInstance* FindInstance(const TCIMReference& path) const;
  std::vector<TCIMInstance*> EnumerateInstances(bool deep) const;
  // Those of EnumerateInstances(false) that may refer to `target`, in that order: none that does is
  // missing.
  std::vector<TCIMInstance*> FindReferrers(const TCIMInstanceImpl& target) const;

  void AddChildClass(TCIMClass& child);
  void RemoveChildClass(TCIMClass& child);
  void AddAssociationClass(TCIMClass& association);
  const TAssociationClasses& GetAssociationClasses() const { return fAssociationClasses; }

  // In AssociationTraversal.cpp.
  std::vector<TCIMClass*> References(const std::string& assocClass, const std::string& role) const;
  std::vector<TCIMClass*> Associators(const std::string& assocClass, const std::string& resultClass,
                                      const std::string& role, const std::string& resultRole) const;

 private:
  // Shared with the superclass until the declarations of one of the two change.
  struct TDeclTable {
    TPropertyDecls decls;
    boost::shared_ptr<const TPropertyLayout> layout;  // null: to be worked out
  };

  void CheckOverride(const TCIMPropertyDecl& decl, const TCIMPropertyDecl* existing) const;
  TPropertyDecls& OwnDecls();
  void LinkAssociatedClasses();

  TCIMClass* fOwner;  // the handle that made this; it must live for as long as this is registered
  TContainer* fContainer;
  std::string fName;
  TCIMClass* fSuperClass;  // null for the root class only
  TQualifierSet fQualifiers;
  boost::shared_ptr<TDeclTable> fTable;
  std::vector<TCIMClass*> fSubClasses;      // in the order in which they were added
  TAssociationClasses fAssociationClasses;  // those that refer to this class
  std::vector<TCIMClass*> fAssociated;      // the classes whose set this association is in
  TInstanceRegistry fInstances;
  mutable std::unique_ptr<TReferenceIndex> fReferenceIndex;  // of fInstances, once it was asked
};
