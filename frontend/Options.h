#pragma once

#include <CLI/CLI.hpp>
#include <map>
#include <string>

#include "frontend/Collection.h"

// Options that several commands have.

namespace zel {

// --plugin-dir, --base, --timeout, --log, --log-level
void AddCollectionOptions(CLI::App& command, TCollectionOptions& options);

// An option whose value is one of the words of `table`.
template <class TValue>
CLI::Option* AddChoice(CLI::App& command, const std::string& name, TValue& value,
                       const std::map<std::string, TValue>& table, const std::string& text) {
  std::string words;
  for (const auto& row : table) words += (words.empty() ? "" : "|") + row.first;
  return command.add_option(name, value, text)
      ->transform(CLI::CheckedTransformer(table, CLI::ignore_case).description(""))
      ->type_name(words);
}

}  // namespace zel
