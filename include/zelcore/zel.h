/*
 * zel.h: what a collector plug-in sees of libzelcore. Plain C99; also valid C++17.
 *
 * A plug-in is a shared library lib<name>.pi.so in a directory of its own, <name>/, with its
 * specification document <name>.properties.xml beside it. While it is being loaded it hands a table
 * of callbacks to zelRegisterPlugin(); later the library calls Init, and GetData once for ordinary
 * classes and once for associations. Inside GetData the plug-in describes what it found:
 *
 *     zelAddClass(handle, "ACME_Fan");                    start an instance
 *     zelAddStringProperty(handle, "DeviceID", "fan0");   set its properties
 *     zelAddUint32Property(handle, "Speed", 2400);
 *
 * The instance is validated and committed when the next one is started or GetData returns 0.
 *
 * Conventions
 *   Status     Every function returns zelStatusOK (0) or the code of what went wrong, after it has
 *              written a line to the log. A refused call changes nothing. No C++ exception leaves
 *              a function, but for zelWriteLog() with a severity that does not exist.
 *   Null       A null pointer argument gives zelStatusFail unless stated otherwise.
 *   Strings    Texts passed in are copied before the call returns. Texts handed out belong to the
 *              library and must not be freed.
 *   Names      Class and property names are matched without regard to case.
 *   Types      A value must have exactly the type that the class declares; nothing is widened.
 *   Threads    None: a plug-in calls the library only from the thread that called the plug-in.
 *   Symbols    Plug-ins are loaded with global symbol visibility: two that export the same name get
 *              the first one's. Compile with -fvisibility=hidden and make functions static.
 */
#ifndef ZELCORE_ZEL_H
#define ZELCORE_ZEL_H

#include <stdint.h>

#ifdef __cplusplus
#include <vector>
#endif

#define ZEL_VERSION_MAJOR 0
#define ZEL_VERSION_MINOR 1
#define ZEL_VERSION_BUILD 0
#define ZEL_VERSION "0.1.0"

#define ZEL_C_API __attribute__((visibility("default")))

#ifdef __cplusplus
enum zelStatusCode : int {
#else
typedef enum zelStatusCode {
#endif
  zelStatusOK = 0,
  zelStatusNotImplemented = 1,
  zelStatusUnknownClass = 2,
  zelStatusFail = 3,
  zelStatusOutOfMemory = 4,
  zelStatusNoMoreItems = 5,
  zelStatusErrorCollectingClass = 6,
  zelStatusInvalidClass = 7,
  zelStatusInvalidProperty = 8,
  zelStatusInvalidSpecificationDocument = 9,
  zelStatusInvalidDataCollectionDocument = 10,
  zelStatusFileSystemError = 11,
  zelStatusDirectoryAlreadyExists = 12,
  zelStatusNotArray = 13,
  zelStatusTypeMismatch = 14,
  zelStatusNotFound = 15,
  zelStatusAlreadyExists = 16,
  zelStatusInvalidOpSequence = 17,
  zelStatusInvalidInstance = 18,
  zelStatusCorruptedContainer = 19,
  zelStatusInvalidPlugin = 20,
  zelStatusInvalidDateTime = 21,
  zelStatusNotAssociation = 22,
  zelStatusNotReference = 23,
  zelStatusInvalidReference = 24,
  zelStatusInvalidCIMName = 25,
  zelStatusFileNotFound = 26,
  zelStatusAccessDenied = 27,
  zelStatusNotOverridable = 28,
  zelStatusInvalidGzipFile = 29,
  zelStatusCorruptGzipFile = 30,
  zelStatusNotSupported = 31,
  zelStatusValueIsNULL = 32,
  zelStatusINETNotFound = 33,
  zelStatusConnectionFailed = 34,
  zelStatusLibCurlFailure = 35,
  zelStatusInvalidFormat = 36,
  zelStatusContainerMismatch = 37,
  zelStatusEnd = 38 /* the count of codes; no operation returns it */
#ifdef __cplusplus
};
enum zelLogSeverity : int {
#else
} zelStatusCode;
typedef enum zelLogSeverity {
#endif
  zelLogError = 0,
  zelLogWarning = 1,
  zelLogStatus = 2,
  zelLogDebug = 3,
  zelLogVerbose = 4,     /* written to the log file only, never remembered */
  zelLogMemoryOnly = 100 /* remembered whatever the threshold, never written */
#ifdef __cplusplus
};
class IPlugin;
class TCIMDateTime;
class TCIMReference;
class TCIMValue;
class TCPluginCallbacks;
class zeliIOHandle;
typedef zeliIOHandle zelIOHandle;
typedef std::vector<TCIMValue> zelCIMValueArray;
typedef TCIMDateTime zelCIMDateTime;
typedef TCIMReference zelCIMReference;
#else
} zelLogSeverity;
typedef struct IPlugin IPlugin;
typedef struct TCIMValue TCIMValue;
typedef struct TCPluginCallbacks TCPluginCallbacks;
typedef struct zeliIOHandle zelIOHandle;
typedef struct zelCIMValueArray zelCIMValueArray;
typedef struct zelCIMDateTime zelCIMDateTime;
typedef struct zelCIMReference zelCIMReference;
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Registration ------------------------------------------------------------------------- */

