#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <vector>

#include "tests/frontend/Zel.h"
#include "tests/support/TempDir.h"

namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::MatchesRegex;
using testing::StartsWith;

TResult Collect(const TempDir& plugins, std::vector<std::string> more = {}) {
  std::vector<std::string> arguments = {"collect", "--plugin-dir", plugins.GetPath(), "--base",
                                        kBase};
  arguments.insert(arguments.end(), more.begin(), more.end());
  return Zel(arguments);
}

TEST(Zel, ExplainsItselfOnRequest) {
  const TResult help = Zel({"--help"});
  EXPECT_EQ(0, help.code);
  EXPECT_EQ("", help.err);
  for (const char* word :
       {"collect", "plugins", "help", "Exit codes: 0 done", "130 interrupted."}) {
    EXPECT_THAT(help.out, HasSubstr(word));
  }
  EXPECT_EQ(help.out, Zel({"help"}).out);

  const TResult collect = Zel({"help", "collect"});
  EXPECT_EQ(0, collect.code);
  EXPECT_EQ(collect.out, Zel({"collect", "--help"}).out);
  for (const char* word : {"Examples:", "--class", "--format", "--log", "--log-level",
                           "--plugin-dir", "--base", "--timeout"}) {
    EXPECT_THAT(collect.out, HasSubstr(word));
  }

  const TResult version = Zel({"--version"});
  EXPECT_EQ(0, version.code);
  EXPECT_THAT(version.out, MatchesRegex("zel [0-9]+\\.[0-9]+\\.[0-9]+\n"));
}

TEST(Zel, WritesItsManualPages) {
  const TResult program = Zel({"help", "--man"});
  EXPECT_EQ(0, program.code);
  EXPECT_THAT(program.out, StartsWith(".TH ZEL 1 "));
  EXPECT_THAT(program.out, HasSubstr(".SH NAME\nzel \\- collects a typed inventory"));

  const TResult page = Zel({"help", "--man", "plugins"});
  EXPECT_EQ(0, page.code);
  EXPECT_THAT(page.out, StartsWith(".TH ZEL\\-PLUGINS 1 "));
  EXPECT_THAT(page.out, HasSubstr("\n.TP\n\\fB\\-\\-plugin\\-dir\\fR \\fIDIR\\fR\n"));
  EXPECT_THAT(page.out, HasSubstr("\nzel plugins \\-\\-plugin\\-dir /opt/acme/plugins\n"));
  EXPECT_THAT(page.out, HasSubstr("\n.TP\n.B 130\ninterrupted\n"));
}

TEST(Zel, RefusesWrongArgumentsInOneLine) {
  const std::vector<std::vector<std::string>> rows = {
      {          },
      {               "colect"          },
      {      "collect",     "--fromat", "json"},
      {                  "collect", "--format", "yaml"},
      {        "collect",   "--class"},
      {"collect",   "--log-level", "loud"},
      {    "collect",           "--timeout", "0"},
      {            "help",        "nothing"},
      {                     "completion"},
      {        "completion",                 "tcsh"},
  };
  for (const auto& row : rows) {
    const TResult result = Zel(row);
    SCOPED_TRACE(testing::PrintToString(row));
    EXPECT_EQ(2, result.code);
    EXPECT_EQ("", result.out);
    EXPECT_THAT(result.err, MatchesRegex("zel: .*'zel .*help.*'.*\n"));
  }
}

