#include "frontend/ValueText.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "frontend/Inventory.h"
#include "frontend/NearMatch.h"
#include "frontend/Units.h"
#include "tests/frontend/ShowDocument.h"
#include "zelcore/zelcore.h"

namespace {

using document::Declare;
using document::Qualifier;
using document::Set;
using document::Unit;

// The only instance of a class with one property.
class TProperty : public TempDir {
 public:
  TProperty(const std::string& type, const std::string& qualifiers, const std::string& value,
            const std::string& run = "")
      : fInventory(zel::TInventory::Read(
            WriteFile(
                "a.xml",
                document::OnBase(
                    run +
                    document::Class("A", document::Key("Id") + Declare("P", type, qualifiers)) +
                    document::Instance(
                        "A", Set("Id", "a") + (value == "NULL" ? "" : Set("P", type, value))))),
            {kBase})) {}

  const TCIMProperty& Get() const {
    const TCIMClass* cls = fInventory.GetContainer().GetClass("A");
    return *cls->EnumerateInstances(false).front()->GetProperty("P");
  }

 private:
  zel::TInventory fInventory;
};

TEST(PropertyText, AppendsTheUnitsOfBareNumbers) {
  const std::string values = Qualifier("VALUES", "string[]", "None|One");
  const std::string map = values + Unit("Volts");
  const std::string hex = Qualifier("BASE", "uint8", "16") + Unit("Volts");
  const std::string none = Qualifier("NULLDISPLAY", "string", "None");
  const std::string transfers = Unit("MegaTransfers per Second");
  const std::string duration = "1 day 1 hour 1 minute 1 second";
  const std::string moment = "20261121105500.000000+060";
  const std::string iso = "2026-11-21T10:55:00.000000+01:00";
  const struct {
    const char* type;
    std::string qualifiers;
    std::string value;
    std::string text;
  } rows[] = {
      {"uint16",   Unit("MegaHertz"),              "2400",                      "2400 MHz"            },
      {"uint32",   transfers,                      "3200",                      "3200 MT/s"           },
      {"uint8",    Unit("Percent"),                "7",                         "7 %"                 },
      {"uint16",   Unit("MilliVolts"),             "1200",                      "1200 mV"             },
      {"sint16",   Unit("DegreesC"),               "-5",                        "-5 °C"              },
      {"sint16",   Unit("Degrees C"),              "40",                        "40 °C"              },
      {"uint32",   Unit("Revolutions per Minute"), "900",                       "900 RPM"             },
      {"uint32",   Unit("Watts"),                  "65",                        "65 W"                },
      {"uint32",   Unit("Pixels"),                 "3",                         "3 Pixels"            }, // not known
      {"uint32",   Unit("Tenths of Decibels"),     "3",                         "3 Tenths of Decibels"},
      {"real32",   Unit("Volts"),                  "1.5",                       "1.5 V"               },
      {"sint64",   Unit("Bytes"),                  "-5",                        "-5 Bytes"            }, // never scaled
      {"uint64",   Unit("Bytes"),                  "512",                       "512 Bytes"           },
      {"uint64",   Unit("Bytes"),                  "2097152",                   "2 Megabytes"         },
      {"uint32",   Unit("Seconds"),                "90061",                     duration              },
      {"uint32",   Unit("MilliSeconds"),           "0",                         "0 ms"                }, // a duration of nothing
      {"uint32",   Unit("KiloSeconds"),            "5",                         "5 ks"                }, // refused by the library
      {"uint16",   map,                            "1",                         "One"                 },
      {"uint16",   map,                            "2",                         "2 V"                 },
      {"uint8",    hex,                            "10",                        "0A"                  },
      {"uint16",   Unit("a&#27;b"),                "1",                         "1 a\\x1Bb"           },
      {"string",   Unit("Volts"),                  "12",                        "12"                  },
      {"boolean",  Unit("Volts"),                  "true",                      "true"                },
      {"uint16[]", Unit("MegaHertz"),              "800|2400",                  "800 MHz, 2400 MHz"   },
      {"uint16[]", values,                         "1|0|7",                     "One, None, 7"        },
      {"string[]", "",                             "a|b",                       "a, b"                },
      {"datetime", "",                             moment,                      iso                   },
      {"datetime", "",                             "00000001020304.500000:000", "P1DT2H3M4.500000S"   },
      {"uint16",   Unit("MegaHertz"),              "NULL",                      "not available"       },
      {"uint16",   none,                           "NULL",                      "None"                },
  };
  for (const auto& row : rows) {
    const TProperty property(row.type, row.qualifiers, row.value);
    EXPECT_EQ(row.text, zel::PropertyText(property.Get())) << row.qualifiers << row.value;
  }
}

TEST(PropertyText, TellsEachElementOfAnArray) {
  const TProperty mapped("uint16[]", Qualifier("VALUES", "string[]", "None|One"), "1|7");
  EXPECT_EQ((std::vector<std::string>{"One", "7"}), zel::PropertyTexts(mapped.Get()));
  EXPECT_EQ((std::vector<std::string>{"1", "7"}), zel::ValueTexts(mapped.Get().GetValue()));
  const TProperty missing("uint16[]", "", "NULL");
  EXPECT_TRUE(zel::PropertyTexts(missing.Get()).empty());
  EXPECT_TRUE(zel::ValueTexts(missing.Get().GetValue()).empty());
}

TEST(MissingText, TellsWhatTheCollectionLackedNotWhatThisProcessDoes) {
  const std::string needsRoot = Qualifier("NEEDSROOT");
  const auto run = [](const char* isRoot) {
    return document::RunOf(Set("IsRoot", "boolean", isRoot));
  };
  EXPECT_EQ("needs root",
            zel::PropertyText(TProperty("string", needsRoot, "NULL", run("false")).Get()));
  EXPECT_EQ("not available",
            zel::PropertyText(TProperty("string", needsRoot, "NULL", run("true")).Get()));
  EXPECT_EQ("not available",
            zel::PropertyText(TProperty("string", "", "NULL", run("false")).Get()));
}

TEST(UnitSymbol, KnowsUnitsWithAndWithoutMultiples) {
  const struct {
    const char* unit;
    const char* symbol;
  } rows[] = {
      {"Hertz",           "Hz"             },
      {"KiloHertz",       "kHz"            },
      {"gigahertz",       "GHz"            },
      {"MicroSeconds",    "µs"            },
      {"MilliWattHours",  "mWh"            },
      {"Minutes",         "min"            },
      {"Percentage",      "%"              },
      {"KiloBytes",       "KiloBytes"      },
      {"Mega",            "Mega"           },
      {"",                ""               },
      {"250 nanoseconds", "250 nanoseconds"},
  };
  for (const auto& row : rows) EXPECT_EQ(row.symbol, zel::UnitSymbol(row.unit));
}

TEST(Printable, CannotSteerATerminal) {
  const struct {
    std::string text;
    const char* shown;
  } rows[] = {
      {"plain",               "plain"              },
      {"Größe 日本 😀", "Größe 日本 😀"},
      {"\x1B[2J",             "\\x1B[2J"           },
      {std::string("a\0b",    3),                    "a\\x00b"},
      {"\x7F",                     "\\x7F"                                    },
      {"\xC2\x9B",                     "\\u009B"}, // CSI as one character
      {"\x9B",                     "\\x9B"                                        }, // CSI as one byte
      {"\u202E",                     "\\u202E"}, // right to left from here on
      {"\u2028",                     "\\u2028"                                        },
      {"\u2066",                     "\\u2066"},
      {"\xE6\x97",                     "\\xE6\\x97"                                      },
  };
  for (const auto& row : rows) EXPECT_EQ(row.shown, zel::Printable(row.text));
}

TEST(NearMatches, AreTheNearestFirst) {
  const std::vector<std::string> names = {"CurrentClockSpeed", "MaxClockSpeed", "Speed", "Size",
                                          "Name"};
  const struct {
    const char* name;
    const char* near;
  } rows[] = {
      {"speed",    "CurrentClockSpeed MaxClockSpeed Speed "},
      {"Sped",     "Speed "                                },
      {"MaxSpeed", "MaxClockSpeed "                        },
      {"Sise",     "Size "                                 },
      {"Nmae",     "Name "                                 },
      {"x",        ""                                      },
      {"",         ""                                      },
      {"Voltage",  ""                                      },
  };
  for (const auto& row : rows) {
    std::string near;
    for (const std::string& name : zel::NearMatches(row.name, names)) near += name + " ";
    EXPECT_EQ(row.near, near) << row.name;
  }
  EXPECT_EQ("; did you mean Size?", zel::DidYouMean("Sise", names));
  EXPECT_EQ("", zel::DidYouMean("Voltage", names));
  EXPECT_TRUE(zel::NearMatches(std::string(100000, 'a'), names).empty());
}

}  // namespace
