#include "xml/PathStates.h"

#include <algorithm>

#include "zelcore/TCIMClass.h"
#include "zelcore/TCIMPropertyDecl.h"
#include "zelcore/TContainer.h"

void TCIMXMLParser::TStateLocalNamespacePath::StartElement(TCIMXMLParser& parser,
                                                           std::string_view name,
                                                           const TAttributes& attributes) {
  TTableState::StartElement(parser, name, attributes);
  fHasNamespace = true;
}

void TCIMXMLParser::TStateLocalNamespacePath::EndElement(TCIMXMLParser& parser, std::string& name) {
  if (!fHasNamespace) parser.FatalError("Unexpected at least 1 NAMESPACE element");
  TTableState::EndElement(parser, name);
}

void TCIMXMLParser::TStateClassName::HandleAttrs(TCIMXMLParser& parser,
                                                 const TAttributes& attributes) {
  std::string name;
  for (const TAttribute& attribute : attributes) HandleCIMName(attribute, name);
  // The class need not be there yet: the path before a CLASS names what is about to be declared.
  fParent.TakeClassName(parser, name);
}

void TCIMXMLParser::TStateInstanceName::HandleAttrs(TCIMXMLParser& parser,
                                                    const TAttributes& attributes) {
  fClassName.clear();
  fHasKeys = false;
  for (const TAttribute& attribute : attributes) HandleClassName(attribute, fClassName);
  fClass = parser.fContainer.FindClass(fClassName);
  if (!fClass) parser.FatalError("Couldn't find class name " + fClassName);
  fReference.emplace(&parser.fContainer);
  fReference->SetClass(*fClass);
}

void TCIMXMLParser::TStateInstanceName::TakeKeyText(TCIMXMLParser& parser, std::string_view text) {
  for (const std::string& key : fClass->EnumerateKeyNames()) {
    Bind(key, parser.ParseValue(fClass->GetPropertyDecl(key)->GetType(), text));
  }
}

void TCIMXMLParser::TStateInstanceName::TakeReference(TCIMXMLParser&, TCIMReference&& reference) {
  for (const std::string& key : fClass->EnumerateKeyNames()) Bind(key, TCIMValue(reference));
}

bool TCIMXMLParser::TStateInstanceName::HasKey(const std::string& name) const {
  const std::vector<std::string> keys = fClass->EnumerateKeyNames();
  return std::find(keys.begin(), keys.end(), name) != keys.end();
}

void TCIMXMLParser::TStateInstanceName::Bind(const std::string& name, TCIMValue&& value) {
  fReference->AddKeyValue(name, std::move(value));
  fHasKeys = true;
}

void TCIMXMLParser::TStateInstanceName::EndElement(TCIMXMLParser& parser, std::string& name) {
  // Without any key this names the class itself, as long as the class could have instances.
  if (!fHasKeys && !parser.fContainer.isDiffContainer() && fClass->EnumerateKeyNames().empty()) {
    parser.FatalError("Class " + fClassName + " doesn't have any key properties");
  }
  fParent.TakeInstanceName(parser, std::move(*fReference));
  TTableState::EndElement(parser, name);
}

void TCIMXMLParser::TStateKeyBinding::HandleAttrs(TCIMXMLParser&, const TAttributes& attributes) {
  fName.clear();
  fValue.reset();
  for (const TAttribute& attribute : attributes) HandleCIMName(attribute, fName);
  fDecl = fInstance.GetClass().FindPropertyDecl(fName);
}

void TCIMXMLParser::TStateKeyBinding::TakeKeyText(TCIMXMLParser& parser, std::string_view text) {
  if (fDecl) fValue.emplace(parser.ParseValue(fDecl->GetType(), text));
}

void TCIMXMLParser::TStateKeyBinding::TakeReference(TCIMXMLParser&, TCIMReference&& reference) {
  fValue.emplace(std::move(reference));
}

void TCIMXMLParser::TStateKeyBinding::EndElement(TCIMXMLParser& parser, std::string& name) {
  const bool needsKey = !parser.fContainer.isDiffContainer();
  if (!fDecl && needsKey) {
    parser.FatalError("Couldn't find property name " + fName + " in class " +
                      fInstance.GetClass().GetName());
  }
  if (fDecl && fValue && (needsKey || fInstance.HasKey(fDecl->GetName()))) {
    // By the declaration's spelling: so the path equals that of the instance that it names.
    fInstance.Bind(fDecl->GetName(), std::move(*fValue));
  }
  TTableState::EndElement(parser, name);
}

void TCIMXMLParser::TStateKeyValue::EndElement(TCIMXMLParser& parser, std::string& name) {
  fParent.TakeKeyText(parser, parser.fText.Get());
  TTableState::EndElement(parser, name);
}

void TCIMXMLParser::TStateValueReference::TakeClassName(TCIMXMLParser& parser,
                                                        const std::string& name) {
  TCIMReference reference(&parser.fContainer);
  reference.SetClassName(name);
  fParent.TakeReference(parser, std::move(reference));
}

void TCIMXMLParser::TStateValueReference::TakeInstanceName(TCIMXMLParser& parser,
                                                           TCIMReference&& name) {
  fParent.TakeReference(parser, std::move(name));
}
