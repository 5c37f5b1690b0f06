#include "zelcore/TCIMDateTime.h"

#include <gtest/gtest.h>

#include "cim/TCIMDateTimeImpl.h"
#include "tests/support/Status.h"
#include "tests/support/TimeZone.h"

namespace {

TCIMDateTime Stamp(const std::string& text) { return TCIMDateTime(text); }

const char kMarchText[] = "20040315142530.000042-300";

}  // namespace

TEST(TCIMDateTime, IsNullAtFirst) {
  const TCIMDateTime empty;
  EXPECT_TRUE(empty.IsNull());
  EXPECT_FALSE(empty.IsInterval());
  EXPECT_FALSE(empty.GetPrecision());
}

TEST(TCIMDateTime, KeepsTheFieldsOfAPointInTime) {
  const TCIMDateTime point(2004, 3, 15, 14, 25, 30, 42, -300);
  EXPECT_FALSE(point.IsNull());
  EXPECT_FALSE(point.IsInterval());
  EXPECT_EQ(2004, point.GetYear());
  EXPECT_EQ(3, point.GetMonth());
  EXPECT_EQ(15u, point.GetDay());
  EXPECT_EQ(14, point.GetHour());
  EXPECT_EQ(25, point.GetMinute());
  EXPECT_EQ(30, point.GetSecond());
  EXPECT_EQ(42u, point.GetMicroSeconds());
  EXPECT_EQ(-300, point.GetUTCOffset());
  EXPECT_EQ(kMarchText, point.ToString());
}

TEST(TCIMDateTime, KeepsTheFieldsOfAnInterval) {
  const TCIMDateTime interval(70000, 2, 3, 4, 500000);
  EXPECT_FALSE(interval.IsNull());
  EXPECT_TRUE(interval.IsInterval());
  EXPECT_EQ(70000u, interval.GetDay());
  EXPECT_EQ(2, interval.GetHour());
  EXPECT_EQ(3, interval.GetMinute());
  EXPECT_EQ(4, interval.GetSecond());
  EXPECT_EQ(500000u, interval.GetMicroSeconds());
  EXPECT_EQ("00070000020304.500000:000", interval.ToString());
}

TEST(TCIMDateTime, ChangesKindWithEachSet) {
  TCIMDateTime value(kMarchText);
  value.Set(1, 2, 3, 4, 5);
  EXPECT_TRUE(value.IsInterval());
  EXPECT_EQ(2004, value.GetYear());
  EXPECT_EQ(3, value.GetMonth());
  EXPECT_EQ(-300, value.GetUTCOffset());
  EXPECT_EQ(1u, value.GetDay());

  value.Set(2005, 4, 16, 1, 2, 3, 4, 60);
  EXPECT_FALSE(value.IsInterval());
  EXPECT_EQ("20050416010203.000004+060", value.ToString());
  value.Set("00000001020304.500000:000");
  EXPECT_TRUE(value.IsInterval());
}

TEST(TCIMDateTime, IsNullAgainOnceCleared) {
  TCIMDateTime value(kMarchText);
  value.Clear();
  EXPECT_TRUE(value.IsNull());
  EXPECT_EQ(2004, value.GetYear());
  EXPECT_EQ("zelStatusInvalidDateTime", StatusOf([&] { value.ToString(); }));
  value.Set(1, 0, 0, 0, 0);
  EXPECT_FALSE(value.IsNull());
}

TEST(TCIMDateTime, ReadsAndPrintsTheSameText) {
  for (const char* text :
       {kMarchText, "20040315142530.000000+060", "20040315142530.000000-060",
        "20040315142530.999999+000", "00000001020304.500000:000", "00065535235959.999999:000",
        "00000000000000.000000:000", "20041315000000.000000+000", "20040240256199.000000+999"}) {
    EXPECT_EQ(text, Stamp(text).ToString());
  }
  EXPECT_EQ(60, Stamp("20040315142530.000000+060").GetUTCOffset());
  EXPECT_EQ(-60, Stamp("20040315142530.000000-060").GetUTCOffset());
  EXPECT_EQ(8, Stamp("20040808080808.000008+008").GetHour());
  EXPECT_EQ("20040315142530.000000+000", Stamp("20040315142530.000000-000").ToString());
}

