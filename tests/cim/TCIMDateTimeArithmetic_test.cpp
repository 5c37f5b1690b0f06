// Validity, order and arithmetic of datetimes: what the process's time zone takes part in.

#include <gtest/gtest.h>

#include <ctime>
#include <random>

#include "cim/TCIMDateTimeImpl.h"
#include "tests/support/Status.h"
#include "tests/support/TimeZone.h"
#include "zelcore/TCIMDateTime.h"

namespace {

const char* const kZones[] = {"UTC", "America/New_York", "Asia/Kolkata"};

TCIMDateTime Stamp(const std::string& text) { return TCIMDateTime(text); }

TCIMDateTime Days(unsigned int days) { return TCIMDateTime(days, 0, 0, 0, 0); }

struct TFields {
  unsigned short year;
  unsigned short month;
  unsigned int day;
  unsigned short hour;
  unsigned short minute;
  unsigned short second;
  short utcOffset;
};

bool MktimeAccepts(const TFields& fields) {
  std::tm time{};
  time.tm_year = fields.year - 1900;
  time.tm_mon = fields.month - 1;
  time.tm_mday = static_cast<int>(fields.day);
  time.tm_hour = fields.hour;
  time.tm_min = fields.minute - fields.utcOffset;
  time.tm_sec = fields.second;
  return std::mktime(&time) != -1;
}

bool IsValid(const TFields& fields) {
  return TCIMDateTimeImpl::IsValid(fields.year, fields.month, fields.day, fields.hour,
                                   fields.minute, fields.second, 0, fields.utcOffset);
}

}  // namespace

TEST(DateTimeValidity, AcceptsWhatMktimeNormalises) {
  for (const char* name : kZones) {
    const TimeZone zone(name);
    EXPECT_EQ("20041315000000.000000+000", Stamp("20041315000000.000000+000").ToString());
    for (const char* text :
         {"20040240000000.000000+000", "20040001000000.000000+000", "20040100000000.000000+000",
          "20040101999999.000000+999", "00000000000000.000000+000", "99999999999999.999999-999",
          "19700101120000.000000+000", "19690101000000.000000+000"}) {
      EXPECT_EQ("zelStatusOK", StatusOf([&] { Stamp(text); })) << name << " " << text;
    }
    EXPECT_TRUE(TCIMDateTimeImpl::IsValid(2004, 1, 1, 0, 0, 0, 4294967295u, 0));
  }
}

// mktime()'s answer for this second is the one by which it refuses.
TEST(DateTimeValidity, RefusesTheSecondBeforeTheEpoch) {
  const struct {
    const char* zone;
    const char* text;
  } kRows[] = {
      {"UTC",              "19691231235959.000000+000"},
      {"UTC",              "19700101005959.000000+060"},
      {"UTC",              "19691231232959.999999-030"},
      {"America/New_York", "19691231185959.000000+000"},
      {"America/New_York", "19691231135959.000000-300"},
      {"Asia/Kolkata",     "19700101052959.000000+000"},
      {"Asia/Kolkata",     "19700101105959.000000+330"},
  };
  for (const auto& row : kRows) {
    const TimeZone zone(row.zone);
    TCIMDateTime value(1, 0, 0, 0, 0);
    EXPECT_EQ("zelStatusInvalidDateTime", StatusOf([&] { value.Set(row.text); })) << row.text;
    EXPECT_EQ("00000001000000.000000:000", value.ToString());
  }
  const TimeZone zone("Asia/Kolkata");
  EXPECT_EQ("zelStatusOK", StatusOf([] { Stamp("19691231235959.000000+000"); }));
}

TEST(DateTimeValidity, FindsTheSecondBeforeTheEpochFromFarYearsToo) {
  const TimeZone zone("UTC");
  for (const TFields& fields : {
           TFields{1959, 1,   4018,        23, 59, 59, 0},
           TFields{1959, 132, 31,          23, 59, 59, 0},
           TFields{1971, 1,   4294966931u, 23, 59, 59, 0}
  }) {
    EXPECT_FALSE(MktimeAccepts(fields)) << fields.year << " " << fields.month;
    EXPECT_FALSE(IsValid(fields)) << fields.year << " " << fields.month;
  }
}

