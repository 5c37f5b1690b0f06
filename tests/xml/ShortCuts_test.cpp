// Documents are read by short cuts wherever they are written as usual: values in one piece, and
// start tags like those of the instance before. None of that may show.

#include <gmock/gmock.h>

#include <random>
#include <string>
#include <vector>

#include "tests/xml/Description.h"
#include "tests/xml/Zoo.h"

namespace {

// A piece of a document: a start tag, or anything else.
struct TPiece {
  std::string text;
  bool isStartTag;
};
using TPieces = std::vector<TPiece>;

TPiece Tag(const std::string& text) { return {"<" + text + ">", true}; }
TPiece Other(const std::string& text) { return {text, false}; }

std::string Plain(const TPieces& pieces) {
  std::string document;
  for (const TPiece& piece : pieces) document += piece.text;
  return document;
}

// The same, but no tag is like another one, and a comment stands before every text. All lines have
// the same numbers.
std::string WithoutShortCuts(const TPieces& pieces) {
  std::string document;
  std::size_t tags = 0;
  for (const TPiece& piece : pieces) {
    document += piece.text;
    if (!piece.isStartTag) continue;
    document.pop_back();
    document.append(++tags, ' ');
    document += "><!-- -->";
  }
  return document;
}

// Random documents about animals, mostly as they are usually written.
class TDocuments {
 public:
  explicit TDocuments(unsigned int seed) : fRandom(seed) {}

  TPieces Make() {
    fPieces = {Tag("CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\""), Tag("DECLARATION"),
               Tag("DECLGROUP"), Other("\n")};
    for (unsigned int count = 2 + Below(8); count > 0; --count) AddObject();
    Add({Other("</DECLGROUP></DECLARATION></CIM>")});
    for (unsigned int count = Rarely() ? 1 + Below(3) : 0; count > 0; --count) Damage();
    return fPieces;
  }

 private:
  unsigned int Below(std::size_t limit) { return static_cast<unsigned int>(fRandom() % limit); }
  bool Often() { return Below(16) != 0; }
  bool Rarely() { return Below(60) == 0; }
  std::string OneOf(const std::vector<std::string>& choices) {
    return choices[Below(choices.size())];
  }
  void Add(const TPieces& pieces) { fPieces.insert(fPieces.end(), pieces.begin(), pieces.end()); }

  void AddObject() {
    Add({Tag("VALUE.OBJECT")});
    switch (Below(12)) {
      case 0: AddClass(); break;
      case 1:
      case 2: AddMeal(); break;
      default: AddAnimal();
    }
    Add({Other("</VALUE.OBJECT>\n")});
  }

  // A class changes the schema, so that nothing known of other classes counts any more.
  void AddClass() {
    const std::string name = "Zoo_Kind" + std::to_string(Below(40));
    Add({Tag("CLASS NAME=\"" + name + "\" SUPERCLASS=\"Zoo_Animal\""),
         Tag("PROPERTY NAME=\"Weight\" TYPE=\"uint32\""), Other("</PROPERTY></CLASS>")});
    fKinds.push_back(name);
  }

  void AddAnimal() {
    Add({Tag("INSTANCE CLASSNAME=\"" + (Often() ? "Zoo_Animal" : OneOf(fKinds)) + "\""),
         Other("\n ")});
    AddProperty("Name", "string", "animal" + std::to_string(Below(1000000)));
    if (Often()) AddProperty("Legs", "uint16", OneOf({"4", "0x10", "", "010", "many"}));
    if (Often()) AddArray("Tags", "string");
    if (Often()) AddArray("Counts", "uint8");
    if (Often()) {
      AddProperty("Born", "datetime",
                  OneOf({"20290614225336.604821-600", "19960401204013.757506+120", "then"}));
    }
    if (Often()) AddProperty("Tame", "boolean", OneOf({"true", "TRUE", "false"}));
    if (Rarely()) AddProperty("Weight", "uint32", "7");
    if (Rarely()) AddProperty("Legs", OneOf({"uint32", "uint17", "string"}), "1");
    if (Rarely()) AddProperty("Wings", "uint16", "2");
    Add({Other("</INSTANCE>")});
  }

