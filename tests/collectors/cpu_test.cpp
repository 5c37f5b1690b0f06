#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "collectors/cpu/models.h"
#include "collectors/cpu/parse.h"
#include "collectors/cpu/read.h"
#include "tests/collectors/Collected.h"
#include "tests/collectors/SmbiosTable.h"

using namespace cpu_collector;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

// A socket of type 4 with all that the collector asks for.
SmbiosStructure Socket(const std::string& designation, std::uint16_t handle) {
  return SmbiosStructure(4, handle, 0x30)
      .Text(0x04, designation)
      .Byte(0x05, 3)
      .Text(0x07, "Intel(R) Corporation")
      .Text(0x10, "Intel(R) Xeon(R) CPU E5-2637 0 @ 3.00GHz        ")
      .Word(0x12, 100)
      .Word(0x14, 4000)
      .Word(0x16, 3000)
      .Byte(0x18, 0x41)
      .Text(0x20, "Not Specified")
      .Text(0x21, "A-" + designation)
      .Text(0x22, "SR0KY")
      .Byte(0x23, 2);
}

kit::TSmbios Smbios(const std::string& table) { return kit::ParseSmbios("", table); }

TMachine OneCpu(const std::string& cpuInfo) {
  TMachine machine;
  machine.cpuInfo = cpuInfo;
  return machine;
}

TProcessor Only(const std::vector<TProcessor>& processors) {
  EXPECT_THAT(processors, SizeIs(1));
  return processors.empty() ? TProcessor() : processors.front();
}

}  // namespace

TEST(ParseCpuInfo, SkipsWhatIsMalformedAndSharesWhatHoldsForAll) {
  const auto cpus = ParseCpuInfo(
      "Processor\t: ARMv7 Processor rev 4 (v7l)\n"
      "processor\t: 1\nBogoMIPS\t: 38.40\n\n"
      "processor\t: many\nBogoMIPS\t: 1.00\n\n"
      "processor\t: 0\nno colon here\nBogoMIPS\t: 19.20\nBogoMIPS\t: 7\n \n"
      "processor\t: 1\nBogoMIPS\t: 5.00\n\n"
      "Features\t: half thumb\nCPU implementer\t: 0x41");
  ASSERT_THAT(cpus, SizeIs(2));
  EXPECT_EQ(0u, cpus[0].number);
  EXPECT_EQ("19.20", cpus[0].fields.at("BogoMIPS"));
  EXPECT_EQ("half thumb", cpus[0].fields.at("Features"));
  EXPECT_EQ(1u, cpus[1].number);
  EXPECT_EQ("38.40", cpus[1].fields.at("BogoMIPS"));
  EXPECT_EQ("0x41", cpus[1].fields.at("CPU implementer"));
  EXPECT_THAT(ParseCpuInfo(""), IsEmpty());
  EXPECT_THAT(ParseCpuInfo("\n:\n\n: :\n"), IsEmpty());
}

TEST(CountCpus, CountsRangesAndRefusesOthers) {
  const struct {
    const char* list;
    std::optional<std::uint32_t> count;
  } kRows[] = {
      {"0",            1           },
      {"0-3",          4           },
      {"0-1,4-5",      4           },
      {"7,9,11-12",    4           },
      {"",             std::nullopt},
      {"3-1",          std::nullopt},
      {"0-",           std::nullopt},
      {"-1",           std::nullopt},
      {"0,,1",         std::nullopt},
      {"a",            std::nullopt},
      {"0-4294967295", std::nullopt},
      {"4294967296",   std::nullopt},
  };
  for (const auto& row : kRows) EXPECT_EQ(row.count, CountCpus(row.list)) << row.list;
}

TEST(Models, NameMakersAndCores) {
  EXPECT_EQ("AMD", MakerOfVendor("AuthenticAMD"));
  EXPECT_EQ("Intel", MakerOfVendor("GenuineIntel"));
  EXPECT_EQ("Zhaoxin", MakerOfVendor("Shanghai"));
  EXPECT_EQ(std::nullopt, MakerOfVendor("Geode by NSC"));
  EXPECT_EQ("Ampere", MakerOfImplementer(0xc0));
  EXPECT_EQ(std::nullopt, MakerOfImplementer(0x00));
  EXPECT_EQ("Neoverse-V1", NameOfPart(0x41, 0xd40));
  EXPECT_EQ("A64FX", NameOfPart(0x46, 0x001));
  EXPECT_EQ(std::nullopt, NameOfPart(0x42, 0xd40)) << "a part of another maker";
}

