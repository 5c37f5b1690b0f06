#pragma once

#include <cstddef>
#include <exception>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

struct XML_ParserStruct;

namespace zel {

// Reads XML by the book, with expat: what the library's own reader is compared with. Element and
// attribute names come in lower case, as CIM-XML means them. Nothing outside the text is opened and
// no entity is ever declared: a DOCTYPE with declarations of its own ends the reading.
class TStrictReader {
 public:
  using TAttributes = std::vector<std::pair<std::string, std::string>>;

  // Where the reading stands: before, in or after the root element.
  enum class TPlace { kProlog, kContent, kEpilog };

  // Where and why the text is no XML.
  struct TFault {
    unsigned long line;
    std::size_t offset;
    TPlace place;
    std::string reason;
  };

  TStrictReader() = default;
  virtual ~TStrictReader() = default;
  TStrictReader(const TStrictReader&) = delete;
  TStrictReader& operator=(const TStrictReader&) = delete;

  // Reads `text`, once. What is not `whole` may end anywhere. No fault: it was read to its end, or
  // up to a call of Stop().
  std::optional<TFault> Read(std::string_view text, bool isWhole);
  bool HasStopped() const { return fIsStopped; }

 protected:
  virtual void StartElement(const std::string& name, const TAttributes& attributes) = 0;
  virtual void EndElement() = 0;
  // Text of one element may come in pieces.
  virtual void Characters(std::string_view text) = 0;
  // A numeric reference, as it is written; the characters follow.
  virtual void CharacterReference(std::string_view reference) = 0;
  virtual void Encoding(const std::string& name) = 0;
  virtual void CData() = 0;
  // More than a thousand elements are open, which takes expat's memory; the reading ends.
  virtual void Nesting() = 0;
  // A DOCTYPE with declarations in brackets; the reading ends.
  virtual void InternalSubset() = 0;

  // Of what is being reported.
  unsigned long GetLine() const;
  std::string_view GetText() const { return fText; }
  // Ends the reading after this report.
  void Stop();

 private:
  struct TCallbacks;

  XML_ParserStruct* fParser = nullptr;  // while reading
  std::string_view fText;
  TPlace fPlace = TPlace::kProlog;
  std::size_t fDepth = 0;
  bool fIsStopped = false;
  std::exception_ptr fException;  // of a report, until expat has returned
};

// The attribute's value, null when it is missing.
const std::string* FindAttribute(const TStrictReader::TAttributes& attributes,
                                 std::string_view name);

}  // namespace zel
