// Numbers and booleans as text: printed in three bases, and read as the stream reads them.

#include "cim/TCIMNumericValueImpl.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <locale>
#include <random>
#include <sstream>

#include "tests/support/Status.h"
#include "zelcore/TCIMDateTime.h"
#include "zelcore/TCIMReference.h"
#include "zelcore/TContainer.h"

namespace {

using TCIMType = TCIMValue::TCIMType;
using zelcore::detail::NumericCode;
using zelcore::detail::ParseNumber;
using zelcore::detail::VisitNumeric;

TCIMValue Parse(TCIMType::ECIMType type, const std::string& text) {
  TContainer container;
  return TCIMValue(type, text, container);
}

// The definition that parsing must keep to, whatever short cuts it takes.
template <class T>
T ReadByStream(const std::string& text) {
  std::istringstream in(text);
  in.imbue(std::locale::classic());
  in >> std::boolalpha;
  in.unsetf(std::ios::dec);
  if constexpr (sizeof(T) == 1 && !std::is_same_v<T, bool>) {
    std::conditional_t<std::is_signed_v<T>, int, unsigned int> value = 0;
    in >> value;
    return static_cast<T>(value);
  } else {
    T value{};
    in >> value;
    return value;
  }
}

template <class T>
void ExpectReadAsByStream(const std::string& text) {
  const T expected = ReadByStream<T>(text);
  const T actual = ParseNumber<T>(text);
  EXPECT_EQ(expected, actual) << "'" << text << "' as type " << NumericCode<T>();
  if constexpr (std::is_floating_point_v<T>) {
    EXPECT_EQ(std::signbit(expected), std::signbit(actual)) << "'" << text << "'";
  }
}

void ExpectReadAsByStreamInAllTypes(const std::string& text) {
  for (unsigned int code = TCIMType::TypeBoolean; code <= TCIMType::TypeReal64; ++code) {
    VisitNumeric(TCIMType::ECIMType(code),
                 [&](auto tag) { ExpectReadAsByStream<typename decltype(tag)::type>(text); });
  }
}

struct TGroupingPunctuation : std::numpunct<char> {
  char do_decimal_point() const override { return ','; }
  char do_thousands_sep() const override { return '.'; }
  std::string do_grouping() const override { return "\3"; }
  std::string do_truename() const override { return "wahr"; }
};

}  // namespace

TEST(PrintingNumbers, WritesDecimals) {
  const struct {
    TCIMValue value;
    const char* text;
  } kRows[] = {
      {true,                                      "true"                },
      {false,                                     "false"               },
      {static_cast<unsigned char>(0),             "0"                   },
      {static_cast<unsigned char>(65),            "65"                  }, // never a character
      {static_cast<unsigned char>(255),           "255"                 },
      {static_cast<signed char>(-128),            "-128"                },
      {static_cast<signed char>(65),              "65"                  },
      {static_cast<unsigned short>(65535),        "65535"               },
      {static_cast<short>(-32768),                "-32768"              },
      {4294967295u,                               "4294967295"          },
      {-2147483647 - 1,                           "-2147483648"         },
      {std::numeric_limits<unsigned long>::max(), "18446744073709551615"},
      {std::numeric_limits<long>::min(),          "-9223372036854775808"},
      {0.0f,                                      "0"                   },
      {1.5f,                                      "1.5"                 },
      {1234567.0,                                 "1.23457e+06"         },
      {0.0001,                                    "0.0001"              },
      {0.00001,                                   "1e-05"               },
      {100000.0,                                  "100000"              },
      {-2.5,                                      "-2.5"                },
      {3.14159265358979,                          "3.14159"             },
  };
  for (const auto& row : kRows) EXPECT_EQ(row.text, row.value.ToString(10));
}

TEST(PrintingNumbers, FillsHexadecimalsToTheWidthOfTheType) {
  const struct {
    TCIMValue value;
    const char* hexadecimal;
    const char* octal;
  } kRows[] = {
      {static_cast<unsigned char>(0),             "00",               "0"                     },
      {static_cast<unsigned char>(10),            "0A",               "12"                    },
      {static_cast<unsigned char>(255),           "FF",               "377"                   },
      {static_cast<unsigned short>(0xBEEF),       "BEEF",             "137357"                },
      {static_cast<unsigned short>(1),            "0001",             "1"                     },
      {65535u,                                    "0000FFFF",         "177777"                },
      {0u,                                        "00000000",         "0"                     },
      {0xDEADBEEFul,                              "00000000DEADBEEF", "33653337357"           },
      {std::numeric_limits<unsigned long>::max(), "FFFFFFFFFFFFFFFF", "1777777777777777777777"},
      {true,                                      "true",             "true"                  },
      {false,                                     "false",            "false"                 },
  };
  for (const auto& row : kRows) {
    EXPECT_EQ(row.hexadecimal, row.value.ToString(16));
    EXPECT_EQ(row.octal, row.value.ToString(8));
  }
}

