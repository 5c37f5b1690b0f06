#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <zlib.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "tests/support/LogSpy.h"
#include "tests/support/Status.h"
#include "zelcore/zelcore.h"

// Documents that other programs wrote, with tables of facts that were made without us. They lie
// beside the source tree, and not everywhere; SampleDocument_test.cpp reads one of our own.

inline const std::filesystem::path kData =
    std::filesystem::path(ZEL_SOURCE_DIR) / "../shared/data/cim-xml";

// The text of a file, unpacked when it is packed.
inline std::string ReadText(const std::filesystem::path& path) {
  std::string text;
  if (gzFile file = gzopen(path.c_str(), "rb")) {
    char part[65536];
    for (int size; (size = gzread(file, part, sizeof part)) > 0;) {
      text.append(part, static_cast<std::size_t>(size));
    }
    gzclose(file);
  }
  return text;
}

inline std::vector<std::string> FilesOf(const std::string& folder) {
  std::vector<std::string> files;
  for (const auto& entry : std::filesystem::directory_iterator(kData / folder)) {
    files.push_back(entry.path().filename());
  }
  std::sort(files.begin(), files.end());
  return files;
}

class RealDocuments : public testing::Test {
 protected:
  void SetUp() override {
    if (!std::filesystem::exists(kData)) {
      GTEST_SKIP() << "the real documents are not there: " << kData;
    }
  }

  std::string Load(const std::string& name) {
    ClearLog();
    return StatusOf(
        [&] { fCollected = fContainer->PopulateContainerFromFile(kData / name).size(); });
  }

  // Loads every file of a folder; `expected` names those that end otherwise than well, with the
  // status and the beginning of the first log line.
  struct TEnding {
    std::string status;
    std::string line;
  };
  void LoadAll(const std::string& folder, const std::map<std::string, TEnding>& expected) {
    for (const std::string& file : FilesOf(folder)) {
      const auto found = expected.find(file);
      const std::string status = Load(folder + "/" + file);
      if (found == expected.end()) {
        EXPECT_EQ("zelStatusOK", status) << file;
        EXPECT_THAT(LogLines(), testing::IsEmpty()) << file;
      } else {
        EXPECT_EQ(found->second.status, status) << file;
        ASSERT_THAT(LogLines(), testing::Not(testing::IsEmpty())) << file;
        EXPECT_THAT(LogLines()[0], testing::StartsWith(found->second.line)) << file;
      }
    }
  }

  std::unique_ptr<TContainer> fContainer = std::make_unique<TContainer>();
  std::size_t fCollected = 0;  // by the last Load()
};