TEST(BuildProcessors, LeavesOutWhatIsMalformed) {
  const TProcessor processor = Only(BuildProcessors(
      OneCpu("processor: 0\nvendor_id: Strange\nmodel name: unknown\nstepping: unknown\n"
             "cpu family: -1\nmodel: 4294967296\ncpu MHz: 0.000\nphysical id: x\nflags:\n")));
  EXPECT_EQ("CPU0", processor.id);
  EXPECT_EQ(std::nullopt, processor.name);
  EXPECT_EQ("Strange", processor.vendorId);
  EXPECT_EQ(std::nullopt, processor.manufacturer);
  EXPECT_EQ(std::nullopt, processor.stepping);
  EXPECT_EQ(std::nullopt, processor.family);
  EXPECT_EQ(std::nullopt, processor.modelNumber);
  EXPECT_EQ(std::nullopt, processor.currentSpeed);
  EXPECT_EQ(std::nullopt, processor.flags);
  EXPECT_EQ(std::nullopt, processor.addressWidth);
  EXPECT_EQ(std::nullopt, processor.enabledCores);
  EXPECT_EQ(1u, processor.threads);
  EXPECT_THAT(BuildProcessors(TMachine()), IsEmpty());
}

TEST(BuildProcessors, ReadsClocksOnlyOfTheFormThatTheKernelWrites) {
  const struct {
    const char* text;
    std::optional<std::uint32_t> speed;
  } kRows[] = {
      {"2596.096", 2596        },
      {"2596.5",   2597        },
      {"nan",      std::nullopt},
      {"inf",      std::nullopt},
      {"1e99",     std::nullopt},
      {"-5",       std::nullopt},
      {"2596MHz",  std::nullopt},
      {"",         std::nullopt},
  };
  for (const auto& row : kRows) {
    const auto machine = OneCpu("processor: 0\ncpu MHz: " + std::string(row.text) + "\n");
    EXPECT_EQ(row.speed, Only(BuildProcessors(machine)).currentSpeed) << row.text;
  }
}

TEST(BuildProcessors, TellsAddressWidthsByTheFlags) {
  const struct {
    const char* text;
    std::optional<std::uint16_t> width;
  } kRows[] = {
      {"flags: fpu lm",                                    64          },
      {"flags: fpu lmx",                                   32          },
      {"CPU implementer: 0x41\nFeatures: fp asimd",        64          },
      {"CPU implementer: 0x41\nFeatures: half thumb neon", 32          },
      {"CPU implementer: 0x41\nFeatures: odd",             std::nullopt},
  };
  for (const auto& row : kRows) {
    const auto machine = OneCpu("processor: 0\n" + std::string(row.text) + "\n");
    EXPECT_EQ(row.width, Only(BuildProcessors(machine)).addressWidth) << row.text;
  }
}

TEST(BuildProcessors, FillsTheGapsOfTheKernelFromTheFirmware) {
  TMachine machine = OneCpu("processor: 0\nCPU implementer: 0x99\nCPU part: 0x123\n");
  machine.smbios = Smbios(SmbiosTable({Socket("P0", 1)}));
  TProcessor processor = Only(BuildProcessors(machine));
  EXPECT_EQ("Intel(R) Xeon(R) CPU E5-2637 0 @ 3.00GHz", processor.name);
  EXPECT_EQ("Intel(R) Corporation", processor.manufacturer);
  EXPECT_EQ(3000u, processor.currentSpeed);
  EXPECT_EQ(4000u, processor.maxSpeed);

  machine.cpuInfo = "processor: 0\nvendor_id: GenuineIntel\nmodel name: Kernel's\ncpu MHz: 800\n";
  machine.cpus.resize(1);
  machine.cpus[0].maxFrequency = "3500000";
  processor = Only(BuildProcessors(machine));
  EXPECT_EQ("Kernel's", processor.name);
  EXPECT_EQ("Intel", processor.manufacturer);
  EXPECT_EQ(800u, processor.currentSpeed);
  EXPECT_EQ(3500u, processor.maxSpeed);
}

