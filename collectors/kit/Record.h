#pragma once

#include <time.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "collectors/kit/Files.h"
#include "zelcore/zel.h"

// Instances by chained calls. The first status but 0 sticks: later calls do nothing.
//
//   return TRecord(out, "KVRSG_Fan").Set("DeviceID", fan.id).Set("Speed", fan.speed).Status();
namespace kit {

// The C functions for each C++ type. Reals have none: see TRecord::SetText().
template <class TValue>
struct TCFunctions;

template <auto set, auto append, auto key>
struct TCFunctionsOf {
  static constexpr auto kSet = set;
  static constexpr auto kAppend = append;
  static constexpr auto kKey = key;
};

// clang-format off
template <> struct TCFunctions<bool>
    : TCFunctionsOf<zelAddBooleanProperty, zelArrayAddBoolean, zelReferenceAddBoolean> {};
template <> struct TCFunctions<uint8_t>
    : TCFunctionsOf<zelAddUint8Property, zelArrayAddUint8, zelReferenceAddUint8> {};
template <> struct TCFunctions<int8_t>
    : TCFunctionsOf<zelAddSint8Property, zelArrayAddSint8, zelReferenceAddSint8> {};
template <> struct TCFunctions<uint16_t>
    : TCFunctionsOf<zelAddUint16Property, zelArrayAddUint16, zelReferenceAddUint16> {};
template <> struct TCFunctions<int16_t>
    : TCFunctionsOf<zelAddSint16Property, zelArrayAddSint16, zelReferenceAddSint16> {};
template <> struct TCFunctions<uint32_t>
    : TCFunctionsOf<zelAddUint32Property, zelArrayAddUint32, zelReferenceAddUint32> {};
template <> struct TCFunctions<int32_t>
    : TCFunctionsOf<zelAddSint32Property, zelArrayAddSint32, zelReferenceAddSint32> {};
template <> struct TCFunctions<uint64_t>
    : TCFunctionsOf<zelAddUint64Property, zelArrayAddUint64, zelReferenceAddUint64> {};
template <> struct TCFunctions<int64_t>
    : TCFunctionsOf<zelAddSint64Property, zelArrayAddSint64, zelReferenceAddSint64> {};
template <> struct TCFunctions<std::string>
    : TCFunctionsOf<zelAddStringProperty, zelArrayAddString, zelReferenceAddString> {};
// clang-format on

namespace detail {

template <class TValue>
const TValue& ToC(const TValue& value) {
  return value;
}
inline const char* ToC(const std::string& value) { return value.c_str(); }

// An object that the C API makes and deletes.
template <class TObject, zelStatusCode (*kDelete)(TObject*)>
struct TDeleter {
  void operator()(TObject* object) const { kDelete(object); }
};
using TArrayOwner =
    std::unique_ptr<zelCIMValueArray, TDeleter<zelCIMValueArray, zelDeleteCIMValueArray>>;
using TDateTimeOwner =
    std::unique_ptr<zelCIMDateTime, TDeleter<zelCIMDateTime, zelDeleteCIMDateTime>>;
using TReferenceOwner =
    std::unique_ptr<zelCIMReference, TDeleter<zelCIMReference, zelDeleteCIMReference>>;

}  // namespace detail

// A moment, to the microsecond; `utcOffset` in minutes east of UTC.
struct TDateTime {
  uint16_t year = 0;
  uint16_t month = 0;
  uint32_t day = 0;
  uint16_t hour = 0;
  uint16_t minute = 0;
  uint16_t second = 0;
  uint32_t microseconds = 0;
  int16_t utcOffset = 0;
};

// In local time; nothing when it cannot be broken down.
inline std::optional<TDateTime> FromUnixTime(int64_t seconds, uint32_t microseconds = 0) {
  const time_t moment = static_cast<time_t>(seconds);
  tm local;
  if (!localtime_r(&moment, &local)) return std::nullopt;
  return TDateTime{static_cast<uint16_t>(local.tm_year + 1900),
                   static_cast<uint16_t>(local.tm_mon + 1),
                   static_cast<uint32_t>(local.tm_mday),
                   static_cast<uint16_t>(local.tm_hour),
                   static_cast<uint16_t>(local.tm_min),
                   static_cast<uint16_t>(local.tm_sec),
                   microseconds,
                   static_cast<int16_t>(local.tm_gmtoff / 60)};
}

// The path of an instance: TPath("KVRSG_Fan").Key("DeviceID", "fan0").
class TPath {
 public:
  explicit TPath(std::string className) : fClassName(std::move(className)) {}

  template <class TValue>
  TPath& Key(const char* name, TValue value) {
    fKeys.emplace_back(name, TKeyValue(std::in_place_type<TValue>, std::move(value)));
    return *this;
  }
  TPath& Key(const char* name, const char* value) { return Key(name, std::string(value)); }

  // Makes the reference for the container of `handle`.
  zelStatusCode Build(zelIOHandle* handle, detail::TReferenceOwner& result) const {
    zelCIMReference* reference = nullptr;
    zelStatusCode status = zelNewCIMReference(&reference, handle);
    result.reset(reference);
    if (status == zelStatusOK) status = zelSetReferenceClassName(reference, fClassName.c_str());
    for (const auto& [name, value] : fKeys) {
      if (status != zelStatusOK) break;
      status = std::visit(
          [&, key = name](const auto& native) {
            using TNative = std::decay_t<decltype(native)>;
            return TCFunctions<TNative>::kKey(reference, key, detail::ToC(native));
          },
          value);
    }
    return status;
  }

