#include "zelcore/TCPluginCallbacks.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "tests/plugin/Handle.h"
#include "tests/plugin/PluginDir.h"
#include "tests/support/LogSpy.h"
#include "tests/support/Status.h"
#include "zelcore/TZELException.h"

namespace {

using Lines = std::vector<std::string>;

// What the plug-in of these tests was asked, and what it answers.
struct TScript {
  std::vector<std::string> calls;
  zelStatusCode answer = zelStatusOK;
  int named = 0;
};
TScript gScript;

zelStatusCode Answer(const char* call) {
  gScript.calls.push_back(call);
  return gScript.answer;
}
zelPluginInfo GetInfo(TCPluginCallbacks*) {
  static std::string name;
  name = "name " + std::to_string(++gScript.named);
  return {name.c_str(), "1.2", "3.4", 56, 78};
}
zelStatusCode GetData(TCPluginCallbacks*, zelIOHandle*, const char** names, int count) {
  std::string call = "GetData " + std::to_string(count);
  for (int i = 0; i < count; ++i) call += std::string(" ") + names[i];
  return Answer(call.c_str());
}

class PluginCallbacks : public testing::Test {
 protected:
  PluginCallbacks() {
    gScript = {};
    TPluginManager::Initialize("/nowhere");
  }

  static TCPluginCallbacks* Register(decltype(zelPluginCallbacks::GetData) getData = GetData) {
    zelPluginCallbacks table{[] { FAIL() << "the first entry is never called"; },
                             [](TCPluginCallbacks*) { return Answer("Init"); },
                             [](TCPluginCallbacks*) { return Answer("DeInit"); },
                             getData,
                             GetInfo,
                             [](TCPluginCallbacks*) { return Answer("PrepareForUnload"); }};
    TCPluginCallbacks* plugin = nullptr;
    zelRegisterPlugin(&table, &plugin);
    return plugin;
  }

