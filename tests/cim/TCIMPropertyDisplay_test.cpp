#include <cstdint>
#include <iomanip>
#include <locale>
#include <random>
#include <sstream>
#include <string>

#include "cim/TCIMPropertyImpl.h"
#include "tests/cim/DisplayTest.h"
#include "tests/support/Status.h"
#include "zelcore/TCIMDateTime.h"

namespace {

using TCIMType = TCIMValue::TCIMType;
using TCIMPropertyDisplayTest = DisplayTest;

TEST_F(TCIMPropertyDisplayTest, ShowsBareValuesWithoutQualifiers) {
  EXPECT_EQ("true", Show(TCIMValue(true)));
  EXPECT_EQ("65", Show(TCIMValue(static_cast<unsigned char>(65))));
  EXPECT_EQ("-65", Show(TCIMValue(static_cast<signed char>(-65))));
  EXPECT_EQ("512", Show(TCIMValue(static_cast<unsigned short>(512))));
  EXPECT_EQ("1048576", Show(TCIMValue(1048576u)));
  EXPECT_EQ("18446744073709551615", Show(TCIMValue(18446744073709551615ul)));
  EXPECT_EQ("1.5", Show(TCIMValue(1.5)));
  EXPECT_EQ("a text", Show(TCIMValue("a text")));
  EXPECT_EQ("00000001020304.500000:000", Show(TCIMValue(TCIMDateTime(1, 2, 3, 4, 500000))));
  EXPECT_EQ("{ 1, 2 }", Show(Array(TCIMType::TypeUint32, {1u, 2u})));
}

TEST_F(TCIMPropertyDisplayTest, ShowsNullByItsDisplayText) {
  for (const TCIMType type : {TCIMType::TypeBoolean, TCIMType::TypeUint8, TCIMType::TypeUint64,
                              TCIMType::TypeSint32, TCIMType::TypeString}) {
    const TCIMValue null = Schema::Null(type);
    EXPECT_EQ("", Show(null));
    EXPECT_EQ("Unknown", Show(null, {
                                        {"NULLDISPLAY", "Unknown"}
    }));
    EXPECT_EQ("", Show(null, {
                                 {"NULLDISPLAY", Schema::NullString()}
    }));
    EXPECT_EQ("", Show(null, {
                                 {"NULLDISPLAY", TCIMValue(7u)}
    }));
    EXPECT_EQ("", Show(null, {
                                 {"NULLDISPLAY", Strings({"Unknown"})}
    }));
    EXPECT_EQ(
        TTexts{
            "Unknown"
    },
        ShowEach(null, {{"NULLDISPLAY", "Unknown"}}));
  }
  const TCIMValue null = NullArray(TCIMType::TypeUint32);
  EXPECT_EQ("None", Show(null, {
                                   {"NULLDISPLAY", "None"}
  }));
  EXPECT_EQ(
      TTexts{
          "None"
  },
      ShowEach(null, {{"NULLDISPLAY", "None"}}));
  EXPECT_EQ(TTexts{""}, ShowEach(null));
  EXPECT_EQ("5", Show(TCIMValue(5u), {
                                         {"NULLDISPLAY", "Unknown"}
  }));
}

TEST_F(TCIMPropertyDisplayTest, ShowsNullAheadOfUnitsAndMaps) {
  const TCIMValue null = Schema::Null(TCIMType::TypeUint32);
  EXPECT_EQ("Unknown", Show(null, {
                                      {"NULLDISPLAY", "Unknown"    },
                                      {"UNITS",       "KiloSeconds"}
  }));
  EXPECT_EQ("Unknown", Show(null, {
                                      {"NULLDISPLAY", "Unknown"    },
                                      {"Values",      TCIMValue(7u)}
  }));
  EXPECT_EQ(TTexts{}, LogLines());
}

TEST_F(TCIMPropertyDisplayTest, PrintsInTheDeclaredBase) {
  const auto base = [](int number) { return TCIMValue(static_cast<unsigned char>(number)); };
  const struct {
    TCIMValue value;
    TCIMValue base;
    const char* text;
  } rows[] = {
      {TCIMValue(static_cast<unsigned char>(10)),      base(16),    "0A"                               },
      {TCIMValue(static_cast<unsigned short>(0xbeef)), base(16),    "BEEF"                             },
      {TCIMValue(10u),                                 base(16),    "0000000A"                         },
      {TCIMValue(10ul),                                base(16),    "000000000000000A"                 },
      {TCIMValue(10u),                                 base(8),     "12"                               },
      {TCIMValue(10u),                                 base(10),    "10"                               },
      {TCIMValue(true),                                base(16),    "true"                             },
      {TCIMValue("text"),                              base(16),    "text"                             },
      {Array(TCIMType::TypeUint8,                      {base(10)}), base(16),                            "{ 0A }"},
 // Of no effect: of another type, or NULL.
      {TCIMValue(10u),                                              TCIMValue(16u),                                            "10"                   },
      {TCIMValue(10u),                                              Schema::Null(TCIMType::TypeUint8),                                            "10"},
  };
  for (const auto& row : rows)
    EXPECT_EQ(row.text, Show(row.value, {
                                            {"BASE", row.base}
    }));

  const TCIMValue refused[] = {TCIMValue(10), TCIMValue(10l), TCIMValue(1.5f), TCIMValue(1.5)};
  for (const TCIMValue& value : refused) {
    EXPECT_EQ("zelStatusNotSupported", StatusOf([&] {
                Show(value, {
                                {"BASE", base(16)}
                });
              }));
    EXPECT_EQ("zelStatusNotSupported", StatusOf([&] {
                Show(value, {
                                {"BASE", base(8)}
                });
              }));
  }
  EXPECT_EQ("zelStatusNotSupported", StatusOf([&] {
              Show(TCIMValue(1u), {
                                      {"BASE", base(2)}
              });
            }));
}

TEST_F(TCIMPropertyDisplayTest, ScalesBytesAndBits) {
  const struct {
    std::uint64_t number;
    const char* unit;
    const char* text;
    const char* shortText;
  } rows[] = {
      {0,                      "Bytes",               "0 Bytes",                  "0 B"         },
      {512,                    "Bytes",               "512 Bytes",                "512 B"       },
      {1024,                   "Bytes",               "1,024 Bytes",              "1,024 B"     },
      {1025,                   "Bytes",               "1 Kilobytes",              "1 KB"        },
      {1536,                   "Bytes",               "1.5 Kilobytes",            "1.5 KB"      },
      {2097152,                "Bytes",               "2 Megabytes",              "2 MB"        },
 // Equal to the step after scaling is not above it.
      {1048576,                "Bytes",               "1,024 Kilobytes",          "1,024 KB"    },
 // 1073741825 is 1073741824 in single precision.
      {1073741825,             "Bytes",               "1,024 Megabytes",          "1,024 MB"    },
      {1099511627776ul * 3,    "Bytes",               "3 Terabytes",              "3 TB"        },
      {18446744073709551615ul, "Bytes",               "16,384 Petabytes",         "16,384 PB"   },
      {3,                      "KiloBytes",           "3 Kilobytes",              "3 KB"        },
      {2048,                   "KiloBytes",           "2 Megabytes",              "2 MB"        },
      {1234567,                "PetaBytes",           "1,234,567 Petabytes",      "1,234,567 PB"},
      {500,                    "MilliBytes",          "500 Millibytes",           "500 mB"      },
      {500,                    "MicroBytes",          "500 Microbytes",           "500 uB"      },
      {500,                    "NanoBytes",           "500 Nanobytes",            "500 nB"      },
      {2048,                   "MilliBytes",          "2 Bytes",                  "2 B"         },
      {100,                    "Bits",                "100 Bits",                 "100 Bits"    },
      {2048,                   "Bits",                "2 Kilobits",               "2 KBits"     },
      {3,                      "GigaBits",            "3 Gigabits",               "3 GBits"     },
      {10,                     "Bytes per Second",    "10 Bytes per second",      "10 B/s"      },
      {1572864,                "Bytes per Second",    "1.5 Megabytes per second", "1.5 MB/s"    },
      {1000,                   "Bits per Second",     "1,000 Bits per second",    "1,000 bps"   },
      {1001,                   "Bits per Second",     "1 Kilobits per second",    "1 Kbps"      },
      {1500000,                "Bits per Second",     "1.5 Megabits per second",  "1.5 Mbps"    },
      {10000000000ul,          "Bits per Second",     "10 Gigabits per second",   "10 Gbps"     },
      {25,                     "TeraBits per Second", "25 Terabits per second",   "25 Tbps"     },
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(std::to_string(row.number) + " " + row.unit);
    const TCIMValue number(static_cast<unsigned long>(row.number));
    EXPECT_EQ(row.text, Show(number, {
                                         {"UNITS", row.unit}
    }));
    EXPECT_EQ(row.shortText, Show(number, {
                                              {"UNITS",           row.unit},
                                              {"ABBREVIATEUNITS", true    }
    }));
    // Only that it is there counts.
    EXPECT_EQ(row.shortText, Show(number, {
                                              {"UNITS",           row.unit},
                                              {"ABBREVIATEUNITS", false   }
    }));
    const TCIMValue null = Schema::Null(TCIMType::TypeBoolean);
    EXPECT_EQ(row.text, Show(number, {
                                         {"UNITS",           row.unit},
                                         {"ABBREVIATEUNITS", null    }
    }));
  }
}

TEST_F(TCIMPropertyDisplayTest, ScalesUnsignedIntegersOfEveryWidthAndNothingElse) {
  const TQualifiers bytes = {
      {"UNITS", "Bytes"}
  };
  EXPECT_EQ("200 Bytes", Show(TCIMValue(static_cast<unsigned char>(200)), bytes));
  EXPECT_EQ("2 Kilobytes", Show(TCIMValue(static_cast<unsigned short>(2048)), bytes));
  EXPECT_EQ("2 Kilobytes", Show(TCIMValue(2048u), bytes));
  EXPECT_EQ("2048", Show(TCIMValue(2048), bytes));
  EXPECT_EQ("2048", Show(TCIMValue(2048l), bytes));
  EXPECT_EQ("2048", Show(TCIMValue(2048.0), bytes));
  EXPECT_EQ("true", Show(TCIMValue(true), bytes));
  EXPECT_EQ("2048", Show(TCIMValue("2048"), bytes));
  EXPECT_EQ("{ 2048 }", Show(Array(TCIMType::TypeUint32, {2048u}), bytes));
  EXPECT_EQ((TTexts{"2 Kilobytes", "1 Bytes"}),
            ShowEach(Array(TCIMType::TypeUint32, {2048u, 1u}), bytes));
}

TEST_F(TCIMPropertyDisplayTest, ScalesToTheFixedMultiple) {
  const struct {
    unsigned long number;
    const char* unit;
    const char* target;
    const char* text;
  } rows[] = {
      {536870912,     "Bytes",     "Giga", "0.5 Gigabytes"      },
      {512,           "Bytes",     "Kilo", "0.5 Kilobytes"      },
      {1,             "Bytes",     "Mega", "0 Megabytes"        },
      {1099511627776, "Bytes",     "Tera", "1 Terabytes"        },
      {1099511627776, "Bytes",     "Mega", "1,048,576 Megabytes"},
      {512,           "Bytes",     "",     "512 Bytes"          },
 // At or above the target already: nothing is scaled, large as it may be.
      {4096,          "MegaBytes", "Mega", "4,096 Megabytes"    },
      {4096,          "GigaBytes", "Mega", "4,096 Gigabytes"    },
      {2048,          "MegaBytes", "Giga", "2 Gigabytes"        },
 // No targets.
      {2048,          "Bytes",     "Peta", "2 Kilobytes"        },
      {2048,          "Bytes",     "mega", "2 Kilobytes"        },
      {2048,          "Bytes",     "MB",   "2 Kilobytes"        },
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(std::to_string(row.number) + " " + row.unit + " to " + row.target);
    EXPECT_EQ(row.text, Show(TCIMValue(row.number),
                             {
                                 {"UNITS",             row.unit  },
                                 {"DISPLAYFIXEDUNITS", row.target}
    }));
  }
  for (const TCIMValue& none : {Schema::NullString(), TCIMValue(7u), Strings({"Giga"})}) {
    EXPECT_EQ("2 Kilobytes",
              Show(TCIMValue(2048u), {
                                         {"UNITS",             "Bytes"},
                                         {"DISPLAYFIXEDUNITS", none   }
    }));
  }
}

TEST_F(TCIMPropertyDisplayTest, ShowsTheBareNumberOfOtherUnits) {
  const TCIMValue hexadecimal(static_cast<unsigned char>(16));
  for (const char* unit : {"MegaHertz", "DegreesC", "bytes", "KILOBytes", "Kilo Bytes", "", "Kilo",
                           "seconds", "Bytes per second", "KiloMegaBytes"}) {
    EXPECT_EQ("2048", Show(TCIMValue(2048u),
                           {
                               {"UNITS", unit}
    }))
        << unit;
    EXPECT_EQ("00000800", Show(TCIMValue(2048u),
                               {
                                   {"UNITS", unit       },
                                   {"BASE",  hexadecimal}
    }))
        << unit;
  }
  for (const TCIMValue& none : {Schema::NullString(), TCIMValue(7u), Strings({"Bytes"})}) {
    EXPECT_EQ("2048", Show(TCIMValue(2048u), {
                                                 {"UNITS", none}
    }));
  }
  // A unit that is known prevails over the base.
  EXPECT_EQ("2 Kilobytes", Show(TCIMValue(2048u), {
                                                      {"UNITS", "Bytes"    },
                                                      {"BASE",  hexadecimal}
  }));
}

TEST_F(TCIMPropertyDisplayTest, ShowsSecondsAsDurations) {
  const struct {
    std::uint64_t count;
    const char* unit;
    const char* text;
    const char* clock;
  } rows[] = {
      {0,                      "Seconds",      "",                                                  "00:00:00.000"},
      {1,                      "Seconds",      "1 second ",                                         "00:00:01.000"},
      {59,                     "Seconds",      "59 seconds ",                                       "00:00:59.000"},
      {3600,                   "Seconds",      "1 hour ",                                           "01:00:00.000"},
      {90061,                  "Seconds",      "1 day 1 hour 1 minute 1 second ",                   "25:01:01.000"},
      {93784005,               "MilliSeconds", "1 day 2 hours 3 minutes 4 seconds 5 milliseconds ",
       "26:03:04.005"                                                                                             },
      {1500,                   "MilliSeconds", "1 second 500 milliseconds ",                        "00:00:01.500"},
      {1000001,                "MicroSeconds", "1 second 1 microsecond ",                           "00:00:01.000"},
      {1002003,                "MicroSeconds", "1 second 2 milliseconds 3 microseconds ",           "00:00:01.002"},
      {1000001999,             "NanoSeconds",  "1 second 1 microsecond ",                           "00:00:01.000"},
      {999,                    "NanoSeconds",  "",                                                  "00:00:00.000"},
 // 4294967296 days are cut to 32 bits.
      {86400ul * 4294967296ul, "Seconds",      "",                                                  "00:00:00.000"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(std::to_string(row.count) + " " + row.unit);
    const TCIMValue count(static_cast<unsigned long>(row.count));
    EXPECT_EQ(row.text, Show(count, {
                                        {"UNITS", row.unit}
    }));
    EXPECT_EQ(row.clock, Show(count, {
                                         {"UNITS",          row.unit},
                                         {"DISPLAYCPUTIME", false   }
    }));
    const TCIMValue null = Schema::Null(TCIMType::TypeBoolean);
    EXPECT_EQ(row.text, Show(count, {
                                        {"UNITS",          row.unit},
                                        {"DISPLAYCPUTIME", null    }
    }));
  }
  EXPECT_EQ("90061", Show(TCIMValue(90061), {
                                                {"UNITS", "Seconds"}
  }));
}

TEST_F(TCIMPropertyDisplayTest, RefusesMultiplesOfSeconds) {
  for (const char* prefix : {"Kilo", "Mega", "Giga", "Tera", "Peta"}) {
    const TQualifiers unit = {
        {"UNITS", std::string(prefix) + "Seconds"}
    };
    EXPECT_EQ("zelStatusInvalidDateTime", StatusOf([&] { Show(TCIMValue(1u), unit); }));
    const TQualifiers clock = {
        {"UNITS",          unit[0].second},
        {"DISPLAYCPUTIME", true          }
    };
    EXPECT_EQ("zelStatusInvalidDateTime", StatusOf([&] { Show(TCIMValue(1u), clock); }));
  }
}

TEST_F(TCIMPropertyDisplayTest, FollowsTheQualifiersWhenTheyChange) {
  TCIMPropertyDecl& decl = Declare(TCIMValue(1u));
  TCIMProperty property(decl);
  EXPECT_EQ("1", property.ToString());
  TCIMQualifier& unit = fSchema.Qualify(decl, "UNITS", "Bytes");
  EXPECT_EQ("1 Bytes", property.ToString());
  unit.SetValue(TCIMValue("Seconds"));
  EXPECT_EQ("1 second ", property.ToString());
  TCIMQualifier& values = fSchema.Qualify(decl, "Values", Strings({"Off", "On"}));
  EXPECT_EQ("On", property.ToString());
  values.SetValue(TCIMValue("On"));
  EXPECT_EQ("1 second ", property.ToString());
  EXPECT_EQ("Property " + decl.GetName() + " has a VALUE qualifier that isn't a string!",
            LastLogLine());
  decl.SetName("Renamed");
  property.ToString();
  EXPECT_EQ("Property Renamed has a VALUE qualifier that isn't a string!", LastLogLine());
  values.SetValue(Strings({"Closed", "Open"}));
  EXPECT_EQ("Open", property.ToString());
  decl.RemoveQualifier(values);
  EXPECT_EQ("1 second ", property.ToString());
}

TEST_F(TCIMPropertyDisplayTest, ShowsThePreviousValueAlike) {
  TCIMProperty property(
      Declare(TCIMValue(2048u), {
                                    {"UNITS",       "Bytes"},
                                    {"NULLDISPLAY", "None" }
  }));
  EXPECT_EQ("2 Kilobytes", property.PrevToString());
  property.SetValue(TCIMValue(1u));
  EXPECT_EQ("1 Bytes", property.PrevToString());
  property.SetPrevValue(TCIMValue(3072u));
  EXPECT_EQ("3 Kilobytes", property.PrevToString());
  EXPECT_EQ("1 Bytes", property.ToString());
  EXPECT_EQ(TTexts{"3 Kilobytes"}, property.PrevToStringVector());
  property.SetPrevValue();
  EXPECT_EQ("None", property.PrevToString());
  EXPECT_EQ(TTexts{"None"}, property.PrevToStringVector());
  EXPECT_EQ("1 Bytes", property.ToString());
}

TEST_F(TCIMPropertyDisplayTest, ShowsThePreviousElementsAlike) {
  const TQualifiers map = {
      {"Values", Strings({"Off", "On"})},
      {"UNITS",  "Bytes"               }
  };
  TCIMProperty property(Declare(Array(TCIMType::TypeUint32, {1u}), map));
  property.SetPrevValue(Array(TCIMType::TypeUint32, {0u, 1u}));
  EXPECT_EQ((TTexts{"On"}), property.ToStringVector());
  EXPECT_EQ((TTexts{"Off", "On"}), property.PrevToStringVector());
  EXPECT_EQ((TTexts{"1 Bytes"}), property.GetBody()->ToStringVectorWithBase());
  EXPECT_EQ((TTexts{"0 Bytes", "1 Bytes"}), property.GetBody()->PrevToStringVectorWithBase());
  EXPECT_EQ("{ 0, 1 }", property.PrevToString());
  property.SetPrevValue();
  EXPECT_EQ(TTexts{""}, property.PrevToStringVector());
}

// What the stream prints with the punctuation of "en_US", taken from no locale of the machine.
class TAmericanPunctuation : public std::numpunct<char> {
  char do_decimal_point() const override { return '.'; }
  char do_thousands_sep() const override { return ','; }
  std::string do_grouping() const override { return "\3"; }
};

TEST_F(TCIMPropertyDisplayTest, RoundsAndGroupsAsAStreamDoes) {
  TCIMProperty property(
      Declare(TCIMValue(0ul), {
                                  {"UNITS",             "Bytes"},
                                  {"DISPLAYFIXEDUNITS", "Kilo" }
  }));
  std::mt19937_64 random(3);
  for (int i = 0; i < 2000; ++i) {
    const unsigned long number = random() >> (random() % 64);
    std::ostringstream stream;
    stream.imbue(std::locale(std::locale::classic(), new TAmericanPunctuation));
    stream << std::fixed << std::setprecision(1) << static_cast<float>(number) / 1024;
    std::string expected = stream.str();
    if (expected.substr(expected.size() - 2) == ".0") expected.resize(expected.size() - 2);
    property.SetValue(TCIMValue(number));
    EXPECT_EQ(expected + " Kilobytes", property.ToString()) << number;
  }
}

// Numbers print alike whatever the process's locale, here one that would print "2#048|5".
class TOtherPunctuation : public std::numpunct<char> {
  char do_decimal_point() const override { return '|'; }
  char do_thousands_sep() const override { return '#'; }
  std::string do_grouping() const override { return "\3"; }
};

TEST_F(TCIMPropertyDisplayTest, PrintsAlikeInEveryLocale) {
  const std::locale former =
      std::locale::global(std::locale(std::locale::classic(), new TOtherPunctuation));
  EXPECT_EQ("1,024 Bytes", Show(TCIMValue(1024u), {
                                                      {"UNITS", "Bytes"}
  }));
  EXPECT_EQ("1.5 Kilobytes", Show(TCIMValue(1536u), {
                                                        {"UNITS", "Bytes"}
  }));
  EXPECT_EQ("2000", Show(TCIMValue(2000u)));
  EXPECT_EQ((TTexts{"0", "A", "A", "B"}), ShowCodes({"A", "B"}, TTexts{"1..", "3"}, 4));
  std::locale::global(former);
}

}  // namespace
