#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <regex>
#include <set>
#include <string>
#include <vector>

#include "tests/frontend/Document.h"
#include "tests/frontend/Zel.h"
#include "tests/support/TempDir.h"

namespace {

using namespace document;
using testing::ContainsRegex;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::MatchesRegex;
using testing::Not;
using testing::StartsWith;

std::string Column(int place) { return Qualifier("COLUMN", "uint32", std::to_string(place)); }
std::string Section(const std::string& name) { return Qualifier("SECTION", "string", name); }

// The page that `zel report` makes of a document with `parts`.
std::string PageOf(const std::string& parts, std::vector<std::string> more = {}) {
  const TempDir directory;
  const std::string file = directory.WriteFile("in.xml", Document(parts));
  std::vector<std::string> arguments = {"report", file, "-o", "-"};
  arguments.insert(arguments.end(), more.begin(), more.end());
  const TResult result = Zel(arguments);
  EXPECT_EQ(0, result.code) << result.err;
  return result.out;
}

// What stands between style and script.
std::string BodyOf(const std::string& page) {
  const std::size_t start = page.find("<body>");
  return page.substr(start, page.rfind("<script>") - start);
}

std::size_t Count(const std::string& text, const std::string& what) {
  std::size_t count = 0;
  for (std::size_t at = 0; (at = text.find(what, at)) != std::string::npos; ++at) ++count;
  return count;
}

std::vector<std::string> All(const std::string& text, const std::string& pattern) {
  const std::regex regex(pattern);
  std::vector<std::string> found;
  for (std::sregex_iterator at(text.begin(), text.end(), regex), end; at != end; ++at) {
    found.push_back((*at)[1]);
  }
  return found;
}

const std::string kDisks =
    Class("T_Disk",
          Section("Storage") +
              Declare("Size", "uint64", Column(2) + Qualifier("UNITS", "string", "Bytes")) +
              Key("Id", "string", Column(1)) +
              Declare("Serial", "string", Column(3) + Qualifier("NEEDSROOT")) +
              Declare("FormFactor", "string",
                      Qualifier("DESCRIPTION", "string", "How it is \"built\".")) +
              Declare("Label", "string", Qualifier("DISPLAYNAME", "string", "Name on the box"))) +
    Instance("T_Disk", Set("Id", "sda") + Set("Size", "uint64", "1536") + Set("Label", "root")) +
    Instance("T_Disk", Set("Id", "sdb") + Set("FormFactor", "2.5 inch"));

TEST(Report, SetsOneInstanceAsFactsAndSeveralAsATable) {
  const std::string body =
      BodyOf(PageOf(kDisks + Class("T_Fan", Key("Id") + Declare("Speed", "uint16", Column(1))) +
                    Instance("T_Fan", Set("Id", "front") + Set("Speed", "uint16", "1200"))));
  EXPECT_THAT(body, HasSubstr("<h2 id=\"title-of-section-Storage\">Storage</h2>"));
  EXPECT_THAT(body, HasSubstr("<caption><h3>Disk <code>T_Disk</code></h3> "
                              "<span class=\"count\">2</span></caption>"));
  EXPECT_THAT(All(body, "<th scope=\"col\"[^>]*>([^<]*)</th>"),
              ElementsAre("Id", "Size", "Serial"));
  EXPECT_THAT(body, HasSubstr("<tbody id=\"T_Disk.sda\"><tr><th scope=\"row\">sda</th>"
                              "<td class=\"number\" data-value=\"1536\">1.5 Kilobytes</td>"));
  EXPECT_THAT(body, HasSubstr("<div><dt>Name on the box</dt><dd>root</dd></div>"));
  EXPECT_THAT(body, HasSubstr("<div class=\"facts\" id=\"T_Fan.front\">\n<dl>\n"
                              "<div><dt title=\"Speed\">Speed</dt><dd>1200</dd></div>\n</dl>\n"
                              "<details>"));
}

TEST(Report, SaysWhyValuesAreMissing) {
  const std::string body = BodyOf(PageOf(kDisks));
  const std::string why = geteuid() == 0 ? "not available" : "needs root";
  EXPECT_THAT(body, HasSubstr(">1.5 Kilobytes</td><td class=\"missing\">" + why + "</td>"));
  EXPECT_THAT(body, HasSubstr("<th scope=\"row\">sdb</th><td class=\"missing\">not available</td>"
                              "<td class=\"missing\">" +
                              why + "</td>"));
  EXPECT_THAT(body, HasSubstr("<div class=\"missing\"><dt>Not available</dt><dd>Form factor</dd>"));
  EXPECT_THAT(body,
              HasSubstr("<div class=\"missing\"><dt>Not available</dt><dd>Name on the box</dd>"));
}

TEST(Report, ExplainsPropertiesByTheirDeclarations) {
  const std::string body = BodyOf(
      PageOf(Class("T_Fan",
                   Key("Id", "string",
                       Column(1) + Qualifier("DESCRIPTION", "string", "The &quot;place&quot;."))) +
             Instance("T_Fan", Set("Id", "front"))));
  EXPECT_THAT(body, HasSubstr("<dt title=\"Id: The &quot;place&quot;.\">Id</dt>"));
}

TEST(Report, LinksReferencesToWhatTheyName) {
  const std::string body =
      BodyOf(PageOf(kDisks + Class("T_Shelf", Section("Storage") + Key("Id")) +
                    Association("T_InShelf", "Shelf", "T_Shelf", "Disk", "T_Disk") +
                    Instance("T_Shelf", Set("Id", "top &amp; left")) +
                    Instance("T_InShelf", SetReference("Shelf", "T_Shelf", "Id", "top &amp; left") +
                                              SetReference("Disk", "T_Disk", "Id", "sda")) +
                    Instance("T_InShelf", SetReference("Shelf", "T_Shelf", "Id", "top &amp; left") +
                                              SetReference("Disk", "T_Disk", "Id", "lost"))));
  EXPECT_EQ(1u, Count(body, "<a href=\"#T_Disk.sda\">Disk sda</a>"));
  EXPECT_EQ(2u, Count(body, "<a href=\"#T_Shelf.top~20~26~20left\">Shelf top &amp; left</a>"));
  EXPECT_EQ(1u, Count(body, " id=\"T_Shelf.top~20~26~20left\""));
  EXPECT_THAT(body, HasSubstr(">T_Disk.Id=&quot;lost&quot;</"));
  std::set<std::string> ids;
  for (const std::string& id : All(body, " id=\"([^\"]*)\""))
    EXPECT_TRUE(ids.insert(id).second) << id;
  for (const std::string& target : All(body, "href=\"#([^\"]*)\"")) {
    EXPECT_EQ(1u, ids.count(target)) << target;
  }
}

TEST(Report, FoldsLinksAwayBelowWhatTheyLink) {
  const std::string disks = kDisks + Class("T_Shelf", Section("Storage") + Key("Id")) +
                            Instance("T_Shelf", Set("Id", "top"));
  const std::string links =
      Class("T_InShelf", Qualifier("ASSOCIATION") + Section("Storage") +
                             KeyReference("Shelf", "T_Shelf") + KeyReference("Disk", "T_Disk")) +
      Instance("T_InShelf", SetReference("Shelf", "T_Shelf", "Id", "top") +
                                SetReference("Disk", "T_Disk", "Id", "sda"));
  const std::string body = BodyOf(PageOf(disks + links));
  EXPECT_THAT(body, HasSubstr("<details class=\"links\">\n<summary>1 link</summary>\n"
                              "<div class=\"class\" id=\"class-T_InShelf\">"));
  EXPECT_EQ(0u, Count(BodyOf(PageOf(disks)), "class=\"links\""));
}

TEST(Report, KeepsInstancesOfOnePathApart) {
  const std::string fan = Instance("T_Fan", Set("Id", "front"));
  const std::string body = BodyOf(PageOf(Class("T_Fan", Key("Id")) + fan + fan + fan));
  EXPECT_THAT(All(body, "<tbody id=\"([^\"]*)\""),
              ElementsAre("T_Fan.front", "T_Fan.front~~2", "T_Fan.front~~3"));
}

TEST(Report, ShowsHostileTextsAsTexts) {
  const std::string script = "&lt;script&gt;alert(1)&lt;/script&gt;";
  const std::string text = script + "&quot; onload=&quot;x \x1b[2J \xff\xfe";
  const std::string page = PageOf(
      Class("KVRSG_ComputerSystem", Section("&lt;/h2&gt;&lt;b&gt;") + Key("Name") +
                                        Declare("Text", "string",
                                                Qualifier("DISPLAYNAME", "string", script) +
                                                    Qualifier("DESCRIPTION", "string", text))) +
      Instance("KVRSG_ComputerSystem", Set("Name", text) + Set("Text", text)));
  const std::string body = BodyOf(page);
  EXPECT_EQ(1u, Count(page, "<script"));
  EXPECT_EQ(0u, Count(page, "</h2><b>"));
  EXPECT_EQ(0u, Count(body, "\x1b"));
  EXPECT_EQ(0u, Count(body, "\xff"));
  EXPECT_EQ(0u, Count(body, "onload=\"x"));
  EXPECT_THAT(body, HasSubstr("<h1>&lt;script&gt;alert(1)&lt;/script&gt;&quot; onload=&quot;x "
                              "\\x1B[2J \\xFF\\xFE</h1>"));
  EXPECT_THAT(page, HasSubstr("<title>&lt;script&gt;"));
}

TEST(Report, TakesTheClassesOfOthersAsTheyAre) {
  const std::string body = BodyOf(
      PageOf(Class("KVRSG_Processor", Key("Id") + Declare("NumberOfEnabledCores", "string")) +
             Class("KVRSG_Memory", Key("Id") + Declare("TotalSize", "string[]")) +
             Class("KVRSG_OperatingSystem",
                   Key("Id") + Declare("Uptime", "string") + Declare("LastBootUpTime", "boolean")) +
             Instance("KVRSG_Processor", Set("Id", "1") + Set("NumberOfEnabledCores", "many")) +
             Instance("KVRSG_Memory", Set("Id", "1") + Set("TotalSize", "string[]", "a|b")) +
             Instance("KVRSG_OperatingSystem", Set("Id", "1") + Set("Uptime", "long"))));
  EXPECT_THAT(body, HasSubstr("<dt>Count</dt><dd>1 package</dd>"));
  EXPECT_THAT(body, HasSubstr("<dt>Total</dt><dd>a, b</dd>"));
  EXPECT_THAT(body, HasSubstr("<dt>Uptime</dt><dd>long</dd>"));
}

TEST(Report, LetsNothingInButItsOwnStyleAndScript) {
  const std::string page = PageOf(kDisks);
  EXPECT_THAT(page,
              StartsWith("<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">"
                         "\n<meta http-equiv=\"Content-Security-Policy\" content=\"default-src "
                         "'none'; style-src 'sha256-"));
  EXPECT_EQ(1u, Count(page, "<style>"));
  EXPECT_EQ(1u, Count(page, "<script>"));
  for (const char* outside : {"http://", "https://", "url(", "@import", " style=", " onclick="}) {
    const bool isNamespace = outside == std::string("http://");
    EXPECT_EQ(isNamespace ? 1u : 0u, Count(page, outside))
        << outside;  // of the picture for the tab
  }
}

TEST(Report, BeginsWithWhatOneMustKnow) {
  const std::string body = BodyOf(
      PageOf(RunClasses() +
             RunOf(Set("IsPartial", "boolean", "true") + Set("IsRedacted", "boolean", "true") +
                   Set("StartTime", "datetime", "20261121105500.000000+060")) +
             PluginStatus("disk", "T_Disk", "was ended by signal 6 &lt;b&gt;") +
             PluginStatus("fan", "T_Fan") + Class("T_Disk", Section("Storage") + Key("Id")) +
             Class("T_Fan", Section("Storage") + Key("Id"))));
  EXPECT_THAT(body, HasSubstr("<strong>Collected in part.</strong>"));
  EXPECT_THAT(body, HasSubstr("<ul>\n<li>disk: was ended by signal 6 &lt;b&gt;</li>\n</ul>"));
  EXPECT_THAT(body, HasSubstr("<strong>Redacted.</strong>"));
  EXPECT_THAT(body, HasSubstr("<p class=\"empty\"><b>Storage, none found:</b> Fan</p>"));
  EXPECT_THAT(body, HasSubstr("<p class=\"empty\"><b>Storage, not collected:</b> Disk</p>"));
  EXPECT_THAT(body,
              ContainsRegex("<p class=\"lead\">[^<]*in.xml, collected 2026-11-21 10:55:00</p>"));
  EXPECT_THAT(body,
              ContainsRegex("<footer>\n<p>Generated by zel [0-9.]+ on [0-9-]+ [0-9:]+ from "));

  EXPECT_EQ(0u, Count(BodyOf(PageOf(kDisks)), "class=\"notice"));
}

TEST(Report, SaysThatItWasNotCollectedAsRoot) {
  const std::string run =
      Class("KVRSG_CollectionRun", Key("InstanceID") + Declare("IsRoot", "boolean"));
  const auto page = [&](const char* isRoot) {
    return PageOf(run + Instance("KVRSG_CollectionRun",
                                 Set("InstanceID", "run") + Set("IsRoot", "boolean", isRoot)));
  };
  EXPECT_THAT(page("false"), HasSubstr("<strong>Not collected as root.</strong>"));
  EXPECT_THAT(page("true"), Not(HasSubstr("<strong>Not collected as root.</strong>")));
}

TEST(Report, BeginsWithTheChangesSinceAnotherCollection) {
  const std::string classes =
      Class("T_Disk", Key("Id", "string", Column(1)) + Declare("Size", "uint64", Column(2)) +
                          Declare("Label", "string"));
  const TempDir directory;
  const std::string old = directory.WriteFile(
      "old.xml", Document(classes + Class("T_Lost", Key("Id")) +
                          Instance("T_Disk", Set("Id", "sda") + Set("Size", "uint64", "1") +
                                                 Set("Label", "a&lt;b")) +
                          Instance("T_Disk", Set("Id", "sdb") + Set("Size", "uint64", "5")) +
                          Instance("T_Lost", Set("Id", "x"))));
  const std::string body =
      BodyOf(PageOf(classes + Instance("T_Disk", Set("Id", "sda") + Set("Size", "uint64", "2")) +
                        Instance("T_Disk", Set("Id", "sdc")),
                    {"--diff", old}));
  EXPECT_LT(body.find("id=\"changes\""), body.find("id=\"summary\""));
  EXPECT_THAT(body, HasSubstr("<p class=\"lead-in\">1 instance added, 1 removed, 1 changed since " +
                              old + ".</p>"));
  EXPECT_THAT(
      body,
      HasSubstr(
          "<tbody class=\"changed\"><tr><td rowspan=\"2\"><span class=\"change\">changed</span>"
          "</td><th scope=\"rowgroup\" rowspan=\"2\"><a href=\"#T_Disk.sda\">Disk sda</a></th>"
          "<td>Label</td><td><del>a&lt;b</del></td><td><ins>not available</ins></td></tr>\n"
          "<tr><td>Size</td><td><del>1</del></td><td><ins>2</ins></td></tr>\n</tbody>"));
  EXPECT_THAT(body,
              HasSubstr("<a href=\"#T_Disk.sdc\">Disk sdc</a></th><td colspan=\"3\">Id sdc</td>"));
  EXPECT_THAT(body,
              HasSubstr(">removed</span></td><th scope=\"rowgroup\" rowspan=\"1\">Disk sdb</th>"
                        "<td colspan=\"3\">Id sdb, Size 5</td>"));
  EXPECT_THAT(body, ContainsRegex("<p class=\"empty\"><b>Not compared:</b> T_Lost, "));

  const std::string equal =
      BodyOf(PageOf(classes, {"--diff", directory.WriteFile("e.xml", Document(classes))}));
  EXPECT_THAT(equal, HasSubstr("<p class=\"lead-in\">Nothing differs since "));
}

TEST(Report, HidesWhatIsSensitive) {
  const std::string parts =
      Class("KVRSG_ComputerSystem",
            Key("Name", "string", Qualifier("SENSITIVE")) + Declare("Note", "string")) +
      Instance("KVRSG_ComputerSystem", Set("Name", "secrethost") + Set("Note", "on secrethost"));
  const TempDir directory;
  const std::string file = directory.WriteFile("secrethost.xml", Document(parts));
  for (const bool withOld : {false, true}) {
    std::vector<std::string> arguments = {"report", file, "--redact", "-o", "-"};
    if (withOld) arguments.insert(arguments.end(), {"--diff", file});
    const TResult result = Zel(arguments);
    EXPECT_EQ(0, result.code);
    EXPECT_THAT(result.out, Not(HasSubstr("secrethost")));
    EXPECT_THAT(result.out, ContainsRegex("<h1>\\[redacted:[0-9a-f]+\\]</h1>"));
  }
}

TEST(Report, CollectsThisMachineWithoutAFile) {
  const TPluginDir plugins({"aborts", "noisy"});
  const TResult result =
      Zel({"report", "--plugin-dir", plugins.GetPath(), "--base", kBase, "-o", "-"});
  EXPECT_EQ(3, result.code);
  EXPECT_THAT(result.out, HasSubstr("<li>aborts: was ended by signal 6 (Aborted)</li>"));
  EXPECT_THAT(result.out, HasSubstr("<div class=\"facts\" id=\"Noisy_Thing.a~3Cb~3E~26~22c~22\">"));
  EXPECT_THAT(result.out, HasSubstr("bell\\x07 and\\x0Aline"));
}

TEST(Report, IsNamedAfterItsMachine) {
  const TempDir directory;
  const std::string file = directory.WriteFile(
      "in.xml",
      Document(RunClasses() + RunOf(Set("StartTime", "datetime", "20261121105500.000000+060")) +
               Class("KVRSG_ComputerSystem", Key("Name")) +
               Instance("KVRSG_ComputerSystem", Set("Name", "web01"))));
  const TResult result = Zel({"report", file, "-o", directory.GetPath()});
  EXPECT_EQ(0, result.code);
  EXPECT_EQ("", result.out);
  const std::string path = directory.PathOf("web01-20261121-105500.html");
  EXPECT_THAT(result.err, MatchesRegex("saved " + path + " \\([0-9.]+ KiB\\)\n"));
  EXPECT_THAT(ReadFile(path), HasSubstr("</html>\n"));

  const std::filesystem::path former = std::filesystem::current_path();
  const TempDir here;
  std::filesystem::current_path(here.GetPath());
  for (const std::vector<std::string>& nameless : {
           std::vector<std::string>{"report", file},
           { "report",    file, "-o"}
  }) {
    EXPECT_EQ(0, Zel(nameless).code);
    EXPECT_TRUE(std::filesystem::remove(here.PathOf("web01-20261121-105500.html")));
  }
  std::filesystem::current_path(former);
}

TEST(Report, RefusesWhatItCannotReadOrWrite) {
  const TempDir directory;
  const std::string good = directory.WriteFile("good.xml", Document(kDisks));
  const std::string bad = directory.WriteFile("bad.xml", "<CIM>\n<X/>");
  const std::string page = directory.PathOf("page.html");
  const struct {
    std::vector<std::string> arguments;
    int code;
    std::string message;
  } rows[] = {
      {{"report", directory.PathOf("none.xml"), "-o", page},
       4,                                                       "zel: cannot read '.*none.xml'.*\n"},
      {{"report", bad, "-o", page},                          4, "zel: cannot read '.*bad.xml'.*\n" },
      {{"report", good, "--diff", bad, "-o", page},          4, "zel: cannot read '.*bad.xml'.*\n" },
      {{"report", good, "-o", "/nowhere/page.html"},         7, "zel: cannot write '/nowhere/.*\n" },
      {{"report", "-", "--diff", "-", "-o", page},           2, "zel: standard input can be .*\n"  },
  };
  for (const auto& row : rows) {
    const TResult result = Zel(row.arguments);
    EXPECT_EQ(row.code, result.code);
    EXPECT_EQ("", result.out);
    EXPECT_THAT(result.err, MatchesRegex(row.message));
    EXPECT_EQ("", ReadFile(page));
  }
}

}  // namespace
