#include "xml/TCIMXMLParser.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <deque>

#include "tests/xml/Zoo.h"
#include "xml/InstanceStates.h"

namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;
using TCIMType = TCIMValue::TCIMType;

constexpr char kTwoMice[] =
    "<VALUE.OBJECT><INSTANCE CLASSNAME=\"Zoo_Animal\"><PROPERTY NAME=\"Name\"><VALUE>Tom</VALUE>"
    "</PROPERTY></INSTANCE></VALUE.OBJECT>"
    "<VALUE.OBJECT><INSTANCE CLASSNAME=\"Zoo_Animal\"><PROPERTY NAME=\"Name\"><VALUE>Tim</VALUE>"
    "</PROPERTY></INSTANCE></VALUE.OBJECT>";

TEST(TCIMXMLParser, AttributeOperationsTakeOnlyTheirOwn) {
  std::string text;
  EXPECT_TRUE(TCIMXMLParser::HandleCIMName({"name", "a"}, text));
  EXPECT_EQ("a", text);
  EXPECT_FALSE(TCIMXMLParser::HandleCIMName({"classname", "b"}, text));
  EXPECT_FALSE(TCIMXMLParser::HandleCIMName({"NAME", "b"}, text));
  EXPECT_EQ("a", text);
  EXPECT_TRUE(TCIMXMLParser::HandleClassOrigin({"classorigin", "c"}, text));
  EXPECT_EQ("c", text);
  EXPECT_TRUE(TCIMXMLParser::HandleSuperClass({"superclass", "d"}, text));
  EXPECT_EQ("d", text);
  EXPECT_TRUE(TCIMXMLParser::HandleClassName({"classname", "e"}, text));
  EXPECT_EQ("e", text);
  EXPECT_TRUE(TCIMXMLParser::HandleReferenceClass({"referenceclass", "f"}, text));
  EXPECT_EQ("f", text);
  EXPECT_FALSE(TCIMXMLParser::HandleClassOrigin({"name", "x"}, text));
  EXPECT_FALSE(TCIMXMLParser::HandleSuperClass({"name", "x"}, text));
  EXPECT_FALSE(TCIMXMLParser::HandleClassName({"name", "x"}, text));
  EXPECT_FALSE(TCIMXMLParser::HandleReferenceClass({"name", "x"}, text));
  EXPECT_EQ("f", text);

  TCIMType type = TCIMType::TypeNone;
  EXPECT_TRUE(TCIMXMLParser::HandleCIMType({"type", "Uint32"}, type));
  EXPECT_EQ(TCIMType::TypeUint32, type);
  EXPECT_FALSE(TCIMXMLParser::HandleCIMType({"name", "string"}, type));
  EXPECT_EQ(TCIMType::TypeUint32, type);
  EXPECT_EQ("zelStatusTypeMismatch", StatusOf([&] {
              TCIMXMLParser::HandleCIMType({"type", "char16"}, type);
            }));

  bool propagated = false;
  EXPECT_TRUE(TCIMXMLParser::HandlePropagated({"propagated", "true"}, propagated));
  EXPECT_TRUE(propagated);
  EXPECT_FALSE(TCIMXMLParser::HandlePropagated({"name", "false"}, propagated));
  EXPECT_TRUE(propagated);

  unsigned int size = 1;
  EXPECT_TRUE(TCIMXMLParser::HandleArraySize({"arraysize", "12"}, size));
  EXPECT_EQ(12U, size);
  EXPECT_FALSE(TCIMXMLParser::HandleArraySize({"name", "13"}, size));
  EXPECT_EQ(12U, size);
}

TEST(TCIMXMLParser, FlavorAttributesSetAndClearOneBitEach) {
  const struct {
    const char* name;
    const char* value;
    unsigned int before;
    unsigned int after;
  } kRows[] = {
      {"overridable",  "true",  0, 1},
      {"overridable",  "false", 7, 6},
      {"tosubclass",   "true",  0, 2},
      {"tosubclass",   "false", 7, 5},
      {"translatable", "true",  3, 7},
      {"translatable", "false", 7, 3},
      {"translatable", "TRUE",  7, 3},
      {"overridable",  "true",  1, 1},
  };
  for (const auto& row : kRows) {
    auto flavor = static_cast<TCIMQualifierDecl::EFlavor>(row.before);
    EXPECT_TRUE(TCIMXMLParser::HandleQualifierFlavor({row.name, row.value}, flavor));
    EXPECT_EQ(row.after, flavor) << row.name << "=" << row.value;
  }
  TCIMQualifierDecl::EFlavor flavor = TCIMQualifierDecl::FlavorToSubclass;
  EXPECT_FALSE(TCIMXMLParser::HandleQualifierFlavor({"toinstance", "true"}, flavor));
  EXPECT_EQ(TCIMQualifierDecl::FlavorToSubclass, flavor);
}