TEST(DateTimeValidity, AgreesWithMktimeOnAnyFields) {
  std::mt19937 random(19700101);
  const auto pick = [&](unsigned int limit) { return static_cast<unsigned int>(random() % limit); };
  for (const char* name : kZones) {
    const TimeZone zone(name);
    for (int i = 0; i < 20000; ++i) {
      const bool isWild = i % 4 == 0;
      const TFields fields = {
          static_cast<unsigned short>(i % 2 == 0 ? pick(65536) : 1955 + pick(20)),
          static_cast<unsigned short>(isWild ? pick(65536) : pick(100)),
          isWild ? pick(4294967295u) : pick(100),
          static_cast<unsigned short>(isWild ? pick(65536) : pick(100)),
          static_cast<unsigned short>(isWild ? pick(65536) : pick(100)),
          static_cast<unsigned short>(isWild ? pick(65536) : pick(100)),
          static_cast<short>(isWild ? pick(65536) : static_cast<int>(pick(2000)) - 1000),
      };
      ASSERT_EQ(MktimeAccepts(fields), IsValid(fields))
          << name << " " << fields.year << " " << fields.month << " " << fields.day << " "
          << fields.hour << " " << fields.minute << " " << fields.second << " " << fields.utcOffset;
    }
  }
}

// The farthest that fields of two digits reach from the years that mktime() is not asked about.
TEST(DateTimeValidity, KeepsOtherYearsAwayFromTheEpoch) {
  for (const TFields& farthest : {
           TFields{1971, 0,  0,  0,  0,  0,  32767 },
           TFields{1959, 99, 99, 99, 99, 99, -32768}
  }) {
    for (const char* name : {"UTC", "XXX24", "XXX-24"}) {
      const TimeZone zone(name);
      EXPECT_TRUE(MktimeAccepts(farthest));
      EXPECT_TRUE(IsValid(farthest));
    }
  }
}

TEST(DateTimeOrder, BringsPointsInTimeToOneOffset) {
  for (const char* name : kZones) {
    const TimeZone zone(name);
    for (const char* month : {"200401", "200407"}) {
      const TCIMDateTime point = Stamp(month + std::string("15142530.000000+000"));
      EXPECT_TRUE(point == Stamp(month + std::string("15152530.000000+060")));
      EXPECT_TRUE(point == Stamp(month + std::string("15092530.000000-300")));
      EXPECT_TRUE(point == Stamp(month + std::string("15142490.000000+000")));
      EXPECT_FALSE(point == Stamp(month + std::string("15142530.000001+000")));
      EXPECT_TRUE(point < Stamp(month + std::string("15142530.000001+000")));
      EXPECT_TRUE(point < Stamp(month + std::string("15142530.000000-001")));
      EXPECT_FALSE(point < Stamp(month + std::string("15142530.999999+001")));
      EXPECT_FALSE(point < point);
    }
  }
}

TEST(DateTimeOrder, ComparesIntervalsByTheirLength) {
  EXPECT_TRUE(TCIMDateTime(1, 0, 0, 0, 1) == TCIMDateTime(1, 0, 0, 0, 1));
  EXPECT_TRUE(TCIMDateTime(0, 23, 59, 59, 999999) < Days(1));
  EXPECT_TRUE(Days(1) < TCIMDateTime(1, 0, 0, 0, 1));
  EXPECT_FALSE(TCIMDateTime(1, 0, 0, 1, 0) < TCIMDateTime(1, 0, 0, 0, 9));
  // 49711 days are 63104 seconds more than 32 bits hold.
  EXPECT_TRUE(Days(49711) == TCIMDateTime(0, 17, 31, 44, 0));
  EXPECT_TRUE(Days(49711) < Days(1));
}

TEST(DateTimeOrder, RefusesMixedKinds) {
  const TCIMDateTime point = Stamp("20040315142530.000000+000");
  EXPECT_EQ("zelStatusInvalidDateTime", StatusOf([&] { (void)(point == Days(1)); }));
  EXPECT_EQ("zelStatusInvalidDateTime", StatusOf([&] { (void)(Days(1) == point); }));
  EXPECT_EQ("zelStatusInvalidDateTime", StatusOf([&] { (void)(point < Days(1)); }));
  EXPECT_EQ("zelStatusInvalidDateTime", StatusOf([&] { (void)(Days(1) < point); }));
}

