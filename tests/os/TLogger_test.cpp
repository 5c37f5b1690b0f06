#include "zelcore/TLogger.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <locale>

#include "tests/support/LogSpy.h"
#include "tests/support/Status.h"
#include "tests/support/TempDir.h"
#include "tests/support/Unprivileged.h"
#include "zelcore/IPlugin.h"
#include "zelcore/IPluginCallbacks.h"
#include "zelcore/TOSSpecific.h"
#include "zelcore/TPluginManager.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

const char kOpened[] = "-- VNT Log Opened ----------------------------\n";
const char kClosed[] = "-- VNT Log Closed ----------------------------\n";

TLogger& Logger() { return *TLogger::GetInstance(); }

void Log(int severity, const std::string& message, IPlugin const* plugin = nullptr) {
  Logger().OutputLogEntry(plugin, static_cast<zelLogSeverity>(severity), message);
}

void LogBytes(int severity, const std::string& bytes, IPlugin const* plugin = nullptr) {
  Logger().OutputLogEntry(plugin, static_cast<zelLogSeverity>(severity), bytes.data(),
                          static_cast<int>(bytes.size()));
}

void SetThreshold(int threshold) { SetLogThreshold(static_cast<zelLogSeverity>(threshold)); }

// A plug-in that registers itself as a loaded one does. Its answers can be changed.
class Plugin {
 public:
  explicit Plugin(const char* name) {
    fgName = name;
    fgLogsWhenAsked = false;
    TPluginManager::Initialize("/nowhere");
    zelPluginCallbacks table{};
    table.GetInfo = GetInfo;
    table.PrepareForUnload = [](TCPluginCallbacks*) { return zelStatusOK; };
    EXPECT_EQ(zelStatusOK, zelRegisterPlugin(&table, &fgHandle));
    EXPECT_EQ(zelStatusOK, zelGetHandle(fgHandle, &fRecord));
  }
  ~Plugin() {
    Unload();
    delete TPluginManager::GetInstance();
  }

  IPlugin* Record() const { return fRecord; }
  void LogWhenAsked() { fgLogsWhenAsked = true; }
  void Unload() {
    if (fRecord->GetCallbacks()) fRecord->GetCallbacks()->PrepareForUnload();
  }

 private:
  static zelPluginInfo GetInfo(TCPluginCallbacks* plugin) {
    if (fgLogsWhenAsked) zelWriteLog(plugin, zelLogStatus, "asked for my name");
    return {fgName, "1.0", "1.0", 0, 0};
  }

  static const char* fgName;
  static bool fgLogsWhenAsked;
  static TCPluginCallbacks* fgHandle;
  IPlugin* fRecord = nullptr;
};

const char* Plugin::fgName = nullptr;
bool Plugin::fgLogsWhenAsked = false;
TCPluginCallbacks* Plugin::fgHandle = nullptr;

}  // namespace

TEST(TLogger, RemembersAndWritesByThreshold) {
  struct {
    int threshold, severity;
    bool remembered;
    const char* line;
  } const rows[] = {
      {2,   0,   true,  "ZEL_Core: [Error] text\n"  },
      {2,   1,   true,  "ZEL_Core: [Warning] text\n"},
      {2,   2,   true,  "ZEL_Core: [Status] text\n" },
      {2,   3,   false, ""                          },
      {2,   4,   false, ""                          },
      {3,   3,   true,  "ZEL_Core: [Debug] text\n"  },
      {4,   4,   false, "ZEL_Core: [Verbose] text\n"},
      {0,   0,   true,  "ZEL_Core: [Error] text\n"  },
      {0,   1,   false, ""                          },
      {-1,  0,   false, ""                          },
      {0,   100, true,  ""                          },
      {-5,  100, true,  ""                          },
      {200, 100, true,  ""                          },
      {2,   7,   false, ""                          },
  };
  const TempDir dir;
  for (const auto& row : rows) {
    SCOPED_TRACE(testing::Message() << row.severity << " at " << row.threshold);
    RestartLog();
    SetThreshold(row.threshold);
    Logger().SetLogFilename(dir.PathOf("log"));
    Log(row.severity, "text");
    EXPECT_EQ(std::string(kOpened) + row.line, ReadFile(dir.PathOf("log")));
    if (row.remembered) {
      EXPECT_THAT(LogLines(), ElementsAre("text"));
      EXPECT_EQ(row.severity, LastLogSeverity());
    } else {
      EXPECT_THAT(LogLines(), IsEmpty());
    }
  }
}