TEST(BuildProcessors, MatchesSocketsOnlyWhenThereIsOneForEachPackage) {
  TMachine machine = OneCpu("processor: 0\nphysical id: 0\n\nprocessor: 1\nphysical id: 1\n");
  machine.smbios = Smbios(SmbiosTable({Socket("P0", 1)}));
  for (const TProcessor& processor : BuildProcessors(machine)) {
    EXPECT_EQ(std::nullopt, processor.socket.designation);
  }
  machine.smbios = Smbios(SmbiosTable({Socket("P0", 1), Socket("P1", 2)}));
  const auto processors = BuildProcessors(machine);
  ASSERT_THAT(processors, SizeIs(2));
  EXPECT_EQ("P0", processors[0].socket.designation);
  EXPECT_EQ("P1", processors[1].socket.designation);
}

TEST(ParseSockets, TakesPopulatedSocketsOfCentralProcessorsOnly) {
  const auto sockets = ParseSockets(Smbios(SmbiosTable({
      Socket("empty", 1).Byte(0x18, 0x00),
      Socket("video", 2).Byte(0x05, 6),
      Socket("P0", 3).Byte(0x23, 0xFF).Word(0x2A, 288).Word(0x14, 0),
      SmbiosStructure(4, 4, 0x1A).Text(0x04, "old").Byte(0x05, 3).Byte(0x18, 0x40),
      SmbiosStructure(4, 5, 0x10).Text(0x04, "cut").Byte(0x05, 3),
  })));
  ASSERT_THAT(sockets, SizeIs(2));
  EXPECT_EQ("P0", sockets[0].designation);
  EXPECT_EQ(288u, sockets[0].cores);
  EXPECT_EQ(std::nullopt, sockets[0].maxSpeed) << "0 is unknown";
  EXPECT_EQ(3000u, sockets[0].currentSpeed);
  EXPECT_EQ(100u, sockets[0].externalClock);
  EXPECT_EQ(std::nullopt, sockets[0].serialNumber) << "a placeholder";
  EXPECT_EQ("A-P0", sockets[0].assetTag);
  EXPECT_EQ("SR0KY", sockets[0].partNumber);
  EXPECT_EQ("old", sockets[1].designation);
  EXPECT_EQ(std::nullopt, sockets[1].cores) << "the structure ends before";
  EXPECT_EQ(std::nullopt, sockets[1].partNumber);
}

TEST(ParseSockets, SurvivesAnyTable) {
  const std::string table = SmbiosTable({Socket("P0", 1), Socket("P1", 2)});
  for (std::size_t cut = 0; cut <= table.size(); ++cut) {
    EXPECT_LE(ParseSockets(Smbios(table.substr(0, cut))).size(), 2u);
  }
  for (std::size_t at = 0; at < table.size(); ++at) {
    for (const char byte : {'\x00', '\x01', '\x7F', '\x80', '\xFF'}) {
      std::string mutated = table;
      mutated[at] = byte;
      EXPECT_LE(ParseSockets(Smbios(mutated)).size(), 2u);
    }
  }
}

TEST(BuildCaches, SkipsMalformedOnesAndThoseOfCpusThatAreOffline) {
  TMachine machine = OneCpu("processor: 0\n\nprocessor: 1\n");
  const TCacheText good{"2", "Unified", "512K", "64", "8", "1024", "0-1"};
  machine.cpus.resize(3);
  for (unsigned i = 0; i < 3; ++i) machine.cpus[i].number = i;
  machine.cpus[0].caches = {
      good,
      {"",   "Data",  "32K", "64", "8",  "64", "0"},
      {"0",  "Data",  "32K", "64", "8",  "64", "0"},
      {"17", "Data",  "32K", "64", "8",  "64", "0"},
      {"1",  "Trace", "12",  "0",  "-1", "x",  "" }
  };
  machine.cpus[1].caches = {good};
  machine.cpus[2].caches = {
      {"1", "Data", "32K", "64", "8", "64", "2"}
  };
  const auto caches = BuildCaches(machine);
  ASSERT_THAT(caches, SizeIs(2));
  EXPECT_EQ("L1-0", caches[0].id);
  EXPECT_EQ(kOtherCache, caches[0].type);
  EXPECT_EQ(std::nullopt, caches[0].size) << "without its unit";
  EXPECT_EQ(std::nullopt, caches[0].lineSize) << "0 is unknown";
  EXPECT_EQ(std::nullopt, caches[0].ways);
  EXPECT_EQ(std::nullopt, caches[0].sets);
  EXPECT_EQ(std::nullopt, caches[0].sharedBy);
  EXPECT_EQ(std::nullopt, caches[0].sharingThreads);
  EXPECT_EQ("L2-0", caches[1].id);
  EXPECT_EQ(512u * 1024, caches[1].size);
  EXPECT_EQ(2u, caches[1].sharingThreads);
  EXPECT_EQ("CPU0", caches[1].processorId);
}

