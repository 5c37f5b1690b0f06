#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/xml/Zoo.h"

namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;
using TCIMType = TCIMValue::TCIMType;

std::string QualifierDeclaration(const std::string& attributes, const std::string& content) {
  return "<QUALIFIER.DECLARATION NAME=\"Colour\" " + attributes + ">" + content +
         "</QUALIFIER.DECLARATION>";
}

std::string Qualifier(const std::string& name, const std::string& attributes,
                      const std::string& content) {
  return "<QUALIFIER NAME=\"" + name + "\" " + attributes + ">" + content + "</QUALIFIER>";
}

const std::string kKey = Qualifier("Key", "TYPE=\"boolean\"", "<VALUE>true</VALUE>");
const std::string kKeyed = "<PROPERTY NAME=\"Id\" TYPE=\"string\">" + kKey + "</PROPERTY>";
const std::string kArray = "<VALUE.ARRAY><VALUE>red</VALUE><VALUE>green</VALUE></VALUE.ARRAY>";

void ExpectFatal(const std::string& content, const std::string& message) {
  RestartLog();
  Zoo zoo;
  EXPECT_EQ("zelStatusInvalidSpecificationDocument", zoo.ReadGroup(content)) << content;
  EXPECT_THAT(LogLines(), ElementsAreArray(FatalLines(1, message)));
}

TEST(CIMXMLQualifierDeclaration, GetsTypeValueScopeAndFlavor) {
  const struct {
    const char* attributes;
    std::string content;
    unsigned int type;
    std::string value;  // "" for NULL
    unsigned int scope;
    unsigned int flavor;
  } kRows[] = {
      {"TYPE=\"string\"",                                                                   "",                                                           TCIMType::TypeString,                       "",               0,  3},
      {"TYPE=\"STRING\"",                                                                   "<SCOPE/><VALUE>red</VALUE>",                                 TCIMType::TypeString,                       "red",            0,  3},
      {"TYPE=\"boolean\" ISARRAY=\"false\"",                                                "<SCOPE CLASS=\"true\"/><VALUE>true</VALUE>",
       TCIMType::TypeBoolean,                                                                                                                                                                         "true",           1,  3},
      {"TYPE=\"uint8\" OVERRIDABLE=\"false\"",                                              "<SCOPE ASSOCIATION=\"true\"/><VALUE>0x1F</VALUE>",
       TCIMType::TypeUint8,                                                                                                                                                                           "31",             2,  2},
      {"TYPE=\"string\" TOSUBCLASS=\"false\"",                                              "<SCOPE PROPERTY=\"true\"/>",                                 TCIMType::TypeString,
       "",                                                                                                                                                                                                              4,  1},
      {"TYPE=\"string\" TRANSLATABLE=\"true\"",                                             "<SCOPE REFERENCE=\"true\"/>",                                TCIMType::TypeString,
       "",                                                                                                                                                                                                              8,  7},
      {"TYPE=\"string\" OVERRIDABLE=\"false\" TOSUBCLASS=\"false\" TRANSLATABLE=\"false\"",
       "<SCOPE CLASS=\"true\" ASSOCIATION=\"true\" REFERENCE=\"true\" PROPERTY=\"true\" "
       "METHOD=\"true\" PARAMETER=\"true\" INDICATION=\"true\"/>",                                                                                        TCIMType::TypeString,                       "",               15, 0},
      {"TYPE=\"string\"",                                                                   "<SCOPE CLASS=\"false\" PROPERTY=\"TRUE\" METHOD=\"true\"/>",
       TCIMType::TypeString,                                                                                                                                                                          "",               0,  3},
      {"TYPE=\"string\" ISARRAY=\"true\"",                                                  "<SCOPE/>" + kArray,
       TCIMType::TypeString | TCIMType::TypeArray,                                                                                                                                                    "{ red, green }", 0,  3},
      {"TYPE=\"string\"",                                                                   "<SCOPE/>" + kArray,                                          TCIMType::TypeString | TCIMType::TypeArray,
       "{ red, green }",                                                                                                                                                                                                0,  3},
      {"TYPE=\"uint16\" ISARRAY=\"true\"",                                                  "<SCOPE/>",                                                   TCIMType::TypeUint16 | TCIMType::TypeArray,
       "",                                                                                                                                                                                                              0,  3},
      {"",                                                                                  "<SCOPE/>",                                                   TCIMType::TypeNone,                         "",               0,  3},
  };
  for (const auto& row : kRows) {
    RestartLog();
    Zoo zoo;
    EXPECT_EQ("zelStatusOK", zoo.ReadGroup(QualifierDeclaration(row.attributes, row.content)));
    const TCIMQualifierDecl* const decl = zoo.fContainer.FindQualifierDecl("colour");
    ASSERT_NE(nullptr, decl) << row.attributes;
    EXPECT_EQ("Colour", decl->GetName());
    EXPECT_EQ(row.type, decl->GetType()) << row.attributes;
    EXPECT_EQ(row.value, decl->GetValue().IsNull() ? "" : decl->GetValue().ToString(10));
    EXPECT_EQ(row.scope, decl->GetScope()) << row.attributes;
    EXPECT_EQ(row.flavor, decl->GetFlavor()) << row.attributes;
    EXPECT_THAT(LogLines(), IsEmpty());
  }
}

