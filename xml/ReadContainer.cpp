// Reading a document from disk into a container: the whole file, plain or gzip-compressed, into one
// buffer that the parser may write to.

#include <sys/mman.h>
#include <zlib.h>

#include <boost/shared_ptr.hpp>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "cim/TContainerImpl.h"
#include "xml/TCIMXMLParser.h"
#include "zelcore/TOSSpecific.h"
#include "zelcore/TZELException.h"
#include "zelcore/detail/Fail.h"

using zelcore::detail::Fail;
using zelcore::detail::Text;

namespace {

// A text that may be written to, and a NUL behind it.
struct TDocument {
  boost::shared_ptr<char[]> text;
  std::size_t size;
};

constexpr std::size_t kMaxDocumentSize = 0x6400000;  // 100 MiB of text

constexpr std::size_t kHugePage = 1 << 21;

// Room for `size` bytes and the NUL that ends the document; not cleared. A large document gets huge
// pages: to fault them in by the 4 KiB takes longer than to read the file.
TDocument Allocate(std::size_t size) {
  if (size > kMaxDocumentSize) Fail(zelStatusInvalidSpecificationDocument);
  const bool isLarge = size >= kHugePage;
  const std::size_t room = isLarge ? (size / kHugePage + 1) * kHugePage : size + 1;
  void* const bytes = isLarge ? std::aligned_alloc(kHugePage, room) : std::malloc(room);
  if (!bytes) Fail(zelStatusOutOfMemory);
  if (isLarge) madvise(bytes, room, MADV_HUGEPAGE);  // advice: a refusal does no harm
  return {
      {static_cast<char*>(bytes), std::free},
      size
  };
}

// The length of the text that a gzip file says it holds, checked for the magic number in front.
std::size_t ReadGzipLength(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) Fail(zelStatusFileSystemError);
  unsigned char magic[2] = {};
  if (!file.read(reinterpret_cast<char*>(magic), sizeof magic)) Fail(zelStatusFileSystemError);
  if (magic[0] != 0x1F || magic[1] != 0x8B) Fail(zelStatusInvalidGzipFile);
  unsigned char length[4] = {};
  if (!file.seekg(-4, std::ios::end) ||
      !file.read(reinterpret_cast<char*>(length), sizeof length)) {
    Fail(zelStatusFileSystemError);
  }
  return length[0] | length[1] << 8 | length[2] << 16 | static_cast<std::size_t>(length[3]) << 24;
}

TDocument ReadGzip(const std::string& path) {
  const std::size_t length = ReadGzipLength(path);
  TDocument document = Allocate(length);
  const std::unique_ptr<gzFile_s, int (*)(gzFile)> file(gzopen(path.c_str(), "rb"), gzclose);
  if (!file) Fail(zelStatusFileSystemError);
  // One byte more is asked for, so that a file that holds more than it says is noticed.
  const int count = gzread(file.get(), document.text.get(), static_cast<unsigned int>(length + 1));
  if (count < 0 || static_cast<std::size_t>(count) != length) Fail(zelStatusCorruptGzipFile);
  document.text[static_cast<std::ptrdiff_t>(length)] = '\0';
  return document;
}

TDocument ReadPlain(const std::string& path, std::size_t size) {
  TDocument document = Allocate(size);
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "r"),
                                                             std::fclose);
  if (!file) Fail(zelStatusFileSystemError);
  // The file may have shrunk since it was measured.
  document.size = std::fread(document.text.get(), 1, size, file.get());
  if (std::ferror(file.get())) Fail(zelStatusFileSystemError);
  document.text[static_cast<std::ptrdiff_t>(document.size)] = '\0';
  return document;
}

TDocument ReadDocument(const std::string& path) {
  try {
    const std::size_t size = TOSSpecific::GetFileSize(path);
    // To open a FIFO or a device, or to read it, may take for ever.
    std::error_code failure;
    if (!std::filesystem::is_regular_file(path, failure)) Fail(zelStatusFileSystemError);
    return path.rfind(".gz") != std::string::npos ? ReadGzip(path) : ReadPlain(path, size);
  } catch (const TZELException& failure) {
    Fail(failure.GetStatusCode(), Text("Couldn't read file '", path, "': ", failure.what()));
  }
}

}  // namespace

std::vector<TCIMClass*> TContainerImpl::PopulateContainerFromFile(const std::string& path) {
  const TDocument document = ReadDocument(path);
  TCIMXMLParser parser(*fOwner);
  try {
    parser.Parse(document.text.get(), document.size);
  } catch (const TZELException& failure) {
    Fail(failure.GetStatusCode(), Text("Previous error was while parsing file '", path, "'"));
  }
  return parser.GetClassesCollected();
}
