#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <nlohmann/json.hpp>

#include "frontend/Inventory.h"
#include "tests/frontend/Document.h"
#include "tests/frontend/Zel.h"
#include "tests/support/TempDir.h"
#include "zelcore/zelcore.h"

namespace {

namespace fs = std::filesystem;
using namespace document;
using nlohmann::json;
using testing::HasSubstr;
using testing::MatchesRegex;
using testing::Not;
using testing::StartsWith;

const std::string kClasses =
    Class("T_Disk", Qualifier("SECTION", "string", "Storage") + Key("Id") +
                        Declare("Size", "uint64", Qualifier("UNITS", "string", "Bytes")) +
                        Declare("Label", "string") +
                        Declare("Reads", "uint64", Qualifier("VOLATILE"))) +
    Class("T_Fan", Key("Id") + Declare("Speed", "uint16"));

const std::string kOld =
    RunClasses() +
    RunOf(Set("StartTime", "datetime", "20261121105500.000000+060") + Set("SchemaVersion", "1.0")) +
    PluginStatus("disk", "T_Disk|T_Lost") + PluginStatus("fan", "T_Fan") + kClasses +
    Class("T_Lost", Key("Id")) +
    Instance("T_Disk", Set("Id", "sda") + Set("Size", "uint64", "1536") + Set("Label", "root")) +
    Instance("T_Disk", Set("Id", "sdb")) +
    Instance("T_Fan", Set("Id", "front") + Set("Speed", "uint16", "1200"));

const std::string kNew =
    RunClasses() +
    RunOf(Set("StartTime", "datetime", "20261122105501.000000+060") + Set("SchemaVersion", "1.1")) +
    PluginStatus("disk", "T_Disk") + PluginStatus("fan", "T_Fan") + kClasses +
    Instance("T_Disk",
             Set("Id", "sda") + Set("Size", "uint64", "2048") + Set("Reads", "uint64", "7")) +
    Instance("T_Disk", Set("Id", "sdc&#27;[2J")) +
    Instance("T_Fan", Set("Id", "front") + Set("Speed", "uint16", "1200")) +
    Instance("T_Fan", Set("Id", "rear"));

// The two documents above.
class TTwoFiles : public TempDir {
 public:
  TTwoFiles()
      : fOld(WriteFile("old.xml", Document(kOld))), fNew(WriteFile("new.xml", Document(kNew))) {}

  const std::string& Old() const { return fOld; }
  const std::string& New() const { return fNew; }

