#include "xml/TXmlParser.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <set>
#include <utility>

#include "xml/References.h"
#include "zelcore/detail/Ascii.h"
#include "zelcore/detail/SameText.h"

// One member per rule. A byte is looked up once in a table of classes; the hot loops walk the
// buffer by pointer, while the rules around them read byte by byte with GetChar() and UngetChar(),
// because the exact counts decide where an error is seen. Open elements stand on a stack of our
// own, so that the depth of a document costs memory and no stack.

using zelcore::detail::IsAsciiDigit;
using zelcore::detail::IsAsciiLetter;
using zelcore::detail::IsSameText;
using zelcore::detail::ReadNamedReference;
using zelcore::detail::ToAsciiLower;

namespace {

using TAttributeMap = std::map<std::string, std::string>;

enum EByteClass : unsigned char {
  kStartsName = 1,
  kInName = 2,
  kIsSpace = 4,
  kInText = 8,    // all but '<', '&' and the end of the buffer
  kInValue = 16,  // the same but both quotes
};

constexpr std::array<unsigned char, 256> MakeByteClasses() {
  std::array<unsigned char, 256> classes{};
  for (int i = 0; i < 256; ++i) {
    const char c = static_cast<char>(i);
    unsigned char bits = 0;
    if (IsAsciiLetter(c) || c == '_' || c == ':') bits |= kStartsName | kInName;
    if (IsAsciiDigit(c) || c == '.' || c == '-') bits |= kInName;
    if (c == ' ' || c == '\t' || c == '\r' || c == '\n') bits |= kIsSpace;
    if (c != '<' && c != '&' && c != '\0') bits |= kInText;
    if ((bits & kInText) && c != '"' && c != '\'') bits |= kInValue;
    classes[static_cast<std::size_t>(i)] = bits;
  }
  return classes;
}

constexpr std::array<unsigned char, 256> kByteClasses = MakeByteClasses();

bool Is(char c, EByteClass byteClass) {
  return kByteClasses[static_cast<unsigned char>(c)] & byteClass;
}

// The first byte from `at` on that is not of the class. Most runs are short: searching by the block
// takes longer.
template <EByteClass kClass>
[[gnu::always_inline]] inline char* FindNot(char* at) {
  for (;; at += 4) {
    if (!Is(at[0], kClass)) return at;
    if (!Is(at[1], kClass)) return at + 1;
    if (!Is(at[2], kClass)) return at + 2;
    if (!Is(at[3], kClass)) return at + 3;
  }
}

char* SkipSpace(char* at) {
  while (Is(*at, kIsSpace)) ++at;
  return at;
}

// 0 when `begin` is behind `end`.
unsigned int CountLineFeeds(const char* begin, const char* end) {
  unsigned int count = 0;
  while (begin < end) {
    const void* const found = std::memchr(begin, '\n', static_cast<std::size_t>(end - begin));
    if (!found) break;
    begin = static_cast<const char*>(found) + 1;
    ++count;
  }
  return count;
}

}  // namespace

// Holds a NUL over one byte of the buffer until the scope ends.
class TXmlParser::TNulGuard {
 public:
  TNulGuard(TXmlParser& parser, char* at) : fParser(parser), fAt(at), fByte(parser.Cover(at)) {}
  ~TNulGuard() { fParser.Uncover(fAt, fByte); }
  TNulGuard(const TNulGuard&) = delete;
  TNulGuard& operator=(const TNulGuard&) = delete;

 private:
  TXmlParser& fParser;
  char* fAt;
  char fByte;
};

// The elements whose end tag has not been read, outermost first. A NUL stands behind each name.
class TXmlParser::TOpenElements {
 public:
  explicit TOpenElements(TXmlParser& parser) : fParser(parser) {}
  ~TOpenElements() {
    while (!IsEmpty()) Pop();
  }
  TOpenElements(const TOpenElements&) = delete;
  TOpenElements& operator=(const TOpenElements&) = delete;

  bool IsEmpty() const { return fElements.empty(); }
  void Push(char* name, char* nameEnd) {
    fElements.emplace_back(name, nameEnd, *nameEnd);
    fParser.Cover(nameEnd);
  }
  void Pop() {
    fParser.Uncover(fElements.back().nameEnd, fElements.back().covered);
    fElements.pop_back();
  }
  std::string_view GetName() const {
    const TElement& element = fElements.back();
    return {element.name, static_cast<std::size_t>(element.nameEnd - element.name)};
  }

