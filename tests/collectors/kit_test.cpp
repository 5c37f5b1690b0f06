#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/stat.h>

#include <random>
#include <stdexcept>

#include "collectors/kit/Files.h"
#include "collectors/kit/Plugin.h"
#include "collectors/kit/Smbios.h"
#include "collectors/kit/Text.h"
#include "plugin/zeliIOHandle.h"
#include "tests/collectors/Collected.h"
#include "tests/collectors/SmbiosTable.h"
#include "tests/support/LogSpy.h"
#include "tests/support/Status.h"
#include "tests/support/TempDir.h"
#include "tests/support/TimeZone.h"
#include "tests/support/Unprivileged.h"
#include "zelcore/zelcore.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// ---- Text ----

TEST(Clean, TrimsAndDropsWhatCannotBeShown) {
  const struct {
    std::string_view text, clean;
  } kRows[] = {
      {"",                                       ""                                     },
      {"  plain text \r\n",                      "plain text"                           },
      {"a\tb\nc",                                "a b c"                                },
      {{"a\0b\x01\x1F\x7F", 6},                  "ab"                                   },
      {"Stra\xC3\x9F"
       "e \xE2\x82\xAC \xF0\x9F\x98\x80", "Stra\xC3\x9F"
       "e \xE2\x82\xAC \xF0\x9F\x98\x80"},
      {"cut \xE2\x82",                           "cut"                                  },
      {"lone \x80\xBF tail",                     "lone  tail"                           },
      {"latin \xFC"
       "ber",                             "latin ber"                            },
      {"overlong \xC0\xAF \xE0\x80\xAF",         "overlong"                             },
      {"surrogate \xED\xA0\x80.",                "surrogate ."                          },
      {"control \xC2\x85.",                      "control ."                            },
      {"too large \xF4\x90\x80\x80.",            "too large ."                          },
      {"no character \xEF\xBF\xBE\xEF\xBF\xBF",  "no character"                         },
      {"\xEF\xBF\xBD stays",                     "\xEF\xBF\xBD stays"                   },
  };
  for (const auto& row : kRows) EXPECT_EQ(row.clean, kit::Clean(row.text)) << row.text;
}

TEST(IsPlaceholder, KnowsWhatFirmwareWritesForNothing) {
  for (const char* text : {"",
                           "   ",
                           "To be filled by O.E.M.",
                           "TO BE FILLED BY O.E.M.",
                           "Default string",
                           "System Serial Number",
                           "System Product Name",
                           "Not Specified",
                           "None",
                           "none ",
                           "N/A",
                           "O.E.M.",
                           "Unknown",
                           "0",
                           "00000000",
                           "0000-",
                           "XxXxXxX",
                           "........",
                           "-",
                           "  ffff  ",
                           "0123456789",
                           "Chassis Manufacture",
                           "(none)",
                           "Type2 - Board Asset Tag",
                           "Chassis Asset Tag"}) {
    EXPECT_EQ(std::string("0000-") != text, kit::IsPlaceholder(text)) << text;
  }
  for (const char* text : {"A", "1", "09", "7914AC1", "None of these", "System x", "default"}) {
    EXPECT_EQ(std::string("default") == text, kit::IsPlaceholder(text)) << text;
  }
}

TEST(Fact, IsTheCleanedTextOrNothing) {
  EXPECT_EQ("Rack Server", kit::Fact(" Rack\x01 Server\n"));
  EXPECT_EQ(std::nullopt, kit::Fact("Default\x02 string "));
  EXPECT_EQ(std::nullopt, kit::Fact("\x01\x02"));
}