 private:
  std::string fOld;
  std::string fNew;
};

TEST(Diff, TellsWhatWasAddedRemovedAndChanged) {
  const TTwoFiles files;
  const TResult result = Zel({"diff", files.Old(), files.New()});
  EXPECT_EQ(1, result.code);
  EXPECT_EQ("", result.err);
  EXPECT_EQ("Changes from " + files.Old() + " (2026-11-21 10:55:00) to " + files.New() +
                " (2026-11-22 10:55:01)\n"
                "\n"
                "Other\n"
                "  T_Fan\n"
                "    + T_Fan.Id=\"rear\"\n"
                "\n"
                "Storage\n"
                "  T_Disk\n"
                "    + T_Disk.Id=\"sdc\\x1B[2J\"\n"
                "    - T_Disk.Id=\"sdb\"\n"
                "    ~ T_Disk.Id=\"sda\"\n"
                "        Label: root -> not available\n"
                "        Size: 1.5 Kilobytes -> 2 Kilobytes\n"
                "\n"
                "Not compared\n"
                "  T_Lost: " +
                files.New() +
                ": unknown class\n"
                "\n"
                "Notes\n"
                "  the schema versions differ: 1.0 and 1.1; classes may have other properties\n"
                "\n"
                "2 added, 1 removed, 1 changed; 1 class not compared\n",
            result.out);
}

TEST(Diff, SaysInTwoLinesThatNothingDiffers) {
  const TempDir files;
  const std::string old = files.WriteFile("a.xml", Document(kClasses));
  const TResult result = Zel({"diff", old, old});
  EXPECT_EQ(0, result.code);
  EXPECT_EQ("", result.err);
  EXPECT_EQ("Changes from " + old + " to " + old + "\nno differences\n", result.out);
}

TEST(Diff, TellsWhatWasNotComparedWhenNothingDiffers) {
  const TempDir files;
  const std::string classes = RunClasses() + kClasses;
  const std::string old =
      files.WriteFile("a.xml", Document(classes + PluginStatus("all", "T_Disk|T_Fan")));
  const std::string later =
      files.WriteFile("b.xml", Document(classes + PluginStatus("all", "T_Disk|T_Fan", "it broke")));
  const TResult result = Zel({"diff", old, later});
  EXPECT_EQ(0, result.code);
  EXPECT_EQ("Changes from " + old + " to " + later +
                "\n"
                "\n"
                "Not compared\n"
                "  T_Fan: " +
                later +
                ": plug-in all failed: it broke\n"
                "  T_Disk: " +
                later +
                ": plug-in all failed: it broke\n"
                "\n"
                "no differences; 2 classes not compared\n",
            result.out);
}

TEST(Diff, KeepsToClassesAndTakesVolatilePropertiesOnRequest) {
  const TTwoFiles files;
  const TResult fan = Zel({"diff", files.Old(), files.New(), "--class", "t_fan"});
  EXPECT_EQ(1, fan.code);
  EXPECT_THAT(fan.out, HasSubstr("\n1 added, 0 removed, 0 changed\n"));
  EXPECT_THAT(fan.out, Not(HasSubstr("T_Disk")));
  const TResult disk = Zel({"diff", files.Old(), files.New(), "--volatile", "--class", "Storage"});
  EXPECT_THAT(disk.out, HasSubstr("        Label: root -> not available\n"
                                  "        Reads: not available -> 7\n"
                                  "        Size: 1.5 Kilobytes -> 2 Kilobytes\n"));
  EXPECT_THAT(disk.out, Not(HasSubstr("T_Fan")));
}

TEST(Diff, UsesColourOnATerminalOnly) {
  const TTwoFiles files;
  const char* argv[] = {"zel", "diff", files.Old().c_str(), files.New().c_str()};
  std::ostringstream out;
  std::ostringstream err;
  EXPECT_EQ(1, zel::Main(4, argv,
                         {
                             out, err, {true, 80}
  }));
  for (const char* line :
       {"    \033[32m+ T_Fan.Id=\"rear\"\033[0m\n", "    \033[31m- T_Disk.Id=\"sdb\"\033[0m\n",
        "    \033[33m~ T_Disk.Id=\"sda\"\033[0m\n",
        "        Size: \033[31m1.5 Kilobytes\033[0m -> \033[32m2 Kilobytes\033[0m\n"}) {
    EXPECT_THAT(out.str(), HasSubstr(line));
  }
  EXPECT_THAT(Zel({"diff", files.Old(), files.New()}).out, Not(HasSubstr("\033")));
}

TEST(Diff, PrintsOneJsonDocument) {
  const TTwoFiles files;
  const TResult result = Zel({"diff", files.Old(), files.New(), "--format", "json"});
  EXPECT_EQ(1, result.code);
  const json document = json::parse(result.out);
  EXPECT_EQ("zel-diff", document.at("format"));
  EXPECT_EQ(1, document.at("version"));
  const json& old = document.at("old");
  EXPECT_EQ(4u, old.size());
  EXPECT_EQ(files.Old(), old.at("title"));
  EXPECT_EQ("2026-11-21T10:55:00.000000+01:00", old.at("time"));
  EXPECT_EQ(false, old.at("partial"));
  EXPECT_EQ(false, old.at("redacted"));
  EXPECT_EQ(files.New(), document.at("new").at("title"));
  EXPECT_EQ(true, document.at("different"));
  EXPECT_EQ(2, document.at("added"));
  EXPECT_EQ(1, document.at("removed"));
  EXPECT_EQ(1, document.at("changed"));
  EXPECT_EQ(json::parse(R"({
    "class": "T_Disk",
    "section": "Storage",
    "added": ["T_Disk.Id=\"sdc\u001b[2J\""],
    "removed": ["T_Disk.Id=\"sdb\""],
    "changed": [{
      "path": "T_Disk.Id=\"sda\"",
      "properties": {
        "Label": {"old": "root", "new": null, "oldText": "root", "newText": "not available"},
        "Size": {"old": 1536, "new": 2048, "oldText": "1.5 Kilobytes", "newText": "2 Kilobytes"}
      }
    }]
  })"),
            document.at("classes").at(1));
  ASSERT_EQ(1u, document.at("notCompared").size());
  EXPECT_EQ("T_Lost", document.at("notCompared").at(0).at("class"));
  EXPECT_EQ(files.New() + ": unknown class", document.at("notCompared").at(0).at("reason"));
  ASSERT_EQ(1u, document.at("notes").size());
  EXPECT_EQ("the schema versions differ: 1.0 and 1.1; classes may have other properties",
            document.at("notes").at(0));

