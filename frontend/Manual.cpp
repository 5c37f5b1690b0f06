#include "frontend/Manual.h"

#include <fmt/format.h>

#include <map>

#include "frontend/ExitCode.h"
#include "zelcore/zelcore.h"

namespace zel {
namespace {

// What a command does beyond its line in the table; a blank line between paragraphs.
const std::map<std::string, std::string> kDetails = {
    {"collect",
     "Loads every plug-in in a child process with a deadline of its own, asks it for the "
     "classes that its document declares, and shows the result. A plug-in that fails costs "
     "its own classes and nothing else: the rest is shown, the failure is reported, and "
     "the exit code is 3.\n\n"
     "Facts that only root can read are said to need root; nothing is guessed. With an "
     "output file the collection is saved as CIM-XML, with its schema, the run and what "
     "came of every plug-in; the file is there whole or not at all."},
    {"show",
     "Shows a saved collection, or this machine when no file is named: a summary, or the "
     "classes and sections that are named. An argument that is there as a file, holds a "
     "slash, or ends in .xml or .gz is the file; a dash is standard input.\n\n"
     "Tables have the columns that the schema names, lists have every property. Values "
     "have their units and words unless they are wanted raw."       },
    {"get",
     "Prints the values of one property of all instances of a class and of its subclasses, "
     "one a line and without any decoration, for scripts. A value that is missing gives no "
     "line; when there is none at all, the exit code is 1."         },
    {"tree",
     "Prints what the system consists of, what that consists of in turn, and so on, as the "
     "associations tell it: from the machine down to its devices. What stands above with all "
     "that is below it is named again, but not followed; (+N) tells that the depth hides N "
     "instances."                                                   },
    {"diff",
     "Compares two saved collections, or a saved one with this machine, instance by "
     "instance and property by property. Values that change from one moment to the next "
     "are left out unless they are asked for. A class that was not collected on one side "
     "is named as not compared: it never counts as removed.\n\n"
     "The exit code is 1 when something differs. When nothing does, it is 3 if a plug-in "
     "failed on this machine, and 0 if none did."                   },
    {"report",
     "Writes one HTML page that needs nothing else: no network, no other file. It can be "
     "searched and sorted in a browser, and prints well."           },
    {"upload",
     "Sends a file to an FTP server, and says where before it does. FTP is not encrypted: "
     "whoever is on the way can read what is sent, so a collection should be redacted "
     "first."                                                       },
    {"schema",
     "Lists the classes that the base schema and the documents of the plug-ins declare, by "
     "section, or explains classes: their keys, and every property with its type, unit, "
     "words and source. No plug-in is run."                         },
    {"plugins",
     "Loads every plug-in in a child process, without collecting anything, and tells its "
     "version, its file, its state and its classes. The exit code is 3 when one of them "
     "does not work."                                               },
    {"validate",
     "Reads a CIM-XML document as zel would, prints what the reader logs with the line, "
     "and then what it takes without a word although a person should know: numbers that "
     "were cut, datetimes that were replaced, text after the end, and more. A strict "
     "parser reads the same document beside it. The exit code is 4 when there is anything "
     "to tell."                                                     },
    {"completion",
     "Prints what makes a shell complete the commands and options of zel on Tab. It is "
     "made from the table of options of the command itself."        },
};

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

void WriteEnd(const std::string& name, const std::vector<TCommandTable>& commands,
              std::ostream& out) {
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
  for (const TCommandTable& command : commands) {
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
                 const std::vector<TCommandTable>& commands, std::ostream& out) {
  WriteHeading("zel", Uncapitalised(text), out);
  out << ".B zel\n\\fICOMMAND\\fR [\\fIARGUMENT\\fR...]\n.SH DESCRIPTION\n"
      << Roff(text) << ".\n.SH COMMANDS\n";
  for (const TCommandTable& command : commands) {
    out << fmt::format(".TP\n\\fB{}\\fR\n{}.\n", Roff(command.name), Roff(command.text));
  }
  WriteOptions(options, out);
  WriteEnd("zel", commands, out);
}

void WriteManual(const TCommandTable& command, const std::vector<std::string>& examples,
                 const std::vector<TCommandTable>& commands, std::ostream& out) {
  const std::string name = "zel-" + command.name;
  WriteHeading(name, Uncapitalised(command.text), out);
  out << fmt::format(".B zel {}\n[\\fIOPTION\\fR...]", Roff(command.name));
  for (const TOptionRow& option : command.options) {
    if (option.IsPositional()) {
      out << fmt::format(" [\\fI{}\\fR{}]", Roff(option.value), option.isRepeated ? "..." : "");
    }
  }
  const auto details = kDetails.find(command.name);
  out << "\n.SH DESCRIPTION\n"
      << (details == kDetails.end() ? Roff(command.text) + ".\n" : Paragraphs(details->second));
  WriteOptions(command.options, out);
  out << ".SH EXAMPLES\n";
  for (const std::string& example : examples) {
    out << fmt::format(".RS\n.nf\n{}\n.fi\n.RE\n", Roff(example));
  }
  WriteEnd(name, commands, out);
}

}  // namespace zel
