#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <limits>
#include <locale>
#include <optional>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "cim/TCIMPropertyImpl.h"
#include "tests/cim/Schema.h"
#include "tests/support/LogSpy.h"
#include "tests/support/Status.h"
#include "zelcore/TCIMDateTime.h"
#include "zelcore/TCIMProperty.h"

namespace {

using TCIMType = TCIMValue::TCIMType;
using TTexts = std::vector<std::string>;
using TRows = std::vector<TCIMPropertyImpl::TValueMapEntry>;

constexpr unsigned long kOpenEnd = 18446744073709551615ul;

TCIMValue Array(TCIMType type, const std::vector<TCIMValue>& elements) {
  return TCIMValue(type, static_cast<unsigned int>(elements.size()), elements);
}

TCIMValue Strings(const TTexts& texts) {
  return Array(TCIMType::TypeString, {texts.begin(), texts.end()});
}

TCIMValue NullArray(TCIMType type) { return TCIMValue(type, 3); }

// One property declaration after the other, with the qualifiers that a test wants.
class TCIMPropertyDisplayTest : public testing::Test {
 protected:
  TCIMPropertyDisplayTest() {
    for (const char* name : {"NULLDISPLAY", "BASE", "UNITS", "DISPLAYCPUTIME", "DISPLAYFIXEDUNITS",
                             "ABBREVIATEUNITS", "Values", "ValueMap"}) {
      fSchema.Declare(name, TCIMQualifierDecl::FlavorOverridable);
    }
    SetLogThreshold(zelLogDebug);
  }

  using TQualifiers = std::vector<std::pair<std::string, TCIMValue>>;

  TCIMPropertyDecl& Declare(const TCIMValue& defaultValue, const TQualifiers& qualifiers = {}) {
    TCIMPropertyDecl& decl =
        fSchema.AddProperty(fFan, "Property" + std::to_string(fCount++), defaultValue);
    for (const auto& [name, value] : qualifiers) fSchema.Qualify(decl, name, value);
    return decl;
  }

  // What `value` shows as.
  std::string Show(const TCIMValue& value, const TQualifiers& qualifiers = {}) {
    return TCIMProperty(Declare(value, qualifiers)).ToString();
  }
  TTexts ShowEach(const TCIMValue& value, const TQualifiers& qualifiers = {}) {
    return TCIMProperty(Declare(value, qualifiers)).ToStringVector();
  }

  // What codes from 0 show as through a map; "-" where there is no ValueMap.
  TTexts ShowCodes(const TTexts& values, const std::optional<TTexts>& codes, unsigned int count) {
    TQualifiers qualifiers = {
        {"Values", Strings(values)}
    };
    if (codes) qualifiers.emplace_back("ValueMap", Strings(*codes));
    TCIMProperty property(Declare(TCIMValue(0u), qualifiers));
    TTexts texts;
    for (unsigned int code = 0; code < count; ++code) {
      property.SetValue(TCIMValue(code));
      texts.push_back(property.ToString());
    }
    return texts;
  }

