#include "xml/DeclarationStates.h"

#include "zelcore/TCIMQualifier.h"
#include "zelcore/TContainer.h"
#include "zelcore/detail/Ascii.h"

using zelcore::detail::EqualsIgnoringAsciiCase;

namespace {

using TCIMType = TCIMValue::TCIMType;

struct TScopeRow {
  std::string_view attribute;
  TCIMQualifierDecl::EScope bit;
};

// The scopes method, parameter and indication have no bit.
constexpr TScopeRow kScopes[] = {
    {"class",       TCIMQualifierDecl::ScopeClass      },
    {"association", TCIMQualifierDecl::ScopeAssociation},
    {"property",    TCIMQualifierDecl::ScopeProperty   },
    {"reference",   TCIMQualifierDecl::ScopeReference  },
};

}  // namespace

void TCIMXMLParser::TStateQualifierDeclaration::HandleAttrs(TCIMXMLParser&,
                                                            const TAttributes& attributes) {
  fName.clear();
  fType = TCIMType::TypeNone;
  fMaxArraySize = 0;
  fValue.reset();
  fFlavor = TCIMQualifierDecl::FlavorOverridable | TCIMQualifierDecl::FlavorToSubclass;
  fScope = TCIMQualifierDecl::ScopeNone;
  fIsArray.reset();
  fHasArraySize = fHasScope = false;
  for (const TAttribute& attribute : attributes) {
    if (attribute.name == "isarray") fIsArray = ConvertBool(attribute.value);
    if (HandleArraySize(attribute, fMaxArraySize)) fHasArraySize = true;
    HandleCIMName(attribute, fName) || HandleCIMType(attribute, fType) ||
        HandleQualifierFlavor(attribute, fFlavor);
  }
}

void TCIMXMLParser::TStateQualifierDeclaration::StartElement(TCIMXMLParser& parser,
                                                             std::string_view name,
                                                             const TAttributes& attributes) {
  const bool isScope = EqualsIgnoringAsciiCase(name, "scope");
  if (!isScope && !fHasScope) parser.FatalError("Expected SCOPE element");
  if (isScope && fHasScope) RefuseElement(parser, name);
  fHasScope = true;
  TTableState::StartElement(parser, name, attributes);
}

void TCIMXMLParser::TStateQualifierDeclaration::EndElement(TCIMXMLParser& parser,
                                                           std::string& name) {
  const bool isArray = fIsArray.value_or(fValue && fValue->IsArray());
  if ((fValue && fValue->IsArray() != isArray) || (fHasArraySize && !isArray)) {
    parser.FatalError("Incompatible attributes");
  }
  if (!fValue) fValue.emplace(isArray ? ArrayOf(fType) : fType, fMaxArraySize);
  parser.fContainer.AllocateQualifierDecl(fName, *fValue, fScope, fFlavor)->AddToContainer();
  TTableState::EndElement(parser, name);
}

void TCIMXMLParser::TStateScope::HandleAttrs(TCIMXMLParser&, const TAttributes& attributes) {
  for (const TAttribute& attribute : attributes) {
    for (const TScopeRow& row : kScopes) {
      if (attribute.name == row.attribute && ConvertBool(attribute.value)) {
        fDeclaration.AddScope(row.bit);
      }
    }
  }
}

void TCIMXMLParser::TStateQualifier::HandleAttrs(TCIMXMLParser& parser,
                                                 const TAttributes& attributes) {
  std::string name;
  TCIMType type = TCIMType::TypeNone;  // without effect: the declaration's holds
  fPropagated = false;
  for (const TAttribute& attribute : attributes) {
    HandleCIMName(attribute, name) || HandleCIMType(attribute, type) ||
        HandlePropagated(attribute, fPropagated);
  }
  fDecl = LookUp("qualifier", name, [&] { return parser.fContainer.GetQualifierDecl(name); });
  fType = fDecl->GetType();
  fValue.reset();
  fFlavor = fDecl->GetFlavor();
  for (const TAttribute& attribute : attributes) HandleQualifierFlavor(attribute, fFlavor);
}

void TCIMXMLParser::TStateQualifier::EndElement(TCIMXMLParser& parser, std::string& name) {
  // A VALUE where an array is declared, or the other way round, has no value of the declared type.
  if (!fValue || fValue->GetType() != fType) fValue.emplace(fType, 0);
  if (ICIMAllowQualifiers* const element = fTarget.GetQualified()) {
    auto qualifier = std::make_unique<TCIMQualifier>(*fDecl, *fValue, fFlavor);
    qualifier->SetPropagated(fPropagated);
    element->AddQualifier(*qualifier);
    const bool isTaken = element->GetQualifier(qualifier->GetName()) == qualifier.get();
    if (isTaken) qualifier.release();
  }
  TTableState::EndElement(parser, name);
}

void TCIMXMLParser::TStateClass::HandleAttrs(TCIMXMLParser& parser, const TAttributes& attributes) {
  std::string name;
  std::string superClassName;
  TCIMClass* superClass = nullptr;
  for (const TAttribute& attribute : attributes) {
    HandleCIMName(attribute, name) || HandleSuperClass(attribute, superClassName);
  }
  if (!superClassName.empty()) superClass = parser.fContainer.GetClass(superClassName);
  std::unique_ptr<TCIMClass> cls(parser.fContainer.AllocateClass(name, superClass));
  fClass = cls.get();
  fParent.Hold(std::move(cls));
}

void TCIMXMLParser::TStateMethod::EndElement(TCIMXMLParser& parser, std::string& name) {
  if (fOpenElements == 0) {
    TParseState::EndElement(parser, name);
  } else {
    --fOpenElements;
  }
}

void TCIMXMLParser::TStatePropertyDecl::HandleAttrs(TCIMXMLParser&, const TAttributes& attributes) {
  fAttributes.Read(attributes);
  const TCIMType type = fAttributes.GetType();
  Declare(fIsArray ? TCIMValue(ArrayOf(type), fAttributes.arraySize) : TCIMValue(type, 0));
}

void TCIMXMLParser::TStatePropertyReferenceDecl::HandleAttrs(TCIMXMLParser& parser,
                                                             const TAttributes& attributes) {
  fAttributes.Read(attributes);
  fAttributes.GetType();  // without effect, unless it is no type
  TCIMValue value(TCIMType::TypeReference, 0);
  if (!fAttributes.referenceClass.empty()) {
    value.SetReferencedClass(*parser.fContainer.GetClass(std::string(fAttributes.referenceClass)));
  }
  Declare(value);
}

void TCIMXMLParser::TStatePropertyDecl::Declare(const TCIMValue& value) {
  fDecl =
      std::make_unique<TCIMPropertyDecl>(std::string(fAttributes.name), fClass.GetClass(), value);
  fType = value.GetType();
  fMaxArraySize = value.GetMaxArraySize();
  fValue.reset();
}

void TCIMXMLParser::TStatePropertyDecl::EndElement(TCIMXMLParser& parser, std::string& name) {
  if (fValue) fDecl->SetValue(*fValue);
  fDecl->AddToContainer();
  fDecl.release();
  TTableState::EndElement(parser, name);
}
