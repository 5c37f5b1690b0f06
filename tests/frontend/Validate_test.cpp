#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdio.h>

#include <filesystem>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "tests/frontend/Zel.h"
#include "tests/support/TempDir.h"
#include "zelcore/zel.h"

namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::StartsWith;

// A clean document of fifteen lines, with places to put something in.
struct TParts {
  std::string encoding = "utf-8";
  std::string inClass;     // line 10, of a subclass of T_Base
  std::string inInstance;  // line 13, of that class
  std::string after;       // line 16
  std::string before;      // line 1
  std::string docType;     // line 2
};

std::string Document(const TParts& parts) {
  return parts.before + "<?xml version=\"1.0\" encoding=\"" + parts.encoding + "\"?>\n" +
         parts.docType +
         "<CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\"><DECLARATION><DECLGROUP>\n"
         "<QUALIFIER.DECLARATION NAME=\"Key\" TYPE=\"boolean\" OVERRIDABLE=\"false\">"
         "<SCOPE PROPERTY=\"true\"/><VALUE>false</VALUE></QUALIFIER.DECLARATION>\n"
         "<QUALIFIER.DECLARATION NAME=\"Override\" TYPE=\"string\"><SCOPE PROPERTY=\"true\"/>"
         "</QUALIFIER.DECLARATION>\n"
         "<QUALIFIER.DECLARATION NAME=\"Values\" TYPE=\"string\" ISARRAY=\"true\">"
         "<SCOPE PROPERTY=\"true\"/></QUALIFIER.DECLARATION>\n"
         "<VALUE.OBJECT><CLASS NAME=\"T_Base\">\n"
         "<PROPERTY NAME=\"Id\" TYPE=\"string\"><QUALIFIER NAME=\"KEY\" TYPE=\"boolean\">"
         "<VALUE>true</VALUE></QUALIFIER></PROPERTY>"
         "<PROPERTY NAME=\"B\" TYPE=\"boolean\"/><PROPERTY NAME=\"U8\" TYPE=\"uint8\"/>"
         "<PROPERTY NAME=\"S8\" TYPE=\"sint8\"/><PROPERTY NAME=\"U16\" TYPE=\"uint16\"/>"
         "<PROPERTY NAME=\"S16\" TYPE=\"sint16\"/><PROPERTY NAME=\"U32\" TYPE=\"uint32\"/>"
         "<PROPERTY NAME=\"S32\" TYPE=\"sint32\"/><PROPERTY NAME=\"U64\" TYPE=\"uint64\"/>"
         "<PROPERTY NAME=\"S64\" TYPE=\"sint64\"/><PROPERTY NAME=\"R32\" TYPE=\"real32\"/>"
         "<PROPERTY NAME=\"R64\" TYPE=\"real64\"/><PROPERTY NAME=\"D\" TYPE=\"datetime\"/>"
         "<PROPERTY NAME=\"S\" TYPE=\"string\"/><PROPERTY.ARRAY NAME=\"A\" TYPE=\"uint8\"/>\n"
         "</CLASS></VALUE.OBJECT>\n"
         "<VALUE.OBJECT><CLASS NAME=\"T_Thing\" SUPERCLASS=\"T_Base\">\n" +
         parts.inClass +
         "\n</CLASS></VALUE.OBJECT>\n"
         "<VALUE.OBJECT><INSTANCE CLASSNAME=\"T_Thing\">"
         "<PROPERTY NAME=\"Id\" TYPE=\"string\"><VALUE>1</VALUE></PROPERTY>\n" +
         parts.inInstance +
         "\n</INSTANCE></VALUE.OBJECT>\n"
         "</DECLGROUP></DECLARATION></CIM>\n" +
         parts.after;
}

std::string Property(const std::string& name, const std::string& value) {
  return "<PROPERTY NAME=\"" + name + "\"><VALUE>" + value + "</VALUE></PROPERTY>";
}

constexpr char kAllRead[] = "read 3 qualifier declarations, 2 classes and 1 instance";

class Validate : public testing::Test {
 protected:
  // The lines about a document, with FILE for its path.
  std::string Lines(const std::string& document, int code, const std::string& name = "t.xml",
                    std::vector<std::string> more = {}) {
    const std::string path = fDir.WriteFile(name, document);
    more.insert(more.begin(), {"validate", path});
    const TResult result = Zel(more);
    EXPECT_EQ(code, result.code);
    EXPECT_EQ("", result.err);
    std::string lines = result.out;
    for (std::size_t at = 0; (at = lines.find(path, at)) != std::string::npos;) {
      lines.replace(at, path.size(), "FILE");
    }
    return lines;
  }

  const TempDir fDir;
};

TEST_F(Validate, HasNothingToSayOfACleanDocument) {
  const std::string verdict = "FILE: clean: " + std::string(kAllRead) + "\n";
  EXPECT_EQ(verdict, Lines(Document({}), 0));

  TParts parts;
  parts.docType = "<!DOCTYPE CIM SYSTEM \"cim.dtd\">";
  parts.after = "\n<!-- a comment -->\n<?pi?>\n";
  parts.inClass =
      "<!-- > --><PROPERTY NAME=\"Id\" TYPE=\"string\"><QUALIFIER NAME=\"Override\">"
      "<VALUE>Id</VALUE></QUALIFIER><QUALIFIER NAME=\"Key\"><VALUE>true</VALUE></QUALIFIER>"
      "<QUALIFIER NAME=\"Values\"><VALUE.ARRAY><VALUE>TRUE</VALUE></VALUE.ARRAY></QUALIFIER>"
      "</PROPERTY>"
      "<PROPERTY NAME=\"S\" TYPE=\"string\"><QUALIFIER NAME=\"Override\"/></PROPERTY>"
      "<METHOD NAME=\"M\" TYPE=\"boolean\"><X Y=\"1\">text</X><VALUE>TRUE</VALUE></METHOD>";
  parts.inInstance =
      "<PROPERTY NAME=\"S\"><QUALIFIER NAME=\"Key\"><VALUE>TRUE</VALUE></QUALIFIER>"
      "<VALUE>a &amp; &#65; \xC3\xA9</VALUE></PROPERTY>"
      "<PROPERTY.ARRAY NAME=\"A\"><VALUE.ARRAY><VALUE>1</VALUE></VALUE.ARRAY></PROPERTY.ARRAY>";
  EXPECT_EQ(verdict, Lines(Document(parts), 0));
}

