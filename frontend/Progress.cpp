#include "frontend/Progress.h"

#include "frontend/Streams.h"
#include "frontend/Utf8.h"
#include "frontend/ValueText.h"

namespace zel {
namespace {

constexpr std::chrono::milliseconds kMoment{300};
constexpr std::size_t kLongest = 79;  // a line that the terminal breaks could not be erased
constexpr char kErase[] = "\r\033[K";

}  // namespace

TProgress::TProgress(TStreams* streams)
    : fErr(streams && streams->showProgress ? &streams->err : nullptr),
      fStart(std::chrono::steady_clock::now()) {}

TProgress::~TProgress() {
  if (!fShown.empty()) *fErr << kErase << std::flush;
}

void TProgress::Show(const std::string& text) {
  if (!fErr || std::chrono::steady_clock::now() - fStart < kMoment) return;
  const std::string line = Fitted(Printable(text), kLongest);
  if (line == fShown) return;
  *fErr << kErase + line << std::flush;
  fShown = line;
}

}  // namespace zel
