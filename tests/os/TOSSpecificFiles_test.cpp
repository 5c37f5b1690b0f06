#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <signal.h>
#include <sys/mount.h>
#include <sys/resource.h>
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

namespace {

int PermissionsOf(const std::string& path) {
  struct stat status;
  return stat(path.c_str(), &status) == 0 ? static_cast<int>(status.st_mode & 07777) : -1;
}

std::size_t CountOpenDescriptors() { return TOSSpecific::ListDir("/proc/self/fd").size(); }

// Text that differs from place to place.
std::string SomeBytes(std::size_t size) {
  std::string bytes;
  for (std::size_t i = 0; i < size; ++i) bytes += static_cast<char>(i * 31 + i / 251);
  return bytes;
}

}  // namespace

TEST(Paths, AreFilesOrDirectoriesOrNothing) {
  const TempDir dir;
  dir.WriteFile("file", "12345");
  dir.WriteFile("empty", "");
  dir.WriteFile("sub/file", "");
  fs::create_symlink("file", dir.PathOf("link"));
  fs::create_symlink("sub", dir.PathOf("dirlink"));
  fs::create_symlink("nothing", dir.PathOf("dangling"));
  fs::resize_file(dir.WriteFile("huge", ""), 5368709120);  // sparse

  struct {
    std::string path;
    bool file, directory;
    std::size_t size;
  } const rows[] = {
      {dir.PathOf("file"),      true,  false, 5         },
      {dir.PathOf("empty"),     true,  false, 0         },
      {dir.PathOf("link"),      true,  false, 5         },
      {dir.PathOf("huge"),      true,  false, 5368709120},
      {"/dev/null",             true,  false, 0         },
      {dir.PathOf("sub"),       false, true,  0         },
      {dir.PathOf("dirlink"),   false, true,  0         },
      {dir.PathOf("dangling"),  false, false, 0         },
      {dir.PathOf("nothing"),   false, false, 0         },
      {dir.PathOf("file/deep"), false, false, 0         },
      {"",                      false, false, 0         },
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.path);
    EXPECT_EQ(row.file, TOSSpecific::FileExists(row.path));
    EXPECT_EQ(row.directory, TOSSpecific::DirExists(row.path));
    if (row.file) {
      EXPECT_EQ(row.size, TOSSpecific::GetFileSize(row.path));
    } else {
      EXPECT_EQ("zelStatusFileNotFound", StatusOf([&] { TOSSpecific::GetFileSize(row.path); }));
    }
  }
  EXPECT_THAT(LogLines(), IsEmpty());
}

TEST(CreateDir, MakesTheLastComponentForAll) {
  const TempDir dir;
  const mode_t former = umask(0);
  TOSSpecific::CreateDir(dir.PathOf("open"));
  umask(027);
  TOSSpecific::CreateDir(dir.PathOf("masked"));
  umask(former);
  EXPECT_EQ(0777, PermissionsOf(dir.PathOf("open")));
  EXPECT_EQ(0750, PermissionsOf(dir.PathOf("masked")));
}

TEST(CreateDir, TellsWhyNot) {
  const TempDir dir;
  dir.WriteFile("file", "");
  const auto create = [&](const std::string& name) {
    return StatusOf([&] { TOSSpecific::CreateDir(dir.PathOf(name)); });
  };
  EXPECT_EQ("zelStatusDirectoryAlreadyExists", create("."));
  EXPECT_EQ("zelStatusDirectoryAlreadyExists", create("file"));
  EXPECT_EQ("zelStatusFileSystemError", create("missing/sub"));
  EXPECT_FALSE(TOSSpecific::DirExists(dir.PathOf("missing")));
  EXPECT_EQ("zelStatusFileSystemError", create("file/sub"));
  ASSERT_EQ(0, chmod(dir.GetPath().c_str(), 0555));
  {
    const Unprivileged nobody;
    EXPECT_EQ("zelStatusAccessDenied", create("sub"));
  }
  chmod(dir.GetPath().c_str(), 0700);
}

TEST(CreateDir, IsDeniedOnAReadOnlyFileSystem) {
  const TempDir dir;
  if (unshare(CLONE_NEWNS) != 0 || mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
      mount("none", dir.GetPath().c_str(), "tmpfs", MS_RDONLY, nullptr) != 0) {
    GTEST_SKIP() << "cannot mount a file system here";
  }
  EXPECT_EQ("zelStatusAccessDenied", StatusOf([&] { TOSSpecific::CreateDir(dir.PathOf("sub")); }));
  umount(dir.GetPath().c_str());
}

