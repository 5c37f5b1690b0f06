#include "xml/TXmlParser.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cstring>
#include <functional>
#include <list>
#include <map>
#include <random>

#include "tests/support/Slot.h"
#include "tests/xml/ReferenceXmlReader.h"

namespace {

using testing::ElementsAre;
using TEvents = std::vector<std::string>;
using TAttributeMap = std::map<std::string, std::string>;

struct TStop {};

// Writes down every callback with the line that GetCurLine() tells.
class TRecorder : public TXmlParser {
 public:
  enum EMode { kThrow, kReturn };

  explicit TRecorder(EMode mode = kThrow) : fMode(mode) {}

  // The callbacks in order; the buffer is left in fBuffer.
  TEvents Read(const std::string& document) {
    fBuffer = document;
    try {
      Parse(fBuffer.data());
    } catch (const TStop&) {
    }
    return fEvents;
  }

  void StartElement(const char* name, TAttributeMap& attributes) override {
    std::string event = std::string("start ") + name;
    for (const auto& [key, value] : attributes) event += " " + key + "=" + value;
    Tell(event);
  }
  void EndElement(const char* name) override { Tell(std::string("end ") + name); }
  void processingInstruction(const char* target, const char* data) override {
    Tell(std::string("instruction ") + target + " " + data);
  }
  void characters(const char* text, unsigned int length) override {
    EXPECT_EQ('\0', text[length]);
    Tell("text " + std::string(text, length));
  }
  void notationDecl(const char* name, const char* publicId, const char* systemId) override {
    Tell(std::string("notation ") + name + " " + publicId + " " + systemId);
  }
  void FatalError(const char* message) override {
    Tell(std::string("fatal ") + message);
    if (fMode == kThrow) throw TStop();
  }

  // The callback with this number, counted from 0, throws.
  std::size_t fStopAt = std::string::npos;
  bool fAsksLines = true;
  std::string fBuffer;

 protected:
  void Tell(const std::string& event) {
    fEvents.push_back(fAsksLines ? event + " @" + std::to_string(GetCurLine()) : event);
    if (fEvents.size() == fStopAt + 1) throw TStop();
  }