TEST_F(Validate, TellsWhatValuesAreReadOtherwise) {
  struct {
    const char* property;
    const char* text;
    const char* finding;  // behind "FILE:13: warning: T_Thing."; empty: none
  } const rows[] = {
      {"B",   "true",                      ""                                                                          },
      {"B",   "false",                     ""                                                                          },
      {"B",   " false ",                   ""                                                                          },
      {"B",   "FALSE",                     ""                                                                          },
      {"B",   "TRUE",
       "B: 'TRUE' is read as false: booleans are \"true\" and \"false\" in lower case [boolean]"                       },
      {"B",   "yes",
       "B: 'yes' is read as false: booleans are \"true\" and \"false\" in lower case [boolean]"                        },
      {"B",   "",
       "B: '' is read as false: booleans are \"true\" and \"false\" in lower case [boolean]"                           },
      {"U8",  "0",                         ""                                                                          },
      {"U8",  "255",                       ""                                                                          },
      {"U8",  " +255\n",                   ""                                                                          },
      {"U8",  "0xfF",                      ""                                                                          },
      {"U8",  "0XFF",                      ""                                                                          },
      {"U8",  "-0",                        ""                                                                          },
      {"U8",  "256",                       "U8: '256' does not fit into uint8; it is read as 0 [out-of-range]"         },
      {"U8",  "300",                       "U8: '300' does not fit into uint8; it is read as 44 [out-of-range]"        },
      {"U8",  "-1",                        "U8: '-1' does not fit into uint8; it is read as 255 [out-of-range]"        },
      {"S8",  "-128",                      ""                                                                          },
      {"S8",  "127",                       ""                                                                          },
      {"S8",  "128",                       "S8: '128' does not fit into sint8; it is read as -128 [out-of-range]"      },
      {"S8",  "-129",                      "S8: '-129' does not fit into sint8; it is read as 127 [out-of-range]"      },
      {"U16", "65535",                     ""                                                                          },
      {"U16", "65536",                     "U16: '65536' does not fit into uint16; it is read as 65535 [out-of-range]" },
      {"S16", "-32768",                    ""                                                                          },
      {"S16", "32768",                     "S16: '32768' does not fit into sint16; it is read as 32767 [out-of-range]" },
      {"U32", "4294967295",                ""                                                                          },
      {"U32", "4294967296",
       "U32: '4294967296' does not fit into uint32; it is read as 4294967295 [out-of-range]"                           },
      {"S32", "-2147483648",               ""                                                                          },
      {"S32", "2147483648",
       "S32: '2147483648' does not fit into sint32; it is read as 2147483647 [out-of-range]"                           },
      {"U64", "18446744073709551615",      ""                                                                          },
      {"U64", "18446744073709551616",
       "U64: '18446744073709551616' does not fit into uint64; it is read as 18446744073709551615 "
       "[out-of-range]"                                                                                                },
      {"S64", "-9223372036854775808",      ""                                                                          },
      {"S64", "-9223372036854775809",
       "S64: '-9223372036854775809' does not fit into sint64; it is read as -9223372036854775808 "
       "[out-of-range]"                                                                                                },
      {"S32", "twelve",                    "S32: 'twelve' is no sint32; it is read as 0 [not-a-number]"                },
      {"S32", "12 MB",                     "S32: '12 MB' is no sint32; it is read as 12 [not-a-number]"                },
      {"S32", "1.5",                       "S32: '1.5' is no sint32; it is read as 1 [not-a-number]"                   },
      {"S32", "",                          "S32: '' is no sint32; it is read as 0 [not-a-number]"                      },
      {"S32", "0x",                        "S32: '0x' is no sint32; it is read as 0 [not-a-number]"                    },
      {"S32", "--1",                       "S32: '--1' is no sint32; it is read as 0 [not-a-number]"                   },
      {"S32", "007",                       ""                                                                          },
      {"S32", "010",                       "S32: '010' begins with 0 and is read as octal, 8 [octal]"                  },
      {"S32", "-010",                      "S32: '-010' begins with 0 and is read as octal, -8 [octal]"                },
      {"S32", "09",                        "S32: '09' begins with 0 and is read as octal, 0 [octal]"                   },
      {"R32", "1",                         ""                                                                          },
      {"R32", "+1.5e3",                    ""                                                                          },
      {"R32", "-.5E-3",                    ""                                                                          },
      {"R32", "0.1",                       ""                                                                          },
      {"R32", "1e39",
       "R32: '1e39' does not fit into real32; it is read as 3.40282e+38 [out-of-range]"                                },
      {"R64", "1e39",                      ""                                                                          },
      {"R64", "1e309",
       "R64: '1e309' does not fit into real64; it is read as 1.79769e+308 [out-of-range]"                              },
      {"R64", "NaN",                       "R64: 'NaN' is no real64; it is read as 0 [not-a-number]"                   },
      {"R64", "-INF",                      "R64: '-INF' is no real64; it is read as 0 [not-a-number]"                  },
      {"R64", "1,5",                       "R64: '1,5' is no real64; it is read as 1 [not-a-number]"                   },
      {"R64", "1-2",                       "R64: '1-2' is no real64; it is read as 1 [not-a-number]"                   },
      {"R64", "",                          "R64: '' is no real64; it is read as 0 [not-a-number]"                      },
      {"D",   "20040315142530.000000-300", ""                                                                          },
      {"D",   "20040229235960.999999+000", ""                                                                          },
      {"D",   "20000229000000.000000+000", ""                                                                          },
      {"D",   "20041231235959.999999+000", ""                                                                          },
      {"D",   "00065535235959.999999:000", ""                                                                          },
      {"D",   "20041301000000.000000+000",
       "D: there is no moment '20041301000000.000000+000'; the reader takes it as it stands "
       "[datetime-fields]"                                                                                             },
      {"D",   "20040001000000.000000+000",
       "D: there is no moment '20040001000000.000000+000'; the reader takes it as it stands "
       "[datetime-fields]"                                                                                             },
      {"D",   "20030229000000.000000+000",
       "D: there is no moment '20030229000000.000000+000'; the reader takes it as it stands "
       "[datetime-fields]"                                                                                             },
      {"D",   "19000229000000.000000+000",
       "D: there is no moment '19000229000000.000000+000'; the reader takes it as it stands "
       "[datetime-fields]"                                                                                             },
      {"D",   "20040431000000.000000+000",
       "D: there is no moment '20040431000000.000000+000'; the reader takes it as it stands "
       "[datetime-fields]"                                                                                             },
      {"D",   "20040100000000.000000+000",
       "D: there is no moment '20040100000000.000000+000'; the reader takes it as it stands "
       "[datetime-fields]"                                                                                             },
      {"D",   "20040101006000.000000+000",
       "D: there is no moment '20040101006000.000000+000'; the reader takes it as it stands "
       "[datetime-fields]"                                                                                             },
      {"D",   "20040101000061.000000+000",
       "D: there is no moment '20040101000061.000000+000'; the reader takes it as it stands "
       "[datetime-fields]"                                                                                             },
      {"D",   "20030228240000.000000+000",
       "D: there is no moment '20030228240000.000000+000'; the reader takes it as it stands "
       "[datetime-fields]"                                                                                             },
      {"D",   "00070000000000.000000:000",
       "D: '00070000000000.000000:000' is read as an interval of 4464 days: more than 65535 do not "
       "fit [interval-days]"                                                                                           },
      {"S",   "TRUE 300 <!-- c --> 010",   ""                                                                          },
      {"S",   "&#233;",                    "S: &#233; is one byte for the reader, hexadecimal E9 [character-reference]"},
      {"S",   "&#x20AC;",
       "S: &#x20AC; is one byte for the reader, hexadecimal AC [character-reference]"                                  },
      {"S",   "&#127;",                    ""                                                                          },
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(std::string(row.property) + " " + row.text);
    const bool isClean = !*row.finding;
    TParts parts;
    parts.inInstance = Property(row.property, row.text);
    const std::string finding =
        isClean ? "" : "FILE:13: warning: T_Thing." + std::string(row.finding) + "\n";
    const std::string verdict = isClean ? "clean: " : "0 errors and 1 warning: ";
    EXPECT_EQ(finding + "FILE: " + verdict + kAllRead + "\n",
              Lines(Document(parts), isClean ? 0 : 4));
  }
}