TEST(CIMXMLQualifierDeclaration, KeepsTheArraySize) {
  for (const std::string& value : {std::string(), kArray}) {
    Zoo zoo;
    EXPECT_EQ("zelStatusOK",
              zoo.ReadGroup(QualifierDeclaration("TYPE=\"string\" ISARRAY=\"true\" ARRAYSIZE=\"5\"",
                                                 "<SCOPE/>" + value)));
    EXPECT_EQ(5U, zoo.fContainer.GetQualifierDecl("Colour")->GetValue().GetMaxArraySize());
  }
}

TEST(CIMXMLQualifierDeclaration, StartsWithItsScope) {
  ExpectFatal(QualifierDeclaration("TYPE=\"string\"", "<VALUE>red</VALUE>"),
              "Expected SCOPE element");
  ExpectFatal(QualifierDeclaration("TYPE=\"string\"", "<FOO/>"), "Expected SCOPE element");
  // Each one anew.
  ExpectFatal("<QUALIFIER.DECLARATION NAME=\"A\" TYPE=\"string\"><SCOPE/></QUALIFIER.DECLARATION>" +
                  QualifierDeclaration("TYPE=\"string\"", kArray),
              "Expected SCOPE element");
}

TEST(CIMXMLQualifierDeclaration, RefusesArrayAttributesThatContradict) {
  const struct {
    const char* attributes;
    std::string value;
  } kRows[] = {
      {"ISARRAY=\"false\"",                 kArray              },
      {"ISARRAY=\"TRUE\"",                  kArray              },
      {"ISARRAY=\"true\"",                  "<VALUE>red</VALUE>"},
      {"ISARRAY=\"false\" ARRAYSIZE=\"5\"", ""                  },
      {"ISARRAY=\"false\" ARRAYSIZE=\"0\"", ""                  },
      {"ARRAYSIZE=\"5\"",                   "<VALUE>red</VALUE>"},
      {"ARRAYSIZE=\"5\"",                   ""                  },
  };
  for (const auto& row : kRows) {
    ExpectFatal(QualifierDeclaration(std::string("TYPE=\"string\" ") + row.attributes,
                                     "<SCOPE/>" + row.value),
                "Incompatible attributes");
  }
}

TEST(CIMXMLQualifierDeclaration, IsRefusedTwice) {
  SetLogThreshold(zelLogDebug);
  Zoo zoo;
  EXPECT_EQ("zelStatusAlreadyExists",
            zoo.ReadGroup("<QUALIFIER.DECLARATION NAME=\"KEY\" TYPE=\"string\"/>"));
  EXPECT_THAT(LogLines(),
              ElementsAre("TContainer: qualifier KEY already defined",
                          "TCIMXMLParser: Threw exception zelStatusAlreadyExists on line 1"));
}

