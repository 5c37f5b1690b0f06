#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/frontend/ShowDocument.h"

namespace {

using testing::HasSubstr;

TEST(Get, PrintsBareValues) {
  const TShowFile file;
  // clang-format off
  const struct {
    std::vector<std::string> arguments;
    const char* out;
  } rows[] = {
      {{"Acme_Disk.Size"},                       "2097152\n9007199254740993\n"       },
      {{"Acme_Disk.Size", "--text"},             "2 Megabytes\n8 Petabytes\n"        },
      {{"acme_disk.KIND"},                       "1\n9\n"                            },
      {{"Acme_Disk.Kind", "--text"},             "Fast\n9\n"                         },
      {{"Acme_Disk.Speed", "--text"},            "100 MHz\n"                         }, // NULL gives nothing
      {{"Acme_Disk.Tags"},                       "a\nb\n"                            },
      {{"Acme_Disk.Note"},                       "a\\x0Ab\n\n"                       }, // one line for each
      {{"Acme_Disk.Id", "--where", "Kind=Fast"}, "d1\n"                              },
      {{"Acme_Holds.Disk"},                      "Acme_Disk.Id=\"d1\"\n"             },
      {{"KVRSG_CollectionRun.StartTime"},        "2026-11-21T10:55:00.000000+01:00\n"},
      {{"CIM_ManagedElement.InstanceID"},        "run\nacme\n"                       }, // of subclasses
  };
  // clang-format on
  for (const auto& row : rows) {
    const TResult result = file.Get(row.arguments);
    EXPECT_EQ(0, result.code) << row.arguments[0];
    EXPECT_EQ(row.out, result.out) << row.arguments[0];
    EXPECT_EQ("", result.err);
  }
}

TEST(Get, TellsWhenThereIsNoValue) {
  const TShowFile file;
  // clang-format off
  const std::vector<std::vector<std::string>> rows = {
      {"Acme_Disk.Spare"},
      {"Acme_Empty.Id"},
      {"Acme_Disk.Id", "--where", "Id=d3"},
  };
  // clang-format on
  for (const std::vector<std::string>& arguments : rows) {
    const TResult result = file.Get(arguments);
    EXPECT_EQ(1, result.code);
    EXPECT_EQ("", result.out + result.err);
  }
}

TEST(Get, TellsWhenTheClassWasNotCollected) {
  const TShowFile file(document::RunOf(document::Set("IsPartial", "boolean", "true")) +
                       document::PluginStatus("acme", "Acme_Disk") +
                       document::PluginStatus("fan", "Acme_Empty", "it broke"));
  EXPECT_EQ(3, file.Get({"Acme_Empty.Id"}).code);
  EXPECT_EQ(0, file.Get({"Acme_Disk.Id"}).code);  // which is whole
}

TEST(Get, RefusesWhatIsNoProperty) {
  const TShowFile file;
  const struct {
    std::vector<std::string> arguments;
    std::string message;
  } rows[] = {
      {{"Acme_Disk.Sise"},
       "no property 'Sise' in Acme_Disk; did you mean Size? there are Id, Kind, Model, Note, "
       "Serial, Size, Spare, Speed, Tags"                                               },
      {{"Acme_Dsk.Size"},
       "no class or section 'Acme_Dsk'; did you mean Acme_Disk? 'zel schema' lists them"},
      {{"Acme_Disk.a-b"},
       "no property 'a-b' in Acme_Disk; there are Id, Kind, Model, Note, Serial, Size, Spare, "
       "Speed, Tags"                                                                    },
  };
  for (const auto& row : rows) {
    const TResult result = file.Get(row.arguments);
    EXPECT_EQ(2, result.code);
    EXPECT_EQ("zel: " + row.message + "\n", result.err);
  }
  for (const char* name : {"Acme_Disk", "Acme_Disk.", ".Size", ""}) {
    const TResult result = file.Get({name});
    EXPECT_EQ(2, result.code) << name;
    EXPECT_EQ("zel: '" + file.GetFile() + " " + name +
                  "' is no property; 'zel get [FILE] CLASS.PROPERTY' takes one, 'zel schema CLASS' "
                  "lists them\n",
              result.err);
  }
  const TResult none = Zel({"get"});
  EXPECT_EQ(2, none.code);
  EXPECT_EQ(
      "zel: name a property: 'zel get [FILE] CLASS.PROPERTY'; 'zel schema CLASS' lists them\n",
      none.err);
  EXPECT_EQ(2, file.Get({"A.b", "C.d"}).code);
}

// So many that the message would be no help.
TEST(Get, NamesNoMoreThanFortyProperties) {
  const TempDir dir;
  for (const int count : {40, 41}) {
    std::string properties = document::Key("Id");
    for (int i = 1; i < count; ++i)
      properties += document::Declare("P" + std::to_string(i), "string");
    const std::string file =
        dir.WriteFile("large.xml", document::Document(document::Class("T_Large", properties)));
    const std::string message = Zel({"get", file, "T_Large.Other"}).err;
    const std::string start = "zel: no property 'Other' in T_Large; ";
    if (count == 40) {
      EXPECT_EQ(0U, message.find(start + "there are Id, P1, P10, ")) << message;
    } else {
      EXPECT_EQ(start + "'zel schema T_Large' lists them\n", message);
    }
  }
}

TEST(Get, SaysWhyAFileCannotBeRead) {
  const TResult result = Zel({"get", "/nowhere/a.xml", "Acme_Disk.Id"});
  EXPECT_EQ(4, result.code);
  EXPECT_THAT(result.err, HasSubstr("cannot read '/nowhere/a.xml': No such file or directory; "));
}

TEST(Get, AsksThisMachineWithoutAFile) {
  const TPluginDir plugins({"noisy"});
  const TResult result =
      Zel({"get", "--base", kBase, "--plugin-dir", plugins.GetPath(), "Noisy_Thing.Text"});
  EXPECT_EQ(0, result.code);
  EXPECT_EQ("bell\\x07 and\\x0Aline\n", result.out);
}

}  // namespace
