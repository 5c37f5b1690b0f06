// Comparing values, and copying them, which begins with a comparison.

#include <gtest/gtest.h>

#include <limits>
#include <utility>

#include "tests/support/Status.h"
#include "zelcore/TCIMClass.h"
#include "zelcore/TCIMDateTime.h"
#include "zelcore/TCIMReference.h"
#include "zelcore/TCIMValue.h"
#include "zelcore/TContainer.h"

namespace {

using TCIMType = TCIMValue::TCIMType;
using TValues = std::vector<TCIMValue>;

TCIMValue Null(unsigned int code) { return TCIMValue(TCIMType::ECIMType(code), 0); }

TCIMValue NullArray(TCIMType type, unsigned int maxArraySize) {
  return TCIMValue(type, maxArraySize);
}

TCIMValue NullOf(TCIMType type, TCIMClass& cls) {
  TCIMValue value(type, 0);
  value.SetReferencedClass(cls);
  return value;
}

TCIMValue Numbers(TValues numbers) { return TCIMValue(TCIMType::TypeSint32, 0, numbers); }

const TCIMDateTime kMarch(std::string("20040315142530.000000+000"));
const TCIMDateTime kApril(std::string("20040415142530.000000+000"));
const TCIMDateTime kOneDay(1, 0, 0, 0, 0);
const double kNaN = std::numeric_limits<double>::quiet_NaN();

template <class TLeft, class TRight>
void ExpectOrder(const TLeft& less, const TRight& greater) {
  const TCIMValue a(less);
  const TCIMValue b(greater);
  EXPECT_TRUE(a < b);
  EXPECT_TRUE(b > a);
  EXPECT_TRUE(a <= b);
  EXPECT_TRUE(b >= a);
  EXPECT_TRUE(a != b);
  EXPECT_FALSE(b < a);
  EXPECT_FALSE(a > b);
  EXPECT_FALSE(b <= a);
  EXPECT_FALSE(a >= b);
  EXPECT_FALSE(a == b);
}

class Classes : public testing::Test {
 protected:
  TCIMReference PathOf(TCIMClass& cls) {
    TCIMReference path(&fContainer);
    path.SetClass(cls);
    return path;
  }

  TContainer fContainer;
  TCIMClass fClasses[2] = {
      {fContainer, "ACME_Fan",  nullptr},
      {fContainer, "ACME_Disk", nullptr}
  };
  TCIMClass& fFan = fClasses[0];
  TCIMClass& fDisk = fClasses[1];
};

using ComparingValues = Classes;
using CopyingValues = Classes;

}  // namespace

TEST_F(ComparingValues, OrdersNumbersByTheirNativeType) {
  ExpectOrder(false, true);
  ExpectOrder(static_cast<unsigned char>(1), static_cast<unsigned char>(255));
  ExpectOrder(static_cast<signed char>(-1), static_cast<signed char>(1));
  ExpectOrder(static_cast<unsigned short>(1), static_cast<unsigned short>(65535));
  ExpectOrder(static_cast<short>(-32768), static_cast<short>(0));
  ExpectOrder(1u, 4294967295u);
  ExpectOrder(-1, 0);
  ExpectOrder(1ul, 18446744073709551615ul);
  ExpectOrder(std::numeric_limits<long>::min(), 4294967296l);
  ExpectOrder(-0.5f, 0.25f);
  ExpectOrder(-1e300, 1e-300);
}

TEST_F(ComparingValues, OrdersStringsByTheirBytes) {
  ExpectOrder("", "a");
  ExpectOrder("a", "ab");
  ExpectOrder("B", "a");
  ExpectOrder("z", "\xC3\xA4");
  ExpectOrder(std::string("a"), std::string("a\0", 2));
  EXPECT_EQ(TCIMValue("Fan"), TCIMValue(std::string("Fan")));
  EXPECT_NE(TCIMValue("Fan"), TCIMValue("fan"));
}

TEST_F(ComparingValues, OrdersDatetimesOfOneKind) {
  ExpectOrder(kMarch, kApril);
  ExpectOrder(kOneDay, TCIMDateTime(2, 0, 0, 0, 0));
  EXPECT_EQ(TCIMValue(kMarch), TCIMValue(kMarch));
  const TCIMValue march(kMarch);
  for (const TCIMValue& other : {TCIMValue(kOneDay), TCIMValue(TCIMDateTime())}) {
    EXPECT_EQ("zelStatusInvalidDateTime", StatusOf([&] { (void)(march == other); }));
    EXPECT_EQ("zelStatusInvalidDateTime", StatusOf([&] { (void)(other < march); }));
  }
}