TEST(CIMXMLQualifierDeclaration, FailsWithATypeThatIsNone) {
  for (const char* type : {"char16", "reference", "int"}) {
    RestartLog();
    Zoo zoo;
    EXPECT_EQ("zelStatusTypeMismatch",
              zoo.ReadGroup(QualifierDeclaration("TYPE=\"" + std::string(type) + "\"", "")));
    EXPECT_THAT(LogLines(),
                ElementsAre("TCIMXMLParser: Threw exception zelStatusTypeMismatch on line 1"));
  }
}

TEST(CIMXMLQualifier, GetsValueFlavorAndPropagation) {
  const struct {
    std::string qualifier;
    const char* value;
    unsigned int flavor;
    bool propagated;
  } kRows[] = {
  // The declaration's flavor, here overridable, to subclasses and translatable, is the start.
      {Qualifier("Description", "",                                           "<VALUE>A</VALUE>"),    "A",              7, false},
      {Qualifier("description", "TYPE=\"string\" OVERRIDABLE=\"false\"",      "<VALUE>A</VALUE>"),    "A",
       6,                                                                                                                  false},
      {Qualifier("Description", "TOSUBCLASS=\"false\" PROPAGATED=\"true\"",   "<VALUE>A</VALUE>"),
       "A",                                                                                                             5, true },
      {Qualifier("Description", "TRANSLATABLE=\"FALSE\" PROPAGATED=\"TRUE\"", "<VALUE>A</VALUE>"),
       "A",                                                                                                             3, false},
      {Qualifier("Abstract",    "TOSUBCLASS=\"true\"",                        "<VALUE>true</VALUE>"), "true",           3, false},
      {Qualifier("Abstract",    "",                                           "<VALUE>TRUE</VALUE>"), "false",          1, false},
      {Qualifier("Values",      "TYPE=\"string\"",                            kArray),                "{ red, green }", 3, false},
      {Qualifier("Values",      "TYPE=\"string\"",                            "<VALUE.ARRAY/>"),      "{  }",           3, false},
 // The declaration's type holds.
      {Qualifier("Description", "TYPE=\"uint8\"",                             "<VALUE>07</VALUE>"),   "07",             7, false},
  };
  for (const auto& row : kRows) {
    Zoo zoo;
    EXPECT_EQ("zelStatusOK", zoo.ReadClass("NAME=\"A\"", row.qualifier + kKeyed));
    const TCIMQualifier* const qualifier =
        zoo.fContainer.GetClass("A")->EnumerateQualifiers().at(0);
    EXPECT_EQ(row.value, qualifier->GetValue().ToString(10)) << row.qualifier;
    EXPECT_EQ(row.flavor, qualifier->GetFlavor()) << row.qualifier;
    EXPECT_EQ(row.propagated, qualifier->GetPropagated()) << row.qualifier;
  }
}

TEST(CIMXMLQualifier, IsNullOfTheDeclaredTypeWithoutAFittingValue) {
  const struct {
    const char* name;
    std::string content;
    unsigned int type;
  } kRows[] = {
      {"Description", "",                   TCIMType::TypeString                      },
      {"Description", kArray,               TCIMType::TypeString                      },
      {"Values",      "",                   TCIMType::TypeString | TCIMType::TypeArray},
      {"Values",      "<VALUE>red</VALUE>", TCIMType::TypeString | TCIMType::TypeArray},
  };
  for (const auto& row : kRows) {
    Zoo zoo;
    EXPECT_EQ("zelStatusOK",
              zoo.ReadClass("NAME=\"A\"", Qualifier(row.name, "", row.content) + kKeyed));
    const TCIMValue value = zoo.fContainer.GetClass("A")->GetQualifier(row.name)->GetValue();
    EXPECT_TRUE(value.IsNull()) << row.content;
    EXPECT_EQ(row.type, value.GetType()) << row.content;
  }
}

