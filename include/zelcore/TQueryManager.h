#pragma once

#include <string>
#include <vector>

#include "zelcore/IQueryManager.h"
#include "zelcore/detail/Export.h"

// The process's query manager; made by the front end after the plug-in manager.
class ZEL_API TQueryManager : public IQueryManager {
 public:
  // Makes the query manager and returns 0. A second call replaces the pointer.
  static int Initialize();
  // Null before Initialize().
  static TQueryManager* GetInstance();

  void RunQuery(TContainer* container, std::vector<std::string> classNames) override;
  void EnumerateInstances(IPlugin* plugin, TContainer* container,
                          std::vector<std::string> classNames, bool associations) override;

  // One pass over all plug-ins of type 0.
  void RunAllPlugins(TContainer* container, std::vector<std::string> classNames, bool associations);

 private:
  static TQueryManager* fgInstance;
};
