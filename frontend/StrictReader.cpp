#include "frontend/StrictReader.h"

#include <expat.h>

#include <memory>
#include <new>
#include <type_traits>

namespace zel {
namespace {

constexpr std::size_t kMaxDepth = 1000;

std::string Lower(const char* text) {
  std::string lower = text;
  for (char& c : lower) {
    if ('A' <= c && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return lower;
}

}  // namespace

// What expat calls. An exception must not cross its frames.
struct TStrictReader::TCallbacks {
  template <class TReport>
  static void Guard(void* self, TReport&& report) {
    TStrictReader& reader = *static_cast<TStrictReader*>(self);
    if (reader.fIsStopped) return;  // a few reports still come after a stop
    try {
      report(reader);
    } catch (...) {
      reader.fException = std::current_exception();
      reader.Stop();
    }
  }

  static void Start(void* self, const char* name, const char** pairs) {
    Guard(self, [&](TStrictReader& reader) {
      if (reader.fDepth == kMaxDepth) {
        reader.Nesting();
        return reader.Stop();
      }
      TAttributes attributes;
      for (; *pairs; pairs += 2) attributes.emplace_back(Lower(pairs[0]), pairs[1]);
      reader.fPlace = TPlace::kContent;
      ++reader.fDepth;
      reader.StartElement(Lower(name), attributes);
    });
  }

  static void End(void* self, const char*) {
    Guard(self, [](TStrictReader& reader) {
      if (--reader.fDepth == 0) reader.fPlace = TPlace::kEpilog;
      reader.EndElement();
    });
  }

  static void Text(void* self, const char* text, int size) {
    Guard(self, [&](TStrictReader& reader) {
      const auto begin = static_cast<std::size_t>(XML_GetCurrentByteIndex(reader.fParser));
      const std::string_view raw = reader.fText.substr(begin);
      if (raw.substr(0, 2) == "&#") reader.CharacterReference(raw.substr(0, raw.find(';') + 1));
      reader.Characters({text, static_cast<std::size_t>(size)});
    });
  }

  static void Declaration(void* self, const char*, const char* encoding, int) {
    Guard(self, [&](TStrictReader& reader) {
      if (encoding) reader.Encoding(encoding);
    });
  }

  static void CDataStart(void* self) {
    Guard(self, [](TStrictReader& reader) { reader.CData(); });
  }

  static void DocType(void* self, const char*, const char*, const char*, int hasInternalSubset) {
    Guard(self, [&](TStrictReader& reader) {
      if (!hasInternalSubset) return;
      reader.InternalSubset();
      reader.Stop();
    });
  }
};

std::optional<TStrictReader::TFault> TStrictReader::Read(std::string_view text, bool isWhole) {
  using TParser = std::unique_ptr<std::remove_pointer_t<XML_Parser>, decltype(&XML_ParserFree)>;
  const TParser parser(XML_ParserCreate(nullptr), XML_ParserFree);
  if (!parser) throw std::bad_alloc();
  fParser = parser.get();
  fText = text;
  XML_SetUserData(fParser, this);
  XML_SetElementHandler(fParser, TCallbacks::Start, TCallbacks::End);
  XML_SetCharacterDataHandler(fParser, TCallbacks::Text);
  XML_SetXmlDeclHandler(fParser, TCallbacks::Declaration);
  XML_SetCdataSectionHandler(fParser, TCallbacks::CDataStart, nullptr);
  XML_SetStartDoctypeDeclHandler(fParser, TCallbacks::DocType);
  const XML_Status status =
      XML_Parse(fParser, text.data(), static_cast<int>(text.size()), isWhole ? 1 : 0);
  if (fException) std::rethrow_exception(fException);
  if (status != XML_STATUS_ERROR || fIsStopped) return std::nullopt;
  if (XML_GetErrorCode(fParser) == XML_ERROR_NO_MEMORY) throw std::bad_alloc();
  return TFault{GetLine(), static_cast<std::size_t>(XML_GetCurrentByteIndex(fParser)), fPlace,
                XML_ErrorString(XML_GetErrorCode(fParser))};
}

unsigned long TStrictReader::GetLine() const { return XML_GetCurrentLineNumber(fParser); }

void TStrictReader::Stop() {
  fIsStopped = true;
  XML_StopParser(fParser, XML_FALSE);
}

const std::string* FindAttribute(const TStrictReader::TAttributes& attributes,
                                 std::string_view name) {
  for (const auto& attribute : attributes) {
    if (attribute.first == name) return &attribute.second;
  }
  return nullptr;
}

}  // namespace zel
