#include "cim/TValueMap.h"

#include <algorithm>
#include <limits>
#include <locale>
#include <sstream>
#include <utility>

#include "cim/TQualifierSet.h"

namespace {

using TCIMType = TCIMValue::TCIMType;
using TRows = std::vector<TValueMap::TEntry>;
using TElements = std::vector<TCIMValue>;

constexpr unsigned long kOpenEnd = std::numeric_limits<unsigned long>::max();
constexpr auto kStrings = TCIMType::ECIMType(TCIMType::TypeString | TCIMType::TypeArray);

// Reads a code and what stands behind it; the base is left open.
class TCodeReader {
 public:
  explicit TCodeReader(const std::string& text) : fIn(text) {
    fIn.imbue(std::locale::classic());
    fIn.unsetf(std::ios::basefield);
  }

  bool SkipTwoPoints() { return fIn.get() == '.' && fIn.get() == '.'; }

  // 0 for what is no number.
  unsigned long ReadNumber() {
    unsigned long number = 0;
    fIn >> number;
    return number;
  }

 private:
  std::istringstream fIn;
};

// Adds the rows of ValueMap's codes and Values' texts. Returns what is wrong with them, or null.
const char* AddRows(const TElements& codes, const TElements& texts, TRows& rows,
                    std::string& defaultText) {
  rows.reserve(codes.size());
  unsigned long nextCode = 0;
  for (std::size_t i = 0; i < codes.size(); ++i) {
    const std::string code = codes[i];
    std::string text = texts[i].ToString(10);
    const bool isOpen = !rows.empty() && rows.back().high == kOpenEnd;
    if (code == "..") {
      if (isOpen) return " has a .. VALUEMAP entry after another entry that ends with ..!";
      defaultText = std::move(text);
      continue;
    }
    TCodeReader reader(code);
    if (code.compare(0, 2, "..") == 0) {
      if (isOpen) return " has a ..<value> VALUEMAP entry after another entry that ends with ..!";
      reader.SkipTwoPoints();
      rows.push_back({nextCode, reader.ReadNumber(), std::move(text)});
    } else {
      const unsigned long number = reader.ReadNumber();
      if (isOpen) rows.back().high = number - 1;
      // sic: "4..9" is "4.."; the next row ends it.
      const unsigned long high = reader.SkipTwoPoints() ? kOpenEnd : number;
      rows.push_back({number, high, std::move(text)});
    }
    nextCode = rows.back().high + 1;
  }
  return nullptr;
}

void AddNumberedRows(const TElements& texts, TRows& rows) {
  rows.reserve(texts.size());
  for (const TCIMValue& text : texts) rows.push_back({rows.size(), rows.size(), text.ToString(10)});
}

bool AreOrdered(const TRows& rows) {
  for (std::size_t i = 0; i < rows.size(); ++i) {
    if (rows[i].low > rows[i].high) return false;
    if (i > 0 && rows[i].low <= rows[i - 1].high) return false;
  }
  return true;
}

}  // namespace

TValueMap::TValueMap(const TQualifierSet& qualifiers) {
  const TCIMValue* const texts = qualifiers.FindValue("Values");
  if (!texts) return;
  complaint = Read(*texts, qualifiers.FindValue("ValueMap"));
  isUsable = !complaint;
  fIsOrdered = AreOrdered(entries);
}

const char* TValueMap::Read(const TCIMValue& texts, const TCIMValue* codes) {
  if (texts.GetType() != kStrings) return " has a VALUE qualifier that isn't a string!";
  const TElements& textElements = texts;
  if (!codes) {
    AddNumberedRows(textElements, entries);
    return nullptr;
  }
  if (codes->GetType() != kStrings) return " has a VALUEMAP qualifier that isn't a string!";
  const TElements& codeElements = *codes;
  if (codeElements.size() != textElements.size()) {
    return " has VALUE and VALUEMAP qualifiers that aren't the same size!";
  }
  return AddRows(codeElements, textElements, entries, defaultText);
}

const TValueMap::TEntry* TValueMap::Find(unsigned long code) const {
  if (!fIsOrdered) return FindFirst(entries, code);
  const auto row = std::partition_point(entries.begin(), entries.end(),
                                        [code](const TEntry& entry) { return entry.high < code; });
  return row != entries.end() && row->low <= code ? &*row : nullptr;
}

const TValueMap::TEntry* TValueMap::FindFirst(const TRows& rows, unsigned long code) {
  const auto row = std::find_if(rows.begin(), rows.end(), [code](const TEntry& entry) {
    return entry.low <= code && code <= entry.high;
  });
  return row != rows.end() ? &*row : nullptr;
}
