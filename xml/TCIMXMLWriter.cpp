#include "zelcore/TCIMXMLWriter.h"

#include <unistd.h>

#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstring>
#include <ostream>
#include <unordered_set>

#include "xml/TClassOrder.h"
#include "xml/TDocumentSink.h"
#include "xml/XmlText.h"
#include "zelcore/TCIMClass.h"
#include "zelcore/TCIMInstance.h"
#include "zelcore/TCIMProperty.h"
#include "zelcore/TCIMPropertyDecl.h"
#include "zelcore/TCIMQualifier.h"
#include "zelcore/TCIMQualifierDecl.h"
#include "zelcore/TCIMReference.h"
#include "zelcore/TCIMValue.h"
#include "zelcore/TContainer.h"
#include "zelcore/detail/Fail.h"
#include "zelcore/detail/FetchAhead.h"
#include "zelcore/detail/InPlace.h"
#include "zelcore/detail/TypeText.h"

using zelcore::detail::CountKeys;
using zelcore::detail::DateTimeTextOf;
using zelcore::detail::DefaultOf;
using zelcore::detail::Fail;
using zelcore::detail::FetchAhead;
using zelcore::detail::KeyAt;
using zelcore::detail::LayoutOf;
using zelcore::detail::LogCore;
using zelcore::detail::PropertiesOf;
using zelcore::detail::ReferenceOf;
using zelcore::detail::Text;
using zelcore::detail::TextOf;
using zelcore::detail::TKey;
using zelcore::detail::TypeText;
using zelcore::detail::ValueOf;

namespace {

using TCIMType = TCIMValue::TCIMType;
using TQualifiers = std::vector<TCIMQualifier const*>;

constexpr std::size_t kMaxReadSize = 0x6400000;  // 100 MiB of text

struct TFlavorRow {
  std::string_view attribute;
  TCIMQualifierDecl::EFlavor bit;
};

constexpr TFlavorRow kFlavors[] = {
    {"OVERRIDABLE",  TCIMQualifierDecl::FlavorOverridable },
    {"TOSUBCLASS",   TCIMQualifierDecl::FlavorToSubclass  },
    {"TRANSLATABLE", TCIMQualifierDecl::FlavorTranslatable},
};

struct TScopeRow {
  std::string_view attribute;
  TCIMQualifierDecl::EScope bit;
};

constexpr TScopeRow kScopes[] = {
    {"CLASS",       TCIMQualifierDecl::ScopeClass      },
    {"ASSOCIATION", TCIMQualifierDecl::ScopeAssociation},
    {"REFERENCE",   TCIMQualifierDecl::ScopeReference  },
    {"PROPERTY",    TCIMQualifierDecl::ScopeProperty   },
};

TCIMType ElementType(TCIMType type) {
  return static_cast<TCIMType::ECIMType>(type & ~TCIMType::TypeArray);
}

// Whether a VALUE, or a VALUE.ARRAY of them, holds values of the type.
bool IsText(TCIMType type) {
  const TCIMType element = ElementType(type);
  return element != TCIMType::TypeNone && element != TCIMType::TypeChar &&
         element != TCIMType::TypeReference;
}

std::string_view Bool(bool value) { return value ? "true" : "false"; }

// "" for the texts, as which keys count without being told.
std::string_view KeyKind(TCIMType type) {
  if (type == TCIMType::TypeBoolean) return " VALUETYPE=\"boolean\"";
  return type < TCIMType::TypeString ? " VALUETYPE=\"numeric\"" : "";
}

// Whether the class gets the qualifier from its superclass when it is made.
bool IsHandedDown(const TCIMClass& cls, const TCIMQualifier& qualifier) {
  if (!qualifier.GetPropagated() || !cls.GetSuperClass()) return false;
  const TCIMQualifier* const above = cls.GetSuperClass()->FindQualifier(qualifier.GetName());
  return above && (above->GetFlavor() & TCIMQualifierDecl::FlavorToSubclass);
}

// One document. What it writes about stands in fOwner and fMember for the log.
class TDocument {
 public:
  TDocument(const TDocumentSink::TTarget& target, bool isCompressed) : fSink(target, isCompressed) {
    Put("<?xml version=\"1.0\" encoding=\"utf-8\"?>\n"
        "<CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\">\n<DECLARATION>\n<DECLGROUP>\n");
  }

