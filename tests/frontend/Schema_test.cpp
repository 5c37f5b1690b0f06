#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "frontend/Schema.h"
#include "tests/frontend/Zel.h"
#include "tests/support/TempDir.h"
#include "zelcore/zel.h"

namespace {

using nlohmann::json;
using testing::HasSubstr;
using testing::StartsWith;

std::string Qualifier(const std::string& name, const std::string& value) {
  return "<QUALIFIER NAME=\"" + name + "\"><VALUE>" + value + "</VALUE></QUALIFIER>";
}

std::string ArrayQualifier(const std::string& name, const std::vector<std::string>& values) {
  std::string text = "<QUALIFIER NAME=\"" + name + "\"><VALUE.ARRAY>";
  for (const std::string& value : values) text += "<VALUE>" + value + "</VALUE>";
  return text + "</VALUE.ARRAY></QUALIFIER>";
}

std::string Class(const std::string& name, const std::string& super, const std::string& contents) {
  return "<VALUE.OBJECT><CLASS NAME=\"" + name + "\" SUPERCLASS=\"" + super + "\">" + contents +
         "</CLASS></VALUE.OBJECT>\n";
}

// A plug-in's document: an abstract class, one below it, and an association between the two.
const std::string kDocument =
    "<CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\"><DECLARATION><DECLGROUP>\n" +
    Class("Acme_Device", "CIM_ManagedElement",
          Qualifier("ABSTRACT", "true") + Qualifier("DESCRIPTION", "A device.") +
              "<PROPERTY NAME=\"Id\" TYPE=\"string\">" + Qualifier("KEY", "true") +
              Qualifier("SENSITIVE", "true") + "</PROPERTY>") +
    Class("Acme_Fan", "Acme_Device",
          Qualifier("SECTION", "Cooling") + Qualifier("PLUGINNAME", "acme") +
              Qualifier("DESCRIPTION", "A fan at 1.5 V | turns. It cools.\nSince 2.0.") +
              "<PROPERTY NAME=\"Speed\" TYPE=\"uint32\">" +
              Qualifier("DESCRIPTION", "How fast it *turns*.\nMay stand.") +
              Qualifier("DISPLAYNAME", "Now") + Qualifier("UNITS", "Revolutions per Minute") +
              Qualifier("VOLATILE", "true") + Qualifier("NEEDSROOT", "true") +
              ArrayQualifier("MAPPINGSTRINGS", {"/sys/fan", "BMC|5"}) + "</PROPERTY>" +
              "<PROPERTY NAME=\"Kind\" TYPE=\"uint8\">" +
              ArrayQualifier("VALUEMAP", {"1", "0x10..", "3"}) +
              ArrayQualifier("VALUES", {"Axial", "Other"}) + "</PROPERTY>" +
              "<PROPERTY NAME=\"Counted\" TYPE=\"uint8\">" +
              ArrayQualifier("VALUES", {"None", "One"}) + "</PROPERTY>" +
              "<PROPERTY.ARRAY NAME=\"Any\" TYPE=\"uint8\"/>" +
              "<PROPERTY.ARRAY NAME=\"Two\" TYPE=\"string\" ARRAYSIZE=\"2\"/>") +
    Class("Acme_Cools", "CIM_Dependency",
          Qualifier("ASSOCIATION", "true") +
              "<PROPERTY.REFERENCE NAME=\"Fan\" "
              "REFERENCECLASS=\"Acme_Fan\">" +
              Qualifier("KEY", "true") + "</PROPERTY.REFERENCE>") +
    "</DECLGROUP></DECLARATION></CIM>\n";

class Schema : public testing::Test {
 protected:
  TResult Ask(std::vector<std::string> more) const {
    more.insert(more.begin(), {"schema", fFile});
    more.insert(more.end(), {"--base", kBase});
    return Zel(more);
  }
  std::string Tell(const std::vector<std::string>& more) const {
    const TResult result = Ask(more);
    EXPECT_EQ(0, result.code);
    EXPECT_EQ("", result.err);
    return result.out;
  }