/* What a plug-in says of itself. A null text counts as "". */
typedef struct zelPluginInfo {
  const char* name;
  const char* version;
  const char* interfaceVersion;
  int32_t type;    /* 0 collects and is queried, 1 has a document only, others neither */
  int32_t urlType; /* 0 */
} zelPluginInfo;

/*
 * The plug-in's side of the interface. `plugin` is the handle that zelRegisterPlugin() gave. A null
 * entry counts as one that answers zelStatusNotImplemented.
 */
typedef struct zelPluginCallbacks {
  /* Never called; keeps the other five in their places. */
  void (*Reserved)(void);

  /* Called once after loading. Any status but 0: the plug-in's document is not read. */
  zelStatusCode (*Init)(TCPluginCallbacks* plugin);

  zelStatusCode (*DeInit)(TCPluginCallbacks* plugin);

  /*
   * Adds the instances of the `count` named classes; `count` may be 0. Called once for ordinary
   * classes and once for association classes. `handle` and the names live until the call returns.
   * Any status but 0 drops the instance under construction; the earlier ones stay.
   */
  zelStatusCode (*GetData)(TCPluginCallbacks* plugin, zelIOHandle* handle, const char** classNames,
                           int count);

  /* Called afresh each time one of the values is needed; the texts are copied at once. */
  zelPluginInfo (*GetInfo)(TCPluginCallbacks* plugin);

  /* After status 0 the plug-in's handle no longer exists. */
  zelStatusCode (*PrepareForUnload)(TCPluginCallbacks* plugin);
} zelPluginCallbacks;

/*
 * Registers a plug-in; to be called from the library's entry point (a constructor function). Copies
 * the table and stores the plug-in's handle through `plugin`. A null argument aborts the process.
 * zelStatusInvalidOpSequence when there is no plug-in manager.
 */
ZEL_C_API zelStatusCode zelRegisterPlugin(zelPluginCallbacks* callbacks,
                                          TCPluginCallbacks** plugin);

/* Stores the plug-in manager's record of the plug-in, owned by the manager. */
ZEL_C_API zelStatusCode zelGetHandle(TCPluginCallbacks* plugin, IPlugin** record);

/* Stores the path of the plug-in's library; null before Init. */
ZEL_C_API zelStatusCode zelGetPluginPath(TCPluginCallbacks* plugin, const char** path);

/*
 * Logs `text` on behalf of the plug-in, or of the library when `plugin` is null. Throws a
 * TZELException for a severity that is not one of zelLogSeverity but passes the threshold.
 */
ZEL_C_API void zelWriteLog(TCPluginCallbacks* plugin, zelLogSeverity severity, const char* text);

/* The names of the codes, indexed by code: entry 0 is "zelStatusOK", entry 38 "zelStatusEnd". */
ZEL_C_API extern const char* const kZELErrorMessages[zelStatusEnd + 1];

/* The name of `code`; "zelStatusEnd" for a code outside the table. */
ZEL_C_API const char* zelTranslateStatusCode(zelStatusCode code);

/*
 * The key values by which everything on this system names it: CreationClassName and Name of the
 * computer system, from the instances collected so far. Until the system has been collected they
 * fail; once found they are kept, and every call gives the same pointer.
 */
