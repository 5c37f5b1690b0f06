/* One library, two plug-ins. */
#include "plugin.h"

static zelPluginInfo FirstInfo(TCPluginCallbacks* plugin) {
  (void)plugin;
  return (zelPluginInfo){"first twin", "1.0", "1.0", 0, 0};
}

static zelPluginInfo SecondInfo(TCPluginCallbacks* plugin) {
  (void)plugin;
  return (zelPluginInfo){"second twin", "1.0", "1.0", 0, 0};
}

__attribute__((constructor)) static void Load(void) {
  Register((zelPluginCallbacks){NULL, Succeed, Succeed, NoData, FirstInfo, Succeed});
  Register((zelPluginCallbacks){NULL, Succeed, Succeed, NoData, SecondInfo, Succeed});
}
