#pragma once

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "xml/TClassMemo.h"
#include "xml/TGatheredText.h"
#include "xml/TXmlParser.h"
#include "zelcore/TCIMQualifierDecl.h"
#include "zelcore/TCIMValue.h"
#include "zelcore/detail/Export.h"

class TCIMClass;
class TContainer;
class TZELException;

// Reads one CIM-XML document into a container: CIM 2.0 and 2.8 by DTD 2.0 and 2.1, declarations or
// CreateClass and CreateInstance requests. Reading is strict: qualifier declarations, superclasses
// and referenced classes must have been read before what uses them, and the first failure ends the
// document with a TZELException, after a line in the log. What was added before it stays.
//
// The grammar is a stack of states, one per open element. Each state's table names the child
// elements that it accepts and their states: see StateTables.cpp for the whole grammar on one page.
class ZEL_API TCIMXMLParser : public TXmlParser {
 public:
  class TParseState;
  using TAttributeMap = std::map<std::string, std::string>;

  // `container` must outlive the parser.
  explicit TCIMXMLParser(TContainer& container);
  ~TCIMXMLParser() override;
  TCIMXMLParser(const TCIMXMLParser&) = delete;
  TCIMXMLParser& operator=(const TCIMXMLParser&) = delete;

  // The classes that declarations have added, in the order in which the document closed them.
  std::vector<TCIMClass*> GetClassesCollected() const { return fClassesCollected; }

  // Kept for callers; nothing in the library depends on it.
  void SetUX402Mode() { fUX402Mode = true; }

  void StartElement(const char* name, TAttributeMap& attributes) override;
  void EndElement(const char* name) override;
  void processingInstruction(const char* target, const char* data) override;
  void characters(const char* text, unsigned int length) override;
  void notationDecl(const char* name, const char* publicId, const char* systemId) override;
  // Log the message with the line and throw zelStatusInvalidSpecificationDocument.
  [[noreturn]] void FatalError(const char* message) override;
  [[noreturn]] void FatalError(const std::string& message);

  // Each takes one attribute. True: the attribute is its own, and its value has been stored.
  static bool HandleCIMName(const TAttribute& attribute, std::string& name);
  // Throws zelStatusTypeMismatch for a name that is no type's.
  static bool HandleCIMType(const TAttribute& attribute, TCIMValue::TCIMType& type);
  // Sets or clears the one bit.
  static bool HandleQualifierFlavor(const TAttribute& attribute,
                                    TCIMQualifierDecl::EFlavor& flavor);
  static bool HandleClassOrigin(const TAttribute& attribute, std::string& classOrigin);
  static bool HandlePropagated(const TAttribute& attribute, bool& propagated);
  static bool HandleArraySize(const TAttribute& attribute, unsigned int& arraySize);
  static bool HandleSuperClass(const TAttribute& attribute, std::string& superClass);
  static bool HandleClassName(const TAttribute& attribute, std::string& className);
  static bool HandleReferenceClass(const TAttribute& attribute, std::string& referenceClass);

  // "true" or "false"; everything else, capitals included, is false.
  static bool ConvertBool(std::string_view text);
  // Decimal; 0 for what is no number.
  static unsigned int ConvertUnsignedInt(std::string_view text);

  // `text` as a value of `type`. A bad datetime becomes the first second of 1970, with a line in
  // the log; what cannot be read at all becomes NULL of that type.
  TCIMValue ParseValue(TCIMValue::TCIMType type, std::string_view text);

 protected:
  void StartTag(std::string_view name, const TAttributes& attributes) override;
  void TextRun(std::string_view text) override;
  void Leaf(std::string_view text) override;
  EKnown TakeKnown(TAhead& ahead) override;

  struct TChildRule;
  class TTableState;

  // What a state may be to its children.
  struct TValueSlot;
  class IQualifierTarget;
  class IReferenceSlot;
  class IKeySlot;
  class IPathSlot;
  class TObjectState;
  class TPathState;
  struct TPropertyAttributes;

  class TStateStart;
  class TStateCIM;
  class TStateDeclaration;
  class TStateDeclGroup;
  class TStateDeclGroupWithName;
  class TStateDeclGroupWithPath;
  class TStateQualifierDeclaration;
  class TStateScope;
  class TStateValue;
  class TStateValueArray;
  class TStateValueReference;
  class TStateValueRefArray;
  class TStateValueObject;
  class TStateValueNamedInstance;
  class TStateValueNamedObject;
  class TStateValueObjectWithPath;
  class TStateValueObjectWithLocalPath;
  class TStateNamespacePath;
  class TStateLocalNamespacePath;
  class TStateHost;
  class TStateNamespace;
  class TStateObjectPath;
  class TStateClassPath;
  class TStateLocalClassPath;
  class TStateClassName;
  class TStateInstancePath;
  class TStateLocalInstancePath;
  class TStateInstanceName;
  class TStateKeyBinding;
  class TStateKeyValue;
  class TStateClass;
  class TStateInstance;
  class TStateQualifier;
  class TStatePropertyDecl;
  class TStatePropertyArrayDecl;
  class TStatePropertyReferenceDecl;
  class TStateProperty;
  class TStatePropertyArray;
  class TStatePropertyReference;
  class TStateMethod;
  class TStateMessage;
  class TStateMultiReq;
  class TStateSimpleReq;
  class TStateIMethodCall;
  class TStateIParamValue;

  template <class TState>
  static std::unique_ptr<TParseState> Make(TCIMXMLParser& parser);

  void Push(TParseState& state);
  void Pop();
  void AwaitChildren();

  // Logs a failure at the current element, and throws it anew.
  [[noreturn]] void PassOn(const TZELException& failure);

  template <class TLookUp>
  static auto LookUp(const char* kind, std::string_view name, TLookUp&& lookUp);

  // The current state as what a new child needs it to be.
  template <class TRole>
  TRole& CurrentAs() {
    auto* const role = dynamic_cast<TRole*>(fStates.back());
    if (!role) FatalError("Parser state corrupt");
    return *role;
  }

 private:
  TContainer& fContainer;
  const std::unique_ptr<TParseState> fStart;  // each state owns those of its children
  std::vector<TParseState*> fStates;          // of the open elements
  TGatheredText fText;                        // of the current state's element
  TClassMemo fClassMemo;                      // of instances and of references to them
  std::vector<TCIMClass*> fClassesCollected;
  bool fUX402Mode = false;
};
