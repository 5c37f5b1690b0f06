#include "zelcore/TZELException.h"

#include <gtest/gtest.h>

TEST(TZELException, NamesItsCode) {
  struct {
    int code;
    const char* name;
  } const rows[] = {
      {0,           "zelStatusOK"               },
      {3,           "zelStatusFail"             },
      {14,          "zelStatusTypeMismatch"     },
      {26,          "zelStatusFileNotFound"     },
      {37,          "zelStatusContainerMismatch"},
      {38,          "zelStatusEnd"              },
      {39,          "zelStatusEnd"              },
      {-1,          "zelStatusEnd"              },
      {2147483647,  "zelStatusEnd"              },
      {-2147483647, "zelStatusEnd"              },
  };
  for (const auto& row : rows) {
    const TZELException exception(static_cast<zelStatusCode>(row.code));
    EXPECT_STREQ(row.name, exception.what());
    EXPECT_EQ(row.code, exception.GetStatusCode());
  }
}

TEST(TZELException, IsAStandardException) {
  const auto fail = [] { throw TZELException(zelStatusNotFound); };
  try {
    fail();
    FAIL();
  } catch (const std::exception& exception) {
    EXPECT_STREQ("zelStatusNotFound", exception.what());
  }
}
