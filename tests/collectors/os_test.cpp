#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/utsname.h>

#include "collectors/os/parse.h"
#include "collectors/os/read.h"
#include "tests/collectors/Collected.h"
#include "tests/support/LogSpy.h"
#include "tests/support/TimeZone.h"
#include "zelcore/zelcore.h"

namespace os_collector {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TOperatingSystem Look(const Machine& machine) {
  setenv("ZEL_SYSROOT", machine.GetRoot().c_str(), 1);
  TOperatingSystem os = Parse(Read());
  unsetenv("ZEL_SYSROOT");
  return os;
}

TEST(ParseOsRelease, UndoesTheShellsQuoting) {
  auto release = ParseOsRelease(
      "# a comment\n"
      "ID=debian\n"
      "\n"
      "  NAME=\"Debian GNU/Linux\"  \n"
      "SINGLE='a \\ b'\n"
      "ESCAPED=\"\\\"q\\\" \\$5 \\\\\"\n"
      "EMPTY=\n"
      "=nothing\n"
      "nonsense\n"
      "ID=again");
  EXPECT_EQ("again", release["ID"]);
  EXPECT_EQ("Debian GNU/Linux", release["NAME"]);
  EXPECT_EQ("a \\ b", release["SINGLE"]);
  EXPECT_EQ("\"q\" $5 \\", release["ESCAPED"]);
  EXPECT_EQ("", release["EMPTY"]);
  EXPECT_EQ(5u, release.size());
}

TEST(ParseOsType, GivesTheStandardNumbers) {
  const struct {
    const char *distribution, *architecture;
    uint16_t type;
  } kRows[] = {
      {"debian",        "x86_64",  96 },
      {"debian",        "aarch64", 96 },
      {"debian",        "i686",    95 },
      {"ubuntu",        "x86_64",  94 },
      {"ubuntu",        "armv7l",  93 },
      {"rhel",          "x86_64",  80 },
      {"rhel",          "s390x",   80 },
      {"centos",        "x86_64",  107},
      {"ol",            "x86_64",  109},
      {"sles",          "ppc64le", 85 },
      {"opensuse-leap", "x86_64",  83 },
      {"alpine",        "x86_64",  101},
      {"",              "riscv64", 101},
      {"alpine",        "armv7l",  36 },
      {"",              "",        36 },
  };
  for (const auto& row : kRows) {
    EXPECT_EQ(row.type, ParseOsType(row.distribution, row.architecture))
        << row.distribution << " " << row.architecture;
  }
}

TEST(Os, OfAServerIsComplete) {
  const TimeZone zone("America/New_York");
  const TOperatingSystem os = Look(Machine("x86-server"));
  EXPECT_EQ("Red Hat Enterprise Linux", os.name);
  EXPECT_EQ("9.4 (Plow)", os.version);
  EXPECT_EQ("Red Hat Enterprise Linux 9.4 (Plow)", os.caption);
  EXPECT_EQ(80, os.type);
  EXPECT_EQ("rhel", os.distribution);
  EXPECT_EQ("9.4", os.distributionVersion);
  EXPECT_EQ(std::nullopt, os.codename);
  EXPECT_EQ("Linux", os.kernelName);
  EXPECT_EQ("5.14.0-427.13.1.el9_4.x86_64", os.kernelRelease);
  EXPECT_EQ("#1 SMP PREEMPT_DYNAMIC Wed Apr 10 10:29:16 EDT 2024", os.kernelVersion);
  EXPECT_EQ("x86_64", os.architecture);
  EXPECT_EQ(1234567u, os.uptime);
  EXPECT_EQ("0.08", os.load1);
  EXPECT_EQ("1.20", os.load5);
  EXPECT_EQ("15.00", os.load15);
  EXPECT_EQ(32924008u * 1024ull, os.totalMemory);
  EXPECT_EQ(3u, os.processes);
  ASSERT_TRUE(os.bootTime);  // 1717171717 is 2024-05-31 16:08:37 UTC
  EXPECT_EQ(2024, os.bootTime->year);
  EXPECT_EQ(5, os.bootTime->month);
  EXPECT_EQ(31u, os.bootTime->day);
  EXPECT_EQ(12, os.bootTime->hour);
  EXPECT_EQ(8, os.bootTime->minute);
  EXPECT_EQ(37, os.bootTime->second);
  EXPECT_EQ(-240, os.bootTime->utcOffset);
  EXPECT_FALSE(os.localTime);  // a captured tree has no present
}

TEST(Os, NamesDistributionsByWhatTheyTell) {
  const TOperatingSystem ubuntu = Look(Machine("x86-laptop"));
  EXPECT_EQ("Ubuntu", ubuntu.name);
  EXPECT_EQ("jammy", ubuntu.codename);
  EXPECT_EQ(94, ubuntu.type);
  EXPECT_EQ("0.75", ubuntu.load1);
  const TOperatingSystem sles = Look(Machine("arm-server"));
  EXPECT_EQ("SLES", sles.name);
  EXPECT_EQ(85, sles.type);
  const TOperatingSystem debian = Look(Machine("arm-board"));
  EXPECT_EQ(96, debian.type);
  EXPECT_EQ(102396u * 1024ull, debian.totalSwap);
  const TOperatingSystem alpine = Look(Machine("container"));
  EXPECT_EQ("Alpine Linux", alpine.name);
  EXPECT_EQ("3.19.1", alpine.version);
  EXPECT_EQ(101, alpine.type);
  const TOperatingSystem unnamed = Look(Machine("qemu-q35"));  // no distribution at all
  EXPECT_EQ("Linux", unnamed.name);
  EXPECT_EQ(std::nullopt, unnamed.version);
  EXPECT_EQ("6.1.0-56-amd64", unnamed.kernelRelease);
}

TEST(Os, PrefersTheFileInEtc) {
  const Machine machine;
  machine.Write("usr/lib/os-release", "NAME=Vendor\nBUILD_ID=rolling\n");
  EXPECT_EQ("Vendor", Look(machine).name);
  EXPECT_EQ("rolling", Look(machine).version);
  machine.Write("etc/os-release", "NAME=Administrator\n");
  EXPECT_EQ("Administrator", Look(machine).name);
}

TEST(Os, LeavesOutWhatIsMalformed) {
  TSources sources;
  sources.statistics = "btime\nbtime x\n";
  sources.uptime = "soon 1";
  sources.load = "0.1 0.2 x 1/2 3";
  sources.memory = "MemTotal: many kB\nMemFree: 1 MB\nSwapTotal\n";
  const TOperatingSystem os = Parse(sources);
  EXPECT_EQ("Linux", os.name);
  EXPECT_FALSE(os.bootTime || os.uptime || os.load1 || os.load15);
  EXPECT_FALSE(os.totalMemory || os.freeMemory || os.totalSwap || os.freeSwap || os.processes);
  for (const char* load : {"", "1 2", "1. 2 3", ".5 1 2", "1 2 -3"}) {
    sources.load = load;
    EXPECT_FALSE(Parse(sources).load1) << load;
  }
}

// The live machine: its shape, not its values.
TEST(Os, OfTheLiveMachineIsWhatTheKernelSays) {
  const TOperatingSystem os = Parse(Read());
  utsname kernel;
  ASSERT_EQ(0, uname(&kernel));
  EXPECT_EQ(kernel.release, os.kernelRelease);
  EXPECT_EQ(kernel.machine, os.architecture);
  EXPECT_TRUE(os.bootTime && os.localTime && os.uptime && os.load1 && os.totalMemory);
  EXPECT_GE(os.processes.value_or(0), 1u);
}

TEST(OsPlugin, PublishesTheSystemThatRuns) {
  const TimeZone zone("UTC");
  const Collected collected(Machine("x86-server"), {"os", "system"});
  EXPECT_THAT(LogLines(zelLogError), IsEmpty());
  const auto systems = Collected::Of("KVRSG_OperatingSystem");
  ASSERT_EQ(1u, systems.size());
  const struct {
    const char *name, *text;
  } kRows[] = {
      {"CSCreationClassName",    "KVRSG_ComputerSystem"                               },
      {"CSName",                 "server"                                             },
      {"CreationClassName",      "KVRSG_OperatingSystem"                              },
      {"Name",                   "Red Hat Enterprise Linux"                           },
      {"Version",                "9.4 (Plow)"                                         },
      {"Caption",                "Red Hat Enterprise Linux 9.4 (Plow)"                },
      {"OSType",                 "80"                                                 },
      {"DistributionID",         "rhel"                                               },
      {"DistributionVersion",    "9.4"                                                },
      {"DistributionCodename",   "NULL"                                               },
      {"KernelName",             "Linux"                                              },
      {"KernelRelease",          "5.14.0-427.13.1.el9_4.x86_64"                       },
      {"KernelVersion",          "#1 SMP PREEMPT_DYNAMIC Wed Apr 10 10:29:16 EDT 2024"},
      {"Architecture",           "x86_64"                                             },
      {"LastBootUpTime",         "20240531160837.000000+000"                          },
      {"LocalDateTime",          "NULL"                                               },
      {"Uptime",                 "1234567"                                            },
      {"LoadAverage1Minute",     "0.08"                                               },
      {"LoadAverage5Minutes",    "1.2"                                                },
      {"LoadAverage15Minutes",   "15"                                                 },
      {"TotalVisibleMemorySize", "33714184192"                                        },
      {"NumberOfProcesses",      "3"                                                  },
  };
  for (const auto& row : kRows) {
    EXPECT_EQ(row.text, Collected::Text(*systems[0], row.name)) << row.name;
  }
  EXPECT_THAT(Collected::Ends("KVRSG_RunningOS", "Antecedent", "OSType"), ElementsAre("80"));
  EXPECT_THAT(Collected::Ends("KVRSG_RunningOS", "Dependent", "Name"), ElementsAre("server"));
  EXPECT_EQ("Red Hat Enterprise Linux",
            TCIMSchemaHelper::GetOperatingSystemName(&Collected::Schema()));
  EXPECT_EQ(80, TCIMSchemaHelper::GetOperatingSystemType(&Collected::Schema()));
}

TEST(OsPlugin, WarnsOnceWithoutADistribution) {
  const Collected collected(Machine("qemu-q35"), {"os", "system"});
  EXPECT_THAT(LogLines(zelLogError), IsEmpty());
  EXPECT_THAT(LogLines(zelLogWarning), ElementsAre("no os-release file names the distribution"));
  EXPECT_THAT(Collected::Texts("KVRSG_OperatingSystem", "Name"), ElementsAre("Linux"));
}

}  // namespace
}  // namespace os_collector
