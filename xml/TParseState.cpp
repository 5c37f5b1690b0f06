#include "xml/TParseState.h"

#include <cstring>

#include "zelcore/detail/Ascii.h"

namespace {

// Only references in the keys of references open more than a dozen elements at once. Each level
// takes two to four: at least 60 references fit into each other.
constexpr std::size_t kMaxOpenStates = 256;

// Deeper ones are not kept for reuse, so that what is kept stays small.
constexpr std::size_t kMaxKeptDepth = 24;

}  // namespace

std::string& TCIMXMLParser::TParseState::ToLowerCase(const char* name) {
  if (std::strcmp(fChildAsWritten.c_str(), name) != 0) {
    fChildAsWritten = name;
    fChildName = zelcore::detail::ToAsciiLower(fChildAsWritten);
  }
  return fChildName;
}

void TCIMXMLParser::TParseState::EndElement(TCIMXMLParser& parser, std::string& /*name*/) {
  boost::shared_ptr<TParseState> self = std::move(parser.fStates.back());
  parser.fStates.pop_back();
  if (fHome && parser.fStates.size() < kMaxKeptDepth) *fHome = std::move(self);
}

void TCIMXMLParser::TTableState::StartElement(TCIMXMLParser& parser, std::string& name,
                                              TAttributeMap& attributes) {
  const TChildRule* rule = fChildren;
  while (rule->make && rule->name != name) ++rule;
  if (!rule->make || parser.fStates.size() >= kMaxOpenStates) {
    parser.FatalError("Unexpected element " + name);
  }

  boost::shared_ptr<TParseState>& spare = fSpares[static_cast<std::size_t>(rule - fChildren)];
  if (!spare) {
    spare = rule->make(parser);
    spare->fName = name;
    spare->fHome = &spare;
  }
  parser.fStates.push_back(std::move(spare));
  parser.fText.clear();
  parser.fStates.back()->HandleAttrs(parser, attributes);
}

void TCIMXMLParser::TPropertyAttributes::Read(const TAttributeMap& attributes) {
  name.clear();
  type = TCIMValue::TCIMType::TypeNone;
  arraySize = 0;
  referenceClass.clear();
  for (const TAttribute& attribute : attributes) {
    HandleCIMName(attribute, name) || HandleCIMType(attribute, type) ||
        HandleArraySize(attribute, arraySize) || HandleReferenceClass(attribute, referenceClass) ||
        HandleClassOrigin(attribute, classOrigin) || HandlePropagated(attribute, propagated);
  }
}