TEST(CIMXMLQualifier, IsTakenFromTheContainer) {
  for (const std::string& place : {std::string("Class"), std::string("Property")}) {
    RestartLog();
    Zoo zoo;
    const std::string unknown = Qualifier("Flavour", "TYPE=\"string\"", "");
    EXPECT_EQ(
        "zelStatusNotFound",
        zoo.ReadClass("NAME=\"A\"", place == "Class" ? unknown
                                                     : "<PROPERTY NAME=\"P\" TYPE=\"string\">" +
                                                           unknown + "</PROPERTY>"));
    EXPECT_THAT(LogLines(), ElementsAre("TCIMXMLParser: Couldn't find qualifier Flavour",
                                        "TCIMXMLParser: Threw exception zelStatusNotFound on "
                                        "line 1"));
    EXPECT_THAT(LogLines(zelLogError), testing::SizeIs(2));
  }
}

TEST(CIMXMLQualifier, MayRepeatOneThatIsNotOverridable) {
  Zoo zoo;
  // The first stays; the second, equal, is let go.
  EXPECT_EQ("zelStatusOK", zoo.ReadClass("NAME=\"A\"", "<PROPERTY NAME=\"Id\" TYPE=\"string\">" +
                                                           kKey + kKey + "</PROPERTY>"));
  EXPECT_EQ("zelStatusNotOverridable",
            zoo.ReadClass("NAME=\"B\"", "<PROPERTY NAME=\"Id\" TYPE=\"string\">" + kKey +
                                            Qualifier("Key", "", "<VALUE>false</VALUE>") +
                                            "</PROPERTY>"));
  EXPECT_EQ(nullptr, zoo.fContainer.FindClass("B"));
}

TEST(CIMXMLQualifier, IsReadAndDroppedInInstances) {
  Zoo zoo;
  const std::string kDescribed = Qualifier("Description", "", "<VALUE>A</VALUE>");
  EXPECT_EQ("zelStatusOK",
            zoo.ReadInstance("Zoo_Eats",
                             kDescribed + "<PROPERTY.REFERENCE NAME=\"Eater\">" + kDescribed +
                                 "<VALUE.REFERENCE>" + AnimalName("Tom") +
                                 "</VALUE.REFERENCE></PROPERTY.REFERENCE>"
                                 "<PROPERTY.REFERENCE NAME=\"Eaten\"><VALUE.REFERENCE>" +
                                 AnimalName("Tim") + "</VALUE.REFERENCE></PROPERTY.REFERENCE>"));
  EXPECT_EQ("zelStatusOK",
            zoo.ReadInstance("Zoo_Animal", "<PROPERTY NAME=\"Name\">" + kDescribed +
                                               "<VALUE>Tom</VALUE>" + kDescribed +
                                               "</PROPERTY><PROPERTY.ARRAY NAME=\"Tags\">" +
                                               kDescribed + "</PROPERTY.ARRAY>"));
  EXPECT_EQ("Tom", zoo.ValueOf("Zoo_Animal", "Name").ToString(10));
  EXPECT_EQ("zelStatusNotFound", zoo.ReadInstance("Zoo_Animal", Qualifier("Flavour", "", "")));
  EXPECT_EQ("TCIMXMLParser: Couldn't find qualifier Flavour", LogLines().at(0));
}

TEST(CIMXMLClass, IsMadeBelowItsSuperclass) {
  Zoo zoo;
  EXPECT_EQ("zelStatusOK", zoo.ReadClass("NAME=\"Zoo_Bird\" SUPERCLASS=\"zoo_animal\"", ""));
  EXPECT_EQ("zelStatusOK", zoo.ReadClass("NAME=\"A\"", kKeyed));
  const TCIMClass* const bird = zoo.fContainer.GetClass("Zoo_Bird");
  EXPECT_EQ("Zoo_Animal", bird->GetSuperClass()->GetName());
  EXPECT_NE(nullptr, bird->FindPropertyDecl("Legs"));
  EXPECT_TRUE(zoo.fContainer.GetClass("A")->GetSuperClass()->IsRootClass());
}

