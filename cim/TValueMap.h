#pragma once

#include <string>
#include <vector>

#include "cim/TCIMPropertyImpl.h"

class TQualifierSet;

// The value map that the qualifiers Values and ValueMap of a declaration make: rows of codes with
// their text.
class TValueMap {
 public:
  using TEntry = TCIMPropertyImpl::TValueMapEntry;

  // Throws zelStatusValueIsNULL for NULL elements.
  explicit TValueMap(const TQualifierSet& qualifiers);

  // The first row that holds `code`, or null.
  const TEntry* Find(unsigned long code) const;
  static const TEntry* FindFirst(const std::vector<TEntry>& rows, unsigned long code);

  std::vector<TEntry> entries;
  std::string defaultText;
  const char* complaint = nullptr;  // what is wrong with it, to be told after the property's name
  bool isUsable = false;            // there is a map, and nothing is wrong with it

 private:
  // Returns the complaint.
  const char* Read(const TCIMValue& texts, const TCIMValue* codes);

  bool fIsOrdered = false;  // rising codes without overlaps, which can be searched
};
