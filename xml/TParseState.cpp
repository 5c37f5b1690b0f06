#include "xml/TParseState.h"

#include "zelcore/detail/Ascii.h"

using zelcore::detail::EqualsIgnoringAsciiCase;
using zelcore::detail::ToAsciiLower;

namespace {

// Only references in the keys of references open more than a dozen elements at once. Each level
// takes two to four: at least 60 references fit into each other.
constexpr std::size_t kMaxOpenStates = 256;

// Deeper ones are not kept for reuse, so that what is kept stays small.
constexpr std::size_t kMaxKeptDepth = 24;

}  // namespace

void TCIMXMLParser::TParseState::EndElement(TCIMXMLParser& parser, std::string& /*name*/) {
  parser.fStates.pop_back();
  if (parser.fStates.size() >= kMaxKeptDepth) fHome->reset();  // the end of this state
}

void TCIMXMLParser::TTableState::StartElement(TCIMXMLParser& parser, std::string_view name,
                                              const TAttributes& attributes) {
  if (parser.fStates.size() >= kMaxOpenStates) RefuseElement(parser, name);
  // Most children are called as the one before.
  if (!*fLastChild || (*fLastChild)->fName != name) fLastChild = &FindChild(parser, name);
  TParseState& child = **fLastChild;
  parser.fStates.push_back(&child);
  parser.fText.Clear();
  child.HandleAttrs(parser, attributes);
}

// The state of that child, made where there is none yet.
std::unique_ptr<TCIMXMLParser::TParseState>& TCIMXMLParser::TTableState::FindChild(
    TCIMXMLParser& parser, std::string_view name) {
  std::size_t rule = 0;
  while (fChildren[rule].make && !EqualsIgnoringAsciiCase(fChildren[rule].name, name)) ++rule;
  if (!fChildren[rule].make) RefuseElement(parser, name);
  std::unique_ptr<TParseState>& child = fChildStates[rule];
  if (!child) {
    child = fChildren[rule].make(parser);
    child->fHome = &child;
  }
  child->fName = name;
  return child;
}

void TCIMXMLParser::TTableState::RefuseElement(TCIMXMLParser& parser, std::string_view name) {
  parser.FatalError("Unexpected element " + ToAsciiLower(std::string(name)));
}
