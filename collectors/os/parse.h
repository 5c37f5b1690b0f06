#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "collectors/kit/Record.h"
#include "collectors/os/read.h"

// What the sources mean. What they leave out is absent.
namespace os_collector {

using TText = std::optional<std::string>;

struct TOperatingSystem {
  std::string name;
  TText version;
  TText caption;
  uint16_t type = 0;
  TText distribution;  // its short name, such as "debian"
  TText distributionVersion;
  TText codename;
  TText kernelName;
  TText kernelRelease;
  TText kernelVersion;
  TText architecture;
  TText bootArguments;
  std::optional<kit::TDateTime> bootTime;
  std::optional<kit::TDateTime> localTime;
  std::optional<uint64_t> uptime;  // seconds
  TText load1;                     // the load averages, as the kernel writes them
  TText load5;
  TText load15;
  std::optional<uint64_t> totalMemory;  // sizes in bytes
  std::optional<uint64_t> freeMemory;
  std::optional<uint64_t> totalSwap;
  std::optional<uint64_t> freeSwap;
  std::optional<uint32_t> processes;
};

TOperatingSystem Parse(const TSources& sources);

// The assignments of an os-release file, with the shell's quoting undone. Lines that are no
// assignment are skipped; of two for one name the later counts.
std::map<std::string, std::string> ParseOsRelease(std::string_view text);

// The number by which CIM knows a distribution on an architecture (of uname).
uint16_t ParseOsType(std::string_view distribution, std::string_view architecture);

}  // namespace os_collector