TEST(PrintingNumbers, RefusesOtherBasesAndSignedOnesInOtherThanTen) {
  const TCIMValue values[] = {static_cast<signed char>(1), static_cast<short>(1), 1, 1l, 1.0f, 1.0};
  for (const TCIMValue& value : values) {
    EXPECT_EQ("zelStatusNotSupported", StatusOf([&] { value.ToString(16); }));
    EXPECT_EQ("zelStatusNotSupported", StatusOf([&] { value.ToString(8); }));
  }
  for (unsigned char base : {0, 1, 2, 7, 9, 11, 15, 17, 255}) {
    for (const TCIMValue& value : {TCIMValue(1u), TCIMValue(1), TCIMValue(true), TCIMValue(1.0)}) {
      EXPECT_EQ("zelStatusNotSupported", StatusOf([&] { value.ToString(base); })) << int{base};
    }
  }
}

TEST(ParsingNumbers, LeavesTheBaseOpen) {
  EXPECT_EQ(TCIMValue(static_cast<unsigned short>(16)), Parse(TCIMType::TypeUint16, "0x10"));
  EXPECT_EQ(TCIMValue(8), Parse(TCIMType::TypeSint32, "010"));
  EXPECT_EQ(TCIMValue(static_cast<unsigned char>(31)), Parse(TCIMType::TypeUint8, "0x1F"));
  EXPECT_EQ(TCIMValue(static_cast<signed char>(15)), Parse(TCIMType::TypeSint8, "017"));
  EXPECT_EQ(TCIMValue(static_cast<short>(-15)), Parse(TCIMType::TypeSint16, "-017"));
  EXPECT_EQ(TCIMValue(15u), Parse(TCIMType::TypeUint32, "15"));
  EXPECT_EQ(TCIMValue(0xFFFFFFFFFFFFFFFFul), Parse(TCIMType::TypeUint64, "0XffffFFFFffffFFFF"));
  EXPECT_EQ(TCIMValue(-255l), Parse(TCIMType::TypeSint64, "-0xff"));
}

TEST(ParsingNumbers, TakesWhatTheExtractionLeaves) {
  const struct {
    const char* text;
    unsigned long unsigned64;
    int signed32;
  } kRows[] = {
      {"",                     0,                      0          },
      {"0",                    0,                      0          },
      {"-0",                   0,                      0          },
      {"7",                    7,                      7          },
      {"+7",                   7,                      7          },
      {"  \t\n7",              7,                      7          },
      {"7 ",                   7,                      7          },
      {"12abc",                12,                     12         },
      {"1.9",                  1,                      1          },
      {"08",                   0,                      0          },
      {"0x",                   0,                      0          },
      {"abc",                  0,                      0          },
      {"-",                    0,                      0          },
      {"- 1",                  0,                      0          },
      {"--1",                  0,                      0          },
      {"true",                 0,                      0          },
      {"-1",                   18446744073709551615ul, -1         },
      {"2147483647",           2147483647ul,           2147483647 },
      {"2147483648",           2147483648ul,           2147483647 },
      {"-2147483649",          18446744071562067967ul, -2147483648},
      {"18446744073709551615", 18446744073709551615ul, 2147483647 },
      {"18446744073709551616", 18446744073709551615ul, 2147483647 },
      {"99999999999999999999", 18446744073709551615ul, 2147483647 },
  };
  for (const auto& row : kRows) {
    EXPECT_EQ(TCIMValue(row.unsigned64), Parse(TCIMType::TypeUint64, row.text)) << row.text;
    EXPECT_EQ(TCIMValue(row.signed32), Parse(TCIMType::TypeSint32, row.text)) << row.text;
  }
}

