#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <streambuf>

#include "tests/xml/Written.h"

// The values of properties in documents.

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using TCIMType = TCIMValue::TCIMType;

// A class ACME_Thing with the key Id (string) and one more property.
class Thing {
 public:
  // `property` is the whole element, `declarations` go before the class.
  explicit Thing(const std::string& property, const std::string& declarations = "") {
    EXPECT_EQ("zelStatusOK",
              fZoo.ReadGroup(declarations +
                             "<VALUE.OBJECT><CLASS NAME=\"ACME_Thing\">"
                             "<PROPERTY NAME=\"Id\" TYPE=\"string\"><QUALIFIER NAME=\"Key\" "
                             "TYPE=\"boolean\"><VALUE>true</VALUE></QUALIFIER></PROPERTY>" +
                             property + "</CLASS></VALUE.OBJECT>"));
    TCIMInstance* const thing =
        fZoo.fContainer.AllocateInstance(fZoo.fContainer.GetClass("ACME_Thing"));
    thing->SetPropertyValue("Id", TCIMValue("a"));
    thing->AddToContainer();
    fInstance = thing;
  }

  // What stands between the tags of the property V of the thing.
  std::string WriteValue() {
    fDocument = WrittenInstance(*fInstance);
    const std::size_t element = fDocument.find(" NAME=\"V\"");
    if (element == std::string::npos) return "left out";
    const std::size_t begin = fDocument.find('>', element) + 1;
    return fDocument.substr(begin, fDocument.find("</PROPERTY", begin) - begin);
  }

  // V as it is after the last document has been read into a container with the same classes.
  TCIMValue ReadValue(const std::string& property, const std::string& declarations = "") const {
    Thing other(property, declarations);
    TCIMClass* const cls = other.fZoo.fContainer.GetClass("ACME_Thing");
    cls->RemoveInstance(*other.fInstance);
    EXPECT_EQ("zelStatusOK", other.fZoo.Read(fDocument));
    return cls->EnumerateInstances(false).at(0)->GetProperty("V")->GetValue();
  }

  Zoo fZoo;
  TCIMInstance* fInstance;
  std::string fDocument;
};

std::string Property(const std::string& type) {
  return "<PROPERTY NAME=\"V\" TYPE=\"" + type + "\"/>";
}

