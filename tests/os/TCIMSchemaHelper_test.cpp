#include "zelcore/TCIMSchemaHelper.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <memory>

#include "tests/support/LogSpy.h"
#include "tests/support/Status.h"
#include "zelcore/TCIMClass.h"
#include "zelcore/TCIMInstance.h"
#include "zelcore/TCIMPropertyDecl.h"
#include "zelcore/TCIMQualifier.h"
#include "zelcore/TContainer.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

using Helper = TCIMSchemaHelper;

const std::string kSystem = "KVRSG_ComputerSystem";
const std::string kOS = "KVRSG_OperatingSystem";
const std::string kProduct = "KVRSG_VNTProduct";

TCIMValue String(const std::string& text) { return TCIMValue(text); }
TCIMValue Uint16(unsigned short number) { return TCIMValue(number); }
TCIMValue NullOf(const TCIMValue& value) { return TCIMValue(value.GetType(), 0u); }

// A container with classes whose key is Tag.
class Machine {
 public:
  Machine() {
    fContainer
        .AllocateQualifierDecl("KEY", TCIMValue(false), TCIMQualifierDecl::ScopeProperty,
                               TCIMQualifierDecl::FlavorNone)
        ->AddToContainer();
  }

  TContainer* Container() { return &fContainer; }

  // Declares a class with one property of the type of `value`, or with none but the key.
  TCIMClass* Declare(const std::string& name, const std::string& property = "",
                     const TCIMValue& value = {}) {
    TCIMClass* cls = fContainer.AllocateClass(name, nullptr);
    DeclareKey(*cls);
    if (!property.empty()) {
      (new TCIMPropertyDecl(property, *cls, NullOf(value)))->AddToContainer();
    }
    cls->AddToContainer();
    return cls;
  }

  TCIMClass* DeclareSubClass(const std::string& name, TCIMClass* superClass) {
    TCIMClass* cls = fContainer.AllocateClass(name, superClass);
    cls->AddToContainer();
    return cls;
  }

  void Add(TCIMClass* cls, const std::string& property = "", const TCIMValue& value = {}) {
    TCIMInstance* instance = fContainer.AllocateInstance(cls);
    instance->SetPropertyValue("Tag", String(std::to_string(++fCount)));
    if (!property.empty()) instance->SetPropertyValue(property, value);
    instance->AddToContainer();
  }

  // Declares the class and adds one instance.
  void Tell(const std::string& name, const std::string& property, const TCIMValue& value) {
    Add(Declare(name, property, value), property, value);
  }

 private:
  void DeclareKey(TCIMClass& cls) {
    auto* tag = new TCIMPropertyDecl("Tag", cls, NullOf(String("")));
    tag->AddQualifier(*new TCIMQualifier(*fContainer.GetQualifierDecl("KEY"), TCIMValue(true)));
    tag->AddToContainer();
  }

  TContainer fContainer;
  int fCount = 0;
};

// A machine whose computer system has this product name.
std::unique_ptr<Machine> Product(const std::string& name) {
  auto machine = std::make_unique<Machine>();
  machine->Tell(kSystem, "ProductName", String(name));
  return machine;
}

std::string GetOSType(TContainer* container) {
  return std::to_string(Helper::GetOperatingSystemType(container));
}

// Every question that is answered from one property of one instance.
const struct {
  std::string className, property;
  TCIMValue value;
  std::string (*get)(TContainer*);
  std::string answer;
} kQuestions[] = {
    {kSystem,  "Name",         String("host"),   Helper::GetSystemName,             "host"  },
    {kSystem,  "ProductName",  String("Box 1 "), Helper::GetSystemProductName,      "Box 1 "},
    {kSystem,  "ProductName",  String("Box 1 "), Helper::GetRawMTMString,           "Box 1 "},
    {kSystem,  "SerialNumber", String(" -? "),   Helper::GetRawSerialNumberString,  " -? "  },
    {kOS,      "Name",         String("Linux"),  Helper::GetOperatingSystemName,    "Linux" },
    {kOS,      "Version",      String("12"),     Helper::GetOperatingSystemVersion, "12"    },
    {kOS,      "OSType",       Uint16(65535),    GetOSType,                         "65535" },
    {kProduct, "Version",      String("1.2.3"),  Helper::GetDataSourceVersion,      "1.2.3" },
};

