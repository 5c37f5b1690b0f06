#pragma once

#include <cstddef>
#include <string>
#include <string_view>

// The character data of an XML document.
namespace zelcore::detail {

// How much of `text` can stand as it is, up to the first byte that cannot.
std::size_t CountPlain(std::string_view text);

// What stands for a byte at which CountPlain() ended.
std::string Escape(char c);

// Whether it is a control character that XML cannot carry, so that Escape() loses it.
bool IsLost(char c);

}  // namespace zelcore::detail