 private:
  EMode fMode;
  TEvents fEvents;
};

// The events without line numbers.
TEvents Read(const std::string& document, TRecorder::EMode mode = TRecorder::kThrow) {
  TRecorder recorder(mode);
  recorder.fAsksLines = false;
  return recorder.Read(document);
}

std::string LastEvent(const std::string& document) {
  const TEvents events = TRecorder().Read(document);
  return events.empty() ? "" : events.back();
}

struct TRow {
  const char* document;
  TEvents events;
};

TEST(TXmlParser, KeepsTheOrderOfItsVirtualOperations) {
  EXPECT_EQ(2u, Slot(&TXmlParser::StartElement));
  EXPECT_EQ(3u, Slot(&TXmlParser::EndElement));
  EXPECT_EQ(4u, Slot(&TXmlParser::processingInstruction));
  EXPECT_EQ(5u, Slot(&TXmlParser::characters));
  EXPECT_EQ(6u, Slot(&TXmlParser::notationDecl));
  EXPECT_EQ(7u, Slot(&TXmlParser::FatalError));
}

TEST(TXmlParser, ReportsWhatItFindsInDocumentOrder) {
  const TRow rows[] = {
      {"<a/>",                          {"start a", "end a"}                                         },
      {"<a></a>",                       {"start a", "end a"}                                         },
      {"<A></A>",                       {"start A", "end A"}                                         },
      {"<a />",                         {"start a", "end a"}                                         },
      {"<a\t\r\n></a \n>",              {"start a", "end a"}                                         },
      {"<_:a.b-9/>",                    {"start _:a.b-9", "end _:a.b-9"}                             },
      {"<:/>",                          {"start :", "end :"}                                         },
      {"<a><b/><c>t</c></a>",
       {"start a", "start b", "end b", "start c", "text t", "end c", "end a"}                        },
      {"<a> <b/>\n</a>",                {"start a", "text  ", "start b", "end b", "text \n", "end a"}},
      {"<a>1<!-- x -->2<?x y?>3</a>",
       {"start a", "text 1", "text 2", "instruction TBD TBD", "text 3", "end a"}                     },
      {"<a>>]]>\"'</a>",                {"start a", "text >]]>\"'", "end a"}                         },
      {"<a>\xC3\xA9\x80</a>",           {"start a", "text \xC3\xA9\x80", "end a"}                    },
      {"<a/>\n<!-- x -->\n<?x?>\n",     {"start a", "end a", "instruction TBD TBD"}                  },
      {"<a><!----><!-- -- - > --></a>", {"start a", "end a"}                                         },
      {"<a><?></a>",                    {"start a", "instruction TBD TBD", "end a"}                  }, // its own "?>"
  };
  for (const TRow& row : rows) EXPECT_EQ(row.events, Read(row.document)) << row.document;
}

TEST(TXmlParser, ReadsTheProlog) {
  const TRow rows[] = {
      {"<?xml version=\"1.0\"?> <!-- c --> <!DOCTYPE CIM SYSTEM \"x\"> <a/>", {"start a", "end a"}                         },
      {"<?xml?><a/>",                                                         {"start a", "end a"}                         },
      {"<?xml?><!DOCTYPE a><a/>",                                             {"start a", "end a"}                         },
      {"<?xml?><!DOCTYPEa><a/>",                                              {"start a", "end a"}                         },
      {"<?xml?><!DOCTYPE a>\n<!-- c --><?pi?> <a/>",                          {"instruction TBD TBD", "start a", "end a"}  },
      {"<?anything at all?><?pi?><a/>",                                       {"instruction TBD TBD", "start a", "end a"}  },
 // The first '>' ends a DOCTYPE, also inside an internal subset.
      {"<?xml?><!DOCTYPE a [<!ELEMENT a>]><a/>",                              {"fatal Unexpected character before element"}},
      {"<?xml?><!doctype a><a/>",                                             {"fatal Unexpected character in doctypedecl"}},
      {"<?xml?><!DOCTYP a><a/>",                                              {"fatal Unexpected character in doctypedecl"}},
      {"<?xml?><![CDATA[x]]><a/>",                                            {"fatal Unexpected character in doctypedecl"}},
 // Without the XML declaration nothing may stand before the root element.
      {"<!-- c --><a/>",                                                      {"fatal Invalid element/attribute name"}     },
      {"<!DOCTYPE a><a/>",                                                    {"fatal Invalid element/attribute name"}     },
      {" <a/>",                                                               {"fatal Unexpected character before prolog"} },
      {"\xEF\xBB\xBF<a/>",                                                    {"fatal Unexpected character before prolog"} },
      {"",                                                                    {"fatal Unexpected character before prolog"} },
      {"text",                                                                {"fatal Unexpected character before prolog"} },
      {"<",                                                                   {"fatal Invalid element/attribute name"}     },
      {"<?xml <a/>",                                                          {"fatal Invalid element/attribute name"}     }, // no "?>": nothing was read
      {"<?xml?>",                                                             {"fatal Unexpected character before element"}},
      {"<?xml?>text",                                                         {"fatal Unexpected character before element"}},
      {"<?xml?><!DOCTYPE a",                                                  {"fatal Unexpected character before element"}},
      {"<?xml?><!-- open <a/>",                                               {"fatal Unexpected character before element"}},
  };
  for (const TRow& row : rows) EXPECT_EQ(row.events, Read(row.document)) << row.document;
}

TEST(TXmlParser, ReportsAttributesByLowercasedNameInOrderOfNames) {
  const TRow rows[] = {
      {"<A Name=\"x\"/>",                                                                       {"start A name=x", "end A"}            },
      {"<a Z='1' y='2' X1.b-c_:='3'/>",                                                         {"start a x1.b-c_:=3 y=2 z=1", "end a"}},
      {"<a x = \n '1'/>",                                                                       {"start a x=1", "end a"}               },
      {"<a\nx='1'\ty='2'\r\n></a>",                                                             {"start a x=1 y=2", "end a"}           },
      {"<a x=''/>",                                                                             {"start a x=", "end a"}                },
      {"<a x='\"' y=\"'\"/>",                                                                   {"start a x=\" y='", "end a"}          },
      {"<a x='\"\"' y=\"''''\"/>",                                                              {"start a x=\"\" y=''''", "end a"}     },
      {"<a x=' A\tb\n>C '/>",                                                                   {"start a x= A\tb\n>C ", "end a"}      }, // no normalisation
      {"<a x='\xC3\x89'/>",                                                                     {"start a x=\xC3\x89", "end a"}        },
 // Tags alike, one after the other, each with its own attributes.
      {"<a x='1' y='2'/>",                                                                      {"start a x=1 y=2", "end a"}           },
      {"<r><a x='1' y='2'/><a y='3'/><a/><a x='4'/><a y='6' x='5'/><a z='7' y='8' x='9'/></r>",
       {"start r", "start a x=1 y=2", "end a", "start a y=3", "end a", "start a", "end a",
        "start a x=4", "end a", "start a x=5 y=6", "end a", "start a x=9 y=8 z=7", "end a",
        "end r"}                                                                                                                       },
      {"<r><a x='1' y='2'><a x='3'/></a></r>",
       {"start r", "start a x=1 y=2", "start a x=3", "end a", "end a", "end r"}                                                        },
      {"<A Name=\"x\" NAME=\"y\"/>",                                                            {"fatal Attribute appears twice"}      },
      {"<r><a x='1'/><a x='2' x='3'/></r>",
       {"start r", "start a x=1", "end a", "fatal Attribute appears twice"}                                                            },
      {"<r><a x='1' y='2'/><a x='2' x='3'/></r>",
       {"start r", "start a x=1 y=2", "end a", "fatal Attribute appears twice"}                                                        },
  };
  for (const TRow& row : rows) EXPECT_EQ(row.events, Read(row.document)) << row.document;
}

TEST(TXmlParser, DecodesReferencesEachToOneCallOfItsOwn) {
  const TRow rows[] = {
      {"<a>a&amp;b</a>",                   {"start a", "text a", "text &", "text b", "end a"} },
      {"<a>&lt;&gt;&quot;&apos;&amp;</a>",
       {"start a", "text <", "text >", "text \"", "text '", "text &", "end a"}                },
      {"<a>&Lt;&AMP;&qUoT;</a>",           {"start a", "text <", "text &", "text \"", "end a"}},
      {"<a>&#65;&#x41;&#X4a;&#x4A;</a>",
       {"start a", "text A", "text A", "text J", "text J", "end a"}                           },
      {"<a>&#321;&#x1000041;</a>",         {"start a", "text A", "text A", "end a"}           }, // modulo 256
      {"<a>&#000000000000000000065;</a>",  {"start a", "text A", "end a"}                     },
      {"<a>&#233;</a>",                    {"start a", "text \xE9", "end a"}                  },
  };
  for (const TRow& row : rows) EXPECT_EQ(row.events, Read(row.document)) << row.document;

  const std::string nul("text \0", 6);
  EXPECT_EQ((TEvents{"start a", nul, nul, "end a"}), Read("<a>&#0;&#256;</a>"));
}

TEST(TXmlParser, RefusesBadReferences) {
  const std::pair<const char*, const char*> rows[] = {
      {"<a>&#;</a>",    "Invalid hex character"   },
      {"<a>&#x;</a>",   "Invalid hex character"   },
      {"<a>&#1a;</a>",  "Unknown entity reference"},
      {"<a>&#x1g;</a>", "Unknown entity reference"},
      {"<a>&# 1;</a>",  "Unknown entity reference"},
      {"<a>&#-1;</a>",  "Unknown entity reference"},
      {"<a>&#65</a>",   "Unknown entity reference"},
      {"<a>&#65",       "Unknown entity reference"},
      {"<a>&#",         "Unknown entity reference"},
      {"<a>&#x",        "Unknown entity reference"},
      {"<a>&",          "Unknown entity reference"},
      {"<a>&am",        "Unknown entity reference"},
      {"<a>&;</a>",     "Unknown entity reference"},
      {"<a>& b</a>",    "Unknown entity reference"},
      {"<a>&amp</a>",   "Unknown entity reference"},
      {"<a>&ampx;</a>", "Unknown entity reference"},
      {"<a>&ap;</a>",   "Unknown entity reference"},
      {"<a>&quit;</a>", "Unknown entity reference"},
      {"<a>&nbsp;</a>", "Unknown entity reference"},
  };
  for (const auto& [document, message] : rows) {
    EXPECT_THAT(Read(document), ElementsAre("start a", std::string("fatal ") + message))
        << document;
  }
}

TEST(TXmlParser, RefusesWhatIsNotWellFormed) {
  const std::pair<const char*, const char*> rows[] = {
      {"<1/>",            "Invalid element/attribute name"                       },
      {"<-a/>",           "Invalid element/attribute name"                       },
      {"< a/>",           "Invalid element/attribute name"                       },
      {"<\xC3\xA9/>",     "Invalid element/attribute name"                       },
      {"<a 1='x'/>",      "Invalid element/attribute name"                       },
      {"<a ='x'/>",       "Invalid element/attribute name"                       },
      {"<a ",             "Invalid element/attribute name"                       },
      {"<a\xC3/>",        "Unexpected character before end of element"           },
      {"<a",              "Unexpected character before end of element"           },
      {"<a/",             "Unexpected character before end of element"           },
      {"<a/ >",           "Unexpected character before end of element"           },
      {"<a //>",          "Unexpected character before end of element"           },
      {"<a x='1'y='2'/>", "Unexpected character before end of element"           },
      {"<a x='1'",        "Unexpected character before end of element"           },
      {"<a x>",           "Unexpected character between attribute name and value"},
      {"<a x",            "Unexpected character between attribute name and value"},
      {"<a x:'1'/>",      "Unexpected character between attribute name and value"},
      {"<a x=1/>",        "Unexpected character after equals of attribute name"  },
      {"<a x=",           "Unexpected character after equals of attribute name"  },
      {"<a x='<'/>",      "Unexpected character in attribute value"              },
      {"<a x='&amp;'/>",  "Unexpected character in attribute value"              },
      {"<a x=\"'<'\"/>",  "Unexpected character in attribute value"              },
      {"<a x='",          "Unexpected character in attribute value"              },
      {"<a x='1\"/>",     "Unexpected character in attribute value"              },
  };
  for (const auto& [document, message] : rows) {
    EXPECT_THAT(Read(document), ElementsAre(std::string("fatal ") + message)) << document;
  }
  const std::pair<const char*, const char*> openRows[] = {
      {"<a>",           "Unexpected character where element expected"},
      {"<a>text",       "Unexpected character where element expected"},
      {"<a></",         "Invalid element/attribute name"             },
      {"<a></ a>",      "Invalid element/attribute name"             },
      {"<a></1>",       "Invalid element/attribute name"             },
      {"<a></a",        "Unexpected character before end of element" },
      {"<a></a x='1'>", "Unexpected character before end of element" },
      {"<a></a/>",      "Unexpected character before end of element" },
      {"<a></b>",       "Start and end element names don't match"    },
      {"<a></A>",       "Start and end element names don't match"    },
      {"<a><1/></a>",   "Invalid element/attribute name"             },
      {"<a><",          "Unexpected character before element"        }, // one byte back too far at the end
  };
  for (const auto& [document, message] : openRows) {
    EXPECT_EQ(std::string("fatal ") + message, Read(document).back()) << document;
    EXPECT_EQ("start a", Read(document).front()) << document;
  }
}

TEST(TXmlParser, ComparesAnEndTagAsFarAsTheStartTagGoes) {
  EXPECT_THAT(Read("<ab></abc>"), ElementsAre("start ab", "end ab"));
  EXPECT_THAT(Read("<ab></ab.9 >"), ElementsAre("start ab", "end ab"));
  EXPECT_THAT(Read("<abc></ab>"),
              ElementsAre("start abc", "fatal Start and end element names don't match"));
  EXPECT_THAT(Read("<abc></ab"),
              ElementsAre("start abc", "fatal Start and end element names don't match"));
}

TEST(TXmlParser, EndsSilentlyWhereNothingCloses) {
  const TRow rows[] = {
      {"<a/>trailing text <b/>",      {"start a", "end a"}              },
      {"<a/> trailing text <b/>",     {"start a", "end a"}              },
      {"<a/><b/>",                    {"start a", "end a"}              },
      {"<a/><!DOCTYPE a>",            {"start a", "end a"}              },
      {"<a/><!-- open",               {"start a", "end a"}              },
      {"<a/><?open",                  {"start a", "end a"}              },
      {"<a><b><![CDATA[x]]></b></a>", {"start a", "start b"}            },
      {"<a>x<![CDATA[x]]></a>",       {"start a", "text x"}             },
      {"<a><!-x--></a>",              {"start a"}                       },
      {"<a><!",                       {"start a"}                       },
      {"<a><!-- open</a>",            {"start a"}                       },
      {"<a><?open</a>",               {"start a"}                       },
 // What follows the root element is read on from where it was given up.
      {"<a><!--<?pi?>",               {"start a", "instruction TBD TBD"}},
  };
  for (const TRow& row : rows) EXPECT_EQ(row.events, Read(row.document)) << row.document;
}

TEST(TXmlParser, StopsAtTheFirstNul) {
  const std::string document("<a>x\0</a>", 9);
  EXPECT_THAT(Read(document), ElementsAre("start a", "text x",
                                          "fatal Unexpected character where element expected"));
}

TEST(TXmlParser, GivesUpElementsAndReadsTextOnWhenFatalErrorReturns) {
  const TRow rows[] = {
      {"",
       {"fatal Unexpected character before prolog", "fatal Unexpected character before element"}          },
      {" <a/>",              {"fatal Unexpected character before prolog", "start a", "end a"}             },
      {"<a><b x=1></b></a>",
       {"start a", "fatal Unexpected character after equals of attribute name"}                           },
      {"<a><b></c></a>",     {"start a", "start b", "fatal Start and end element names don't match"}      },
      {"<a x='1' x='2'/>",   {"fatal Attribute appears twice"}                                            },
      {"<a>text",            {"start a", "text text", "fatal Unexpected character where element expected"}},
      {"<?xml?><!DOC><a/>",  {"fatal Unexpected character in doctypedecl", "start a", "end a"}            },
      {"<a>&nbsp;</a>",      {"start a", "fatal Unknown entity reference", "text bsp;", "end a"}          },
      {"<a>&amp</a>",
       {"start a", "fatal Unknown entity reference", "text /a>",
        "fatal Unexpected character where element expected"}                                              },
      {"<a>&#1a2;</a>",      {"start a", "fatal Unknown entity reference", "text \x0C", "end a"}          },
      {"<a>&#;65;</a>",      {"start a", "fatal Invalid hex character", "text A", "end a"}                },
      {"<a>&#6",
       {"start a", "fatal Unknown entity reference",
        "fatal Unexpected character where element expected"}                                              },
  };
  for (const TRow& row : rows) {
    EXPECT_EQ(row.events, Read(row.document, TRecorder::kReturn)) << row.document;
  }
}

TEST(TXmlParser, CountsLineFeedsUpToTheCurrentPosition) {
  EXPECT_THAT(TRecorder().Read("<a>\n\n<b/>\r\n</a>\n"),
              ElementsAre("start a @1", "text \n\n @3", "start b @3", "end b @3", "text \r\n @4",
                          "end a @4"));
  // The position is behind the byte that was refused.
  EXPECT_EQ("fatal Invalid element/attribute name @1", LastEvent("<1"));
  EXPECT_EQ("fatal Invalid element/attribute name @2", LastEvent("<\n"));
  EXPECT_EQ("fatal Unexpected character before element @3", LastEvent("<?xml?>\n\n"));
  EXPECT_EQ("fatal Unexpected character in attribute value @3", LastEvent("<a\nx='\n<"));
}

TEST(TXmlParser, DoesNotCountTheLineFeedsUnderItsOwnNuls) {
  EXPECT_THAT(
      TRecorder().Read("<a\n><b\n></b><c/></a>\n<d/>"),
      ElementsAre("start a @1", "start b @1", "end b @1", "start c @2", "end c @2", "end a @2"));
  EXPECT_THAT(
      TRecorder().Read("<a>\n<b\n/>\n</a>"),
      ElementsAre("start a @1", "text \n @2", "start b @2", "end b @2", "text \n @4", "end a @4"));
  EXPECT_EQ("fatal Attribute appears twice @1", LastEvent("<a x='' x\n=''/>"));
  EXPECT_EQ("fatal Attribute appears twice @2", LastEvent("<a x\n='' x=''/>"));
}

TEST(TXmlParser, CountsTheSameLinesHoweverOftenItIsAsked) {
  class TSelective : public TRecorder {
   public:
    void characters(const char* text, unsigned int length) override {
      fAsksLines = fCount++ % 3 == 0;
      TRecorder::characters(text, length);
    }
    void StartElement(const char*, TAttributeMap&) override {}
    void EndElement(const char*) override {}

   private:
    int fCount = 0;
  };
  EXPECT_THAT(TSelective().Read("<a\n>\n<b\n>\n1</b>\n2<c\n/>\n</a>"),
              ElementsAre("text \n @2", "text \n1", "text \n2", "text \n @7"));
}

TEST(TXmlParser, LeavesTheBufferAsItWasButForLowercasedAttributeNames) {
  const std::string document =
      "<?xml?><A\nNAME='V&'/>";  // refused: nothing is lowercased before the value is read
  TRecorder refused;
  refused.Read(document);
  EXPECT_EQ(document, refused.fBuffer);

  const char* const rows[] = {
      "<Aa\nNaMe='Vv'\tB1='x'><Cc>Text&amp;</Cc><D E='F'/></Aa>",
      "<Aa\nNaMe='Vv'\tB1='x'><Cc>Text&bad;</Cc><D E='F'/></Aa>",
      "<Aa\nNaMe='Vv'\tB1='x'><Cc>Text</Cx><D E='F'/></Aa>",
      "<Aa\nNaMe='Vv'\tB1='x'><Cc><![CDATA[x]]></Cc><D E='F'/></Aa>",
  };
  for (const char* row : rows) {
    std::string expected = row;
    expected.replace(expected.find("NaMe"), 4, "name");
    expected.replace(expected.find("B1"), 2, "b1");
    for (const auto mode : {TRecorder::kThrow, TRecorder::kReturn}) {
      TRecorder recorder(mode);
      const TEvents events = recorder.Read(row);
      const std::size_t last = expected.find("E=");
      if (events.back().rfind("end Aa", 0) == 0 && last != std::string::npos) expected[last] = 'e';
      EXPECT_EQ(expected, recorder.fBuffer);
    }
  }
}

TEST(TXmlParser, PutsBackEveryByteWhenACallbackThrows) {
  const std::string document = "<a\nx='1'>t&amp;<b>u<?p?></b>&bad;</a>";
  for (std::size_t stop = 0; stop < 8; ++stop) {
    TRecorder recorder;
    recorder.fStopAt = stop;
    EXPECT_EQ(stop + 1, recorder.Read(document).size());
    EXPECT_EQ(document, recorder.fBuffer) << "stopped at callback " << stop;
  }
  TRecorder twice;
  EXPECT_EQ("fatal Attribute appears twice @2", twice.Read("<a x='1'\nx\n='2'/>").back());
  EXPECT_EQ("<a x='1'\nx\n='2'/>", twice.fBuffer);
}

TEST(TXmlParser, TerminatesNamesInPlaceDuringACallback) {
  class TPlaces : public TRecorder {
   public:
    void StartElement(const char* name, TAttributeMap&) override {
      EXPECT_EQ(fBuffer.data() + 1, name);
      EXPECT_EQ('\0', fBuffer[3]);
    }
    void characters(const char* text, unsigned int length) override {
      EXPECT_EQ(fBuffer.data() + 4, text);
      EXPECT_EQ(2u, length);
      EXPECT_EQ('\0', fBuffer[3]);
      EXPECT_EQ('\0', fBuffer[6]);
    }
    void EndElement(const char* name) override {
      EXPECT_EQ(fBuffer.data() + 1, name);
      EXPECT_EQ('\0', fBuffer[3]);
      EXPECT_EQ('<', fBuffer[6]);
    }
  };
  TPlaces().Read("<ab>cd</ab>");
}

TEST(TXmlParser, LetsTheCalleeChangeTheAttributes) {
  class TMeddler : public TRecorder {
   public:
    void StartElement(const char* name, TAttributeMap& attributes) override {
      TRecorder::StartElement(name, attributes);
      switch (fCount++ % 4) {
        case 0: attributes.clear(); break;
        case 1: attributes["added"] = "by the callee"; break;
        case 2: attributes.erase("x"); break;
        default: attributes["x"].swap(attributes["z"]);
      }
    }

   private:
    int fCount = 0;
  };
  std::string document = "<r>";
  for (int i = 0; i < 8; ++i) document += "<a x='1' y='2'/>";
  TMeddler meddler;
  meddler.fAsksLines = false;
  int tags = 0;
  for (const std::string& event : meddler.Read(document + "</r>")) {
    if (event.rfind("start a", 0) != 0) continue;
    EXPECT_EQ("start a x=1 y=2", event);
    ++tags;
  }
  EXPECT_EQ(8, tags);
}

TEST(TXmlParser, OffersItsRulesToASubclass) {
  class TSubclass : public TRecorder {
   public:
    void StartElement(const char*, TAttributeMap&) override {
      EXPECT_EQ('x', PeekChar());
      EXPECT_EQ('x', GetChar());
      EXPECT_EQ(' ', GetChar());
      UngetChar();
      EXPECT_TRUE(SkipWhitespace());
      EXPECT_FALSE(SkipWhitespace());
      EXPECT_TRUE(ValidateName());
      EXPECT_TRUE(ParseNotationDecl());
      EXPECT_FALSE(SkipComment());
      EXPECT_EQ(' ', GetChar());  // four back, although one had been read
      EXPECT_EQ('c', GetChar());
      EXPECT_EQ('>', GetChar());
    }
  };
  TSubclass subclass;
  subclass.fAsksLines = false;
  EXPECT_THAT(subclass.Read("<a>x  name<!NOTATION b c>123</a>"),
              ElementsAre("notation TBD TBD TBD", "text 123", "end a"));
}

TEST(TXmlParser, StartsAfreshWithEveryBuffer) {
  TRecorder recorder;
  recorder.Read("<a>\n\n<b");
  EXPECT_EQ("end c @2", recorder.Read("<c>\n</c>").back());
}

TEST(TXmlParser, ReadsAMillionNestedElements) {
  constexpr std::size_t kDepth = 1000000;
  class TCounter : public TRecorder {
   public:
    void StartElement(const char*, TAttributeMap&) override { ++fStarted; }
    void EndElement(const char*) override { ++fEnded; }
    std::size_t fStarted = 0;
    std::size_t fEnded = 0;
  };
  std::string open;
  std::string closed;
  for (std::size_t i = 0; i < kDepth; ++i) open += "<a>";
  for (std::size_t i = 0; i < kDepth; ++i) closed += "</a>";

  TCounter whole;
  whole.Read(open + closed);
  EXPECT_EQ(kDepth, whole.fStarted);
  EXPECT_EQ(kDepth, whole.fEnded);

  TCounter cut;
  EXPECT_THAT(cut.Read(open), ElementsAre("fatal Unexpected character where element expected @1"));
  EXPECT_EQ(kDepth, cut.fStarted);
  EXPECT_EQ(open, cut.fBuffer);
}

// Each of these takes minutes where a step looks again at what it has seen.
std::string ManyAttributes(int count) {
  std::string text;
  for (int i = 0; i < count; ++i) text += " a" + std::to_string(i) + "=''";
  return text;
}

TEST(TXmlParser, FindsAnAttributeThatAppearsTwiceAmongMany) {
  for (const int count : {1, 15, 16, 17, 18, 200}) {
    const std::string tag = "<a" + ManyAttributes(count);
    EXPECT_EQ("end a @1", LastEvent(tag + "/>")) << count;
    EXPECT_EQ("end a @1", LastEvent(tag + "><b" + ManyAttributes(count) + "/></a>")) << count;
    for (const int twice : {0, count / 2, count - 1}) {
      EXPECT_EQ("fatal Attribute appears twice @1",
                LastEvent(tag + " A" + std::to_string(twice) + "='x'/>"))
          << count << " " << twice;
    }
  }
}

// A reader that takes the text in place.
TEST(TXmlParser, TellsTagsAndTextInPlaceInTheOrderOfTheDocument) {
  class TInPlace : public TRecorder {
   protected:
    void StartTag(std::string_view name, const TAttributes& attributes) override {
      EXPECT_EQ(name, name.data());
      std::string event = "tag " + std::string(name);
      for (const TAttribute& attribute : attributes) {
        event += " " + std::string(attribute.name) + "=" + std::string(attribute.value);
      }
      Tell(event);
    }
    void TextRun(std::string_view text) override { Tell("run " + std::string(text)); }
  };
  TInPlace reader;
  reader.fAsksLines = false;
  EXPECT_THAT(reader.Read("<r Y='1' X='\"'>t&lt;u<e/></r>"),
              ElementsAre("tag r y=1 x=\"", "run t", "text <", "run u", "tag e", "end e", "end r"));
}

// A reader to whom `<v>` is a leaf, if it has nothing but text in it.
class TLeafReader : public TRecorder {
 public:
  explicit TLeafReader(bool awaitsText = true) : fAwaits{awaitsText, "v"} { Await(fAwaits); }