  void Finish() {
    Put("</DECLGROUP>\n</DECLARATION>\n</CIM>\n");
    if (fSink.GetSize() > kMaxReadSize) {
      LogCore(zelLogWarning, "TCIMXMLWriter: the document is longer than what can be read");
    }
    fSink.Finish();
  }

  void WriteQualifierDecls(const TContainer& container) {
    for (const TCIMQualifierDecl* decl : container.EnumerateQualifiers()) WriteQualifierDecl(*decl);
  }

  void WriteClass(const TCIMClass& cls) {
    fOwner = cls.GetName();
    fMember = nullptr;
    Put("<VALUE.OBJECT><CLASS NAME=\"", fOwner, "\"");
    if (!cls.GetSuperClass()->IsRootClass()) {
      Put(" SUPERCLASS=\"", cls.GetSuperClass()->GetName(), "\"");
    }
    Put(">\n");
    for (const TCIMQualifier* qualifier : cls.EnumerateQualifiers()) {
      if (!IsHandedDown(cls, *qualifier)) WriteQualifier(*qualifier);
    }
    for (const TCIMPropertyDecl* decl : EnumerateOwnDecls(cls)) WritePropertyDecl(*decl);
    Put("</CLASS></VALUE.OBJECT>\n");
  }

  void WriteInstances(const std::vector<TCIMInstance*>& instances) {
    for (std::size_t i = 0; i < instances.size(); ++i) {
      FetchAhead(instances, i);
      WriteInstance(*instances[i]);
    }
  }

 private:
  template <class... TParts>
  [[gnu::always_inline]] void Put(const TParts&... parts) {
    (fSink.Put(parts), ...);
  }

  void WriteInstance(const TCIMInstance& instance) {
    fOwner = instance.GetClass()->GetName();
    Put("<VALUE.OBJECT><INSTANCE CLASSNAME=\"", fOwner, "\">\n");
    if (LayoutOf(instance) != fLayout) Prepare(instance);
    const TCIMProperty* const properties = PropertiesOf(instance);
    for (std::size_t slot = 0; slot < fStartTags.size(); ++slot) {
      if (!properties[slot].GetPropagated()) WriteProperty(properties[slot], fStartTags[slot]);
    }
    Put("</INSTANCE></VALUE.OBJECT>\n");
  }

  void Warn(std::string_view what) {
    LogCore(zelLogWarning, Text("TCIMXMLWriter: ", fOwner, fMember ? "." : "",
                                fMember ? fMember->GetName() : "", ": ", what));
  }

  void WarnOfType() { Warn("left out, there is no element for its type"); }

  void PutFlavors(TCIMQualifierDecl::EFlavor flavor) {
    for (const TFlavorRow& row : kFlavors) {
      Put(" ", row.attribute, "=\"", Bool(flavor & row.bit), "\"");
    }
  }

  void PutArraySize(const TCIMValue& value) {
    if (value.IsArray() && value.GetMaxArraySize() != 0) {
      Put(" ARRAYSIZE=\"", std::to_string(value.GetMaxArraySize()), "\"");
    }
  }

  void WriteQualifierDecl(const TCIMQualifierDecl& decl) {
    const TCIMValue value = decl.GetValue();
    fOwner = decl.GetName();
    fMember = nullptr;
    if (!IsText(value.GetType())) return WarnOfType();
    Put("<QUALIFIER.DECLARATION NAME=\"", fOwner, "\" TYPE=\"", TypeText(value.GetType()),
        "\" ISARRAY=\"", Bool(value.IsArray()), "\"");
    PutArraySize(value);
    PutFlavors(decl.GetFlavor());
    Put(">\n<SCOPE");
    for (const TScopeRow& row : kScopes) {
      Put(" ", row.attribute, "=\"", Bool(decl.GetScope() & row.bit), "\"");
    }
    Put("/>");
    WriteValue(value);
    Put("</QUALIFIER.DECLARATION>\n");
  }

