#include "frontend/Comparison.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>

#include "frontend/ExitCode.h"
#include "frontend/Inventory.h"
#include "frontend/Redaction.h"
#include "tests/frontend/Document.h"
#include "tests/support/TempDir.h"
#include "zelcore/zelcore.h"

namespace {

using namespace document;
using testing::ElementsAre;
using testing::IsEmpty;
using zel::TComparison;
using zel::TComparisonOptions;
using zel::TInventory;

// Two documents and what was found between them.
class TPair {
 public:
  TPair(const std::string& before, const std::string& after)
      : fBefore(TInventory::Read(fFiles.WriteFile("old.xml", Document(before)))),
        fAfter(TInventory::Read(fFiles.WriteFile("new.xml", Document(after)))) {}

  const TComparison& Compare(const TComparisonOptions& options = {}) {
    fFound = zel::Compare(fBefore, fAfter, options);
    return fFound;
  }

  TInventory& Before() { return fBefore; }
  TInventory& After() { return fAfter; }

  // "+T_Disk.Id="a"", "-...", "~... Size: 1 -> 2" in the order in which they are told.
  std::vector<std::string> Lines(const TComparisonOptions& options = {}) {
    std::vector<std::string> lines;
    for (const auto& cls : Compare(options).classes) {
      for (const auto* instance : cls.added) lines.push_back("+" + PathOf(instance));
      for (const auto* instance : cls.removed) lines.push_back("-" + PathOf(instance));
      for (const auto& instance : cls.changed) {
        for (const auto& property : instance.properties) {
          const zel::TChangeTexts texts = TextsOf(property);
          lines.push_back("~" + PathOf(instance.after) + " " + property.after->GetName() + ": " +
                          texts.before + " -> " + texts.after);
        }
      }
    }
    return lines;
  }

  std::vector<std::string> NotCompared() const {
    std::vector<std::string> lines;
    for (const auto& cls : fFound.notCompared) {
      lines.push_back(cls.className + ": " + WithoutPlace(cls.reason));
    }
    return lines;
  }

  std::vector<std::string> Notes() const {
    std::vector<std::string> lines;
    for (const std::string& note : fFound.notes) lines.push_back(WithoutPlace(note));
    return lines;
  }

 private:
  static std::string PathOf(const TCIMInstance* instance) {
    return instance->BuildPath().GetPath();
  }

  std::string WithoutPlace(std::string text) const {
    const std::string place = fFiles.GetPath() + "/";
    for (std::size_t at = 0; (at = text.find(place)) != std::string::npos;) {
      text.erase(at, place.size());
    }
    return text;
  }