 private:
  struct TElement {
    TElement(char* n, char* end, char byte) : name(n), nameEnd(end), covered(byte) {}
    char* name;
    char* nameEnd;
    char covered;
  };

  TXmlParser& fParser;
  std::vector<TElement> fElements;
};

// The attributes of one start tag.
class TXmlParser::TAttributeList {
 public:
  void Clear() {
    fAttributes.clear();
    fInitials = 0;
    if (!fNames.empty()) fNames.clear();
  }

  // False for a name that the tag has already.
  bool Add(std::string_view name, std::string_view value) {
    const std::uint64_t initial = std::uint64_t{1} << (static_cast<unsigned char>(name[0]) % 64);
    if ((fInitials & initial) != 0 && Has(name)) return false;
    fInitials |= initial;
    fAttributes.emplace_back(name, value);
    return true;
  }

  const TAttributes& Get() const { return fAttributes; }

 private:
  static constexpr std::size_t kFew = 16;

  bool Has(std::string_view name) {
    while (fAttributes.size() > kFew && fNames.size() < fAttributes.size()) {
      fNames.insert(fAttributes[fNames.size()].name);
    }
    if (!fNames.empty()) return fNames.count(name) != 0;
    return std::any_of(fAttributes.begin(), fAttributes.end(),
                       [name](const TAttribute& other) { return other.name == name; });
  }

  TAttributes fAttributes;
  std::uint64_t fInitials = 0;        // a bit for each name's first byte
  std::set<std::string_view> fNames;  // of many attributes, as far as one had to be looked up
};

// Attributes as StartElement() is told of them. Tags alike mostly carry the same attributes, so a
// map is kept as it was for the next tag of its kind, which then only assigns values.
class TXmlParser::TAttributeMaps {
 public:
  TAttributeMap& Fill(std::string_view tag, const TAttributes& attributes) {
    // The factors keep the element names of CIM-XML apart.
    const std::size_t kind = tag.size() + std::size_t{5} * static_cast<unsigned char>(tag.front()) +
                             std::size_t{6} * static_cast<unsigned char>(tag.back());
    TAttributeMap& map = fMaps[kind % std::size(fMaps)];
    auto next = map.begin();
    for (const TAttribute& attribute : attributes) {
      if (next != map.end() && next->first == attribute.name) {
        next->second.assign(attribute.value);
        ++next;
      } else {
        map.erase(next, map.end());
        map.emplace(attribute.name, attribute.value);
        next = map.end();
      }
    }
    map.erase(next, map.end());
    return map;
  }

 private:
  std::array<TAttributeMap, 32> fMaps;
};

TXmlParser::TXmlParser() {
  static constexpr TAwaited kAllText;
  Await(kAllText);
}

TXmlParser::~TXmlParser() = default;

void TXmlParser::Parse(char* buffer) { Parse(buffer, std::strlen(buffer)); }

void TXmlParser::Parse(char* buffer, std::size_t size) {
  fStart = fPosition = fCountedTo = buffer;
  fEnd = buffer + size;
  fCountedLines = 0;
  ParseProlog();
  ParseElement();
  while (ParseMisc()) {
  }
}

void TXmlParser::StartTag(std::string_view name, const TAttributes& attributes) {
  if (!fMaps) fMaps = std::make_unique<TAttributeMaps>();
  StartElement(name.data(), fMaps->Fill(name, attributes));
}

void TXmlParser::TextRun(std::string_view text) {
  TNulGuard terminated(*this, fPosition);
  characters(text.data(), static_cast<unsigned int>(text.size()));
}

unsigned int TXmlParser::GetCurLine() const {
  fCountedLines += CountLineFeeds(fCountedTo, fPosition);
  fCountedLines -= CountLineFeeds(fPosition, fCountedTo);
  fCountedTo = fPosition;
  return fCountedLines + 1;
}

// Reads one byte, and tells whether it is this.
inline bool TXmlParser::Take(char wanted) {
  if (*fPosition == wanted) {
    ++fPosition;
    return true;
  }
  GetChar();
  return false;
}

inline bool TXmlParser::StandsAt(const char* at, std::string_view text) const {
  return static_cast<std::size_t>(fEnd - at) >= text.size() && IsSameText({at, text.size()}, text);
}

// name := [A-Za-z_:] [A-Za-z0-9._:-]*
inline bool TXmlParser::ReadName() {
  if (!Is(GetChar(), kStartsName)) return Refuse("Invalid element/attribute name");
  fPosition = FindNot<kInName>(fPosition);
  return true;
}