TEST(TCIMXMLWriterValues, WritesEveryTypeSoThatItComesBack) {
  struct TRow {
    const char* type;
    TCIMValue value;
    const char* text;
  };
  using TFloat = std::numeric_limits<float>;
  using TDouble = std::numeric_limits<double>;
  const TCIMDateTime point(2024, 2, 29, 1, 2, 3, 4, -300);
  const TCIMDateTime interval(65535, 23, 59, 58, 7);
  const TRow rows[] = {
      {"boolean",  TCIMValue(true),                               "true"                     },
      {"boolean",  TCIMValue(false),                              "false"                    },
      {"uint8",    TCIMValue(static_cast<unsigned char>(255)),    "255"                      },
      {"sint8",    TCIMValue(static_cast<signed char>(-128)),     "-128"                     },
      {"uint16",   TCIMValue(static_cast<unsigned short>(65535)), "65535"                    },
      {"sint16",   TCIMValue(static_cast<short>(-32768)),         "-32768"                   },
      {"uint32",   TCIMValue(4294967295U),                        "4294967295"               },
      {"sint32",   TCIMValue(std::numeric_limits<int>::min()),    "-2147483648"              },
      {"uint64",   TCIMValue(0UL - 1),                            "18446744073709551615"     },
      {"sint64",   TCIMValue(std::numeric_limits<long>::min()),   "-9223372036854775808"     },
      {"real32",   TCIMValue(0.1F),                               "0.1"                      },
      {"real32",   TCIMValue(16777217.0F),                        "16777216"                 },
      {"real32",   TCIMValue(TFloat::max()),                      "3.4028235e+38"            },
      {"real32",   TCIMValue(TFloat::denorm_min()),               "1e-45"                    },
      {"real64",   TCIMValue(0.1),                                "0.1"                      },
      {"real64",   TCIMValue(1.0 / 3),                            "0.3333333333333333"       },
      {"real64",   TCIMValue(-0.0),                               "-0"                       },
      {"real64",   TCIMValue(TDouble::max()),                     "1.7976931348623157e+308"  },
      {"real64",   TCIMValue(TDouble::denorm_min()),              "5e-324"                   },
      {"string",   TCIMValue(""),                                 ""                         },
      {"string",   TCIMValue(" blanks\tand\nlines "),             " blanks\tand\nlines "     },
      {"datetime", TCIMValue(point),                              "20240229010203.000004-300"},
      {"datetime", TCIMValue(interval),                           "00065535235958.000007:000"},
  };
  for (const TRow& row : rows) {
    Thing thing(Property(row.type));
    thing.fInstance->SetPropertyValue("V", row.value);
    EXPECT_EQ(std::string("<VALUE>") + row.text + "</VALUE>", thing.WriteValue()) << row.type;
    EXPECT_EQ(row.value, thing.ReadValue(Property(row.type))) << row.text;

    const std::string array = std::string("<PROPERTY.ARRAY NAME=\"V\" TYPE=\"") + row.type + "\"/>";
    Thing list(array);
    const TCIMValue values(row.value.GetType(), 4, {row.value, row.value});
    list.fInstance->SetPropertyValue("V", values);
    EXPECT_EQ(std::string("<VALUE.ARRAY><VALUE>") + row.text + "</VALUE><VALUE>" + row.text +
                  "</VALUE></VALUE.ARRAY>",
              list.WriteValue());
    EXPECT_THAT(list.fDocument, HasSubstr(" ARRAYSIZE=\"4\""));
    const TCIMValue back = list.ReadValue(array);
    EXPECT_EQ(values, back) << row.text;
    EXPECT_EQ(4U, back.GetMaxArraySize());
  }
  EXPECT_THAT(LogLines(), IsEmpty());
}

TEST(TCIMXMLWriterValues, EscapesWhatXmlCannotHoldAndGivesItBack) {
  struct TRow {
    std::string text;
    std::string written;
    bool isLogged;
  };
  const TRow rows[] = {
      {"a<b>&\"'",           "a&lt;b&gt;&amp;\"'",       false},
      {"]]>",                "]]&gt;",                   false},
      {"\r\n\t",             "&#13;\n\t",                false},
      {"Gr\xC3\xB6\xC3\x9F", "Gr\xC3\xB6\xC3\x9F",       false},
      {"\xE2\x82\xAC",       "\xE2\x82\xAC",             false},
      {"\xF0\x9F\x98\x80",   "\xF0\x9F\x98\x80",         false},
      {"\x7F",               "\x7F",                     false},
 // The control characters, by the private use area.
      {"\x01",               "&#57345;",                 true },
      {"a\x1F\x0B",          "a&#57375;&#57355;",        true },
 // Latin-1; a character cut short; one too long; a surrogate; above U+10FFFF; U+FFFF; U+FFFE.
      {"caf\xE9",            "caf&#233;",                false},
      {"\xE2\x82",           "&#226;&#130;",             false},
      {"\xC3<",              "&#195;&lt;",               false},
      {"\xC0\xAF",           "&#192;&#175;",             false},
      {"\xE0\x80\xAF",       "&#224;&#128;&#175;",       false},
      {"\xF0\x80\x80\xAF",   "&#240;&#128;&#128;&#175;", false},
      {"\xED\xA0\x80",       "&#237;&#160;&#128;",       false},
      {"\xF4\x90\x80\x80",   "&#244;&#144;&#128;&#128;", false},
      {"\xEF\xBF\xBF",       "&#239;&#191;&#191;",       false},
      {"\xEF\xBF\xBE",       "&#239;&#191;&#190;",       false},
      {"\xFF",               "&#255;",                   false},
  };
  for (const TRow& row : rows) {
    RestartLog();
    Thing thing(Property("string"));
    thing.fInstance->SetPropertyValue("V", TCIMValue(row.text));
    EXPECT_EQ("<VALUE>" + row.written + "</VALUE>", thing.WriteValue());
    EXPECT_EQ(TCIMValue(row.text), thing.ReadValue(Property("string"))) << row.written;
    if (row.isLogged) {
      EXPECT_THAT(LogLines(zelLogWarning),
                  ElementsAre("TCIMXMLWriter: ACME_Thing.V: control characters are replaced"));
    } else {
      EXPECT_THAT(LogLines(), IsEmpty());
    }
  }
}

