#pragma once

#include <unordered_map>
#include <vector>

#include "xml/TParseState.h"

class TCIMPropertyDecl;

// Namespaces, which are read and dropped, and what stands in references: names of classes and of
// instances.

class TCIMXMLParser::TStateNamespacePath : public TTableState {
 public:
  explicit TStateNamespacePath(TCIMXMLParser&) : TTableState(kChildren) {}
  static const TChildRule kChildren[];
};

class TCIMXMLParser::TStateLocalNamespacePath : public TTableState {
 public:
  explicit TStateLocalNamespacePath(TCIMXMLParser&) : TTableState(kChildren) {}
  static const TChildRule kChildren[];
  void StartElement(TCIMXMLParser& parser, std::string_view name,
                    const TAttributes& attributes) override;
  void EndElement(TCIMXMLParser& parser, std::string& name) override;
  void HandleAttrs(TCIMXMLParser&, const TAttributes&) override { fHasNamespace = false; }

 private:
  bool fHasNamespace = false;
};

class TCIMXMLParser::TStateHost : public TTableState {
 public:
  explicit TStateHost(TCIMXMLParser&) : TTableState(kNoChildren) {}
};

class TCIMXMLParser::TStateNamespace : public TTableState {
 public:
  explicit TStateNamespace(TCIMXMLParser&) : TTableState(kNoChildren) {}
};

// Hands the name inside it on.
class TCIMXMLParser::TPathState : public TTableState, public IPathSlot {
 public:
  TPathState(TCIMXMLParser& parser, const TChildRule* children)
      : TTableState(children), fParent(parser.CurrentAs<IPathSlot>()) {}
  void TakeClassName(TCIMXMLParser& parser, const std::string& name) override {
    fParent.TakeClassName(parser, name);
  }
  void TakeInstanceName(TCIMXMLParser& parser, TCIMReference&& name) override {
    fParent.TakeInstanceName(parser, std::move(name));
  }

 private:
  IPathSlot& fParent;
};

class TCIMXMLParser::TStateObjectPath : public TPathState {
 public:
  explicit TStateObjectPath(TCIMXMLParser& parser) : TPathState(parser, kChildren) {}
  static const TChildRule kChildren[];
};

class TCIMXMLParser::TStateClassPath : public TPathState {
 public:
  explicit TStateClassPath(TCIMXMLParser& parser) : TPathState(parser, kChildren) {}
  static const TChildRule kChildren[];
};

class TCIMXMLParser::TStateLocalClassPath : public TPathState {
 public:
  explicit TStateLocalClassPath(TCIMXMLParser& parser) : TPathState(parser, kChildren) {}
  static const TChildRule kChildren[];
};

class TCIMXMLParser::TStateInstancePath : public TPathState {
 public:
  explicit TStateInstancePath(TCIMXMLParser& parser) : TPathState(parser, kChildren) {}
  static const TChildRule kChildren[];
};

class TCIMXMLParser::TStateLocalInstancePath : public TPathState {
 public:
  explicit TStateLocalInstancePath(TCIMXMLParser& parser) : TPathState(parser, kChildren) {}
  static const TChildRule kChildren[];
};

class TCIMXMLParser::TStateClassName : public TTableState {
 public:
  explicit TStateClassName(TCIMXMLParser& parser)
      : TTableState(kNoChildren), fParent(parser.CurrentAs<IPathSlot>()) {}
  void HandleAttrs(TCIMXMLParser& parser, const TAttributes& attributes) override;

 private:
  IPathSlot& fParent;
};

class TCIMXMLParser::TStateInstanceName : public TTableState, public IKeySlot {
 public:
  explicit TStateInstanceName(TCIMXMLParser& parser)
      : TTableState(kChildren), fParent(parser.CurrentAs<IPathSlot>()) {
    fAwaited.known = fAwaited.keptTags = true;
    fIsOfClass = true;
  }
  static const TChildRule kChildren[];
  void HandleAttrs(TCIMXMLParser& parser, const TAttributes& attributes) override;
  void StartOfClass(TCIMXMLParser& parser, std::string_view className, TCIMClass& cls) override;
  EKnown TakeKnown(TCIMXMLParser& parser, TAhead& ahead) override;
  void EndElement(TCIMXMLParser& parser, std::string& name) override;

