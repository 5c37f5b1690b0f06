#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <fstream>
#include <string>
#include <vector>

#include "tests/plugin/Handle.h"
#include "tests/support/LogSpy.h"
#include "tests/support/TimeZone.h"
#include "zelcore/TCIMDateTime.h"
#include "zelcore/TOSSpecific.h"

namespace {

// ---- Arrays

TEST(ValueArray, HoldsWhatWasAddedInOrderWithItsTypes) {
  Handle handle;
  zelCIMReference* ref = nullptr;
  ASSERT_EQ(zelStatusOK, zelNewCIMReference(&ref, handle));
  zelSetReferenceClassName(ref, "Test_Thing");
  zelReferenceAddString(ref, "Id", "a");
  zelCIMDateTime* datetime = nullptr;
  ASSERT_EQ(zelStatusOK, zelNewCIMDateTime(&datetime));
  zelSetDateTimeInterval(datetime, 1, 2, 3, 4, 5);

  zelCIMValueArray* array = nullptr;
  ASSERT_EQ(zelStatusOK, zelNewCIMValueArray(&array));
  EXPECT_TRUE(array->empty());
  for (const zelStatusCode status :
       {zelArrayAddBoolean(array, 2), zelArrayAddBoolean(array, 0), zelArrayAddUint8(array, 255),
        zelArrayAddSint8(array, -128), zelArrayAddUint16(array, 65535),
        zelArrayAddSint16(array, -32768), zelArrayAddUint32(array, 4294967295u),
        zelArrayAddSint32(array, -2147483647), zelArrayAddUint64(array, 18446744073709551615u),
        zelArrayAddSint64(array, -9223372036854775807), zelArrayAddString(array, "text"),
        zelArrayAddReference(array, ref), zelArrayAddDateTime(array, datetime)}) {
    EXPECT_EQ(zelStatusOK, status);
  }
  // The array holds copies.
  EXPECT_EQ(zelStatusOK, zelDeleteCIMReference(ref));
  EXPECT_EQ(zelStatusOK, zelDeleteCIMDateTime(datetime));

  const struct {
    TType::ECIMType type;
    const char* text;
  } kWanted[] = {
      {TType::TypeBoolean,   "true"                     },
      {TType::TypeBoolean,   "false"                    },
      {TType::TypeUint8,     "255"                      },
      {TType::TypeSint8,     "-128"                     },
      {TType::TypeUint16,    "65535"                    },
      {TType::TypeSint16,    "-32768"                   },
      {TType::TypeUint32,    "4294967295"               },
      {TType::TypeSint32,    "-2147483647"              },
      {TType::TypeUint64,    "18446744073709551615"     },
      {TType::TypeSint64,    "-9223372036854775807"     },
      {TType::TypeString,    "text"                     },
      {TType::TypeReference, "Test_Thing.Id=\"a\""      },
      {TType::TypeDateTime,  "00000001020304.000005:000"},
  };
  ASSERT_EQ(std::size(kWanted), array->size());
  for (std::size_t i = 0; i < array->size(); ++i) {
    EXPECT_EQ(kWanted[i].type, (*array)[i].GetType()) << i;
    EXPECT_EQ(kWanted[i].text, (*array)[i].ToString(10)) << i;
  }
  EXPECT_EQ(zelStatusOK, zelDeleteCIMValueArray(array));
  EXPECT_TRUE(LogLines().empty());
}

TEST(ValueArray, RefusesAReferenceWithoutAClass) {
  Handle handle;
  zelCIMReference ref(&handle.Container());
  zelCIMValueArray array;
  EXPECT_EQ(zelStatusInvalidReference, zelArrayAddReference(&array, &ref));
  EXPECT_TRUE(array.empty());
  EXPECT_EQ(std::vector<std::string>{"GetClass() called before container set"}, LogLines());
}

// ---- Datetimes

class Datetime : public testing::Test {
 protected:
  Datetime() { zelNewCIMDateTime(&fDatetime); }
  ~Datetime() override { zelDeleteCIMDateTime(fDatetime); }

