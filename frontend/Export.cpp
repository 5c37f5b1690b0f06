#include "frontend/Export.h"

#include <fmt/format.h>

#include <nlohmann/json.hpp>

#include "frontend/Inventory.h"
#include "frontend/ValueText.h"
#include "zelcore/zelcore.h"

namespace zel {
namespace {

using nlohmann::ordered_json;

std::string Dump(const ordered_json& json) {
  return json.dump(2, ' ', false, ordered_json::error_handler_t::replace);
}

// `json` as a part of a document that stands `depth` columns to the right.
std::string Dump(const ordered_json& json, std::size_t depth) {
  std::string text;
  for (const char c : Dump(json)) {
    text += c;
    if (c == '\n') text.append(depth, ' ');  // never within a value
  }
  return text;
}

ordered_json InstanceJson(const TCIMInstance& instance, const TSelection& selection,
                          bool withText) {
  ordered_json json = {
      {"path",       instance.BuildPath().GetPath()},
      {"properties", ordered_json::object()        }
  };
  if (withText) json["text"] = ordered_json::object();
  for (const TCIMPropertyDecl* declaration : selection.properties) {
    const TCIMProperty& property = *instance.GetProperty(declaration->GetName());
    json["properties"][property.GetName()] = ValueJson(property.GetValue());
    if (withText) json["text"][property.GetName()] = PropertyText(property);
  }
  return json;
}

ordered_json PluginJson(const TCIMInstance& status) {
  ordered_json plugin = {
      {"name", TextOf(status, "PluginName")},
      {"path", TextOf(status, "Path")      }
  };
  const std::string version = TextOf(status, "PluginVersion");
  const std::string error = TextOf(status, "Message");
  if (!version.empty()) plugin["version"] = version;
  if (!error.empty()) plugin["error"] = error;
  return plugin;
}

// All but the classes.
ordered_json DocumentJson(const TInventory& inventory) {
  ordered_json document = {
      {"format",  "zel-collection"    },
      {"version", 1                   },
      {"zel",     ZEL_VERSION         },
      {"source",  inventory.GetTitle()}
  };
  const TCIMInstance* run = inventory.GetRun();
  const TCIMProperty* start = run ? run->FindProperty("StartTime") : nullptr;
  if (start && !start->GetValue().IsNull()) document["start"] = ValueJson(start->GetValue());
  document["partial"] = inventory.IsPartial();
  document["redacted"] = inventory.IsRedacted();
  document["plugins"] = ordered_json::array();
  for (const TCIMInstance* status : inventory.GetStatuses()) {
    document["plugins"].push_back(PluginJson(*status));
  }
  return document;
}

std::string CsvField(const std::string& text) {
  if (!text.empty() && text.find_first_of(",\"\r\n") == std::string::npos) return text;
  std::string quoted = "\"";
  for (const char c : text) {
    if (c == '"') quoted += '"';
    quoted += c;
  }
  return quoted + '"';
}

}  // namespace

// Instance by instance, since the whole document would take many times the memory of the inventory.
void PrintJson(const TInventory& inventory, const std::vector<TSelection>& selections,
               bool withText, std::ostream& out) {
  std::string head = Dump(DocumentJson(inventory));
  head.erase(head.rfind("\n}"));
  out << head << ",\n  \"classes\": {";
  const char* comma = "";
  for (const TSelection& selection : selections) {
    out << comma << "\n    " << Dump(selection.cls->GetName()) << ": [";
    const char* nextComma = "";
    for (const TCIMInstance* instance : selection.instances) {
      out << nextComma << "\n      " << Dump(InstanceJson(*instance, selection, withText), 6);
      nextComma = ",";
    }
    out << (selection.instances.empty() ? "]" : "\n    ]");
    comma = ",";
  }
  out << (selections.empty() ? "}\n}\n" : "\n  }\n}\n");
}

void PrintCsv(const TSelection& selection, bool withText, std::ostream& out) {
  const auto printLine = [&](const auto& fieldOf) {
    const char* comma = "";
    for (const TCIMPropertyDecl* property : selection.properties) {
      out << comma << fieldOf(*property);
      comma = ",";
    }
    out << "\r\n";
  };
  printLine([](const TCIMPropertyDecl& property) { return property.GetName(); });
  for (const TCIMInstance* instance : selection.instances) {
    printLine([&](const TCIMPropertyDecl& declaration) -> std::string {
      const TCIMProperty& property = *instance->GetProperty(declaration.GetName());
      const TCIMValue value = property.GetValue();
      if (value.IsNull()) return "";
      return CsvField(withText ? PropertyText(property)
                               : fmt::format("{}", fmt::join(RawTexts(value), ", ")));
    });
  }
}

}  // namespace zel
