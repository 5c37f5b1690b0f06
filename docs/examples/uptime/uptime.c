/* Collects how long the machine has been up and how busy it is. */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "zelcore/zel.h"

#define COUNT(array) ((int)(sizeof(array) / sizeof((array)[0])))

/* ---- read: the only functions that touch the machine ---------------------------------------- */

/* The first line of a file below ZEL_SYSROOT, or of the live machine. 0 when there is none. */
static int ReadLine(const char* path, char* line, int size) {
  const char* root = getenv("ZEL_SYSROOT");
  char full[4096];
  snprintf(full, sizeof full, "%s%s", root ? root : "", path);
  FILE* file = fopen(full, "re");
  if (!file) return 0;
  const int found = fgets(line, size, file) != NULL;
  fclose(file);
  return found;
}

/* ---- parse: text in, plain values out ------------------------------------------------------- */

/* "350735.47 234388.90": the seconds since start-up. */
static int ParseUptime(const char* line, unsigned long* seconds) {
  return sscanf(line, "%lu.", seconds) == 1;
}

/* "0.75 0.35 0.25 1/25 1747": the load over 1, 5 and 15 minutes, here in hundredths. */
static int ParseLoad(const char* line, unsigned hundredths[3]) {
  unsigned whole[3], part[3];
  if (sscanf(line, "%u.%2u %u.%2u %u.%2u", &whole[0], &part[0], &whole[1], &part[1], &whole[2],
             &part[2]) != 6) {
    return 0;
  }
  for (int i = 0; i < 3; ++i) hundredths[i] = whole[i] * 100 + part[i];
  return 1;
}

/* ---- publish: values to instances ----------------------------------------------------------- */

/* What was found. GetData runs once for classes and once for associations: look only once. */
static struct {
  int isScanned;
  int hasUptime;
  int hasLoad;
  unsigned long seconds;
  unsigned load[3];
} machine;

static const struct {
  const char* name;
  uint16_t minutes;
} kPeriods[] = {
    {"1 minute",   1 },
    {"5 minutes",  5 },
    {"15 minutes", 15}
};

static void Scan(TCPluginCallbacks* plugin) {
  char line[256];
  if (machine.isScanned) return;
  machine.isScanned = 1;
  machine.hasUptime =
      ReadLine("/proc/uptime", line, sizeof line) && ParseUptime(line, &machine.seconds);
  machine.hasLoad = ReadLine("/proc/loadavg", line, sizeof line) && ParseLoad(line, machine.load);
  if (!machine.hasUptime) zelWriteLog(plugin, zelLogWarning, "cannot read /proc/uptime");
  if (!machine.hasLoad) zelWriteLog(plugin, zelLogWarning, "cannot read /proc/loadavg");
}

static void PublishUptime(zelIOHandle* handle) {
  if (!machine.hasUptime) return; /* a missing source means no instance, not an invented one */
  zelAddClass(handle, "ACME_Uptime");
  zelAddStringProperty(handle, "Name", "uptime");
  zelAddUint64Property(handle, "Seconds", machine.seconds);
}

static void PublishLoad(zelIOHandle* handle) {
  if (!machine.hasLoad) return;
  for (int i = 0; i < COUNT(kPeriods); ++i) {
    zelAddClass(handle, "ACME_LoadAverage");
    zelAddStringProperty(handle, "Name", kPeriods[i].name);
    zelAddUint16Property(handle, "Minutes", kPeriods[i].minutes);
    zelAddUint32Property(handle, "Hundredths", machine.load[i]);
  }
}

/* One end of an association: the path of an instance with the single key Name. */
static void AddEnd(zelIOHandle* handle, const char* end, const char* className, const char* name) {
  zelCIMReference* path = NULL;
  if (zelNewCIMReference(&path, handle) != zelStatusOK) return;
  zelSetReferenceClassName(path, className);
  zelReferenceAddString(path, "Name", name);
  zelAddReferenceProperty(handle, end, path);
  zelDeleteCIMReference(path);
}

static void PublishLinks(zelIOHandle* handle) {
  if (!machine.hasUptime || !machine.hasLoad) return;
  for (int i = 0; i < COUNT(kPeriods); ++i) {
    zelAddClass(handle, "ACME_UptimeLoad");
    AddEnd(handle, "Antecedent", "ACME_Uptime", "uptime");
    AddEnd(handle, "Dependent", "ACME_LoadAverage", kPeriods[i].name);
  }
}

static const struct {
  const char* className;
  void (*publish)(zelIOHandle* handle);
} kClasses[] = {
    {"ACME_Uptime",      PublishUptime},
    {"ACME_LoadAverage", PublishLoad  },
    {"ACME_UptimeLoad",  PublishLinks },
};

/* ---- the plug-in ---------------------------------------------------------------------------- */

static zelStatusCode GetData(TCPluginCallbacks* plugin, zelIOHandle* handle,
                             const char** classNames, int count) {
  for (int i = 0; i < count; ++i) {
    Scan(plugin);
    for (int k = 0; k < COUNT(kClasses); ++k) {
      if (strcmp(classNames[i], kClasses[k].className) == 0) kClasses[k].publish(handle);
    }
  }
  return zelStatusOK;
}

static zelPluginInfo GetInfo(TCPluginCallbacks* plugin) {
  (void)plugin;
  return (zelPluginInfo){
      .name = "uptime", .version = "1.0.0", .interfaceVersion = "1.0", .type = 0, .urlType = 0};
}

static zelStatusCode Succeed(TCPluginCallbacks* plugin) {
  (void)plugin;
  return zelStatusOK;
}

__attribute__((constructor)) static void RegisterUptime(void) {
  zelPluginCallbacks callbacks = {.Init = Succeed,
                                  .DeInit = Succeed,
                                  .GetData = GetData,
                                  .GetInfo = GetInfo,
                                  .PrepareForUnload = Succeed};
  TCPluginCallbacks* plugin = NULL; /* every callback is given it again */
  zelRegisterPlugin(&callbacks, &plugin);
}
