#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "collectors/memory/parse.h"
#include "collectors/memory/read.h"
#include "tests/collectors/Collected.h"
#include "tests/collectors/SmbiosTable.h"
#include "tests/support/Unprivileged.h"

using namespace memory_collector;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

constexpr std::uint64_t kMiB = 1024 * 1024;
constexpr std::uint64_t kGiB = 1024 * kMiB;

kit::TSmbios Smbios(const std::vector<SmbiosStructure>& structures) {
  return kit::ParseSmbios("", SmbiosTable(structures));
}

// An array of system memory with multi-bit ECC for at most 64 GiB in `slots` slots.
SmbiosStructure Array(std::uint16_t handle, std::uint16_t slots) {
  return SmbiosStructure(16, handle, 0x17)
      .Byte(0x04, 3)
      .Byte(0x05, 3)
      .Byte(0x06, 6)
      .Dword(0x07, 64 * 1024 * 1024)
      .Word(0x0D, slots);
}

// A slot with a DDR4 module of 16 GiB.
SmbiosStructure Slot(std::uint16_t handle, std::uint16_t array, const std::string& locator) {
  return SmbiosStructure(17, handle, 0x5C)
      .Word(0x04, array)
      .Word(0x08, 72)
      .Word(0x0A, 64)
      .Word(0x0C, 16384)
      .Byte(0x0E, 9)
      .Text(0x10, locator)
      .Text(0x11, "BANK 0")
      .Byte(0x12, 26)
      .Word(0x13, 0x2080)
      .Word(0x15, 2933)
      .Text(0x17, " Samsung ")
      .Text(0x18, "03A1C2F4")
      .Text(0x19, "Not Specified")
      .Text(0x1A, "M393A2K43CB2-CVF    ")
      .Byte(0x1B, 2)
      .Word(0x20, 2666)
      .Word(0x26, 1200)
      .Byte(0x28, 3);
}

// Empty, though its firmware writes "No DIMM" and speeds.
SmbiosStructure EmptySlot(std::uint16_t handle, std::uint16_t array, const std::string& locator) {
  return Slot(handle, array, locator).Word(0x0C, 0).Text(0x17, "NO DIMM");
}

TModule OnlyModule(const SmbiosStructure& slot) {
  const auto modules = ParsePhysicalMemory(Smbios({slot})).modules;
  EXPECT_THAT(modules, SizeIs(1));
  return modules.empty() ? TModule() : modules.front();
}

TArray OnlyArray(const SmbiosStructure& array) {
  const auto arrays = ParsePhysicalMemory(Smbios({array})).arrays;
  EXPECT_THAT(arrays, SizeIs(1));
  return arrays.empty() ? TArray() : arrays.front();
}

}  // namespace

TEST(ParseMemInfo, SkipsMalformedLines) {
  const TMemory memory = ParseMemInfo(
      "MemTotal: 482132 kB\n"
      "MemFree: 12 MB\n"
      "MemAvailable: -1 kB\n"
      "Buffers: 18446744073709551615 kB\n"
      "Cached:\n"
      "Slab 5 kB\n"
      "\n"
      "HugePages_Total: 3 kB\n"
      "HugePages_Free: 2\n"
      "Hugepagesize: 2048\n"
      "SwapTotal: 0 kB");
  EXPECT_EQ(482132u * 1024, memory.total);
  EXPECT_EQ(std::nullopt, memory.free);
  EXPECT_EQ(std::nullopt, memory.available);
  EXPECT_EQ(std::nullopt, memory.buffers);
  EXPECT_EQ(std::nullopt, memory.cached);
  EXPECT_EQ(std::nullopt, memory.slab);
  EXPECT_EQ(std::nullopt, memory.hugePages);
  EXPECT_EQ(2u, memory.freeHugePages);
  EXPECT_EQ(std::nullopt, memory.hugePageSize);
  EXPECT_EQ(0u, memory.swapTotal) << "none is a fact";
  EXPECT_EQ(std::nullopt, ParseMemInfo("").total);
}

