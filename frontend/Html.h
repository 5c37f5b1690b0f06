#pragma once

#include <fmt/format.h>

#include <ostream>
#include <string>
#include <string_view>
#include <type_traits>

namespace zel {

// Text of any bytes as text or attribute value of an HTML document: markup escaped, what is not
// UTF-8 or not allowed in a document replaced by U+FFFD.
std::string HtmlText(std::string_view text);

// Text that is markup already.
struct TMarkup {
  std::string html;
};

inline std::ostream& operator<<(std::ostream& out, const TMarkup& markup) {
  return out << markup.html;
}

namespace html {

inline const std::string& Escaped(const TMarkup& value) { return value.html; }

template <class TValue>
auto Escaped(const TValue& value) {
  if constexpr (std::is_arithmetic_v<TValue>) {
    return value;
  } else {
    return HtmlText(value);
  }
}

}  // namespace html

// Fills in a template of markup. Every value is escaped, unless it is markup itself.
template <class... TValues>
TMarkup Markup(std::string_view format, const TValues&... values) {
  return {fmt::format(fmt::runtime(format), html::Escaped(values)...)};
}

// "NumberOfCPUs" as "Number of CPUs".
std::string Words(std::string_view name);

// `text` as an attribute that names an element and as a fragment of an address, the same in both:
// letters, digits and "-_." stay, other bytes become ~XX. No two texts become the same.
std::string AnchorText(std::string_view text);

}  // namespace zel