TEST(ListDir, NamesAllEntriesInTheOrderOfTheSystem) {
  const TempDir dir;
  EXPECT_THAT(TOSSpecific::ListDir(dir.GetPath()), IsEmpty());
  for (const char* name : {"b", "a", ".hidden", "..", "..x", "with blank", "sub/inner"}) {
    if (std::string(name) != "..") dir.WriteFile(name, "");
  }
  fs::create_symlink("nothing", dir.PathOf("dangling"));
  std::vector<std::string> expected;
  for (const auto& entry : fs::directory_iterator(dir.GetPath())) {
    expected.push_back(entry.path().filename());
  }
  EXPECT_EQ(expected, TOSSpecific::ListDir(dir.GetPath()));
  EXPECT_THAT(expected,
              UnorderedElementsAre("b", "a", ".hidden", "..x", "with blank", "sub", "dangling"));
}

TEST(ListDir, ThrowsForWhatItCannotRead) {
  const TempDir dir;
  dir.WriteFile("file", "");
  dir.WriteFile("closed/file", "");
  const auto list = [&](const std::string& name) {
    return StatusOf([&] { TOSSpecific::ListDir(dir.PathOf(name)); });
  };
  const std::size_t before = CountOpenDescriptors();
  EXPECT_EQ("zelStatusFileSystemError", list("missing"));
  EXPECT_EQ("zelStatusFileSystemError", list("file"));
  ASSERT_EQ(0, chmod(dir.PathOf("closed").c_str(), 0));
  ASSERT_EQ(0, chmod(dir.GetPath().c_str(), 0755));
  {
    const Unprivileged nobody;
    EXPECT_EQ("zelStatusFileSystemError", list("closed"));
  }
  chmod(dir.PathOf("closed").c_str(), 0700);
  EXPECT_EQ(before, CountOpenDescriptors());
}

TEST(FileCopy, CopiesBytesAndPermissions) {
  const TempDir dir;
  const std::size_t before = CountOpenDescriptors();
  const mode_t former = umask(077);
  for (const std::size_t size : {0, 1, 32767, 32768, 32769, 100000}) {
    const std::string bytes = SomeBytes(size);
    const std::string from = dir.WriteFile("from", bytes);
    const std::string to = dir.PathOf("to" + std::to_string(size));
    TOSSpecific::FileCopy(from, to);
    EXPECT_TRUE(bytes == ReadFile(to)) << size;
  }
  for (const int permissions : {0644, 0755, 0600, 0400, 0666}) {
    const std::string from = dir.WriteFile(std::to_string(permissions), "x");
    ASSERT_EQ(0, chmod(from.c_str(), static_cast<mode_t>(permissions)));
    TOSSpecific::FileCopy(from, from + ".copy");
    EXPECT_EQ(permissions, PermissionsOf(from + ".copy"));
  }
  umask(former);
  EXPECT_EQ(before, CountOpenDescriptors());
}

TEST(FileCopy, FailsWithoutTouchingAnything) {
  const TempDir dir;
  dir.WriteFile("from", "new");
  dir.WriteFile("existing", "old");
  dir.WriteFile("sub/file", "");
  fs::create_symlink("nothing", dir.PathOf("dangling"));
  const std::size_t before = CountOpenDescriptors();
  const auto copy = [&](const std::string& from, const std::string& to) {
    return StatusOf([&] { TOSSpecific::FileCopy(dir.PathOf(from), dir.PathOf(to)); });
  };
  EXPECT_EQ("zelStatusFileSystemError", copy("from", "existing"));
  EXPECT_EQ("old", ReadFile(dir.PathOf("existing")));
  EXPECT_EQ("zelStatusFileSystemError", copy("from", "dangling"));
  EXPECT_EQ("zelStatusFileSystemError", copy("from", "sub"));
  EXPECT_EQ("zelStatusFileSystemError", copy("from", "missing/to"));
  EXPECT_EQ("zelStatusFileSystemError", copy("missing", "to"));
  EXPECT_EQ("zelStatusFileSystemError", copy("sub", "to"));
  EXPECT_FALSE(fs::exists(dir.PathOf("to")));
  EXPECT_EQ(before, CountOpenDescriptors());
  EXPECT_THAT(LogLines(), IsEmpty());
}