TEST(ParseSwaps, SkipsMalformedLines) {
  const auto swaps = ParseSwaps(
      "Filename\t\t\t\tType\t\tSize\t\tUsed\t\tPriority\n"
      "/dev/dm-1 partition 2048 1024 -2\n"
      "/swap\\040file\\134\\04 file 8 0 32767\n"
      "/other medium 8 0 1\n"
      "/dev/sda1 partition 2048 1024\n"
      "/dev/sda2 partition x 1024 1\n"
      "/dev/sda3 partition 2048 -1 1\n"
      "/dev/sda4 partition 2048 0 99999999999\n"
      "\\001 partition 2048 0 1\n"
      "\n");
  ASSERT_THAT(swaps, SizeIs(3));
  EXPECT_EQ("/dev/dm-1", swaps[0].name);
  EXPECT_EQ(kPartition, swaps[0].type);
  EXPECT_EQ(2048u * 1024, swaps[0].size);
  EXPECT_EQ(1024u * 1024, swaps[0].used);
  EXPECT_EQ(-2, swaps[0].priority);
  EXPECT_EQ("/swap file\\\\04", swaps[1].name);
  EXPECT_EQ(kFile, swaps[1].type);
  EXPECT_EQ(32767, swaps[1].priority);
  EXPECT_EQ(kUnknownSwap, swaps[2].type);
  EXPECT_THAT(ParseSwaps(""), IsEmpty());
}

TEST(ParsePhysicalMemory, ReadsAModule) {
  const TModule module = OnlyModule(Slot(0x1100, 0x1000, "A1"));
  EXPECT_EQ("Slot0", module.tag);
  EXPECT_EQ(true, module.populated);
  EXPECT_EQ(16 * kGiB, module.size);
  EXPECT_EQ(72, module.totalWidth);
  EXPECT_EQ(64, module.dataWidth);
  EXPECT_EQ(9, module.formFactor);
  EXPECT_EQ("A1", module.deviceLocator);
  EXPECT_EQ("BANK 0", module.bankLocator);
  EXPECT_EQ(26, module.type);
  EXPECT_THAT(*module.details, ElementsAre("Synchronous", "Registered (Buffered)"));
  EXPECT_EQ(2933u, module.speed);
  EXPECT_EQ(2666u, module.configuredSpeed);
  EXPECT_EQ(1200u, module.voltage);
  EXPECT_EQ(2, module.ranks);
  EXPECT_EQ(3, module.technology);
  EXPECT_EQ("Samsung", module.manufacturer);
  EXPECT_EQ("03A1C2F4", module.serialNumber);
  EXPECT_EQ(std::nullopt, module.assetTag) << "a placeholder";
  EXPECT_EQ("M393A2K43CB2-CVF", module.partNumber);
}

TEST(ParsePhysicalMemory, TellsNothingOfTheModuleInAnEmptySlot) {
  const TModule module = OnlyModule(EmptySlot(1, 2, "A2"));
  EXPECT_EQ(false, module.populated);
  EXPECT_EQ("A2", module.deviceLocator);
  EXPECT_EQ("BANK 0", module.bankLocator);
  EXPECT_EQ(9, module.formFactor);
  EXPECT_EQ(std::nullopt, module.size);
  EXPECT_EQ(std::nullopt, module.type);
  EXPECT_EQ(std::nullopt, module.speed);
  EXPECT_EQ(std::nullopt, module.manufacturer);
  EXPECT_EQ(std::nullopt, module.serialNumber);
}

