#pragma once

#include <string>

class TCIMValue;

namespace zelcore::detail {

// Appends value.ToString(10), as paths spell the values of keys.
void AppendPathText(std::string& text, const TCIMValue& value);

}  // namespace zelcore::detail