TEST(ParsingNumbers, CutsTheSmallestTypesToEightBits) {
  const struct {
    const char* text;
    int unsigned8;
    int signed8;
  } kRows[] = {
      {"255",         255, -1  },
      {"256",         0,   0   },
      {"300",         44,  44  },
      {"128",         128, -128},
      {"-1",          255, -1  },
      {"-129",        127, 127 },
      {"65",          65,  65  },
      {"A",           0,   0   }, // no character either
      {"4294967295",  255, -1  }, // as int: the greatest one
      {"4294967296",  255, -1  }, // as unsigned int: the greatest one
      {"-2147483649", 255, 0   },
  };
  for (const auto& row : kRows) {
    EXPECT_EQ(TCIMValue(static_cast<unsigned char>(row.unsigned8)),
              Parse(TCIMType::TypeUint8, row.text))
        << row.text;
    EXPECT_EQ(TCIMValue(static_cast<signed char>(row.signed8)),
              Parse(TCIMType::TypeSint8, row.text))
        << row.text;
  }
}

TEST(ParsingNumbers, AcceptsBooleansAsLowerCaseWords) {
  EXPECT_EQ(TCIMValue(true), Parse(TCIMType::TypeBoolean, "true"));
  EXPECT_EQ(TCIMValue(true), Parse(TCIMType::TypeBoolean, " true"));
  for (const char* text : {"false", "TRUE", "True", "1", "0", "", "yes", "tru", "null"}) {
    const TCIMValue value = Parse(TCIMType::TypeBoolean, text);
    EXPECT_EQ(TCIMValue(false), value) << text;
  }
}

TEST(ParsingNumbers, ReadsRealsInDecimalAlone) {
  const struct {
    const char* text;
    float real32;
    double real64;
  } kRows[] = {
      {"0",      0.0f,                               0.0                                },
      {"1.5",    1.5f,                               1.5                                },
      {"-1.5e3", -1500.0f,                           -1500.0                            },
      {"+2",     2.0f,                               2.0                                },
      {".5",     0.5f,                               0.5                                },
      {"5.",     5.0f,                               5.0                                },
      {" 3.25x", 3.25f,                              3.25                               },
      {"010",    10.0f,                              10.0                               },
      {"0.1",    0.1f,                               0.1                                },
      {"1,5",    1.0f,                               1.0                                },
      {"0x10",   0.0f,                               0.0                                },
      {"inf",    0.0f,                               0.0                                },
      {"nan",    0.0f,                               0.0                                },
      {"abc",    0.0f,                               0.0                                },
      {"",       0.0f,                               0.0                                },
      {"1e39",   std::numeric_limits<float>::max(),  1e39                               },
      {"1e999",  std::numeric_limits<float>::max(),  std::numeric_limits<double>::max() },
      {"-1e999", -std::numeric_limits<float>::max(), -std::numeric_limits<double>::max()},
  };
  for (const auto& row : kRows) {
    EXPECT_EQ(TCIMValue(row.real32), Parse(TCIMType::TypeReal32, row.text)) << row.text;
    EXPECT_EQ(TCIMValue(row.real64), Parse(TCIMType::TypeReal64, row.text)) << row.text;
  }
}

TEST(ParsingNumbers, AgreesWithTheStreamOnEdges) {
  for (const char* text : {"127",
                           "128",
                           "-128",
                           "-129",
                           "255",
                           "256",
                           "32767",
                           "32768",
                           "-32768",
                           "-32769",
                           "65535",
                           "65536",
                           "-65535",
                           "-65536",
                           "4294967295",
                           "4294967296",
                           "-4294967296",
                           "9223372036854775807",
                           "9223372036854775808",
                           "-9223372036854775808",
                           "-9223372036854775809",
                           "00",
                           "-00",
                           "01",
                           "0x7fffffff",
                           "0xfffffffffffffffff",
                           "1e5",
                           "1E5",
                           "1e",
                           "1e+",
                           "1e+5",
                           "1e-5",
                           "e5",
                           ".",
                           "-.",
                           "+.5",
                           "-.5",
                           "1.5.5",
                           "1e5e5",
                           "1-2",
                           "--",
                           "-0.0",
                           "-0",
                           "1e-400",
                           "-1e-400",
                           "4.9e-324",
                           "1e-45",
                           "1e-46",
                           "2.2250738585072011e-308",
                           "3.4028235e38",
                           "3.4028236e38",
                           "1.7976931348623157e308",
                           "1.7976931348623159e308",
                           "0.1000000000000000055511151231257827",
                           "16777217",
                           "9007199254740993",
                           "INF",
                           "NAN",
                           "infinity",
                           "nan(1)",
                           "0x1p3",
                           "0x1.8p1",
                           "truefalse",
                           "true ",
                           "false ",
                           "tru e",
                           "f",
                           "t"}) {
    ExpectReadAsByStreamInAllTypes(text);
  }
  ExpectReadAsByStreamInAllTypes(std::string(1000, '9'));
  ExpectReadAsByStreamInAllTypes(std::string(400, '0') + "7");
  ExpectReadAsByStreamInAllTypes(std::string("12\0003", 4));
  ExpectReadAsByStreamInAllTypes("12\xC3\xA4");
}

