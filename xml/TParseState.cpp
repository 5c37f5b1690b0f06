#include "xml/TParseState.h"

#include "zelcore/detail/Ascii.h"
#include "zelcore/detail/SameText.h"

using zelcore::detail::EqualsIgnoringAsciiCase;
using zelcore::detail::IsSameText;
using zelcore::detail::ToAsciiLower;

namespace {

// Deeper ones are not kept for reuse, so that what is kept stays small.
constexpr std::size_t kMaxKeptDepth = 24;

}  // namespace

void TCIMXMLParser::TParseState::EndElement(TCIMXMLParser& parser, std::string& /*name*/) {
  parser.Pop();
  if (parser.fStates.size() >= kMaxKeptDepth) fHome->reset();  // the end of this state
}

void TCIMXMLParser::TTableState::StartElement(TCIMXMLParser& parser, std::string_view name,
                                              const TAttributes& attributes) {
  if (parser.fStates.size() >= kMaxOpenStates) RefuseElement(parser, name);
  // Most children are called as the one before.
  if (!*fLastChild || !IsSameText((*fLastChild)->fName, name)) {
    fLastChild = &FindChild(parser, name);
  }
  TParseState& child = **fLastChild;
  Enter(parser, child);
  child.HandleAttrs(parser, attributes);
}

TCIMXMLParser::EKnown TCIMXMLParser::TTableState::TakeKnown(TCIMXMLParser& parser, TAhead& ahead) {
  if (!*fLastChild) return EKnown::kNothing;
  TParseState& child = **fLastChild;
  TAhead behind = ahead;
  if (!behind.Take(child.fName)) return EKnown::kNothing;
  if (behind.Take(">")) {
    ahead = behind;
    Enter(parser, child);
    child.HandleAttrs(parser, {});
    return EKnown::kStartTag;
  }
  TAhead attribute = behind;
  if (!child.fIsOfClass || !behind.Take(" CLASSNAME=\"")) return EKnown::kNothing;
  const std::string_view className = behind.TakeName();
  TCIMClass* const cls = parser.fClassMemo.Find(className);
  if (!cls || !behind.Take("\">")) return EKnown::kNothing;
  attribute.Put(" classname");
  ahead = behind;
  Enter(parser, child);
  child.StartOfClass(parser, className, *cls);
  return EKnown::kStartTag;
}

void TCIMXMLParser::TTableState::Enter(TCIMXMLParser& parser, TParseState& child) {
  parser.Push(child);
  parser.fText.Clear();
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
