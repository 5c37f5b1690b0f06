#pragma once

#include <boost/shared_ptr.hpp>
#include <string>
#include <vector>

#include "zelcore/TCIMQualifierDecl.h"
#include "zelcore/detail/Export.h"

class TCIMClass;
class TCIMInstance;
class TCIMValue;
class TContainerImpl;

// A CIM schema with its data: qualifier declarations, classes and, in the classes, instances. It
// owns what is registered in it, and makes the objects to register.
//
// All classes hang below a hidden root class; walk them with GetRootClass()->EnumerateSubClasses().
// Names are compared without regard to case. Every operation that takes a name throws
// zelStatusInvalidCIMName for one that is not a letter or underscore followed by letters, digits
// and underscores (ASCII; the empty name passes). Copies of the handle share one container; the
// handle that made it must outlive the objects in it. One thread at a time.
class ZEL_API TContainer {
 public:
  TContainer();
  virtual ~TContainer();

  // Make objects of this container; the caller owns them until they are added. A null `superClass`
  // stands for the root class.
  virtual TCIMClass* AllocateClass(const std::string& name, TCIMClass* superClass) const;
  virtual TCIMInstance* AllocateInstance(TCIMClass* cls) const;
  virtual TCIMQualifierDecl* AllocateQualifierDecl(const std::string& name, const TCIMValue& value,
                                                   TCIMQualifierDecl::EScope scope,
                                                   TCIMQualifierDecl::EFlavor flavor) const;

  // Register an object made with `new`; usually reached through its AddToContainer(). Throw
  // zelStatusAlreadyExists for a name that is taken: a class then stays with the caller, a
  // qualifier declaration is destroyed.
  void AddClass(TCIMClass& cls);
  void AddQualifierDecl(TCIMQualifierDecl& decl);

  // GetX throws zelStatusNotFound, FindX returns null. An empty name finds the root class.
  TCIMClass* GetClass(const std::string& name) const;
  TCIMClass* FindClass(const std::string& name) const;
  TCIMClass* GetRootClass() const;
  TCIMQualifierDecl* GetQualifierDecl(const std::string& name) const;
  TCIMQualifierDecl* FindQualifierDecl(const std::string& name) const;

  // In the order of the lower-case names.
  std::vector<TCIMQualifierDecl*> EnumerateQualifiers() const;

  // Destroy what is registered under the object's name; throw zelStatusNotFound when there is
  // nothing. Qualifiers that use the declaration, instances and subclasses must be gone before.
  void RemoveClass(TCIMClass& cls);
  void RemoveQualifierDecl(TCIMQualifierDecl& decl);

  // Reads a CIM-XML document of at most 100 MiB of text, gzip-compressed when ".gz" occurs anywhere
  // in `path`, and returns the classes it declares, in document order. Throws
  // zelStatusFileNotFound (missing, or a directory), zelStatusFileSystemError,
  // zelStatusInvalidGzipFile, zelStatusCorruptGzipFile, zelStatusInvalidSpecificationDocument,
  // zelStatusOutOfMemory, or what the model refuses; the log names the file, and the line of an
  // error in the document. What was read before the failure stays.
  std::vector<TCIMClass*> PopulateContainerFromFile(const std::string& path);

  // A diff container lists the instances that differ from an earlier collection and accepts
  // instances without keys. There is no way back. On any other container the three list operations
  // throw zelStatusNotSupported. The list owns nothing and keeps its order.
  void hackhack_TurnIntoADiffContainer();
  bool isDiffContainer() const;
  void setDiffInstances(std::vector<TCIMInstance*> instances);
  std::vector<TCIMInstance*> getDiffInstances() const;
  bool hasDifferences() const;

  const boost::shared_ptr<TContainerImpl>& GetBody() const;

 private:
  boost::shared_ptr<TContainerImpl> fBody;
};