TEST(BuildNodes, SkipsMalformedLines) {
  TMachine machine;
  machine.nodes = {
      {0, "",    "Node 0 MemTotal: 18446744073709551615 kB\nNode 0 MemFree: 5 MB\n", "10 many"},
      {3, "0-1", "x\n\nNode 3 MemTotal:  4 kB\nNode 3 MemFree: 1 kB\n",              "21 10"  }
  };
  const auto nodes = BuildNodes(machine);
  ASSERT_THAT(nodes, SizeIs(2));
  EXPECT_EQ(std::nullopt, nodes[0].cpus);
  EXPECT_EQ(std::nullopt, nodes[0].threads);
  EXPECT_EQ(std::nullopt, nodes[0].totalMemory);
  EXPECT_EQ(std::nullopt, nodes[0].freeMemory);
  EXPECT_EQ(std::nullopt, nodes[0].distances);
  EXPECT_EQ(3u, nodes[1].number);
  EXPECT_EQ(2u, nodes[1].threads);
  EXPECT_EQ(4096u, nodes[1].totalMemory);
  EXPECT_EQ(1024u, nodes[1].freeMemory);
  EXPECT_THAT(*nodes[1].distances, ElementsAre(21, 10));
}

TEST(BuildVulnerabilities, SortsTheKernelsTextsIntoStates) {
  const struct {
    const char* text;
    EState state;
  } kRows[] = {
      {"Not affected",                              kNotAffected },
      {"Vulnerable",                                kVulnerable  },
      {"Vulnerable: Safe RET, no microcode",        kVulnerable  },
      {"Vulnerable, KVM: SW loop",                  kVulnerable  },
      {"Processor vulnerable",                      kVulnerable  },
      {"KVM: Vulnerable",                           kVulnerable  },
      {"Mitigation: PTI",                           kMitigated   },
      {"Mitigation: PTE Inversion; SMT vulnerable", kMitigated   },
      {"KVM: Mitigation: VMX disabled",             kMitigated   },
      {"Unknown: No mitigations",                   kUnknownState},
      {"Unknown: Dependent on hypervisor status",   kUnknownState},
      {"something else",                            kUnknownState},
  };
  for (const auto& row : kRows) {
    TMachine machine;
    machine.vulnerabilities["any"] = row.text;
    const auto found = BuildVulnerabilities(machine);
    ASSERT_THAT(found, SizeIs(1)) << row.text;
    EXPECT_EQ(row.state, found[0].state) << row.text;
    EXPECT_EQ(row.text, found[0].text);
  }
  TMachine unreadable;
  unreadable.vulnerabilities["any"] = "";
  EXPECT_THAT(BuildVulnerabilities(unreadable), IsEmpty());
}