ZEL_C_API zelStatusCode zelGetSystemCreationClassName(const char** name);
ZEL_C_API zelStatusCode zelGetSystemName(const char** name);

/* ---- Instances and properties -------------------------------------------------------------- */

/*
 * Commits the handle's current instance, if any, and starts a new one of the named class. A commit
 * that fails (zelStatusInvalidInstance: a key is NULL) leaves the old instance current, so its
 * properties can be mended and the call repeated. zelStatusNotFound: no such class.
 */
ZEL_C_API zelStatusCode zelAddClass(zelIOHandle* handle, const char* className);

/*
 * Sets a property of the current instance. zelStatusInvalidClass: no current instance.
 * zelStatusNotFound: the class has no such property. zelStatusTypeMismatch: declared with another
 * type. A refused value leaves the former one.
 *
 * zelAddProperty() takes the value as text and converts it to the declared type: a leading 0 makes
 * a number octal, 0x hexadecimal. Prefer the typed setters.
 */
ZEL_C_API zelStatusCode zelAddProperty(zelIOHandle* handle, const char* name, const char* value);
ZEL_C_API zelStatusCode zelAddCIMValueProperty(zelIOHandle* handle, const char* name,
                                               const TCIMValue* value);
ZEL_C_API zelStatusCode zelAddBooleanProperty(zelIOHandle* handle, const char* name, int32_t value);
ZEL_C_API zelStatusCode zelAddUint8Property(zelIOHandle* handle, const char* name, uint8_t value);
ZEL_C_API zelStatusCode zelAddSint8Property(zelIOHandle* handle, const char* name, int8_t value);
ZEL_C_API zelStatusCode zelAddUint16Property(zelIOHandle* handle, const char* name, uint16_t value);
ZEL_C_API zelStatusCode zelAddSint16Property(zelIOHandle* handle, const char* name, int16_t value);
ZEL_C_API zelStatusCode zelAddUint32Property(zelIOHandle* handle, const char* name, uint32_t value);
ZEL_C_API zelStatusCode zelAddSint32Property(zelIOHandle* handle, const char* name, int32_t value);
ZEL_C_API zelStatusCode zelAddUint64Property(zelIOHandle* handle, const char* name, uint64_t value);
ZEL_C_API zelStatusCode zelAddSint64Property(zelIOHandle* handle, const char* name, int64_t value);
ZEL_C_API zelStatusCode zelAddStringProperty(zelIOHandle* handle, const char* name,
                                             const char* value);
ZEL_C_API zelStatusCode zelAddReferenceProperty(zelIOHandle* handle, const char* name,
                                                const zelCIMReference* value);
ZEL_C_API zelStatusCode zelAddDateTimeProperty(zelIOHandle* handle, const char* name,
                                               const zelCIMDateTime* value);
ZEL_C_API zelStatusCode zelAddArrayProperty(zelIOHandle* handle, const char* name,
                                            const zelCIMValueArray* value);

/* ---- Arrays -------------------------------------------------------------------------------- */

/*
 * An array is made empty, filled in order, given to zelAddArrayProperty(), which copies it, and
 * deleted by the plug-in. Its elements must all have the declared element type by then.
 */
ZEL_C_API zelStatusCode zelNewCIMValueArray(zelCIMValueArray** result);
ZEL_C_API zelStatusCode zelDeleteCIMValueArray(zelCIMValueArray* array);
ZEL_C_API zelStatusCode zelArrayAddBoolean(zelCIMValueArray* array, int32_t value);
ZEL_C_API zelStatusCode zelArrayAddUint8(zelCIMValueArray* array, uint8_t value);
ZEL_C_API zelStatusCode zelArrayAddSint8(zelCIMValueArray* array, int8_t value);
ZEL_C_API zelStatusCode zelArrayAddUint16(zelCIMValueArray* array, uint16_t value);
ZEL_C_API zelStatusCode zelArrayAddSint16(zelCIMValueArray* array, int16_t value);
ZEL_C_API zelStatusCode zelArrayAddUint32(zelCIMValueArray* array, uint32_t value);
ZEL_C_API zelStatusCode zelArrayAddSint32(zelCIMValueArray* array, int32_t value);
ZEL_C_API zelStatusCode zelArrayAddUint64(zelCIMValueArray* array, uint64_t value);
ZEL_C_API zelStatusCode zelArrayAddSint64(zelCIMValueArray* array, int64_t value);
ZEL_C_API zelStatusCode zelArrayAddString(zelCIMValueArray* array, const char* value);
ZEL_C_API zelStatusCode zelArrayAddReference(zelCIMValueArray* array, const zelCIMReference* value);
ZEL_C_API zelStatusCode zelArrayAddDateTime(zelCIMValueArray* array, const zelCIMDateTime* value);