TEST(TCIMXMLParser, ConvertsBooleansInLowerCaseOnly) {
  EXPECT_TRUE(TCIMXMLParser::ConvertBool("true"));
  EXPECT_TRUE(TCIMXMLParser::ConvertBool(" true"));
  for (const char* text : {"false", "TRUE", "True", "1", "", "yes", "tru"}) {
    EXPECT_FALSE(TCIMXMLParser::ConvertBool(text)) << text;
  }
}

TEST(TCIMXMLParser, ConvertsUnsignedIntegersInDecimal) {
  EXPECT_EQ(7U, TCIMXMLParser::ConvertUnsignedInt("7"));
  EXPECT_EQ(8U, TCIMXMLParser::ConvertUnsignedInt("08"));
  EXPECT_EQ(4294967295U, TCIMXMLParser::ConvertUnsignedInt("4294967295"));
  EXPECT_EQ(12U, TCIMXMLParser::ConvertUnsignedInt(" 12 "));
  EXPECT_EQ(0U, TCIMXMLParser::ConvertUnsignedInt("0x10"));
  EXPECT_EQ(0U, TCIMXMLParser::ConvertUnsignedInt("many"));
  EXPECT_EQ(0U, TCIMXMLParser::ConvertUnsignedInt(""));
}

TEST(TCIMXMLParser, ParsesValuesOfEveryType) {
  TContainer container;
  TCIMXMLParser parser(container);
  EXPECT_TRUE(static_cast<bool>(parser.ParseValue(TCIMType::TypeBoolean, "true")));
  EXPECT_EQ(31, static_cast<unsigned short>(parser.ParseValue(TCIMType::TypeUint16, "0x1F")));
  EXPECT_EQ(8, static_cast<int>(parser.ParseValue(TCIMType::TypeSint32, "010")));
  EXPECT_EQ(-3L, static_cast<long>(parser.ParseValue(TCIMType::TypeSint64, "-3")));
  EXPECT_EQ(1.5F, static_cast<float>(parser.ParseValue(TCIMType::TypeReal32, "1.5")));
  EXPECT_EQ(" a ", static_cast<std::string>(parser.ParseValue(TCIMType::TypeString, " a ")));
  EXPECT_EQ("20040315142530.000000-300",
            parser.ParseValue(TCIMType::TypeDateTime, "20040315142530.000000-300").ToString(10));
  EXPECT_THAT(LogLines(), IsEmpty());
}

TEST(TCIMXMLParser, ReadsMalformedNumbersAsZero) {
  TContainer container;
  TCIMXMLParser parser(container);
  EXPECT_EQ(0, static_cast<unsigned short>(parser.ParseValue(TCIMType::TypeUint16, "many")));
  EXPECT_FALSE(static_cast<bool>(parser.ParseValue(TCIMType::TypeBoolean, "TRUE")));
  EXPECT_THAT(LogLines(), IsEmpty());
}

TEST(TCIMXMLParser, ReadsWhatHasNoTextFormAsNullOfItsType) {
  TContainer container;
  TCIMXMLParser parser(container);
  const unsigned int kTypes[] = {TCIMType::TypeNone, TCIMType::TypeChar, TCIMType::TypeReference,
                                 TCIMType::TypeUint8 | TCIMType::TypeArray};
  for (const unsigned int code : kTypes) {
    const TCIMType type = static_cast<TCIMType::ECIMType>(code);
    const TCIMValue value = parser.ParseValue(type, "7");
    EXPECT_TRUE(value.IsNull()) << code;
    EXPECT_EQ(code, value.GetType());
  }
  EXPECT_THAT(LogLines(), IsEmpty());
}