  void WriteQualifier(const TCIMQualifier& qualifier) {
    const TCIMValue value = qualifier.GetValue();
    const TCIMType type = qualifier.GetDeclaration()->GetType();
    if (!IsText(type)) return;  // so is its declaration
    Put("<QUALIFIER NAME=\"", qualifier.GetName(), "\" TYPE=\"", TypeText(type), "\"");
    if (qualifier.GetPropagated()) Put(" PROPAGATED=\"true\"");
    PutFlavors(qualifier.GetFlavor());
    Put(">");
    if (value.GetType() == type) {
      WriteValue(value);
    } else {
      Warn(Text("qualifier ", qualifier.GetName(), " is not of its type and read as NULL"));
    }
    Put("</QUALIFIER>\n");
  }

  void WritePropertyDecl(const TCIMPropertyDecl& decl) {
    fMember = &decl;
    WriteProperty(DefaultOf(decl), decl.EnumerateQualifiers());
  }

  // In an instance.
  struct TStartTag {
    TCIMType type;     // of the values that it is for
    std::string text;  // "": there is none for all of them
  };

  void WriteProperty(const TCIMProperty& property, const TStartTag& startTag) {
    const TCIMValue& value = ValueOf(property);
    fMember = property.GetDeclaration();
    if (value.IsNull()) {
      if (!DefaultOf(*fMember).IsNull()) Warn("its NULL is read as the default");
    } else if (!startTag.text.empty() && value.GetType() == startTag.type) {
      Put(startTag.text);
      WriteScalar(value);
      return Put("</PROPERTY>\n");
    }
    WriteProperty(value, {});
  }

  // Works out the start tags that all instances of a class have in common: those of scalars.
  void Prepare(const TCIMInstance& instance) {
    fLayout = LayoutOf(instance);
    fStartTags.clear();
    for (const TCIMProperty* property : instance.EnumerateProperties()) {
      const TCIMType type = property->GetType();
      const bool isScalar = IsText(type) && !type.IsArray();
      fStartTags.push_back({type, isScalar ? Text("<PROPERTY NAME=\"", property->GetName(),
                                                  "\" TYPE=\"", TypeText(type), "\">")
                                           : ""});
    }
  }

  // The property fMember, in a class or in an instance.
  void WriteProperty(const TCIMValue& value, const TQualifiers& qualifiers) {
    if (!value.IsReference() && !IsText(value.GetType())) return WarnOfType();
    const std::string_view element = value.IsReference() ? "PROPERTY.REFERENCE"
                                     : value.IsArray()   ? "PROPERTY.ARRAY"
                                                         : "PROPERTY";
    Put("<", element, " NAME=\"", fMember->GetName(), "\"");
    if (!value.IsReference()) {
      Put(" TYPE=\"", TypeText(value.GetType()), "\"");
      PutArraySize(value);
    } else if (value.GetReferencedClass()) {
      Put(" REFERENCECLASS=\"", value.GetReferencedClass()->GetName(), "\"");
    }
    Put(">");
    for (const TCIMQualifier* qualifier : qualifiers) WriteQualifier(*qualifier);
    WriteValue(value);
    Put("</", element, ">\n");
  }

  // Nothing for NULL.
  void WriteValue(const TCIMValue& value) {
    if (value.IsNull()) return;
    if (value.IsReference()) {
      WriteReference(ReferenceOf(value));
    } else if (value.IsArray()) {
      const std::vector<TCIMValue>& elements = value;
      Put("<VALUE.ARRAY>");
      for (const TCIMValue& element : elements) WriteScalar(element);
      Put("</VALUE.ARRAY>");
    } else {
      WriteScalar(value);
    }
  }

  void WriteScalar(const TCIMValue& value) {
    Put("<VALUE>");
    if (value.IsNull()) {
      Warn("its NULL element is read as an empty one");
    } else {
      PutScalar(value);
    }
    Put("</VALUE>");
  }

