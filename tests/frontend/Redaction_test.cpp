#include "frontend/Redaction.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <set>

#include "frontend/Inventory.h"
#include "tests/frontend/Document.h"
#include "tests/frontend/Zel.h"
#include "tests/support/TempDir.h"
#include "tests/xml/Description.h"
#include "zelcore/zelcore.h"

namespace {

namespace fs = std::filesystem;
using document::Class;
using document::Declare;
using document::Document;
using document::Instance;
using document::Key;
using document::Qualifier;
using document::Set;
using testing::HasSubstr;
using testing::Not;
using zel::Redact;
using zel::TInventory;

const zel::TRedactionKey kKey = {1, 2};
const std::string kSensitive = Qualifier("SENSITIVE");

std::string Hidden(const std::string& text) { return zel::RedactedText(text, kKey); }

TInventory ReadDocument(const std::string& parts) {
  const TempDir dir;
  return TInventory::Read(dir.WriteFile("document.xml", Document(parts)));
}

std::string DescriptionOf(const TInventory& inventory) {
  std::string text;
  for (const std::string& line : Description(inventory.GetContainer()).fLines) text += line + "\n";
  return text;
}

std::vector<TCIMInstance*> InstancesOf(const TInventory& inventory, const char* cls) {
  return inventory.GetContainer().GetClass(cls)->EnumerateInstances(false);
}

TCIMInstance& InstanceOf(const TInventory& inventory, const char* cls) {
  return *InstancesOf(inventory, cls).at(0);
}

bool IsSensitive(const TCIMPropertyDecl& decl) {
  const TCIMQualifier* qualifier = decl.FindQualifier("SENSITIVE");
  return qualifier && static_cast<bool>(qualifier->GetValue());
}

// What no output may hold: the sensitive texts and numbers that are not everybody's.
std::set<std::string> SecretsOf(const TInventory& inventory) {
  std::set<std::string> secrets;
  const auto add = [&](const TCIMValue& value) {
    if (value.IsNull()) return;
    const std::string text = value.ToString(10);
    if (text.size() >= 4 && text != "root") secrets.insert(text);
  };
  for (const TCIMInstance* instance :
       inventory.GetContainer().GetRootClass()->EnumerateInstances(true)) {
    for (const TCIMProperty* property : instance->EnumerateProperties()) {
      if (!IsSensitive(*property->GetDeclaration())) continue;
      const TCIMValue value = property->GetValue();
      if (value.IsNull() || !value.IsArray()) {
        add(value);
      } else {
        for (const TCIMValue& element : static_cast<std::vector<TCIMValue>&>(value)) add(element);
      }
    }
  }
  return secrets;
}

// How many references there are; each must lead somewhere.
std::size_t CountLinks(const TInventory& inventory) {
  std::size_t links = 0;
  for (const TCIMInstance* instance :
       inventory.GetContainer().GetRootClass()->EnumerateInstances(true)) {
    for (const TCIMProperty* property : instance->EnumerateProperties()) {
      const TCIMValue value = property->GetValue();
      if (!value.IsReference() || value.IsNull()) continue;
      ++links;
      EXPECT_NO_THROW(TCIMReference(value).GetCIMElement()) << value.ToString(10);
    }
  }
  return links;
}

std::vector<std::string> CollectFrom(const std::string& plugins,
                                     const std::vector<std::string>& more) {
  std::vector<std::string> arguments = {"collect", "--plugin-dir", plugins, "--base", kBase};
  arguments.insert(arguments.end(), more.begin(), more.end());
  return arguments;
}

// Collects with --redact in every form and looks for what the same collection told without.
void ExpectNothingTold(const std::string& plugins, int code) {
  const TempDir dir;
  const std::string open = dir.PathOf("open.xml");
  const std::string saved = dir.PathOf("saved.xml");
  ASSERT_EQ(code, Zel(CollectFrom(plugins, {"-o", open})).code);
  const TResult save = Zel(CollectFrom(plugins, {"--redact", "-o", saved}));
  const TInventory plain = TInventory::Read(open);
  const std::set<std::string> secrets = SecretsOf(plain);
  EXPECT_FALSE(secrets.empty());

  const std::string outputs[] = {
      ReadFile(saved),
      save.err,
      Zel(CollectFrom(plugins, {"--redact"})).out,
      Zel(CollectFrom(plugins, {"--redact", "--format", "json"})).out,
      Zel(CollectFrom(plugins, {"--redact", "--class", "CIM_ManagedElement"})).out,
      Zel(CollectFrom(plugins, {"--redact", "-o", "-"})).out,
  };
  for (const std::string& output : outputs) {
    EXPECT_NE("", output);
    for (const std::string& secret : secrets) {
      const std::size_t at = output.find(secret);
      EXPECT_EQ(std::string::npos, at)
          << secret << " in " << output.substr(at < 60 ? 0 : at - 60, 120);
    }
  }
  const TInventory redacted = TInventory::Read(saved);
  EXPECT_TRUE(redacted.IsRedacted());
  EXPECT_EQ(CountLinks(plain), CountLinks(redacted));
}

TEST(RedactedText, IsAKeyedHash) {
  // From the vectors that the authors of SipHash-2-4 publish: bytes 0, 1, 2 ... under the key of
  // bytes 0 to 15.
  const zel::TRedactionKey key = {0x0706050403020100, 0x0f0e0d0c0b0a0908};
  const std::string bytes("\0\1\2\3\4\5\6\7\10\11\12\13\14\15\16", 15);
  EXPECT_EQ("[redacted:726fdb47]", zel::RedactedText("", key));
  EXPECT_EQ("[redacted:ab0200f5]", zel::RedactedText(bytes.substr(0, 7), key));
  EXPECT_EQ("[redacted:93f5f579]", zel::RedactedText(bytes.substr(0, 8), key));
  EXPECT_EQ("[redacted:a129ca61]", zel::RedactedText(bytes, key));
  for (int i = 0; i < 100; ++i) {  // of which some hashes begin with 0
    EXPECT_EQ(std::string("[redacted:726fdb47]").size(), Hidden(std::to_string(i)).size());
  }
  EXPECT_NE(zel::RedactedText("web01", {1, 2}), zel::RedactedText("web01", {1, 3}));
  EXPECT_EQ(zel::ProcessKey(), zel::ProcessKey());
  EXPECT_NE((zel::TRedactionKey{0, 0}), zel::ProcessKey());
}

TEST(Redact, HidesATextWhereverItStandsAsWords) {
  struct TRow {
    const char* secret;
    std::string text;
    std::string expected;
  };
  const std::string web = Hidden("web1");
  const std::string longSecret(4096, 's');
  const TRow rows[] = {
      {"web1",             "web1",                  web                            },
      {"web1",             "on web1.",              "on " + web + "."              },
      {"web1",             "web1-web1",             web + "-" + web                },
      {"web1",             "/dev/web1/0",           "/dev/" + web + "/0"           },
      {"web1",             "web10 xweb1 web1_",     "web10 xweb1 web1_"            },
      {"web1",             "web1\xc3\xa4",          "web1\xc3\xa4"                 },
      {"web1",             "WEB1",                  "WEB1"                         },
      {"web1",             "",                      ""                             },
      {"web1",             "web",                   "web"                          },
      {"root",             "the root",              "the root"                     },
      {"root",             "root",                  Hidden("root")                 },
      {"0",                "0",                     Hidden("0")                    },
      {"0",                "0 of 0",                "0 of 0"                       },
      {"abc",              "an abc",                "an abc"                       },
      {"abc",              "abc",                   Hidden("abc")                  },
      {"two words",        "in two words",          "in " + Hidden("two words")    },
      {"two words",        "two wordsmiths",        "two wordsmiths"               },
      {"/dev/x",           "a/dev/x",               "a" + Hidden("/dev/x")         },
      {longSecret.c_str(), "a " + longSecret + ".", "a " + Hidden(longSecret) + "."},
      {"(x) y!",           "see (x) y!z",           "see " + Hidden("(x) y!") + "z"},
 // The longest of several: below, the document holds these secrets, too.
      {"web1",             "main.hub.port",         Hidden("main.hub") + ".port"   },
      {"web1",             "main.hubs",             Hidden("main") + ".hubs"       },
      {"web1",             "main.hub.portals",      Hidden("main.hub") + ".portals"},
      {"web1",             "main.hub.portal",       Hidden("main.hub.portal")      },
      {"main x",           "main.",                 Hidden("main") + "."           },
  };
  for (const TRow& row : rows) {
    SCOPED_TRACE(std::string(row.secret) + " in " + row.text);
    TInventory inventory = ReadDocument(
        Class("T_Box", Key("Id") + Declare("Secret", "string[]", kSensitive) +
                           Declare("Text", "string") + Declare("Texts", "string[]")) +
        Instance("T_Box", Set("Id", "1") +
                              Set("Secret", "string[]",
                                  std::string(row.secret) + "|main|main.hub|main.hub.portal") +
                              Set("Text", row.text) + Set("Texts", "string[]", row.text + "|x")));
    Redact({&inventory}, kKey);
    const TCIMInstance& box = InstanceOf(inventory, "T_Box");
    EXPECT_EQ(row.expected, zel::TextOf(box, "Text"));
    EXPECT_EQ("{ " + row.expected + ", x }", zel::TextOf(box, "Texts"));
    EXPECT_EQ("{ " + Hidden(row.secret) + ", " + Hidden("main") + ", " + Hidden("main.hub") + ", " +
                  Hidden("main.hub.portal") + " }",
              zel::TextOf(box, "Secret"));
  }
}

TEST(Redact, MakesOtherValuesNull) {
  const std::string secret = kSensitive;
  TInventory inventory = ReadDocument(
      Class("T_Box", Key("Id") + Declare("Number", "uint32", secret) +
                         Declare("Flag", "boolean", secret) + Declare("Time", "datetime", secret) +
                         Declare("Numbers", "uint8[]", secret) +
                         Declare("Empty", "string", secret) + Declare("None", "string", secret) +
                         Declare("Plain", "uint32", Qualifier("SENSITIVE", "boolean", "false"))) +
      Instance("T_Box", Set("Id", "1") + Set("Number", "uint32", "4711") +
                            Set("Flag", "boolean", "true") +
                            Set("Time", "datetime", "20040315142530.000000-300") +
                            Set("Numbers", "uint8[]", "1|2") + Set("Empty", "") +
                            Set("Plain", "uint32", "4711")));
  Redact({&inventory}, kKey);
  const TCIMInstance& box = InstanceOf(inventory, "T_Box");
  for (const char* name : {"Number", "Flag", "Time", "Numbers", "None"}) {
    EXPECT_TRUE(box.GetProperty(name)->GetValue().IsNull()) << name;
  }
  EXPECT_EQ("", zel::TextOf(box, "Empty", "NULL"));
  EXPECT_EQ("4711", zel::TextOf(box, "Plain"));
  EXPECT_EQ("1", zel::TextOf(box, "Id"));
}

TEST(Redact, KeepsTheSizesOfArrays) {
  const auto sized = [](const char* name, const char* type) {
    return "<PROPERTY.ARRAY NAME=\"" + std::string(name) + "\" TYPE=\"" + type +
           "\" ARRAYSIZE=\"4\"><VALUE.ARRAY><VALUE>1</VALUE></VALUE.ARRAY></PROPERTY.ARRAY>\n";
  };
  TInventory inventory = ReadDocument(
      Class("T_Box", Key("Id") + Declare("Numbers", "uint8[]", kSensitive) +
                         Declare("Texts", "string[]", kSensitive)) +
      Instance("T_Box", Set("Id", "1") + sized("Numbers", "uint8") + sized("Texts", "string")));
  Redact({&inventory}, kKey);
  for (const char* name : {"Numbers", "Texts"}) {
    const TCIMValue value = InstanceOf(inventory, "T_Box").GetProperty(name)->GetValue();
    EXPECT_EQ(4U, value.GetMaxArraySize()) << name;
  }
}

// Keys must have a value, one for each of them.
TEST(Redact, GivesOtherKeysAnotherValue) {
  for (const char* type : {"uint16", "sint16", "uint32", "sint32", "uint64", "sint64", "real64"}) {
    SCOPED_TRACE(type);
    std::string parts = Class("T_Box", Key("Id", type, kSensitive));
    for (const char* id : {"1", "2", "3"}) parts += Instance("T_Box", Set("Id", type, id));
    TInventory inventory = ReadDocument(parts);
    Redact({&inventory}, kKey);
    std::set<std::string> ids;
    for (const TCIMInstance* box : InstancesOf(inventory, "T_Box")) {
      ids.insert(zel::TextOf(*box, "Id"));
    }
    EXPECT_EQ(3u, ids.size());
    for (const char* id : {"1", "2", "3"}) EXPECT_EQ(0u, ids.count(id));
  }
  for (const auto& [type, value] :
       {std::pair("uint8", "7"), std::pair("sint8", "-7"), std::pair("boolean", "true"),
        std::pair("datetime", "20040315142530.000000-300")}) {
    SCOPED_TRACE(type);
    TInventory inventory = ReadDocument(Class("T_Box", Key("Id", type, kSensitive)) +
                                        Instance("T_Box", Set("Id", type, value)));
    Redact({&inventory}, kKey);
    EXPECT_NE(value, zel::TextOf(InstanceOf(inventory, "T_Box"), "Id"));
  }
}

std::string Link(const std::string& from, const std::string& to) {
  return Instance("T_Link", document::SetReference("From", "T_Box", "Id", from) +
                                document::SetReference("To", "T_Box", "Id", to));
}

const std::string kBoxes = Class("T_Box", Key("Id", "string", kSensitive)) +
                           document::Association("T_Link", "From", "T_Box", "To", "T_Box");

TEST(Redact, KeepsReferencesTogetherWithTheirTargets) {
  TInventory inventory =
      ReadDocument(kBoxes + Instance("T_Box", Set("Id", "left")) +
                   Instance("T_Box", Set("Id", "right")) + Link("left", "right"));
  const TCIMInstance* left = InstancesOf(inventory, "T_Box").at(0);
  const zel::TReplacedInstances replaced = Redact({&inventory}, kKey);
  ASSERT_EQ(1u, replaced.count(left));
  const TCIMInstance& now = *replaced.at(left);
  EXPECT_EQ("T_Box.Id=\"" + Hidden("left") + "\"", now.BuildPath().GetPath());
  const std::vector<TCIMInstance*> others = now.Associators("", "", "", "");
  ASSERT_EQ(1u, others.size());
  EXPECT_EQ(Hidden("right"), zel::TextOf(*others.front(), "Id"));
  EXPECT_EQ(2u, CountLinks(inventory));

  const TempDir dir;
  std::ofstream out(dir.PathOf("saved.xml"));
  TCIMXMLWriter(out).WriteContainer(inventory.GetContainer());
  out.close();
  EXPECT_EQ(2u, CountLinks(TInventory::Read(dir.PathOf("saved.xml"))));
}

TEST(Redact, KeepsReferencesThatAreSensitiveKeys) {
  TInventory inventory = ReadDocument(
      Class("T_Box", Key("Id", "string", kSensitive)) +
      Class("T_Label", Qualifier("ASSOCIATION") +
                           "<PROPERTY.REFERENCE NAME=\"Of\" REFERENCECLASS=\"T_Box\">" +
                           Qualifier("KEY") + kSensitive + "</PROPERTY.REFERENCE>") +
      Instance("T_Box", Set("Id", "left")) +
      Instance("T_Label", document::SetReference("Of", "T_Box", "Id", "left")));
  Redact({&inventory}, kKey);
  EXPECT_EQ(1u, CountLinks(inventory));
  EXPECT_THAT(DescriptionOf(inventory), Not(HasSubstr("left")));
}

TEST(Redact, HidesNumbersThatAreKeysInReferencesToo) {
  TInventory inventory =
      ReadDocument(Class("T_Box", Key("Id", "uint32", kSensitive)) +
                   document::Association("T_Link", "From", "T_Box", "To", "T_Box") +
                   Instance("T_Box", Set("Id", "uint32", "471147")) + Link("471147", "471147"));
  Redact({&inventory}, kKey);
  EXPECT_EQ(2u, CountLinks(inventory));
  EXPECT_THAT(DescriptionOf(inventory), Not(HasSubstr("471147")));
}

TEST(Redact, TakesASensitiveOfAnotherTypeForNone) {
  std::string text = Document(
      Class("T_Box", Key("Id") + Declare("Name", "string", Qualifier("SENSITIVE", "string", "x"))) +
      Instance("T_Box", Set("Id", "1") + Set("Name", "web1")));
  const std::string declared = "NAME=\"SENSITIVE\" TYPE=\"";
  text.replace(text.find(declared) + declared.size(), std::string("boolean").size(), "string");
  const TempDir dir;
  TInventory inventory = TInventory::Read(dir.WriteFile("document.xml", text));
  Redact({&inventory}, kKey);
  EXPECT_EQ("web1", zel::TextOf(InstanceOf(inventory, "T_Box"), "Name"));
}

TEST(Redact, HidesWhatOnlyAReferenceTells) {
  TInventory inventory = ReadDocument(
      kBoxes + Class("T_Note", Key("Id") + Declare("Text", "string")) + Link("gone1", "gone2") +
      Instance("T_Note", Set("Id", "1") + Set("Text", "ask gone2")));
  Redact({&inventory}, kKey);
  EXPECT_THAT(DescriptionOf(inventory), Not(HasSubstr("gone")));
  EXPECT_EQ("ask " + Hidden("gone2"), zel::TextOf(InstanceOf(inventory, "T_Note"), "Text"));
}

TEST(Redact, LeavesAloneWhatIsNoSecret) {
  const std::string parts =
      Class("T_Box", Key("Id") + Declare("DateTimeOfCollection", "datetime") +
                         Declare("Default", "string", kSensitive + "<VALUE>usual</VALUE>") +
                         Declare("Text", "string", "<QUALIFIER NAME=\"SENSITIVE\"/>") +
                         Declare("Numbers", "sint64[]")) +
      Instance("T_Box", Set("Id", "1") + Set("Text", "as usual") +
                            Set("DateTimeOfCollection", "datetime", "20040315142530.000000-300") +
                            Set("Numbers", "sint64[]", "-1|2")) +
      Instance("T_Box", Set("Id", "2") + Set("Text", "one") +
                            "<PROPERTY NAME=\"DateTimeOfCollection\" TYPE=\"datetime\"/>") +
      Instance("T_Box", Set("Id", "2") + Set("Text", "two") +
                            "<PROPERTY NAME=\"DateTimeOfCollection\" TYPE=\"datetime\"/>");
  TInventory inventory = ReadDocument(parts);
  const std::string before = DescriptionOf(inventory);
  Redact({&inventory}, kKey);
  EXPECT_EQ(before, DescriptionOf(inventory));
  EXPECT_TRUE(inventory.IsRedacted());
}

TEST(Redact, HidesInAllWhatOneTells) {
  const std::string cls =
      Class("T_Box", Key("Id") + Declare("Name", "string", kSensitive) + Declare("Text", "string"));
  TInventory before = ReadDocument(
      cls + Instance("T_Box", Set("Id", "1") + Set("Name", "web1") + Set("Text", "web2")));
  TInventory after = ReadDocument(
      cls + Instance("T_Box", Set("Id", "1") + Set("Name", "web2") + Set("Text", "web1")));
  Redact({&before, &after}, kKey);
  EXPECT_EQ(Hidden("web2"), zel::TextOf(InstanceOf(before, "T_Box"), "Text"));
  EXPECT_EQ(Hidden("web2"), zel::TextOf(InstanceOf(after, "T_Box"), "Name"));
  EXPECT_EQ(Hidden("web1"), zel::TextOf(InstanceOf(after, "T_Box"), "Text"));
}

TEST(Redact, MarksTheRunAndTheTitle) {
  const std::string box =
      Class("T_Box", Key("Name", "string", kSensitive)) + Instance("T_Box", Set("Name", "web1"));
  const TempDir dir;
  const std::string path = dir.WriteFile(
      "web1-20261121.xml",
      Document(document::RunClasses() + document::RunOf(Set("IsRedacted", "boolean", "false")) +
               document::PluginStatus("p", "T_Box", "web1 is away") + box));
  TInventory inventory = TInventory::Read(path);
  EXPECT_FALSE(inventory.IsRedacted());
  Redact({&inventory}, kKey);
  EXPECT_TRUE(inventory.IsRedacted());
  EXPECT_TRUE(zel::FlagOf(*inventory.GetRun(), "IsRedacted"));
  EXPECT_EQ(dir.PathOf(Hidden("web1") + "-20261121.xml"), inventory.GetTitle());
  ASSERT_EQ(1u, inventory.GetStatuses().size());
  EXPECT_EQ(Hidden("web1") + " is away", zel::TextOf(*inventory.GetStatuses()[0], "Message"));
  EXPECT_FALSE(inventory.WasCollected(*inventory.GetContainer().GetClass("T_Box")));

  // Documents of others have no run, or one that cannot tell.
  TInventory other = ReadDocument(box);
  Redact({&other}, kKey);
  EXPECT_TRUE(other.IsRedacted());
  TInventory odd = ReadDocument(
      Class("KVRSG_CollectionRun", Key("InstanceID") + Declare("IsRedacted", "string")) +
      document::RunOf("") + box);
  Redact({&odd}, kKey);
  EXPECT_TRUE(odd.IsRedacted());
  EXPECT_EQ("", zel::TextOf(*odd.GetRun(), "IsRedacted"));
}

TEST(Redact, ChangesNothingMoreInWhatIsRedacted) {
  TInventory inventory = ReadDocument(document::RunClasses() + document::RunOf("") + kBoxes +
                                      Instance("T_Box", Set("Id", "left")) + Link("left", "left"));
  Redact({&inventory}, kKey);
  const std::string once = DescriptionOf(inventory);
  EXPECT_THAT(once, Not(HasSubstr("left")));
  EXPECT_TRUE(Redact({&inventory}, {3, 4}).empty());
  EXPECT_EQ(once, DescriptionOf(inventory));

  // Nor in one that does not say that it is.
  TInventory unmarked = ReadDocument(kBoxes + Instance("T_Box", Set("Id", Hidden("left"))));
  const std::string before = DescriptionOf(unmarked);
  Redact({&unmarked}, {3, 4});
  EXPECT_EQ(before, DescriptionOf(unmarked));
}

TEST(Redaction, TellsNothingOfACapturedMachine) {
  for (const char* machine : {"x86-server", "qemu-q35", "container"}) {
    SCOPED_TRACE(machine);
    setenv("ZEL_SYSROOT",
           (ZEL_SOURCE_DIR "/tests/testdata/machines/" + std::string(machine)).c_str(), 1);
    ExpectNothingTold(ZEL_BINARY_DIR "/plugins", 0);
  }
}

TEST(Redaction, TellsNothingOfAPluginsKeysAndMessages) {
  const TempDir plugins;
  fs::copy(fs::path(ZEL_TEST_PLUGINS) / "secrets", plugins.PathOf("secrets"));
  ExpectNothingTold(plugins.GetPath(), 3);

  const TResult result =
      Zel(CollectFrom(plugins.GetPath(), {"--redact", "--class", "Secret_Host"}));
  const auto hidden = [](const char* text) { return zel::RedactedText(text, zel::ProcessKey()); };
  const std::string host = hidden("web-prod-01");
  EXPECT_EQ(0, result.code);
  EXPECT_THAT(result.out, HasSubstr("Secret_Host.Name=\"" + host + "\"\n"));
  EXPECT_THAT(result.out, HasSubstr("  Owners       " + hidden("Ada Lovelace") + ", " +
                                    hidden("grace.hopper") + "\n"));
  EXPECT_THAT(result.out, HasSubstr("  Text         mail for " + host + ", ab, above\n"));
  EXPECT_THAT(result.out, HasSubstr("  Same         " + hidden("ab") + "\n"));
  EXPECT_THAT(result.out, Not(HasSubstr("409555123456")));

  for (const bool isRedacted : {false, true}) {
    std::vector<std::string> arguments = {"--format", "json"};
    if (isRedacted) arguments.push_back("--redact");
    const TResult document = Zel(CollectFrom(plugins.GetPath(), arguments));
    EXPECT_EQ(isRedacted, nlohmann::json::parse(document.out).at("redacted"));
  }
}

}  // namespace