TEST(TCIMXMLParser, ReadsABadDatetimeAsTheEpochWithALogLine) {
  Zoo zoo;
  EXPECT_EQ("zelStatusOK",
            zoo.ReadInstance("Zoo_Animal",
                             "<PROPERTY NAME=\"Name\"><VALUE>Tom</VALUE></PROPERTY>\n"
                             "<PROPERTY NAME=\"Born\"><VALUE>yesterday</VALUE></PROPERTY>\n"
                             "<PROPERTY NAME=\"Legs\"><VALUE>3</VALUE></PROPERTY>"));
  EXPECT_EQ("19700101000000.000000+000", zoo.ValueOf("Zoo_Animal", "Born").ToString(10));
  EXPECT_EQ("3", zoo.ValueOf("Zoo_Animal", "Legs").ToString(10));
  EXPECT_THAT(LogLines(), ElementsAre("Invalid datetime found on line 2.  Defaulting the datetime "
                                      "to 01/01/1970 00:00:00."));
  EXPECT_EQ(zelLogError, LastLogSeverity());
}

TEST(TCIMXMLParser, FatalErrorLogsTheLineAndThrows) {
  TContainer container;
  TCIMXMLParser parser(container);
  EXPECT_EQ("zelStatusInvalidSpecificationDocument",
            StatusOf([&] { parser.FatalError("Something"); }));
  EXPECT_EQ("zelStatusInvalidSpecificationDocument",
            StatusOf([&] { parser.FatalError(std::string("Else")); }));
  EXPECT_THAT(LogLines(zelLogError),
              ElementsAre("CIM-XML Parser line 1:Something", "CIM-XML Parser line 1:Else"));
}

TEST(TCIMXMLParser, FaultsOfTheXmlAreLoggedOnce) {
  Zoo zoo;
  EXPECT_EQ("zelStatusInvalidSpecificationDocument", zoo.Read(" <CIM/>"));
  EXPECT_EQ("zelStatusInvalidSpecificationDocument",
            zoo.Read("<CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\">\n</DIM>"));
  EXPECT_THAT(LogLines(),
              ElementsAre("CIM-XML Parser line 1:Unexpected character before prolog",
                          "CIM-XML Parser line 2:Start and end element names don't match"));
}

TEST(TCIMXMLParser, AcceptsKnownVersionsOnly) {
  const struct {
    const char* cim;
    const char* message;  // "" when accepted
  } kRows[] = {
      {"CIMVERSION=\"2.0\" DTDVERSION=\"2.0\"", ""                   },
      {"CIMVERSION=\"2.8\" DTDVERSION=\"2.1\"", ""                   },
      {"CIMVERSION=\"2.0\" DTDVERSION=\"2.1\"", ""                   },
      {"CIMVERSION=\"2.0\" DTDVERSION=\"2.2\"", "Unknown DTD version"},
      {"CIMVERSION=\"2.0\" DTDVERSION=\"2.\"",  "Unknown DTD version"},
      {"CIMVERSION=\"2.1\" DTDVERSION=\"2.0\"", "Unknown CIM version"},
      {"CIMVERSION=\"2.1\" DTDVERSION=\"2.2\"", "Unknown CIM version"},
      {"CIMVERSION=\"2.0\"",                    "Unknown DTD version"},
      {"DTDVERSION=\"2.0\"",                    "Unknown CIM version"},
      {"",                                      "Unknown CIM version"},
  };
  for (const auto& row : kRows) {
    RestartLog();
    Zoo zoo;
    const std::string status = zoo.Read("<CIM " + std::string(row.cim) + "/>");
    if (!*row.message) {
      EXPECT_EQ("zelStatusOK", status) << row.cim;
      EXPECT_THAT(LogLines(), IsEmpty());
    } else {
      EXPECT_EQ("zelStatusInvalidSpecificationDocument", status) << row.cim;
      EXPECT_THAT(LogLines(zelLogError), ElementsAreArray(FatalLines(1, row.message)));
    }
  }
}

TEST(TCIMXMLParser, AcceptsProtocolVersion10Only) {
  for (const char* version : {"PROTOCOLVERSION=\"1.1\"", "PROTOCOLVERSION=\"1.\"", ""}) {
    RestartLog();
    Zoo zoo;
    EXPECT_EQ("zelStatusInvalidSpecificationDocument",
              zoo.Read(InCIM("<MESSAGE ID=\"1\" " + std::string(version) + "/>")));
    EXPECT_THAT(LogLines(), ElementsAreArray(FatalLines(1, "Unknown protocol version")));
  }
}

