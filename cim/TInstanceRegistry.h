#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

#include "cim/HugePages.h"
#include "cim/TArena.h"
#include "zelcore/TCIMInstance.h"
#include "zelcore/detail/Export.h"

// The instances of one class by the text of their paths. Several may stand under one path, in the
// order of their arrival. Adding and finding take the same time however many there are; the order
// of the paths is worked out when it is asked for.
class ZEL_API TInstanceRegistry {
 public:
  TInstanceRegistry() = default;
  ~TInstanceRegistry();
  TInstanceRegistry(const TInstanceRegistry&) = delete;
  TInstanceRegistry& operator=(const TInstanceRegistry&) = delete;

  static std::uint32_t Hash(std::string_view path);

  // Returns the hash of the path.
  std::uint32_t Add(std::string_view path, std::unique_ptr<TCIMInstance> instance);
  // The first of that path, or null.
  TCIMInstance* Find(std::string_view path) const;
  // Destroys all of that path.
  void Remove(std::string_view path);
  // By path; those of one path in the order of their arrival.
  void AppendTo(std::vector<TCIMInstance*>& instances) const;
  std::size_t Size() const { return fSize; }

  // Every instance has a number, by the order of arrival, until Compactions() has changed.
  std::uint32_t Entries() const { return static_cast<std::uint32_t>(fEntries.size()); }
  std::uint32_t Compactions() const { return fCompactions; }
  // Null when it was removed.
  TCIMInstance* At(std::uint32_t entry) const { return Entry(fEntries[entry]).instance; }
  // The same for those in `entries` alone, as far as they are still there; ascending.
  void AppendTo(std::vector<TCIMInstance*>& instances, std::vector<std::uint32_t> entries) const;

 private:
  static constexpr std::uint32_t kNone = 0xFFFFFFFF;

  // A piece of fMemory. Its path stands behind it: a search that has found the one has the other.
  struct TEntry {
    TCIMInstance* instance;  // owned; null: removed
    std::uint32_t next;      // the next of this path
    std::uint32_t last;      // the last of this path; kept in the first
    std::size_t size;        // of the path

    std::string_view Path() const { return {reinterpret_cast<const char*>(this + 1), size}; }
  };

  // A place for the first entry of a path. It keeps the hash, so that a search that passes by need
  // not look at the entry, which is far away in memory.
  struct TPlace {
    std::uint32_t entry = kNone;
    std::uint32_t hash = 0;
  };
  using TPlaces = std::vector<TPlace, zelcore::detail::THugePageAllocator<TPlace>>;

  TEntry& Entry(std::uint32_t piece) const { return *static_cast<TEntry*>(fMemory.At(piece)); }
  std::uint32_t MakeEntry(std::string_view path, std::unique_ptr<TCIMInstance> instance);
  std::size_t PlaceOf(std::string_view path, std::uint32_t hash) const;
  std::size_t FirstPlace(std::uint32_t hash) const;
  std::size_t NextPlace(std::size_t place) const;
  std::size_t CountSteps(std::size_t from, std::size_t to) const;
  void Grow();
  void ForgetPlace(std::size_t place);
  void Compact();
  void SortByPath(std::vector<std::uint32_t>& entries) const;

  TArena fMemory;                       // of the entries
  std::vector<std::uint32_t> fEntries;  // in the order of arrival
  TPlaces fPlaces;                      // open addressing
  std::size_t fPaths = 0;
  std::size_t fSize = 0;
  std::uint32_t fCompactions = 0;
  mutable std::vector<std::uint32_t> fOrder;  // entries by path; empty: to be worked out
};
