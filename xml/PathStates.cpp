#include "xml/PathStates.h"

#include <algorithm>

#include "zelcore/TCIMClass.h"
#include "zelcore/TCIMPropertyDecl.h"
#include "zelcore/TContainer.h"
#include "zelcore/detail/InPlace.h"

using zelcore::detail::BindKey;
using zelcore::detail::ReserveKeys;
using zelcore::detail::Text;

void TCIMXMLParser::TStateLocalNamespacePath::StartElement(TCIMXMLParser& parser,
                                                           std::string_view name,
                                                           const TAttributes& attributes) {
  TTableState::StartElement(parser, name, attributes);
  fHasNamespace = true;
}

void TCIMXMLParser::TStateLocalNamespacePath::EndElement(TCIMXMLParser& parser, std::string& name) {
  if (!fHasNamespace) parser.FatalError("Unexpected at least 1 NAMESPACE element");
  TTableState::EndElement(parser, name);
}

void TCIMXMLParser::TStateClassName::HandleAttrs(TCIMXMLParser& parser,
                                                 const TAttributes& attributes) {
  std::string name;
  for (const TAttribute& attribute : attributes) HandleCIMName(attribute, name);
  // The class need not be there yet: the path before a CLASS names what is about to be declared.
  fParent.TakeClassName(parser, name);
}

void TCIMXMLParser::TStateInstanceName::HandleAttrs(TCIMXMLParser& parser,
                                                    const TAttributes& attributes) {
  std::string className;
  for (const TAttribute& attribute : attributes) HandleClassName(attribute, className);
  TCIMClass* const cls = parser.fContainer.FindClass(className);
  if (!cls) parser.FatalError("Couldn't find class name " + className);
  parser.fClassMemo.Remember(className, *cls);
  StartOfClass(parser, className, *cls);
}

void TCIMXMLParser::TStateInstanceName::StartOfClass(TCIMXMLParser& parser,
                                                     std::string_view className, TCIMClass& cls) {
  fClassName = className;
  fClass = &cls;
  fHasKeys = false;
  fReference.emplace(&parser.fContainer);
  fReference->SetClass(*fClass);
  fKeys = &fKeysOfClasses[fClass];
  fExpected = 0;
  ReserveKeys(*fReference, fKeys->size());
}

// All of the key, or nothing. Where no more states may be opened, this one has not been kept from
// an element before, and knows nothing.
TCIMXMLParser::EKnown TCIMXMLParser::TStateInstanceName::TakeKnown(TCIMXMLParser&, TAhead& ahead) {
  if (fExpected >= fKeys->size()) return EKnown::kNothing;
  const TKnownKey& key = (*fKeys)[fExpected];
  TAhead behind = ahead;
  if (!behind.Take(key.tags.text)) return EKnown::kNothing;
  const TAhead::TText text = behind.TakeText();
  TCIMValue value;
  if (text.hasReferences || !behind.Take("</KEYVALUE></KEYBINDING>") ||
      !value.SetFromText(key.type, text.raw)) {
    return EKnown::kNothing;
  }
  Bind(*key.decl, std::move(value));
  ahead.Put(key.tags.read);
  ahead = behind;
  ++fExpected;
  return EKnown::kElement;
}

void TCIMXMLParser::TStateInstanceName::Remember(TKnownTag&& tags, const TCIMPropertyDecl& decl) {
  constexpr std::size_t kMaxKnown = 16;
  if (fExpected == kMaxKnown) return;
  fKeys->resize(std::max(fKeys->size(), fExpected + 1));
  (*fKeys)[fExpected++] = {std::move(tags), &decl, decl.GetType()};
}

void TCIMXMLParser::TStateInstanceName::TakeKeyText(TCIMXMLParser& parser, std::string_view text) {
  for (const std::string& key : fClass->EnumerateKeyNames()) {
    const TCIMPropertyDecl& decl = *fClass->GetPropertyDecl(key);
    Bind(decl, parser.ParseValue(decl.GetType(), text));
  }
}

