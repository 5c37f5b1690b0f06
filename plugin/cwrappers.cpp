// The C API: what plug-ins call. Every function checks its pointers, does one thing in the object
// model, and turns what that throws into a status.

#include <cassert>
#include <cstring>
#include <memory>
#include <new>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "plugin/zeliIOHandle.h"
#include "zelcore/ILogger.h"
#include "zelcore/IPluginManager.h"
#include "zelcore/TCIMClass.h"
#include "zelcore/TCIMDateTime.h"
#include "zelcore/TCIMInstance.h"
#include "zelcore/TCIMPropertyDecl.h"
#include "zelcore/TCIMReference.h"
#include "zelcore/TCIMSchemaHelper.h"
#include "zelcore/TCIMValue.h"
#include "zelcore/TCPluginCallbacks.h"
#include "zelcore/TContainer.h"
#include "zelcore/TOSSpecific.h"
#include "zelcore/TRootObject.h"
#include "zelcore/TZELException.h"
#include "zelcore/detail/Fail.h"
#include "zelcore/zel.h"

using zelcore::detail::Fail;
using zelcore::detail::LogCore;
using zelcore::detail::Text;

const char* const kZELErrorMessages[] = {
    "zelStatusOK",
    "zelStatusNotImplemented",
    "zelStatusUnknownClass",
    "zelStatusFail",
    "zelStatusOutOfMemory",
    "zelStatusNoMoreItems",
    "zelStatusErrorCollectingClass",
    "zelStatusInvalidClass",
    "zelStatusInvalidProperty",
    "zelStatusInvalidSpecificationDocument",
    "zelStatusInvalidDataCollectionDocument",
    "zelStatusFileSystemError",
    "zelStatusDirectoryAlreadyExists",
    "zelStatusNotArray",
    "zelStatusTypeMismatch",
    "zelStatusNotFound",
    "zelStatusAlreadyExists",
    "zelStatusInvalidOpSequence",
    "zelStatusInvalidInstance",
    "zelStatusCorruptedContainer",
    "zelStatusInvalidPlugin",
    "zelStatusInvalidDateTime",
    "zelStatusNotAssociation",
    "zelStatusNotReference",
    "zelStatusInvalidReference",
    "zelStatusInvalidCIMName",
    "zelStatusFileNotFound",
    "zelStatusAccessDenied",
    "zelStatusNotOverridable",
    "zelStatusInvalidGzipFile",
    "zelStatusCorruptGzipFile",
    "zelStatusNotSupported",
    "zelStatusValueIsNULL",
    "zelStatusINETNotFound",
    "zelStatusConnectionFailed",
    "zelStatusLibCurlFailure",
    "zelStatusInvalidFormat",
    "zelStatusContainerMismatch",
    "zelStatusEnd",
};
static_assert(std::size(kZELErrorMessages) == zelStatusEnd + 1);

