#include "frontend/Summary.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "frontend/Collection.h"
#include "frontend/ValueText.h"
#include "zelcore/zelcore.h"

namespace zel {
namespace {

using TInstances = std::vector<TCIMInstance*>;

// What the summary shows of one property.
using TShow = std::string (*)(const TCIMProperty&);

// The instances of a class, none when nothing declares it.
TInstances InstancesOf(const TContainer& container, const char* className) {
  const TCIMClass* cls = container.FindClass(className);
  return cls ? cls->EnumerateInstances(true) : TInstances();
}

std::string Fact(const TCIMInstance& instance, const char* name, TShow show) {
  const TCIMProperty* property = instance.FindProperty(name);
  if (!property) return "not available";
  return property->GetValue().IsNull() ? MissingText(*property) : show(*property);
}

std::string Plain(const TCIMProperty& property) { return PropertyText(property); }

std::string Bytes(const TCIMProperty& property) {
  return BytesText(static_cast<unsigned long>(property.GetValue()));
}

std::string Duration(const TCIMProperty& property) {
  const unsigned long seconds = property.GetValue();
  const unsigned long days = seconds / 86400;
  std::string time =
      fmt::format("{}:{:02}:{:02}", seconds / 3600 % 24, seconds / 60 % 60, seconds % 60);
  if (days == 0) return time;
  return fmt::format("{} {}, {}", days, days == 1 ? "day" : "days", time);
}

std::string Moment(const TCIMProperty& property) {
  const TCIMDateTime moment = property.GetValue();
  return fmt::format("{:04}-{:02}-{:02} {:02}:{:02}:{:02}", moment.GetYear(), moment.GetMonth(),
                     moment.GetDay(), moment.GetHour(), moment.GetMinute(), moment.GetSecond());
}

// The number that the property holds, whatever its width; 0 when it is NULL.
unsigned long Number(const TCIMInstance& instance, const char* name) {
  const TCIMProperty* property = instance.FindProperty(name);
  if (!property || property->GetValue().IsNull()) return 0;
  return std::stoul(property->GetValue().ToString(10));
}

class TSummary {
 public:
  TSummary(const TCollection& collection, std::ostream& out)
      : fCollection(collection), fContainer(collection.GetContainer()), fOut(out) {}

  void Print() {
    System();
    OperatingSystem();
    Processors();
    Memory();
    Product();
    Outcome();
  }

 private:
  struct TRow {
    const char* label;
    const char* className;
    const char* property;
    TShow show;
  };

  void Section(const char* title) { fOut << title << "\n"; }
  void Row(const std::string& label, const std::string& text) {
    fOut << fmt::format("  {:<22}  {}\n", label, text);
  }
  void Rows(const std::vector<TRow>& rows) {
    for (const TRow& row : rows) {
      const TInstances instances = InstancesOf(fContainer, row.className);
      Row(row.label,
          instances.empty() ? "not available" : Fact(*instances.front(), row.property, row.show));
    }
  }

  void System() {
    Section("System");
    Rows({
        {"Name",                   "KVRSG_ComputerSystem",    "Name",               Plain          },
        {"Manufacturer",           "KVRSG_ComputerSystem",    "Manufacturer",       Plain          },
        {"Product",                "KVRSG_ComputerSystem",    "ProductName",        Plain          },
        {"Serial number",          "KVRSG_ComputerSystem",    "SerialNumber",       Plain          },
        {"Machine type and model", "KVRSG_SystemBIOSElement", "MachineTypeModel",   Plain          },
        {"Firmware",               "KVRSG_SystemBIOSElement", "Version",            Plain          },
        {"Virtualization",         "KVRSG_ComputerSystem",    "VirtualizationType", EnumerationText},
        {"Container",              "KVRSG_ComputerSystem",    "ContainerType",      EnumerationText}
    });
  }

  void OperatingSystem() {
    Section("Operating system");
    Rows({
        {"Name",    "KVRSG_OperatingSystem", "Name",           Plain   },
        {"Version", "KVRSG_OperatingSystem", "Version",        Plain   },
        {"Kernel",  "KVRSG_OperatingSystem", "KernelRelease",  Plain   },
        {"Booted",  "KVRSG_OperatingSystem", "LastBootUpTime", Moment  },
        {"Uptime",  "KVRSG_OperatingSystem", "Uptime",         Duration}
    });
  }