TEST_F(Validate, TellsDefaultedDatetimesTwice) {
  TParts parts;
  parts.inInstance = Property("D", "yesterday");
  EXPECT_EQ(
      "FILE:13: warning: Invalid datetime found on line 13.  Defaulting the datetime to "
      "01/01/1970 00:00:00. [reader-default]\n"
      "FILE:13: warning: T_Thing.D: 'yesterday' is no datetime; it is read as "
      "19700101000000.000000+000 [datetime]\n"
      "FILE: 0 errors and 2 warnings: " +
          std::string(kAllRead) + "\n",
      Lines(Document(parts), 4));
}

TEST_F(Validate, TellsWhatTheModelLosesSilently) {
  struct {
    const char* inClass;
    const char* inInstance;
    const char* finding;
  } const rows[] = {
      {"<PROPERTY NAME=\"Other\" TYPE=\"string\"><QUALIFIER NAME=\"Key\"><VALUE>true</VALUE>"
       "</QUALIFIER></PROPERTY>\n<PROPERTY NAME=\"id\" TYPE=\"string\"><QUALIFIER "
       "NAME=\"OVERRIDE\">"
       "<VALUE>Id</VALUE></QUALIFIER></PROPERTY>",                             "<PROPERTY NAME=\"Other\"><VALUE>x</VALUE></PROPERTY>",
       "11: error: T_Thing.id: is a key in T_Base; overridden here without a KEY of its own, it is "
       "none any more [key-lost]\nFILE: 1 error and 0 warnings: "              },
      {"<PROPERTY NAME=\"S\" TYPE=\"string\"><QUALIFIER NAME=\"OVERRIDE\"/>"
       "<QUALIFIER NAME=\"Values\"><VALUE>one</VALUE></QUALIFIER></PROPERTY>", "",
       "10: warning: T_Thing.S, qualifier Values: is declared as an array, so this is read as NULL "
       "[qualifier-shape]\nFILE: 0 errors and 1 warning: "                     },
      {"<PROPERTY NAME=\"S\" TYPE=\"string\"><QUALIFIER NAME=\"OVERRIDE\"><VALUE.ARRAY>"
       "<VALUE>S</VALUE></VALUE.ARRAY></QUALIFIER></PROPERTY>",                "",
       "10: warning: T_Thing.S, qualifier OVERRIDE: is declared as a single value, so this is read "
       "as "
       "NULL [qualifier-shape]\nFILE: 0 errors and 1 warning: "                },
      {"<PROPERTY NAME=\"New\" TYPE=\"uint8\"><QUALIFIER NAME=\"KEY\" OVERRIDABLE=\"TRUE\">"
       "<VALUE>false</VALUE></QUALIFIER></PROPERTY>",                          "",
       "10: warning: T_Thing.New, qualifier KEY: 'TRUE' is read as false: booleans are \"true\" "
       "and "
       "\"false\" in lower case [boolean]\nFILE: 0 errors and 1 warning: "     },
      {"<PROPERTY NAME=\"New\" TYPE=\"uint8\"><QUALIFIER NAME=\"KEY\"><VALUE.ARRAY>"
       "<VALUE>TRUE</VALUE></VALUE.ARRAY></QUALIFIER></PROPERTY>",             "",
       "10: warning: T_Thing.New, qualifier KEY: is declared as a single value, so this is read "
       "as NULL [qualifier-shape]\nFILE: 0 errors and 1 warning: "             },
      {"<PROPERTY NAME=\"New\" TYPE=\"uint8\"><QUALIFIER NAME=\"KEY\" PROPAGATED=\"no\" "
       "TRANSLATABLE=\"yes\"><VALUE>false</VALUE></QUALIFIER></PROPERTY>",     "",
       "10: warning: T_Thing.New, qualifier KEY: 'no' is read as false: booleans are \"true\" "
       "and \"false\" in lower case [boolean]\n"
       "FILE:10: warning: T_Thing.New, qualifier KEY: 'yes' is read as false: booleans are "
       "\"true\" "
       "and \"false\" in lower case [boolean]\nFILE: 0 errors and 2 warnings: "},
      {"<PROPERTY NAME=\"New\" TYPE=\"uint8\"><VALUE>256</VALUE></PROPERTY>",         "",
       "10: warning: T_Thing.New: '256' does not fit into uint8; it is read as 0 [out-of-range]\n"
       "FILE: 0 errors and 1 warning: "                                        },
      {"<PROPERTY.ARRAY NAME=\"New\" TYPE=\"uint8\" ARRAYSIZE=\"x\"/>",               "",
       "10: warning: T_Thing.New: 'x' is no uint32; it is read as 0 [not-a-number]\n"
       "FILE: 0 errors and 1 warning: "                                        },
      {"",                                                                            "<PROPERTY NAME=\"S\"><VALUE>1</VALUE></PROPERTY><PROPERTY NAME=\"s\"/>",
       "13: warning: T_Thing.s: is given more than once; the last value counts "
       "[duplicate-property]\n"
       "FILE: 0 errors and 1 warning: "                                        },
      {"",                                                                            "<PROPERTY NAME=\"S\">lost<VALUE>1</VALUE></PROPERTY>",
       "13: warning: T_Thing.S: the text 'lost' stands where none is read [stray-text]\n"
       "FILE: 0 errors and 1 warning: "                                        },
      {"",
       "<PROPERTY.ARRAY NAME=\"A\"><VALUE.ARRAY><VALUE>1</VALUE><VALUE>257</VALUE></VALUE.ARRAY>"
       "</PROPERTY.ARRAY>",                                                                                                                                     "13: warning: T_Thing.A: '257' does not fit into uint8; it is read as 1 [out-of-range]\n"
       "FILE: 0 errors and 1 warning: "             },
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.finding);
    TParts parts;
    parts.inClass = row.inClass;
    parts.inInstance = row.inInstance;
    EXPECT_EQ("FILE:" + std::string(row.finding) + kAllRead + "\n", Lines(Document(parts), 4));
  }
}

