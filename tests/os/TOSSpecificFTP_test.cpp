#include <dlfcn.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tests/os/StubCurl.h"
#include "tests/support/FTPServer.h"
#include "tests/support/LogSpy.h"
#include "tests/support/ScriptedFTPServer.h"
#include "tests/support/Status.h"
#include "tests/support/TempDir.h"
#include "tests/support/Unprivileged.h"
#include "zelcore/TOSSpecific.h"

using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

namespace {

const std::string kCurlDir = std::string(ZEL_BINARY_DIR) + "/tests/curl/";
const std::string kPerforming = "TOSSpecific|FTPFile: Error performing upload command: ";
const std::string kConnecting = "TOSSpecific|FTPFile: Error connecting to KVR Service";

bool fgRefusesStreams = false;

std::size_t CountDescriptors() { return TOSSpecific::ListDir("/proc/self/fd").size(); }

std::string StatusOfUpload(const std::string& path, const std::string& name = "name") {
  return StatusOf([&] { TOSSpecific::FTPFile(path, name); });
}

// The stub in the place of libcurl, for as long as this lives: the loader knows it by its name.
class Stub {
 public:
  explicit Stub(const std::string& kind = "whole")
      : fPath(kCurlDir + kind + "/libcurl.so"), fLibrary(dlopen(fPath.c_str(), RTLD_NOW)) {
    EXPECT_NE(nullptr, fLibrary) << dlerror();
  }
  ~Stub() {
    dlclose(fLibrary);
    EXPECT_EQ(nullptr, dlopen(fPath.c_str(), RTLD_NOW | RTLD_NOLOAD)) << "still loaded";
  }
  Stub(const Stub&) = delete;
  Stub& operator=(const Stub&) = delete;

  void* GetLibrary() const { return fLibrary; }
  StubCurl* operator->() const { return static_cast<StubCurl*>(dlsym(fLibrary, "stub_curl")); }

 private:
  std::string fPath;
  void* fLibrary;
};

// Uploads leave no descriptor behind.
class FTPFile : public testing::Test {
 protected:
  FTPFile() {
    // libcurl would send everything to these.
    for (const char* proxy : {"ftp_proxy", "FTP_PROXY", "all_proxy", "ALL_PROXY"}) unsetenv(proxy);
  }
  ~FTPFile() override { EXPECT_EQ(fDescriptors, CountDescriptors()); }

  const TempDir fDir;
  const std::string fPath = fDir.WriteFile("collection.xml.gz", "contents");

 private:
  const std::size_t fDescriptors = CountDescriptors();
};

using SetFTPTarget = FTPFile;

}  // namespace

// Takes the place of the C library's.
extern "C" __attribute__((visibility("default"))) FILE* fdopen(int fd, const char* mode) noexcept {
  static const auto original =
      reinterpret_cast<FILE* (*)(int, const char*)>(dlsym(RTLD_NEXT, "fdopen"));
  return fgRefusesStreams ? nullptr : original(fd, mode);
}

TEST_F(FTPFile, StoresTheFileOnTheServer) {
  const FTPServer server;
  server.GetDir().WriteFile("in/deep/old.xml.gz", "what was there before");
  std::string large;
  for (int i = 0; i < 3000000; ++i) large += static_cast<char>(i * 31 + i / 256);
  struct {
    const char* directory;
    const char* name;
    std::string contents;
    const char* stored;
  } const rows[] = {
      {"in/deep/", "new",   "contents",               "in/deep/new.xml.gz"  },
      {"in/deep/", "old",   "short",                  "in/deep/old.xml.gz"  },
      {"in/deep",  "slash", "x",                      "in/deep/slash.xml.gz"},
      {"in/",      "large", large,                    "in/large.xml.gz"     },
      {"in/",      "empty", "",                       "in/empty.xml.gz"     },
      {"",         "bytes", std::string("\0\r\n\xff", 4),                     "bytes.xml.gz"},
      {"/in/",          "a.b",            "x",                      "in/a.b.xml.gz"                             },
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.stored);
    TOSSpecific::SetFTPTarget(server.GetHost(), row.directory);
    EXPECT_EQ("zelStatusOK", StatusOfUpload(fDir.WriteFile("local", row.contents), row.name));
    EXPECT_TRUE(TOSSpecific::FileExists(server.GetDir().PathOf(row.stored)));
    EXPECT_TRUE(row.contents == ReadFile(server.GetDir().PathOf(row.stored)));
  }
  EXPECT_THAT(LogLines(), IsEmpty());
}