  zelCIMDateTime* fDatetime = nullptr;
};

TEST_F(Datetime, IsNullWhenNew) { EXPECT_TRUE(fDatetime->IsNull()); }

TEST_F(Datetime, IsSetFromItsFields) {
  EXPECT_EQ(zelStatusOK, zelSetDateTime(fDatetime, 2004, 3, 15, 14, 25, 30, 123456, -300));
  EXPECT_EQ("20040315142530.123456-300", fDatetime->ToString());
  EXPECT_EQ(zelStatusOK, zelSetDateTime(fDatetime, 1999, 12, 31, 1, 2, 3, 4, 330));
  EXPECT_EQ("19991231010203.000004+330", fDatetime->ToString());
  EXPECT_EQ(1999, fDatetime->GetYear());
  EXPECT_EQ(12, fDatetime->GetMonth());
  EXPECT_EQ(31u, fDatetime->GetDay());
  EXPECT_EQ(1, fDatetime->GetHour());
  EXPECT_EQ(2, fDatetime->GetMinute());
  EXPECT_EQ(3, fDatetime->GetSecond());
  EXPECT_EQ(4u, fDatetime->GetMicroSeconds());
  EXPECT_EQ(330, fDatetime->GetUTCOffset());
  EXPECT_FALSE(fDatetime->IsInterval());
}

TEST_F(Datetime, IsSetAsAnInterval) {
  EXPECT_EQ(zelStatusOK, zelSetDateTimeInterval(fDatetime, 12345678, 23, 59, 58, 999999));
  EXPECT_EQ("12345678235958.999999:000", fDatetime->ToString());
  EXPECT_TRUE(fDatetime->IsInterval());
}

TEST_F(Datetime, IsSetFromText) {
  EXPECT_EQ(zelStatusOK, zelSetDateTimeString(fDatetime, "20040315142530.000000-300"));
  EXPECT_EQ("20040315142530.000000-300", fDatetime->ToString());
  EXPECT_EQ(zelStatusOK, zelSetDateTimeString(fDatetime, "00000001020304.500000:000"));
  EXPECT_TRUE(fDatetime->IsInterval());
}

TEST_F(Datetime, KeepsItsValueWhenANewOneIsRefused) {
  zelSetDateTime(fDatetime, 2004, 3, 15, 14, 25, 30, 0, -300);
  {
    const TimeZone zone("UTC");  // the second before the epoch: mktime() answers -1
    EXPECT_EQ(zelStatusInvalidDateTime, zelSetDateTime(fDatetime, 1969, 12, 31, 23, 59, 59, 0, 0));
  }
  EXPECT_EQ(zelStatusInvalidDateTime, zelSetDateTimeInterval(fDatetime, 1, 24, 0, 0, 0));
  EXPECT_EQ(zelStatusInvalidDateTime, zelSetDateTimeInterval(fDatetime, 1, 0, 60, 0, 0));
  EXPECT_EQ(zelStatusInvalidDateTime, zelSetDateTimeInterval(fDatetime, 1, 0, 0, 60, 0));
  EXPECT_EQ(zelStatusInvalidDateTime, zelSetDateTimeInterval(fDatetime, 1, 0, 0, 0, 1000000));
  EXPECT_EQ(zelStatusInvalidDateTime, zelSetDateTimeString(fDatetime, ""));
  EXPECT_EQ(zelStatusInvalidDateTime, zelSetDateTimeString(fDatetime, "2004-03-15 14:25:30"));
  EXPECT_EQ("20040315142530.000000-300", fDatetime->ToString());
  EXPECT_TRUE(LogLines().empty());
}

TEST_F(Datetime, TakesTheLocalTimeInEveryZone) {
  for (const char* zoneName : {"UTC", "America/New_York", "Asia/Kolkata"}) {
    const TimeZone zone(zoneName);
    const std::string before = TOSSpecific::GetLocalTime().ToString();
    ASSERT_EQ(zelStatusOK, zelGetLocalTime(fDatetime));
    const std::string after = TOSSpecific::GetLocalTime().ToString();
    EXPECT_LE(before, fDatetime->ToString()) << zoneName;
    EXPECT_GE(after, fDatetime->ToString()) << zoneName;
  }
}

// ---- Without memory

TEST(CApi, AnswersThatThereIsNoMemory) {
#ifdef __SANITIZE_ADDRESS__
  GTEST_SKIP() << "the address space cannot be limited under AddressSanitizer";
#endif
  constexpr std::size_t kSize = 64 << 20;
  Handle handle;
  zelAddClass(handle, "Test_Thing");
  zelAddStringProperty(handle, "Id", "a");
  zelAddStringProperty(handle, "string", "former");
  zelCIMValueArray array;
  zelCIMDateTime datetime;
  zelCIMReference ref(&handle.Container());
  ref.SetClassName("Test_Thing");
  const std::string huge(kSize, 'x');
  ClearLog();

  std::size_t pages = 0;
  std::ifstream("/proc/self/statm") >> pages;
  rlimit former{};
  getrlimit(RLIMIT_AS, &former);
  rlimit tight = former;
  tight.rlim_cur = pages * static_cast<std::size_t>(sysconf(_SC_PAGESIZE)) + kSize / 2;
  setrlimit(RLIMIT_AS, &tight);
  const zelStatusCode answers[] = {
      zelAddClass(handle, huge.c_str()),
      zelAddProperty(handle, "string", huge.c_str()),
      zelAddProperty(handle, huge.c_str(), "a"),
      zelAddStringProperty(handle, "string", huge.c_str()),
      zelAddUint8Property(handle, huge.c_str(), 1),
      zelArrayAddString(&array, huge.c_str()),
      zelSetDateTimeString(&datetime, huge.c_str()),
      zelSetReferencePath(&ref, huge.c_str()),
      zelSetReferenceClassName(&ref, huge.c_str()),
      zelReferenceAddString(&ref, "Id", huge.c_str()),
      zelReferenceAddString(&ref, huge.c_str(), "a"),
  };
  setrlimit(RLIMIT_AS, &former);
  for (const zelStatusCode answer : answers) {
    EXPECT_EQ(zelStatusOutOfMemory, answer);
  }
  EXPECT_TRUE(LogLines().empty());
  EXPECT_EQ("former", static_cast<std::string>(handle.Value("string")));
  EXPECT_TRUE(array.empty());
}

// ---- References

class Reference : public testing::Test {
 protected:
  Reference() { zelNewCIMReference(&fRef, fHandle); }
  ~Reference() override { zelDeleteCIMReference(fRef); }

