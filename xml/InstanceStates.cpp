#include "xml/InstanceStates.h"

#include <iterator>
#include <memory>

#include "xml/References.h"
#include "zelcore/TContainer.h"
#include "zelcore/detail/InPlace.h"

using zelcore::detail::CountSlots;
using zelcore::detail::FindSlot;
using zelcore::detail::kNoSlot;
using zelcore::detail::LayoutOf;
using zelcore::detail::PropertiesOf;
using zelcore::detail::SetArray;
using zelcore::detail::SetFromText;
using zelcore::detail::TypeAt;

using TCIMType = TCIMValue::TCIMType;

namespace {

TCIMType ElementOf(TCIMType type) {
  return static_cast<TCIMType::ECIMType>(type & ~TCIMType::TypeArray);
}

// Whether the text can be decoded, and `use` is content with it.
template <class TUse>
bool WithDecoded(const TAhead::TText& text, std::string& decoded, TUse&& use) {
  if (!text.hasReferences) return use(text.raw);
  return zelcore::detail::DecodeReferences(text.raw, decoded) && use(std::string_view(decoded));
}

}  // namespace

void TCIMXMLParser::TStateInstance::HandleAttrs(TCIMXMLParser& parser,
                                                const TAttributes& attributes) {
  std::string className;
  for (const TAttribute& attribute : attributes) HandleClassName(attribute, className);
  TCIMClass* const cls =
      LookUp("class", className, [&] { return parser.fContainer.GetClass(className); });
  parser.fClassMemo.Remember(className, *cls);
  StartOfClass(parser, className, *cls);
}

void TCIMXMLParser::TStateInstance::StartOfClass(TCIMXMLParser& parser,
                                                 std::string_view /*className*/, TCIMClass& cls) {
  std::unique_ptr<TCIMInstance> instance(parser.fContainer.AllocateInstance(&cls));
  fInstance = instance.get();
  fParent.Hold(std::move(instance));

  const boost::shared_ptr<const TPropertyLayout>& layout = LayoutOf(*fInstance);
  fTags = &fTagsOfClasses[layout.get()];
  if (!fTags->layout) {
    fTags->layout = layout;
    fTags->bySlot.resize(CountSlots(*layout));
  }
  fExpected = &fTags->first;
  fProperties = PropertiesOf(*fInstance);
}

TCIMXMLParser::EKnown TCIMXMLParser::TStateInstance::TakeKnown(TCIMXMLParser& parser,
                                                               TAhead& ahead) {
  // Property behind property, as long as each is no more than its value.
  EKnown taken = EKnown::kNothing;
  TAhead next = ahead;
  TPropertyTag* known = nullptr;
  while ((known = FindKnown(next)) && TakeProperty(*known, next)) {
    fExpected = &known->next;
    ahead = next;
    taken = EKnown::kElement;
    next.TakeSpace();
    if (!next.Take("<")) break;
  }
  if (!known || taken != EKnown::kNothing) return taken;

  ahead.Put(known->tag.read);
  fExpected = &known->next;
  Enter(parser, *known->state);
  known->state->Start(GetProperty(SlotOf(*known)), known->type, known->arraySize);
  return EKnown::kStartTag;
}

// The tag that stands ahead, or null.
TCIMXMLParser::TStateInstance::TPropertyTag* TCIMXMLParser::TStateInstance::FindKnown(
    const TAhead& ahead) {
  constexpr int kSteps = 4;  // one instance may leave out what another has
  std::size_t slot = *fExpected;
  for (int step = 0; step < kSteps && slot != kNoSlot; ++step) {
    TPropertyTag& known = fTags->bySlot[slot];
    if (!known.tag.text.empty() && ahead.IsAt(known.tag.text)) return &known;
    slot = known.next;
  }
  return nullptr;
}

// Takes the property that begins with the tag, if it is one value or one array of them, and all of
// it is right.
bool TCIMXMLParser::TStateInstance::TakeProperty(const TPropertyTag& known, TAhead& ahead) {
  if (!known.isUsual || known.isArray != known.type.IsArray()) return false;
  TAhead behind = ahead;
  behind.Skip(known.tag.text.size());
  TCIMProperty& property = GetProperty(SlotOf(known));
  const bool isTaken =
      known.isArray ? TakeArray(known, property, behind) : TakeScalar(known, property, behind);
  if (!isTaken) return false;
  ahead.Put(known.tag.read);
  ahead = behind;
  return true;
}

bool TCIMXMLParser::TStateInstance::TakeScalar(const TPropertyTag& known, TCIMProperty& property,
                                               TAhead& ahead) {
  if (!ahead.Take("<VALUE>")) return false;
  const TAhead::TText text = ahead.TakeText();
  return ahead.Take("</VALUE></PROPERTY>") && WithDecoded(text, fDecoded, [&](auto decoded) {
           return SetFromText(property, known.type, decoded);
         });
}

bool TCIMXMLParser::TStateInstance::TakeArray(const TPropertyTag& known, TCIMProperty& property,
                                              TAhead& ahead) {
  const TCIMType type = ElementOf(known.type);
  if (type == TCIMType::TypeReference || !ahead.Take("<VALUE.ARRAY>")) return false;
  fElements.clear();
  while (ahead.Take("<VALUE>")) {
    fElements.push_back(ahead.TakeText());
    if (!ahead.Take("</VALUE>")) return false;
  }
  if (!ahead.Take("</VALUE.ARRAY></PROPERTY.ARRAY>")) return false;
  std::vector<TCIMValue> elements(fElements.size());
  for (std::size_t i = 0; i < elements.size(); ++i) {
    const auto set = [&](auto decoded) { return elements[i].SetFromText(type, decoded); };
    if (!WithDecoded(fElements[i], fDecoded, set)) return false;
  }
  return SetArray(property, type, known.arraySize, std::move(elements));
}

void TCIMXMLParser::TStateInstance::Remember(const TKnownTag& tag, std::size_t slot,
                                             TStateProperty& property) {
  TPropertyTag& known = fTags->bySlot[slot];
  if (!tag.text.empty()) {
    known.tag = tag;
    known.state = &property;
    known.isArray = property.IsArray();
    known.isUsual = IsTagOf(known.isArray ? "PROPERTY.ARRAY" : "PROPERTY", tag.text);
    known.type = property.GetType();
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
  Start(fInstance.GetProperty(slot), TypeAt(*LayoutOf(instance), slot), fAttributes.arraySize);
  const TCIMType given = fAttributes.GetType();
  if (given != TCIMType::TypeNone && (fIsArray ? ArrayOf(given) : given) != fType) {
    parser.FatalError("Property type != property declaration type");
  }
  fInstance.Remember(parser.GetTag(), slot, *this);
}

void TCIMXMLParser::TStateProperty::Start(TCIMProperty& property, TCIMType type,
                                          unsigned int arraySize) {
  fProperty = &property;
  fType = type;
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
  // Gathered in one vector for all, kept in one of their number.
  std::vector<TCIMValue> elements(std::make_move_iterator(fElements.begin()),
                                  std::make_move_iterator(fElements.end()));
  TCIMValue array;
  array.Set(fType, fSlot.fMaxArraySize, std::move(elements));
  fSlot.Take(std::move(array));
  TTableState::EndElement(parser, name);
}
