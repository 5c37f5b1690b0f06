#pragma once

#include "zelcore/detail/Export.h"

class ILogger;
class IPluginManager;
class IQueryManager;

// The door to the three process-wide objects. Each getter returns null until the front end has made
// the object: TLogger::Initialize(), TPluginManager::Initialize(directory) and
// TQueryManager::Initialize(), in this order.
class ZEL_API TRootObject {
 public:
  static IQueryManager* GetQueryManager();
  static IPluginManager* GetPluginManager();
  static ILogger* GetCoreLogger();
};

// Does nothing; front ends call it.
extern "C" ZEL_API void CoreInit(void);