  void WriteReference(const TCIMReference& path) {
    const std::size_t keys = CountKeys(path);
    Put("<VALUE.REFERENCE>");
    if (keys == 0) {
      Put("<CLASSNAME NAME=\"", path.GetClass()->GetName(), "\"/>");
    } else {
      Put("<INSTANCENAME CLASSNAME=\"", path.GetClass()->GetName(), "\">");
      for (std::size_t key = 0; key < keys; ++key) WriteKey(*path.GetClass(), KeyAt(path, key));
      Put("</INSTANCENAME>");
    }
    Put("</VALUE.REFERENCE>");
  }

  void WriteKey(const TCIMClass& cls, const TKey& key) {
    const auto& [name, value] = key;
    if (value.IsNull() || value.IsArray()) {
      Warn(Text("left out key ", name, ", which is NULL or an array"));
      return;
    }
    const TCIMPropertyDecl* const decl = cls.FindPropertyDecl(std::string(name));
    Put("<KEYBINDING NAME=\"", decl ? std::string_view(decl->GetName()) : name, "\">");
    if (value.IsReference()) {
      WriteReference(ReferenceOf(value));
    } else {
      Put("<KEYVALUE", KeyKind(value.GetType()), ">");
      PutScalar(value);
      Put("</KEYVALUE>");
    }
    Put("</KEYBINDING>");
  }

  void PutScalar(const TCIMValue& value) {
    switch (value.GetType()) {
      case TCIMType::TypeBoolean: return Put(Bool(value));
      case TCIMType::TypeUint8: return PutNumber(static_cast<unsigned char>(value));
      case TCIMType::TypeSint8: return PutNumber(static_cast<signed char>(value));
      case TCIMType::TypeUint16: return PutNumber(static_cast<unsigned short>(value));
      case TCIMType::TypeSint16: return PutNumber(static_cast<short>(value));
      case TCIMType::TypeUint32: return PutNumber(static_cast<unsigned int>(value));
      case TCIMType::TypeSint32: return PutNumber(static_cast<int>(value));
      case TCIMType::TypeUint64: return PutNumber(static_cast<unsigned long>(value));
      case TCIMType::TypeSint64: return PutNumber(static_cast<long>(value));
      case TCIMType::TypeReal32: return PutReal(static_cast<float>(value));
      case TCIMType::TypeReal64: return PutReal(static_cast<double>(value));
      case TCIMType::TypeDateTime: return PutDateTime(value);
      case TCIMType::TypeString: return PutText(TextOf(value));
      default: return Put(value.ToString(10));
    }
  }

  template <class TReal>
  void PutReal(TReal value) {
    if (!std::isfinite(value)) {
      Warn("a real that is not finite is read as 0");
      return Put(std::isnan(value) ? "NaN" : value < 0 ? "-INF" : "INF");
    }
    PutNumber(value);
  }

  template <class TNumber>
  void PutNumber(TNumber value) {
    char digits[32];
    const char* const end = std::to_chars(digits, std::end(digits), value).ptr;
    Put(std::string_view(digits, static_cast<std::size_t>(end - digits)));
  }

  void PutDateTime(const TCIMValue& value) {
    constexpr std::size_t kSize = 25;
    constexpr std::size_t kKind = 21;
    constexpr std::string_view kMaxDays = "00065535";
    const std::string text = DateTimeTextOf(value);
    if (text.empty()) return Warn("a datetime that is not set is read as 1970-01-01");
    const bool hasForm = text.size() == kSize;
    if (!hasForm || (text[kKind] == ':' && text.compare(0, kMaxDays.size(), kMaxDays) > 0)) {
      Warn("a datetime that does not fit its form is read as another");
    }
    Put(text);
  }

  void PutText(std::string_view text) {
    bool isCarried = true;
    for (;;) {
      const std::size_t plain = zelcore::detail::CountPlain(text);
      Put(text.substr(0, plain));
      if (plain == text.size()) break;
      isCarried &= !zelcore::detail::IsForbidden(text[plain]);
      Put(zelcore::detail::Escape(text[plain]));
      text.remove_prefix(plain + 1);
    }
    if (!isCarried) Warn("control characters are replaced");
  }

