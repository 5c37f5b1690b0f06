/* Registers a table without a single function. */
#include "plugin.h"

__attribute__((constructor)) static void Load(void) {
  Register((zelPluginCallbacks){NULL, NULL, NULL, NULL, NULL, NULL});
}
