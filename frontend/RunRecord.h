#pragma once

#include <chrono>
#include <string>
#include <vector>

class TContainer;

namespace zel {

struct TPluginOutcome;

inline constexpr char kRunClass[] = "KVRSG_CollectionRun";
inline constexpr char kStatusClass[] = "KVRSG_CollectionStatus";

// What KVRSG_CollectionStatus says of a plug-in.
enum class TStatus : unsigned short { kCollected = 0, kFailed = 1 };

// Puts the run and the outcome of every plug-in into the container, as instances of the classes
// above, which its schema declares.
void RecordRun(TContainer& container, const std::vector<TPluginOutcome>& outcomes,
               std::chrono::system_clock::time_point start, std::chrono::microseconds duration);

}  // namespace zel
