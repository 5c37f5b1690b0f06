#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/xml/Zoo.h"

namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

std::string Property(const std::string& attributes, const std::string& value) {
  return "<PROPERTY " + attributes + "><VALUE>" + value + "</VALUE></PROPERTY>";
}

const std::string kTom = Property("NAME=\"Name\" TYPE=\"string\"", "Tom");

std::string Reference(const std::string& name, const std::string& path) {
  return "<PROPERTY.REFERENCE NAME=\"" + name + "\" REFERENCECLASS=\"Zoo_Animal\">" +
         "<VALUE.REFERENCE>" + path + "</VALUE.REFERENCE></PROPERTY.REFERENCE>";
}

// Reads an association in which `path` eats Tim.
std::string ReadEater(Zoo& zoo, const std::string& path) {
  return zoo.ReadInstance("Zoo_Eats",
                          Reference("Eater", path) + Reference("Eaten", AnimalName("Tim")));
}

std::string KeyBinding(const std::string& name, const std::string& content) {
  return "<KEYBINDING NAME=\"" + name + "\">" + content + "</KEYBINDING>";
}

TEST(CIMXMLInstance, GetsItsProperties) {
  Zoo zoo;
  EXPECT_EQ(
      "zelStatusOK",
      zoo.ReadInstance(
          "zoo_ANIMAL",
          Property("NAME=\"NAME\" TYPE=\"String\" CLASSORIGIN=\"Zoo_Animal\" "
                   "PROPAGATED=\"true\"",
                   "Tom") +
              Property("NAME=\"Legs\" TYPE=\"uint16\"", "3") + Property("NAME=\"Tame\"", "true") +
              Property("NAME=\"Born\" TYPE=\"datetime\"", "20190930141946.000000+000") +
              "<PROPERTY.ARRAY NAME=\"Tags\" TYPE=\"string\"><VALUE.ARRAY><VALUE>a</VALUE>"
              "<VALUE/></VALUE.ARRAY></PROPERTY.ARRAY>"
              "<PROPERTY.ARRAY NAME=\"Counts\" TYPE=\"uint8\" ARRAYSIZE=\"1\"><VALUE.ARRAY>"
              "<VALUE>1</VALUE><VALUE>0x10</VALUE></VALUE.ARRAY></PROPERTY.ARRAY>"));
  EXPECT_EQ("Tom", zoo.ValueOf("Zoo_Animal", "Name").ToString(10));
  EXPECT_EQ("3", zoo.ValueOf("Zoo_Animal", "Legs").ToString(10));
  EXPECT_TRUE(static_cast<bool>(zoo.ValueOf("Zoo_Animal", "Tame")));
  EXPECT_EQ("20190930141946.000000+000", zoo.ValueOf("Zoo_Animal", "Born").ToString(10));
  EXPECT_EQ("{ a,  }", zoo.ValueOf("Zoo_Animal", "Tags").ToString(10));
  EXPECT_EQ("{ 1, 16 }", zoo.ValueOf("Zoo_Animal", "Counts").ToString(10));
  EXPECT_EQ(1U, zoo.ValueOf("Zoo_Animal", "Counts").GetMaxArraySize());
  EXPECT_THAT(LogLines(), IsEmpty());
}

TEST(CIMXMLInstance, LeavesPropertiesWithoutValueAlone) {
  Zoo zoo;
  EXPECT_EQ("zelStatusOK",
            zoo.ReadInstance("Zoo_Animal", kTom + "<PROPERTY NAME=\"Legs\" TYPE=\"uint16\"/>"
                                                  "<PROPERTY NAME=\"Tame\"></PROPERTY>"
                                                  "<PROPERTY.ARRAY NAME=\"Tags\" TYPE=\"string\"/>"
                                                  "<PROPERTY.ARRAY NAME=\"Counts\"><VALUE.ARRAY/>"
                                                  "</PROPERTY.ARRAY>"));
  EXPECT_EQ("4", zoo.ValueOf("Zoo_Animal", "Legs").ToString(10));
  EXPECT_TRUE(zoo.ValueOf("Zoo_Animal", "Tame").IsNull());
  EXPECT_TRUE(zoo.ValueOf("Zoo_Animal", "Tags").IsNull());
  EXPECT_EQ("{  }", zoo.ValueOf("Zoo_Animal", "Counts").ToString(10));
}

