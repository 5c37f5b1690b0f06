#include "collectors/cpu/read.h"

#include "collectors/kit/Files.h"

namespace cpu_collector {
namespace {

const std::string kCpuInfo = "/proc/cpuinfo";
const std::string kCpus = "/sys/devices/system/cpu";
const std::string kNodes = "/sys/devices/system/node";
const std::string kVulnerabilities = kCpus + "/vulnerabilities";

std::string Line(const std::string& path) { return kit::ReadLine(path).value_or(""); }

// The N of "<prefix>N"; nothing for other names.
std::optional<unsigned> NumberIn(const std::string& name, std::string_view prefix) {
  if (!kit::StartsWith(name, prefix)) return std::nullopt;
  return kit::ParseNumber<unsigned>(std::string_view(name).substr(prefix.size()));
}

TCacheText ReadCache(const std::string& path) {
  TCacheText text;
  text.level = Line(path + "/level");
  text.type = Line(path + "/type");
  text.size = Line(path + "/size");
  text.lineSize = Line(path + "/coherency_line_size");
  text.ways = Line(path + "/ways_of_associativity");
  text.sets = Line(path + "/number_of_sets");
  text.sharedCpus = Line(path + "/shared_cpu_list");
  return text;
}

TCpuText ReadCpu(unsigned number, const std::string& path) {
  TCpuText text;
  text.number = number;
  text.package = Line(path + "/topology/physical_package_id");
  text.threadSiblings = Line(path + "/topology/thread_siblings_list");
  text.currentFrequency = Line(path + "/cpufreq/scaling_cur_freq");
  text.maxFrequency = Line(path + "/cpufreq/cpuinfo_max_freq");
  for (const std::string& name : kit::ListDir(path + "/cache")) {
    if (NumberIn(name, "index")) text.caches.push_back(ReadCache(path + "/cache/" + name));
  }
  return text;
}

TNodeText ReadNode(unsigned number, const std::string& path) {
  TNodeText text;
  text.number = number;
  text.cpus = Line(path + "/cpulist");
  text.memInfo = kit::ReadFile(path + "/meminfo").value_or("");
  text.distances = Line(path + "/distance");
  return text;
}

// One text for each directory "<prefix>N", by number.
template <class TText>
std::vector<TText> ReadAll(const std::string& path, std::string_view prefix,
                           TText (*read)(unsigned, const std::string&)) {
  std::vector<TText> texts;
  for (const std::string& name : kit::ListDir(path)) {
    if (const auto number = NumberIn(name, prefix)) {
      texts.push_back(read(*number, path + "/" + name));
    }
  }
  return texts;
}

bool HaveCaches(const std::vector<TCpuText>& cpus) {
  return std::any_of(cpus.begin(), cpus.end(),
                     [](const TCpuText& cpu) { return !cpu.caches.empty(); });
}

}  // namespace

TMachine ReadMachine(const kit::TLog& log) {
  TMachine machine;
  machine.cpuInfo = kit::ReadFile(kCpuInfo).value_or("");
  machine.cpus = ReadAll(kCpus, "cpu", ReadCpu);
  machine.nodes = ReadAll(kNodes, "node", ReadNode);
  for (const std::string& name : kit::ListDir(kVulnerabilities)) {
    machine.vulnerabilities[kit::Clean(name)] = Line(kVulnerabilities + "/" + name);
  }
  machine.smbios = kit::ReadSmbios().value_or(kit::TSmbios());

  if (machine.cpuInfo.empty()) log.Warning("No processors: " + kCpuInfo + " cannot be read");
  if (!HaveCaches(machine.cpus)) log.Warning("No caches: " + kCpus + " tells of none");
  if (machine.nodes.empty()) log.Warning("No NUMA nodes: " + kNodes + " tells of none");
  if (machine.vulnerabilities.empty()) {
    log.Warning("No vulnerabilities: " + kVulnerabilities + " tells of none");
  }
  return machine;
}

}  // namespace cpu_collector