 protected:
  void Leaf(std::string_view text) override { Tell("leaf " + std::string(text)); }

 private:
  const TAwaited fAwaits;
};

TEvents ReadLeaves(const std::string& content) {
  TLeafReader reader;
  reader.fAsksLines = false;
  TEvents events = reader.Read("<r>" + content + "</r>");
  EXPECT_EQ("<r>" + content + "</r>", reader.fBuffer);
  EXPECT_EQ("start r", events.front());
  events.erase(events.begin());
  return events;
}

TEST(TXmlParser, ReadsAnAwaitedElementAsAWhole) {
  EXPECT_THAT(ReadLeaves("<v>t</v>"), ElementsAre("leaf t", "end r"));
  EXPECT_THAT(ReadLeaves("<v></v>"), ElementsAre("leaf ", "end r"));
  EXPECT_THAT(ReadLeaves("a<v>t</v>b<v>u</v>"),
              ElementsAre("text a", "leaf t", "text b", "leaf u", "end r"));
  EXPECT_THAT(ReadLeaves("<v a='1' >'>\"</v>"), ElementsAre("leaf '>\"", "end r"));
  for (const std::size_t size : {7, 8, 15, 16, 17, 31, 32, 33, 1000}) {
    const std::string text(size, 't');
    EXPECT_THAT(ReadLeaves("<v>" + text + "</v>"), ElementsAre("leaf " + text, "end r"));
  }
}

TEST(TXmlParser, ReadsAnElementThatIsMoreThanTextPieceByPiece) {
  EXPECT_THAT(ReadLeaves("<v/>"), ElementsAre("start v", "end v", "end r"));
  EXPECT_THAT(ReadLeaves("<v>t&lt;</v>"),
              ElementsAre("start v", "text t", "text <", "end v", "end r"));
  EXPECT_THAT(ReadLeaves("<v>t<!-- -->u</v>"),
              ElementsAre("start v", "text t", "text u", "end v", "end r"));
  EXPECT_THAT(ReadLeaves("<v>t<x/></v>"),
              ElementsAre("start v", "text t", "start x", "end x", "end v", "end r"));
  EXPECT_THAT(ReadLeaves("<v>t</v ></r>"), ElementsAre("start v", "text t", "end v", "end r"));
  EXPECT_THAT(ReadLeaves("<v>t</vw>"), ElementsAre("start v", "text t", "end v", "end r"));
  EXPECT_THAT(ReadLeaves("<v\na='1'>t</v>"),
              ElementsAre("start v a=1", "text t", "end v", "end r"));
  EXPECT_THAT(ReadLeaves("<V>t</V><vv>t</vv>"),
              ElementsAre("start V", "text t", "end V", "start vv", "text t", "end vv", "end r"));
  EXPECT_THAT(ReadLeaves("<v>t</w>"),
              ElementsAre("start v", "text t", "fatal Start and end element names don't match"));
}

TEST(TXmlParser, TellsOfALeafBehindItsEnd) {
  TLeafReader reader;
  EXPECT_THAT(reader.Read("<r>\n<v>a\nb</v>\n</r>"),
              ElementsAre("start r @1", "text \n @2", "leaf a\nb @3", "text \n @4", "end r @4"));
}

TEST(TXmlParser, PassesOverTextThatIsNotAwaited) {
  TLeafReader reader(false);
  EXPECT_THAT(reader.Read("<r> t<v>u</v>&gt;</r>"),
              ElementsAre("start r @1", "leaf u @1", "text > @1", "end r @1"));
}

// Knows every start tag that it has been told of before.
class TRememberer : public TRecorder {
 public:
  TRememberer() {
    static constexpr TAwaited kAll{true, {}, true, true};
    Await(kAll);
  }

