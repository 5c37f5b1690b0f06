#include "frontend/DocumentText.h"

#include <strings.h>
#include <zlib.h>

#include <fstream>
#include <string_view>

#include "frontend/StrictReader.h"

namespace zel {
namespace {

// Looks for the declaration of KEY, which stands before all classes and instances.
class TKeySearch : public TStrictReader {
 public:
  bool HasFound() const { return fHasFound; }

 protected:
  void StartElement(const std::string& name, const TAttributes& attributes) override {
    if (name == "class" || name == "instance") Stop();
    if (name != "qualifier.declaration") return;
    const std::string* const declared = FindAttribute(attributes, "name");
    if (!declared || strcasecmp(declared->c_str(), "KEY") != 0) return;
    fHasFound = true;
    Stop();
  }
  void EndElement() override {}
  void Characters(std::string_view) override {}
  void CharacterReference(std::string_view) override {}
  void Encoding(const std::string&) override {}
  void CData() override {}
  void Nesting() override {}
  void InternalSubset() override {}

 private:
  bool fHasFound = false;
};

}  // namespace

TDocumentText ReadText(const TInput& input) {
  input.RequireFile("name a CIM-XML document, plain or .gz");
  const std::string& path = input.GetPath();
  const bool isNamedGzip = path.find(".gz") != std::string::npos;
  if (!input.IsStandardInput() && IsGzip(path) != isNamedGzip) {
    return {"", isNamedGzip ? TRule::kGzipName : TRule::kGzipUnnamed};
  }
  return Unpack(path);
}

TDocumentText Unpack(const std::string& path) {
  gzFile file = gzopen(path.c_str(), "rb");  // takes plain files as they are
  std::string text;
  char block[65536];
  int count = 0;
  while (text.size() <= kMaxDocument && (count = gzread(file, block, sizeof block)) > 0) {
    text.append(block, static_cast<std::size_t>(count));
  }
  const bool isWhole = gzclose(file) == Z_OK && count >= 0;
  if (text.size() > kMaxDocument) return {"", TRule::kTooLarge};
  if (!isWhole) return {"", TRule::kGzipDamaged};
  return {std::move(text), std::nullopt};
}

bool IsGzip(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return file.get() == 0x1F && file.get() == 0x8B;
}

bool DeclaresKey(const std::string& text) {
  TKeySearch search;
  search.Read(text, true);
  return search.HasFound();
}

}  // namespace zel
