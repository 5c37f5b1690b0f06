#include "frontend/OutputFile.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <functional>
#include <set>
#include <sstream>

#include "frontend/Descriptor.h"
#include "frontend/ExitCode.h"
#include "frontend/Inventory.h"
#include "frontend/OutputPath.h"
#include "frontend/Redaction.h"
#include "tests/frontend/Document.h"
#include "tests/support/TempDir.h"
#include "tests/support/Unprivileged.h"

namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::MatchesRegex;
using zel::TOutputFile;

// What the error says; "" when there is none. The exit code is always the same.
std::string ErrorOf(const std::function<void()>& work) {
  try {
    work();
  } catch (const zel::TCommandError& error) {
    EXPECT_EQ(zel::kExitNotWritten, error.GetExitCode());
    return error.what();
  }
  return "";
}

void Save(const std::string& path, const std::string& text) {
  std::ostringstream unused;
  TOutputFile file(path, unused);
  file.GetStream() << text;
  file.Commit();
  EXPECT_EQ("", unused.str());
}

std::string ErrorOfSaving(const std::string& path, const std::string& text) {
  return ErrorOf([&] { Save(path, text); });
}

std::set<std::string> NamesIn(const std::string& directory) {
  std::set<std::string> names;
  for (const fs::directory_entry& entry : fs::directory_iterator(directory)) {
    names.insert(entry.path().filename());
  }
  return names;
}

using TNames = std::set<std::string>;

const std::string kLong(1000000, 'x');  // longer than any buffer

TEST(OutputFile, IsThereWholeOrNotAtAll) {
  const TempDir dir;
  const std::string path = dir.WriteFile("a.xml", "old");
  chmod(path.c_str(), 0444);
  {
    std::ostringstream unused;
    TOutputFile file(path, unused);
    file.GetStream() << kLong;
    file.GetStream().flush();
    EXPECT_EQ(kLong.size(), file.GetSize());
    EXPECT_EQ("old", ReadFile(path));
    EXPECT_EQ(TNames{"a.xml"}, NamesIn(dir.GetPath()));
    file.GetStream() << "end";
    file.Commit();
    EXPECT_EQ(kLong.size() + 3, file.GetSize());
  }
  EXPECT_EQ(kLong + "end", ReadFile(path));
  EXPECT_EQ(TNames{"a.xml"}, NamesIn(dir.GetPath()));
  struct stat status = {};
  ASSERT_EQ(0, stat(path.c_str(), &status));
  EXPECT_EQ(0600u, status.st_mode & 07777);

  {
    std::ostringstream unused;
    TOutputFile file(path, unused);
    file.GetStream() << "never" << std::flush;
  }
  EXPECT_EQ(kLong + "end", ReadFile(path));
  EXPECT_EQ(TNames{"a.xml"}, NamesIn(dir.GetPath()));
}

TEST(OutputFile, HasItsModeWhateverTheMask) {
  const TempDir dir;
  const mode_t former = umask(0377);
  Save(dir.PathOf("a.xml"), "text");
  umask(former);
  struct stat status = {};
  ASSERT_EQ(0, stat(dir.PathOf("a.xml").c_str(), &status));
  EXPECT_EQ(0600u, status.st_mode & 07777);
}

TEST(OutputFile, TakesNamesOfEveryKind) {
  const TempDir dir;
  const fs::path former = fs::current_path();
  fs::current_path(dir.GetPath());
  const std::string longest(255, 'n');
  Save("a.xml", "1");
  Save("./b c.xml", "2");
  Save(longest, "3");
  const std::string tooLong = ErrorOfSaving(longest + "n", "4");
  fs::current_path(former);
  EXPECT_EQ("1", ReadFile(dir.PathOf("a.xml")));
  EXPECT_EQ("2", ReadFile(dir.PathOf("b c.xml")));
  EXPECT_EQ("3", ReadFile(dir.PathOf(longest)));
  EXPECT_EQ((TNames{"a.xml", "b c.xml", longest}), NamesIn(dir.GetPath()));
  EXPECT_THAT(tooLong, HasSubstr("': File name too long; name another file"));
}

