#pragma once

#include <chrono>
#include <iosfwd>
#include <string>

namespace zel {

struct TStreams;

// A line on a terminal that says how far the work is, rewritten in its place and gone at the end.
// It shows when the work takes longer than a moment, and only where it is wanted.
class TProgress {
 public:
  // Null: nowhere.
  explicit TProgress(TStreams* streams);
  ~TProgress();
  TProgress(const TProgress&) = delete;
  TProgress& operator=(const TProgress&) = delete;

  void Show(const std::string& text);

 private:
  std::ostream* fErr;  // null where nothing is to show
  std::string fShown;
  std::chrono::steady_clock::time_point fStart;
};

}  // namespace zel