namespace {

// Owned by the library for good: plug-ins keep the pointers.
const char* fgSystemCreationClassName = nullptr;
const char* fgSystemName = nullptr;

void Log(IPlugin const* plugin, zelLogSeverity severity, const char* text) {
  if (ILogger* logger = TRootObject::GetCoreLogger()) {
    logger->OutputLogEntry(plugin, severity, std::string(text));
  }
}

zelStatusCode RefuseNull(const char* message) {
  LogCore(zelLogError, message);
  return zelStatusFail;
}

// Does `work` and turns what it throws into a status.
template <class TWork>
zelStatusCode Guard(TWork&& work) {
  try {
    work();
    return zelStatusOK;
  } catch (const TZELException& e) {
    return e.GetStatusCode();
  } catch (const std::bad_alloc&) {
    return zelStatusOutOfMemory;
  } catch (...) {
    return zelStatusFail;
  }
}

// The same; `report(exception)` first writes the line that names the object.
template <class TWork, class TReport>
zelStatusCode Guard(TWork&& work, TReport&& report) {
  return Guard([&] {
    try {
      work();
    } catch (const TZELException& e) {
      report(e);
      throw;
    }
  });
}

bool IsTracing() {
  ILogger* logger = TRootObject::GetCoreLogger();
  return logger && logger->GetLogThreshold() >= zelLogVerbose;
}

// A line for who follows the plug-in's calls; its text is built for nobody else.
template <class... TParts>
void Trace(const zelIOHandle& handle, const TParts&... parts) {
  if (IsTracing()) Log(handle.GetPlugin(), zelLogVerbose, Text(parts...).c_str());
}

// How an argument of a C function becomes a value.
template <class T>
TCIMValue ToValue(T number) {
  return TCIMValue(number);
}
template <class T>
TCIMValue ToValue(const T* object) {
  return TCIMValue(*object);
}
TCIMValue ToValue(const char* text) { return TCIMValue(text); }

template <class T>
bool IsNull([[maybe_unused]] const T& value) {
  if constexpr (std::is_pointer_v<T>) {
    return value == nullptr;
  } else {
    return false;
  }
}

template <class T, class... TArgs>
zelStatusCode New(const char* refusal, T** result, TArgs... args) {
  if (!result) return RefuseNull(refusal);
  return Guard([&] { *result = new T(args...); });
}

template <class T>
zelStatusCode Delete(const char* refusal, T* object) {
  if (!object) return RefuseNull(refusal);
  delete object;
  return zelStatusOK;
}

// ---- Registration

TContainer* Schema() {
  IPluginManager* manager = TRootObject::GetPluginManager();
  if (!manager) Fail(zelStatusInvalidOpSequence, "There is no plug-in manager");
  return manager->GetSchema();
}

// Stores the text that `get` finds in the schema; it is looked for until it is found once.
zelStatusCode GetCached(const char* refusal, const char** result, const char*& cache,
                        std::string (*get)(TContainer*)) {
  if (!result) return RefuseNull(refusal);
  return Guard([&] {
    if (!cache) {
      const std::string text = get(Schema());
      char* copy = new char[text.size() + 1];
      std::memcpy(copy, text.c_str(), text.size() + 1);
      cache = copy;
    }
    *result = cache;
  });
}

// ---- Instances and properties

TCIMInstance& CurrentInstance(const zelIOHandle& handle) {
  TCIMInstance* instance = handle.GetCurrentInstance();
  if (!instance) Fail(zelStatusInvalidClass, "zelAddProperty: no current instance");
  return *instance;
}

TCIMValue::TCIMType DeclaredType(const TCIMInstance& instance, const char* property) {
  return instance.GetClass()->GetPropertyDecl(property)->GetType();
}

// Without a current instance the reason has been logged already.
void ReportProperty(const zelIOHandle& handle, const char* prefix, const TZELException& e,
                    const std::string& suffix = "") {
  if (const TCIMInstance* instance = handle.GetCurrentInstance()) {
    LogCore(zelLogError, Text(prefix, ": CIM class ", instance->GetClass()->GetName(),
                              " threw exception ", e.what(), suffix));
  }
}

// One step of zelAddClass(); where the model refuses it, the line says what was being done.
template <class TWork, class TDescribe>
auto Step(TWork&& work, TDescribe&& describe) {
  try {
    return work();
  } catch (const TZELException& e) {
    LogCore(zelLogError, Text("zelAddClass: ", describe(), " threw exception ", e.what()));
    throw;
  }
}

std::unique_ptr<TCIMInstance> AllocateInstance(const zelIOHandle& handle, const char* className,
                                               TCIMClass* cls) {
  try {
    return std::unique_ptr<TCIMInstance>(handle.GetContainer()->AllocateInstance(cls));
  } catch (const std::bad_alloc&) {
    LogCore(zelLogError, Text("zelAddClass: CIM class ", className, ": no memory"));
    throw;
  }
}

// Printing can fail: a NULL, a datetime that is not set, a path with a NULL key. Whether such a
// value is refused must not depend on the threshold, so only values that always print may skip it.
void TraceValue(const zelIOHandle& handle, const char* name, const TCIMValue& value) {
  const TCIMValue::TCIMType type = value.GetType();
  const bool alwaysPrints = !value.IsNull() && (type <= TCIMValue::TCIMType::TypeReal64 ||
                                                type == TCIMValue::TCIMType::TypeString);
  if (alwaysPrints && !IsTracing()) return;
  // sic: one text for all typed setters.
  Trace(handle, "zelAdd<>Property(", name, ", value=", value.ToString(10), ")");
}

// The end of all typed setters; `make()` gives the value.
template <class TMake>
zelStatusCode AddValue(zelIOHandle* handle, const char* name, TMake&& make) {
  if (!handle) return RefuseNull("zelAddCIMValueProperty: NULL zelIOHandle parameter");
  if (!name) return RefuseNull("zelAddCIMValueProperty: NULL name parameter");
  return Guard(
      [&] {
        decltype(auto) value = make();
        TraceValue(*handle, name, value);
        CurrentInstance(*handle).SetPropertyValue(name, std::forward<decltype(value)>(value));
      },
      // sic: no "zel" before "Add".
      [&](const TZELException& e) { ReportProperty(*handle, "AddProperty", e); });
}

template <class T>
zelStatusCode AddNumber(zelIOHandle* handle, const char* name, T value) {
  return AddValue(handle, name, [&] { return ToValue(value); });
}

template <class T>
zelStatusCode AddObject(const char* refusal, zelIOHandle* handle, const char* name,
                        const T* value) {
  if (!name || !value) return RefuseNull(refusal);
  return AddValue(handle, name, [&] { return ToValue(value); });
}

// ---- Arrays and references

template <class T>
zelStatusCode ArrayAdd(const char* refusal, zelCIMValueArray* array, T value) {
  if (!array || IsNull(value)) return RefuseNull(refusal);
  return Guard([&] { array->push_back(ToValue(value)); });
}

template <class T>
zelStatusCode ReferenceAdd(const char* refusal, zelCIMReference* ref, const char* key, T value) {
  if (!ref || !key || IsNull(value)) return RefuseNull(refusal);
  return Guard([&] { ref->AddKeyValue(key, ToValue(value)); });
}

}  // namespace

