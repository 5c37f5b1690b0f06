#include "xml/InstanceStates.h"

#include <iterator>
#include <memory>

#include "zelcore/TContainer.h"

using TCIMType = TCIMValue::TCIMType;

void TCIMXMLParser::TStateInstance::HandleAttrs(TCIMXMLParser& parser,
                                                const TAttributes& attributes) {
  fClassName.clear();
  for (const TAttribute& attribute : attributes) HandleClassName(attribute, fClassName);
  TCIMClass* const cls =
      LookUp("class", fClassName, [&] { return parser.fContainer.GetClass(fClassName); });
  std::unique_ptr<TCIMInstance> instance(parser.fContainer.AllocateInstance(cls));
  fInstance = instance.get();
  fParent.Hold(std::move(instance));
}

void TCIMXMLParser::TStateProperty::HandleAttrs(TCIMXMLParser& parser,
                                                const TAttributes& attributes) {
  fAttributes.Read(attributes);
  const TCIMInstance& instance = fInstance.GetInstance();
  fProperty = instance.FindPropertyNamed(fAttributes.name);
  if (!fProperty) {
    LookUp("property", fAttributes.name,
           [&] { return instance.GetProperty(std::string(fAttributes.name)); });
  }
  fType = fProperty->GetType();
  fMaxArraySize = fAttributes.arraySize;
  fValue.reset();
  const TCIMType given = fAttributes.type;
  if (given != TCIMType::TypeNone && (fIsArray ? ArrayOf(given) : given) != fType) {
    parser.FatalError("Property type != property declaration type");
  }
}

void TCIMXMLParser::TStateProperty::TakeText(TCIMXMLParser& parser, std::string_view text) {
  if (fValue || !fProperty->SetFromText(text)) TValueSlot::TakeText(parser, text);
}

void TCIMXMLParser::TStateProperty::EndElement(TCIMXMLParser& parser, std::string& name) {
  if (fValue) fProperty->SetValue(std::move(*fValue));
  TTableState::EndElement(parser, name);
}

void TCIMXMLParser::TStateValue::EndElement(TCIMXMLParser& parser, std::string& name) {
  fSlot.TakeText(parser, parser.fText.Get());
  TTableState::EndElement(parser, name);
}

void TCIMXMLParser::TStateValueArray::HandleAttrs(TCIMXMLParser&, const TAttributes&) {
  fType = static_cast<TCIMType::ECIMType>(fSlot.fType & ~TCIMType::TypeArray);
  fElements.clear();
}

void TCIMXMLParser::TStateValueArray::TakeText(TCIMXMLParser& parser, std::string_view text) {
  TCIMValue& element = fElements.emplace_back();
  if (!element.SetFromText(fType, text)) parser.ParseValue(fType, text).Swap(element);
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
