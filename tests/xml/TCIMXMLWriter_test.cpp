#include "zelcore/TCIMXMLWriter.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <unistd.h>

#include <fstream>
#include <memory>

#include "tests/support/TempDir.h"
#include "tests/xml/Written.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using TCIMType = TCIMValue::TCIMType;
using ECompression = TCIMXMLWriter::ECompression;

constexpr char kHead[] =
    "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n"
    "<CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\">\n<DECLARATION>\n<DECLGROUP>\n";
constexpr char kTail[] = "</DECLGROUP>\n</DECLARATION>\n</CIM>\n";

TEST(TCIMXMLWriter, WritesDeclarationsClassesAndInstances) {
  Zoo zoo;
  TContainer container;
  const std::string document = InGroup(
      "<QUALIFIER.DECLARATION NAME=\"Key\" TYPE=\"boolean\" OVERRIDABLE=\"false\" "
      "TRANSLATABLE=\"true\"><SCOPE PROPERTY=\"true\"/><VALUE>false</VALUE>"
      "</QUALIFIER.DECLARATION>"
      "<QUALIFIER.DECLARATION NAME=\"Values\" TYPE=\"string\" ISARRAY=\"true\" ARRAYSIZE=\"7\" "
      "TOSUBCLASS=\"false\"><SCOPE CLASS=\"true\" REFERENCE=\"true\" ASSOCIATION=\"true\"/>"
      "</QUALIFIER.DECLARATION>"
      "<VALUE.OBJECT><CLASS NAME=\"ACME_Fan\">"
      "<QUALIFIER NAME=\"Values\" TYPE=\"string\"><VALUE.ARRAY><VALUE>a</VALUE><VALUE>b</VALUE>"
      "</VALUE.ARRAY></QUALIFIER>"
      "<PROPERTY NAME=\"Id\" TYPE=\"string\"><QUALIFIER NAME=\"Key\" TYPE=\"boolean\">"
      "<VALUE>true</VALUE></QUALIFIER></PROPERTY>"
      "<PROPERTY.ARRAY NAME=\"Speeds\" TYPE=\"uint32\" ARRAYSIZE=\"3\"/>"
      "<PROPERTY NAME=\"Blades\" TYPE=\"uint8\"><VALUE>5</VALUE></PROPERTY>"
      "</CLASS></VALUE.OBJECT>"
      "<VALUE.OBJECT><CLASS NAME=\"ACME_Turbo\" SUPERCLASS=\"ACME_Fan\"/></VALUE.OBJECT>"
      "<VALUE.OBJECT><INSTANCE CLASSNAME=\"ACME_Turbo\">"
      "<PROPERTY NAME=\"Id\" TYPE=\"string\"><VALUE>x</VALUE></PROPERTY>"
      "<PROPERTY.ARRAY NAME=\"Speeds\" TYPE=\"uint32\"><VALUE.ARRAY><VALUE>1</VALUE>"
      "<VALUE>2</VALUE></VALUE.ARRAY></PROPERTY.ARRAY></INSTANCE></VALUE.OBJECT>");
  std::string buffer = document;
  TCIMXMLParser(container).Parse(buffer.data());

  const std::string key =
      "<QUALIFIER NAME=\"Key\" TYPE=\"boolean\" OVERRIDABLE=\"false\" TOSUBCLASS=\"true\" "
      "TRANSLATABLE=\"true\"><VALUE>true</VALUE></QUALIFIER>\n";
  EXPECT_EQ(
      std::string(kHead) +
          "<QUALIFIER.DECLARATION NAME=\"Key\" TYPE=\"boolean\" ISARRAY=\"false\" "
          "OVERRIDABLE=\"false\" TOSUBCLASS=\"true\" TRANSLATABLE=\"true\">\n"
          "<SCOPE CLASS=\"false\" ASSOCIATION=\"false\" REFERENCE=\"false\" PROPERTY=\"true\"/>"
          "<VALUE>false</VALUE></QUALIFIER.DECLARATION>\n"
          "<QUALIFIER.DECLARATION NAME=\"Values\" TYPE=\"string\" ISARRAY=\"true\" ARRAYSIZE=\"7\" "
          "OVERRIDABLE=\"true\" TOSUBCLASS=\"false\" TRANSLATABLE=\"false\">\n"
          "<SCOPE CLASS=\"true\" ASSOCIATION=\"true\" REFERENCE=\"true\" PROPERTY=\"false\"/>"
          "</QUALIFIER.DECLARATION>\n"
          "<VALUE.OBJECT><CLASS NAME=\"ACME_Fan\">\n"
          "<QUALIFIER NAME=\"Values\" TYPE=\"string\" OVERRIDABLE=\"true\" TOSUBCLASS=\"false\" "
          "TRANSLATABLE=\"false\"><VALUE.ARRAY><VALUE>a</VALUE><VALUE>b</VALUE></VALUE.ARRAY>"
          "</QUALIFIER>\n"
          "<PROPERTY NAME=\"Blades\" TYPE=\"uint8\"><VALUE>5</VALUE></PROPERTY>\n"
          "<PROPERTY NAME=\"Id\" TYPE=\"string\">" +
          key +
          "</PROPERTY>\n"
          "<PROPERTY.ARRAY NAME=\"Speeds\" TYPE=\"uint32\" ARRAYSIZE=\"3\"></PROPERTY.ARRAY>\n"
          "</CLASS></VALUE.OBJECT>\n"
          "<VALUE.OBJECT><CLASS NAME=\"ACME_Turbo\" SUPERCLASS=\"ACME_Fan\">\n"
          "</CLASS></VALUE.OBJECT>\n"
          "<VALUE.OBJECT><INSTANCE CLASSNAME=\"ACME_Turbo\">\n"
          "<PROPERTY NAME=\"Id\" TYPE=\"string\"><VALUE>x</VALUE></PROPERTY>\n"
          "<PROPERTY.ARRAY NAME=\"Speeds\" TYPE=\"uint32\"><VALUE.ARRAY><VALUE>1</VALUE>"
          "<VALUE>2</VALUE></VALUE.ARRAY></PROPERTY.ARRAY>\n"
          "</INSTANCE></VALUE.OBJECT>\n" +
          kTail,
      Written([&](TCIMXMLWriter& writer) { writer.WriteContainer(container); }));
  EXPECT_THAT(LogLines(), IsEmpty());
}