TEST(CIMXMLInstance, NeedsItsClassInTheContainer) {
  Zoo zoo;
  EXPECT_EQ("zelStatusNotFound", zoo.ReadInstance("Zoo_Fish", ""));
  EXPECT_THAT(LogLines(zelLogError),
              ElementsAre("TCIMXMLParser: Couldn't find class Zoo_Fish",
                          "TCIMXMLParser: Threw exception zelStatusNotFound on line 1"));
  ClearLog();
  EXPECT_EQ("zelStatusInvalidCIMName", zoo.ReadInstance("Zoo-Fish", ""));
  EXPECT_THAT(
      LogLines(zelLogError),
      ElementsAre("CIM name 'Zoo-Fish' is invalid", "TCIMXMLParser: Couldn't find class Zoo-Fish",
                  "TCIMXMLParser: Threw exception zelStatusInvalidCIMName on line 1"));
}

TEST(CIMXMLInstance, NeedsItsPropertiesInTheClass) {
  const std::string kElements[] = {
      Property("NAME=\"Wings\" TYPE=\"uint16\"", "2"),
      "<PROPERTY.ARRAY NAME=\"Wings\" TYPE=\"uint16\"/>",
      Reference("Wings", AnimalName("Tim")),
  };
  for (const std::string& element : kElements) {
    RestartLog();
    Zoo zoo;
    EXPECT_EQ("zelStatusNotFound", zoo.ReadInstance("Zoo_Animal", kTom + element));
    EXPECT_THAT(LogLines(zelLogError),
                ElementsAre("TCIMXMLParser: Couldn't find property Wings",
                            "TCIMXMLParser: Threw exception zelStatusNotFound on line 1"));
    EXPECT_THAT(zoo.Paths("Zoo_Animal"), IsEmpty());
  }
}

TEST(CIMXMLInstance, NeedsTheDeclaredTypesWhereTypesAreGiven) {
  const std::string kElements[] = {
      "<PROPERTY NAME=\"Legs\" TYPE=\"uint32\"/>",
      "<PROPERTY NAME=\"Tags\" TYPE=\"string\"/>",
      "<PROPERTY.ARRAY NAME=\"Tags\" TYPE=\"uint8\"/>",
      "<PROPERTY.ARRAY NAME=\"Legs\" TYPE=\"uint16\"/>",
  };
  for (const std::string& element : kElements) {
    RestartLog();
    Zoo zoo;
    EXPECT_EQ("zelStatusInvalidSpecificationDocument",
              zoo.ReadInstance("Zoo_Animal", kTom + "\n" + element));
    EXPECT_THAT(LogLines(),
                ElementsAreArray(FatalLines(2, "Property type != property declaration type")))
        << element;
  }
  Zoo zoo;
  EXPECT_EQ("zelStatusTypeMismatch",
            zoo.ReadInstance("Zoo_Animal", Property("NAME=\"Name\" TYPE=\"char16\"", "T")));
  // What is no type is seen before what is no property.
  ClearLog();
  EXPECT_EQ("zelStatusTypeMismatch",
            zoo.ReadInstance("Zoo_Animal", Property("NAME=\"Wings\" TYPE=\"uint17\"", "2")));
  EXPECT_THAT(LogLines(),
              ElementsAre("TCIMXMLParser: Threw exception zelStatusTypeMismatch on line 1"));
}