  using TXmlParser::GetTag;
  std::vector<TKnownTag> fTags;

 protected:
  void StartTag(std::string_view name, const TAttributes& attributes) override {
    fTags.push_back(GetTag());
    const std::string tag = fTags.back().text.empty() ? std::string(name) : fTags.back().read;
    Tell("tag " + tag + " " + std::to_string(attributes.size()));
  }
  EKnown TakeKnown(TAhead& ahead) override {
    for (const TKnownTag& tag : fTags) {
      if (tag.text.empty() || !ahead.IsAt(tag.text)) continue;
      Tell("known " + tag.read);
      ahead.Put(tag.read);
      return EKnown::kStartTag;
    }
    return EKnown::kNothing;
  }
};

TEST(TXmlParser, AsksForATagThatMayBeKnown) {
  TRememberer reader;
  reader.fAsksLines = false;
  const std::string tag = "<b X='1'\n Yy = \"2\" >";
  EXPECT_THAT(reader.Read("<r>" + tag + "t</b>" + tag + "<c/></b><b X='1'></b></r>"),
              ElementsAre("tag r> 0", "tag b x='1'\n yy = \"2\" > 2", "text t", "end b",
                          "known b x='1'\n yy = \"2\" >", "tag c 0", "end c", "end b",
                          "tag b x='1'> 1", "end b", "end r"));
  const std::string read = "<b x='1'\n yy = \"2\" >";
  EXPECT_EQ("<r>" + read + "t</b>" + read + "<c/></b><b x='1'></b></r>", reader.fBuffer);
  EXPECT_EQ("b X='1'\n Yy = \"2\" >", reader.fTags[1].text);
  EXPECT_EQ("", reader.fTags[2].text) << "an element without content is not kept";
  EXPECT_EQ("", reader.GetTag().text) << "nor is one when its call is over";
}

TEST(TXmlParser, ReadsADocumentWhoseSizeIsTold) {
  TRecorder reader;
  std::string document = "<a>t</a>";
  reader.Parse(document.data(), document.size());
  EXPECT_THAT(reader.Read("<b/>"),
              ElementsAre("start a @1", "text t @1", "end a @1", "start b @1", "end b @1"));
}

TEST(TXmlParser, TakesTimeInProportionToTheDocument) {
  const auto repeat = [](const std::string& text, int count) {
    std::string result;
    for (int i = 0; i < count; ++i) result += text;
    return result;
  };
  const std::string documents[] = {
      "<a>" + repeat("<!-- c -->", 300000) + "</a>",
      "<a>" + repeat("<?p?>", 300000) + "</a>",
      "<a>" + repeat("<!-- >>>", 300000) + "</a>",
      "<a>" + repeat("\n<b\n/>", 300000) + "</a>",  // every callback asks for its line
      "<a>" + repeat("&amp;\n", 300000) + "</a>",
      "<a x='" + repeat("\"", 3000000),
      "<a" + ManyAttributes(300000) + "/>",
      repeat("<a x='", 300000),
      "<?xml?>" + repeat("<!--", 300000),
      "<a>&#" + repeat("9", 3000000),
  };
  const auto start = std::chrono::steady_clock::now();
  for (const std::string& document : documents) TRecorder().Read(document);
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(60));
}

