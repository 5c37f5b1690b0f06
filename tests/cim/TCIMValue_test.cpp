#include "zelcore/TCIMValue.h"

#include <gtest/gtest.h>

#include <limits>
#include <memory>
#include <utility>

#include "cim/TCIMArrayValueImpl.h"
#include "cim/TCIMObjectValueImpl.h"
#include "tests/support/LogSpy.h"
#include "tests/support/Status.h"
#include "zelcore/TCIMClass.h"
#include "zelcore/TCIMDateTime.h"
#include "zelcore/TCIMReference.h"
#include "zelcore/TContainer.h"

namespace {

using TCIMType = TCIMValue::TCIMType;
using TValues = std::vector<TCIMValue>;

TCIMType TypeOf(unsigned int code) { return TCIMType::ECIMType(code); }

TCIMValue Null(unsigned int code) { return TCIMValue(TypeOf(code), 0); }

const TCIMDateTime kMarch(std::string("20040315142530.000000+000"));
const TCIMDateTime kOneDay(1, 0, 0, 0, 0);

class TCIMValueTest : public testing::Test {
 protected:
  TCIMReference PathOf(TCIMClass& cls) {
    TCIMReference path(&fContainer);
    path.SetClass(cls);
    return path;
  }

  // One value of each type that there is, in the order of the codes.
  TValues OneOfEach() {
    return {true,
            static_cast<unsigned char>(2),
            static_cast<signed char>(3),
            static_cast<unsigned short>(4),
            static_cast<short>(5),
            6u,
            7,
            8ul,
            9l,
            10.0f,
            11.0,
            "thirteen",
            kMarch,
            PathOf(fFan)};
  }

  TContainer fContainer;
  TCIMClass fFan{fContainer, "ACME_Fan", nullptr};
  TCIMClass fDisk{fContainer, "ACME_Disk", nullptr};
};

// The status of converting `value` to T.
template <class T>
std::string Conversion(const TCIMValue& value) {
  return StatusOf([&] { value.operator T(); });
}

std::vector<std::string> Conversions(const TCIMValue& value) {
  return {Conversion<bool>(value),         Conversion<unsigned char>(value),
          Conversion<signed char>(value),  Conversion<unsigned short>(value),
          Conversion<short>(value),        Conversion<unsigned int>(value),
          Conversion<int>(value),          Conversion<unsigned long>(value),
          Conversion<long>(value),         Conversion<float>(value),
          Conversion<double>(value),       Conversion<std::string>(value),
          Conversion<TCIMDateTime>(value), Conversion<TCIMReference>(value),
          Conversion<TValues&>(value)};
}

}  // namespace

TEST_F(TCIMValueTest, IsUntypedAndNullAtFirst) {
  const TCIMValue value;
  EXPECT_EQ(0u, value.GetType());
  EXPECT_TRUE(value.IsNull());
  EXPECT_FALSE(value.IsArray());
  EXPECT_FALSE(value.IsReference());
  EXPECT_EQ(0u, value.GetMaxArraySize());
  EXPECT_EQ(nullptr, value.GetReferencedClass());
}

TEST_F(TCIMValueTest, TakesTheTypeOfTheNativeValue) {
  const unsigned int kCodes[] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 13, 14, 15};
  const TValues values = OneOfEach();
  for (std::size_t i = 0; i < values.size(); ++i) {
    EXPECT_EQ(kCodes[i], values[i].GetType());
    EXPECT_FALSE(values[i].IsNull());
    EXPECT_EQ(values[i].GetType() == 15, values[i].IsReference());
  }
  EXPECT_EQ(13u, TCIMValue(std::string("text")).GetType());
}

TEST_F(TCIMValueTest, ConvertsToTheMatchingNativeTypeAlone) {
  const std::size_t kMatches[] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13};
  const TValues values = OneOfEach();
  for (std::size_t i = 0; i < values.size(); ++i) {
    std::vector<std::string> expected(15, "zelStatusTypeMismatch");
    expected[kMatches[i]] = "zelStatusOK";
    EXPECT_EQ(expected, Conversions(values[i])) << values[i].GetType();
  }
  std::vector<std::string> expected(15, "zelStatusTypeMismatch");
  expected[14] = "zelStatusOK";
  EXPECT_EQ(expected, Conversions(TCIMValue(TCIMType::TypeUint8, 0, {})));

  EXPECT_TRUE(bool(values[0]));
  EXPECT_EQ(2, static_cast<unsigned char>(values[1]));
  EXPECT_EQ(3, static_cast<signed char>(values[2]));
  EXPECT_EQ(4, static_cast<unsigned short>(values[3]));
  EXPECT_EQ(5, static_cast<short>(values[4]));
  EXPECT_EQ(6u, static_cast<unsigned int>(values[5]));
  EXPECT_EQ(7, static_cast<int>(values[6]));
  EXPECT_EQ(8ul, static_cast<unsigned long>(values[7]));
  EXPECT_EQ(9l, static_cast<long>(values[8]));
  EXPECT_EQ(10.0f, static_cast<float>(values[9]));
  EXPECT_EQ(11.0, static_cast<double>(values[10]));
  EXPECT_EQ("thirteen", values[11].operator std::string());
  EXPECT_EQ(kMarch, values[12].operator TCIMDateTime());
  EXPECT_EQ(&fFan, values[13].operator TCIMReference().GetClass());
}