TEST(CIMXMLInstance, MeetsTheModelWhereNoTypeIsGiven) {
  Zoo zoo;
  // A scalar is no value of an array, and an array none of a scalar.
  EXPECT_EQ("zelStatusOK", zoo.ReadInstance("Zoo_Animal", kTom + Property("NAME=\"Tags\"", "a")));
  EXPECT_TRUE(zoo.ValueOf("Zoo_Animal", "Tags").IsNull());
  EXPECT_EQ("zelStatusTypeMismatch",
            zoo.ReadInstance("Zoo_Animal",
                             "<PROPERTY.ARRAY NAME=\"Legs\"><VALUE.ARRAY/></PROPERTY.ARRAY>"));
  EXPECT_EQ("SetValue: decl is type uint16 but value is type uint16", LogLines().at(0));
  ClearLog();
  EXPECT_EQ("zelStatusTypeMismatch",
            zoo.ReadInstance("Zoo_Animal", Reference("Name", AnimalName("Tim"))));
  EXPECT_EQ("SetValue: decl is type string but value is type reference", LogLines().at(0));
  ClearLog();
  // No text is a reference: it is read as NULL, which refers to no class.
  EXPECT_EQ("zelStatusTypeMismatch",
            zoo.ReadInstance("Zoo_Eats", Property("NAME=\"Eater\"", "Zoo_Animal.Name=\"Tom\"")));
  EXPECT_EQ("SetValue: decl references type Zoo_Animal but value references ", LogLines().at(0));
}

TEST(CIMXMLInstance, NeedsItsKeys) {
  Zoo zoo;
  EXPECT_EQ("zelStatusInvalidInstance",
            zoo.ReadInstance("Zoo_Animal", Property("NAME=\"Legs\"", "3")));
  EXPECT_THAT(LogLines(),
              ElementsAre("Instance Zoo_Animal: key property Name is NULL",
                          "TCIMXMLParser: Threw exception zelStatusInvalidInstance on line 1"));
  EXPECT_THAT(zoo.Paths("Zoo_Animal"), IsEmpty());
}

TEST(CIMXMLInstance, MayRepeatAPath) {
  Zoo zoo;
  EXPECT_EQ("zelStatusOK", zoo.ReadInstance("Zoo_Animal", kTom));
  EXPECT_EQ("zelStatusOK", zoo.ReadInstance("Zoo_Animal", kTom));
  EXPECT_EQ(2U, zoo.Paths("Zoo_Animal").size());
}

TEST(CIMXMLInstance, MayBelongToTheRootClass) {
  Zoo zoo;
  EXPECT_EQ("zelStatusOK", zoo.ReadGroup("<VALUE.OBJECT><INSTANCE></INSTANCE></VALUE.OBJECT>"));
  EXPECT_EQ(1U, zoo.fContainer.GetRootClass()->EnumerateInstances(false).size());
}

TEST(CIMXMLReference, NamesAnInstanceInEveryForm) {
  const std::string kNamespaces =
      "<LOCALNAMESPACEPATH><NAMESPACE NAME=\"root\"/></LOCALNAMESPACEPATH>";
  const std::string kForms[] = {
      AnimalName("Tom"),
      // The key's spelling is the declaration's, and the class's is the class's own.
      "<INSTANCENAME CLASSNAME=\"ZOO_ANIMAL\">" + KeyBinding("NAME", "<KEYVALUE>Tom</KEYVALUE>") +
          "</INSTANCENAME>",
      "<LOCALINSTANCEPATH>" + kNamespaces + AnimalName("Tom") + "</LOCALINSTANCEPATH>",
      "<INSTANCEPATH><NAMESPACEPATH><HOST>h</HOST>" + kNamespaces + "</NAMESPACEPATH>" +
          AnimalName("Tom") + "</INSTANCEPATH>",
      // A class with one key needs no name for it.
      "<INSTANCENAME CLASSNAME=\"Zoo_Animal\"><KEYVALUE>Tom</KEYVALUE></INSTANCENAME>",
  };
  for (const std::string& form : kForms) {
    RestartLog();
    Zoo zoo;
    EXPECT_EQ("zelStatusOK", zoo.ReadInstance("Zoo_Animal", kTom));
    EXPECT_EQ("zelStatusOK", ReadEater(zoo, form)) << form;
    const TCIMReference eater = zoo.ValueOf("Zoo_Eats", "Eater");
    EXPECT_EQ("Zoo_Animal.Name=\"Tom\"", eater.GetPath());
    const TCIMInstance* const tom =
        zoo.fContainer.GetClass("Zoo_Animal")->EnumerateInstances(false).at(0);
    EXPECT_TRUE(eater == tom->BuildPath()) << form;
    EXPECT_EQ(tom, eater.GetCIMElement());
    EXPECT_EQ("Zoo_Animal.Name=\"Tim\"", zoo.ValueOf("Zoo_Eats", "Eaten").ToString(10));
    EXPECT_THAT(LogLines(), IsEmpty());
  }
}

