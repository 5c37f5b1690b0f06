#pragma once

#include <boost/shared_ptr.hpp>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "cim/Names.h"
#include "cim/TBlockPool.h"
#include "zelcore/TCIMClass.h"
#include "zelcore/TCIMQualifierDecl.h"
#include "zelcore/detail/Export.h"

class ZEL_API TContainerImpl {
 public:
  explicit TContainerImpl(TContainer* owner);
  ~TContainerImpl();
  TContainerImpl(const TContainerImpl&) = delete;
  TContainerImpl& operator=(const TContainerImpl&) = delete;

  // The lower-case form by which names are compared. Logs and throws zelStatusInvalidCIMName.
  static std::string NormalizeName(const std::string& name);

  // Makes the root class through the owner's factory.
  void Initialize();

  void AddClass(TCIMClass& cls);
  TCIMClass* GetClass(const std::string& name) const;
  TCIMClass* FindClass(const std::string& name) const;
  TCIMClass* GetRootClass() const { return fRootClass.get(); }
  void RemoveClass(TCIMClass& cls);

  void AddQualifierDecl(TCIMQualifierDecl& decl);
  TCIMQualifierDecl* GetQualifierDecl(const std::string& name) const;
  TCIMQualifierDecl* FindQualifierDecl(const std::string& name) const;
  std::vector<TCIMQualifierDecl*> EnumerateQualifiers() const;
  void RemoveQualifierDecl(TCIMQualifierDecl& decl);

  // What instances and their properties stand in. It lasts as long as they.
  TBlockPool& InstanceMemory() const { return *fInstanceMemory; }

  std::vector<TCIMClass*> PopulateContainerFromFile(const std::string& path);

  void TurnIntoADiffContainer() { fIsDiff = true; }
  bool IsDiffContainer() const { return fIsDiff; }
  void SetDiffInstances(std::vector<TCIMInstance*> instances);
  std::vector<TCIMInstance*> GetDiffInstances() const;
  bool HasDifferences() const;

 private:
  // Keyed by the lower-case name.
  template <class T>
  using TRegistry = std::unordered_map<std::string, boost::shared_ptr<T>,
                                       zelcore::detail::TNameHash, zelcore::detail::TNameEqual>;

  void CheckIsDiff() const;

  // Destroyed from the end: classes before the declarations that their qualifiers point at. The
  // root class, which top-level classes point at, goes after the registered ones.
  TContainer* fOwner;  // the handle that made this
  TRegistry<TCIMQualifierDecl> fQualifierDecls;
  std::unique_ptr<TCIMClass> fRootClass;
  TRegistry<TCIMClass> fClasses;
  TBlockPool::TOwner fInstanceMemory;  // abandoned before its instances go: that is quicker
  bool fIsDiff;
  std::vector<TCIMInstance*> fDiffInstances;
};
