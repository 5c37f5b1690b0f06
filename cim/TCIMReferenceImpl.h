#pragma once

#include <string>
#include <string_view>

#include "cim/TKeyBinding.h"
#include "zelcore/TCIMReference.h"
#include "zelcore/detail/Export.h"

class TCIMInstance;
class TCIMPropertyDecl;
class TPathText;

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
  // The same by the name of `decl`, which is that of the class.
  void Bind(const TCIMPropertyDecl& decl, TCIMValue&& value);
  void Reserve(std::size_t keys) { fBindings.reserve(keys); }
  const TKeyBindings& KeyBindings() const { return fBindings; }
  bool HasKeyBindings() const { return !fBindings.empty(); }
  std::string GetPath() const;
  void AppendPath(TPathText& text) const;
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
  static void CheckBinding(const TCIMPropertyDecl& decl, const std::string& name,
                           const TCIMValue& value);
  void Insert(std::string_view name, TCIMValue&& value);

  TCIMReference* fOwner;  // the handle that holds this
  const TContainer* fContainer;
  TCIMClass* fClass;
  TKeyBindings fBindings;
  mutable TCIMInstance* fElement;  // once found; not owned
};
