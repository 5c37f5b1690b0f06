#include "tests/support/TempDir.h"
#include "tests/xml/RealDocuments.h"

namespace {

using testing::StartsWith;

constexpr char kBadDocument[] = "zelStatusInvalidSpecificationDocument";

class RealRequests : public RealDocuments {
 protected:
  // Qualifier declarations without any class: the beginning of a document that has both.
  void LoadQualifiers() {
    std::string document = ReadText(kData / "schema/inventory-classes-declgroup.xml.gz");
    document.resize(document.find("<VALUE.OBJECT>"));
    const TempDir dir;
    fContainer->PopulateContainerFromFile(
        dir.WriteFile("qualifiers.xml", document + "</DECLGROUP></DECLARATION></CIM>"));
    EXPECT_EQ(70U, fContainer->EnumerateQualifiers().size());
  }

  std::size_t Count(const std::string& className) {
    return fContainer->GetClass(className)->EnumerateInstances(false).size();
  }
};

TEST_F(RealRequests, OfOneClientCreateClassesAndInstances) {
  LoadQualifiers();
  LoadAll("requests/client-a-lower-case", {});
  EXPECT_EQ(21U, fContainer->GetRootClass()->EnumerateSubClasses(true).size());
  const std::map<std::string, std::size_t> kCounts = {
      {"CIM_ComputerSystem",            1},
      {"CIM_OperatingSystem",           1},
      {"CIM_RunningOS",                 1},
      {"CIM_Processor",                 2},
      {"CIM_SystemDevice",              2},
      {"CIM_PhysicalMemory",            1},
      {"CIM_SoftwareIdentity",          2},
      {"CIM_InstalledSoftwareIdentity", 2},
  };
  for (const auto& [name, count] : kCounts) EXPECT_EQ(count, Count(name)) << name;
}

TEST_F(RealRequests, WithBooleansInCapitalsAreRefused) {
  LoadQualifiers();
  for (const std::string& file : FilesOf("requests/client-a-as-sent")) {
    // The first class is not abstract then, and has no key; all others build on it.
    const bool isFirst = file == "001-CreateClass-CIM_ManagedElement.xml";
    EXPECT_EQ(isFirst ? "zelStatusInvalidClass" : "zelStatusNotFound",
              Load("requests/client-a-as-sent/" + file))
        << file;
  }
  Load("requests/client-a-as-sent/001-CreateClass-CIM_ManagedElement.xml");
  EXPECT_EQ("Class CIM_ManagedElement has no keys", LogLines().at(0));
}

TEST_F(RealRequests, OfAnotherClientCreateInstancesWithQualifiers) {
  ASSERT_EQ("zelStatusOK", Load("schema/inventory-classes-declgroup.xml"));
  LoadAll("requests/client-b-as-sent",
          {
              {"002-CreateInstance-CIM_ComputerSystem-unescaped-value.xml",
               {kBadDocument, "CIM-XML Parser line 9:Unknown entity reference"}},
  });
  EXPECT_EQ(1U, Count("CIM_ComputerSystem"));
  EXPECT_EQ(1U, Count("CIM_Processor"));
  EXPECT_EQ(1U, Count("CIM_PhysicalMemory"));
  EXPECT_EQ(1U, Count("CIM_OperatingSystem"));
}

TEST_F(RealRequests, OfAServersTestsCreateClasses) {
  ASSERT_EQ("zelStatusOK", Load("schema/openpegasus-static-declarations.xml.gz"));
  EXPECT_EQ(246U, fCollected);
  const std::string kThrew = "TCIMXMLParser: Threw exception ";
  const std::string kExists = kThrew + "zelStatusAlreadyExists on line 19";
  const std::string kNotFound = kThrew + "zelStatusNotFound on line 11";
  LoadAll("requests/openpegasus-create-class",
          {
              {"CreateClass34001.xml",
               {"zelStatusInvalidClass", "Class Test_ClassforCreateClass002 has no keys"}    },
              {"CreateClass34002.xml", {"zelStatusAlreadyExists", kExists}                   },
 // Namespaces do not matter: it is one container.
              {"CreateClass34003.xml", {"zelStatusAlreadyExists", kExists}                   },
              {"CreateClass34004.xml",
               {"zelStatusInvalidClass", "Class Test_ClassforCreateClass001 has no keys"}    },
              {"CreateClass34005.xml", {"zelStatusNotFound", kNotFound}                      },
 // These derive from an indication that has no key and is not in the declarations.
              {"CreateClass34006.xml", {"zelStatusNotFound", kNotFound}                      },
              {"CreateClass34007.xml", {"zelStatusNotFound", kNotFound}                      },
              {"CreateClass34008.xml", {"zelStatusNotFound", kNotFound}                      },
              {"CreateClass34009.xml",
               {kBadDocument, "CIM-XML Parser line 10:Unexpected IParamValue parameter name"}},
              {"CreateClass34010.xml", {"zelStatusAlreadyExists", kExists}                   },
              {"CreateClass34012.xml",
               {kBadDocument, "CIM-XML Parser line 11:CIM element syntax error"}             },
  });
}

// Bad numbers are read as 0 where that server refuses the request.
TEST_F(RealRequests, OfAServersTestsCreateInstances) {
  ASSERT_EQ("zelStatusOK", Load("schema/openpegasus-static-declarations.xml.gz"));
  LoadAll("requests/openpegasus-create-instance",
          {
              {"CreateInstance53002.xml",
               {"zelStatusNotFound", "TCIMXMLParser: Couldn't find class test_class"}           },
              {"CreateInstance53003.xml",
               {"zelStatusNotFound", "TCIMXMLParser: Couldn't find property Test_InstanceId"}   },
              {"CreateInstance53004.xml",
               {"zelStatusNotFound", "TCIMXMLParser: Couldn't find property Test_Property_name"}},
  });
  EXPECT_EQ(53U, Count("PG_TestPropertyTypes"));
}

TEST_F(RealRequests, GiveValuesOfManyTypes) {
  ASSERT_EQ("zelStatusOK", Load("schema/openpegasus-static-declarations.xml.gz"));
  ASSERT_EQ("zelStatusOK", Load("requests/openpegasus-create-instance/CreateInstance53000.xml"));
  ASSERT_EQ(1U, Count("PG_TestPropertyTypes"));
  const TCIMInstance* const created =
      fContainer->GetClass("PG_TestPropertyTypes")->EnumerateInstances(false)[0];
  const std::map<std::string, std::string> kValues = {
      {"InstanceId",     "1"                },
      {"PropertyString", "created_instance1"},
      {"PropertyUint8",  "180"              },
      {"PropertyUint16", "1600"             },
      {"PropertyUint32", "13200"            },
      {"PropertyUint64", "16400"            },
      {"PropertySint8",  "-110"             },
      {"PropertySint16", "-1600"            },
      {"PropertySint32", "-13200"           },
      {"PropertySint64", "-16400"           },
  };
  for (const auto& [name, value] : kValues) {
    EXPECT_EQ(value, created->GetProperty(name)->GetValue().ToString(10)) << name;
  }
}

TEST_F(RealRequests, OfASmallServersTestsMustBeginWithTheMarkup) {
  ASSERT_EQ("zelStatusOK", Load("schema/dmtf-2.49.0-declarations.xml.gz"));
  const std::string kUnknown = "TCIMXMLParser: Couldn't find class ";
  const TEnding kBlank = {kBadDocument, "CIM-XML Parser line 1:Unexpected character before prolog"};
  const TEnding kComment = {kBadDocument, "CIM-XML Parser line 1:Invalid element/attribute name"};
  LoadAll("requests/sfcb",
          {
              {"ErrorTest11.xml",                             {"zelStatusNotFound", kUnknown + "TEST_Person"}    },
              {"InstanceTest1Create.xml",                     {"zelStatusNotFound", kUnknown + "TEST_Person"}    },
              {"Test3CreateInstance.xml",                     {"zelStatusNotFound", kUnknown + "Sample_Instance"}},
              {"SAE_02_CI_LD.xml",                            kBlank                                             },
              {"SNS_01_CI_stringonly.xml",                    kBlank                                             },
              {"SNS_04_CI_arrayonly.xml",                     kBlank                                             },
              {"SNS_07_CI_both.xml",                          kBlank                                             },
              {"createInstance_ServerProvider.xml",
               {"zelStatusInvalidInstance",
                "Instance CIM_ObjectManager: key property CreationClassName is NULL"}                            },
              {"indCIMXMLHandler-verify_PersistenceType.xml", kComment                                           },
              {"internalProv-ci_abstract_class.xml",          kComment                                           },
  });
}

// None hangs or crashes, and most are refused. What is not, and why, stands here.
TEST_F(RealRequests, ThatAreBrokenEndWithAStatus) {
  ASSERT_EQ("zelStatusOK", Load("schema/openpegasus-static-declarations.xml.gz"));
  const std::map<std::string, std::string> kOthers = {
      {"errorxml-BadChar16Value01.xml",                 "zelStatusTypeMismatch"}, // by the type, not by the value
      {"errorxml-BadDateTimeValue01.xml",               "zelStatusOK"          }, // 1970 instead
      {"errorxml-BadInstanceClassName01.xml",           "zelStatusNotFound"    },
      {"errorxml-BadQualValueElement01.xml",            "zelStatusOK"          }, // qualifiers of instances are dropped
      {"errorxml-BadReal32Value01.xml",                 "zelStatusOK"          }, // 0 instead
      {"errorxml-BadReal64Value01.xml",                 "zelStatusOK"          },
      {"errorxml-DuplicateProperty01.xml",              "zelStatusNotFound"    }, // by the class
      {"errorxml-DuplicateQualifier01.xml",             "zelStatusOK"          },
      {"errorxml-MissingInstanceNameClassName01.xml",   "zelStatusNotFound"    },
      {"errorxml-MissingPropertyReferenceEndTag01.xml", "zelStatusNotFound"    },
      {"errorxml-TooManyProperties01.xml",              "zelStatusNotFound"    },
  };
  for (const std::string& file : FilesOf("other")) {
    const auto found = kOthers.find(file);
    EXPECT_EQ(found == kOthers.end() ? kBadDocument : found->second, Load("other/" + file)) << file;
  }
  Load("other/UnsupportedDTDVersionValue01.xml");
  EXPECT_EQ("CIM-XML Parser line 2:Unknown DTD version", LogLines().at(0));
  Load("other/errorxml-BadDateTimeValue01.xml");
  EXPECT_EQ("Invalid datetime found on line 74.  Defaulting the datetime to 01/01/1970 00:00:00.",
            LogLines().at(0));
  Load("other/errorxml-MissingValueElementEndTag01.xml");
  EXPECT_EQ("CIM-XML Parser line 23:Start and end element names don't match", LogLines().at(0));
  Load("other/mof-compiler-output-older.xml");
  EXPECT_EQ("CIM-XML Parser line 6:Unexpected element qualifier.declaration", LogLines().at(0));
}

}  // namespace