inline bool TXmlParser::ReadWhitespace() {
  char* const start = fPosition;
  fPosition = SkipSpace(start);
  return fPosition != start;
}

bool TXmlParser::ValidateName() { return ReadName(); }

bool TXmlParser::SkipWhitespace() { return ReadWhitespace(); }

bool TXmlParser::ParseCharData() { return ReadCharData(); }

// prolog := [xmlDecl misc* [docTypeDecl misc*]]
bool TXmlParser::ParseProlog() {
  if (GetChar() != '<') return Refuse("Unexpected character before prolog");
  const bool hasDeclaration = GetChar() == '?';
  Unget(2);
  if (!hasDeclaration) return false;
  ParseXMLDecl();
  while (ParseMisc()) {
  }
  if (GetChar() == '<') {
    const bool hasDocType = GetChar() == '!';
    UngetChar();
    if (hasDocType) {
      UngetChar();
      ParseDocTypeDecl();
      while (ParseMisc()) {
      }
      return true;
    }
  }
  UngetChar();
  return true;
}

// xmlDecl := '<?xml' ... '?>'
bool TXmlParser::ParseXMLDecl() { return SkipPast("?>"); }

// docTypeDecl := '<!DOCTYPE' ... '>'      The first '>' ends it.
bool TXmlParser::ParseDocTypeDecl() {
  if (!Expect("<!DOCTYPE")) return Refuse("Unexpected character in doctypedecl");
  if (!SkipPast(">")) return false;
  ReadWhitespace();
  return true;
}

// misc := comment | processingInstruction | whitespace      Anything else ends it silently.
bool TXmlParser::ParseMisc() {
  if (GetChar() != '<') {
    UngetChar();
    return ReadWhitespace() && PeekChar();
  }
  switch (GetChar()) {
    case '?': Unget(2); return ParseProcessingInstruction();
    case '!': {
      const bool isComment = GetChar() == '-';
      Unget(3);
      return isComment && SkipComment();
    }
    default: Unget(2); return false;
  }
}

// processingInstruction := '<?' ... '?>'
bool TXmlParser::ParseProcessingInstruction() {
  if (!SkipPast("?>")) return false;
  processingInstruction("TBD", "TBD");
  return true;
}

// notationDecl := '<!NOTATION' ... '>'
bool TXmlParser::ParseNotationDecl() {
  if (!SkipPast(">")) return false;
  notationDecl("TBD", "TBD", "TBD");
  return true;
}

// comment := '<!--' ... '-->'
bool TXmlParser::SkipComment() {
  if (!Expect("<!--")) {
    Unget(4);  // sic: four, however many were read
    return false;
  }
  return SkipPast("-->");
}

// element := startTag [content endTag]      Children are read in the same loop.
bool TXmlParser::ParseElement() {
  TOpenElements open(*this);
  TAttributeList attributes;
  do {
    const EKnown known = fAwaited->known ? ReadKnown(open) : EKnown::kNothing;
    if (known == EKnown::kNothing && !ParseStartTag(open, attributes)) return false;
    if (!ParseContent(open)) return false;
  } while (!open.IsEmpty());
  return true;
}

// startTag := '<' name attribute* ('>' | '/>')
[[gnu::always_inline]] inline bool TXmlParser::ParseStartTag(TOpenElements& open,
                                                             TAttributeList& attributes) {
  if (GetChar() != '<') return Refuse("Unexpected character before element");
  char* const name = fPosition;
  if (!ReadName()) return false;
  char* const nameEnd = fPosition;
  attributes.Clear();
  fTagNames.clear();
  while (ReadWhitespace() && PeekChar() != '/' && PeekChar() != '>') {
    if (!ParseAttribute(attributes)) return false;
  }
  const bool isEmpty = PeekChar() == '/';
  if (isEmpty) ++fPosition;
  if (!Take('>')) return Refuse("Unexpected character before end of element");

  const std::string_view tag(name, static_cast<std::size_t>(nameEnd - name));
  // A tag without content is not worth it.
  if (fAwaited->keptTags && !isEmpty) KeepTag(name, attributes.Get());
  // An open element hides a line feed behind its name from the count of lines.
  const bool isLeaf = !isEmpty && *nameEnd != '\n' && IsSameText(tag, fAwaited->leaf);
  const bool isRead = isLeaf && ReadLeaf(tag, fPosition);
  if (!isRead) {
    open.Push(name, nameEnd);
    StartTag(tag, attributes.Get());
  }
  fTag.text.clear();
  if (isEmpty) {
    EndElement(name);
    open.Pop();
  }
  return true;
}

