#include "zelcore/TPluginManager.h"

#include <boost/make_shared.hpp>
#include <exception>

#include "zelcore/IPluginCallbacks.h"
#include "zelcore/TOSSpecific.h"
#include "zelcore/detail/Fail.h"
#include "zelcore/zel.h"

using zelcore::detail::LogCore;
using zelcore::detail::Text;

namespace {

// Whether it went well; whatever the plug-in throws is logged and goes no further.
bool InitializePlugin(IPlugin& plugin) {
  std::string reason = "unknown exception";
  try {
    plugin.Initialize();
    return true;
  } catch (const std::exception& e) {
    reason = e.what();
  } catch (...) {
  }
  // By its path: one that cannot do this much may not tell its name either.
  LogCore(zelLogWarning, Text("Plugin ", plugin.GetPath(), " failed to initialize: ", reason));
  return false;
}

}  // namespace

TPluginManager* TPluginManager::fgInstance = nullptr;

int TPluginManager::Initialize(const std::string& path) {
  fgInstance = new TPluginManager(path);
  return 0;
}

TPluginManager* TPluginManager::GetInstance() { return fgInstance; }

TPluginManager::TPluginManager(const std::string& path) : fPath(path) {}

TPluginManager::~TPluginManager() {
  if (fgInstance == this) fgInstance = nullptr;
}

std::string TPluginManager::GetPluginManagerPath() const { return fPath; }

void TPluginManager::FindAndLoadPlugins() {
  IPluginManager& self = *this;
  for (const std::string& file : TOSSpecific::FindPlugins(fPath)) {
    try {
      self.LoadPlugin(file);
    } catch (const TZELException&) {
      // Logged where it was thrown; one bad plug-in must not hide the others.
    }
  }
}

void TPluginManager::LoadPlugin(const std::string& path) {
  for (const auto& plugin : fPlugins) {
    if (plugin->GetPath() == path) return;
  }
  LogCore(zelLogDebug, path);
  fPendingPlugins.clear();
  try {
    TOSSpecific::LoadPluginLibrary(path);
  } catch (const TZELException&) {
    const std::string message = Text("DLL ", path, " failed to initialize properly");
    zelWriteLog(nullptr, zelLogError, message.c_str());
    return;
  }
  InitializeProviders(path);
}

IPlugin* TPluginManager::RegisterPlugin(IPluginCallbacks* callbacks) {
  fPendingPlugins.push_back(boost::make_shared<TPlugin>(*this, callbacks));
  return fPendingPlugins.back().get();
}

void TPluginManager::InitializeProviders(const std::string& path) {
  while (!fPendingPlugins.empty()) {
    const boost::shared_ptr<TPlugin> plugin = fPendingPlugins.front();
    fPendingPlugins.pop_front();
    plugin->SetPath(path);
    fPlugins.push_back(plugin);
    if (!InitializePlugin(*plugin)) continue;  // it stays listed without classes
    IPluginCallbacks* callbacks = plugin->GetCallbacks();
    const int type = callbacks ? callbacks->GetType() : -1;
    if (type == 0 || type == 1) plugin->LoadSpecificationDocument();
  }
}

std::list<boost::shared_ptr<IPlugin>>& TPluginManager::GetPluginsContainer() { return fPlugins; }

IPlugin* TPluginManager::SearchForPluginByName(const std::string& name) {
  for (const auto& plugin : fPlugins) {
    IPluginCallbacks* callbacks = plugin->GetCallbacks();
    if (callbacks && callbacks->GetName() == name) return plugin.get();
  }
  return nullptr;
}

TContainer* TPluginManager::GetSchema() { return &fSchema; }
