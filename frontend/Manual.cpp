#include "frontend/Manual.h"

#include <fmt/format.h>

#include "frontend/Commands.h"
#include "frontend/ExitCode.h"
#include "zelcore/zelcore.h"

namespace zel {
namespace {

// Text in which nothing is a request or an escape.
std::string Roff(const std::string& text) {
  std::string escaped;
  bool isLineStart = true;
  for (const char c : text) {
    if (isLineStart && (c == '.' || c == '\'')) escaped += "\\&";
    if (c == '\\') {
      escaped += "\\e";
    } else if (c == '-') {
      escaped += "\\-";
    } else {
      escaped += c;
    }
    isLineStart = c == '\n';
  }
  return escaped;
}

std::string Paragraphs(const std::string& text) {
  std::string paragraphs = Roff(text);
  for (std::size_t at = 0; (at = paragraphs.find("\n\n", at)) != std::string::npos;) {
    paragraphs.replace(at, 2, "\n.PP\n");
  }
  return paragraphs + "\n";
}

void WriteHeading(const std::string& name, const std::string& text, std::ostream& out) {
  std::string title = name;
  for (char& c : title) c = 'a' <= c && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
  out << fmt::format(".TH {} 1 \"\" \"zelcore {}\" \"User Commands\"\n", Roff(title), ZEL_VERSION)
      << ".SH NAME\n"
      << fmt::format("{} \\- {}\n", Roff(name), Roff(text)) << ".SH SYNOPSIS\n";
}

// ".B \-\-class \fINAME\fR..."
void WriteOption(const TOptionRow& option, std::ostream& out) {
  const std::string value = option.value.empty() ? ""
                                                 : fmt::format("\\fI{}\\fR{}", Roff(option.value),
                                                               option.isRepeated ? "..." : "");
  out << ".TP\n";
  if (option.IsPositional()) {
    out << value << "\n";
  } else {
    out << fmt::format("\\fB{}\\fR{}{}\n", Roff(fmt::format("{}", fmt::join(option.names, ", "))),
                       value.empty() ? "" : " ", value);
  }
  out << Roff(option.text) << ".\n";
}

void WriteOptions(const std::vector<TOptionRow>& options, std::ostream& out) {
  out << ".SH OPTIONS\n";
  for (const TOptionRow& option : options) WriteOption(option, out);
}

void WriteEnd(const std::string& name, std::ostream& out) {
  out << ".SH EXIT STATUS\n";
  for (const TExitCodeRow& row : kExitCodes) {
    out << fmt::format(".TP\n.B {}\n{}\n", row.code, Roff(row.meaning));
  }
  out << ".SH ENVIRONMENT\n"
         ".TP\n.B NO_COLOR\nWhen set to something, nothing is coloured.\n"
         ".TP\n.B ZEL_SYSROOT\nThe collectors read the captured tree in this directory instead of "
         "the machine.\n"
         ".SH SEE ALSO\n";
  std::vector<std::string> others;
  if (name != "zel") others.push_back("\\fBzel\\fR(1)");
  for (const TCommandRow& command : AllCommands()) {
    const std::string page = "zel-" + command.name;
    if (page != name) others.push_back(fmt::format("\\fB{}\\fR(1)", Roff(page)));
  }
  out << fmt::format("{}\n", fmt::join(others, ",\n"));
}

// The first letter small, as manual pages have it.
std::string Uncapitalised(std::string text) {
  if (!text.empty() && 'A' <= text[0] && text[0] <= 'Z') text[0] += 'a' - 'A';
  return text;
}

}  // namespace

void WriteManual(const std::string& text, const std::vector<TOptionRow>& options,
                 std::ostream& out) {
  WriteHeading("zel", Uncapitalised(text), out);
  out << ".B zel\n\\fICOMMAND\\fR [\\fIARGUMENT\\fR...]\n.SH DESCRIPTION\n"
      << Roff(text) << ".\n.SH COMMANDS\n";
  for (const TCommandRow& command : AllCommands()) {
    out << fmt::format(".TP\n\\fB{}\\fR\n{}.\n", Roff(command.name), Roff(command.text));
  }
  WriteOptions(options, out);
  WriteEnd("zel", out);
}

void WriteManual(const TCommandRow& command, const std::vector<TOptionRow>& options,
                 std::ostream& out) {
  const std::string name = "zel-" + command.name;
  WriteHeading(name, Uncapitalised(command.text), out);
  out << fmt::format(".B zel {}\n[\\fIOPTION\\fR...]", Roff(command.name));
  for (const TOptionRow& option : options) {
    if (option.IsPositional()) {
      out << fmt::format(" [\\fI{}\\fR{}]", Roff(option.value), option.isRepeated ? "..." : "");
    }
  }
  out << "\n.SH DESCRIPTION\n" << Paragraphs(command.details);
  WriteOptions(options, out);
  out << ".SH EXAMPLES\n";
  for (const std::string& example : command.examples) {
    out << fmt::format(".RS\n.nf\n{}\n.fi\n.RE\n", Roff(example));
  }
  WriteEnd(name, out);
}

}  // namespace zel