  TempDir fFiles;
  TInventory fBefore;
  TInventory fAfter;
  TComparison fFound;
};

const std::string kDisk =
    Class("T_Disk", Key("Id") + Declare("Size", "uint64", Qualifier("UNITS", "string", "Bytes")) +
                        Declare("Label", "string"));

std::string Disk(const std::string& id, const std::string& properties = "") {
  return Instance("T_Disk", Set("Id", id) + properties);
}

TEST(Compare, MatchesInstancesByTheirPaths) {
  TPair pair(kDisk + Disk("b") + Disk("c", Set("Size", "uint64", "1536")) + Disk("gone"),
             kDisk + Disk("new") + Disk("c", Set("Size", "uint64", "2048")) + Disk("b"));
  EXPECT_THAT(pair.Lines(), ElementsAre("+T_Disk.Id=\"new\"", "-T_Disk.Id=\"gone\"",
                                        "~T_Disk.Id=\"c\" Size: 1.5 Kilobytes -> 2 Kilobytes"));
  const TComparison& found = pair.Compare();
  EXPECT_TRUE(found.HasDifferences());
  EXPECT_EQ(1u, found.CountAdded());
  EXPECT_EQ(1u, found.CountRemoved());
  EXPECT_EQ(1u, found.CountChanged());
  EXPECT_THAT(found.notCompared, IsEmpty());
  EXPECT_THAT(found.notes, IsEmpty());
}

TEST(Compare, FindsNothingBetweenEqualInventories) {
  const std::string document = kDisk + Disk("a", Set("Size", "uint64", "1")) + Disk("b");
  TPair pair(document, document);
  const TComparison& found = pair.Compare();
  EXPECT_FALSE(found.HasDifferences());
  EXPECT_EQ(0u, found.CountAdded() + found.CountRemoved() + found.CountChanged());
}

TEST(Compare, KeepsTheOldValuesInTheNewContainer) {
  const std::string other = Class("T_Other", Key("Id") + Declare("Kind", "string"));
  TPair pair(
      kDisk + other + Disk("a", Set("Size", "uint64", "1") + Set("Label", "x")) + Disk("same") +
          Disk("null", Set("Label", "y")) + Instance("T_Other", Set("Id", "o")),
      kDisk + other + Disk("a", Set("Size", "uint64", "2") + Set("Label", "x")) + Disk("same") +
          Disk("add") + Disk("null") + Instance("T_Other", Set("Id", "o") + Set("Kind", "k")));
  TContainer& container = pair.After().GetContainer();
  EXPECT_FALSE(container.isDiffContainer());
  const TComparison& found = pair.Compare();
  ASSERT_TRUE(container.isDiffContainer());
  EXPECT_FALSE(pair.Before().GetContainer().isDiffContainer());

  ASSERT_EQ(2u, found.classes.size());
  const auto& disks = found.classes[0];
  ASSERT_EQ(2u, disks.changed.size());
  EXPECT_THAT(container.getDiffInstances(),
              ElementsAre(disks.changed[0].after, disks.changed[1].after, disks.added[0],
                          found.classes[1].changed[0].after));

  const TCIMInstance& changed = *disks.changed[0].after;
  EXPECT_TRUE(changed.GetProperty("Size")->IsPrevValueDifferent());
  EXPECT_EQ(1ul, static_cast<unsigned long>(changed.GetProperty("Size")->GetPrevValue()));
  EXPECT_EQ(2ul, static_cast<unsigned long>(changed.GetProperty("Size")->GetValue()));
  EXPECT_FALSE(changed.GetProperty("Label")->IsPrevValueDifferent());
  EXPECT_EQ("y", disks.changed[1].after->GetProperty("Label")->GetPrevValue().ToString(10));
  const TCIMProperty* kind = found.classes[1].changed[0].after->GetProperty("Kind");
  EXPECT_TRUE(kind->IsPrevValueDifferent());
  EXPECT_TRUE(kind->GetPrevValue().IsNull());
}

TEST(Compare, MarksTheContainerWhenNothingDiffersToo) {
  TPair pair(kDisk, kDisk);
  pair.Compare();
  ASSERT_TRUE(pair.After().GetContainer().isDiffContainer());
  EXPECT_FALSE(pair.After().GetContainer().hasDifferences());
}

TEST(Compare, ComparesValuesOfEveryType) {
  struct TRow {
    const char* type;
    const char* before;  // null: not set
    const char* after;
    const char* texts;  // null: the same
  };
  const TRow rows[] = {
      {"boolean",    "true",                      "false",                     "true -> false"               },
      {"uint8",      "7",                         "7",                         nullptr                       },
      {"sint64",     "-5",                        "-6",                        "-5 -> -6"                    },
      {"uint64",     "0x10",                      "16",                        nullptr                       },
      {"string",     "a",                         "A",                         "a -> A"                      },
      {"string",     "a&#7;",                     "a",                         "a\\x07 -> a"                 },
      {"string",     nullptr,                     nullptr,                     nullptr                       },
      {"string",     nullptr,                     "x",                         "not available -> x"          },
      {"string",     "x",                         nullptr,                     "x -> not available"          },
      {"string",     "",                          nullptr,                     " -> not available"           },
      {"string",     "not available",             nullptr,                     "\"not available\" -> null"   },
 // What reads the same is told raw: \x07 typed out, and the character.
      {"string",     "\\x07",                     "&#7;",                      "\"\\\\x07\" -> \"\\u0007\""  },
      {"real64",     "1.5",                       "1.50",                      nullptr                       },
      {"real64",     "1.0000000001",              "1.0000000002",              "1.0000000001 -> 1.0000000002"},
      {"real32",     "0.5",                       "-0.5",                      "0.5 -> -0.5"                 },
 // One moment, told in two time zones.
      {"datetime",   "20261121120000.000000+060", "20261121110000.000000+000", nullptr                       },
      {"datetime",   "20261121120000.000000+060", "20261121120000.000000+000",
       "2026-11-21T12:00:00.000000+01:00 -> 2026-11-21T12:00:00.000000+00:00"                                },
      {"datetime",   "00000001020304.500000:000", "00000001020304.500000:000", nullptr                       },
      {"datetime",   "00000001020304.500000:000", "20261121120000.000000+000",
       "P1DT2H3M4.500000S -> 2026-11-21T12:00:00.000000+00:00"                                               },
 // 2^32 seconds apart.
      {"datetime",   "00049710062816.000000:000", "00000000000000.000000:000",
       "P49710DT6H28M16.000000S -> P0DT0H0M0.000000S"                                                        },
      {"uint16[]",   "1|2",                       "1|2",                       nullptr                       },
      {"uint16[]",   "1|2",                       "2|1",                       "1, 2 -> 2, 1"                },
      {"uint16[]",   "1|2",                       "1|2|3",                     "1, 2 -> 1, 2, 3"             },
      {"uint16[]",   nullptr,                     "1",                         "not available -> 1"          },
      {"string[]",   "a, b",                      "a|b",                       "[\"a, b\"] -> [\"a\",\"b\"]" },
      {"datetime[]", "20261121120000.000000+060", "20261121110000.000000+000", nullptr                       },
  };
  for (const TRow& row : rows) {
    SCOPED_TRACE(std::string(row.type) + " " + (row.before ? row.before : "NULL") + " " +
                 (row.after ? row.after : "NULL"));
    const std::string cls = Class("T_Thing", Key("Id") + Declare("V", row.type));
    const auto thing = [&](const char* value) {
      return Instance("T_Thing",
                      Set("Id", "1") + (value ? Set("V", row.type, value) : std::string()));
    };
    TPair pair(cls + thing(row.before), cls + thing(row.after));
    if (row.texts) {
      EXPECT_THAT(pair.Lines(), ElementsAre("~T_Thing.Id=\"1\" V: " + std::string(row.texts)));
    } else {
      EXPECT_THAT(pair.Lines(), IsEmpty());
    }
  }
}

TEST(Compare, ShowsRawValuesWhereTheDisplayIsTheSame) {
  // In single precision both are 1 Gigabyte.
  TPair pair(kDisk + Disk("a", Set("Size", "uint64", "1099511627777")),
             kDisk + Disk("a", Set("Size", "uint64", "1099511627778")));
  EXPECT_THAT(pair.Lines(), ElementsAre("~T_Disk.Id=\"a\" Size: 1099511627777 -> 1099511627778"));
}

TEST(Compare, ComparesDefaultsAsValues) {
  const std::string withDefault =
      Class("T_Disk", Key("Id") + PropertyXml("Size", "uint64", "<VALUE>5</VALUE>"));
  TPair pair(
      withDefault + Disk("a") + Disk("b"),
      withDefault + Disk("a", Set("Size", "uint64", "5")) + Disk("b", Set("Size", "uint64", "6")));
  EXPECT_THAT(pair.Lines(), ElementsAre("~T_Disk.Id=\"b\" Size: 5 -> 6"));
}

const std::string kLinked =
    kDisk +
    Class("T_Slot", Qualifier("ASSOCIATION") + Key("Id") +
                        "<PROPERTY.REFERENCE NAME=\"Holds\" REFERENCECLASS=\"T_Disk\"/>") +
    Association("T_Link", "GroupComponent", "T_Disk", "PartComponent", "T_Disk");

TEST(Compare, ComparesReferencesByWhatTheyName) {
  const auto slot = [](const std::string& id, const std::string& cls, const std::string& key) {
    return Instance("T_Slot", Set("Id", id) + SetReference("Holds", cls, "Id", key));
  };
  const auto link = [](const std::string& whole, const std::string& part) {
    return Instance("T_Link", SetReference("GroupComponent", "T_Disk", "Id", whole) +
                                  SetReference("PartComponent", "T_Disk", "Id", part));
  };
  TPair pair(kLinked + slot("1", "T_Disk", "a") + slot("2", "T_Disk", "b") + link("a", "b") +
                 link("a", "c"),
             kLinked + slot("1", "t_disk", "a") + slot("2", "T_Disk", "c") + link("a", "b") +
                 link("b", "c"));
  EXPECT_THAT(pair.Lines(),
              ElementsAre("+T_Link.GroupComponent=\"T_Disk.Id=\"b\"\",PartComponent=\"T_Disk.Id="
                          "\"c\"\"",
                          "-T_Link.GroupComponent=\"T_Disk.Id=\"a\"\",PartComponent=\"T_Disk.Id="
                          "\"c\"\"",
                          "~T_Slot.Id=\"2\" Holds: T_Disk.Id=\"b\" -> T_Disk.Id=\"c\""));
  // The old reference leads to the new container's classes.
  const TCIMInstance* changed = pair.Compare().classes.back().changed.front().after;
  const TCIMReference previous = changed->GetProperty("Holds")->GetPrevValue();
  EXPECT_EQ(pair.After().GetContainer().GetClass("T_Disk"), previous.GetClass());
  EXPECT_EQ("T_Disk.Id=\"b\"", previous.GetPath());
}

TEST(Compare, TellsAnOldReferenceThatTheNewSchemaCannotHold) {
  const std::string kept = Class("T_Base", Key("Id"));
  const std::string slotClass =
      Class("T_Slot", Qualifier("ASSOCIATION") + Key("Id") +
                          "<PROPERTY.REFERENCE NAME=\"Holds\" REFERENCECLASS=\"T_Base\"/>");
  TPair pair(kept + Class("T_Dropped", "", "T_Base") + slotClass +
                 Instance("T_Slot", Set("Id", "1") + SetReference("Holds", "T_Dropped", "Id", "d")),
             kept + slotClass +
                 Instance("T_Slot", Set("Id", "1") + SetReference("Holds", "T_Base", "Id", "d")));
  EXPECT_THAT(pair.Lines(),
              ElementsAre("~T_Slot.Id=\"1\" Holds: T_Dropped.Id=\"d\" -> T_Base.Id=\"d\""));
  const auto& property = pair.Compare().classes.front().changed.front().properties.front();
  EXPECT_FALSE(property.after->IsPrevValueDifferent());
}

TEST(Compare, TellsPathsApartThatReadTheSame) {
  const std::string pairClass = Class("T_Pair", Key("A") + Key("B"));
  const auto instance = [](const std::string& a, const std::string& b) {
    return Instance("T_Pair", Set("A", a) + Set("B", b));
  };
  // Both read T_Pair.A="x",B="y",B="z".
  TPair pair(pairClass + instance("x", "y&quot;,B=&quot;z"),
             pairClass + instance("x&quot;,B=&quot;y", "z"));
  EXPECT_THAT(pair.Lines(),
              ElementsAre("+T_Pair.A=\"x\",B=\"y\",B=\"z\"", "-T_Pair.A=\"x\",B=\"y\",B=\"z\""));
  TPair commas(pairClass + instance("x", "y,b=z"), pairClass + instance("x,b=y", "z"));
  EXPECT_THAT(commas.Lines(),
              ElementsAre("+T_Pair.A=\"x,b=y\",B=\"z\"", "-T_Pair.A=\"x\",B=\"y,b=z\""));
}

TEST(Compare, PairsDuplicatesInTheirOrder) {
  const auto disk = [](const std::string& label) { return Disk("a", Set("Label", label)); };
  TPair changed(kDisk + disk("1") + disk("2") + disk("3"),
                kDisk + disk("1") + disk("x") + disk("3"));
  EXPECT_THAT(changed.Lines(), ElementsAre("~T_Disk.Id=\"a\" Label: 2 -> x"));
  TPair fewer(kDisk + disk("1") + disk("2"), kDisk + disk("1"));
  EXPECT_THAT(fewer.Lines(), ElementsAre("-T_Disk.Id=\"a\""));
  EXPECT_EQ("2",
            fewer.Compare().classes[0].removed[0]->GetProperty("Label")->GetValue().ToString(10));
  TPair more(kDisk + disk("1"), kDisk + disk("1") + disk("2"));
  EXPECT_THAT(more.Lines(), ElementsAre("+T_Disk.Id=\"a\""));
}

TEST(Compare, TakesNamesInAnyCase) {
  TPair pair(Class("t_DISK", Key("ID") + Declare("SIZE", "uint64")) +
                 Instance("t_DISK", Set("ID", "a") + Set("SIZE", "uint64", "1")),
             kDisk + Disk("a", Set("Size", "uint64", "2")));
  EXPECT_THAT(pair.Lines(), ElementsAre("~T_Disk.Id=\"a\" Size: 1 Bytes -> 2 Bytes"));
  EXPECT_THAT(pair.Notes(), ElementsAre("T_Disk: not compared, old.xml does not have it: Label"));
}

TEST(Compare, LeavesOutWhatIsVolatileUnlessAsked) {
  const std::string classes =
      Class("T_Load", Qualifier("VOLATILE") + Key("Id") + Declare("V", "uint8")) +
      Class("T_Clock", Key("Id") + Declare("Ticks", "uint8", Qualifier("VOLATILE")) +
                           Declare("Tocks", "uint8", Qualifier("VOLATILE", "boolean", "false")) +
                           Declare("DATETIMEOFCOLLECTION", "datetime"));
  const auto instances = [](const std::string& n) {
    return Instance("T_Load", Set("Id", n)) +
           Instance(
               "T_Clock",
               Set("Id", "c") + Set("Ticks", "uint8", n) + Set("Tocks", "uint8", n) +
                   Set("DATETIMEOFCOLLECTION", "datetime", "2026112112000" + n + ".000000+000"));
  };
  TPair pair(classes + instances("1"), classes + instances("2"));
  EXPECT_THAT(pair.Lines(), ElementsAre("~T_Clock.Id=\"c\" Tocks: 1 -> 2"));
  TComparisonOptions options;
  options.withVolatile = true;
  EXPECT_THAT(pair.Lines(options),
              ElementsAre("~T_Clock.Id=\"c\" DATETIMEOFCOLLECTION: "
                          "2026-11-21T12:00:01.000000+00:00 -> 2026-11-21T12:00:02.000000+00:00",
                          "~T_Clock.Id=\"c\" Ticks: 1 -> 2", "~T_Clock.Id=\"c\" Tocks: 1 -> 2",
                          "+T_Load.Id=\"2\"", "-T_Load.Id=\"1\""));
}

TEST(Compare, LeavesOutWhatOneSchemaCallsVolatile) {
  const auto document = [](const std::string& qualifier, const std::string& value) {
    return Class("T_A", qualifier + Key("Id")) +
           Class("T_B", Key("Id") + Declare("V", "uint8", qualifier)) +
           Instance("T_A", Set("Id", value)) +
           Instance("T_B", Set("Id", "b") + Set("V", "uint8", value));
  };
  TPair before(document(Qualifier("VOLATILE"), "1"), document("", "2"));
  EXPECT_THAT(before.Lines(), IsEmpty());
  TPair after(document("", "1"), document(Qualifier("VOLATILE"), "2"));
  EXPECT_THAT(after.Lines(), IsEmpty());
}

TEST(Compare, NamesWhatCouldNotBeCollectedInOne) {
  std::string classes = RunClasses();
  std::string instances;
  for (const char* name : {"T_Both", "T_Dead", "T_Fresh", "T_Never", "T_Skipped"}) {
    classes += Class(name, Key("Id"));
    instances += Instance(name, Set("Id", "1"));
  }
  TPair pair(classes + Class("T_Unknown", Key("Id")) + instances +
                 PluginStatus("one", "T_Both|T_Dead|T_Skipped|T_Unknown") +
                 PluginStatus("two", "T_Never", "x"),
             classes + Class("T_Later", Key("Id")) + PluginStatus("one", "t_both") +
                 PluginStatus("bad", "T_Dead", "was ended by signal 6 (Aborted)") +
                 PluginStatus("two", "T_Fresh|T_Later"));
  EXPECT_THAT(pair.Lines(), ElementsAre("-T_Both.Id=\"1\""));
  EXPECT_THAT(pair.NotCompared(),
              ElementsAre("T_Dead: new.xml: plug-in bad failed: was ended by signal 6 (Aborted)",
                          "T_Fresh: old.xml: not collected",      //
                          "T_Later: old.xml: unknown class",      //
                          "T_Skipped: new.xml: not collected",    //
                          "T_Unknown: new.xml: unknown class"));  // T_Never: in neither
}

TEST(Compare, TakesOneAnswerForAClassThatSeveralWereAskedFor) {
  const std::string both = RunClasses() + kDisk + Disk("a");
  TPair pair(both + PluginStatus("a", "T_Disk") + PluginStatus("b", "T_Disk", "failed"),
             both + PluginStatus("a", "T_Disk", "failed") + PluginStatus("b", "T_Disk"));
  EXPECT_THAT(pair.Lines(), IsEmpty());
  EXPECT_THAT(pair.NotCompared(), IsEmpty());
}

TEST(Compare, TakesADocumentAtItsWordThatDoesNotSayWhatWasCollected) {
  // Classes without instances, of which there are many in a schema, are not worth a word.
  TPair pair(kDisk + Class("T_Empty", Key("Id")) + Class("T_Full", Key("Id")) +
                 Instance("T_Full", Set("Id", "f")) + Disk("a"),
             kDisk + Class("T_Strange", Key("Id")));
  EXPECT_THAT(pair.Lines(), ElementsAre("-T_Disk.Id=\"a\""));
  EXPECT_THAT(pair.NotCompared(), ElementsAre("T_Full: new.xml: unknown class"));
}

TEST(Compare, DoesNotKnowAClassWhereItIsAbstract) {
  const std::string abstract =
      "<QUALIFIER.DECLARATION NAME=\"ABSTRACT\" TYPE=\"boolean\"><SCOPE CLASS=\"true\"/>"
      "</QUALIFIER.DECLARATION>" +
      Class("T_Disk", Qualifier("ABSTRACT") + Key("Id"));
  TPair before(abstract, kDisk + Disk("a"));
  EXPECT_THAT(before.Lines(), IsEmpty());
  EXPECT_THAT(before.NotCompared(), ElementsAre("T_Disk: old.xml: unknown class"));
  TPair after(kDisk + Disk("a"), abstract);
  EXPECT_THAT(after.Lines(), IsEmpty());
  EXPECT_THAT(after.NotCompared(), ElementsAre("T_Disk: new.xml: unknown class"));
}

TEST(Compare, NotesWhatOnlyOneSchemaHas) {
  const auto version = [](const std::string& text) {
    return RunClasses() + RunOf(Set("SchemaVersion", text));
  };
  TPair pair(
      version("1.0") +
          Class("T_A", Key("Id") + Declare("Old", "uint8") + Declare("Older", "uint8") +
                           Declare("V", "uint8")) +
          Instance("T_A", Set("Id", "1") + Set("Old", "uint8", "5") + Set("V", "uint8", "5")),
      version("1.1") + Class("T_A", Key("Id") + Declare("New", "uint8") + Declare("V", "uint32")) +
          Instance("T_A", Set("Id", "1") + Set("New", "uint8", "5") + Set("V", "uint32", "5")));
  EXPECT_THAT(pair.Lines(), IsEmpty());
  EXPECT_THAT(
      pair.Notes(),
      ElementsAre("the schema versions differ: 1.0 and 1.1; classes may have other properties",
                  "T_A: not compared, new.xml does not have it: Old, Older",
                  "T_A: not compared, old.xml does not have it: New",
                  "T_A: compared as text, the types differ: V (uint8 and uint32)"));
  EXPECT_THAT(pair.NotCompared(), IsEmpty());
}

TEST(Compare, ComparesOtherTypesAsText) {
  const auto thing = [](const std::string& type, const std::string& value) {
    return Class("T_A", Key("Id") + Declare("V", type)) +
           Instance("T_A", Set("Id", "1") + (value.empty() ? "" : Set("V", type, value)));
  };
  TPair differing(thing("uint8", "5"), thing("string", "6"));
  EXPECT_THAT(differing.Lines(), ElementsAre("~T_A.Id=\"1\" V: 5 -> 6"));
  EXPECT_FALSE(
      differing.Compare().classes[0].changed[0].properties[0].after->IsPrevValueDifferent());
  TPair array(thing("uint8[]", "5"), thing("uint8", "5"));
  EXPECT_THAT(array.Lines(), IsEmpty());
  EXPECT_THAT(array.Notes(),
              ElementsAre("T_A: compared as text, the types differ: V (uint8[] and uint8)"));
  TPair null(thing("uint8", ""), thing("string", "6"));
  EXPECT_THAT(null.Lines(), ElementsAre("~T_A.Id=\"1\" V: not available -> 6"));
}

TEST(Compare, DoesNotCompareClassesOfOtherKeys) {
  TPair pair(
      Class("T_A", Key("Id")) + Instance("T_A", Set("Id", "1")),
      Class("T_A", Key("Id") + Key("Bus")) + Instance("T_A", Set("Id", "1") + Set("Bus", "0")));
  EXPECT_THAT(pair.Lines(), IsEmpty());
  EXPECT_THAT(pair.NotCompared(), ElementsAre("T_A: its keys differ: Id and Bus, Id"));
}

TEST(Compare, KeepsToTheClassesAndSectionsAskedFor) {
  const std::string classes =
      Class("T_A", Qualifier("SECTION", "string", "Big Things") + Key("Id")) +
      Class("T_B", Qualifier("SECTION", "string", "Big Things") + Key("Id")) +
      Class("T_C", Key("Id"));
  const std::string gone = Class("T_Gone", Key("Id")) + Instance("T_Gone", Set("Id", "1"));
  std::string instances;
  for (const char* name : {"T_A", "T_B", "T_C"}) instances += Instance(name, Set("Id", "1"));
  TPair pair(classes + gone, classes + instances);
  const auto linesFor = [&](const std::vector<std::string>& names) {
    TComparisonOptions options;
    options.names = names;
    return pair.Lines(options);
  };
  EXPECT_THAT(linesFor({"bigthings"}), ElementsAre("+T_A.Id=\"1\"", "+T_B.Id=\"1\""));
  EXPECT_THAT(pair.NotCompared(), IsEmpty());
  EXPECT_THAT(linesFor({"t_c", "T_A"}), ElementsAre("+T_A.Id=\"1\"", "+T_C.Id=\"1\""));
  EXPECT_THAT(linesFor({"T_Gone"}), IsEmpty());  // only the old one knows it
  EXPECT_THAT(pair.NotCompared(), ElementsAre("T_Gone: new.xml: unknown class"));
  try {
    linesFor({"T_A", "nothing"});
    ADD_FAILURE();
  } catch (const zel::TCommandError& error) {
    EXPECT_EQ(zel::kExitUsage, error.GetExitCode());
    EXPECT_STREQ("no class or section 'nothing'; 'zel schema' lists them", error.what());
  }
}

// A machine with a name that is sensitive, in keys and references, too.
std::string NamedMachine(const std::string& host, const std::string& serial,
                         const std::string& size, const std::string& redacted) {
  return RunClasses() + RunOf(Set("IsRedacted", "boolean", redacted)) +
         Class("T_System", Key("Name", "string", Qualifier("SENSITIVE")) +
                               Declare("Serial", "string", Qualifier("SENSITIVE")) +
                               Declare("Pin", "uint16", Qualifier("SENSITIVE")) +
                               Declare("Model", "string")) +
         Class("T_Part", Key("SystemName") + Key("Id") + Declare("Size", "uint8")) +
         Association("T_Link", "GroupComponent", "T_System", "PartComponent", "T_System") +
         Instance("T_System", Set("Name", host) + Set("Serial", serial) +
                                  Set("Pin", "uint16", size) + Set("Model", "M")) +
         Instance("T_Part", Set("SystemName", host) + Set("Id", "p") + Set("Size", "uint8", size)) +
         Instance("T_Link", SetReference("GroupComponent", "T_System", "Name", host) +
                                SetReference("PartComponent", "T_System", "Name", host));
}

TEST(Compare, LeavesOutWhatOneOfTheTwoHides) {
  const std::string plain = NamedMachine("server1", "S1", "1", "false");
  const std::string redacted =
      NamedMachine("[redacted:00000001]", "[redacted:00000002]", "2", "true");
  TPair after(plain, redacted);
  EXPECT_THAT(after.Lines(),
              ElementsAre("~T_Part.Id=\"p\",SystemName=\"[redacted:00000001]\" Size: 1 -> 2"));
  EXPECT_THAT(after.Notes(),
              ElementsAre("new.xml is redacted: sensitive properties are not compared"));
  TPair before(redacted, plain);
  EXPECT_THAT(before.Lines(), ElementsAre("~T_Part.Id=\"p\",SystemName=\"server1\" Size: 2 -> 1"));
  EXPECT_THAT(before.Notes(),
              ElementsAre("old.xml is redacted: sensitive properties are not compared"));
  TPair both(redacted, NamedMachine("[redacted:00000009]", "[redacted:00000008]", "2", "true"));
  EXPECT_THAT(both.Lines(), IsEmpty());
  EXPECT_THAT(both.Notes(), ElementsAre("both are redacted, each in its own way: sensitive "
                                        "properties are not compared"));
  TPair neither(plain, NamedMachine("server1", "S2", "1", "false"));
  EXPECT_THAT(neither.Lines(), ElementsAre("~T_System.Name=\"server1\" Serial: S1 -> S2"));
}

TEST(Compare, LeavesOutTextsInWhichSomethingIsHidden) {
  const auto note = [](const std::string& text, const std::string& redacted) {
    return RunClasses() + RunOf(Set("IsRedacted", "boolean", redacted)) +
           Class("T_Note", Key("Id") + Declare("Text", "string") + Declare("Texts", "string[]")) +
           Instance("T_Note",
                    Set("Id", "n") + Set("Text", text) + Set("Texts", "string[]", "x|" + text));
  };
  TPair pair(note("on server1", "false"), note("on [redacted:00000001]", "true"));
  EXPECT_THAT(pair.Lines(), IsEmpty());
}

TEST(Compare, ComparesWhatIsHiddenInBothWithOneKey) {
  TPair pair(NamedMachine("server1", "serial-1", "1", "false"),
             NamedMachine("server1", "serial-2", "2", "false"));
  const zel::TRedactionKey key = {1, 2};
  zel::Redact({&pair.Before(), &pair.After()}, key);
  TComparisonOptions options;
  options.redactedAlike = true;
  const std::string name = zel::RedactedText("server1", key);
  EXPECT_THAT(
      pair.Lines(options),
      ElementsAre("~T_Part.Id=\"p\",SystemName=\"" + name + "\" Size: 1 -> 2",
                  "~T_System.Name=\"" + name + "\" Serial: " + zel::RedactedText("serial-1", key) +
                      " -> " + zel::RedactedText("serial-2", key)));
  EXPECT_THAT(pair.Notes(), ElementsAre("T_System: not compared, redacted: Pin"));
}

}  // namespace