TEST(CIMXMLReference, NamesAClassInEveryForm) {
  const std::string kNamespaces =
      "<LOCALNAMESPACEPATH><NAMESPACE NAME=\"root\"/></LOCALNAMESPACEPATH>";
  const std::string kForms[] = {
      "<CLASSNAME NAME=\"zoo_animal\"/>",
      "<LOCALCLASSPATH>" + kNamespaces + "<CLASSNAME NAME=\"Zoo_Animal\"/></LOCALCLASSPATH>",
      "<CLASSPATH><NAMESPACEPATH><HOST/>" + kNamespaces +
          "</NAMESPACEPATH><CLASSNAME NAME=\"Zoo_Animal\"></CLASSNAME></CLASSPATH>",
      // An instance's name without keys.
      "<INSTANCENAME CLASSNAME=\"Zoo_Animal\"/>",
  };
  for (const std::string& form : kForms) {
    Zoo zoo;
    EXPECT_EQ("zelStatusOK", ReadEater(zoo, form)) << form;
    const TCIMReference eater = zoo.ValueOf("Zoo_Eats", "Eater");
    EXPECT_EQ("Zoo_Animal", eater.GetPath());
    EXPECT_EQ(zoo.fContainer.GetClass("Zoo_Animal"), eater.GetCIMElement());
  }
  Zoo zoo;
  EXPECT_EQ("zelStatusNotFound", ReadEater(zoo, "<CLASSNAME NAME=\"Zoo_Fish\"/>"));
  EXPECT_THAT(LogLines(),
              ElementsAre("TCIMXMLParser: Threw exception zelStatusNotFound on line 1"));
}

TEST(CIMXMLReference, GivesKeysTheirDeclaredTypes) {
  Zoo zoo;
  EXPECT_EQ("zelStatusOK", zoo.ReadClass("NAME=\"Zoo_Lives\"",
                                         "<QUALIFIER NAME=\"Association\"><VALUE>true</VALUE>"
                                         "</QUALIFIER><PROPERTY.REFERENCE NAME=\"Cage\" "
                                         "REFERENCECLASS=\"Zoo_Cage\"><QUALIFIER NAME=\"Key\">"
                                         "<VALUE>true</VALUE></QUALIFIER></PROPERTY.REFERENCE>"));
  EXPECT_EQ("zelStatusOK",
            zoo.ReadInstance("Zoo_Lives",
                             "<PROPERTY.REFERENCE NAME=\"Cage\"><VALUE.REFERENCE>"
                             "<INSTANCENAME CLASSNAME=\"Zoo_Cage\">" +
                                 KeyBinding("Row",
                                            "<KEYVALUE VALUETYPE=\"numeric\">0x0F"
                                            "</KEYVALUE>") +
                                 KeyBinding("number",
                                            "<KEYVALUE VALUETYPE=\"string\" "
                                            "TYPE=\"string\">many</KEYVALUE>") +
                                 "</INSTANCENAME></VALUE.REFERENCE></PROPERTY.REFERENCE>"));
  const TCIMReference cage = zoo.ValueOf("Zoo_Lives", "Cage");
  EXPECT_EQ("Zoo_Cage.Number=\"0\",Row=\"15\"", cage.GetPath());
  EXPECT_EQ(TCIMValue::TCIMType::TypeUint32, cage.EnumerateKeyBindings().at("Row").GetType());

  // One text for all keys where it has no name.
  EXPECT_EQ("zelStatusOK",
            zoo.ReadInstance("Zoo_Lives",
                             "<PROPERTY.REFERENCE NAME=\"Cage\"><VALUE.REFERENCE>"
                             "<INSTANCENAME CLASSNAME=\"Zoo_Cage\"><KEYVALUE>7</KEYVALUE>"
                             "</INSTANCENAME></VALUE.REFERENCE></PROPERTY.REFERENCE>"));
  EXPECT_THAT(zoo.Paths("Zoo_Lives"),
              testing::Contains("Zoo_Lives.Cage=\"Zoo_Cage.Number=\"7\",Row=\"7\"\""));
}

