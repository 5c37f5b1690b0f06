/* Answers codes that no table has. Two instances: the first is complete, the second is dropped. */
#include "plugin.h"

static zelPluginInfo GetInfo(TCPluginCallbacks* plugin) {
  (void)plugin;
  return (zelPluginInfo){"odd", "1.0", "1.0", 0, 0};
}

static zelStatusCode DeInit(TCPluginCallbacks* plugin) {
  (void)plugin;
  return (zelStatusCode)-5;
}

static zelStatusCode GetData(TCPluginCallbacks* plugin, zelIOHandle* handle,
                             const char** classNames, int count) {
  (void)plugin, (void)classNames;
  if (count == 0) return zelStatusOK;
  zelAddClass(handle, "Odd_Thing");
  zelAddStringProperty(handle, "Id", "kept");
  zelAddClass(handle, "Odd_Thing");
  zelAddStringProperty(handle, "Id", "dropped");
  return (zelStatusCode)4711;
}

static zelStatusCode PrepareForUnload(TCPluginCallbacks* plugin) {
  (void)plugin;
  return zelStatusNotSupported;
}

__attribute__((constructor)) static void Load(void) {
  Register((zelPluginCallbacks){NULL, Succeed, DeInit, GetData, GetInfo, PrepareForUnload});
}
