#include "xml/TCIMXMLParser.h"

#include <locale>
#include <sstream>

#include "xml/DocumentStates.h"
#include "zelcore/TCIMDateTime.h"
#include "zelcore/detail/Fail.h"

using namespace std::string_view_literals;
using zelcore::detail::LogCore;
using zelcore::detail::Text;

namespace {

// True, with `value` stored, when the attribute has this name.
bool HandleText(const TCIMXMLParser::TAttribute& attribute, std::string_view name,
                std::string& value) {
  if (attribute.first != name) return false;
  value = attribute.second;
  return true;
}

template <class TNumber>
TNumber ReadFromStream(const std::string& text) {
  std::istringstream in(text);
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

TCIMXMLParser::TCIMXMLParser(TContainer& container) : fContainer(container) {
  fStates.emplace_back(new TStateStart());
}

TCIMXMLParser::~TCIMXMLParser() = default;

template <class TWork>
void TCIMXMLParser::Report(TWork&& work) {
  try {
    work();
  } catch (const TZELException& failure) {
    LogCore(zelLogError,
            Text("TCIMXMLParser: Threw exception ", failure.what(), " on line ", GetCurLine()));
    throw TZELException(failure.GetStatusCode());
  }
}

void TCIMXMLParser::StartElement(const char* name, TAttributeMap& attributes) {
  TParseState& state = *fStates.back();
  Report([&] { state.StartElement(*this, state.ToLowerCase(name), attributes); });
}

void TCIMXMLParser::EndElement(const char* /*name*/) {
  TParseState& state = *fStates.back();
  Report([&] { state.EndElement(*this, state.fName); });
}

void TCIMXMLParser::processingInstruction(const char*, const char*) {}

void TCIMXMLParser::characters(const char* text, unsigned int /*length*/) {
  // White space between elements and text that nobody asks for is not gathered.
  if (fStates.back()->TakesText()) fText += text;
}

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
  if (attribute.first != "type"sv) return false;
  type = TCIMValue::TCIMType(attribute.second);
  return true;
}

bool TCIMXMLParser::HandleQualifierFlavor(const TAttribute& attribute,
                                          TCIMQualifierDecl::EFlavor& flavor) {
  for (const TFlavorRow& row : kFlavors) {
    if (attribute.first != row.attribute) continue;
    const bool isSet = ConvertBool(attribute.second);
    flavor = static_cast<TCIMQualifierDecl::EFlavor>(isSet ? flavor | row.bit : flavor & ~row.bit);
    return true;
  }
  return false;
}

bool TCIMXMLParser::HandleClassOrigin(const TAttribute& attribute, std::string& classOrigin) {
  return HandleText(attribute, "classorigin", classOrigin);
}

bool TCIMXMLParser::HandlePropagated(const TAttribute& attribute, bool& propagated) {
  if (attribute.first != "propagated"sv) return false;
  propagated = ConvertBool(attribute.second);
  return true;
}

bool TCIMXMLParser::HandleArraySize(const TAttribute& attribute, unsigned int& arraySize) {
  if (attribute.first != "arraysize"sv) return false;
  arraySize = ConvertUnsignedInt(attribute.second);
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

bool TCIMXMLParser::ConvertBool(const std::string& text) {
  if (text == "true") return true;
  if (text == "false") return false;
  return ReadFromStream<bool>(text);
}

unsigned int TCIMXMLParser::ConvertUnsignedInt(const std::string& text) {
  return ReadFromStream<unsigned int>(text);
}

TCIMValue TCIMXMLParser::ParseValue(TCIMValue::TCIMType type, const std::string& text) {
  TCIMValue value;
  if (value.SetFromText(type, text)) return value;
  if (type != TCIMValue::TCIMType::TypeDateTime) return TCIMValue(type, 0);
  static const TCIMDateTime epoch(1970, 1, 1, 0, 0, 0, 0, 0);
  static const std::string epochText = epoch.ToUIString();
  LogCore(zelLogError, Text("Invalid datetime found on line ", std::to_string(GetCurLine()),
                            ".  Defaulting the datetime to ", epochText, "."));
  return TCIMValue(epoch);
}
