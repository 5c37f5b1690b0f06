#include "frontend/Locations.h"

#include <filesystem>
#include <system_error>

namespace zel {

TLocations DefaultLocations() {
  namespace fs = std::filesystem;
  std::error_code ignored;
  const fs::path folder = fs::read_symlink("/proc/self/exe", ignored).parent_path();
  const fs::path prefix = folder.parent_path();
  const fs::path built = prefix.parent_path() / "schema" / "zelcore.base.xml";
  if (fs::exists(built, ignored)) return {folder / "plugins", built};
  return {prefix / ZEL_PLUGIN_DIR, prefix / ZEL_BASE_SCHEMA};
}

}  // namespace zel