TEST_F(ComparingValues, OrdersReferencesAsTheirPaths) {
  ExpectOrder(PathOf(fFan), PathOf(fDisk));  // by the address of the class
  EXPECT_EQ(TCIMValue(PathOf(fFan)), TCIMValue(PathOf(fFan)));
}

TEST_F(ComparingValues, PutsNullFirstThenTheTypeCode) {
  ExpectOrder(Null(31), false);
  ExpectOrder(Null(2), static_cast<unsigned char>(0));
  ExpectOrder(true, static_cast<unsigned char>(0));
  ExpectOrder(7, 6ul);
  ExpectOrder("a", kMarch);
  ExpectOrder(PathOf(fFan), Numbers({}));
  ExpectOrder(Numbers({2}), TCIMValue(TCIMType::TypeString, 0, {"a"}));
  EXPECT_FALSE(Null(2) < Null(3));
  EXPECT_FALSE(Null(3) < Null(2));
}

TEST_F(ComparingValues, TakesNullForEqualByTypeClassAndSize) {
  EXPECT_EQ(TCIMValue(), TCIMValue());
  EXPECT_EQ(Null(2), Null(2));
  EXPECT_NE(Null(2), Null(4));
  EXPECT_NE(Null(2), Null(18));
  EXPECT_NE(Null(2), TCIMValue(static_cast<unsigned char>(0)));
  EXPECT_NE(TCIMValue(static_cast<unsigned char>(0)), Null(2));

  EXPECT_EQ(NullOf(TCIMType::TypeReference, fFan), NullOf(TCIMType::TypeReference, fFan));
  EXPECT_NE(NullOf(TCIMType::TypeReference, fFan), NullOf(TCIMType::TypeReference, fDisk));
  EXPECT_EQ(NullOf(TCIMType::TypeString, fFan), NullOf(TCIMType::TypeString, fDisk));

  EXPECT_EQ(NullArray(TCIMType::TypeUint8, 5), NullArray(TCIMType::TypeUint8, 5));
  EXPECT_NE(NullArray(TCIMType::TypeUint8, 5), NullArray(TCIMType::TypeUint8, 6));
}

TEST_F(ComparingValues, ComparesArraysByTheirElementsWhateverTheSize) {
  EXPECT_EQ(Numbers({}), Numbers({}));
  EXPECT_EQ(Numbers({1, Null(7)}), Numbers({1, Null(7)}));
  EXPECT_NE(Numbers({1, 2}), Numbers({1}));
  EXPECT_NE(Numbers({1, 2}), Numbers({2, 1}));
  EXPECT_NE(Numbers({1}), TCIMValue(1));
  EXPECT_NE(Numbers({}), TCIMValue(TCIMType::TypeUint8, 0, {}));
  EXPECT_EQ(TCIMValue(TCIMType::TypeSint32, 5, {1}), TCIMValue(TCIMType::TypeSint32, 6, {1}));
}

TEST_F(ComparingValues, HasNoOrderForArraysOfOneType) {
  const TCIMValue a = Numbers({1});
  const TCIMValue b = Numbers({2});
  EXPECT_EQ("zelStatusNotImplemented", StatusOf([&] { (void)(a < b); }));
  EXPECT_EQ("zelStatusNotImplemented", StatusOf([&] { (void)(a > b); }));
  EXPECT_EQ("zelStatusNotImplemented", StatusOf([&] { (void)(a <= b); }));
  EXPECT_EQ("zelStatusNotImplemented", StatusOf([&] { (void)(a >= b); }));
  ExpectOrder(NullArray(TCIMType::TypeSint32, 1), b);
}

TEST_F(ComparingValues, FindsNoNumberEqualToNaN) {
  EXPECT_NE(TCIMValue(kNaN), TCIMValue(kNaN));
  EXPECT_FALSE(TCIMValue(kNaN) < TCIMValue(1.0));
  EXPECT_FALSE(TCIMValue(1.0) < TCIMValue(kNaN));
  EXPECT_EQ(TCIMValue(0.0), TCIMValue(-0.0));
}

TEST_F(ComparingValues, NeverTakesTwoTypesForEqual) {
  EXPECT_NE(TCIMValue(1), TCIMValue(1u));
  EXPECT_NE(TCIMValue(1.0f), TCIMValue(1.0));
  EXPECT_NE(TCIMValue("1"), TCIMValue(1));
  EXPECT_NE(TCIMValue(kMarch), TCIMValue(kMarch.ToString()));
}

