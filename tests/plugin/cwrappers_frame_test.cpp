#include <gtest/gtest.h>

#include <string>

#include "tests/plugin/Handle.h"
#include "tests/plugin/PluginDir.h"
#include "tests/support/LogSpy.h"
#include "tests/support/Status.h"
#include "zelcore/ILogger.h"
#include "zelcore/TCIMClass.h"
#include "zelcore/TCIMInstance.h"
#include "zelcore/TCIMPropertyDecl.h"
#include "zelcore/TCIMQualifier.h"
#include "zelcore/TCIMValue.h"
#include "zelcore/TCPluginCallbacks.h"
#include "zelcore/TLogger.h"
#include "zelcore/TRootObject.h"
#include "zelcore/TZELException.h"
#include "zelcore/zel.h"

namespace {

const struct {
  int code;
  const char* name;
} kCodes[] = {
    {0,  "zelStatusOK"                           },
    {1,  "zelStatusNotImplemented"               },
    {2,  "zelStatusUnknownClass"                 },
    {3,  "zelStatusFail"                         },
    {4,  "zelStatusOutOfMemory"                  },
    {5,  "zelStatusNoMoreItems"                  },
    {6,  "zelStatusErrorCollectingClass"         },
    {7,  "zelStatusInvalidClass"                 },
    {8,  "zelStatusInvalidProperty"              },
    {9,  "zelStatusInvalidSpecificationDocument" },
    {10, "zelStatusInvalidDataCollectionDocument"},
    {11, "zelStatusFileSystemError"              },
    {12, "zelStatusDirectoryAlreadyExists"       },
    {13, "zelStatusNotArray"                     },
    {14, "zelStatusTypeMismatch"                 },
    {15, "zelStatusNotFound"                     },
    {16, "zelStatusAlreadyExists"                },
    {17, "zelStatusInvalidOpSequence"            },
    {18, "zelStatusInvalidInstance"              },
    {19, "zelStatusCorruptedContainer"           },
    {20, "zelStatusInvalidPlugin"                },
    {21, "zelStatusInvalidDateTime"              },
    {22, "zelStatusNotAssociation"               },
    {23, "zelStatusNotReference"                 },
    {24, "zelStatusInvalidReference"             },
    {25, "zelStatusInvalidCIMName"               },
    {26, "zelStatusFileNotFound"                 },
    {27, "zelStatusAccessDenied"                 },
    {28, "zelStatusNotOverridable"               },
    {29, "zelStatusInvalidGzipFile"              },
    {30, "zelStatusCorruptGzipFile"              },
    {31, "zelStatusNotSupported"                 },
    {32, "zelStatusValueIsNULL"                  },
    {33, "zelStatusINETNotFound"                 },
    {34, "zelStatusConnectionFailed"             },
    {35, "zelStatusLibCurlFailure"               },
    {36, "zelStatusInvalidFormat"                },
    {37, "zelStatusContainerMismatch"            },
    {38, "zelStatusEnd"                          },
};

TEST(StatusCodes, HaveTheirNamesAsTexts) {
  ASSERT_EQ(39u, std::size(kCodes));
  for (const auto& row : kCodes) {
    EXPECT_STREQ(row.name, kZELErrorMessages[row.code]);
    EXPECT_STREQ(row.name, zelTranslateStatusCode(static_cast<zelStatusCode>(row.code)));
    EXPECT_EQ(kZELErrorMessages[row.code],
              zelTranslateStatusCode(static_cast<zelStatusCode>(row.code)));
    EXPECT_STREQ(row.name, TZELException(static_cast<zelStatusCode>(row.code)).what());
  }
}

TEST(StatusCodes, OutsideTheTableCountAsItsEnd) {
  for (const int code : {-2147483647 - 1, -5, -1, 39, 4711, 2147483647}) {
    EXPECT_STREQ("zelStatusEnd", zelTranslateStatusCode(static_cast<zelStatusCode>(code))) << code;
  }
}

zelPluginInfo Info(TCPluginCallbacks*) { return {"frame", "1.0", "1.0", 2, 0}; }

TCPluginCallbacks* Register(zelPluginCallbacks table = {nullptr, nullptr, nullptr, nullptr, Info,
                                                        nullptr}) {
  TCPluginCallbacks* plugin = nullptr;
  EXPECT_EQ(zelStatusOK, zelRegisterPlugin(&table, &plugin));
  return plugin;
}

// The functions of the entry point as GCC and Clang print them.
constexpr char kFunction[] =
    "cwrappers.*zelStatusCode zelRegisterPlugin"
    "\\(zelPluginCallbacks ?\\*, TCPluginCallbacks ?\\*\\*\\).*";

TEST(RegisterPluginDeathTest, AssertsItsPointers) {
  zelPluginCallbacks table{};
  TCPluginCallbacks* plugin = nullptr;
  EXPECT_DEATH(zelRegisterPlugin(nullptr, &plugin), std::string(kFunction) + "callbacks != __null");
  EXPECT_DEATH(zelRegisterPlugin(&table, nullptr),
               std::string(kFunction) + "pluginHandle != __null");
}

TEST(RegisterPlugin, NeedsThePluginManager) {
  ASSERT_EQ(nullptr, TRootObject::GetPluginManager());
  zelPluginCallbacks table{};
  TCPluginCallbacks* plugin = nullptr;
  EXPECT_EQ(zelStatusInvalidOpSequence, zelRegisterPlugin(&table, &plugin));
  EXPECT_EQ(nullptr, plugin);
  EXPECT_EQ("There is no plug-in manager", LastLogLine());

  TPluginManager::Initialize("/nowhere");
  EXPECT_EQ(zelStatusOK, zelRegisterPlugin(&table, &plugin));
  EXPECT_NE(nullptr, plugin);
}

TEST(RegisterPlugin, GivesAHandleWithARecordAndCopiesTheTable) {
  TPluginManager::Initialize("/nowhere");
  zelPluginCallbacks table{nullptr, nullptr, nullptr, nullptr, Info, nullptr};
  TCPluginCallbacks* plugin = nullptr;
  ASSERT_EQ(zelStatusOK, zelRegisterPlugin(&table, &plugin));
  table.GetInfo = nullptr;
  EXPECT_EQ("frame", plugin->GetName());

  IPlugin* record = nullptr;
  EXPECT_EQ(zelStatusOK, zelGetHandle(plugin, &record));
  ASSERT_NE(nullptr, record);
  EXPECT_EQ(plugin, record->GetCallbacks());
  EXPECT_EQ(plugin->GetPluginHandle(), record);
  EXPECT_EQ(zelStatusFail, zelGetHandle(plugin, nullptr));
  EXPECT_EQ("zelGetHandle: NULL pluginHandle and/or plugin parameter", LastLogLine());
}

TEST(GetPluginPath, IsNullUntilInit) {
  TPluginManager::Initialize("/nowhere");
  TCPluginCallbacks* plugin = Register();
  const char* path = "unset";
  EXPECT_EQ(zelStatusOK, zelGetPluginPath(plugin, &path));
  EXPECT_EQ(nullptr, path);
}

TEST(GetPluginPath, ReportsANullResultAsThePlugin) {
  TPluginManager::Initialize("/nowhere");
  TCPluginCallbacks* plugin = Register();
  const LogFile file;
  EXPECT_EQ(zelStatusFail, zelGetPluginPath(plugin, nullptr));
  EXPECT_EQ(std::vector<std::string>{"ZEL_frame: [Error] zelGetPluginPath: NULL path parameter"},
            file.Lines());
}

TEST(WriteLog, LogsAsThePluginOrAsTheLibrary) {
  TPluginManager::Initialize("/nowhere");
  TCPluginCallbacks* plugin = Register();
  const LogFile file;
  zelWriteLog(plugin, zelLogError, "one");
  zelWriteLog(plugin, zelLogWarning, "two");
  zelWriteLog(plugin, zelLogStatus, "three");
  zelWriteLog(plugin, zelLogDebug, "four");
  zelWriteLog(plugin, zelLogVerbose, "five");
  zelWriteLog(nullptr, zelLogStatus, "six");
  zelWriteLog(plugin, zelLogStatus, nullptr);
  zelWriteLog(nullptr, zelLogVerbose, nullptr);
  zelWriteLog(plugin, zelLogStatus, "");
  EXPECT_EQ((std::vector<std::string>{
                "ZEL_frame: [Error] one", "ZEL_frame: [Warning] two", "ZEL_frame: [Status] three",
                "ZEL_frame: [Debug] four", "ZEL_frame: [Verbose] five", "ZEL_Core: [Status] six",
                "ZEL_Core: [Status] zelWriteLog: NULL text parameter",
                "ZEL_Core: [Verbose] zelWriteLog: NULL text parameter", "ZEL_frame: [Status] "}),
            file.Lines());
  EXPECT_EQ(plugin->GetPluginHandle(), TLogger::GetInstance()->GetLog().front().plugin);
}

TEST(WriteLog, ObeysTheThresholdForNullTextsToo) {
  SetLogThreshold(zelLogStatus);
  zelWriteLog(nullptr, zelLogVerbose, nullptr);
  zelWriteLog(nullptr, zelLogDebug, "unseen");
  EXPECT_TRUE(LogLines().empty());
  zelWriteLog(nullptr, zelLogMemoryOnly, "always remembered");
  EXPECT_EQ("always remembered", LastLogLine());
}

TEST(WriteLog, LetsTheLoggersExceptionOut) {
  SetLogThreshold(static_cast<zelLogSeverity>(10));
  EXPECT_EQ("zelStatusFail",
            StatusOf([] { zelWriteLog(nullptr, static_cast<zelLogSeverity>(7), "odd"); }));
}

TEST(CApi, WorksWithoutALogger) {
  delete TLogger::GetInstance();
  ASSERT_EQ(nullptr, TRootObject::GetCoreLogger());
  zelWriteLog(nullptr, zelLogError, "lost");
  zelWriteLog(nullptr, zelLogError, nullptr);
  EXPECT_EQ(zelStatusFail, zelAddClass(nullptr, nullptr));

  Handle handle;
  EXPECT_EQ(zelStatusInvalidClass, zelAddStringProperty(handle, "Id", "too early"));
  EXPECT_EQ(zelStatusOK, zelAddClass(handle, "Test_Thing"));
  EXPECT_EQ(zelStatusOK, zelAddStringProperty(handle, "Id", "a"));
  EXPECT_EQ(zelStatusOK, zelAddProperty(handle, "uint32", "7"));
  EXPECT_EQ(zelStatusTypeMismatch, zelAddUint8Property(handle, "uint32", 7));
  EXPECT_EQ(zelStatusNotFound, zelAddClass(handle, "Test_Nothing"));
  EXPECT_EQ(1u, handle.Instances("Test_Thing").size());
}

void AddComputerSystem(TContainer& container, const std::string& name) {
  TCIMClass* cls = container.FindClass("KVRSG_ComputerSystem");
  if (!cls) {
    cls = container.AllocateClass("KVRSG_ComputerSystem", nullptr);
    (new TCIMPropertyDecl("Name", *cls, TCIMValue(TCIMValue::TCIMType::TypeString, 0)))
        ->AddToContainer();
    auto* abstract = new TCIMQualifier(*container.GetQualifierDecl("ABSTRACT"), TCIMValue(true));
    cls->AddQualifier(*abstract);
    cls->AddToContainer();
  }
  TCIMInstance* system = container.AllocateInstance(cls);
  system->SetPropertyValue("Name", TCIMValue(name));
  system->AddToContainer();
}

TEST(GetSystemName, LooksUntilItFindsAndThenRemembers) {
  const char* name = "unset";
  EXPECT_EQ(zelStatusInvalidOpSequence, zelGetSystemName(&name));
  EXPECT_EQ("There is no plug-in manager", LastLogLine());

  PluginDir plugins;
  EXPECT_EQ(zelStatusNotFound, zelGetSystemName(&name));
  EXPECT_STREQ("unset", name);

  AddComputerSystem(PluginDir::Schema(), "server42");
  ASSERT_EQ(zelStatusOK, zelGetSystemName(&name));
  EXPECT_STREQ("server42", name);

  // A second system would make the look-up fail.
  AddComputerSystem(PluginDir::Schema(), "server43");
  const char* again = nullptr;
  EXPECT_EQ(zelStatusOK, zelGetSystemName(&again));
  EXPECT_EQ(name, again);
}

TEST(GetSystemCreationClassName, IsTheSamePointerEachTime) {
  const char* name = nullptr;
  EXPECT_EQ(zelStatusInvalidOpSequence, zelGetSystemCreationClassName(&name));
  EXPECT_EQ(nullptr, name);
  TPluginManager::Initialize("/nowhere");
  ASSERT_EQ(zelStatusOK, zelGetSystemCreationClassName(&name));
  EXPECT_STREQ("KVRSG_ComputerSystem", name);
  const char* again = nullptr;
  EXPECT_EQ(zelStatusOK, zelGetSystemCreationClassName(&again));
  EXPECT_EQ(name, again);
}

}  // namespace