  // A key without a name is that of every key property.
  void TakeKeyText(TCIMXMLParser& parser, std::string_view text) override;
  void TakeReference(TCIMXMLParser& parser, TCIMReference&& reference) override;

  const TCIMClass& GetClass() const { return *fClass; }
  bool HasKey(const std::string& name) const;
  void Bind(const TCIMPropertyDecl& decl, TCIMValue&& value);
  // That `tags`, of a KEYBINDING and its KEYVALUE, bind the property to the text behind them.
  void Remember(TKnownTag&& tags, const TCIMPropertyDecl& decl);

 private:
  struct TKnownKey {
    TKnownTag tags;
    const TCIMPropertyDecl* decl = nullptr;
    TCIMValue::TCIMType type = TCIMValue::TCIMType::TypeNone;  // of it
  };
  using TKnownKeys = std::vector<TKnownKey>;

  IPathSlot& fParent;
  std::string fClassName;  // as the document spells it
  TCIMClass* fClass = nullptr;
  std::unordered_map<const TCIMClass*, TKnownKeys> fKeysOfClasses;
  TKnownKeys* fKeys = nullptr;  // of fClass, in the order in which they were met
  std::size_t fExpected = 0;    // the number of the next one
  std::optional<TCIMReference> fReference;
  bool fHasKeys = false;
};

class TCIMXMLParser::TStateKeyBinding : public TTableState, public IKeySlot {
 public:
  explicit TStateKeyBinding(TCIMXMLParser& parser)
      : TTableState(kChildren), fInstance(parser.CurrentAs<TStateInstanceName>()) {
    fAwaited.leaf = "KEYVALUE";
    fAwaited.keptTags = true;
  }
  static const TChildRule kChildren[];
  void HandleAttrs(TCIMXMLParser& parser, const TAttributes& attributes) override;
  void EndElement(TCIMXMLParser& parser, std::string& name) override;
  void TakeKeyText(TCIMXMLParser& parser, std::string_view text) override;
  void TakeLeaf(TCIMXMLParser& parser, std::string_view text) override;
  void TakeReference(TCIMXMLParser& parser, TCIMReference&& reference) override;

 private:
  TStateInstanceName& fInstance;
  TKnownTag fTag;   // of this element, as far as it is kept
  TKnownTag fTags;  // the same with that of the value behind; without text: there is none to know
  std::string fName;
  const TCIMPropertyDecl* fDecl = nullptr;  // null: the class has no such property
  std::optional<TCIMValue> fValue;
};

class TCIMXMLParser::TStateKeyValue : public TTableState {
 public:
  explicit TStateKeyValue(TCIMXMLParser& parser)
      : TTableState(kNoChildren), fParent(parser.CurrentAs<IKeySlot>()) {
    fAwaited.text = true;
  }
  void EndElement(TCIMXMLParser& parser, std::string& name) override;

 private:
  IKeySlot& fParent;
};

class TCIMXMLParser::TStateValueReference : public TTableState, public IPathSlot {
 public:
  explicit TStateValueReference(TCIMXMLParser& parser)
      : TTableState(kChildren), fParent(parser.CurrentAs<IReferenceSlot>()) {
    fAwaited.known = true;
  }
  static const TChildRule kChildren[];
  void TakeClassName(TCIMXMLParser& parser, const std::string& name) override;
  void TakeInstanceName(TCIMXMLParser& parser, TCIMReference&& name) override;

 private:
  IReferenceSlot& fParent;
};

class TCIMXMLParser::TStateValueRefArray : public TTableState {
 public:
  explicit TStateValueRefArray(TCIMXMLParser&) : TTableState(kChildren) {}
  static const TChildRule kChildren[];
};