// leaf := '<' name '>' text '</' name '>'      Nothing is read, and false returned, where anything
// else stands.
[[gnu::always_inline]] inline bool TXmlParser::ReadPlainLeaf() {
  const std::string_view name = fAwaited->leaf;
  if (name.empty() || !StandsAt(fPosition + 1, name)) return false;
  char* const tagEnd = fPosition + 1 + name.size();
  return *tagEnd == '>' && ReadLeaf(name, tagEnd + 1);
}

// The same from `text` on.
[[gnu::always_inline]] inline bool TXmlParser::ReadLeaf(std::string_view name, char* text) {
  char* const textEnd = TAhead::FindTextEnd(text, fEnd);
  if (textEnd[0] != '<' || textEnd[1] != '/' || !StandsAt(textEnd + 2, name)) return false;
  char* const tagEnd = textEnd + 2 + name.size();
  if (*tagEnd != '>') return false;
  fPosition = tagEnd + 1;
  Leaf({text, static_cast<std::size_t>(textEnd - text)});
  return true;
}

[[gnu::always_inline]] inline TXmlParser::EKnown TXmlParser::ReadKnown(TOpenElements& open) {
  if (PeekChar() != '<') return EKnown::kNothing;
  char* const name = fPosition + 1;
  TAhead ahead(name, fEnd);
  const EKnown known = TakeKnown(ahead);
  if (known == EKnown::kNothing) return known;
  fPosition = ahead.At();
  if (known == EKnown::kStartTag) open.Push(name, FindNot<kInName>(name));
  return known;
}

void TXmlParser::KeepTag(const char* name, const TAttributes& attributes) {
  fTag.read.assign(name, static_cast<std::size_t>(fPosition - name));
  fTag.text = fTag.read;
  std::size_t taken = 0;
  for (const TAttribute& attribute : attributes) {
    const auto at = static_cast<std::size_t>(attribute.name.data() - name);
    fTagNames.copy(fTag.text.data() + at, attribute.name.size(), taken);
    taken += attribute.name.size();
  }
}

bool TXmlParser::IsTagOf(std::string_view name, std::string_view text) {
  return text.size() > name.size() && IsSameText(text.substr(0, name.size()), name) &&
         !Is(text[name.size()], kInName);
}

// attribute := name '=' ('"' value '"' | "'" value "'")
[[gnu::always_inline]] inline bool TXmlParser::ParseAttribute(TAttributeList& attributes) {
  char* const name = fPosition;
  if (!Is(*name, kStartsName)) return ReadName();  // refuses
  char* const nameEnd = FindNot<kInName>(name + 1);
  char* at = SkipSpace(nameEnd);
  if (*at != '=') return RefuseAt(at, "Unexpected character between attribute name and value");
  at = SkipSpace(at + 1);
  const char quote = *at;
  if (quote != '"' && quote != '\'') {
    return RefuseAt(at, "Unexpected character after equals of attribute name");
  }
  char* const value = at + 1;
  char* valueEnd = FindNot<kInValue>(value);
  while (*valueEnd != quote && (*valueEnd == '"' || *valueEnd == '\'')) {
    valueEnd = FindNot<kInValue>(valueEnd + 1);
  }
  if (*valueEnd != quote) return RefuseAt(valueEnd, "Unexpected character in attribute value");

  if (fAwaited->keptTags) fTagNames.append(name, nameEnd);
  for (char* c = name; c != nameEnd; ++c) *c = ToAsciiLower(*c);
  fPosition = valueEnd + 1;
  return attributes.Add({name, static_cast<std::size_t>(nameEnd - name)},
                        {value, static_cast<std::size_t>(valueEnd - value)}) ||
         RefuseTwice(nameEnd, valueEnd);
}

// content := (charData | element | processingInstruction | comment)*
// Reads up to the next child's start tag, or until no element is open any more.
inline bool TXmlParser::ParseContent(TOpenElements& open) {
  while (!open.IsEmpty()) {
    ReadCharData();
    if (PeekChar() != '<') {
      GetChar();
      return Refuse("Unexpected character where element expected");
    }
    if (ReadPlainLeaf()) continue;
    switch (fPosition[1]) {
      case '/':
        fPosition += 2;
        if (!ParseEndTag(open)) return false;
        break;
      case '?':
        if (!ParseProcessingInstruction()) return false;
        break;
      case '!':
        if (!SkipComment()) return false;
        break;
      case '\0':
        ++fPosition;
        Unget(2);  // sic: one byte before the '<'
        [[fallthrough]];
      default: return true;
    }
  }
  return true;
}

