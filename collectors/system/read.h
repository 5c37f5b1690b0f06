#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

// What the machine says of itself, as it says it. This is the only part that touches the machine.
namespace system_collector {

struct TSources {
  std::string hostName;
  std::optional<std::string> machineId;

  std::map<std::string, std::string> dmi;         // the files of /sys/class/dmi/id by name
  std::optional<std::string> smbiosTable;         // the raw table, which only root may read
  std::string smbiosEntryPoint;                   // what goes with it
  bool dmiNeedsRoot = false;                      // there is a table, but not for this process
  std::map<std::string, std::string> deviceTree;  // properties by path below the root node

  bool isUefi = false;
  std::optional<std::string> secureBoot;  // the variable of the firmware, attributes first

  std::vector<std::string> hypervisorSignatures;  // CPUID leaf 0x40000000 and what follows it
  std::string hypervisorType;                     // /sys/hypervisor/type
  std::string xenCapabilities;                    // /proc/xen/capabilities

  std::string initEnvironment;   // of process 1, which only root may read
  std::string initCgroups;       // of process 1
  std::string containerManager;  // as systemd and its like note it down
  std::string kernelRelease;
  bool hasDockerMark = false;
  bool hasPodmanMark = false;
  bool seesKernelThreads = false;

  std::string cpuInfo;                  // of /proc, empty when there is none
  std::string memoryInfo;               // likewise
  std::vector<std::string> packageIds;  // of each logical processor
};

TSources Read();

}  // namespace system_collector
