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

  // Inline, so that texts whose size is known cost no call.
  [[gnu::always_inline]] void Put(std::string_view text) {
    if (text.size() <= kPieceSize - fUsed) {
      Gather(text);
    } else {
      PutInPieces(text);
    }
  }
  // Must be called, or the end of the document is missing.
  void Finish();

  // Of the text, before compression.
  std::size_t GetSize() const { return fPassed + fUsed; }

 private:
  class TDeflater;
  static constexpr std::size_t kPieceSize = 1 << 18;

  void PutInPieces(std::string_view text);
  // Hands on what has been gathered.
  void Pass();
  [[gnu::always_inline]] void Gather(std::string_view text) {
    std::memcpy(fPiece.get() + fUsed, text.data(), text.size());
    fUsed += text.size();
  }

  const TTarget& fTarget;
  std::unique_ptr<TDeflater> fDeflater;  // null when plain
  std::size_t fPassed = 0;
  std::size_t fUsed = 0;
  const std::unique_ptr<char[]> fPiece{new char[kPieceSize]};
};
