#include "xml/InstanceStates.h"

#include <iterator>
#include <memory>

#include "zelcore/TCIMProperty.h"
#include "zelcore/TContainer.h"
#include "zelcore/detail/InPlace.h"

using zelcore::detail::CountSlots;
using zelcore::detail::FindSlot;
using zelcore::detail::kNoSlot;
using zelcore::detail::LayoutOf;
using zelcore::detail::SetFromText;
using zelcore::detail::SlotOf;
using zelcore::detail::TSlot;

using TCIMType = TCIMValue::TCIMType;

namespace {

TCIMType ElementOf(TCIMType type) {
  return static_cast<TCIMType::ECIMType>(type & ~TCIMType::TypeArray);
}

// Of elements that were gathered in one vector for all, and are kept in one of their number.
TCIMValue MakeArray(TCIMType type, unsigned int size, std::vector<TCIMValue>& gathered) {
  std::vector<TCIMValue> elements(std::make_move_iterator(gathered.begin()),
                                  std::make_move_iterator(gathered.end()));
  TCIMValue array;
  array.Set(type, size, std::move(elements));
  return array;
}

}  // namespace

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

TCIMXMLParser::EKnown TCIMXMLParser::TStateInstance::TakeKnown(TCIMXMLParser& parser,
                                                               TAhead& ahead) {
  constexpr int kSteps = 4;  // one instance may leave out what another has
  std::size_t slot = *fExpected;
  for (int step = 0; step < kSteps && slot != kNoSlot; ++step) {
    TPropertyTag& known = fTags->bySlot[slot];
    if (!known.tag.text.empty() && ahead.IsAt(known.tag.text)) {
      ahead.Put(known.tag.read);
      fExpected = &known.next;
      if (TakeValue(known, slot, ahead)) return EKnown::kElement;
      Enter(parser, *known.state);
      known.state->Start(slot, known.arraySize);
      return EKnown::kStartTag;
    }
    slot = known.next;
  }
  return EKnown::kNothing;
}

// Takes the rest of the property, if it is one value or one array of them, and all of it is right.
bool TCIMXMLParser::TStateInstance::TakeValue(const TPropertyTag& known, std::size_t slot,
                                              TAhead& ahead) {
  const TSlot place = SlotOf(*fInstance, slot);
  if (known.state->IsArray() != place.type.IsArray()) return false;
  TAhead behind = ahead;
  const bool isTaken =
      place.type.IsArray() ? TakeArray(place, known.arraySize, behind) : TakeScalar(place, behind);
  if (isTaken) ahead = behind;
  return isTaken;
}

bool TCIMXMLParser::TStateInstance::TakeScalar(const TSlot& place, TAhead& ahead) {
  if (!ahead.Take("<VALUE>")) return false;
  const std::string_view text = ahead.TakeText();
  return ahead.Take("</VALUE></PROPERTY>") && SetFromText(*place.property, place.type, text);
}

bool TCIMXMLParser::TStateInstance::TakeArray(const TSlot& place, unsigned int arraySize,
                                              TAhead& ahead) {
  const TCIMType type = ElementOf(place.type);
  if (type == TCIMType::TypeReference || !ahead.Take("<VALUE.ARRAY>")) return false;
  fElements.clear();
  while (ahead.Take("<VALUE>")) {
    const std::string_view text = ahead.TakeText();
    if (!ahead.Take("</VALUE>") || !fElements.emplace_back().SetFromText(type, text)) return false;
  }
  if (!ahead.Take("</VALUE.ARRAY></PROPERTY.ARRAY>")) return false;
  place.property->SetValue(MakeArray(type, arraySize, fElements));
  return true;
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
  fType = ElementOf(fSlot.fType);
  fElements.clear();
}

void TCIMXMLParser::TStateValueArray::TakeText(TCIMXMLParser& parser, std::string_view text) {
  TCIMValue& element = fElements.emplace_back();
  if (!element.SetFromText(fType, text)) parser.ParseValue(fType, text).Swap(element);
}

void TCIMXMLParser::TStateValueArray::EndElement(TCIMXMLParser& parser, std::string& name) {
  fSlot.Take(MakeArray(fType, fSlot.fMaxArraySize, fElements));
  TTableState::EndElement(parser, name);
}
