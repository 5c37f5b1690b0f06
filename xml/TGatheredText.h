#pragma once

#include <string>
#include <string_view>

// The character data of one element: a view of the buffer for as long as it is one run there, else
// a copy of all pieces.
class TGatheredText {
 public:
  void Clear() { fText = {}; }

  // `run` stays where it is.
  void AddRun(std::string_view run) {
    if (fText.empty()) {
      fText = run;
    } else {
      AddCopy(run);
    }
  }

  void AddCopy(std::string_view text) {
    if (fText.data() != fCopy.data()) fCopy = fText;
    fText = fCopy += text;
  }

  std::string_view Get() const { return fText; }

 private:
  std::string_view fText;
  std::string fCopy;
};