  // Data into the container of `handle` from a plug-in that answers with `getData`.
  static void GetDataInto(Handle& handle, decltype(zelPluginCallbacks::GetData) getData) {
    std::vector<TCIMClass*> classes = {handle.Container().GetClass("Test_Thing")};
    Register(getData)->GetData(&handle.Container(), classes);
  }
};

TEST_F(PluginCallbacks, AskGetInfoAfreshForEachValue) {
  TCPluginCallbacks* plugin = Register();
  EXPECT_EQ("name 1", plugin->GetName());
  EXPECT_EQ("name 2", plugin->GetName());
  EXPECT_EQ(56, plugin->GetType());
  EXPECT_EQ(78, plugin->GetURLType());
  EXPECT_EQ("1.2", plugin->GetVersion());
  EXPECT_EQ("3.4", plugin->GetInterfaceVersion());
  EXPECT_EQ("name 7", plugin->GetName());
}

TEST_F(PluginCallbacks, ThrowExactlyTheStatusOfThePlugin) {
  TCPluginCallbacks* plugin = Register();
  std::vector<TCIMClass*> none;
  for (const int code : {1, 3, 27, 38, 39, 4711, -5, 2147483647}) {
    gScript.answer = static_cast<zelStatusCode>(code);
    const auto codeOf = [](auto work) {
      try {
        work();
      } catch (const TZELException& e) {
        return static_cast<int>(e.GetStatusCode());
      }
      return 0;
    };
    EXPECT_EQ(code, codeOf([&] { plugin->Init(); }));
    EXPECT_EQ(code, codeOf([&] { plugin->DeInit(); }));
    EXPECT_EQ(code, codeOf([&] { plugin->GetData(nullptr, none); }));
    EXPECT_EQ(code, codeOf([&] { plugin->PrepareForUnload(); }));
  }
  EXPECT_TRUE(LogLines().empty());
}

TEST_F(PluginCallbacks, PassOnCallsThatSucceed) {
  TCPluginCallbacks* plugin = Register();
  Handle handle;
  std::vector<TCIMClass*> classes = {handle.Container().GetClass("Test_Thing"),
                                     handle.Container().GetClass("Test_Link")};
  std::vector<TCIMClass*> none;
  plugin->Init();
  plugin->GetData(&handle.Container(), classes);
  plugin->GetData(&handle.Container(), none);
  plugin->DeInit();
  EXPECT_EQ((Lines{"Init", "GetData 2 Test_Thing Test_Link", "GetData 0", "DeInit"}),
            gScript.calls);
}

TEST_F(PluginCallbacks, KnowTheirPathFromInitOn) {
  TCPluginCallbacks* plugin = Register();
  EXPECT_EQ(nullptr, plugin->GetPluginPath());
  static_cast<TPluginManager::TPlugin*>(plugin->GetPluginHandle())->SetPath("/some/path.pi.so");
  gScript.answer = zelStatusFail;
  EXPECT_EQ("zelStatusFail", StatusOf([&] { plugin->Init(); }));
  EXPECT_STREQ("/some/path.pi.so", plugin->GetPluginPath());
  gScript.answer = zelStatusOK;
  plugin->Init();  // again: the former copy is given back
  EXPECT_STREQ("/some/path.pi.so", plugin->GetPluginPath());
}

TEST_F(PluginCallbacks, CommitTheLastInstanceAfterSuccess) {
  Handle handle;
  GetDataInto(handle, [](TCPluginCallbacks*, zelIOHandle* out, const char**, int) {
    zelAddClass(out, "Test_Thing");
    return zelAddStringProperty(out, "Id", "a");
  });
  ASSERT_EQ(1u, handle.Instances("Test_Thing").size());
  EXPECT_EQ("Test_Thing.Id=\"a\"", handle.Instances("Test_Thing")[0]->BuildPath().GetPath());
}

TEST_F(PluginCallbacks, DropTheLastInstanceAfterAFailure) {
  Handle handle;
  EXPECT_EQ("zelStatusFail", StatusOf([&] {
              GetDataInto(handle, [](TCPluginCallbacks*, zelIOHandle* out, const char**, int) {
                for (const char* id : {"a", "b"}) {
                  zelAddClass(out, "Test_Thing");
                  zelAddStringProperty(out, "Id", id);
                }
                return zelStatusFail;
              });
            }));
  ASSERT_EQ(1u, handle.Instances("Test_Thing").size());
  EXPECT_EQ("Test_Thing.Id=\"a\"", handle.Instances("Test_Thing")[0]->BuildPath().GetPath());
  EXPECT_TRUE(LogLines().empty());
}

TEST_F(PluginCallbacks, PassOnWhatTheLastCommitThrows) {
  Handle handle;
  EXPECT_EQ("zelStatusInvalidInstance", StatusOf([&] {
              GetDataInto(handle, [](TCPluginCallbacks*, zelIOHandle* out, const char**, int) {
                return zelAddClass(out, "Test_Thing");
              });
            }));
  for (const std::string& line : LogLines()) {
    EXPECT_EQ(std::string::npos, line.find("zelAddClass: CIM class")) << line;
  }
}

TEST_F(PluginCallbacks, LogAndPassOnAnExceptionOfThePlugin) {
  Handle handle;
  EXPECT_THROW(
      GetDataInto(handle,
                  [](TCPluginCallbacks*, zelIOHandle* out, const char**, int) -> zelStatusCode {
                    zelAddClass(out, "Test_Thing");
                    throw std::runtime_error("disk on fire");
                  }),
      std::runtime_error);
  EXPECT_EQ(Lines{"zelAddClass: CIM class Test_Thing threw exception disk on fire"}, LogLines());
  EXPECT_EQ(zelLogError, LastLogSeverity());
  EXPECT_TRUE(handle.Instances("Test_Thing").empty());

  ClearLog();
  EXPECT_THROW(GetDataInto(handle,
                           [](TCPluginCallbacks*, zelIOHandle*, const char**,
                              int) -> zelStatusCode { throw std::logic_error("nothing built"); }),
               std::logic_error);
  EXPECT_EQ(Lines{"zelAddClass: CIM class  threw exception nothing built"}, LogLines());
}

TEST_F(PluginCallbacks, SurviveARefusedUnloadAndEndWithASuccessfulOne) {
  TCPluginCallbacks* plugin = Register();
  IPlugin* record = plugin->GetPluginHandle();
  gScript.answer = zelStatusNotSupported;
  EXPECT_EQ("zelStatusNotSupported", StatusOf([&] { plugin->PrepareForUnload(); }));
  EXPECT_EQ(plugin, record->GetCallbacks());

  gScript.answer = zelStatusOK;
  plugin->PrepareForUnload();
  EXPECT_EQ(nullptr, record->GetCallbacks());
  EXPECT_EQ("zelStatusInvalidPlugin", StatusOf([&] { record->Initialize(); }));
}

TEST_F(PluginCallbacks, TakeNullFunctionsAsNotImplemented) {
  zelPluginCallbacks table{};
  TCPluginCallbacks* plugin = nullptr;
  ASSERT_EQ(zelStatusOK, zelRegisterPlugin(&table, &plugin));
  std::vector<TCIMClass*> none;
  EXPECT_EQ("", plugin->GetName());
  EXPECT_EQ("", plugin->GetVersion());
  EXPECT_EQ("", plugin->GetInterfaceVersion());
  EXPECT_EQ(0, plugin->GetType());
  EXPECT_EQ(0, plugin->GetURLType());
  EXPECT_EQ("zelStatusNotImplemented", StatusOf([&] { plugin->Init(); }));
  EXPECT_EQ("zelStatusNotImplemented", StatusOf([&] { plugin->DeInit(); }));
  EXPECT_EQ("zelStatusNotImplemented", StatusOf([&] { plugin->GetData(nullptr, none); }));
  EXPECT_EQ("zelStatusNotImplemented", StatusOf([&] { plugin->PrepareForUnload(); }));
}

TEST_F(PluginCallbacks, HaveNoNameWhenGetInfoThrows) {
  zelPluginCallbacks table{};
  table.GetInfo = [](TCPluginCallbacks*) -> zelPluginInfo { throw 42; };
  TCPluginCallbacks* plugin = nullptr;
  zelRegisterPlugin(&table, &plugin);
  EXPECT_EQ("", plugin->GetName());
}

TEST_F(PluginCallbacks, ForgetARecordThatTheManagerDropped) {
  TCPluginCallbacks* plugin = Register();
  ASSERT_NE(nullptr, plugin->GetPluginHandle());
  // A load clears what was registered and never initialised.
  TPluginManager::GetInstance()->LoadPlugin("/nowhere/at.pi.so");
  EXPECT_EQ(nullptr, plugin->GetPluginHandle());
  zelWriteLog(plugin, zelLogStatus, "as the library");
  EXPECT_EQ("as the library", LastLogLine());
  plugin->Init();
  EXPECT_STREQ("", plugin->GetPluginPath());
  plugin->PrepareForUnload();
}

}  // namespace
