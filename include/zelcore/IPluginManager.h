#pragma once

#include <boost/shared_ptr.hpp>
#include <list>
#include <string>

#include "zelcore/detail/Export.h"

class IPlugin;
class IPluginCallbacks;
class TContainer;

// Finds, loads and lists the plug-ins, and holds the schema that their documents share.
class ZEL_API IPluginManager {
 public:
  virtual ~IPluginManager();

  // Loads every plug-in below the plug-in directory, in the system's order; one that fails is
  // logged and passed over. Throws zelStatusFileSystemError when the directory cannot be read.
  virtual void FindAndLoadPlugins() = 0;

  // Loads one library, initialises what it registers and reads its document into GetSchema(). Does
  // nothing for a path that is listed already. A library that does not load is logged; a document
  // that cannot be read throws, and leaves the plug-in listed.
  virtual void LoadPlugin(const std::string& path) = 0;

  // Called while a library loads. The record is the manager's; `callbacks` is not owned.
  virtual IPlugin* RegisterPlugin(IPluginCallbacks* callbacks) = 0;

  // In load order; those that failed to initialise included.
  virtual std::list<boost::shared_ptr<IPlugin>>& GetPluginsContainer() = 0;

  // The first plug-in of exactly that name, or null.
  virtual IPlugin* SearchForPluginByName(const std::string& name) = 0;

  // Owned by the manager. It must hold the declarations of PLUGINNAME and PLUGINVERSION, and all
  // base classes, before plug-ins are loaded.
  virtual TContainer* GetSchema() = 0;
};
