// Any bytes at all: TXmlParser must report what a plain reader of the same grammar reports, and
// leave the buffer as it was but for the case of attribute names.

#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <string>
#include <vector>

#include "tests/xml/ReferenceXmlReader.h"
#include "xml/TXmlParser.h"
#include "zelcore/detail/Ascii.h"

namespace {

struct TStop {};

class TRecorder final : public TXmlParser {
 public:
  explicit TRecorder(bool isStrict) : fIsStrict(isStrict) {}

  void StartElement(const char* name, std::map<std::string, std::string>& attributes) override {
    std::string event = std::string("start ") + name;
    for (const auto& [key, value] : attributes) event += " " + key + "=" + value;
    Tell(event);
  }
  void EndElement(const char* name) override { Tell(std::string("end ") + name); }
  void processingInstruction(const char* target, const char* data) override {
    Tell(std::string("instruction ") + target + " " + data);
  }
  void characters(const char* text, unsigned int length) override {
    Tell("text " + std::string(text, length));
  }
  void notationDecl(const char*, const char*, const char*) override { Tell("notation"); }
  void FatalError(const char* message) override {
    Tell(std::string("fatal ") + message);
    if (fIsStrict) throw TStop();
  }

  std::vector<std::string> fEvents;

 private:
  void Tell(const std::string& event) {
    fEvents.push_back(event + " @" + std::to_string(GetCurLine()));
  }

  bool fIsStrict;
};

void Compare(const std::string& document, bool isStrict) {
  std::string buffer = document;
  TRecorder recorder(isStrict);
  try {
    recorder.Parse(buffer.data());
  } catch (const TStop&) {
  }
  if (!zelcore::detail::EqualsIgnoringAsciiCase(document, buffer)) {
    std::cerr << "the buffer was changed\n";
    std::abort();
  }
  if (recorder.fEvents != ReferenceXmlReader(document, isStrict).Read()) {
    std::cerr << "the readers disagree\n";
    std::abort();
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string document(reinterpret_cast<const char*>(data), size);
  Compare(document, true);
  Compare(document, false);
  return 0;
}
