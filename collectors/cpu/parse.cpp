#include "collectors/cpu/parse.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <set>
#include <tuple>

#include "collectors/cpu/models.h"
#include "collectors/kit/Text.h"

namespace cpu_collector {
namespace {

using TFields = std::map<std::string, std::string>;

constexpr std::uint32_t kMaxCacheLevel = 16;

// A decimal number, or a hexadecimal one after "0x".
std::optional<std::uint32_t> Number(std::string_view text) {
  return kit::ParseNumber<std::uint32_t>(text, kit::StartsWith(text, "0x") ? 16 : 10);
}

// Zero stands for unknown in some files.
std::optional<std::uint32_t> Positive(std::string_view text) {
  const auto number = Number(text);
  return number == 0u ? std::nullopt : number;
}

std::optional<std::uint64_t> Kilobytes(std::string_view text) {
  const auto number = kit::ParseNumber<std::uint64_t>(text);
  if (!number || *number > std::numeric_limits<std::uint64_t>::max() / 1024) return std::nullopt;
  return *number * 1024;
}

std::optional<std::string> NonEmpty(const std::string& text) {
  if (text.empty()) return std::nullopt;
  return text;
}

std::string Field(const TFields& fields, const char* name) {
  const auto found = fields.find(name);
  return found == fields.end() ? "" : found->second;
}

// A logical CPU by what /proc/cpuinfo and its directory tell of it.
struct TMember {
  const TFields* fields;
  const TCpuText* device;  // null without one
};

const TCpuText* FindDevice(const TMachine& machine, unsigned number) {
  const auto found =
      std::lower_bound(machine.cpus.begin(), machine.cpus.end(), number,
                       [](const TCpuText& cpu, unsigned wanted) { return cpu.number < wanted; });
  return found != machine.cpus.end() && found->number == number ? &*found : nullptr;
}

// Where nothing tells packages apart ("-1" included), all CPUs are in one.
std::uint32_t PackageOf(const TMember& cpu) {
  const auto package = Number(cpu.device ? cpu.device->package : "");
  return package ? *package : Number(Field(*cpu.fields, "physical id")).value_or(0);
}

std::string ProcessorId(std::uint32_t package) { return "CPU" + std::to_string(package); }

// CPUs with the same text are threads of one core; "" when nothing tells.
std::string CoreOf(const TMember& cpu) {
  if (cpu.device && !cpu.device->threadSiblings.empty()) return cpu.device->threadSiblings;
  return Field(*cpu.fields, "core id");
}

std::optional<std::uint32_t> CountCores(const std::vector<TMember>& cpus) {
  std::set<std::string> cores;
  for (const TMember& cpu : cpus) cores.insert(CoreOf(cpu));
  if (cores.count("") != 0) return std::nullopt;
  return static_cast<std::uint32_t>(cores.size());
}

std::optional<std::uint32_t> Round(std::optional<double> number) {
  if (!number) return std::nullopt;
  return static_cast<std::uint32_t>(std::lround(*number));
}

// "2596.096"; nothing for what no clock runs at.
std::optional<double> MegaHertz(const std::string& text) {
  double number = 0;
  const char* end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number);
  if (error != std::errc() || stop != end || !(number > 0 && number < 1e6)) return std::nullopt;
  return number;
}

// The kernel's files of frequencies count in kHz.
std::optional<double> MegaHertzOfKilo(const std::string& text) {
  const auto number = Positive(text);
  if (!number) return std::nullopt;
  return *number / 1000.0;
}

// The mean of the CPUs that tell theirs.
std::optional<double> CurrentSpeed(const std::vector<TMember>& cpus) {
  double sum = 0;
  int count = 0;
  for (const TMember& cpu : cpus) {
    auto speed = MegaHertz(Field(*cpu.fields, "cpu MHz"));
    if (!speed && cpu.device) speed = MegaHertzOfKilo(cpu.device->currentFrequency);
    if (!speed) continue;
    sum += *speed;
    ++count;
  }
  if (count == 0) return std::nullopt;
  return sum / count;
}

std::optional<double> MaxSpeed(const std::vector<TMember>& cpus) {
  std::optional<double> fastest;
  for (const TMember& cpu : cpus) {
    // Nothing is less than any number.
    if (cpu.device) fastest = std::max(fastest, MegaHertzOfKilo(cpu.device->maxFrequency));
  }
  return fastest;
}

std::optional<std::vector<std::string>> ParseFlags(const std::string& text) {
  const auto words = kit::Words(text);
  if (words.empty()) return std::nullopt;
  return std::vector<std::string>(words.begin(), words.end());
}

bool HasFlag(const TProcessor& processor, std::string_view flag) {
  return std::find(processor.flags->begin(), processor.flags->end(), flag) !=
         processor.flags->end();
}

void DescribeX86(const TFields& fields, TProcessor& processor) {
  processor.name = kit::Fact(std::string_view(Field(fields, "model name")));
  processor.vendorId = NonEmpty(Field(fields, "vendor_id"));
  processor.manufacturer = MakerOfVendor(Field(fields, "vendor_id"));
  processor.family = Number(Field(fields, "cpu family"));
  processor.modelNumber = Number(Field(fields, "model"));
  if (const auto stepping = Number(Field(fields, "stepping"))) {
    processor.stepping = std::to_string(*stepping);  // else it is "unknown"
  }
  processor.microcode = NonEmpty(Field(fields, "microcode"));
  processor.flags = ParseFlags(Field(fields, "flags"));
  if (processor.flags) processor.addressWidth = HasFlag(processor, "lm") ? 64 : 32;
}

void DescribeArm(const TFields& fields, TProcessor& processor) {
  const auto implementer = Number(Field(fields, "CPU implementer"));
  const auto part = Number(Field(fields, "CPU part"));
  const auto variant = Number(Field(fields, "CPU variant"));
  const auto revision = Number(Field(fields, "CPU revision"));
  processor.vendorId = NonEmpty(Field(fields, "CPU implementer"));
  processor.family = Number(Field(fields, "CPU architecture"));
  processor.modelNumber = part;
  if (implementer) processor.manufacturer = MakerOfImplementer(*implementer);
  if (implementer && part) processor.name = NameOfPart(*implementer, *part);
  if (variant && revision) {
    processor.stepping = "r" + std::to_string(*variant) + "p" + std::to_string(*revision);
  }
  processor.flags = ParseFlags(Field(fields, "Features"));
  if (!processor.flags) return;
  // Kernels of 64 bits call the vector unit "asimd"; only those of 32 bits list "half".
  if (HasFlag(processor, "asimd")) {
    processor.addressWidth = 64;
  } else if (HasFlag(processor, "half")) {
    processor.addressWidth = 32;
  }
}

TProcessor Describe(const std::vector<TMember>& cpus) {
  const TFields& fields = *cpus.front().fields;
  TProcessor processor;
  if (fields.count("CPU implementer") != 0) {
    DescribeArm(fields, processor);
  } else {
    DescribeX86(fields, processor);
  }
  processor.enabledCores = CountCores(cpus);
  processor.threads = static_cast<std::uint32_t>(cpus.size());
  processor.currentSpeed = Round(CurrentSpeed(cpus));
  processor.maxSpeed = Round(MaxSpeed(cpus));
  return processor;
}

// What the kernel tells holds; the firmware fills the gaps.
void AddSocket(TProcessor& processor, const TSocket& socket) {
  processor.socket = socket;
  if (!processor.name) processor.name = socket.version;
  if (!processor.manufacturer) processor.manufacturer = socket.manufacturer;
  if (!processor.currentSpeed) processor.currentSpeed = socket.currentSpeed;
  if (!processor.maxSpeed) processor.maxSpeed = socket.maxSpeed;
}

ECacheType CacheType(const std::string& text) {
  if (text == "Instruction") return kInstruction;
  if (text == "Data") return kData;
  if (text == "Unified") return kUnified;
  return kOtherCache;
}

// Level, kind and the first CPU that it serves name a cache: the kernel lists CPUs in order.
std::string CacheId(const TCache& cache, unsigned firstCpu) {
  const char* letter = cache.type == kInstruction ? "i" : cache.type == kData ? "d" : "";
  return "L" + std::to_string(cache.level) + letter + "-" + std::to_string(firstCpu);
}

// "48K"; the kernel knows no other form.
std::optional<std::uint64_t> CacheSize(std::string_view text) {
  if (text.empty() || text.back() != 'K') return std::nullopt;
  text.remove_suffix(1);
  return Positive(text) ? Kilobytes(text) : std::nullopt;
}

TCache DescribeCache(const TCacheText& text) {
  TCache cache;
  cache.type = CacheType(text.type);
  cache.size = CacheSize(text.size);
  cache.lineSize = Positive(text.lineSize);
  cache.ways = Positive(text.ways);
  cache.sets = Positive(text.sets);
  cache.sharedBy = NonEmpty(text.sharedCpus);
  cache.sharingThreads = CountCpus(text.sharedCpus);
  return cache;
}

// Of "Node 0 MemTotal:  5073108 kB" the Bytes.
std::optional<std::uint64_t> NodeMemory(const std::string& memInfo, std::string_view label) {
  for (const std::string_view line : kit::Split(memInfo, '\n')) {
    const auto words = kit::Words(line);
    if (words.size() == 5 && words[2] == label && words[4] == "kB") return Kilobytes(words[3]);
  }
  return std::nullopt;
}

// All or nothing: the place of a distance tells the node that it leads to.
std::optional<std::vector<std::uint16_t>> Distances(const std::string& text) {
  std::vector<std::uint16_t> result;
  for (const std::string_view word : kit::Words(text)) {
    const auto distance = kit::ParseNumber<std::uint16_t>(word);
    if (!distance) return std::nullopt;
    result.push_back(*distance);
  }
  if (result.empty()) return std::nullopt;
  return result;
}

EState StateOf(std::string_view text) {
  // What concerns guests only has a prefix: "KVM: Mitigation: VMX disabled".
  constexpr std::string_view kGuests = "KVM: ";
  if (kit::StartsWith(text, kGuests)) text.remove_prefix(kGuests.size());
  if (kit::StartsWith(text, "Not affected")) return kNotAffected;
  if (kit::StartsWith(text, "Mitigation")) return kMitigated;
  if (kit::StartsWith(text, "Vulnerable") || text == "Processor vulnerable") return kVulnerable;
  return kUnknownState;
}

}  // namespace