TEST_F(FTPFile, TellsWhatTheServerMinds) {
  const FTPServer server;
  TOSSpecific::SetFTPTarget(server.GetHost(), "no/such/");
  EXPECT_EQ("zelStatusLibCurlFailure", StatusOfUpload(fPath));
  EXPECT_THAT(LogLines(zelLogError),
              ElementsAre(kPerforming + "Server denied you to change to the given directory"));
  EXPECT_THAT(TOSSpecific::ListDir(server.GetDir().GetPath()), IsEmpty());
}

TEST_F(FTPFile, GivesNeitherCredentialsNorSize) {
  ScriptedFTPServer server;
  TOSSpecific::SetFTPTarget(server.GetHost(), "in/deep/");
  EXPECT_EQ("zelStatusOK", StatusOfUpload(fPath));
  EXPECT_EQ("contents", server.GetFile());
  EXPECT_THAT(server.GetCommands(),
              AllOf(Contains("USER anonymous"), Contains("CWD in"), Contains("CWD deep"),
                    Contains("STOR name.xml.gz"), Not(Contains(StartsWith("ALLO")))));
  EXPECT_THAT(LogLines(), IsEmpty());
}

TEST_F(FTPFile, FailsWithTheTextOfTheLibrary) {
  struct {
    const char* command;
    const char* answer;
    const char* text;
  } const rows[] = {
      {"HELLO", "421 too many users",    ""                             },
      {"HELLO", "999 what",              ""                             },
      {"HELLO", ScriptedFTPServer::kCut, ""                             },
      {"USER",  "530 no anonymous",      "530"                          },
      {"USER",  ScriptedFTPServer::kCut, ""                             },
      {"PASS",  "530 wrong",             "530"                          },
      {"CWD",   "550 closed",            "change to the given directory"},
      {"CWD",   ScriptedFTPServer::kCut, ""                             },
      {"EPSV",  ScriptedFTPServer::kCut, ""                             },
      {"EPSV",  "500 unknown",           "502"                          },
      {"EPSV",  "229 come here",         ""                             },
      {"TYPE",  "504 no",                ""                             },
      {"STOR",  "553 not that name",     "553"                          },
      {"STOR",  ScriptedFTPServer::kCut, ""                             },
      {"DATA",  "451 disk full",         "451"                          },
      {"DATA",  "426 closed",            "426"                          },
      {"DATA",  ScriptedFTPServer::kCut, ""                             },
  };
  const std::string large = fDir.WriteFile("large", std::string(20000000, 'x'));
  for (const auto& row : rows) {
    SCOPED_TRACE(std::string(row.command) + ": " + row.answer);
    ClearLog();
    ScriptedFTPServer server(row.command, row.answer);
    TOSSpecific::SetFTPTarget(server.GetHost(), "in/");
    EXPECT_EQ("zelStatusLibCurlFailure", StatusOfUpload(large));
    ASSERT_EQ(1u, LogLines().size());
    EXPECT_EQ(zelLogError, LastLogSeverity());
    EXPECT_THAT(LastLogLine(), AllOf(StartsWith(kPerforming), HasSubstr(row.text)));
  }
}

TEST_F(FTPFile, CannotReachAServerThatIsNotThere) {
  const HeldPort refusing;
  // No label of a name is that long: the resolver asks nobody for it.
  const std::string unresolvable = std::string(64, 'x') + ".invalid";
  for (const std::string& host : {"127.0.0.1:" + refusing.GetNumber(), unresolvable}) {
    SCOPED_TRACE(host);
    ClearLog();
    TOSSpecific::SetFTPTarget(host, "in/");
    EXPECT_EQ("zelStatusConnectionFailed", StatusOfUpload(fPath));
    EXPECT_THAT(LogLines(zelLogError), ElementsAre(kConnecting));
  }
}

