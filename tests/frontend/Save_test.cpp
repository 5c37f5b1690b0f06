#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <set>
#include <sstream>

#include "frontend/Inventory.h"
#include "frontend/Progress.h"
#include "frontend/Streams.h"
#include "tests/frontend/Zel.h"
#include "tests/support/TempDir.h"
#include "tests/xml/Description.h"
#include "zelcore/zelcore.h"

namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::MatchesRegex;
using testing::StartsWith;
using zel::TInventory;

const std::string kPlugins = ZEL_BINARY_DIR "/plugins";

std::string Machine(const std::string& name) {
  return ZEL_SOURCE_DIR "/tests/testdata/machines/" + name;
}

TResult Collect(const std::string& plugins, std::vector<std::string> more) {
  more.insert(more.begin(), {"collect", "--plugin-dir", plugins, "--base", kBase});
  return Zel(more);
}

// Plug-ins of these names alone.
class TPluginDir : public TempDir {
 public:
  explicit TPluginDir(const std::vector<std::string>& names) {
    for (const std::string& name : names) {
      fs::copy(fs::path(ZEL_TEST_PLUGINS) / name, PathOf(name));
    }
  }
};

// The facts of each class, of which the document has an order of its own.
std::set<std::string> FactsOf(const TContainer& container) {
  std::set<std::string> facts;
  std::string cls;
  for (const std::string& line : Description(container).fLines) {
    if (line.rfind("class ", 0) == 0) cls = line;
    if (line.rfind("instance ", 0) == 0) cls = line;
    facts.insert(cls + ": " + line);
  }
  return facts;
}

std::vector<TCIMInstance*> InstancesOf(const TInventory& inventory, const char* cls) {
  return inventory.GetContainer().GetClass(cls)->EnumerateInstances(false);
}

TEST(Save, KeepsTheWholeInventory) {
  zel::TCollectionOptions options;
  options.pluginDirectory = kPlugins;
  options.baseSchema = kBase;
  for (const char* machine : {"x86-server", "arm-server", "qemu-q35"}) {
    SCOPED_TRACE(machine);
    setenv("ZEL_SYSROOT", Machine(machine).c_str(), 1);
    const TInventory live = TInventory::Collect(options);
    const TempDir dir;
    for (const auto& [name, compression] :
         {std::pair("a.xml", TCIMXMLWriter::ECompression::kNone),
          std::pair("a.xml.gz", TCIMXMLWriter::ECompression::kGzip)}) {
      std::ostringstream document;
      TCIMXMLWriter(document, compression).WriteContainer(live.GetContainer());
      const TInventory read = TInventory::Read(dir.WriteFile(name, document.str()));
      EXPECT_EQ(FactsOf(live.GetContainer()), FactsOf(read.GetContainer()));
      EXPECT_EQ(live.GetStatuses().size(), read.GetStatuses().size());
      for (const TCIMClass* cls : live.AllClasses()) {
        EXPECT_EQ(live.WasCollected(*cls), read.WasCollected(*cls)) << cls->GetName();
      }
    }
  }
}

TEST(Save, WritesWhatTheNameSays) {
  setenv("ZEL_SYSROOT", Machine("qemu-q35").c_str(), 1);
  const TempDir dir;
  const std::string plain = dir.PathOf("a.xml");
  const std::string packed = dir.PathOf("a.xml.gz");
  for (const std::string& path : {plain, packed}) {
    const TResult result = Collect(kPlugins, {"-o", path});
    EXPECT_EQ(0, result.code);
    EXPECT_EQ("", result.out);
    EXPECT_THAT(result.err,
                MatchesRegex("saved " + path +
                             " \\([0-9.]+ KiB\\): 5 plug-ins, 27 classes, 100 instances in "
                             "[0-9]+ ms\n"));
  }
  EXPECT_THAT(ReadFile(plain), StartsWith("<?xml version=\"1.0\" encoding=\"utf-8\"?>\n<CIM "));
  EXPECT_THAT(ReadFile(packed), StartsWith("\x1f\x8b"));
  if (std::system("xmllint --version >/dev/null 2>&1") == 0) {
    EXPECT_EQ(0, std::system(("xmllint --noout " + plain).c_str()));
  }

  const TResult out = Collect(kPlugins, {"--output", "-"});
  EXPECT_EQ(0, out.code);
  EXPECT_EQ("", out.err);
  EXPECT_THAT(out.out, StartsWith("<?xml "));
  EXPECT_EQ(100u + 6u, TInventory::Read(dir.WriteFile("b.xml", out.out))
                           .GetContainer()
                           .GetRootClass()
                           ->EnumerateInstances(true)
                           .size());
}