TEST(ParsePhysicalMemory, ReadsSizesInEachForm) {
  const struct {
    const char* name;
    std::uint16_t size;
    std::uint32_t extended;
    std::optional<bool> populated;
    std::optional<std::uint64_t> bytes;
  } kRows[] = {
      {"megabytes",                   512,    0,          true,  512 * kMiB       },
      {"kilobytes",                   0x8200, 0,          true,  512 * 1024       },
      {"largest without extension",   0x7FFE, 0,          true,  0x7FFE * kMiB    },
      {"extended",                    0x7FFF, 0x20000,    true,  128 * kGiB       },
      {"extended, top bit reserved",  0x7FFF, 0x80008000, true,  32 * kGiB        },
      {"extended, but nothing there", 0x7FFF, 0,          true,  std::nullopt     },
      {"largest extended",            0x7FFF, 0x7FFFFFFF, true,  0x7FFFFFFF * kMiB},
      {"unknown",                     0xFFFF, 0,          true,  std::nullopt     },
      {"empty",                       0,      0x20000,    false, std::nullopt     },
  };
  for (const auto& row : kRows) {
    const TModule module =
        OnlyModule(Slot(1, 2, "A1").Word(0x0C, row.size).Dword(0x1C, row.extended));
    EXPECT_EQ(row.populated, module.populated) << row.name;
    EXPECT_EQ(row.bytes, module.size) << row.name;
  }
}

TEST(ParsePhysicalMemory, ReadsSpeedsInEachForm) {
  const struct {
    const char* name;
    std::uint16_t speed;
    std::uint32_t extended;
    std::optional<std::uint32_t> transfers;
  } kRows[] = {
      {"plain",                       3200,   0,          3200        },
      {"unknown",                     0,      7000,       std::nullopt},
      {"extended",                    0xFFFF, 70000,      70000       },
      {"extended, top bit reserved",  0xFFFF, 0x80011170, 70000       },
      {"extended, but nothing there", 0xFFFF, 0,          std::nullopt},
  };
  for (const auto& row : kRows) {
    const SmbiosStructure slot = Slot(1, 2, "A1")
                                     .Word(0x15, row.speed)
                                     .Dword(0x54, row.extended)
                                     .Word(0x20, row.speed)
                                     .Dword(0x58, row.extended);
    EXPECT_EQ(row.transfers, OnlyModule(slot).speed) << row.name;
    EXPECT_EQ(row.transfers, OnlyModule(slot).configuredSpeed) << row.name;
  }
}

TEST(ParsePhysicalMemory, LeavesOutWhatTheFirmwareDoesNotKnow) {
  const TModule module = OnlyModule(Slot(1, 2, "A1")
                                        .Word(0x08, 0xFFFF)
                                        .Word(0x0A, 0)
                                        .Byte(0x0E, 0)
                                        .Byte(0x12, 0)
                                        .Word(0x13, 0x0001)
                                        .Byte(0x1B, 0xF0)
                                        .Word(0x26, 0)
                                        .Byte(0x28, 0)
                                        .Byte(0x17, 99));
  EXPECT_EQ(std::nullopt, module.totalWidth);
  EXPECT_EQ(std::nullopt, module.dataWidth);
  EXPECT_EQ(std::nullopt, module.formFactor);
  EXPECT_EQ(std::nullopt, module.type);
  EXPECT_EQ(std::nullopt, module.details);
  EXPECT_EQ(std::nullopt, module.ranks);
  EXPECT_EQ(std::nullopt, module.voltage);
  EXPECT_EQ(std::nullopt, module.technology);
  EXPECT_EQ(std::nullopt, module.manufacturer) << "there is no such text";
}