  const TResult equal = Zel({"diff", files.Old(), files.Old(), "--format", "json"});
  EXPECT_EQ(0, equal.code);
  EXPECT_EQ(false, json::parse(equal.out).at("different"));
  EXPECT_EQ(json::array(), json::parse(equal.out).at("classes"));
}

TEST(Diff, PrintsAPageOfHtml) {
  const TTwoFiles files;
  const TResult result = Zel({"diff", files.Old(), files.New(), "--format", "html"});
  EXPECT_EQ(1, result.code);
  EXPECT_THAT(result.out, StartsWith("<!DOCTYPE html>\n"));
  EXPECT_THAT(result.out, HasSubstr("1.5 Kilobytes"));
  EXPECT_THAT(result.out, testing::EndsWith("</html>\n"));
}

TEST(Diff, PrintsNothingWhenOneOfTheTwoCannotBeRead) {
  const TTwoFiles files;
  const std::string torn =
      files.WriteFile("torn.xml", "<CIM CIMVERSION=\"2.0\"\n DTDVERSION=\"9\"/>");
  const std::string missing = files.PathOf("missing.xml");
  const auto expectRefused = [](const std::string& old, const std::string& later,
                                const std::string& message) {
    const TResult result = Zel({"diff", old, later});
    EXPECT_EQ(4, result.code);
    EXPECT_EQ("", result.out);
    EXPECT_THAT(result.err, StartsWith("zel: cannot read " + message));
  };
  expectRefused(torn, files.New(), "'" + torn + "': CIM-XML Parser line 2:");
  expectRefused(files.Old(), torn, "'" + torn + "': CIM-XML Parser line 2:");
  expectRefused(missing, files.New(), "'" + missing + "': No such file");
  expectRefused(files.Old(), missing, "'" + missing + "': No such file");
}

TEST(Diff, ReadsOneOfTheTwoFromStandardInput) {
  const TTwoFiles files;
  const std::string named = Zel({"diff", files.Old(), files.New()}).out;
  const auto expectSame = [&](const std::string& contents, const std::string& file,
                              const std::vector<std::string>& arguments) {
    const TStandardInput input(contents);
    const TResult result = Zel(arguments);
    EXPECT_EQ(1, result.code);
    EXPECT_EQ("", result.err);
    std::string expected = named;
    for (std::size_t at; (at = expected.find(file)) != std::string::npos;) {
      expected.replace(at, file.size(), "standard input");
    }
    EXPECT_EQ(expected, result.out);
  };
  expectSame(ReadFile(files.Old()), files.Old(), {"diff", "-", files.New()});
  expectSame(Gzip(ReadFile(files.Old())), files.Old(), {"diff", "-", files.New()});
  expectSame(Gzip(ReadFile(files.New())), files.New(), {"diff", files.Old(), "-"});
}

TEST(Diff, RefusesWrongArgumentsInOneLine) {
  const TTwoFiles files;
  const auto expectRefused = [](std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), "diff");
    const TResult result = Zel(arguments);
    SCOPED_TRACE(testing::PrintToString(arguments));
    EXPECT_EQ(2, result.code);
    EXPECT_EQ("", result.out);
    EXPECT_THAT(result.err, MatchesRegex("zel: [^\n]+\n"));
  };
  expectRefused({});
  expectRefused({files.Old(), files.New(), files.New()});
  expectRefused({files.Old(), files.New(), "--format", "yaml"});
  expectRefused({"-", "-"});
  expectRefused({files.Old(), files.New(), "--class", "nothing"});
}