TEST(ParseNumber, TakesTheWholeTextInTheStatedBase) {
  EXPECT_EQ(42u, kit::ParseNumber<uint8_t>(" 42\n"));
  EXPECT_EQ(10u, kit::ParseNumber<uint32_t>("010"));  // a leading zero means nothing
  EXPECT_EQ(-3, kit::ParseNumber<int>("-3"));
  EXPECT_EQ(0xFFu, kit::ParseNumber<uint32_t>("0xff", 16));
  EXPECT_EQ(0xFFu, kit::ParseNumber<uint32_t>("FF", 16));
  EXPECT_EQ(UINT64_MAX, kit::ParseNumber<uint64_t>("18446744073709551615"));
  for (const char* text : {"", " ", "x", "12 kB", "256", "-1", "+1", "1.5"}) {
    EXPECT_EQ(std::nullopt, kit::ParseNumber<uint8_t>(text)) << text;
  }
  EXPECT_EQ(std::nullopt, kit::ParseNumber<uint64_t>("18446744073709551616"));
}

TEST(ParseKilobytes, GivesBytes) {
  EXPECT_EQ(16384u * 1024, kit::ParseKilobytes("  16384 kB"));
  for (const char* text : {"", "16384", "kB", "x kB", "1 MB", "18446744073709551615 kB"}) {
    EXPECT_EQ(std::nullopt, kit::ParseKilobytes(text)) << text;
  }
}

TEST(Split, KeepsEmptyPiecesAndWordsDropThem) {
  EXPECT_THAT(kit::Split("a::b:", ':'), ElementsAre("a", "", "b", ""));
  EXPECT_THAT(kit::Split("", ':'), ElementsAre(""));
  EXPECT_THAT(kit::Words(" a\t b\n"), ElementsAre("a", "b"));
  EXPECT_THAT(kit::Words(" \n"), IsEmpty());
}

TEST(NamedLines, SkipLinesWithoutAColon) {
  const auto lines = kit::NamedLines("MemTotal:   16 kB\n\nnonsense\nmodel name\t: A : B\n");
  ASSERT_EQ(2u, lines.size());
  EXPECT_EQ("MemTotal", lines[0].name);
  EXPECT_EQ("16 kB", lines[0].value);
  EXPECT_EQ("model name", lines[1].name);
  EXPECT_EQ("A : B", lines[1].value);
}

// ---- Files ----

TEST(Files, AreTakenBelowTheSysroot) {
  const Machine machine;
  EXPECT_TRUE(kit::IsLiveMachine());
  setenv("ZEL_SYSROOT", machine.GetRoot().c_str(), 1);
  machine.Write("etc/name", "first\x01 line \nsecond\n");
  machine.Write("etc/empty", "");
  machine.Write("etc/number", "0017\n");
  EXPECT_FALSE(kit::IsLiveMachine());
  EXPECT_EQ("first\x01 line \nsecond\n", kit::ReadFile("/etc/name"));
  EXPECT_EQ("first line", kit::ReadLine("/etc/name"));
  EXPECT_EQ("", kit::ReadFile("/etc/empty"));
  EXPECT_EQ(std::nullopt, kit::ReadLine("/etc/empty"));
  EXPECT_EQ(17u, kit::ReadNumber<uint32_t>("/etc/number"));
  EXPECT_EQ(std::nullopt, kit::ReadNumber<uint32_t>("/etc/name"));
  EXPECT_EQ(std::nullopt, kit::ReadFile("/etc/passwd"));  // the live machine has one
  EXPECT_EQ(std::nullopt, kit::ReadFile("/etc"));
  EXPECT_TRUE(kit::Exists("/etc/empty"));
  EXPECT_TRUE(kit::IsDirectory("/etc"));
  EXPECT_FALSE(kit::IsDirectory("/etc/name"));
  EXPECT_FALSE(kit::Exists("/etc/passwd"));
  unsetenv("ZEL_SYSROOT");
  EXPECT_TRUE(kit::Exists("/etc/passwd"));
}

