#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace zel {

// The command line as data, for what is made from it: shell completion and manual pages.

struct TOptionRow {
  std::vector<std::string> names;  // "-o", "--output"; empty for a positional argument
  std::string value;               // what it takes: "FILE", "text|json"; empty for a flag
  std::string text;
  bool isRepeated = false;  // takes several values

  bool IsPositional() const { return names.empty(); }
  bool IsFile() const { return value.find("FILE") != std::string::npos; }
  bool IsDirectory() const { return value == "DIR"; }
  // The words that it can take, when these are all.
  std::vector<std::string> Words() const;
};

struct TCommandTable {
  std::string name;
  std::string text;
  std::vector<TOptionRow> options;  // in the order of the help
};

// Of the whole program: its own options, and each command with its options.
std::vector<TOptionRow> OptionsOf(const CLI::App& app);
std::vector<TCommandTable> CommandsOf(const CLI::App& program);

}  // namespace zel
