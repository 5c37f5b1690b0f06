#pragma once

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "xml/TAhead.h"
#include "zelcore/detail/Export.h"

// A small, non-validating XML reader over one writable, NUL-terminated buffer. It reports what it
// finds through callbacks and keeps no text of its own: it reads in place, putting a NUL over the
// byte after a name or a text while a callback runs, and lowercases attribute names for good.
//
// It reads an optional XML declaration and DOCTYPE, comments, processing instructions, elements
// with attributes, text with the five predefined entities and numeric references. It knows no
// internal subset, namespace, CDATA section or encoding: bytes are bytes.
//
//   document := prolog element misc*
//   prolog   := [xmlDecl misc* [docTypeDecl misc*]]
//   misc     := comment | processingInstruction | whitespace
//   element  := '<' name attribute* ('/>' | '>' content '</' name '>')
//   content  := (charData | element | processingInstruction | comment)*
class ZEL_API TXmlParser {
 public:
  TXmlParser();
  virtual ~TXmlParser();

  // The callbacks, in document order. Every pointer is valid during the call only; texts are
  // NUL-terminated. An exception leaves Parse() with the buffer's bytes put back.

  // `attributes` are keyed by lowercased name, values byte for byte; the callee may change the map.
  virtual void StartElement(const char* name, std::map<std::string, std::string>& attributes) = 0;
  virtual void EndElement(const char* name) = 0;
  // `target` and `data` are not extracted: both are always "TBD".
  virtual void processingInstruction(const char* target, const char* data) = 0;
  // One run of text, or the one byte that a reference stands for; white space is text too.
  virtual void characters(const char* text, unsigned int length) = 0;
  // No rule of the grammar reaches it.
  virtual void notationDecl(const char* name, const char* publicId, const char* systemId) = 0;
  // Every reported error. It is expected to throw; where it returns, the element and all around it
  // are given up, while text is read on.
  virtual void FatalError(const char* message) = 0;

  // Reads one document. Nothing is returned: the callbacks tell how it went, and an unterminated
  // comment, processing instruction or DOCTYPE and a "<!" that opens no comment end the parse
  // without a word.
  void Parse(char* buffer);
  // The same of a document whose NUL is known to stand behind `size` bytes.
  void Parse(char* buffer, std::size_t size);

  // 1 plus the line feeds that stand in the buffer before the current position. A line feed right
  // behind the name of an open element is covered by a NUL then, and not counted.
  unsigned int GetCurLine() const;

  // An attribute where it stands in the buffer, the name lowercased.
  struct TAttribute {
    TAttribute(std::string_view n, std::string_view v) : name(n), value(v) {}
    // NOLINTNEXTLINE(google-explicit-constructor): the same in another form
    TAttribute(const std::pair<const std::string, std::string>& attribute)
        : name(attribute.first), value(attribute.second) {}

    std::string_view name;
    std::string_view value;
  };
  using TAttributes = std::vector<TAttribute>;

 protected:
  // For readers that need no copies: StartElement() and characters() are told by these two, unless
  // a subclass takes the text in place. The views stay valid until Parse() returns.

  // `name` is NUL-terminated. The attributes are in the order of the document.
  virtual void StartTag(std::string_view name, const TAttributes& attributes);
  // `text` stands in the buffer, with no NUL in it, nor behind it.
  virtual void TextRun(std::string_view text);
  // The element that is awaited as a whole; the end tag has been read. StartTag(), TextRun() and
  // EndElement() do not hear of it.
  virtual void Leaf(std::string_view /*text*/) {}

  // A start tag that has been read.
  struct TKnownTag {
    std::string text;  // what stood behind the '<', up to the '>'; "" where none has been kept
    std::string read;  // the same with the names of the attributes lowercased
  };
  // The tag that StartTag(), or Leaf(), is told of, where tags are to be kept.
  const TKnownTag& GetTag() const { return fTag; }
  // Whether the text of a tag begins with this name, spelled like this.
  static bool IsTagOf(std::string_view name, std::string_view text);

  enum class EKnown {
    kNothing,   // nothing has been taken, nor changed
    kStartTag,  // the element has been started
    kElement,   // the element has been read to its end
  };
  // Takes what stands `ahead`, behind a '<', if the subclass knows it, and leaves it as it would
  // stand there when it had been read. StartTag() does not hear of it then; of a whole element,
  // nobody does.
  virtual EKnown TakeKnown(TAhead& /*ahead*/) { return EKnown::kNothing; }

  // What the open element is good for.
  struct TAwaited {
    bool text = true;  // else TextRun() is not called
    // Leaf() is called for a child of this name, whatever its attributes, with nothing but one run
    // of text in it, or nothing.
    std::string_view leaf;
    bool known = false;     // TakeKnown() is called for its children
    bool keptTags = false;  // GetTag() has the tags of those that are not known
  };
  // What `awaited` says holds from now on. It must outlive the call of Parse().
  void Await(const TAwaited& awaited) { fAwaited = &awaited; }
  const TAwaited& GetAwaited() const { return *fAwaited; }

  // The grammar. True: the rule read what it is for.
  bool ParseProlog();
  bool ParseXMLDecl();
  bool ParseDocTypeDecl();
  bool ParseMisc();
  bool ParseProcessingInstruction();
  bool ParseNotationDecl();
  bool SkipComment();
  bool ParseElement();
  bool ValidateName();
  bool ParseCharData();

  char GetChar() { return *fPosition ? *fPosition++ : '\0'; }
  char PeekChar() const { return *fPosition; }
  // Moves back also after a GetChar() that found the end and did not move.
  void UngetChar() { Unget(1); }
  bool SkipWhitespace();

 private:
  class TNulGuard;
  class TOpenElements;
  class TAttributeList;
  class TAttributeMaps;

  // Inline in the source, as are the rules of an element: all of it is too hot for calls.
  bool ReadName();
  bool ReadWhitespace();
  bool ReadCharData();
  bool Take(char wanted);
  bool StandsAt(const char* at, std::string_view text) const;

  bool ParseStartTag(TOpenElements& open, TAttributeList& attributes);
  bool ReadPlainLeaf();
  bool ReadLeaf(std::string_view name, char* text);
  EKnown ReadKnown(TOpenElements& open);
  void KeepTag(const char* name, const TAttributes& attributes);
  bool ParseAttribute(TAttributeList& attributes);
  bool ParseContent(TOpenElements& open);
  bool ParseEndTag(TOpenElements& open);
  bool ParseReference();
  bool ParseNumericReference();

  bool Refuse(const char* message);
  bool RefuseAt(char* at, const char* message);
  bool RefuseTwice(char* nameEnd, char* valueEnd);
  bool Expect(std::string_view text);
  bool SkipPast(std::string_view terminator);
  void Unget(int count);
  bool Report(char byte);

  char Cover(char* at);
  void Uncover(char* at, char byte);

  std::unique_ptr<TAttributeMaps> fMaps;  // once StartElement() has been told of a tag
  const TAwaited* fAwaited;
  TKnownTag fTag;
  std::string fTagNames;  // of the attributes of a tag that is to be kept, as they stood there
  char* fPosition = nullptr;
  char* fStart = nullptr;
  char* fEnd = nullptr;  // of the buffer, where its NUL stands
  // The line feeds that stand before fCountedTo, so that no line is counted twice.
  mutable char* fCountedTo = nullptr;
  mutable unsigned int fCountedLines = 0;
};