TEST(TCIMXMLParser, MatchesElementNamesInAnyCase) {
  for (const char* cim : {"cim", "CIM", "Cim"}) {
    Zoo zoo;
    const std::string name = cim;
    EXPECT_EQ("zelStatusOK",
              zoo.Read("<" + name +
                       " CIMVersion=\"2.0\" dtdversion=\"2.0\"><declaration>"
                       "<DeclGroup><Value.Object><instance ClassName=\"Zoo_Animal\"><Property "
                       "name=\"Name\"><vALUE>Tom</vALUE></Property></instance></Value.Object>"
                       "</DeclGroup></declaration></" +
                       name + ">"));
    EXPECT_EQ("Tom", zoo.ValueOf("Zoo_Animal", "Name").ToString(10));
  }
}

// Every element, with an element that it does not accept.
TEST(TCIMXMLParser, RefusesElementsThatTheTableDoesNotName) {
  const std::string kAnimal = "<VALUE.OBJECT><INSTANCE CLASSNAME=\"Zoo_Animal\">";
  const std::string kClass = "<VALUE.OBJECT><CLASS NAME=\"A\">";
  const std::string kReference =
      "<VALUE.OBJECT><INSTANCE CLASSNAME=\"Zoo_Eats\">"
      "<PROPERTY.REFERENCE NAME=\"Eater\">";
  const std::string kPath = kReference + "<VALUE.REFERENCE>";
  const std::string kName = kPath + "<INSTANCENAME CLASSNAME=\"Zoo_Animal\">";
  const std::string kGroup = "<CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\"><DECLARATION><DECLGROUP>";
  const std::string kMessage =
      "<CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\"><MESSAGE PROTOCOLVERSION=\"1.0\">";
  const struct {
    std::string before;
    std::string refused;
  } kRows[] = {
      {"",                                                                                        "DECLARATION"          },
      {"",                                                                                        "INSTANCE"             },
      {"<CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\">",                                             "DECLGROUP"            },
      {"<CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\"><DECLARATION>",                                "CLASS"                },
      {kGroup,                                                                                    "CLASS"                },
      {kGroup,                                                                                    "VALUE.NAMEDOBJECT"    },
      {kGroup,                                                                                    "VALUE.NAMEDINSTANCE"  },
      {kGroup,                                                                                    "OBJECTPATH"           },
      {kGroup + "<VALUE.OBJECT>",                                                                 "INSTANCENAME"         },
      {kGroup + "<VALUE.OBJECT>",                                                                 "QUALIFIER.DECLARATION"},
      {kGroup + "<NAMESPACEPATH>",                                                                "NAMESPACE"            },
      {kGroup + "<NAMESPACEPATH><HOST>",                                                          "HOST"                 },
      {kGroup + "<LOCALNAMESPACEPATH>",                                                           "HOST"                 },
      {kGroup + "<LOCALNAMESPACEPATH><NAMESPACE NAME=\"root\">",                                  "NAMESPACE"            },
      {kGroup + "<QUALIFIER.DECLARATION NAME=\"Q\" TYPE=\"string\"><SCOPE/>",                     "SCOPE"                },
      {kGroup + "<QUALIFIER.DECLARATION NAME=\"Q\" TYPE=\"string\"><SCOPE/>",                     "QUALIFIER"            },
      {kGroup + "<QUALIFIER.DECLARATION NAME=\"Q\" TYPE=\"string\"><SCOPE>",                      "VALUE"                },
      {kGroup + kClass,                                                                           "VALUE"                },
      {kGroup + kClass,                                                                           "CLASS"                },
      {kGroup + kClass + "<PROPERTY NAME=\"P\" TYPE=\"string\">",                                 "VALUE.ARRAY"          },
      {kGroup + kClass + "<PROPERTY NAME=\"P\" TYPE=\"string\"><VALUE>",                          "VALUE"                },
      {kGroup + kClass + "<PROPERTY.ARRAY NAME=\"P\" TYPE=\"string\">",                           "VALUE"                },
      {kGroup + kClass + "<PROPERTY.ARRAY NAME=\"P\" TYPE=\"string\"><VALUE.ARRAY>",              "VALUE.NULL"           },
      {kGroup + kClass + "<PROPERTY.REFERENCE NAME=\"P\">",                                       "VALUE"                },
      {kGroup + kClass + "<PROPERTY.REFERENCE NAME=\"P\">",                                       "VALUE.REFARRAY"       },
      {kGroup + kClass + "<QUALIFIER NAME=\"Key\" TYPE=\"boolean\">",                             "QUALIFIER"            },
      {kGroup + kAnimal,                                                                          "METHOD"               },
      {kGroup + kAnimal,                                                                          "VALUE"                },
      {kGroup + kAnimal + "<PROPERTY NAME=\"Name\">",                                             "VALUE.ARRAY"          },
      {kGroup + kAnimal + "<PROPERTY NAME=\"Name\">",                                             "PROPERTY"             },
      {kGroup + kAnimal + "<PROPERTY.ARRAY NAME=\"Tags\">",                                       "VALUE"                },
      {kGroup + kAnimal + "<PROPERTY.ARRAY NAME=\"Tags\">",                                       "VALUE.REFARRAY"       },
      {kGroup + kReference,                                                                       "VALUE"                },
      {kGroup + kReference,                                                                       "INSTANCENAME"         },
      {kGroup + kPath,                                                                            "VALUE.REFERENCE"      },
      {kGroup + kPath,                                                                            "OBJECTPATH"           },
      {kGroup + kPath + "<CLASSNAME NAME=\"Zoo_Animal\">",                                        "CLASSNAME"            },
      {kGroup + kPath + "<CLASSPATH>",                                                            "LOCALNAMESPACEPATH"   },
      {kGroup + kPath + "<LOCALCLASSPATH>",                                                       "NAMESPACEPATH"        },
      {kGroup + kPath + "<INSTANCEPATH>",                                                         "CLASSNAME"            },
      {kGroup + kPath + "<LOCALINSTANCEPATH>",                                                    "NAMESPACEPATH"        },
      {kGroup + kName,                                                                            "VALUE"                },
      {kGroup + kName + "<KEYBINDING NAME=\"Name\">",                                             "VALUE"                },
      {kGroup + kName + "<KEYBINDING NAME=\"Name\"><KEYVALUE>",                                   "KEYVALUE"             },
      {"<CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\"><DECLARATION><DECLGROUP.WITHNAME>",
       "VALUE.OBJECT"                                                                                                    },
      {"<CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\"><DECLARATION><DECLGROUP.WITHNAME>"
       "<VALUE.NAMEDOBJECT>",                                                              "CLASSPATH"            },
      {"<CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\"><DECLARATION><DECLGROUP.WITHPATH>",
       "QUALIFIER.DECLARATION"                                                                                           },
      {"<CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\"><DECLARATION><DECLGROUP.WITHPATH>",
       "LOCALNAMESPACEPATH"                                                                                              },
      {"<CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\"><DECLARATION><DECLGROUP.WITHPATH>"
       "<VALUE.OBJECTWITHPATH>",                                                           "LOCALINSTANCEPATH"    },
      {"<CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\"><DECLARATION><DECLGROUP.WITHPATH>"
       "<VALUE.OBJECTWITHLOCALPATH>",                                                      "INSTANCEPATH"         },
      {kMessage,                                                                                  "SIMPLERSP"            },
      {kMessage,                                                                                  "IMETHODCALL"          },
      {kMessage + "<MULTIREQ>",                                                                   "MULTIREQ"             },
      {kMessage + "<SIMPLEREQ>",                                                                  "METHODCALL"           },
      {kMessage + "<SIMPLEREQ><IMETHODCALL NAME=\"CreateClass\">",                                "PARAMVALUE"           },
      {kMessage + "<SIMPLEREQ><IMETHODCALL NAME=\"CreateClass\"><IPARAMVALUE NAME=\"NewClass\">",
       "VALUE"                                                                                                           },
  };
  for (const auto& row : kRows) {
    RestartLog();
    Zoo zoo;
    const std::string newLine = row.before.empty() ? "" : "\n";
    EXPECT_EQ("zelStatusInvalidSpecificationDocument",
              zoo.Read(row.before + newLine + "<" + row.refused + ">"))
        << row.before;
    std::string lowered = row.refused;
    for (char& c : lowered) c = static_cast<char>(std::tolower(c));
    EXPECT_THAT(LogLines(), ElementsAreArray(FatalLines(newLine.empty() ? 1 : 2,
                                                        "Unexpected element " + lowered)))
        << row.before;
  }
}