TEST_F(Validate, FindsTheTypesOfKeysOfReferences) {
  const std::string document =
      "<CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\"><DECLARATION><DECLGROUP>\n"
      "<QUALIFIER.DECLARATION NAME=\"Key\" TYPE=\"boolean\"><SCOPE PROPERTY=\"TRUE\" "
      "METHOD=\"TRUE\"/>"
      "</QUALIFIER.DECLARATION>\n"
      "<QUALIFIER.DECLARATION NAME=\"Association\" "
      "TYPE=\"boolean\"><SCOPE/></QUALIFIER.DECLARATION>\n"
      "<VALUE.OBJECT><CLASS NAME=\"T_End\"><PROPERTY NAME=\"Id\" TYPE=\"uint8\">"
      "<QUALIFIER NAME=\"Key\"><VALUE>true</VALUE></QUALIFIER></PROPERTY></CLASS></VALUE.OBJECT>\n"
      "<VALUE.OBJECT><CLASS NAME=\"T_Link\"><QUALIFIER NAME=\"Association\"><VALUE>true</VALUE>"
      "</QUALIFIER><PROPERTY.REFERENCE NAME=\"From\" REFERENCECLASS=\"T_End\">"
      "<QUALIFIER NAME=\"Key\"><VALUE>true</VALUE></QUALIFIER></PROPERTY.REFERENCE>"
      "<PROPERTY.REFERENCE NAME=\"To\" REFERENCECLASS=\"T_End\">"
      "<QUALIFIER NAME=\"Key\"><VALUE>true</VALUE></QUALIFIER></PROPERTY.REFERENCE>"
      "</CLASS></VALUE.OBJECT>\n"
      "<VALUE.OBJECT><INSTANCE CLASSNAME=\"T_Link\">\n"
      "<PROPERTY.REFERENCE NAME=\"From\"><VALUE.REFERENCE><INSTANCENAME CLASSNAME=\"T_End\">"
      "<KEYBINDING NAME=\"Id\"><KEYVALUE>256</KEYVALUE></KEYBINDING></INSTANCENAME>"
      "</VALUE.REFERENCE></PROPERTY.REFERENCE>\n"
      "<PROPERTY.REFERENCE NAME=\"To\"><VALUE.REFERENCE><INSTANCENAME CLASSNAME=\"T_End\">"
      "<KEYVALUE>one</KEYVALUE></INSTANCENAME></VALUE.REFERENCE></PROPERTY.REFERENCE>\n"
      "</INSTANCE></VALUE.OBJECT>\n"
      "</DECLGROUP></DECLARATION></CIM>\n";
  EXPECT_EQ(
      "FILE:2: warning: qualifier Key: 'TRUE' is read as false: booleans are \"true\" and "
      "\"false\" "
      "in lower case [boolean]\n"
      "FILE:7: warning: T_End.Id: '256' does not fit into uint8; it is read as 0 [out-of-range]\n"
      "FILE:8: warning: T_End: 'one' is no uint8; it is read as 0 [not-a-number]\n"
      "FILE: 0 errors and 3 warnings: read 2 qualifier declarations, 2 classes and 1 instance\n",
      Lines(document, 4));
}