std::string LabelOf(const std::string& className) {
  return className == kSystem ? "computer system"
         : className == kOS   ? "operating system"
                              : "product";
}

}  // namespace

TEST(TCIMSchemaHelper, NamesTheClasses) {
  EXPECT_EQ("KVRSG_ComputerSystem", Helper::kSystemCreationClassName);
  EXPECT_EQ("KVRSG_OperatingSystem", Helper::kOperatingSystemCreationClassName);
  EXPECT_EQ("KVRSG_ComputerSystem", Helper::GetSystemCreationClassName(nullptr));
  EXPECT_EQ("KVRSG_OperatingSystem", Helper::GetOperatingSystemCreationClassName(nullptr));
}

TEST(TCIMSchemaHelper, AnswersFromTheOneInstance) {
  SetLogThreshold(zelLogDebug);
  for (const auto& question : kQuestions) {
    SCOPED_TRACE(question.className + "." + question.property);
    Machine machine;
    machine.Tell(question.className, question.property, question.value);
    EXPECT_EQ(question.answer, question.get(machine.Container()));
  }
  EXPECT_THAT(LogLines(), IsEmpty());
}

TEST(TCIMSchemaHelper, AnswersFromAnInstanceOfASubclass) {
  for (const auto& question : kQuestions) {
    Machine machine;
    TCIMClass* cls = machine.Declare(question.className, question.property, question.value);
    machine.Add(machine.DeclareSubClass("Special", cls), question.property, question.value);
    EXPECT_EQ(question.answer, question.get(machine.Container()));

    machine.Add(cls, question.property, question.value);
    EXPECT_EQ("zelStatusNotFound", StatusOf([&] { question.get(machine.Container()); }));
  }
}

TEST(TCIMSchemaHelper, TellsWhyThereIsNoAnswer) {
  SetLogThreshold(zelLogDebug);
  for (const auto& question : kQuestions) {
    const auto& [className, property, value, get, answer] = question;
    SCOPED_TRACE(className + "." + property);
    const auto expect = [&, getter = get](const std::string& code, const std::string& message,
                                          Machine& machine) {
      ClearLog();
      EXPECT_EQ(code, StatusOf([&] { getter(machine.Container()); }));
      EXPECT_THAT(LogLines(zelLogDebug), ElementsAre("TCIMSchemaHelper: " + message));
      EXPECT_EQ(1u, LogLines().size());
    };
    const std::string type = property == "OSType" ? "uint16" : "string";

    Machine empty;
    expect("zelStatusNotFound", "no " + LabelOf(className), empty);

    Machine counted;
    TCIMClass* cls = counted.Declare(className, property, value);
    expect("zelStatusNotFound", LabelOf(className) + " instances != 1", counted);
    counted.Add(cls, property, value);
    counted.Add(cls, property, value);
    expect("zelStatusNotFound", LabelOf(className) + " instances != 1", counted);

    Machine bare;
    bare.Add(bare.Declare(className));
    expect("zelStatusNotFound", "didn't find " + property + " property", bare);

    Machine null;
    null.Tell(className, property, NullOf(value));
    expect("zelStatusValueIsNULL", property + " is NULL", null);

    Machine mistyped;
    mistyped.Tell(className, property, 7u);
    expect("zelStatusTypeMismatch", property + " wasn't a " + type, mistyped);
  }
}

TEST(IsValidMachineType, LooksAtFourLettersOrDigits) {
  struct {
    const char* text;
    bool type, mtm;
  } const rows[] = {
      {"2468A1B",    true,  true },
      {"abcdXYZ",    true,  true },
      {"2468   ",    true,  true }, // a model of blanks
      {"2468 1 ",    true,  true },
      {"2468A1B-]x", true,  true },
      {"2468-1B",    true,  false},
      {"2468A1",     true,  false},
      {"2468",       true,  false},
      {"246",        false, false},
      {"",           false, false},
      {"246 A1B",    false, false},
      {" 2468A1",    false, false},
      {"86-1A1B",    false, false},
      {"\xe4zz1A1B", false, false},
      {"2468\tA1",   true,  false},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(row.type, Helper::IsValidMachineType(row.text)) << row.text;
    EXPECT_EQ(row.mtm, Helper::IsValidMTM(row.text)) << row.text;
  }
}

