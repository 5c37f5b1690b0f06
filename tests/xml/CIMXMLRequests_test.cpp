#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/xml/Zoo.h"

// Messages, and the forms of declaration groups: what stands around classes and instances.

namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

const std::string kTom = InstanceOf(
    "Zoo_Animal", "<PROPERTY NAME=\"Name\" TYPE=\"string\"><VALUE>Tom</VALUE></PROPERTY>");
const std::string kBird =
    "<CLASS NAME=\"Zoo_Bird\" SUPERCLASS=\"Zoo_Animal\"><METHOD NAME=\"Sing\"/></CLASS>";
const std::string kNamespaces =
    "<LOCALNAMESPACEPATH><NAMESPACE NAME=\"root\"/><NAMESPACE NAME=\"cimv2\"></NAMESPACE>"
    "</LOCALNAMESPACEPATH>";
const std::string kHostPath =
    "<NAMESPACEPATH><HOST>a.example.net</HOST>" + kNamespaces + "</NAMESPACEPATH>";

std::string Message(const std::string& content) {
  return InCIM("<MESSAGE ID=\"1\" PROTOCOLVERSION=\"1.0\">" + content + "</MESSAGE>");
}

std::string Parameter(const std::string& name, const std::string& content) {
  return "<IPARAMVALUE NAME=\"" + name + "\">" + content + "</IPARAMVALUE>";
}

void ExpectFatal(const std::string& document, const std::string& message) {
  RestartLog();
  Zoo zoo;
  EXPECT_EQ("zelStatusInvalidSpecificationDocument", zoo.Read(document)) << document;
  EXPECT_THAT(LogLines(), ElementsAreArray(FatalLines(1, message)));
}

TEST(CIMXMLRequests, CreateClassesAndInstances) {
  Zoo zoo;
  EXPECT_EQ("zelStatusOK", zoo.Read(Message(Request("CreateClass", Parameter("NewClass", kBird)))));
  EXPECT_NE(nullptr, zoo.fContainer.FindClass("Zoo_Bird"));
  // Classes of requests are not collected.
  EXPECT_THAT(zoo.fCollected, IsEmpty());
  EXPECT_EQ("zelStatusOK",
            zoo.Read(Message(Request("CreateInstance", Parameter("NewInstance", kTom)))));
  EXPECT_THAT(zoo.Paths("Zoo_Animal"), ElementsAre("Zoo_Animal.Name=\"Tom\""));
  EXPECT_THAT(LogLines(), IsEmpty());
}

TEST(CIMXMLRequests, AreTwoOrMoreInAMultireq) {
  const std::string kCreateClass = Request("CreateClass", Parameter("NewClass", kBird));
  const std::string kCreateInstance = Request("CreateInstance", Parameter("NewInstance", kTom));
  Zoo zoo;
  EXPECT_EQ("zelStatusOK",
            zoo.Read(Message("<MULTIREQ>" + kCreateClass + kCreateInstance + "</MULTIREQ>")));
  EXPECT_NE(nullptr, zoo.fContainer.FindClass("Zoo_Bird"));
  EXPECT_EQ(1U, zoo.Paths("Zoo_Animal").size());

  ExpectFatal(Message("<MULTIREQ/>"), "Invalid MULTIREQ");
  ExpectFatal(Message("<MULTIREQ>" + kCreateInstance + "</MULTIREQ>"), "Invalid MULTIREQ");
  // Each one counts anew.
  ExpectFatal(Message("<MULTIREQ>" + kCreateClass + kCreateInstance + "</MULTIREQ><MULTIREQ>" +
                      kCreateInstance + "</MULTIREQ>"),
              "Invalid MULTIREQ");
}

TEST(CIMXMLRequests, CallTheTwoKnownMethodsOnly) {
  ExpectFatal(Message(Request("DeleteClass", "")), "Unexpected IMethodCall method DeleteClass");
  ExpectFatal(Message(Request("createclass", "")), "Unexpected IMethodCall method createclass");
  ExpectFatal(Message("<SIMPLEREQ><IMETHODCALL/></SIMPLEREQ>"), "Unexpected IMethodCall method ");
}

TEST(CIMXMLRequests, HaveTheTwoKnownParametersOnly) {
  for (const char* name : {"OldClass", "newclass", ""}) {
    ExpectFatal(Message(Request("CreateClass", Parameter(name, kBird))),
                "Unexpected IParamValue parameter name");
  }
  ExpectFatal(Message(Request("CreateClass", "<IPARAMVALUE>" + kBird + "</IPARAMVALUE>")),
              "Unexpected IParamValue parameter name");
}

TEST(CIMXMLRequests, MustHoldAnObject) {
  ExpectFatal(Message(Request("CreateClass", Parameter("NewClass", ""))),
              "CIM element syntax error");
  // An object that was handed over is not held any more.
  ExpectFatal(Message(Request("CreateInstance",
                              Parameter("NewInstance", kTom) + Parameter("NewInstance", " "))),
              "CIM element syntax error");
}