  void AddMeal() {
    Add({Tag("INSTANCE CLASSNAME=\"Zoo_Eats\"")});
    for (const char* role : {"Eater", "Eaten"}) {
      const std::string binding = Often() ? "KEYBINDING" : "keybinding";
      Add({Tag("PROPERTY.REFERENCE NAME=\"" + std::string(role) +
               "\" REFERENCECLASS=\"Zoo_Animal\""),
           Tag("VALUE.REFERENCE"), Tag("INSTANCENAME CLASSNAME=\"Zoo_Animal\""),
           Tag(binding + " NAME=\"" + OneOf({"Name", "Name", "name", "Legs"}) + "\""),
           Tag(OneOf({"KEYVALUE VALUETYPE=\"string\"", "KEYVALUE", "keyvalue\nvaluetype='x'"}))});
      AddText("animal" + std::to_string(Below(1000000)));
      Add({Other("</" + std::string(fPieces[fPieces.size() - 2].text, 1, 8) + "></" +
                 (Rarely() ? "KEYBINDING" : binding) +
                 "></INSTANCENAME></VALUE.REFERENCE></PROPERTY.REFERENCE>")});
    }
    Add({Other("</INSTANCE>")});
  }

  std::string Attributes(const std::string& name, const std::string& type) {
    const std::string usual = " NAME=\"" + name + "\" TYPE=\"" + type + "\"";
    if (Often()) return usual;
    return OneOf({" TYPE=\"" + type + "\" NAME=\"" + name + "\"", " name='" + name + "'",
                  usual + " CLASSORIGIN=\"Zoo_Animal\" PROPAGATED=\"true\"",
                  "\nNAME=\"" + name + "\"\nTYPE=\"" + type + "\"", usual + " ARRAYSIZE=\"3\"",
                  " NAME=\"" + name + "\" NAME=\"" + name + "\""});
  }

  void AddProperty(const std::string& name, const std::string& type, const std::string& value) {
    const std::string element = Often() ? "PROPERTY" : OneOf({"property", "PROPERTY.ARRAY"});
    if (Rarely()) return Add({Other("<" + element + Attributes(name, type) + "/>\n")});
    Add({Tag(element + Attributes(name, type))});
    for (unsigned int count = Rarely() ? Below(3) : 1; count > 0; --count) AddValue(value);
    Add({Other("</" + EndOf(element) + ">\n ")});
  }

  // Mostly of the same element.
  std::string EndOf(const std::string& element) {
    return Rarely() ? OneOf({"PROPERTY", "property", "PROPERTY.ARRAY", "Property"}) : element;
  }

  void AddArray(const std::string& name, const std::string& type) {
    const std::string element = Often() ? "PROPERTY.ARRAY" : "property.array";
    Add({Tag(element + Attributes(name, type))});
    for (unsigned int count = Rarely() ? Below(3) : 1; count > 0; --count) {
      Add({Tag("VALUE.ARRAY")});
      for (unsigned int values = Below(4); values > 0; --values) AddValue(std::to_string(values));
      Add({Other("</VALUE.ARRAY>")});
    }
    Add({Other("</" + EndOf(element) + ">")});
  }

  void AddValue(const std::string& value) {
    const std::string element = Often() ? "VALUE" : OneOf({"value", "Value", "VALUES"});
    Add({Tag(element)});
    AddText(value);
    Add({Other("</" + element + (Often() ? ">" : OneOf({" >", "X>", "\n>"})))});
  }

  void AddText(const std::string& text) {
    if (Often()) return Add({Other(text)});
    Add({Other(
        OneOf({text + "&amp;", "\n" + text, text + "<!-- -->" + text, "&#65;", "&lt;&GT;&#x41;",
               "a&#0;b", "&#x;", "&#65", "&amp", "&nope;", "<?x?>", std::string(40, 'x')}))});
  }

