#include "frontend/Summary.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdlib>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "frontend/Inventory.h"
#include "frontend/Table.h"
#include "frontend/ValueText.h"
#include "zelcore/zelcore.h"

namespace zel {
namespace {

constexpr char kComputer[] = "KVRSG_ComputerSystem";

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
  if (!property) return kNotAvailable;
  if (property->GetValue().IsNull()) return MissingText(*property);
  try {
    return show(*property);
  } catch (const TZELException&) {
    return PropertyText(*property);  // of another type than ours
  }
}

// The number that the property holds, whatever its width; 0 when it is NULL.
unsigned long Number(const TCIMInstance& instance, const char* name) {
  const TCIMProperty* property = instance.FindProperty(name);
  if (!property || property->GetValue().IsNull()) return 0;
  const std::string text = property->GetValue().ToString(10);
  return std::strtoul(text.c_str(), nullptr, 10);
}

// "1 core", "2 cores".
std::string Counted(unsigned long count, const char* what) {
  return fmt::format("{} {}{}", count, what, count == 1 ? "" : "s");
}

std::string Bytes(const TCIMProperty& property) {
  return BytesText(static_cast<unsigned long>(property.GetValue()));
}

std::string Duration(const TCIMProperty& property) {
  const unsigned long seconds = property.GetValue();
  const unsigned long days = seconds / 86400;
  std::string time =
      fmt::format("{}:{:02}:{:02}", seconds / 3600 % 24, seconds / 60 % 60, seconds % 60);
  return days == 0 ? time : fmt::format("{}, {}", Counted(days, "day"), time);
}

std::string Moment(const TCIMProperty& property) { return MomentText(property.GetValue()); }

class TSummary {
 public:
  explicit TSummary(const TInventory& inventory) : fContainer(inventory.GetContainer()) {
    System();
    OperatingSystem();
    Processors();
    Memory();
  }

  std::vector<TFactGroup> TakeGroups() { return std::move(fGroups); }

 private:
  void Heading(const char* heading) { fGroups.push_back({heading, {}}); }

  void Row(const char* label, const std::string& text) {
    fGroups.back().facts.push_back({label, text});
  }

  // The fact of the first instance of a class.
  std::string FactOf(const char* className, const char* property, TShow show = PropertyText) const {
    const TInstances instances = InstancesOf(fContainer, className);
    return instances.empty() ? kNotAvailable : Fact(*instances.front(), property, show);
  }

  void System() {
    const std::string maker = FactOf(kComputer, "Manufacturer");
    const std::string product = FactOf(kComputer, "ProductName");
    Heading("System");
    Row("Name", FactOf(kComputer, "Name"));
    Row("Product", maker == kNotAvailable ? product : fmt::format("{} {}", maker, product));
    Row("Serial number", FactOf(kComputer, "SerialNumber"));
    Row("Machine type and model", FactOf("KVRSG_SystemBIOSElement", "MachineTypeModel"));
    const TInstances computers = InstancesOf(fContainer, kComputer);
    const std::string container =
        computers.empty() ? "" : TextOf(*computers.front(), "ContainerType");
    Row("Kind", Kind(FactOf(kComputer, "VirtualizationType"), Printable(container)));
  }

  // "physical", "virtual (KVM)", "virtual (KVM), in a container (docker)"
  static std::string Kind(const std::string& virtualization, const std::string& container) {
    std::string kind = virtualization;
    if (virtualization == "Physical") {
      kind = "physical";
    } else if (virtualization != kNotAvailable && virtualization.find("Virtual (") != 0) {
      kind = fmt::format("virtual ({})", virtualization);
    }
    return container.empty() ? kind : fmt::format("{}, in a container ({})", kind, container);
  }

  void OperatingSystem() {
    constexpr const char* kSystem = "KVRSG_OperatingSystem";
    Heading("Operating system");
    Row("Name", FactOf(kSystem, "Name"));
    Row("Version", FactOf(kSystem, "Version"));
    Row("Kernel", FactOf(kSystem, "KernelRelease"));
    Row("Booted", FactOf(kSystem, "LastBootUpTime", Moment));
    Row("Uptime", FactOf(kSystem, "Uptime", Duration));
  }

  void Processors() {
    Heading("Processors");
    const TInstances processors = InstancesOf(fContainer, "KVRSG_Processor");
    std::set<std::string> models;
    unsigned long cores = 0;
    unsigned long threads = 0;
    for (const TCIMInstance* processor : processors) {
      models.insert(Fact(*processor, "Name", PropertyText));
      cores += Number(*processor, "NumberOfEnabledCores");
      threads += Number(*processor, "NumberOfHardwareThreads");
    }
    if (processors.empty()) models.insert(kNotAvailable);
    for (const std::string& model : models) Row("Model", model);
    std::string counts = Counted(processors.size(), "package");
    if (cores != 0) counts += ", " + Counted(cores, "core");
    if (threads != 0) counts += ", " + Counted(threads, "thread");
    Row("Count", processors.empty() ? kNotAvailable : counts);
    Row("Caches", Caches());
  }

  // "2 x 48 KiB L1d, 2 x 32 KiB L1i, 1 x 32 MiB L3"
  std::string Caches() const {
    std::map<std::pair<std::string, std::string>, std::size_t> caches;
    for (const TCIMInstance* cache : InstancesOf(fContainer, "KVRSG_CacheMemory")) {
      const std::string type = Fact(*cache, "CacheType", PropertyText);
      const char* suffix = type == "Data" ? "d" : type == "Instruction" ? "i" : "";
      ++caches[{"L" + Fact(*cache, "Level", PropertyText) + suffix, Fact(*cache, "Size", Bytes)}];
    }
    std::string text;
    for (const auto& [kind, count] : caches) {
      if (!text.empty()) text += ", ";
      text += fmt::format("{} x {} {}", count, kind.second, kind.first);
    }
    return text.empty() ? kNotAvailable : text;
  }

