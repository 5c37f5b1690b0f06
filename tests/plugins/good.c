/* A plug-in that does everything right: all kinds of values, then an association. */
#include <stdio.h>
#include <string.h>

#include "plugin.h"

static zelPluginInfo GetInfo(TCPluginCallbacks* plugin) {
  (void)plugin;
  return (zelPluginInfo){"good", "1.2.3", "1.0", 0, 7};
}

static void LogPath(TCPluginCallbacks* plugin, const char* when) {
  const char* path = NULL;
  char line[4200];
  zelGetPluginPath(plugin, &path);
  snprintf(line, sizeof line, "%s at %s", when, path ? path : "no path");
  zelWriteLog(plugin, zelLogStatus, line);
}

static zelStatusCode Init(TCPluginCallbacks* plugin) {
  LogPath(plugin, "Init");
  return zelStatusOK;
}

static zelStatusCode DeInit(TCPluginCallbacks* plugin) {
  LogPath(plugin, "DeInit");
  return zelStatusOK;
}

static void AddThing(zelIOHandle* handle, const char* id) {
  zelCIMValueArray* array = NULL;
  zelCIMDateTime* datetime = NULL;
  zelAddClass(handle, "Good_Thing");
  zelAddStringProperty(handle, "Id", id);
  zelAddUint32Property(handle, "Speed", 2400);
  zelNewCIMValueArray(&array);
  zelArrayAddUint16(array, 3);
  zelArrayAddUint16(array, 5);
  zelAddArrayProperty(handle, "Ports", array);
  zelDeleteCIMValueArray(array);
  zelNewCIMDateTime(&datetime);
  zelSetDateTime(datetime, 2004, 3, 15, 14, 25, 30, 0, -300);
  zelAddDateTimeProperty(handle, "Made", datetime);
  zelDeleteCIMDateTime(datetime);
}

static void AddLink(zelIOHandle* handle, const char* end, const char* id) {
  zelCIMReference* ref = NULL;
  zelNewCIMReference(&ref, handle);
  zelSetReferenceClassName(ref, "Good_Thing");
  zelReferenceAddString(ref, "Id", id);
  zelAddReferenceProperty(handle, end, ref);
  zelDeleteCIMReference(ref);
}

static zelStatusCode GetData(TCPluginCallbacks* plugin, zelIOHandle* handle,
                             const char** classNames, int count) {
  char line[64];
  snprintf(line, sizeof line, "GetData for %d", count);
  zelWriteLog(plugin, zelLogDebug, line);
  for (int i = 0; i < count; ++i) {
    if (strcmp(classNames[i], "Good_Thing") == 0) {
      AddThing(handle, "a");
      AddThing(handle, "b");
    } else if (strcmp(classNames[i], "Good_Link") == 0) {
      zelAddClass(handle, "Good_Link");
      AddLink(handle, "From", "a");
      AddLink(handle, "To", "b");
    }
  }
  return zelStatusOK;
}

__attribute__((constructor)) static void Load(void) {
  Register((zelPluginCallbacks){NULL, Init, DeInit, GetData, GetInfo, Succeed});
}
