#include "frontend/OptionTable.h"

#include <CLI/CLI.hpp>

namespace zel {

std::vector<std::string> TOptionRow::Words() const {
  std::vector<std::string> words;
  if (value.find('|') == std::string::npos) return words;
  for (std::size_t start = 0; start <= value.size();) {
    const std::size_t end = std::min(value.find('|', start), value.size());
    words.push_back(value.substr(start, end - start));
    start = end + 1;
  }
  return words;
}

std::vector<TOptionRow> OptionsOf(const CLI::App& app) {
  std::vector<TOptionRow> rows;
  for (const CLI::Option* option : app.get_options()) {
    TOptionRow row;
    for (const std::string& name : option->get_snames()) row.names.push_back("-" + name);
    for (const std::string& name : option->get_lnames()) row.names.push_back("--" + name);
    if (option->get_items_expected_max() > 0) row.value = option->get_type_name();
    if (row.IsPositional() && row.Words().empty()) row.value = option->get_name();
    row.text = option->get_description();
    row.isRepeated = option->get_items_expected_max() > 1;
    rows.push_back(std::move(row));
  }
  return rows;
}

std::vector<TCommandTable> CommandsOf(const CLI::App& program) {
  std::vector<TCommandTable> commands;
  for (const CLI::App* command : program.get_subcommands([](const CLI::App*) { return true; })) {
    commands.push_back({command->get_name(), command->get_description(), OptionsOf(*command)});
  }
  return commands;
}

}  // namespace zel
