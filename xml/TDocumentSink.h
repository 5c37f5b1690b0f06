#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
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
    if (fPiece.size() + text.size() > kPieceSize) Pass();
    fPiece.append(text);
  }
  // Must be called, or the end of the document is missing.
  void Finish();

  // Of the text, before compression.
  std::size_t GetSize() const { return fPassed + fPiece.size(); }

 private:
  class TDeflater;
  static constexpr std::size_t kPieceSize = 1 << 16;

  // Hands the piece on.
  void Pass();

  const TTarget& fTarget;
  std::unique_ptr<TDeflater> fDeflater;  // null when plain
  std::string fPiece;
  std::size_t fPassed = 0;
};