// Zoo_Eats with these two animals.
TCIMInstance* Feed(Zoo& zoo, const TCIMReference& eater, const TCIMReference& eaten) {
  TCIMInstance* const meal = zoo.fContainer.AllocateInstance(zoo.fContainer.GetClass("Zoo_Eats"));
  meal->SetPropertyValue("Eater", TCIMValue(eater));
  meal->SetPropertyValue("Eaten", TCIMValue(eaten));
  meal->AddToContainer();
  return meal;
}

TCIMReference Animal(const Zoo& zoo, const std::string& key, const std::string& name) {
  TCIMReference path(&zoo.fContainer);
  path.SetClassName("Zoo_Animal");
  path.AddKeyValue(key, TCIMValue(name));
  return path;
}

TEST(TCIMXMLWriter, WritesReferencesWithTheSpellingOfTheDeclaration) {
  Zoo zoo;
  TCIMReference none(&zoo.fContainer);
  none.SetClassName("Zoo_Animal");
  TCIMInstance* const meal = Feed(zoo, Animal(zoo, "NAME", "a<b"), none);
  const std::string document = WrittenInstance(*meal);
  EXPECT_THAT(document,
              HasSubstr("<PROPERTY.REFERENCE NAME=\"Eater\" REFERENCECLASS=\"Zoo_Animal\">"
                        "<VALUE.REFERENCE><INSTANCENAME CLASSNAME=\"Zoo_Animal\">"
                        "<KEYBINDING NAME=\"Name\"><KEYVALUE>a&lt;b</KEYVALUE></KEYBINDING>"
                        "</INSTANCENAME></VALUE.REFERENCE></PROPERTY.REFERENCE>\n"));
  EXPECT_THAT(document, HasSubstr("<VALUE.REFERENCE><CLASSNAME NAME=\"Zoo_Animal\"/>"
                                  "</VALUE.REFERENCE></PROPERTY.REFERENCE>\n"));
  Zoo other;
  ASSERT_EQ("zelStatusOK", other.Read(document));
  EXPECT_THAT(other.Paths("Zoo_Eats"),
              ElementsAre("Zoo_Eats.Eaten=\"Zoo_Animal\",Eater=\"Zoo_Animal.Name=\"a<b\"\""));
}