TEST(TCIMXMLWriterValues, EscapesWhereverItStands) {
  const std::pair<std::string, std::string> pairs[] = {
      {"&",        "&amp;"   },
      {"<",        "&lt;"    },
      {">",        "&gt;"    },
      {"\r",       "&#13;"   },
      {"\x80",     "&#128;"  },
      {"\x01",     "&#57345;"},
      {"\x7f",     "\x7f"    },
      {"\xc3\xa9", "\xc3\xa9"}
  };
  Thing thing(Property("string"));
  for (const auto& [byte, written] : pairs) {
    for (std::size_t size = 0; size <= 40; ++size) {
      for (std::size_t at = 0; at <= size; ++at) {
        const std::string before(at, 'b');
        const std::string behind(size - at, '~');
        thing.fInstance->SetPropertyValue("V", TCIMValue(before + byte + behind));
        ASSERT_EQ("<VALUE>" + before + written + behind + "</VALUE>", thing.WriteValue());
      }
    }
  }
}

TEST(TCIMXMLWriterValues, EscapesKeysAndDefaultsToo) {
  Zoo zoo;
  ASSERT_EQ("zelStatusOK",
            zoo.ReadGroup("<VALUE.OBJECT><CLASS NAME=\"Zoo_Cat\" SUPERCLASS=\"Zoo_Animal\">"
                          "<QUALIFIER NAME=\"Description\" TYPE=\"string\"><VALUE>&lt;&amp;</VALUE>"
                          "</QUALIFIER><PROPERTY NAME=\"Food\" TYPE=\"string\">"
                          "<VALUE>fish &amp; fowl</VALUE></PROPERTY></CLASS></VALUE.OBJECT>"));
  const std::string document = WrittenClasses({zoo.fContainer.GetClass("Zoo_Cat")});
  EXPECT_THAT(document, HasSubstr("><VALUE>&lt;&amp;</VALUE></QUALIFIER>"));
  EXPECT_THAT(document, HasSubstr("<VALUE>fish &amp; fowl</VALUE></PROPERTY>"));
}

TEST(TCIMXMLWriterValues, TellsWhatTheReaderCannotTakeBack) {
  const float infinity = std::numeric_limits<float>::infinity();
  const TCIMValue strings(TCIMType::TypeString, 0,
                          {TCIMValue("a"), TCIMValue(TCIMType::TypeString, 0)});
  const std::string array = "<PROPERTY.ARRAY NAME=\"V\" TYPE=\"string\"/>";
  const std::string withDefault = "<PROPERTY NAME=\"V\" TYPE=\"uint8\"><VALUE>7</VALUE></PROPERTY>";
  const TCIMDateTime days(65536, 0, 0, 0, 0);
  const TCIMDateTime year(10000, 1, 1, 0, 0, 0, 0, 0);
  const std::string digits = "a real that is not finite is read as 0";
  const std::string form = "a datetime that does not fit its form is read as another";
  const auto expect = [](const std::string& property, const TCIMValue& value,
                         const std::string& written, const std::string& warning) {
    RestartLog();
    Thing thing(property);
    thing.fInstance->SetPropertyValue("V", value);
    EXPECT_EQ(written, thing.WriteValue());
    EXPECT_THAT(LogLines(zelLogWarning), ElementsAre("TCIMXMLWriter: ACME_Thing.V: " + warning));
    thing.ReadValue(property);  // it stays a document that can be read
  };
  expect(Property("real32"), infinity, "<VALUE>INF</VALUE>", digits);
  expect(Property("real32"), -infinity, "<VALUE>-INF</VALUE>", digits);
  expect(Property("real64"), std::nan(""), "<VALUE>NaN</VALUE>", digits);
  expect(Property("datetime"), days, "<VALUE>00065536000000.000000:000</VALUE>", form);
  expect(Property("datetime"), year, "<VALUE>100000101000000.000000+000</VALUE>", form);
  expect(Property("datetime"), TCIMDateTime(), "<VALUE></VALUE>",
         "a datetime that is not set is read as 1970-01-01");
  expect(Property("string"), std::string("a\0b", 3), "<VALUE>a&#57344;b</VALUE>",
         "control characters are replaced");
  expect(array, strings, "<VALUE.ARRAY><VALUE>a</VALUE><VALUE></VALUE></VALUE.ARRAY>",
         "its NULL element is read as an empty one");
  expect(withDefault, TCIMValue(TCIMType::TypeUint8, 0), "", "its NULL is read as the default");
}

