#pragma once

#include <cctype>
#include <cstring>
#include <map>
#include <string>
#include <vector>

// The grammar of TXmlParser once more, byte by byte and by recursion, with nothing made fast: an
// oracle for it. Every NUL is really written, every line number counted from the start.
class ReferenceXmlReader {
 public:
  // Stands for the exception that FatalError() throws where `isStrict`.
  struct TStop {};

  ReferenceXmlReader(std::string document, bool isStrict)
      : fDocument(std::move(document)), fIsStrict(isStrict) {
    fStart = fPosition = fDocument.data();
  }

  // What was reported, in order, each with the line it was reported on.
  std::vector<std::string> Read() {
    try {
      Prolog();
      Element();
      while (Misc()) {
      }
    } catch (const TStop&) {
    }
    return fEvents;
  }

 private:
  using TAttributes = std::map<std::string, std::string>;

  struct TNul {
    explicit TNul(char* at) : fAt(at), fByte(*at) { *at = '\0'; }
    ~TNul() { *fAt = fByte; }
    char* fAt;
    char fByte;
  };

  void Tell(const std::string& event) {
    int line = 1;
    for (const char* c = fStart; c < fPosition; ++c) line += *c == '\n';
    fEvents.push_back(event + " @" + std::to_string(line));
  }

  bool Fatal(const std::string& message) {
    Tell("fatal " + message);
    if (fIsStrict) throw TStop();
    return false;
  }

  char Get() { return *fPosition ? *fPosition++ : '\0'; }
  void Unget(int count) {
    for (; count > 0; --count) fPosition -= fPosition > fStart;
  }
  bool Whitespace() {
    const std::size_t length = std::strspn(fPosition, " \t\r\n");
    fPosition += length;
    return length > 0;
  }
  bool Past(const char* terminator) {
    char* const found = std::strstr(fPosition, terminator);
    if (!found) return false;
    fPosition = found + std::strlen(terminator);
    return true;
  }

  static bool IsLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
  static bool IsDigit(char c) { return c >= '0' && c <= '9'; }

  bool Prolog() {
    if (Get() != '<') return Fatal("Unexpected character before prolog");
    if (Get() != '?') {
      Unget(2);
      return false;
    }
    Unget(2);
    Past("?>");
    while (Misc()) {
    }
    if (Get() == '<') {
      if (Get() == '!') {
        Unget(2);
        DocType();
        while (Misc()) {
        }
        return true;
      }
      Unget(1);
    }
    Unget(1);
    return true;
  }

  bool DocType() {
    for (const char* c = "<!DOCTYPE"; *c; ++c) {
      if (Get() != *c) return Fatal("Unexpected character in doctypedecl");
    }
    if (!Past(">")) return false;
    Whitespace();
    return true;
  }

  bool Misc() {
    if (Get() != '<') {
      Unget(1);
      return Whitespace() && *fPosition;
    }
    const char second = Get();
    if (second == '?') {
      Unget(2);
      return Instruction();
    }
    if (second == '!') {
      const char third = Get();
      Unget(3);
      return third == '-' && Comment();
    }
    Unget(2);
    return false;
  }

  bool Instruction() {
    if (!Past("?>")) return false;
    Tell("instruction TBD TBD");
    return true;
  }

  bool Comment() {
    for (const char* c = "<!--"; *c; ++c) {
      if (Get() != *c) {
        Unget(4);
        return false;
      }
    }
    return Past("-->");
  }

  bool Name() {
    const char first = Get();
    if (!IsLetter(first) && first != '_' && first != ':') {
      return Fatal("Invalid element/attribute name");
    }
    char c;
    do {
      c = Get();
    } while (IsLetter(c) || IsDigit(c) || (c && std::strchr(".-_:", c)));
    Unget(1);
    return true;
  }

