#include "collectors/kit/Plugin.h"
#include "collectors/os/parse.h"

namespace os_collector {

namespace {

constexpr const char* kOperatingSystem = "KVRSG_OperatingSystem";

zelStatusCode PublishOperatingSystem(zelIOHandle* out, const TOperatingSystem& os) {
  const kit::TSystemKeys system = kit::SystemKeys();
  return kit::TRecord(out, kOperatingSystem)
      .Set("CSCreationClassName", system.creationClassName)
      .Set("CSName", system.name)
      .Set("CreationClassName", kOperatingSystem)
      .Set("Name", os.name)
      .Set("Version", os.version)
      .Set("Caption", os.caption)
      .Set("OSType", os.type)
      .Set("DistributionID", os.distribution)
      .Set("DistributionVersion", os.distributionVersion)
      .Set("DistributionCodename", os.codename)
      .Set("KernelName", os.kernelName)
      .Set("KernelRelease", os.kernelRelease)
      .Set("KernelVersion", os.kernelVersion)
      .Set("Architecture", os.architecture)
      .Set("BootArguments", os.bootArguments)
      .Set("LastBootUpTime", os.bootTime)
      .Set("LocalDateTime", os.localTime)
      .Set("Uptime", os.uptime)
      .SetText("LoadAverage1Minute", os.load1)
      .SetText("LoadAverage5Minutes", os.load5)
      .SetText("LoadAverage15Minutes", os.load15)
      .Set("TotalVisibleMemorySize", os.totalMemory)
      .Set("FreePhysicalMemory", os.freeMemory)
      .Set("TotalSwapSpaceSize", os.totalSwap)
      .Set("FreeSwapSpaceSize", os.freeSwap)
      .Set("NumberOfProcesses", os.processes)
      .Status();
}

zelStatusCode PublishRunningOs(zelIOHandle* out, const TOperatingSystem& os) {
  const kit::TSystemKeys system = kit::SystemKeys();
  return kit::TRecord(out, "KVRSG_RunningOS")
      .Set("Antecedent", kit::TPath(kOperatingSystem)
                             .Key("CSCreationClassName", system.creationClassName)
                             .Key("CSName", system.name)
                             .Key("CreationClassName", kOperatingSystem)
                             .Key("Name", os.name))
      .Set("Dependent", kit::SystemPath())
      .Status();
}

struct TOsCollector {
  static constexpr const char* kName = "os";
  using TFindings = TOperatingSystem;

  static TOperatingSystem Scan(const kit::TLog& log) {
    const TSources sources = Read();
    if (!sources.osRelease) log.Warning("no os-release file names the distribution");
    return Parse(sources);
  }

  static constexpr kit::TPublisher<TOperatingSystem> kPublishers[] = {
      {kOperatingSystem,  PublishOperatingSystem},
      {"KVRSG_RunningOS", PublishRunningOs      },
  };
};

const kit::TPlugin<TOsCollector> osPlugin;

}  // namespace

}  // namespace os_collector
