/* Ends its process with a signal while it collects. */
#include <stdlib.h>

#include "plugin.h"

static zelPluginInfo GetInfo(TCPluginCallbacks* plugin) {
  (void)plugin;
  return (zelPluginInfo){"aborts", "1.0", "1.0", 0, 0};
}

static zelStatusCode GetData(TCPluginCallbacks* plugin, zelIOHandle* handle,
                             const char** classNames, int count) {
  (void)plugin, (void)handle, (void)classNames, (void)count;
  abort();
  return zelStatusOK;
}

__attribute__((constructor)) static void Load(void) {
  Register((zelPluginCallbacks){NULL, Succeed, Succeed, GetData, GetInfo, Succeed});
}
