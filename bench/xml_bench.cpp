// The in-place reader against two peers, all without a consumer: what reading alone costs.

#include <benchmark/benchmark.h>
#include <expat.h>

#include <algorithm>
#include <pugixml.hpp>
#include <stdexcept>
#include <string>
#include <vector>

#include "bench/Documents.h"
#include "bench/StopWatch.h"
#include "xml/TXmlParser.h"

namespace {

// Runs `parse` on a fresh, NUL-terminated copy of the document in every round; only the parse is
// timed.
template <class TParse>
void Measure(benchmark::State& state, TParse parse) {
  static const std::string document = bench::ReadFile(bench::GetDocument("10.xml"));
  std::vector<char> buffer(document.size() + 1);
  for (auto round : state) {
    std::copy_n(document.c_str(), buffer.size(), buffer.begin());
    bench::Time(state, [&] { parse(buffer.data(), document.size()); });
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * document.size()));
}

class TSilentParser final : public TXmlParser {
 public:
  void StartElement(const char*, std::map<std::string, std::string>&) override {}
  void EndElement(const char*) override {}
  void processingInstruction(const char*, const char*) override {}
  void characters(const char*, unsigned int) override {}
  void notationDecl(const char*, const char*, const char*) override {}
  void FatalError(const char* message) override { throw std::runtime_error(message); }
};

void Subject(benchmark::State& state) {
  Measure(state, [](char* text, std::size_t) { TSilentParser().Parse(text); });
}

void Expat(benchmark::State& state) {
  Measure(state, [&](char* text, std::size_t size) {
    XML_Parser parser = XML_ParserCreate(nullptr);
    XML_SetElementHandler(
        parser, [](void*, const XML_Char*, const XML_Char**) {}, [](void*, const XML_Char*) {});
    XML_SetCharacterDataHandler(parser, [](void*, const XML_Char*, int) {});
    if (XML_Parse(parser, text, static_cast<int>(size), XML_TRUE) != XML_STATUS_OK) {
      state.SkipWithError("expat refused the document");
    }
    XML_ParserFree(parser);
  });
}

void PugixmlInPlace(benchmark::State& state) {
  pugi::xml_document dom;
  Measure(state, [&](char* text, std::size_t size) {
    if (!dom.load_buffer_inplace(text, size)) state.SkipWithError("pugixml refused the document");
  });
}

BENCHMARK(Subject)->Name("xml/TXmlParser")->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(Expat)->Name("xml/expat")->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(PugixmlInPlace)->Name("xml/pugixml")->UseManualTime()->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
