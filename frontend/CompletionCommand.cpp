// Writes the completion of a shell from the table of options, so that it is never out of date.

#include <fmt/format.h>

#include <CLI/CLI.hpp>

#include "frontend/Commands.h"
#include "frontend/OptionTable.h"
#include "frontend/Options.h"

namespace zel {
namespace {

enum class TShell { kBash, kZsh, kFish };

const std::map<std::string, TShell> kShells = {
    {"bash", TShell::kBash},
    {"zsh",  TShell::kZsh },
    {"fish", TShell::kFish}
};

struct TProgram {
  std::vector<TOptionRow> options;
  std::vector<TCommandTable> commands;
};

std::string Join(const std::vector<std::string>& words) {
  return fmt::format("{}", fmt::join(words, " "));
}

std::string Replaced(const std::string& text, char found, const std::string& replacement) {
  std::string replaced;
  for (const char c : text) {
    if (c == found) {
      replaced += replacement;
    } else {
      replaced += c;
    }
  }
  return replaced;
}

// Between single quotes, as all three shells take it.
std::string Quoted(const std::string& text) { return "'" + Replaced(text, '\'', "'\\''") + "'"; }

std::vector<std::string> CommandNames(const TProgram& program) {
  std::vector<std::string> names;
  for (const TCommandTable& command : program.commands) names.push_back(command.name);
  return names;
}

std::vector<std::string> OptionNames(const std::vector<TOptionRow>& options) {
  std::vector<std::string> names;
  for (const TOptionRow& option : options) {
    names.insert(names.end(), option.names.begin(), option.names.end());
  }
  return names;
}

// The words that can stand in the place of an option's value or a positional argument.
std::vector<std::string> WordsOf(const TProgram& program, const TOptionRow& option) {
  return option.value == "COMMAND" ? CommandNames(program) : option.Words();
}

// bash: what to complete is told to compgen.

std::string BashSource(const TProgram& program, const TOptionRow& option) {
  const std::vector<std::string> words = WordsOf(program, option);
  if (!words.empty()) return "-W " + Quoted(Join(words));
  if (option.IsDirectory()) return "-d";
  return option.IsFile() ? "-f" : "-W ''";
}

void WriteBash(const TProgram& program, std::ostream& out) {
  out << "# bash completion for zel; made by 'zel completion bash'\n"
         "_zel() {\n"
         "  local command= word index\n"
         "  local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD-1]}\n"
         "  if [[ $current == = ]]; then\n"
         "    current=\n"
         "  elif [[ $previous == = ]]; then\n"
         "    previous=${COMP_WORDS[COMP_CWORD-2]}\n"
         "  fi\n"
         "  for ((index = 1; index < COMP_CWORD; ++index)); do\n"
         "    word=${COMP_WORDS[index]}\n"
         "    [[ $word == -* ]] || { command=$word; break; }\n"
         "  done\n"
         "  case $command:$previous in\n";
  for (const TCommandTable& command : program.commands) {
    for (const TOptionRow& option : command.options) {
      if (option.IsPositional() || option.value.empty()) continue;
      std::vector<std::string> patterns;
      for (const std::string& name : option.names) patterns.push_back(command.name + ":" + name);
      out << fmt::format("    {}) set -- {} ;;\n", fmt::join(patterns, "|"),
                         BashSource(program, option));
    }
  }
  out << "    *) set -- ;;\n"
         "  esac\n"
         "  if (($# == 0)); then\n"
         "    case $command:$current in\n"
      << fmt::format("      :*) set -- -W {} ;;\n", Quoted(Join(OptionNames(program.options)) +
                                                           " " + Join(CommandNames(program))));
  for (const TCommandTable& command : program.commands) {
    out << fmt::format("      {}:-*) set -- -W {} ;;\n", command.name,
                       Quoted(Join(OptionNames(command.options))));
    for (const TOptionRow& option : command.options) {
      if (!option.IsPositional()) continue;
      out << fmt::format("      {}:*) set -- {} ;;\n", command.name,
                         option.isRepeated && WordsOf(program, option).empty()
                             ? "-f"
                             : BashSource(program, option));
      break;
    }
  }
  out << "      *) set -- -W '' ;;\n"
         "    esac\n"
         "  fi\n"
         "  [[ $1 == -W ]] || compopt -o filenames\n"
         "  mapfile -t COMPREPLY < <(compgen \"$@\" -- \"$current\")\n"
         "}\n"
         "complete -F _zel zel\n";
}

// zsh: one _arguments specification for each option.

std::string ZshText(const std::string& text) {
  std::string shown = Replaced(text, '\\', "\\\\");
  for (const char special : {':', '[', ']'}) {
    shown = Replaced(shown, special, std::string("\\") + special);
  }
  return shown;
}

std::string ZshAction(const TProgram& program, const TOptionRow& option) {
  const std::vector<std::string> words = WordsOf(program, option);
  if (!words.empty()) return fmt::format("({})", Join(words));
  if (option.IsDirectory()) return "_files -/";
  return option.IsFile() || option.IsPositional() ? "_files" : " ";
}

void WriteZshOption(const TProgram& program, const TOptionRow& option, const std::string& indent,
                    std::ostream& out) {
  const std::string value = option.value.empty() ? ""
                                                 : fmt::format(":{}:{}", ZshText(option.value),
                                                               ZshAction(program, option));
  if (option.IsPositional()) {
    out << fmt::format(" \\\n{}{}", indent, Quoted((option.isRepeated ? "*" : "1") + value));
    return;
  }
  for (const std::string& name : option.names) {
    const char* repeated = option.isRepeated ? "*" : "";
    out << fmt::format(
        " \\\n{}{}", indent,
        Quoted(fmt::format("{}{}[{}]{}", repeated, name, ZshText(option.text), value)));
  }
}

void WriteZsh(const TProgram& program, std::ostream& out) {
  out << "#compdef zel\n"
         "# zsh completion for zel; made by 'zel completion zsh'\n"
         "_zel() {\n"
         "  local line state curcontext=$curcontext\n"
         "  local -a commands\n"
         "  commands=(\n";
  for (const TCommandTable& command : program.commands) {
    out << fmt::format("    {}\n", Quoted(command.name + ":" + ZshText(command.text)));
  }
  out << "  )\n"
         "  _arguments -C";
  for (const TOptionRow& option : program.options) {
    WriteZshOption(program, option, "    ", out);
  }
  out << " \\\n    '1: :->command' \\\n    '*:: :->arguments'\n"
         "  case $state in\n"
         "    command) _describe command commands ;;\n"
         "    arguments)\n"
         "      case $words[1] in\n";
  for (const TCommandTable& command : program.commands) {
    out << fmt::format("        {}) _arguments", command.name);
    for (const TOptionRow& option : command.options) {
      WriteZshOption(program, option, "          ", out);
    }
    out << " ;;\n";
  }
  out << "      esac ;;\n"
         "  esac\n"
         "}\n"
         "if [[ $funcstack[1] == _zel ]]; then _zel \"$@\"; else compdef _zel zel; fi\n";
}

// fish: a line for each option.

void WriteFishOption(const TProgram& program, const TOptionRow& option,
                     const std::string& condition, std::ostream& out) {
  const std::vector<std::string> words = WordsOf(program, option);
  std::string line = "complete -c zel -n " + Quoted(condition);
  for (const std::string& name : option.names) {
    line += name.compare(0, 2, "--") == 0 ? " -l " + name.substr(2) : " -s " + name.substr(1);
  }
  if (!words.empty()) {
    line += (option.IsPositional() ? " -a " : " -x -a ") + Quoted(Join(words));
  } else if (option.IsDirectory()) {
    line += " -x -a '(__fish_complete_directories)'";
  } else if (option.IsFile()) {
    line += option.IsPositional() ? " -F" : " -r -F";
  } else if (!option.value.empty()) {
    line += option.IsPositional() ? " -F" : " -x";
  }
  out << line << " -d " << Quoted(option.text) << "\n";
}

void WriteFish(const TProgram& program, std::ostream& out) {
  out << "# fish completion for zel; made by 'zel completion fish'\n"
         "complete -c zel -f\n";
  for (const TOptionRow& option : program.options) {
    WriteFishOption(program, option, "__fish_use_subcommand", out);
  }
  for (const TCommandTable& command : program.commands) {
    out << fmt::format("complete -c zel -n __fish_use_subcommand -a {} -d {}\n", command.name,
                       Quoted(command.text));
    for (const TOptionRow& option : command.options) {
      WriteFishOption(program, option, "__fish_seen_subcommand_from " + command.name, out);
    }
  }
}

class TCompletionCommand : public TCommand {
 public:
  explicit TCompletionCommand(CLI::App& options) : fProgram(*options.get_parent()) {
    AddChoice(options, "SHELL", fShell, kShells, "The shell to write it for")->required();
  }

  TExitCode Run(TStreams& streams) override {
    const TProgram program = {OptionsOf(fProgram), CommandsOf(fProgram)};
    switch (fShell) {
      case TShell::kBash: WriteBash(program, streams.out); break;
      case TShell::kZsh: WriteZsh(program, streams.out); break;
      case TShell::kFish: WriteFish(program, streams.out); break;
    }
    return kExitDone;
  }

 private:
  const CLI::App& fProgram;
  TShell fShell = TShell::kBash;
};

}  // namespace

std::unique_ptr<TCommand> MakeCompletionCommand(CLI::App& options) {
  return std::make_unique<TCompletionCommand>(options);
}

}  // namespace zel
