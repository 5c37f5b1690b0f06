/* Says nothing of itself: all texts are null. */
#include "plugin.h"

static zelPluginInfo GetInfo(TCPluginCallbacks* plugin) {
  (void)plugin;
  return (zelPluginInfo){NULL, NULL, NULL, 0, 0};
}

static zelStatusCode GetData(TCPluginCallbacks* plugin, zelIOHandle* handle,
                             const char** classNames, int count) {
  (void)plugin, (void)classNames;
  if (count == 0) return zelStatusOK;
  zelAddClass(handle, "Nameless_Thing");
  return zelAddStringProperty(handle, "Id", "one");
}

__attribute__((constructor)) static void Load(void) {
  Register((zelPluginCallbacks){NULL, Succeed, Succeed, GetData, GetInfo, Succeed});
}