TEST(GetMTM, FindsMachineTypeAndModelInTheProductName) {
  SetLogThreshold(zelLogDebug);
  struct {
    const char* product;
    const char* mtm;
    const char* type;
    const char* model;
  } const rows[] = {
      {"KVR Server 1200",             "4101xxx", "4101", "xxx"}, // a known product
      {"KVR Server 2400   ",          "4102xxx", "4102", "xxx"},
      {"KVR Server 4800",             "4104xxx", "4104", "xxx"},
      {"KVR Blade Server 20 ",        "4120xxx", "4120", "xxx"},
      {"KVR Storage Server 3600",     "4136xxx", "4136", "xxx"},
      {"KVR-[R]9000 Rack-[4190A1B]-", "4190A1B", "4190", "A1B"}, // the family
      {"KVR-[R]9000 Rack-[4190A1B]",  "4190A1B", "4190", "A1B"},
      {"Other -[2468A1B]-",           "2468A1B", "2468", "A1B"},
      {"-[2468   ]-",                 "2468   ", "2468", "   "},
      {"Any Server -[2468A1B",        "2468A1B", "2468", "A1B"},
      {"2468A1B",                     "2468A1B", "2468", "A1B"},
      {"2468A1B and more",            "2468A1B", "2468", "A1B"},
      {"2468 1B",                     "2468 1B", "2468", " 1B"},
      {"2468-[A1B]-",                 "2468",    "2468", ""   }, // brackets hold no MTM
      {"2468A1B -[no]-",              "2468A1B", "2468", "A1B"},
      {"2468   ",                     "2468",    "2468", ""   }, // trailing blanks go first
      {"2468-1B",                     "2468",    "2468", ""   },
      {"2468",                        "2468",    "2468", ""   },
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.product);
    const auto machine = Product(row.product);
    ClearLog();
    EXPECT_EQ(row.mtm, Helper::GetMTM(machine->Container()));
    EXPECT_EQ("TCIMSchemaHelper- Detected MTM " + std::string(row.mtm), LastLogLine());
    EXPECT_EQ(zelLogDebug, LastLogSeverity());
    EXPECT_EQ(1u, LogLines().size());
    EXPECT_EQ(row.type, Helper::GetMachineType(machine->Container()));
    EXPECT_EQ(row.model, Helper::GetModelNumber(machine->Container()));
  }
}

TEST(GetMTM, RefusesATextThatPassesNoRule) {
  SetLogThreshold(zelLogDebug);
  for (const char* product : {"", "   ", "Box", "To be filled in", "-2468A1B", "246", "Box -[86]-",
                              "KVR-[R]9000 Rack-[4190A1B", "KVR-[R]9000 Rack-[41?0A1B]-"}) {
    SCOPED_TRACE(product);
    const auto machine = Product(product);
    ClearLog();
    EXPECT_EQ("zelStatusInvalidFormat", StatusOf([&] { Helper::GetMTM(machine->Container()); }));
    EXPECT_THAT(LogLines(zelLogDebug), ElementsAre("TCIMSchemaHelper: no MTM recognised"));
    EXPECT_EQ("zelStatusInvalidFormat",
              StatusOf([&] { Helper::GetMachineType(machine->Container()); }));
    EXPECT_EQ("zelStatusInvalidFormat",
              StatusOf([&] { Helper::GetModelNumber(machine->Container()); }));
  }
}

