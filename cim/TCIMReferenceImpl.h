#pragma once

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "zelcore/TCIMReference.h"
#include "zelcore/detail/Export.h"

class ZEL_API TCIMReferenceImpl {
 public:
  TCIMReferenceImpl(TCIMReference* owner, const TContainer* container);

  void SetContainer(TContainer* container) { fContainer = container; }
  void Clear();
  void SetPath(const std::string& path);

  TCIMClass* GetClass() const;
  void SetClassName(const std::string& name);
  void SetClass(TCIMClass& cls);

  void AddKeyValue(const std::string& name, TCIMValue&& value);
  std::map<std::string, TCIMValue> EnumerateKeyBindings() const;
  std::string GetPath() const;
  // `path` is the handle.
  ICIMElement* GetCIMElement(const TCIMReference& path) const;

  bool operator==(const TCIMReferenceImpl& other) const;
  bool operator<(const TCIMReferenceImpl& other) const;

 private:
  TCIMReference* fOwner;  // the handle that made this
  const TContainer* fContainer;
  TCIMClass* fClass;
  std::vector<std::pair<std::string, TCIMValue>> fBindings;  // by the bytes of the names
  mutable ICIMElement* fElement;                             // once found
};
