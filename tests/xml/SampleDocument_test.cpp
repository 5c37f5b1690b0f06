#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>

#include "tests/support/LogSpy.h"
#include "tests/support/Status.h"
#include "tests/support/TempDir.h"
#include "xml/TCIMXMLParser.h"
#include "zelcore/zelcore.h"

// A document of our own, whole and in every broken form that we can think of.

namespace {

using testing::AnyOf;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr char kSample[] = ZEL_SOURCE_DIR "/tests/testdata/sample-inventory.xml";

std::string Read(TContainer& container, std::string document) {
  TCIMXMLParser parser(container);
  return StatusOf([&] { parser.Parse(document.data()); });
}

TEST(SampleDocument, GivesItsClassesAndInstances) {
  TContainer container;
  std::vector<std::string> names;
  for (const TCIMClass* cls : container.PopulateContainerFromFile(kSample)) {
    names.push_back(cls->GetName());
  }
  EXPECT_THAT(names, ElementsAre("Sample_Element", "Sample_Disk", "Sample_Mirror"));
  EXPECT_NE(nullptr, container.FindClass("Sample_Tape"));
  EXPECT_EQ(6U, container.EnumerateQualifiers().size());

  const TCIMClass* const disk = container.GetClass("Sample_Disk");
  EXPECT_THAT(disk->EnumerateKeyNames(), ElementsAre("DeviceID"));
  EXPECT_EQ("A disk & its heads", disk->GetPropertyDecl("Caption")->GetValue().ToString(10));
  EXPECT_EQ(disk, disk->GetPropertyDecl("Caption")->GetClass());
  EXPECT_EQ(16U, disk->GetPropertyDecl("Partitions")->GetValue().GetMaxArraySize());
  EXPECT_EQ("{ 0, 2 }",
            disk->GetPropertyDecl("Status")->GetQualifier("ValueMap")->GetValue().ToString(10));

  const std::vector<TCIMInstance*> disks = disk->EnumerateInstances(false);
  ASSERT_EQ(2U, disks.size());
  const TCIMInstance& sda = *disks[0];
  const TCIMInstance& sdb = *disks[1];
  EXPECT_EQ("Sample_Disk.DeviceID=\"sda\"", sda.BuildPath().GetPath());
  EXPECT_EQ("512110190592", sda.GetProperty("Size")->GetValue().ToString(10));
  EXPECT_EQ(
      "{ boot, Gr\xc3\xb6\xc3\x9f"
      "e,  }",
      sda.GetProperty("Partitions")->GetValue().ToString(10));
  EXPECT_EQ("20240229120000.000000+060", sda.GetProperty("InstallDate")->GetValue().ToString(10));
  EXPECT_EQ("2", sda.GetProperty("Status")->GetValue().ToString(10));
  EXPECT_EQ("0", sdb.GetProperty("Status")->GetValue().ToString(10));
  EXPECT_TRUE(sdb.GetProperty("Size")->GetValue().IsNull());

  const TCIMInstance& mirror =
      *container.GetClass("Sample_Mirror")->EnumerateInstances(false).at(0);
  const TCIMReference copy = mirror.GetProperty("Copy")->GetValue();
  EXPECT_EQ(&sdb, copy.GetCIMElement());
  EXPECT_THAT(LogLines(), IsEmpty());
}

TEST(SampleDocument, EndsWithAStatusWhereverItIsCut) {
  const std::string document = ReadFile(kSample);
  for (std::size_t length = 0; length < document.size(); ++length) {
    TContainer container;
    EXPECT_THAT(Read(container, document.substr(0, length)),
                AnyOf("zelStatusOK", "zelStatusInvalidSpecificationDocument"))
        << length;
    // What has been read can be worked with, and more be read.
    if (TCIMClass* const disk = container.FindClass("Sample_Disk")) {
      for (TCIMInstance* instance : disk->EnumerateInstances(true)) instance->BuildPath().GetPath();
    } else if (!container.FindClass("Sample_Element") && container.EnumerateQualifiers().empty()) {
      EXPECT_EQ("zelStatusOK", Read(container, document)) << length;
    }
  }
}

TEST(SampleDocument, EndsWithAStatusWhateverByteIsWrong) {
  const std::string document = ReadFile(kSample);
  std::mt19937 random(7);  // always the same
  constexpr char kBytes[] = "<>/&;\"'= aZ0.!?-\n\x01\x80\xff";
  for (int round = 0; round < 4000; ++round) {
    std::string broken = document;
    for (unsigned int i = random() % 3 + 1; i > 0; --i) {
      broken[random() % broken.size()] = kBytes[random() % (sizeof kBytes - 1)];
    }
    TContainer container;
    Read(container, broken);
  }
  TContainer container;
  EXPECT_EQ("zelStatusOK", Read(container, document));
}

TEST(SampleDocument, EndsWithAStatusWhateverIsMissing) {
  const std::string document = ReadFile(kSample);
  // Without one attribute, without its value, without one element's tags.
  std::vector<std::string> broken;
  for (std::size_t at = document.find("=\""); at != std::string::npos;
       at = document.find("=\"", at + 1)) {
    const std::size_t start = document.rfind(' ', at);
    const std::size_t end = document.find('"', at + 2);
    broken.push_back(document.substr(0, start) + document.substr(end + 1));
    broken.push_back(document.substr(0, at + 2) + document.substr(end));
  }
  for (std::size_t at = document.find("<CIM"); at != std::string::npos;
       at = document.find('<', at + 1)) {
    const std::size_t end = document.find('>', at);
    broken.push_back(document.substr(0, at) + document.substr(end + 1));
    broken.push_back(document.substr(0, at));
    if (end + 2 < document.size()) broken.back() += document.substr(document.find('<', end));
  }
  for (const std::string& text : broken) {
    TContainer container;
    Read(container, text);
    // Whatever came in stays whole: it can be walked and shown.
    for (TCIMClass* cls : container.GetRootClass()->EnumerateSubClasses(true)) {
      for (const TCIMInstance* instance : cls->EnumerateInstances(false)) {
        EXPECT_FALSE(instance->BuildPath().GetPath().empty());
        for (const TCIMProperty* property : instance->EnumerateProperties()) {
          StatusOf([&] { property->ToString(); });
        }
        StatusOf([&] { instance->Associators("", "", "", ""); });
      }
    }
    RestartLog();
  }
  EXPECT_LT(300U, broken.size());
}

TEST(SampleDocument, EndsWithAStatusWhateverElementsStandWhere) {
  // The elements of the document in any order and depth.
  const std::string document = ReadFile(kSample);
  std::vector<std::string> tags;
  for (std::size_t at = document.find("<CIM"); at != std::string::npos;
       at = document.find('<', at)) {
    const std::size_t end = document.find_first_of("<", at + 1);
    tags.push_back(document.substr(at, end - at));
    at = end;
  }
  std::mt19937 random(7);
  for (int round = 0; round < 2000; ++round) {
    std::vector<std::string> shuffled = tags;
    for (int i = 0; i < 4; ++i) {
      const std::size_t from = random() % shuffled.size();
      const std::size_t to = random() % shuffled.size();
      shuffled[to] = shuffled[from];
    }
    std::string text;
    for (const std::string& tag : shuffled) text += tag;
    TContainer container;
    Read(container, text);
  }
}

TEST(SampleDocument, MayNestAMillionElements) {
  std::string document =
      "<CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\"><DECLARATION><DECLGROUP><VALUE.OBJECT>"
      "<CLASS NAME=\"A\">";
  for (int i = 0; i < 1000000; ++i) document += "<METHOD>";
  TContainer container;
  EXPECT_EQ("zelStatusInvalidSpecificationDocument", Read(container, document));
  EXPECT_THAT(LogLines(), ElementsAre("CIM-XML Parser line 1:Unexpected character where element "
                                      "expected"));
  for (int i = 0; i < 1000000; ++i) document += "</METHOD>";
  ClearLog();
  EXPECT_EQ("zelStatusInvalidClass",
            Read(container, document + "</CLASS></VALUE.OBJECT></DECLGROUP></DECLARATION></CIM>"));
  EXPECT_EQ("Class A has no keys", LogLines().at(0));
}

}  // namespace
