#include "zelcore/TQueryManager.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <boost/make_shared.hpp>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/plugin/PluginDir.h"
#include "tests/support/LogSpy.h"
#include "tests/support/Status.h"
#include "zelcore/TCIMClass.h"
#include "zelcore/TCIMInstance.h"
#include "zelcore/TCIMProperty.h"
#include "zelcore/TCIMPropertyDecl.h"
#include "zelcore/TCIMQualifier.h"
#include "zelcore/TCIMReference.h"
#include "zelcore/TCIMValue.h"
#include "zelcore/TRootObject.h"

namespace {

using Lines = std::vector<std::string>;

std::size_t CountOf(const std::string& className) {
  return PluginDir::Schema().GetClass(className)->EnumerateInstances(false).size();
}

TEST(QueryManager, IsTheProcesssOneOnceInitialized) {
  EXPECT_EQ(nullptr, TQueryManager::GetInstance());
  EXPECT_EQ(nullptr, TRootObject::GetQueryManager());
  EXPECT_EQ(0, TQueryManager::Initialize());
  EXPECT_EQ(TQueryManager::GetInstance(), TRootObject::GetQueryManager());
}

TEST(RunQuery, CollectsOrdinaryClassesBeforeAssociations) {
  const PluginDir plugins;
  plugins.Load("good");
  SetLogThreshold(zelLogDebug);
  ClearLog();
  PluginDir::Query();
  EXPECT_EQ((Lines{"Asking plugin good for Good_Thing", "GetData for 1",
                   "Asking plugin good for Good_Link", "GetData for 1"}),
            LogLines(zelLogDebug));
  EXPECT_EQ(LogLines(zelLogDebug), LogLines());

  const auto things = PluginDir::Schema().GetClass("Good_Thing")->EnumerateInstances(false);
  ASSERT_EQ(2u, things.size());
  EXPECT_EQ("a", things[0]->GetProperty("Id")->GetValue().ToString(10));
  EXPECT_EQ("2400", things[0]->GetProperty("Speed")->GetValue().ToString(10));
  EXPECT_EQ("{ 3, 5 }", things[0]->GetProperty("Ports")->GetValue().ToString(10));
  EXPECT_EQ("20040315142530.000000-300", things[0]->GetProperty("Made")->GetValue().ToString(10));

  const auto links = PluginDir::Schema().GetClass("Good_Link")->EnumerateInstances(false);
  ASSERT_EQ(1u, links.size());
  const TCIMReference to = links[0]->GetProperty("To")->GetValue();
  EXPECT_EQ(static_cast<ICIMElement*>(things[1]), to.GetCIMElement());
}

TEST(RunQuery, FillsTheContainerThatItIsGiven) {
  const PluginDir plugins;
  const IPlugin& good = plugins.Load("good");
  TContainer other;
  other.PopulateContainerFromFile(ZEL_SOURCE_DIR "/tests/testdata/plugin-base.xml");
  other.PopulateContainerFromFile(good.GetSpecificationPath());
  TQueryManager::GetInstance()->RunQuery(&other, {});
  EXPECT_EQ(2u, other.GetClass("Good_Thing")->EnumerateInstances(false).size());
  EXPECT_EQ(1u, other.GetClass("Good_Link")->EnumerateInstances(false).size());
  EXPECT_EQ(0u, CountOf("Good_Thing"));

  // Whether a class has instances already is asked of the plug-in's own class, in the schema.
  TQueryManager::GetInstance()->RunQuery(&other, {"Good_Thing"});
  EXPECT_EQ(4u, other.GetClass("Good_Thing")->EnumerateInstances(false).size());

  TContainer empty;
  ClearLog();
  TQueryManager::GetInstance()->RunQuery(&empty, {"Good_Thing"});
  EXPECT_EQ("zelAddClass: GetClass(Good_Thing) threw exception zelStatusNotFound",
            LogLines().front());
}

TEST(RunQuery, AsksOnlyForTheNamedClasses) {
  const PluginDir plugins;
  plugins.Load("good");
  PluginDir::Query({"Good_Link"});
  EXPECT_EQ(0u, CountOf("Good_Thing"));
  EXPECT_EQ(1u, CountOf("Good_Link"));
  PluginDir::Query({"good_thing", "GOOD_THING", "Unknown"});  // by their exact case
  EXPECT_EQ(0u, CountOf("Good_Thing"));
  PluginDir::Query({"Unknown", "Good_Thing"});
  EXPECT_EQ(2u, CountOf("Good_Thing"));
}

TEST(RunQuery, CallsAPluginThatHasNothingToDo) {
  const PluginDir plugins;
  plugins.Load("good");
  SetLogThreshold(zelLogDebug);
  ClearLog();
  PluginDir::Query({"Unknown"});
  EXPECT_EQ((Lines{"GetData for 0", "GetData for 0"}), LogLines());
}

TEST(RunQuery, DoesNotAskForAbstractOrUncollectedClassesEvenByName) {
  const PluginDir plugins;
  plugins.Load("good");
  SetLogThreshold(zelLogDebug);
  ClearLog();
  PluginDir::Query({"Good_Base", "Good_Secret"});
  EXPECT_EQ((Lines{"GetData for 0", "GetData for 0"}), LogLines());
}

TEST(RunQuery, AsksForAClassWhoseDontCollectIsFalseOrNull) {
  const PluginDir plugins;
  plugins.Load("good");
  TCIMQualifier* qualifier =
      PluginDir::Schema().GetClass("Good_Secret")->GetQualifier("DONTCOLLECT");
  SetLogThreshold(zelLogDebug);
  for (const TCIMValue& value :
       {TCIMValue(false), TCIMValue(TCIMValue::TCIMType::TypeBoolean, 0)}) {
    qualifier->SetValue(value);
    ClearLog();
    PluginDir::Query({"Good_Secret"});
    EXPECT_EQ("Asking plugin good for Good_Secret", LogLines().front());
  }
}

TEST(RunQuery, ReportsADontCollectThatIsNoBoolean) {
  const PluginDir plugins;
  plugins.Load("good");
  PluginDir::Schema().GetClass("Good_Secret")->GetQualifier("DONTCOLLECT")->SetValue("yes");
  ClearLog();
  PluginDir::Query({"Good_Secret"});
  EXPECT_EQ(Lines(2, "Plugin good threw exception zelStatusTypeMismatch"), LogLines());
}

TEST(RunQuery, DoesNotAskAgainForAClassWithInstances) {
  const PluginDir plugins;
  plugins.Load("good");
  PluginDir::Query();
  SetLogThreshold(zelLogDebug);
  ClearLog();
  PluginDir::Query();
  EXPECT_EQ((Lines{"GetData for 0", "GetData for 0"}), LogLines());
  EXPECT_EQ(2u, CountOf("Good_Thing"));
}

TEST(RunQuery, AsksPluginsOfType0Only) {
  const PluginDir plugins;
  plugins.Load("paper");
  plugins.Load("bystander");
  PluginDir::Query();
  EXPECT_TRUE(LogLines().empty());
}

TEST(RunQuery, PassesOverUnloadedPlugins) {
  const PluginDir plugins;
  IPlugin& good = plugins.Load("good");
  plugins.Load("nameless");
  good.GetCallbacks()->PrepareForUnload();
  ClearLog();
  PluginDir::Query();
  EXPECT_TRUE(LogLines().empty());
  EXPECT_EQ(0u, CountOf("Good_Thing"));
  EXPECT_EQ(1u, CountOf("Nameless_Thing"));
}

// ---- Plug-ins that misbehave

TEST(RunQuery, NamesPluginsThatFailAndKeepsTheDataOfTheOthers) {
  const PluginDir plugins;
  for (const char* name :
       {"refuses", "odd", "nameless", "hollow", "throws", "unfinished", "good"}) {
    plugins.Load(name);
  }
  ClearLog();
  PluginDir::Query();
  EXPECT_EQ((Lines{
                "Plugin refuses threw exception zelStatusFail",
                "Plugin odd threw exception zelStatusEnd",
                "Plugin  threw exception zelStatusFail",
                "zelAddClass: CIM class Throws_Thing threw exception disk on fire",
                "Plugin throws threw exception disk on fire",
                "Instance Unfinished_Thing: key property Id is NULL",
                "Plugin unfinished threw exception zelStatusInvalidInstance",
                "Plugin refuses threw exception zelStatusFail",
                "Plugin  threw exception zelStatusFail",
                "zelAddClass: CIM class  threw exception nothing to do",
                "Plugin throws threw exception nothing to do",
            }),
            LogLines(zelLogError));
  EXPECT_EQ(1u, CountOf("Odd_Thing"));  // the one that was complete before the odd code
  EXPECT_EQ(1u, CountOf("Nameless_Thing"));
  EXPECT_EQ(1u, CountOf("Throws_Thing"));
  EXPECT_EQ(1u, CountOf("Unfinished_Thing"));
  EXPECT_EQ(2u, CountOf("Good_Thing"));
  EXPECT_EQ(1u, CountOf("Good_Link"));
}

// What the plug-in "good" collects, with all its values.
void ExpectTheDataOfGood() {
  const TContainer& schema = PluginDir::Schema();
  const auto things = schema.GetClass("Good_Thing")->EnumerateInstances(false);
  ASSERT_EQ(2u, things.size());
  for (const TCIMInstance* thing : things) {
    EXPECT_EQ("2400", thing->GetProperty("Speed")->GetValue().ToString(10));
    EXPECT_EQ("{ 3, 5 }", thing->GetProperty("Ports")->GetValue().ToString(10));
    EXPECT_EQ("20040315142530.000000-300", thing->GetProperty("Made")->GetValue().ToString(10));
  }
  EXPECT_EQ("Good_Thing.Id=\"a\"", things[0]->BuildPath().GetPath());
  EXPECT_EQ("Good_Thing.Id=\"b\"", things[1]->BuildPath().GetPath());
  const auto links = schema.GetClass("Good_Link")->EnumerateInstances(false);
  ASSERT_EQ(1u, links.size());
  EXPECT_EQ("Good_Thing.Id=\"a\"", links[0]->GetProperty("From")->GetValue().ToString(10));
  EXPECT_EQ("Good_Thing.Id=\"b\"", links[0]->GetProperty("To")->GetValue().ToString(10));
}

TEST(RunQuery, KeepsTheDataOfAGoodPluginWhateverIsWrongWithItsNeighbour) {
  struct {
    const char* name;
    const char* file;  // put in the plug-in's directory, with `contents`
    const char* contents;
    const char* line;  // names the plug-in or its file in the log; empty: nothing is wrong
  } const rows[] = {
      {"text",         "libtext.pi.so",                    "no library\n", "DLL "                                                      },
      {"text",         "libtext.pi.so/file",               "",             "DLL "                                                      },
      {"undocumented", "",                                 "",             "Couldn't read file "                                       },
      {"undocumented", "undocumented.properties.xml",      "<CIM",         "Previous error was while parsing"                          },
      {"undocumented", "undocumented.properties.xml/file", "",             "Couldn't read file "                                       },
      {"refuses",      "",                                 "",             "Plugin refuses threw exception zelStatusFail"              },
      {"odd",          "",                                 "",             "Plugin odd threw exception zelStatusEnd"                   },
      {"nameless",     "",                                 "",             ""                                                          },
      {"hollow",       "",                                 "",             "Plugin  threw exception zelStatusFail"                     },
      {"throws",       "",                                 "",             "Plugin throws threw exception disk on fire"                },
      {"unfinished",   "",                                 "",             "Plugin unfinished threw exception zelStatusInvalidInstance"},
      {"twins",        "",                                 "",             "Previous error was while parsing"                          },
      {"bystander",    "",                                 "",             ""                                                          },
      {"fickle",       "",                                 "",             ""                                                          },
      {"chatty",       "",                                 "",             ""                                                          },
  };
  for (const auto& row : rows) {
    // Before the good one, and after it.
    for (const bool first : {true, false}) {
      SCOPED_TRACE(testing::Message() << row.name << '/' << row.file << ", first: " << first);
      RestartLog();
      const PluginDir plugins;
      const std::string path = plugins.Install(row.name);
      if (*row.file) {
        plugins.Files().WriteFile(std::string(row.name) + "/" + row.file, row.contents);
      }
      std::vector<std::string> paths = {path, plugins.Install("good")};
      if (!first) std::swap(paths[0], paths[1]);
      for (const std::string& each : paths) {
        StatusOf([&] { PluginDir::Manager().LoadPlugin(each); });
      }
      PluginDir::Query();
      ExpectTheDataOfGood();
      const Lines errors = LogLines(zelLogError);
      const bool isNamed = std::any_of(errors.begin(), errors.end(), [&](const std::string& line) {
        return line.find(row.line) == 0;
      });
      EXPECT_EQ(*row.line != '\0', isNamed);
      EXPECT_EQ(*row.line != '\0', !errors.empty());
      delete TQueryManager::GetInstance();
    }
  }
}

TEST(Logging, SurvivesAPluginThatLogsWhenAskedForItsName) {
  const PluginDir plugins;
  IPlugin& chatty = plugins.Load("chatty");
  const LogFile file;
  ClearLog();
  EXPECT_EQ("chatty", chatty.GetCallbacks()->GetName());
  EXPECT_EQ("who asks?", LogLines().front());
  EXPECT_FALSE(file.Lines().empty());
}

// ---- One plug-in

// Callbacks without IPluginBasicQueryCallbacks.
class Unasked : public IPluginCallbacks {
 public:
  int GetType() override { return 0; }
  std::string GetName() override { return "unasked"; }
  std::string GetVersion() override { return "1.0"; }
  std::string GetInterfaceVersion() override { return "1.0"; }
  void PrepareForUnload() override {}
  void Init() override {}
  void DeInit() override {}
};

// Callbacks that answer queries in C++, and remember what they were asked.
class Asked : public Unasked, public IPluginBasicQueryCallbacks {
 public:
  std::string GetName() override { return "asked"; }
  void GetData(TContainer* container, std::vector<TCIMClass*>& classes) override {
    asked = classes;
    if (!failure.empty()) throw std::runtime_error(failure);
    for (TCIMClass* cls : classes) {
      if (!fills) continue;
      TCIMInstance* instance = container->AllocateInstance(cls);
      instance->SetPropertyValue("Id", TCIMValue("one"));
      instance->AddToContainer();
    }
  }