TEST(DateTimeOrder, RefusesAPointThatMktimeNoLongerAccepts) {
  TCIMDateTime point;
  {
    const TimeZone zone("Asia/Kolkata");
    point = Stamp("19691231235959.000000+000");
  }
  const TimeZone zone("UTC");
  const TCIMDateTime other = Stamp("20040315142530.000000+000");
  EXPECT_EQ("zelStatusInvalidDateTime", StatusOf([&] { (void)(point == other); }));
  EXPECT_EQ("zelStatusInvalidDateTime", StatusOf([&] { (void)(other < point); }));
  EXPECT_EQ("zelStatusInvalidDateTime", StatusOf([&] { point + Days(1); }));
  EXPECT_EQ("zelStatusInvalidDateTime", StatusOf([&] { other - point; }));
  EXPECT_EQ("zelStatusInvalidDateTime", StatusOf([&] { point - Days(1); }));
}

TEST(DateTimeSums, AddsIntervals) {
  const struct {
    TCIMDateTime a;
    TCIMDateTime b;
    const char* sum;
  } kRows[] = {
      {{1, 23, 59, 59, 999999}, {0, 0, 0, 0, 1},      "00000002000000.000000:000"},
      {{1, 2, 3, 4, 5},         {10, 20, 30, 40, 50}, "00000011223344.000055:000"},
      {{0, 0, 0, 0, 0},         {0, 0, 0, 0, 0},      "00000000000000.000000:000"},
      {{49000, 0, 0, 0, 0},     {49000, 0, 0, 0, 0},  "00098000000000.000000:000"},
      {{49711, 0, 0, 0, 0},     {0, 0, 0, 0, 0},      "00000000173144.000000:000"}, // 32 bits
  };
  for (const auto& row : kRows) {
    EXPECT_EQ(row.sum, (row.a + row.b).ToString());
    EXPECT_EQ(row.sum, (row.b + row.a).ToString());
    EXPECT_TRUE((row.a + row.b).IsInterval());
  }
}

TEST(DateTimeSums, RefusesTwoPointsInTime) {
  const TCIMDateTime point = Stamp("20040315142530.000000+000");
  EXPECT_EQ("zelStatusInvalidDateTime", StatusOf([&] { point + point; }));
}

TEST(DateTimeSums, MovesPointsInTimeAndKeepsTheirOffset) {
  const struct {
    const char* point;
    TCIMDateTime interval;
    const char* sum;
    const char* difference;
  } kRows[] = {
      {"20040315142530.000000+000",
       {1, 0, 0, 0, 0},
       "20040316142530.000000+000", "20040314142530.000000+000"},
      {"20040704120000.250000-240",
       {1, 1, 1, 1, 500000},
       "20040705130101.750000-240", "20040703105858.750000-240"},
      {"20041231235959.999999+330",
       {0, 0, 0, 0, 1},
       "20050101000000.000000+330", "20041231235959.999998+330"},
      {"20040228120000.000000+000",
       {366, 0, 0, 0, 0},
       "20050228120000.000000+000", "20030227120000.000000+000"},
 // Across the changes of daylight saving time: standard time is shown throughout.
      {"20040403120000.000000-300",
       {1, 0, 0, 0, 0},
       "20040404120000.000000-300", "20040402120000.000000-300"},
      {"20041031120000.000000-300",
       {1, 0, 0, 0, 0},
       "20041101120000.000000-300", "20041030120000.000000-300"},
  };
  for (const char* name : kZones) {
    const TimeZone zone(name);
    for (const auto& row : kRows) {
      const TCIMDateTime point = Stamp(row.point);
      EXPECT_EQ(row.sum, (point + row.interval).ToString()) << name;
      EXPECT_EQ(row.sum, (row.interval + point).ToString()) << name;
      EXPECT_FALSE((point + row.interval).IsInterval());
      EXPECT_EQ(row.difference, (point - row.interval).ToString()) << name;
    }
  }
}

// In the first hour after the clocks go forward the correction reaches back to before the change.
TEST(DateTimeSums, RepeatsTheHourThatTheClocksSkip) {
  const TimeZone zone("America/New_York");
  const TCIMDateTime point = Stamp("20040404013000.000000-300");
  EXPECT_EQ("20040404013000.000000-300", (point + TCIMDateTime(0, 1, 0, 0, 0)).ToString());
  EXPECT_EQ("20040404033000.000000-300", (point + TCIMDateTime(0, 2, 0, 0, 0)).ToString());
}