  void Processors() {
    Section("Processors");
    const TInstances processors = InstancesOf(fContainer, "KVRSG_Processor");
    if (processors.empty()) Row("Model", "not available");
    // Packages of one kind share a line.
    std::map<std::string, std::size_t> packages;
    unsigned long cores = 0;
    unsigned long threads = 0;
    for (const TCIMInstance* processor : processors) {
      ++packages[Fact(*processor, "Name", Plain)];
      cores += Number(*processor, "NumberOfEnabledCores");
      threads += Number(*processor, "NumberOfHardwareThreads");
    }
    for (const auto& [model, count] : packages) Row("Model", model);
    if (!processors.empty()) {
      Row("Packages", fmt::format("{}", processors.size()));
      Row("Cores", cores == 0 ? "not available" : fmt::format("{}", cores));
      Row("Threads", threads == 0 ? "not available" : fmt::format("{}", threads));
    }
    Row("Caches", Caches());
  }

  // "2 x 48 KiB L1d, 2 x 32 KiB L1i, ..."
  std::string Caches() const {
    std::map<std::pair<std::string, std::string>, std::size_t> caches;
    for (const TCIMInstance* cache : InstancesOf(fContainer, "KVRSG_CacheMemory")) {
      const std::string type = Fact(*cache, "CacheType", EnumerationText);
      const char* suffix = type == "Data" ? "d" : type == "Instruction" ? "i" : "";
      ++caches[{"L" + Fact(*cache, "Level", Plain) + suffix, Fact(*cache, "Size", Bytes)}];
    }
    std::string text;
    for (const auto& [kind, count] : caches) {
      if (!text.empty()) text += ", ";
      text += fmt::format("{} x {} {}", count, kind.second, kind.first);
    }
    return text.empty() ? "not available" : text;
  }

  void Memory() {
    Section("Memory");
    Rows({
        {"Total",     "KVRSG_Memory", "TotalSize",     Bytes},
        {"Available", "KVRSG_Memory", "AvailableSize", Bytes},
        {"Swap",      "KVRSG_Memory", "SwapTotalSize", Bytes}
    });
    Row("Modules", Modules());
  }

  // "2 x 16 GiB DDR4, 2 of 4 slots"
  std::string Modules() const {
    const TInstances slots = InstancesOf(fContainer, "KVRSG_PhysicalMemory");
    if (slots.empty()) return TOSSpecific::IsAdmin() ? "not available" : "needs root";
    std::map<std::string, std::size_t> modules;
    std::size_t used = 0;
    for (const TCIMInstance* slot : slots) {
      if (Number(*slot, "Capacity") == 0) continue;
      ++used;
      ++modules[fmt::format("{} {}", Fact(*slot, "Capacity", Bytes),
                            Fact(*slot, "MemoryType", EnumerationText))];
    }
    std::string text;
    for (const auto& [kind, count] : modules) text += fmt::format("{} x {}, ", count, kind);
    return fmt::format("{}{} of {} slots", text, used, slots.size());
  }

  void Product() {
    Section("Collected by");
    for (const TCIMInstance* product : InstancesOf(fContainer, "KVRSG_VNTProduct")) {
      Row(Fact(*product, "Name", Plain), Fact(*product, "Version", Plain));
    }
    fOut << "\n";
  }

  void Outcome() {
    std::size_t loaded = 0;
    for (const TPluginOutcome& outcome : fCollection.GetOutcomes()) loaded += !outcome.Failed();
    std::size_t classes = 0;
    std::size_t instances = 0;
    for (const TCIMClass* cls : fCollection.AllClasses()) {
      const std::size_t count = cls->EnumerateInstances(false).size();
      classes += count != 0;
      instances += count;
    }
    fOut << fmt::format("{} plug-ins, {} classes, {} instances in {:.0f} ms\n", loaded, classes,
                        instances, static_cast<double>(fCollection.GetDuration().count()) / 1000);
  }

  const TCollection& fCollection;
  const TContainer& fContainer;
  std::ostream& fOut;
};

}  // namespace

void PrintSummary(const TCollection& collection, std::ostream& out) {
  TSummary(collection, out).Print();
}

}  // namespace zel
