// The part of TOSSpecific that fixes where plug-ins lie and how they are loaded.

#include <dlfcn.h>

#include <filesystem>

#include "zelcore/TOSSpecific.h"
#include "zelcore/detail/Fail.h"

using zelcore::detail::Fail;
using zelcore::detail::LogCore;

namespace {

constexpr const char* kLibraryPrefix = "lib";

// The entries of one plug-in's directory; one that cannot be read must not hide the others.
std::vector<std::string> ListPluginDir(const std::string& path) {
  try {
    return TOSSpecific::ListDir(path);
  } catch (const TZELException&) {
    LogCore(zelLogWarning, "Could not read plug-in directory " + path);
    return {};
  }
}

// The loader would wait for ever for somebody to write to a FIFO.
bool IsSpecialFile(const std::string& path) {
  std::error_code failure;
  return std::filesystem::is_other(path, failure);
}

}  // namespace

std::vector<std::string> TOSSpecific::FindPlugins(const std::string& directory) {
  std::vector<std::string> paths;
  for (const std::string& entry : ListDir(directory)) {
    const std::string subdirectory = directory + "/" + entry;
    if (!DirExists(subdirectory)) continue;
    for (const std::string& file : ListPluginDir(subdirectory)) {
      if (file.find(kPluginExtension) != std::string::npos) {
        paths.push_back(subdirectory + "/" + file);
      }
    }
  }
  return paths;
}

void TOSSpecific::LoadPluginLibrary(const std::string& path) {
  std::string reason;
  if (IsSpecialFile(path)) {
    reason = path + ": not a regular file";
  } else {
    if (dlopen(path.c_str(), RTLD_NOW | RTLD_GLOBAL)) return;
    const char* error = dlerror();
    if (error) reason = error;
  }
  Fail(zelStatusFileSystemError, "ERROR: Failed to load plugin.  Reason: " + reason);
}

std::string TOSSpecific::BuildSpecificationPath(const std::string& pluginPath) {
  const std::size_t extension = pluginPath.find(kPluginExtension);
  // sic: the first "lib" counts, be it in the name of a directory.
  const std::size_t prefix = pluginPath.find(kLibraryPrefix);
  if (extension == std::string::npos || prefix >= extension) Fail(zelStatusFail);
  std::string path = pluginPath.substr(0, extension);
  path.erase(prefix, std::string(kLibraryPrefix).size());
  return path + kSpecificationExtension;
}
