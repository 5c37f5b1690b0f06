// Whether the machine is a virtual one, and whether the system runs in a container.
#include <algorithm>

#include "collectors/kit/Text.h"
#include "collectors/system/parse.h"

namespace system_collector {

namespace {

bool DeviceTreeHolds(const TSources& sources, const char* name, std::string_view text) {
  const auto found = sources.deviceTree.find(name);
  if (found == sources.deviceTree.end()) return false;
  const auto texts = kit::Split(found->second, '\0');
  return std::find(texts.begin(), texts.end(), text) != texts.end();
}

// ---- Virtual machines ----

struct TMark {
  std::string_view text;
  EVirtualization type;
};

template <size_t kCount>
std::optional<EVirtualization> FindMark(const TMark (&marks)[kCount], std::string_view text) {
  for (const TMark& mark : marks) {
    if (kit::StartsWith(text, mark.text)) return mark.type;
  }
  return std::nullopt;
}

// Firmware that tells more than the processor, which may pose as another hypervisor.
constexpr TMark kStrongFirmwareMarks[] = {
    {"VirtualBox", EVirtualization::VirtualBox},
    {"innotek",    EVirtualization::VirtualBox},
    {"Parallels",  EVirtualization::Parallels },
};

constexpr TMark kSignatures[] = {
    {"KVMKVMKVM",    EVirtualization::Kvm       },
    {"Linux KVM Hv", EVirtualization::Kvm       },
    {"TCGTCGTCGTCG", EVirtualization::Qemu      },
    {"VMwareVMware", EVirtualization::VMware    },
    {"Microsoft Hv", EVirtualization::HyperV    },
    {"XenVMMXenVMM", EVirtualization::Xen       },
    {"VBoxVBoxVBox", EVirtualization::VirtualBox},
    {"prl hyperv",   EVirtualization::Parallels },
    {" lrpepyh",     EVirtualization::Parallels },
    {"bhyve bhyve",  EVirtualization::Bhyve     },
    {"ACRNACRNACRN", EVirtualization::Acrn      },
    {"QNXQVMBSQG",   EVirtualization::Qnx       },
};

constexpr TMark kFirmwareMarks[] = {
    {"KVM",                   EVirtualization::Kvm   },
    {"Google Compute Engine", EVirtualization::Kvm   },
    {"OpenStack",             EVirtualization::Kvm   },
    {"KubeVirt",              EVirtualization::Kvm   },
    {"oVirt",                 EVirtualization::Kvm   },
    {"QEMU",                  EVirtualization::Qemu  },
    {"Bochs",                 EVirtualization::Qemu  },
    {"VMware",                EVirtualization::VMware},
    {"VMW",                   EVirtualization::VMware},
    {"Virtual Machine",       EVirtualization::HyperV},
    {"Xen",                   EVirtualization::Xen   },
    {"HVM domU",              EVirtualization::Xen   },
    {"BHYVE",                 EVirtualization::Bhyve },
    {"Apple Virtualization",  EVirtualization::Apple },
};

template <size_t kCount>
std::optional<EVirtualization> FindFirmwareMark(const TSources& sources,
                                                const TMark (&marks)[kCount]) {
  for (const char* file : {"product_name", "sys_vendor", "board_vendor", "bios_vendor"}) {
    const auto found = sources.dmi.find(file);
    if (found == sources.dmi.end()) continue;
    if (const auto type = FindMark(marks, kit::Trim(found->second))) return type;
  }
  return std::nullopt;
}

// The later signature is the truer one: a hypervisor poses as another one to please its guests.
std::optional<EVirtualization> FindSignature(const std::vector<std::string>& signatures) {
  for (auto signature = signatures.rbegin(); signature != signatures.rend(); ++signature) {
    if (const auto type = FindMark(kSignatures, *signature)) return type;
  }
  return std::nullopt;
}

std::optional<EVirtualization> FindDeviceTreeMark(const TSources& sources) {
  static constexpr const char* kHypervisor = "hypervisor/compatible";
  if (DeviceTreeHolds(sources, kHypervisor, "linux,kvm")) return EVirtualization::Kvm;
  if (DeviceTreeHolds(sources, kHypervisor, "xen,xen")) return EVirtualization::Xen;
  if (DeviceTreeHolds(sources, kHypervisor, "vmware")) return EVirtualization::VMware;
  if (DeviceTreeHolds(sources, "compatible", "linux,dummy-virt")) return EVirtualization::Qemu;
  if (DeviceTreeHolds(sources, "compatible", "qemu,pseries")) return EVirtualization::Qemu;
  return std::nullopt;
}

// Without CPUID the largest provider is told by its firmware; its ".metal" machines are physical.
bool IsCloudGuest(const TSources& sources) {
  const auto holds = [&](const char* file, std::string_view text) {
    const auto found = sources.dmi.find(file);
    return found != sources.dmi.end() && found->second.find(text) != std::string::npos;
  };
  return holds("sys_vendor", "Amazon EC2") && !holds("product_name", ".metal");
}

bool HasHypervisorFlag(const TSources& sources) {
  for (const auto& [name, value] : kit::NamedLines(sources.cpuInfo)) {
    if (name != "flags") continue;
    const auto flags = kit::Words(value);
    return std::find(flags.begin(), flags.end(), "hypervisor") != flags.end();
  }
  return false;
}

// ---- Containers ----

struct TCgroupMark {
  std::string_view text;
  const char* type;
};

constexpr TCgroupMark kCgroupMarks[] = {
    {"/kubepods",              "kubernetes"    },
    {"/docker/",               "docker"        },
    {"/docker-",               "docker"        },
    {"/libpod-",               "podman"        },
    {"/lxc/",                  "lxc"           },
    {"/lxc.payload",           "lxc"           },
    {"/machine.slice/machine", "systemd-nspawn"},
};

// What the variable "container" of process 1 says.
TText ContainerVariable(std::string_view environment) {
  constexpr std::string_view kVariable = "container=";
  for (const std::string_view variable : kit::Split(environment, '\0')) {
    if (kit::StartsWith(variable, kVariable)) {
      return kit::Fact(variable.substr(kVariable.size()));
    }
  }
  return std::nullopt;
}

}  // namespace

EVirtualization ParseVirtualization(const TSources& sources) {
  // The first domain of Xen sees the hardware.
  if (sources.xenCapabilities.find("control_d") != std::string::npos) {
    return EVirtualization::Physical;
  }
  if (const auto type = FindFirmwareMark(sources, kStrongFirmwareMarks)) return *type;
  if (const auto type = FindSignature(sources.hypervisorSignatures)) return *type;
  if (sources.hypervisorType == "xen") return EVirtualization::Xen;
  if (const auto type = FindDeviceTreeMark(sources)) return *type;
  if (const auto type = FindFirmwareMark(sources, kFirmwareMarks)) return *type;
  if (IsCloudGuest(sources)) return EVirtualization::Kvm;
  const bool isVirtual = !sources.hypervisorSignatures.empty() || HasHypervisorFlag(sources);
  return isVirtual ? EVirtualization::OtherHypervisor : EVirtualization::Physical;
}

TText ParseContainerType(const TSources& sources) {
  if (const TText type = ContainerVariable(sources.initEnvironment)) return type;
  if (const TText type = kit::Fact(sources.containerManager)) return type;
  for (const TCgroupMark& mark : kCgroupMarks) {
    if (sources.initCgroups.find(mark.text) != std::string::npos) return mark.type;
  }
  if (kit::LowerCase(sources.kernelRelease).find("microsoft") != std::string::npos) return "wsl";
  // An image made from a container keeps the mark when it is started as a machine.
  if (sources.seesKernelThreads) return std::nullopt;
  if (sources.hasPodmanMark) return "podman";
  if (sources.hasDockerMark) return "docker";
  return std::nullopt;
}

}  // namespace system_collector