TEST(Files, TellMissingOnesFromThoseThatNeedRoot) {
  const Machine machine;
  setenv("ZEL_SYSROOT", machine.GetRoot().c_str(), 1);
  machine.Write("secret", "x");
  chmod(kit::FullPath("/secret").c_str(), 0400);
  chmod(machine.GetRoot().c_str(), 0755);
  {
    const Unprivileged user;
    EXPECT_EQ(std::nullopt, kit::ReadFile("/secret"));
    EXPECT_TRUE(kit::NeedsRoot("/secret"));
    EXPECT_FALSE(kit::NeedsRoot("/missing"));
  }
  EXPECT_FALSE(kit::NeedsRoot("/secret"));
  unsetenv("ZEL_SYSROOT");
}

TEST(ReadFile, DoesNotWaitForAPipe) {
  const Machine machine;
  setenv("ZEL_SYSROOT", machine.GetRoot().c_str(), 1);
  ASSERT_EQ(0, mkfifo(kit::FullPath("/pipe").c_str(), 0600));
  EXPECT_EQ("", kit::ReadFile("/pipe"));
  unsetenv("ZEL_SYSROOT");
}

TEST(ListDir, OrdersNumbersByValue) {
  const Machine machine;
  setenv("ZEL_SYSROOT", machine.GetRoot().c_str(), 1);
  for (const char* name : {"cpu10", "cpu2", "cpu1", "cpu02", "cpufreq", "cpu", "a"}) {
    machine.Write(std::string("cpus/") + name, "");
  }
  EXPECT_THAT(kit::ListDir("/cpus"),
              ElementsAre("a", "cpu", "cpu1", "cpu02", "cpu2", "cpu10", "cpufreq"));
  EXPECT_THAT(kit::ListDir("/missing"), IsEmpty());
  unsetenv("ZEL_SYSROOT");
}

// ---- SMBIOS ----

std::string SomeTable() {
  return SmbiosTable({SmbiosStructure(1, 0x0100, 0x1B)
                          .Text(0x04, "Maker")
                          .Text(0x05, " Product\x01 ")
                          .Text(0x06, "Default string")
                          .Byte(0x07, 9),
                      SmbiosStructure(17, 0x1100, 0x14)
                          .Word(0x0C, 0x4000)
                          .Dword(0x08, 0xA1B2C3D4)
                          .Qword(0x0C, 0x0102030405060708),
                      SmbiosStructure(17, 0x1101, 0x08)});
}

TEST(ParseSmbios, GivesStructuresWithFieldsAndTexts) {
  std::string entry("_SM3_\0\0\x03\x02", 9);
  const kit::TSmbios smbios = kit::ParseSmbios(entry, SomeTable());
  EXPECT_EQ(3u, smbios.major);
  EXPECT_EQ(2u, smbios.minor);
  ASSERT_EQ(3u, smbios.structures.size());  // without the end mark
  const kit::TSmbiosStructure& system = *smbios.First(1);
  EXPECT_EQ(0x0100, system.handle);
  EXPECT_EQ("Maker", system.Text(0x04));
  EXPECT_EQ("Product", system.Text(0x05));
  EXPECT_EQ(std::nullopt, system.Text(0x06));  // a placeholder
  EXPECT_EQ(std::nullopt, system.Text(0x07));  // no such text
  EXPECT_EQ(std::nullopt, system.Text(0x08));  // number 0: none
  EXPECT_EQ(std::nullopt, system.Text(0x1B));  // beyond the structure
  const auto modules = smbios.OfType(17);
  ASSERT_EQ(2u, modules.size());
  EXPECT_EQ(0xA1B2C3D4u, modules[0]->Dword(0x08));
  EXPECT_EQ(0x0708u, modules[0]->Word(0x0C));
  EXPECT_EQ(0x0102030405060708u, modules[0]->Qword(0x0C));
  EXPECT_EQ(std::nullopt, modules[0]->Qword(0x0D));
  EXPECT_EQ(std::nullopt, modules[0]->Byte(SIZE_MAX));
  EXPECT_EQ(std::nullopt, modules[1]->Dword(0x08));
  EXPECT_EQ(nullptr, smbios.First(4));
}