TEST(CIMXMLClass, NeedsItsSuperclassInTheContainer) {
  Zoo zoo;
  EXPECT_EQ("zelStatusNotFound", zoo.ReadClass("NAME=\"B\" SUPERCLASS=\"A\"", kKeyed));
  EXPECT_THAT(LogLines(),
              ElementsAre("TCIMXMLParser: Threw exception zelStatusNotFound on line 1"));
}

// The class A, or another that the container has, is refused with the model's code and line.
void ExpectRefused(const std::string& attributes, const std::string& content,
                   const std::string& status, const std::string& line) {
  RestartLog();
  SetLogThreshold(zelLogDebug);
  Zoo zoo;
  EXPECT_EQ(status, zoo.ReadClass(attributes, content));
  EXPECT_THAT(LogLines(),
              ElementsAre(line, "TCIMXMLParser: Threw exception " + status + " on line 1"));
  EXPECT_THAT(zoo.fCollected, IsEmpty());
  EXPECT_EQ(nullptr, zoo.fContainer.FindClass("A"));
}

TEST(CIMXMLClass, IsRefusedByTheModelWithTheModelsCode) {
  const std::string kDerived = "NAME=\"A\" SUPERCLASS=\"Zoo_Animal\"";
  const std::string kNoKeys = "Class A has no keys";
  ExpectRefused("NAME=\"A\"", "", "zelStatusInvalidClass", kNoKeys);
  // Keys are written in lower case, or are none.
  ExpectRefused("NAME=\"A\"",
                "<PROPERTY NAME=\"Id\" TYPE=\"string\">" +
                    Qualifier("Key", "", "<VALUE>TRUE</VALUE>") + "</PROPERTY>",
                "zelStatusInvalidClass", kNoKeys);
  // An overriding property repeats its key.
  ExpectRefused(kDerived,
                "<PROPERTY NAME=\"Name\" TYPE=\"string\">" +
                    Qualifier("Override", "", "<VALUE>Name</VALUE>") + "</PROPERTY>",
                "zelStatusInvalidClass", kNoKeys);
  ExpectRefused("NAME=\"zoo_animal\"", kKeyed, "zelStatusAlreadyExists",
                "TContainer: class zoo_animal already defined");
  ExpectRefused("NAME=\"a-b\"", kKeyed, "zelStatusInvalidCIMName", "CIM name 'a-b' is invalid");
  ExpectRefused(kDerived, "<PROPERTY NAME=\"LEGS\" TYPE=\"uint16\"/>", "zelStatusAlreadyExists",
                "Attempt to add property LEGS to class A: already exists");
  // Inherited properties cannot be written again, marked as propagated or not.
  ExpectRefused(kDerived,
                "<PROPERTY NAME=\"Legs\" TYPE=\"uint16\" CLASSORIGIN=\"Zoo_Animal\" "
                "PROPAGATED=\"true\"/>",
                "zelStatusAlreadyExists",
                "Attempt to add property Legs to class A: already exists");
  ExpectRefused("NAME=\"A\"",
                kKeyed + "<PROPERTY.REFERENCE NAME=\"Who\" REFERENCECLASS=\"Zoo_Animal\"/>",
                "zelStatusNotAssociation",
                "Attempt to add reference property Who to non-association class A");
}

TEST(CIMXMLClass, PassesOverMethods) {
  Zoo zoo;
  EXPECT_EQ("zelStatusOK",
            zoo.ReadClass("NAME=\"A\"",
                          "<METHOD NAME=\"M\" TYPE=\"uint32\">" +
                              Qualifier("Abstract", "", "<VALUE>true</VALUE>") +
                              Qualifier("Nonsense", "", "") +
                              "<PARAMETER NAME=\"P\" TYPE=\"string\">text<PROPERTY/></PARAMETER>"
                              "<METHOD><METHOD/></METHOD></METHOD><METHOD NAME=\"N\"/>" +
                              kKeyed));
  EXPECT_THAT(zoo.fContainer.GetClass("A")->EnumerateQualifiers(), IsEmpty());
  EXPECT_EQ(1U, zoo.fContainer.GetClass("A")->EnumeratePropertyDecls().size());
  EXPECT_THAT(LogLines(), IsEmpty());
}