TEST_F(TCIMValueTest, ConvertsNoNullValue) {
  const std::vector<std::string> expected(15, "zelStatusValueIsNULL");
  for (unsigned int code = 0; code < 32; ++code) {
    EXPECT_EQ(expected, Conversions(Null(code))) << code;
    EXPECT_EQ("zelStatusValueIsNULL", StatusOf([&] { Null(code).ToString(10); })) << code;
    EXPECT_EQ("zelStatusValueIsNULL", StatusOf([&] { Null(code).ToString(7); })) << code;
  }
}

TEST_F(TCIMValueTest, IsMadeNullOfAnyTypeAndOfArrays) {
  for (unsigned int code = 0; code < 32; ++code) {
    EXPECT_EQ(code, Null(code).GetType());
    EXPECT_TRUE(Null(code).IsNull());
    EXPECT_EQ(code >= 16, Null(code).IsArray());
    EXPECT_EQ(code == 15, Null(code).IsReference());
    EXPECT_EQ(0u, Null(code).GetMaxArraySize());

    const TCIMValue array(TypeOf(code), 5);
    EXPECT_EQ(code | 16, array.GetType());
    EXPECT_EQ(5u, array.GetMaxArraySize());
  }
}

TEST_F(TCIMValueTest, SetsNullWithASizeForArraysOnly) {
  TCIMValue value(7);
  value.SetNullValue(TCIMType::TypeUint8, 9);
  EXPECT_EQ(2u, value.GetType());
  EXPECT_TRUE(value.IsNull());
  EXPECT_EQ(0u, value.GetMaxArraySize());

  value.SetNullValue(TypeOf(18), 9);
  EXPECT_EQ(18u, value.GetType());
  EXPECT_EQ(9u, value.GetMaxArraySize());

  value.SetNullValue(TCIMType::TypeString, 4);
  EXPECT_EQ(9u, value.GetMaxArraySize());
}

TEST_F(TCIMValueTest, DropsTheArrayFlagButKeepsSizeAndClassWhenSet) {
  TCIMValue value(TCIMType::TypeUint8, 5);
  value.SetReferencedClass(fFan);
  value.Set("text");
  EXPECT_EQ(13u, value.GetType());
  value.Set(static_cast<short>(1));
  EXPECT_EQ(5u, value.GetType());
  value.Set(kMarch);
  EXPECT_EQ(14u, value.GetType());
  value.Set(std::string("again"));
  EXPECT_EQ("again", value.ToString(10));
  EXPECT_EQ(5u, value.GetMaxArraySize());
  EXPECT_EQ(&fFan, value.GetReferencedClass());
}

TEST_F(TCIMValueTest, TakesAReferencedClassWhileNull) {
  TCIMValue value = Null(15);
  value.SetReferencedClass(fFan);
  value.SetReferencedClass(fDisk);
  EXPECT_EQ(&fDisk, value.GetReferencedClass());

  value.Set(5);
  EXPECT_EQ("zelStatusInvalidOpSequence", StatusOf([&] { value.SetReferencedClass(fFan); }));
  EXPECT_EQ(&fDisk, value.GetReferencedClass());
}

TEST_F(TCIMValueTest, TakesTheClassOfAPathAndKeepsItWhenSetToSomethingElse) {
  TCIMValue value = Null(15);
  value.SetReferencedClass(fDisk);
  const TCIMReference path = PathOf(fFan);
  value.Set(path);
  EXPECT_TRUE(value.IsReference());
  EXPECT_EQ(&fFan, value.GetReferencedClass());
  EXPECT_EQ("ACME_Fan", value.ToString(10));
  EXPECT_EQ("ACME_Fan", value.ToString(7));
  EXPECT_EQ("ACME_Fan", path.GetPath());

  value.Set(5);
  EXPECT_EQ(&fFan, value.GetReferencedClass());
  value.Set(PathOf(fDisk));
  EXPECT_EQ(&fDisk, value.GetReferencedClass());
  EXPECT_EQ("ACME_Disk", TCIMValue(PathOf(fDisk)).ToString(10));
}

