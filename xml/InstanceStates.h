#pragma once

#include "xml/DocumentStates.h"
#include "zelcore/TCIMInstance.h"
#include "zelcore/TCIMProperty.h"

// Instances, their properties, and values.

// Instances and their properties have no qualifiers: those that a document gives are dropped.
class TCIMXMLParser::TStateInstance : public TTableState, public IQualifierTarget {
 public:
  explicit TStateInstance(TCIMXMLParser& parser)
      : TTableState(kChildren), fParent(parser.CurrentAs<TObjectState>()) {}
  static const TChildRule kChildren[];
  void HandleAttrs(TCIMXMLParser& parser, const TAttributes& attributes) override;
  ICIMAllowQualifiers* GetQualified() override { return nullptr; }
  const TCIMInstance& GetInstance() const { return *fInstance; }

 private:
  TObjectState& fParent;
  std::string fClassName;
  const TCIMInstance* fInstance = nullptr;
};

class TCIMXMLParser::TStateProperty : public TTableState,
                                      public TValueSlot,
                                      public IQualifierTarget {
 public:
  explicit TStateProperty(TCIMXMLParser& parser) : TStateProperty(parser, kChildren, false) {}
  static const TChildRule kChildren[];
  void HandleAttrs(TCIMXMLParser& parser, const TAttributes& attributes) override;
  void TakeText(TCIMXMLParser& parser, std::string_view text) override;
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
  explicit TStatePropertyArray(TCIMXMLParser& parser) : TStateProperty(parser, kChildren, true) {}
  static const TChildRule kChildren[];
};

class TCIMXMLParser::TStatePropertyReference : public TStateProperty, public IReferenceSlot {
 public:
  explicit TStatePropertyReference(TCIMXMLParser& parser)
      : TStateProperty(parser, kChildren, false) {}
  static const TChildRule kChildren[];
  void TakeReference(TCIMXMLParser&, TCIMReference&& reference) override {
    Take(TCIMValue(std::move(reference)));
  }
};

class TCIMXMLParser::TStateValue : public TTableState {
 public:
  explicit TStateValue(TCIMXMLParser& parser)
      : TTableState(kNoChildren), fSlot(parser.CurrentAs<TValueSlot>()) {
    fTakesText = true;
  }
  void EndElement(TCIMXMLParser& parser, std::string& name) override;

 private:
  TValueSlot& fSlot;
};

class TCIMXMLParser::TStateValueArray : public TTableState, public TValueSlot {
 public:
  explicit TStateValueArray(TCIMXMLParser& parser)
      : TTableState(kChildren), fSlot(parser.CurrentAs<TValueSlot>()) {}
  static const TChildRule kChildren[];
  void HandleAttrs(TCIMXMLParser& parser, const TAttributes& attributes) override;
  void EndElement(TCIMXMLParser& parser, std::string& name) override;
  void Take(TCIMValue&& element) override { fElements.push_back(std::move(element)); }
  void TakeText(TCIMXMLParser& parser, std::string_view text) override;

 private:
  TValueSlot& fSlot;
  std::vector<TCIMValue> fElements;
};
