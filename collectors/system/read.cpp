#include "collectors/system/read.h"

#include <algorithm>

#include "collectors/kit/Files.h"
#include "collectors/kit/Smbios.h"

#if defined(__x86_64__) || defined(__i386__)
#include <cpuid.h>
#endif

namespace system_collector {

namespace {

std::map<std::string, std::string> ReadFields(const std::string& directory,
                                              const std::vector<const char*>& names) {
  std::map<std::string, std::string> fields;
  for (const char* name : names) {
    if (auto text = kit::ReadFile(directory + "/" + name)) fields[name] = std::move(*text);
  }
  return fields;
}

#if defined(__x86_64__) || defined(__i386__)
// A hypervisor that poses as another one gives its own signature 0x100 leaves later.
std::vector<std::string> AskCpuid() {
  constexpr unsigned kHypervisorBit = 1u << 31;
  constexpr unsigned kFirstLeaf = 0x40000000, kSecondLeaf = 0x40000100;
  std::vector<std::string> signatures;
  unsigned eax, ebx, ecx, edx;
  if (!__get_cpuid(1, &eax, &ebx, &ecx, &edx) || !(ecx & kHypervisorBit)) return signatures;
  for (const unsigned leaf : {kFirstLeaf, kSecondLeaf}) {
    __cpuid(leaf, eax, ebx, ecx, edx);
    const unsigned words[] = {ebx, ecx, edx};
    signatures.emplace_back(reinterpret_cast<const char*>(words), sizeof words);
  }
  return signatures;
}
#else
std::vector<std::string> AskCpuid() { return {}; }
#endif

// A captured tree may hold the signatures in a file, one a line.
std::vector<std::string> ReadHypervisorSignatures() {
  if (kit::IsLiveMachine()) return AskCpuid();
  const std::string captured = kit::ReadFile("/zel/cpuid-hypervisor").value_or("");
  std::vector<std::string> signatures;
  for (const std::string_view line : kit::Split(captured, '\n')) {
    if (!line.empty()) signatures.emplace_back(line);
  }
  return signatures;
}

std::string ReadContainerManager() {
  for (const char* path : {"/run/systemd/container", "/run/host/container-manager"}) {
    if (const auto name = kit::ReadLine(path)) return *name;
  }
  return "";
}

std::vector<std::string> ReadPackageIds() {
  const std::string processors = "/sys/devices/system/cpu/";
  std::vector<std::string> ids;
  for (const std::string& name : kit::ListDir(processors)) {
    const bool isProcessor = kit::StartsWith(name, "cpu") && name.size() > 3 &&
                             std::all_of(name.begin() + 3, name.end(), kit::IsDigit);
    if (!isProcessor) continue;
    if (auto id = kit::ReadLine(processors + name + "/topology/physical_package_id")) {
      ids.push_back(std::move(*id));
    }
  }
  return ids;
}

}  // namespace

TSources Read() {
  TSources sources;
  sources.hostName = kit::HostName();
  sources.machineId = kit::ReadLine("/etc/machine-id");
  if (!sources.machineId) sources.machineId = kit::ReadLine("/var/lib/dbus/machine-id");

  sources.dmi = ReadFields(
      "/sys/class/dmi/id",
      {"bios_date",      "bios_vendor",    "bios_version",    "board_asset_tag",   "board_name",
       "board_serial",   "board_vendor",   "board_version",   "chassis_asset_tag", "chassis_serial",
       "chassis_type",   "chassis_vendor", "chassis_version", "product_family",    "product_name",
       "product_serial", "product_sku",    "product_uuid",    "product_version",   "sys_vendor"});
  sources.smbiosTable = kit::ReadFile(kit::kSmbiosTable);
  sources.smbiosEntryPoint = kit::ReadFile(kit::kSmbiosEntryPoint).value_or("");
  sources.dmiNeedsRoot = kit::NeedsRoot(kit::kSmbiosTable);
  sources.deviceTree =
      ReadFields("/sys/firmware/devicetree/base",
                 {"compatible", "hypervisor/compatible", "model", "serial-number"});

  sources.isUefi = kit::IsDirectory("/sys/firmware/efi");
  sources.secureBoot =
      kit::ReadFile("/sys/firmware/efi/efivars/SecureBoot-8be4df61-93ca-11d2-aa0d-00e098032b8c");

  sources.hypervisorSignatures = ReadHypervisorSignatures();
  sources.hypervisorType = kit::ReadLine("/sys/hypervisor/type").value_or("");
  sources.xenCapabilities = kit::ReadLine("/proc/xen/capabilities").value_or("");

  sources.initEnvironment = kit::ReadFile("/proc/1/environ").value_or("");
  sources.initCgroups = kit::ReadFile("/proc/1/cgroup").value_or("");
  sources.containerManager = ReadContainerManager();
  sources.kernelRelease = kit::ReadLine("/proc/sys/kernel/osrelease").value_or("");
  sources.hasDockerMark = kit::Exists("/.dockerenv");
  sources.hasPodmanMark = kit::Exists("/run/.containerenv");
  sources.seesKernelThreads = kit::ReadLine("/proc/2/comm") == "kthreadd";

  sources.cpuInfo = kit::ReadFile("/proc/cpuinfo").value_or("");
  sources.memoryInfo = kit::ReadFile("/proc/meminfo").value_or("");
  sources.packageIds = ReadPackageIds();
  return sources;
}

}  // namespace system_collector
