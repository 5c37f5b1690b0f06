#include "frontend/Commands.h"

#include <algorithm>

namespace zel {

const std::vector<TCommandRow>& AllCommands() {
  // clang-format off
  static const std::vector<TCommandRow> commands = {
      {"collect", "Collect this machine, and print or save the result",
       {"zel collect -o web01.xml.gz",
        "zel collect --class KVRSG_Processor KVRSG_Memory --format json"},
       "Loads every plug-in in a child process with a deadline of its own, asks it for "
       "the classes that its document declares, and shows the result. A plug-in that "
       "fails costs its own classes and nothing else: the rest is shown, the failure is "
       "reported, and the exit code is 3.\n\n"
       "Facts that only root can read are said to need root; nothing is guessed. With an "
       "output file the collection is saved as CIM-XML, with its schema, the run and "
       "what came of every plug-in; the file is there whole or not at all.",
       MakeCollectCommand},
      {"show", "Show a saved collection or this machine",
       {"zel show machine.xml.gz",
        "zel show machine.xml.gz Processors --format json --text"},
       "Shows a saved collection, or this machine when no file is named: a summary, or "
       "the classes and sections that are named. An argument that is there as a file, "
       "holds a slash, or ends in .xml or .gz is the file; a dash is standard input.\n\n"
       "Tables and lists have the columns that the schema names, or every property on request. "
       "Values have their units and words unless they are wanted raw. JSON and CSV have every "
       "property, raw.",
       MakeShowCommand},
      {"get", "Print the bare values of a property",
       {"zel get KVRSG_Processor.MaxClockSpeed",
        "zel get machine.xml.gz KVRSG_ComputerSystem.SerialNumber"},
       "Prints the values of one property of all instances of a class and of its "
       "subclasses, one a line and without any decoration, for scripts. A value that is "
       "missing gives no line; when there is none at all, the exit code is 1.",
       MakeGetCommand},
      {"tree", "Show what the system consists of, as a tree",
       {"zel tree",
        "zel tree server.xml.gz --from KVRSG_Processor --depth 2"},
       "Prints what the system consists of, what that consists of in turn, and so on, as "
       "the associations tell it: from the machine down to its devices. What stands "
       "above with all that is below it is named again, but not followed; (+N) tells "
       "that the depth hides N instances.",
       MakeTreeCommand},
      {"diff", "Tell what has changed",
       {"zel diff server.xml.gz",
        "zel diff before.xml.gz after.xml.gz --class Memory"},
       "Compares two saved collections, or a saved one with this machine, instance by "
       "instance and property by property. Values that change from one moment to the "
       "next are left out unless they are asked for. A class that was not collected on "
       "one side is named as not compared: it never counts as removed.\n\n"
       "The exit code is 1 when something differs. When nothing does, it is 3 if a plug-in "
       " failed on this machine, and 0 if none did.",
       MakeDiffCommand},
      {"report", "Write a collection as one HTML page",
       {"zel report -o machine.html",
        "zel report new.xml.gz --diff old.xml.gz -o changes.html"},
       "Writes one HTML page that needs nothing else: no network, no other file. It can "
       "be searched and sorted in a browser, and prints well.",
       MakeReportCommand},
      {"upload", "Send a saved collection to an FTP server",
       {"zel upload web01.xml.gz --to ftp://ftp.example.org/incoming/ --dry-run",
        "zel upload web01.xml.gz --to ftp://ftp.example.org/incoming/ --name rack7"},
       "Sends a file to an FTP server, and says where before it does. FTP is not "
       "encrypted: whoever is on the way can read what is sent, so a collection should "
       "be redacted first.",
       MakeUploadCommand},
      {"schema", "List the classes, or describe some",
       {"zel schema",
        "zel schema KVRSG_Processor --format md"},
       "Lists the classes that the base schema and the documents of the plug-ins "
       "declare, by section, or explains classes: their keys, and every property with "
       "its type, unit, words and source. No plug-in is run.",
       MakeSchemaCommand},
      {"plugins", "List the plug-ins, and why one does not load",
       {"zel plugins",
        "zel plugins --plugin-dir /opt/acme/plugins"},
       "Loads every plug-in in a child process, without collecting anything, and tells "
       "its version, its file, its state and its classes. The exit code is 3 when one of "
       "them does not work.",
       MakePluginsCommand},
      {"validate", "Check a CIM-XML document",
       {"zel validate acme.properties.xml",
        "zel validate host.xml.gz --format json"},
       "Reads a CIM-XML document as zel would, prints what the reader logs with the "
       "line, and then what it takes without a word although a person should know: "
       "numbers that were cut, datetimes that were replaced, text after the end, and "
       "more. A strict parser reads the same document beside it. The exit code is 4 when "
       "there is anything to tell.",
       MakeValidateCommand},
      {"completion", "Write the completion of a shell",
       {"source <(zel completion bash)",
        "zel completion fish > ~/.config/fish/completions/zel.fish"},
       "Prints what makes a shell complete the commands and options of zel on Tab. It is "
       "made from the table of options of the command itself.",
       MakeCompletionCommand},
      {"help", "Explain a command",
       {"zel help",
        "zel help collect"},
       "Prints what the option --help of a command prints, or its manual page.",
       nullptr},
  };
  // clang-format on
  return commands;
}

const TCommandRow* FindCommand(const std::string& name) {
  const std::vector<TCommandRow>& all = AllCommands();
  const auto found = std::find_if(all.begin(), all.end(),
                                  [&](const TCommandRow& row) { return row.name == name; });
  return found == all.end() ? nullptr : &*found;
}

}  // namespace zel
