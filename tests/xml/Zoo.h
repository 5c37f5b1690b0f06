#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/LogSpy.h"
#include "tests/support/Status.h"
#include "xml/TCIMXMLParser.h"
#include "zelcore/zelcore.h"

inline std::string InCIM(const std::string& content) {
  return "<CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\">" + content + "</CIM>";
}

inline std::string InGroup(const std::string& content) {
  return InCIM("<DECLARATION><DECLGROUP>" + content + "</DECLGROUP></DECLARATION>");
}

inline std::string InstanceOf(const std::string& className, const std::string& content) {
  return "<INSTANCE CLASSNAME=\"" + className + "\">" + content + "</INSTANCE>";
}

// A request for one method with these parameters.
inline std::string Request(const std::string& method, const std::string& parameters) {
  return "<SIMPLEREQ><IMETHODCALL NAME=\"" + method +
         "\"><LOCALNAMESPACEPATH><NAMESPACE NAME=\"root\"/><NAMESPACE NAME=\"cimv2\"/>"
         "</LOCALNAMESPACEPATH>" +
         parameters + "</IMETHODCALL></SIMPLEREQ>";
}

// An animal's name as INSTANCENAME.
inline std::string AnimalName(const std::string& name) {
  return "<INSTANCENAME CLASSNAME=\"Zoo_Animal\"><KEYBINDING NAME=\"Name\">"
         "<KEYVALUE VALUETYPE=\"string\">" +
         name + "</KEYVALUE></KEYBINDING></INSTANCENAME>";
}

// The two lines that a FatalError() leaves.
inline std::vector<std::string> FatalLines(unsigned int line, const std::string& message) {
  const std::string number = std::to_string(line);
  return {"CIM-XML Parser line " + number + ":" + message,
          "TCIMXMLParser: Threw exception zelStatusInvalidSpecificationDocument on line " + number};
}

// A container for documents, and a little schema to write them in.
//
// Zoo_Animal has the key Name (string) and Legs (uint16, default 4), Tags (string array), Counts
// (uint8 array), Born (datetime), Tame (boolean). Zoo_Cage has the keys Row (uint32) and Number
// (uint16). Zoo_Eats is an association of two animals, Eater and Eaten, both keys. Zoo_Idea is
// abstract and has no key.
class Zoo {
 public:
  Zoo() { EXPECT_EQ("zelStatusOK", ReadGroup(kSchema)); }

  // Read a whole document, or a DECLGROUP, INSTANCE or CLASS in one, and tell how that ended.
  std::string Read(const std::string& document) {
    TCIMXMLParser parser(fContainer);
    std::string buffer = document;
    const std::string status = StatusOf([&] { parser.Parse(buffer.data()); });
    fCollected.clear();
    for (const TCIMClass* cls : parser.GetClassesCollected()) fCollected.push_back(cls->GetName());
    return status;
  }
  std::string ReadGroup(const std::string& content) { return Read(InGroup(content)); }
  std::string ReadInstance(const std::string& className, const std::string& content) {
    return ReadGroup("<VALUE.OBJECT>" + InstanceOf(className, content) + "</VALUE.OBJECT>");
  }
  std::string ReadClass(const std::string& attributes, const std::string& content) {
    return ReadGroup("<VALUE.OBJECT><CLASS " + attributes + ">" + content +
                     "</CLASS></VALUE.OBJECT>");
  }

  // The instances' paths, in order.
  std::vector<std::string> Paths(const std::string& className) const {
    std::vector<std::string> paths;
    for (const TCIMInstance* instance : fContainer.GetClass(className)->EnumerateInstances(false)) {
      paths.push_back(instance->BuildPath().GetPath());
    }
    return paths;
  }

  // Of the class's only instance.
  TCIMValue ValueOf(const std::string& className, const std::string& property) const {
    const std::vector<TCIMInstance*> all =
        fContainer.GetClass(className)->EnumerateInstances(false);
    EXPECT_EQ(1U, all.size());
    return all.at(0)->GetProperty(property)->GetValue();
  }