TEST(TCIMXMLParser, EndsSilentlyWhereTheXmlDoes) {
  Zoo zoo;
  // A CDATA section ends the document without a word; what was complete before stays.
  EXPECT_EQ("zelStatusOK",
            zoo.Read("<CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\"><DECLARATION><DECLGROUP>" +
                     std::string(kTwoMice) +
                     "<VALUE.OBJECT><INSTANCE CLASSNAME=\"Zoo_Animal\"><PROPERTY NAME=\"Name\">"
                     "<VALUE><![CDATA[Tam]]></VALUE></PROPERTY></INSTANCE></VALUE.OBJECT>"
                     "</DECLGROUP></DECLARATION></CIM>"));
  EXPECT_THAT(zoo.Paths("Zoo_Animal"),
              ElementsAre("Zoo_Animal.Name=\"Tim\"", "Zoo_Animal.Name=\"Tom\""));
  EXPECT_THAT(LogLines(), IsEmpty());
}

TEST(TCIMXMLParser, KeepsWhatWasReadBeforeAFailure) {
  Zoo zoo;
  EXPECT_EQ("zelStatusInvalidSpecificationDocument",
            zoo.ReadGroup("<VALUE.OBJECT><CLASS NAME=\"Zoo_Bird\" SUPERCLASS=\"Zoo_Animal\"/>"
                          "</VALUE.OBJECT>" +
                          std::string(kTwoMice) + "<VALUE.OBJECT/>"));
  EXPECT_THAT(zoo.fCollected, ElementsAre("Zoo_Bird"));
  EXPECT_EQ(2U, zoo.Paths("Zoo_Animal").size());
  EXPECT_NE(nullptr, zoo.fContainer.FindClass("Zoo_Bird"));
}