TEST(ParsePhysicalMemory, ReadsOldStructuresAsFarAsTheyGo) {
  const TModule module = OnlyModule(SmbiosStructure(17, 1, 0x15)
                                        .Word(0x04, 2)
                                        .Word(0x0C, 0x7FFF)
                                        .Text(0x10, "A1")
                                        .Byte(0x12, 15));
  EXPECT_EQ(true, module.populated);
  EXPECT_EQ(std::nullopt, module.size) << "it stands in a field that is not there";
  EXPECT_EQ(15, module.type);
  EXPECT_EQ(std::nullopt, module.speed);
  EXPECT_EQ(std::nullopt, module.manufacturer);
  EXPECT_EQ(std::nullopt, module.ranks);

  const TModule stub = OnlyModule(SmbiosStructure(17, 1, 4));
  EXPECT_EQ(std::nullopt, stub.populated);
  EXPECT_EQ(std::nullopt, stub.arrayTag);
  const TArray array = OnlyArray(SmbiosStructure(16, 1, 4));
  EXPECT_EQ(std::nullopt, array.use);
  EXPECT_EQ(std::nullopt, array.maxCapacity);
  EXPECT_EQ(std::nullopt, array.slots);
}

TEST(ParsePhysicalMemory, ReadsArraysWithCapacitiesInEachForm) {
  const TArray array = OnlyArray(Array(0x1000, 24));
  EXPECT_EQ("Array0", array.tag);
  EXPECT_EQ(3, array.location);
  EXPECT_EQ(3, array.use);
  EXPECT_EQ(6, array.errorCorrection);
  EXPECT_EQ(64 * kGiB, array.maxCapacity);
  EXPECT_EQ(24, array.slots);

  const SmbiosStructure large = Array(1, 2).Dword(0x07, 0x80000000);
  EXPECT_EQ(6144 * kGiB, OnlyArray(SmbiosStructure(large).Qword(0x0F, 6144 * kGiB)).maxCapacity);
  EXPECT_EQ(std::nullopt, OnlyArray(large).maxCapacity) << "nothing in the extended field";
  EXPECT_EQ(std::nullopt,
            OnlyArray(SmbiosStructure(16, 1, 0x0F).Dword(0x07, 0x80000000)).maxCapacity)
      << "no extended field";
  EXPECT_EQ(std::nullopt, OnlyArray(Array(1, 2).Dword(0x07, 0)).maxCapacity);
}

TEST(ParsePhysicalMemory, FindsTheArrayOfASlotByItsHandle) {
  const auto memory = ParsePhysicalMemory(Smbios({
      Slot(0x20, 0x11, "B1"),
      Array(0x10, 1),
      Array(0x11, 1).Byte(0x05, 4),
      Slot(0x21, 0x10, "A1"),
      Slot(0x22, 0x99, "C1"),
      Array(0x10, 7),
  }));
  ASSERT_THAT(memory.arrays, SizeIs(3));
  ASSERT_THAT(memory.modules, SizeIs(3));
  EXPECT_EQ("Array1", memory.modules[0].arrayTag);
  EXPECT_FALSE(memory.modules[0].isSystemMemory) << "an array of video memory";
  EXPECT_EQ("Array0", memory.modules[1].arrayTag) << "the first one of the handle";
  EXPECT_TRUE(memory.modules[1].isSystemMemory);
  EXPECT_EQ(std::nullopt, memory.modules[2].arrayTag);
  EXPECT_FALSE(memory.modules[2].isSystemMemory);
}

TEST(ParsePhysicalMemory, SurvivesAnyTable) {
  const std::string table = SmbiosTable({Array(1, 2), Slot(2, 1, "A1"), EmptySlot(3, 1, "A2")});
  const auto count = [](const std::string& bytes) {
    const auto memory = ParsePhysicalMemory(kit::ParseSmbios("", bytes));
    return memory.arrays.size() + memory.modules.size();
  };
  ASSERT_EQ(3u, count(table));
  for (std::size_t cut = 0; cut <= table.size(); ++cut) EXPECT_LE(count(table.substr(0, cut)), 3u);
  for (std::size_t at = 0; at < table.size(); ++at) {
    for (const char byte : {'\x00', '\x01', '\x11', '\x7F', '\x80', '\xFF'}) {
      std::string mutated = table;
      mutated[at] = byte;
      // Bytes of one structure may pass for several, of four bytes at least.
      EXPECT_LE(count(mutated), table.size() / 4);
    }
  }
}