// ---- Registration

zelStatusCode zelRegisterPlugin(zelPluginCallbacks* callbacks, TCPluginCallbacks** pluginHandle) {
  // sic: __null, as it shows in the message.
  assert(callbacks != __null);
  assert(pluginHandle != __null);
  return Guard([&] { *pluginHandle = new TCPluginCallbacks(callbacks); });
}

zelStatusCode zelGetHandle(TCPluginCallbacks* plugin, IPlugin** record) {
  if (!plugin || !record) {
    return RefuseNull("zelGetHandle: NULL pluginHandle and/or plugin parameter");
  }
  *record = plugin->GetPluginHandle();
  return zelStatusOK;
}

zelStatusCode zelGetPluginPath(TCPluginCallbacks* plugin, const char** path) {
  if (!path) {
    zelWriteLog(plugin, zelLogError, "zelGetPluginPath: NULL path parameter");
    return zelStatusFail;
  }
  if (!plugin) return RefuseNull("zelGetPluginPath: NULL pluginHandle parameter");
  *path = plugin->GetPluginPath();
  return zelStatusOK;
}

// Not guarded: the logger's exception for a severity without a name is the caller's to see.
void zelWriteLog(TCPluginCallbacks* plugin, zelLogSeverity severity, const char* text) {
  if (!text) {
    Log(nullptr, severity, "zelWriteLog: NULL text parameter");
  } else {
    Log(plugin ? plugin->GetPluginHandle() : nullptr, severity, text);
  }
}

const char* zelTranslateStatusCode(zelStatusCode code) {
  const bool isKnown = code >= zelStatusOK && code <= zelStatusEnd;
  return kZELErrorMessages[isKnown ? code : zelStatusEnd];
}

zelStatusCode zelGetSystemCreationClassName(const char** name) {
  return GetCached("zelGetSystemCreationClassName: NULL name parameter", name,
                   fgSystemCreationClassName, TCIMSchemaHelper::GetSystemCreationClassName);
}

zelStatusCode zelGetSystemName(const char** name) {
  return GetCached("zelGetSystemName: NULL name parameter", name, fgSystemName,
                   TCIMSchemaHelper::GetSystemName);
}

// ---- Instances and properties

