#include <fmt/format.h>

#include <limits>
#include <nlohmann/json.hpp>

#include "frontend/Commands.h"
#include "frontend/Options.h"
#include "frontend/Validation.h"
#include "frontend/ValueText.h"

namespace zel {
namespace {

using nlohmann::ordered_json;

enum class TFormat { kText, kJson };

const std::map<std::string, TFormat> kFormats = {
    {"text", TFormat::kText},
    {"json", TFormat::kJson}
};

std::string Counted(std::size_t count, const char* one, const char* many) {
  return fmt::format("{} {}", count, count == 1 ? one : many);
}

// "3", or "3 of 5" when the document holds more than was read.
std::string Read(std::size_t read, std::size_t holds, const char* one, const char* many) {
  return read == holds ? Counted(read, one, many)
                       : fmt::format("{} of {}", read, Counted(holds, one, many));
}

std::string Verdict(const TValidation& validation) {
  const TCounts& read = validation.read;
  const TCounts holds = validation.holds.value_or(read);
  const std::string what = fmt::format(
      "read {}, {} and {}",
      Read(read.qualifiers, holds.qualifiers, "qualifier declaration", "qualifier declarations"),
      Read(read.classes, holds.classes, "class", "classes"),
      Read(read.instances, holds.instances, "instance", "instances"));
  const TFindings& findings = validation.findings;
  if (findings.IsClean()) return "clean: " + what;
  return fmt::format("{} and {}: {}", Counted(findings.Count(TSeverity::kError), "error", "errors"),
                     Counted(findings.Count(TSeverity::kWarning), "warning", "warnings"), what);
}

void PrintText(const std::string& title, const TValidation& validation, std::ostream& out) {
  const std::string file = Printable(title);
  for (const TFinding& finding : validation.findings.Sorted()) {
    const std::string line = finding.line == 0 ? "" : fmt::format(":{}", finding.line);
    out << fmt::format("{}{}: {}: {} [{}]\n", file, line, NameOf(finding.severity), finding.text,
                       IdOf(finding.rule));
  }
  for (const auto& [rule, count] : validation.findings.NotKept()) {
    out << fmt::format("{}: note: {} more [{}]\n", file, count, IdOf(rule));
  }
  out << fmt::format("{}: {}\n", file, Verdict(validation));
}

ordered_json CountsJson(const TCounts& counts) {
  return {
      {"qualifiers", counts.qualifiers},
      {"classes",    counts.classes   },
      {"instances",  counts.instances }
  };
}

void PrintJson(const std::string& title, const TValidation& validation, std::ostream& out) {
  ordered_json document = {
      {"format",  "zel-validation"             },
      {"version", 1                            },
      {"zel",     ZEL_VERSION                  },
      {"file",    title                        },
      {"clean",   validation.findings.IsClean()},
      {"read",    CountsJson(validation.read)  }
  };
  document["holds"] = validation.holds ? CountsJson(*validation.holds) : ordered_json();
  document["findings"] = ordered_json::array();
  for (const TFinding& finding : validation.findings.Sorted()) {
    document["findings"].push_back({
        {"id",       IdOf(finding.rule)                                             },
        {"severity", NameOf(finding.severity)                                       },
        {"line",     finding.line == 0 ? ordered_json() : ordered_json(finding.line)},
        {"text",     finding.text                                                   }
    });
  }
  document["more"] = ordered_json::object();
  for (const auto& [rule, count] : validation.findings.NotKept()) {
    document["more"][IdOf(rule)] = count;
  }
  out << document.dump(2, ' ', false, ordered_json::error_handler_t::replace) << "\n";
}

class TValidateCommand : public TCommand {
 public:
  explicit TValidateCommand(CLI::App& options) {
    AddFile(options, "FILE", fFile, "The document, plain or .gz, - for standard input")->required();
    options
        .add_option("--base", fOptions.bases,
                    "Read these before it (default: the base schema, if the document declares no "
                    "KEY)")
        ->type_name("FILE");
    options.add_option("--limit", fOptions.limit, "Tell this many findings of a kind (default 20)")
        ->check(CLI::Range(0u, std::numeric_limits<unsigned>::max()).description(""))
        ->type_name("COUNT");
    AddChoice(options, "--format", fFormat, kFormats, "How to print");
  }

  TExitCode Run(TStreams& streams) override {
    const TInput input(fFile);
    const TValidation validation = Validate(input, fOptions);
    (fFormat == TFormat::kJson ? PrintJson : PrintText)(input.GetTitle(), validation, streams.out);
    return validation.findings.IsClean() ? kExitDone : kExitBadInput;
  }

 private:
  std::string fFile;
  TValidationOptions fOptions;
  TFormat fFormat = TFormat::kText;
};

}  // namespace

std::unique_ptr<TCommand> MakeValidateCommand(CLI::App& options) {
  return std::make_unique<TValidateCommand>(options);
}

}  // namespace zel
