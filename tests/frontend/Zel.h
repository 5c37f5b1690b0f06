#pragma once

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include "frontend/Main.h"
#include "tests/support/TempDir.h"

struct TResult {
  int code;
  std::string out;
  std::string err;
};

// Runs `zel` with these arguments, in this process.
inline TResult Zel(const std::vector<std::string>& arguments) {
  std::vector<const char*> argv = {"zel"};
  for (const std::string& argument : arguments) argv.push_back(argument.c_str());
  std::ostringstream out;
  std::ostringstream err;
  const int code = zel::Main(static_cast<int>(argv.size()), argv.data(), {out, err});
  return {code, out.str(), err.str()};
}

inline const std::string kBase = ZEL_SOURCE_DIR "/schema/zelcore.base.xml";

// A plug-in directory with the named test plug-ins.
class TPluginDir : public TempDir {
 public:
  explicit TPluginDir(const std::vector<std::string>& names) {
    for (const std::string& name : names) {
      std::filesystem::copy(std::filesystem::path(ZEL_TEST_PLUGINS) / name, PathOf(name));
    }
  }
};

// What no command takes for a file, and why.
struct TUnreadable {
  std::string path;
  const char* reason;
};
inline std::vector<TUnreadable> UnreadableIn(const TempDir& dir) {
  mkfifo(dir.PathOf("fifo").c_str(), 0600);
  return {
      {dir.PathOf("none"), "No such file or directory"},
      {dir.GetPath(),      "it is no regular file"    },
      {dir.PathOf("fifo"), "it is no regular file"    },
  };
}

// Standard input of this process, which holds `contents` while the object lives.
class TStandardInput {
 public:
  explicit TStandardInput(const std::string& contents) : fFormer(dup(STDIN_FILENO)) {
    const TempDir dir;
    const int file = open(dir.WriteFile("input", contents).c_str(), O_RDONLY);
    dup2(file, STDIN_FILENO);
    close(file);
  }
  ~TStandardInput() {
    dup2(fFormer, STDIN_FILENO);
    close(fFormer);
  }
  TStandardInput(const TStandardInput&) = delete;
  TStandardInput& operator=(const TStandardInput&) = delete;

 private:
  int fFormer;
};
