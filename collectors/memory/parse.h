#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "collectors/kit/Smbios.h"

// What a machine tells about its memory, made into plain structs. Nothing here touches the machine;
// a fact that its texts do not hold is absent, and a malformed line is skipped.
namespace memory_collector {

// Sizes in Bytes.
struct TMemory {
  std::optional<std::uint64_t> total, available, free, buffers, cached, shared, slab;
  std::optional<std::uint64_t> swapTotal, swapFree;
  std::optional<std::uint64_t> hugePages, freeHugePages, hugePageSize;
};

// The codes of SwapType.
enum ESwapType : std::uint16_t { kUnknownSwap = 0, kPartition = 1, kFile = 2 };

struct TSwap {
  std::string name;
  ESwapType type = kUnknownSwap;
  std::uint64_t size = 0, used = 0;
  std::int32_t priority = 0;
};

// A set of slots. Codes are those of the firmware.
struct TArray {
  std::string tag;
  std::optional<std::uint16_t> location, use, errorCorrection, slots;
  std::optional<std::uint64_t> maxCapacity;
};

// A slot, and the module in it.
struct TModule {
  std::string tag;
  std::optional<std::string> arrayTag;  // absent when the table does not hold the slot's array
  bool isSystemMemory = false;          // whether that array is used as such
  std::optional<bool> populated;
  std::optional<std::uint64_t> size;
  std::optional<std::uint16_t> totalWidth, dataWidth;  // Bits
  std::optional<std::uint16_t> formFactor, type, technology, ranks;
  std::optional<std::vector<std::string>> details;
  std::optional<std::uint32_t> speed, configuredSpeed;  // millions of transfers per second
  std::optional<std::uint32_t> voltage;                 // mV
  std::optional<std::string> deviceLocator, bankLocator;
  std::optional<std::string> manufacturer, serialNumber, assetTag, partNumber;
};

struct TPhysicalMemory {
  std::vector<TArray> arrays;
  std::vector<TModule> modules;
};

TMemory ParseMemInfo(const std::string& text);
std::vector<TSwap> ParseSwaps(const std::string& text);
TPhysicalMemory ParsePhysicalMemory(const kit::TSmbios& smbios);

}  // namespace memory_collector
