#pragma once

#include <cstddef>
#include <initializer_list>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "frontend/Findings.h"
#include "frontend/StrictReader.h"
#include "zelcore/TCIMValue.h"

class TCIMClass;
class TCIMPropertyDecl;
class TContainer;

namespace zel {

struct TCounts {
  std::size_t qualifiers = 0;  // declarations
  std::size_t classes = 0;
  std::size_t instances = 0;
};

// Walks a CIM-XML document strictly and reports what the library's reader takes otherwise. Types
// and keys come from the container into which that reader has read the document; where it lacks a
// declaration, from the document's own TYPE attributes.
class TDocumentCheck : public TStrictReader {
 public:
  TDocumentCheck(TContainer& container, TFindings& findings)
      : fContainer(container), fFindings(findings) {}

  // What the document holds, as far as it was walked.
  const TCounts& GetCounts() const { return fCounts; }

 protected:
  void StartElement(const std::string& name, const TAttributes& attributes) override;
  void EndElement() override;
  void Characters(std::string_view text) override;
  void CharacterReference(std::string_view reference) override;
  void Encoding(const std::string& name) override;
  void CData() override;
  void Nesting() override;
  void InternalSubset() override;

 private:
  using TType = TCIMValue::TCIMType;
  struct TElementRule;

  enum class TShape { kAny, kScalar, kArray };

  // An open element and what is expected in it. A child begins with what stands below the blank
  // line as its parent has it.
  struct TElement {
    const TElementRule* rule = nullptr;
    unsigned long line = 0;
    bool takesText = false, hasStrayText = false;

    bool isDropped = false;                  // what is in it is not kept, as in a METHOD
    std::string where;                       // in the model
    TType::ECIMType type = TType::TypeNone;  // of the values in it
    TShape shape = TShape::kAny;             // that its value must have
    const TCIMClass* cls = nullptr;          // a class's superclass; an instance's class
    const TCIMPropertyDecl* decl = nullptr;  // of a property, in that class
    bool isInClass = false;
    bool isInKey = false;  // in a KEY qualifier
    bool isOverride = false, isKey = false;
  };

  static const TElementRule kRules[];

  // What is special about an element that starts; its parent is the innermost open one.
  void StartQualifierDeclaration(TElement& element, const TAttributes& attributes);
  void StartScope(TElement& element, const TAttributes& attributes);
  void StartClass(TElement& element, const TAttributes& attributes);
  void StartInstance(TElement& element, const TAttributes& attributes);
  void StartInstanceName(TElement& element, const TAttributes& attributes);
  void StartKeyBinding(TElement& element, const TAttributes& attributes);
  void StartProperty(TElement& element, const TAttributes& attributes);
  void StartQualifier(TElement& element, const TAttributes& attributes);
  void StartValue(TElement& element, const TAttributes& attributes);
  void StartValueArray(TElement& element, const TAttributes& attributes);
  void StartText(TElement& element, const TAttributes& attributes);
  void StartMethod(TElement& element, const TAttributes& attributes);

  // And about one that has ended.
  void EndProperty(const TElement& element);
  void EndQualifier(const TElement& element);
  void EndValue(const TElement& element);
  void EndKeyValue(const TElement& element);

  TType::ECIMType SoleKeyType(const TCIMClass* cls);
  void CheckShape(TElement& element, TShape shape);
  void CheckAttributes(const TElement& element, const TAttributes& attributes,
                       std::initializer_list<const char*> names, TType type);
  void Check(const TElement& element, TType type, const std::string& text);

  void Add(TRule rule, unsigned long line, const std::vector<std::string>& values = {});

  TContainer& fContainer;
  TFindings& fFindings;
  TCounts fCounts;
  std::vector<TElement> fOpen;
  std::set<std::string> fGiven;  // the properties of the instance, in lower case
  std::map<const TCIMClass*, TType::ECIMType> fSoleKeyTypes;
  std::string fText;       // of the innermost element, since its last child
  bool fHasEnded = false;  // for the reader, which has stopped
};

}  // namespace zel