TEST(CIMXMLPropertyDecl, GetsTypeAndDefault) {
  const struct {
    const char* property;
    unsigned int type;
    const char* value;  // "" for NULL
    unsigned int arraySize;
  } kRows[] = {
      {"<PROPERTY NAME=\"P\" TYPE=\"sint32\" CLASSORIGIN=\"A\" PROPAGATED=\"false\"/>",
       TCIMType::TypeSint32,                                                                                                       "",         0},
      {"<PROPERTY NAME=\"P\" TYPE=\"sint32\"><VALUE>-5</VALUE></PROPERTY>",             TCIMType::TypeSint32,
       "-5",                                                                                                                                   0},
      {"<PROPERTY NAME=\"P\" TYPE=\"string\"><VALUE/></PROPERTY>",                      TCIMType::TypeString,                      "",         0},
      {"<PROPERTY NAME=\"P\" TYPE=\"uint8\" ARRAYSIZE=\"3\"/>",                         TCIMType::TypeUint8,                       "",         0},
      {"<PROPERTY.ARRAY NAME=\"P\" TYPE=\"uint8\"/>",                                   TCIMType::TypeUint8 | TCIMType::TypeArray, "",
       0                                                                                                                                        },
      {"<PROPERTY.ARRAY NAME=\"P\" TYPE=\"uint8\" ARRAYSIZE=\"3\"/>",
       TCIMType::TypeUint8 | TCIMType::TypeArray,                                                                                  "",         3},
      {"<PROPERTY.ARRAY NAME=\"P\" TYPE=\"uint8\" ARRAYSIZE=\"1\"><VALUE.ARRAY><VALUE>1</VALUE>"
       "<VALUE>2</VALUE></VALUE.ARRAY></PROPERTY.ARRAY>",                        TCIMType::TypeUint8 | TCIMType::TypeArray, "{ 1, 2 }", 1},
      {"<PROPERTY NAME=\"P\"><VALUE>5</VALUE></PROPERTY>",                              TCIMType::TypeNone,                        "",         0},
  };
  for (const auto& row : kRows) {
    Zoo zoo;
    EXPECT_EQ("zelStatusOK", zoo.ReadClass("NAME=\"A\"", kKeyed + row.property)) << row.property;
    const TCIMPropertyDecl* const decl = zoo.fContainer.GetClass("A")->GetPropertyDecl("P");
    EXPECT_EQ("A", decl->GetClass()->GetName());
    EXPECT_EQ(row.type, decl->GetType()) << row.property;
    EXPECT_EQ(row.value, decl->GetValue().IsNull() ? "" : decl->GetValue().ToString(10))
        << row.property;
    EXPECT_EQ(row.arraySize, decl->GetValue().GetMaxArraySize()) << row.property;
  }
}

TEST(CIMXMLPropertyDecl, CarriesItsOwnQualifiers) {
  Zoo zoo;
  EXPECT_EQ("zelStatusOK",
            zoo.ReadClass("NAME=\"A\"", "<PROPERTY NAME=\"P\" TYPE=\"string\">" + kKey +
                                            Qualifier("Values", "", kArray) +
                                            "<VALUE>red</VALUE></PROPERTY>"
                                            "<PROPERTY NAME=\"Q\" TYPE=\"string\"/>"));
  const TCIMClass* const cls = zoo.fContainer.GetClass("A");
  EXPECT_EQ(2U, cls->GetPropertyDecl("P")->EnumerateQualifiers().size());
  EXPECT_EQ("{ red, green }",
            cls->GetPropertyDecl("P")->GetQualifier("Values")->GetValue().ToString(10));
  EXPECT_THAT(cls->GetPropertyDecl("Q")->EnumerateQualifiers(), IsEmpty());
  // The default of one property is not that of the next.
  EXPECT_EQ("red", cls->GetPropertyDecl("P")->GetValue().ToString(10));
  EXPECT_TRUE(cls->GetPropertyDecl("Q")->GetValue().IsNull());
  EXPECT_THAT(cls->EnumerateKeyNames(), ElementsAre("P"));
}