// The inventory of a machine or of test plug-ins.
zel::TCollectionOptions Options(const std::string& plugins) {
  zel::TCollectionOptions options;
  options.pluginDirectory = plugins;
  options.baseSchema = kBase;
  return options;
}

std::string Save(const zel::TInventory& inventory, const std::string& path) {
  std::ofstream file(path);
  TCIMXMLWriter(file).WriteContainer(inventory.GetContainer());
  return path;
}

TResult DiffLive(const std::string& old, const std::string& plugins,
                 std::vector<std::string> more = {}) {
  more.insert(more.begin(), {"diff", old, "--plugin-dir", plugins, "--base", kBase});
  return Zel(more);
}

const std::string kCollectors = ZEL_BINARY_DIR "/plugins";
const std::string kMachines = ZEL_SOURCE_DIR "/tests/testdata/machines/";

TEST(Diff, ComparesWithThisMachine) {
  const TempDir work;
  setenv("ZEL_SYSROOT", (kMachines + "x86-server").c_str(), 1);
  const std::string old =
      Save(zel::TInventory::Collect(Options(kCollectors)), work.PathOf("server.xml"));
  const TResult same = DiffLive(old, kCollectors);
  EXPECT_EQ(0, same.code);
  EXPECT_EQ("", same.err);
  EXPECT_THAT(same.out,
              MatchesRegex("Changes from [^\n]*server.xml \\([-: 0-9]+\\) to this machine "
                           "\\([-: 0-9]+\\)\nno differences\n"));

  // The same machine after an update of the kernel and with a mitigation less.
  const std::string updated = work.PathOf("updated");
  fs::copy(kMachines + "x86-server", updated, fs::copy_options::recursive);
  std::ofstream(updated + "/proc/sys/kernel/osrelease") << "6.1.0-99-amd64\n";
  fs::remove(updated + "/sys/devices/system/cpu/vulnerabilities/mds");
  setenv("ZEL_SYSROOT", updated.c_str(), 1);
  const TResult later = DiffLive(old, kCollectors);
  EXPECT_EQ(1, later.code);
  EXPECT_THAT(later.out, HasSubstr("\nOperating system\n"
                                   "  KVRSG_OperatingSystem\n"
                                   "    ~ KVRSG_OperatingSystem."));
  EXPECT_THAT(later.out, HasSubstr("\n        KernelRelease: "));
  EXPECT_THAT(later.out, HasSubstr(" -> 6.1.0-99-amd64\n"));
  EXPECT_THAT(later.out, HasSubstr("    - KVRSG_CPUVulnerability."));
  EXPECT_THAT(later.out, HasSubstr("    - KVRSG_SystemCPUVulnerability."));
  EXPECT_THAT(later.out, Not(HasSubstr("Not compared")));
  EXPECT_THAT(later.out, testing::EndsWith("\n\n0 added, 2 removed, 1 changed\n"));

  setenv("ZEL_SYSROOT", (kMachines + "bare-vm").c_str(), 1);
  const TResult other = DiffLive(old, kCollectors);
  EXPECT_EQ(1, other.code);
  EXPECT_THAT(other.out, HasSubstr("    + KVRSG_ComputerSystem."));
  EXPECT_THAT(other.out, HasSubstr("    - KVRSG_ComputerSystem."));
  unsetenv("ZEL_SYSROOT");
}

class TPluginDir : public TempDir {
 public:
  explicit TPluginDir(const std::vector<std::string>& names) {
    for (const std::string& name : names) {
      fs::copy(fs::path(ZEL_TEST_PLUGINS) / name, PathOf(name));
    }
  }
};

TEST(Diff, AsksThisMachineOnlyForWhatTheOldCollectionHas) {
  const TPluginDir few({"noisy"});
  const TPluginDir more({"noisy", "hangs"});
  const TempDir work;
  const std::string old =
      Save(zel::TInventory::Collect(Options(few.GetPath())), work.PathOf("o.xml"));
  const std::string log = work.PathOf("log");
  const TResult result = DiffLive(old, more.GetPath(), {"--log", log, "--log-level", "debug"});
  EXPECT_EQ(0, result.code);
  EXPECT_THAT(result.out, testing::EndsWith("\nno differences\n"));
  EXPECT_THAT(ReadFile(log), HasSubstr("Asking plugin noisy for Noisy_Thing\n"));
  EXPECT_THAT(ReadFile(log), Not(HasSubstr("Asking plugin hangs")));
}