zelStatusCode zelAddClass(zelIOHandle* handle, const char* className) {
  if (!handle) return RefuseNull("zelAddClass: NULL zelIOHandle parameter");
  if (!className) return RefuseNull("zelAddClass: NULL name parameter");

  return Guard([&] {
    Trace(*handle, "zelAddClass(", className, ")");
    Step([&] { handle->CommitCurrentInstance(); },
         [&] { return Text("CIM class ", CurrentInstance(*handle).GetClass()->GetName()); });
    TCIMClass* cls = Step([&] { return handle->GetContainer()->GetClass(className); },
                          [&] { return Text("GetClass(", className, ")"); });
    handle->SetCurrentInstance(
        Step([&] { return AllocateInstance(*handle, className, cls); },
             [&] { return Text("Allocate instance (CIM class ", className, ")"); }));
  });
}

zelStatusCode zelAddProperty(zelIOHandle* handle, const char* name, const char* value) {
  if (!handle) return RefuseNull("zelAddProperty: NULL zelIOHandle parameter");
  if (!name || !value) return RefuseNull("zelAddProperty: NULL name and/or value parameter");
  return Guard(
      [&] {
        Trace(*handle, "zelAddProperty(", name, ", value=", value, ")");
        TCIMInstance& instance = CurrentInstance(*handle);
        instance.SetPropertyValue(
            name, TCIMValue(DeclaredType(instance, name), value, *handle->GetContainer()));
      },
      [&](const TZELException& e) {
        const bool notFound = e.GetStatusCode() == zelStatusNotFound;
        ReportProperty(*handle, "zelAddProperty", e, notFound ? Text(" name='", name, "'") : "");
      });
}

zelStatusCode zelAddCIMValueProperty(zelIOHandle* handle, const char* name,
                                     const TCIMValue* value) {
  if (handle && name && !value) {
    return RefuseNull("zelAddCIMValueProperty: NULL value parameter");
  }
  return AddValue(handle, name, [&]() -> const TCIMValue& { return *value; });
}

zelStatusCode zelAddBooleanProperty(zelIOHandle* handle, const char* name, int32_t value) {
  return AddNumber(handle, name, value != 0);
}

zelStatusCode zelAddUint8Property(zelIOHandle* handle, const char* name, uint8_t value) {
  return AddNumber(handle, name, value);
}

zelStatusCode zelAddSint8Property(zelIOHandle* handle, const char* name, int8_t value) {
  return AddNumber(handle, name, value);
}

zelStatusCode zelAddUint16Property(zelIOHandle* handle, const char* name, uint16_t value) {
  return AddNumber(handle, name, value);
}

zelStatusCode zelAddSint16Property(zelIOHandle* handle, const char* name, int16_t value) {
  return AddNumber(handle, name, value);
}

zelStatusCode zelAddUint32Property(zelIOHandle* handle, const char* name, uint32_t value) {
  return AddNumber(handle, name, value);
}

zelStatusCode zelAddSint32Property(zelIOHandle* handle, const char* name, int32_t value) {
  return AddNumber(handle, name, value);
}

zelStatusCode zelAddUint64Property(zelIOHandle* handle, const char* name, uint64_t value) {
  return AddNumber(handle, name, value);
}

zelStatusCode zelAddSint64Property(zelIOHandle* handle, const char* name, int64_t value) {
  return AddNumber(handle, name, value);
}

zelStatusCode zelAddStringProperty(zelIOHandle* handle, const char* name, const char* value) {
  return AddObject("zelAddStringProperty: NULL value and/or name parameter", handle, name, value);
}

zelStatusCode zelAddReferenceProperty(zelIOHandle* handle, const char* name,
                                      const zelCIMReference* value) {
  return AddObject("zelAddReferenceProperty: NULL name and/or pRef parameter", handle, name, value);
}

zelStatusCode zelAddDateTimeProperty(zelIOHandle* handle, const char* name,
                                     const zelCIMDateTime* value) {
  return AddObject("zelAddDateTimeProperty: NULL name and/or pDateTime parameter", handle, name,
                   value);
}

zelStatusCode zelAddArrayProperty(zelIOHandle* handle, const char* name,
                                  const zelCIMValueArray* value) {
  if (!name || !value) {
    return RefuseNull("zelAddArrayProperty: NULL name and/or pArray parameter");
  }
  return AddValue(handle, name, [&] {
    return TCIMValue(DeclaredType(CurrentInstance(*handle), name), 0, *value);
  });
}