TEST(Zel, SaysWhatIsWrongWithItsArgumentsAndWhereToReadOn) {
  struct {
    std::vector<std::string> arguments;
    const char* message;
  } const rows[] = {
      {{},                                           "name a command; 'zel help' lists them"                           },
      {{"shwo"},                                     "no command 'shwo'; did you mean show? 'zel help' lists them"     },
      {{"x\x1b[2J"},                                 "no command 'x\\x1B[2J'; 'zel help' lists them"                   },
      {{""},                                         "no command ''; 'zel help' lists them"                            },
      {{"help", "colect"},                           "no command 'colect'; did you mean collect? 'zel help' lists them"},
      {{"--versoin"},                                "no option '--versoin'; did you mean --version? see 'zel --help'" },
      {{"show", "--fromat=json"},
       "no option '--fromat'; did you mean --format? see 'zel show --help'"                                            },
      {{"show", "a.xml", "--x\x1b[2J"},              "no option '--x\\x1B[2J'; see 'zel show --help'"                  },
      {{"tree", "-z"},                               "no option '-z'; see 'zel tree --help'"                           },
      {{"diff"},                                     "OLD is required; see 'zel diff --help'"                          },
      {{"collect", "--format", "yaml"},
       "--format: 'yaml' is none of json|text; see 'zel collect --help'"                                               },
      {{"completion", "tcsh"},
       "SHELL: 'tcsh' is none of bash|fish|zsh; see 'zel completion --help'"                                           },
      {{"collect", "--timeout", "nan"},
       "--timeout: takes seconds, from 0.1 to 86400; see 'zel collect --help'"                                         },
      {{"collect", "--timeout", "0"},
       "--timeout: takes seconds, from 0.1 to 86400; see 'zel collect --help'"                                         },
      {{"collect", "--timeout", "86401"},
       "--timeout: takes seconds, from 0.1 to 86400; see 'zel collect --help'"                                         },
      {{"collect", "--timeout", "2s"},
       "--timeout: takes seconds, from 0.1 to 86400; see 'zel collect --help'"                                         },
      {{"collect", "--timeout", ""},
       "--timeout: takes seconds, from 0.1 to 86400; see 'zel collect --help'"                                         },
      {{"tree", "--depth"},                          "--depth needs a value: N; see 'zel tree --help'"                 },
      {{"collect", "--format"},                      "--format needs a value: json|text; see 'zel collect --help'"     },
      {{"plugins", "extra"},                         "unexpected argument 'extra'; see 'zel plugins --help'"           },
      {{"diff", "a.xml", "b.xml", "c.xml", "d.xml"},
       "unexpected argument 'c.xml'; see 'zel diff --help'"                                                            },
      {{"validate", "a.xml", "--limit", "-1"},
       "--limit: Value -1 not in range 0 to 4294967295; see 'zel validate --help'"                                     },
      {{"diff", "a.xml", ""},                        "NEW: the name is empty; see 'zel diff --help'"                   },
      {{"tree", ""},                                 "FILE: the name is empty; see 'zel tree --help'"                  },
      {{"show", ""},                                 "FILE: the name is empty; see 'zel show --help'"                  },
      {{"get", "", "A.B"},                           "FILE: the name is empty; see 'zel get --help'"                   },
      {{"report", ""},                               "FILE: the name is empty; see 'zel report --help'"                },
      {{"report", "a.xml", "--diff", ""},            "--diff: the name is empty; see 'zel report --help'"              },
  };
  for (const auto& row : rows) {
    const TResult result = Zel(row.arguments);
    EXPECT_EQ(2, result.code) << row.message;
    EXPECT_EQ("", result.out);
    EXPECT_EQ("zel: " + std::string(row.message) + "\n", result.err);
  }
}

TEST(Zel, ShowsWhatItWasGivenEscaped) {
  EXPECT_EQ(
      "zel: cannot read the plug-in directory '/x\\x1B[2J': No such file or directory; name "
      "another "
      "with --plugin-dir\n",
      Zel({"collect", "--plugin-dir", "/x\x1b[2J"}).err);
}

TEST(Collect, SaysWhichClassThereIsNot) {
  const TPluginDir plugins({"noisy"});
  for (const char* name : {"Fan", "a-b", ""}) {
    const TResult result = Collect(plugins, {"--class", name});
    EXPECT_EQ(2, result.code);
    EXPECT_EQ("zel: no class or section '" + std::string(name) + "'; 'zel schema' lists them\n",
              result.err);
  }
}

