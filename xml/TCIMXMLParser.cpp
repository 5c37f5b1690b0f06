#include "xml/TCIMXMLParser.h"

#include <cstring>
#include <locale>
#include <sstream>

#include "xml/DocumentStates.h"
#include "zelcore/TCIMDateTime.h"
#include "zelcore/detail/Fail.h"
#include "zelcore/detail/TypeText.h"

using zelcore::detail::LogCore;
using zelcore::detail::Text;

namespace {

// Attribute names are too short for a call to be worth it.
template <std::size_t kSize>
inline bool IsNamed(const TCIMXMLParser::TAttribute& attribute, const char (&name)[kSize]) {
  return attribute.name.size() == kSize - 1 &&
         std::memcmp(attribute.name.data(), name, kSize - 1) == 0;
}

// True, with `value` stored, when the attribute has this name.
template <std::size_t kSize, class TText>
inline bool HandleText(const TCIMXMLParser::TAttribute& attribute, const char (&name)[kSize],
                       TText& value) {
  if (!IsNamed(attribute, name)) return false;
  value = attribute.value;
  return true;
}

template <class TNumber>
TNumber ReadFromStream(std::string_view text) {
  std::istringstream in{std::string(text)};
  in.imbue(std::locale::classic());
  TNumber number{};
  in >> std::boolalpha >> number;
  return number;
}

struct TFlavorRow {
  std::string_view attribute;
  TCIMQualifierDecl::EFlavor bit;
};

constexpr TFlavorRow kFlavors[] = {
    {"overridable",  TCIMQualifierDecl::FlavorOverridable },
    {"tosubclass",   TCIMQualifierDecl::FlavorToSubclass  },
    {"translatable", TCIMQualifierDecl::FlavorTranslatable},
};

}  // namespace

TCIMXMLParser::TCIMXMLParser(TContainer& container)
    : fContainer(container), fStart(new TStateStart()) {
  Push(*fStart);
}

TCIMXMLParser::~TCIMXMLParser() = default;

void TCIMXMLParser::PassOn(const TZELException& failure) {
  LogCore(zelLogError,
          Text("TCIMXMLParser: Threw exception ", failure.what(), " on line ", GetCurLine()));
  throw TZELException(failure.GetStatusCode());
}

void TCIMXMLParser::Push(TParseState& state) {
  fStates.push_back(&state);
  AwaitChildren();
}

void TCIMXMLParser::Pop() {
  fStates.pop_back();
  AwaitChildren();
}

void TCIMXMLParser::AwaitChildren() {
  static constexpr TAwaited kNothing{false, {}, false, false};
  const TAwaited& awaited = fStates.back()->fAwaited;
  const bool isFull = fStates.size() >= TParseState::kMaxOpenStates;
  Await(isFull && !awaited.text ? kNothing : awaited);
}

void TCIMXMLParser::StartElement(const char* name, TAttributeMap& attributes) {
  StartTag(name, TAttributes(attributes.begin(), attributes.end()));
}

void TCIMXMLParser::StartTag(std::string_view name, const TAttributes& attributes) {
  try {
    fStates.back()->StartElement(*this, name, attributes);
  } catch (const TZELException& failure) {
    PassOn(failure);
  }
}

void TCIMXMLParser::EndElement(const char* /*name*/) {
  TParseState& state = *fStates.back();
  try {
    state.EndElement(*this, state.fName);
  } catch (const TZELException& failure) {
    PassOn(failure);
  }
}

void TCIMXMLParser::Leaf(std::string_view text) {
  try {
    fStates.back()->TakeLeaf(*this, text);
  } catch (const TZELException& failure) {
    PassOn(failure);
  }
}

TCIMXMLParser::EKnown TCIMXMLParser::TakeKnown(TAhead& ahead) {
  try {
    return fStates.back()->TakeKnown(*this, ahead);
  } catch (const TZELException& failure) {
    PassOn(failure);
  }
}

void TCIMXMLParser::processingInstruction(const char*, const char*) {}

// White space between elements and text that nobody asks for is not gathered.
void TCIMXMLParser::characters(const char* text, unsigned int /*length*/) {
  if (GetAwaited().text) fText.AddCopy(text);
}

