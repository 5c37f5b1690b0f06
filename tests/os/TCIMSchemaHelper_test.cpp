#include "zelcore/TCIMSchemaHelper.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <map>
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

using Properties = std::map<std::string, TCIMValue>;

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

  // Declares the class with these properties and their types.
  TCIMClass* Declare(const std::string& name, const Properties& properties,
                     TCIMClass* superClass = nullptr) {
    auto* cls = fContainer.AllocateClass(name, superClass);
    if (!superClass) DeclareKey(*cls);
    for (const auto& [property, value] : properties) {
      const TCIMValue type(value.GetType(), 0u);
      (new TCIMPropertyDecl(property, *cls, type))->AddToContainer();
    }
    cls->AddToContainer();
    return cls;
  }

  void Add(TCIMClass* cls, const Properties& properties) {
    auto* instance = fContainer.AllocateInstance(cls);
    instance->SetPropertyValue("Tag", TCIMValue(std::to_string(++fCount)));
    for (const auto& [property, value] : properties) instance->SetPropertyValue(property, value);
    instance->AddToContainer();
  }

  // Declares the class and adds one instance.
  void Tell(const std::string& name, const Properties& properties) {
    Add(Declare(name, properties), properties);
  }

 private:
  void DeclareKey(TCIMClass& cls) {
    auto* tag = new TCIMPropertyDecl("Tag", cls, TCIMValue(TCIMValue::TCIMType::TypeString, 0u));
    tag->AddQualifier(*new TCIMQualifier(*fContainer.GetQualifierDecl("KEY"), TCIMValue(true)));
    tag->AddToContainer();
  }

  TContainer fContainer;
  int fCount = 0;
};

TCIMValue String(const std::string& text) { return TCIMValue(text); }
TCIMValue NullString() { return TCIMValue(TCIMValue::TCIMType::TypeString, 0u); }

// A machine whose computer system has this product name.
std::unique_ptr<Machine> Product(const std::string& name) {
  auto machine = std::make_unique<Machine>();
  machine->Tell("KVRSG_ComputerSystem", {
                                            {"ProductName", String(name)}
  });
  return machine;
}

using Getter = std::function<std::string(TContainer*)>;

std::string GetOSType(TContainer* container) {
  return std::to_string(TCIMSchemaHelper::GetOperatingSystemType(container));
}

// Every question that is answered from one property of one instance.
const struct {
  const char* className;
  const char* label;
  const char* property;
  TCIMValue value;
  Getter get;
  const char* answer;
  const char* type;
} kQuestions[] = {
    {"KVRSG_ComputerSystem",  "computer system",  "Name",         String("host"),
     TCIMSchemaHelper::GetSystemName,                                                          "host",   "string"},
    {"KVRSG_ComputerSystem",  "computer system",  "ProductName",  String("Box 1 "),
     TCIMSchemaHelper::GetSystemProductName,                                                   "Box 1 ", "string"},
    {"KVRSG_ComputerSystem",  "computer system",  "ProductName",  String("Box 1 "),
     TCIMSchemaHelper::GetRawMTMString,                                                        "Box 1 ", "string"},
    {"KVRSG_ComputerSystem",  "computer system",  "SerialNumber", String(" -? "),
     TCIMSchemaHelper::GetRawSerialNumberString,                                               " -? ",   "string"},
    {"KVRSG_OperatingSystem", "operating system", "Name",         String("Linux"),
     TCIMSchemaHelper::GetOperatingSystemName,                                                 "Linux",  "string"},
    {"KVRSG_OperatingSystem", "operating system", "Version",      String("12"),
     TCIMSchemaHelper::GetOperatingSystemVersion,                                              "12",     "string"},
    {"KVRSG_OperatingSystem", "operating system", "OSType",
     TCIMValue(static_cast<unsigned short>(65535)),                                 GetOSType, "65535",  "uint16"},
    {"KVRSG_VNTProduct",      "product",          "Version",      String("1.2.3"),
     TCIMSchemaHelper::GetDataSourceVersion,                                                   "1.2.3",  "string"},
};

}  // namespace

TEST(TCIMSchemaHelper, NamesTheClasses) {
  EXPECT_EQ("KVRSG_ComputerSystem", TCIMSchemaHelper::kSystemCreationClassName);
  EXPECT_EQ("KVRSG_OperatingSystem", TCIMSchemaHelper::kOperatingSystemCreationClassName);
  EXPECT_EQ("KVRSG_ComputerSystem", TCIMSchemaHelper::GetSystemCreationClassName(nullptr));
  EXPECT_EQ("KVRSG_OperatingSystem",
            TCIMSchemaHelper::GetOperatingSystemCreationClassName(nullptr));
}

