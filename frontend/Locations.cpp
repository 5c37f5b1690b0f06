#include "frontend/Locations.h"

#include <filesystem>
#include <system_error>

namespace zel {

TLocations DefaultLocations() {
  namespace fs = std::filesystem;
  std::error_code ignored;
  const fs::path build = fs::read_symlink("/proc/self/exe", ignored).parent_path();
  const fs::path schema = build.parent_path().parent_path() / "schema" / "zelcore.base.xml";
  if (fs::is_directory(build / "plugins", ignored) && fs::exists(schema, ignored)) {
    return {build / "plugins", schema};
  }
  return {ZEL_PLUGIN_DIR, ZEL_BASE_SCHEMA};
}

}  // namespace zel
