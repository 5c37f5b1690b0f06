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
  void Add(std::string path, const boost::shared_ptr<TCIMInstance>& instance);
  // The first of that path, or null.
  TCIMInstance* Find(const std::string& path) const;
  // Destroys all of that path.
  void Remove(const std::string& path);
  // By path; those of one path in the order of their arrival.
  void AppendTo(std::vector<TCIMInstance*>& instances) const;
  std::size_t Size() const { return fSize; }

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

  static std::uint32_t Hash(const std::string& path);
  std::size_t PlaceOf(const std::string& path, std::uint32_t hash) const;
  void Rehash(std::size_t places);
  void ForgetPlace(std::size_t place);
  void Compact();

  std::vector<TEntry> fEntries;  // in the order of arrival
  std::vector<TPlace> fPlaces;   // open addressing
  std::size_t fPaths = 0;
  std::size_t fSize = 0;
  mutable std::vector<std::uint32_t> fOrder;  // entries by path; empty: to be worked out
};