TEST(TCIMSchemaHelper, AnswersFromTheOneInstance) {
  SetLogThreshold(zelLogDebug);
  for (const auto& question : kQuestions) {
    SCOPED_TRACE(testing::Message() << question.className << "." << question.property);
    Machine machine;
    machine.Tell(question.className, {
                                         {question.property, question.value}
    });
    EXPECT_EQ(question.answer, question.get(machine.Container()));
  }
  EXPECT_THAT(LogLines(), IsEmpty());
}

TEST(TCIMSchemaHelper, AnswersFromAnInstanceOfASubclass) {
  for (const auto& question : kQuestions) {
    const Properties properties{
        {question.property, question.value}
    };
    Machine machine;
    TCIMClass* cls = machine.Declare(question.className, properties);
    machine.Add(machine.Declare("Special", {}, cls), properties);
    EXPECT_EQ(question.answer, question.get(machine.Container()));

    machine.Add(cls, properties);
    EXPECT_EQ("zelStatusNotFound", StatusOf([&] { question.get(machine.Container()); }));
  }
}

TEST(TCIMSchemaHelper, TellsWhyThereIsNoAnswer) {
  SetLogThreshold(zelLogDebug);
  for (const auto& question : kQuestions) {
    SCOPED_TRACE(testing::Message() << question.className << "." << question.property);
    const std::string label = question.label;
    const std::string name = question.property;
    const TCIMValue null(question.value.GetType(), 0u);
    const TCIMValue other(7u);
    const struct {
      std::function<void(Machine&)> arrange;
      const char* code;
      std::string message;
    } rows[] = {
        {[](Machine&) {},                                                    "zelStatusNotFound", "no " + label                                                                            },
        {[&](Machine& machine) { machine.Declare(question.className, {}); }, "zelStatusNotFound",
         label + " instances != 1"                                                                                                                                                         },
        {[&](Machine& machine) {
           TCIMClass* cls = machine.Declare(question.className, {
                                                                    {name, question.value}});
           machine.Add(cls, {
                                {name, question.value}});
           machine.Add(cls, {
                                {name, question.value}});
         },                                                                   "zelStatusNotFound",                                                                                       label + " instances != 1"                                                                                                                                                                                },
        {[&](Machine& machine) { machine.Tell(question.className, {}); },                                                                   "zelStatusNotFound",
         "didn't find " + name + " property"                                                                                                                                                                      },
        {[&](Machine& machine) {
           machine.Tell(question.className, {
                                                {name, null}});
         },                                         "zelStatusValueIsNULL",name + " is NULL"},
        {[&](Machine& machine) {
           machine.Tell(question.className, {
                                                {name, other}});
         },                                "zelStatusTypeMismatch",                                                   name + " wasn't a " + question.type},
    };
    for (const auto& row : rows) {
      Machine machine;
      row.arrange(machine);
      ClearLog();
      EXPECT_EQ(row.code, StatusOf([&] { question.get(machine.Container()); }));
      EXPECT_THAT(LogLines(zelLogDebug), ElementsAre("TCIMSchemaHelper: " + row.message));
      EXPECT_EQ(1u, LogLines().size());
    }
  }
}

TEST(IsValidMachineType, LooksAtFourLettersOrDigits) {
  struct {
    const char* text;
    bool type, mtm;
  } const rows[] = {
      {"2468A1B",       true,  true },
      {"abcdXYZ",       true,  true },
      {"2468   ",       true,  true }, // a model of blanks
      {"2468 1 ",       true,  true },
      {"2468A1B-]x",    true,  true },
      {"2468-1B",       true,  false},
      {"2468A1",        true,  false},
      {"2468",          true,  false},
      {"867",           false, false},
      {"",              false, false},
      {"867 A1B",       false, false},
      {" 2468A1",       false, false},
      {"86-1A1B",       false, false},
      {"\xe4"
       "671A1B", false, false},
      {"2468\tA1",      true,  false},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(row.type, TCIMSchemaHelper::IsValidMachineType(row.text)) << row.text;
    EXPECT_EQ(row.mtm, TCIMSchemaHelper::IsValidMTM(row.text)) << row.text;
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
    EXPECT_EQ(row.mtm, TCIMSchemaHelper::GetMTM(machine->Container()));
    EXPECT_EQ("TCIMSchemaHelper- Detected MTM " + std::string(row.mtm), LastLogLine());
    EXPECT_EQ(zelLogDebug, LastLogSeverity());
    EXPECT_EQ(1u, LogLines().size());
    EXPECT_EQ(row.type, TCIMSchemaHelper::GetMachineType(machine->Container()));
    EXPECT_EQ(row.model, TCIMSchemaHelper::GetModelNumber(machine->Container()));
  }
}