TEST_F(Validate, TellsWhereTheReaderStopsWithoutAWord) {
  constexpr char kPartlyRead[] = "read 3 qualifier declarations, 2 classes and 0 of 1 instance\n";
  TParts parts;
  parts.inInstance = "<PROPERTY NAME=\"S\">\n<VALUE><![CDATA[x]]></VALUE></PROPERTY>" +
                     Property("U8", "256") + Property("S", "&#233;") +
                     "<VALUE><![CDATA[y]]></VALUE>";
  EXPECT_EQ(
      "FILE:14: error: a CDATA section, at which the reader stops without a word: the rest is not "
      "read [cdata]\n"
      "FILE: 1 error and 0 warnings: " +
          std::string(kPartlyRead),
      Lines(Document(parts), 4));

  parts = {};
  parts.inInstance = "<!ELEMENT X>";
  EXPECT_EQ(
      "FILE:13: error: a \"<!\" that begins no comment, at which the reader stops without a word: "
      "the rest is not read [declaration]\n"
      "FILE: 1 error and 0 warnings: read 3 qualifier declarations, 2 classes and 0 instances\n",
      Lines(Document(parts), 4));

  for (const char* after : {"<CIM/>", "text", "!!", "<!-- open", "</CIM>"}) {
    SCOPED_TRACE(after);
    parts = {};
    parts.after = "\n" + std::string(after);
    EXPECT_EQ(
        "FILE:17: warning: something after the root element, which the reader does not look at "
        "[after-root]\n"
        "FILE: 0 errors and 1 warning: " +
            std::string(kAllRead) + "\n",
        Lines(Document(parts), 4));
  }

  const std::string nul(1, '\0');
  parts = {};
  parts.after = "\n" + nul + "<X";
  EXPECT_EQ(
      "FILE:17: error: a NUL byte, which the reader takes for the end of the document [nul]\n"
      "FILE: 1 error and 0 warnings: " +
          std::string(kAllRead) + "\n",
      Lines(Document(parts), 4));
  parts = {};
  parts.inInstance = Property("S", "a" + nul + "b");
  EXPECT_EQ(
      "FILE:13: error: CIM-XML Parser line 13:Unexpected character where element expected "
      "[reader]\n"
      "FILE:13: error: a NUL byte, which the reader takes for the end of the document [nul]\n"
      "FILE: 2 errors and 0 warnings: " +
          std::string(kPartlyRead),
      Lines(Document(parts), 4));
}

TEST_F(Validate, TellsWhatIsWrongWithTheBytes) {
  TParts parts;
  parts.before = "\xEF\xBB\xBF";
  EXPECT_EQ(
      "FILE:1: error: CIM-XML Parser line 1:Unexpected character before prolog [reader]\n"
      "FILE:1: error: begins with a byte-order mark; the reader wants '<' as the very first byte "
      "[byte-order-mark]\n"
      "FILE: 2 errors and 0 warnings: read 0 of 3 qualifier declarations, 0 of 2 classes and 0 of "
      "1 "
      "instance\n",
      Lines(Document(parts), 4));

  EXPECT_EQ(
      "FILE:1: error: CIM-XML Parser line 1:Unexpected character before prolog [reader]\n"
      "FILE:1: error: is in UTF-16; the reader wants UTF-8 [wide-encoding]\n"
      "FILE: 2 errors and 0 warnings: read 0 qualifier declarations, 0 classes and 0 instances\n",
      Lines(std::string("\xFF\xFE<\0C\0/\0>\0", 10), 4, "t.xml", {"--base", kBase}));

  parts = {};
  parts.encoding = "ISO-8859-1";
  EXPECT_EQ("FILE: clean: " + std::string(kAllRead) + "\n", Lines(Document(parts), 0));
  parts.inInstance = Property("S", "caf\xE9");
  EXPECT_EQ(
      "FILE:1: warning: says that it is in ISO-8859-1, which is not what the reader goes by: its "
      "bytes are taken as they stand [encoding]\n"
      "FILE: 0 errors and 1 warning: " +
          std::string(kAllRead) + "\n",
      Lines(Document(parts), 4));

  for (const char* encoding : {"utf-8", "US-ASCII"}) {
    parts.encoding = encoding;
    EXPECT_EQ(
        "FILE:13: error: no well-formed XML: bytes that are not UTF-8, or not allowed here "
        "[not-well-formed]\n"
        "FILE: 1 error and 0 warnings: " +
            std::string(kAllRead) + "\n",
        Lines(Document(parts), 4));
  }
}

