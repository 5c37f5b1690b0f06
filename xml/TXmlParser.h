#pragma once

#include <map>
#include <string>
#include <string_view>

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

  // 1 plus the line feeds that stand in the buffer before the current position. A line feed right
  // behind the name of an open element is covered by a NUL then, and not counted.
  unsigned int GetCurLine() const;

 protected:
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
  class TAttributes;

  // Inline in the source: the rules around them are too hot for calls.
  bool ReadName();
  bool ReadWhitespace();

  bool ParseStartTag(TOpenElements& open, TAttributes& attributes);
  bool ParseAttribute(TAttributes& attributes);
  bool ParseContent(TOpenElements& open);
  bool ParseEndTag(TOpenElements& open);
  bool ParseReference();
  bool ParseNumericReference();

  bool Refuse(const char* message);
  bool Expect(std::string_view text);
  bool SkipPast(std::string_view terminator);
  void Unget(int count);
  bool Report(char byte);

  char Cover(char* at);
  void Uncover(char* at, char byte);

  char* fPosition = nullptr;
  char* fStart = nullptr;
  // The line feeds that stand before fCountedTo, so that no line is counted twice.
  mutable char* fCountedTo = nullptr;
  mutable unsigned int fCountedLines = 0;
};
