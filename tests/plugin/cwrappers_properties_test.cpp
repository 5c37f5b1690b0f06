#include <gtest/gtest.h>

#include <new>
#include <string>
#include <vector>

#include "tests/plugin/Handle.h"
#include "tests/support/LogSpy.h"
#include "zelcore/TCIMDateTime.h"
#include "zelcore/TCPluginCallbacks.h"
#include "zelcore/TZELException.h"

namespace {

using Lines = std::vector<std::string>;

// ---- Instances

TEST(AddClass, StartsAnInstanceAndCommitsItWithTheNext) {
  Handle handle;
  ASSERT_EQ(zelStatusOK, zelAddClass(handle, "Test_Thing"));
  TCIMInstance* first = handle->GetCurrentInstance();
  ASSERT_NE(nullptr, first);
  EXPECT_EQ("Test_Thing", first->GetClass()->GetName());
  EXPECT_EQ(zelStatusOK, zelAddStringProperty(handle, "Id", "a"));
  EXPECT_TRUE(handle.Instances("Test_Thing").empty());

  ASSERT_EQ(zelStatusOK, zelAddClass(handle, "TEST_thing"));
  EXPECT_EQ(std::vector<TCIMInstance*>{first}, handle.Instances("Test_Thing"));
  EXPECT_NE(first, handle->GetCurrentInstance());
  EXPECT_TRUE(LogLines().empty());
}

TEST(AddClass, KeepsAnInstanceThatCannotBeCommittedSoThatItCanBeMended) {
  Handle handle;
  zelAddClass(handle, "Test_Thing");
  TCIMInstance* first = handle->GetCurrentInstance();
  EXPECT_EQ(zelStatusInvalidInstance, zelAddClass(handle, "Test_Link"));
  EXPECT_EQ("zelAddClass: CIM class Test_Thing threw exception zelStatusInvalidInstance",
            LastLogLine());
  EXPECT_EQ(zelLogError, LastLogSeverity());
  EXPECT_EQ(first, handle->GetCurrentInstance());

  EXPECT_EQ(zelStatusOK, zelAddStringProperty(handle, "Id", "mended"));
  EXPECT_EQ(zelStatusOK, zelAddClass(handle, "Test_Link"));
  EXPECT_EQ(std::vector<TCIMInstance*>{first}, handle.Instances("Test_Thing"));
}

TEST(AddClass, ReportsAnUnknownClass) {
  Handle handle;
  EXPECT_EQ(zelStatusNotFound, zelAddClass(handle, "Test_Nothing"));
  EXPECT_EQ("zelAddClass: GetClass(Test_Nothing) threw exception zelStatusNotFound", LastLogLine());
  EXPECT_EQ(zelLogError, LastLogSeverity());
  EXPECT_EQ(nullptr, handle->GetCurrentInstance());
  EXPECT_EQ(zelStatusInvalidCIMName, zelAddClass(handle, "not a name"));
  EXPECT_EQ("zelAddClass: GetClass(not a name) threw exception zelStatusInvalidCIMName",
            LastLogLine());
}

TEST(AddClass, LeavesTheCommittedInstanceCurrentWhenTheNextClassIsUnknown) {
  Handle handle;
  zelAddClass(handle, "Test_Thing");
  TCIMInstance* first = handle->GetCurrentInstance();
  zelAddStringProperty(handle, "Id", "a");
  EXPECT_EQ(zelStatusNotFound, zelAddClass(handle, "Test_Nothing"));
  EXPECT_EQ(first, handle->GetCurrentInstance());
  EXPECT_EQ(1u, handle.Instances("Test_Thing").size());

  // It takes properties still, and is not committed again.
  EXPECT_EQ(zelStatusOK, zelAddUint8Property(handle, "uint8", 7));
  EXPECT_EQ(zelStatusOK, zelAddClass(handle, "Test_Thing"));
  EXPECT_EQ(std::vector<TCIMInstance*>{first}, handle.Instances("Test_Thing"));
  EXPECT_EQ(7, static_cast<unsigned char>(first->GetProperty("uint8")->GetValue()));
}

// Cannot make instances: throws `what` instead.
template <class TException>
class BarrenContainer : public TContainer {
 public:
  explicit BarrenContainer(const TException& what) : fWhat(what) {}
  TCIMInstance* AllocateInstance(TCIMClass*) const override { throw fWhat; }