TEST_F(Validate, TellsWhatAStrictParserRefuses) {
  TParts parts;
  parts.inInstance = "<PROPERTY NAME=\"S\"/></PROPERTY>";
  EXPECT_THAT(Lines(Document(parts), 4),
              HasSubstr("FILE:13: error: no well-formed XML: mismatched tag [not-well-formed]\n"));
  // Which the reader takes: an end tag that begins as the start tag.
  parts.inInstance = "<PROPERTY NAME=\"S\"></PROPERTY.ARRAY>";
  EXPECT_EQ(
      "FILE:13: error: no well-formed XML: mismatched tag [not-well-formed]\n"
      "FILE: 1 error and 0 warnings: " +
          std::string(kAllRead) + "\n",
      Lines(Document(parts), 4));
  EXPECT_EQ(
      "FILE:1: error: CIM-XML Parser line 1:Unexpected character before prolog [reader]\n"
      "FILE:1: error: no well-formed XML: no element found [not-well-formed]\n"
      "FILE: 2 errors and 0 warnings: read 0 qualifier declarations, 0 classes and 0 instances\n",
      Lines("", 4, "t.xml", {"--base", kBase}));
}

TEST_F(Validate, ExpandsNoEntities) {
  std::string bomb = "<!DOCTYPE CIM [\n<!ENTITY a0 \"ha\">\n";
  for (int i = 1; i < 40; ++i) {
    bomb += "<!ENTITY a" + std::to_string(i) + " \"&a" + std::to_string(i - 1) + ";&a" +
            std::to_string(i - 1) + ";\">\n";
  }
  TParts parts;
  parts.docType = bomb + "]>\n";
  parts.inInstance = Property("S", "&a39;");
  EXPECT_THAT(Lines(Document(parts), 4, "t.xml", {"--base", kBase}),
              HasSubstr("FILE:2: error: declarations inside a DOCTYPE, of which the reader knows "
                        "nothing; not checked any further [doctype-subset]\n"));
}

TEST_F(Validate, PrintsTheReadersLogWithItsLines) {
  TParts parts;
  parts.inInstance = "\n<PROPERTY NAME=\"Nope\"/>";
  EXPECT_EQ(
      "FILE:14: error: TCIMXMLParser: Couldn't find property Nope [reader]\n"
      "FILE:14: error: TCIMXMLParser: Threw exception zelStatusNotFound on line 14 [reader]\n"
      "FILE: 2 errors and 0 warnings: read 3 qualifier declarations, 2 classes and 0 of 1 "
      "instance\n",
      Lines(Document(parts), 4));
  parts = {};
  parts.inClass = "<X/>";
  parts.inInstance = Property("U8", "256");
  EXPECT_EQ(
      "FILE:10: error: CIM-XML Parser line 10:Unexpected element x [reader]\n"
      "FILE:10: error: TCIMXMLParser: Threw exception zelStatusInvalidSpecificationDocument on "
      "line 10 [reader]\n"
      "FILE: 2 errors and 0 warnings: read 3 qualifier declarations, 1 of 2 classes and 0 of 1 "
      "instance\n",
      Lines(Document(parts), 4));
}

TEST_F(Validate, ReadsGzipByTheReadersRules) {
  EXPECT_EQ("FILE: clean: " + std::string(kAllRead) + "\n",
            Lines(Gzip(Document({})), 0, "t.xml.gz"));
  const std::string cut = Gzip(Document({})).substr(0, 300);
  constexpr char kNothing[] = "read 0 qualifier declarations, 0 classes and 0 instances\n";
  EXPECT_THAT(Lines(cut, 4, "cut.xml.gz"),
              HasSubstr("FILE: error: the gzip data are cut or damaged [gzip-damaged]\n"));
  EXPECT_EQ(
      "FILE: error: Couldn't read file 'FILE': zelStatusInvalidGzipFile [reader]\n"
      "FILE: error: the path holds \".gz\", so the reader expects gzip, which this is not "
      "[gzip-name]\n"
      "FILE: 2 errors and 0 warnings: " +
          std::string(kNothing),
      Lines(Document({}), 4, "t.gz.xml"));
  EXPECT_EQ(
      "FILE:1: error: CIM-XML Parser line 1:Unexpected character before prolog [reader]\n"
      "FILE: error: this is gzip, but the path holds no \".gz\", so the reader takes it for text "
      "[gzip-unnamed]\n"
      "FILE: 2 errors and 0 warnings: " +
          std::string(kNothing),
      Lines(Gzip(Document({})), 4, "t.xml"));
}

TEST_F(Validate, SurvivesHostileDocuments) {
  std::string nested;
  for (int i = 0; i < 994; ++i) nested += "<X>";
  std::string closing;
  for (int i = 0; i < 994; ++i) closing += "</X>";
  TParts deep;
  deep.inClass = "<METHOD NAME=\"M\">" + nested + closing + "</METHOD>";
  EXPECT_EQ("FILE: clean: " + std::string(kAllRead) + "\n", Lines(Document(deep), 0));
  deep.inClass = "<METHOD NAME=\"M\"><X>\n" + nested + closing + "</X></METHOD>";
  EXPECT_EQ(
      "FILE:11: warning: more than 1000 elements inside each other; not checked any further "
      "[nesting]\n"
      "FILE: 0 errors and 1 warning: " +
          std::string(kAllRead) + "\n",
      Lines(Document(deep), 4));

  // One byte more than what is read.
  const std::string path = fDir.PathOf("huge.xml");
  fclose(fopen(path.c_str(), "w"));
  fs::resize_file(path, 100 * 1024 * 1024 + 1);
  const TResult result = Zel({"validate", path});
  EXPECT_EQ(4, result.code);
  EXPECT_THAT(result.out, HasSubstr(path + ": error: more than 100 MiB of text, which the reader "
                                           "refuses [too-large]\n"));

  std::string many;
  for (int i = 0; i < 1000; ++i) many += Property("U8", std::to_string(256 + i)) + "\n";
  TParts parts;
  parts.inInstance = many;
  const std::string lines = Lines(Document(parts), 4, "t.xml", {"--limit", "2"});
  EXPECT_THAT(lines, StartsWith("FILE:13: warning: T_Thing.U8: '256' does"));
  EXPECT_THAT(lines, HasSubstr("\nFILE: note: 998 more [out-of-range]\n"));
  EXPECT_THAT(lines, HasSubstr("\nFILE: 0 errors and 1999 warnings: "));
}