  void Memory() {
    constexpr const char* kMemory = "KVRSG_Memory";
    Heading("Memory");
    Row("Total", FactOf(kMemory, "TotalSize", Bytes));
    Row("Available", FactOf(kMemory, "AvailableSize", Bytes));
    Row("Swap", FactOf(kMemory, "SwapTotalSize", Bytes));
    Row("Modules", Modules());
  }

  // "2 x 16 GiB DDR4, 2 of 4 slots"
  std::string Modules() const {
    const TInstances slots = InstancesOf(fContainer, "KVRSG_PhysicalMemory");
    if (slots.empty()) return TOSSpecific::IsAdmin() ? kNotAvailable : kNeedsRoot;
    std::map<std::string, std::size_t> modules;
    std::size_t used = 0;
    for (const TCIMInstance* slot : slots) {
      const TCIMProperty* populated = slot->FindProperty("Populated");
      if (!populated || PropertyText(*populated) != "true") continue;
      ++used;
      ++modules[fmt::format("{} {}", Fact(*slot, "Capacity", Bytes),
                            Fact(*slot, "MemoryType", PropertyText))];
    }
    std::string text;
    for (const auto& [kind, count] : modules) text += fmt::format("{} x {}, ", count, kind);
    return fmt::format("{}{} of {}", text, used, Counted(slots.size(), "slot"));
  }

  const TContainer& fContainer;
  std::vector<TFactGroup> fGroups;
};

// Which file, from when, and whether it is whole.
void PrintOrigin(const TInventory& inventory, std::ostream& out) {
  out << "Read from " << Printable(inventory.GetTitle());
  if (const TCIMInstance* run = inventory.GetRun()) {
    out << fmt::format(", collected {} by {}", Fact(*run, "StartTime", Moment),
                       Fact(*run, "User", PropertyText));
  }
  if (inventory.IsPartial()) out << ", in part";
  if (inventory.IsRedacted()) out << ", redacted";
  out << "\n";
}

// The classes that have instances.
void PrintContents(const TInventory& inventory, std::ostream& out, const TTerminal& terminal) {
  TTable table({
      {"Class",     false},
      {"Instances", true }
  });
  unsigned long classes = 0;
  for (const TCIMClass* cls : inventory.AllClasses()) {
    const std::size_t count = cls->EnumerateInstances(false).size();
    if (count == 0) continue;
    ++classes;
    table.AddRow({{cls->GetName()}, {std::to_string(count)}});
  }
  const std::string heading =
      fmt::format("{}: {} with instances", Printable(inventory.GetTitle()),
                  classes == 1 ? "1 class" : fmt::format("{} classes", classes));
  out << Styled(TLook::kHeading, heading, terminal) << "\n";
  if (classes > 0) table.Print(out, terminal);
}

}  // namespace

std::vector<TFactGroup> FactsOf(const TInventory& inventory) {
  return TSummary(inventory).TakeGroups();
}

void PrintSummary(const TInventory& inventory, std::ostream& out, const TTerminal& terminal) {
  if (!inventory.GetRun() && InstancesOf(inventory.GetContainer(), kComputer).empty()) {
    return PrintContents(inventory, out, terminal);
  }
  for (const TFactGroup& group : FactsOf(inventory)) {
    out << Styled(TLook::kHeading, group.heading, terminal) << "\n";
    for (const TFact& fact : group.facts) {
      const bool isMissing = fact.text == kNotAvailable || fact.text == kNeedsRoot;
      out << "  " << Styled(TLook::kKey, fmt::format("{:<22}", fact.label), terminal) << "  "
          << Styled(isMissing ? TLook::kMissing : TLook::kPlain, fact.text, terminal) << "\n";
    }
  }
  for (const TCIMInstance* product : InstancesOf(inventory.GetContainer(), "KVRSG_VNTProduct")) {
    out << fmt::format("Collected by {} {}\n", Fact(*product, "Name", PropertyText),
                       Fact(*product, "Version", PropertyText));
  }
  const std::string outcome = OutcomeText(inventory);
  if (!outcome.empty()) out << "\n" << outcome << "\n";
  if (inventory.IsSaved()) PrintOrigin(inventory, out);
}

std::string OutcomeText(const TInventory& inventory) {
  const TCIMInstance* run = inventory.GetRun();
  if (!run) return "";
  std::size_t answered = 0;
  std::size_t classes = 0;
  std::size_t instances = 0;
  for (const TCIMInstance* status : inventory.GetStatuses()) {
    answered += TextOf(*status, "Message").empty();
  }
  for (const TSection& section : inventory.GetSections()) {
    if (section.name == kCollectionSection) continue;
    for (const TCIMClass* cls : section.classes) {
      const std::size_t count = cls->EnumerateInstances(false).size();
      classes += count != 0;
      instances += count;
    }
  }
  return fmt::format("{}, {}, {} in {} ms", Counted(answered, "plug-in"),
                     classes == 1 ? "1 class" : fmt::format("{} classes", classes),
                     Counted(instances, "instance"), TextOf(*run, "Duration"));
}

}  // namespace zel