TEST(CIMXMLReference, BindsReferencesAsKeys) {
  // Food that names the meal Tom eats Tim, by name and, with the only key of its class, without.
  const std::string kMeal =
      "<VALUE.REFERENCE><INSTANCENAME CLASSNAME=\"Zoo_Eats\">" +
      KeyBinding("Eater", "<VALUE.REFERENCE>" + AnimalName("Tom") + "</VALUE.REFERENCE>") +
      KeyBinding("Eaten", "<VALUE.REFERENCE>" + AnimalName("Tim") + "</VALUE.REFERENCE>") +
      "</INSTANCENAME></VALUE.REFERENCE>";
  const std::string kMealPath =
      "Zoo_Eats.Eaten=\"Zoo_Animal.Name=\"Tim\"\",Eater=\"Zoo_Animal.Name=\"Tom\"\"";
  for (const std::string& name : {KeyBinding("Meal", kMeal), kMeal}) {
    Zoo zoo;
    const std::string kReference =
        "<PROPERTY.REFERENCE NAME=\"Meal\" REFERENCECLASS=\"%\"><QUALIFIER NAME=\"Key\">"
        "<VALUE>true</VALUE></QUALIFIER></PROPERTY.REFERENCE>";
    for (const char* names : {"Zoo_Food Zoo_Eats", "Zoo_Box Zoo_Food"}) {
      const std::string both = names;
      std::string reference = kReference;
      reference.replace(reference.find('%'), 1, both.substr(both.find(' ') + 1));
      EXPECT_EQ("zelStatusOK", zoo.ReadClass("NAME=\"" + both.substr(0, both.find(' ')) + "\"",
                                             "<QUALIFIER NAME=\"Association\"><VALUE>true</VALUE>"
                                             "</QUALIFIER>" +
                                                 reference));
    }
    EXPECT_EQ(
        "zelStatusOK",
        zoo.ReadInstance("Zoo_Box",
                         "<PROPERTY.REFERENCE NAME=\"Meal\"><VALUE.REFERENCE>"
                         "<INSTANCENAME CLASSNAME=\"Zoo_Food\">" +
                             name + "</INSTANCENAME></VALUE.REFERENCE></PROPERTY.REFERENCE>"));
    EXPECT_EQ("Zoo_Food.Meal=\"" + kMealPath + "\"", zoo.ValueOf("Zoo_Box", "Meal").ToString(10));
  }
}

TEST(CIMXMLReference, NeedsClassAndKeysInTheContainer) {
  const auto expectFatal = [](const std::string& path, const std::string& message) {
    RestartLog();
    Zoo zoo;
    EXPECT_EQ("zelStatusInvalidSpecificationDocument", ReadEater(zoo, path)) << path;
    EXPECT_THAT(LogLines(zelLogError), ElementsAreArray(FatalLines(1, message)));
  };
  const auto name = [](const std::string& className, const std::string& content) {
    return "<INSTANCENAME CLASSNAME=\"" + className + "\">" + content + "</INSTANCENAME>";
  };
  const std::string kValue = "<KEYVALUE>2</KEYVALUE>";
  expectFatal(name("Zoo_Fish", ""), "Couldn't find class name Zoo_Fish");
  expectFatal(name("Zoo_Idea", ""), "Class Zoo_Idea doesn't have any key properties");
  expectFatal(name("Zoo_Idea", kValue), "Class Zoo_Idea doesn't have any key properties");
  for (const std::string& value : {kValue, std::string()}) {
    expectFatal(name("Zoo_Animal", KeyBinding("Wings", value)),
                "Couldn't find property name Wings in class Zoo_Animal");
  }
}