// Everything that the grammar knows, to be cut and mixed.
const char kSample[] =
    "<?xml version=\"1.0\"?>\n<!-- c -->\n<!DOCTYPE CIM>\n"
    "<CIM VERSION=\"2.0\"\n>\n<A\nNAME='x' Type=\"'y'\"><b/>text &lt;&#65;&#x42;\n"
    "<?pi data?><!-- - -- --><c d = 'e'>&quot;</c ></A>\n<A NAME='z'></A>\n</CIM>\n<!-- end -->";

// Takes every short cut, and tells what it would have been told without. Of the attributes of `<a>`
// it does not hear.
class TQuickReader : public TRecorder {
 public:
  explicit TQuickReader(EMode mode) : TRecorder(mode) {
    static constexpr TAwaited kAll{true, "a", true, true};
    Await(kAll);
    fAsksLines = false;
  }

  // The events of `slow` as this reader tells them.
  static TEvents Shortened(TEvents slow) {
    for (std::string& event : slow) {
      event.erase(event.rfind(" @"));
      if (event.rfind("start a ", 0) == 0) event = "start a";
    }
    return slow;
  }

 protected:
  void StartTag(std::string_view name, const TAttributes& attributes) override {
    std::string event = "start " + std::string(name);
    const std::map<std::string_view, std::string_view> sorted(MakeMap(attributes));
    for (const auto& [key, value] : sorted) {
      if (name != "a") event += " " + std::string(key) + "=" + std::string(value);
    }
    if (!GetTag().text.empty()) fKnown.push_back({GetTag(), event});
    Tell(event);
  }
  EKnown TakeKnown(TAhead& ahead) override {
    for (const TKnown& known : fKnown) {
      if (!ahead.IsAt(known.tag.text)) continue;
      Tell(known.event);
      ahead.Put(known.tag.read);
      return TakeRest(known.event.substr(std::strlen("start ")), ahead) ? EKnown::kElement
                                                                        : EKnown::kStartTag;
    }
    return EKnown::kNothing;
  }
  void Leaf(std::string_view text) override {
    Tell("start a");
    if (!text.empty()) Tell("text " + std::string(text));
    Tell("end a");
  }