TEST(MemoryPlugin, CollectsAServerWithModules) {
  const Machine machine("x86-server");
  machine.Write("sys/firmware/dmi/tables/DMI",
                SmbiosTable({Array(0x1000, 3), Slot(0x1100, 0x1000, "A1"),
                             EmptySlot(0x1101, 0x1000, "A2"), Slot(0x1102, 0x1000, "A3")}));
  const Collected collected(machine, {"system", "memory"});

  ASSERT_THAT(Collected::Of("KVRSG_Memory"), SizeIs(1));
  const TCIMInstance& memory = *Collected::Of("KVRSG_Memory").at(0);
  const struct {
    const char* property;
    const char* text;
  } kRows[] = {
      {"DeviceID",       "Memory"     },
      {"SystemName",     "server"     },
      {"TotalSize",      "33714184192"},
      {"AvailableSize",  "27653234688"},
      {"FreeSize",       "25514397696"},
      {"BuffersSize",    "274882560"  },
      {"CachedSize",     "2191990784" },
      {"SharedSize",     "18681856"   },
      {"SlabSize",       "627978240"  },
      {"SwapTotalSize",  "0"          },
      {"SwapFreeSize",   "0"          },
      {"HugePagesTotal", "1024"       },
      {"HugePagesFree",  "512"        },
      {"HugePageSize",   "2097152"    },
  };
  for (const auto& row : kRows) {
    EXPECT_EQ(row.text, Collected::Text(memory, row.property)) << row.property;
  }
  EXPECT_THAT(Collected::Of("KVRSG_SwapSpace"), IsEmpty());

  const auto slot = [](const char* property) {
    return Collected::Texts("KVRSG_PhysicalMemory", property);
  };
  EXPECT_THAT(slot("Tag"), ElementsAre("Slot0", "Slot1", "Slot2"));
  EXPECT_THAT(slot("DeviceLocator"), ElementsAre("A1", "A2", "A3"));
  EXPECT_THAT(slot("BankLocator"), ElementsAre("BANK 0", "BANK 0", "BANK 0"));
  EXPECT_THAT(slot("Populated"), ElementsAre("true", "false", "true"));
  EXPECT_THAT(slot("Capacity"), ElementsAre("17179869184", "NULL", "17179869184"));
  EXPECT_THAT(slot("MemoryType"), ElementsAre("26", "NULL", "26"));
  EXPECT_EQ("Synchronous Registered (Buffered)", slot("TypeDetails")[0]);
  EXPECT_THAT(slot("Technology"), ElementsAre("3", "NULL", "3"));
  EXPECT_THAT(slot("FormFactor"), ElementsAre("9", "9", "9"));
  EXPECT_THAT(slot("Speed"), ElementsAre("2933", "NULL", "2933"));
  EXPECT_THAT(slot("ConfiguredSpeed"), ElementsAre("2666", "NULL", "2666"));
  EXPECT_THAT(slot("ConfiguredVoltage"), ElementsAre("1200", "NULL", "1200"));
  EXPECT_THAT(slot("TotalWidth"), ElementsAre("72", "NULL", "72"));
  EXPECT_THAT(slot("DataWidth"), ElementsAre("64", "NULL", "64"));
  EXPECT_THAT(slot("Ranks"), ElementsAre("2", "NULL", "2"));
  EXPECT_THAT(slot("Manufacturer"), ElementsAre("Samsung", "NULL", "Samsung"));
  EXPECT_THAT(slot("SerialNumber"), ElementsAre("03A1C2F4", "NULL", "03A1C2F4"));
  EXPECT_THAT(slot("PartNumber"), ElementsAre("M393A2K43CB2-CVF", "NULL", "M393A2K43CB2-CVF"));
  EXPECT_THAT(slot("AssetTag"), ElementsAre("NULL", "NULL", "NULL"));

  const auto array = [](const char* property) {
    return Collected::Texts("KVRSG_PhysicalMemoryArray", property);
  };
  EXPECT_THAT(array("Tag"), ElementsAre("Array0"));
  EXPECT_THAT(array("Location"), ElementsAre("3"));
  EXPECT_THAT(array("Use"), ElementsAre("3"));
  EXPECT_THAT(array("MemoryErrorCorrection"), ElementsAre("6"));
  EXPECT_THAT(array("MaxCapacity"), ElementsAre("68719476736"));
  EXPECT_THAT(array("NumberOfSlots"), ElementsAre("3"));

  const auto ends = [](const char* association, const char* end, const char* property) {
    return Collected::Ends(association, end, property);
  };
  EXPECT_THAT(ends("KVRSG_SystemMemory", "GroupComponent", "Name"), ElementsAre("server"));
  EXPECT_THAT(ends("KVRSG_SystemMemory", "PartComponent", "DeviceID"), ElementsAre("Memory"));
  EXPECT_THAT(ends("KVRSG_MemoryRealizes", "Antecedent", "Tag"), ElementsAre("Slot0", "Slot2"));
  EXPECT_THAT(ends("KVRSG_MemoryRealizes", "Dependent", "DeviceID"),
              ElementsAre("Memory", "Memory"));
  EXPECT_THAT(ends("KVRSG_PhysicalMemoryContainer", "GroupComponent", "Tag"),
              ElementsAre("Array0", "Array0", "Array0"));
  EXPECT_THAT(ends("KVRSG_PhysicalMemoryContainer", "PartComponent", "Tag"),
              ElementsAre("Slot0", "Slot1", "Slot2"));
  EXPECT_THAT(ends("KVRSG_SystemMemoryArray", "Antecedent", "Tag"), ElementsAre("Array0"));
  EXPECT_THAT(ends("KVRSG_SystemMemoryArray", "Dependent", "Name"), ElementsAre("server"));
  EXPECT_THAT(LogLines(zelLogError), IsEmpty());
}

