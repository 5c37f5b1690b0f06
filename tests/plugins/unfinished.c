/* Leaves its last instance without a key. */
#include "plugin.h"

static zelPluginInfo GetInfo(TCPluginCallbacks* plugin) {
  (void)plugin;
  return (zelPluginInfo){"unfinished", "1.0", "1.0", 0, 0};
}

static zelStatusCode GetData(TCPluginCallbacks* plugin, zelIOHandle* handle,
                             const char** classNames, int count) {
  (void)plugin, (void)classNames;
  if (count == 0) return zelStatusOK;
  zelAddClass(handle, "Unfinished_Thing");
  zelAddStringProperty(handle, "Id", "finished");
  return zelAddClass(handle, "Unfinished_Thing");
}

__attribute__((constructor)) static void Load(void) {
  Register((zelPluginCallbacks){NULL, Succeed, Succeed, GetData, GetInfo, Succeed});
}
