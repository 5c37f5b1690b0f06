#pragma once

#include <cstddef>
#include <string>
#include <string_view>

// The references that stand for single bytes in a document: five by name, the others by number.
namespace zelcore::detail {

// How far the text behind a '&' reads like the name of an entity, at most: up to its ';' when it is
// one, whose byte is stored then.
struct TNamedReference {
  std::size_t size;
  bool isWhole;
  char byte;
};
TNamedReference ReadNamedReference(const char* text);

// The number of a reference, as far as it has been read.
class TNumericReference {
 public:
  explicit TNumericReference(bool isHex) : fBase(isHex ? 16 : 10) {}

  // False for what is no digit.
  bool Add(char digit);
  bool HasDigit() const { return fHasDigit; }
  char Byte() const { return static_cast<char>(fCode); }  // sic: the code modulo 256

 private:
  unsigned int fBase;
  unsigned int fCode = 0;
  bool fHasDigit = false;
};

// Replaces the references of a text that ends in front of a markup character. False, with `decoded`
// undefined, unless all are whole and stand for bytes other than NUL.
bool DecodeReferences(std::string_view text, std::string& decoded);

}  // namespace zelcore::detail