  TDocumentSink fSink;
  std::string_view fOwner;                    // a class or a qualifier declaration
  const TCIMPropertyDecl* fMember = nullptr;  // a property of it, or null
  boost::shared_ptr<const TPropertyLayout> fLayout;
  std::vector<TStartTag> fStartTags;  // of the properties of instances of that layout
};

void WriteToDescriptor(int descriptor, std::string_view piece) {
  while (!piece.empty()) {
    const ssize_t size = write(descriptor, piece.data(), piece.size());
    if (size > 0) {
      piece.remove_prefix(static_cast<std::size_t>(size));
    } else if (size == 0 || errno != EINTR) {
      Fail(zelStatusFileSystemError, Text("TCIMXMLWriter: cannot write: ", std::strerror(errno)));
    }
  }
}

void WriteToStream(std::ostream& out, std::string_view piece) {
  bool isWritten = false;
  try {
    if (piece.empty()) {
      out.flush();
    } else {
      out.write(piece.data(), static_cast<std::streamsize>(piece.size()));
    }
    isWritten = out.good();
  } catch (const std::ios_base::failure&) {
    // A stream that was told to throw.
  }
  if (!isWritten) Fail(zelStatusFileSystemError, "TCIMXMLWriter: cannot write to the stream");
}

// The registered handles of the classes, each once.
std::vector<TCIMClass*> FindRegistered(const std::vector<TCIMClass*>& classes) {
  std::vector<TCIMClass*> registered;
  std::unordered_set<const TCIMClass*> seen;
  for (const TCIMClass* cls : classes) {
    if (cls->IsRootClass()) continue;  // in every container already
    TCIMClass* const found = cls->GetContainer()->GetClass(cls->GetName());
    if (seen.insert(found).second) registered.push_back(found);
  }
  return registered;
}

void AddReferenced(const TCIMClass& cls, TClassOrder& order) {
  for (const TCIMInstance* instance : cls.EnumerateInstances(false)) {
    for (const TCIMProperty* property : instance->EnumerateProperties()) {
      if (property->GetDeclaration()->GetType() == TCIMType::TypeReference &&
          !property->GetPropagated()) {
        order.AddReferenced(property->GetValue());
      }
    }
  }
}

void WriteDeclarations(TDocument& document, const TContainer& container, const TClassOrder& order) {
  document.WriteQualifierDecls(container);
  for (const TCIMClass* cls : order.GetClasses()) document.WriteClass(*cls);
}

void WriteInstancesOf(TDocument& document, const std::vector<TCIMClass*>& classes) {
  for (const TCIMClass* cls : classes) {
    document.WriteInstances(cls->EnumerateInstances(false));
  }
}

}  // namespace

TCIMXMLWriter::TCIMXMLWriter(int descriptor, ECompression compression)
    : fTarget([descriptor](std::string_view piece) { WriteToDescriptor(descriptor, piece); }),
      fCompression(compression) {}

TCIMXMLWriter::TCIMXMLWriter(std::ostream& out, ECompression compression)
    : fTarget([&out](std::string_view piece) { WriteToStream(out, piece); }),
      fCompression(compression) {}

void TCIMXMLWriter::WriteContainer(const TContainer& container) {
  TDocument document(fTarget, fCompression == ECompression::kGzip);
  TClassOrder order;
  for (TCIMClass* cls : container.GetRootClass()->EnumerateSubClasses(true)) order.Add(*cls);
  WriteDeclarations(document, container, order);
  WriteInstancesOf(document, order.GetClasses());
  document.Finish();
}

void TCIMXMLWriter::WriteClasses(const std::vector<TCIMClass*>& classes) {
  TDocument document(fTarget, fCompression == ECompression::kGzip);
  const std::vector<TCIMClass*> chosen = FindRegistered(classes);
  TClassOrder order;
  for (TCIMClass* cls : chosen) order.Add(*cls);
  for (const TCIMClass* cls : chosen) AddReferenced(*cls, order);
  if (!chosen.empty()) WriteDeclarations(document, *chosen.front()->GetContainer(), order);
  WriteInstancesOf(document, chosen);
  document.Finish();
}

void TCIMXMLWriter::WriteInstances(const std::vector<TCIMInstance*>& instances) {
  TDocument document(fTarget, fCompression == ECompression::kGzip);
  document.WriteInstances(instances);
  document.Finish();
}