 private:
  using TKeyValue = std::variant<bool, uint8_t, int8_t, uint16_t, int16_t, uint32_t, int32_t,
                                 uint64_t, int64_t, std::string>;

  std::string fClassName;
  std::vector<std::pair<const char*, TKeyValue>> fKeys;
};

// The key values of the computer system.
struct TSystemKeys {
  const char* creationClassName = nullptr;
  const char* name = nullptr;
};

// The system is collected first; where that failed, the keys that it would have had.
inline TSystemKeys SystemKeys() {
  TSystemKeys keys;
  if (zelGetSystemCreationClassName(&keys.creationClassName) == zelStatusOK &&
      zelGetSystemName(&keys.name) == zelStatusOK) {
    return keys;
  }
  static const std::string host = HostName();
  return {"KVRSG_ComputerSystem", host.c_str()};
}

inline TPath SystemPath() {
  const TSystemKeys system = SystemKeys();
  return TPath(system.creationClassName)
      .Key("CreationClassName", system.creationClassName)
      .Key("Name", system.name);
}

// A device: keys SystemCreationClassName, SystemName, CreationClassName and DeviceID.
inline TPath DevicePath(const char* className, const std::string& deviceId) {
  const TSystemKeys system = SystemKeys();
  return TPath(className)
      .Key("SystemCreationClassName", system.creationClassName)
      .Key("SystemName", system.name)
      .Key("CreationClassName", className)
      .Key("DeviceID", deviceId);
}

// A thing that can be touched: keys CreationClassName and Tag.
inline TPath PhysicalPath(const char* className, const std::string& tag) {
  return TPath(className).Key("CreationClassName", className).Key("Tag", tag);
}

class TRecord {
 public:
  TRecord(zelIOHandle* handle, const char* className)
      : fHandle(handle), fClassName(className), fStatus(zelAddClass(handle, className)) {}

  template <class TValue>
  TRecord& Set(const char* name, const TValue& value) {
    return Then([&] { return TCFunctions<TValue>::kSet(fHandle, name, detail::ToC(value)); });
  }
  TRecord& Set(const char* name, const char* value) {
    return Then([&] { return zelAddStringProperty(fHandle, name, value); });
  }

  // What is not known stays NULL.
  template <class TValue>
  TRecord& Set(const char* name, const std::optional<TValue>& value) {
    return value ? Set(name, *value) : *this;
  }

  template <class TValue>
  TRecord& Set(const char* name, const std::vector<TValue>& values) {
    return Then([&] {
      zelCIMValueArray* array = nullptr;
      zelStatusCode status = zelNewCIMValueArray(&array);
      const detail::TArrayOwner owner(array);
      for (const TValue& value : values) {
        if (status == zelStatusOK) {
          status = TCFunctions<TValue>::kAppend(array, detail::ToC(value));
        }
      }
      return status == zelStatusOK ? zelAddArrayProperty(fHandle, name, array) : status;
    });
  }

  TRecord& Set(const char* name, const TDateTime& moment) {
    return Then([&] {
      zelCIMDateTime* datetime = nullptr;
      zelStatusCode status = zelNewCIMDateTime(&datetime);
      const detail::TDateTimeOwner owner(datetime);
      if (status == zelStatusOK) {
        status =
            zelSetDateTime(datetime, moment.year, moment.month, moment.day, moment.hour,
                           moment.minute, moment.second, moment.microseconds, moment.utcOffset);
      }
      return status == zelStatusOK ? zelAddDateTimeProperty(fHandle, name, datetime) : status;
    });
  }

  TRecord& Set(const char* name, const TPath& path) {
    return Then([&] {
      detail::TReferenceOwner reference;
      const zelStatusCode status = path.Build(fHandle, reference);
      return status == zelStatusOK ? zelAddReferenceProperty(fHandle, name, reference.get())
                                   : status;
    });
  }

  // For the types without a setter of their own: the text is converted to the declared type.
  TRecord& SetText(const char* name, const std::string& text) {
    return Then([&] { return zelAddProperty(fHandle, name, text.c_str()); });
  }
  TRecord& SetText(const char* name, const std::optional<std::string>& text) {
    return text ? SetText(name, *text) : *this;
  }

  TRecord& SetDeviceKeys(const std::string& deviceId) {
    const TSystemKeys system = SystemKeys();
    return Set("SystemCreationClassName", system.creationClassName)
        .Set("SystemName", system.name)
        .Set("CreationClassName", fClassName)
        .Set("DeviceID", deviceId);
  }

  TRecord& SetPhysicalKeys(const std::string& tag) {
    return Set("CreationClassName", fClassName).Set("Tag", tag);
  }

  zelStatusCode Status() const { return fStatus; }

 private:
  template <class TWork>
  TRecord& Then(TWork&& work) {
    if (fStatus == zelStatusOK) fStatus = work();
    return *this;
  }

  zelIOHandle* fHandle;
  const char* fClassName;
  zelStatusCode fStatus;
};

}  // namespace kit