 private:
  // Of an element with nothing but one run of text in it, or nothing.
  bool TakeRest(const std::string& tag, TAhead& ahead) {
    const std::string name = tag.substr(0, tag.find(' '));
    TAhead behind = ahead;
    const TAhead::TText text = behind.TakeText();
    if (text.hasReferences || !behind.Take("</" + name + ">")) return false;
    if (!text.raw.empty()) Tell("text " + std::string(text.raw));
    Tell("end " + name);
    ahead = behind;
    return true;
  }

  struct TKnown {
    TKnownTag tag;
    std::string event;
  };

  static std::map<std::string_view, std::string_view> MakeMap(const TAttributes& attributes) {
    std::map<std::string_view, std::string_view> map;
    for (const TAttribute& attribute : attributes) map.emplace(attribute.name, attribute.value);
    return map;
  }

  std::list<TKnown> fKnown;  // where they are, they stay
};

void ExpectSameAsReference(const std::string& document) {
  for (const bool isStrict : {true, false}) {
    const TRecorder::EMode mode = isStrict ? TRecorder::kThrow : TRecorder::kReturn;
    const TEvents expected = ReferenceXmlReader(document, isStrict).Read();
    TRecorder recorder(mode);
    ASSERT_EQ(expected, recorder.Read(document)) << "document: " << document;
    TQuickReader quick(mode);
    ASSERT_EQ(TQuickReader::Shortened(expected), quick.Read(document)) << "document: " << document;
    ASSERT_EQ(recorder.fBuffer, quick.fBuffer);
  }
}

