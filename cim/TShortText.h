#pragma once

#include <cstring>
#include <string>
#include <string_view>

// A text that does not change, in 24 bytes: a short one stands in it, a long one on the heap.
class TShortText {
 public:
  explicit TShortText(std::string_view text) {
    char* to = fBytes;
    if (text.size() <= kRoom) {
      Kind() = static_cast<unsigned char>(text.size());
    } else {
      to = new char[text.size()];
      const TLong far{to, text.size()};
      std::memcpy(fBytes, &far, sizeof far);
      Kind() = kIsLong;
    }
    if (!text.empty()) std::memcpy(to, text.data(), text.size());
  }
  TShortText(const TShortText& other) : TShortText(other.View()) {}
  // `other` is empty afterwards.
  TShortText(TShortText&& other) noexcept {
    std::memcpy(fBytes, other.fBytes, sizeof fBytes);
    other.Kind() = 0;
  }
  TShortText& operator=(const TShortText&) = delete;
  // Exchanges the two.
  TShortText& operator=(TShortText&& other) noexcept {
    char bytes[sizeof fBytes];
    std::memcpy(bytes, fBytes, sizeof bytes);
    std::memcpy(fBytes, other.fBytes, sizeof bytes);
    std::memcpy(other.fBytes, bytes, sizeof bytes);
    return *this;
  }
  ~TShortText() {
    if (Kind() == kIsLong) delete[] Far().text;
  }

  std::string_view View() const {
    return Kind() == kIsLong ? std::string_view(Far().text, Far().size)
                             : std::string_view(fBytes, Kind());
  }
  explicit operator std::string() const { return std::string(View()); }

  bool operator==(const TShortText& other) const { return View() == other.View(); }
  bool operator<(const TShortText& other) const { return View() < other.View(); }

 private:
  static constexpr std::size_t kRoom = 23;
  static constexpr unsigned char kIsLong = 0xFF;

  struct TLong {
    const char* text;  // owned
    std::size_t size;
  };

  TLong Far() const {
    TLong far;
    std::memcpy(&far, fBytes, sizeof far);
    return far;
  }
  // The size of a short text, or kIsLong.
  unsigned char& Kind() { return reinterpret_cast<unsigned char&>(fBytes[kRoom]); }
  unsigned char Kind() const { return static_cast<unsigned char>(fBytes[kRoom]); }

  alignas(TLong) char fBytes[kRoom + 1];  // the text, or a TLong
};