  bool Element() {
    if (Get() != '<') return Fatal("Unexpected character before element");
    char* const name = fPosition;
    if (!Name()) return false;
    char* const nameEnd = fPosition;
    TAttributes attributes;
    while (Whitespace() && *fPosition != '/' && *fPosition != '>') {
      if (!Attribute(attributes)) return false;
    }
    char c = Get();
    const bool isEmpty = c == '/';
    if (isEmpty) c = Get();
    if (c != '>') return Fatal("Unexpected character before end of element");

    const TNul nul(nameEnd);
    std::string event = std::string("start ") + name;
    for (const auto& [key, value] : attributes) event += " " + key + "=" + value;
    Tell(event);
    if (!isEmpty && !Content(name)) return false;
    Tell(std::string("end ") + name);
    return true;
  }

  bool Attribute(TAttributes& attributes) {
    char* const name = fPosition;
    if (!Name()) return false;
    char* const nameEnd = fPosition;
    Whitespace();
    if (Get() != '=') return Fatal("Unexpected character between attribute name and value");
    Whitespace();
    const char quote = Get();
    if (quote != '"' && quote != '\'') {
      return Fatal("Unexpected character after equals of attribute name");
    }
    char* const value = fPosition;
    for (char c = Get(); c != quote; c = Get()) {
      if (c == '<' || c == '&' || !c) return Fatal("Unexpected character in attribute value");
    }
    const TNul nameNul(nameEnd);
    const TNul valueNul(fPosition - 1);
    for (char* c = name; *c; ++c) *c = static_cast<char>(std::tolower(*c));
    return attributes.emplace(name, value).second || Fatal("Attribute appears twice");
  }

  bool Content(const char* name) {
    for (;;) {
      Text();
      if (Get() != '<') return Fatal("Unexpected character where element expected");
      const char next = Get();
      if (next == '/') break;
      Unget(2);
      if (!(next == '?' ? Instruction() : next == '!' ? Comment() : Element())) return false;
    }
    const char* const ended = fPosition;
    if (!Name()) return false;
    if (std::strncmp(name, ended, std::strlen(name)) != 0) {
      return Fatal("Start and end element names don't match");
    }
    Whitespace();
    return Get() == '>' || Fatal("Unexpected character before end of element");
  }

  void Text() {
    for (;;) {
      char* const text = fPosition;
      fPosition += std::strcspn(fPosition, "<&");
      if (fPosition != text) {
        const TNul nul(fPosition);
        Tell(std::string("text ") + text);
      }
      if (*fPosition != '&') return;
      Get();
      Reference();
    }
  }

  void Reference() {
    if (*fPosition == '#') return NumericReference();
    static const std::map<std::string, char> kEntities = {
        {"amp;",  '&' },
        {"apos;", '\''},
        {"gt;",   '>' },
        {"lt;",   '<' },
        {"quot;", '"' }
    };
    std::string name;
    for (;;) {
      name += static_cast<char>(std::tolower(Get()));
      const auto entity = kEntities.lower_bound(name);
      if (entity == kEntities.end() || entity->first.compare(0, name.size(), name) != 0) break;
      if (entity->first == name) return Tell(std::string("text ") + entity->second);
    }
    Fatal("Unknown entity reference");
  }

  void NumericReference() {
    Get();
    const bool isHex = std::tolower(*fPosition) == 'x';
    if (isHex) Get();
    unsigned char byte = 0;
    bool hasDigit = false;
    for (;;) {
      const char c = Get();
      if (!c) {
        Fatal("Unknown entity reference");
        return;
      }
      if (IsDigit(c) || (isHex && std::isxdigit(static_cast<unsigned char>(c)))) {
        const int digit = IsDigit(c) ? c - '0' : std::tolower(c) - 'a' + 10;
        byte = static_cast<unsigned char>(byte * (isHex ? 16 : 10) + digit);
        hasDigit = true;
      } else if (c != ';') {
        Fatal("Unknown entity reference");
      } else if (!hasDigit) {
        Fatal("Invalid hex character");
      } else {
        return Tell(std::string("text ") + static_cast<char>(byte));
      }
    }
  }

  std::string fDocument;
  bool fIsStrict;
  char* fStart = nullptr;
  char* fPosition = nullptr;
  std::vector<std::string> fEvents;
};
