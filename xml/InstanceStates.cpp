#include "xml/InstanceStates.h"

#include <iterator>
#include <memory>

#include "zelcore/TContainer.h"

using TCIMType = TCIMValue::TCIMType;

void TCIMXMLParser::TStateInstance::HandleAttrs(TCIMXMLParser& parser, TAttributeMap& attributes) {
  fClassName.clear();
  for (const TAttribute& attribute : attributes) HandleClassName(attribute, fClassName);
  TCIMClass* const cls = LookUp("class", fClassName, [&](const std::string& name) {
    return parser.fContainer.GetClass(name);
  });
  std::unique_ptr<TCIMInstance> instance(parser.fContainer.AllocateInstance(cls));
  fInstance = instance.get();
  fParent.Hold(std::move(instance));
}

void TCIMXMLParser::TStateProperty::HandleAttrs(TCIMXMLParser& parser, TAttributeMap& attributes) {
  fAttributes.Read(attributes);
  fProperty = LookUp("property", fAttributes.name, [&](const std::string& name) {
    return fInstance.GetInstance().GetProperty(name);
  });
  fType = fProperty->GetType();
  fMaxArraySize = fAttributes.arraySize;
  fValue.reset();
  const TCIMType given = fAttributes.type;
  if (given != TCIMType::TypeNone && (fIsArray ? ArrayOf(given) : given) != fType) {
    parser.FatalError("Property type != property declaration type");
  }
}

void TCIMXMLParser::TStateProperty::TakeText(TCIMXMLParser& parser, const std::string& text) {
  if (fValue || !fProperty->SetFromText(text)) TValueSlot::TakeText(parser, text);
}

void TCIMXMLParser::TStateProperty::EndElement(TCIMXMLParser& parser, std::string& name) {
  if (fValue) fProperty->SetValue(std::move(*fValue));
  TTableState::EndElement(parser, name);
}

void TCIMXMLParser::TStateValue::EndElement(TCIMXMLParser& parser, std::string& name) {
  fSlot.TakeText(parser, parser.fText);
  TTableState::EndElement(parser, name);
}

void TCIMXMLParser::TStateValueArray::HandleAttrs(TCIMXMLParser&, TAttributeMap&) {
  fType = static_cast<TCIMType::ECIMType>(fSlot.fType & ~TCIMType::TypeArray);
  fElements.clear();
}

void TCIMXMLParser::TStateValueArray::EndElement(TCIMXMLParser& parser, std::string& name) {
  // Gathered in one vector for all, kept in one of their number.
  std::vector<TCIMValue> elements(std::make_move_iterator(fElements.begin()),
                                  std::make_move_iterator(fElements.end()));
  TCIMValue array;
  array.Set(fType, fSlot.fMaxArraySize, std::move(elements));
  fSlot.Take(std::move(array));
  TTableState::EndElement(parser, name);
}
