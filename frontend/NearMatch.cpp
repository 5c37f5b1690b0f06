#include "frontend/NearMatch.h"

#include <fmt/format.h>

#include <algorithm>
#include <numeric>
#include <utility>

#include "frontend/ValueMatch.h"
#include "frontend/ValueText.h"

namespace zel {
namespace {

constexpr std::size_t kMost = 3;
constexpr std::size_t kLongest = 256;  // no name is longer

// The letters to add, take away or change until `a` is `b`.
std::size_t Distance(const std::string& a, const std::string& b) {
  std::vector<std::size_t> row(b.size() + 1);
  std::iota(row.begin(), row.end(), 0);
  for (std::size_t i = 0; i < a.size(); ++i) {
    std::size_t diagonal = row[0]++;
    for (std::size_t j = 0; j < b.size(); ++j) {
      const std::size_t changed = diagonal + (a[i] == b[j] ? 0 : 1);
      diagonal = row[j + 1];
      row[j + 1] = std::min({changed, diagonal + 1, row[j] + 1});
    }
  }
  return row.back();
}

// Whether `text` has the letters of `part` in their order: "maxspeed" in "maxclockspeed".
bool Holds(const std::string& text, const std::string& part) {
  std::size_t found = 0;
  for (const char c : text) found += found < part.size() && c == part[found] ? 1 : 0;
  return found == part.size();
}

}  // namespace

std::vector<std::string> NearMatches(const std::string& name,
                                     const std::vector<std::string>& candidates) {
  if (name.empty() || name.size() > kLongest) return {};
  const std::string wanted = LowerCase(name);
  const std::size_t farthest = std::max<std::size_t>(2, wanted.size() / 4);
  std::vector<std::pair<std::size_t, std::string>> near;
  for (const std::string& candidate : candidates) {
    const std::string lower = LowerCase(candidate);
    const bool isPart = (wanted.size() > 2 && lower.find(wanted) != std::string::npos) ||
                        (wanted.size() > 4 && Holds(lower, wanted));
    const std::size_t distance = isPart ? 0 : Distance(wanted, lower);
    if (distance <= farthest && distance < wanted.size()) near.emplace_back(distance, candidate);
  }
  std::stable_sort(near.begin(), near.end(),
                   [](const auto& a, const auto& b) { return a.first < b.first; });
  near.resize(std::min(near.size(), kMost));
  std::vector<std::string> names;
  names.reserve(near.size());
  for (auto& row : near) names.push_back(std::move(row.second));
  return names;
}

std::string DidYouMean(const std::string& name, const std::vector<std::string>& candidates) {
  const std::vector<std::string> names = NearMatches(name, candidates);
  if (names.empty()) return "";
  return Printable(fmt::format("; did you mean {}?", fmt::join(names, " or ")));
}

}  // namespace zel
