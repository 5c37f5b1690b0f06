#include "frontend/Input.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <string.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <string_view>

#include "frontend/ExitCode.h"
#include "frontend/ValueText.h"
#include "zelcore/TZELException.h"

namespace zel {
namespace {

TDescriptor NewMemory() { return TDescriptor(memfd_create("zel-input", MFD_CLOEXEC)); }

bool Append(const TDescriptor& file, std::string_view text) {
  return write(file.Get(), text.data(), text.size()) == static_cast<ssize_t>(text.size());
}

TDescriptor KeepStandardInput() {
  TDescriptor memory = NewMemory();
  char block[65536];
  const auto refuse = [](const char* why) {
    throw TCommandError(kExitBadInput, fmt::format("cannot read standard input: {}", why));
  };
  for (std::size_t size = 0; size <= kMaxDocument;) {
    const ssize_t count = read(STDIN_FILENO, block, sizeof block);
    if (count == 0) return memory;
    if (count < 0 && errno == EINTR) continue;
    if (count < 0 || !Append(memory, {block, static_cast<std::size_t>(count)})) {
      refuse(strerror(errno));
    }
    size += static_cast<std::size_t>(count);
  }
  refuse("it is longer than 100 MiB");
  return memory;
}

}  // namespace

TInput::TInput(const std::string& name)
    : fMemory(name == "-" ? KeepStandardInput() : TDescriptor()),
      fPath(fMemory ? PathOf(fMemory) : name),
      fTitle(fMemory ? "standard input" : name) {}

void TInput::RequireFile(const std::string& hint) const {
  const auto refuse = [&](const char* why, const std::string& remedy) {
    throw TCommandError(kExitBadInput,
                        Printable(fmt::format("cannot read '{}': {}; {}", fTitle, why, remedy)));
  };
  const auto refuseForErrno = [&] {
    refuse(strerror(errno), errno == EACCES ? "run zel as its owner, or as root" : hint);
  };
  struct stat status = {};
  if (stat(fPath.c_str(), &status) != 0) refuseForErrno();
  if (!S_ISREG(status.st_mode)) refuse("it is no regular file", hint);
  if (!TDescriptor(open(fPath.c_str(), O_RDONLY | O_CLOEXEC))) refuseForErrno();
}

TDescriptor KeepText(const std::string& text) {
  TDescriptor memory = NewMemory();
  if (!Append(memory, text)) throw TZELException(zelStatusOutOfMemory);
  return memory;
}

std::string PathOf(const TDescriptor& file) { return fmt::format("/proc/self/fd/{}", file.Get()); }

}  // namespace zel
