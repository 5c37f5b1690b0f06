#include "cim/TInstanceRegistry.h"

#include <algorithm>
#include <functional>
#include <utility>

std::uint32_t TInstanceRegistry::Add(std::string path,
                                     const boost::shared_ptr<TCIMInstance>& instance) {
  if (4 * (fPaths + 1) > 3 * fPlaces.size()) {
    Rehash(std::max<std::size_t>(8, 2 * fPlaces.size()));
  }
  const std::uint32_t hash = Hash(path);
  const auto entry = static_cast<std::uint32_t>(fEntries.size());
  TPlace& place = fPlaces[PlaceOf(path, hash)];
  fEntries.push_back({std::move(path), instance, kNone, entry});
  if (place.entry == kNone) {
    place = {entry, hash};
    ++fPaths;
  } else {
    TEntry& first = fEntries[place.entry];
    fEntries[first.last].next = entry;
    first.last = entry;
  }
  ++fSize;
  fOrder.clear();
  return hash;
}

TCIMInstance* TInstanceRegistry::Find(const std::string& path) const {
  if (fPlaces.empty()) return nullptr;
  const std::uint32_t entry = fPlaces[PlaceOf(path, Hash(path))].entry;
  return entry == kNone ? nullptr : fEntries[entry].instance.get();
}

void TInstanceRegistry::Remove(const std::string& path) {
  if (fPlaces.empty()) return;
  const std::size_t place = PlaceOf(path, Hash(path));
  std::uint32_t entry = fPlaces[place].entry;
  if (entry == kNone) return;
  ForgetPlace(place);
  --fPaths;
  for (; entry != kNone; entry = fEntries[entry].next) {
    fEntries[entry].instance.reset();
    --fSize;
  }
  fOrder.clear();
  if (2 * fSize < fEntries.size()) Compact();
}

void TInstanceRegistry::AppendTo(std::vector<TCIMInstance*>& instances) const {
  if (fOrder.size() != fSize) {
    fOrder.reserve(fSize);
    for (std::uint32_t entry = 0; entry < fEntries.size(); ++entry) {
      if (fEntries[entry].instance) fOrder.push_back(entry);
    }
    SortByPath(fOrder);
  }
  instances.reserve(instances.size() + fOrder.size());
  for (const std::uint32_t entry : fOrder) instances.push_back(fEntries[entry].instance.get());
}

void TInstanceRegistry::AppendTo(std::vector<TCIMInstance*>& instances,
                                 std::vector<std::uint32_t> entries) const {
  SortByPath(entries);
  for (const std::uint32_t entry : entries) {
    if (fEntries[entry].instance) instances.push_back(fEntries[entry].instance.get());
  }
}

// `entries` are in the order of arrival, which those of one path keep.
void TInstanceRegistry::SortByPath(std::vector<std::uint32_t>& entries) const {
  std::stable_sort(entries.begin(), entries.end(), [this](std::uint32_t a, std::uint32_t b) {
    return fEntries[a].path < fEntries[b].path;
  });
}

std::uint32_t TInstanceRegistry::Hash(const std::string& path) {
  const std::size_t hash = std::hash<std::string>()(path);
  return static_cast<std::uint32_t>(hash ^ (hash >> 32));
}

// Where the path stands, or is to stand.
std::size_t TInstanceRegistry::PlaceOf(const std::string& path, std::uint32_t hash) const {
  const std::size_t mask = fPlaces.size() - 1;
  std::size_t place = hash & mask;
  while (fPlaces[place].entry != kNone) {
    if (fPlaces[place].hash == hash && fEntries[fPlaces[place].entry].path == path) break;
    place = (place + 1) & mask;
  }
  return place;
}

void TInstanceRegistry::Rehash(std::size_t places) {
  const std::vector<TPlace> old = std::exchange(fPlaces, std::vector<TPlace>(places));
  for (const TPlace& moved : old) {
    if (moved.entry == kNone) continue;
    std::size_t place = moved.hash & (places - 1);
    while (fPlaces[place].entry != kNone) place = (place + 1) & (places - 1);
    fPlaces[place] = moved;
  }
}

// Empties a place and closes the gap, so that no search ends at it too early.
void TInstanceRegistry::ForgetPlace(std::size_t place) {
  const std::size_t mask = fPlaces.size() - 1;
  std::size_t next = place;
  for (;;) {
    fPlaces[place] = TPlace();
    std::size_t home;
    do {
      next = (next + 1) & mask;
      if (fPlaces[next].entry == kNone) return;
      home = fPlaces[next].hash & mask;
    } while (((next - home) & mask) < ((next - place) & mask));
    fPlaces[place] = fPlaces[next];
    place = next;
  }
}

// Drops the entries that were removed.
void TInstanceRegistry::Compact() {
  std::vector<TEntry> old = std::exchange(fEntries, std::vector<TEntry>());
  fPlaces.clear();
  fPaths = fSize = 0;
  ++fCompactions;
  for (TEntry& entry : old) {
    if (entry.instance) Add(std::move(entry.path), entry.instance);
  }
}