TEST(TCIMXMLWriterValues, WritesANullOfItsOwnAsAPropertyWithoutValue) {
  Thing thing(Property("uint8"));
  thing.fInstance->SetPropertyValue("V", TCIMValue(TCIMType::TypeUint8, 0));
  EXPECT_EQ("", thing.WriteValue());
  EXPECT_TRUE(thing.ReadValue(Property("uint8")).IsNull());
  EXPECT_THAT(LogLines(), IsEmpty());
}

// Takes everything, and remembers the longest piece.
class PieceMeter : public std::streambuf {
 public:
  std::streamsize fLongest = 0;
  std::streamsize fTotal = 0;

 private:
  std::streamsize xsputn(const char*, std::streamsize size) override {
    fLongest = std::max(fLongest, size);
    fTotal += size;
    return size;
  }
};

TEST(TCIMXMLWriterValues, KeepTheirTypeWhenTheirDeclarationChanges) {
  Thing thing(
      "<PROPERTY.ARRAY NAME=\"V\" TYPE=\"string\"></PROPERTY.ARRAY>"
      "<PROPERTY NAME=\"W\" TYPE=\"uint8\"></PROPERTY>");
  thing.fInstance->SetPropertyValue(
      "V", TCIMValue(TCIMValue::TCIMType::TypeString, 0, {TCIMValue("a"), TCIMValue("b")}));
  thing.fInstance->SetPropertyValue("W", TCIMValue(static_cast<unsigned char>(5)));
  const TCIMClass& cls = *thing.fInstance->GetClass();
  cls.GetPropertyDecl("V")->SetValue(TCIMValue(TCIMValue::TCIMType::TypeString, 0));
  cls.GetPropertyDecl("W")->SetValue(TCIMValue(TCIMValue::TCIMType::TypeUint32, 0));
  EXPECT_EQ("<VALUE.ARRAY><VALUE>a</VALUE><VALUE>b</VALUE></VALUE.ARRAY>", thing.WriteValue());
  EXPECT_NE(std::string::npos, thing.fDocument.find("<PROPERTY.ARRAY NAME=\"V\" TYPE=\"string\">"));
  EXPECT_NE(std::string::npos, thing.fDocument.find("<PROPERTY NAME=\"W\" TYPE=\"uint8\">"));
}

TEST(TCIMXMLWriterValues, LeavesInPiecesWhateverTheLength) {
  Thing thing(Property("string"));
  thing.fInstance->SetPropertyValue("V", TCIMValue(std::string(1 << 20, 'x')));
  for (const auto& [count, isTooLong] : {std::pair(99, false), std::pair(100, true)}) {
    RestartLog();
    PieceMeter meter;
    std::ostream out(&meter);
    TCIMXMLWriter(out).WriteInstances(
        std::vector<TCIMInstance*>(static_cast<std::size_t>(count), thing.fInstance));
    EXPECT_GT(meter.fTotal, count << 20);
    EXPECT_LE(meter.fLongest, 1 << 18);
    EXPECT_EQ(isTooLong ? std::vector<std::string>{"TCIMXMLWriter: the document is longer than "
                                                   "what can be read"}
                        : std::vector<std::string>{},
              LogLines(zelLogWarning));
  }
}

}  // namespace
