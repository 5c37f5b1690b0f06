#include <optional>
#include <random>
#include <string>
#include <vector>

#include "cim/TCIMPropertyImpl.h"
#include "tests/cim/DisplayTest.h"
#include "tests/support/Status.h"

namespace {

using TCIMType = TCIMValue::TCIMType;
using TRows = std::vector<TCIMPropertyImpl::TValueMapEntry>;
using TValueMapTest = DisplayTest;

constexpr unsigned long kOpenEnd = 18446744073709551615ul;

TEST_F(TValueMapTest, TranslatesCodesThroughTheMap) {
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

TEST_F(TValueMapTest, TranslatesBooleansAndUnsignedIntegersOnly) {
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

TEST_F(TValueMapTest, TranslatesTheElementsOfArrays) {
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

TEST_F(TValueMapTest, ShowsNullElementsWithoutAMapAndRefusesThemWithOne) {
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

TEST_F(TValueMapTest, PassesOverABrokenMapWithItsMessageOnEveryCall) {
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

TEST_F(TValueMapTest, PassesOverABrokenMapOfAnArray) {
  TCIMProperty property(Declare(Array(TCIMType::TypeUint32,
                                      {
                                          1u, 2048u
  }),
                                {{"Values", TCIMValue("A")}, {"UNITS", "Bytes"}}));
  EXPECT_EQ((TTexts{"1 Bytes", "2 Kilobytes"}), property.ToStringVector());
  EXPECT_EQ("Property " + property.GetName() + " has a VALUE qualifier that isn't a string!",
            LastLogLine());
}

TEST_F(TValueMapTest, TakesNullMapsForAbsentOnes) {
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

TEST_F(TValueMapTest, LetsNullElementsOfAMapFailEachTime) {
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

TEST_F(TValueMapTest, BuildsTheRowsOfTheMap) {
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

TEST_F(TValueMapTest, LooksUpInAnyTable) {
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
  rows = {
      {2, 3, "C"}
  };
  const char* const shown[] = {"0", "1", "C", "C", "4"};
  for (unsigned int code = 0; code < std::size(shown); ++code) {
    EXPECT_EQ(shown[code], body.LookupInTable(TCIMValue(code), rows, none));
  }
  const auto refused = [&](const TCIMValue& value) {
    return StatusOf([&] { body.LookupInTable(value, rows, rest); });
  };
  EXPECT_EQ("zelStatusValueIsNULL", refused(Schema::Null(TCIMType::TypeUint32)));
  EXPECT_EQ("zelStatusTypeMismatch", refused(TCIMValue(1)));
  EXPECT_EQ("zelStatusTypeMismatch", refused(TCIMValue("1")));
}

// The rows of an ordered map are searched, those of another are walked: a random map of each kind
// shows what a walk over its codes tells.
TEST_F(TValueMapTest, FindsTheFirstRowOfLongMaps) {
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

TEST_F(TValueMapTest, FindsQualifiersInAnyCase) {
  const TQualifiers map = {
      {"VALUES",   Strings({"A"})},
      {"VALUEMAP", Strings({"1"})}
  };
  EXPECT_EQ("A", Show(TCIMValue(1u), map));
}

}  // namespace