TEST_F(FTPFile, NeedsTheLibraryBeforeTheFile) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  // The other process, which the test starts, finds this first.
  setenv("LD_LIBRARY_PATH", (kCurlDir + "broken").c_str(), 1);
  const auto work = [] {
    RestartLog();  // listeners do not do it there
    const std::string status = StatusOfUpload("/no/such/file");
    std::cerr << status << ", " << LastLogLine() << std::flush;
    const void* library = dlopen("libcurl.so", RTLD_LAZY);
    const char* error = library ? "" : dlerror();
    const std::vector<std::string> expected{
        std::string("TOSSpecific|FTPFile: Error opening curl library: ") + error};
    _exit(!library && LogLines(zelLogError) == expected ? 0 : 1);
  };
  EXPECT_EXIT(
      work(), testing::ExitedWithCode(0),
      "zelStatusLibCurlFailure, TOSSpecific.FTPFile: Error opening curl library: .*libcurl");
}

TEST_F(FTPFile, LooksTheFunctionsUpInOrder) {
  for (const char* lacking : {"curl_global_init", "curl_easy_init", "curl_easy_setopt",
                              "curl_easy_perform", "curl_easy_cleanup", "curl_global_cleanup"}) {
    SCOPED_TRACE(lacking);
    ClearLog();
    const Stub stub(lacking);
    EXPECT_EQ("zelStatusLibCurlFailure", StatusOfUpload("/no/such/file"));
    EXPECT_EQ(nullptr, dlsym(stub.GetLibrary(), lacking));
    EXPECT_THAT(
        LogLines(zelLogError),
        ElementsAre(std::string("TOSSpecific|FTPFile: Error loading curl library: ") + dlerror()));
    EXPECT_STREQ("", stub->calls);
  }
}

TEST_F(FTPFile, NeedsAFileBeforeItStartsTheLibrary) {
  const Stub stub;
  ASSERT_EQ(0, chmod(fDir.GetPath().c_str(), 0755));
  ASSERT_EQ(0, chmod(fPath.c_str(), 0));
  for (const std::string& path : {fDir.PathOf("missing"), fDir.GetPath(), fPath, std::string()}) {
    SCOPED_TRACE(path);
    ClearLog();
    {
      const Unprivileged nobody;
      EXPECT_EQ("zelStatusFileSystemError", StatusOfUpload(path));
    }
    EXPECT_THAT(LogLines(zelLogError), ElementsAre("TOSSpecific|FTPFile: Error getting file size"));
  }
  EXPECT_STREQ("", stub->calls);
}

TEST_F(FTPFile, NeedsAStreamBeforeItStartsTheLibrary) {
  const Stub stub;
  fgRefusesStreams = true;
  const std::string status = StatusOfUpload(fPath);
  fgRefusesStreams = false;
  EXPECT_EQ("zelStatusFileSystemError", status);
  EXPECT_THAT(LogLines(zelLogError),
              ElementsAre("TOSSpecific|FTPFile: Error creating file stream"));
  EXPECT_STREQ("", stub->calls);
}

TEST_F(FTPFile, MakesFourSettingsAndCleansUp) {
  const Stub stub;
  TOSSpecific::SetFTPTarget("host.example:2121", "in/deep/");
  EXPECT_EQ("zelStatusOK", StatusOfUpload(fPath, "a%20b"));
  EXPECT_STREQ(
      " global_init(3) easy_init setopt(10010,zeroes) setopt(46,1) setopt(10002) setopt(10009)"
      " perform easy_cleanup global_cleanup",
      stub->calls);
  EXPECT_STREQ("ftp://host.example:2121/in/deep/a%20b.xml.gz", stub->url);
  EXPECT_STREQ("contents", stub->uploaded);
  EXPECT_THAT(LogLines(), IsEmpty());
}

TEST_F(FTPFile, CleansUpWithoutATransfer) {
  const Stub stub;
  stub->withholdsTransfer = 1;
  EXPECT_EQ("zelStatusLibCurlFailure", StatusOfUpload(fPath));
  EXPECT_THAT(LogLines(zelLogError), ElementsAre("TOSSpecific|FTPFile: Error initalizing curl"));
  EXPECT_STREQ(" global_init(3) easy_init global_cleanup", stub->calls);
}