  Schema fSchema;
  TCIMClass& fFan = fSchema.AddClass("ACME_Fan");
  int fCount = 0;
};

TEST_F(TCIMPropertyDisplayTest, ShowsBareValuesWithoutQualifiers) {
  EXPECT_EQ("true", Show(TCIMValue(true)));
  EXPECT_EQ("65", Show(TCIMValue(static_cast<unsigned char>(65))));
  EXPECT_EQ("-65", Show(TCIMValue(static_cast<signed char>(-65))));
  EXPECT_EQ("512", Show(TCIMValue(static_cast<unsigned short>(512))));
  EXPECT_EQ("1048576", Show(TCIMValue(1048576u)));
  EXPECT_EQ("18446744073709551615", Show(TCIMValue(kOpenEnd)));
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

TEST_F(TCIMPropertyDisplayTest, TranslatesCodesThroughTheMap) {
  const struct {
    TTexts values;
    std::optional<TTexts> codes;
    TTexts texts;  // of 0, 1, 2 ...
  } rows[] = {
      {{"Off", "On"},        std::nullopt,             {"Off", "On", "2", "3"}                           },
      {{},                   std::nullopt,             {"0", "1"}                                        },
      {{"A", "B", "C"},      TTexts{"3", "1", "0"},    {"C", "B", "2", "A", "4"}                         },
      {{"A", "B", "C", "D"},
       TTexts{"1", "5..", "10", ".."},
       {"D", "A", "D", "D", "D", "B", "B", "B", "B", "B", "C", "D"}                                      },
      {{"A", "B", "C"},
       TTexts{"..3", "4", "..9"},
       {"A", "A", "A", "A", "B", "C", "C", "C", "C", "C", "10"}                                          },
 // The default text may stand anywhere; the last one counts, and an empty one does not.
      {{"D", "A", "E"},      TTexts{"..", "1", ".."},  {"E", "A", "E"}                                   },
      {{"A", ""},            TTexts{"1", ".."},        {"0", "A", "2"}                                   },
 // Both ends given: what stands behind the points does not count.
      {{"A", "B"},           TTexts{"1..2", "4"},      {"0", "A", "A", "A", "B", "5"}                    },
      {{"A"},                TTexts{"2..3"},           {"0", "1", "A", "A", "A"}                         },
 // One point makes no range.
      {{"A", "B"},           TTexts{"1.5", "3"},       {"0", "A", "2", "B"}                              },
      {{"A", "B"},           TTexts{"1 ..", "3"},      {"0", "A", "2", "B"}                              },
 // Of several rows the first one wins.
      {{"A", "B"},           TTexts{"1", "1"},         {"0", "A", "2"}                                   },
      {{"A", "B", "C"},      TTexts{"2", "..4", "3"},  {"0", "1", "A", "B", "B", "5"}                    },
      {{"A", "B", "C"},      TTexts{"3", "1..", "3"},  {"0", "B", "B", "A", "4"}                         },
 // A range that ends before it begins holds nothing.
      {{"A", "B"},           TTexts{"3..", "1"},       {"0", "B", "2", "3", "4"}                         },
      {{"A", "B", "C"},      TTexts{"2", "..1", "3"},  {"0", "1", "A", "C"}                              },
 // Hexadecimal, octal; what is no number is 0.
      {{"A", "B"},           TTexts{"0x2", "010"},     {"0", "1", "A", "3", "4", "5", "6", "7", "B", "9"}},
      {{"A", "B"},           TTexts{"0x1..", "..0x3"}, {"0", "1", "2"}                                   },
      {{"A"},                TTexts{"one"},            {"A", "1"}                                        },
      {{"A"},                TTexts{""},               {"A", "1"}                                        },
      {{"A", "B"},           TTexts{"..two", "5"},     {"A", "1", "2", "3", "4", "B"}                    },
  };
  for (const auto& row : rows) {
    EXPECT_EQ(row.texts,
              ShowCodes(row.values, row.codes, static_cast<unsigned int>(row.texts.size())))
        << testing::PrintToString(row.codes.value_or(TTexts{}));
  }
}

TEST_F(TCIMPropertyDisplayTest, TranslatesBooleansAndUnsignedIntegersOnly) {
  const TQualifiers map = {
      {"Values", Strings({"Off", "On"})},
      {"UNITS",  "Bytes"               }
  };
  EXPECT_EQ("Off", Show(TCIMValue(false), map));
  EXPECT_EQ("On", Show(TCIMValue(true), map));
  EXPECT_EQ("On", Show(TCIMValue(static_cast<unsigned char>(1)), map));
  EXPECT_EQ("On", Show(TCIMValue(static_cast<unsigned short>(1)), map));
  EXPECT_EQ("On", Show(TCIMValue(1u), map));
  EXPECT_EQ("On", Show(TCIMValue(1ul), map));
  // Neither unit nor base has a say once there is a map.
  EXPECT_EQ("2048", Show(TCIMValue(2048u), map));
  EXPECT_EQ("1", Show(TCIMValue(static_cast<signed char>(1)), map));
  EXPECT_EQ("1", Show(TCIMValue(1), map));
  EXPECT_EQ("1", Show(TCIMValue(1.0), map));
  EXPECT_EQ("1", Show(TCIMValue("1"), map));
  EXPECT_EQ("{ 1, 0 }", Show(Array(TCIMType::TypeUint32, {1u, 0u}), map));
  const TCIMValue hexadecimal(static_cast<unsigned char>(16));
  EXPECT_EQ("10", Show(TCIMValue(10u), {
                                           {"Values", Strings({"Off"})},
                                           {"BASE",   hexadecimal     }
  }));
  EXPECT_EQ("rest", Show(TCIMValue(kOpenEnd),
                         {
                             {"Values",   Strings({"rest"})},
                             {"ValueMap", Strings({"7.."}) }
  }));
}

TEST_F(TCIMPropertyDisplayTest, TranslatesTheElementsOfArrays) {
  const TQualifiers map = {
      {"Values", Strings({"Off", "On"})}
  };
  EXPECT_EQ((TTexts{"On", "Off", "2"}), ShowEach(Array(TCIMType::TypeUint32, {1u, 0u, 2u}), map));
  EXPECT_EQ((TTexts{"On"}), ShowEach(Array(TCIMType::TypeBoolean, {true}), map));
  EXPECT_EQ(TTexts{}, ShowEach(Array(TCIMType::TypeUint32, {}), map));
  EXPECT_EQ((TTexts{"1"}), ShowEach(Array(TCIMType::TypeSint32, {1}), map));
  EXPECT_EQ((TTexts{"a", "b"}), ShowEach(Strings({"a", "b"}), map));
  // A scalar is not translated here.
  EXPECT_EQ(TTexts{"1"}, ShowEach(TCIMValue(1u), map));
  EXPECT_EQ(
      TTexts{
          "1 Bytes"
  },
      ShowEach(TCIMValue(1u), {{"UNITS", "Bytes"}, {"Values", Strings({"Off", "On"})}}));
}

TEST_F(TCIMPropertyDisplayTest, ShowsNullElementsWithoutAMapAndRefusesThemWithOne) {
  const TCIMValue array = Array(TCIMType::TypeUint32, {1u, Schema::Null(TCIMType::TypeUint32), 3u});
  EXPECT_EQ((TTexts{"1", "", "3"}), ShowEach(array));
  EXPECT_EQ((TTexts{
                "1", "None", "3"
  }),
            ShowEach(array, {{"NULLDISPLAY", "None"}}));
  EXPECT_EQ("zelStatusValueIsNULL", StatusOf([&] {
              ShowEach(array, {
                                  {"Values", Strings({"Off"})}
              });
            }));
}

TEST_F(TCIMPropertyDisplayTest, PassesOverABrokenMapWithItsMessageOnEveryCall) {
  const TCIMValue numbers = Array(TCIMType::TypeUint32, {1u, 2u});
  const TCIMValue texts = Strings({"A", "B"});
  const struct {
    TQualifiers qualifiers;
    const char* message;
  } rows[] = {
      {{{"Values", TCIMValue("A")}},                                               " has a VALUE qualifier that isn't a string!"},
      {{{"Values", numbers}},                                                      " has a VALUE qualifier that isn't a string!"},
      {{{"Values", numbers}, {"ValueMap", TCIMValue(1u)}},
       " has a VALUE qualifier that isn't a string!"                                                                            },
      {{{"Values", texts}, {"ValueMap", TCIMValue("1")}},
       " has a VALUEMAP qualifier that isn't a string!"                                                                         },
      {{{"Values", texts}, {"ValueMap", Array(TCIMType::TypeUint32, {1u})}},
       " has a VALUEMAP qualifier that isn't a string!"                                                                         },
      {{{"Values", texts}, {"ValueMap", Strings({"1"})}},
       " has VALUE and VALUEMAP qualifiers that aren't the same size!"                                                          },
      {{{"Values", texts}, {"ValueMap", Strings({"2..", ".."})}},
       " has a .. VALUEMAP entry after another entry that ends with ..!"                                                        },
      {{{"Values", texts}, {"ValueMap", Strings({"2..", "..9"})}},
       " has a ..<value> VALUEMAP entry after another entry that ends with ..!"                                                 },
      {{{"Values", texts}, {"ValueMap", Strings({"18446744073709551615", ".."})}},
       " has a .. VALUEMAP entry after another entry that ends with ..!"                                                        },
  };
  for (TCIMType type : {TCIMType::TypeUint32, TCIMType::TypeBoolean}) {
    for (const auto& row : rows) {
      const bool isNumber = type == TCIMType::TypeUint32;
      TCIMProperty property(Declare(isNumber ? TCIMValue(3u) : TCIMValue(true), row.qualifiers));
      const std::string message = "Property " + property.GetName() + row.message;
      ClearLog();
      EXPECT_EQ(isNumber ? "3" : "true", property.ToString());
      EXPECT_EQ(isNumber ? "3" : "true", property.PrevToString());
      EXPECT_EQ((TTexts{message, message}), LogLines());
      EXPECT_EQ(zelLogDebug, LastLogSeverity());
      TRows entries;
      std::string defaultText;
      EXPECT_FALSE(property.GetBody()->BuildValueMapEntryArray(entries, defaultText));
      EXPECT_EQ((TTexts{message, message, message}), LogLines());
    }
  }
}

TEST_F(TCIMPropertyDisplayTest, PassesOverABrokenMapOfAnArray) {
  TCIMProperty property(Declare(Array(TCIMType::TypeUint32,
                                      {
                                          1u, 2048u
  }),
                                {{"Values", TCIMValue("A")}, {"UNITS", "Bytes"}}));
  EXPECT_EQ((TTexts{"1 Bytes", "2 Kilobytes"}), property.ToStringVector());
  EXPECT_EQ("Property " + property.GetName() + " has a VALUE qualifier that isn't a string!",
            LastLogLine());
}

TEST_F(TCIMPropertyDisplayTest, TakesNullMapsForAbsentOnes) {
  EXPECT_EQ("1", Show(TCIMValue(1u), {
                                         {"ValueMap", Strings({"1"})}
  }));
  for (const TCIMType type : {TCIMType::TypeString, TCIMType::TypeUint32}) {
    EXPECT_EQ("1",
              Show(TCIMValue(1u), {
                                      {"Values",   NullArray(type)},
                                      {"ValueMap", TCIMValue(1u)  }
    }));
    EXPECT_EQ("On", Show(TCIMValue(1u),
                         {
                             {"Values",   Strings({"Off", "On"})},
                             {"ValueMap", NullArray(type)       }
    }));
  }
  EXPECT_EQ(TTexts{}, LogLines());
}

TEST_F(TCIMPropertyDisplayTest, LetsNullElementsOfAMapFailEachTime) {
  const TCIMValue holed = Array(TCIMType::TypeString, {"1", Schema::NullString()});
  const TQualifiers maps[] = {
      {{"Values", holed}                 },
      { {"Values", holed}, {"ValueMap", Strings({"1", "2"})}},
      { {"Values", Strings({"A", "B"})},               {"ValueMap", holed}}
  };
  for (const TQualifiers& map : maps) {
    TCIMProperty property(Declare(TCIMValue(1u), map));
    EXPECT_EQ("zelStatusValueIsNULL", StatusOf([&] { property.ToString(); }));
    EXPECT_EQ("zelStatusValueIsNULL", StatusOf([&] { property.ToString(); }));
    EXPECT_EQ(TTexts{"1"}, property.ToStringVector());
  }
}

TEST_F(TCIMPropertyDisplayTest, BuildsTheRowsOfTheMap) {
  const auto rowsOf = [](const TCIMProperty& property) {
    TRows entries = {
        {1, 2, "old"}
    };
    std::string text = "old";
    EXPECT_TRUE(property.GetBody()->BuildValueMapEntryArray(entries, text));
    TTexts rows;
    for (const auto& entry : entries) {
      rows.push_back(std::to_string(entry.low) + " " + std::to_string(entry.high) + " " +
                     entry.text);
    }
    rows.push_back(text);
    return rows;
  };
  EXPECT_EQ((TTexts{
                "1 1 A", "5 9 B", "10 10 C", "D"
  }),
            rowsOf(Declare(TCIMValue(0u), {{"Values", Strings({"A", "B", "C", "D"})},
                                           {"ValueMap", Strings({"1", "5..", "10", ".."})}})));
  EXPECT_EQ((TTexts{
                "0 3 A", "4 4 B", "5 9 C", ""
  }),
            rowsOf(Declare(TCIMValue(0u), {{"Values", Strings({"A", "B", "C"})},
                                           {"ValueMap", Strings({"..3", "4", "..9"})}})));
  EXPECT_EQ((TTexts{
                "4 18446744073709551615 A", ""
  }),
            rowsOf(Declare(TCIMValue(0u),
                           {{"Values", Strings({"A"})}, {"ValueMap", Strings({"4..9"})}})));
  EXPECT_EQ((TTexts{
                "0 0 Off", "1 1 On", ""
  }),
            rowsOf(Declare(TCIMValue(0u), {{"Values", Strings({"Off", "On"})}})));
  TRows none;
  std::string text;
  const TCIMProperty bare(Declare(TCIMValue(0u)));
  EXPECT_FALSE(bare.GetBody()->BuildValueMapEntryArray(none, text));
}

TEST_F(TCIMPropertyDisplayTest, LooksUpInAnyTable) {
  const TCIMProperty property(Declare(TCIMValue(0u)));
  const TCIMPropertyImpl& body = *property.GetBody();
  TRows rows = {
      {4, kOpenEnd, "A"},
      {0, 5,        "B"}
  };
  std::string none;
  std::string rest = "rest";
  EXPECT_EQ("A", body.LookupInTable(TCIMValue(5u), rows, none));
  EXPECT_EQ("B", body.LookupInTable(TCIMValue(true), rows, none));
  rows.pop_back();
  EXPECT_EQ("1", body.LookupInTable(TCIMValue(1ul), rows, none));
  EXPECT_EQ("false", body.LookupInTable(TCIMValue(false), rows, none));
  EXPECT_EQ("rest", body.LookupInTable(TCIMValue(1ul), rows, rest));
  const auto refused = [&](const TCIMValue& value) {
    return StatusOf([&] { body.LookupInTable(value, rows, rest); });
  };
  EXPECT_EQ("zelStatusValueIsNULL", refused(Schema::Null(TCIMType::TypeUint32)));
  EXPECT_EQ("zelStatusTypeMismatch", refused(TCIMValue(1)));
  EXPECT_EQ("zelStatusTypeMismatch", refused(TCIMValue("1")));
}

// The rows of an ordered map are searched, those of another are walked: a random map of each kind
// shows what a walk over its codes tells.
TEST_F(TCIMPropertyDisplayTest, FindsTheFirstRowOfLongMaps) {
  std::mt19937 random(7);
  for (const bool isOrdered : {true, false}) {
    TTexts codes;
    TTexts texts;
    unsigned int code = 0;
    for (int i = 0; i < 300; ++i) {
      code = isOrdered ? code + 1 + random() % 4 : random() % 600;
      codes.push_back(std::to_string(code));
      texts.push_back("text " + std::to_string(i));
    }
    const TTexts shown = ShowCodes(texts, codes, 1300);
    for (unsigned int shownCode = 0; shownCode < shown.size(); ++shownCode) {
      std::string expected = std::to_string(shownCode);
      for (std::size_t i = codes.size(); i-- > 0;) {
        if (codes[i] == std::to_string(shownCode)) expected = texts[i];
      }
      EXPECT_EQ(expected, shown[shownCode]);
    }
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

TEST_F(TCIMPropertyDisplayTest, FindsQualifiersInAnyCase) {
  const TQualifiers map = {
      {"VALUES",   Strings({"A"})},
      {"VALUEMAP", Strings({"1"})}
  };
  EXPECT_EQ("A", Show(TCIMValue(1u), map));
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
  EXPECT_EQ("2000 ", Show(TCIMValue(2000u)) + " ");
  EXPECT_EQ((TTexts{"0", "A", "A", "B"}), ShowCodes({"A", "B"}, TTexts{"1..", "3"}, 4));
  std::locale::global(former);
}

}  // namespace
