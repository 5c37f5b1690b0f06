#pragma once

#include <boost/shared_ptr.hpp>
#include <list>
#include <optional>
#include <string>
#include <vector>

#include "zelcore/IPlugin.h"
#include "zelcore/IPluginManager.h"
#include "zelcore/TContainer.h"
#include "zelcore/detail/Export.h"

// The process's plug-in manager; made by the front end, after the logger, and never destroyed by
// the library.
class ZEL_API TPluginManager : public IPluginManager {
 public:
  class ZEL_API TPlugin : public IPlugin {
   public:
    TPlugin(TPluginManager& manager, IPluginCallbacks* callbacks);
    ~TPlugin() override;

    IPluginCallbacks* GetCallbacks() const override;
    void Initialize() override;
    bool IsInitialized() const override;
    std::string GetPath() const override;
    std::string GetSpecificationPath() const override;
    std::vector<TCIMClass*> GetClassesCollected() const override;

    void SetPath(const std::string& path);

    // Reads the document into the manager's schema and stamps its classes with PLUGINNAME and
    // PLUGINVERSION. Throws what the reader throws, and zelStatusNotFound when the schema does not
    // declare the two qualifiers.
    void LoadSpecificationDocument();

    // Called by callbacks that end: they are not to be used any more.
    void ForgetCallbacks();

   private:
    IPluginCallbacks* fCallbacks;  // not owned
    std::optional<std::vector<TCIMClass*>> fClassesCollected;
    std::string fPath;
    bool fInitialized;
    TPluginManager& fManager;
  };

  // Makes the manager for the plug-in directory `path` and returns 0. A second call replaces the
  // pointer.
  static int Initialize(const std::string& path);
  // Null before Initialize().
  static TPluginManager* GetInstance();

  ~TPluginManager() override;

  std::string GetPluginManagerPath() const;

  void FindAndLoadPlugins() override;
  void LoadPlugin(const std::string& path) override;
  IPlugin* RegisterPlugin(IPluginCallbacks* callbacks) override;
  std::list<boost::shared_ptr<IPlugin>>& GetPluginsContainer() override;
  IPlugin* SearchForPluginByName(const std::string& name) override;
  TContainer* GetSchema() override;

  // Lists and initialises what the library at `path` has registered.
  void InitializeProviders(const std::string& path);

 private:
  explicit TPluginManager(const std::string& path);

  static TPluginManager* fgInstance;

  std::string fPath;
  std::list<boost::shared_ptr<IPlugin>> fPlugins;
  std::list<boost::shared_ptr<TPlugin>> fPendingPlugins;
  TContainer fSchema;
};
