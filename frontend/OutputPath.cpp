#include "frontend/OutputPath.h"

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>

#include "frontend/Inventory.h"
#include "zelcore/zelcore.h"

namespace zel {
namespace {

namespace fs = std::filesystem;

// `text` as part of a file name that no shell or file system takes amiss.
std::string SafeName(std::string text) {
  constexpr std::size_t kLongest = 64;  // as long as a host name gets
  constexpr const char* kSafe = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789.-_";
  text.resize(std::min(text.size(), kLongest));
  for (std::size_t at = 0; (at = text.find_first_not_of(kSafe, at)) != std::string::npos;) {
    text[at] = '_';
  }
  if (!text.empty() && (text.front() == '.' || text.front() == '-')) text.front() = '_';
  return text;
}

std::string HostName(const TInventory& inventory) {
  if (inventory.IsRedacted()) return "redacted";
  const TCIMClass* cls =
      inventory.GetContainer().FindClass(TCIMSchemaHelper::kSystemCreationClassName);
  const std::vector<TCIMInstance*> systems =
      cls ? cls->EnumerateInstances(false) : std::vector<TCIMInstance*>();
  const std::string name = systems.empty() ? "" : SafeName(TextOf(*systems.front(), "Name"));
  return name.empty() ? "machine" : name;
}

// "20261121-145500", of the run or of now.
std::string TimeStamp(const TInventory& inventory) {
  const TCIMInstance* run = inventory.GetRun();
  const TCIMProperty* start = run ? run->FindProperty("StartTime") : nullptr;
  const bool isKnown =
      start && start->GetType() == TCIMValue::TCIMType::TypeDateTime && !start->GetValue().IsNull();
  const TCIMDateTime time = isKnown ? TCIMDateTime(start->GetValue()) : TOSSpecific::GetLocalTime();
  return fmt::format("{:04}{:02}{:02}-{:02}{:02}{:02}", time.GetYear(), time.GetMonth(),
                     time.GetDay(), time.GetHour(), time.GetMinute(), time.GetSecond());
}

}  // namespace

std::string OutputPath(const std::string& path, const TInventory& inventory,
                       const std::string& extension) {
  std::error_code failure;
  const bool isGiven = !path.empty() && (path == "-" || !fs::is_directory(path, failure));
  if (isGiven) return path;
  return fs::path(path) / (HostName(inventory) + "-" + TimeStamp(inventory) + extension);
}

}  // namespace zel