TEST(TCIMXMLWriter, TellsTheKindOfKeysAndNestsReferences) {
  Zoo zoo;
  TCIMReference inner(&zoo.fContainer);
  inner.SetClassName("Zoo_Eats");
  inner.AddKeyValue("Eater", TCIMValue(Animal(zoo, "Name", "cat")));
  inner.AddKeyValue("Eaten", TCIMValue(Animal(zoo, "Name", "mouse")));
  ASSERT_EQ(
      "zelStatusOK",
      zoo.ReadGroup("<VALUE.OBJECT><CLASS NAME=\"Zoo_Seen\"><QUALIFIER NAME=\"Association\" "
                    "TYPE=\"boolean\"><VALUE>true</VALUE></QUALIFIER>"
                    "<PROPERTY.REFERENCE NAME=\"Meal\" REFERENCECLASS=\"Zoo_Eats\"><QUALIFIER "
                    "NAME=\"Key\" TYPE=\"boolean\"><VALUE>true</VALUE></QUALIFIER>"
                    "</PROPERTY.REFERENCE>"
                    "<PROPERTY.REFERENCE NAME=\"Cage\" REFERENCECLASS=\"Zoo_Cage\"/>"
                    "</CLASS></VALUE.OBJECT>"));
  TCIMReference cage(&zoo.fContainer);
  cage.SetClassName("Zoo_Cage");
  cage.AddKeyValue("Row", TCIMValue(3U));
  TCIMInstance* const seen = zoo.fContainer.AllocateInstance(zoo.fContainer.GetClass("Zoo_Seen"));
  seen->SetPropertyValue("Meal", TCIMValue(inner));
  seen->SetPropertyValue("Cage", TCIMValue(cage));
  seen->AddToContainer();
  const std::string document =
      Written([&](TCIMXMLWriter& writer) { writer.WriteContainer(zoo.fContainer); });
  EXPECT_THAT(document, HasSubstr("<KEYVALUE VALUETYPE=\"numeric\">3</KEYVALUE>"));
  EXPECT_THAT(document, HasSubstr("<INSTANCENAME CLASSNAME=\"Zoo_Eats\"><KEYBINDING NAME=\"Eaten\">"
                                  "<VALUE.REFERENCE><INSTANCENAME CLASSNAME=\"Zoo_Animal\">"
                                  "<KEYBINDING NAME=\"Name\"><KEYVALUE>mouse</KEYVALUE>"
                                  "</KEYBINDING></INSTANCENAME></VALUE.REFERENCE></KEYBINDING>"));
  TContainer other;
  std::string buffer = document;
  TCIMXMLParser(other).Parse(buffer.data());
  const TCIMInstance* const back = other.GetClass("Zoo_Seen")->EnumerateInstances(false).at(0);
  EXPECT_EQ(seen->BuildPath().GetPath(), back->BuildPath().GetPath());
  EXPECT_EQ("Zoo_Cage.Row=\"3\"", back->GetProperty("Cage")->GetValue().ToString(10));
}