/* ---- Datetimes ----------------------------------------------------------------------------- */

/* A new datetime is NULL until it is set. A refused value leaves the former one. */
ZEL_C_API zelStatusCode zelNewCIMDateTime(zelCIMDateTime** result);
ZEL_C_API zelStatusCode zelDeleteCIMDateTime(zelCIMDateTime* datetime);
ZEL_C_API zelStatusCode zelGetLocalTime(zelCIMDateTime* datetime);

/* A point in time; `utcOffset` in minutes east of UTC. zelStatusInvalidDateTime when refused. */
ZEL_C_API zelStatusCode zelSetDateTime(zelCIMDateTime* datetime, uint16_t year, uint16_t month,
                                       uint32_t day, uint16_t hour, uint16_t minute,
                                       uint16_t second, uint32_t microseconds, int16_t utcOffset);
ZEL_C_API zelStatusCode zelSetDateTimeInterval(zelCIMDateTime* datetime, uint32_t days,
                                               uint16_t hours, uint16_t minutes, uint16_t seconds,
                                               uint32_t microseconds);
/* The 25-character form, "20040315142530.000000-300" or "00000001020304.500000:000". */
ZEL_C_API zelStatusCode zelSetDateTimeString(zelCIMDateTime* datetime, const char* str);

/* ---- References ---------------------------------------------------------------------------- */

/*
 * An object path: first the class, then one key value for each key of the class, with the types
 * that the class declares. The path belongs to the container of the handle it was made with. The
 * first value of a key stays. zelSetReferencePath() always fails: paths are built from parts.
 */
ZEL_C_API zelStatusCode zelNewCIMReference(zelCIMReference** result, zelIOHandle* handle);
ZEL_C_API zelStatusCode zelDeleteCIMReference(zelCIMReference* ref);
ZEL_C_API zelStatusCode zelSetReferencePath(zelCIMReference* ref, const char* objectName);
ZEL_C_API zelStatusCode zelSetReferenceClassName(zelCIMReference* ref, const char* className);
ZEL_C_API zelStatusCode zelReferenceAddBoolean(zelCIMReference* ref, const char* key,
                                               int32_t value);
ZEL_C_API zelStatusCode zelReferenceAddUint8(zelCIMReference* ref, const char* key, uint8_t value);
ZEL_C_API zelStatusCode zelReferenceAddSint8(zelCIMReference* ref, const char* key, int8_t value);
ZEL_C_API zelStatusCode zelReferenceAddUint16(zelCIMReference* ref, const char* key,
                                              uint16_t value);
ZEL_C_API zelStatusCode zelReferenceAddSint16(zelCIMReference* ref, const char* key, int16_t value);
ZEL_C_API zelStatusCode zelReferenceAddUint32(zelCIMReference* ref, const char* key,
                                              uint32_t value);
ZEL_C_API zelStatusCode zelReferenceAddSint32(zelCIMReference* ref, const char* key, int32_t value);
ZEL_C_API zelStatusCode zelReferenceAddUint64(zelCIMReference* ref, const char* key,
                                              uint64_t value);
ZEL_C_API zelStatusCode zelReferenceAddSint64(zelCIMReference* ref, const char* key, int64_t value);
ZEL_C_API zelStatusCode zelReferenceAddString(zelCIMReference* ref, const char* key,
                                              const char* value);
ZEL_C_API zelStatusCode zelReferenceAddReference(zelCIMReference* ref, const char* key,
                                                 const zelCIMReference* value);
ZEL_C_API zelStatusCode zelReferenceAddDateTime(zelCIMReference* ref, const char* key,
                                                const zelCIMDateTime* value);

#ifdef __cplusplus
}
#endif

#endif