 private:
  TException fWhat;
};

template <class TException>
zelStatusCode AddClassWhereItThrows(const TException& what) {
  BarrenContainer<TException> container(what);
  auto* keyDecl = container.AllocateQualifierDecl("KEY", TCIMValue(TType::TypeBoolean, 0),
                                                  TCIMQualifierDecl::ScopeProperty,
                                                  TCIMQualifierDecl::FlavorNone);
  keyDecl->AddToContainer();
  TCIMClass* cls = container.AllocateClass("Test_Class", nullptr);
  auto* decl = new TCIMPropertyDecl("Id", *cls, TCIMValue(TType::TypeString, 0));
  decl->AddQualifier(*new TCIMQualifier(*keyDecl, TCIMValue(true)));
  decl->AddToContainer();
  cls->AddToContainer();
  zeliIOHandle handle(&container, nullptr);
  const zelStatusCode status = zelAddClass(&handle, "test_class");
  EXPECT_EQ(nullptr, handle.GetCurrentInstance());
  return status;
}

TEST(AddClass, ReportsAnInstanceThatCannotBeMade) {
  EXPECT_EQ(zelStatusNotSupported, AddClassWhereItThrows(TZELException(zelStatusNotSupported)));
  EXPECT_EQ(
      "zelAddClass: Allocate instance (CIM class test_class) threw exception "
      "zelStatusNotSupported",
      LastLogLine());
  EXPECT_EQ(zelLogError, LastLogSeverity());

  ClearLog();
  EXPECT_EQ(zelStatusOutOfMemory, AddClassWhereItThrows(std::bad_alloc()));
  EXPECT_EQ(Lines{"zelAddClass: CIM class test_class: no memory"}, LogLines());
  EXPECT_EQ(zelLogError, LastLogSeverity());

  EXPECT_EQ(zelStatusFail, AddClassWhereItThrows(42));
}

TEST(Handle, DestroysWhatWasNotCommitted) {
  // Leaks and double frees show under the sanitizers.
  Handle handle;
  zelAddClass(handle, "Test_Thing");
  zelAddStringProperty(handle, "Id", "dropped");
}

TEST(Handle, CommitsOnlyOnce) {
  Handle handle;
  handle->CommitCurrentInstance();
  zelAddClass(handle, "Test_Thing");
  zelAddStringProperty(handle, "Id", "a");
  handle->CommitCurrentInstance();
  handle->CommitCurrentInstance();
  EXPECT_EQ(1u, handle.Instances("Test_Thing").size());
}

// ---- Typed setters

TEST(TypedSetters, SetEachTypeToItsLimits) {
  Handle handle;
  zelAddClass(handle, "Test_Thing");
  const auto expect = [&](const char* name, const std::string& text, zelStatusCode status) {
    EXPECT_EQ(zelStatusOK, status) << name;
    EXPECT_EQ(text, handle.Value(name).ToString(10)) << name;
  };
  expect("boolean", "true", zelAddBooleanProperty(handle, "boolean", 2));
  expect("boolean", "true", zelAddBooleanProperty(handle, "boolean", -1));
  expect("boolean", "true", zelAddBooleanProperty(handle, "boolean", 256));
  expect("boolean", "false", zelAddBooleanProperty(handle, "boolean", 0));
  expect("uint8", "255", zelAddUint8Property(handle, "uint8", 255));
  expect("sint8", "-128", zelAddSint8Property(handle, "sint8", -128));
  expect("uint16", "65535", zelAddUint16Property(handle, "uint16", 65535));
  expect("sint16", "-32768", zelAddSint16Property(handle, "sint16", -32768));
  expect("uint32", "4294967295", zelAddUint32Property(handle, "uint32", 4294967295u));
  expect("sint32", "-2147483648", zelAddSint32Property(handle, "sint32", -2147483647 - 1));
  expect("uint64", "18446744073709551615",
         zelAddUint64Property(handle, "uint64", 18446744073709551615u));
  expect("sint64", "-9223372036854775808",
         zelAddSint64Property(handle, "sint64", -9223372036854775807 - 1));
  expect("string", "so long", zelAddStringProperty(handle, "STRING", "so long"));
  expect("string", "", zelAddStringProperty(handle, "string", ""));

  zelCIMDateTime datetime("20040315142530.000000-300");
  expect("datetime", "20040315142530.000000-300",
         zelAddDateTimeProperty(handle, "datetime", &datetime));
  EXPECT_TRUE(LogLines().empty());
}

TEST(TypedSetters, NeedACurrentInstance) {
  Handle handle;
  zelCIMReference ref(&handle.Container());
  ref.SetClassName("Test_Thing");
  const zelCIMDateTime datetime("20040315142530.000000-300");
  const zelCIMValueArray array;
  const TCIMValue value("a");
  const auto expect = [](zelStatusCode status) {
    EXPECT_EQ(zelStatusInvalidClass, status);
    EXPECT_EQ(Lines{"zelAddProperty: no current instance"}, LogLines());
    EXPECT_EQ(zelLogError, LastLogSeverity());
    ClearLog();
  };
  expect(zelAddProperty(handle, "Id", "a"));
  expect(zelAddCIMValueProperty(handle, "Id", &value));
  expect(zelAddBooleanProperty(handle, "Id", 1));
  expect(zelAddSint64Property(handle, "Id", 1));
  expect(zelAddStringProperty(handle, "Id", "a"));
  expect(zelAddReferenceProperty(handle, "Id", &ref));
  expect(zelAddDateTimeProperty(handle, "Id", &datetime));
  expect(zelAddArrayProperty(handle, "Id", &array));
}

TEST(TypedSetters, AreRefusedWithTheClassInTheLine) {
  Handle handle;
  zelAddClass(handle, "Test_Thing");
  zelAddUint32Property(handle, "uint32", 5);
  const auto expect = [&](const char* name, zelStatusCode wanted, zelStatusCode status) {
    EXPECT_EQ(wanted, status);
    EXPECT_EQ(std::string("AddProperty: CIM class Test_Thing threw exception ") + name,
              LastLogLine());
    EXPECT_EQ(zelLogError, LastLogSeverity());
    EXPECT_EQ("5", handle.Value("uint32").ToString(10));  // the former value stays
  };
  const zelCIMValueArray empty;
  expect("zelStatusTypeMismatch", zelStatusTypeMismatch, zelAddUint16Property(handle, "uint32", 1));
  expect("zelStatusTypeMismatch", zelStatusTypeMismatch,
         zelAddStringProperty(handle, "uint32", "1"));
  expect("zelStatusTypeMismatch", zelStatusTypeMismatch,
         zelAddUint32Property(handle, "uint32s", 1));
  expect("zelStatusTypeMismatch", zelStatusTypeMismatch,
         zelAddArrayProperty(handle, "uint32", &empty));
  expect("zelStatusNotFound", zelStatusNotFound, zelAddUint32Property(handle, "Colour", 1));
  expect("zelStatusNotFound", zelStatusNotFound, zelAddArrayProperty(handle, "Colour", &empty));
  expect("zelStatusInvalidCIMName", zelStatusInvalidCIMName,
         zelAddUint32Property(handle, "no name", 1));
}

TEST(AddCIMValueProperty, CopiesTheValue) {
  Handle handle;
  zelAddClass(handle, "Test_Thing");
  TCIMValue value("kept");
  EXPECT_EQ(zelStatusOK, zelAddCIMValueProperty(handle, "Id", &value));
  EXPECT_EQ("kept", static_cast<std::string>(value));
  value.Set("changed");
  EXPECT_EQ("kept", static_cast<std::string>(handle.Value("Id")));
}

// A value that cannot be printed is refused, whether somebody follows the trace or not.
TEST(AddCIMValueProperty, RefusesAnUnprintableValueAtEveryThreshold) {
  for (const zelLogSeverity threshold : {zelLogError, zelLogStatus, zelLogVerbose}) {
    RestartLog();
    SetLogThreshold(threshold);
    Handle handle;
    const TCIMValue null(TType::TypeString, 0);
    EXPECT_EQ(zelStatusValueIsNULL, zelAddCIMValueProperty(handle, "string", &null));
    EXPECT_TRUE(LogLines().empty());  // there is no class to name

    zelAddClass(handle, "Test_Thing");
    zelAddStringProperty(handle, "string", "former");
    EXPECT_EQ(zelStatusValueIsNULL, zelAddCIMValueProperty(handle, "string", &null));
    EXPECT_EQ(Lines{"AddProperty: CIM class Test_Thing threw exception zelStatusValueIsNULL"},
              LogLines());
    EXPECT_EQ("former", static_cast<std::string>(handle.Value("string")));

    ClearLog();
    const zelCIMDateTime unset;
    EXPECT_EQ(zelStatusInvalidDateTime, zelAddDateTimeProperty(handle, "datetime", &unset));
    EXPECT_EQ(Lines{"AddProperty: CIM class Test_Thing threw exception zelStatusInvalidDateTime"},
              LogLines());

    ClearLog();
    const zelCIMValueArray holed = {TCIMValue(TType::TypeString, 0)};
    EXPECT_EQ(zelStatusValueIsNULL, zelAddArrayProperty(handle, "strings", &holed));
    EXPECT_EQ(Lines{"AddProperty: CIM class Test_Thing threw exception zelStatusValueIsNULL"},
              LogLines());
  }
}

// ---- References and arrays

TEST(AddReferenceProperty, SetsThePath) {
  Handle handle;
  zelCIMReference ref(&handle.Container());
  ref.SetClassName("Test_Thing");
  ref.AddKeyValue("Id", TCIMValue("a"));
  zelAddClass(handle, "Test_Link");
  EXPECT_EQ(zelStatusOK, zelAddReferenceProperty(handle, "From", &ref));
  EXPECT_EQ("Test_Thing.Id=\"a\"", handle.Value("From").ToString(10));
}

TEST(AddReferenceProperty, RefusesAPathWithoutAClassOrToAnotherClass) {
  Handle handle;
  zelCIMReference unset(&handle.Container());
  EXPECT_EQ(zelStatusInvalidReference, zelAddReferenceProperty(handle, "From", &unset));

  zelAddClass(handle, "Test_Link");
  EXPECT_EQ(zelStatusInvalidReference, zelAddReferenceProperty(handle, "From", &unset));
  EXPECT_EQ("AddProperty: CIM class Test_Link threw exception zelStatusInvalidReference",
            LastLogLine());

  zelCIMReference link(&handle.Container());
  link.SetClassName("Test_Link");
  EXPECT_EQ(zelStatusTypeMismatch, zelAddReferenceProperty(handle, "From", &link));
  EXPECT_EQ("AddProperty: CIM class Test_Link threw exception zelStatusTypeMismatch",
            LastLogLine());
}

TEST(AddArrayProperty, TakesTheDeclaredTypeAndCopies) {
  Handle handle;
  zelAddClass(handle, "Test_Thing");
  zelCIMValueArray array;
  EXPECT_EQ(zelStatusOK, zelAddArrayProperty(handle, "uint16s", &array));
  EXPECT_FALSE(handle.Value("uint16s").IsNull());
  EXPECT_EQ("{  }", handle.Value("uint16s").ToString(10));

  zelArrayAddUint16(&array, 3);
  zelArrayAddUint16(&array, 5);
  EXPECT_EQ(zelStatusOK, zelAddArrayProperty(handle, "uint16s", &array));
  array.clear();
  EXPECT_EQ("{ 3, 5 }", handle.Value("uint16s").ToString(10));
}

TEST(AddArrayProperty, RefusesElementsOfAnotherType) {
  Handle handle;
  zelAddClass(handle, "Test_Thing");
  zelCIMValueArray array = {TCIMValue("text")};
  EXPECT_EQ(zelStatusInvalidProperty, zelAddArrayProperty(handle, "uint16s", &array));
  EXPECT_EQ("AddProperty: CIM class Test_Thing threw exception zelStatusInvalidProperty",
            LastLogLine());
  EXPECT_TRUE(handle.Value("uint16s").IsNull());
}

// ---- zelAddProperty

TEST(AddProperty, ConvertsTheTextToTheDeclaredType) {
  Handle handle;
  zelAddClass(handle, "Test_Thing");
  const struct {
    const char* name;
    const char* text;
    const char* value;
  } kRows[] = {
      {"string",   "007",                       "007"                      },
      {"uint8",    "255",                       "255"                      },
      {"uint32",   "0x10",                      "16"                       },
      {"uint32",   "010",                       "8"                        },
      {"sint32",   "-12",                       "-12"                      },
      {"uint32",   "no number",                 "0"                        },
      {"boolean",  "true",                      "true"                     },
      {"boolean",  "TRUE",                      "false"                    },
      {"datetime", "20040315142530.000000-300", "20040315142530.000000-300"},
  };
  for (const auto& row : kRows) {
    EXPECT_EQ(zelStatusOK, zelAddProperty(handle, row.name, row.text)) << row.text;
    EXPECT_EQ(row.value, handle.Value(row.name).ToString(10)) << row.text;
  }
  EXPECT_TRUE(LogLines().empty());
}

TEST(AddProperty, NamesAPropertyThatIsNotDeclared) {
  Handle handle;
  zelAddClass(handle, "Test_Thing");
  EXPECT_EQ(zelStatusNotFound, zelAddProperty(handle, "Colour", "red"));
  EXPECT_EQ("zelAddProperty: CIM class Test_Thing threw exception zelStatusNotFound name='Colour'",
            LastLogLine());
  EXPECT_EQ(zelLogError, LastLogSeverity());
}

TEST(AddProperty, DoesNotNameThePropertyInOtherFailures) {
  Handle handle;
  zelAddClass(handle, "Test_Thing");
  EXPECT_EQ(zelStatusInvalidDateTime, zelAddProperty(handle, "datetime", "yesterday"));
  EXPECT_EQ("zelAddProperty: CIM class Test_Thing threw exception zelStatusInvalidDateTime",
            LastLogLine());
  EXPECT_EQ(zelStatusTypeMismatch, zelAddProperty(handle, "uint8s", "1"));
  EXPECT_EQ("zelAddProperty: CIM class Test_Thing threw exception zelStatusTypeMismatch",
            LastLogLine());

  zelAddStringProperty(handle, "Id", "a");
  zelAddClass(handle, "Test_Link");
  EXPECT_EQ(zelStatusNotImplemented, zelAddProperty(handle, "From", "Test_Thing.Id=\"a\""));
  EXPECT_EQ("zelAddProperty: CIM class Test_Link threw exception zelStatusNotImplemented",
            LastLogLine());
}

// ---- Trace

zelPluginInfo Info(TCPluginCallbacks*) { return {"tracer", "1.0", "1.0", 0, 0}; }

TEST(Trace, ShowsEveryCallAsThePluginAtVerbose) {
  TPluginManager::Initialize("/nowhere");
  zelPluginCallbacks table{nullptr, nullptr, nullptr, nullptr, Info, nullptr};
  TCPluginCallbacks* plugin = nullptr;
  zelRegisterPlugin(&table, &plugin);
  const LogFile file;

  Handle handle(plugin->GetPluginHandle());
  zelAddProperty(handle, "Id", "too early");
  zelAddClass(handle, "Test_Thing");
  zelAddStringProperty(handle, "Id", "a");
  zelAddUint8Property(handle, "uint8", 16);
  zelAddBooleanProperty(handle, "boolean", 5);
  zelAddProperty(handle, "uint32", "0x10");
  zelCIMValueArray array;
  zelArrayAddUint16(&array, 3);
  zelArrayAddUint16(&array, 5);
  zelAddArrayProperty(handle, "uint16s", &array);
  zelAddClass(handle, "Test_Nothing");
  EXPECT_EQ((Lines{
                "ZEL_tracer: [Verbose] zelAddProperty(Id, value=too early)",
                "ZEL_Core: [Error] zelAddProperty: no current instance",
                "ZEL_tracer: [Verbose] zelAddClass(Test_Thing)",
                "ZEL_tracer: [Verbose] zelAdd<>Property(Id, value=a)",
                "ZEL_tracer: [Verbose] zelAdd<>Property(uint8, value=16)",
                "ZEL_tracer: [Verbose] zelAdd<>Property(boolean, value=true)",
                "ZEL_tracer: [Verbose] zelAddProperty(uint32, value=0x10)",
                "ZEL_tracer: [Verbose] zelAdd<>Property(uint16s, value={ 3, 5 })",
                "ZEL_tracer: [Verbose] zelAddClass(Test_Nothing)",
                "ZEL_Core: [Error] zelAddClass: GetClass(Test_Nothing) threw exception "
                "zelStatusNotFound",
            }),
            file.Lines());
}

TEST(Trace, IsSilentBelowVerbose) {
  const LogFile file(zelLogDebug);
  Handle handle;
  zelAddClass(handle, "Test_Thing");
  zelAddStringProperty(handle, "Id", "a");
  zelAddProperty(handle, "uint32", "1");
  EXPECT_EQ(Lines{}, file.Lines());
}

}  // namespace