TEST(ParseSmbios, KnowsBothEntryPoints) {
  const kit::TSmbios old = kit::ParseSmbios(std::string_view("_SM_\0\x1F\x02\x08", 8), "");
  EXPECT_EQ(2u, old.major);
  EXPECT_EQ(8u, old.minor);
  for (const std::string_view entry : {"", "_SM", "_SM_", "_SM3_\x01", "garbage in here"}) {
    EXPECT_EQ(0u, kit::ParseSmbios(entry, "").major) << entry;
  }
}

TEST(ParseSmbiosTable, EndsAtTheFirstStructureThatDoesNotFit) {
  const std::string whole = SmbiosStructure(1, 1, 6).Text(4, "text").GetBytes();
  const struct {
    std::string table;
    size_t structures;
  } kRows[] = {
      {"",                                   0  },
      {std::string("\x01\x04\0",             3),  0},
      {std::string("\x01\x03\0\0\0\0",                                    6),          0}, // shorter than its own header
      {std::string("\x01\xFF\0\0\0\0",                                   6),                             0}, // longer than the table
      {whole + std::string("\x01\0\0\0\0\0",6),1},
      {whole.substr(0, 6),   1}, // no texts at all
      {whole.substr(0,                                    8),                          1}, // a text without end
      {whole + SmbiosStructure(127,                                   2,                                    4).GetBytes() + whole, 1}, // beyond the end mark
      {whole + whole,2},
  };
  for (const auto& row : kRows) {
    EXPECT_EQ(row.structures, kit::ParseSmbiosTable(row.table).size());
  }
}

TEST(ParseSmbiosTable, SurvivesEveryCutAndManyMutations) {
  const std::string table = SomeTable();
  const auto touch = [](const std::string& bytes) {
    for (const auto& structure : kit::ParseSmbiosTable(bytes)) {
      for (size_t offset = 0; offset < 260; ++offset) {
        structure.Qword(offset);
        structure.Text(offset);
      }
    }
  };
  for (size_t size = 0; size <= table.size(); ++size) touch(table.substr(0, size));
  std::mt19937 random(20240229);
  for (int round = 0; round < 2000; ++round) {
    std::string mutated = table;
    for (int i = 0; i < 4; ++i) mutated[random() % mutated.size()] = static_cast<char>(random());
    touch(mutated);
  }
  const std::string largest(1 << 20, '\x04');  // 2^18 structures, or one text of a megabyte
  EXPECT_LE(kit::ParseSmbiosTable(largest).size(), largest.size() / 4);
}

// ---- Records ----

const char kBase[] = ZEL_SOURCE_DIR "/schema/zelcore.base.xml";

std::string Declaration(const std::string& classes) {
  return "<?xml version=\"1.0\"?><CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\"><DECLARATION>"
         "<DECLGROUP>" +
         classes + "</DECLGROUP></DECLARATION></CIM>";
}

std::string KitClass() {
  std::string properties;
  for (const char* type : {"boolean", "uint8", "sint8", "uint16", "sint16", "uint32", "sint32",
                           "uint64", "sint64", "string", "datetime", "real32"}) {
    properties += std::string("<PROPERTY NAME=\"a_") + type + "\" TYPE=\"" + type + "\"/>";
    properties += std::string("<PROPERTY.ARRAY NAME=\"many_") + type + "\" TYPE=\"" + type + "\"/>";
  }
  const std::string key =
      "<QUALIFIER NAME=\"KEY\" TYPE=\"boolean\"><VALUE>true</VALUE></QUALIFIER>";
  return "<VALUE.OBJECT><CLASS NAME=\"Kit_Thing\" SUPERCLASS=\"CIM_ManagedElement\">"
         "<PROPERTY NAME=\"Name\" TYPE=\"string\">" +
         key +
         "</PROPERTY>"
         "<PROPERTY NAME=\"Number\" TYPE=\"uint16\">" +
         key + "</PROPERTY>" + properties +
         "</CLASS></VALUE.OBJECT>"
         "<VALUE.OBJECT><CLASS NAME=\"Kit_Link\" SUPERCLASS=\"CIM_Dependency\">"
         "<QUALIFIER NAME=\"ASSOCIATION\" TYPE=\"boolean\"><VALUE>true</VALUE></QUALIFIER>"
         "</CLASS></VALUE.OBJECT>";
}

