#include "zelcore/IPlugin.h"
#include "zelcore/IPluginCallbacks.h"
#include "zelcore/IPluginManager.h"
#include "zelcore/IQueryManager.h"

// The key functions of the interfaces: their type information lives here alone, so that
// dynamic_cast works across shared libraries.
IPlugin::~IPlugin() = default;
IPluginCallbacks::~IPluginCallbacks() = default;
IPluginBasicQueryCallbacks::~IPluginBasicQueryCallbacks() = default;
IPluginManager::~IPluginManager() = default;
IQueryManager::~IQueryManager() = default;
