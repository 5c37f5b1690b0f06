#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <string_view>

#include "zelcore/detail/SameText.h"

class TCIMClass;

// The classes that a document named last, by their names as it spells them. It forgets one for
// another: documents have few classes and name each of them often.
class TClassMemo {
 public:
  // Null: to be looked up.
  TCIMClass* Find(std::string_view name) const {
    const TEntry& entry = fEntries[PlaceOf(name)];
    return zelcore::detail::IsSameText(entry.name, name) ? entry.cls : nullptr;
  }
  void Remember(std::string_view name, TCIMClass& cls) {
    TEntry& entry = fEntries[PlaceOf(name)];
    entry.name = name;
    entry.cls = &cls;
  }

 private:
  struct TEntry {
    std::string name;
    TCIMClass* cls = nullptr;
  };

  // Names differ at their ends.
  static std::size_t PlaceOf(std::string_view name) {
    constexpr std::size_t kEnd = 8;
    std::size_t hash = name.size();
    for (std::size_t i = name.size() < kEnd ? 0 : name.size() - kEnd; i < name.size(); ++i) {
      hash = 31 * hash + static_cast<unsigned char>(name[i]);
    }
    return hash % kPlaces;
  }

  static constexpr std::size_t kPlaces = 128;
  std::array<TEntry, kPlaces> fEntries;
};
