/*
 * Tells who the machine is in keys, references, arrays, texts and the log. Fails when it is asked
 * for Secret_Failure.
 */
#include <string.h>

#include "plugin.h"

static const char* const kHost = "web-prod-01";

static zelPluginInfo GetInfo(TCPluginCallbacks* plugin) {
  (void)plugin;
  return (zelPluginInfo){"secrets", "1.0", "1.0", 0, 0};
}

static void AddHost(zelIOHandle* handle) {
  zelCIMValueArray* owners = NULL;
  zelAddClass(handle, "Secret_Host");
  zelAddStringProperty(handle, "Name", kHost);
  zelAddStringProperty(handle, "Short", "ab");
  zelAddUint64Property(handle, "Badge", 409555123456);
  zelAddStringProperty(handle, "Text", "mail for web-prod-01, ab, above");
  zelAddStringProperty(handle, "Same", "ab");
  zelNewCIMValueArray(&owners);
  zelArrayAddString(owners, "Ada Lovelace");
  zelArrayAddString(owners, "grace.hopper");
  zelAddArrayProperty(handle, "Owners", owners);
  zelDeleteCIMValueArray(owners);
}

static void AddDisk(zelIOHandle* handle) {
  zelAddClass(handle, "Secret_Disk");
  zelAddStringProperty(handle, "SystemName", kHost);
  zelAddStringProperty(handle, "Path", "/home/grace.hopper/disk");
}

static void AddLink(zelIOHandle* handle) {
  zelCIMReference* host = NULL;
  zelCIMReference* disk = NULL;
  zelAddClass(handle, "Secret_Link");
  zelNewCIMReference(&host, handle);
  zelSetReferenceClassName(host, "Secret_Host");
  zelReferenceAddString(host, "Name", kHost);
  zelAddReferenceProperty(handle, "Host", host);
  zelDeleteCIMReference(host);
  zelNewCIMReference(&disk, handle);
  zelSetReferenceClassName(disk, "Secret_Disk");
  zelReferenceAddString(disk, "SystemName", kHost);
  zelReferenceAddString(disk, "Path", "/home/grace.hopper/disk");
  zelAddReferenceProperty(handle, "Disk", disk);
  zelDeleteCIMReference(disk);
}

static zelStatusCode GetData(TCPluginCallbacks* plugin, zelIOHandle* handle,
                             const char** classNames, int count) {
  for (int i = 0; i < count; ++i) {
    if (strcmp(classNames[i], "Secret_Host") == 0) AddHost(handle);
    if (strcmp(classNames[i], "Secret_Disk") == 0) AddDisk(handle);
    if (strcmp(classNames[i], "Secret_Link") == 0) AddLink(handle);
    if (strcmp(classNames[i], "Secret_Failure") == 0) {
      zelWriteLog(plugin, zelLogError, "web-prod-01 does not answer Ada Lovelace");
    }
  }
  return zelStatusOK;
}

__attribute__((constructor)) static void Load(void) {
  Register((zelPluginCallbacks){NULL, Succeed, Succeed, GetData, GetInfo, Succeed});
}
