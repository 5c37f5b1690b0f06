#include <gtest/gtest.h>

#include <sstream>

#include "tests/support/Status.h"
#include "zelcore/TCIMValue.h"
#include "zelcore/detail/TypeText.h"

namespace {

using TCIMType = TCIMValue::TCIMType;
using zelcore::detail::TypeText;

const struct {
  unsigned int code;
  const char* text;
  bool isAccepted;
} kTypes[] = {
    {1,  "boolean",   true },
    {2,  "uint8",     true },
    {3,  "sint8",     true },
    {4,  "uint16",    true },
    {5,  "sint16",    true },
    {6,  "uint32",    true },
    {7,  "sint32",    true },
    {8,  "uint64",    true },
    {9,  "sint64",    true },
    {10, "real32",    true },
    {11, "real64",    true },
    {12, "char",      false},
    {13, "string",    true },
    {14, "datetime",  true },
    {15, "reference", false},
};

TCIMType TypeOf(unsigned int code) { return TCIMType::ECIMType(code); }

}  // namespace

TEST(TCIMType, PrintsItsTextWithoutTheArrayFlag) {
  for (const auto& type : kTypes) {
    EXPECT_EQ(type.text, TypeOf(type.code).ToString());
    EXPECT_EQ(type.text, TypeOf(type.code + 16).ToString());

    std::ostringstream out;
    out << TypeOf(type.code);
    EXPECT_EQ(type.text, out.str());
  }
}

TEST(TCIMType, HasNoTextForNoTypeAndForUnknownCodes) {
  for (unsigned int code : {0u, 16u, 32u, 33u, 48u, 64u, 0xFFFFFFFFu}) {
    EXPECT_EQ("zelStatusTypeMismatch", StatusOf([&] { TypeOf(code).ToString(); })) << code;
    std::ostringstream out;
    EXPECT_EQ("zelStatusTypeMismatch", StatusOf([&] { out << TypeOf(code); })) << code;
    EXPECT_EQ("", TypeText(TypeOf(code))) << code;
  }
  EXPECT_EQ("uint8", TypeText(TypeOf(18)));
}

TEST(TCIMType, IsMadeFromTheTextsOfTypesThatDocumentsName) {
  for (const auto& type : kTypes) {
    if (type.isAccepted) {
      EXPECT_EQ(type.code, TCIMType(std::string(type.text))) << type.text;
    } else {
      EXPECT_EQ("zelStatusTypeMismatch", StatusOf([&] { TCIMType(std::string(type.text)); }));
    }
  }
}

TEST(TCIMType, IgnoresTheCaseOfItsText) {
  EXPECT_EQ(6u, TCIMType(std::string("UINT32")));
  EXPECT_EQ(14u, TCIMType(std::string("DateTime")));
  const std::string text = "STRING";
  const TCIMType type(text);
  EXPECT_EQ(13u, type);
  EXPECT_EQ("STRING", text);
}

TEST(TCIMType, RefusesEveryOtherText) {
  for (const char* text : {"", "char16", "CHAR", "Reference", "int", "uint128", " uint8", "uint8 ",
                           "uint", "boolean[]", "none"}) {
    EXPECT_EQ("zelStatusTypeMismatch", StatusOf([&] { TCIMType(std::string(text)); })) << text;
  }
}

TEST(TCIMType, TellsArraysByTheirFlagAlone) {
  EXPECT_FALSE(TypeOf(0).IsArray());
  EXPECT_FALSE(TypeOf(15).IsArray());
  EXPECT_TRUE(TypeOf(16).IsArray());
  EXPECT_TRUE(TypeOf(22).IsArray());
  EXPECT_FALSE(TypeOf(32).IsArray());
  EXPECT_TRUE(TypeOf(48).IsArray());
}

TEST(TCIMType, CopiesItsCode) {
  const TCIMType type = TCIMType::TypeReal64;
  TCIMType copy(type);
  EXPECT_EQ(11u, copy);
  copy = TCIMType::TypeUint8;
  EXPECT_EQ(2u, copy);
  EXPECT_EQ(11u, type);
}
