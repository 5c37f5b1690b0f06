#pragma once

#include <array>
#include <optional>
#include <string_view>

#include "xml/TCIMXMLParser.h"
#include "zelcore/TCIMReference.h"
#include "zelcore/detail/Fail.h"

class ICIMAllowQualifiers;

inline TCIMValue::TCIMType ArrayOf(TCIMValue::TCIMType type) {
  return static_cast<TCIMValue::TCIMType::ECIMType>(type | TCIMValue::TCIMType::TypeArray);
}

// What an open element accepts and builds.
class TCIMXMLParser::TParseState {
 public:
  virtual ~TParseState() = default;
  virtual void StartElement(TCIMXMLParser&, std::string_view /*name*/, const TAttributes&) {}
  // Takes this state off the stack. Overriders finish their work first and call this last.
  virtual void EndElement(TCIMXMLParser& parser, std::string& name);
  virtual void HandleAttrs(TCIMXMLParser&, const TAttributes&) {}
  // What HandleAttrs() does for nothing but the CLASSNAME of a class that is remembered.
  virtual void StartOfClass(TCIMXMLParser&, std::string_view /*className*/, TCIMClass&) {}
  // The text of a child that is called fAwaited.leaf: what the child's state would do with it.
  virtual void TakeLeaf(TCIMXMLParser&, std::string_view /*text*/) {}
  // Starts or reads the child that stands `ahead`, if it is written as one before.
  virtual EKnown TakeKnown(TCIMXMLParser&, TAhead& /*ahead*/) { return EKnown::kNothing; }

  // Only references in the keys of references open more than a dozen elements at once. Each level
  // takes two to four: at least 60 references fit into each other.
  static constexpr std::size_t kMaxOpenStates = 256;

 protected:
  TAwaited fAwaited{false, {}, false, false};
  bool fIsOfClass = false;  // CLASSNAME is all that counts of its attributes

 private:
  friend class TCIMXMLParser;
  friend class TTableState;
  std::unique_ptr<TParseState>* fHome = nullptr;  // its owner
  std::string fName;                              // of the element, as it was written last
};

// One child that a state accepts, by its lower-case name. A table ends with an empty rule.
struct TCIMXMLParser::TChildRule {
  std::string_view name;
  std::unique_ptr<TParseState> (*make)(TCIMXMLParser& parser);
};

// A state whose children stand in a table. A finished child waits here for the next element of its
// kind; so a state has one parent for life, and asks for the parent's role once, when it is made.
// HandleAttrs() must start it afresh.
class TCIMXMLParser::TTableState : public TParseState {
 public:
  explicit TTableState(const TChildRule* children) : fChildren(children) {}
  static const TChildRule kNoChildren[];
  void StartElement(TCIMXMLParser& parser, std::string_view name,
                    const TAttributes& attributes) override;
  // Knows the child before by its name, when it has no attributes, or names a class that has been
  // met.
  EKnown TakeKnown(TCIMXMLParser& parser, TAhead& ahead) override;

 protected:
  static void Enter(TCIMXMLParser& parser, TParseState& child);
  [[noreturn]] static void RefuseElement(TCIMXMLParser& parser, std::string_view name);

 private:
  static constexpr std::size_t kMaxChildren = 6;

  std::unique_ptr<TParseState>& FindChild(TCIMXMLParser& parser, std::string_view name);

  const TChildRule* fChildren;
  std::array<std::unique_ptr<TParseState>, kMaxChildren> fChildStates;  // by rule
  std::unique_ptr<TParseState>* fLastChild = &fChildStates.front();
};

template <class TState>
std::unique_ptr<TCIMXMLParser::TParseState> TCIMXMLParser::Make(TCIMXMLParser& parser) {
  return std::make_unique<TState>(parser);
}

// Where VALUE and VALUE.ARRAY leave their value.
struct TCIMXMLParser::TValueSlot {
  virtual void Take(TCIMValue&& value) { fValue.emplace(std::move(value)); }
  // The text of a VALUE.
  virtual void TakeText(TCIMXMLParser& parser, std::string_view text) {
    Take(parser.ParseValue(fType, text));
  }

  TCIMValue::TCIMType fType = TCIMValue::TCIMType::TypeNone;  // of the value expected
  unsigned int fMaxArraySize = 0;
  std::optional<TCIMValue> fValue;

 protected:
  ~TValueSlot() = default;
};

class TCIMXMLParser::IQualifierTarget {
 public:
  // Null: qualifiers are read and dropped here.
  virtual ICIMAllowQualifiers* GetQualified() = 0;

 protected:
  ~IQualifierTarget() = default;
};

// Where VALUE.REFERENCE leaves its path.
class TCIMXMLParser::IReferenceSlot {
 public:
  virtual void TakeReference(TCIMXMLParser& parser, TCIMReference&& reference) = 0;

 protected:
  ~IReferenceSlot() = default;
};

// Where KEYVALUE leaves its text.
class TCIMXMLParser::IKeySlot : public IReferenceSlot {
 public:
  virtual void TakeKeyText(TCIMXMLParser& parser, std::string_view text) = 0;

 protected:
  ~IKeySlot() = default;
};

// Where CLASSNAME and INSTANCENAME leave what they name. By default the name is dropped.
class TCIMXMLParser::IPathSlot {
 public:
  virtual void TakeClassName(TCIMXMLParser&, const std::string& /*name*/) {}
  virtual void TakeInstanceName(TCIMXMLParser&, TCIMReference&&) {}

 protected:
  ~IPathSlot() = default;
};

// The attributes that properties have in common.
struct TCIMXMLParser::TPropertyAttributes {
  void Read(const TAttributes& attributes);

  // TypeNone where none is given. Throws zelStatusTypeMismatch for a name that is no type's.
  TCIMValue::TCIMType GetType() const;

  std::string_view name;
  std::string_view type;
  unsigned int arraySize = 0;
  std::string_view referenceClass;
  // Without effect: a document writes a class's own properties only.
  std::string_view classOrigin;
  bool propagated = false;
};

// What `lookUp` returns; its failure is logged before it passes on.
template <class TLookUp>
auto TCIMXMLParser::LookUp(const char* kind, std::string_view name, TLookUp&& lookUp) {
  try {
    return lookUp();
  } catch (const TZELException&) {
    zelcore::detail::LogCore(
        zelLogError, zelcore::detail::Text("TCIMXMLParser: Couldn't find ", kind, " ", name));
    throw;
  }
}