TEST(CpuPlugin, CollectsAServerOfTwoPackages) {
  const Machine machine("x86-server");
  machine.Write("sys/firmware/dmi/tables/DMI",
                SmbiosTable({Socket("CPU 1", 0x400), Socket("CPU 2", 0x401)}));
  const Collected collected(machine, {"system", "cpu"});
  const auto text = [](const char* property) {
    return Collected::Texts("KVRSG_Processor", property);
  };
  EXPECT_THAT(text("DeviceID"), ElementsAre("CPU0", "CPU1"));
  EXPECT_THAT(text("SystemName"), ElementsAre("server", "server"));
  EXPECT_THAT(text("Name"), ElementsAre("Intel(R) Xeon(R) CPU E5-2637 0 @ 3.00GHz",
                                        "Intel(R) Xeon(R) CPU E5-2637 0 @ 3.00GHz"));
  EXPECT_THAT(text("Manufacturer"), ElementsAre("Intel", "Intel"));
  EXPECT_THAT(text("VendorID"), ElementsAre("GenuineIntel", "GenuineIntel"));
  EXPECT_THAT(text("Family"), ElementsAre("6", "6"));
  EXPECT_THAT(text("ModelNumber"), ElementsAre("45", "45"));
  EXPECT_THAT(text("Stepping"), ElementsAre("7", "7"));
  EXPECT_THAT(text("NumberOfEnabledCores"), ElementsAre("2", "2"));
  EXPECT_THAT(text("NumberOfHardwareThreads"), ElementsAre("4", "4"));
  EXPECT_THAT(text("NumberOfCores"), ElementsAre("2", "2"));
  EXPECT_THAT(text("CurrentClockSpeed"), ElementsAre("1200", "1300"));
  EXPECT_THAT(text("MaxClockSpeed"), ElementsAre("3500", "3500"));
  EXPECT_THAT(text("ExternalClock"), ElementsAre("100", "100"));
  EXPECT_THAT(text("AddressWidth"), ElementsAre("64", "64"));
  EXPECT_THAT(text("Microcode"), ElementsAre("0x71a", "0x71a"));
  EXPECT_THAT(text("SocketDesignation"), ElementsAre("CPU 1", "CPU 2"));
  EXPECT_THAT(text("SerialNumber"), ElementsAre("NULL", "NULL"));
  EXPECT_THAT(text("AssetTag"), ElementsAre("A-CPU 1", "A-CPU 2"));
  EXPECT_THAT(text("PartNumber"), ElementsAre("SR0KY", "SR0KY"));
  EXPECT_EQ(0u, text("Flags")[0].find("fpu vme de pse"));

  const auto cache = [](const char* property) {
    return Collected::Texts("KVRSG_CacheMemory", property);
  };
  EXPECT_THAT(cache("DeviceID"), ElementsAre("L1d-0", "L1d-1", "L1d-2", "L1d-3", "L3-0", "L3-2"));
  EXPECT_THAT(cache("Level"), ElementsAre("1", "1", "1", "1", "3", "3"));
  EXPECT_THAT(cache("CacheType"), ElementsAre("3", "3", "3", "3", "4", "4"));
  EXPECT_THAT(cache("Size"), ElementsAre("32768", "32768", "32768", "32768", "5242880", "5242880"));
  EXPECT_THAT(cache("SharedBy"), ElementsAre("0,4", "1,5", "2,6", "3,7", "0-1,4-5", "2-3,6-7"));
  EXPECT_THAT(cache("NumberOfSharingThreads"), ElementsAre("2", "2", "2", "2", "4", "4"));
  EXPECT_THAT(cache("Ways"), ElementsAre("8", "8", "8", "8", "20", "20"));
  EXPECT_THAT(cache("NumberOfSets"), ElementsAre("64", "64", "64", "64", "4096", "4096"));
  EXPECT_THAT(cache("LineSize"), ElementsAre("64", "64", "64", "64", "64", "64"));
  EXPECT_THAT(Collected::Ends("KVRSG_AssociatedCacheMemory", "Antecedent", "DeviceID"),
              ElementsAre("L1d-0", "L1d-1", "L1d-2", "L1d-3", "L3-0", "L3-2"));
  EXPECT_THAT(Collected::Ends("KVRSG_AssociatedCacheMemory", "Dependent", "DeviceID"),
              ElementsAre("CPU0", "CPU0", "CPU1", "CPU1", "CPU0", "CPU1"));

  const auto node = [](const char* property) {
    return Collected::Texts("KVRSG_NUMANode", property);
  };
  EXPECT_THAT(node("DeviceID"), ElementsAre("Node0", "Node1"));
  EXPECT_THAT(node("NodeNumber"), ElementsAre("0", "1"));
  EXPECT_THAT(node("CPUs"), ElementsAre("0-1,4-5", "2-3,6-7"));
  EXPECT_THAT(node("NumberOfHardwareThreads"), ElementsAre("4", "4"));
  EXPECT_THAT(node("TotalMemory"), ElementsAre("16805855232", "16908328960"));
  EXPECT_THAT(node("FreeMemory"), ElementsAre("9332002816", "16182394880"));
  EXPECT_THAT(node("Distances"), ElementsAre("10 21", "21 10"));

  EXPECT_THAT(Collected::Texts("KVRSG_CPUVulnerability", "Name"),
              ElementsAre("itlb_multihit", "l1tf", "mds", "meltdown", "retbleed"));
  EXPECT_THAT(Collected::Texts("KVRSG_CPUVulnerability", "State"),
              ElementsAre("2", "3", "2", "3", "1"));
  EXPECT_EQ("Mitigation: PTI", Collected::Texts("KVRSG_CPUVulnerability", "StateText")[3]);

  const auto system = [](const char* association) {
    return Collected::Ends(association, "GroupComponent", "Name");
  };
  EXPECT_THAT(system("KVRSG_SystemProcessor"), ElementsAre("server", "server"));
  EXPECT_THAT(system("KVRSG_SystemCacheMemory"), SizeIs(6));
  EXPECT_THAT(system("KVRSG_SystemNUMANode"), SizeIs(2));
  EXPECT_THAT(system("KVRSG_SystemCPUVulnerability"), SizeIs(5));
  EXPECT_THAT(Collected::Ends("KVRSG_SystemProcessor", "PartComponent", "DeviceID"),
              ElementsAre("CPU0", "CPU1"));
  EXPECT_THAT(Collected::Ends("KVRSG_SystemCPUVulnerability", "PartComponent", "Name"), SizeIs(5));
  EXPECT_THAT(LogLines(zelLogError), IsEmpty());
}

