#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "collectors/kit/Smbios.h"

// What a machine tells about its processors, made into plain structs. Nothing here touches the
// machine; a fact that its texts do not hold is absent, and a malformed text counts as missing.
namespace cpu_collector {

// The texts of the machine, as read. An empty text is missing.
struct TCacheText {
  std::string level, type, size, lineSize, ways, sets, sharedCpus;
};
struct TCpuText {
  unsigned number = 0;
  std::string package, threadSiblings, currentFrequency, maxFrequency;
  std::vector<TCacheText> caches;
};
struct TNodeText {
  unsigned number = 0;
  std::string cpus, memInfo, distances;
};
struct TMachine {
  std::string cpuInfo;
  std::vector<TCpuText> cpus;    // in the order of their numbers
  std::vector<TNodeText> nodes;  // in the order of their numbers
  std::map<std::string, std::string> vulnerabilities;
  kit::TSmbios smbios;
};

// A logical CPU with its fields as /proc/cpuinfo names them.
struct TLogicalCpu {
  unsigned number = 0;
  std::map<std::string, std::string> fields;
};

// A socket with a processor in it as the firmware describes it.
struct TSocket {
  std::optional<std::string> designation, manufacturer, version, serialNumber, assetTag, partNumber;
  std::optional<std::uint32_t> externalClock, maxSpeed, currentSpeed;  // MHz
  std::optional<std::uint32_t> cores;                                  // enabled or not
};

struct TProcessor {
  std::string id;
  std::optional<std::string> name, vendorId, manufacturer, stepping, microcode;
  std::optional<std::uint32_t> family, modelNumber, enabledCores;
  std::uint32_t threads = 0;
  std::optional<std::uint32_t> currentSpeed, maxSpeed;  // MHz
  std::optional<std::uint16_t> addressWidth;
  std::optional<std::vector<std::string>> flags;
  TSocket socket;
};

// The codes of CacheType.
enum ECacheType : std::uint16_t { kOtherCache = 1, kInstruction = 2, kData = 3, kUnified = 4 };

struct TCache {
  std::string id;
  std::string processorId;
  std::uint16_t level = 0;
  ECacheType type = kOtherCache;
  std::optional<std::uint64_t> size, lineSize;  // Bytes
  std::optional<std::uint32_t> ways, sets, sharingThreads;
  std::optional<std::string> sharedBy;
};

struct TNode {
  std::uint32_t number = 0;
  std::optional<std::string> cpus;
  std::optional<std::uint32_t> threads;
  std::optional<std::uint64_t> totalMemory, freeMemory;  // Bytes
  std::optional<std::vector<std::uint16_t>> distances;
};

// The codes of State.
enum EState : std::uint16_t {
  kUnknownState = 0,
  kNotAffected = 1,
  kVulnerable = 2,
  kMitigated = 3
};

struct TVulnerability {
  std::string name, text;
  EState state = kUnknownState;
};

// The CPUs that are online, by number. A paragraph whose number is malformed is skipped; one
// without a number holds for all CPUs.
std::vector<TLogicalCpu> ParseCpuInfo(const std::string& text);

// How many CPUs a list of the kernel such as "0-3,8" names; nothing for a malformed or empty one.
std::optional<std::uint32_t> CountCpus(const std::string& list);

// The sockets that hold a central processor, in the order of the table.
std::vector<TSocket> ParseSockets(const kit::TSmbios& smbios);

// One per package, by number. The firmware's sockets are matched by their order, and only when
// there are as many of them as packages.
std::vector<TProcessor> BuildProcessors(const TMachine& machine);

// One per cache, though each of the CPUs that share it tells of it.
std::vector<TCache> BuildCaches(const TMachine& machine);

std::vector<TNode> BuildNodes(const TMachine& machine);
std::vector<TVulnerability> BuildVulnerabilities(const TMachine& machine);

}  // namespace cpu_collector