TEST(Save, WritesWhatCanBeReadUnderEveryName) {
  const TPluginDir plugins({"good"});
  const TempDir dir;
  std::filesystem::create_directory(dir.PathOf("d.gz"));
  for (const char* name :
       {"a", "a.gz", "a.gz.xml", "a.gzip", "d.gz/a.xml", "d.gz/a.xml.gz", "-a"}) {
    const std::string path = dir.PathOf(name);
    EXPECT_EQ(0, Collect(plugins.GetPath(), {"-o", path}).code);
    EXPECT_EQ(path.substr(path.size() - 3) == ".gz", ReadFile(path).substr(0, 2) == "\x1f\x8b");
    EXPECT_EQ(2u, InstancesOf(TInventory::Read(path), "Good_Thing").size()) << name;
  }
  fs::copy(dir.PathOf("a.gz"), dir.PathOf("b.gz.old"));
  EXPECT_EQ(2u, InstancesOf(TInventory::Read(dir.PathOf("b.gz.old")), "Good_Thing").size());
}

TEST(Save, FindsANameOfItsOwn) {
  setenv("ZEL_SYSROOT", Machine("qemu-q35").c_str(), 1);
  const TempDir dir;
  const fs::path former = fs::current_path();
  fs::current_path(dir.GetPath());
  const TResult here = Collect(kPlugins, {"-o"});
  fs::current_path(former);
  EXPECT_THAT(here.err, MatchesRegex("saved captured-[0-9]{8}-[0-9]{6}\\.xml\\.gz \\(.*\n"));
  EXPECT_TRUE(fs::exists(dir.PathOf(here.err.substr(6, here.err.find(" (") - 6))));
  EXPECT_THAT(
      Collect(kPlugins, {"-o", dir.GetPath()}).err,
      MatchesRegex("saved " + dir.PathOf("captured-[0-9]{8}-[0-9]{6}\\.xml\\.gz") + " \\(.*\n"));
  EXPECT_THAT(Collect(kPlugins, {"--redact", "-o", dir.GetPath()}).err,
              MatchesRegex("saved " + dir.PathOf("redacted-[0-9]{8}-[0-9]{6}\\.xml\\.gz") +
                           " \\([0-9.]+ KiB, redacted\\): .*\n"));
}

TEST(Save, TellsTheRun) {
  setenv("ZEL_SYSROOT", Machine("qemu-q35").c_str(), 1);
  const TempDir dir;
  Collect(kPlugins, {"-o", dir.PathOf("a.xml")});
  const TInventory inventory = TInventory::Read(dir.PathOf("a.xml"));
  ASSERT_TRUE(inventory.GetRun());
  const TCIMInstance& run = *inventory.GetRun();
  EXPECT_EQ("zel " + zel::TextOf(run, "Version") + "\n", Zel({"--version"}).out);
  EXPECT_NE("", zel::TextOf(run, "StartTime"));
  EXPECT_NE("", zel::TextOf(run, "Duration"));
  EXPECT_NE("", zel::TextOf(run, "User"));
  EXPECT_EQ(TOSSpecific::IsAdmin(), zel::FlagOf(run, "IsRoot"));
  EXPECT_FALSE(inventory.IsPartial());
  EXPECT_FALSE(inventory.IsRedacted());
  std::vector<std::string> names;
  for (const TCIMInstance* status : inventory.GetStatuses()) {
    names.push_back(zel::TextOf(*status, "PluginName"));
    EXPECT_EQ("0", zel::TextOf(*status, "Status"));
  }
  EXPECT_EQ((std::vector<std::string>{"system", "cpu", "memory", "os", "product"}), names);
}