TEST(Collect, NeedsPluginsAndABaseSchema) {
  const TempDir empty;
  TResult result = Collect(empty);
  EXPECT_EQ(5, result.code);
  EXPECT_EQ("zel: no plug-ins in '" + empty.GetPath() +
                "': it needs <name>/lib<name>.pi.so; name another directory with --plugin-dir\n",
            result.err);

  result = Zel({"collect", "--plugin-dir", "/nowhere"});
  EXPECT_EQ(4, result.code);
  EXPECT_EQ(
      "zel: cannot read the plug-in directory '/nowhere': No such file or directory; name "
      "another with --plugin-dir\n",
      result.err);

  const TPluginDir plugins({"noisy"});
  result = Zel({"collect", "--plugin-dir", plugins.GetPath(), "--base", "/nowhere"});
  EXPECT_EQ(4, result.code);
  EXPECT_EQ(
      "zel: cannot read the base schema '/nowhere': No such file or directory; name another "
      "with --base\n",
      result.err);

  const std::string broken =
      plugins.WriteFile("broken.xml", "<CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\">\n<X/>");
  result = Zel({"collect", "--plugin-dir", plugins.GetPath(), "--base", broken});
  EXPECT_EQ(4, result.code);
  EXPECT_THAT(result.err, StartsWith("zel: cannot read the base schema '" + broken +
                                     "': CIM-XML Parser line 2:Unexpected element x; "));
}

TEST(Collect, PrintsEveryPropertyOfAClass) {
  const TPluginDir plugins({"noisy"});
  const TResult result = Collect(plugins, {"--class", "noisy_thing"});
  EXPECT_EQ(0, result.code);
  EXPECT_EQ("", result.err);
  const std::string missing = geteuid() == 0 ? "not available" : "needs root";
  EXPECT_EQ(
      "Noisy_Thing.Id=\"a<b>&\"c\"\"\n"
      "  Big          9007199254740993\n"
      "  Caption      not available\n"
      "  Description  not available\n"
      "  ElementName  not available\n"
      "  Id           a<b>&\"c\"\n"
      "  Nothing      not available\n"
      "  Secret       " +
          missing +
          "\n"
          "  Text         bell\\x07 and\\x0Aline\n"
          "\n",
      result.out);
}

TEST(Collect, PrintsOneValidJsonDocument) {
  const TPluginDir plugins({"noisy"});
  const TResult result = Collect(plugins, {"--format", "json"});
  EXPECT_EQ(0, result.code);
  const auto document = nlohmann::json::parse(result.out);
  EXPECT_EQ("zel-collection", document.at("format"));
  EXPECT_EQ(1, document.at("version"));
  EXPECT_EQ(false, document.at("partial"));
  EXPECT_EQ("noisy", document.at("plugins").at(0).at("name"));
  EXPECT_EQ("1.0", document.at("plugins").at(0).at("version"));
  const auto& instance = document.at("classes").at("Noisy_Thing").at(0);
  EXPECT_EQ("Noisy_Thing.Id=\"a<b>&\"c\"\"", instance.at("path"));
  const auto& properties = instance.at("properties");
  EXPECT_EQ("a<b>&\"c\"", properties.at("Id"));
  EXPECT_EQ("bell\a and\nline", properties.at("Text"));
  EXPECT_EQ("9007199254740993", properties.at("Big"));  // beyond 2^53
  EXPECT_TRUE(properties.at("Nothing").is_null());
}

TEST(Collect, TakesSuperclassesForTheirSubclasses) {
  const TPluginDir plugins({"noisy"});
  const TResult result = Collect(plugins, {"--class", "CIM_ManagedElement", "--format", "json"});
  EXPECT_EQ(0, result.code);
  EXPECT_EQ(1u, nlohmann::json::parse(result.out).at("classes").at("Noisy_Thing").size());
}