TEST_F(CopyingValues, MakesIndependentCopiesOfEveryKind) {
  const TValues values = {true, 7u, 1.5, "text", kMarch, kOneDay, PathOf(fFan), Numbers({1, 2})};
  for (const TCIMValue& value : values) {
    const TCIMValue constructed(value);
    EXPECT_EQ(value, constructed);
    EXPECT_EQ(value.GetReferencedClass(), constructed.GetReferencedClass());
    for (const TCIMValue& former : values) {
      TCIMValue assigned(former);
      assigned = value;
      EXPECT_EQ(value, assigned);
    }
  }
  TCIMValue copy(values.back());
  copy.operator TValues&().push_back(3);
  EXPECT_EQ("{ 1, 2, 3 }", copy.ToString(10));
  EXPECT_EQ("{ 1, 2 }", values.back().ToString(10));
}

TEST_F(CopyingValues, CopiesNullWithItsType) {
  for (unsigned int code = 1; code < 32; ++code) {
    if (code == TCIMType::TypeChar) continue;
    const TCIMValue copy(Null(code));
    EXPECT_TRUE(copy.IsNull());
    EXPECT_EQ(code, copy.GetType());
    TCIMValue assigned("text");
    assigned = Null(code);
    EXPECT_EQ(copy, assigned);
  }
}

TEST_F(CopyingValues, CopiesTheClassForReferencesAndTheSizeForArraysOnly) {
  TCIMValue value(5);
  value = NullOf(TCIMType::TypeReference, fFan);
  EXPECT_EQ(&fFan, value.GetReferencedClass());
  value = PathOf(fDisk);
  EXPECT_EQ(&fDisk, value.GetReferencedClass());
  value = NullOf(TCIMType::TypeString, fFan);
  EXPECT_EQ(&fDisk, value.GetReferencedClass());
  value = NullOf(TCIMType::ECIMType(31), fFan);
  EXPECT_EQ(&fDisk, value.GetReferencedClass());

  value = TCIMValue(TCIMType::TypeSint32, 5, {1});
  EXPECT_EQ(5u, value.GetMaxArraySize());
  value = NullArray(TCIMType::TypeSint32, 6);
  EXPECT_EQ(6u, value.GetMaxArraySize());
  value = TCIMValue(1);
  EXPECT_EQ(6u, value.GetMaxArraySize());
}

TEST_F(CopyingValues, ChangesNothingWhenEqualAlready) {
  TCIMValue value = NullOf(TCIMType::TypeString, fFan);
  value = NullOf(TCIMType::TypeString, fDisk);
  EXPECT_EQ(&fFan, value.GetReferencedClass());

  TCIMValue array(TCIMType::TypeSint32, 5, {1});
  array = TCIMValue(TCIMType::TypeSint32, 6, {1});
  EXPECT_EQ(5u, array.GetMaxArraySize());
}

TEST_F(CopyingValues, RefusesUntypedAndReservedOnesAndBecomesNullOfThem) {
  for (unsigned int code : {0u, 12u, 32u, 44u}) {
    TCIMValue value("text");
    EXPECT_EQ("zelStatusTypeMismatch", StatusOf([&] { value = Null(code); })) << code;
    EXPECT_EQ(code, value.GetType());
    EXPECT_TRUE(value.IsNull());
    EXPECT_EQ("zelStatusOK", StatusOf([&] { value = Null(code); })) << code;
  }
  EXPECT_EQ("zelStatusTypeMismatch", StatusOf([] {
              const TCIMValue reserved = Null(12);
              TCIMValue copy(reserved);
            }));
}

TEST_F(CopyingValues, CopiesUntypedValuesOntoUntypedOnes) {
  const TCIMValue untyped;
  TCIMValue copy(untyped);
  EXPECT_EQ(0u, copy.GetType());
  copy = untyped;
  EXPECT_EQ(0u, copy.GetType());
  const TValues untypedOnes(3);
  EXPECT_EQ(untypedOnes, TValues(untypedOnes));
}

TEST_F(CopyingValues, CopiesDatetimesThatDoNotCompare) {
  TCIMValue value(kMarch);
  value = TCIMValue(kOneDay);
  EXPECT_EQ(TCIMValue(kOneDay), value);
  value = TCIMValue(TCIMDateTime());
  EXPECT_TRUE(value.operator TCIMDateTime().IsNull());
  EXPECT_FALSE(value.IsNull());
  value = kMarch;
  EXPECT_EQ(TCIMValue(kMarch), value);
}