TEST(Save, KeepsAPartialCollectionWithTheReasons) {
  const TPluginDir plugins({"good", "aborts", "secrets"});
  const TempDir dir;
  const std::string path = dir.PathOf("a.xml.gz");
  const TResult result = Collect(plugins.GetPath(), {"-o", path});
  EXPECT_EQ(3, result.code);
  EXPECT_THAT(result.err, HasSubstr("saved " + path + " ("));
  EXPECT_THAT(result.err, HasSubstr("zel: plug-in aborts failed: was ended by signal 6 (Aborted)"));
  const TInventory inventory = TInventory::Read(path);
  EXPECT_TRUE(inventory.IsPartial());
  ASSERT_EQ(3u, inventory.GetStatuses().size());
  const char* const messages[] = {"was ended by signal 6 (Aborted)", "",
                                  "web-prod-01 does not answer Ada Lovelace"};
  for (std::size_t i = 0; i < 3; ++i) {
    const TCIMInstance& status = *inventory.GetStatuses()[i];
    EXPECT_EQ(messages[i], zel::TextOf(status, "Message"));
    EXPECT_EQ(*messages[i] == '\0' ? "0" : "1", zel::TextOf(status, "Status"));
  }
  EXPECT_EQ(2u, InstancesOf(inventory, "Good_Thing").size());
}

TEST(Save, TellsWhichClassesWereAskedFor) {
  setenv("ZEL_SYSROOT", Machine("qemu-q35").c_str(), 1);
  const TempDir dir;
  const std::string path = dir.PathOf("a.xml");
  EXPECT_EQ(0, Collect(kPlugins, {"-o", path, "--class", "KVRSG_Memory"}).code);
  const TInventory inventory = TInventory::Read(path);
  EXPECT_EQ(1u, InstancesOf(inventory, "KVRSG_Memory").size());
  EXPECT_EQ(0u, InstancesOf(inventory, "KVRSG_Processor").size());
  const TContainer& container = inventory.GetContainer();
  EXPECT_TRUE(inventory.WasCollected(*container.GetClass("KVRSG_Memory")));
  EXPECT_FALSE(inventory.WasCollected(*container.GetClass("KVRSG_PhysicalMemory")));
  EXPECT_FALSE(inventory.WasCollected(*container.GetClass("KVRSG_Processor")));
}

TEST(Save, RefusesAFormat) {
  const TResult result = Zel({"collect", "-o", "a.xml", "--format", "json"});
  EXPECT_EQ(2, result.code);
  EXPECT_EQ("zel: --format excludes --output; see 'zel collect --help'\n", result.err);
}

TEST(Save, SaysWhyItCannotWrite) {
  const TPluginDir plugins({"noisy"});
  const TResult missing = Collect(plugins.GetPath(), {"-o", "/nowhere/a.xml"});
  EXPECT_EQ(7, missing.code);
  EXPECT_EQ("zel: cannot write '/nowhere/a.xml': No such file or directory; name another file\n",
            missing.err);
  const TResult full = Collect(plugins.GetPath(), {"-o", "/dev/full"});
  EXPECT_EQ(7, full.code);
  EXPECT_EQ(
      "zel: cannot write '/dev/full': No space left on device; make room or name another file\n",
      full.err);

  std::ostringstream err;
  std::ostream lost(nullptr);  // every write fails
  const char* argv[] = {"zel",    "collect",      "-o",
                        "-",      "--plugin-dir", plugins.GetPath().c_str(),
                        "--base", kBase.c_str()};
  EXPECT_EQ(7, zel::Main(static_cast<int>(std::size(argv)), argv, {lost, err}));
  EXPECT_EQ("zel: cannot write standard output: Input/output error; send it elsewhere\n",
            err.str());
}

TEST(Progress, ShowsWhenItTakesLongAndIsGoneAtTheEnd) {
  std::ostringstream out;
  std::ostringstream err;
  zel::TStreams streams = {out, err, {}, true};
  {
    zel::TProgress progress(&streams);
    progress.Show("too early");
    EXPECT_EQ("", err.str());
    usleep(310000);
    progress.Show("one\x1b");
    progress.Show("one\x1b");
    EXPECT_EQ("\r\x1b[Kone\\x1B", err.str());
    progress.Show(std::string(200, 'x'));
  }
  EXPECT_THAT(err.str(), MatchesRegex("\r\x1b\\[Kone\\\\x1B\r\x1b\\[Kx{1,79}[^x]*\r\x1b\\[K"));
  EXPECT_EQ("", out.str());

  streams.showProgress = false;
  std::ostringstream().swap(err);
  zel::TProgress unwanted(&streams);
  zel::TProgress nowhere(nullptr);
  usleep(310000);
  unwanted.Show("one");
  nowhere.Show("one");
  EXPECT_EQ("", err.str());
}

}  // namespace
