#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

class TCIMInstance;

namespace zel {

class TInventory;

// New objects by the addresses of those that are no more.
using TReplacedInstances = std::map<const TCIMInstance*, TCIMInstance*>;

using TRedactionKey = std::array<std::uint64_t, 2>;

// Drawn at random when it is first asked for; ends with the process, so nobody can try values out.
const TRedactionKey& ProcessKey();

// "[redacted:xxxxxxxx]", a keyed hash: equal texts stay equal under one key.
std::string RedactedText(const std::string& text, const TRedactionKey& key);

// Hides in these inventories what a property with the qualifier SENSITIVE says in any of them:
// strings become RedactedText(), other values NULL (keys a number or an interval made of their
// hash). The same text is hidden wherever else it stands, too: as a whole string, and inside other
// strings where it is a word or words of at least four characters ("root" stays). Keys, references
// and the titles of the inventories are strings like any others, so references still lead to their
// targets, which are new objects under new paths.
//
// The runs say afterwards that they are redacted. What is redacted already stays as it is.
TReplacedInstances Redact(const std::vector<TInventory*>& inventories,
                          const TRedactionKey& key = ProcessKey());

}  // namespace zel
