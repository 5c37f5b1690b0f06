#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "collectors/product/parse.h"
#include "collectors/product/read.h"
#include "tests/collectors/Collected.h"
#include "tests/support/LogSpy.h"
#include "zelcore/zelcore.h"

namespace product_collector {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(Product, IsInTheDirectoryOfItsLibrary) {
  EXPECT_EQ("/usr/lib", Parse("/usr/lib/libzelcore.so.1").installPath);
  EXPECT_EQ("/", Parse("/libzelcore.so.1").installPath);
  EXPECT_EQ(std::nullopt, Parse("libzelcore.so.1").installPath);
  EXPECT_EQ(std::nullopt, Parse(std::nullopt).installPath);
  const auto path = ReadLibraryPath();
  ASSERT_TRUE(path);
  EXPECT_TRUE(std::filesystem::equivalent(*path, ZEL_BINARY_DIR "/libzelcore.so"));
}

TEST(ProductPlugin, PublishesTheVersionThatWasBuilt) {
  const Collected collected(Machine(), {"product"});
  EXPECT_THAT(LogLines(zelLogError), IsEmpty());
  EXPECT_THAT(Collected::Texts("KVRSG_VNTProduct", "Name"), ElementsAre("zelcore"));
  EXPECT_THAT(Collected::Texts("KVRSG_VNTProduct", "Vendor"), ElementsAre("zelcore maintainers"));
  EXPECT_THAT(Collected::Texts("KVRSG_VNTProduct", "IdentifyingNumber"),
              ElementsAre(std::string("zelcore-") + ZEL_VERSION));
  EXPECT_THAT(Collected::Texts("KVRSG_VNTProduct", "InstallPath"),
              ElementsAre(std::filesystem::canonical(ZEL_BINARY_DIR).string()));
  const std::string version = std::to_string(ZEL_VERSION_MAJOR) + "." +
                              std::to_string(ZEL_VERSION_MINOR) + "." +
                              std::to_string(ZEL_VERSION_BUILD);
  EXPECT_EQ(version, TCIMSchemaHelper::GetDataSourceVersion(&Collected::Schema()));
}

}  // namespace
}  // namespace product_collector