TEST(ParsingNumbers, AgreesWithTheStreamOnAnyText) {
  const std::string alphabets[] = {"0123456789", "0123456789+-.eE",
                                   "0123456789abcdefxX+- \t,trufals"};
  std::mt19937 random(20040315);
  for (int i = 0; i < 20000 && !testing::Test::HasFailure(); ++i) {
    const std::string& alphabet = alphabets[random() % std::size(alphabets)];
    std::string text(random() % 24, ' ');
    for (char& c : text) c = alphabet[random() % alphabet.size()];
    ExpectReadAsByStreamInAllTypes(text);
  }
}

TEST(Numbers, DoNotDependOnTheGlobalLocale) {
  const std::locale former =
      std::locale::global(std::locale(std::locale::classic(), new TGroupingPunctuation));
  EXPECT_EQ("1234567", TCIMValue(1234567).ToString(10));
  EXPECT_EQ("123456", TCIMValue(123456.0).ToString(10));
  EXPECT_EQ("1.5", TCIMValue(1.5).ToString(10));
  EXPECT_EQ("true", TCIMValue(true).ToString(10));
  EXPECT_EQ(TCIMValue(1.5), Parse(TCIMType::TypeReal64, " 1.5"));
  EXPECT_EQ(TCIMValue(1), Parse(TCIMType::TypeSint32, " 1.000"));
  EXPECT_EQ(TCIMValue(true), Parse(TCIMType::TypeBoolean, " true"));
  EXPECT_EQ(TCIMValue(false), Parse(TCIMType::TypeBoolean, "wahr"));
  std::locale::global(former);
}

TEST(TCIMNumericValueImpl, ConvertsToItsOwnTypeAlone) {
  const TCIMNumericValueImpl number(static_cast<unsigned char>(7));
  EXPECT_EQ(7, number.operator unsigned char());
  EXPECT_EQ("zelStatusTypeMismatch", StatusOf([&] { number.operator unsigned int(); }));
  EXPECT_EQ("zelStatusTypeMismatch", StatusOf([&] { number.operator signed char(); }));
  EXPECT_EQ("zelStatusTypeMismatch", StatusOf([&] { number.operator bool(); }));
  EXPECT_EQ("zelStatusTypeMismatch", StatusOf([&] { number.operator std::string(); }));
  EXPECT_EQ("zelStatusTypeMismatch", StatusOf([&] { number.operator TCIMDateTime(); }));
  EXPECT_EQ("zelStatusTypeMismatch", StatusOf([&] { number.operator TCIMReference(); }));
  TCIMNumericValueImpl changeable(7u);
  EXPECT_EQ("zelStatusTypeMismatch",
            StatusOf([&] { changeable.operator std::vector<TCIMValue>&(); }));
}

TEST(TCIMNumericValueImpl, IsNeitherEqualNorLessForAnotherType) {
  const TCIMNumericValueImpl one(1);
  EXPECT_TRUE(one == TCIMValue(1));
  EXPECT_TRUE(one < TCIMValue(2));
  EXPECT_FALSE(one == TCIMValue(1u));
  EXPECT_FALSE(one < TCIMValue(2u));
  EXPECT_FALSE(one == TCIMValue("1"));
}

TEST(VisitNumeric, RefusesWhatIsNoNumber) {
  const auto ignore = [](auto) {};
  EXPECT_EQ("zelStatusNotImplemented", StatusOf([&] { VisitNumeric(TCIMType::TypeChar, ignore); }));
  for (unsigned int code : {0u, 13u, 14u, 15u, 16u, 17u, 32u}) {
    EXPECT_EQ("zelStatusTypeMismatch",
              StatusOf([&] { VisitNumeric(TCIMType::ECIMType(code), ignore); }))
        << code;
  }
}