  void Damage() {
    const std::size_t at = Below(fPieces.size());
    switch (Below(4)) {
      case 0: fPieces.erase(fPieces.begin() + at); break;
      case 1: fPieces.insert(fPieces.begin() + at, fPieces[Below(fPieces.size())]); break;
      case 2: fPieces.resize(at + 1); break;
      default: fPieces[at] = Other(fPieces[at].text.substr(0, Below(fPieces[at].text.size() + 1)));
    }
  }

  std::mt19937 fRandom;
  TPieces fPieces;
  std::vector<std::string> fKinds = {"Zoo_Kind0"};
};

// How a document ends, what it logs and what is in the container then.
std::vector<std::string> Outcome(const std::string& document) {
  Zoo zoo;
  ClearLog();
  std::vector<std::string> outcome = {zoo.Read(document)};
  for (const std::string& line : LogLines()) outcome.push_back(line);
  for (const std::string& line : Description(zoo.fContainer).fLines) outcome.push_back(line);
  return outcome;
}

TEST(ShortCuts, MakeNoDifference) {
  RestartLog();
  TDocuments documents(20261121);
  int read = 0;
  for (int round = 0; round < 4000; ++round) {
    const TPieces pieces = documents.Make();
    const std::vector<std::string> outcome = Outcome(Plain(pieces));
    ASSERT_EQ(Outcome(WithoutShortCuts(pieces)), outcome) << Plain(pieces);
    read += outcome[0] == "zelStatusOK";
  }
  EXPECT_GT(read, 300) << "too few documents are right to the end";
  EXPECT_LT(read, 3600) << "too few documents are wrong";
}

// Counts the tags that are read the long way.
class TCountingParser : public TCIMXMLParser {
 public:
  using TCIMXMLParser::TCIMXMLParser;
  std::vector<std::string> fTags;

