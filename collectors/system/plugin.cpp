#include "collectors/kit/Plugin.h"
#include "collectors/kit/Publish.h"
#include "collectors/system/parse.h"

namespace system_collector {

namespace {

// ---- Keys and paths ----

constexpr const char* kComputerSystem = "KVRSG_ComputerSystem";
constexpr const char* kBiosElement = "KVRSG_SystemBIOSElement";
constexpr const char* kBaseBoard = "KVRSG_BaseBoard";
constexpr const char* kChassis = "KVRSG_Chassis";

// What the keys of a software element say of any firmware.
constexpr const char* kBiosName = "System BIOS";
constexpr uint16_t kRunning = 3;
constexpr uint16_t kNotApplicable = 66;

std::string BiosVersion(const TBios& bios) { return bios.version.value_or("not available"); }

kit::TPath ComputerPath(const TSystem& system) {
  return kit::TPath(kComputerSystem)
      .Key("CreationClassName", kComputerSystem)
      .Key("Name", system.computer.name);
}

kit::TPath BiosPath(const TBios& bios) {
  return kit::TPath(kBiosElement)
      .Key("Name", kBiosName)
      .Key("Version", BiosVersion(bios))
      .Key("SoftwareElementState", kRunning)
      .Key("SoftwareElementID", kBiosName)
      .Key("TargetOperatingSystem", kNotApplicable);
}

template <class TEnum>
std::optional<uint16_t> Number(const std::optional<TEnum>& value) {
  return value ? std::optional(static_cast<uint16_t>(*value)) : std::nullopt;
}

// ---- Classes ----

zelStatusCode PublishComputer(zelIOHandle* out, const TSystem& system) {
  const TComputer& computer = system.computer;
  return kit::TRecord(out, kComputerSystem)
      .Set("CreationClassName", kComputerSystem)
      .Set("Name", computer.name)
      .Set("ProductName", computer.productName)
      .Set("Manufacturer", computer.manufacturer)
      .Set("SerialNumber", computer.serialNumber)
      .Set("Version", computer.version)
      .Set("SKUNumber", computer.skuNumber)
      .Set("Family", computer.family)
      .Set("UUID", computer.uuid)
      .Set("MachineId", computer.machineId)
      .Set("IdentitySource", computer.identitySource)
      .Set("VirtualizationType", Number(computer.virtualization))
      .Set("ContainerType", computer.containerType)
      .Set("TotalPhysicalMemory", computer.totalPhysicalMemory)
      .Set("NumberOfProcessors", computer.processors)
      .Set("NumberOfLogicalProcessors", computer.logicalProcessors)
      .Status();
}

zelStatusCode PublishBios(zelIOHandle* out, const TSystem& system) {
  if (!system.bios) return zelStatusOK;
  const TBios& bios = *system.bios;
  return kit::TRecord(out, kBiosElement)
      .Set("Name", kBiosName)
      .Set("Version", BiosVersion(bios))
      .Set("SoftwareElementState", kRunning)
      .Set("SoftwareElementID", kBiosName)
      .Set("TargetOperatingSystem", kNotApplicable)
      .Set("Manufacturer", bios.manufacturer)
      .Set("ReleaseDate", bios.releaseDate)
      .Set("MachineTypeModel", bios.machineTypeModel)
      .Set("FirmwareMode", Number(bios.mode))
      .Set("SecureBoot", bios.secureBoot)
      .Status();
}

zelStatusCode PublishBoards(zelIOHandle* out, const TSystem& system) {
  return kit::PublishEach(system.boards, [&](const TBoard& board) {
    return kit::TRecord(out, kBaseBoard)
        .SetPhysicalKeys(board.tag)
        .Set("Manufacturer", board.manufacturer)
        .Set("Model", board.model)
        .Set("Version", board.version)
        .Set("SerialNumber", board.serialNumber)
        .Set("AssetTag", board.assetTag)
        .Status();
  });
}

zelStatusCode PublishChassis(zelIOHandle* out, const TSystem& system) {
  return kit::PublishEach(system.chassis, [&](const TChassis& chassis) {
    return kit::TRecord(out, kChassis)
        .SetPhysicalKeys(chassis.tag)
        .Set("ChassisType", chassis.type)
        .Set("Manufacturer", chassis.manufacturer)
        .Set("Version", chassis.version)
        .Set("SerialNumber", chassis.serialNumber)
        .Set("AssetTag", chassis.assetTag)
        .Set("SKUNumber", chassis.skuNumber)
        .Status();
  });
}

// ---- Associations ----

zelStatusCode PublishSystemBios(zelIOHandle* out, const TSystem& system) {
  if (!system.bios) return zelStatusOK;
  return kit::TRecord(out, "KVRSG_SystemBIOS")
      .Set("Antecedent", BiosPath(*system.bios))
      .Set("Dependent", ComputerPath(system))
      .Status();
}

zelStatusCode PublishSystemBoards(zelIOHandle* out, const TSystem& system) {
  return kit::PublishEach(system.boards, [&](const TBoard& board) {
    return kit::TRecord(out, "KVRSG_ComputerSystemBaseBoard")
        .Set("Antecedent", kit::PhysicalPath(kBaseBoard, board.tag))
        .Set("Dependent", ComputerPath(system))
        .Status();
  });
}

zelStatusCode PublishSystemChassis(zelIOHandle* out, const TSystem& system) {
  return kit::PublishEach(system.chassis, [&](const TChassis& chassis) {
    return kit::TRecord(out, "KVRSG_ComputerSystemChassis")
        .Set("Antecedent", kit::PhysicalPath(kChassis, chassis.tag))
        .Set("Dependent", ComputerPath(system))
        .Status();
  });
}

// Which of several chassis holds a board is not told.
zelStatusCode PublishChassisBoards(zelIOHandle* out, const TSystem& system) {
  if (system.chassis.size() != 1) return zelStatusOK;
  return kit::PublishEach(system.boards, [&](const TBoard& board) {
    return kit::TRecord(out, "KVRSG_ChassisBaseBoard")
        .Set("GroupComponent", kit::PhysicalPath(kChassis, system.chassis.front().tag))
        .Set("PartComponent", kit::PhysicalPath(kBaseBoard, board.tag))
        .Status();
  });
}

struct TSystemCollector {
  static constexpr const char* kName = "system";
  using TFindings = TSystem;

  static TSystem Scan(const kit::TLog& log) {
    const TSources sources = Read();
    if (sources.dmiNeedsRoot) log.Debug("only root can read all of the firmware's table");
    TSystem system = Parse(sources);
    if (system.computer.identitySource == "none") {
      log.Warning("neither SMBIOS nor a device tree tells what machine this is");
    }
    return system;
  }

  static constexpr kit::TPublisher<TSystem> kPublishers[] = {
      {kComputerSystem,                 PublishComputer     },
      {kBiosElement,                    PublishBios         },
      {kBaseBoard,                      PublishBoards       },
      {kChassis,                        PublishChassis      },
      {"KVRSG_SystemBIOS",              PublishSystemBios   },
      {"KVRSG_ComputerSystemBaseBoard", PublishSystemBoards },
      {"KVRSG_ComputerSystemChassis",   PublishSystemChassis},
      {"KVRSG_ChassisBaseBoard",        PublishChassisBoards},
  };
};

const kit::TPlugin<TSystemCollector> systemPlugin;

}  // namespace

}  // namespace system_collector