TEST(TCIMXMLWriter, PutsClassesBehindWhatTheyNeed) {
  Zoo zoo;
  // By its superclass Zoo_Link comes before Zoo_Late, to which it refers.
  const std::string association =
      "<QUALIFIER NAME=\"Association\" TYPE=\"boolean\"><VALUE>true</VALUE></QUALIFIER>";
  const std::string abstract =
      "<QUALIFIER NAME=\"Abstract\" TYPE=\"boolean\"><VALUE>true</VALUE></QUALIFIER>";
  ASSERT_EQ("zelStatusOK", zoo.ReadClass("NAME=\"Zoo_Base\"", association + abstract));
  ASSERT_EQ("zelStatusOK", zoo.ReadClass("NAME=\"Zoo_Early\"", abstract));
  ASSERT_EQ("zelStatusOK", zoo.ReadClass("NAME=\"Zoo_Late\" SUPERCLASS=\"Zoo_Early\"", abstract));
  ASSERT_EQ(
      "zelStatusOK",
      zoo.ReadClass("NAME=\"Zoo_Link\" SUPERCLASS=\"Zoo_Base\"",
                    abstract + "<PROPERTY.REFERENCE NAME=\"R\" REFERENCECLASS=\"Zoo_Late\"/>"));
  const std::string document =
      Written([&](TCIMXMLWriter& writer) { writer.WriteContainer(zoo.fContainer); });
  EXPECT_THAT(ClassesIn(document), ElementsAre("Zoo_Animal", "Zoo_Cage", "Zoo_Eats", "Zoo_Idea",
                                               "Zoo_Base", "Zoo_Early", "Zoo_Late", "Zoo_Link"));
  EXPECT_THAT(ClassesIn(WrittenClasses({zoo.fContainer.GetClass("Zoo_Link")})),
              ElementsAre("Zoo_Base", "Zoo_Early", "Zoo_Late", "Zoo_Link"));
}

TEST(TCIMXMLWriter, TakesAChainOfAnyLength) {
  Zoo zoo;
  TCIMClass* last = nullptr;
  for (int i = 0; i < 20000; ++i) {
    last = zoo.fContainer.AllocateClass("Zoo_C" + std::to_string(i),
                                        last ? last : zoo.fContainer.GetClass("Zoo_Cage"));
    last->AddToContainer();
  }
  const std::vector<std::string> classes = ClassesIn(WrittenClasses({last}));
  ASSERT_EQ(20001U, classes.size());
  EXPECT_EQ("Zoo_Cage", classes.front());
  EXPECT_EQ("Zoo_C19999", classes.back());
}

TEST(TCIMXMLWriter, WritesOwnDeclarationsAndTheQualifiersThatNothingHandsDown) {
  Zoo zoo;
  ASSERT_EQ("zelStatusOK",
            zoo.ReadClass("NAME=\"Zoo_Bird\" SUPERCLASS=\"Zoo_Animal\"",
                          "<QUALIFIER NAME=\"Description\" TYPE=\"string\"><VALUE>flies</VALUE>"
                          "</QUALIFIER>"
                          // As compilers write it: the key of what it overrides.
                          "<PROPERTY NAME=\"Name\" TYPE=\"string\">"
                          "<QUALIFIER NAME=\"Key\" TYPE=\"boolean\" PROPAGATED=\"true\">"
                          "<VALUE>true</VALUE></QUALIFIER><QUALIFIER NAME=\"Override\" "
                          "TYPE=\"string\"><VALUE>Name</VALUE></QUALIFIER></PROPERTY>"));
  ASSERT_EQ("zelStatusOK", zoo.ReadClass("NAME=\"Zoo_Owl\" SUPERCLASS=\"Zoo_Bird\"",
                                         "<QUALIFIER NAME=\"Values\" TYPE=\"string\" "
                                         "PROPAGATED=\"true\"/>"));
  EXPECT_TRUE(zoo.fContainer.GetClass("Zoo_Owl")->GetQualifier("Description")->GetPropagated());
  const std::string document = WrittenClasses({zoo.fContainer.GetClass("Zoo_Owl")});
  const std::string bird = document.substr(document.find("<CLASS NAME=\"Zoo_Bird\""));
  EXPECT_THAT(NamesAfter(bird, "<PROPERTY NAME=\""), ElementsAre("Name"));
  EXPECT_THAT(NamesAfter(bird, "<QUALIFIER NAME=\""),
              ElementsAre("Description", "Key", "Override", "Values"));
  EXPECT_THAT(bird, HasSubstr("NAME=\"Key\" TYPE=\"boolean\" PROPAGATED=\"true\" OVERRIDABLE"));
  EXPECT_THAT(bird, HasSubstr("NAME=\"Values\" TYPE=\"string\" PROPAGATED=\"true\""));
}

