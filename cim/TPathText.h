#pragma once

#include <cstddef>
#include <cstring>
#include <memory>
#include <string_view>

class TCIMValue;

// The text of a path while it is put together. One of usual length needs no allocation.
class TPathText {
 public:
  TPathText() = default;
  TPathText(const TPathText&) = delete;
  TPathText& operator=(const TPathText&) = delete;

  void Append(std::string_view part) {
    if (part.size() > fRoom - fSize) Grow(part.size());
    if (!part.empty()) std::memcpy(fText + fSize, part.data(), part.size());
    fSize += part.size();
  }
  // value.ToString(10), as paths spell the values of keys.
  void AppendValue(const TCIMValue& value);

  std::string_view View() const { return {fText, fSize}; }

 private:
  void Grow(std::size_t size);

  char fNear[512];
  std::unique_ptr<char[]> fFar;
  char* fText = fNear;
  std::size_t fRoom = sizeof fNear;
  std::size_t fSize = 0;
};
