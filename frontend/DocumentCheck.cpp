#include "frontend/DocumentCheck.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>

#include "frontend/Inventory.h"
#include "frontend/ValueCheck.h"
#include "frontend/ValueText.h"
#include "zelcore/zelcore.h"

namespace zel {
namespace {

using TType = TCIMValue::TCIMType;

// The attribute's value; empty when it is missing.
std::string TextOf(const TStrictReader::TAttributes& attributes, std::string_view name) {
  const std::string* value = FindAttribute(attributes, name);
  return value ? *value : "";
}

// What a look-up by a name from the document finds; null, too, for what cannot be a name.
template <class TLookUp>
auto Find(const std::string& name, TLookUp&& lookUp) -> decltype(lookUp(name)) {
  try {
    return name.empty() ? nullptr : lookUp(name);
  } catch (const TZELException&) {
    return nullptr;
  }
}

TCIMPropertyDecl* FindDecl(const TCIMClass* cls, const std::string& name) {
  if (!cls) return nullptr;
  return Find(name, [&](const std::string& text) { return cls->FindPropertyDecl(text); });
}

TType::ECIMType ElementType(TType type) {
  return static_cast<TType::ECIMType>(type & ~TType::TypeArray);
}

TType::ECIMType TypeNamed(const std::string& name) {
  try {
    return TType(name);
  } catch (const TZELException&) {
    return TType::TypeNone;
  }
}

std::string Lower(std::string text) {
  for (char& c : text) {
    if ('A' <= c && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return text;
}

}  // namespace

struct TDocumentCheck::TElementRule {
  std::string_view name;
  void (TDocumentCheck::*start)(TElement& element, const TAttributes& attributes);
  void (TDocumentCheck::*end)(const TElement& element);
};

const TDocumentCheck::TElementRule TDocumentCheck::kRules[] = {
    {"value",                 &TDocumentCheck::StartValue,                &TDocumentCheck::EndValue    },
    {"qualifier",             &TDocumentCheck::StartQualifier,            &TDocumentCheck::EndQualifier},
    {"property",              &TDocumentCheck::StartProperty,             &TDocumentCheck::EndProperty },
    {"keyvalue",              &TDocumentCheck::StartText,                 &TDocumentCheck::EndKeyValue },
    {"keybinding",            &TDocumentCheck::StartKeyBinding,           nullptr                      },
    {"instancename",          &TDocumentCheck::StartInstanceName,         nullptr                      },
    {"instance",              &TDocumentCheck::StartInstance,             nullptr                      },
    {"value.array",           &TDocumentCheck::StartValueArray,           nullptr                      },
    {"property.array",        &TDocumentCheck::StartProperty,             &TDocumentCheck::EndProperty },
    {"property.reference",    &TDocumentCheck::StartProperty,             &TDocumentCheck::EndProperty },
    {"class",                 &TDocumentCheck::StartClass,                nullptr                      },
    {"method",                &TDocumentCheck::StartMethod,               nullptr                      },
    {"qualifier.declaration", &TDocumentCheck::StartQualifierDeclaration, nullptr                      },
    {"scope",                 &TDocumentCheck::StartScope,                nullptr                      },
    {"host",                  &TDocumentCheck::StartText,                 nullptr                      },
};

void TDocumentCheck::StartElement(const std::string& name, const TAttributes& attributes) {
  fText.clear();
  TElement element = fOpen.empty() ? TElement() : fOpen.back();
  element.rule = nullptr;
  element.line = GetLine();
  element.takesText = element.hasStrayText = false;
  if (!element.isDropped) {
    for (const TElementRule& rule : kRules) {
      if (rule.name == name) element.rule = &rule;
    }
  }
  if (element.rule) (this->*element.rule->start)(element, attributes);
  fOpen.push_back(std::move(element));
}

void TDocumentCheck::EndElement() {
  const TElement element = std::move(fOpen.back());
  fOpen.pop_back();
  if (element.rule && element.rule->end) (this->*element.rule->end)(element);
}

void TDocumentCheck::Characters(std::string_view text) {
  TElement& element = fOpen.back();
  if (element.isDropped) return;
  if (element.takesText) {
    fText += text;
  } else if (!element.hasStrayText) {
    const std::size_t begin = text.find_first_not_of(" \t\r\n");
    if (begin == std::string_view::npos) return;
    element.hasStrayText = true;
    Add(TRule::kStrayText, GetLine(), {element.where, Excerpt(std::string(text.substr(begin)))});
  }
}

void TDocumentCheck::CharacterReference(std::string_view reference) {
  if (!fOpen.back().takesText) return;
  const bool isHex = reference[2] == 'x';
  const std::string_view digits = reference.substr(isHex ? 3 : 2);
  unsigned code = 0;
  std::from_chars(digits.data(), digits.data() + digits.size(), code, isHex ? 16 : 10);
  if (code < 0x80) return;
  Add(TRule::kCharacterReference, GetLine(),
      {fOpen.back().where, Excerpt(std::string(reference)), fmt::format("{:02X}", code & 0xFFU)});
}

void TDocumentCheck::Encoding(const std::string& name) {
  const std::string encoding = Lower(name);
  const std::string_view text = GetText();
  const bool isAscii = std::none_of(text.begin(), text.end(), [](char c) { return c & 0x80; });
  if (!isAscii && encoding != "utf-8" && encoding != "us-ascii") {
    Add(TRule::kEncoding, GetLine(), {Excerpt(name)});
  }
}

void TDocumentCheck::CData() {
  Add(TRule::kCData, GetLine());
  fHasEnded = true;
}

void TDocumentCheck::Nesting() { Add(TRule::kNesting, GetLine()); }

void TDocumentCheck::InternalSubset() { Add(TRule::kDocTypeSubset, GetLine()); }

void TDocumentCheck::StartQualifierDeclaration(TElement& element, const TAttributes& attributes) {
  ++fCounts.qualifiers;
  element.where = "qualifier " + Excerpt(TextOf(attributes, "name"));
  element.type = TypeNamed(TextOf(attributes, "type"));
  CheckAttributes(element, attributes, {"isarray", "overridable", "tosubclass", "translatable"},
                  TType::TypeBoolean);
  CheckAttributes(element, attributes, {"arraysize"}, TType::TypeUint32);
}

// The scopes that are left out mean nothing to the reader.
void TDocumentCheck::StartScope(TElement& element, const TAttributes& attributes) {
  CheckAttributes(element, attributes, {"class", "association", "property", "reference"},
                  TType::TypeBoolean);
}

void TDocumentCheck::StartClass(TElement& element, const TAttributes& attributes) {
  ++fCounts.classes;
  element.where = Excerpt(TextOf(attributes, "name"));
  element.cls = FindClass(fContainer, TextOf(attributes, "superclass"));
  element.isInClass = true;
}

void TDocumentCheck::StartInstance(TElement& element, const TAttributes& attributes) {
  ++fCounts.instances;
  const std::string name = TextOf(attributes, "classname");
  element.where = Excerpt(name);
  element.cls = FindClass(fContainer, name);
  element.isInClass = false;
  fGiven.clear();
}

void TDocumentCheck::StartInstanceName(TElement& element, const TAttributes& attributes) {
  const std::string name = TextOf(attributes, "classname");
  element.where = Excerpt(name);
  element.cls = FindClass(fContainer, name);
  element.type = SoleKeyType(element.cls);
}

// Of a class with one key, whose KEYVALUE needs no name.
TType::ECIMType TDocumentCheck::SoleKeyType(const TCIMClass* cls) {
  if (!cls) return TType::TypeNone;
  const auto [place, isNew] = fSoleKeyTypes.emplace(cls, TType::TypeNone);
  if (isNew) {
    const std::vector<std::string> keys = cls->EnumerateKeyNames();
    if (keys.size() == 1) place->second = ElementType(FindDecl(cls, keys[0])->GetType());
  }
  return place->second;
}

void TDocumentCheck::StartKeyBinding(TElement& element, const TAttributes& attributes) {
  const std::string name = TextOf(attributes, "name");
  const TCIMPropertyDecl* const decl = FindDecl(element.cls, name);
  element.where += "." + Excerpt(name);
  element.type = decl ? ElementType(decl->GetType()) : TType::TypeNone;
}

void TDocumentCheck::StartProperty(TElement& element, const TAttributes& attributes) {
  const std::string name = TextOf(attributes, "name");
  element.where += "." + Excerpt(name);
  element.decl = FindDecl(element.cls, name);
  const bool isDeclared = !element.isInClass && element.decl;
  element.type =
      isDeclared ? ElementType(element.decl->GetType()) : TypeNamed(TextOf(attributes, "type"));
  element.isOverride = element.isKey = false;
  CheckAttributes(element, attributes, {"arraysize"}, TType::TypeUint32);
  if (!element.isInClass && !fGiven.insert(Lower(name)).second) {
    Add(TRule::kDuplicateProperty, element.line, {element.where});
  }
}

// An overriding declaration has only the qualifiers that are written in it.
void TDocumentCheck::EndProperty(const TElement& element) {
  const bool overridesKey =
      element.isOverride && element.decl && IsTrue(element.decl->FindQualifier("KEY"));
  if (!overridesKey || element.isKey) return;
  Add(TRule::kKeyLost, element.line, {element.where, element.decl->GetClass()->GetName()});
}

void TDocumentCheck::StartQualifier(TElement& element, const TAttributes& attributes) {
  if (!element.isInClass) {
    element.isDropped = true;
    return;
  }
  const std::string name = TextOf(attributes, "name");
  const TCIMQualifierDecl* const decl =
      Find(name, [&](const std::string& text) { return fContainer.FindQualifierDecl(text); });
  element.where += ", qualifier " + Excerpt(name);
  element.type = decl ? ElementType(decl->GetType()) : TypeNamed(TextOf(attributes, "type"));
  if (decl) element.shape = decl->GetType().IsArray() ? TShape::kArray : TShape::kScalar;
  element.isInKey = Lower(name) == "key";
  element.isKey = false;
  if (Lower(name) == "override") fOpen.back().isOverride = true;
  CheckAttributes(element, attributes, {"propagated", "overridable", "tosubclass", "translatable"},
                  TType::TypeBoolean);
}

void TDocumentCheck::EndQualifier(const TElement& element) {
  if (element.isKey) fOpen.back().isKey = true;
}

void TDocumentCheck::StartValue(TElement& element, const TAttributes&) {
  element.takesText = true;
  CheckShape(element, TShape::kScalar);
}

void TDocumentCheck::EndValue(const TElement& element) {
  Check(element, element.type, fText);
  if (element.isInKey && element.type == TType::TypeBoolean) {
    fOpen.back().isKey = bool(TCIMValue(element.type, fText, fContainer));
  }
}

void TDocumentCheck::StartValueArray(TElement& element, const TAttributes&) {
  CheckShape(element, TShape::kArray);
  element.shape = TShape::kAny;
}

void TDocumentCheck::StartText(TElement& element, const TAttributes&) { element.takesText = true; }

void TDocumentCheck::EndKeyValue(const TElement& element) { Check(element, element.type, fText); }

void TDocumentCheck::StartMethod(TElement& element, const TAttributes&) {
  element.isDropped = true;
}

// A qualifier's value that is an array where none is declared, or the other way round.
void TDocumentCheck::CheckShape(TElement& element, TShape shape) {
  if (element.shape == TShape::kAny || element.shape == shape) return;
  Add(TRule::kQualifierShape, element.line,
      {element.where, shape == TShape::kScalar ? "an array" : "a single value"});
  element.isDropped = true;
  element.rule = nullptr;
}

void TDocumentCheck::CheckAttributes(const TElement& element, const TAttributes& attributes,
                                     std::initializer_list<const char*> names, TType type) {
  for (const char* name : names) {
    const std::string* const text = FindAttribute(attributes, name);
    if (text) Check(element, type, *text);
  }
}

void TDocumentCheck::Check(const TElement& element, TType type, const std::string& text) {
  CheckValue(type, text, fContainer, [&](TRule rule, std::vector<std::string> values) {
    values.insert(values.begin(), element.where);
    Add(rule, element.line, values);
  });
}

void TDocumentCheck::Add(TRule rule, unsigned long line, const std::vector<std::string>& values) {
  if (!fHasEnded) fFindings.Add(rule, line, values);
}

}  // namespace zel