 protected:
  void StartTag(std::string_view name, const TAttributes& attributes) override {
    fTags.emplace_back(name);
    TCIMXMLParser::StartTag(name, attributes);
  }
};

TEST(ShortCuts, AreTakenForInstancesThatAreWrittenAlike) {
  Zoo zoo;
  std::string document = "<CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\"><DECLARATION><DECLGROUP>";
  const std::size_t instances = 50;
  for (std::size_t i = 0; i < instances; ++i) {
    document += "<VALUE.OBJECT>" +
                InstanceOf("Zoo_Animal",
                           "<PROPERTY NAME=\"Name\" TYPE=\"string\"><VALUE>" + std::to_string(i) +
                               "</VALUE></PROPERTY><PROPERTY.ARRAY NAME=\"Tags\" TYPE=\"string\">"
                               "<VALUE.ARRAY><VALUE>t</VALUE></VALUE.ARRAY></PROPERTY.ARRAY>") +
                "</VALUE.OBJECT>";
  }
  document += "</DECLGROUP></DECLARATION></CIM>";
  TCountingParser parser(zoo.fContainer);
  parser.Parse(document.data());
  EXPECT_THAT(parser.fTags,
              testing::ElementsAre("CIM", "DECLARATION", "DECLGROUP", "VALUE.OBJECT", "INSTANCE",
                                   "PROPERTY", "PROPERTY.ARRAY", "VALUE.ARRAY"));
  EXPECT_EQ(instances, zoo.Paths("Zoo_Animal").size());
}

// An end tag is compared byte for byte with its start tag, also where that is known.
TEST(ShortCuts, TakeNoEndTagInOtherLetters) {
  const auto animal = [](const std::string& element, const std::string& end, int number) {
    return "<VALUE.OBJECT>" +
           InstanceOf("Zoo_Animal", "<" + element + " NAME=\"Name\"><VALUE>" +
                                        std::to_string(number) + "</VALUE></" + end + ">") +
           "</VALUE.OBJECT>";
  };
  const auto tagged = [](const std::string& element, const std::string& end, int number) {
    return "<VALUE.OBJECT>" +
           InstanceOf("Zoo_Animal",
                      "<PROPERTY NAME=\"Name\"><VALUE>" + std::to_string(number) +
                          "</VALUE></PROPERTY><" + element +
                          " NAME=\"Tags\"><VALUE.ARRAY><VALUE>t</VALUE></VALUE.ARRAY></" + end +
                          ">") +
           "</VALUE.OBJECT>";
  };
  const auto meal = [](const std::string& element, const std::string& end, int number) {
    std::string ends;
    for (const char* role : {"Eater", "Eaten"}) {
      ends += "<PROPERTY.REFERENCE NAME=\"" + std::string(role) +
              "\"><VALUE.REFERENCE><INSTANCENAME CLASSNAME=\"Zoo_Animal\"><" + element +
              " NAME=\"Name\"><KEYVALUE>" + std::to_string(number) + "</KEYVALUE></" + end +
              "></INSTANCENAME></VALUE.REFERENCE></PROPERTY.REFERENCE>";
    }
    return "<VALUE.OBJECT>" + InstanceOf("Zoo_Eats", ends) + "</VALUE.OBJECT>";
  };
  const auto expectRefused = [](auto make, const std::string& element, const std::string& end) {
    Zoo zoo;
    EXPECT_EQ("zelStatusOK", zoo.ReadGroup(make(element, element, 1) + make(element, element, 2)));
    EXPECT_EQ("zelStatusInvalidSpecificationDocument",
              zoo.ReadGroup(make(element, element, 3) + make(element, element, 4) +
                            make(element, end, 5)));
  };
  for (const auto& [element, end] : {
           std::pair("property", "PROPERTY"),
           {"Property", "PROPERTY"},
           {"PROPERTY", "property"},
           {"PROPERTY", "PROPERT" }
  }) {
    expectRefused(animal, element, end);
  }
  expectRefused(tagged, "property.array", "PROPERTY.ARRAY");
  expectRefused(tagged, "PROPERTY.ARRAY", "PROPERTY");
  expectRefused(meal, "keybinding", "KEYBINDING");
  expectRefused(meal, "KEYBINDING", "keybinding");
}

TEST(ShortCuts, KeepTheSizeThatATagGives) {
  Zoo zoo;
  std::string animals;
  for (const char* name : {"Tim", "Tom", "Tam"}) {
    animals += "<VALUE.OBJECT>" +
               InstanceOf("Zoo_Animal", "<PROPERTY NAME=\"Name\"><VALUE>" + std::string(name) +
                                            "</VALUE></PROPERTY><PROPERTY.ARRAY NAME=\"Tags\" "
                                            "ARRAYSIZE=\"7\"><VALUE.ARRAY></VALUE.ARRAY>"
                                            "</PROPERTY.ARRAY>") +
               "</VALUE.OBJECT>";
  }
  EXPECT_EQ("zelStatusOK", zoo.ReadGroup(animals));
  for (const TCIMInstance* animal :
       zoo.fContainer.GetClass("Zoo_Animal")->EnumerateInstances(false)) {
    EXPECT_EQ(7U, animal->GetProperty("Tags")->GetValue().GetMaxArraySize());
  }
}

// A known tag leaves the buffer as a tag that is read does.
TEST(ShortCuts, LeaveAttributeNamesInLowerCase) {
  Zoo zoo;
  const auto make = [](const std::string& name, const std::string& type) {
    std::string group;
    for (int i = 0; i < 3; ++i) {
      group += "<VALUE.OBJECT><INSTANCE classname=\"Zoo_Animal\"><PROPERTY " + name + "=\"Name\" " +
               type + "=\"string\"><VALUE>NAME=" + std::to_string(i) +
               "</VALUE></PROPERTY></INSTANCE></VALUE.OBJECT>";
    }
    return "<CIM cimversion=\"2.0\" dtdversion=\"2.0\"><DECLARATION><DECLGROUP>" + group +
           "</DECLGROUP></DECLARATION></CIM>";
  };
  std::string document = make("NAME", "TyPE");
  TCIMXMLParser(zoo.fContainer).Parse(document.data());
  EXPECT_EQ(make("name", "type"), document);
}

}  // namespace
