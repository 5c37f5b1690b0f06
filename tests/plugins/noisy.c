/* Prints where only data belongs, and collects one instance with characters that need escaping.
 * */
#include <stdio.h>

#include "plugin.h"

static zelPluginInfo GetInfo(TCPluginCallbacks* plugin) {
  (void)plugin;
  return (zelPluginInfo){"noisy", "1.0", "1.0", 0, 0};
}

static zelStatusCode GetData(TCPluginCallbacks* plugin, zelIOHandle* handle,
                             const char** classNames, int count) {
  (void)plugin, (void)handle, (void)classNames, (void)count;
  puts("noise");
  fflush(stdout);
  if (count == 1 && zelAddClass(handle, classNames[0]) == zelStatusOK) {
    zelAddStringProperty(handle, "Id", "a<b>&\"c\"");
    zelAddStringProperty(handle, "Text", "bell\a and\nline");
    zelAddUint64Property(handle, "Big", 9007199254740993u);
  }
  return zelStatusOK;
}

__attribute__((constructor)) static void Load(void) {
  Register((zelPluginCallbacks){NULL, Succeed, Succeed, GetData, GetInfo, Succeed});
}