TEST_F(CopyingValues, SurvivesCopiesOfItself) {
  TCIMValue number(kNaN);
  number = *&number;
  EXPECT_EQ("nan", number.ToString(10));

  TCIMValue array(TCIMType::TypeReal64, 0, {kNaN, 1.5});
  const TCIMValue* const elements = array.operator TValues&().data();
  array = *&array;
  EXPECT_EQ("{ nan, 1.5 }", array.ToString(10));
  EXPECT_EQ(elements, array.operator TValues&().data());
  array.Set(TCIMType::TypeReal64, 3, array.operator TValues&());
  EXPECT_EQ("{ nan, 1.5 }", array.ToString(10));
  array.Set(TCIMType::TypeReal64, 4, std::move(array.operator TValues&()));
  EXPECT_EQ("{ nan, 1.5 }", array.ToString(10));
  EXPECT_EQ(4u, array.GetMaxArraySize());
}

TEST_F(CopyingValues, SurvivesCopiesOfItsOwnElements) {
  TCIMValue array(TCIMType::TypeString, 0, {"a text that is too long to stand inside the object"});
  array = array.operator TValues&()[0];
  EXPECT_EQ("a text that is too long to stand inside the object", array.ToString(10));

  array = Numbers({1});
  array.operator TValues&().emplace_back();
  EXPECT_EQ("zelStatusTypeMismatch", StatusOf([&] { array = array.operator TValues&()[1]; }));
  EXPECT_TRUE(array.IsNull());
  EXPECT_EQ(0u, array.GetType());
}

TEST_F(CopyingValues, LeavesAMovedValueUntyped) {
  TCIMValue array(TCIMType::TypeSint32, 5, {1, 2});
  const TCIMValue* const elements = array.operator TValues&().data();
  const TCIMValue moved(std::move(array));
  EXPECT_EQ("{ 1, 2 }", moved.ToString(10));
  EXPECT_EQ(elements, moved.operator TValues&().data());
  EXPECT_EQ(5u, moved.GetMaxArraySize());
  EXPECT_EQ(TCIMValue(), array);
  EXPECT_EQ(0u, array.GetMaxArraySize());

  TCIMValue reference(PathOf(fFan));
  const TCIMValue movedReference(std::move(reference));
  EXPECT_EQ(&fFan, movedReference.GetReferencedClass());
  EXPECT_EQ(nullptr, reference.GetReferencedClass());
}

TEST_F(CopyingValues, CopiesEvenWhenAssignedFromAnExpiringValue) {
  TCIMValue source("text");
  TCIMValue target(5);
  target = std::move(source);
  EXPECT_EQ(TCIMValue("text"), target);
  EXPECT_EQ(TCIMValue("text"), source);
}

TEST_F(CopyingValues, KeepsTextsOfEveryLength) {
  for (const std::size_t length :
       {0u, 1u, 15u, 16u, 22u, 23u, 24u, 25u, 254u, 255u, 256u, 70000u}) {
    std::string text(length, 'x');
    if (length > 2) text[length - 2] = '\0';
    TCIMValue value(text);
    const TCIMValue copy(value);
    const TCIMValue moved(std::move(value));
    value = 5;
    EXPECT_EQ(text, copy.operator std::string()) << length;
    EXPECT_EQ(text, moved.ToString(10)) << length;
    EXPECT_EQ(copy, moved) << length;
    EXPECT_EQ(TCIMValue(5), value) << length;
    ExpectOrder(text, text + "a");
    if (length > 0) ExpectOrder(text.substr(0, length - 1), text);
  }
}

TEST_F(CopyingValues, ExchangesValuesOfAnyTwoKinds) {
  TCIMReference path = PathOf(fFan);
  const TValues kinds = {
      TCIMValue(),
      TCIMValue(true),
      TCIMValue(1.5),
      TCIMValue("short"),
      TCIMValue("a text that is too long to stand inside the object"),
      TCIMValue(kMarch),
      TCIMValue(path),
      TCIMValue(TCIMType::TypeString, 3, {"a", "b"}),
      NullArray(TCIMType::TypeUint8, 7),
      NullOf(TCIMType::TypeReference, fDisk),
  };
  const auto expectIs = [](const TCIMValue& expected, const TCIMValue& value) {
    EXPECT_EQ(expected, value);
    EXPECT_EQ(expected.GetMaxArraySize(), value.GetMaxArraySize());
    EXPECT_EQ(expected.GetReferencedClass(), value.GetReferencedClass());
  };
  for (const TCIMValue& a : kinds) {
    for (const TCIMValue& b : kinds) {
      TValues pair(2);
      pair[0] = a;
      pair[1] = b;
      pair[0].Swap(pair[1]);
      expectIs(b, pair[0]);
      expectIs(a, pair[1]);
      pair[0].Swap(pair[0]);
      expectIs(b, pair[0]);
      pair.reserve(100);  // moves them
      expectIs(b, pair[0]);
      expectIs(a, pair[1]);
    }
  }
}
