#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/plugin/Handle.h"
#include "tests/support/LogSpy.h"
#include "zelcore/TCIMDateTime.h"

namespace {

// That the call just made was answered with zelStatusFail and exactly one line.
void ExpectRefused(const std::string& message, zelStatusCode status) {
  EXPECT_EQ(zelStatusFail, status) << message;
  EXPECT_EQ(std::vector<std::string>{message}, LogLines());
  EXPECT_EQ(zelLogError, LastLogSeverity()) << message;
  ClearLog();
}

TEST(CApi, RefusesNullInItsFrame) {
  const char* text = nullptr;
  IPlugin* record = nullptr;
  ExpectRefused("zelGetSystemCreationClassName: NULL name parameter",
                zelGetSystemCreationClassName(nullptr));
  ExpectRefused("zelGetSystemName: NULL name parameter", zelGetSystemName(nullptr));
  ExpectRefused("zelGetPluginPath: NULL path parameter", zelGetPluginPath(nullptr, nullptr));
  ExpectRefused("zelGetPluginPath: NULL pluginHandle parameter", zelGetPluginPath(nullptr, &text));
  ExpectRefused("zelGetHandle: NULL pluginHandle and/or plugin parameter",
                zelGetHandle(nullptr, &record));
}

TEST(CApi, RefusesNullForInstancesAndProperties) {
  Handle handle;
  const TCIMValue value("a");
  zelCIMDateTime datetime;
  zelCIMValueArray array;
  zelCIMReference reference(&handle.Container());
  reference.SetClassName("Test_Thing");
  zelCIMReference* ref = &reference;
  ExpectRefused("zelAddClass: NULL zelIOHandle parameter", zelAddClass(nullptr, "Test_Thing"));
  ExpectRefused("zelAddClass: NULL zelIOHandle parameter", zelAddClass(nullptr, nullptr));
  ExpectRefused("zelAddClass: NULL name parameter", zelAddClass(handle, nullptr));
  ExpectRefused("zelAddProperty: NULL zelIOHandle parameter", zelAddProperty(nullptr, "Id", "a"));
  ExpectRefused("zelAddProperty: NULL zelIOHandle parameter",
                zelAddProperty(nullptr, nullptr, nullptr));
  ExpectRefused("zelAddProperty: NULL name and/or value parameter",
                zelAddProperty(handle, nullptr, "a"));
  ExpectRefused("zelAddProperty: NULL name and/or value parameter",
                zelAddProperty(handle, "Id", nullptr));
  ExpectRefused("zelAddProperty: NULL name and/or value parameter",
                zelAddProperty(handle, nullptr, nullptr));
  ExpectRefused("zelAddCIMValueProperty: NULL zelIOHandle parameter",
                zelAddCIMValueProperty(nullptr, "Id", &value));
  ExpectRefused("zelAddCIMValueProperty: NULL zelIOHandle parameter",
                zelAddCIMValueProperty(nullptr, nullptr, nullptr));
  ExpectRefused("zelAddCIMValueProperty: NULL name parameter",
                zelAddCIMValueProperty(handle, nullptr, &value));
  ExpectRefused("zelAddCIMValueProperty: NULL value parameter",
                zelAddCIMValueProperty(handle, "Id", nullptr));
  ExpectRefused("zelAddCIMValueProperty: NULL zelIOHandle parameter",
                zelAddBooleanProperty(nullptr, "Id", 1));
  ExpectRefused("zelAddCIMValueProperty: NULL name parameter",
                zelAddBooleanProperty(handle, nullptr, 1));
  ExpectRefused("zelAddCIMValueProperty: NULL zelIOHandle parameter",
                zelAddUint8Property(nullptr, "Id", 1));
  ExpectRefused("zelAddCIMValueProperty: NULL name parameter",
                zelAddUint8Property(handle, nullptr, 1));
  ExpectRefused("zelAddCIMValueProperty: NULL zelIOHandle parameter",
                zelAddSint8Property(nullptr, "Id", 1));
  ExpectRefused("zelAddCIMValueProperty: NULL name parameter",
                zelAddSint8Property(handle, nullptr, 1));
  ExpectRefused("zelAddCIMValueProperty: NULL zelIOHandle parameter",
                zelAddUint16Property(nullptr, "Id", 1));
  ExpectRefused("zelAddCIMValueProperty: NULL name parameter",
                zelAddUint16Property(handle, nullptr, 1));
  ExpectRefused("zelAddCIMValueProperty: NULL zelIOHandle parameter",
                zelAddSint16Property(nullptr, "Id", 1));
  ExpectRefused("zelAddCIMValueProperty: NULL name parameter",
                zelAddSint16Property(handle, nullptr, 1));
  ExpectRefused("zelAddCIMValueProperty: NULL zelIOHandle parameter",
                zelAddUint32Property(nullptr, "Id", 1));
  ExpectRefused("zelAddCIMValueProperty: NULL name parameter",
                zelAddUint32Property(handle, nullptr, 1));
  ExpectRefused("zelAddCIMValueProperty: NULL zelIOHandle parameter",
                zelAddSint32Property(nullptr, "Id", 1));
  ExpectRefused("zelAddCIMValueProperty: NULL name parameter",
                zelAddSint32Property(handle, nullptr, 1));
  ExpectRefused("zelAddCIMValueProperty: NULL zelIOHandle parameter",
                zelAddUint64Property(nullptr, "Id", 1));
  ExpectRefused("zelAddCIMValueProperty: NULL name parameter",
                zelAddUint64Property(handle, nullptr, 1));
  ExpectRefused("zelAddCIMValueProperty: NULL zelIOHandle parameter",
                zelAddSint64Property(nullptr, "Id", 1));
  ExpectRefused("zelAddCIMValueProperty: NULL name parameter",
                zelAddSint64Property(handle, nullptr, 1));
  ExpectRefused("zelAddStringProperty: NULL value and/or name parameter",
                zelAddStringProperty(handle, nullptr, "a"));
  ExpectRefused("zelAddStringProperty: NULL value and/or name parameter",
                zelAddStringProperty(handle, "Id", nullptr));
  ExpectRefused("zelAddStringProperty: NULL value and/or name parameter",
                zelAddStringProperty(nullptr, nullptr, nullptr));
  ExpectRefused("zelAddCIMValueProperty: NULL zelIOHandle parameter",
                zelAddStringProperty(nullptr, "Id", "a"));
  ExpectRefused("zelAddReferenceProperty: NULL name and/or pRef parameter",
                zelAddReferenceProperty(handle, nullptr, ref));
  ExpectRefused("zelAddReferenceProperty: NULL name and/or pRef parameter",
                zelAddReferenceProperty(handle, "Id", nullptr));
  ExpectRefused("zelAddReferenceProperty: NULL name and/or pRef parameter",
                zelAddReferenceProperty(nullptr, nullptr, nullptr));
  ExpectRefused("zelAddCIMValueProperty: NULL zelIOHandle parameter",
                zelAddReferenceProperty(nullptr, "Id", ref));
  ExpectRefused("zelAddDateTimeProperty: NULL name and/or pDateTime parameter",
                zelAddDateTimeProperty(handle, nullptr, &datetime));
  ExpectRefused("zelAddDateTimeProperty: NULL name and/or pDateTime parameter",
                zelAddDateTimeProperty(handle, "Id", nullptr));
  ExpectRefused("zelAddDateTimeProperty: NULL name and/or pDateTime parameter",
                zelAddDateTimeProperty(nullptr, nullptr, nullptr));
  ExpectRefused("zelAddCIMValueProperty: NULL zelIOHandle parameter",
                zelAddDateTimeProperty(nullptr, "Id", &datetime));
  ExpectRefused("zelAddArrayProperty: NULL name and/or pArray parameter",
                zelAddArrayProperty(handle, nullptr, &array));
  ExpectRefused("zelAddArrayProperty: NULL name and/or pArray parameter",
                zelAddArrayProperty(handle, "Id", nullptr));
  ExpectRefused("zelAddArrayProperty: NULL name and/or pArray parameter",
                zelAddArrayProperty(nullptr, nullptr, nullptr));
  ExpectRefused("zelAddCIMValueProperty: NULL zelIOHandle parameter",
                zelAddArrayProperty(nullptr, "Id", &array));
}

TEST(CApi, RefusesNullForArrays) {
  Handle handle;
  zelCIMDateTime datetime;
  zelCIMValueArray array;
  zelCIMReference reference(&handle.Container());
  reference.SetClassName("Test_Thing");
  zelCIMReference* ref = &reference;
  ExpectRefused("zelNewCIMValueArray: NULL array parameter", zelNewCIMValueArray(nullptr));
  ExpectRefused("zelDeleteCIMValueArray: NULL array parameter", zelDeleteCIMValueArray(nullptr));
  ExpectRefused("zelArrayAddBoolean: NULL array parameter", zelArrayAddBoolean(nullptr, 1));
  ExpectRefused("zelArrayAddUint8: NULL array parameter", zelArrayAddUint8(nullptr, 1));
  ExpectRefused("zelArrayAddUint8: NULL array parameter", zelArrayAddSint8(nullptr, 1));
  ExpectRefused("zelArrayAddUint16: NULL array parameter", zelArrayAddUint16(nullptr, 1));
  ExpectRefused("zelArrayAddSint16: NULL array parameter", zelArrayAddSint16(nullptr, 1));
  ExpectRefused("zelArrayAddUint32: NULL array parameter", zelArrayAddUint32(nullptr, 1));
  ExpectRefused("zelArrayAddSint32: NULL array parameter", zelArrayAddSint32(nullptr, 1));
  ExpectRefused("zelArrayAddUint64: NULL array parameter", zelArrayAddUint64(nullptr, 1));
  ExpectRefused("zelArrayAddSint64: NULL array parameter", zelArrayAddSint64(nullptr, 1));
  ExpectRefused("zelArrayAddString: NULL array and/or value parameter",
                zelArrayAddString(nullptr, "a"));
  ExpectRefused("zelArrayAddString: NULL array and/or value parameter",
                zelArrayAddString(&array, nullptr));
  ExpectRefused("zelArrayAddString: NULL array and/or value parameter",
                zelArrayAddString(nullptr, nullptr));
  ExpectRefused("zelArrayAddReference: NULL array and/or value parameter",
                zelArrayAddReference(nullptr, ref));
  ExpectRefused("zelArrayAddReference: NULL array and/or value parameter",
                zelArrayAddReference(&array, nullptr));
  ExpectRefused("zelArrayAddReference: NULL array and/or value parameter",
                zelArrayAddReference(nullptr, nullptr));
  ExpectRefused("zelArrayAddDateTime: NULL array and/or value parameter",
                zelArrayAddDateTime(nullptr, &datetime));
  ExpectRefused("zelArrayAddDateTime: NULL array and/or value parameter",
                zelArrayAddDateTime(&array, nullptr));
  ExpectRefused("zelArrayAddDateTime: NULL array and/or value parameter",
                zelArrayAddDateTime(nullptr, nullptr));
}

TEST(CApi, RefusesNullForDatetimes) {
  zelCIMDateTime datetime;
  ExpectRefused("zelNewCIMDateTime: NULL datetime parameter", zelNewCIMDateTime(nullptr));
  ExpectRefused("zelDeleteCIMDateTime: NULL datetime parameter", zelDeleteCIMDateTime(nullptr));
  ExpectRefused("zelGetLocalTime: NULL datetime ", zelGetLocalTime(nullptr));
  ExpectRefused("zelSetDateTime: NULL datetime parameter",
                zelSetDateTime(nullptr, 2004, 3, 15, 14, 25, 30, 0, 0));
  ExpectRefused("zelSetDateTimeInterval: NULL datetime parameter",
                zelSetDateTimeInterval(nullptr, 1, 2, 3, 4, 5));
  ExpectRefused("zelSetDateTimeString: NULL datetime and/or str parameter",
                zelSetDateTimeString(nullptr, "20040315142530.000000-300"));
  ExpectRefused("zelSetDateTimeString: NULL datetime and/or str parameter",
                zelSetDateTimeString(&datetime, nullptr));
  ExpectRefused("zelSetDateTimeString: NULL datetime and/or str parameter",
                zelSetDateTimeString(nullptr, nullptr));
}

TEST(CApi, RefusesNullForReferences) {
  Handle handle;
  zelCIMDateTime datetime;
  zelCIMReference reference(&handle.Container());
  reference.SetClassName("Test_Thing");
  zelCIMReference* ref = &reference;
  zelCIMReference* made = nullptr;
  ExpectRefused("zelNewCIMReference: NULL zelIOHandle parameter",
                zelNewCIMReference(&made, nullptr));
  ExpectRefused("zelNewCIMReference: NULL zelIOHandle parameter",
                zelNewCIMReference(nullptr, nullptr));
  ExpectRefused("zelNewCIMReference: NULL ref parameter", zelNewCIMReference(nullptr, handle));
  ExpectRefused("zelDeleteCIMReference: NULL ref parameter", zelDeleteCIMReference(nullptr));
  ExpectRefused("zelSetReferencePath: NULL ref and/or objectName parameter",
                zelSetReferencePath(nullptr, "Test_Thing"));
  ExpectRefused("zelSetReferencePath: NULL ref and/or objectName parameter",
                zelSetReferencePath(ref, nullptr));
  ExpectRefused("zelSetReferencePath: NULL ref and/or objectName parameter",
                zelSetReferencePath(nullptr, nullptr));
  ExpectRefused("zelSetReferenceClassName: NULL ref and/or className parameter",
                zelSetReferenceClassName(nullptr, "Test_Thing"));
  ExpectRefused("zelSetReferenceClassName: NULL ref and/or className parameter",
                zelSetReferenceClassName(ref, nullptr));
  ExpectRefused("zelSetReferenceClassName: NULL ref and/or className parameter",
                zelSetReferenceClassName(nullptr, nullptr));
  ExpectRefused("zelReferenceAddBoolean: NULL ref and/or key parameter",
                zelReferenceAddBoolean(nullptr, "Id", 1));
  ExpectRefused("zelReferenceAddBoolean: NULL ref and/or key parameter",
                zelReferenceAddBoolean(ref, nullptr, 1));
  ExpectRefused("zelReferenceAddUint8: NULL ref and/or key parameter",
                zelReferenceAddUint8(nullptr, "Id", 1));
  ExpectRefused("zelReferenceAddUint8: NULL ref and/or key parameter",
                zelReferenceAddUint8(ref, nullptr, 1));
  ExpectRefused("zelReferenceAddSint8: NULL ref and/or key parameter",
                zelReferenceAddSint8(nullptr, "Id", 1));
  ExpectRefused("zelReferenceAddSint8: NULL ref and/or key parameter",
                zelReferenceAddSint8(ref, nullptr, 1));
  ExpectRefused("zelReferenceAddUint16: NULL ref and/or key parameter",
                zelReferenceAddUint16(nullptr, "Id", 1));
  ExpectRefused("zelReferenceAddUint16: NULL ref and/or key parameter",
                zelReferenceAddUint16(ref, nullptr, 1));
  ExpectRefused("zelReferenceAddSint16: NULL ref and/or key parameter",
                zelReferenceAddSint16(nullptr, "Id", 1));
  ExpectRefused("zelReferenceAddSint16: NULL ref and/or key parameter",
                zelReferenceAddSint16(ref, nullptr, 1));
  ExpectRefused("zelReferenceAddUint32: NULL ref and/or key parameter",
                zelReferenceAddUint32(nullptr, "Id", 1));
  ExpectRefused("zelReferenceAddUint32: NULL ref and/or key parameter",
                zelReferenceAddUint32(ref, nullptr, 1));
  ExpectRefused("zelReferenceAddSint32: NULL ref and/or key parameter",
                zelReferenceAddSint32(nullptr, "Id", 1));
  ExpectRefused("zelReferenceAddSint32: NULL ref and/or key parameter",
                zelReferenceAddSint32(ref, nullptr, 1));
  ExpectRefused("zelReferenceAddUint64: NULL ref and/or key parameter",
                zelReferenceAddUint64(nullptr, "Id", 1));
  ExpectRefused("zelReferenceAddUint64: NULL ref and/or key parameter",
                zelReferenceAddUint64(ref, nullptr, 1));
  ExpectRefused("zelReferenceAddSint64: NULL ref and/or key parameter",
                zelReferenceAddSint64(nullptr, "Id", 1));
  ExpectRefused("zelReferenceAddSint64: NULL ref and/or key parameter",
                zelReferenceAddSint64(ref, nullptr, 1));
  ExpectRefused("zelReferenceAddString: NULL ref, key and/or value parameter",
                zelReferenceAddString(nullptr, "Id", "a"));
  ExpectRefused("zelReferenceAddString: NULL ref, key and/or value parameter",
                zelReferenceAddString(ref, nullptr, "a"));
  ExpectRefused("zelReferenceAddString: NULL ref, key and/or value parameter",
                zelReferenceAddString(ref, "Id", nullptr));
  ExpectRefused("zelReferenceAddReference: NULL ref, key and/or value parameter",
                zelReferenceAddReference(nullptr, "Id", ref));
  ExpectRefused("zelReferenceAddReference: NULL ref, key and/or value parameter",
                zelReferenceAddReference(ref, nullptr, ref));
  ExpectRefused("zelReferenceAddReference: NULL ref, key and/or value parameter",
                zelReferenceAddReference(ref, "Id", nullptr));
  ExpectRefused("zelReferenceAddDateTime: NULL ref, key and/or value parameter",
                zelReferenceAddDateTime(nullptr, "Id", &datetime));
  ExpectRefused("zelReferenceAddDateTime: NULL ref, key and/or value parameter",
                zelReferenceAddDateTime(ref, nullptr, &datetime));
  ExpectRefused("zelReferenceAddDateTime: NULL ref, key and/or value parameter",
                zelReferenceAddDateTime(ref, "Id", nullptr));
}

}  // namespace