// endTag := '</' name '>'      The '</' has been read.
[[gnu::always_inline]] inline bool TXmlParser::ParseEndTag(TOpenElements& open) {
  const std::string_view name = open.GetName();
  if (!StandsAt(fPosition, name)) {
    return ReadName() && Refuse("Start and end element names don't match");
  }
  // sic: only as much as the start tag says is compared, so </abcd> ends <abc>.
  fPosition = FindNot<kInName>(fPosition + name.size());
  ReadWhitespace();
  if (!Take('>')) return Refuse("Unexpected character before end of element");
  EndElement(name.data());
  open.Pop();
  return true;
}

// charData := (text | reference)*
[[gnu::always_inline]] inline bool TXmlParser::ReadCharData() {
  bool hasReported = false;
  for (;;) {
    char* const text = fPosition;
    fPosition = SkipSpace(text);
    if (Is(*fPosition, kInText)) fPosition = TAhead::FindTextEnd(fPosition, fEnd);
    if (fPosition != text) {
      if (fAwaited->text) TextRun({text, static_cast<std::size_t>(fPosition - text)});
      hasReported = true;
    }
    if (PeekChar() != '&') return hasReported;
    hasReported |= ParseReference();
  }
}

// reference := '&' ('amp' | 'apos' | 'gt' | 'lt' | 'quot' | number) ';'      In any case of
// letters.
bool TXmlParser::ParseReference() {
  GetChar();
  if (PeekChar() == '#') return ParseNumericReference();
  const zelcore::detail::TNamedReference reference = ReadNamedReference(fPosition);
  fPosition += reference.size;
  if (reference.isWhole) return Report(reference.byte);
  GetChar();  // sic: the byte behind what could have begun one is read, too
  FatalError("Unknown entity reference");
  return false;
}

// number := '#' digit+ | '#x' hexDigit+
bool TXmlParser::ParseNumericReference() {
  GetChar();
  const bool isHex = ToAsciiLower(PeekChar()) == 'x';
  if (isHex) GetChar();
  zelcore::detail::TNumericReference number(isHex);
  while (const char c = GetChar()) {
    if (number.Add(c)) continue;
    if (c != ';') {
      FatalError("Unknown entity reference");
    } else if (number.HasDigit()) {
      return Report(number.Byte());
    } else {
      FatalError("Invalid hex character");  // sic: also for a decimal reference
    }
  }
  FatalError("Unknown entity reference");
  return false;
}

// Where a byte has been read that is not the one expected.
bool TXmlParser::RefuseAt(char* at, const char* message) {
  fPosition = at;
  GetChar();
  return Refuse(message);
}
// The line is counted while both texts stand terminated in the buffer.
bool TXmlParser::RefuseTwice(char* nameEnd, char* valueEnd) {
  TNulGuard nameGuard(*this, nameEnd);
  TNulGuard valueGuard(*this, valueEnd);
  return Refuse("Attribute appears twice");
}
bool TXmlParser::Refuse(const char* message) {
  FatalError(message);
  return false;
}

bool TXmlParser::Report(char byte) {
  const char text[] = {byte, '\0'};
  characters(text, 1);
  return true;
}

// Reads `text`, up to and including the first byte that differs.
bool TXmlParser::Expect(std::string_view text) {
  for (const char c : text) {
    if (GetChar() != c) return false;
  }
  return true;
}

// Moves past the next `terminator`, or stays when there is none.
bool TXmlParser::SkipPast(std::string_view terminator) {
  for (char* last = fPosition; (last = std::strchr(last, terminator.back()));) {
    ++last;
    const std::string_view seen(fPosition, static_cast<std::size_t>(last - fPosition));
    if (seen.size() >= terminator.size() &&
        seen.substr(seen.size() - terminator.size()) == terminator) {
      fPosition = last;
      return true;
    }
  }
  return false;
}

void TXmlParser::Unget(int count) {
  fPosition -= std::min<std::ptrdiff_t>(count, fPosition - fStart);
}

// Puts a NUL over a byte and returns the byte. A line feed that is hidden or comes back is taken
// from or added to the lines counted already, so that they stay what a fresh count would give.
char TXmlParser::Cover(char* at) {
  const char byte = *at;
  if (byte == '\n' && at < fCountedTo) --fCountedLines;
  *at = '\0';
  return byte;
}

void TXmlParser::Uncover(char* at, char byte) {
  *at = byte;
  if (byte == '\n' && at < fCountedTo) ++fCountedLines;
}
