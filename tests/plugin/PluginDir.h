#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "tests/support/TempDir.h"
#include "zelcore/IPlugin.h"
#include "zelcore/IPluginCallbacks.h"
#include "zelcore/TPluginManager.h"
#include "zelcore/TQueryManager.h"

// A plug-in directory with a plug-in manager of its own, whose schema holds the qualifier
// declarations that the little plug-ins use.
class PluginDir {
 public:
  PluginDir() {
    TPluginManager::Initialize(fDir.GetPath());
    TQueryManager::Initialize();
    Manager().GetSchema()->PopulateContainerFromFile(ZEL_SOURCE_DIR
                                                     "/tests/testdata/plugin-base.xml");
  }
  // Plug-ins stay loaded for good, and with them their managers.

  // Puts the little plug-in in place, with its document if it has one; returns the library's path.
  std::string Install(const std::string& name) const {
    namespace fs = std::filesystem;
    fs::create_directories(fDir.PathOf(name));
    for (const std::string& file : {"lib" + name + ".pi.so", name + ".properties.xml"}) {
      const std::string built = std::string(ZEL_TEST_PLUGINS) + "/" + name + "/" + file;
      if (fs::exists(built)) fs::copy_file(built, fDir.PathOf(name + "/" + file));
    }
    return fDir.PathOf(name + "/lib" + name + ".pi.so");
  }

  // Installs the plug-in, loads it, and returns its record: the newest one.
  IPlugin& Load(const std::string& name) const {
    Manager().LoadPlugin(Install(name));
    return *Manager().GetPluginsContainer().back();
  }

  static TPluginManager& Manager() { return *TPluginManager::GetInstance(); }
  static TContainer& Schema() { return *Manager().GetSchema(); }

  // A query for `classNames` into the manager's schema.
  static void Query(const std::vector<std::string>& classNames = {}) {
    TQueryManager::GetInstance()->RunQuery(&Schema(), classNames);
  }

  const TempDir& Files() const { return fDir; }

 private:
  TempDir fDir;
};