TEST(Collect, SurvivesWhatAPluginDoesToItsProcess) {
  const TPluginDir plugins({"aborts", "hangs", "leaves", "noisy"});
  const TResult result = Collect(plugins, {"--format", "json", "--timeout", "1"});
  EXPECT_EQ(3, result.code);
  EXPECT_EQ(
      "zel: plug-in aborts failed: was ended by signal 6 (Aborted); 'zel plugins' tells its "
      "state\n"
      "zel: plug-in hangs failed: did not answer within 1 s; 'zel plugins' tells its state\n"
      "zel: plug-in leaves failed: ended its process with status 0; 'zel plugins' tells its "
      "state\n",
      result.err);
  const auto document = nlohmann::json::parse(result.out);
  EXPECT_EQ(true, document.at("partial"));
  EXPECT_EQ(0u, document.at("classes").at("Aborts_Thing").size());
  EXPECT_EQ(1u, document.at("classes").at("Noisy_Thing").size());
}

TEST(Collect, WritesALog) {
  const TPluginDir plugins({"aborts", "noisy"});
  const std::string log = plugins.PathOf("zel.log");
  EXPECT_EQ(3, Collect(plugins, {"--log", log, "--log-level", "debug"}).code);
  const std::string text = ReadFile(log);
  EXPECT_THAT(text, StartsWith("-- VNT Log Opened ----------------------------\n"));
  EXPECT_THAT(text, HasSubstr("ZEL_Core: [Debug] Asking plugin noisy for Noisy_Thing\n"));
  EXPECT_THAT(text, HasSubstr("ZEL_Core: [Error] Plugin aborts was ended by signal 6 (Aborted)\n"));
  EXPECT_THAT(text, testing::EndsWith("-- VNT Log Closed ----------------------------\n"));

  const TResult refused = Collect(plugins, {"--log", "/nowhere/zel.log"});
  EXPECT_EQ(7, refused.code);
  EXPECT_EQ(
      "zel: cannot write the log file '/nowhere/zel.log': No such file or directory; name "
      "another with --log\n",
      refused.err);
}

TEST(Collect, NamesTheLineOfABrokenDocument) {
  const TPluginDir plugins({"noisy"});
  fs::create_directory(plugins.PathOf("torn"));
  fs::copy(fs::path(ZEL_TEST_PLUGINS) / "aborts" / "libaborts.pi.so",
           plugins.PathOf("torn/libtorn.pi.so"));
  plugins.WriteFile("torn/torn.properties.xml", "<CIM CIMVERSION=\"2.0\"\n DTDVERSION=\"9\"/>");
  const TResult result = Collect(plugins, {"--format", "json"});
  EXPECT_EQ(3, result.code);
  EXPECT_THAT(result.err, HasSubstr("plug-in aborts failed: CIM-XML Parser line 2:Unknown DTD "
                                    "version; "));
  const auto document = nlohmann::json::parse(result.out);
  EXPECT_EQ(1u, document.at("classes").at("Noisy_Thing").size());
}

TEST(Plugins, TellsStatePathAndClasses) {
  const TPluginDir plugins({"noisy"});
  plugins.WriteFile("text/libtext.pi.so", "not a library");
  const TResult result = Zel({"plugins", "--plugin-dir", plugins.GetPath(), "--base", kBase});
  EXPECT_EQ(3, result.code);
  EXPECT_THAT(result.out, HasSubstr("noisy 1.0\n"
                                    "  state    ready\n"
                                    "  path     " +
                                    plugins.PathOf("noisy/libnoisy.pi.so") +
                                    "\n"
                                    "  classes  Noisy_Thing\n"));
  EXPECT_THAT(result.out, HasSubstr("text -\n"
                                    "  state    not loaded\n"
                                    "  path     " +
                                    plugins.PathOf("text/libtext.pi.so") +
                                    "\n"
                                    "  reason   ERROR: Failed to load plugin.  Reason: "));
  EXPECT_EQ(
      0, Zel({"plugins", "--plugin-dir", TPluginDir({"noisy"}).GetPath(), "--base", kBase}).code);
}

TEST(Main, NoticesThatTheOutputIsLost) {
  std::ostringstream err;
  std::ostream full(nullptr);  // every write fails
  const char* argv[] = {"zel", "--version"};
  EXPECT_EQ(7, zel::Main(2, argv, {full, err}));
  EXPECT_EQ("zel: the output could not be written; is the disk full?\n", err.str());
}

}  // namespace
