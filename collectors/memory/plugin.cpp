#include "collectors/kit/Plugin.h"
#include "collectors/kit/Publish.h"
#include "collectors/memory/parse.h"
#include "collectors/memory/read.h"

namespace memory_collector {
namespace {

constexpr const char* kMemory = "KVRSG_Memory";
constexpr const char* kSwapSpace = "KVRSG_SwapSpace";
constexpr const char* kModule = "KVRSG_PhysicalMemory";
constexpr const char* kArray = "KVRSG_PhysicalMemoryArray";
constexpr const char* kSystemMemory = "KVRSG_SystemMemory";
constexpr const char* kSystemSwapSpace = "KVRSG_SystemSwapSpace";
constexpr const char* kSystemArray = "KVRSG_SystemMemoryArray";
constexpr const char* kRealizes = "KVRSG_MemoryRealizes";
constexpr const char* kContainer = "KVRSG_PhysicalMemoryContainer";

constexpr const char* kMemoryId = "Memory";

struct TFindings {
  std::vector<TMemory> memory;  // one or none
  std::vector<TSwap> swaps;
  TPhysicalMemory physical;
};

kit::TPath PathOf(const TMemory&) { return kit::DevicePath(kMemory, kMemoryId); }
kit::TPath PathOf(const TSwap& swap) { return kit::DevicePath(kSwapSpace, swap.name); }
kit::TPath PathOf(const TModule& module) { return kit::PhysicalPath(kModule, module.tag); }
kit::TPath ArrayPath(const std::string& tag) { return kit::PhysicalPath(kArray, tag); }

zelStatusCode Publish(zelIOHandle* out, const TMemory& memory) {
  return kit::TRecord(out, kMemory)
      .SetDeviceKeys(kMemoryId)
      .Set("TotalSize", memory.total)
      .Set("AvailableSize", memory.available)
      .Set("FreeSize", memory.free)
      .Set("BuffersSize", memory.buffers)
      .Set("CachedSize", memory.cached)
      .Set("SharedSize", memory.shared)
      .Set("SlabSize", memory.slab)
      .Set("SwapTotalSize", memory.swapTotal)
      .Set("SwapFreeSize", memory.swapFree)
      .Set("HugePagesTotal", memory.hugePages)
      .Set("HugePagesFree", memory.freeHugePages)
      .Set("HugePageSize", memory.hugePageSize)
      .Status();
}

zelStatusCode Publish(zelIOHandle* out, const TSwap& swap) {
  return kit::TRecord(out, kSwapSpace)
      .SetDeviceKeys(swap.name)
      .Set("SwapType", std::uint16_t{swap.type})
      .Set("Size", swap.size)
      .Set("Used", swap.used)
      .Set("Priority", swap.priority)
      .Status();
}

zelStatusCode Publish(zelIOHandle* out, const TModule& module) {
  return kit::TRecord(out, kModule)
      .SetPhysicalKeys(module.tag)
      .Set("DeviceLocator", module.deviceLocator)
      .Set("BankLocator", module.bankLocator)
      .Set("Populated", module.populated)
      .Set("Capacity", module.size)
      .Set("MemoryType", module.type)
      .Set("TypeDetails", module.details)
      .Set("Technology", module.technology)
      .Set("FormFactor", module.formFactor)
      .Set("Speed", module.speed)
      .Set("ConfiguredSpeed", module.configuredSpeed)
      .Set("ConfiguredVoltage", module.voltage)
      .Set("TotalWidth", module.totalWidth)
      .Set("DataWidth", module.dataWidth)
      .Set("Ranks", module.ranks)
      .Set("Manufacturer", module.manufacturer)
      .Set("SerialNumber", module.serialNumber)
      .Set("PartNumber", module.partNumber)
      .Set("AssetTag", module.assetTag)
      .Status();
}

zelStatusCode Publish(zelIOHandle* out, const TArray& array) {
  return kit::TRecord(out, kArray)
      .SetPhysicalKeys(array.tag)
      .Set("Location", array.location)
      .Set("Use", array.use)
      .Set("MemoryErrorCorrection", array.errorCorrection)
      .Set("MaxCapacity", array.maxCapacity)
      .Set("NumberOfSlots", array.slots)
      .Status();
}

template <class TItems>
zelStatusCode PublishAll(zelIOHandle* out, const TItems& items) {
  return kit::PublishEach(items, [&](const auto& item) { return Publish(out, item); });
}

zelStatusCode PublishMemory(zelIOHandle* out, const TFindings& findings) {
  return PublishAll(out, findings.memory);
}
zelStatusCode PublishSwaps(zelIOHandle* out, const TFindings& findings) {
  return PublishAll(out, findings.swaps);
}
zelStatusCode PublishModules(zelIOHandle* out, const TFindings& findings) {
  return PublishAll(out, findings.physical.modules);
}
zelStatusCode PublishArrays(zelIOHandle* out, const TFindings& findings) {
  return PublishAll(out, findings.physical.arrays);
}

zelStatusCode PublishSystemMemory(zelIOHandle* out, const TFindings& findings) {
  return kit::PublishEach(findings.memory, [&](const TMemory& memory) {
    return kit::PublishPartOfSystem(out, kSystemMemory, PathOf(memory));
  });
}

zelStatusCode PublishSystemSwaps(zelIOHandle* out, const TFindings& findings) {
  return kit::PublishEach(findings.swaps, [&](const TSwap& swap) {
    return kit::PublishPartOfSystem(out, kSystemSwapSpace, PathOf(swap));
  });
}

zelStatusCode PublishSystemArrays(zelIOHandle* out, const TFindings& findings) {
  return kit::PublishEach(findings.physical.arrays, [&](const TArray& array) {
    return kit::TRecord(out, kSystemArray)
        .Set("Antecedent", ArrayPath(array.tag))
        .Set("Dependent", kit::SystemPath())
        .Status();
  });
}

// Modules of other arrays (video, flash, cache) are no part of the memory.
zelStatusCode PublishRealizations(zelIOHandle* out, const TFindings& findings) {
  return kit::PublishEach(findings.physical.modules, [&](const TModule& module) {
    if (findings.memory.empty() || !module.isSystemMemory || module.populated != true) {
      return zelStatusOK;
    }
    return kit::TRecord(out, kRealizes)
        .Set("Antecedent", PathOf(module))
        .Set("Dependent", PathOf(findings.memory.front()))
        .Status();
  });
}

zelStatusCode PublishContainers(zelIOHandle* out, const TFindings& findings) {
  return kit::PublishEach(findings.physical.modules, [&](const TModule& module) {
    if (!module.arrayTag) return zelStatusOK;
    return kit::TRecord(out, kContainer)
        .Set("GroupComponent", ArrayPath(*module.arrayTag))
        .Set("PartComponent", PathOf(module))
        .Status();
  });
}

struct TCollector {
  static constexpr const char* kName = "memory";
  using TFindings = memory_collector::TFindings;

  static TFindings Scan(const kit::TLog& log) {
    const TMachine machine = ReadMachine(log);
    TFindings findings;
    if (!machine.memInfo.empty()) findings.memory.push_back(ParseMemInfo(machine.memInfo));
    findings.swaps = ParseSwaps(machine.swaps);
    findings.physical = ParsePhysicalMemory(machine.smbios);
    return findings;
  }

  static constexpr kit::TPublisher<TFindings> kPublishers[] = {
      {kMemory,          PublishMemory      },
      {kSwapSpace,       PublishSwaps       },
      {kModule,          PublishModules     },
      {kArray,           PublishArrays      },
      {kSystemMemory,    PublishSystemMemory},
      {kSystemSwapSpace, PublishSystemSwaps },
      {kSystemArray,     PublishSystemArrays},
      {kRealizes,        PublishRealizations},
      {kContainer,       PublishContainers  },
  };
};

const kit::TPlugin<TCollector> gPlugin;

}  // namespace
}  // namespace memory_collector