TEST(GetMTM, RefusesATextThatPassesNoRule) {
  SetLogThreshold(zelLogDebug);
  for (const char* product : {"", "   ", "Box", "To be filled in", "-2468A1B", "867", "Box -[86]-",
                              "KVR-[R]9000 Rack-[4190A1B", "KVR-[R]9000 Rack-[41?0A1B]-"}) {
    SCOPED_TRACE(product);
    const auto machine = Product(product);
    ClearLog();
    EXPECT_EQ("zelStatusInvalidFormat",
              StatusOf([&] { TCIMSchemaHelper::GetMTM(machine->Container()); }));
    EXPECT_THAT(LogLines(zelLogDebug), ElementsAre("TCIMSchemaHelper: no MTM recognised"));
    EXPECT_EQ("zelStatusInvalidFormat",
              StatusOf([&] { TCIMSchemaHelper::GetMachineType(machine->Container()); }));
    EXPECT_EQ("zelStatusInvalidFormat",
              StatusOf([&] { TCIMSchemaHelper::GetModelNumber(machine->Container()); }));
  }
}

TEST(GetRawMTMString, PrefersTheFirmwaresWord) {
  const auto firmware = [](const TCIMValue& mtm) {
    auto machine = Product("Product");
    machine->Tell("KVRSG_SystemBIOSElement", {
                                                 {"MachineTypeModel", mtm}
    });
    return machine;
  };
  const auto raw = [](Machine& machine) {
    return TCIMSchemaHelper::GetRawMTMString(machine.Container());
  };
  EXPECT_EQ("2468A1B ", raw(*firmware(String("2468A1B "))));
  EXPECT_EQ("", raw(*firmware(String(""))));
  EXPECT_EQ("Product", raw(*firmware(NullString())));
  EXPECT_EQ("2468A1B", TCIMSchemaHelper::GetMTM(firmware(String("2468A1B"))->Container()));

  const auto withoutProperty = Product("Product");
  withoutProperty->Tell("KVRSG_SystemBIOSElement", {});
  EXPECT_EQ("Product", raw(*withoutProperty));

  const auto withoutInstance = Product("Product");
  TCIMClass* element =
      withoutInstance->Declare("KVRSG_SystemBIOSElement", {
                                                              {"MachineTypeModel", NullString()}
  });
  EXPECT_EQ("Product", raw(*withoutInstance));
  withoutInstance->Add(element, {});
  withoutInstance->Add(element, {
                                    {"MachineTypeModel", String("2468A1B")}
  });
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
      {"\xc3\xa4"
       "12",  nullptr     },
      {"",           nullptr     },
      {"    ",       nullptr     },
  };
  SetLogThreshold(zelLogDebug);
  for (const auto& row : rows) {
    SCOPED_TRACE(row.raw);
    Machine machine;
    machine.Tell("KVRSG_ComputerSystem", {
                                             {"SerialNumber", String(row.raw)}
    });
    ClearLog();
    std::string serial;
    const std::string status =
        StatusOf([&] { serial = TCIMSchemaHelper::GetSerialNumber(machine.Container()); });
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
    machine.Tell("KVRSG_VNTProduct", {
                                         {"Version", String(row.version)}
    });
    EXPECT_EQ(row.major, TCIMSchemaHelper::GetDataSourceMajorVersion(machine.Container()));
    EXPECT_EQ(row.minor, TCIMSchemaHelper::GetDataSourceMinorVersion(machine.Container()));
    EXPECT_EQ(row.build, TCIMSchemaHelper::GetDataSourceBuildVersion(machine.Container()));
  }
  Machine empty;
  EXPECT_EQ("zelStatusNotFound",
            StatusOf([&] { TCIMSchemaHelper::GetDataSourceBuildVersion(empty.Container()); }));
}