TEST(TCIMDateTime, RefusesAnyOtherTextAndStaysAsItWas) {
  TCIMDateTime value(kMarchText);
  for (const char* text :
       {"", "20040315142530.000000+06", "20040315142530.000000+0600", "2004031514253.0000000+060",
        "20040315142530,000000+060", "20040315142530.000000 060", "20040315142530.000000*060",
        "2004**15142530.000000+060", "20040315142530.******+060", "20040315142530.000000+0x1",
        " 0040315142530.000000+060", "20040315142530.000000++60", "20040315-42530.000000+060",
        "00000001000000.000000:001", "00000001000000.000000:100", "00000001240000.000000:000",
        "00000001006000.000000:000", "00000001000060.000000:000", "0000000100000a.000000:000"}) {
    EXPECT_EQ("zelStatusInvalidDateTime", StatusOf([&] { value.Set(text); })) << text;
    EXPECT_EQ("zelStatusInvalidDateTime", StatusOf([&] { Stamp(text); })) << text;
    EXPECT_EQ(kMarchText, value.ToString()) << text;
  }
  std::string holed = kMarchText;
  holed[15] = '\0';
  EXPECT_EQ("zelStatusInvalidDateTime", StatusOf([&] { value.Set(holed); }));
}

TEST(TCIMDateTime, CutsTheDaysOfATextToSixteenBits) {
  const struct {
    const char* text;
    unsigned int days;
  } kRows[] = {
      {"00065535000000.000000:000", 65535},
      {"00065536000000.000000:000", 0    },
      {"00070000000000.000000:000", 4464 },
      {"99999999000000.000000:000", 57599},
  };
  for (const auto& row : kRows) EXPECT_EQ(row.days, Stamp(row.text).GetDay());
  EXPECT_EQ(4294967295u, TCIMDateTime(4294967295u, 0, 0, 0, 0).GetDay());
}

TEST(TCIMDateTime, ChecksTheFieldsOfAnIntervalButTheDays) {
  EXPECT_TRUE(TCIMDateTimeImpl::IsValid(4294967295u, 23, 59, 59, 999999));
  EXPECT_FALSE(TCIMDateTimeImpl::IsValid(0, 24, 0, 0, 0));
  EXPECT_FALSE(TCIMDateTimeImpl::IsValid(0, 0, 60, 0, 0));
  EXPECT_FALSE(TCIMDateTimeImpl::IsValid(0, 0, 0, 60, 0));
  EXPECT_FALSE(TCIMDateTimeImpl::IsValid(0, 0, 0, 0, 1000000));

  TCIMDateTime value(kMarchText);
  EXPECT_EQ("zelStatusInvalidDateTime", StatusOf([&] { value.Set(1, 24, 0, 0, 0); }));
  EXPECT_EQ(kMarchText, value.ToString());
  EXPECT_EQ("zelStatusInvalidDateTime", StatusOf([] { TCIMDateTime(0, 0, 0, 60, 0); }));
}

TEST(TCIMDateTime, PrintsNumbersThatAreTooLongInFull) {
  EXPECT_EQ("4294967295000000.000000:000", TCIMDateTime(4294967295u, 0, 0, 0, 0).ToString());
  EXPECT_EQ("20040315000000.000000+1440", TCIMDateTime(2004, 3, 15, 0, 0, 0, 0, 1440).ToString());
  EXPECT_EQ("20040315000000.000000-32768",
            TCIMDateTime(2004, 3, 15, 0, 0, 0, 0, -32768).ToString());
  EXPECT_EQ("650000199100200300.4294967295+000",
            TCIMDateTime(65000, 1, 99, 100, 200, 300, 4294967295u, 0).ToString());
}

TEST(TCIMDateTime, PrintsPointsInTimeForPeople) {
  TCIMDateTime point(kMarchText);
  EXPECT_EQ("03/15/2004 14:25:30", point.ToUIString());
  EXPECT_EQ("", point.ToAbbrUIString());
  point.SetPrecision(true);
  EXPECT_TRUE(point.GetPrecision());
  EXPECT_EQ("03/15/2004 ", point.ToUIString());
  EXPECT_EQ(kMarchText, point.ToString());
  EXPECT_EQ("01/02/0987 03:04:05", Stamp("09870102030405.000000+000").ToUIString());
}