  TContainer fContainer;
  std::vector<std::string> fCollected;  // the classes that the last document gave

 private:
  static constexpr char kSchema[] = R"(
<QUALIFIER.DECLARATION NAME="Key" TYPE="boolean" OVERRIDABLE="false" TOSUBCLASS="true"><SCOPE PROPERTY="true" REFERENCE="true"/><VALUE>false</VALUE></QUALIFIER.DECLARATION>
<QUALIFIER.DECLARATION NAME="Association" TYPE="boolean" OVERRIDABLE="false" TOSUBCLASS="true"><SCOPE ASSOCIATION="true"/><VALUE>false</VALUE></QUALIFIER.DECLARATION>
<QUALIFIER.DECLARATION NAME="Abstract" TYPE="boolean" OVERRIDABLE="true" TOSUBCLASS="false"><SCOPE CLASS="true"/><VALUE>false</VALUE></QUALIFIER.DECLARATION>
<QUALIFIER.DECLARATION NAME="Override" TYPE="string" OVERRIDABLE="true" TOSUBCLASS="false"><SCOPE PROPERTY="true"/></QUALIFIER.DECLARATION>
<QUALIFIER.DECLARATION NAME="Description" TYPE="string" OVERRIDABLE="true" TOSUBCLASS="true" TRANSLATABLE="true"><SCOPE CLASS="true" PROPERTY="true"/></QUALIFIER.DECLARATION>
<QUALIFIER.DECLARATION NAME="Values" TYPE="string" ISARRAY="true" OVERRIDABLE="true" TOSUBCLASS="true"><SCOPE PROPERTY="true"/></QUALIFIER.DECLARATION>
<VALUE.OBJECT><CLASS NAME="Zoo_Animal">
 <PROPERTY NAME="Name" TYPE="string"><QUALIFIER NAME="Key" TYPE="boolean"><VALUE>true</VALUE></QUALIFIER></PROPERTY>
 <PROPERTY NAME="Legs" TYPE="uint16"><VALUE>4</VALUE></PROPERTY>
 <PROPERTY.ARRAY NAME="Tags" TYPE="string"/>
 <PROPERTY.ARRAY NAME="Counts" TYPE="uint8"/>
 <PROPERTY NAME="Born" TYPE="datetime"/>
 <PROPERTY NAME="Tame" TYPE="boolean"/>
</CLASS></VALUE.OBJECT>
<VALUE.OBJECT><CLASS NAME="Zoo_Cage">
 <PROPERTY NAME="Row" TYPE="uint32"><QUALIFIER NAME="Key" TYPE="boolean"><VALUE>true</VALUE></QUALIFIER></PROPERTY>
 <PROPERTY NAME="Number" TYPE="uint16"><QUALIFIER NAME="Key" TYPE="boolean"><VALUE>true</VALUE></QUALIFIER></PROPERTY>
</CLASS></VALUE.OBJECT>
<VALUE.OBJECT><CLASS NAME="Zoo_Eats">
 <QUALIFIER NAME="Association" TYPE="boolean"><VALUE>true</VALUE></QUALIFIER>
 <PROPERTY.REFERENCE NAME="Eater" REFERENCECLASS="Zoo_Animal"><QUALIFIER NAME="Key" TYPE="boolean"><VALUE>true</VALUE></QUALIFIER></PROPERTY.REFERENCE>
 <PROPERTY.REFERENCE NAME="Eaten" REFERENCECLASS="Zoo_Animal"><QUALIFIER NAME="Key" TYPE="boolean"><VALUE>true</VALUE></QUALIFIER></PROPERTY.REFERENCE>
</CLASS></VALUE.OBJECT>
<VALUE.OBJECT><CLASS NAME="Zoo_Idea">
 <QUALIFIER NAME="Abstract" TYPE="boolean"><VALUE>true</VALUE></QUALIFIER>
</CLASS></VALUE.OBJECT>)";
};
