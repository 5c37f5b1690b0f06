#pragma once

#include <unordered_map>
#include <vector>

#include "zelcore/TCIMClass.h"
#include "zelcore/TCIMPropertyDecl.h"
#include "zelcore/TCIMValue.h"

// The classes of a document in an order in which they can be read: each behind its superclass and
// the classes that it refers to.
class TClassOrder {
 public:
  // Adds the class, and before it those that it needs.
  void Add(TCIMClass& cls);
  // Adds the classes that are named in references of the value.
  void AddReferenced(const TCIMValue& value);

  const std::vector<TCIMClass*>& GetClasses() const { return fClasses; }

 private:
  std::vector<TCIMClass*> fClasses;
  std::unordered_map<TCIMClass*, bool> fIsPlaced;  // false while what it needs is being placed
};

// The declarations that the class itself made, without the inherited ones.
std::vector<const TCIMPropertyDecl*> EnumerateOwnDecls(const TCIMClass& cls);
