#include <map>

#include "collectors/memory/parse.h"

// Arrays (type 16) and slots (type 17) of the firmware's table. Slots refer to their array by
// handle.
namespace memory_collector {
namespace {

using kit::TSmbiosStructure;

constexpr std::uint8_t kArrayStructure = 16;
constexpr std::uint8_t kSlotStructure = 17;
constexpr std::uint16_t kSystemMemory = 3;
constexpr std::uint64_t kKilobyte = 1024;
constexpr std::uint64_t kMegabyte = 1024 * kKilobyte;

// Bits of the type detail, from bit 1.
constexpr const char* kDetails[] = {
    "Other",
    "Unknown",
    "Fast-paged",
    "Static column",
    "Pseudo-static",
    "RAMBUS",
    "Synchronous",
    "CMOS",
    "EDO",
    "Window DRAM",
    "Cache DRAM",
    "Non-volatile",
    "Registered (Buffered)",
    "Unbuffered (Unregistered)",
    "LRDIMM",
};

// Zero and all ones stand for unknown.
template <class TNumber>
std::optional<TNumber> Known(std::optional<TNumber> number) {
  if (!number || *number == 0 || *number == static_cast<TNumber>(~TNumber{0})) return std::nullopt;
  return number;
}

// A code is never zero.
std::optional<std::uint16_t> Code(std::optional<std::uint8_t> code) {
  if (!code || *code == 0) return std::nullopt;
  return *code;
}

std::optional<std::uint64_t> MaxCapacity(const TSmbiosStructure& array) {
  constexpr std::uint32_t kInExtendedField = 0x80000000;
  const auto kilobytes = array.Dword(0x07);
  if (kilobytes == kInExtendedField) return Known(array.Qword(0x0F));
  const auto known = Known(kilobytes);
  return known ? std::optional(*known * kKilobyte) : std::nullopt;
}

// A populated slot's size.
std::optional<std::uint64_t> Size(const TSmbiosStructure& slot) {
  constexpr std::uint16_t kInExtendedField = 0x7FFF;
  constexpr std::uint16_t kInKilobytes = 0x8000;
  const auto size = slot.Word(0x0C);
  if (size == kInExtendedField) {
    const auto megabytes = slot.Dword(0x1C);
    if (!megabytes || (*megabytes & 0x7FFFFFFF) == 0) return std::nullopt;
    return (*megabytes & 0x7FFFFFFF) * kMegabyte;
  }
  const auto known = Known(size);
  if (!known) return std::nullopt;
  return (*known & kInKilobytes) ? (*known & ~kInKilobytes) * kKilobyte : *known * kMegabyte;
}

std::optional<bool> IsPopulated(const TSmbiosStructure& slot) {
  const auto size = slot.Word(0x0C);
  return size ? std::optional(*size != 0) : std::nullopt;
}

// All ones refer to the field of 32 bits, which newer tables have.
std::optional<std::uint32_t> Speed(const TSmbiosStructure& slot, std::size_t offset,
                                   std::size_t extendedOffset) {
  constexpr std::uint16_t kInExtendedField = 0xFFFF;
  const auto speed = slot.Word(offset);
  if (speed != kInExtendedField) return Known(speed);
  const auto extended = slot.Dword(extendedOffset);
  if (!extended || (*extended & 0x7FFFFFFF) == 0) return std::nullopt;
  return *extended & 0x7FFFFFFF;
}

std::optional<std::vector<std::string>> Details(std::optional<std::uint16_t> bits) {
  std::vector<std::string> details;
  for (std::size_t i = 0; bits && i < std::size(kDetails); ++i) {
    if (*bits >> (i + 1) & 1) details.push_back(kDetails[i]);
  }
  if (details.empty()) return std::nullopt;
  return details;
}

std::optional<std::uint16_t> Ranks(std::optional<std::uint8_t> attributes) {
  if (!attributes || (*attributes & 0x0F) == 0) return std::nullopt;
  return static_cast<std::uint16_t>(*attributes & 0x0F);
}

TArray ParseArray(const TSmbiosStructure& structure) {
  TArray array;
  array.location = Code(structure.Byte(0x04));
  array.use = Code(structure.Byte(0x05));
  array.errorCorrection = Code(structure.Byte(0x06));
  array.maxCapacity = MaxCapacity(structure);
  array.slots = structure.Word(0x0D);
  return array;
}

// What an empty slot tells of a module is not believed.
TModule ParseSlot(const TSmbiosStructure& structure) {
  TModule module;
  module.populated = IsPopulated(structure);
  module.formFactor = Code(structure.Byte(0x0E));
  module.deviceLocator = structure.Text(0x10);
  module.bankLocator = structure.Text(0x11);
  if (module.populated == false) return module;
  module.totalWidth = Known(structure.Word(0x08));
  module.dataWidth = Known(structure.Word(0x0A));
  module.size = Size(structure);
  module.type = Code(structure.Byte(0x12));
  module.details = Details(structure.Word(0x13));
  module.speed = Speed(structure, 0x15, 0x54);
  module.manufacturer = structure.Text(0x17);
  module.serialNumber = structure.Text(0x18);
  module.assetTag = structure.Text(0x19);
  module.partNumber = structure.Text(0x1A);
  module.ranks = Ranks(structure.Byte(0x1B));
  module.configuredSpeed = Speed(structure, 0x20, 0x58);
  module.voltage = Known(structure.Word(0x26));
  module.technology = Code(structure.Byte(0x28));
  return module;
}

}  // namespace

TPhysicalMemory ParsePhysicalMemory(const kit::TSmbios& smbios) {
  TPhysicalMemory memory;
  std::map<std::uint16_t, std::size_t> arrayByHandle;
  for (const TSmbiosStructure* structure : smbios.OfType(kArrayStructure)) {
    TArray array = ParseArray(*structure);
    array.tag = "Array" + std::to_string(memory.arrays.size());
    arrayByHandle.emplace(structure->handle, memory.arrays.size());
    memory.arrays.push_back(std::move(array));
  }
  for (const TSmbiosStructure* structure : smbios.OfType(kSlotStructure)) {
    TModule module = ParseSlot(*structure);
    module.tag = "Slot" + std::to_string(memory.modules.size());
    const auto handle = structure->Word(0x04);
    const auto found = handle ? arrayByHandle.find(*handle) : arrayByHandle.end();
    if (found != arrayByHandle.end()) {
      const TArray& array = memory.arrays[found->second];
      module.arrayTag = array.tag;
      module.isSystemMemory = array.use == kSystemMemory;
    }
    memory.modules.push_back(std::move(module));
  }
  return memory;
}

}  // namespace memory_collector