TEST(CIMXMLPropertyDecl, OverridesAnInheritedOneWithAllItsQualifiers) {
  Zoo zoo;
  EXPECT_EQ("zelStatusOK",
            zoo.ReadClass("NAME=\"A\" SUPERCLASS=\"Zoo_Animal\"",
                          "<PROPERTY NAME=\"Name\" TYPE=\"string\">" + kKey +
                              Qualifier("Override", "", "<VALUE>Name</VALUE>") + "</PROPERTY>"));
  EXPECT_EQ("A", zoo.fContainer.GetClass("A")->GetPropertyDecl("Name")->GetClass()->GetName());
}

TEST(CIMXMLPropertyDecl, ReferencesAClassOfTheContainer) {
  Zoo zoo;
  const std::string kAssociation =
      Qualifier("Association", "TYPE=\"boolean\"", "<VALUE>true</VALUE>");
  EXPECT_EQ("zelStatusOK",
            zoo.ReadClass("NAME=\"A\"", kAssociation + kKeyed +
                                            "<PROPERTY.REFERENCE NAME=\"R\" "
                                            "REFERENCECLASS=\"ZOO_CAGE\"/>"
                                            "<PROPERTY.REFERENCE NAME=\"Any\"/>"
                                            "<PROPERTY.REFERENCE NAME=\"D\" "
                                            "REFERENCECLASS=\"Zoo_Animal\"><VALUE.REFERENCE>" +
                                            AnimalName("Tom") +
                                            "</VALUE.REFERENCE></PROPERTY.REFERENCE>"));
  const TCIMClass* const cls = zoo.fContainer.GetClass("A");
  const TCIMValue reference = cls->GetPropertyDecl("R")->GetValue();
  EXPECT_TRUE(reference.IsNull());
  EXPECT_TRUE(reference.IsReference());
  EXPECT_EQ(zoo.fContainer.GetClass("Zoo_Cage"), reference.GetReferencedClass());
  EXPECT_EQ(nullptr, cls->GetPropertyDecl("Any")->GetValue().GetReferencedClass());
  EXPECT_EQ("Zoo_Animal.Name=\"Tom\"", cls->GetPropertyDecl("D")->GetValue().ToString(10));

  EXPECT_EQ("zelStatusNotFound",
            zoo.ReadClass("NAME=\"B\"", kAssociation + "<PROPERTY.REFERENCE NAME=\"R\" "
                                                       "REFERENCECLASS=\"C\"/>"));
  EXPECT_THAT(LogLines(),
              ElementsAre("TCIMXMLParser: Threw exception zelStatusNotFound on line 1"));
}

TEST(CIMXMLPropertyDecl, FailsWithATypeThatIsNone) {
  Zoo zoo;
  for (const char* type : {"char16", "reference"}) {
    EXPECT_EQ("zelStatusTypeMismatch", zoo.ReadClass("NAME=\"A\"", "<PROPERTY NAME=\"P\" TYPE=\"" +
                                                                       std::string(type) + "\"/>"));
  }
  // A reference's own type says nothing, but has to be one.
  const auto readReference = [&](const std::string& name, const std::string& type) {
    return zoo.ReadClass("NAME=\"" + name + "\"",
                         "<QUALIFIER NAME=\"Association\"><VALUE>true</VALUE></QUALIFIER>"
                         "<PROPERTY.REFERENCE NAME=\"R\" TYPE=\"" +
                             type +
                             "\" REFERENCECLASS=\"Zoo_Animal\"><QUALIFIER NAME=\"Key\">"
                             "<VALUE>true</VALUE></QUALIFIER></PROPERTY.REFERENCE>");
  };
  EXPECT_EQ("zelStatusTypeMismatch", readReference("B", "uint17"));
  EXPECT_EQ("zelStatusOK", readReference("C", "uint8"));
}

}  // namespace
