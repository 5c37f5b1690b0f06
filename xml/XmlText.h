#pragma once

#include <cstddef>
#include <string>
#include <string_view>

// The character data of an XML document.
namespace zelcore::detail {

// How much of `text` can stand as it is, up to the first byte that cannot.
std::size_t CountPlain(std::string_view text);

// What stands for a byte at which CountPlain() ended. Where it is the reference of a character, the
// byte is the number of that character modulo 256.
std::string Escape(char c);

// Whether it is a control character, for which XML has no form at all; a character of the private
// use area stands in its place.
bool IsForbidden(char c);

}  // namespace zelcore::detail