TEST(TLogger, RefusesSeveritiesWithoutName) {
  struct {
    int threshold, severity;
    bool remembered;
  } const rows[] = {
      {10,  7,   false},
      {99,  99,  false},
      {200, 101, false},
      {5,   5,   false},
      {2,   -1,  true }, // remembered before it is refused
  };
  const TempDir dir;
  for (const auto& row : rows) {
    SCOPED_TRACE(row.severity);
    RestartLog();
    SetThreshold(row.threshold);
    Logger().SetLogFilename(dir.PathOf("log"));
    EXPECT_EQ("zelStatusFail", StatusOf([&] { Log(row.severity, "text"); }));
    EXPECT_EQ("zelStatusFail", StatusOf([&] { LogBytes(row.severity, "\x01"); }));
    if (row.remembered) {
      EXPECT_THAT(LogLines(), ElementsAre("text", "01 "));
    } else {
      EXPECT_THAT(LogLines(), IsEmpty());
    }
    EXPECT_EQ(kOpened, ReadFile(dir.PathOf("log")));
  }
}

TEST(TLogger, StartsWithThresholdStatusAndAnEmptyLog) {
  EXPECT_EQ(zelLogStatus, Logger().GetLogThreshold());
  EXPECT_THAT(LogLines(), IsEmpty());
  SetThreshold(77);
  EXPECT_EQ(77, Logger().GetLogThreshold());
}

TEST(TLogger, KeepsPluginTimeAndTextOfEachEntryInOrder) {
  const Plugin plugin("Memory");
  const TCIMDateTime before = TOSSpecific::GetLocalTime();
  Log(zelLogWarning, "first\n", plugin.Record());
  Log(zelLogError, "");
  const TCIMDateTime after = TOSSpecific::GetLocalTime();

  const auto& log = Logger().GetLog();
  ASSERT_EQ(2u, log.size());
  EXPECT_EQ(plugin.Record(), log.front().plugin);
  EXPECT_EQ(zelLogWarning, log.front().severity);
  EXPECT_EQ("first\n", log.front().message);
  EXPECT_FALSE(log.front().time < before);
  EXPECT_FALSE(after < log.front().time);
  EXPECT_EQ(nullptr, log.back().plugin);
  EXPECT_EQ("", log.back().message);

  const ILogger::TLogEntry copy = log.front();
  Logger().ClearLog();
  EXPECT_TRUE(log.empty());
  EXPECT_EQ("first\n", copy.message);
}

TEST(TLogger, BeginsLinesWithTheNameOfThePlugin) {
  const LogFile file;
  Plugin plugin("Memory");
  Log(zelLogWarning, "bank 0 is empty", plugin.Record());
  EXPECT_THAT(file.Lines(), ElementsAre("ZEL_Memory: [Warning] bank 0 is empty"));
}

TEST(TLogger, SurvivesPluginsWithoutNameOrCallbacks) {
  const LogFile file;
  Plugin plugin(nullptr);
  Log(zelLogStatus, "nameless", plugin.Record());
  plugin.Unload();
  Log(zelLogStatus, "unloaded", plugin.Record());
  EXPECT_THAT(file.Lines(), ElementsAre("ZEL_: [Status] nameless", "ZEL_: [Status] unloaded"));
}