std::vector<TLogicalCpu> ParseCpuInfo(const std::string& text) {
  std::map<unsigned, TFields> cpus;
  TFields common;
  TFields paragraph;
  const auto endParagraph = [&] {
    const auto processor = paragraph.find("processor");
    if (processor == paragraph.end()) {
      common.merge(paragraph);
    } else if (const auto number = Number(processor->second)) {
      cpus.emplace(*number, paragraph);
    }
    paragraph.clear();
  };
  for (const std::string_view line : kit::Split(text, '\n')) {
    const std::size_t colon = line.find(':');
    if (colon != line.npos) {
      paragraph.emplace(kit::Clean(line.substr(0, colon)), kit::Clean(line.substr(colon + 1)));
    } else if (kit::Trim(line).empty()) {
      endParagraph();
    }
  }
  endParagraph();

  std::vector<TLogicalCpu> result;
  for (auto& [number, fields] : cpus) {
    fields.insert(common.begin(), common.end());
    result.push_back({number, std::move(fields)});
  }
  return result;
}

std::optional<std::uint32_t> CountCpus(const std::string& list) {
  std::uint64_t count = 0;
  for (const std::string_view range : kit::Split(list, ',')) {
    const std::size_t dash = range.find('-');
    const auto first = Number(range.substr(0, dash));
    const auto last = dash == range.npos ? first : Number(range.substr(dash + 1));
    if (!first || !last || *last < *first) return std::nullopt;
    count += std::uint64_t{*last} - *first + 1;
  }
  if (count > std::numeric_limits<std::uint32_t>::max()) return std::nullopt;
  return static_cast<std::uint32_t>(count);
}