TEST(CIMXMLReference, RefusesBindingsThatTheModelRefuses) {
  Zoo zoo;
  EXPECT_EQ("zelStatusInvalidOpSequence",
            ReadEater(zoo, "<INSTANCENAME CLASSNAME=\"Zoo_Animal\">" +
                               KeyBinding("Legs", "<KEYVALUE>2</KEYVALUE>") + "</INSTANCENAME>"));
  EXPECT_EQ("AddKeyValue() called with a non-key property Legs", LogLines().at(0));
  ClearLog();
  EXPECT_EQ("zelStatusTypeMismatch",
            ReadEater(zoo, "<INSTANCENAME CLASSNAME=\"Zoo_Animal\">" +
                               KeyBinding("Name", "<VALUE.REFERENCE>" + AnimalName("Tim") +
                                                      "</VALUE.REFERENCE>") +
                               "</INSTANCENAME>"));
  EXPECT_EQ("Declaration type: string Value type: reference", LogLines().at(0));
  ClearLog();
  EXPECT_EQ(
      "zelStatusTypeMismatch",
      zoo.ReadInstance("Zoo_Eats", Reference("Eater", "<INSTANCENAME CLASSNAME=\"Zoo_Cage\"/>")));
  EXPECT_EQ("SetValue: decl references type Zoo_Animal but value references Zoo_Cage",
            LogLines().at(0));
}

TEST(CIMXMLReference, IsRefusedAtTheEndOfItsProperty) {
  Zoo zoo;
  EXPECT_EQ("zelStatusTypeMismatch",
            zoo.ReadInstance("Zoo_Eats",
                             "<PROPERTY.REFERENCE NAME=\"Eater\">\n<VALUE.REFERENCE>"
                             "<INSTANCENAME CLASSNAME=\"Zoo_Cage\"/></VALUE.REFERENCE>\n"
                             "</PROPERTY.REFERENCE>\n"));
  EXPECT_THAT(LogLines(),
              testing::Contains("TCIMXMLParser: Threw exception zelStatusTypeMismatch on line 3"));
}

TEST(CIMXMLReference, IsAcceptedWithoutKeysInADiffContainer) {
  Zoo zoo;
  zoo.fContainer.hackhack_TurnIntoADiffContainer();
  EXPECT_EQ("zelStatusOK", zoo.ReadClass("NAME=\"Zoo_Dream\"",
                                         "<QUALIFIER NAME=\"Association\"><VALUE>true</VALUE>"
                                         "</QUALIFIER><QUALIFIER NAME=\"Abstract\">"
                                         "<VALUE>true</VALUE></QUALIFIER>"
                                         "<PROPERTY.REFERENCE NAME=\"Of\"/>"
                                         "<PROPERTY NAME=\"Depth\" TYPE=\"uint8\"/>"));
  const std::string kPaths[] = {
      "<INSTANCENAME CLASSNAME=\"Zoo_Idea\"/>",
      "<INSTANCENAME CLASSNAME=\"Zoo_Idea\">" + KeyBinding("Id", "<KEYVALUE>2</KEYVALUE>") +
          "</INSTANCENAME>",
      "<INSTANCENAME CLASSNAME=\"Zoo_Dream\">" + KeyBinding("Depth", "<KEYVALUE>2</KEYVALUE>") +
          "</INSTANCENAME>",
      "<INSTANCENAME CLASSNAME=\"Zoo_Idea\"><KEYVALUE>2</KEYVALUE></INSTANCENAME>",
  };
  for (const std::string& path : kPaths) {
    EXPECT_EQ("zelStatusOK",
              zoo.ReadInstance("Zoo_Dream", "<PROPERTY.REFERENCE NAME=\"Of\"><VALUE.REFERENCE>" +
                                                path + "</VALUE.REFERENCE></PROPERTY.REFERENCE>"))
        << path;
  }
  EXPECT_THAT(LogLines(), IsEmpty());
  for (const TCIMInstance* dream :
       zoo.fContainer.GetClass("Zoo_Dream")->EnumerateInstances(false)) {
    const TCIMReference of = dream->GetProperty("Of")->GetValue();
    EXPECT_THAT(of.EnumerateKeyBindings(), IsEmpty());
  }
  // Where there are keys they are read as anywhere, and may be missing.
  EXPECT_EQ("zelStatusOK", ReadEater(zoo, AnimalName("Tom")));
  EXPECT_EQ("Zoo_Animal.Name=\"Tom\"", zoo.ValueOf("Zoo_Eats", "Eater").ToString(10));
}