TEST(TLogger, SurvivesPluginsThatLogWhenAskedForTheirName) {
  const LogFile file;
  Plugin plugin("Chatty");
  plugin.LogWhenAsked();
  Log(zelLogStatus, "text", plugin.Record());
  EXPECT_THAT(file.Lines(),
              ElementsAre("ZEL_: [Status] asked for my name", "ZEL_Chatty: [Status] text"));
  EXPECT_THAT(LogLines(), ElementsAre("text", "asked for my name"));
}

TEST(TLogger, DumpsBytesInHexadecimal) {
  const LogFile file;
  const Plugin plugin("Memory");
  LogBytes(zelLogDebug, std::string("\x0a\xff\0", 3), plugin.Record());
  EXPECT_EQ("0a ff 00 ", LastLogLine());
  EXPECT_EQ(zelLogDebug, LastLogSeverity());
  EXPECT_EQ(plugin.Record(), Logger().GetLog().back().plugin);

  LogBytes(zelLogVerbose, "\x80");  // written, never remembered
  LogBytes(zelLogError, "");
  Logger().OutputLogEntry(nullptr, zelLogWarning, "never read", -3);
  EXPECT_THAT(file.Lines(), ElementsAre("ZEL_Memory: [Debug] 0a ff 00 ", "ZEL_Core: [Verbose] 80 ",
                                        "ZEL_Core: [Error] ", "ZEL_Core: [Warning] "));
  EXPECT_THAT(LogLines(), ElementsAre("0a ff 00 ", "", ""));
}

TEST(TLogger, DumpsByThresholdAndNeverInMemoryOnly) {
  const LogFile file(zelLogStatus);
  LogBytes(zelLogDebug, "x");
  LogBytes(zelLogMemoryOnly, "x");
  SetThreshold(200);
  LogBytes(zelLogMemoryOnly, "x");
  EXPECT_THAT(LogLines(), IsEmpty());
  EXPECT_THAT(file.Lines(), IsEmpty());
}

TEST(TLogger, DumpsAtMost10240Bytes) {
  const LogFile file(zelLogStatus);
  const Plugin plugin("Memory");
  std::string expected;
  for (int i = 0; i < 10240; ++i) expected += "41 ";
  LogBytes(zelLogStatus, std::string(10240, 'A'));
  EXPECT_EQ(expected, LastLogLine());

  // Whatever the severity, and on behalf of the library.
  for (const int severity : {2, 3, 100}) {
    ClearLog();
    LogBytes(severity, std::string(10241, 'A'), plugin.Record());
    EXPECT_THAT(LogLines(zelLogError), ElementsAre("Too much data to log--10k limit!"));
    EXPECT_EQ(1u, LogLines().size());
    EXPECT_EQ(nullptr, Logger().GetLog().back().plugin);
  }
  const std::string refusal = "ZEL_Core: [Error] Too much data to log--10k limit!";
  EXPECT_THAT(file.Lines(),
              ElementsAre("ZEL_Core: [Status] " + expected, refusal, refusal, refusal));
}

TEST(TLogger, WritesBannersAndEachLineAtOnce) {
  const TempDir dir;
  const std::string path = dir.WriteFile("log", "what was there before\n");
  Logger().SetLogFilename(path);
  EXPECT_EQ(kOpened, ReadFile(path));
  Log(zelLogStatus, "one");
  EXPECT_EQ(std::string(kOpened) + "ZEL_Core: [Status] one\n", ReadFile(path));
  delete TLogger::GetInstance();
  EXPECT_EQ(std::string(kOpened) + "ZEL_Core: [Status] one\n" + kClosed, ReadFile(path));
}