TEST(OutputFile, SaysWhyItCannotBeWritten) {
  const TempDir dir;
  EXPECT_EQ("cannot write '" + dir.GetPath() + "': Is a directory; name another file",
            ErrorOfSaving(dir.GetPath(), ""));
  EXPECT_EQ("cannot write '/nowhere/a.xml': No such file or directory; name another file",
            ErrorOfSaving("/nowhere/a.xml", ""));
  const std::string file = dir.WriteFile("file", "");
  EXPECT_EQ("cannot write '" + file + "/a\\x0A.xml': Not a directory; name another file",
            ErrorOfSaving(file + "/a\n.xml", ""));
  fs::create_directory(dir.PathOf("closed"));
  chmod(dir.PathOf("closed").c_str(), 0555);
  chmod(dir.GetPath().c_str(), 0755);
  const Unprivileged nobody;
  EXPECT_EQ(
      "cannot write '" + dir.PathOf("closed/a.xml") + "': Permission denied; name another file",
      ErrorOfSaving(dir.PathOf("closed/a.xml"), ""));
}

TEST(OutputFile, ReplacesWhatALinkLeadsTo) {
  const TempDir dir;
  const std::string target = dir.WriteFile("below/target.xml", "old");
  fs::create_symlink("below/target.xml", dir.PathOf("link.xml"));
  Save(dir.PathOf("link.xml"), "new");
  EXPECT_EQ("new", ReadFile(target));
  EXPECT_TRUE(fs::is_symlink(dir.PathOf("link.xml")));
  EXPECT_EQ(TNames{"target.xml"}, NamesIn(dir.PathOf("below")));

  fs::create_symlink("nothing", dir.PathOf("dangling"));
  Save(dir.PathOf("dangling"), "new");
  EXPECT_FALSE(fs::is_symlink(dir.PathOf("dangling")));
  EXPECT_EQ("new", ReadFile(dir.PathOf("dangling")));
}

TEST(OutputFile, WritesIntoPipesAndDevices) {
  const TempDir dir;
  const std::string path = dir.PathOf("pipe");
  ASSERT_EQ(0, mkfifo(path.c_str(), 0600));
  const zel::TDescriptor reader(open(path.c_str(), O_RDWR));
  Save(path, "through");
  char text[16] = {};
  EXPECT_EQ(7, read(reader.Get(), text, sizeof text));
  EXPECT_STREQ("through", text);
  EXPECT_TRUE(fs::is_fifo(path));

  Save("/dev/null", kLong);
  EXPECT_TRUE(fs::is_character_file("/dev/null"));
  EXPECT_EQ("cannot write '/dev/full': No space left on device; make room or name another file",
            ErrorOfSaving("/dev/full", "text"));
}

TEST(OutputFile, CanBeStandardOutput) {
  std::ostringstream out;
  {
    TOutputFile file("-", out);
    file.GetStream() << "text";
    file.Commit();
    EXPECT_EQ(4u, file.GetSize());
  }
  EXPECT_EQ("text", out.str());

  std::ostream lost(nullptr);  // every write fails
  EXPECT_EQ("cannot write standard output: Input/output error; send it elsewhere", ErrorOf([&] {
              TOutputFile file("-", lost);
              file.GetStream() << "text";
              file.Commit();
            }));
}

// Of the size of a file, for what is written in the meantime.
class TSizeLimit {
 public:
  explicit TSizeLimit(rlim_t size) : fHandler(signal(SIGXFSZ, SIG_IGN)) {
    getrlimit(RLIMIT_FSIZE, &fFormer);
    const rlimit limit = {size, fFormer.rlim_max};
    setrlimit(RLIMIT_FSIZE, &limit);
  }
  ~TSizeLimit() {
    setrlimit(RLIMIT_FSIZE, &fFormer);
    signal(SIGXFSZ, fHandler);
  }

 private:
  sighandler_t fHandler;
  rlimit fFormer = {};
};