TEST(TCIMXMLParser, CollectsDeclaredClassesInDocumentOrder) {
  Zoo zoo;
  const std::string kClasses =
      "<VALUE.OBJECT><CLASS NAME=\"Zoo_Zebra\" SUPERCLASS=\"Zoo_Animal\"/></VALUE.OBJECT>"
      "<VALUE.OBJECT><CLASS NAME=\"Zoo_Ant\" SUPERCLASS=\"Zoo_Animal\"/></VALUE.OBJECT>";
  EXPECT_EQ("zelStatusOK", zoo.ReadGroup(kClasses + kTwoMice));
  EXPECT_THAT(zoo.fCollected, ElementsAre("Zoo_Zebra", "Zoo_Ant"));
}

TEST(TCIMXMLParser, TakesTextPiecewiseAndFromNoOtherElement) {
  Zoo zoo;
  EXPECT_EQ("zelStatusOK",
            zoo.ReadInstance("Zoo_Animal",
                             " Tim <PROPERTY NAME=\"Name\"> and <VALUE>T&amp;<!-- and -->o&#109;"
                             "&#0;</VALUE> and </PROPERTY><PROPERTY.ARRAY NAME=\"Tags\">"
                             "<VALUE.ARRAY>x<VALUE/>x<VALUE> b </VALUE></VALUE.ARRAY>"
                             "</PROPERTY.ARRAY>"));
  EXPECT_EQ("T&om", zoo.ValueOf("Zoo_Animal", "Name").ToString(10));
  EXPECT_EQ("{ ,  b  }", zoo.ValueOf("Zoo_Animal", "Tags").ToString(10));
}

// A state that finds another parent than it needs: no element leads there.
TEST(TCIMXMLParser, AsksParentsForTheirRoles) {
  class TMisled : public TCIMXMLParser {
   public:
    using TCIMXMLParser::TCIMXMLParser;
    void Ask() { CurrentAs<TStateInstance>(); }
  };
  TContainer container;
  TMisled parser(container);
  EXPECT_EQ("zelStatusInvalidSpecificationDocument", StatusOf([&] { parser.Ask(); }));
  EXPECT_EQ("CIM-XML Parser line 1:Parser state corrupt", LastLogLine());
}

TEST(TCIMXMLParser, AsksItsStatesByTheLaidDownCalls) {
  TContainer container;
  TCIMXMLParser parser(container);
  parser.SetUX402Mode();
  TCIMXMLParser::TAttributeMap attributes{
      {"cimversion", "2.0"},
      {"dtdversion", "2.0"}
  };
  parser.StartElement("CIM", attributes);
  parser.processingInstruction("TBD", "TBD");
  parser.notationDecl("TBD", "TBD", "TBD");
  parser.characters("ignored", 7);
  parser.EndElement("CIM");
  EXPECT_EQ("zelStatusInvalidSpecificationDocument",
            StatusOf([&] { parser.StartElement("DECLARATION", attributes); }));
  EXPECT_THAT(parser.GetClassesCollected(), IsEmpty());
}

}  // namespace