TEST(TLogger, WritesTheBytesOfTheTextWhateverTheLocale) {
  struct TShout : std::codecvt<char, char, std::mbstate_t> {
    bool do_always_noconv() const noexcept override { return false; }
    result do_out(std::mbstate_t&, const char* from, const char* fromEnd, const char*& fromNext,
                  char* to, char* toEnd, char*& toNext) const override {
      for (; from != fromEnd && to != toEnd; ++from) *to++ = '!';
      fromNext = from;
      toNext = to;
      return ok;
    }
  };
  const std::locale former = std::locale::global(std::locale(std::locale(), new TShout));
  RestartLog();
  const LogFile file;
  Log(zelLogStatus, "text");
  std::locale::global(former);
  EXPECT_THAT(file.Lines(), ElementsAre("ZEL_Core: [Status] text"));
}

TEST(TLogger, WritesNothingWithoutAFile) {
  const TempDir dir;
  ASSERT_EQ(0, chdir(dir.GetPath().c_str()));
  Log(zelLogError, "text");
  delete TLogger::GetInstance();
  EXPECT_THAT(TOSSpecific::ListDir(dir.GetPath()), IsEmpty());
}

TEST(TLogger, ChangesTheFile) {
  const TempDir dir;
  Logger().SetLogFilename(dir.PathOf("a"));
  Log(zelLogStatus, "one");
  Logger().SetLogFilename(dir.PathOf("b"));
  Log(zelLogStatus, "two");
  EXPECT_EQ(std::string(kOpened) + "ZEL_Core: [Status] one\n", ReadFile(dir.PathOf("a")));
  EXPECT_EQ(std::string(kOpened) + "ZEL_Core: [Status] two\n", ReadFile(dir.PathOf("b")));
}

TEST(TLogger, LosesLinesButKeepsEntriesWhenTheFileCannotBeOpened) {
  const TempDir dir;
  errno = EACCES;  // left by someone else
  EXPECT_EQ("zelStatusFileSystemError",
            StatusOf([&] { Logger().SetLogFilename(dir.PathOf("missing/log")); }));
  EXPECT_EQ("zelStatusFileSystemError", StatusOf([&] { Logger().SetLogFilename(dir.GetPath()); }));
  Log(zelLogStatus, "lost");
  EXPECT_THAT(LogLines(), ElementsAre("lost"));

  Logger().SetLogFilename(dir.PathOf("log"));
  Log(zelLogStatus, "kept");
  EXPECT_EQ(std::string(kOpened) + "ZEL_Core: [Status] kept\n", ReadFile(dir.PathOf("log")));

  // A failed name also takes the place of a good one.
  EXPECT_EQ("zelStatusFileSystemError",
            StatusOf([&] { Logger().SetLogFilename(dir.PathOf("missing/log")); }));
  Log(zelLogStatus, "lost again");
  EXPECT_EQ(std::string(kOpened) + "ZEL_Core: [Status] kept\n", ReadFile(dir.PathOf("log")));
  delete TLogger::GetInstance();
}

TEST(TLogger, TellsWhenAccessIsDenied) {
  const TempDir dir;
  ASSERT_EQ(0, chmod(dir.GetPath().c_str(), 0));
  {
    const Unprivileged nobody;
    EXPECT_EQ("zelStatusAccessDenied",
              StatusOf([&] { Logger().SetLogFilename(dir.PathOf("log")); }));
  }
  chmod(dir.GetPath().c_str(), 0700);
}

TEST(TLogger, IsReplacedByASecondInitialize) {
  TLogger* first = TLogger::GetInstance();
  first->OutputLogEntry(nullptr, zelLogStatus, "text");
  EXPECT_EQ(0, TLogger::Initialize());
  TLogger* second = TLogger::GetInstance();
  ASSERT_NE(first, second);
  EXPECT_THAT(LogLines(), IsEmpty());
  EXPECT_EQ(1u, first->GetLog().size());

  delete first;
  EXPECT_EQ(second, TLogger::GetInstance());
  delete second;
  EXPECT_EQ(nullptr, TLogger::GetInstance());
}