TEST_F(Validate, ShowsNamesAndTextsEscaped) {
  TParts parts;
  parts.inInstance = Property("U8", std::string("1\n2") + std::string(100, 'x'));
  EXPECT_THAT(Lines(Document(parts), 4, "a\x1b[31m.xml"),
              StartsWith(fDir.GetPath() + "/a\\x1B[31m.xml:13: warning: T_Thing.U8: '1\\x0A2" +
                         std::string(57, 'x') + "...' is no uint8; it is read as 1 "));
}

TEST_F(Validate, FindsKeysThatOtherQualifiersDoNotKeep) {
  const std::string yes = "<VALUE>true</VALUE></QUALIFIER>";
  TParts parts;
  parts.inClass = "<QUALIFIER NAME=\"Key\">" + yes +
                  "<PROPERTY NAME=\"Other\" TYPE=\"string\"><QUALIFIER NAME=\"Key\">" + yes +
                  "</PROPERTY><PROPERTY NAME=\"Id\" TYPE=\"string\"><QUALIFIER NAME=\"Flag\">" +
                  yes + "<QUALIFIER NAME=\"Override\"><VALUE>Id</VALUE></QUALIFIER></PROPERTY>";
  parts.inInstance = Property("Other", "x");
  std::string document = Document(parts);
  document.insert(document.find("<QUALIFIER.DECLARATION"),
                  "<QUALIFIER.DECLARATION NAME=\"Flag\" TYPE=\"boolean\"><SCOPE "
                  "PROPERTY=\"true\"/></QUALIFIER.DECLARATION>");
  EXPECT_EQ(
      "FILE:10: error: T_Thing.Id: is a key in T_Base; overridden here without a KEY of its own, "
      "it "
      "is none any more [key-lost]\n"
      "FILE: 1 error and 0 warnings: read 4 qualifier declarations, 2 classes and 1 instance\n",
      Lines(document, 4));
}

TEST_F(Validate, TellsStrayTextsOncePerElement) {
  TParts parts;
  parts.inInstance =
      "<PROPERTY.ARRAY NAME=\"A\"> lost\nand &#233;<VALUE.ARRAY>&#233; <VALUE>1</VALUE>"
      "</VALUE.ARRAY>found</PROPERTY.ARRAY>";
  EXPECT_EQ(
      "FILE:13: warning: T_Thing.A: the text 'lost' stands where none is read [stray-text]\n"
      "FILE:14: warning: T_Thing.A: the text '\xC3\xA9' stands where none is read [stray-text]\n"
      "FILE: 0 errors and 2 warnings: " +
          std::string(kAllRead) + "\n",
      Lines(Document(parts), 4));
}

TEST_F(Validate, ReadsCharacterReferencesOfAnyLength) {
  TParts parts;
  parts.inInstance = Property("S", "&#" + std::string(100, '0') + "233;");
  EXPECT_EQ("FILE:13: warning: T_Thing.S: &#" + std::string(58, '0') +
                "... is one byte for the reader, hexadecimal E9 [character-reference]\n"
                "FILE: 0 errors and 1 warning: " +
                kAllRead + "\n",
            Lines(Document(parts), 4));
}

TEST_F(Validate, ExpectsAPropertyOnceInEachInstance) {
  TParts parts;
  parts.inInstance = "</INSTANCE></VALUE.OBJECT><VALUE.OBJECT><INSTANCE CLASSNAME=\"T_Thing\">" +
                     Property("Id", "2");
  EXPECT_EQ("FILE: clean: read 3 qualifier declarations, 2 classes and 2 instances\n",
            Lines(Document(parts), 0));
}

TEST_F(Validate, ChecksTheAttributesOfQualifierDeclarations) {
  std::string document = Document({});
  const auto insertBehind = [&](const std::string& place, const char* attribute) {
    document.insert(document.find(place) + place.size(), attribute);
  };
  insertBehind("NAME=\"Override\"", " ISARRAY=\"TRUE\"");
  insertBehind("NAME=\"Values\"", " ARRAYSIZE=\"x\"");
  EXPECT_EQ(
      "FILE:4: warning: qualifier Override: 'TRUE' is read as false: booleans are \"true\" and "
      "\"false\" in lower case [boolean]\n"
      "FILE:5: warning: qualifier Values: 'x' is no uint32; it is read as 0 [not-a-number]\n"
      "FILE: 0 errors and 2 warnings: " +
          std::string(kAllRead) + "\n",
      Lines(document, 4));
}