TEST(CIMXMLGroups, TakeObjectsInThreeForms) {
  const std::string kForms[] = {
      "<DECLGROUP>" + kHostPath + kNamespaces + "<VALUE.OBJECT>" + kBird +
          "</VALUE.OBJECT><VALUE.OBJECT>" + kTom + "</VALUE.OBJECT></DECLGROUP>",
      "<DECLGROUP.WITHNAME>" + kHostPath + kNamespaces + "<VALUE.NAMEDOBJECT>" + kBird +
          "</VALUE.NAMEDOBJECT><VALUE.NAMEDOBJECT>" + AnimalName("Tom") + kTom +
          "</VALUE.NAMEDOBJECT></DECLGROUP.WITHNAME>",
      "<DECLGROUP.WITHPATH><VALUE.OBJECTWITHPATH><CLASSPATH>" + kHostPath +
          "<CLASSNAME NAME=\"Zoo_Bird\"/></CLASSPATH>" + kBird +
          "</VALUE.OBJECTWITHPATH><VALUE.OBJECTWITHPATH><INSTANCEPATH>" + kHostPath +
          AnimalName("Tom") + "</INSTANCEPATH>" + kTom +
          "</VALUE.OBJECTWITHPATH></DECLGROUP.WITHPATH>",
      "<DECLGROUP.WITHPATH><VALUE.OBJECTWITHLOCALPATH><LOCALCLASSPATH>" + kNamespaces +
          "<CLASSNAME NAME=\"Zoo_Bird\"/></LOCALCLASSPATH>" + kBird +
          "</VALUE.OBJECTWITHLOCALPATH><VALUE.OBJECTWITHLOCALPATH><LOCALINSTANCEPATH>" +
          kNamespaces + AnimalName("Tom") + "</LOCALINSTANCEPATH>" + kTom +
          "</VALUE.OBJECTWITHLOCALPATH></DECLGROUP.WITHPATH>",
  };
  for (const std::string& form : kForms) {
    Zoo zoo;
    EXPECT_EQ("zelStatusOK", zoo.Read(InCIM("<DECLARATION>" + form + "</DECLARATION>"))) << form;
    EXPECT_THAT(zoo.fCollected, ElementsAre("Zoo_Bird"));
    EXPECT_THAT(zoo.Paths("Zoo_Animal"), ElementsAre("Zoo_Animal.Name=\"Tom\""));
    EXPECT_THAT(LogLines(), IsEmpty());
  }
}

TEST(CIMXMLGroups, TellObjectsByThemselvesAndNotByThePathBefore) {
  Zoo zoo;
  EXPECT_EQ(
      "zelStatusOK",
      zoo.Read(InCIM("<DECLARATION><DECLGROUP.WITHNAME><VALUE.NAMEDOBJECT>" + AnimalName("Tim") +
                     kTom + "</VALUE.NAMEDOBJECT></DECLGROUP.WITHNAME></DECLARATION>")));
  EXPECT_THAT(zoo.Paths("Zoo_Animal"), ElementsAre("Zoo_Animal.Name=\"Tom\""));
}

TEST(CIMXMLGroups, RefuseObjectsThatHoldNothing) {
  const std::string kBegin = "<DECLARATION><DECLGROUP";
  ExpectFatal(InCIM(kBegin + "><VALUE.OBJECT></VALUE.OBJECT></DECLGROUP></DECLARATION>"),
              "CIM element syntax error");
  ExpectFatal(InCIM(kBegin + ".WITHNAME><VALUE.NAMEDOBJECT>" + AnimalName("Tom") +
                    "</VALUE.NAMEDOBJECT></DECLGROUP.WITHNAME></DECLARATION>"),
              "CIM element syntax error");
  ExpectFatal(InCIM(kBegin + ".WITHPATH><VALUE.OBJECTWITHPATH/></DECLGROUP.WITHPATH>"
                             "</DECLARATION>"),
              "CIM element syntax error");
  ExpectFatal(InCIM(kBegin + ".WITHPATH><VALUE.OBJECTWITHLOCALPATH/></DECLGROUP.WITHPATH>"
                             "</DECLARATION>"),
              "CIM element syntax error");
}

TEST(CIMXMLGroups, RefuseALocalNamespacePathWithoutNamespace) {
  ExpectFatal(InGroup("<LOCALNAMESPACEPATH></LOCALNAMESPACEPATH>"),
              "Unexpected at least 1 NAMESPACE element");
  ExpectFatal(InGroup(kNamespaces + "<LOCALNAMESPACEPATH/>"),
              "Unexpected at least 1 NAMESPACE element");
}

}  // namespace
