#include "xml/TDocumentSink.h"

#include <zlib.h>

#include "zelcore/detail/Fail.h"

using zelcore::detail::Fail;

class TDocumentSink::TDeflater {
 public:
  explicit TDeflater(const TTarget& target) : fTarget(target) {
    constexpr int kGzipWindow = 15 + 16;
    constexpr int kMemoryLevel = 8;
    if (deflateInit2(&fStream, Z_DEFAULT_COMPRESSION, Z_DEFLATED, kGzipWindow, kMemoryLevel,
                     Z_DEFAULT_STRATEGY) != Z_OK) {
      Fail(zelStatusOutOfMemory);
    }
  }
  ~TDeflater() { deflateEnd(&fStream); }
  TDeflater(const TDeflater&) = delete;
  TDeflater& operator=(const TDeflater&) = delete;

  // `flush` is Z_NO_FLUSH, or Z_FINISH with the last text.
  void Put(std::string_view text, int flush) {
    fStream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(text.data()));
    fStream.avail_in = static_cast<uInt>(text.size());
    do {
      fStream.next_out = reinterpret_cast<Bytef*>(fPacked);
      fStream.avail_out = sizeof fPacked;
      deflate(&fStream, flush);  // cannot fail: the state is sound and there is room
      const std::size_t size = sizeof fPacked - fStream.avail_out;
      if (size != 0) fTarget({fPacked, size});
    } while (fStream.avail_out == 0);
  }

 private:
  const TTarget& fTarget;
  z_stream fStream = {};
  char fPacked[kPieceSize];
};

TDocumentSink::TDocumentSink(const TTarget& target, bool isCompressed)
    : fTarget(target), fDeflater(isCompressed ? std::make_unique<TDeflater>(target) : nullptr) {}

TDocumentSink::~TDocumentSink() = default;

void TDocumentSink::PutInPieces(std::string_view text) {
  while (text.size() > kPieceSize - fUsed) {
    const std::size_t room = kPieceSize - fUsed;
    Gather(text.substr(0, room));
    text.remove_prefix(room);
    Pass();
  }
  Gather(text);
}

void TDocumentSink::Pass() {
  const std::string_view piece(fPiece.get(), fUsed);
  if (fDeflater) {
    fDeflater->Put(piece, Z_NO_FLUSH);
  } else if (!piece.empty()) {
    fTarget(piece);
  }
  fPassed += fUsed;
  fUsed = 0;
}

void TDocumentSink::Finish() {
  Pass();
  if (fDeflater) fDeflater->Put({}, Z_FINISH);
  fTarget({});
}
