#include <dlfcn.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "tests/support/LogSpy.h"
#include "tests/support/Status.h"
#include "tests/support/TempDir.h"
#include "tests/support/Unprivileged.h"
#include "zelcore/TOSSpecific.h"

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

TEST(FindPlugins, FindsWhatLiesOneLevelDeep) {
  const TempDir dir;
  for (const char* name :
       {"disk/disk.pi.so", "disk/disk.properties.xml", "disk/other.pi.so", "bak/x.pi.so.bak",
        "none/readme", "direct.pi.so", "deep/sub/y.pi.so", "odd/dir.pi.so/file", "case/z.PI.SO"}) {
    dir.WriteFile(name, "");
  }
  fs::create_directories(dir.PathOf("empty"));
  fs::create_directory_symlink("disk", dir.PathOf("linked"));
  EXPECT_THAT(
      TOSSpecific::FindPlugins(dir.GetPath()),
      UnorderedElementsAre(dir.PathOf("disk/disk.pi.so"), dir.PathOf("disk/other.pi.so"),
                           dir.PathOf("linked/disk.pi.so"), dir.PathOf("linked/other.pi.so"),
                           dir.PathOf("bak/x.pi.so.bak"), dir.PathOf("odd/dir.pi.so")));
  EXPECT_THAT(LogLines(), IsEmpty());
}

TEST(FindPlugins, KeepsTheOrderOfTheSystem) {
  const TempDir dir;
  for (const char* name : {"c", "a", "d", "b", "e"}) {
    for (const char* file : {"/2.pi.so", "/3.pi.so", "/1.pi.so"}) {
      dir.WriteFile(name + std::string(file), "");
    }
  }
  std::vector<std::string> expected;
  for (const auto& subdirectory : fs::directory_iterator(dir.GetPath())) {
    for (const auto& file : fs::directory_iterator(subdirectory)) expected.push_back(file.path());
  }
  EXPECT_EQ(15u, expected.size());
  EXPECT_EQ(expected, TOSSpecific::FindPlugins(dir.GetPath()));
}

TEST(FindPlugins, ThrowsForADirectoryThatItCannotRead) {
  const TempDir dir;
  const std::string file = dir.WriteFile("file", "");
  EXPECT_EQ("zelStatusFileSystemError", StatusOf([&] { TOSSpecific::FindPlugins(file); }));
  EXPECT_EQ("zelStatusFileSystemError",
            StatusOf([&] { TOSSpecific::FindPlugins(dir.PathOf("missing")); }));
  EXPECT_THAT(TOSSpecific::FindPlugins(dir.GetPath()), IsEmpty());
}

TEST(FindPlugins, PassesOverASubdirectoryThatItCannotRead) {
  const TempDir dir;
  const std::string good = dir.WriteFile("good/good.pi.so", "");
  dir.WriteFile("closed/closed.pi.so", "");
  ASSERT_EQ(0, chmod(dir.GetPath().c_str(), 0755));
  ASSERT_EQ(0, chmod(dir.PathOf("closed").c_str(), 0));
  {
    const Unprivileged nobody;
    EXPECT_THAT(TOSSpecific::FindPlugins(dir.GetPath()), ElementsAre(good));
  }
  EXPECT_THAT(LogLines(zelLogWarning),
              ElementsAre("Could not read plug-in directory " + dir.PathOf("closed")));
  chmod(dir.PathOf("closed").c_str(), 0700);
}

TEST(BuildSpecificationPath, DropsTheFirstLibAndChangesTheExtension) {
  struct {
    const char* plugin;
    const char* document;
  } const rows[] = {
      {"/opt/plugins/disk/libdisk.pi.so", "/opt/plugins/disk/disk.properties.xml"},
      {"disk/libdisk.pi.so",              "disk/disk.properties.xml"             },
      {"libdisk.pi.so",                   "disk.properties.xml"                  },
      {"/usr/lib/p/disk/libdisk.pi.so",   "/usr//p/disk/libdisk.properties.xml"  },
      {"/a/liberty/liberty.pi.so",        "/a/erty/liberty.properties.xml"       },
      {"/a/x/libx.pi.so.bak",             "/a/x/x.properties.xml"                },
      {"/a.pi.so/libx.pi.so",             ""                                     },
      {"/lib.pi.so/libx.pi.so",           "/.properties.xml"                     },
      {"liblib.pi.so",                    "lib.properties.xml"                   },
      {"lib.pi.so",                       ".properties.xml"                      },
      {"/a/x/x.pi.so",                    ""                                     },
      {"/a/x/x.pi.so/lib",                ""                                     },
      {"/a/x/LIBx.pi.so",                 ""                                     },
      {"/a/x/libx.so",                    ""                                     },
      {"/a/x/libx.PI.SO",                 ""                                     },
      {"",                                ""                                     },
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.plugin);
    std::string document;
    const std::string status =
        StatusOf([&] { document = TOSSpecific::BuildSpecificationPath(row.plugin); });
    EXPECT_EQ(row.document, document);
    EXPECT_EQ(*row.document ? "zelStatusOK" : "zelStatusFail", status);
  }
  EXPECT_THAT(LogLines(), IsEmpty());
}

TEST(LoadPluginLibrary, ShowsTheLibrarysSymbolsToAll) {
  EXPECT_EQ(nullptr, dlsym(RTLD_DEFAULT, "ExportedByATestPlugin"));
  const std::string path = std::string(ZEL_TEST_PLUGINS) + "/exports/libexports.pi.so";
  TOSSpecific::LoadPluginLibrary(path);
  auto exported = reinterpret_cast<int (*)()>(dlsym(RTLD_DEFAULT, "ExportedByATestPlugin"));
  ASSERT_NE(nullptr, exported);
  EXPECT_EQ(42, exported());
  TOSSpecific::LoadPluginLibrary(path);  // once more does no harm
  EXPECT_THAT(LogLines(), IsEmpty());
}

TEST(LoadPluginLibrary, LogsTheLoadersReason) {
  const TempDir dir;
  for (const std::string& path : {dir.PathOf("libmissing.pi.so"),
                                  dir.WriteFile("libbroken.pi.so", "no library"), dir.GetPath()}) {
    SCOPED_TRACE(path);
    ClearLog();
    EXPECT_EQ("zelStatusFileSystemError", StatusOf([&] { TOSSpecific::LoadPluginLibrary(path); }));
    ASSERT_EQ(nullptr, dlopen(path.c_str(), RTLD_NOW | RTLD_GLOBAL));
    EXPECT_THAT(LogLines(zelLogError),
                ElementsAre(std::string("ERROR: Failed to load plugin.  Reason: ") + dlerror()));
  }
}

TEST(LoadPluginLibrary, DoesNotWaitForWhatIsNoFile) {
  const TempDir dir;
  const std::string fifo = dir.PathOf("libfifo.pi.so");
  ASSERT_EQ(0, mkfifo(fifo.c_str(), 0644));
  alarm(30);
  for (const std::string& path : {fifo, std::string("/dev/null")}) {
    ClearLog();
    EXPECT_EQ("zelStatusFileSystemError", StatusOf([&] { TOSSpecific::LoadPluginLibrary(path); }));
    EXPECT_THAT(
        LogLines(zelLogError),
        ElementsAre("ERROR: Failed to load plugin.  Reason: " + path + ": not a regular file"));
  }
  alarm(0);
}