TEST(GetRawMTMString, PrefersTheFirmwaresWord) {
  const auto firmware = [](const TCIMValue& mtm) {
    auto machine = Product("Product");
    machine->Tell("KVRSG_SystemBIOSElement", "MachineTypeModel", mtm);
    return machine;
  };
  const auto raw = [](Machine& machine) { return Helper::GetRawMTMString(machine.Container()); };
  EXPECT_EQ("2468A1B ", raw(*firmware(String("2468A1B "))));
  EXPECT_EQ("", raw(*firmware(String(""))));
  EXPECT_EQ("Product", raw(*firmware(NullOf(String("")))));
  EXPECT_EQ("2468A1B", Helper::GetMTM(firmware(String("2468A1B"))->Container()));

  const auto withoutProperty = Product("Product");
  withoutProperty->Add(withoutProperty->Declare("KVRSG_SystemBIOSElement"));
  EXPECT_EQ("Product", raw(*withoutProperty));

  const auto withoutInstance = Product("Product");
  TCIMClass* element =
      withoutInstance->Declare("KVRSG_SystemBIOSElement", "MachineTypeModel", NullOf(String("")));
  EXPECT_EQ("Product", raw(*withoutInstance));
  withoutInstance->Add(element);
  withoutInstance->Add(element, "MachineTypeModel", String("2468A1B"));
  EXPECT_EQ("2468A1B", raw(*withoutInstance));

  SetLogThreshold(zelLogDebug);
  EXPECT_EQ("zelStatusTypeMismatch", StatusOf([&] { raw(*firmware(TCIMValue(2468u))); }));
  EXPECT_EQ("TCIMSchemaHelper: MachineTypeModel wasn't a string", LastLogLine());
}

TEST(GetSerialNumber, TakesLettersAndDigitsWithoutTrailingBlanks) {
  struct {
    const char* raw;
    const char* serial;  // null: refused
  } const rows[] = {
      {"KVR1234",    "KVR1234"   },
      {"KVR1234   ", "KVR1234"   },
      {"1",          "1"         },
      {"KVR1234-56", "KVR1234-56"}, // beyond the seventh anything goes
      {"KVR123-",    nullptr     },
      {"KVR 123",    nullptr     },
      {" KVR123",    nullptr     },
      {"KV-1",       nullptr     },
      {"\xc3\xa4zz", nullptr     },
      {"",           nullptr     },
      {"    ",       nullptr     },
  };
  SetLogThreshold(zelLogDebug);
  for (const auto& row : rows) {
    SCOPED_TRACE(row.raw);
    Machine machine;
    machine.Tell(kSystem, "SerialNumber", String(row.raw));
    ClearLog();
    std::string serial;
    const std::string status =
        StatusOf([&] { serial = Helper::GetSerialNumber(machine.Container()); });
    if (row.serial) {
      EXPECT_EQ("zelStatusOK", status);
      EXPECT_EQ(row.serial, serial);
      EXPECT_THAT(LogLines(), IsEmpty());
    } else {
      EXPECT_EQ("zelStatusInvalidFormat", status);
      EXPECT_THAT(LogLines(zelLogDebug), ElementsAre("TCIMSchemaHelper: SerialNumber isn't valid"));
    }
  }
}

TEST(GetDataSourceVersion, HasThreeParts) {
  struct {
    const char* version;
    const char* major;
    const char* minor;
    const char* build;
  } const rows[] = {
      {"1.2.3",     "1",  "2",  "3"   },
      {"10.20.300", "10", "20", "300" },
      {"1.2",       "1",  "2",  ""    },
      {"1",         "1",  "",   ""    },
      {"",          "",   "",   ""    },
      {"1..3",      "1",  "",   "3"   },
      {".2.",       "",   "2",  ""    },
      {"1.2.3.4",   "1",  "2",  "3"   },
      {"v1.2.3-b4", "v1", "2",  "3-b4"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.version);
    Machine machine;
    machine.Tell(kProduct, "Version", String(row.version));
    EXPECT_EQ(row.major, Helper::GetDataSourceMajorVersion(machine.Container()));
    EXPECT_EQ(row.minor, Helper::GetDataSourceMinorVersion(machine.Container()));
    EXPECT_EQ(row.build, Helper::GetDataSourceBuildVersion(machine.Container()));
  }
  Machine empty;
  EXPECT_EQ("zelStatusNotFound",
            StatusOf([&] { Helper::GetDataSourceBuildVersion(empty.Container()); }));
}