TEST(FileCopy, LeavesNoHalfOfAFile) {
  const TempDir dir;
  const std::string from = dir.WriteFile("from", SomeBytes(100000));
  rlimit former;
  getrlimit(RLIMIT_FSIZE, &former);
  signal(SIGXFSZ, SIG_IGN);
  const rlimit small{50000, former.rlim_max};
  setrlimit(RLIMIT_FSIZE, &small);
  EXPECT_EQ("zelStatusFileSystemError",
            StatusOf([&] { TOSSpecific::FileCopy(from, dir.PathOf("to")); }));
  setrlimit(RLIMIT_FSIZE, &former);
  EXPECT_FALSE(fs::exists(dir.PathOf("to")));
}

TEST(GetCurrentDir, GrowsItsBufferToFit) {
  const TempDir dir;
  std::string path = dir.GetPath();
  for (int depth = 0; depth < 30; ++depth) {
    ASSERT_EQ(0, chdir(path.c_str()));
    EXPECT_EQ(path, TOSSpecific::GetCurrentDir());
    path += "/0123456789";
    TOSSpecific::CreateDir(path);
  }
}

TEST(GetCurrentDir, FailsInADirectoryThatIsGone) {
  {
    const TempDir dir;
    ASSERT_EQ(0, chdir(dir.GetPath().c_str()));
  }
  EXPECT_EQ("zelStatusFail", StatusOf([] { TOSSpecific::GetCurrentDir(); }));
  ASSERT_EQ(0, chdir("/"));
}

TEST(GetFileContents, ReadsFromThePositionToTheEnd) {
  const TempDir dir;
  for (const std::size_t size : {0, 1, 4095, 4096, 4097, 50000}) {
    const std::string bytes = SomeBytes(size);
    const int fd = open(dir.WriteFile("file", bytes).c_str(), O_RDONLY);
    EXPECT_TRUE(bytes == TOSSpecific::GetFileContents(fd)) << size;
    EXPECT_EQ("", TOSSpecific::GetFileContents(fd));
    lseek(fd, static_cast<off_t>(size / 2), SEEK_SET);
    EXPECT_TRUE(bytes.substr(size / 2) == TOSSpecific::GetFileContents(fd)) << size;
    EXPECT_EQ(0, close(fd));
  }
}

TEST(GetFileContents, FailsWhereNothingCanBeRead) {
  const TempDir dir;
  const int fd = open(dir.PathOf("file").c_str(), O_WRONLY | O_CREAT, 0600);
  EXPECT_EQ("zelStatusFail", StatusOf([&] { TOSSpecific::GetFileContents(fd); }));
  EXPECT_THAT(LogLines(zelLogError), ElementsAre("ERROR: GetFileContents failed to read file"));
  close(fd);
  EXPECT_EQ("zelStatusFail", StatusOf([&] { TOSSpecific::GetFileContents(fd); }));
}

TEST(CaptureFile, ReadsTheWholeFile) {
  const TempDir dir;
  const std::size_t before = CountOpenDescriptors();
  const std::string bytes = SomeBytes(10000);
  EXPECT_TRUE(bytes == TOSSpecific::CaptureFile(dir.WriteFile("file", bytes)));
  EXPECT_EQ("Linux\n", TOSSpecific::CaptureFile("/proc/sys/kernel/ostype"));  // tells no size
  EXPECT_EQ(before, CountOpenDescriptors());
}

TEST(CaptureFile, TellsWhatItCouldNotRead) {
  const TempDir dir;
  const std::size_t before = CountOpenDescriptors();
  const std::string missing = dir.PathOf("missing");
  EXPECT_EQ("zelStatusFileSystemError", StatusOf([&] { TOSSpecific::CaptureFile(missing); }));
  EXPECT_THAT(LogLines(zelLogError), ElementsAre("ERROR: CaptureFile failed to open: " + missing));

  ClearLog();
  EXPECT_EQ("zelStatusFail", StatusOf([&] { TOSSpecific::CaptureFile(dir.GetPath()); }));
  EXPECT_THAT(LogLines(zelLogError), ElementsAre("ERROR: GetFileContents failed to read file"));
  EXPECT_EQ(before, CountOpenDescriptors());
}