// A container with the classes, and a handle to it.
class Kit : public testing::Test {
 protected:
  Kit() : fHandle(&fContainer, nullptr) {
    fContainer.PopulateContainerFromFile(kBase);
    fContainer.PopulateContainerFromFile(fDir.WriteFile("kit.xml", Declaration(KitClass())));
  }

  kit::TRecord Thing(const char* name) {
    kit::TRecord record(&fHandle, "Kit_Thing");
    record.Set("Name", name).Set("Number", uint16_t{7});
    return record;
  }
  std::string Value(const std::string& property) {
    return Collected::Text(*fHandle.GetCurrentInstance(), property);
  }

  TempDir fDir;
  TContainer fContainer;
  zelIOHandle fHandle;
};

TEST_F(Kit, RecordsSetEveryType) {
  const TimeZone zone("Asia/Kolkata");
  EXPECT_EQ(zelStatusOK, Thing("all")
                             .Set("a_boolean", true)
                             .Set("a_uint8", uint8_t{8})
                             .Set("a_sint8", int8_t{-8})
                             .Set("a_uint16", uint16_t{16})
                             .Set("a_sint16", int16_t{-16})
                             .Set("a_uint32", uint32_t{32})
                             .Set("a_sint32", int32_t{-32})
                             .Set("a_uint64", uint64_t{64})
                             .Set("a_sint64", int64_t{-64})
                             .Set("a_string", std::string("text"))
                             .Set("a_datetime", kit::FromUnixTime(1715900000, 250000))
                             .SetText("a_real32", std::string("0.75"))
                             .Set("many_boolean", std::vector<bool>{true, false})
                             .Set("many_uint8", std::vector<uint8_t>{1, 2})
                             .Set("many_uint64", std::vector<uint64_t>{1, UINT64_MAX})
                             .Set("many_string", std::vector<std::string>{"a", "b"})
                             .Set("many_sint32", std::vector<int32_t>{})
                             .Status());
  EXPECT_EQ("8 -8 16 -16 32 -32 64 -64", Value("a_uint8") + " " + Value("a_sint8") + " " +
                                             Value("a_uint16") + " " + Value("a_sint16") + " " +
                                             Value("a_uint32") + " " + Value("a_sint32") + " " +
                                             Value("a_uint64") + " " + Value("a_sint64"));
  EXPECT_TRUE(
      static_cast<bool>(fHandle.GetCurrentInstance()->GetProperty("a_boolean")->GetValue()));
  EXPECT_EQ("text", Value("a_string"));
  EXPECT_EQ("20240517042320.250000+330", Value("a_datetime"));  // 2024-05-16 22:53:20 UTC
  EXPECT_EQ("0.75", Value("a_real32"));
  EXPECT_EQ("1 2", Value("many_uint8"));
  EXPECT_EQ("1 18446744073709551615", Value("many_uint64"));
  EXPECT_EQ("a b", Value("many_string"));
  EXPECT_EQ("", Value("many_sint32"));
}

