#pragma once

#include <map>
#include <string>

#include "zelcore/TCIMReference.h"
#include "zelcore/detail/Export.h"

class TCIMInstance;

class ZEL_API TCIMReferenceImpl {
 public:
  TCIMReferenceImpl(TCIMReference* owner, const TContainer* container);
  TCIMReferenceImpl(TCIMReference* owner, const TCIMReferenceImpl& other);

  TCIMReference* GetOwner() const { return fOwner; }
  void SetOwner(TCIMReference* owner) { fOwner = owner; }

  void SetContainer(TContainer* container) { fContainer = container; }
  void Clear();
  void SetPath(const std::string& path);

  TCIMClass* GetClass() const;
  void SetClassName(const std::string& name);
  void SetClass(TCIMClass& cls);

  void AddKeyValue(const std::string& name, const TCIMValue& value);
  void AddKeyValue(const std::string& name, TCIMValue&& value);
  const std::map<std::string, TCIMValue>& EnumerateKeyBindings() const { return fBindings; }
  bool HasKeyBindings() const { return !fBindings.empty(); }
  std::string GetPath() const;
  void AppendPath(std::string& text) const;
  // `path` is the handle.
  ICIMElement* GetCIMElement(const TCIMReference& path) const;
  // The instance that GetCIMElement() would return, or null; nothing is remembered.
  TCIMInstance* FindInstance(const TCIMReference& path) const;
  // What GetCIMElement() has found, or null.
  const TCIMInstance* Remembered() const { return fElement; }

  bool operator==(const TCIMReferenceImpl& other) const;
  bool operator<(const TCIMReferenceImpl& other) const;

 private:
  void CheckKeyValue(const std::string& name, const TCIMValue& value) const;

  TCIMReference* fOwner;  // the handle that holds this
  const TContainer* fContainer;
  TCIMClass* fClass;
  std::map<std::string, TCIMValue> fBindings;
  mutable TCIMInstance* fElement;  // once found; not owned
};