void TCIMXMLParser::TStateInstanceName::TakeReference(TCIMXMLParser&, TCIMReference&& reference) {
  for (const std::string& key : fClass->EnumerateKeyNames()) {
    Bind(*fClass->GetPropertyDecl(key), TCIMValue(reference));
  }
}

bool TCIMXMLParser::TStateInstanceName::HasKey(const std::string& name) const {
  const std::vector<std::string> keys = fClass->EnumerateKeyNames();
  return std::find(keys.begin(), keys.end(), name) != keys.end();
}

void TCIMXMLParser::TStateInstanceName::Bind(const TCIMPropertyDecl& decl, TCIMValue&& value) {
  BindKey(*fReference, decl, std::move(value));
  fHasKeys = true;
}

void TCIMXMLParser::TStateInstanceName::EndElement(TCIMXMLParser& parser, std::string& name) {
  // Without any key this names the class itself, as long as the class could have instances.
  if (!fHasKeys && !parser.fContainer.isDiffContainer() && fClass->EnumerateKeyNames().empty()) {
    parser.FatalError("Class " + fClassName + " doesn't have any key properties");
  }
  fParent.TakeInstanceName(parser, std::move(*fReference));
  TTableState::EndElement(parser, name);
}

void TCIMXMLParser::TStateKeyBinding::HandleAttrs(TCIMXMLParser& parser,
                                                  const TAttributes& attributes) {
  fName.clear();
  fValue.reset();
  for (const TAttribute& attribute : attributes) HandleCIMName(attribute, fName);
  fDecl = fInstance.GetClass().FindPropertyDecl(fName);
  fTag = parser.GetTag();
  fTags.text.clear();
}

void TCIMXMLParser::TStateKeyBinding::TakeLeaf(TCIMXMLParser& parser, std::string_view text) {
  TakeKeyText(parser, text);
  if (!IsTagOf("KEYBINDING", fTag.text)) return;
  const TKnownTag& value = parser.GetTag();
  const bool isPlain = value.text.empty();
  constexpr std::string_view kPlain = "KEYVALUE>";
  fTags.text = Text(fTag.text, "<", isPlain ? kPlain : value.text);
  fTags.read = Text(fTag.read, "<", isPlain ? kPlain : value.read);
}

void TCIMXMLParser::TStateKeyBinding::TakeKeyText(TCIMXMLParser& parser, std::string_view text) {
  if (fDecl) fValue.emplace(parser.ParseValue(fDecl->GetType(), text));
}

void TCIMXMLParser::TStateKeyBinding::TakeReference(TCIMXMLParser&, TCIMReference&& reference) {
  fValue.emplace(std::move(reference));
}

void TCIMXMLParser::TStateKeyBinding::EndElement(TCIMXMLParser& parser, std::string& name) {
  const bool needsKey = !parser.fContainer.isDiffContainer();
  if (!fDecl && needsKey) {
    parser.FatalError("Couldn't find property name " + fName + " in class " +
                      fInstance.GetClass().GetName());
  }
  if (fDecl && fValue && (needsKey || fInstance.HasKey(fDecl->GetName()))) {
    // By the declaration's spelling: so the path equals that of the instance that it names.
    fInstance.Bind(*fDecl, std::move(*fValue));
    if (needsKey && !fTags.text.empty()) fInstance.Remember(std::move(fTags), *fDecl);
  }
  TTableState::EndElement(parser, name);
}

void TCIMXMLParser::TStateKeyValue::EndElement(TCIMXMLParser& parser, std::string& name) {
  fParent.TakeKeyText(parser, parser.fText.Get());
  TTableState::EndElement(parser, name);
}

void TCIMXMLParser::TStateValueReference::TakeClassName(TCIMXMLParser& parser,
                                                        const std::string& name) {
  TCIMReference reference(&parser.fContainer);
  reference.SetClassName(name);
  fParent.TakeReference(parser, std::move(reference));
}

void TCIMXMLParser::TStateValueReference::TakeInstanceName(TCIMXMLParser& parser,
                                                           TCIMReference&& name) {
  fParent.TakeReference(parser, std::move(name));
}
