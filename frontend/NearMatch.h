#pragma once

#include <string>
#include <vector>

namespace zel {

// What somebody who wrote `name` may have meant: at most three of `candidates`, those that hold it,
// be it with more letters between, and those that differ in a few letters, the nearest first.
std::vector<std::string> NearMatches(const std::string& name,
                                     const std::vector<std::string>& candidates);

// "; did you mean A or B?", or nothing.
std::string DidYouMean(const std::string& name, const std::vector<std::string>& candidates);

}  // namespace zel
