/* Has another name each time it is asked. */
#include <stdio.h>

#include "plugin.h"

static zelPluginInfo GetInfo(TCPluginCallbacks* plugin) {
  static int calls = 0;
  static char name[32];
  (void)plugin;
  snprintf(name, sizeof name, "name %d", ++calls);
  return (zelPluginInfo){name, "1.0", "1.0", 2, 0};
}

__attribute__((constructor)) static void Load(void) {
  Register((zelPluginCallbacks){NULL, Succeed, Succeed, NoData, GetInfo, Succeed});
}