TEST_F(Validate, ShowsTheBeginningsOfLongTexts) {
  const std::string most(60, 'x');
  const struct {
    std::string text;
    std::string shown;
  } rows[] = {
      {most,                                most                          },
      {most + "x",                          most + "..."                  },
      {most.substr(1) + "\xC3\xA9",         most.substr(1) + "..."        },
      {most.substr(2) + "\xC3\xA9",         most.substr(2) + "\xC3\xA9"   },
      {most.substr(2) + "\xC3\xA9x",        most.substr(2) + "\xC3\xA9..."},
      {most.substr(3) + "\xF0\x9F\x98\x80", most.substr(3) + "..."        },
  };
  for (const auto& row : rows) {
    TParts parts;
    parts.inInstance = Property("U8", row.text);
    EXPECT_THAT(Lines(Document(parts), 4), HasSubstr("U8: '" + row.shown + "' is no uint8;"));
  }
}

TEST_F(Validate, NeedsAFileThatCanBeRead) {
  for (const TUnreadable& row : UnreadableIn(fDir)) {
    const TResult result = Zel({"validate", row.path});
    EXPECT_EQ(4, result.code);
    EXPECT_EQ("", result.out);
    EXPECT_EQ("zel: cannot read '" + row.path + "': " + row.reason +
                  "; name a CIM-XML document, plain or .gz\n",
              result.err);
  }
  const TResult result =
      Zel({"validate", "--base", "/nowhere", fDir.WriteFile("t.xml", Document({}))});
  EXPECT_EQ(4, result.code);
  EXPECT_EQ("", result.out);
  EXPECT_EQ(
      "zel: cannot read the base schema '/nowhere': No such file or directory; name another "
      "with --base\n",
      result.err);
}

TEST_F(Validate, ReadsStandardInput) {
  TParts parts;
  parts.inInstance = Property("U8", "256");
  const std::string text = Document(parts);
  std::string expected = Lines(text, 4);
  for (std::size_t at; (at = expected.find("FILE")) != std::string::npos;) {
    expected.replace(at, 4, "standard input");
  }
  for (const std::string& contents : {text, Gzip(text)}) {
    const TStandardInput input(contents);
    const TResult result = Zel({"validate", "-"});
    EXPECT_EQ(4, result.code);
    EXPECT_EQ("", result.err);
    EXPECT_EQ(expected, result.out);
  }
  const TStandardInput input(Gzip(text).substr(0, 300));
  const TResult result = Zel({"validate", "-"});
  EXPECT_EQ(4, result.code);
  EXPECT_EQ(
      "standard input: error: the gzip data are cut or damaged [gzip-damaged]\n"
      "standard input: 1 error and 0 warnings: read 0 qualifier declarations, 0 classes and 0 "
      "instances\n",
      result.out);
}

TEST_F(Validate, PrintsOneValidJsonDocument) {
  TParts parts;
  parts.inInstance = Property("U8", "256") + Property("S8", "128");
  const std::string path = fDir.WriteFile("t.xml", Document(parts));
  const TResult result = Zel({"validate", path, "--format", "json", "--limit", "1"});
  EXPECT_EQ(4, result.code);
  const auto counts = [](int q, int c, int i) {
    return nlohmann::json{
        {"qualifiers", q},
        {"classes",    c},
        {"instances",  i}
    };
  };
  const nlohmann::json expected = {
      {"format",  "zel-validation"},
      {"version", 1               },
      {"zel",     ZEL_VERSION     },
      {"file",    path            },
      {"clean",   false           },
      {"read",    counts(3,         2, 1)},
      {"holds",       counts(3,                       2, 1)},
      {"findings",
       {{{"id", "out-of-range"},
         {"severity", "warning"},
         {"line", 13},
         {"text", "T_Thing.U8: '256' does not fit into uint8; it is read as 0"}}}},
      {"more",         {{"out-of-range", 1}}               },
  };
  EXPECT_EQ(expected, nlohmann::json::parse(result.out));

  const auto other =
      nlohmann::json::parse(Zel({"validate", fDir.WriteFile("t.gz", ""), "--format", "json"}).out);
  EXPECT_TRUE(other.at("holds").is_null());
  EXPECT_TRUE(other.at("findings").at(0).at("line").is_null());
}

// What the command prints, run as a process beside the base schema of the source tree.
std::string OutputOfValidate(const std::string& path) {
  std::string out;
  FILE* pipe = popen(("'" ZEL_BINARY_DIR "/zel' validate '" + path + "'").c_str(), "r");
  for (int c; (c = fgetc(pipe)) != EOF;) out += static_cast<char>(c);
  pclose(pipe);
  return out;
}

TEST_F(Validate, FindsTheDocumentsOfThisProjectClean) {
  std::vector<fs::path> documents = {kBase};
  for (const char* folder : {"collectors", "docs/examples", "tests/plugins"}) {
    for (const auto& entry : fs::recursive_directory_iterator(fs::path(ZEL_SOURCE_DIR) / folder)) {
      const std::string name = entry.path().filename();
      if (name.find(".properties.xml") != std::string::npos) documents.push_back(entry.path());
    }
  }
  EXPECT_GT(documents.size(), 10u);
  for (const std::string document : documents) {
    const TResult result = document == kBase ? Zel({"validate", document})
                                             : Zel({"validate", document, "--base", kBase});
    EXPECT_EQ(0, result.code) << result.out;
    EXPECT_THAT(result.out, StartsWith(document + ": clean: read "));
  }
}

TEST_F(Validate, ReadsTheBaseSchemaWhenItIsNeeded) {
  const std::string path = ZEL_SOURCE_DIR "/collectors/product/product.properties.xml";
  EXPECT_EQ(path + ": note: declares no KEY qualifier, so '" + kBase +
                "' was read before it [base]\n" + path +
                ": clean: read 0 qualifier declarations, 1 class and 0 instances\n",
            OutputOfValidate(path));
  EXPECT_THAT(OutputOfValidate(kBase), StartsWith(kBase + ": clean: "));
}

}  // namespace