// Noisy_Thing and Aborts_Thing, as if their plug-ins had both answered.
std::string SaveBoth(const std::string& path) {
  const TPluginDir plugins({"aborts", "noisy"});
  const zel::TInventory inventory = zel::TInventory::Collect(Options(plugins.GetPath()));
  TContainer& container = inventory.GetContainer();
  for (TCIMInstance* status :
       container.GetClass("KVRSG_CollectionStatus")->EnumerateInstances(false)) {
    status->SetPropertyValue("Status", static_cast<unsigned short>(0));
  }
  return Save(inventory, path);
}

TEST(Diff, NamesWhatThisMachineDidNotTell) {
  const TPluginDir plugins({"aborts", "noisy"});
  const TempDir work;
  const std::string old = SaveBoth(work.PathOf("both.xml"));
  const TResult same = DiffLive(old, plugins.GetPath());
  EXPECT_EQ(3, same.code);
  EXPECT_EQ("", same.err);
  EXPECT_THAT(same.out, HasSubstr("\n\nNot compared\n"
                                  "  Aborts_Thing: this machine: plug-in aborts failed: was ended "
                                  "by signal 6 (Aborted)\n"
                                  "\n"
                                  "no differences; 1 class not compared\n"));

  const TResult without = DiffLive(old, TPluginDir({"noisy"}).GetPath());
  EXPECT_EQ(0, without.code);  // a plug-in that is not there does not fail
  EXPECT_THAT(without.out, HasSubstr("  Aborts_Thing: this machine: unknown class\n"));

  const TResult limited = DiffLive(old, plugins.GetPath(), {"--class", "Noisy_Thing"});
  EXPECT_EQ(0, limited.code);
  EXPECT_THAT(limited.out, testing::EndsWith("\nno differences\n"));

  // A difference weighs more than a failure.
  std::string text = ReadFile(old);
  const std::string id = "a&lt;b&gt;&amp;";
  ASSERT_NE(std::string::npos, text.find(id));
  text.replace(text.find(id), id.size(), "other");
  const TResult different = DiffLive(work.WriteFile("different.xml", text), plugins.GetPath());
  EXPECT_EQ(1, different.code);
  EXPECT_THAT(different.out,
              testing::EndsWith("1 added, 1 removed, 0 changed; 1 class not compared\n"));
}

TEST(Diff, HidesWhatIsSensitiveOnRequest) {
  const auto machine = [](const std::string& host, const std::string& serial) {
    return Class("T_System", Key("Name", "string", Qualifier("SENSITIVE")) +
                                 Declare("Serial", "string", Qualifier("SENSITIVE"))) +
           Class("T_Part", Key("Host") + Key("Id")) +
           Instance("T_System", Set("Name", host) + Set("Serial", serial)) +
           Instance("T_Part", Set("Host", host) + Set("Id", serial));
  };
  const TempDir files;
  const std::string old = files.WriteFile("a.xml", Document(machine("server1", "serial-1")));
  const std::string later = files.WriteFile("b.xml", Document(machine("server1", "serial-2")));
  for (const char* format : {"text", "json", "html"}) {
    const TResult result = Zel({"diff", "--redact", "--format", format, old, later});
    EXPECT_EQ(1, result.code);
    for (const char* secret : {"server1", "serial-1", "serial-2"}) {
      EXPECT_THAT(result.out, Not(HasSubstr(secret)));
    }
    EXPECT_THAT(result.out, HasSubstr("[redacted:"));
  }
  const std::string text = Zel({"diff", "--redact", old, later}).out;
  EXPECT_THAT(text, HasSubstr("\n        Serial: [redacted:"));
  EXPECT_THAT(text, testing::EndsWith("1 added, 1 removed, 1 changed\n"));
  EXPECT_THAT(text, Not(HasSubstr("Notes")));
  EXPECT_EQ(0, Zel({"diff", "--redact", old, old}).code);
}

}  // namespace
