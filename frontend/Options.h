#pragma once

#include <CLI/CLI.hpp>
#include <chrono>
#include <map>
#include <string>
#include <vector>

#include "frontend/Collection.h"
#include "frontend/Selection.h"

// Options that several commands have.

namespace zel {

// Those of AddSchemaOptions(), and --timeout
void AddCollectionOptions(CLI::App& command, TCollectionOptions& options);

// --plugin-dir, --base, --log, --log-level: of a command that runs no plug-in
void AddSchemaOptions(CLI::App& command, TCollectionOptions& options);

// An option for a time.
void AddSeconds(CLI::App& command, const std::string& name, std::chrono::milliseconds& value,
                const std::string& text);

// An option or argument that is a file, whose name is not empty.
CLI::Option* AddFile(CLI::App& command, const std::string& name, std::string& file,
                     const std::string& text);

// --redact
void AddRedactOption(CLI::App& command, bool& redact);

// [FILE] [NAME...]: all of them go to `arguments`, from which TakeFile() takes the first. Returns
// the option of the names.
CLI::Option* AddFileAndNames(CLI::App& command, std::vector<std::string>& arguments,
                             const std::string& name, const std::string& text);

// --where
void AddConditions(CLI::App& command, std::vector<TCondition>& conditions);

// The row of `table` that `word` names, in any case; `words` are all of them. Throws
// CLI::ValidationError for an option called `name`.
template <class TValue>
TValue Choose(const std::string& name, const std::string& word,
              const std::map<std::string, TValue>& table, const std::string& words) {
  const auto found = table.find(CLI::detail::to_lower(word));
  if (found != table.end()) return found->second;
  throw CLI::ValidationError(name, "'" + word + "' is none of " + words);
}

// An option whose value is one of the words of `table`.
template <class TValue>
CLI::Option* AddChoice(CLI::App& command, const std::string& name, TValue& value,
                       const std::map<std::string, TValue>& table, const std::string& text) {
  std::string words;
  for (const auto& row : table) words += (words.empty() ? "" : "|") + row.first;
  return command
      .add_option_function<std::string>(
          name, [=, &value](const std::string& word) { value = Choose(name, word, table, words); },
          text)
      ->type_name(words);
}

}  // namespace zel
