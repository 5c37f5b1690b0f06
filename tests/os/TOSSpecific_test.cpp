#include "zelcore/TOSSpecific.h"

#include <gtest/gtest.h>
#include <sched.h>
#include <stdlib.h>
#include <sys/utsname.h>
#include <unistd.h>

#include <chrono>

#include "tests/support/LogSpy.h"
#include "tests/support/Status.h"
#include "tests/support/TimeZone.h"

namespace {

// "20040315142530-0500": what date(1) makes of the current time in the zone that TZ names.
std::string Date() {
  const std::string text = TOSSpecific::SpawnProcess("date", {"+%Y%m%d%H%M%S%z"});
  return text.substr(0, text.find('\n'));
}

// The same from a timestamp "20040315142530.000000-300".
std::string DateOf(const TCIMDateTime& time) {
  const std::string text = time.ToString();
  const int offset = time.GetUTCOffset();
  char zone[16];
  snprintf(zone, sizeof zone, "%c%02d%02d", offset < 0 ? '-' : '+', abs(offset) / 60,
           abs(offset) % 60);
  return text.substr(0, 14) + zone;
}

}  // namespace

TEST(GetLocalTime, IsTrueInEveryZone) {
  struct {
    const char* zone;
    const char* offset;  // in minutes; empty: it changes with the season
  } const rows[] = {
      {"UTC",              "0"   },
      {"Asia/Kolkata",     "330" },
      {"America/New_York", ""    },
      {"XXX-5:45",         "345" },
      {"YYY3:30",          "-210"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.zone);
    const TimeZone zone(row.zone);
    const std::string before = Date();
    const TCIMDateTime now = TOSSpecific::GetLocalTime();
    const std::string after = Date();
    EXPECT_LE(before, DateOf(now));
    EXPECT_LE(DateOf(now), after);
    if (*row.offset) {
      EXPECT_EQ(row.offset, std::to_string(now.GetUTCOffset()));
    }
    EXPECT_FALSE(now.IsNull());
    EXPECT_FALSE(now.IsInterval());
    EXPECT_FALSE(now.GetPrecision());
  }
}

TEST(GetLocalTime, CountsMilliseconds) {
  const TCIMDateTime first = TOSSpecific::GetLocalTime();
  TOSSpecific::USleep(2000);
  const TCIMDateTime second = TOSSpecific::GetLocalTime();
  EXPECT_EQ(0u, first.GetMicroSeconds() % 1000);
  EXPECT_LT(first.GetMicroSeconds(), 1000000u);
  EXPECT_TRUE(first < second);
}

TEST(GetMachineName, IsTheHostName) {
  utsname names;
  ASSERT_EQ(0, uname(&names));
  EXPECT_EQ(names.nodename, TOSSpecific::GetMachineName());
  EXPECT_EQ(names.nodename, TOSSpecific::GetOperatingSystemName());
}

TEST(GetMachineName, FailsForNamesThatFillTheBuffer) {
  if (unshare(CLONE_NEWUTS) != 0) GTEST_SKIP() << "cannot change the host name here";
  const std::string former = TOSSpecific::GetMachineName();
  const std::string name(63, 'n');
  ASSERT_EQ(0, sethostname(name.c_str(), name.size()));
  EXPECT_EQ(name, TOSSpecific::GetMachineName());
  ASSERT_EQ(0, sethostname((name + "n").c_str(), 64));
  EXPECT_EQ("zelStatusFail", StatusOf([] { TOSSpecific::GetMachineName(); }));
  EXPECT_EQ("zelStatusFail", StatusOf([] { TOSSpecific::GetOperatingSystemName(); }));
  sethostname(former.c_str(), former.size());
}

TEST(IsAdmin, AsksForTheRealUser) {
  EXPECT_EQ(getuid() == 0, TOSSpecific::IsAdmin());
  if (getuid() != 0) GTEST_SKIP() << "needs root to become someone else";
  ASSERT_EQ(0, seteuid(65534));
  EXPECT_TRUE(TOSSpecific::IsAdmin());
  ASSERT_EQ(0, seteuid(0));
  ASSERT_EQ(0, setresuid(65534, 0, 0));
  EXPECT_FALSE(TOSSpecific::IsAdmin());
  ASSERT_EQ(0, setresuid(0, 0, 0));
}

TEST(USleep, WaitsThatLong) {
  const auto start = std::chrono::steady_clock::now();
  TOSSpecific::USleep(20000);
  EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(20));
}

TEST(OutputLogString, WritesNothing) {
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  TOSSpecific::OutputLogString("text\n");
  EXPECT_EQ("", testing::internal::GetCapturedStdout());
  EXPECT_EQ("", testing::internal::GetCapturedStderr());
}

TEST(TOSSpecific, NamesTheFilesOfPlugins) {
  EXPECT_EQ(".pi.so", TOSSpecific::kPluginExtension);
  EXPECT_EQ(".properties.xml", TOSSpecific::kSpecificationExtension);
}