  Handle fHandle;
  zelCIMReference* fRef = nullptr;
};

TEST_F(Reference, IsBuiltFromClassAndKeys) {
  EXPECT_EQ(zelStatusOK, zelSetReferenceClassName(fRef, "test_thing"));
  EXPECT_EQ(zelStatusOK, zelReferenceAddString(fRef, "Id", "a"));
  EXPECT_EQ("Test_Thing.Id=\"a\"", fRef->GetPath());
  EXPECT_TRUE(LogLines().empty());
}

TEST_F(Reference, NeverTakesAWholePath) {
  EXPECT_EQ(zelStatusNotImplemented, zelSetReferencePath(fRef, "Test_Thing.Id=\"a\""));
  EXPECT_TRUE(LogLines().empty());
}

TEST_F(Reference, AnswersTheModelsCodes) {
  EXPECT_EQ(zelStatusInvalidOpSequence, zelReferenceAddString(fRef, "Id", "too early"));
  EXPECT_EQ(zelStatusNotFound, zelSetReferenceClassName(fRef, "Test_Nothing"));
  EXPECT_EQ(zelStatusOK, zelSetReferenceClassName(fRef, "Test_Thing"));
  EXPECT_EQ(zelStatusNotFound, zelReferenceAddString(fRef, "Colour", "red"));
  EXPECT_EQ(zelStatusTypeMismatch, zelReferenceAddUint8(fRef, "Id", 1));
  EXPECT_EQ(zelStatusInvalidOpSequence, zelReferenceAddUint8(fRef, "uint8", 1));
  EXPECT_TRUE(fRef->EnumerateKeyBindings().empty());
  EXPECT_EQ(zelStatusOK, zelReferenceAddString(fRef, "Id", "a"));
  EXPECT_EQ(zelStatusInvalidOpSequence, zelSetReferenceClassName(fRef, "Test_Thing"));
}

TEST_F(Reference, BindsKeysOfEveryType) {
  TContainer& container = fHandle.Container();
  TCIMClass* cls = container.AllocateClass("Test_Keys", nullptr);
  const auto declare = [&](const std::string& name, const TCIMValue& value) {
    auto* decl = new TCIMPropertyDecl(name, *cls, value);
    decl->AddQualifier(*new TCIMQualifier(*container.GetQualifierDecl("KEY"), TCIMValue(true)));
    decl->AddToContainer();
  };
  cls->AddQualifier(
      *new TCIMQualifier(*container.GetQualifierDecl("ASSOCIATION"), TCIMValue(true)));
  for (const char* name : {"boolean", "uint8", "sint8", "uint16", "sint16", "uint32", "sint32",
                           "uint64", "sint64", "string", "datetime"}) {
    declare(name, TCIMValue(TType(name), 0));
  }
  TCIMValue toThing(TType::TypeReference, 0);
  toThing.SetReferencedClass(*container.GetClass("Test_Thing"));
  declare("reference", toThing);
  cls->AddToContainer();

  zelCIMReference thing(&container);
  thing.SetClassName("Test_Thing");
  const zelCIMDateTime datetime("20040315142530.000000-300");
  zelSetReferenceClassName(fRef, "Test_Keys");
  for (const zelStatusCode status :
       {zelReferenceAddBoolean(fRef, "boolean", -1), zelReferenceAddUint8(fRef, "uint8", 255),
        zelReferenceAddSint8(fRef, "sint8", -128), zelReferenceAddUint16(fRef, "uint16", 65535),
        zelReferenceAddSint16(fRef, "sint16", -32768),
        zelReferenceAddUint32(fRef, "uint32", 4294967295u),
        zelReferenceAddSint32(fRef, "sint32", -2147483647),
        zelReferenceAddUint64(fRef, "uint64", 18446744073709551615u),
        zelReferenceAddSint64(fRef, "sint64", -9223372036854775807),
        zelReferenceAddString(fRef, "string", "text"),
        zelReferenceAddReference(fRef, "reference", &thing),
        zelReferenceAddDateTime(fRef, "datetime", &datetime)}) {
    EXPECT_EQ(zelStatusOK, status);
  }
  const std::map<std::string, std::string> wanted = {
      {"boolean",   "true"                     },
      {"uint8",     "255"                      },
      {"sint8",     "-128"                     },
      {"uint16",    "65535"                    },
      {"sint16",    "-32768"                   },
      {"uint32",    "4294967295"               },
      {"sint32",    "-2147483647"              },
      {"uint64",    "18446744073709551615"     },
      {"sint64",    "-9223372036854775807"     },
      {"string",    "text"                     },
      {"reference", "Test_Thing"               },
      {"datetime",  "20040315142530.000000-300"},
  };
  std::map<std::string, std::string> bound;
  for (const auto& [name, value] : fRef->EnumerateKeyBindings()) bound[name] = value.ToString(10);
  EXPECT_EQ(wanted, bound);
}

TEST_F(Reference, KeepsItsContainerWhereverItIsUsed) {
  zelSetReferenceClassName(fRef, "Test_Thing");
  zelReferenceAddString(fRef, "Id", "a");
  zelAddClass(fHandle, "Test_Thing");
  zelAddStringProperty(fHandle, "Id", "a");
  TCIMInstance* thing = fHandle->GetCurrentInstance();
  fHandle->CommitCurrentInstance();

  // An association of another container whose declaration accepts any class.
  Handle other;
  TCIMClass* cls = other.Container().AllocateClass("Test_Any", nullptr);
  cls->AddQualifier(
      *new TCIMQualifier(*other.Container().GetQualifierDecl("ASSOCIATION"), TCIMValue(true)));
  auto* decl = new TCIMPropertyDecl("Any", *cls, TCIMValue(TType::TypeReference, 0));
  decl->AddQualifier(
      *new TCIMQualifier(*other.Container().GetQualifierDecl("KEY"), TCIMValue(true)));
  decl->AddToContainer();
  cls->AddToContainer();
  zelAddClass(other, "Test_Any");
  ASSERT_EQ(zelStatusOK, zelAddReferenceProperty(other, "Any", fRef));
  const TCIMReference stored = other.Value("Any");
  EXPECT_EQ(static_cast<ICIMElement*>(thing), stored.GetCIMElement());
}

}  // namespace
