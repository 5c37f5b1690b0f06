#include "cim/TInstanceRegistry.h"

#include <algorithm>
#include <cstring>
#include <functional>
#include <new>
#include <utility>

TInstanceRegistry::~TInstanceRegistry() {
  for (const std::uint32_t entry : fEntries) delete Entry(entry).instance;
}

std::uint32_t TInstanceRegistry::MakeEntry(std::string_view path,
                                           std::unique_ptr<TCIMInstance> instance) {
  const std::uint32_t piece = fMemory.Allocate(sizeof(TEntry) + path.size());
  fEntries.push_back(piece);
  auto* const entry = new (fMemory.At(piece)) TEntry{instance.release(), kNone, piece, path.size()};
  if (!path.empty()) std::memcpy(entry + 1, path.data(), path.size());
  return piece;
}

std::uint32_t TInstanceRegistry::Add(std::string_view path,
                                     std::unique_ptr<TCIMInstance> instance) {
  if (5 * (fPaths + 1) > 4 * fPlaces.size()) Grow();
  const std::uint32_t hash = Hash(path);
  TPlace& place = fPlaces[PlaceOf(path, hash)];
  const std::uint32_t entry = MakeEntry(path, std::move(instance));
  if (place.entry == kNone) {
    place = {entry, hash};
    ++fPaths;
  } else {
    TEntry& first = Entry(place.entry);
    Entry(first.last).next = entry;
    first.last = entry;
  }
  ++fSize;
  fOrder.clear();
  return hash;
}

TCIMInstance* TInstanceRegistry::Find(std::string_view path) const {
  if (fPlaces.empty()) return nullptr;
  const std::uint32_t entry = fPlaces[PlaceOf(path, Hash(path))].entry;
  return entry == kNone ? nullptr : Entry(entry).instance;
}

void TInstanceRegistry::Remove(std::string_view path) {
  if (fPlaces.empty()) return;
  const std::size_t place = PlaceOf(path, Hash(path));
  std::uint32_t entry = fPlaces[place].entry;
  if (entry == kNone) return;
  ForgetPlace(place);
  --fPaths;
  for (; entry != kNone; entry = Entry(entry).next) {
    delete std::exchange(Entry(entry).instance, nullptr);
    --fSize;
  }
  fOrder.clear();
  if (2 * fSize < fEntries.size()) Compact();
}

void TInstanceRegistry::AppendTo(std::vector<TCIMInstance*>& instances) const {
  if (fOrder.size() != fSize) {
    fOrder.reserve(fSize);
    for (std::uint32_t entry = 0; entry < fEntries.size(); ++entry) {
      if (At(entry)) fOrder.push_back(entry);
    }
    SortByPath(fOrder);
  }
  instances.reserve(instances.size() + fOrder.size());
  for (const std::uint32_t entry : fOrder) instances.push_back(At(entry));
}

void TInstanceRegistry::AppendTo(std::vector<TCIMInstance*>& instances,
                                 std::vector<std::uint32_t> entries) const {
  SortByPath(entries);
  for (const std::uint32_t entry : entries) {
    if (At(entry)) instances.push_back(At(entry));
  }
}

// `entries` are in the order of arrival, which those of one path keep.
void TInstanceRegistry::SortByPath(std::vector<std::uint32_t>& entries) const {
  std::stable_sort(entries.begin(), entries.end(), [this](std::uint32_t a, std::uint32_t b) {
    return Entry(fEntries[a]).Path() < Entry(fEntries[b]).Path();
  });
}

std::uint32_t TInstanceRegistry::Hash(std::string_view path) {
  const std::size_t hash = std::hash<std::string_view>()(path);
  return static_cast<std::uint32_t>(hash ^ (hash >> 32));
}

// By the hash as a fraction: so there may be any number of places.
std::size_t TInstanceRegistry::FirstPlace(std::uint32_t hash) const {
  return static_cast<std::size_t>((std::uint64_t{hash} * fPlaces.size()) >> 32);
}

std::size_t TInstanceRegistry::NextPlace(std::size_t place) const {
  return place + 1 == fPlaces.size() ? 0 : place + 1;
}

// How often NextPlace() leads from the one to the other.
std::size_t TInstanceRegistry::CountSteps(std::size_t from, std::size_t to) const {
  return to >= from ? to - from : to + fPlaces.size() - from;
}

// Where the path stands, or is to stand.
std::size_t TInstanceRegistry::PlaceOf(std::string_view path, std::uint32_t hash) const {
  std::size_t place = FirstPlace(hash);
  while (fPlaces[place].entry != kNone) {
    if (fPlaces[place].hash == hash && Entry(fPlaces[place].entry).Path() == path) break;
    place = NextPlace(place);
  }
  return place;
}

// Makes half as many places more: the fewer are empty, the more of the others are cached.
void TInstanceRegistry::Grow() {
  constexpr std::size_t kFirst = 8;
  const std::size_t places = std::max(kFirst, fPlaces.size() + fPlaces.size() / 2);
  const TPlaces old = std::exchange(fPlaces, TPlaces(places));
  for (const TPlace& moved : old) {
    if (moved.entry == kNone) continue;
    std::size_t place = FirstPlace(moved.hash);
    while (fPlaces[place].entry != kNone) place = NextPlace(place);
    fPlaces[place] = moved;
  }
}

// Empties a place and closes the gap, so that no search ends at it too early.
void TInstanceRegistry::ForgetPlace(std::size_t place) {
  std::size_t next = place;
  for (;;) {
    fPlaces[place] = TPlace();
    std::size_t first;
    do {
      next = NextPlace(next);
      if (fPlaces[next].entry == kNone) return;
      first = FirstPlace(fPlaces[next].hash);
    } while (CountSteps(first, next) < CountSteps(place, next));
    fPlaces[place] = fPlaces[next];
    place = next;
  }
}

// Drops the entries that were removed.
void TInstanceRegistry::Compact() {
  const TArena memory = std::exchange(fMemory, TArena());
  const std::vector<std::uint32_t> old = std::exchange(fEntries, std::vector<std::uint32_t>());
  fPlaces.clear();
  fPaths = fSize = 0;
  ++fCompactions;
  for (const std::uint32_t piece : old) {
    const auto& entry = *static_cast<const TEntry*>(memory.At(piece));
    if (entry.instance) Add(entry.Path(), std::unique_ptr<TCIMInstance>(entry.instance));
  }
}