TEST_F(FTPFile, CleansUpAfterARefusedSetting) {
  struct {
    int option;
    const char* message;
    const char* settings;
  } const rows[] = {
      {10010, "TOSSpecific|FTPFile: Error configuring curl error buffer", " setopt(10010,zeroes)"             },
      {46,    "TOSSpecific|FTPFile: Error setting curl upload",           " setopt(10010,zeroes) setopt(46,1)"},
      {10002, "TOSSpecific|FTPFile: Error setting curl target",
       " setopt(10010,zeroes) setopt(46,1) setopt(10002)"                                                     },
      {10009, "TOSSpecific|FTPFile: Error setting curl upload file",
       " setopt(10010,zeroes) setopt(46,1) setopt(10002) setopt(10009)"                                       },
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.option);
    ClearLog();
    const Stub stub;
    stub->refusedOption = row.option;
    EXPECT_EQ("zelStatusLibCurlFailure", StatusOfUpload(fPath));
    EXPECT_THAT(LogLines(zelLogError), ElementsAre(row.message));
    EXPECT_EQ(
        std::string(" global_init(3) easy_init") + row.settings + " easy_cleanup global_cleanup",
        stub->calls);
  }
}

TEST_F(FTPFile, TellsLostConnectionsFromOtherFailures) {
  const std::string longest(255, 'x');  // with its end, as much as libcurl writes
  struct {
    int result;
    const char* text;
    const char* status;
    std::string message;
  } const rows[] = {
      {6,   "no host",       "zelStatusConnectionFailed", kConnecting              },
      {7,   nullptr,         "zelStatusConnectionFailed", kConnecting              },
      {1,   "one",           "zelStatusLibCurlFailure",   kPerforming + "one"      },
      {5,   "no proxy",      "zelStatusLibCurlFailure",   kPerforming + "no proxy" },
      {8,   nullptr,         "zelStatusLibCurlFailure",   kPerforming              },
      {28,  "100% | %s",     "zelStatusLibCurlFailure",   kPerforming + "100% | %s"},
      {-1,  longest.c_str(), "zelStatusLibCurlFailure",   kPerforming + longest    },
      {200, "new",           "zelStatusLibCurlFailure",   kPerforming + "new"      },
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.result);
    ClearLog();
    const Stub stub;
    stub->result = row.result;
    stub->text = row.text;
    EXPECT_EQ(row.status, StatusOfUpload(fPath));
    EXPECT_THAT(LogLines(zelLogError), ElementsAre(row.message));
    EXPECT_THAT(stub->calls, EndsWith(" perform easy_cleanup global_cleanup"));
  }
}

TEST_F(FTPFile, TellsThatTheFileCouldNotBeReadToItsEnd) {
  const Stub stub;
  EXPECT_EQ("zelStatusFileSystemError", StatusOfUpload("/proc/self/mem"));
  EXPECT_THAT(LogLines(zelLogError), ElementsAre("TOSSpecific|FTPFile: Error reading file"));
  EXPECT_THAT(stub->calls, EndsWith(" perform easy_cleanup global_cleanup"));
}

TEST_F(SetFTPTarget, ReplacesTheTargetOfTheBuild) {
  struct {
    const char* host;
    const char* directory;
    const char* url;
  } const rows[] = {
      {"a.example", "one/two/", "ftp://a.example/one/two/name.xml.gz"},
      {"[::1]:21",  "one",      "ftp://[::1]:21/one/name.xml.gz"     },
      {"b",         "",         "ftp://b/name.xml.gz"                },
      {"b",         "/",        "ftp://b//name.xml.gz"               },
  };
  const Stub stub;
  for (const auto& row : rows) {
    TOSSpecific::SetFTPTarget(row.host, row.directory);
    EXPECT_EQ("zelStatusOK", StatusOfUpload(fPath));
    EXPECT_STREQ(row.url, stub->url);
    memset(stub.operator->(), 0, sizeof(StubCurl));
  }
}

TEST_F(SetFTPTarget, IsNotNeeded) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");  // a process where nobody has called it
  const auto work = [] {
    const Stub stub;
    TOSSpecific::FTPFile("/dev/null", "name");
    std::cerr << stub->url << std::flush;
    _exit(0);
  };
  EXPECT_EXIT(work(), testing::ExitedWithCode(0), "^ftp://[^/]+/([^/]+/)+name\\.xml\\.gz$");
}
