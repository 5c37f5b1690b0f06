/* Its GetInfo logs, which asks for its name to begin the line with. */
#include "plugin.h"

static zelPluginInfo GetInfo(TCPluginCallbacks* plugin) {
  zelWriteLog(plugin, zelLogStatus, "who asks?");
  return (zelPluginInfo){"chatty", "1.0", "1.0", 2, 0};
}

__attribute__((constructor)) static void Load(void) {
  Register((zelPluginCallbacks){NULL, Succeed, Succeed, NoData, GetInfo, Succeed});
}
