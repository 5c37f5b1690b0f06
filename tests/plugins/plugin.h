/* What the tests' little plug-ins share: answers for the callbacks that are of no interest. */
#ifndef TESTS_PLUGINS_PLUGIN_H
#define TESTS_PLUGINS_PLUGIN_H

#include <stddef.h>

#include "zelcore/zel.h"

static inline zelStatusCode Succeed(TCPluginCallbacks* plugin) {
  (void)plugin;
  return zelStatusOK;
}

static inline zelStatusCode NoData(TCPluginCallbacks* plugin, zelIOHandle* handle,
                                   const char** classNames, int count) {
  (void)plugin, (void)handle, (void)classNames, (void)count;
  return zelStatusOK;
}

/*
 * Registers, from a constructor function, a plug-in that answers with `table`, which is copied. The
 * handles are kept: they are the plug-in's for good, even where the manager drops its record.
 */
static inline void Register(zelPluginCallbacks table) {
  static TCPluginCallbacks* plugins[2];
  static int count;
  zelRegisterPlugin(&table, &plugins[count++]);
}

#endif
