#include "collectors/cpu/parse.h"

namespace cpu_collector {
namespace {

constexpr std::uint8_t kProcessorStructure = 4;
constexpr std::uint8_t kCentralProcessor = 3;
constexpr std::uint8_t kPopulated = 0x40;
constexpr std::uint8_t kMoreCores = 0xFF;  // the count stands in the wide field

// Zero stands for unknown.
std::optional<std::uint32_t> Positive(std::optional<std::uint16_t> number) {
  if (!number || *number == 0) return std::nullopt;
  return *number;
}

std::optional<std::uint32_t> CoreCount(const kit::TSmbiosStructure& structure) {
  const auto count = structure.Byte(0x23);
  if (count == kMoreCores) return Positive(structure.Word(0x2A));
  return Positive(count);
}

}  // namespace

std::vector<TSocket> ParseSockets(const kit::TSmbios& smbios) {
  std::vector<TSocket> result;
  for (const kit::TSmbiosStructure* structure : smbios.OfType(kProcessorStructure)) {
    const auto status = structure->Byte(0x18);
    if (structure->Byte(0x05) != kCentralProcessor || !status || (*status & kPopulated) == 0) {
      continue;
    }
    TSocket socket;
    socket.designation = structure->Text(0x04);
    socket.manufacturer = structure->Text(0x07);
    socket.version = structure->Text(0x10);
    socket.externalClock = Positive(structure->Word(0x12));
    socket.maxSpeed = Positive(structure->Word(0x14));
    socket.currentSpeed = Positive(structure->Word(0x16));
    socket.serialNumber = structure->Text(0x20);
    socket.assetTag = structure->Text(0x21);
    socket.partNumber = structure->Text(0x22);
    socket.cores = CoreCount(*structure);
    result.push_back(std::move(socket));
  }
  return result;
}

}  // namespace cpu_collector
