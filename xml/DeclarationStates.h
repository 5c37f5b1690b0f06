#pragma once

#include <memory>

#include "xml/DocumentStates.h"
#include "zelcore/TCIMClass.h"
#include "zelcore/TCIMPropertyDecl.h"

// Qualifier declarations, classes and what stands in them.

class TCIMXMLParser::TStateQualifierDeclaration : public TTableState, public TValueSlot {
 public:
  explicit TStateQualifierDeclaration(TCIMXMLParser&) : TTableState(kChildren) {}
  static const TChildRule kChildren[];
  void StartElement(TCIMXMLParser& parser, std::string_view name,
                    const TAttributes& attributes) override;
  void EndElement(TCIMXMLParser& parser, std::string& name) override;
  void HandleAttrs(TCIMXMLParser& parser, const TAttributes& attributes) override;

  void AddScope(TCIMQualifierDecl::EScope scope) { fScope = fScope | scope; }

 private:
  std::string fName;
  TCIMQualifierDecl::EFlavor fFlavor = TCIMQualifierDecl::FlavorNone;
  TCIMQualifierDecl::EScope fScope = TCIMQualifierDecl::ScopeNone;
  std::optional<bool> fIsArray;  // as stated
  bool fHasArraySize = false;
  bool fHasScope = false;
};

class TCIMXMLParser::TStateScope : public TTableState {
 public:
  explicit TStateScope(TCIMXMLParser& parser)
      : TTableState(kNoChildren), fDeclaration(parser.CurrentAs<TStateQualifierDeclaration>()) {}
  void HandleAttrs(TCIMXMLParser& parser, const TAttributes& attributes) override;

 private:
  TStateQualifierDeclaration& fDeclaration;
};

class TCIMXMLParser::TStateQualifier : public TTableState, public TValueSlot {
 public:
  explicit TStateQualifier(TCIMXMLParser& parser)
      : TTableState(kChildren), fTarget(parser.CurrentAs<IQualifierTarget>()) {}
  static const TChildRule kChildren[];
  void HandleAttrs(TCIMXMLParser& parser, const TAttributes& attributes) override;
  void EndElement(TCIMXMLParser& parser, std::string& name) override;

 private:
  IQualifierTarget& fTarget;
  const TCIMQualifierDecl* fDecl = nullptr;
  TCIMQualifierDecl::EFlavor fFlavor = TCIMQualifierDecl::FlavorNone;
  bool fPropagated = false;
};

class TCIMXMLParser::TStateClass : public TTableState, public IQualifierTarget {
 public:
  explicit TStateClass(TCIMXMLParser& parser)
      : TTableState(kChildren), fParent(parser.CurrentAs<TObjectState>()) {}
  static const TChildRule kChildren[];
  void HandleAttrs(TCIMXMLParser& parser, const TAttributes& attributes) override;
  ICIMAllowQualifiers* GetQualified() override { return fClass; }
  TCIMClass& GetClass() const { return *fClass; }

 private:
  TObjectState& fParent;
  TCIMClass* fClass = nullptr;
};

// A method with all that stands in it: read and dropped.
class TCIMXMLParser::TStateMethod : public TParseState {
 public:
  explicit TStateMethod(TCIMXMLParser&) {}
  void StartElement(TCIMXMLParser&, std::string_view, const TAttributes&) override {
    ++fOpenElements;
  }
  void EndElement(TCIMXMLParser& parser, std::string& name) override;

 private:
  unsigned int fOpenElements = 0;
};

class TCIMXMLParser::TStatePropertyDecl : public TTableState,
                                          public TValueSlot,
                                          public IQualifierTarget {
 public:
  explicit TStatePropertyDecl(TCIMXMLParser& parser)
      : TStatePropertyDecl(parser, kChildren, false) {}
  static const TChildRule kChildren[];
  void HandleAttrs(TCIMXMLParser& parser, const TAttributes& attributes) override;
  void EndElement(TCIMXMLParser& parser, std::string& name) override;
  ICIMAllowQualifiers* GetQualified() override { return fDecl.get(); }

 protected:
  TStatePropertyDecl(TCIMXMLParser& parser, const TChildRule* children, bool isArray)
      : TTableState(children), fClass(parser.CurrentAs<TStateClass>()), fIsArray(isArray) {}
  // Starts the declaration named in the attributes, with a NULL value of its type.
  void Declare(const TCIMValue& value);

  TPropertyAttributes fAttributes;

 private:
  TStateClass& fClass;
  const bool fIsArray;
  std::unique_ptr<TCIMPropertyDecl> fDecl;
};

class TCIMXMLParser::TStatePropertyArrayDecl : public TStatePropertyDecl {
 public:
  explicit TStatePropertyArrayDecl(TCIMXMLParser& parser)
      : TStatePropertyDecl(parser, kChildren, true) {}
  static const TChildRule kChildren[];
};

class TCIMXMLParser::TStatePropertyReferenceDecl : public TStatePropertyDecl,
                                                   public IReferenceSlot {
 public:
  explicit TStatePropertyReferenceDecl(TCIMXMLParser& parser)
      : TStatePropertyDecl(parser, kChildren, false) {}
  static const TChildRule kChildren[];
  void HandleAttrs(TCIMXMLParser& parser, const TAttributes& attributes) override;
  void TakeReference(TCIMXMLParser&, TCIMReference&& reference) override {
    Take(TCIMValue(std::move(reference)));
  }
};
