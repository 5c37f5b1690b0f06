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
  virtual void StartElement(TCIMXMLParser&, std::string& /*name*/, TAttributeMap&) {}
  // Takes this state off the stack. Overriders finish their work first and call this last.
  virtual void EndElement(TCIMXMLParser& parser, std::string& name);
  virtual void HandleAttrs(TCIMXMLParser&, TAttributeMap&) {}

  bool TakesText() const { return fTakesText; }
  // A child's name. Most children are called as the one before.
  std::string& ToLowerCase(const char* name);

 protected:
  bool fTakesText = false;

 private:
  friend class TCIMXMLParser;
  friend class TTableState;
  boost::shared_ptr<TParseState>* fHome = nullptr;  // where it waits for the next such element
  std::string fName;                                // of the element
  std::string fChildAsWritten;
  std::string fChildName;
};

// One child that a state accepts, by its lower-case name. A table ends with an empty rule.
struct TCIMXMLParser::TChildRule {
  std::string_view name;
  boost::shared_ptr<TParseState> (*make)(TCIMXMLParser& parser);
};

// A state whose children stand in a table. A finished child waits here for the next element of its
// kind; so a state has one parent for life, and asks for the parent's role once, when it is made.
// HandleAttrs() must start it afresh.
class TCIMXMLParser::TTableState : public TParseState {
 public:
  explicit TTableState(const TChildRule* children) : fChildren(children) {}
  static const TChildRule kNoChildren[];
  void StartElement(TCIMXMLParser& parser, std::string& name, TAttributeMap& attributes) override;

 private:
  static constexpr std::size_t kMaxChildren = 6;

  const TChildRule* fChildren;
  std::array<boost::shared_ptr<TParseState>, kMaxChildren> fSpares;  // by rule
};

template <class TState>
boost::shared_ptr<TCIMXMLParser::TParseState> TCIMXMLParser::Make(TCIMXMLParser& parser) {
  return boost::shared_ptr<TParseState>(new TState(parser));
}

// Where VALUE and VALUE.ARRAY leave their value.
struct TCIMXMLParser::TValueSlot {
  virtual void Take(TCIMValue&& value) { fValue.emplace(std::move(value)); }
  // The text of a VALUE.
  virtual void TakeText(TCIMXMLParser& parser, const std::string& text) {
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
  virtual void TakeKeyText(TCIMXMLParser& parser, const std::string& text) = 0;

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
  void Read(const TAttributeMap& attributes);

  std::string name;
  TCIMValue::TCIMType type = TCIMValue::TCIMType::TypeNone;
  unsigned int arraySize = 0;
  std::string referenceClass;
  // Without effect: a document writes a class's own properties only.
  std::string classOrigin;
  bool propagated = false;
};

// What `lookUp` returns; its failure is logged before it passes on.
template <class TLookUp>
auto TCIMXMLParser::LookUp(const char* kind, const std::string& name, TLookUp&& lookUp) {
  try {
    return lookUp(name);
  } catch (const TZELException&) {
    zelcore::detail::LogCore(
        zelLogError, zelcore::detail::Text("TCIMXMLParser: Couldn't find ", kind, " ", name));
    throw;
  }
}
