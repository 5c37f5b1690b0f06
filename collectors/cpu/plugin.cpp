#include "collectors/kit/Plugin.h"
#include "collectors/cpu/read.h"
#include "collectors/kit/Publish.h"

namespace cpu_collector {
namespace {

constexpr const char* kProcessor = "KVRSG_Processor";
constexpr const char* kCache = "KVRSG_CacheMemory";
constexpr const char* kNode = "KVRSG_NUMANode";
constexpr const char* kVulnerability = "KVRSG_CPUVulnerability";
constexpr const char* kSystemProcessor = "KVRSG_SystemProcessor";
constexpr const char* kSystemCache = "KVRSG_SystemCacheMemory";
constexpr const char* kSystemNode = "KVRSG_SystemNUMANode";
constexpr const char* kSystemVulnerability = "KVRSG_SystemCPUVulnerability";
constexpr const char* kCacheOfProcessor = "KVRSG_AssociatedCacheMemory";

struct TFindings {
  std::vector<TProcessor> processors;
  std::vector<TCache> caches;
  std::vector<TNode> nodes;
  std::vector<TVulnerability> vulnerabilities;
};

std::string NodeId(const TNode& node) { return "Node" + std::to_string(node.number); }

kit::TPath ProcessorPath(const std::string& id) { return kit::DevicePath(kProcessor, id); }
kit::TPath PathOf(const TProcessor& processor) { return ProcessorPath(processor.id); }
kit::TPath PathOf(const TCache& cache) { return kit::DevicePath(kCache, cache.id); }
kit::TPath PathOf(const TNode& node) { return kit::DevicePath(kNode, NodeId(node)); }
kit::TPath PathOf(const TVulnerability& vulnerability) {
  const kit::TSystemKeys system = kit::SystemKeys();
  return kit::TPath(kVulnerability)
      .Key("SystemCreationClassName", system.creationClassName)
      .Key("SystemName", system.name)
      .Key("CreationClassName", kVulnerability)
      .Key("Name", vulnerability.name);
}

zelStatusCode Publish(zelIOHandle* out, const TProcessor& processor) {
  return kit::TRecord(out, kProcessor)
      .SetDeviceKeys(processor.id)
      .Set("Name", processor.name)
      .Set("Manufacturer", processor.manufacturer)
      .Set("VendorID", processor.vendorId)
      .Set("Family", processor.family)
      .Set("ModelNumber", processor.modelNumber)
      .Set("Stepping", processor.stepping)
      .Set("NumberOfEnabledCores", processor.enabledCores)
      .Set("NumberOfHardwareThreads", processor.threads)
      .Set("NumberOfCores", processor.socket.cores)
      .Set("CurrentClockSpeed", processor.currentSpeed)
      .Set("MaxClockSpeed", processor.maxSpeed)
      .Set("ExternalClock", processor.socket.externalClock)
      .Set("AddressWidth", processor.addressWidth)
      .Set("Microcode", processor.microcode)
      .Set("Flags", processor.flags)
      .Set("SocketDesignation", processor.socket.designation)
      .Set("Version", processor.socket.version)
      .Set("SerialNumber", processor.socket.serialNumber)
      .Set("AssetTag", processor.socket.assetTag)
      .Set("PartNumber", processor.socket.partNumber)
      .Status();
}

zelStatusCode Publish(zelIOHandle* out, const TCache& cache) {
  return kit::TRecord(out, kCache)
      .SetDeviceKeys(cache.id)
      .Set("Level", cache.level)
      .Set("CacheType", std::uint16_t{cache.type})
      .Set("Size", cache.size)
      .Set("LineSize", cache.lineSize)
      .Set("Ways", cache.ways)
      .Set("NumberOfSets", cache.sets)
      .Set("SharedBy", cache.sharedBy)
      .Set("NumberOfSharingThreads", cache.sharingThreads)
      .Status();
}

zelStatusCode Publish(zelIOHandle* out, const TNode& node) {
  return kit::TRecord(out, kNode)
      .SetDeviceKeys(NodeId(node))
      .Set("NodeNumber", node.number)
      .Set("CPUs", node.cpus)
      .Set("NumberOfHardwareThreads", node.threads)
      .Set("TotalMemory", node.totalMemory)
      .Set("FreeMemory", node.freeMemory)
      .Set("Distances", node.distances)
      .Status();
}

zelStatusCode Publish(zelIOHandle* out, const TVulnerability& vulnerability) {
  const kit::TSystemKeys system = kit::SystemKeys();
  return kit::TRecord(out, kVulnerability)
      .Set("SystemCreationClassName", system.creationClassName)
      .Set("SystemName", system.name)
      .Set("CreationClassName", kVulnerability)
      .Set("Name", vulnerability.name)
      .Set("State", std::uint16_t{vulnerability.state})
      .Set("StateText", vulnerability.text)
      .Status();
}

template <auto list>
zelStatusCode PublishAll(zelIOHandle* out, const TFindings& findings) {
  return kit::PublishEach(findings.*list, [&](const auto& item) { return Publish(out, item); });
}

template <auto list, const char* const& kClassName>
zelStatusCode PublishPartsOfSystem(zelIOHandle* out, const TFindings& findings) {
  return kit::PublishEach(findings.*list, [&](const auto& item) {
    return kit::PublishPartOfSystem(out, kClassName, PathOf(item));
  });
}

constexpr auto kPublishSystemProcessors =
    PublishPartsOfSystem<&TFindings::processors, kSystemProcessor>;
constexpr auto kPublishSystemCaches = PublishPartsOfSystem<&TFindings::caches, kSystemCache>;
constexpr auto kPublishSystemNodes = PublishPartsOfSystem<&TFindings::nodes, kSystemNode>;
constexpr auto kPublishSystemVulnerabilities =
    PublishPartsOfSystem<&TFindings::vulnerabilities, kSystemVulnerability>;

zelStatusCode PublishCachesOfProcessors(zelIOHandle* out, const TFindings& findings) {
  return kit::PublishEach(findings.caches, [&](const TCache& cache) {
    return kit::TRecord(out, kCacheOfProcessor)
        .Set("Antecedent", PathOf(cache))
        .Set("Dependent", ProcessorPath(cache.processorId))
        .Status();
  });
}

struct TCollector {
  static constexpr const char* kName = "cpu";
  using TFindings = cpu_collector::TFindings;

  static TFindings Scan(const kit::TLog& log) {
    const TMachine machine = ReadMachine(log);
    return {BuildProcessors(machine), BuildCaches(machine), BuildNodes(machine),
            BuildVulnerabilities(machine)};
  }

  static constexpr kit::TPublisher<TFindings> kPublishers[] = {
      {kProcessor,           PublishAll<&TFindings::processors>     },
      {kCache,               PublishAll<&TFindings::caches>         },
      {kNode,                PublishAll<&TFindings::nodes>          },
      {kVulnerability,       PublishAll<&TFindings::vulnerabilities>},
      {kSystemProcessor,     kPublishSystemProcessors               },
      {kSystemCache,         kPublishSystemCaches                   },
      {kSystemNode,          kPublishSystemNodes                    },
      {kSystemVulnerability, kPublishSystemVulnerabilities          },
      {kCacheOfProcessor,    PublishCachesOfProcessors              },
  };
};

const kit::TPlugin<TCollector> gPlugin;

}  // namespace
}  // namespace cpu_collector
