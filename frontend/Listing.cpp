#include "frontend/Listing.h"

#include <fmt/format.h>

#include <algorithm>
#include <nlohmann/json.hpp>

#include "frontend/Inventory.h"
#include "frontend/ValueText.h"
#include "zelcore/zelcore.h"

namespace zel {
namespace {

using nlohmann::ordered_json;

void PrintInstance(const TCIMInstance& instance, std::ostream& out) {
  const std::vector<TCIMProperty const*> properties = instance.EnumerateProperties();
  std::size_t width = 0;
  for (const TCIMProperty* property : properties) {
    width = std::max(width, property->GetName().size());
  }
  out << Printable(instance.BuildPath().GetPath()) << "\n";
  for (const TCIMProperty* property : properties) {
    out << fmt::format("  {:<{}}  {}\n", property->GetName(), width, PropertyText(*property));
  }
  out << "\n";
}

ordered_json InstanceJson(const TCIMInstance& instance) {
  ordered_json properties = ordered_json::object();
  for (const TCIMProperty* property : instance.EnumerateProperties()) {
    properties[property->GetName()] = ValueJson(property->GetValue());
  }
  return {
      {"path",       instance.BuildPath().GetPath()},
      {"properties", std::move(properties)         }
  };
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

}  // namespace

void PrintList(const std::vector<TCIMClass*>& classes, std::ostream& out) {
  for (const TCIMClass* cls : classes) {
    const std::vector<TCIMInstance*> instances = cls->EnumerateInstances(false);
    if (instances.empty()) out << cls->GetName() << ": no instances\n\n";
    for (const TCIMInstance* instance : instances) PrintInstance(*instance, out);
  }
}

void PrintJson(const TInventory& inventory, const std::vector<TCIMClass*>& classes,
               std::ostream& out) {
  ordered_json document = {
      {"format",  "zel-collection"},
      {"version", 1               },
      {"zel",     ZEL_VERSION     }
  };
  document["partial"] = inventory.IsPartial();
  document["plugins"] = ordered_json::array();
  for (const TCIMInstance* status : inventory.GetStatuses()) {
    document["plugins"].push_back(PluginJson(*status));
  }
  document["classes"] = ordered_json::object();
  for (const TCIMClass* cls : classes) {
    ordered_json instances = ordered_json::array();
    for (const TCIMInstance* instance : cls->EnumerateInstances(false)) {
      instances.push_back(InstanceJson(*instance));
    }
    document["classes"][cls->GetName()] = std::move(instances);
  }
  out << document.dump(2, ' ', false, ordered_json::error_handler_t::replace) << "\n";
}

}  // namespace zel