TEST(CpuPlugin, CollectsALaptop) {
  const Collected collected(Machine("x86-laptop"), {"system", "cpu"});
  const TCIMInstance& processor = *Collected::Of("KVRSG_Processor").at(0);
  EXPECT_EQ("Intel(R) Celeron(R) N4020 CPU @ 1.10GHz", Collected::Text(processor, "Name"));
  EXPECT_EQ("2", Collected::Text(processor, "NumberOfEnabledCores"));
  EXPECT_EQ("2", Collected::Text(processor, "NumberOfHardwareThreads"));
  EXPECT_EQ("1875", Collected::Text(processor, "CurrentClockSpeed")) << "the mean";
  EXPECT_EQ("2800", Collected::Text(processor, "MaxClockSpeed"));
  EXPECT_EQ("NULL", Collected::Text(processor, "SocketDesignation"));
  EXPECT_THAT(Collected::Texts("KVRSG_CacheMemory", "DeviceID"),
              ElementsAre("L1d-0", "L1d-1", "L1i-0", "L1i-1", "L2-0"));
  EXPECT_THAT(Collected::Texts("KVRSG_CPUVulnerability", "State"),
              ElementsAre("3", "1", "0", "2", "3", "3", "1"));
}

TEST(CpuPlugin, CollectsAnArmServer) {
  const Collected collected(Machine("arm-server"), {"system", "cpu"});
  ASSERT_THAT(Collected::Of("KVRSG_Processor"), SizeIs(1));
  const TCIMInstance& processor = *Collected::Of("KVRSG_Processor").at(0);
  const struct {
    const char* property;
    const char* text;
  } kRows[] = {
      {"DeviceID",                "CPU36"      },
      {"Name",                    "Neoverse-N1"},
      {"Manufacturer",            "Arm"        },
      {"VendorID",                "0x41"       },
      {"Family",                  "8"          },
      {"ModelNumber",             "3340"       },
      {"Stepping",                "r3p1"       },
      {"NumberOfEnabledCores",    "2"          },
      {"NumberOfHardwareThreads", "2"          },
      {"CurrentClockSpeed",       "1500"       },
      {"MaxClockSpeed",           "3000"       },
      {"AddressWidth",            "64"         },
      {"Microcode",               "NULL"       },
  };
  for (const auto& row : kRows) {
    EXPECT_EQ(row.text, Collected::Text(processor, row.property)) << row.property;
  }
  EXPECT_NE(std::string::npos, Collected::Text(processor, "Flags").find("atomics"));
}

TEST(CpuPlugin, CollectsAGuestWithTablesOfItsFirmware) {
  const Collected collected(Machine("qemu-q35"), {"system", "cpu"});
  const auto text = [](const char* property) {
    return Collected::Texts("KVRSG_Processor", property);
  };
  EXPECT_THAT(text("DeviceID"), ElementsAre("CPU0", "CPU1"));
  EXPECT_EQ("QEMU TCG CPU version 2.5+", text("Name")[0]);
  EXPECT_THAT(text("Version"), ElementsAre("pc-q35-7.2", "pc-q35-7.2"));
  EXPECT_THAT(text("Manufacturer"), ElementsAre("AMD", "AMD"));
  EXPECT_THAT(text("SocketDesignation"), ElementsAre("CPU 0", "CPU 1"));
  EXPECT_THAT(text("NumberOfCores"), ElementsAre("2", "2"));
  EXPECT_THAT(text("NumberOfEnabledCores"), ElementsAre("2", "2"));
  EXPECT_THAT(text("NumberOfHardwareThreads"), ElementsAre("2", "2"));
  EXPECT_THAT(text("MaxClockSpeed"), ElementsAre("2000", "2000"));
  EXPECT_THAT(text("ExternalClock"), ElementsAre("NULL", "NULL"));
  EXPECT_THAT(text("PartNumber"), ElementsAre("NULL", "NULL"));
  EXPECT_THAT(Collected::Texts("KVRSG_CacheMemory", "DeviceID"),
              ElementsAre("L1d-0", "L1d-1", "L1d-2", "L1d-3", "L1i-0", "L1i-1", "L1i-2", "L1i-3",
                          "L2-0", "L2-1", "L2-2", "L2-3", "L3-0", "L3-2"));
  EXPECT_THAT(Collected::Texts("KVRSG_NUMANode", "CPUs"), ElementsAre("0-3"));
  EXPECT_THAT(Collected::Texts("KVRSG_NUMANode", "TotalMemory"), ElementsAre("1004519424"));
}

