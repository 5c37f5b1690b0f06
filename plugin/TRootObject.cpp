#include "zelcore/TRootObject.h"

#include "zelcore/TLogger.h"
#include "zelcore/TPluginManager.h"
#include "zelcore/TQueryManager.h"

IQueryManager* TRootObject::GetQueryManager() { return TQueryManager::GetInstance(); }

IPluginManager* TRootObject::GetPluginManager() { return TPluginManager::GetInstance(); }

ILogger* TRootObject::GetCoreLogger() { return TLogger::GetInstance(); }

void CoreInit(void) {}
