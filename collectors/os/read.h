#pragma once

#include <cstdint>
#include <optional>
#include <string>

// The texts that tell of the operating system. This is the only part that touches the machine.
namespace os_collector {

struct TSources {
  std::optional<std::string> osRelease;
  std::optional<std::string> kernelName;
  std::optional<std::string> kernelRelease;
  std::optional<std::string> kernelVersion;
  std::optional<std::string> architecture;
  std::optional<std::string> bootArguments;
  std::optional<std::string> statistics;  // /proc/stat
  std::optional<std::string> uptime;
  std::optional<std::string> load;
  std::optional<std::string> memory;  // /proc/meminfo
  std::optional<uint32_t> processes;
  std::optional<int64_t> now;  // seconds since 1970; a captured tree has no present
};

TSources Read();

}  // namespace os_collector