TEST(MemoryPlugin, CollectsAGuestWithTablesOfItsFirmware) {
  const Collected collected(Machine("qemu-q35"), {"system", "memory"});
  ASSERT_THAT(Collected::Of("KVRSG_PhysicalMemory"), SizeIs(1));
  const TCIMInstance& slot = *Collected::Of("KVRSG_PhysicalMemory").at(0);
  const struct {
    const char* property;
    const char* text;
  } kRows[] = {
      {"DeviceLocator",   "DIMM 0"    },
      {"BankLocator",     "NULL"      },
      {"Populated",       "true"      },
      {"Capacity",        "1073741824"},
      {"MemoryType",      "7"         },
      {"TypeDetails",     "Other"     },
      {"FormFactor",      "9"         },
      {"Speed",           "NULL"      },
      {"ConfiguredSpeed", "NULL"      },
      {"TotalWidth",      "NULL"      },
      {"Manufacturer",    "QEMU"      },
      {"SerialNumber",    "NULL"      },
  };
  for (const auto& row : kRows) {
    EXPECT_EQ(row.text, Collected::Text(slot, row.property)) << row.property;
  }
  EXPECT_THAT(Collected::Texts("KVRSG_PhysicalMemoryArray", "Location"), ElementsAre("1"));
  EXPECT_THAT(Collected::Texts("KVRSG_PhysicalMemoryArray", "MemoryErrorCorrection"),
              ElementsAre("6"));
  EXPECT_THAT(Collected::Texts("KVRSG_PhysicalMemoryArray", "MaxCapacity"),
              ElementsAre("1073741824"));
  EXPECT_THAT(Collected::Ends("KVRSG_PhysicalMemoryContainer", "PartComponent", "DeviceLocator"),
              ElementsAre("DIMM 0"));
  EXPECT_THAT(Collected::Texts("KVRSG_Memory", "TotalSize"), ElementsAre("1004519424"));
}