TEST_F(TCIMValueTest, RefusesAPathWithoutClassAndChangesNothing) {
  TCIMValue value(5);
  const TCIMReference empty(&fContainer);
  EXPECT_EQ("zelStatusInvalidReference", StatusOf([&] { value.Set(empty); }));
  EXPECT_EQ("zelStatusInvalidReference", StatusOf([&] { value.Set(TCIMReference(empty)); }));
  EXPECT_EQ("zelStatusInvalidReference", StatusOf([&] { TCIMValue fresh(empty); }));
  EXPECT_EQ(TCIMValue(5), value);
  EXPECT_EQ(nullptr, value.GetReferencedClass());
}

TEST_F(TCIMValueTest, ReadsStringsDatetimesAndNumbersFromText) {
  EXPECT_EQ(TCIMValue(" As it stands\n"),
            TCIMValue(TCIMType::TypeString, " As it stands\n", fContainer));
  EXPECT_EQ(TCIMValue(kMarch),
            TCIMValue(TCIMType::TypeDateTime, "20040315142530.000000+000", fContainer));
  EXPECT_EQ(TCIMValue(15u), TCIMValue(TCIMType::TypeUint32, "15", fContainer));
  EXPECT_EQ(0u, TCIMValue(TCIMType::TypeUint32, "15", fContainer).GetMaxArraySize());
}

TEST_F(TCIMValueTest, ReadsNothingElseFromText) {
  const auto parse = [&](TCIMType type, const std::string& text) {
    return StatusOf([&] { TCIMValue value(type, text, fContainer); });
  };
  EXPECT_EQ("zelStatusInvalidDateTime", parse(TCIMType::TypeDateTime, "2004"));
  EXPECT_EQ("zelStatusNotImplemented", parse(TCIMType::TypeReference, "ACME_Fan"));
  EXPECT_EQ("zelStatusTypeMismatch", parse(TCIMType::TypeNone, "1"));
  EXPECT_EQ("zelStatusTypeMismatch", parse(TCIMType::TypeChar, "c"));
  for (unsigned int code = 16; code < 40; ++code) {
    EXPECT_EQ("zelStatusTypeMismatch", parse(TypeOf(code), "1")) << code;
  }
}

TEST_F(TCIMValueTest, PrintsStringsAndDatetimesWhateverTheBase) {
  EXPECT_EQ("text", TCIMValue("text").ToString(7));
  EXPECT_EQ("20040315142530.000000+000", TCIMValue(kMarch).ToString(7));
  EXPECT_EQ("zelStatusInvalidDateTime", StatusOf([] { TCIMValue(TCIMDateTime()).ToString(10); }));
}

TEST_F(TCIMValueTest, PrintsArraysElementByElement) {
  const TCIMValue empty(TCIMType::TypeUint8, 0, {});
  EXPECT_EQ("{  }", empty.ToString(10));
  EXPECT_EQ("{  }", empty.ToString(7));
  const TCIMValue one(TCIMType::TypeUint8, 0, {static_cast<unsigned char>(10)});
  EXPECT_EQ("{ 0A }", one.ToString(16));
  EXPECT_EQ("{ 10 }", one.ToString(10));
  const TCIMValue three(TCIMType::TypeString, 0, {"a", "", "c, d"});
  EXPECT_EQ("{ a, , c, d }", three.ToString(10));
  EXPECT_EQ("zelStatusNotSupported", StatusOf([&] { one.ToString(7); }));
  const TCIMValue holed(TCIMType::TypeUint8, 0, {static_cast<unsigned char>(10), Null(2)});
  EXPECT_EQ("zelStatusValueIsNULL", StatusOf([&] { holed.ToString(10); }));
}

TEST_F(TCIMValueTest, HandsOutTheElementsThemselves) {
  const TCIMValue array(TCIMType::TypeSint32, 1, {1, 2});
  TValues& elements = array;
  elements.push_back(3);
  elements[0] = 9;
  EXPECT_EQ("{ 9, 2, 3 }", array.ToString(10));
  EXPECT_EQ(1u, array.GetMaxArraySize());
}

TEST_F(TCIMValueTest, HoldsArraysOfItsTypeAndOfNull) {
  TCIMValue array;
  array.Set(TCIMType::TypeUint8, 7, {static_cast<unsigned char>(1), Null(2)});
  EXPECT_EQ(18u, array.GetType());
  EXPECT_TRUE(array.IsArray());
  EXPECT_EQ(7u, array.GetMaxArraySize());

  array.Set(TypeOf(29), 0, {"a"});
  EXPECT_EQ(29u, array.GetType());
  EXPECT_EQ(0u, array.GetMaxArraySize());

  array.Set(TCIMType::TypeReference, 0, {PathOf(fFan)});
  EXPECT_EQ(31u, array.GetType());
  EXPECT_FALSE(array.IsReference());
  EXPECT_TRUE(LogLines().empty());
}

