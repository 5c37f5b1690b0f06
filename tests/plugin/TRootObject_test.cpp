#include "zelcore/TRootObject.h"

#include <gtest/gtest.h>

#include "zelcore/TLogger.h"
#include "zelcore/TPluginManager.h"
#include "zelcore/TQueryManager.h"

namespace {

// Before anything of the program has run.
const bool kNothingThereAtLoad = !TRootObject::GetCoreLogger() &&
                                 !TRootObject::GetPluginManager() &&
                                 !TRootObject::GetQueryManager();

zelStatusCode Register() {
  zelPluginCallbacks table{};
  TCPluginCallbacks* handle = nullptr;
  return zelRegisterPlugin(&table, &handle);
}

}  // namespace

TEST(TRootObject, ReturnsNullUntilEachObjectIsMade) {
  EXPECT_TRUE(kNothingThereAtLoad);
  delete TLogger::GetInstance();  // the one that every test starts with
  EXPECT_EQ(nullptr, TRootObject::GetCoreLogger());
  CoreInit();
  EXPECT_EQ(nullptr, TRootObject::GetCoreLogger());
  EXPECT_EQ(nullptr, TRootObject::GetPluginManager());
  EXPECT_EQ(nullptr, TRootObject::GetQueryManager());

  EXPECT_EQ(0, TLogger::Initialize());
  ASSERT_NE(nullptr, TRootObject::GetCoreLogger());
  EXPECT_EQ(TLogger::GetInstance(), TRootObject::GetCoreLogger());
  EXPECT_EQ(nullptr, TRootObject::GetPluginManager());

  EXPECT_EQ(zelStatusInvalidOpSequence, Register());
  EXPECT_EQ(0, TPluginManager::Initialize("/nowhere"));
  EXPECT_EQ(zelStatusOK, Register());
  ASSERT_NE(nullptr, TRootObject::GetPluginManager());
  EXPECT_EQ(TPluginManager::GetInstance(), TRootObject::GetPluginManager());
  EXPECT_EQ(nullptr, TRootObject::GetQueryManager());

  EXPECT_EQ(0, TQueryManager::Initialize());
  ASSERT_NE(nullptr, TRootObject::GetQueryManager());
  EXPECT_EQ(TQueryManager::GetInstance(), TRootObject::GetQueryManager());
}