  const TempDir fDir;
  const std::string fFile = fDir.WriteFile("acme.properties.xml", kDocument);
};

TEST_F(Schema, ListsTheClassesOfADocumentBySection) {
  const std::string list = Tell({});
  EXPECT_THAT(list, HasSubstr("Cooling\n"
                              "  Class     Superclass   Kind  Plug-in  Description\n"
                              "  Acme_Fan  Acme_Device        acme     A fan at 1.5 V | turns.\n"
                              "\n"));
  EXPECT_THAT(list, HasSubstr("\n  Acme_Cools  CIM_Dependency  association\n"));
  EXPECT_LT(list.find("  Acme_Cools "), list.find("\nBase classes\n"));
  EXPECT_LT(list.find("\nBase classes\n"), list.find("\n  Acme_Device "));
}

TEST_F(Schema, ReadsStandardInputAfterTheBaseSchema) {
  const TStandardInput input(Gzip(kDocument));
  const TResult result = Zel({"schema", "-", "--base", kBase});
  EXPECT_EQ(0, result.code) << result.err;
  EXPECT_EQ(Tell({}), result.out);
}

TEST_F(Schema, TellsAllOfAClass) {
  EXPECT_EQ(
      "Acme_Fan\n"
      "  A fan at 1.5 V | turns. It cools.\n"
      "  Since 2.0.\n"
      "  Section         Cooling\n"
      "  Plug-in         acme\n"
      "  Superclasses    Acme_Device, CIM_ManagedElement\n"
      "  Keys            Id\n"
      "\n"
      "  Any: uint8[]\n"
      "\n"
      "  Caption: string\n"
      "    A line about the object.\n"
      "    Inherited from  CIM_ManagedElement\n"
      "\n"
      "  Counted: uint8\n"
      "    Values          0 = None\n"
      "                    1 = One\n"
      "\n"
      "  Description: string\n"
      "    A text about the object.\n"
      "    Inherited from  CIM_ManagedElement\n"
      "\n"
      "  ElementName: string\n"
      "    The name by which people know the object.\n"
      "    Inherited from  CIM_ManagedElement\n"
      "\n"
      "  Id: string\n"
      "    Flags           key, sensitive\n"
      "    Inherited from  Acme_Device\n"
      "\n"
      "  Kind: uint8\n"
      "    Values          1 = Axial\n"
      "                    0x10.. = Other\n"
      "                    3 = \n"
      "\n"
      "  Speed: uint32\n"
      "    How fast it *turns*.\n"
      "    May stand.\n"
      "    Shown as        Now\n"
      "    Flags           volatile, needs root\n"
      "    Units           Revolutions per Minute\n"
      "    Source          /sys/fan\n"
      "                    BMC|5\n"
      "\n"
      "  Two: string[2]\n",
      Tell({"ACME_FAN"}));
  EXPECT_THAT(Tell({"Acme_Device"}), StartsWith("Acme_Device\n"
                                                "  A device.\n"
                                                "  Kind            abstract\n"
                                                "  Section         Base classes\n"
                                                "  Superclasses    CIM_ManagedElement\n"
                                                "  Subclasses      Acme_Fan\n"
                                                "  Keys            Id\n"));
  EXPECT_THAT(Tell({"Acme_Cools"}),
              HasSubstr("\n  Fan: reference to Acme_Fan\n    Flags           key\n"));
}

TEST_F(Schema, TellsAllClassesOfASection) {
  EXPECT_THAT(Tell({"cooling"}), StartsWith("Acme_Fan\n"));
  EXPECT_THAT(Tell({"baseclasses"}), StartsWith("Acme_Device\n"));
  EXPECT_THAT(Tell({"base classes"}), HasSubstr("\n\nCIM_System\n"));
  // In the order of the sections, each once.
  const std::string both = Tell({"Acme_Device", "Cooling", "Acme_Fan"});
  EXPECT_THAT(both, StartsWith("Acme_Fan\n"));
  EXPECT_EQ(both.find("Acme_Fan\n", 1), both.find("Acme_Fan\n  Keys"));
  EXPECT_THAT(both, HasSubstr("\n\nAcme_Device\n"));
}

TEST_F(Schema, WritesAPageOfMarkdown) {
  EXPECT_EQ(
      "# Classes\n"
      "\n"
      "## Cooling\n"
      "\n"
      "### Acme\\_Fan\n"
      "\n"
      "A fan at 1.5 V \\| turns. It cools. Since 2.0.\n"
      "\n"
      "- Plug-in: acme\n"
      "- Superclasses: `Acme_Device`, `CIM_ManagedElement`\n"
      "- Keys: `Id`\n"
      "\n"
      "| Property | Type | Units | Flags | About |\n"
      "|---|---|---|---|---|\n"
      "| `Any` | uint8\\[\\] |  |  |  |\n"
      "| `Caption` | string |  |  | A line about the object.<br>From `CIM_ManagedElement` |\n"
      "| `Counted` | uint8 |  |  | Values: 0 = None, 1 = One |\n"
      "| `Description` | string |  |  | A text about the object.<br>From `CIM_ManagedElement` |\n"
      "| `ElementName` | string |  |  | The name by which people know the object.<br>From "
      "`CIM_ManagedElement` |\n"
      "| `Id` | string |  | key, sensitive | From `Acme_Device` |\n"
      "| `Kind` | uint8 |  |  | Values: 1 = Axial, 0x10.. = Other, 3 =  |\n"
      "| `Speed` | uint32 | Revolutions per Minute | volatile, needs root | How fast it "
      "\\*turns\\*. May stand.<br>Source: /sys/fan; BMC\\|5 |\n"
      "| `Two` | string\\[2\\] |  |  |  |\n",
      Tell({"Acme_Fan", "--format", "md"}));
  const std::string all = Tell({"--format", "md"});
  EXPECT_THAT(all, StartsWith("# Classes\n\n## "));
  EXPECT_THAT(all, HasSubstr("\n## Base classes\n"));
  EXPECT_THAT(all, HasSubstr("\n- Kind: abstract association\n"));
}

TEST_F(Schema, PrintsOneValidJsonDocument) {
  const json document = json::parse(Tell({"Acme_Fan", "--format", "json"}));
  EXPECT_EQ("zel-schema", document.at("format"));
  EXPECT_EQ(1, document.at("version"));
  EXPECT_EQ(ZEL_VERSION, document.at("zel"));
  EXPECT_EQ(fFile, document.at("source"));
  ASSERT_EQ(1u, document.at("classes").size());
  json fan = document.at("classes").at(0);
  const json properties = fan.at("properties");
  fan.erase("properties");
  EXPECT_EQ((json{
                {"name",         "Acme_Fan"                                     },
                {"description",  "A fan at 1.5 V | turns. It cools.\nSince 2.0."},
                {"section",      "Cooling"                                      },
                {"plugin",       "acme"                                         },
                {"abstract",     false                                          },
                {"association",  false                                          },
                {"superclasses", {"Acme_Device", "CIM_ManagedElement"}          },
                {"subclasses",   json::array()                                  },
                {"keys",         {"Id"}                                         }
  }),
            fan);
  ASSERT_EQ(9u, properties.size());
  EXPECT_EQ((json{
                {"name",            "Speed"                           },
                {"type",            "uint32"                          },
                {"array",           false                             },
                {"arraySize",       0                                 },
                {"referencedClass", nullptr                           },
                {"key",             false                             },
                {"displayName",     "Now"                             },
                {"description",     "How fast it *turns*.\nMay stand."},
                {"units",           "Revolutions per Minute"          },
                {"values",          json::array()                     },
                {"sources",         {"/sys/fan", "BMC|5"}             },
                {"volatile",        true                              },
                {"sensitive",       false                             },
                {"needsRoot",       true                              },
                {"inheritedFrom",   nullptr                           }
  }),
            properties.at(7));
  EXPECT_EQ((json{
                {{"code", "1"},      {"text", "Axial"}},
                {{"code", "0x10.."}, {"text", "Other"}},
                {{"code", "3"},      {"text", ""}     }
  }),
            properties.at(6).at("values"));
  EXPECT_EQ("Acme_Device", properties.at(5).at("inheritedFrom"));
  EXPECT_EQ(true, properties.at(5).at("key"));
  EXPECT_EQ(2, properties.at(8).at("arraySize"));

  const json cools = json::parse(Tell({"Acme_Cools", "--format", "json"})).at("classes").at(0);
  EXPECT_EQ(true, cools.at("association"));
  EXPECT_TRUE(cools.at("description").is_null());  // its superclass's is not its own
  EXPECT_TRUE(cools.at("plugin").is_null());
}

TEST_F(Schema, HelpsWithNamesThatAreNearlyRight) {
  struct {
    const char* name;
    const char* message;
  } const rows[] = {
      {"Acme_Fann", "'Acme_Fann'; did you mean Acme_Fan? 'zel schema' lists them\n"},
      {"acme",
       "'acme'; did you mean Acme_Cools, Acme_Device, Acme_Fan? 'zel schema' lists "
       "them\n"                                                                    },
      {"Cooking",   "'Cooking'; did you mean Cooling? 'zel schema' lists them\n"   },
      {"xyz",       "'xyz'; 'zel schema' lists them\n"                             },
      {"",          "''; 'zel schema' lists them\n"                                },
      {"a\x1b-b",   "'a\\x1B-b'; 'zel schema' lists them\n"                        },
  };
  for (const auto& row : rows) {
    const TResult result = Ask({"Acme_Fan", row.name});
    EXPECT_EQ(2, result.code);
    EXPECT_EQ("", result.out);
    EXPECT_EQ("zel: no class or section " + std::string(row.message), result.err);
  }
}

TEST_F(Schema, DescribesWhatIsInstalledWithoutRunningIt) {
  // This plug-in would end its process.
  const TPluginDir plugins({"aborts", "noisy"});
  const auto ask = [&](std::vector<std::string> more) {
    more.insert(more.begin(), {"schema", "--plugin-dir", plugins.GetPath(), "--base", kBase});
    const TResult result = Zel(more);
    EXPECT_EQ(0, result.code);
    EXPECT_EQ("", result.err);
    return result.out;
  };
  const std::string list = ask({});
  EXPECT_THAT(list, HasSubstr("\n  Aborts_Thing  CIM_ManagedElement        aborts\n"));
  EXPECT_THAT(list, HasSubstr("\n  Noisy_Thing   CIM_ManagedElement        noisy\n"));
  EXPECT_THAT(list, HasSubstr("\n  CIM_System "));
  const json document = json::parse(ask({"Noisy_Thing", "CIM_System", "--format", "json"}));
  EXPECT_EQ("this machine", document.at("source"));
  EXPECT_EQ("noisy", document.at("classes").at(0).at("plugin"));
  EXPECT_EQ(true, document.at("classes").at(0).at("properties").at(6).at("needsRoot"));
  EXPECT_TRUE(document.at("classes").at(1).at("plugin").is_null());
}

TEST_F(Schema, HasNoTimeLimitForPluginsThatItDoesNotRun) {
  const TResult result = Ask({"--timeout", "1"});
  EXPECT_EQ(2, result.code);
  EXPECT_EQ("", result.out);
  EXPECT_THAT(result.err, HasSubstr("--timeout"));
  EXPECT_EQ(std::string::npos, Zel({"help", "schema"}).out.find("--timeout"));
}

TEST_F(Schema, ReadsDocumentsThatStandAlone) {
  const TResult result = Zel({"schema", kBase, "KVRSG_CollectionRun"});
  EXPECT_EQ(0, result.code);
  EXPECT_THAT(result.out, StartsWith("KVRSG_CollectionRun\n  "));
}

TEST_F(Schema, SaysWhyADocumentCannotBeRead) {
  TResult result = Zel({"schema", fDir.PathOf("none.xml")});
  EXPECT_EQ(4, result.code);
  EXPECT_THAT(result.err, StartsWith("zel: cannot read '" + fDir.PathOf("none.xml") +
                                     "': No such file or directory; "));
  result = Zel({"schema", fDir.WriteFile("torn.xml", "<CIM CIMVERSION=\"2.0\"\nDTDVERSION=\"9\"/>"),
                "--base", kBase});
  EXPECT_EQ(4, result.code);
  EXPECT_EQ("", result.out);
  EXPECT_THAT(result.err, HasSubstr("': CIM-XML Parser line 2:Unknown DTD version; "));
}

TEST(FirstSentence, EndsAtAPointBeforeABlankOrAtALine) {
  struct {
    const char* text;
    const char* sentence;
  } const rows[] = {
      {"",                    ""               },
      {"No end",              "No end"         },
      {"One. Two.",           "One."           },
      {"One.\nTwo.",          "One."           },
      {"Version 1.5 is. Two", "Version 1.5 is."},
      {"Line\nTwo. Three",    "Line"           },
      {"One.",                "One."           },
  };
  for (const auto& row : rows) EXPECT_EQ(row.sentence, zel::FirstSentence(row.text));
}

}  // namespace
