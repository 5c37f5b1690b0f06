#include "zelcore/TPluginManager.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/plugin/PluginDir.h"
#include "tests/support/LogSpy.h"
#include "tests/support/Status.h"
#include "zelcore/TCIMClass.h"
#include "zelcore/TCIMQualifier.h"
#include "zelcore/TCIMQualifierDecl.h"
#include "zelcore/TCIMValue.h"
#include "zelcore/TCPluginCallbacks.h"
#include "zelcore/TRootObject.h"
#include "zelcore/zel.h"

namespace {

using Lines = std::vector<std::string>;

std::vector<std::string> NamesOf(const std::vector<TCIMClass*>& classes) {
  std::vector<std::string> names;
  for (const TCIMClass* cls : classes) names.push_back(cls->GetName());
  return names;
}

std::vector<std::string> ListedNames() {
  std::vector<std::string> names;
  for (const auto& plugin : PluginDir::Manager().GetPluginsContainer()) {
    names.push_back(plugin->GetCallbacks()->GetName());
  }
  return names;
}

std::string QualifierText(const TCIMClass& cls, const std::string& name) {
  return cls.GetQualifier(name)->GetValue();
}

TEST(PluginManager, IsTheProcesssOneOnceInitialized) {
  EXPECT_EQ(nullptr, TPluginManager::GetInstance());
  EXPECT_EQ(nullptr, TRootObject::GetPluginManager());
  EXPECT_EQ(0, TPluginManager::Initialize("/some/where"));
  EXPECT_EQ(TPluginManager::GetInstance(), TRootObject::GetPluginManager());
  EXPECT_EQ("/some/where", TPluginManager::GetInstance()->GetPluginManagerPath());

  TPluginManager* first = TPluginManager::GetInstance();
  EXPECT_EQ(0, TPluginManager::Initialize("/else/where"));
  EXPECT_NE(first, TPluginManager::GetInstance());
  delete first;
  EXPECT_EQ("/else/where", TPluginManager::GetInstance()->GetPluginManagerPath());
  delete TPluginManager::GetInstance();
  EXPECT_EQ(nullptr, TPluginManager::GetInstance());
}

TEST(PluginManager, LoadsAPluginWithItsDocument) {
  const PluginDir plugins;
  const std::string path = plugins.Install("good");
  SetLogThreshold(zelLogDebug);
  PluginDir::Manager().LoadPlugin(path);
  EXPECT_EQ((Lines{path, "Init at " + path}), LogLines());

  ASSERT_EQ(Lines{"good"}, ListedNames());
  const IPlugin& plugin = *PluginDir::Manager().GetPluginsContainer().front();
  EXPECT_TRUE(plugin.IsInitialized());
  EXPECT_EQ(path, plugin.GetPath());
  EXPECT_EQ(plugins.Files().PathOf("good/good.properties.xml"), plugin.GetSpecificationPath());
  EXPECT_EQ((Lines{"Good_Base", "Good_Thing", "Good_Secret", "Good_Link"}),
            NamesOf(plugin.GetClassesCollected()));
  for (const TCIMClass* cls : plugin.GetClassesCollected()) {
    EXPECT_EQ(cls, PluginDir::Schema().GetClass(cls->GetName()));
    EXPECT_EQ("good", QualifierText(*cls, "PLUGINNAME"));
    EXPECT_EQ("1.2.3", QualifierText(*cls, "PLUGINVERSION"));
  }
}

TEST(PluginManager, DoesNothingForAPathThatIsListed) {
  const PluginDir plugins;
  plugins.Load("good");
  SetLogThreshold(zelLogDebug);
  ClearLog();
  PluginDir::Manager().LoadPlugin(plugins.Files().PathOf("good/libgood.pi.so"));
  EXPECT_TRUE(LogLines().empty());
  EXPECT_EQ(Lines{"good"}, ListedNames());
}

TEST(PluginManager, GetsNoRegistrationFromALibraryThatIsLoadedAlready) {
  const PluginDir plugins;
  plugins.Load("good");
  const std::string link = plugins.Files().PathOf("again.pi.so");
  std::filesystem::create_symlink("good/libgood.pi.so", link);
  PluginDir::Manager().LoadPlugin(link);
  EXPECT_EQ(Lines{"good"}, ListedNames());
}

TEST(PluginManager, ReportsALibraryThatDoesNotLoad) {
  const PluginDir plugins;
  const std::string path = plugins.Files().WriteFile("text/libtext.pi.so", "no library\n");
  SetLogThreshold(zelLogDebug);
  PluginDir::Manager().LoadPlugin(path);
  const Lines lines = LogLines();
  ASSERT_EQ(3u, lines.size());
  EXPECT_EQ(path, lines[0]);
  EXPECT_EQ(0u, lines[1].find("ERROR: Failed to load plugin.  Reason: " + path)) << lines[1];
  EXPECT_EQ("DLL " + path + " failed to initialize properly", lines[2]);
  EXPECT_EQ(Lines(lines.begin() + 1, lines.end()), LogLines(zelLogError));
  EXPECT_TRUE(ListedNames().empty());
}

TEST(PluginManager, KeepsAPluginWhoseInitFailsWithoutReadingItsDocument) {
  const PluginDir plugins;
  const IPlugin& plugin = plugins.Load("refuses");
  const std::string path = plugins.Files().PathOf("refuses/librefuses.pi.so");
  EXPECT_FALSE(plugin.IsInitialized());
  EXPECT_EQ(path, plugin.GetPath());
  EXPECT_EQ(Lines{"Plugin " + path + " failed to initialize: zelStatusAccessDenied"}, LogLines());
  EXPECT_EQ(zelLogWarning, LastLogSeverity());
  EXPECT_EQ("zelStatusFail", StatusOf([&] { plugin.GetClassesCollected(); }));
  EXPECT_EQ(nullptr, PluginDir::Schema().FindClass("Refuses_Thing"));
  EXPECT_EQ(Lines{"refuses"}, ListedNames());
}

TEST(PluginManager, ReadsDocumentsOfTypes0And1Only) {
  const PluginDir plugins;
  EXPECT_EQ(Lines{"Paper_Thing"}, NamesOf(plugins.Load("paper").GetClassesCollected()));
  const IPlugin& bystander = plugins.Load("bystander");
  EXPECT_TRUE(bystander.IsInitialized());
  EXPECT_EQ("zelStatusFail", StatusOf([&] { bystander.GetClassesCollected(); }));
  EXPECT_EQ(nullptr, PluginDir::Schema().FindClass("Bystander_Thing"));
}

TEST(PluginManager, PassesOnWhatTheDocumentThrows) {
  const PluginDir plugins;
  EXPECT_EQ("zelStatusFileNotFound", StatusOf([&] { plugins.Load("undocumented"); }));
  ASSERT_EQ(Lines{"undocumented"}, ListedNames());
  const IPlugin& plugin = *PluginDir::Manager().GetPluginsContainer().front();
  EXPECT_TRUE(plugin.IsInitialized());
  EXPECT_EQ("zelStatusFail", StatusOf([&] { plugin.GetClassesCollected(); }));
}

TEST(PluginManager, DoesNotWaitForADocumentThatIsNoFile) {
  const PluginDir plugins;
  const std::string document = plugins.Files().PathOf("undocumented/undocumented.properties.xml");
  plugins.Install("undocumented");
  ASSERT_EQ(0, mkfifo(document.c_str(), 0644));
  plugins.Install("good");
  alarm(30);
  PluginDir::Manager().FindAndLoadPlugins();
  alarm(0);
  EXPECT_EQ(Lines{"Couldn't read file '" + document + "': zelStatusFileSystemError"},
            LogLines(zelLogError));
  EXPECT_NE(nullptr, PluginDir::Schema().FindClass("Good_Thing"));
}

TEST(PluginManager, NeedsTheDeclarationsOfTheTwoQualifiers) {
  for (const char* missing : {"PLUGINNAME", "PLUGINVERSION"}) {
    SCOPED_TRACE(missing);
    RestartLog();
    const PluginDir plugins;
    TContainer& schema = PluginDir::Schema();
    schema.RemoveQualifierDecl(*schema.GetQualifierDecl(missing));
    EXPECT_EQ("zelStatusNotFound", StatusOf([&] { plugins.Load("good"); }));
    EXPECT_EQ("Couldn't find PLUGINNAME/PLUGINVERSION qualifier decl", LastLogLine());
    EXPECT_EQ(zelLogError, LastLogSeverity());
    EXPECT_TRUE(schema.GetClass("Good_Thing")->EnumerateQualifiers().empty());

    // The document was read by then, so the plug-in is asked for its classes all the same.
    const IPlugin& plugin = *PluginDir::Manager().GetPluginsContainer().front();
    EXPECT_EQ(4u, plugin.GetClassesCollected().size());
    PluginDir::Query({"Good_Thing"});
    EXPECT_EQ(2u, schema.GetClass("Good_Thing")->EnumerateInstances(false).size());
    delete TQueryManager::GetInstance();
  }
}

TEST(PluginManager, KeepsAStampThatTheDocumentBroughtAlong) {
  const PluginDir plugins;
  plugins.Install("paper");
  std::string document = ReadFile(plugins.Files().PathOf("paper/paper.properties.xml"));
  document.insert(
      document.find("<PROPERTY"),
      "<QUALIFIER NAME=\"PLUGINNAME\" TYPE=\"string\"><VALUE>paper</VALUE></QUALIFIER>");
  plugins.Files().WriteFile("paper/paper.properties.xml", document);
  PluginDir::Manager().LoadPlugin(plugins.Files().PathOf("paper/libpaper.pi.so"));
  EXPECT_EQ("paper", QualifierText(*PluginDir::Schema().GetClass("Paper_Thing"), "PLUGINNAME"));
}

TEST(PluginManager, CannotReplaceAStampThatIsHandedDownForGood) {
  const PluginDir plugins;
  TContainer& schema = PluginDir::Schema();
  schema.RemoveQualifierDecl(*schema.GetQualifierDecl("PLUGINNAME"));
  schema
      .AllocateQualifierDecl("PLUGINNAME", TCIMValue(TCIMValue::TCIMType::TypeString, 0),
                             TCIMQualifierDecl::ScopeClass, TCIMQualifierDecl::FlavorToSubclass)
      ->AddToContainer();
  plugins.Load("good");
  plugins.Install("paper");
  std::string document = ReadFile(plugins.Files().PathOf("paper/paper.properties.xml"));
  const std::string name = "NAME=\"Paper_Thing\"";
  document.replace(document.find(name), name.size(), name + " SUPERCLASS=\"Good_Thing\"");
  document.erase(document.find("<PROPERTY"),
                 document.find("</CLASS>") - document.find("<PROPERTY"));
  plugins.Files().WriteFile("paper/paper.properties.xml", document);
  EXPECT_EQ("zelStatusNotOverridable", StatusOf([&] {
              PluginDir::Manager().LoadPlugin(plugins.Files().PathOf("paper/libpaper.pi.so"));
            }));
  EXPECT_EQ("good", QualifierText(*schema.GetClass("Paper_Thing"), "PLUGINNAME"));
}

TEST(PluginManager, ListsBothPluginsOfOneLibraryInOrder) {
  const PluginDir plugins;
  const std::string path = plugins.Install("twins");
  // The second finds the classes of their one document declared already, and stays without classes.
  EXPECT_EQ("zelStatusAlreadyExists", StatusOf([&] { PluginDir::Manager().LoadPlugin(path); }));
  ASSERT_EQ((Lines{"first twin", "second twin"}), ListedNames());
  const IPlugin& first = *PluginDir::Manager().GetPluginsContainer().front();
  const IPlugin& second = *PluginDir::Manager().GetPluginsContainer().back();
  EXPECT_EQ(path, first.GetPath());
  EXPECT_EQ(path, second.GetPath());
  EXPECT_TRUE(first.IsInitialized());
  EXPECT_TRUE(second.IsInitialized());
  EXPECT_EQ(Lines{"Twins_Thing"}, NamesOf(first.GetClassesCollected()));
  EXPECT_EQ("zelStatusFail", StatusOf([&] { second.GetClassesCollected(); }));
}

TEST(PluginManager, LeavesRegistrationsPendingAfterADocumentThatFails) {
  const PluginDir plugins;
  const std::string path = plugins.Install("twins");
  std::filesystem::remove(plugins.Files().PathOf("twins/twins.properties.xml"));
  EXPECT_EQ("zelStatusFileNotFound", StatusOf([&] { PluginDir::Manager().LoadPlugin(path); }));
  EXPECT_EQ(Lines{"first twin"}, ListedNames());
  plugins.Load("paper");  // gives up the second twin
  EXPECT_EQ((Lines{"first twin", "paper"}), ListedNames());
}

TEST(PluginManager, LoadsALibraryWhoseNameHasNoDocument) {
  const PluginDir plugins;
  const std::string path = plugins.Files().PathOf("good/plain.pi.so.bak");
  std::filesystem::rename(plugins.Install("good"), path);
  EXPECT_EQ("zelStatusFail", StatusOf([&] { PluginDir::Manager().LoadPlugin(path); }));
  ASSERT_EQ(Lines{"good"}, ListedNames());
  EXPECT_TRUE(PluginDir::Manager().GetPluginsContainer().front()->IsInitialized());
}

TEST(PluginManager, SearchesByTheExactName) {
  const PluginDir plugins;
  IPlugin* good = &plugins.Load("good");
  IPlugin* paper = &plugins.Load("paper");
  EXPECT_EQ(good, PluginDir::Manager().SearchForPluginByName("good"));
  EXPECT_EQ(paper, PluginDir::Manager().SearchForPluginByName("paper"));
  EXPECT_EQ(nullptr, PluginDir::Manager().SearchForPluginByName("Good"));
  EXPECT_EQ(nullptr, PluginDir::Manager().SearchForPluginByName("goo"));
  EXPECT_EQ(nullptr, PluginDir::Manager().SearchForPluginByName(""));
  good->GetCallbacks()->PrepareForUnload();
  EXPECT_EQ(nullptr, PluginDir::Manager().SearchForPluginByName("good"));
  EXPECT_EQ(paper, PluginDir::Manager().SearchForPluginByName("paper"));
}

TEST(PluginManager, ReadsNoDocumentForAPluginThatIsGone) {
  const PluginDir plugins;
  auto& paper = static_cast<TPluginManager::TPlugin&>(plugins.Load("paper"));
  paper.GetCallbacks()->PrepareForUnload();
  EXPECT_EQ("zelStatusInvalidPlugin", StatusOf([&] { paper.LoadSpecificationDocument(); }));
  EXPECT_EQ(Lines{"Paper_Thing"}, NamesOf(paper.GetClassesCollected()));
}

TEST(PluginManager, SeesTheNameThatAPluginHasNow) {
  const PluginDir plugins;
  IPlugin& fickle = plugins.Load("fickle");
  const std::string name = fickle.GetCallbacks()->GetName();
  const std::string next = fickle.GetCallbacks()->GetName();
  EXPECT_NE(name, next);
  EXPECT_EQ(nullptr, PluginDir::Manager().SearchForPluginByName(next));
}

// ---- The directory

TEST(FindAndLoadPlugins, LoadsOneLevelDeepAndSurvivesBadPlugins) {
  const PluginDir plugins;
  plugins.Install("good");
  plugins.Install("paper");
  plugins.Install("refuses");
  plugins.Install("undocumented");
  const std::string text = plugins.Files().WriteFile("text/libtext.pi.so", "no library\n");
  plugins.Files().WriteFile("empty/readme", "no plug-in here\n");
  plugins.Files().WriteFile("libstray.pi.so", "no library\n");
  std::filesystem::create_directories(plugins.Files().PathOf("deep/deeper"));
  std::filesystem::copy_file(plugins.Files().PathOf("good/libgood.pi.so"),
                             plugins.Files().PathOf("deep/deeper/libgood.pi.so"));
  PluginDir::Manager().FindAndLoadPlugins();

  Lines names = ListedNames();
  std::sort(names.begin(), names.end());
  EXPECT_EQ((Lines{"good", "paper", "refuses", "undocumented"}), names);
  int failures = 0;
  for (const std::string& line : LogLines(zelLogError)) {
    if (line == "DLL " + text + " failed to initialize properly") ++failures;
    EXPECT_EQ(std::string::npos, line.find("stray")) << line;
  }
  EXPECT_EQ(1, failures);
}

TEST(FindAndLoadPlugins, ThrowsForADirectoryThatCannotBeRead) {
  const TempDir dir;
  TPluginManager::Initialize(dir.PathOf("missing"));
  EXPECT_EQ("zelStatusFileSystemError",
            StatusOf([] { TPluginManager::GetInstance()->FindAndLoadPlugins(); }));
}

TEST(FindAndLoadPlugins, FindsDocumentsBelowADirectoryWithLibInItsNameThroughADescriptor) {
  const PluginDir plugins;
  plugins.Install("good");
  const std::string real = plugins.Files().PathOf("stdlibs");
  std::filesystem::create_directory(real);
  std::filesystem::rename(plugins.Files().PathOf("good"), real + "/good");
  const int descriptor = open(real.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  ASSERT_LE(0, descriptor);
  const std::string path =
      "/proc/" + std::to_string(getpid()) + "/fd/" + std::to_string(descriptor);

  delete TPluginManager::GetInstance();
  TPluginManager::Initialize(path);
  PluginDir::Schema().PopulateContainerFromFile(ZEL_SOURCE_DIR "/tests/testdata/plugin-base.xml");
  PluginDir::Manager().FindAndLoadPlugins();
  close(descriptor);
  ASSERT_EQ(Lines{"good"}, ListedNames());
  EXPECT_EQ(path + "/good/good.properties.xml",
            PluginDir::Manager().GetPluginsContainer().front()->GetSpecificationPath());
  EXPECT_NE(nullptr, PluginDir::Schema().FindClass("Good_Thing"));
}

// ---- Registration

zelPluginInfo NoName(TCPluginCallbacks*) { return {"", "", "", 2, 0}; }
zelStatusCode Succeed(TCPluginCallbacks*) { return zelStatusOK; }

TEST(PluginManager, DropsRegistrationsThatNoLoadFinished) {
  const PluginDir plugins;
  zelPluginCallbacks table{nullptr, nullptr, nullptr, nullptr, NoName, Succeed};
  TCPluginCallbacks* plugin = nullptr;
  zelRegisterPlugin(&table, &plugin);
  EXPECT_TRUE(PluginDir::Manager().GetPluginsContainer().empty());
  plugins.Load("paper");
  EXPECT_EQ(Lines{"paper"}, ListedNames());
  IPlugin* record = nullptr;
  zelGetHandle(plugin, &record);
  EXPECT_EQ(nullptr, record);
  plugin->PrepareForUnload();
}

TEST(PluginManager, InitializesWhatIsPending) {
  TPluginManager::Initialize("/nowhere");
  zelPluginCallbacks table{nullptr, Succeed, nullptr, nullptr, NoName, nullptr};
  TCPluginCallbacks* first = nullptr;
  TCPluginCallbacks* second = nullptr;
  zelRegisterPlugin(&table, &first);
  zelRegisterPlugin(&table, &second);
  TPluginManager::GetInstance()->InitializeProviders("/some/path.pi.so");

  std::vector<IPlugin*> listed;
  for (const auto& plugin : TPluginManager::GetInstance()->GetPluginsContainer()) {
    listed.push_back(plugin.get());
    EXPECT_EQ("/some/path.pi.so", plugin->GetPath());
    EXPECT_TRUE(plugin->IsInitialized());
  }
  EXPECT_EQ((std::vector<IPlugin*>{first->GetPluginHandle(), second->GetPluginHandle()}), listed);
  TPluginManager::GetInstance()->InitializeProviders("/other/path.pi.so");
  EXPECT_EQ(2u, TPluginManager::GetInstance()->GetPluginsContainer().size());
}

TEST(PluginManager, TakesItsRecordsAlongWhenItEnds) {
  TPluginManager::Initialize("/nowhere");
  zelPluginCallbacks table{nullptr, Succeed, nullptr, nullptr, NoName, Succeed};
  TCPluginCallbacks* listed = nullptr;
  TCPluginCallbacks* pending = nullptr;
  zelRegisterPlugin(&table, &listed);
  TPluginManager::GetInstance()->InitializeProviders("/some/path.pi.so");
  zelRegisterPlugin(&table, &pending);
  delete TPluginManager::GetInstance();
  EXPECT_EQ(nullptr, listed->GetPluginHandle());
  EXPECT_EQ(nullptr, pending->GetPluginHandle());
  listed->PrepareForUnload();
  pending->PrepareForUnload();
}

TEST(PluginManager, SwallowsWhateverInitThrows) {
  struct {
    zelStatusCode (*init)(TCPluginCallbacks*);
    const char* reason;
  } const rows[] = {
      {[](TCPluginCallbacks*) -> zelStatusCode { throw 42; },                            "unknown exception"      },
      {[](TCPluginCallbacks*) -> zelStatusCode { throw std::runtime_error("no disk"); }, "no disk"                },
      {[](TCPluginCallbacks*) { return static_cast<zelStatusCode>(4711); },              "zelStatusEnd"           },
      {nullptr,                                                                          "zelStatusNotImplemented"},
  };
  TPluginManager::Initialize("/nowhere");
  for (const auto& row : rows) {
    RestartLog();
    zelPluginCallbacks table{nullptr, row.init, nullptr, nullptr, NoName, nullptr};
    TCPluginCallbacks* plugin = nullptr;
    zelRegisterPlugin(&table, &plugin);
    TPluginManager::GetInstance()->InitializeProviders("/some/path.pi.so");
    EXPECT_FALSE(TPluginManager::GetInstance()->GetPluginsContainer().back()->IsInitialized());
    EXPECT_EQ(Lines{std::string("Plugin /some/path.pi.so failed to initialize: ") + row.reason},
              LogLines());
  }
}

}  // namespace
