#include "collectors/os/read.h"

#include <sys/utsname.h>
#include <time.h>

#include <algorithm>

#include "collectors/kit/Files.h"

namespace os_collector {

namespace {

// The live kernel by system call, that of a captured tree by its files.
void ReadKernel(TSources& sources) {
  utsname kernel;
  if (kit::IsLiveMachine() && uname(&kernel) == 0) {
    sources.kernelName = kernel.sysname;
    sources.kernelRelease = kernel.release;
    sources.kernelVersion = kernel.version;
    sources.architecture = kernel.machine;
    return;
  }
  sources.kernelName = kit::ReadLine("/proc/sys/kernel/ostype");
  sources.kernelRelease = kit::ReadLine("/proc/sys/kernel/osrelease");
  sources.kernelVersion = kit::ReadLine("/proc/sys/kernel/version");
  sources.architecture = kit::ReadLine("/proc/sys/kernel/arch");
}

// Each process has a directory that is named by its number.
std::optional<uint32_t> CountProcesses() {
  const auto names = kit::ListDir("/proc");
  const auto count = std::count_if(names.begin(), names.end(), [](const std::string& name) {
    return std::all_of(name.begin(), name.end(), kit::IsDigit);
  });
  if (count == 0) return std::nullopt;
  return static_cast<uint32_t>(count);
}

}  // namespace

TSources Read() {
  TSources sources;
  sources.osRelease = kit::ReadFile("/etc/os-release");
  if (!sources.osRelease) sources.osRelease = kit::ReadFile("/usr/lib/os-release");
  ReadKernel(sources);
  sources.bootArguments = kit::ReadLine("/proc/cmdline");
  sources.statistics = kit::ReadFile("/proc/stat");
  sources.uptime = kit::ReadLine("/proc/uptime");
  sources.load = kit::ReadLine("/proc/loadavg");
  sources.memory = kit::ReadFile("/proc/meminfo");
  sources.processes = CountProcesses();
  if (kit::IsLiveMachine()) sources.now = time(nullptr);
  return sources;
}

}  // namespace os_collector