void TCIMXMLParser::TextRun(std::string_view text) { fText.AddRun(text); }

void TCIMXMLParser::notationDecl(const char*, const char*, const char*) {}

void TCIMXMLParser::FatalError(const char* message) { FatalError(std::string(message)); }

void TCIMXMLParser::FatalError(const std::string& message) {
  // sic: no blank behind the colon
  zelcore::detail::Fail(zelStatusInvalidSpecificationDocument,
                        Text("CIM-XML Parser line ", GetCurLine(), ":", message));
}

bool TCIMXMLParser::HandleCIMName(const TAttribute& attribute, std::string& name) {
  return HandleText(attribute, "name", name);
}

bool TCIMXMLParser::HandleCIMType(const TAttribute& attribute, TCIMValue::TCIMType& type) {
  if (!IsNamed(attribute, "type")) return false;
  type = zelcore::detail::TypeNamed(attribute.value);
  return true;
}

bool TCIMXMLParser::HandleQualifierFlavor(const TAttribute& attribute,
                                          TCIMQualifierDecl::EFlavor& flavor) {
  for (const TFlavorRow& row : kFlavors) {
    if (attribute.name != row.attribute) continue;
    const bool isSet = ConvertBool(attribute.value);
    flavor = static_cast<TCIMQualifierDecl::EFlavor>(isSet ? flavor | row.bit : flavor & ~row.bit);
    return true;
  }
  return false;
}

bool TCIMXMLParser::HandleClassOrigin(const TAttribute& attribute, std::string& classOrigin) {
  return HandleText(attribute, "classorigin", classOrigin);
}

bool TCIMXMLParser::HandlePropagated(const TAttribute& attribute, bool& propagated) {
  if (!IsNamed(attribute, "propagated")) return false;
  propagated = ConvertBool(attribute.value);
  return true;
}

bool TCIMXMLParser::HandleArraySize(const TAttribute& attribute, unsigned int& arraySize) {
  if (!IsNamed(attribute, "arraysize")) return false;
  arraySize = ConvertUnsignedInt(attribute.value);
  return true;
}

bool TCIMXMLParser::HandleSuperClass(const TAttribute& attribute, std::string& superClass) {
  return HandleText(attribute, "superclass", superClass);
}

bool TCIMXMLParser::HandleClassName(const TAttribute& attribute, std::string& className) {
  return HandleText(attribute, "classname", className);
}

bool TCIMXMLParser::HandleReferenceClass(const TAttribute& attribute, std::string& referenceClass) {
  return HandleText(attribute, "referenceclass", referenceClass);
}

void TCIMXMLParser::TPropertyAttributes::Read(const TAttributes& attributes) {
  *this = {};
  for (const TAttribute& attribute : attributes) {
    HandleText(attribute, "name", name) || HandleText(attribute, "type", type) ||
        HandleArraySize(attribute, arraySize) ||
        HandleText(attribute, "referenceclass", referenceClass) ||
        HandleText(attribute, "classorigin", classOrigin) ||
        HandlePropagated(attribute, propagated);
  }
}

TCIMValue::TCIMType TCIMXMLParser::TPropertyAttributes::GetType() const {
  return type.data() ? zelcore::detail::TypeNamed(type) : TCIMValue::TCIMType::TypeNone;
}

bool TCIMXMLParser::ConvertBool(std::string_view text) {
  if (text == "true") return true;
  if (text == "false") return false;
  return ReadFromStream<bool>(text);
}

unsigned int TCIMXMLParser::ConvertUnsignedInt(std::string_view text) {
  return ReadFromStream<unsigned int>(text);
}

TCIMValue TCIMXMLParser::ParseValue(TCIMValue::TCIMType type, std::string_view text) {
  TCIMValue value;
  if (value.SetFromText(type, text)) return value;
  if (type != TCIMValue::TCIMType::TypeDateTime) return TCIMValue(type, 0);
  static const TCIMDateTime epoch(1970, 1, 1, 0, 0, 0, 0, 0);
  static const std::string epochText = epoch.ToUIString();
  LogCore(zelLogError, Text("Invalid datetime found on line ", std::to_string(GetCurLine()),
                            ".  Defaulting the datetime to ", epochText, "."));
  return TCIMValue(epoch);
}