TEST(TXmlParser, AgreesWithAPlainReaderOnADocumentCutAnywhere) {
  const std::string document = kSample;
  for (std::size_t size = 0; size <= document.size(); ++size) {
    ExpectSameAsReference(document.substr(0, size));
    ExpectSameAsReference("<r>" + document.substr(size));
  }
}

TEST(TXmlParser, AgreesWithAPlainReaderOnChangedDocuments) {
  const std::string tokens[] = {"<",  ">",  "/",  "</", "/>", "<!--", "-->", "<?", "?>",  "<!",
                                "&",  "#",  ";",  "x",  "\"", "'",    "=",   " ",  "\n",  "<a>",
                                "A ", "a=", "''", "-",  "&#", "<a\n", "</a", "]]", "\xFF"};
  std::mt19937 random(20240229);
  const auto below = [&](std::size_t limit) { return random() % limit; };
  for (int round = 0; round < 20000; ++round) {
    std::string document = kSample;
    for (std::size_t changes = 1 + below(6); changes > 0; --changes) {
      const std::size_t at = below(document.size() + 1);
      switch (below(3)) {
        case 0: document.insert(at, tokens[below(std::size(tokens))]); break;
        case 1: document.erase(at, below(12)); break;
        default: document.insert(below(document.size() + 1), document.substr(at, below(40)));
      }
    }
    ASSERT_NO_FATAL_FAILURE(ExpectSameAsReference(document));
  }
}

TEST(TXmlParser, AgreesWithAPlainReaderOnRandomTokens) {
  const std::string tokens[] = {"<a>",      "</a>",  "<b\n>", "</b>", "<c/>", "<d\ne='f'/>",
                                "<!-- -->", "<?p?>", "t",     "\n",   "&lt;", "&#9;",
                                "<",        "&",     " ",     "<!",   "x='"};
  std::mt19937 random(7);
  for (int round = 0; round < 20000; ++round) {
    std::string document = round % 2 ? "<a>" : "<?xml?>";
    for (unsigned int count = random() % 24; count > 0; --count) {
      document += tokens[random() % std::size(tokens)];
    }
    ASSERT_NO_FATAL_FAILURE(ExpectSameAsReference(document));
  }
}

}  // namespace