TEST(TCIMXMLWriter, WritesTheInstancesOfTheChosenClassesAlone) {
  Zoo zoo;
  ASSERT_EQ("zelStatusOK", zoo.ReadClass("NAME=\"Zoo_Cat\" SUPERCLASS=\"Zoo_Animal\"", ""));
  const std::string name = "<PROPERTY NAME=\"Name\" TYPE=\"string\"><VALUE>x</VALUE></PROPERTY>";
  ASSERT_EQ("zelStatusOK", zoo.ReadInstance("Zoo_Animal", name));
  ASSERT_EQ("zelStatusOK", zoo.ReadInstance("Zoo_Cat", name));
  TCIMClass* const animal = zoo.fContainer.GetClass("Zoo_Animal");
  TCIMClass* const cat = zoo.fContainer.GetClass("Zoo_Cat");
  TCIMClass copy(*cat);

  const std::string cats = WrittenClasses({cat, &copy, zoo.fContainer.GetRootClass()});
  EXPECT_THAT(ClassesIn(cats), ElementsAre("Zoo_Animal", "Zoo_Cat"));
  EXPECT_THAT(InstancesIn(cats), ElementsAre("Zoo_Cat"));
  EXPECT_EQ(6U, NamesAfter(cats, "<QUALIFIER.DECLARATION NAME=\"").size());
  const std::string animals = WrittenClasses({animal});
  EXPECT_THAT(ClassesIn(animals), ElementsAre("Zoo_Animal"));
  EXPECT_THAT(InstancesIn(animals), ElementsAre("Zoo_Animal"));
  EXPECT_EQ(std::string(kHead) + kTail, WrittenClasses({}));
}

TEST(TCIMXMLWriter, DeclaresTheClassesThatInstancesReferTo) {
  Zoo zoo;
  ASSERT_EQ("zelStatusOK", zoo.ReadClass("NAME=\"Zoo_Cat\" SUPERCLASS=\"Zoo_Animal\"", ""));
  TCIMReference cat(&zoo.fContainer);
  cat.SetClassName("Zoo_Cat");
  cat.AddKeyValue("Name", TCIMValue("tom"));
  Feed(zoo, cat, Animal(zoo, "Name", "mouse"));
  const std::string document = WrittenClasses({zoo.fContainer.GetClass("Zoo_Eats")});
  EXPECT_THAT(ClassesIn(document), ElementsAre("Zoo_Animal", "Zoo_Eats", "Zoo_Cat"));
  TContainer other;
  std::string buffer = document;
  EXPECT_EQ("zelStatusOK", StatusOf([&] { TCIMXMLParser(other).Parse(buffer.data()); }));
}

TEST(TCIMXMLWriter, WritesInstancesWithoutDeclarations) {
  Zoo zoo;
  EXPECT_EQ(std::string(kHead) + kTail,
            Written([](TCIMXMLWriter& writer) { writer.WriteInstances({}); }));
  TCIMInstance* const meal = Feed(zoo, Animal(zoo, "Name", "cat"), Animal(zoo, "Name", "mouse"));
  const std::string document = WrittenInstance(*meal);
  EXPECT_THAT(document, Not(HasSubstr("<CLASS ")));
  EXPECT_THAT(document, Not(HasSubstr("QUALIFIER")));
  EXPECT_THAT(InstancesIn(document), ElementsAre("Zoo_Eats"));
}

