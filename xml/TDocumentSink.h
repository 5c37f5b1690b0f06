#pragma once

#include <cstddef>
#include <cstring>
#include <functional>
#include <memory>
#include <string_view>

// Gathers the text of a document and hands it on in large pieces, compressed if wanted.
class TDocumentSink {
 public:
  using TTarget = std::function<void(std::string_view)>;

  // `target` throws when it cannot take a piece; an empty piece ends the document.
  TDocumentSink(const TTarget& target, bool isCompressed);
  ~TDocumentSink();
  TDocumentSink(const TDocumentSink&) = delete;
  TDocumentSink& operator=(const TDocumentSink&) = delete;

  void Put(std::string_view text) {
    while (text.size() > kPieceSize - fUsed) {
      const std::size_t room = kPieceSize - fUsed;
      Gather(text.substr(0, room));
      text.remove_prefix(room);
      Pass();
    }
    Gather(text);
  }
  // Must be called, or the end of the document is missing.
  void Finish();

  // Of the text, before compression.
  std::size_t GetSize() const { return fPassed + fUsed; }

 private:
  class TDeflater;
  static constexpr std::size_t kPieceSize = 1 << 16;

  // Hands on what has been gathered.
  void Pass();
  void Gather(std::string_view text) {
    std::memcpy(fPiece + fUsed, text.data(), text.size());
    fUsed += text.size();
  }

  const TTarget& fTarget;
  std::unique_ptr<TDeflater> fDeflater;  // null when plain
  std::size_t fPassed = 0;
  std::size_t fUsed = 0;
  char fPiece[kPieceSize];
};
