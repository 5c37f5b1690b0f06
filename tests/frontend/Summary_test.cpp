#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdlib.h>

#include <sstream>
#include <string>

#include "frontend/Inventory.h"
#include "frontend/Summary.h"
#include "tests/support/TempDir.h"
#include "tests/support/TimeZone.h"

namespace {

using testing::HasSubstr;

// The summary of what the collectors find below `root`, without the time that it took.
std::string SummaryOf(const std::string& root) {
  setenv("ZEL_SYSROOT", root.c_str(), 1);
  const TimeZone zone("UTC");
  zel::TCollectionOptions options;
  options.pluginDirectory = ZEL_BINARY_DIR "/plugins";
  options.baseSchema = ZEL_SOURCE_DIR "/schema/zelcore.base.xml";
  std::ostringstream out;
  zel::PrintSummary(zel::TInventory::Collect(options), out);
  const std::string text = out.str();
  return text.substr(0, text.rfind(" in "));
}

std::string Machine(const std::string& name) {
  return ZEL_SOURCE_DIR "/tests/testdata/machines/" + name;
}

TEST(Summary, FitsAWholeMachineOnOneScreen) {
  EXPECT_EQ(
      "System\n"
      "  Name                    captured\n"
      "  Product                 Example Systems Rack Server R5 -[8871AC1]-\n"
      "  Serial number           EX123456\n"
      "  Machine type and model  8871AC1\n"
      "  Kind                    virtual (QEMU)\n"
      "Operating system\n"
      "  Name                    Linux\n"
      "  Version                 not available\n"
      "  Kernel                  6.1.0-56-amd64\n"
      "  Booted                  2026-11-21 12:19:01\n"
      "  Uptime                  0:00:07\n"
      "Processors\n"
      "  Model                   QEMU TCG CPU version 2.5+\n"
      "  Count                   2 packages, 4 cores, 4 threads\n"
      "  Caches                  4 x 64 KiB L1d, 4 x 64 KiB L1i, 4 x 512 KiB L2, 2 x 16 MiB L3\n"
      "Memory\n"
      "  Total                   958 MiB\n"
      "  Available               851.7 MiB\n"
      "  Swap                    0 B\n"
      "  Modules                 1 x 1 GiB RAM, 1 of 1 slot\n"
      "Collected by zelcore 0.1.0\n"
      "\n"
      "5 plug-ins, 27 classes, 100 instances",
      SummaryOf(Machine("qemu-q35")));
}

TEST(Summary, TellsPhysicalMachinesAndContainers) {
  EXPECT_THAT(SummaryOf(Machine("arm-server")),
              HasSubstr("\n  Kind                    physical\n"));
  EXPECT_THAT(SummaryOf(Machine("container")), HasSubstr(", in a container (docker)\n"));
}

TEST(Summary, InventsNothingWhereNothingIsToBeFound) {
  const TempDir nothing;
  const std::string summary = SummaryOf(nothing.GetPath());
  for (const char* label :
       {"Product               ", "Version               ", "Booted                ",
        "Uptime                ", "Total                 ", "Available             "}) {
    EXPECT_THAT(summary, HasSubstr("\n  " + std::string(label) + "  not available\n"));
  }
}

}  // namespace