TEST(TCIMXMLWriter, LeavesOutWhatThereIsNoElementFor) {
  Zoo zoo;
  TCIMClass* const idea = zoo.fContainer.GetClass("Zoo_Idea");
  const auto arrayOf = [](TCIMType::ECIMType type) {
    return TCIMValue(static_cast<TCIMType::ECIMType>(type | TCIMType::TypeArray), 1);
  };
  idea->AddPropertyDecl(*new TCIMPropertyDecl("None", *idea, TCIMValue()));
  idea->AddPropertyDecl(*new TCIMPropertyDecl("Paths", *idea, arrayOf(TCIMType::TypeReference)));
  const auto flavor = TCIMQualifierDecl::FlavorOverridable;
  const auto* const decl = zoo.fContainer.AllocateQualifierDecl(
      "Path", TCIMValue(TCIMType::TypeReference, 0), TCIMQualifierDecl::ScopeNone, flavor);
  decl->AddToContainer();
  idea->AddQualifier(*new TCIMQualifier(*decl, decl->GetValue()));
  const std::string why = ": left out, there is no element for its type";
  const std::string document = WrittenClasses({idea});
  EXPECT_THAT(NamesAfter(document, "<CLASS NAME=\"Zoo_Idea\">\n<QUALIFIER NAME=\""),
              ElementsAre("Abstract"));
  EXPECT_THAT(document, Not(HasSubstr("<PROPERTY")));
  EXPECT_THAT(document, Not(HasSubstr("\"Path\"")));
  EXPECT_THAT(LogLines(zelLogWarning),
              ElementsAre("TCIMXMLWriter: Path" + why, "TCIMXMLWriter: Zoo_Idea.None" + why,
                          "TCIMXMLWriter: Zoo_Idea.Paths" + why));
}

TEST(TCIMXMLWriter, LeavesOutKeysWithoutText) {
  Zoo zoo;
  TCIMReference path(&zoo.fContainer);
  path.SetClassName("Zoo_Cage");
  path.AddKeyValue("Row", TCIMValue(1U));
  path.AddKeyValue("Number", TCIMValue(TCIMType::TypeUint16, 0));
  ASSERT_EQ("zelStatusOK", zoo.ReadClass("NAME=\"Zoo_In\"",
                                         "<QUALIFIER NAME=\"Association\" TYPE=\"boolean\">"
                                         "<VALUE>true</VALUE></QUALIFIER><PROPERTY.REFERENCE "
                                         "NAME=\"Cage\" REFERENCECLASS=\"Zoo_Cage\"><QUALIFIER "
                                         "NAME=\"Key\" TYPE=\"boolean\"><VALUE>true</VALUE>"
                                         "</QUALIFIER></PROPERTY.REFERENCE>"));
  const std::unique_ptr<TCIMInstance> in(
      zoo.fContainer.AllocateInstance(zoo.fContainer.GetClass("Zoo_In")));
  in->SetPropertyValue("Cage", TCIMValue(path));
  EXPECT_THAT(NamesAfter(WrittenInstance(*in), "<KEYBINDING NAME=\""), ElementsAre("Row"));
  EXPECT_THAT(LogLines(zelLogWarning),
              ElementsAre("TCIMXMLWriter: Zoo_In.Cage: left out key Number, which is NULL or an "
                          "array"));
}

TEST(TCIMXMLWriter, WritesAQualifierOfAnotherTypeWithoutItsValue) {
  Zoo zoo;
  TCIMClass* const idea = zoo.fContainer.GetClass("Zoo_Idea");
  idea->AddQualifier(
      *new TCIMQualifier(*zoo.fContainer.GetQualifierDecl("Description"), TCIMValue(5)));
  EXPECT_THAT(WrittenClasses({idea}),
              HasSubstr("NAME=\"Description\" TYPE=\"string\" OVERRIDABLE=\"true\" "
                        "TOSUBCLASS=\"true\" TRANSLATABLE=\"true\"></QUALIFIER>"));
  EXPECT_THAT(LogLines(zelLogWarning),
              ElementsAre("TCIMXMLWriter: Zoo_Idea: qualifier Description is not of its type and "
                          "read as NULL"));
}