  bool fills = true;
  std::string failure;
  std::vector<TCIMClass*> asked;
};

// A record with classes of its own.
class Record : public IPlugin {
 public:
  explicit Record(IPluginCallbacks& callbacks, std::vector<TCIMClass*> classes = {})
      : fCallbacks(callbacks), fClasses(classes) {}
  IPluginCallbacks* GetCallbacks() const override { return &fCallbacks; }
  void Initialize() override {}
  bool IsInitialized() const override { return true; }
  std::string GetPath() const override { return ""; }
  std::string GetSpecificationPath() const override { return ""; }
  std::vector<TCIMClass*> GetClassesCollected() const override { return fClasses; }

 private:
  IPluginCallbacks& fCallbacks;
  std::vector<TCIMClass*> fClasses;
};

void Enumerate(IPlugin& plugin, bool associations = false) {
  TQueryManager::GetInstance()->EnumerateInstances(&plugin, &PluginDir::Schema(), {}, associations);
}

TEST(EnumerateInstances, ReportsAPluginThatAnswersNoQueries) {
  const PluginDir plugins;
  Unasked callbacks;
  Record plugin(callbacks);
  Enumerate(plugin);
  EXPECT_EQ(Lines{"Plugin unasked doesn't support the IPluginBasicQueryCallbacks."}, LogLines());
  EXPECT_EQ(zelLogError, LastLogSeverity());
}

TEST(RunQuery, ReportsAPluginThatAnswersNoQueriesOncePerPass) {
  const PluginDir plugins;
  plugins.Load("good");
  Unasked callbacks;
  PluginDir::Manager().GetPluginsContainer().push_front(boost::make_shared<Record>(callbacks));
  ClearLog();
  PluginDir::Query();
  EXPECT_EQ(Lines(2, "Plugin unasked doesn't support the IPluginBasicQueryCallbacks."), LogLines());
  ExpectTheDataOfGood();
}

TEST(EnumerateInstances, LooksAtNothingMoreOnceAClassIsRuledOut) {
  const PluginDir plugins;
  plugins.Load("good");
  TContainer& schema = PluginDir::Schema();
  TCIMClass* secret = schema.GetClass("Good_Secret");
  secret->GetQualifier("DONTCOLLECT")->SetValue("yes");  // no boolean: to look at it throws
  ClearLog();
  Asked callbacks;
  Record plugin(callbacks, {secret});
  TQueryManager::GetInstance()->EnumerateInstances(&plugin, &schema, {"Good_Thing"}, false);
  EXPECT_TRUE(LogLines().empty());
  secret->AddQualifier(*new TCIMQualifier(*schema.GetQualifierDecl("ABSTRACT"), TCIMValue(true)));
  Enumerate(plugin);
  EXPECT_TRUE(LogLines().empty());

  secret->GetQualifier("ABSTRACT")->SetValue("yes");
  Enumerate(plugin);
  EXPECT_EQ(Lines{"Plugin asked threw exception zelStatusTypeMismatch"}, LogLines());
}

TEST(EnumerateInstances, AsksThePluginsOwnClassForInstancesOfItselfOnly) {
  const PluginDir plugins;
  plugins.Load("good");
  TCIMClass* thing = PluginDir::Schema().GetClass("Good_Thing");
  TCIMClass* special = PluginDir::Schema().AllocateClass("Good_Special", thing);
  special->AddToContainer();
  Asked callbacks;
  Record plugin(callbacks, {special});
  Enumerate(plugin);
  EXPECT_EQ(1u, CountOf("Good_Special"));

  // Instances of a subclass do not keep it from being asked for.
  Record generalPlugin(callbacks, {thing});
  Enumerate(generalPlugin);
  EXPECT_EQ(std::vector<TCIMClass*>{thing}, callbacks.asked);
  EXPECT_EQ(1u, CountOf("Good_Thing"));
}

TEST(EnumerateInstances, AsksTheFirstPluginThatYieldsInstancesOfASharedClass) {
  const PluginDir plugins;
  plugins.Load("good");
  TCIMClass* thing = PluginDir::Schema().GetClass("Good_Thing");
  Asked empty, first, second;
  empty.fills = false;
  Record emptyRecord(empty, {thing}), firstRecord(first, {thing}), secondRecord(second, {thing});
  Enumerate(emptyRecord);
  Enumerate(firstRecord);
  Enumerate(secondRecord);
  EXPECT_EQ(std::vector<TCIMClass*>{thing}, empty.asked);
  EXPECT_EQ(std::vector<TCIMClass*>{thing}, first.asked);
  EXPECT_TRUE(second.asked.empty());
  EXPECT_EQ(1u, CountOf("Good_Thing"));
}

TEST(EnumerateInstances, KeepsTheOrderOfTheCollectedClasses) {
  const PluginDir plugins;
  plugins.Load("good");
  plugins.Load("nameless");
  TCIMClass* thing = PluginDir::Schema().GetClass("Good_Thing");
  TCIMClass* link = PluginDir::Schema().GetClass("Good_Link");
  TCIMClass* nameless = PluginDir::Schema().GetClass("Nameless_Thing");
  Asked callbacks;
  callbacks.fills = false;
  Record plugin(callbacks, {nameless, link, thing});
  Enumerate(plugin, false);
  EXPECT_EQ((std::vector<TCIMClass*>{nameless, thing}), callbacks.asked);
  Enumerate(plugin, true);
  EXPECT_EQ(std::vector<TCIMClass*>{link}, callbacks.asked);
}

// Callbacks that throw what is no standard exception.
class Wild : public Asked {
 public:
  void GetData(TContainer*, std::vector<TCIMClass*>&) override { throw 42; }
};

TEST(EnumerateInstances, LetsOutWhatIsNoStandardException) {
  const PluginDir plugins;
  Wild callbacks;
  Record plugin(callbacks);
  EXPECT_THROW(Enumerate(plugin), int);
  EXPECT_TRUE(LogLines().empty());
}

TEST(EnumerateInstances, LogsWhatAPluginThrows) {
  const PluginDir plugins;
  Asked callbacks;
  callbacks.failure = "no luck";
  Record plugin(callbacks);
  Enumerate(plugin);
  EXPECT_EQ(Lines{"Plugin asked threw exception no luck"}, LogLines());
  EXPECT_EQ(zelLogError, LastLogSeverity());
}

}  // namespace