TEST_F(TCIMValueTest, ReportsAnElementOfAnotherTypeButKeepsTheArray) {
  const TValues elements = {static_cast<unsigned char>(1), 2u, "three"};
  TCIMValue array(5);
  EXPECT_EQ("zelStatusInvalidProperty",
            StatusOf([&] { array.Set(TCIMType::TypeUint8, 3, elements); }));
  EXPECT_EQ(std::vector<std::string>{"ERROR: Attempting to create array of type uint8, but element "
                                     "is of type uint32."},
            LogLines(zelLogError));
  EXPECT_EQ(18u, array.GetType());
  EXPECT_EQ(3u, array.GetMaxArraySize());
  EXPECT_EQ("{ 1, 2, three }", array.ToString(10));

  EXPECT_EQ("zelStatusInvalidProperty",
            StatusOf([&] { array.Set(TCIMType::TypeUint8, 4, TValues(elements)); }));
  EXPECT_EQ(4u, array.GetMaxArraySize());
  EXPECT_EQ("zelStatusInvalidProperty",
            StatusOf([&] { TCIMValue fresh(TCIMType::TypeUint8, 4, elements); }));
}

TEST_F(TCIMValueTest, ReportsElementsWhoseTypeHasNoText) {
  TCIMValue array;
  EXPECT_EQ("zelStatusInvalidProperty", StatusOf([&] { array.Set(TypeOf(29), 0, {TCIMValue()}); }));
  EXPECT_EQ("ERROR: Attempting to create array of type string, but element is of type .",
            LastLogLine());
  EXPECT_EQ("zelStatusInvalidProperty", StatusOf([&] { array.Set(TypeOf(0), 0, {"a"}); }));
  EXPECT_EQ("ERROR: Attempting to create array of type , but element is of type string.",
            LastLogLine());
  EXPECT_EQ("zelStatusInvalidProperty", StatusOf([&] {
              array.Set(TCIMType::TypeUint8, 0, {TCIMValue(TCIMType::TypeUint8, 0, {})});
            }));
  EXPECT_EQ("ERROR: Attempting to create array of type uint8, but element is of type uint8.",
            LastLogLine());
}

TEST_F(TCIMValueTest, VariantsConvertToAndCompareWithTheirOwnTypeAlone) {
  TCIMStringValueImpl text(std::in_place, "text");
  EXPECT_EQ("text", text.operator std::string());
  EXPECT_EQ("zelStatusTypeMismatch", StatusOf([&] { text.operator bool(); }));
  EXPECT_EQ("zelStatusTypeMismatch", StatusOf([&] { text.operator unsigned char(); }));
  EXPECT_EQ("zelStatusTypeMismatch", StatusOf([&] { text.operator signed char(); }));
  EXPECT_EQ("zelStatusTypeMismatch", StatusOf([&] { text.operator unsigned short(); }));
  EXPECT_EQ("zelStatusTypeMismatch", StatusOf([&] { text.operator short(); }));
  EXPECT_EQ("zelStatusTypeMismatch", StatusOf([&] { text.operator unsigned int(); }));
  EXPECT_EQ("zelStatusTypeMismatch", StatusOf([&] { text.operator int(); }));
  EXPECT_EQ("zelStatusTypeMismatch", StatusOf([&] { text.operator unsigned long(); }));
  EXPECT_EQ("zelStatusTypeMismatch", StatusOf([&] { text.operator long(); }));
  EXPECT_EQ("zelStatusTypeMismatch", StatusOf([&] { text.operator float(); }));
  EXPECT_EQ("zelStatusTypeMismatch", StatusOf([&] { text.operator double(); }));
  EXPECT_EQ("zelStatusTypeMismatch", StatusOf([&] { text.operator TCIMDateTime(); }));
  EXPECT_EQ("zelStatusTypeMismatch", StatusOf([&] { text.operator TCIMReference(); }));
  EXPECT_EQ("zelStatusTypeMismatch", StatusOf([&] { text.operator TValues&(); }));
  EXPECT_FALSE(text == TCIMValue(1));
  EXPECT_FALSE(text < TCIMValue(kMarch));
  EXPECT_EQ("zelStatusValueIsNULL", StatusOf([&] { (void)(text == Null(13)); }));
  const TCIMArrayValueImpl array(TValues{1});
  EXPECT_TRUE(array == TCIMValue(TCIMType::TypeSint32, 0, {1}));
  EXPECT_FALSE(array == TCIMValue(1));
  EXPECT_EQ("zelStatusNotImplemented", StatusOf([&] { (void)(array < TCIMValue(1)); }));
  EXPECT_EQ("zelStatusTypeMismatch", StatusOf([&] { array.operator int(); }));
  TCIMDateTimeValueImpl moment(std::in_place, kMarch);
  EXPECT_EQ("zelStatusTypeMismatch", StatusOf([&] { moment.operator std::string(); }));
}
