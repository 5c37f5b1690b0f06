#include <gtest/gtest.h>

#include "tests/support/LogSpy.h"

namespace {

// A new logger for every test: empty, without a file, with the default threshold.
class FreshLog : public testing::EmptyTestEventListener {
  void OnTestStart(const testing::TestInfo&) override { RestartLog(); }
};

}  // namespace

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  testing::UnitTest::GetInstance()->listeners().Append(new FreshLog);
  return RUN_ALL_TESTS();
}