TEST_F(Kit, RecordsLeaveOutWhatIsNotKnown) {
  const std::optional<std::string> noText;
  EXPECT_EQ(zelStatusOK, Thing("blank")
                             .Set("a_uint32", std::optional<uint32_t>())
                             .Set("a_string", noText)
                             .Set("a_datetime", std::optional<kit::TDateTime>())
                             .SetText("a_real32", noText)
                             .Set("many_string", std::optional<std::vector<std::string>>())
                             .Status());
  for (const char* name : {"a_uint32", "a_string", "a_datetime", "a_real32", "many_string"}) {
    EXPECT_EQ("NULL", Value(name)) << name;
  }
}

TEST_F(Kit, RecordsKeepTheFirstRefusal) {
  EXPECT_EQ(zelStatusTypeMismatch, Thing("wrong")
                                       .Set("a_uint8", uint16_t{1})
                                       .Set("missing", true)
                                       .Set("a_string", "not set any more")
                                       .Status());
  EXPECT_EQ("NULL", Value("a_string"));
  EXPECT_EQ(zelStatusNotFound, Thing("wrong").Set("missing", true).Status());
  EXPECT_EQ(zelStatusNotFound, kit::TRecord(&fHandle, "Kit_Missing").Set("Name", "x").Status());
  const TimeZone zone("UTC");  // the only refused moment is the second before the epoch
  EXPECT_EQ(
      zelStatusInvalidDateTime,
      Thing("wrong").Set("a_datetime", kit::TDateTime{1969, 12, 31, 23, 59, 59, 0, 0}).Status());
}

TEST_F(Kit, RecordsReferToOtherInstances) {
  ASSERT_EQ(zelStatusOK, Thing("one").Status());
  const kit::TPath path = kit::TPath("Kit_Thing").Key("Name", "one").Key("Number", uint16_t{7});
  EXPECT_EQ(
      zelStatusOK,
      kit::TRecord(&fHandle, "Kit_Link").Set("Antecedent", path).Set("Dependent", path).Status());
  const TCIMReference reference =
      fHandle.GetCurrentInstance()->GetProperty("Antecedent")->GetValue();
  EXPECT_EQ("Kit_Thing.Name=\"one\",Number=\"7\"", reference.GetPath());
  EXPECT_NE(nullptr, reference.GetCIMElement());
  EXPECT_EQ(zelStatusNotFound, kit::TRecord(&fHandle, "Kit_Link")
                                   .Set("Antecedent", kit::TPath("Kit_Missing").Key("Name", "x"))
                                   .Status());
}

TEST_F(Kit, PathsOfDevicesNameTheSystemThatWouldHaveBeenCollected) {
  const Machine machine;
  setenv("ZEL_SYSROOT", machine.GetRoot().c_str(), 1);
  machine.Write("etc/hostname", " lone\x01ly\n");
  TPluginManager::Initialize(fDir.GetPath());
  EXPECT_STREQ("KVRSG_ComputerSystem", kit::SystemKeys().creationClassName);
  EXPECT_STREQ("lonely", kit::SystemKeys().name);
  unsetenv("ZEL_SYSROOT");
}

TEST(HostName, IsTheKernelsOrTheConfiguredOneOrLocalhost) {
  const Machine machine;
  setenv("ZEL_SYSROOT", machine.GetRoot().c_str(), 1);
  EXPECT_EQ("localhost", kit::HostName());
  machine.Write("etc/hostname", "configured\n");
  EXPECT_EQ("configured", kit::HostName());
  machine.Write("proc/sys/kernel/hostname", "kernels\n");
  EXPECT_EQ("kernels", kit::HostName());
  unsetenv("ZEL_SYSROOT");
  char name[256] = "";
  gethostname(name, sizeof name);
  EXPECT_EQ(name, kit::HostName());
}

// ---- Plug-ins ----

// A plug-in whose publisher does as `fgWork` says.
struct TFake {
  static constexpr const char* kName = "fake";
  using TFindings = int;

