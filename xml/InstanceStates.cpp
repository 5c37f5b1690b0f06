#include "xml/InstanceStates.h"

#include <iterator>
#include <memory>

#include "zelcore/TCIMProperty.h"
#include "zelcore/TContainer.h"
#include "zelcore/detail/InPlace.h"
#include "zelcore/detail/SameText.h"

using zelcore::detail::CountSlots;
using zelcore::detail::FindSlot;
using zelcore::detail::IsSameText;
using zelcore::detail::kNoSlot;
using zelcore::detail::LayoutOf;
using zelcore::detail::SetFromText;
using zelcore::detail::SlotOf;

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

  const boost::shared_ptr<const TPropertyLayout>& layout = LayoutOf(*fInstance);
  fTags = &fTagsOfClasses[layout.get()];
  if (!fTags->layout) {
    fTags->layout = layout;
    fTags->bySlot.resize(CountSlots(*layout));
  }
  fExpected = &fTags->first;
}

TCIMXMLParser::TTakenTag TCIMXMLParser::TStateInstance::TakeKnownTag(TCIMXMLParser& parser,
                                                                     std::string_view rest) {
  constexpr int kSteps = 4;  // one instance may leave out what another has
  std::size_t slot = *fExpected;
  for (int step = 0; step < kSteps && slot != kNoSlot; ++step) {
    TPropertyTag& known = fTags->bySlot[slot];
    const std::string& text = known.tag.text;
    if (!text.empty() && IsSameText(rest.substr(0, text.size()), text)) {
      fExpected = &known.next;
      Enter(parser, *known.state);
      known.state->Start(slot, known.arraySize);
      return {known.tag.read, known.tag.nameSize};
    }
    slot = known.next;
  }
  return {};
}

void TCIMXMLParser::TStateInstance::Remember(const TKnownTag& tag, std::size_t slot,
                                             TStateProperty& property) {
  TPropertyTag& known = fTags->bySlot[slot];
  if (!tag.text.empty()) {
    known.tag = tag;
    known.state = &property;
    known.arraySize = property.GetArraySize();
  }
  *fExpected = slot;
  fExpected = &known.next;
}

void TCIMXMLParser::TStateProperty::HandleAttrs(TCIMXMLParser& parser,
                                                const TAttributes& attributes) {
  fAttributes.Read(attributes);
  const TCIMInstance& instance = fInstance.GetInstance();
  const std::size_t slot = FindSlot(*LayoutOf(instance), fAttributes.name);
  if (slot == kNoSlot) {
    fAttributes.GetType();  // refuses a bad one first
    LookUp("property", fAttributes.name,
           [&] { return instance.GetProperty(std::string(fAttributes.name)); });
  }
  Start(slot, fAttributes.arraySize);
  const TCIMType given = fAttributes.GetType();
  if (given != TCIMType::TypeNone && (fIsArray ? ArrayOf(given) : given) != fType) {
    parser.FatalError("Property type != property declaration type");
  }
  fInstance.Remember(parser.GetTag(), slot, *this);
}

void TCIMXMLParser::TStateProperty::Start(std::size_t slot, unsigned int arraySize) {
  const zelcore::detail::TSlot place = SlotOf(fInstance.GetInstance(), slot);
  fProperty = place.property;
  fType = place.type;
  fMaxArraySize = arraySize;
  fValue.reset();
}

void TCIMXMLParser::TStateProperty::TakeText(TCIMXMLParser& parser, std::string_view text) {
  if (!SetFromText(*fProperty, fType, text)) TValueSlot::TakeText(parser, text);
}

// A value that can be refused waits for the end of the element.
void TCIMXMLParser::TStateProperty::Take(TCIMValue&& value) {
  if (value.GetType() != fType || value.IsReference()) {
    TValueSlot::Take(std::move(value));
  } else {
    fProperty->SetValue(std::move(value));
  }
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
