#pragma once

#include <functional>
#include <string>
#include <vector>

#include "frontend/Findings.h"
#include "zelcore/TCIMValue.h"

class TContainer;

namespace zel {

// Receives a rule and the values that stand behind "where" in its text.
using TValueReport = std::function<void(TRule rule, std::vector<std::string> values)>;

// Reports what becomes of `text` when the reader takes it for a value of `type`, if that is not
// what the text says. `type` is no array.
void CheckValue(TCIMValue::TCIMType type, const std::string& text, TContainer& container,
                const TValueReport& report);

// The beginning of a text that may be long.
std::string Excerpt(const std::string& text);

}  // namespace zel