  static int Scan(const kit::TLog& log) {
    log.Warning("scan " + std::to_string(++fgScans));
    return fgScans;
  }
  static zelStatusCode Publish(zelIOHandle* out, const int& scan) {
    fgSeen.push_back(scan);
    return fgWork(out);
  }
  static constexpr kit::TPublisher<int> kPublishers[] = {
      {"Kit_Thing", Publish},
      {"Kit_Link",  Publish},
  };

  static inline int fgScans = 0;
  static inline std::vector<int> fgSeen;
  static inline zelStatusCode (*fgWork)(zelIOHandle*) = [](zelIOHandle*) { return zelStatusOK; };
};

class KitPlugin : public testing::Test {
 protected:
  KitPlugin() {
    TPluginManager::Initialize(fDir.GetPath());
    Schema().PopulateContainerFromFile(kBase);
    fDir.WriteFile("fake/fake.properties.xml", Declaration(KitClass()));
    static const kit::TPlugin<TFake> plugin;
    TPluginManager::GetInstance()->InitializeProviders(fDir.PathOf("fake/libfake.pi.so"));
  }

  static TContainer& Schema() { return *TPluginManager::GetInstance()->GetSchema(); }
  static IPluginCallbacks& Callbacks() {
    return *TPluginManager::GetInstance()->GetPluginsContainer().back()->GetCallbacks();
  }
  static std::string Ask(const std::vector<std::string>& names) {
    std::vector<TCIMClass*> classes;
    for (const std::string& name : names) classes.push_back(Schema().GetClass(name));
    return StatusOf([&] {
      dynamic_cast<IPluginBasicQueryCallbacks&>(Callbacks()).GetData(&Schema(), classes);
    });
  }

  TempDir fDir;
};

TEST_F(KitPlugin, SaysWhatItIs) {
  EXPECT_EQ("fake", Callbacks().GetName());
  EXPECT_EQ(ZEL_VERSION, Callbacks().GetVersion());
  EXPECT_EQ("1.0", Callbacks().GetInterfaceVersion());
  EXPECT_EQ(0, Callbacks().GetType());
}

TEST_F(KitPlugin, ScansOncePerCollection) {
  EXPECT_EQ("zelStatusOK", Ask({}));
  EXPECT_EQ(0, TFake::fgScans);
  EXPECT_EQ("zelStatusOK", Ask({"Kit_Thing", "CIM_Card"}));
  EXPECT_EQ("zelStatusOK", Ask({"Kit_Link"}));
  EXPECT_THAT(TFake::fgSeen, ElementsAre(1, 1));
  EXPECT_EQ("zelStatusOK", Ask({"Kit_Thing"}));  // a new collection
  EXPECT_EQ("zelStatusOK", Ask({"Kit_Link"}));
  EXPECT_THAT(TFake::fgSeen, ElementsAre(1, 1, 2, 2));
  EXPECT_THAT(LogLines(zelLogWarning), ElementsAre("scan 1", "scan 2"));
}

TEST_F(KitPlugin, TurnsWhatGoesWrongIntoAStatus) {
  const struct {
    zelStatusCode (*work)(zelIOHandle*);
    const char* status;
    const char* message;
  } kRows[] = {
      {[](zelIOHandle*) { return zelStatusNotSupported; },                            "zelStatusNotSupported", ""                 },
      {[](zelIOHandle*) -> zelStatusCode { throw std::bad_alloc(); },                 "zelStatusOutOfMemory",  ""                 },
      {[](zelIOHandle*) -> zelStatusCode { throw std::runtime_error("broken fan"); },
       "zelStatusFail",                                                                                        "broken fan"       },
      {[](zelIOHandle*) -> zelStatusCode { throw 42; },                               "zelStatusFail",         "unknown exception"},
  };
  for (const auto& row : kRows) {
    ClearLog();
    TFake::fgWork = row.work;
    EXPECT_EQ(row.status, Ask({"Kit_Thing"}));
    const auto errors = LogLines(zelLogError);
    EXPECT_EQ(row.message, errors.empty() ? "" : errors.front());
  }
}

}  // namespace
