#include <cmath>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <random>

#include "tests/support/TempDir.h"
#include "tests/xml/Description.h"
#include "tests/xml/RealDocuments.h"

// Containers that are written and read again, whole.

namespace {

using testing::IsEmpty;
using ECompression = TCIMXMLWriter::ECompression;

constexpr char kSample[] = ZEL_SOURCE_DIR "/tests/testdata/sample-inventory.xml";

// The part of the DMTF's document type for CIM 2.0 that our declaration documents use.
constexpr char kDocumentType[] = ZEL_SOURCE_DIR "/tests/testdata/declarations.dtd";

void Write(const TContainer& container, const std::string& path, ECompression compression) {
  std::ofstream out(path, std::ios::binary);
  TCIMXMLWriter(out, compression).WriteContainer(container);
}

// What `xmllint` has to say about a document; nothing where it is not installed.
std::string Lint(const TempDir& dir, const std::string& path) {
  if (std::system("xmllint --version >/dev/null 2>&1") != 0) return "";
  const std::string said = dir.PathOf("said");
  // It takes the name for a URI, in which there are no blanks.
  const std::string documentType = dir.WriteFile("declarations.dtd", ReadFile(kDocumentType));
  const std::string command =
      "xmllint --noout --huge --dtdvalid " + documentType + " " + path + " >" + said + " 2>&1";
  return std::system(command.c_str()) == 0 ? "" : "refused: " + ReadFile(said);
}

void ExpectEqual(const TContainer& expected, const TContainer& container) {
  const std::vector<std::string> wanted = Description(expected).fLines;
  const std::vector<std::string> lines = Description(container).fLines;
  ASSERT_EQ(wanted.size(), lines.size());
  for (std::size_t i = 0; i < lines.size(); ++i) ASSERT_EQ(wanted[i], lines[i]);
}

// Written plain and compressed, read again, and written from there.
void ExpectRoundTrip(const TContainer& container) {
  const TempDir dir;
  const std::string plain = dir.PathOf("a.xml");
  const std::string packed = dir.PathOf("a.xml.gz");
  const std::string again = dir.PathOf("again.xml");
  Write(container, plain, ECompression::kNone);
  Write(container, packed, ECompression::kGzip);
  EXPECT_EQ("", Lint(dir, plain));
  EXPECT_TRUE(ReadFile(plain) == ReadText(packed));
  for (const std::string& path : {plain, packed}) {
    TContainer back;
    ASSERT_EQ("zelStatusOK", StatusOf([&] { back.PopulateContainerFromFile(path); })) << path;
    ExpectEqual(container, back);
    Write(back, again, ECompression::kNone);
    EXPECT_TRUE(ReadFile(plain) == ReadFile(again));
  }
}

TEST(TCIMXMLWriterRoundTrip, GivesBackTheSample) {
  TContainer container;
  container.PopulateContainerFromFile(kSample);
  ExpectRoundTrip(container);
  EXPECT_THAT(LogLines(), IsEmpty());
}

TEST(TCIMXMLWriterRoundTrip, GivesBackTheBaseSchemaAndTheCollectorsDocuments) {
  TContainer container;
  container.PopulateContainerFromFile(ZEL_SOURCE_DIR "/schema/zelcore.base.xml");
  for (const auto& entry :
       std::filesystem::recursive_directory_iterator(ZEL_SOURCE_DIR "/collectors")) {
    if (entry.path().extension() == ".xml") container.PopulateContainerFromFile(entry.path());
  }
  ExpectRoundTrip(container);
  EXPECT_THAT(LogLines(), IsEmpty());
}

// Texts of any bytes but NUL and reals of any bits.
TEST(TCIMXMLWriterRoundTrip, GivesBackRandomTextsAndNumbers) {
  TContainer container;
  container.PopulateContainerFromFile(kSample);
  TCIMClass* const tape = container.GetClass("Sample_Tape");  // no subclass would miss them
  const std::string types[] = {"real32", "real64", "uint64", "sint64"};
  for (const std::string& type : types) {
    const TCIMValue null(TCIMValue::TCIMType(type), 0);
    tape->AddPropertyDecl(*new TCIMPropertyDecl("A_" + type, *tape, null));
  }
  std::mt19937_64 random(1);
  const auto bits = [&](auto value) {
    do {
      const auto any = random();
      std::memcpy(&value, &any, sizeof value);
    } while (!std::isfinite(static_cast<double>(value)));
    return TCIMValue(value);
  };
  const auto text = [&] {
    std::string bytes(random() % 12, ' ');
    for (char& c : bytes) c = static_cast<char>(1 + random() % 255);
    return TCIMValue(bytes);
  };
  for (int i = 0; i < 3000; ++i) {
    TCIMInstance* const instance = container.AllocateInstance(tape);
    instance->SetPropertyValue("DeviceID", TCIMValue("tape" + std::to_string(i)));
    instance->SetPropertyValue("Caption", text());
    instance->SetPropertyValue(
        "Partitions", TCIMValue(TCIMValue::TCIMType::TypeString, 0, {text(), text(), text()}));
    instance->SetPropertyValue("A_real32", bits(0.0F));
    instance->SetPropertyValue("A_real64", bits(0.0));
    instance->SetPropertyValue("A_uint64", bits(0UL));
    instance->SetPropertyValue("A_sint64", bits(0L));
    instance->AddToContainer();
  }
  ExpectRoundTrip(container);
}

using TCIMXMLWriterRealDocuments = RealDocuments;

TEST_F(TCIMXMLWriterRealDocuments, ComeBackEqual) {
  const std::vector<std::vector<std::string>> groups = {
      {"schema/dmtf-2.49.0-declarations.xml.gz",   "instances/centos77-host-value-object.xml.gz"},
      {"schema/inventory-classes-withpath.xml.gz",                                          "instances/centos77-host-withname.xml.gz"},
      {"schema/inventory-classes-declgroup.xml","instances/centos77-host-withpath.xml.gz"},
      {"schema/openpegasus-static-declarations.xml.gz"  },
  };
  for (const std::vector<std::string>& group : groups) {
    fContainer = std::make_unique<TContainer>();
    for (const std::string& document : group) ASSERT_EQ("zelStatusOK", Load(document)) << document;
    ExpectRoundTrip(*fContainer);
    EXPECT_THAT(LogLines(), IsEmpty());
  }
}

// Each class of the host alone, with what it needs.
TEST_F(TCIMXMLWriterRealDocuments, ComeBackClassByClass) {
  ASSERT_EQ("zelStatusOK", Load("schema/inventory-classes-declgroup.xml"));
  ASSERT_EQ("zelStatusOK", Load("instances/centos77-host-value-object.xml.gz"));
  const TempDir dir;
  const std::string path = dir.PathOf("a.xml");
  for (TCIMClass* cls : fContainer->GetRootClass()->EnumerateSubClasses(true)) {
    std::ofstream out(path);
    TCIMXMLWriter(out).WriteClasses({cls});
    TContainer back;
    ASSERT_EQ("zelStatusOK", StatusOf([&] { back.PopulateContainerFromFile(path); }));
    EXPECT_EQ("", Lint(dir, path));
    EXPECT_EQ(cls->EnumerateInstances(false).size(),
              back.GetClass(cls->GetName())->EnumerateInstances(false).size());
    EXPECT_EQ(cls->EnumerateInstances(false).size(),
              back.GetRootClass()->EnumerateInstances(true).size());
  }
}

}  // namespace