TEST(TCIMXMLWriter, TellsOfClassesThatNeedEachOther) {
  Zoo zoo;
  TCIMClass* const eats = zoo.fContainer.GetClass("Zoo_Eats");
  TCIMValue self(TCIMType::TypeReference, 0);
  self.SetReferencedClass(*eats);
  eats->AddPropertyDecl(*new TCIMPropertyDecl("Self", *eats, self));
  EXPECT_THAT(ClassesIn(WrittenClasses({eats})), ElementsAre("Zoo_Animal", "Zoo_Eats"));
  EXPECT_THAT(LogLines(zelLogWarning),
              ElementsAre("TCIMXMLWriter: Zoo_Eats: needs class Zoo_Eats, which is declared behind "
                          "it"));
}

TEST(TCIMXMLWriter, WritesToADescriptorWhatItWritesToAStream) {
  Zoo zoo;
  const TempDir dir;
  const auto write = [&](TCIMXMLWriter writer) { writer.WriteContainer(zoo.fContainer); };
  for (const ECompression compression : {ECompression::kNone, ECompression::kGzip}) {
    const std::string path = dir.PathOf(compression == ECompression::kGzip ? "a.gz" : "a.xml");
    const int descriptor = open(path.c_str(), O_WRONLY | O_CREAT, 0600);
    write(TCIMXMLWriter(descriptor, compression));
    EXPECT_EQ(0, close(descriptor));
    std::ostringstream out;
    write(TCIMXMLWriter(out, compression));
    EXPECT_EQ(out.str(), ReadFile(path));
    TContainer other;
    EXPECT_EQ(4U, other.PopulateContainerFromFile(path).size());
  }
}

TEST(TCIMXMLWriter, FailsWhereNothingCanBeWritten) {
  Zoo zoo;
  const auto write = [&](TCIMXMLWriter writer) {
    ClearLog();
    return StatusOf([&] { writer.WriteContainer(zoo.fContainer); });
  };
  const int full = open("/dev/full", O_WRONLY | O_CLOEXEC);
  const int readOnly = open("/dev/null", O_RDONLY | O_CLOEXEC);
  for (const ECompression compression : {ECompression::kNone, ECompression::kGzip}) {
    EXPECT_EQ("zelStatusFileSystemError", write(TCIMXMLWriter(full, compression)));
    EXPECT_EQ("TCIMXMLWriter: cannot write: No space left on device", LastLogLine());
    EXPECT_EQ("zelStatusFileSystemError", write(TCIMXMLWriter(readOnly, compression)));
    EXPECT_EQ("TCIMXMLWriter: cannot write: Bad file descriptor", LastLogLine());

    // Short enough for the stream's own buffer: only the flush tells.
    std::ofstream out("/dev/full");
    std::vector<char> buffer(1 << 20);
    out.rdbuf()->pubsetbuf(buffer.data(), static_cast<std::streamsize>(buffer.size()));
    EXPECT_EQ("zelStatusFileSystemError", write(TCIMXMLWriter(out, compression)));
    EXPECT_EQ("TCIMXMLWriter: cannot write to the stream", LastLogLine());

    std::ofstream throwing("/dev/full");
    throwing.exceptions(std::ios::badbit | std::ios::failbit);
    EXPECT_EQ("zelStatusFileSystemError", write(TCIMXMLWriter(throwing, compression)));
    EXPECT_EQ("TCIMXMLWriter: cannot write to the stream", LastLogLine());
  }
  close(full);
  close(readOnly);
}

}  // namespace