TEST(MemoryPlugin, CollectsSwapSpaces) {
  const Collected collected(Machine("x86-laptop"), {"system", "memory"});
  const auto swap = [](const char* property) {
    return Collected::Texts("KVRSG_SwapSpace", property);
  };
  EXPECT_THAT(swap("DeviceID"), ElementsAre("/dev/nvme0n1p3", "/var/swap files/more"));
  EXPECT_THAT(swap("SwapType"), ElementsAre("1", "2"));
  EXPECT_THAT(swap("Size"), ElementsAre("2147479552", "2147479552"));
  EXPECT_THAT(swap("Used"), ElementsAre("85196800", "0"));
  EXPECT_THAT(swap("Priority"), ElementsAre("-2", "5"));
  EXPECT_THAT(Collected::Ends("KVRSG_SystemSwapSpace", "PartComponent", "DeviceID"),
              ElementsAre("/dev/nvme0n1p3", "/var/swap files/more"));
  EXPECT_THAT(Collected::Ends("KVRSG_SystemSwapSpace", "GroupComponent", "Name"),
              ElementsAre("laptop", "laptop"));
}

TEST(MemoryPlugin, LeavesWhatAnOldKernelDoesNotTellNull) {
  const Collected collected(Machine("bare-vm"), {"system", "memory"});
  ASSERT_THAT(Collected::Of("KVRSG_Memory"), SizeIs(1));
  const TCIMInstance& memory = *Collected::Of("KVRSG_Memory").at(0);
  EXPECT_EQ("493703168", Collected::Text(memory, "TotalSize"));
  EXPECT_EQ("NULL", Collected::Text(memory, "AvailableSize"));
  EXPECT_EQ("NULL", Collected::Text(memory, "SwapTotalSize"));
  EXPECT_EQ("NULL", Collected::Text(memory, "HugePagesTotal"));
}

TEST(MemoryPlugin, WarnsOnceOfEachSourceThatIsMissing) {
  const Machine machine;
  machine.Write("etc/hostname", "bare\n");
  const Collected collected(machine, {"memory"});
  EXPECT_THAT(LogLines(zelLogWarning),
              ElementsAre("No memory: /proc/meminfo cannot be read",
                          "No swap spaces: /proc/swaps cannot be read",
                          "No memory modules: /sys/firmware/dmi/tables/DMI cannot be read"));
  for (const char* name : {"KVRSG_Memory", "KVRSG_SwapSpace", "KVRSG_PhysicalMemory",
                           "KVRSG_PhysicalMemoryArray", "KVRSG_MemoryRealizes"}) {
    EXPECT_THAT(Collected::Of(name), IsEmpty()) << name;
  }
  EXPECT_THAT(LogLines(zelLogError), IsEmpty());
}

TEST(MemoryPlugin, SaysThatOnlyRootMayReadTheModules) {
  const Machine machine("bare-vm");
  machine.Write("sys/firmware/dmi/tables/DMI", SmbiosTable({Slot(1, 2, "A1")}));
  namespace fs = std::filesystem;
  fs::permissions(machine.GetRoot(), fs::perms::others_exec, fs::perm_options::add);
  fs::permissions(machine.GetRoot() + "/sys/firmware/dmi/tables/DMI", fs::perms::none);
  setenv("ZEL_SYSROOT", machine.GetRoot().c_str(), 1);
  RestartLog();
  {
    const Unprivileged nobody;
    ReadMachine(kit::TLog(nullptr));
  }
  EXPECT_EQ("No memory modules: /sys/firmware/dmi/tables/DMI can be read by root only",
            LastLogLine());
}

TEST(MemoryPlugin, FindsTheMemoryOfTheLiveMachine) {
  unsetenv("ZEL_SYSROOT");
  const TMemory memory = ParseMemInfo(ReadMachine(kit::TLog(nullptr)).memInfo);
  EXPECT_GT(memory.total.value_or(0), memory.free.value_or(0));
}