TEST(TCIMDateTime, PrintsThePartsOfIntervalsForPeople) {
  const struct {
    TCIMDateTime interval;
    const char* text;
  } kRows[] = {
      {{0, 0, 0, 0, 0},           ""                                                             },
      {{1, 1, 0, 0, 0},           "1 day 1 hour "                                                },
      {{2, 1, 0, 0, 0},           "2 days 1 hour "                                               },
      {{1, 2, 0, 5, 1500},        "1 day 2 hours 5 seconds 1 millisecond 500 microseconds "      },
      {{0, 0, 1, 1, 1001},        "1 minute 1 second 1 millisecond 1 microsecond "               },
      {{0, 23, 59, 59, 2002},     "23 hours 59 minutes 59 seconds 2 milliseconds 2 microseconds "},
      {{4294967295u, 0, 0, 0, 0}, "4294967295 days "                                             },
  };
  for (const auto& row : kRows) EXPECT_EQ(row.text, row.interval.ToUIString());
  TCIMDateTime interval(1, 2, 0, 0, 0);
  interval.SetPrecision(true);
  EXPECT_EQ("1 day 2 hours ", interval.ToUIString());
}

TEST(TCIMDateTime, AbbreviatesIntervalsToHours) {
  const struct {
    TCIMDateTime interval;
    const char* text;
  } kRows[] = {
      {{0, 0, 0, 0, 0},           "00:00:00.000"          },
      {{1, 2, 3, 4, 5000},        "26:03:04.005"          },
      {{0, 23, 59, 59, 999999},   "23:59:59.999"          },
      {{4, 4, 0, 0, 0},           "100:00:00.000"         },
      {{4294967295u, 0, 0, 0, 0}, "103079215080:00:00.000"},
  };
  for (const auto& row : kRows) EXPECT_EQ(row.text, row.interval.ToAbbrUIString());
}

TEST(TCIMDateTime, RefusesNullInEveryOperation) {
  const TCIMDateTime null;
  for (const TCIMDateTime& other : {TCIMDateTime(kMarchText), TCIMDateTime(1, 0, 0, 0, 0), null}) {
    for (const auto& status :
         {StatusOf([&] { (void)(null == other); }), StatusOf([&] { (void)(other == null); }),
          StatusOf([&] { (void)(null < other); }), StatusOf([&] { (void)(other < null); }),
          StatusOf([&] { null + other; }), StatusOf([&] { other + null; }),
          StatusOf([&] { null - other; }), StatusOf([&] { other - null; })}) {
      EXPECT_EQ("zelStatusInvalidDateTime", status);
    }
  }
  EXPECT_EQ("zelStatusInvalidDateTime", StatusOf([&] { null.ToString(); }));
  EXPECT_EQ("zelStatusInvalidDateTime", StatusOf([&] { null.ToUIString(); }));
  EXPECT_EQ("zelStatusInvalidDateTime", StatusOf([&] { null.ToAbbrUIString(); }));
}

TEST(TCIMDateTime, CopiesAllFieldsButThePrecision) {
  TCIMDateTime source(kMarchText);
  source.SetPrecision(true);
  const TCIMDateTime copy(source);
  EXPECT_EQ(kMarchText, copy.ToString());
  EXPECT_FALSE(copy.GetPrecision());

  TCIMDateTime target(1, 0, 0, 0, 0);
  target.SetPrecision(true);
  target = source;
  EXPECT_EQ(kMarchText, target.ToString());
  EXPECT_FALSE(target.IsInterval());
  EXPECT_FALSE(target.GetPrecision());

  source.Set(1, 2, 3, 4, 5);
  source.Clear();
  EXPECT_TRUE(source.GetPrecision());
  EXPECT_EQ(kMarchText, copy.ToString());
  target = *&target;
  EXPECT_EQ(kMarchText, target.ToString());
  EXPECT_TRUE(TCIMDateTime(source).IsNull());
}

TEST(TCIMDateTime, SharesItsBodyThroughGetBodyAlone) {
  TCIMDateTime value(kMarchText);
  value.GetBody()->SetPrecision(true);
  EXPECT_TRUE(value.GetPrecision());
  EXPECT_EQ(value.GetBody(), value.GetBody());
  EXPECT_NE(value.GetBody(), TCIMDateTime(value).GetBody());
}

TEST(TCIMDateTime, DoesNotImplementGetDifference) {
  TCIMDateTime a(kMarchText);
  TCIMDateTime b(1, 0, 0, 0, 0);
  EXPECT_EQ("zelStatusNotImplemented", StatusOf([&] { TCIMDateTime::GetDifference(a, b); }));
}
