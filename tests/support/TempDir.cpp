#include "tests/support/TempDir.h"

#include <stdlib.h>
#include <zlib.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace {

bool HasLib(const std::string& path) { return path.find("lib") != std::string::npos; }

std::string Parent() {
  const char* configured = getenv("TMPDIR");
  return configured && *configured && !HasLib(configured) ? configured : "/tmp";
}

}  // namespace

TempDir::TempDir() {
  do {
    std::string path = Parent() + "/zel-test-XXXXXX";
    if (!mkdtemp(path.data())) throw std::runtime_error("cannot make " + path);
    if (HasLib(path)) {
      std::filesystem::remove(path);  // the random part: try again
    } else {
      fPath = path;
    }
  } while (fPath.empty());
}

TempDir::~TempDir() {
  std::error_code ignored;
  std::filesystem::remove_all(fPath, ignored);
}

std::string TempDir::WriteFile(const std::string& name, const std::string& contents) const {
  const std::string path = PathOf(name);
  std::filesystem::create_directories(std::filesystem::path(path).parent_path());
  std::ofstream file(path, std::ios::binary);
  file << contents << std::flush;
  if (!file) throw std::runtime_error("cannot write " + path);
  return path;
}

std::string TempDir::WriteGzipFile(const std::string& name, const std::string& contents) const {
  return WriteFile(name, Gzip(contents));
}

std::string ReadFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

std::string Gzip(const std::string& contents) {
  constexpr int kGzipWrapper = 16 + MAX_WBITS;
  z_stream stream{};
  if (deflateInit2(&stream, Z_DEFAULT_COMPRESSION, Z_DEFLATED, kGzipWrapper, MAX_MEM_LEVEL,
                   Z_DEFAULT_STRATEGY) != Z_OK) {
    throw std::runtime_error("deflateInit2 failed");
  }
  std::string out(deflateBound(&stream, contents.size()), '\0');
  stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(contents.data()));
  stream.avail_in = static_cast<uInt>(contents.size());
  stream.next_out = reinterpret_cast<Bytef*>(out.data());
  stream.avail_out = static_cast<uInt>(out.size());
  const int ended = deflate(&stream, Z_FINISH);
  out.resize(stream.total_out);
  deflateEnd(&stream);
  if (ended != Z_STREAM_END) throw std::runtime_error("deflate failed");
  return out;
}
