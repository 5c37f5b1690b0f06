#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdlib.h>

#include <algorithm>

#include "tests/frontend/Document.h"
#include "tests/frontend/Zel.h"
#include "tests/support/TempDir.h"

namespace {

using namespace document;
using testing::HasSubstr;
using testing::MatchesRegex;
using testing::Not;

// Sets the locale for as long as it lives.
class TLocale {
 public:
  TLocale(const char* all, const char* type, const char* lang) {
    setenv("LC_ALL", all, 1);
    setenv("LC_CTYPE", type, 1);
    setenv("LANG", lang, 1);
  }
  ~TLocale() {
    for (const char* name : {"LC_ALL", "LC_CTYPE", "LANG"}) unsetenv(name);
  }
};

// The tree of a document, in the locale that there is.
TResult TreeAsIs(const std::string& parts, std::vector<std::string> more = {}) {
  const TempDir files;
  more.insert(more.begin(), {"tree", files.WriteFile("machine.xml", Document(parts))});
  return Zel(more);
}

TResult Tree(const std::string& parts, const std::vector<std::string>& more = {}) {
  const TLocale ascii("C", "", "");
  return TreeAsIs(parts, more);
}

const std::string kThing = Class("T_Thing", Key("Id") + Declare("ElementName", "string"));

std::string Thing(const std::string& id, const std::string& properties = "") {
  return Instance("T_Thing", Set("Id", id) + properties);
}

// An association class between things, and instances of it, "a-b".
std::string Links(const std::string& cls, const std::string& whole, const std::string& part,
                  const std::vector<std::string>& pairs) {
  std::string xml = Association(cls, whole, "T_Thing", part, "T_Thing");
  for (const std::string& pair : pairs) {
    const std::size_t dash = pair.find('-');
    xml += Instance(cls, SetReference(whole, "T_Thing", "Id", pair.substr(0, dash)) +
                             SetReference(part, "T_Thing", "Id", pair.substr(dash + 1)));
  }
  return xml;
}

std::string Things(const std::string& ids) {
  std::string xml = kThing;
  for (const char id : ids) xml += Thing(std::string(1, id));
  return xml;
}

// The tree below T_Thing.Id="a".
std::string TreeOfA(const std::string& parts, std::vector<std::string> more = {}) {
  more.insert(more.end(), {"--from", "T_Thing.Id=\"a\""});
  const TResult result = Tree(parts, more);
  EXPECT_EQ(0, result.code) << result.err;
  return result.out;
}

TEST(Tree, ShowsWhatAThingConsistsOf) {
  EXPECT_EQ(
      "a  T_Thing\n"
      "|-- b  T_Thing\n"
      "|   |-- d  T_Thing\n"
      "|   `-- e  T_Thing\n"
      "|       `-- f  T_Thing\n"
      "`-- c  T_Thing\n",
      TreeOfA(Things("fedcba") + Links("T_Has", "GroupComponent", "PartComponent",
                                       {"b-e", "b-d", "e-f", "a-c", "a-b"})));
}

TEST(Tree, ShowsEachOnceWithWhatIsBelowIt) {
  EXPECT_EQ(
      "a  T_Thing\n"
      "|-- b  T_Thing\n"
      "|   `-- d  T_Thing\n"
      "|       `-- e  T_Thing\n"
      "`-- c  T_Thing\n"
      "    `-- d  T_Thing (see above)\n",
      TreeOfA(Things("abcde") + Links("T_Has", "GroupComponent", "PartComponent",
                                      {"a-b", "a-c", "b-d", "c-d", "d-e"})));
}

TEST(Tree, ShowsTheInnerOnesWhereTheyAre) {
  // All are parts of a; b holds c, which holds d.
  EXPECT_EQ(
      "a  T_Thing\n"
      "|-- b  T_Thing\n"
      "|   `-- c  T_Thing\n"
      "|       `-- d  T_Thing\n"
      "`-- e  T_Thing\n",
      TreeOfA(Things("abcde") + Links("T_Has", "GroupComponent", "PartComponent",
                                      {"a-b", "a-c", "a-d", "a-e", "b-c", "c-d"})));
  // With nothing to hold them they stand below a.
  EXPECT_EQ(
      "a  T_Thing\n"
      "|-- b  T_Thing (+1)\n"
      "`-- c  T_Thing\n",
      TreeOfA(
          Things("abc") + Links("T_Has", "GroupComponent", "PartComponent", {"a-b", "a-c", "b-c"}),
          {"--depth", "1"}));
}

TEST(Tree, EndsWhateverGoesInCircles) {
  EXPECT_EQ(
      "a  T_Thing\n"
      "`-- b  T_Thing\n"
      "    `-- c  T_Thing\n"
      "        `-- a  T_Thing (see above)\n",
      TreeOfA(Things("abc") +
              Links("T_Has", "GroupComponent", "PartComponent", {"a-b", "b-c", "c-a"})));
  EXPECT_EQ(
      "a  T_Thing\n"
      "`-- a  T_Thing (see above)\n",
      TreeOfA(Things("a") + Links("T_Has", "GroupComponent", "PartComponent", {"a-a"})));
  // Each is part of the other.
  EXPECT_EQ(
      "a  T_Thing\n"
      "`-- b  T_Thing\n",
      TreeOfA(Things("ab") + Links("T_Has", "GroupComponent", "PartComponent", {"a-b", "b-a"})));
}

TEST(Tree, KnowsWhichEndIsTheWhole) {
  struct TRow {
    const char* cls;
    const char* own;
    const char* other;
    bool isWhole;
  };
  const TRow rows[] = {
      {"T_Has",                "GroupComponent", "PartComponent",  true },
      {"T_Has",                "PARTCOMPONENT",  "GROUPCOMPONENT", false},
      {"T_Has",                "Collection",     "Member",         true },
      {"T_Has",                "Member",         "Collection",     false},
      {"T_Has",                "Antecedent",     "Dependent",      true },
      {"T_Has",                "Dependent",      "Antecedent",     false},
      {"T_Has",                "Element",        "Setting",        true },
      {"T_Has",                "Setting",        "Element",        true },
      {"CIM_RunningOS",        "Dependent",      "Antecedent",     true },
      {"CIM_RunningOS",        "Antecedent",     "Dependent",      false},
      {"CIM_SystemBIOS",       "Dependent",      "Antecedent",     true },
      {"CIM_SystemPackaging",  "Dependent",      "Antecedent",     true },
      {"CIM_Realizes",         "Dependent",      "Antecedent",     true },
      {"CIM_AssociatedMemory", "Dependent",      "Antecedent",     true },
      {"CIM_AssociatedMemory", "Antecedent",     "Dependent",      false},
  };
  for (const TRow& row : rows) {
    SCOPED_TRACE(std::string(row.cls) + " " + row.own);
    EXPECT_EQ(std::string("a  T_Thing\n") + (row.isWhole ? "`-- b  T_Thing\n" : ""),
              TreeOfA(Things("ab") + Links(row.cls, row.own, row.other, {"a-b"})));
  }
}

TEST(Tree, DoesNotGoBackTheWayItCame) {
  // Neither end is the whole.
  EXPECT_EQ(
      "a  T_Thing\n"
      "|-- b  T_Thing\n"
      "`-- c  T_Thing\n",
      TreeOfA(Things("abc") + Links("T_Has", "Element", "Setting", {"a-b", "c-a"})));
}

TEST(Tree, PassesReferencesOverThatLeadNowhere) {
  EXPECT_EQ(
      "a  T_Thing\n"
      "`-- b  T_Thing\n",
      TreeOfA(Things("ab") + Links("T_Has", "GroupComponent", "PartComponent", {"a-b", "a-x"})));
}

TEST(Tree, TellsADoubleLinkOnce) {
  EXPECT_EQ(
      "a  T_Thing\n"
      "`-- b  T_Thing\n",
      TreeOfA(Things("ab") + Links("T_Has", "GroupComponent", "PartComponent", {"a-b", "a-b"}) +
              Links("T_Holds", "Antecedent", "Dependent", {"a-b"})));
}

TEST(Tree, OrdersBySectionClassAndPath) {
  // The parts are subclasses of what the association declares.
  std::string instances;
  for (const auto& [name, id] : std::vector<std::pair<std::string, std::string>>{
           {"T_X", "1"},
           {"T_Z", "2"},
           {"T_Z", "1"},
           {"T_Y", "1"}
  }) {
    instances += Instance(name, Set("Id", id)) +
                 Instance("T_Has", SetReference("GroupComponent", "T_Thing", "Id", "a") +
                                       SetReference("PartComponent", name, "Id", id));
  }
  std::string classes = kThing + Thing("a");
  for (const auto& [name, section] : std::vector<std::pair<std::string, std::string>>{
           {"T_X", "Zoo"   },
           {"T_Y", "Memory"},
           {"T_Z", "Memory"}
  }) {
    classes += Class(name, Qualifier("SECTION", "string", section), "T_Thing");
  }
  EXPECT_EQ(
      "a  T_Thing\n"
      "|-- 1  T_Y\n"
      "|-- 1  T_Z\n"
      "|-- 2  T_Z\n"
      "`-- 1  T_X\n",
      TreeOfA(classes +
              Association("T_Has", "GroupComponent", "T_Thing", "PartComponent", "T_Thing") +
              instances));
}

TEST(Tree, NamesThingsByWhatPeopleKnow) {
  const std::string cls =
      Class("T_Named", Key("Id") + Declare("ElementName", "string") + Declare("Name", "string") +
                           Declare("Model", "string") + Declare("DeviceID", "string") +
                           Declare("Tag", "string"));
  const std::vector<const char*> names = {"ElementName", "Name", "Model", "DeviceID", "Tag"};
  for (std::size_t first = 0; first <= names.size(); ++first) {
    std::string properties = Set("Id", "key");
    for (std::size_t i = first; i < names.size(); ++i) properties += Set(names[i], names[i]);
    if (first > 0) properties += Set(names[first - 1], "");  // empty counts as not set
    EXPECT_EQ(std::string(first < names.size() ? names[first] : "key") + "  T_Named\n",
              Tree(cls + Instance("T_Named", properties), {"--from", "T_Named"}).out);
  }
  EXPECT_EQ("bell\\x07  T_Thing\n", TreeOfA(kThing + Thing("a", Set("ElementName", "bell&#7;"))));
}

TEST(Tree, StopsAtTheDepthAskedFor) {
  const std::string chain = Things("abcde") + Links("T_Has", "GroupComponent", "PartComponent",
                                                    {"a-b", "b-c", "b-d", "c-e"});
  EXPECT_EQ("a  T_Thing (+1)\n", TreeOfA(chain, {"--depth", "0"}));
  EXPECT_EQ(
      "a  T_Thing\n"
      "`-- b  T_Thing (+2)\n",
      TreeOfA(chain, {"--depth", "1"}));
  EXPECT_EQ(
      "a  T_Thing\n"
      "`-- b  T_Thing\n"
      "    |-- c  T_Thing\n"
      "    |   `-- e  T_Thing\n"
      "    `-- d  T_Thing\n",
      TreeOfA(chain, {"--depth", "3"}));
  EXPECT_EQ(2, Tree(chain, {"--depth", "-1"}).code);
  EXPECT_EQ(2, Tree(chain, {"--depth", "1001"}).code);
}

TEST(Tree, DoesNotFollowAChainWithoutEnd) {
  constexpr int kLength = 3000;
  std::string document = kThing;
  std::vector<std::string> pairs;
  for (int i = 0; i < kLength; ++i) {
    document += Thing(std::to_string(i));
    pairs.push_back(std::to_string(i) + "-" + std::to_string(i + 1));
  }
  const TResult result = Tree(document + Links("T_Has", "GroupComponent", "PartComponent", pairs),
                              {"--from", "T_Thing.Id=\"0\""});
  EXPECT_EQ(0, result.code);
  EXPECT_EQ(65, std::count(result.out.begin(), result.out.end(), '\n'));
  EXPECT_THAT(result.out, testing::EndsWith("`-- 64  T_Thing (+1)\n"));
}

TEST(Tree, DrawsBranchesAsTheLocaleAllows) {
  const std::string document =
      Things("abc") + Links("T_Has", "GroupComponent", "PartComponent", {"a-b", "a-c"});
  const std::string ascii = "a  T_Thing\n|-- b  T_Thing\n`-- c  T_Thing\n";
  const std::string lines = "a  T_Thing\n├── b  T_Thing\n└── c  T_Thing\n";
  struct TRow {
    const char* all;
    const char* type;
    const char* lang;
    bool isUtf8;
  };
  const TRow rows[] = {
      {"",            "",           "",            false},
      {"",            "",           "C",           false},
      {"",            "",           "POSIX",       false},
      {"",            "",           "de_DE.UTF-8", true },
      {"",            "",           "C.utf8",      true },
      {"",            "C",          "de_DE.UTF-8", false},
      {"",            "C.UTF-8",    "C",           true },
      {"C",           "C.UTF-8",    "C.UTF-8",     false},
      {"en_US.UTF-8", "C",          "C",           true },
      {"",            "de_DE@euro", "C.UTF-8",     false},
  };
  for (const TRow& row : rows) {
    const TLocale locale(row.all, row.type, row.lang);
    SCOPED_TRACE(std::string(row.all) + "," + row.type + "," + row.lang);
    EXPECT_EQ(row.isUtf8 ? lines : ascii, TreeAsIs(document, {"--from", "T_Thing.Id=\"a\""}).out);
  }
}

TEST(Tree, StartsWithTheSystem) {
  const std::string system = Class("CIM_ComputerSystem", Key("Name"));
  const std::string ours = system + Class("KVRSG_ComputerSystem", "", "CIM_ComputerSystem") +
                           Class("ACME_System", "", "CIM_ComputerSystem");
  EXPECT_EQ("b  KVRSG_ComputerSystem\n", Tree(ours + Instance("ACME_System", Set("Name", "a")) +
                                              Instance("KVRSG_ComputerSystem", Set("Name", "b")))
                                             .out);
  EXPECT_EQ("a  ACME_System\nb  ACME_System\n",
            Tree(ours + Instance("ACME_System", Set("Name", "b")) +
                 Instance("ACME_System", Set("Name", "a")))
                .out);
  for (const std::string& none : {ours, Things("a")}) {
    const TResult result = Tree(none);
    EXPECT_EQ(2, result.code);
    EXPECT_EQ("", result.out);
    EXPECT_THAT(result.err, MatchesRegex("zel: .*/machine.xml has no computer system; say with "
                                         "--from CLASS or --from PATH where to start\n"));
  }
}

TEST(Tree, StartsWhereItIsTold) {
  const std::string document = Things("ab") +
                               Class("T_Special", Declare("Extra", "string"), "T_Thing") +
                               Instance("T_Special", Set("Id", "s&#10;")) +
                               Links("T_Has", "GroupComponent", "PartComponent", {"a-b"});
  const auto from = [&](const std::string& start) { return Tree(document, {"--from", start}); };
  EXPECT_EQ("b  T_Thing\n", from("T_Thing.Id=\"b\"").out);
  EXPECT_EQ("s\\x0A  T_Special\n", from("T_Special.Id=\"s\\x0A\"").out);  // as it is printed
  EXPECT_EQ("s\\x0A  T_Special\n", from("T_Special.Id=\"s\n\"").out);
  // What an earlier tree has shown is above.
  EXPECT_EQ(
      "a  T_Thing\n"
      "`-- b  T_Thing\n"
      "b  T_Thing (see above)\n"
      "s\\x0A  T_Special\n",
      from("t_thing").out);
  for (const char* nothing : {"T_Thing.Id=\"x\"", "T_Nothing", "a b", ".", "T_Thing."}) {
    const TResult result = from(nothing);
    EXPECT_EQ(2, result.code);
    EXPECT_EQ("", result.out);
    EXPECT_THAT(result.err, HasSubstr(std::string(" has no instance '") + nothing + "'; "));
  }
}

TEST(Tree, HidesWhatIsSensitiveOnRequest) {
  const std::string document =
      Class("T_Thing", Key("Id", "string", Qualifier("SENSITIVE"))) + Thing("server1") +
      Thing("server2") + Links("T_Has", "GroupComponent", "PartComponent", {"server1-server2"});
  const TResult result = Tree(document, {"--redact", "--from", "T_Thing.Id=\"server1\""});
  EXPECT_EQ(0, result.code);
  EXPECT_THAT(result.out, MatchesRegex("\\[redacted:[0-9a-f]+\\]  T_Thing\n"
                                       "`-- \\[redacted:[0-9a-f]+\\]  T_Thing\n"));
  EXPECT_THAT(result.out, Not(HasSubstr("server")));
}

TEST(Tree, DimsTheClassesOnATerminal) {
  const TempDir files;
  const std::string path = files.WriteFile("machine.xml", Document(Things("a")));
  const char* argv[] = {"zel", "tree", path.c_str(), "--from", "T_Thing"};
  std::ostringstream out;
  std::ostringstream err;
  EXPECT_EQ(0, zel::Main(5, argv,
                         {
                             out, err, {true, 80}
  }));
  EXPECT_EQ("a  \033[2mT_Thing\033[0m\n", out.str());
}

TEST(Tree, ShowsThisMachine) {
  const TLocale ascii("C", "", "");
  setenv("ZEL_SYSROOT", ZEL_SOURCE_DIR "/tests/testdata/machines/qemu-q35", 1);
  const TResult result = Zel({"tree", "--plugin-dir", ZEL_BINARY_DIR "/plugins", "--base", kBase});
  unsetenv("ZEL_SYSROOT");
  EXPECT_EQ(0, result.code);
  EXPECT_EQ("", result.err);
  EXPECT_EQ(0u, result.out.find("captured  KVRSG_ComputerSystem\n"));
  for (const char* line :
       {"\n|-- Chassis 0  KVRSG_Chassis\n|   `-- 00AB123  KVRSG_BaseBoard\n",
        "\n|-- QEMU TCG CPU version 2.5+  KVRSG_Processor\n|   |-- L1d-0  KVRSG_CacheMemory\n",
        "\n|-- Memory  KVRSG_Memory\n|   `-- Slot0  KVRSG_PhysicalMemory\n",
        "    `-- Slot0  KVRSG_PhysicalMemory (see above)\n"}) {
    EXPECT_THAT(result.out, HasSubstr(line));
  }
  EXPECT_EQ(4, Zel({"tree", "/nowhere/machine.xml"}).code);
}

}  // namespace