TEST(CpuPlugin, CollectsAGuestThatTellsOnlyItsCpus) {
  const Collected collected(Machine("bare-vm"), {"system", "cpu"});
  ASSERT_THAT(Collected::Of("KVRSG_Processor"), SizeIs(1));
  const TCIMInstance& processor = *Collected::Of("KVRSG_Processor").at(0);
  EXPECT_EQ("CPU0", Collected::Text(processor, "DeviceID"));
  EXPECT_EQ("QEMU Virtual CPU version 2.5+", Collected::Text(processor, "Name"));
  EXPECT_EQ("2", Collected::Text(processor, "NumberOfHardwareThreads"));
  EXPECT_EQ("NULL", Collected::Text(processor, "NumberOfEnabledCores"));
  EXPECT_EQ("NULL", Collected::Text(processor, "MaxClockSpeed"));
  EXPECT_EQ("NULL", Collected::Text(processor, "Microcode"));
  EXPECT_THAT(Collected::Of("KVRSG_CacheMemory"), IsEmpty());
  EXPECT_THAT(Collected::Of("KVRSG_NUMANode"), IsEmpty());
  EXPECT_THAT(Collected::Of("KVRSG_CPUVulnerability"), IsEmpty());
}

TEST(CpuPlugin, LeavesOutACpuThatIsOffline) {
  const Collected collected(Machine("x86-offline-cpu"), {"system", "cpu"});
  ASSERT_THAT(Collected::Of("KVRSG_Processor"), SizeIs(1));
  const TCIMInstance& processor = *Collected::Of("KVRSG_Processor").at(0);
  EXPECT_EQ("3", Collected::Text(processor, "NumberOfHardwareThreads"));
  EXPECT_EQ("2", Collected::Text(processor, "NumberOfEnabledCores"));
  EXPECT_THAT(Collected::Texts("KVRSG_CacheMemory", "DeviceID"),
              ElementsAre("L1d-0", "L1d-2", "L3-0"));
  EXPECT_THAT(Collected::Texts("KVRSG_CacheMemory", "SharedBy"), ElementsAre("0-1", "2", "0-2"));
}

TEST(CpuPlugin, WarnsOnceOfEachSourceThatIsMissing) {
  const Machine machine;
  machine.Write("etc/hostname", "bare\n");
  const Collected collected(machine, {"cpu"});
  EXPECT_THAT(
      LogLines(zelLogWarning),
      ElementsAre("No processors: /proc/cpuinfo cannot be read",
                  "No caches: /sys/devices/system/cpu tells of none",
                  "No NUMA nodes: /sys/devices/system/node tells of none",
                  "No vulnerabilities: /sys/devices/system/cpu/vulnerabilities tells of none"));
  for (const char* name : {"KVRSG_Processor", "KVRSG_CacheMemory", "KVRSG_NUMANode",
                           "KVRSG_CPUVulnerability", "KVRSG_SystemProcessor"}) {
    EXPECT_THAT(Collected::Of(name), IsEmpty()) << name;
  }
  EXPECT_THAT(LogLines(zelLogError), IsEmpty());
}

TEST(CpuPlugin, FindsAProcessorInTheLiveMachine) {
  unsetenv("ZEL_SYSROOT");
  const auto processors = BuildProcessors(ReadMachine(kit::TLog(nullptr)));
  ASSERT_FALSE(processors.empty());
  for (const TProcessor& processor : processors) {
    EXPECT_GE(processor.threads, processor.enabledCores.value_or(1)) << processor.id;
  }
}
