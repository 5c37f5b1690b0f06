#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "collectors/kit/Files.h"
#include "collectors/system/parse.h"
#include "collectors/system/read.h"
#include "tests/collectors/Collected.h"
#include "tests/collectors/SmbiosTable.h"
#include "tests/support/LogSpy.h"
#include "tests/support/Unprivileged.h"
#include "zelcore/zelcore.h"

namespace system_collector {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TSystem Look(const Machine& machine) {
  setenv("ZEL_SYSROOT", machine.GetRoot().c_str(), 1);
  TSystem system = Parse(Read());
  unsetenv("ZEL_SYSROOT");
  return system;
}

std::string Day(const std::optional<kit::TDateTime>& date) {
  if (!date) return "none";
  return std::to_string(date->year) + "-" + std::to_string(date->month) + "-" +
         std::to_string(date->day) + " " + std::to_string(date->hour) + "h " +
         std::to_string(date->utcOffset);
}

// ---- Single facts ----

TEST(ParseMachineTypeModel, TakesBracketsThenTheSku) {
  const struct {
    TText product, sku, code;
  } kRows[] = {
      {"Rack Server R35 -[7914AC1]-", "ABCDEFG",    "7914AC1"   },
      {"-[88710  ]-",                 std::nullopt, "88710  "   },
      {"Rack Server -[7914]-",        "8871AC1",    "8871AC1"   }, // too short
      {"Rack Server -[7914A]-x",      "8871AC1",    "8871AC1"   }, // no code
      {"Rack Server -[791",           std::nullopt, std::nullopt},
      {"Notebook",                    "N40GL07",    "N40GL07"   },
      {"Notebook",                    "N40GL0",     std::nullopt},
      {"Notebook",                    "N40GL078",   std::nullopt},
      {"Notebook",                    "N40-L07",    std::nullopt},
      {std::nullopt,                  std::nullopt, std::nullopt},
  };
  for (const auto& row : kRows) {
    EXPECT_EQ(row.code, ParseMachineTypeModel(row.product, row.sku))
        << row.product.value_or("") << " " << row.sku.value_or("");
  }
}

TEST(ParseBiosDate, TakesMonthDayYear) {
  const struct {
    const char *text, *date;
  } kRows[] = {
      {"04/01/2014",   "2014-4-1 0h 0"  },
      {" 12/31/99\n",  "1999-12-31 0h 0"},
      {"02/29/2024",   "2024-2-29 0h 0" },
      {"02/29/2023",   "none"           },
      {"02/29/2100",   "none"           },
      {"02/29/2000",   "2000-2-29 0h 0" },
      {"13/01/2014",   "none"           },
      {"00/01/2014",   "none"           },
      {"04/31/2014",   "none"           },
      {"04/00/2014",   "none"           },
      {"04/01/69",     "none"           }, // before there was any firmware of this kind
      {"2014-04-01",   "none"           },
      {"04/01",        "none"           },
      {"04/01/2014/1", "none"           },
      {"xx/yy/zzzz",   "none"           },
      {"",             "none"           },
  };
  for (const auto& row : kRows) EXPECT_EQ(row.date, Day(ParseBiosDate(row.text))) << row.text;
}

TEST(ParseUuid, RefusesWhatIdentifiesNothing) {
  EXPECT_EQ("6f2a1c9e-3b4d-4e5f-8091-a2b3c4d5e6f7",
            ParseUuid("6F2A1C9E-3B4D-4E5F-8091-A2B3C4D5E6F7\n"));
  for (const char* text :
       {"", "00000000-0000-0000-0000-000000000000", "FFFFFFFF-FFFF-FFFF-FFFF-FFFFFFFFFFFF",
        "6f2a1c9e-3b4d-4e5f-8091-a2b3c4d5e6f", "6f2a1c9e-3b4d-4e5f-8091-a2b3c4d5e6fg",
        "6f2a1c9e03b4d-4e5f-8091-a2b3c4d5e6f7", "-f2a1c9e-3b4d-4e5f-8091-a2b3c4d5e6f7"}) {
    EXPECT_EQ(std::nullopt, ParseUuid(text)) << text;
  }
}

TEST(ParseVirtualization, WeighsTheSigns) {
  const auto expect = [](const char* name, const TSources& sources, EVirtualization type) {
    EXPECT_EQ(type, ParseVirtualization(sources)) << name;
  };
  const auto signatures = [](std::vector<std::string> texts) {
    TSources sources;
    sources.hypervisorSignatures = std::move(texts);
    return sources;
  };
  const auto firmware = [](const char* file, const char* text) {
    TSources sources;
    sources.dmi[file] = text;
    return sources;
  };
  const auto tree = [](const char* name, std::string texts) {
    TSources sources;
    sources.deviceTree[name] = std::move(texts);
    return sources;
  };
  expect("nothing", TSources(), EVirtualization::Physical);
  expect("KVM", signatures({std::string("KVMKVMKVM\0\0\0", 12)}), EVirtualization::Kvm);
  expect("TCG", signatures({"TCGTCGTCGTCG"}), EVirtualization::Qemu);
  expect("VMware", signatures({"VMwareVMware"}), EVirtualization::VMware);
  expect("Hyper-V", signatures({"Microsoft Hv"}), EVirtualization::HyperV);
  expect("KVM that poses as Hyper-V",
         signatures({"Microsoft Hv", std::string("KVMKVMKVM\0\0\0", 12)}), EVirtualization::Kvm);
  expect("Hyper-V and noise", signatures({"Microsoft Hv", std::string(12, '\0')}),
         EVirtualization::HyperV);
  expect("Xen", signatures({"XenVMMXenVMM"}), EVirtualization::Xen);
  expect("bhyve", signatures({"bhyve bhyve "}), EVirtualization::Bhyve);
  expect("unknown signature", signatures({"SomethingNew"}), EVirtualization::OtherHypervisor);
  expect("QEMU's firmware", firmware("sys_vendor", "QEMU\n"), EVirtualization::Qemu);
  expect("VMware's firmware", firmware("product_name", "VMware Virtual Platform"),
         EVirtualization::VMware);
  expect("Hyper-V's firmware", firmware("product_name", "Virtual Machine"),
         EVirtualization::HyperV);
  expect("Bochs", firmware("bios_vendor", "Bochs"), EVirtualization::Qemu);
  expect("Apple", firmware("product_name", "Apple Virtualization Generic Platform"),
         EVirtualization::Apple);
  expect("a cloud's guest on Arm", firmware("sys_vendor", "Amazon EC2"), EVirtualization::Kvm);
  expect("a maker of hardware", firmware("sys_vendor", "Example Systems"),
         EVirtualization::Physical);
  expect("KVM on Arm", tree("hypervisor/compatible", std::string("linux,kvm\0", 10)),
         EVirtualization::Kvm);
  expect("Xen on Arm", tree("hypervisor/compatible", std::string("xen,xen-4.11\0xen,xen\0", 21)),
         EVirtualization::Xen);
  expect("QEMU on Arm", tree("compatible", std::string("linux,dummy-virt\0", 17)),
         EVirtualization::Qemu);
  expect("a board", tree("compatible", std::string("example,4-model-b\0example,soc\0", 31)),
         EVirtualization::Physical);
  TSources box = signatures({std::string("KVMKVMKVM\0\0\0", 12)});
  box.dmi["product_name"] = "VirtualBox";
  expect("VirtualBox that poses as KVM", box, EVirtualization::VirtualBox);
  TSources dom0 = signatures({"XenVMMXenVMM"});
  dom0.xenCapabilities = "control_d";
  expect("the first domain of Xen", dom0, EVirtualization::Physical);
  TSources para;
  para.hypervisorType = "xen";
  expect("a guest of Xen", para, EVirtualization::Xen);
  TSources flag;
  flag.cpuInfo = "processor\t: 0\nflags\t\t: fpu hypervisor lm\n";
  expect("the processor's flag", flag, EVirtualization::OtherHypervisor);
  TSources noFlag;
  noFlag.cpuInfo = "processor\t: 0\nflags\t\t: fpu nohypervisor lm\n";
  expect("another flag", noFlag, EVirtualization::Physical);
  TSources metal = firmware("sys_vendor", "Amazon EC2");
  metal.dmi["product_name"] = "a1.metal";
  expect("a cloud's own machine", metal, EVirtualization::Physical);
}

TEST(ParseContainerType, WeighsTheSigns) {
  const auto expect = [](const char* name, const TSources& sources, const TText& type) {
    EXPECT_EQ(type, ParseContainerType(sources)) << name;
  };
  const auto with = [](auto TSources::*field, auto value) {
    TSources sources;
    sources.*field = value;
    return sources;
  };
  expect("nothing", TSources(), std::nullopt);
  expect("the variable", with(&TSources::initEnvironment, std::string("A=1\0container=lxc\0", 18)),
         "lxc");
  expect("another variable", with(&TSources::initEnvironment, std::string("mycontainer=lxc")),
         std::nullopt);
  expect("an empty variable", with(&TSources::initEnvironment, std::string("container=")),
         std::nullopt);
  expect("the manager's note", with(&TSources::containerManager, std::string("systemd-nspawn")),
         "systemd-nspawn");
  expect("the host", with(&TSources::initCgroups, std::string("0::/init.scope\n")), std::nullopt);
  expect("docker, old groups", with(&TSources::initCgroups, std::string("5:cpu:/docker/3f25\n")),
         "docker");
  expect("docker of systemd",
         with(&TSources::initCgroups, std::string("0::/system.slice/docker-3f25.scope\n")),
         "docker");
  expect("podman", with(&TSources::initCgroups, std::string("0::/machine.slice/libpod-3f.scope\n")),
         "podman");
  expect("kubernetes",
         with(&TSources::initCgroups, std::string("5:cpu:/kubepods/besteffort/docker-1\n")),
         "kubernetes");
  expect("lxc", with(&TSources::initCgroups, std::string("5:cpu:/lxc/box\n")), "lxc");
  expect("wsl", with(&TSources::kernelRelease, std::string("5.15.0-microsoft-standard-WSL2")),
         "wsl");
  expect("docker's mark", with(&TSources::hasDockerMark, true), "docker");
  expect("podman's mark", with(&TSources::hasPodmanMark, true), "podman");
  TSources image = with(&TSources::hasDockerMark, true);
  image.seesKernelThreads = true;
  expect("an image that was started as a machine", image, std::nullopt);
}

// ---- Captured machines ----

TEST(System, OfAServerIsReadFromTheKernelsFiles) {
  const TSystem system = Look(Machine("x86-server"));
  const TComputer& computer = system.computer;
  EXPECT_EQ("server", computer.name);
  EXPECT_EQ("Example Systems", computer.manufacturer);
  EXPECT_EQ("Rack Server R35 -[7914AC1]-", computer.productName);
  EXPECT_EQ("06AB123", computer.serialNumber);
  EXPECT_EQ("09", computer.version);
  EXPECT_EQ(std::nullopt, computer.skuNumber);  // all one character
  EXPECT_EQ("System R", computer.family);
  EXPECT_EQ("8d3f1a62-5c2b-11e2-9a1b-6c0b84d2f7a0", computer.uuid);
  EXPECT_EQ("b9a7f7e2c0d14f5b8a36d2c4e5f60718", computer.machineId);
  EXPECT_EQ("SMBIOS", computer.identitySource);
  EXPECT_EQ(EVirtualization::Physical, computer.virtualization);
  EXPECT_EQ(std::nullopt, computer.containerType);
  EXPECT_EQ(32924008u * 1024ull, computer.totalPhysicalMemory);
  EXPECT_EQ(2u, computer.processors);
  EXPECT_EQ(8u, computer.logicalProcessors);

  ASSERT_TRUE(system.bios);
  EXPECT_EQ("Example Firmware Corp.", system.bios->manufacturer);
  EXPECT_EQ("-[TQE138CUS-1.50]-", system.bios->version);
  EXPECT_EQ("2013-7-9 0h 0", Day(system.bios->releaseDate));
  EXPECT_EQ("7914AC1", system.bios->machineTypeModel);
  EXPECT_EQ(EFirmwareMode::Uefi, system.bios->mode);
  EXPECT_EQ(true, system.bios->secureBoot);

  ASSERT_EQ(1u, system.boards.size());
  EXPECT_EQ("00D4062", system.boards[0].model);
  EXPECT_EQ("42K1234567", system.boards[0].serialNumber);
  EXPECT_EQ(std::nullopt, system.boards[0].version);
  EXPECT_EQ(std::nullopt, system.boards[0].assetTag);
  ASSERT_EQ(1u, system.chassis.size());
  EXPECT_EQ(23u, system.chassis[0].type);
  EXPECT_EQ("06AB123", system.chassis[0].serialNumber);
}

TEST(System, OfALaptopLacksWhatOnlyRootMayRead) {
  const TSystem system = Look(Machine("x86-laptop"));
  EXPECT_EQ("Notebook N40", system.computer.productName);
  EXPECT_EQ(std::nullopt, system.computer.manufacturer);  // a placeholder
  EXPECT_EQ(std::nullopt, system.computer.serialNumber);
  EXPECT_EQ(std::nullopt, system.computer.uuid);
  EXPECT_EQ(std::nullopt, system.computer.family);
  EXPECT_EQ(std::nullopt, system.computer.machineId);  // "uninitialized"
  EXPECT_EQ("SMBIOS", system.computer.identitySource);
  EXPECT_EQ(1u, system.computer.processors);
  EXPECT_EQ("N40GL07", system.bios->machineTypeModel);
  EXPECT_EQ(false, system.bios->secureBoot);
  ASSERT_EQ(1u, system.chassis.size());
  EXPECT_EQ(10u, system.chassis[0].type);
  EXPECT_EQ(std::nullopt, system.chassis[0].manufacturer);
}

TEST(System, OfAnArmServerIsCleanedOfBrokenTexts) {
  const TSystem system = Look(Machine("arm-server"));
  EXPECT_EQ("Example Arm Systems", system.computer.manufacturer);
  EXPECT_EQ(std::nullopt, system.computer.version);
  EXPECT_EQ("01234567890123456789AB", system.computer.skuNumber);
  EXPECT_EQ(std::nullopt, system.bios->machineTypeModel);
  EXPECT_EQ(EFirmwareMode::Uefi, system.bios->mode);
  EXPECT_EQ(std::nullopt, system.bios->secureBoot);
  EXPECT_THAT(system.boards, IsEmpty());
}

TEST(System, OfABoardIsReadFromTheDeviceTree) {
  const TSystem system = Look(Machine("arm-board"));
  EXPECT_EQ("board", system.computer.name);
  EXPECT_EQ("Example Pi 4 Model B Rev 1.4", system.computer.productName);
  EXPECT_EQ("10000000a3b4c5d6", system.computer.serialNumber);
  EXPECT_EQ(std::nullopt, system.computer.manufacturer);
  EXPECT_EQ("device tree", system.computer.identitySource);
  EXPECT_EQ(EVirtualization::Physical, system.computer.virtualization);
  EXPECT_EQ(std::nullopt, system.computer.processors);
  EXPECT_EQ(2u, system.computer.logicalProcessors);
  EXPECT_FALSE(system.bios);
  EXPECT_THAT(system.boards, IsEmpty());
  EXPECT_THAT(system.chassis, IsEmpty());
}

TEST(System, OfAnEmulatedMachineIsReadFromItsFirmwaresTable) {
  const TSystem system = Look(Machine("qemu-q35"));
  const TComputer& computer = system.computer;
  EXPECT_EQ("captured", computer.name);
  EXPECT_EQ("Example Systems", computer.manufacturer);
  EXPECT_EQ("Rack Server R5 -[8871AC1]-", computer.productName);
  EXPECT_EQ("EX123456", computer.serialNumber);
  EXPECT_EQ("07", computer.version);
  EXPECT_EQ("8871AC1", computer.skuNumber);
  EXPECT_EQ("Rack", computer.family);
  EXPECT_EQ("6f2a1c9e-3b4d-4e5f-8091-a2b3c4d5e6f7", computer.uuid);
  EXPECT_EQ(EVirtualization::Qemu, computer.virtualization);
  EXPECT_EQ(2u, computer.processors);
  EXPECT_EQ(4u, computer.logicalProcessors);
  EXPECT_EQ("Example Firmware", system.bios->manufacturer);
  EXPECT_EQ("EF1.23", system.bios->version);
  EXPECT_EQ("2021-3-15 0h 0", Day(system.bios->releaseDate));
  EXPECT_EQ(EFirmwareMode::Bios, system.bios->mode);
  ASSERT_EQ(1u, system.boards.size());
  EXPECT_EQ("BB0042", system.boards[0].serialNumber);
  EXPECT_EQ("(01)", system.boards[0].version);
  EXPECT_EQ(std::nullopt, system.boards[0].assetTag);
  ASSERT_EQ(1u, system.chassis.size());
  EXPECT_EQ("CH0007", system.chassis[0].serialNumber);
  EXPECT_EQ("A-77", system.chassis[0].assetTag);
  EXPECT_EQ(std::nullopt, system.chassis[0].version);
  EXPECT_EQ(std::nullopt, system.chassis[0].skuNumber);
}

// The kernel made its files from the same table.
TEST(System, IsTheSameByTheKernelsFilesAndByTheFirmwaresTable) {
  const Machine byTable("qemu-q35"), byFiles("qemu-q35");
  byTable.Remove("sys/class/dmi/id");
  byFiles.Remove("sys/firmware/dmi/tables");
  const TSystem table = Look(byTable), files = Look(byFiles);
  const auto texts = [](const TSystem& system) {
    const TComputer& c = system.computer;
    const TBoard& b = system.boards.at(0);
    const TChassis& h = system.chassis.at(0);
    return std::vector<TText>{c.productName,
                              c.manufacturer,
                              c.serialNumber,
                              c.version,
                              c.skuNumber,
                              c.family,
                              c.uuid,
                              b.manufacturer,
                              b.model,
                              b.version,
                              b.serialNumber,
                              b.assetTag,
                              h.manufacturer,
                              h.version,
                              h.serialNumber,
                              h.assetTag,
                              system.bios->manufacturer,
                              system.bios->version};
  };
  EXPECT_EQ(texts(files), texts(table));
  EXPECT_EQ(files.chassis[0].type, table.chassis[0].type);
  EXPECT_EQ(Day(files.bios->releaseDate), Day(table.bios->releaseDate));
}

TEST(System, HasEveryBoardAndChassisOfTheTable) {
  const Machine machine;
  const std::string uuid("\x00\x11\x22\x33\x44\x55\x66\x77\x88\x99\xAA\xBB\xCC\xDD\xEE\xFF", 16);
  SmbiosStructure computer(1, 0x100, 0x1B);
  computer.Text(0x04, "Maker").Text(0x05, "Twin");
  for (size_t i = 0; i < uuid.size(); ++i) computer.Byte(0x08 + i, static_cast<uint8_t>(uuid[i]));
  const std::string table =
      SmbiosTable({computer, SmbiosStructure(2, 0x200, 0x0F).Text(0x05, "Left").Text(0x08, "Tag 1"),
                   SmbiosStructure(2, 0x201, 0x0F).Text(0x05, "Right").Text(0x07, "R-2"),
                   SmbiosStructure(2, 0x202, 0x08).Text(0x05, "None"),  // tells nothing
                   SmbiosStructure(3, 0x300, 0x1C)  // two contained elements of 3 bytes
                       .Text(0x04, "Maker")
                       .Byte(0x05, 0x97)
                       .Byte(0x13, 2)
                       .Byte(0x14, 3)
                       .Text(0x1B, "SKU-9"),
                   SmbiosStructure(3, 0x301, 0x09).Byte(0x05, 0x1C)});
  machine.Write("sys/firmware/dmi/tables/DMI", table);
  machine.Write("sys/firmware/dmi/tables/smbios_entry_point", std::string("_SM3_\0\0\x03\x00", 9));
  TSystem system = Look(machine);
  EXPECT_EQ("33221100-5544-7766-8899-aabbccddeeff", system.computer.uuid);
  ASSERT_EQ(2u, system.boards.size());
  EXPECT_EQ("Left", system.boards[0].model);
  EXPECT_EQ("Tag 1", system.boards[0].assetTag);
  EXPECT_EQ("R-2", system.boards[1].serialNumber);
  EXPECT_EQ("Base Board 1", system.boards[1].tag);
  ASSERT_EQ(2u, system.chassis.size());
  EXPECT_EQ(0x17, system.chassis[0].type);  // without the bit of the lock
  EXPECT_EQ("SKU-9", system.chassis[0].skuNumber);
  EXPECT_EQ(0x1C, system.chassis[1].type);
  EXPECT_EQ("Chassis 1", system.chassis[1].tag);

  machine.Write("sys/firmware/dmi/tables/smbios_entry_point", std::string("_SM_\0\0\x02\x05", 8));
  EXPECT_EQ("00112233-4455-6677-8899-aabbccddeeff", Look(machine).computer.uuid);
}

TEST(System, OfAMachineWithoutAnythingIsStillASystem) {
  const TSystem system = Look(Machine());
  EXPECT_EQ("localhost", system.computer.name);
  EXPECT_EQ("none", system.computer.identitySource);
  EXPECT_EQ(std::nullopt, system.computer.virtualization);  // the live processor is not asked
  EXPECT_EQ(std::nullopt, system.computer.totalPhysicalMemory);
  EXPECT_EQ(std::nullopt, system.computer.logicalProcessors);
  EXPECT_FALSE(system.bios);
}

TEST(System, OfABareVirtualMachineAndOfAContainerDiffer) {
  const TSystem guest = Look(Machine("bare-vm"));
  EXPECT_EQ(EVirtualization::Kvm, guest.computer.virtualization);
  EXPECT_EQ(std::nullopt, guest.computer.containerType);
  EXPECT_EQ("none", guest.computer.identitySource);
  const TSystem container = Look(Machine("container"));
  EXPECT_EQ(EVirtualization::OtherHypervisor, container.computer.virtualization);
  EXPECT_EQ("docker", container.computer.containerType);
  EXPECT_EQ("3f2504e04f89", container.computer.name);
}

TEST(System, KnowsThatATableNeedsRoot) {
  const Machine machine;
  setenv("ZEL_SYSROOT", machine.GetRoot().c_str(), 1);
  EXPECT_FALSE(Read().dmiNeedsRoot);
  machine.Write("sys/firmware/dmi/tables/DMI", "x");
  chmod(kit::FullPath("/sys/firmware/dmi/tables/DMI").c_str(), 0400);
  chmod(machine.GetRoot().c_str(), 0755);
  EXPECT_FALSE(Read().dmiNeedsRoot && geteuid() == 0);
  const Unprivileged user;
  EXPECT_TRUE(Read().dmiNeedsRoot);
}

// The live machine: its shape, not its values.
TEST(System, OfTheLiveMachineHasANameAndProcessors) {
  const TSystem system = Parse(Read());
  EXPECT_NE("", system.computer.name);
  EXPECT_TRUE(system.computer.virtualization);
  EXPECT_GT(system.computer.totalPhysicalMemory.value_or(0), 1u << 20);
  EXPECT_GE(system.computer.logicalProcessors.value_or(0), 1u);
}

// ---- The plug-in ----

TEST(SystemPlugin, PublishesAServer) {
  const Collected collected(Machine("qemu-q35"), {"system"});
  EXPECT_THAT(LogLines(zelLogError), IsEmpty());
  EXPECT_THAT(LogLines(zelLogWarning), IsEmpty());
  const auto computers = Collected::Of("KVRSG_ComputerSystem");
  ASSERT_EQ(1u, computers.size());
  const struct {
    const char *name, *text;
  } kComputer[] = {
      {"CreationClassName",         "KVRSG_ComputerSystem"                },
      {"Name",                      "captured"                            },
      {"ProductName",               "Rack Server R5 -[8871AC1]-"          },
      {"Manufacturer",              "Example Systems"                     },
      {"SerialNumber",              "EX123456"                            },
      {"Version",                   "07"                                  },
      {"SKUNumber",                 "8871AC1"                             },
      {"Family",                    "Rack"                                },
      {"UUID",                      "6f2a1c9e-3b4d-4e5f-8091-a2b3c4d5e6f7"},
      {"MachineId",                 "NULL"                                },
      {"IdentitySource",            "SMBIOS"                              },
      {"VirtualizationType",        "4"                                   },
      {"ContainerType",             "NULL"                                },
      {"NumberOfProcessors",        "2"                                   },
      {"NumberOfLogicalProcessors", "4"                                   },
  };
  for (const auto& row : kComputer) {
    EXPECT_EQ(row.text, Collected::Text(*computers[0], row.name)) << row.name;
  }
  EXPECT_THAT(Collected::Texts("KVRSG_SystemBIOSElement", "MachineTypeModel"),
              ElementsAre("8871AC1"));
  EXPECT_THAT(Collected::Texts("KVRSG_SystemBIOSElement", "ReleaseDate"),
              ElementsAre("20210315000000.000000+000"));
  EXPECT_THAT(Collected::Texts("KVRSG_SystemBIOSElement", "Version"), ElementsAre("EF1.23"));
  EXPECT_THAT(Collected::Texts("KVRSG_SystemBIOSElement", "FirmwareMode"), ElementsAre("1"));
  EXPECT_THAT(Collected::Texts("KVRSG_SystemBIOSElement", "SecureBoot"), ElementsAre("NULL"));
  EXPECT_THAT(Collected::Texts("KVRSG_BaseBoard", "Tag"), ElementsAre("Base Board 0"));
  EXPECT_THAT(Collected::Texts("KVRSG_BaseBoard", "Model"), ElementsAre("00AB123"));
  EXPECT_THAT(Collected::Texts("KVRSG_Chassis", "ChassisType"), ElementsAre("1"));
  EXPECT_THAT(Collected::Texts("KVRSG_Chassis", "AssetTag"), ElementsAre("A-77"));
  EXPECT_THAT(Collected::Ends("KVRSG_SystemBIOS", "Antecedent", "Version"), ElementsAre("EF1.23"));
  EXPECT_THAT(Collected::Ends("KVRSG_ComputerSystemBaseBoard", "Antecedent", "Tag"),
              ElementsAre("Base Board 0"));
  EXPECT_THAT(Collected::Ends("KVRSG_ComputerSystemChassis", "Antecedent", "Tag"),
              ElementsAre("Chassis 0"));
  for (const char* link :
       {"KVRSG_SystemBIOS", "KVRSG_ComputerSystemBaseBoard", "KVRSG_ComputerSystemChassis"}) {
    EXPECT_THAT(Collected::Ends(link, "Dependent", "Name"), ElementsAre("captured")) << link;
  }
  EXPECT_THAT(Collected::Ends("KVRSG_ChassisBaseBoard", "GroupComponent", "Tag"),
              ElementsAre("Chassis 0"));
  EXPECT_THAT(Collected::Ends("KVRSG_ChassisBaseBoard", "PartComponent", "Tag"),
              ElementsAre("Base Board 0"));
  EXPECT_EQ("captured", TCIMSchemaHelper::GetSystemName(&Collected::Schema()));
  EXPECT_EQ("8871AC1", TCIMSchemaHelper::GetMTM(&Collected::Schema()));
  EXPECT_EQ("EX123456", TCIMSchemaHelper::GetSerialNumber(&Collected::Schema()));
}

TEST(SystemPlugin, PublishesABareMachineWithOneWarning) {
  const Collected collected(Machine("bare-vm"), {"system"});
  EXPECT_THAT(LogLines(zelLogError), IsEmpty());
  EXPECT_THAT(LogLines(zelLogWarning),
              ElementsAre("neither SMBIOS nor a device tree tells what machine this is"));
  EXPECT_EQ(1u, Collected::Of("KVRSG_ComputerSystem").size());
  for (const char* name : {"KVRSG_SystemBIOSElement", "KVRSG_BaseBoard", "KVRSG_Chassis",
                           "KVRSG_SystemBIOS", "KVRSG_ChassisBaseBoard"}) {
    EXPECT_THAT(Collected::Of(name), IsEmpty()) << name;
  }
}

}  // namespace
}  // namespace system_collector
