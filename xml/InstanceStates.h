#pragma once

#include <boost/shared_ptr.hpp>
#include <unordered_map>

#include "xml/DocumentStates.h"
#include "zelcore/TCIMInstance.h"
#include "zelcore/TCIMProperty.h"
#include "zelcore/detail/InPlace.h"

class TPropertyLayout;

// Instances, their properties, and values.

// Instances and their properties have no qualifiers: those that a document gives are dropped.
class TCIMXMLParser::TStateInstance : public TTableState, public IQualifierTarget {
 public:
  explicit TStateInstance(TCIMXMLParser& parser)
      : TTableState(kChildren), fParent(parser.CurrentAs<TObjectState>()) {
    fAwaited.known = fAwaited.keptTags = true;
    fIsOfClass = true;
  }
  static const TChildRule kChildren[];
  void HandleAttrs(TCIMXMLParser& parser, const TAttributes& attributes) override;
  void StartOfClass(TCIMXMLParser& parser, std::string_view className, TCIMClass& cls) override;
  EKnown TakeKnown(TCIMXMLParser& parser, TAhead& ahead) override;
  ICIMAllowQualifiers* GetQualified() override { return nullptr; }
  const TCIMInstance& GetInstance() const { return *fInstance; }
  TCIMProperty& GetProperty(std::size_t slot) const { return fProperties[slot]; }

  // That the tag just read starts `property`, which stands at `slot`.
  void Remember(const TKnownTag& tag, std::size_t slot, TStateProperty& property);

 private:
  struct TPropertyTag {
    TKnownTag tag;                    // without text: none has been read
    TStateProperty* state = nullptr;  // kept: no instance stands deep enough for another rule
    bool isArray = false;             // what its element is for, as its declaration
    bool isUsual = false;             // its element is spelled in capitals
    TCIMValue::TCIMType type = TCIMValue::TCIMType::TypeNone;  // declared
    unsigned int arraySize = 0;
    // The slot of the property that is expected behind it.
    std::size_t next = zelcore::detail::kNoSlot;
  };
  // The tags of the properties of one class: its instances are mostly written alike.
  struct TPropertyTags {
    boost::shared_ptr<const TPropertyLayout> layout;
    std::vector<TPropertyTag> bySlot;
    std::size_t first = zelcore::detail::kNoSlot;
  };

  std::size_t SlotOf(const TPropertyTag& known) const {
    return static_cast<std::size_t>(&known - fTags->bySlot.data());
  }
  TPropertyTag* FindKnown(const TAhead& ahead);
  bool TakeProperty(const TPropertyTag& known, TAhead& ahead);
  bool TakeScalar(const TPropertyTag& known, TCIMProperty& property, TAhead& ahead);
  bool TakeArray(const TPropertyTag& known, TCIMProperty& property, TAhead& ahead);

  TObjectState& fParent;
  const TCIMInstance* fInstance = nullptr;
  TCIMProperty* fProperties = nullptr;  // of it, by slot
  std::unordered_map<const TPropertyLayout*, TPropertyTags> fTagsOfClasses;
  TPropertyTags* fTags = nullptr;        // of this instance's class
  std::size_t* fExpected = nullptr;      // the slot of the next property, in fTags
  std::vector<TAhead::TText> fElements;  // of the array that is being read
  std::string fDecoded;                  // a text of it, or of the value
};

class TCIMXMLParser::TStateProperty : public TTableState,
                                      public TValueSlot,
                                      public IQualifierTarget {
 public:
  explicit TStateProperty(TCIMXMLParser& parser) : TStateProperty(parser, kChildren, false) {
    fAwaited.leaf = "VALUE";
  }
  static const TChildRule kChildren[];
  void HandleAttrs(TCIMXMLParser& parser, const TAttributes& attributes) override;
  // What HandleAttrs() does for attributes that name this property, of this type, and are right.
  void Start(TCIMProperty& property, TCIMValue::TCIMType type, unsigned int arraySize);
  unsigned int GetArraySize() const { return fMaxArraySize; }
  bool IsArray() const { return fIsArray; }
  TCIMValue::TCIMType GetType() const { return fType; }
  void Take(TCIMValue&& value) override;
  void TakeText(TCIMXMLParser& parser, std::string_view text) override;
  void TakeLeaf(TCIMXMLParser& parser, std::string_view text) override { TakeText(parser, text); }
  void EndElement(TCIMXMLParser& parser, std::string& name) override;
  ICIMAllowQualifiers* GetQualified() override { return nullptr; }

 protected:
  TStateProperty(TCIMXMLParser& parser, const TChildRule* children, bool isArray)
      : TTableState(children), fInstance(parser.CurrentAs<TStateInstance>()), fIsArray(isArray) {}

 private:
  TStateInstance& fInstance;
  const bool fIsArray;
  TPropertyAttributes fAttributes;
  TCIMProperty* fProperty = nullptr;
};

class TCIMXMLParser::TStatePropertyArray : public TStateProperty {
 public:
  explicit TStatePropertyArray(TCIMXMLParser& parser) : TStateProperty(parser, kChildren, true) {
    fAwaited.known = true;
  }
  static const TChildRule kChildren[];
};

class TCIMXMLParser::TStatePropertyReference : public TStateProperty, public IReferenceSlot {
 public:
  explicit TStatePropertyReference(TCIMXMLParser& parser)
      : TStateProperty(parser, kChildren, false) {
    fAwaited.known = true;
  }
  static const TChildRule kChildren[];
  void TakeReference(TCIMXMLParser&, TCIMReference&& reference) override {
    Take(TCIMValue(std::move(reference)));
  }
};

class TCIMXMLParser::TStateValue : public TTableState {
 public:
  explicit TStateValue(TCIMXMLParser& parser)
      : TTableState(kNoChildren), fSlot(parser.CurrentAs<TValueSlot>()) {
    fAwaited.text = true;
  }
  void EndElement(TCIMXMLParser& parser, std::string& name) override;

 private:
  TValueSlot& fSlot;
};

class TCIMXMLParser::TStateValueArray : public TTableState, public TValueSlot {
 public:
  explicit TStateValueArray(TCIMXMLParser& parser)
      : TTableState(kChildren), fSlot(parser.CurrentAs<TValueSlot>()) {
    fAwaited.leaf = "VALUE";
  }
  static const TChildRule kChildren[];
  void HandleAttrs(TCIMXMLParser& parser, const TAttributes& attributes) override;
  void EndElement(TCIMXMLParser& parser, std::string& name) override;
  void Take(TCIMValue&& element) override { fElements.push_back(std::move(element)); }
  void TakeText(TCIMXMLParser& parser, std::string_view text) override;
  void TakeLeaf(TCIMXMLParser& parser, std::string_view text) override { TakeText(parser, text); }

 private:
  TValueSlot& fSlot;
  std::vector<TCIMValue> fElements;
};