TEST(DateTimeSums, MirrorsPointsBeforeTheEpoch) {
  const TimeZone zone("UTC");
  const TCIMDateTime point = Stamp("19691231000000.000000+000");
  EXPECT_EQ("19700102000000.000000+000", (point + TCIMDateTime(0, 0, 0, 0, 0)).ToString());
  EXPECT_EQ("19700101235959.750000+000", (point + TCIMDateTime(0, 0, 0, 0, 250000)).ToString());
  EXPECT_EQ("19700103000000.000000+000", (point - Days(1)).ToString());
}

TEST(DateTimeSums, RefusesPointsBeyondTheRangeOfMicroseconds) {
  const TimeZone zone("UTC");
  const TCIMDateTime far(2004, 1, 2000000000, 0, 0, 0, 0, 0);
  const TCIMDateTime nearer(2004, 1, 200000000, 0, 0, 0, 0, 0);
  const TCIMDateTime farBack(2004, 1, 3000000000u, 0, 0, 0, 0, 0);
  const TCIMDateTime point = Stamp("20040315142530.000000+000");
  for (const TCIMDateTime& beyond : {far, nearer, farBack}) {
    EXPECT_EQ("zelStatusInvalidDateTime", StatusOf([&] { beyond + Days(1); }));
    EXPECT_EQ("zelStatusInvalidDateTime", StatusOf([&] { beyond - Days(1); }));
    EXPECT_EQ("zelStatusInvalidDateTime", StatusOf([&] { point - beyond; }));
  }
  EXPECT_TRUE(farBack < point);
  EXPECT_TRUE(point < far);
}

TEST(DateTimeDifferences, GiveTheDistanceOfTwoPointsInTime) {
  const struct {
    const char* a;
    const char* b;
    const char* distance;
  } kRows[] = {
      {"20040315142530.000000+000", "20040315142530.000000+000", "00000000000000.000000:000"},
      {"20040315142530.000000+000", "20040316152631.000001+000", "00000001010101.000001:000"},
      {"20040315142530.900000+000", "20040315142531.100000+000", "00000000000000.200000:000"},
      {"20040315142530.000000+000", "20040315142530.000000+060", "00000000010000.000000:000"},
      {"20040315142530.000000-300", "20040315142530.000000+330", "00000000103000.000000:000"},
      {"20040315142530.000000+060", "20040315132530.000000+000", "00000000000000.000000:000"},
      {"20040315142530.000000-300", "20040315202530.000000+000", "00000000010000.000000:000"},
      {"20040101000000.000000+000", "20040701000000.000000+000", "00000182000000.000000:000"},
      {"19600101000000.000000+000", "20600101000000.000000+000", "00036525000000.000000:000"},
  };
  for (const char* name : kZones) {
    const TimeZone zone(name);
    for (const auto& row : kRows) {
      EXPECT_EQ(row.distance, (Stamp(row.a) - Stamp(row.b)).ToString()) << name;
      EXPECT_EQ(row.distance, (Stamp(row.b) - Stamp(row.a)).ToString()) << name;
    }
  }
}

TEST(DateTimeDifferences, GiveTheDistanceOfTwoIntervals) {
  const TCIMDateTime a(2, 0, 0, 0, 0);
  const TCIMDateTime b(0, 1, 2, 3, 4);
  EXPECT_EQ("00000001225756.999996:000", (a - b).ToString());
  EXPECT_EQ("00000001225756.999996:000", (b - a).ToString());
  EXPECT_EQ("00000000000000.000000:000", (a - a).ToString());
}

// The interval is taken off the point in either order, but microseconds are always those of the
// left side less those of the right.
TEST(DateTimeDifferences, TakeTheIntervalOffThePointInEitherOrder) {
  const TCIMDateTime interval(1, 0, 0, 0, 1);
  for (const char* name : kZones) {
    const TimeZone zone(name);
    const TCIMDateTime point = Stamp("20040110000000.000003+060");
    EXPECT_EQ("20040109000000.000002+060", (point - interval).ToString()) << name;
    EXPECT_EQ("20040108235959.999998+060", (interval - point).ToString()) << name;
  }
}
