#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "collectors/kit/Record.h"
#include "collectors/system/read.h"

// What the sources mean. What they leave out, or fill with placeholders, is absent.
namespace system_collector {

using TText = std::optional<std::string>;

// The numbers are those of the property VirtualizationType.
enum class EVirtualization : uint16_t {
  Physical = 1,
  OtherHypervisor = 2,
  Kvm = 3,
  Qemu = 4,
  VMware = 5,
  HyperV = 6,
  Xen = 7,
  VirtualBox = 8,
  Parallels = 9,
  Bhyve = 10,
  Acrn = 11,
  Qnx = 12,
  Apple = 13,
};

// The numbers are those of the property FirmwareMode.
enum class EFirmwareMode : uint16_t { Bios = 1, Uefi = 2 };

struct TComputer {
  std::string name;
  TText productName;
  TText manufacturer;
  TText serialNumber;
  TText version;
  TText skuNumber;
  TText family;
  TText uuid;
  TText machineId;
  std::string identitySource;
  std::optional<EVirtualization> virtualization;
  TText containerType;
  std::optional<uint64_t> totalPhysicalMemory;
  std::optional<uint32_t> processors;
  std::optional<uint32_t> logicalProcessors;
};

struct TBios {
  TText manufacturer;
  TText version;
  std::optional<kit::TDateTime> releaseDate;
  TText machineTypeModel;
  std::optional<EFirmwareMode> mode;
  std::optional<bool> secureBoot;
};

struct TBoard {
  std::string tag;  // "Base Board 0"
  TText manufacturer;
  TText model;
  TText version;
  TText serialNumber;
  TText assetTag;
};

struct TChassis {
  std::string tag;  // "Chassis 0"
  TText manufacturer;
  TText version;
  TText serialNumber;
  TText assetTag;
  TText skuNumber;
  std::optional<uint16_t> type;
};

struct TSystem {
  TComputer computer;
  std::optional<TBios> bios;
  std::vector<TBoard> boards;
  std::vector<TChassis> chassis;
};

TSystem Parse(const TSources& sources);

// The 7 characters after "-[" in the product's name, or else an SKU of 7 letters and digits.
TText ParseMachineTypeModel(const TText& productName, const TText& skuNumber);

// "04/01/2014", or "04/01/99" for a year of the last century, as midnight UTC.
std::optional<kit::TDateTime> ParseBiosDate(std::string_view text);

// In lower case; nothing for anything but a UUID, and for one that is all 0 or all F.
TText ParseUuid(std::string_view text);

EVirtualization ParseVirtualization(const TSources& sources);

// The kind of container that process 1 runs in, by the name that its makers use.
TText ParseContainerType(const TSources& sources);

}  // namespace system_collector
