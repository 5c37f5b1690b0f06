#pragma once

#include <string>
#include <vector>

#include "tests/frontend/Document.h"
#include "tests/frontend/Zel.h"

// A saved collection that builds on the base schema: two disks, the case that holds them, and what
// has no columns.

namespace document {

inline std::string Column(const std::string& number) {
  return Qualifier("COLUMN", "uint32", number);
}
inline std::string Unit(const std::string& unit) { return Qualifier("UNITS", "string", unit); }

// `parts` without declarations of qualifiers.
inline std::string OnBase(const std::string& parts) {
  return "<CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\">\n<DECLARATION><DECLGROUP>\n" + parts +
         "</DECLGROUP></DECLARATION>\n</CIM>\n";
}

inline std::string ShowClasses() {
  const std::string storage = Qualifier("SECTION", "string", "Mass storage");
  return Class("Acme_Disk",
               storage + Key("Id", "string", Column("1")) + Declare("Note", "string") +
                   Declare("Size", "uint64", Unit("Bytes") + Column("3")) +
                   Declare("Model", "string",
                           Qualifier("DISPLAYNAME", "string", "Model name") + Column("2")) +
                   Declare("Speed", "uint16", Unit("MegaHertz") + Column("4")) +
                   Declare("Kind", "uint16",
                           Qualifier("VALUEMAP", "string[]", "1|2") +
                               Qualifier("VALUES", "string[]", "Fast|Slow") + Column("5")) +
                   Declare("Serial", "string",
                           Qualifier("NEEDSROOT") + Qualifier("SENSITIVE") + Column("6")) +
                   Declare("Tags", "string[]", Column("7")) +
                   Declare("Spare", "string", Column("8"))) +
         Class("Acme_Case", storage + Key("Id", "string", Column("1")) +
                                Declare("Heat", "sint16", Unit("Degrees C") + Column("2")) +
                                Declare("Lock", "string", Column("3"))) +
         Class("Acme_Empty", storage + Key("Id")) +
         Class("Acme_Plain", Key("Alpha") + Key("Beta") + Declare("Common", "string") +
                                 Declare("Count", "uint8") + Declare("Nothing", "string")) +
         Class("Acme_Holds", storage + Qualifier("ASSOCIATION") +
                                 KeyReference("Disk", "Acme_Disk") +
                                 KeyReference("Case", "Acme_Case"));
}

inline std::string ShowInstances() {
  return Instance("Acme_Disk",
                  Set("Id", "d1") + Set("Note", "a&#10;b") + Set("Size", "uint64", "2097152") +
                      Set("Model", "Gr\u00F6\u00DFe \"1\"") + Set("Speed", "uint16", "100") +
                      Set("Kind", "uint16", "1") + Set("Tags", "string[]", "a|b")) +
         Instance("Acme_Disk", Set("Id", "d2") + Set("Note", "") +
                                   Set("Size", "uint64", "9007199254740993") +
                                   Set("Model", "\u65E5\u672C, &#27;x") +
                                   Set("Kind", "uint16", "9") + Set("Serial", "S2")) +
         Instance("Acme_Case", Set("Id", "c") + Set("Heat", "sint16", "-5")) +
         Instance("Acme_Plain", Set("Alpha", "same") + Set("Beta", "b1") + Set("Common", "x") +
                                    Set("Count", "uint8", "7")) +
         Instance("Acme_Plain", Set("Alpha", "same") + Set("Beta", "b2") + Set("Common", "x") +
                                    Set("Count", "uint8", "12")) +
         Instance("Acme_Holds", SetReference("Disk", "Acme_Disk", "Id", "d1") +
                                    SetReference("Case", "Acme_Case", "Id", "c"));
}

// The run, by a user who was not root.
inline std::string ShowRun(const std::string& more = "") {
  return RunOf(Set("StartTime", "datetime", "20261121105500.000000+060") + Set("User", "ann") +
               Set("Duration", "uint32", "57") + Set("IsRoot", "boolean", "false") + more) +
         PluginStatus("acme", "Acme_Disk|Acme_Case|Acme_Empty|Acme_Plain|Acme_Holds");
}

}  // namespace document

// A directory with that collection, and what `zel` tells of it.
class TShowFile : public TempDir {
 public:
  explicit TShowFile(const std::string& run = document::ShowRun())
      : fFile(WriteFile(
            "a.xml", document::OnBase(document::ShowClasses() + run + document::ShowInstances()))) {
  }

  const std::string& GetFile() const { return fFile; }

  TResult Zel(const std::string& command, const std::vector<std::string>& arguments) const {
    std::vector<std::string> all = {command, "--base", kBase, fFile};
    all.insert(all.end(), arguments.begin(), arguments.end());
    return ::Zel(all);
  }
  TResult Show(const std::vector<std::string>& arguments) const { return Zel("show", arguments); }
  TResult Get(const std::vector<std::string>& arguments) const { return Zel("get", arguments); }

 private:
  std::string fFile;
};