// References in the keys of references, to a depth, and in the innermost key `key`.
std::string Nested(
    unsigned int depth,
    const std::string& key = "<VALUE.REFERENCE><CLASSNAME NAME=\"Zoo_Knot\"/></VALUE.REFERENCE>") {
  std::string open;
  std::string close;
  for (unsigned int i = 0; i < depth; ++i) {
    open += "<VALUE.REFERENCE><INSTANCENAME CLASSNAME=\"Zoo_Knot\"><KEYBINDING NAME=\"Next\">";
    close += "</KEYBINDING></INSTANCENAME></VALUE.REFERENCE>";
  }
  return "<PROPERTY.REFERENCE NAME=\"Next\">" + open + key + close + "</PROPERTY.REFERENCE>";
}

// Zoo_Knot, an association whose key Next refers to anything.
void DeclareKnot(Zoo& zoo) {
  EXPECT_EQ("zelStatusOK", zoo.ReadClass("NAME=\"Zoo_Knot\"",
                                         "<QUALIFIER NAME=\"Association\"><VALUE>true</VALUE>"
                                         "</QUALIFIER><PROPERTY.REFERENCE NAME=\"Next\">"
                                         "<QUALIFIER NAME=\"Key\"><VALUE>true</VALUE></QUALIFIER>"
                                         "</PROPERTY.REFERENCE>"));
}

TEST(CIMXMLReference, NestsToADepth) {
  Zoo zoo;
  DeclareKnot(zoo);
  EXPECT_EQ("zelStatusOK", zoo.ReadInstance("Zoo_Knot", Nested(60)));
  EXPECT_THAT(LogLines(), IsEmpty());
  EXPECT_EQ("zelStatusInvalidSpecificationDocument", zoo.ReadInstance("Zoo_Knot", Nested(100000)));
  EXPECT_THAT(LogLines().at(0), testing::StartsWith("CIM-XML Parser line 1:Unexpected element "));
}

// 256 elements may be open: these are 3 for each reference and 6 around them, and the document.
TEST(CIMXMLReference, ReadsTextAtTheGreatestDepthAndNotBelow) {
  Zoo zoo;
  DeclareKnot(zoo);
  EXPECT_EQ("zelStatusOK",
            zoo.ReadInstance("Zoo_Knot", Nested(82,
                                                "<VALUE.REFERENCE><INSTANCENAME "
                                                "CLASSNAME=\"Zoo_Animal\"><KEYVALUE>Tom"
                                                "</KEYVALUE></INSTANCENAME></VALUE.REFERENCE>")));
  EXPECT_THAT(zoo.ValueOf("Zoo_Knot", "Next").ToString(10), testing::HasSubstr("Name=\"Tom\""));
  EXPECT_EQ("zelStatusInvalidSpecificationDocument",
            zoo.ReadInstance("Zoo_Knot", Nested(83, "<KEYVALUE>Tom</KEYVALUE>")));
  EXPECT_EQ("CIM-XML Parser line 1:Unexpected element keyvalue", LogLines().at(0));
}

}  // namespace
