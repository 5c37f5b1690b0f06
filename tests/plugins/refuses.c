/* Its Init fails. */
#include "plugin.h"

static zelPluginInfo GetInfo(TCPluginCallbacks* plugin) {
  (void)plugin;
  return (zelPluginInfo){"refuses", "1.0", "1.0", 0, 0};
}

static zelStatusCode Init(TCPluginCallbacks* plugin) {
  (void)plugin;
  return zelStatusAccessDenied;
}

__attribute__((constructor)) static void Load(void) {
  Register((zelPluginCallbacks){NULL, Init, Succeed, NoData, GetInfo, Succeed});
}
