#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <map>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "tests/frontend/ShowDocument.h"
#include "tests/support/Unprivileged.h"
#include "zelcore/TContainer.h"

namespace {

using document::Instance;
using document::OnBase;
using document::Set;
using document::SetReference;
using nlohmann::json;
using testing::HasSubstr;
using testing::StartsWith;

constexpr char kDiskTable[] =
    "Acme_Disk: 2 instances\n"
    "  Id  Model name          Size          Speed  Kind  Serial      Tags\n"
    "  d1  Größe \"1\"    2 Megabytes        100 MHz  Fast  needs root  a, b\n"
    "  d2  日本, \\x1Bx  8 Petabytes  not available  9     S2          not available\n"
    "\n";

constexpr char kCaseList[] =
    "Acme_Case.Id=\"c\"\n"
    "  Id    c\n"
    "  Heat  -5 °C\n"
    "  Lock  not available\n"
    "\n";

constexpr char kPlainTable[] =
    "Acme_Plain: 2 instances\n"
    "  Beta  Count  Alpha  Common\n"
    "  b1        7  same   x\n"
    "  b2       12  same   x\n"
    "\n";

constexpr char kHoldsList[] =
    "Acme_Holds.Case=\"Acme_Case.Id=\"c\"\",Disk=\"Acme_Disk.Id=\"d1\"\"\n"
    "  Case  Acme_Case.Id=\"c\"\n"
    "  Disk  Acme_Disk.Id=\"d1\"\n"
    "\n";

// `zel` on a terminal.
std::string OnTerminal(const std::vector<const char*>& arguments, zel::TTerminal terminal) {
  std::ostringstream out;
  std::ostringstream err;
  zel::Main(static_cast<int>(arguments.size()), arguments.data(), {out, err, terminal});
  EXPECT_EQ("", err.str());
  return out.str();
}

TEST(Show, SetsAClassAsATable) {
  const TShowFile file;
  const TResult result = file.Show({"Acme_Disk"});
  EXPECT_EQ(0, result.code);
  EXPECT_EQ("", result.err);
  EXPECT_EQ(kDiskTable, result.out);
  EXPECT_EQ(kDiskTable, file.Show({"acme_disk", "--format", "table"}).out);
}

TEST(Show, ListsTheOneInstanceOfAClass) {
  const TShowFile file;
  EXPECT_EQ(kCaseList, file.Show({"Acme_Case"}).out);
  EXPECT_EQ(
      "Acme_Case: 1 instance\n"
      "  Id   Heat\n"
      "  c   -5 °C\n"
      "\n",
      file.Show({"Acme_Case", "--format", "table"}).out);
}

TEST(Show, ListsWhatIsWantedAsAList) {
  EXPECT_EQ(
      "Acme_Disk.Id=\"d1\"\n"
      "  Id      d1\n"
      "  Model   Größe \"1\"\n"
      "  Size    2 Megabytes\n"
      "  Speed   100 MHz\n"
      "  Kind    Fast\n"
      "  Serial  needs root\n"
      "  Tags    a, b\n"
      "  Spare   not available\n"
      "\n"
      "Acme_Disk.Id=\"d2\"\n"
      "  Id      d2\n"
      "  Model   日本, \\x1Bx\n"
      "  Size    8 Petabytes\n"
      "  Speed   not available\n"
      "  Kind    9\n"
      "  Serial  S2\n"
      "  Tags    not available\n"
      "  Spare   not available\n"
      "\n",
      TShowFile().Show({"Acme_Disk", "--format", "list"}).out);
}

TEST(Show, PutsFirstWhatTellsInstancesApartWhereThereAreNoColumns) {
  EXPECT_EQ(kPlainTable, TShowFile().Show({"Acme_Plain"}).out);
}

TEST(Show, NamesWhatReferencesLeadToInTables) {
  const TempDir dir;
  const std::string file = dir.WriteFile(
      "a.xml",
      OnBase(document::ShowClasses() +
             Instance("Acme_Holds", SetReference("Disk", "Acme_Disk", "Id", "d1") +
                                        SetReference("Case", "Acme_Case", "Id", "lost")) +
             Instance("Acme_Holds", SetReference("Disk", "Acme_Disk", "Id", "d&#7;2") +
                                        SetReference("Case", "Acme_Case", "Id", "CASE 1"))));
  const auto show = [&](const std::vector<std::string>& more) {
    std::vector<std::string> arguments = {"show", "--base", kBase, file, "Acme_Holds"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return Zel(arguments).out;
  };
  EXPECT_EQ(
      "Acme_Holds: 2 instances\n"
      "  Case       Disk\n"
      "  CASE 1     Disk d\\x072\n"
      "  Case lost  Disk d1\n"
      "\n",
      show({}));
  EXPECT_THAT(show({"--where", "Case=case lost"}), StartsWith("Acme_Holds.Case="));
  for (const char* path : {"Acme_Case.Id=\"lost\"", "Acme_Disk.Id=\"d\\x072\""}) {
    EXPECT_THAT(show({"--raw"}), HasSubstr(path));
    EXPECT_THAT(show({"--format", "list"}), HasSubstr(path));
  }
  EXPECT_THAT(show({"--format", "csv", "--text"}), HasSubstr("\"Acme_Disk.Id=\"\"d1\"\"\""));
}

TEST(Show, TakesSectionsWithoutTheirLinks) {
  const TShowFile file;
  const std::string all = std::string(kCaseList) + kDiskTable + "Acme_Empty: no instances\n\n";
  EXPECT_EQ(all, file.Show({"Mass storage"}).out);
  EXPECT_EQ(all, file.Show({"massstorage"}).out);
  EXPECT_EQ(kHoldsList, file.Show({"Acme_Holds"}).out);
  EXPECT_EQ(all + kHoldsList, file.Show({"massstorage", "Acme_Holds"}).out);
}

TEST(Show, ShowsEverythingOnRequest) {
  const TShowFile file;
  EXPECT_EQ(
      "Acme_Plain: 2 instances\n"
      "  Alpha  Beta  Common  Count  Nothing\n"
      "  same   b1    x           7  not available\n"
      "  same   b2    x          12  not available\n"
      "\n",
      file.Show({"Acme_Plain", "--all"}).out);
  const std::string everything = file.Show({"--all"}).out;
  for (const char* part :
       {"Acme_Empty: no instances\n", "Acme_Holds.Case=", "  Note  ", "  Nothing\n",
        "KVRSG_CollectionRun.InstanceID=\"run\"\n", "\n  Lock  not available\n"}) {
    EXPECT_THAT(everything, HasSubstr(part));
  }
  const std::string tables = file.Show({"--format", "table"}).out;
  EXPECT_THAT(tables, HasSubstr("Acme_Case: 1 instance\n"));
  EXPECT_THAT(tables, HasSubstr(kPlainTable));
  for (const char* part : {"Acme_Holds", "Acme_Empty", "Nothing"}) {
    EXPECT_THAT(tables, testing::Not(HasSubstr(part)));
  }
}

TEST(Show, ShowsBareValuesOnRequest) {
  EXPECT_EQ(
      "Acme_Disk: 2 instances\n"
      "  Id              Size          Speed  Kind\n"
      "  d1           2097152            100     1\n"
      "  d2  9007199254740993  not available     9\n"
      "\n",
      TShowFile().Show({"Acme_Disk", "--raw", "--columns", "Id,size,SPEED,Kind"}).out);
}

TEST(Show, KeepsTheInstancesThatFulfilAllConditions) {
  const TShowFile file;
  // The keys of what two conditions leave.
  const auto found = [&](const std::string& first, const std::string& second) {
    std::vector<std::string> arguments = {"Acme_Disk", "Acme_Case", "--format",
                                          "json",      "--where",   first};
    if (!second.empty()) arguments.insert(arguments.end(), {"--where", second});
    std::string ids;
    const json document = json::parse(file.Show(arguments).out);
    for (const auto& cls : document.at("classes")) {
      for (const auto& instance : cls) ids += instance.at("properties").at("Id").get<std::string>();
    }
    return ids;
  };
  const struct {
    const char* first;
    const char* second;
    const char* ids;
  } rows[] = {
      {"Id=d1",             "",          "d1"},
      {"id=D2",             "",          "d2"},
      {"Kind=fast",         "",          "d1"},
      {"Kind=1",            "",          "d1"},
      {"Size=2097152",      "",          "d1"},
      {"Size=2 megabytes",  "",          "d1"},
      {"Speed=100 MHz",     "",          "d1"},
      {"Tags=b",            "",          "d1"}, // an element
      {"Tags=a, b",         "",          "d1"},
      {"Tags=",             "",          "d2"}, // NULL
      {"Serial=needs root", "",          "d1"},
      {"Note=a\nb",         "",          "d1"}, // as it is
      {"Note=a\\x0Ab",      "",          "d1"}, // as it is shown
      {"Heat=-5",           "",          "c" },
      {"Id=d1",             "Kind=Fast", "d1"},
      {"Id=d1",             "Kind=9",    ""  },
      {"Model=x=y",         "",          ""  },
  };
  for (const auto& row : rows) {
    EXPECT_EQ(row.ids, found(row.first, row.second)) << row.first << " " << row.second;
  }
  EXPECT_EQ(kCaseList, file.Show({"massstorage", "--where", "Heat=-5"}).out);
  const TResult nothing = file.Show({"Acme_Disk", "--where", "Id=d3"});
  EXPECT_EQ(0, nothing.code);
  EXPECT_EQ("", nothing.out);
  EXPECT_EQ("zel: no instances\n", nothing.err);
}

TEST(Show, SummarizesAndSaysFromWhen) {
  const TShowFile file;
  const TResult result = file.Show({});
  EXPECT_EQ(0, result.code);
  EXPECT_THAT(result.out, StartsWith("System\n  Name                    not available\n"));
  EXPECT_THAT(result.out, HasSubstr("\n1 plug-in, 4 classes, 6 instances in 57 ms\n"
                                    "Read from " +
                                    file.GetFile() + ", collected 2026-11-21 10:55:00 by ann\n"));
}

TEST(Show, SaysWhatIsPartialOrRedacted) {
  const TShowFile file(document::ShowRun(Set("IsPartial", "boolean", "true") +
                                         Set("IsRedacted", "boolean", "true")) +
                       document::PluginStatus("fan", "Acme_Fan", "it broke\xC2\x9B"));
  TResult result = file.Show({});
  EXPECT_EQ(3, result.code);
  EXPECT_THAT(result.out, HasSubstr(" by ann, in part, redacted\n"));
  EXPECT_EQ("zel: " + file.GetFile() + ": plug-in fan failed: it broke\\u009B\n", result.err);
  result = file.Show({"Acme_Case", "--format", "json"});
  EXPECT_EQ(3, result.code);
  const json document = json::parse(result.out);
  EXPECT_EQ(true, document.at("partial"));
  EXPECT_EQ(true, document.at("redacted"));
  EXPECT_EQ("it broke\xC2\x9B", document.at("plugins").at(1).at("error"));
}

TEST(Show, SaysWhichClassWasNotCollected) {
  const TShowFile file(document::RunOf("") +
                       document::PluginStatus("acme", "Acme_Empty", "it broke"));
  EXPECT_EQ("Acme_Empty: not collected\n\n", file.Show({"Acme_Empty"}).out);
}

TEST(Show, CountsTheClassesOfADocumentThatTellsOfNoMachine) {
  const TShowFile file("");
  const TResult result = file.Show({});
  EXPECT_EQ(0, result.code);
  EXPECT_EQ(file.GetFile() +
                ": 4 classes with instances\n"
                "  Class       Instances\n"
                "  Acme_Case           1\n"
                "  Acme_Disk           2\n"
                "  Acme_Holds          1\n"
                "  Acme_Plain          2\n",
            result.out);
  const std::string none = file.WriteFile("none.xml", OnBase(document::ShowClasses()));
  EXPECT_EQ(none + ": 0 classes with instances\n", Zel({"show", "--base", kBase, none}).out);
}

TEST(Show, WritesJson) {
  const TShowFile file;
  const std::string text = file.Show({"Acme_Disk", "Acme_Empty", "--format", "json"}).out;
  const std::string named = Zel({"--version"}).out;  // "zel 0.1.0\n"
  const std::string version = named.substr(4, named.size() - 5);
  EXPECT_EQ(
      "{\n"
      "  \"format\": \"zel-collection\",\n"
      "  \"version\": 1,\n"
      "  \"zel\": \"" +
          version +
          "\",\n"
          "  \"source\": \"" +
          file.GetFile() +
          "\",\n"
          "  \"start\": \"2026-11-21T10:55:00.000000+01:00\",\n"
          "  \"partial\": false,\n"
          "  \"redacted\": false,\n"
          "  \"plugins\": [\n"
          "    {\n"
          "      \"name\": \"acme\",\n"
          "      \"path\": \"\"\n"
          "    }\n"
          "  ],\n"
          "  \"classes\": {\n"
          "    \"Acme_Disk\": [\n"
          "      {\n"
          "        \"path\": \"Acme_Disk.Id=\\\"d1\\\"\",\n"
          "        \"properties\": {\n"
          "          \"Id\": \"d1\",\n"
          "          \"Kind\": 1,\n"
          "          \"Model\": \"Größe \\\"1\\\"\",\n"
          "          \"Note\": \"a\\nb\",\n"
          "          \"Serial\": null,\n"
          "          \"Size\": 2097152,\n"
          "          \"Spare\": null,\n"
          "          \"Speed\": 100,\n"
          "          \"Tags\": [\n"
          "            \"a\",\n"
          "            \"b\"\n"
          "          ]\n"
          "        }\n"
          "      },\n"
          "      {\n"
          "        \"path\": \"Acme_Disk.Id=\\\"d2\\\"\",\n"
          "        \"properties\": {\n"
          "          \"Id\": \"d2\",\n"
          "          \"Kind\": 9,\n"
          "          \"Model\": \"日本, \\u001bx\",\n"
          "          \"Note\": \"\",\n"
          "          \"Serial\": \"S2\",\n"
          "          \"Size\": \"9007199254740993\",\n"
          "          \"Spare\": null,\n"
          "          \"Speed\": null,\n"
          "          \"Tags\": null\n"
          "        }\n"
          "      }\n"
          "    ],\n"
          "    \"Acme_Empty\": []\n"
          "  }\n"
          "}\n",
      text);
}

TEST(Show, WritesTheTextsBesideTheValuesOfJson) {
  const json document = json::parse(
      TShowFile().Show({"Acme_Disk", "--format", "json", "--text", "--columns", "Kind,Speed"}).out);
  const json expected = json::parse(R"([
    {"path": "Acme_Disk.Id=\"d1\"",
     "properties": {"Kind": 1, "Speed": 100}, "text": {"Kind": "Fast", "Speed": "100 MHz"}},
    {"path": "Acme_Disk.Id=\"d2\"",
     "properties": {"Kind": 9, "Speed": null}, "text": {"Kind": "9", "Speed": "not available"}}])");
  EXPECT_EQ(expected, document.at("classes").at("Acme_Disk"));
}

TEST(Show, WritesAllClassesAsJson) {
  const json document = json::parse(TShowFile().Show({"--format", "json"}).out);
  for (const char* cls : {"Acme_Disk", "Acme_Empty", "Acme_Holds", "KVRSG_CollectionRun"}) {
    EXPECT_TRUE(document.at("classes").contains(cls)) << cls;
  }
}

TEST(Show, WritesCsv) {
  const TShowFile file;
  EXPECT_EQ(
      "Id,Kind,Model,Note,Serial,Size,Spare,Speed,Tags\r\n"
      "d1,1,\"Größe \"\"1\"\"\",\"a\nb\",,2097152,,100,\"a, b\"\r\n"
      "d2,9,\"日本, \x1Bx\",\"\",S2,9007199254740993,,,\r\n",
      file.Show({"Acme_Disk", "--format", "csv"}).out);
  EXPECT_EQ(
      "Kind,Size,Speed\r\n"
      "Fast,2 Megabytes,100 MHz\r\n",
      file.Show({"Acme_Disk", "--format", "csv", "--text", "--columns", "Kind,Size,Speed",
                 "--where", "Id=d1"})
          .out);
  EXPECT_EQ("Id\r\n", file.Show({"Acme_Empty", "--format", "csv"}).out);
}

TEST(Show, WritesADocumentThatCanBeReadAgain) {
  const TShowFile file;
  const TResult result = file.Show({"Acme_Disk", "--format", "xml"});
  EXPECT_EQ(0, result.code);
  const std::string copy = file.WriteFile("copy.xml", result.out);
  EXPECT_EQ("0d1d2", [&] {
    const TResult read = Zel({"get", copy, "Acme_Disk.Id"});
    std::string text = std::to_string(read.code);
    for (const char c : read.out) text += c == '\n' ? "" : std::string(1, c);
    return text;
  }());
}

TEST(Show, HidesWhatIsSensitive) {
  const TShowFile file;
  for (const char* format : {"table", "list", "json", "csv", "xml"}) {
    const TResult result = file.Show({"Acme_Disk", "--redact", "--format", format});
    EXPECT_EQ(0, result.code);
    EXPECT_THAT(result.out, HasSubstr("[redacted:")) << format;
    EXPECT_THAT(result.out, testing::Not(HasSubstr("S2"))) << format;
  }
  EXPECT_THAT(file.Show({"--redact"}).out, HasSubstr(", redacted\n"));
}

TEST(Show, RefusesWhatMakesNoSense) {
  const TShowFile file;
  const struct {
    std::vector<std::string> arguments;
    std::string message;
  } rows[] = {
      {{"Acme_Dsk"},
       "no class or section 'Acme_Dsk'; did you mean Acme_Disk? 'zel schema' lists them"                                 },
      {{"\x1B[2J"},                                     "no class or section '\\x1B[2J'; 'zel schema' lists them"        },
      {{"Acme_Case", "--columns", "Id,Hea"},
       "no property 'Hea' in Acme_Case; did you mean Heat? there are Heat, Id, Lock"                                     },
      {{"Acme_Case", "Acme_Empty", "--where", "Zzz=1"},
       "no property 'Zzz' in any of the classes; there are Heat, Id, Lock"                                               },
      {{"Acme_Case", "--where", "a-b=1"},
       "no property 'a-b' in Acme_Case; there are Heat, Id, Lock"                                                        },
      {{"Acme_Case", "--where", "Id"},                  "'Id' is no condition; --where takes PROPERTY=VALUE"             },
      {{"Acme_Case", "--where", "=x"},                  "'=x' is no condition; --where takes PROPERTY=VALUE"             },
      {{"--format", "csv"},                             "--format csv shows one class; name one, 'zel schema' lists them"},
      {{"Acme_Case", "Acme_Disk", "--format", "csv"},
       "--format csv shows one class; name one of Acme_Case, Acme_Disk"                                                  },
      {{"--format", "xml", "--where", "Id=c"},
       "--format xml shows whole classes; leave out --where and --columns"                                               },
      {{"--format", "xml", "--columns", "Id"},
       "--format xml shows whole classes; leave out --where and --columns"                                               },
      {{"--format", "yaml"},
       "--format: 'yaml' is none of csv|json|list|table|xml; see 'zel show --help'"                                      },
      {{"--raw", "--text"},                             "--raw excludes --text; see 'zel show --help'"                   },
  };
  for (const auto& row : rows) {
    const TResult result = file.Show(row.arguments);
    EXPECT_EQ(2, result.code) << row.message;
    EXPECT_EQ("zel: " + row.message + "\n", result.err);
    EXPECT_EQ("", result.out);
  }
}

TEST(Show, LeavesManyPropertiesToTheSchema) {
  std::string properties = document::Key("Id");
  for (int i = 0; i < 40; ++i) properties += document::Declare("P" + std::to_string(i), "string");
  const TempDir dir;
  const std::string file =
      dir.WriteFile("a.xml", OnBase(document::Class("Acme_Many", properties) +
                                    document::Class("Acme_More", "", "Acme_Many")));
  const auto refusal = [&](const std::vector<std::string>& names) {
    std::vector<std::string> arguments = {"show", "--base", kBase, file, "--where", "Zzz=1"};
    arguments.insert(arguments.end(), names.begin(), names.end());
    return Zel(arguments).err;
  };
  EXPECT_EQ("zel: no property 'Zzz' in Acme_More; 'zel schema Acme_More' lists them\n",
            refusal({"Acme_More"}));
  EXPECT_EQ("zel: no property 'Zzz' in any of the classes; 'zel schema CLASS' lists them\n",
            refusal({"Acme_Many"}));
}

TEST(Show, SaysWhyAFileCannotBeRead) {
  const TempDir dir;
  const std::string good = OnBase(document::ShowClasses());
  std::map<std::string, std::string> reasons = {
      {dir.PathOf("none.xml"),     "No such file or directory"},
      {dir.PathOf("none\x07.xml"), "No such file or directory"},
      {dir.GetPath(),              "it is no regular file"    },
      {dir.PathOf("fifo.xml"),     "it is no regular file"    },
      {dir.PathOf("fifo.gz.xml"),  "it is no regular file"    }
  };
  mkfifo(dir.PathOf("fifo.xml").c_str(), 0600);
  mkfifo(dir.PathOf("fifo.gz.xml").c_str(), 0600);
  reasons[dir.WriteFile("cut.xml", good.substr(0, good.size() - 40))] = "line ";
  reasons[dir.WriteFile("garbage.xml", std::string("\x01\x02\0garbage", 10))] = "line 1";
  reasons[dir.WriteFile("empty.xml", "")] = "': it is empty; ";
  reasons[dir.WriteFile("empty.xml.gz", "")] = "': it is empty; ";
  reasons[dir.WriteFile("garbage.xml.gz", "garbage")] = "': the path holds \".gz\", so ";
  reasons[dir.WriteFile("cut.xml.gz", Gzip(good).substr(0, 100))] =
      "': the gzip data are cut or damaged; ";
  reasons[dir.WriteFile("more.xml.gz", Gzip(good) + "more")] =
      "': the gzip data are cut or damaged; ";
  for (const auto& [path, reason] : reasons) {
    for (const char* format : {"list", "json", "csv", "xml"}) {
      const TResult result = Zel({"show", "--base", kBase, path, "Acme_Disk", "--format", format});
      EXPECT_EQ(4, result.code) << path;
      EXPECT_EQ("", result.out) << path;
      EXPECT_THAT(result.err, StartsWith("zel: cannot read '")) << path;
      EXPECT_THAT(result.err, HasSubstr(reason)) << path;
      EXPECT_EQ(1, std::count(result.err.begin(), result.err.end(), '\n')) << result.err;
      EXPECT_EQ(std::string::npos, result.err.find('\x07'));
    }
  }
  const std::string secret = dir.WriteFile("secret.xml", good);
  chmod(secret.c_str(), 0);
  const Unprivileged nobody;
  const TResult result = Zel({"show", secret});
  EXPECT_EQ(4, result.code);
  EXPECT_EQ(
      "zel: cannot read '" + secret + "': Permission denied; run zel as its owner, or as root\n",
      result.err);
}

TEST(Show, ReadsWhatIsCompressedWithoutBeingCalledSo) {
  const TShowFile file;
  const std::string text = ReadFile(file.GetFile());
  const std::string expected = file.Show({"Acme_Disk"}).out;
  const std::vector<std::string> fromInput = {"show", "--base", kBase, "-", "Acme_Disk"};
  for (const std::string& contents : {text, Gzip(text)}) {
    const TStandardInput input(contents);
    const TResult result = Zel(fromInput);
    EXPECT_EQ(0, result.code) << result.err;
    EXPECT_EQ(expected, result.out);
  }
  const std::string unnamed = file.WriteFile("packed.xml", Gzip(text));
  EXPECT_EQ(expected, Zel({"show", "--base", kBase, unnamed, "Acme_Disk"}).out);

  std::string damaged = Gzip(text);
  damaged[damaged.size() / 2] ^= 0x55;
  for (const std::string& contents : {Gzip(text).substr(0, 400), damaged}) {
    const TStandardInput input(contents);
    const TResult result = Zel(fromInput);
    EXPECT_EQ(4, result.code);
    EXPECT_EQ("", result.out);
    EXPECT_EQ(
        "zel: cannot read 'standard input': the gzip data are cut or damaged; 'zel validate' tells "
        "more\n",
        result.err);
  }
}

TEST(Show, FitsATerminal) {
  const TShowFile file;
  const std::vector<const char*> arguments = {
      "zel", "show", "--base", kBase.c_str(), file.GetFile().c_str(), "Acme_Disk"};
  EXPECT_EQ(
      "Acme_Disk: 2 instances\n"
      "  Id  Model name          Size          Speed  Kind\n"
      "  d1  Größe \"1\"    2 Megabytes        100 MHz  Fast\n"
      "  d2  日本, \\x1Bx  8 Petabytes  not available  9\n"
      "  (2 more columns in --format list)\n"
      "\n",
      OnTerminal(arguments, {false, 60}));
  EXPECT_THAT(OnTerminal(arguments, {true, 80}),
              StartsWith("\033[1mAcme_Disk: 2 instances\033[0m\n"
                         "  \033[4mId\033[0m  \033[4mModel name\033[0m "));
  EXPECT_THAT(OnTerminal(arguments, {true, 80}), HasSubstr("\033[2mneeds root\033[0m"));
}

TEST(Show, UsesColourInListsAndTheSummary) {
  const TShowFile file;
  const std::vector<const char*> arguments = {
      "zel", "show", "--base", kBase.c_str(), file.GetFile().c_str(), "Acme_Case"};
  EXPECT_EQ(
      "\033[1mAcme_Case.Id=\"c\"\033[0m\n"
      "  \033[2mId  \033[0m  c\n"
      "  \033[2mHeat\033[0m  -5 °C\n"
      "  \033[2mLock\033[0m  \033[2mnot available\033[0m\n"
      "\n",
      OnTerminal(arguments, {true, 80}));
  EXPECT_THAT(OnTerminal({arguments.begin(), arguments.end() - 1}, {true, 80}),
              StartsWith("\033[1mSystem\033[0m\n"
                         "  \033[2mName                  \033[0m  \033[2mnot available\033[0m\n"));
}

TEST(Show, CollectsThisMachineWithoutAFile) {
  const TPluginDir plugins({"noisy"});
  const TResult result = Zel({"show", "--base", kBase, "--plugin-dir", plugins.GetPath(),
                              "Noisy_Thing", "--columns", "Id,Big"});
  EXPECT_EQ(0, result.code);
  EXPECT_EQ(
      "Noisy_Thing.Id=\"a<b>&\"c\"\"\n"
      "  Id   a<b>&\"c\"\n"
      "  Big  9007199254740993\n"
      "\n",
      result.out);
}

}  // namespace