TEST(OutputFile, LeavesTheOldFileWhenAWriteFails) {
  const TempDir dir;
  const std::string path = dir.WriteFile("a.xml", "old");
  fs::create_symlink("a.xml", dir.PathOf("link"));
  for (const char* name : {"a.xml", "link"}) {
    std::string error;
    {
      const TSizeLimit limit(65536);
      error = ErrorOfSaving(dir.PathOf(name), kLong);
    }
    EXPECT_EQ("cannot write '" + dir.PathOf(name) + "': File too large; name another file", error);
    EXPECT_EQ("old", ReadFile(path));
    EXPECT_EQ((TNames{"a.xml", "link"}), NamesIn(dir.GetPath()));
  }
}

TEST(OutputFile, LeavesTheOldFileOnAFullDisk) {
  const TempDir dir;
  if (mount("none", dir.GetPath().c_str(), "tmpfs", 0, "size=64k") != 0) {
    GTEST_SKIP() << "no small file system: needs root";
  }
  const std::string path = dir.WriteFile("a.xml", "old");
  EXPECT_EQ("cannot write '" + path + "': No space left on device; make room or name another file",
            ErrorOfSaving(path, kLong));
  EXPECT_EQ("old", ReadFile(path));
  EXPECT_EQ(TNames{"a.xml"}, NamesIn(dir.GetPath()));
  EXPECT_EQ("", ErrorOfSaving(path, "small enough"));  // nothing takes up the room
  EXPECT_EQ("small enough", ReadFile(path));
  umount(dir.GetPath().c_str());
}

zel::TInventory Inventory(const std::string& name, const std::string& time) {
  const TempDir dir;
  const std::string system = "KVRSG_ComputerSystem";
  return zel::TInventory::Read(dir.WriteFile(
      "a.xml",
      document::Document(document::RunClasses() +
                         document::RunOf(document::Set("StartTime", "datetime", time)) +
                         document::Class(system, document::Key("Name", "string",
                                                               document::Qualifier("SENSITIVE"))) +
                         document::Instance(system, document::Set("Name", name)))));
}

TEST(OutputPath, NamesTheHostAndTheTime) {
  struct TRow {
    const char* host;
    const char* name;
  };
  const std::string time = "20261121145501.000000+060";
  const TempDir dir;
  for (const auto& [host, name] : {
           TRow{"web01.example.com", "web01.example.com"},
           TRow{"a b/../c\n\"$x",    "a_b_.._c___x"     },
           TRow{".hidden",           "_hidden"          },
           TRow{"-option",           "_option"          },
           TRow{"b\xc3\xbc",         "b__"              },
           TRow{"",                  "machine"          },
  }) {
    const zel::TInventory inventory = Inventory(host, time);
    const std::string expected = std::string(name) + "-20261121-145501.xml.gz";
    EXPECT_EQ(expected, zel::OutputPath("", inventory, ".xml.gz"));
    EXPECT_EQ(dir.PathOf(expected), zel::OutputPath(dir.GetPath(), inventory, ".xml.gz"));
    EXPECT_EQ(dir.PathOf(expected), zel::OutputPath(dir.GetPath() + "/", inventory, ".xml.gz"));
    for (const char* given : {"-", "a.html", "/nowhere/a", "/nowhere/"}) {
      EXPECT_EQ(given, zel::OutputPath(given, inventory, ".xml.gz"));
    }
  }
  const std::string longName = zel::OutputPath("", Inventory(std::string(300, 'h'), time), ".html");
  EXPECT_EQ(std::string(64, 'h') + "-20261121-145501.html", longName);

  zel::TInventory redacted = Inventory("web01", time);
  zel::Redact({&redacted});
  EXPECT_EQ("redacted-20261121-145501.html", zel::OutputPath("", redacted, ".html"));
}

TEST(OutputPath, DoesWithoutASystemAndARun) {
  const TempDir dir;
  const zel::TInventory inventory = zel::TInventory::Read(
      dir.WriteFile("a.xml", document::Document(document::Class("T_Box", document::Key("Id")))));
  EXPECT_THAT(zel::OutputPath("", inventory, ".xml.gz"),
              MatchesRegex("machine-[0-9]{8}-[0-9]{6}\\.xml\\.gz"));
}

}  // namespace
