/* Has no document. */
#include "plugin.h"

static zelPluginInfo GetInfo(TCPluginCallbacks* plugin) {
  (void)plugin;
  return (zelPluginInfo){"undocumented", "1.0", "1.0", 0, 0};
}

static zelStatusCode GetData(TCPluginCallbacks* plugin, zelIOHandle* handle,
                             const char** classNames, int count) {
  (void)handle, (void)classNames, (void)count;
  zelWriteLog(plugin, zelLogError, "asked for data");
  return zelStatusOK;
}

__attribute__((constructor)) static void Load(void) {
  Register((zelPluginCallbacks){NULL, Succeed, Succeed, GetData, GetInfo, Succeed});
}