// ---- Arrays

zelStatusCode zelNewCIMValueArray(zelCIMValueArray** result) {
  return New("zelNewCIMValueArray: NULL array parameter", result);
}

zelStatusCode zelDeleteCIMValueArray(zelCIMValueArray* array) {
  return Delete("zelDeleteCIMValueArray: NULL array parameter", array);
}

zelStatusCode zelArrayAddBoolean(zelCIMValueArray* array, int32_t value) {
  return ArrayAdd("zelArrayAddBoolean: NULL array parameter", array, value != 0);
}

zelStatusCode zelArrayAddUint8(zelCIMValueArray* array, uint8_t value) {
  return ArrayAdd("zelArrayAddUint8: NULL array parameter", array, value);
}

// sic: the text of zelArrayAddUint8().
zelStatusCode zelArrayAddSint8(zelCIMValueArray* array, int8_t value) {
  return ArrayAdd("zelArrayAddUint8: NULL array parameter", array, value);
}

zelStatusCode zelArrayAddUint16(zelCIMValueArray* array, uint16_t value) {
  return ArrayAdd("zelArrayAddUint16: NULL array parameter", array, value);
}

zelStatusCode zelArrayAddSint16(zelCIMValueArray* array, int16_t value) {
  return ArrayAdd("zelArrayAddSint16: NULL array parameter", array, value);
}

zelStatusCode zelArrayAddUint32(zelCIMValueArray* array, uint32_t value) {
  return ArrayAdd("zelArrayAddUint32: NULL array parameter", array, value);
}

zelStatusCode zelArrayAddSint32(zelCIMValueArray* array, int32_t value) {
  return ArrayAdd("zelArrayAddSint32: NULL array parameter", array, value);
}

zelStatusCode zelArrayAddUint64(zelCIMValueArray* array, uint64_t value) {
  return ArrayAdd("zelArrayAddUint64: NULL array parameter", array, value);
}

zelStatusCode zelArrayAddSint64(zelCIMValueArray* array, int64_t value) {
  return ArrayAdd("zelArrayAddSint64: NULL array parameter", array, value);
}

zelStatusCode zelArrayAddString(zelCIMValueArray* array, const char* value) {
  return ArrayAdd("zelArrayAddString: NULL array and/or value parameter", array, value);
}

zelStatusCode zelArrayAddReference(zelCIMValueArray* array, const zelCIMReference* value) {
  return ArrayAdd("zelArrayAddReference: NULL array and/or value parameter", array, value);
}

zelStatusCode zelArrayAddDateTime(zelCIMValueArray* array, const zelCIMDateTime* value) {
  return ArrayAdd("zelArrayAddDateTime: NULL array and/or value parameter", array, value);
}

// ---- Datetimes

zelStatusCode zelNewCIMDateTime(zelCIMDateTime** result) {
  return New("zelNewCIMDateTime: NULL datetime parameter", result);
}

zelStatusCode zelDeleteCIMDateTime(zelCIMDateTime* datetime) {
  return Delete("zelDeleteCIMDateTime: NULL datetime parameter", datetime);
}

zelStatusCode zelGetLocalTime(zelCIMDateTime* datetime) {
  if (!datetime) return RefuseNull("zelGetLocalTime: NULL datetime ");  // sic: ends with a blank
  return Guard([&] { *datetime = TOSSpecific::GetLocalTime(); });
}

zelStatusCode zelSetDateTime(zelCIMDateTime* datetime, uint16_t year, uint16_t month, uint32_t day,
                             uint16_t hour, uint16_t minute, uint16_t second, uint32_t microseconds,
                             int16_t utcOffset) {
  if (!datetime) return RefuseNull("zelSetDateTime: NULL datetime parameter");
  return Guard(
      [&] { datetime->Set(year, month, day, hour, minute, second, microseconds, utcOffset); });
}

zelStatusCode zelSetDateTimeInterval(zelCIMDateTime* datetime, uint32_t days, uint16_t hours,
                                     uint16_t minutes, uint16_t seconds, uint32_t microseconds) {
  if (!datetime) return RefuseNull("zelSetDateTimeInterval: NULL datetime parameter");
  return Guard([&] { datetime->Set(days, hours, minutes, seconds, microseconds); });
}

