#include "zelcore/detail/Fail.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/LogSpy.h"
#include "tests/support/Status.h"
#include "zelcore/TLogger.h"

using testing::ElementsAre;
using testing::IsEmpty;
using zelcore::detail::Fail;
using zelcore::detail::LogCore;
using zelcore::detail::Text;

TEST(Fail, LogsTheMessageAtErrorThenThrowsTheCode) {
  EXPECT_EQ("zelStatusTypeMismatch", StatusOf([] { Fail(zelStatusTypeMismatch, "no match"); }));
  EXPECT_THAT(LogLines(zelLogError), ElementsAre("no match"));
  EXPECT_EQ(nullptr, TLogger::GetInstance()->GetLog().back().plugin);

  EXPECT_EQ("zelStatusNotFound", StatusOf([] { Fail(zelStatusNotFound); }));
  EXPECT_EQ(1u, LogLines().size());
}

TEST(LogCore, LogsOnBehalfOfTheLibraryByThreshold) {
  LogCore(zelLogWarning, "hot");
  LogCore(zelLogDebug, "too quiet");
  EXPECT_THAT(LogLines(), ElementsAre("hot"));
  EXPECT_EQ(zelLogWarning, LastLogSeverity());
  EXPECT_EQ(nullptr, TLogger::GetInstance()->GetLog().back().plugin);
}

TEST(LogCore, DoesNothingWithoutALogger) {
  delete TLogger::GetInstance();
  LogCore(zelLogError, "nobody listens");
  EXPECT_EQ("zelStatusFail", StatusOf([] { Fail(zelStatusFail, "nobody listens"); }));
  EXPECT_THAT(LogLines(), IsEmpty());
}

TEST(Text, JoinsPartsInTheClassicLocale) {
  struct TThousands : std::numpunct<char> {
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
  };
  const std::locale former = std::locale::global(std::locale(std::locale(), new TThousands));
  const std::string joined = Text("line ", 1234567u, ": ", std::string("a"), 'b', -2L);
  std::locale::global(former);
  EXPECT_EQ("line 1234567: ab-2", joined);
  EXPECT_EQ("only texts", Text("only ", std::string("texts")));
  EXPECT_EQ("", Text());
}
