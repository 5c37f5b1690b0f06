#include "collectors/memory/read.h"

#include "collectors/kit/Files.h"

namespace memory_collector {
namespace {

const std::string kMemInfo = "/proc/meminfo";
const std::string kSwaps = "/proc/swaps";

}  // namespace

TMachine ReadMachine(const kit::TLog& log) {
  TMachine machine;
  if (auto text = kit::ReadFile(kMemInfo)) {
    machine.memInfo = std::move(*text);
  } else {
    log.Warning("No memory: " + kMemInfo + " cannot be read");
  }
  if (auto text = kit::ReadFile(kSwaps)) {
    machine.swaps = std::move(*text);
  } else {
    log.Warning("No swap spaces: " + kSwaps + " cannot be read");
  }
  if (auto smbios = kit::ReadSmbios()) {
    machine.smbios = std::move(*smbios);
  } else {
    const std::string table = kit::kSmbiosTable;
    log.Warning("No memory modules: " + table +
                (kit::NeedsRoot(table) ? " can be read by root only" : " cannot be read"));
  }
  return machine;
}

}  // namespace memory_collector