zelStatusCode zelSetDateTimeString(zelCIMDateTime* datetime, const char* str) {
  if (!datetime || !str) {
    return RefuseNull("zelSetDateTimeString: NULL datetime and/or str parameter");
  }
  return Guard([&] { datetime->Set(std::string(str)); });
}

// ---- References

zelStatusCode zelNewCIMReference(zelCIMReference** result, zelIOHandle* handle) {
  if (!handle) return RefuseNull("zelNewCIMReference: NULL zelIOHandle parameter");
  return New("zelNewCIMReference: NULL ref parameter", result, handle->GetContainer());
}

zelStatusCode zelDeleteCIMReference(zelCIMReference* ref) {
  return Delete("zelDeleteCIMReference: NULL ref parameter", ref);
}

zelStatusCode zelSetReferencePath(zelCIMReference* ref, const char* objectName) {
  if (!ref || !objectName) {
    return RefuseNull("zelSetReferencePath: NULL ref and/or objectName parameter");
  }
  return Guard([&] { ref->SetPath(objectName); });
}

zelStatusCode zelSetReferenceClassName(zelCIMReference* ref, const char* className) {
  if (!ref || !className) {
    return RefuseNull("zelSetReferenceClassName: NULL ref and/or className parameter");
  }
  return Guard([&] { ref->SetClassName(className); });
}

zelStatusCode zelReferenceAddBoolean(zelCIMReference* ref, const char* key, int32_t value) {
  return ReferenceAdd("zelReferenceAddBoolean: NULL ref and/or key parameter", ref, key,
                      value != 0);
}

zelStatusCode zelReferenceAddUint8(zelCIMReference* ref, const char* key, uint8_t value) {
  return ReferenceAdd("zelReferenceAddUint8: NULL ref and/or key parameter", ref, key, value);
}

zelStatusCode zelReferenceAddSint8(zelCIMReference* ref, const char* key, int8_t value) {
  return ReferenceAdd("zelReferenceAddSint8: NULL ref and/or key parameter", ref, key, value);
}

zelStatusCode zelReferenceAddUint16(zelCIMReference* ref, const char* key, uint16_t value) {
  return ReferenceAdd("zelReferenceAddUint16: NULL ref and/or key parameter", ref, key, value);
}

zelStatusCode zelReferenceAddSint16(zelCIMReference* ref, const char* key, int16_t value) {
  return ReferenceAdd("zelReferenceAddSint16: NULL ref and/or key parameter", ref, key, value);
}

zelStatusCode zelReferenceAddUint32(zelCIMReference* ref, const char* key, uint32_t value) {
  return ReferenceAdd("zelReferenceAddUint32: NULL ref and/or key parameter", ref, key, value);
}

zelStatusCode zelReferenceAddSint32(zelCIMReference* ref, const char* key, int32_t value) {
  return ReferenceAdd("zelReferenceAddSint32: NULL ref and/or key parameter", ref, key, value);
}

zelStatusCode zelReferenceAddUint64(zelCIMReference* ref, const char* key, uint64_t value) {
  return ReferenceAdd("zelReferenceAddUint64: NULL ref and/or key parameter", ref, key, value);
}

zelStatusCode zelReferenceAddSint64(zelCIMReference* ref, const char* key, int64_t value) {
  return ReferenceAdd("zelReferenceAddSint64: NULL ref and/or key parameter", ref, key, value);
}

zelStatusCode zelReferenceAddString(zelCIMReference* ref, const char* key, const char* value) {
  return ReferenceAdd("zelReferenceAddString: NULL ref, key and/or value parameter", ref, key,
                      value);
}

zelStatusCode zelReferenceAddReference(zelCIMReference* ref, const char* key,
                                       const zelCIMReference* value) {
  return ReferenceAdd("zelReferenceAddReference: NULL ref, key and/or value parameter", ref, key,
                      value);
}

zelStatusCode zelReferenceAddDateTime(zelCIMReference* ref, const char* key,
                                      const zelCIMDateTime* value) {
  return ReferenceAdd("zelReferenceAddDateTime: NULL ref, key and/or value parameter", ref, key,
                      value);
}
