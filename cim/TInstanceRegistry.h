#pragma once

#include <boost/shared_ptr.hpp>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "zelcore/TCIMInstance.h"

// The instances of one class by the text of their paths. Several may stand under one path, in the
// order of their arrival. Adding and finding take the same time however many there are; the order
// of the paths is worked out when it is asked for.
class TInstanceRegistry {
 public:
  static std::uint32_t Hash(const std::string& path);

  // Returns the hash of the path.
  std::uint32_t Add(std::string path, const boost::shared_ptr<TCIMInstance>& instance);
  // The first of that path, or null.
  TCIMInstance* Find(const std::string& path) const;
  // Destroys all of that path.
  void Remove(const std::string& path);
  // By path; those of one path in the order of their arrival.
  void AppendTo(std::vector<TCIMInstance*>& instances) const;
  std::size_t Size() const { return fSize; }

  // Every instance has a number, by the order of arrival, until Compactions() has changed.
  std::uint32_t Entries() const { return static_cast<std::uint32_t>(fEntries.size()); }
  std::uint32_t Compactions() const { return fCompactions; }
  // Null when it was removed.
  TCIMInstance* At(std::uint32_t entry) const { return fEntries[entry].instance.get(); }
  // The same for those in `entries` alone, as far as they are still there; ascending.
  void AppendTo(std::vector<TCIMInstance*>& instances, std::vector<std::uint32_t> entries) const;

 private:
  static constexpr std::uint32_t kNone = 0xFFFFFFFF;

  struct TEntry {
    std::string path;
    boost::shared_ptr<TCIMInstance> instance;  // null: removed
    std::uint32_t next;                        // the next of this path
    std::uint32_t last;                        // the last of this path; kept in the first
  };

  // A place for the first entry of a path. It keeps the hash, so that a search that passes by need
  // not look at the entry, which is far away in memory.
  struct TPlace {
    std::uint32_t entry = kNone;
    std::uint32_t hash = 0;
  };

  std::size_t PlaceOf(const std::string& path, std::uint32_t hash) const;
  void Rehash(std::size_t places);
  void ForgetPlace(std::size_t place);
  void Compact();
  void SortByPath(std::vector<std::uint32_t>& entries) const;

  std::vector<TEntry> fEntries;  // in the order of arrival
  std::vector<TPlace> fPlaces;   // open addressing
  std::size_t fPaths = 0;
  std::size_t fSize = 0;
  std::uint32_t fCompactions = 0;
  mutable std::vector<std::uint32_t> fOrder;  // entries by path; empty: to be worked out
};