std::vector<TProcessor> BuildProcessors(const TMachine& machine) {
  const std::vector<TLogicalCpu> online = ParseCpuInfo(machine.cpuInfo);
  std::map<std::uint32_t, std::vector<TMember>> packages;
  for (const TLogicalCpu& cpu : online) {
    const TMember member{&cpu.fields, FindDevice(machine, cpu.number)};
    packages[PackageOf(member)].push_back(member);
  }
  const std::vector<TSocket> sockets = ParseSockets(machine.smbios);
  const bool matched = sockets.size() == packages.size();

  std::vector<TProcessor> result;
  for (const auto& [package, cpus] : packages) {
    TProcessor processor = Describe(cpus);
    processor.id = ProcessorId(package);
    if (matched) AddSocket(processor, sockets[result.size()]);
    result.push_back(std::move(processor));
  }
  return result;
}

std::vector<TCache> BuildCaches(const TMachine& machine) {
  std::map<std::tuple<std::uint32_t, ECacheType, unsigned>, TCache> caches;
  for (const TLogicalCpu& cpu : ParseCpuInfo(machine.cpuInfo)) {
    const TMember member{&cpu.fields, FindDevice(machine, cpu.number)};
    if (!member.device) continue;
    for (const TCacheText& text : member.device->caches) {
      const auto level = Positive(text.level);
      if (!level || *level > kMaxCacheLevel) continue;
      const unsigned firstCpu =
          Number(std::string_view(text.sharedCpus).substr(0, text.sharedCpus.find_first_of(",-")))
              .value_or(cpu.number);
      TCache cache = DescribeCache(text);
      cache.level = static_cast<std::uint16_t>(*level);
      cache.id = CacheId(cache, firstCpu);
      cache.processorId = ProcessorId(PackageOf(member));
      caches.emplace(std::tuple(*level, cache.type, firstCpu), std::move(cache));
    }
  }
  std::vector<TCache> result;
  result.reserve(caches.size());
  for (auto& [key, cache] : caches) result.push_back(std::move(cache));
  return result;
}

std::vector<TNode> BuildNodes(const TMachine& machine) {
  std::vector<TNode> result;
  for (const TNodeText& text : machine.nodes) {
    TNode node;
    node.number = text.number;
    node.cpus = NonEmpty(text.cpus);
    node.threads = CountCpus(text.cpus);
    node.totalMemory = NodeMemory(text.memInfo, "MemTotal:");
    node.freeMemory = NodeMemory(text.memInfo, "MemFree:");
    node.distances = Distances(text.distances);
    result.push_back(std::move(node));
  }
  return result;
}

std::vector<TVulnerability> BuildVulnerabilities(const TMachine& machine) {
  std::vector<TVulnerability> result;
  for (const auto& [name, text] : machine.vulnerabilities) {
    if (!text.empty()) result.push_back({name, text, StateOf(text)});
  }
  return result;
}

}  // namespace cpu_collector
