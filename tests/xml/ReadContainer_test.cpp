#include <dirent.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstdint>
#include <fstream>
#include <iterator>
#include <new>

#include "os/TDescriptor.h"
#include "tests/support/LogSpy.h"
#include "tests/support/Status.h"
#include "tests/support/TempDir.h"
#include "tests/support/Unprivileged.h"
#include "zelcore/TCIMClass.h"
#include "zelcore/TCIMInstance.h"
#include "zelcore/TCIMReference.h"
#include "zelcore/TContainer.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::size_t kMaxDocumentSize = 104857600;

const char kKey[] =
    "<QUALIFIER.DECLARATION NAME=\"KEY\" TYPE=\"boolean\"><SCOPE PROPERTY=\"true\"/>"
    "<VALUE>false</VALUE></QUALIFIER.DECLARATION>\n";

// A class with the key Id.
std::string Class(const std::string& name) {
  return "<VALUE.OBJECT><CLASS NAME=\"" + name +
         "\"><PROPERTY NAME=\"Id\" TYPE=\"string\"><QUALIFIER NAME=\"KEY\" TYPE=\"boolean\">"
         "<VALUE>true</VALUE></QUALIFIER></PROPERTY></CLASS></VALUE.OBJECT>\n";
}

std::string SubClass(const std::string& name, const std::string& superClass) {
  return "<VALUE.OBJECT><CLASS NAME=\"" + name + "\" SUPERCLASS=\"" + superClass +
         "\"></CLASS></VALUE.OBJECT>\n";
}

std::string Document(const std::string& objects) {
  return "<?xml version=\"1.0\"?>\n<CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\"><DECLARATION>"
         "<DECLGROUP>\n" +
         objects + "</DECLGROUP></DECLARATION></CIM>\n";
}

// A document that needs nothing before it.
std::string Schema(const std::string& objects) { return Document(kKey + objects); }

std::string LittleEndian(std::uint32_t number) {
  std::string bytes;
  for (int shift = 0; shift < 32; shift += 8) bytes += static_cast<char>(number >> shift);
  return bytes;
}

// A gzip file with another trailing length.
std::string WithLength(std::string gzip, std::uint32_t length) {
  return gzip.replace(gzip.size() - 4, 4, LittleEndian(length));
}

// Reads `path` into a new container; the names of the classes that it returns, or the failure.
std::vector<std::string> ReadClasses(const std::string& path) {
  TContainer container;
  std::vector<std::string> names;
  for (const TCIMClass* cls : container.PopulateContainerFromFile(path)) {
    names.push_back(cls->GetName());
  }
  return names;
}

std::string ReadStatus(const std::string& path) {
  return StatusOf([&] { ReadClasses(path); });
}

// The same for a file that does not even give a document: one line names it and tells why.
std::string ReadFault(const std::string& path) {
  RestartLog();
  const std::string status = ReadStatus(path);
  EXPECT_THAT(LogLines(zelLogError), ElementsAre("Couldn't read file '" + path + "': " + status));
  return status;
}

std::size_t CountOpenDescriptors() {
  DIR* const directory = opendir("/proc/self/fd");
  std::size_t count = 0;
  while (readdir(directory)) ++count;
  closedir(directory);
  return count;
}

class PopulateContainerFromFile : public testing::Test {
 protected:
  std::string Write(const std::string& name, const std::string& contents) {
    return fDir.WriteFile(name, contents);
  }

  TempDir fDir;
};

TEST_F(PopulateContainerFromFile, ReturnsTheClassesInDocumentOrder) {
  const std::string document = Schema(Class("Zeta") + SubClass("Alpha", "Zeta") + Class("Mu"));
  EXPECT_THAT(ReadClasses(Write("a.xml", document)), ElementsAre("Zeta", "Alpha", "Mu"));
  EXPECT_THAT(ReadClasses(fDir.WriteGzipFile("a.xml.gz", document)),
              ElementsAre("Zeta", "Alpha", "Mu"));
  EXPECT_THAT(ReadClasses(Write("none.xml", Document(""))), IsEmpty());
  EXPECT_THAT(LogLines(), IsEmpty());
}

TEST_F(PopulateContainerFromFile, ReturnsOnlyTheClassesOfThisDocument) {
  TContainer container;
  container.PopulateContainerFromFile(Write("a.xml", Schema(Class("A"))));
  const auto classes =
      container.PopulateContainerFromFile(Write("b.xml", Document(SubClass("B", "A"))));
  ASSERT_EQ(1u, classes.size());
  EXPECT_EQ(container.GetClass("B"), classes[0]);
  EXPECT_EQ(container.GetClass("A"), classes[0]->GetSuperClass());
}

TEST_F(PopulateContainerFromFile, TakesAnyPathWithGzInItForGzip) {
  const std::string gzip = Gzip(Schema(Class("A")));
  for (const char* name : {"a.gz", "a.gz.xml", "a.gzip", "dir.gz/a.xml", ".gz"}) {
    EXPECT_THAT(ReadClasses(Write(name, gzip)), ElementsAre("A")) << name;
  }
  EXPECT_EQ("zelStatusInvalidGzipFile", ReadStatus(Write("plain.gz.xml", Schema(Class("A")))));
  EXPECT_EQ("zelStatusInvalidGzipFile", ReadStatus(Write("plain.gz/a.xml", Schema(Class("A")))));
  EXPECT_EQ("zelStatusInvalidSpecificationDocument", ReadStatus(Write("a.GZ", gzip)));
}

TEST_F(PopulateContainerFromFile, FailsForWhatIsNoFile) {
  for (const char* name : {"a.xml", "a.xml.gz"}) {
    EXPECT_EQ("zelStatusFileNotFound", ReadFault(fDir.PathOf(name)));
    ASSERT_EQ(0, mkdir(fDir.PathOf(name).c_str(), 0755));
    EXPECT_EQ("zelStatusFileNotFound", ReadFault(fDir.PathOf(name)));
  }
  EXPECT_EQ("zelStatusFileNotFound", ReadFault(""));
}

TEST_F(PopulateContainerFromFile, FailsForAFileThatCannotBeOpened) {
  ASSERT_EQ(0, chmod(fDir.GetPath().c_str(), 0755));
  for (const char* name : {"closed.xml", "closed.xml.gz"}) {
    const std::string path = fDir.WriteGzipFile(name, Schema(Class("A")));
    ASSERT_EQ(0, chmod(path.c_str(), 0));
    const Unprivileged nobody;
    EXPECT_EQ("zelStatusFileSystemError", ReadFault(path));
  }
}

TEST_F(PopulateContainerFromFile, DoesNotWaitForWhatMayNeverEnd) {
  alarm(30);
  for (const char* name : {"fifo.xml", "fifo.xml.gz"}) {
    ASSERT_EQ(0, mkfifo(fDir.PathOf(name).c_str(), 0644));
    EXPECT_EQ("zelStatusFileSystemError", ReadFault(fDir.PathOf(name)));
  }
  const TDescriptor server(socket(AF_UNIX, SOCK_STREAM, 0));
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  fDir.PathOf("socket.xml").copy(address.sun_path, sizeof address.sun_path - 1);
  ASSERT_EQ(0, bind(server.Get(), reinterpret_cast<sockaddr*>(&address), sizeof address));
  EXPECT_EQ("zelStatusFileSystemError", ReadFault(fDir.PathOf("socket.xml")));
  for (const char* device : {"/dev/null", "/dev/zero", "/dev/ptmx"}) {
    EXPECT_EQ("zelStatusFileSystemError", ReadFault(device));
  }
  alarm(0);
}

TEST_F(PopulateContainerFromFile, FailsForAGzipFileTooShortForItsParts) {
  EXPECT_EQ("zelStatusFileSystemError", ReadFault(Write("0.gz", "")));
  EXPECT_EQ("zelStatusFileSystemError", ReadFault(Write("1.gz", "\x1F")));
  EXPECT_EQ("zelStatusFileSystemError", ReadFault(Write("2.gz", "\x1F\x8B")));
  EXPECT_EQ("zelStatusFileSystemError", ReadFault(Write("3.gz", "\x1F\x8B\x08")));
  EXPECT_EQ("zelStatusInvalidGzipFile", ReadFault(Write("magic.gz", "\x1F\x8C\x08rest")));
  EXPECT_EQ("zelStatusInvalidGzipFile", ReadFault(Write("xml.gz", "<a")));
}

TEST_F(PopulateContainerFromFile, FailsForAGzipFileThatHoldsMoreOrLessThanItSays) {
  const std::string document = Schema(Class("A"));
  const std::string gzip = Gzip(document);
  const auto length = static_cast<std::uint32_t>(document.size());

  EXPECT_EQ("zelStatusCorruptGzipFile", ReadFault(Write("more.gz", WithLength(gzip, length - 1))));
  EXPECT_EQ("zelStatusCorruptGzipFile", ReadFault(Write("less.gz", WithLength(gzip, length + 1))));
  EXPECT_EQ("zelStatusCorruptGzipFile", ReadFault(Write("zero.gz", WithLength(gzip, 0))));
  std::string damaged = gzip;
  damaged[damaged.size() - 8] = static_cast<char>(damaged[damaged.size() - 8] ^ 1);  // the checksum
  EXPECT_EQ("zelStatusCorruptGzipFile", ReadFault(Write("damaged.gz", damaged)));
  for (std::size_t size = 6; size < gzip.size() - 4; size += 3) {
    EXPECT_EQ("zelStatusCorruptGzipFile",
              ReadFault(Write("cut.gz", gzip.substr(0, size) + LittleEndian(length))))
        << size;
  }
}

TEST_F(PopulateContainerFromFile, EndsWithAStatusForAGzipFileCutAnywhere) {
  const std::string gzip = Gzip(Schema(Class("A")));
  for (std::size_t size = 0; size < gzip.size(); ++size) {
    EXPECT_NE("zelStatusOK", ReadStatus(Write("cut.gz", gzip.substr(0, size)))) << size;
  }
}

TEST_F(PopulateContainerFromFile, TakesSeveralGzipMembersOnlyWhenTheLastLengthIsTheWhole) {
  const std::string document = Schema(Class("A"));
  const std::string half = document.substr(0, document.size() / 2);
  EXPECT_EQ("zelStatusCorruptGzipFile",
            ReadStatus(Write("two.gz", Gzip(half) + Gzip(document.substr(half.size())))));
  EXPECT_THAT(ReadClasses(Write("empty.gz", Gzip("") + Gzip(document))), ElementsAre("A"));
}

TEST_F(PopulateContainerFromFile, RefusesAGzipFileThatSaysItIsTooLarge) {
  const std::string gzip = Gzip(Schema(Class("A")));
  // Refused before anything is decompressed: what follows the magic number need not make sense.
  EXPECT_EQ("zelStatusInvalidSpecificationDocument",
            ReadFault(Write("a.gz", "\x1F\x8B" + LittleEndian(kMaxDocumentSize + 1))));
  EXPECT_EQ("zelStatusInvalidSpecificationDocument",
            ReadFault(Write("a.gz", WithLength(gzip, 0xFFFFFFFF))));
  EXPECT_EQ("zelStatusCorruptGzipFile",
            ReadFault(Write("a.gz", WithLength(gzip, kMaxDocumentSize))));
}

TEST_F(PopulateContainerFromFile, ReadsPlainFilesOfUpTo100MiB) {
  const std::string path = Write("a.xml", Schema(Class("A")));
  ASSERT_EQ(0, truncate(path.c_str(), kMaxDocumentSize));
  EXPECT_THAT(ReadClasses(path), ElementsAre("A"));  // the first NUL ends the document
  ASSERT_EQ(0, truncate(path.c_str(), kMaxDocumentSize + 1));
  EXPECT_EQ("zelStatusInvalidSpecificationDocument", ReadFault(path));
}

TEST_F(PopulateContainerFromFile, FailsWhenThereIsNoMemoryForTheDocument) {
#ifdef __SANITIZE_ADDRESS__
  GTEST_SKIP() << "the address space cannot be limited under AddressSanitizer";
#endif
  const std::string path = Write("a.xml", Schema(Class("A")));
  ASSERT_EQ(0, truncate(path.c_str(), kMaxDocumentSize));
  const std::string gzip = Write("a.gz", WithLength(Gzip(Schema(Class("A"))), kMaxDocumentSize));
  std::size_t pages = 0;
  std::ifstream("/proc/self/statm") >> pages;
  rlimit former{};
  getrlimit(RLIMIT_AS, &former);
  rlimit tight = former;
  tight.rlim_cur = pages * static_cast<std::size_t>(sysconf(_SC_PAGESIZE)) + kMaxDocumentSize / 2;
  setrlimit(RLIMIT_AS, &tight);
  const std::string status = ReadStatus(path);
  const std::string gzipStatus = ReadStatus(gzip);
  setrlimit(RLIMIT_AS, &former);
  EXPECT_EQ("zelStatusOutOfMemory", status);
  EXPECT_EQ("zelStatusOutOfMemory", gzipStatus);
  EXPECT_THAT(LogLines(zelLogError),
              ElementsAre("Couldn't read file '" + path + "': zelStatusOutOfMemory",
                          "Couldn't read file '" + gzip + "': zelStatusOutOfMemory"));
}

TEST_F(PopulateContainerFromFile, NamesTheFileAfterAParseError) {
  const std::string path = Write("a.xml", Schema(Class("A") + "<BAD/>" + Class("B")));
  TContainer container;
  EXPECT_EQ("zelStatusInvalidSpecificationDocument",
            StatusOf([&] { container.PopulateContainerFromFile(path); }));
  EXPECT_THAT(LogLines(zelLogError),
              ElementsAre("CIM-XML Parser line 5:Unexpected element bad",
                          "TCIMXMLParser: Threw exception zelStatusInvalidSpecificationDocument on "
                          "line 5",
                          "Previous error was while parsing file '" + path + "'"));
  // What was read before stays, and the container goes on.
  EXPECT_TRUE(container.FindClass("A"));
  EXPECT_FALSE(container.FindClass("B"));
  const std::string good = Write("b.xml", Document(SubClass("B", "A")));
  EXPECT_EQ(1u, container.PopulateContainerFromFile(good).size());
}

TEST_F(PopulateContainerFromFile, KeepsTheStatusOfTheParseError) {
  const std::pair<std::string, std::string> rows[] = {
      {"",                  "zelStatusInvalidSpecificationDocument"},
      {" " + Schema(""),    "zelStatusInvalidSpecificationDocument"},
      {"<CIM",              "zelStatusInvalidSpecificationDocument"},
      {Schema(SubClass("A", "Missing")),                             "zelStatusNotFound"},
      {Schema(Class("A") + Class("a")),                   "zelStatusAlreadyExists"                           },
      {Schema(Class("1")),                   "zelStatusInvalidCIMName"             },
  };
  for (const auto& [document, status] : rows) {
    for (const std::string& path :
         {Write("a.xml", document), fDir.WriteGzipFile("a.gz", document)}) {
      RestartLog();
      EXPECT_EQ(status, ReadStatus(path)) << document;
      EXPECT_EQ("Previous error was while parsing file '" + path + "'", LastLogLine());
      EXPECT_EQ(zelLogError, LastLogSeverity());
    }
  }
}

TEST_F(PopulateContainerFromFile, ReturnsWhatADocumentThatStopsSilentlyHasDeclared) {
  EXPECT_THAT(ReadClasses(Write("a.xml", Schema(Class("A") + "<![CDATA[x]]>" + Class("B")))),
              ElementsAre("A"));
  EXPECT_THAT(LogLines(), IsEmpty());
}

TEST_F(PopulateContainerFromFile, EndsWithAStatusForADocumentCutAnywhere) {
  const std::string document = Schema(Class("A") + SubClass("B", "A"));
  const std::string good = Write("good.xml", Document(""));
  for (std::size_t size = 0; size < document.size(); ++size) {
    TContainer container;
    const std::string path = Write("cut.xml", document.substr(0, size));
    const std::string status = StatusOf([&] { container.PopulateContainerFromFile(path); });
    // Only the line feed behind the root element may be missing.
    EXPECT_EQ(size == document.size() - 1 ? "zelStatusOK" : "zelStatusInvalidSpecificationDocument",
              status)
        << size;
    EXPECT_THAT(container.PopulateContainerFromFile(good), IsEmpty());
  }
}

TEST_F(PopulateContainerFromFile, TerminatesADocumentThatIsShorterThanItsFileSaid) {
  // The kernel gives these files a page as their size, whatever they hold.
  const char* const path = "/sys/devices/system/cpu/online";
  struct stat status {};
  if (stat(path, &status) != 0 || status.st_size <= 64) GTEST_SKIP() << "no such file here";
  EXPECT_EQ("zelStatusInvalidSpecificationDocument", ReadStatus(path));
  EXPECT_EQ("CIM-XML Parser line 1:Unexpected character before prolog", LogLines().front());
}

TEST_F(PopulateContainerFromFile, StopsAtAnEmbeddedNul) {
  const std::string document = Schema(Class("A"));
  EXPECT_THAT(ReadClasses(Write("a.xml", document + '\0' + "<rubbish")), ElementsAre("A"));
  EXPECT_EQ("zelStatusInvalidSpecificationDocument",
            ReadStatus(Write("b.xml", document.substr(0, 60) + '\0' + document.substr(60))));
}

std::string Repeat(const std::string& text, int count) {
  std::string result;
  for (int i = 0; i < count; ++i) result += text;
  return result;
}

TEST_F(PopulateContainerFromFile, LeavesTheContainerUsableAfterEveryFault) {
  const std::string gzip = Gzip(Schema(Class("A")));
  ASSERT_EQ(0, mkdir(fDir.PathOf("directory.xml").c_str(), 0755));
  ASSERT_EQ(0, mkfifo(fDir.PathOf("fifo.xml").c_str(), 0644));
  const std::string knot =
      "<VALUE.REFERENCE><INSTANCENAME CLASSNAME=\"Knot\"><KEYBINDING "
      "NAME=\"Next\">";
  const std::string faults[] = {
      fDir.PathOf("missing.xml"),
      fDir.PathOf("directory.xml"),
      fDir.PathOf("fifo.xml"),
      "/sys/devices/system/cpu/online",  // shorter than it says, where it is there
      Write("empty.xml", ""),
      Write("quote.xml", Document("<CLASS NAME=\"" + std::string(1000000, 'x'))),
      Write("open.xml", "<CIM CIMVERSION=\"" + std::string(1000000, 'x')),
      Write("cut.xml", Schema(Class("C")).substr(0, 400)),
      Write("elements.xml", "<?xml?>" + Repeat("<a>", 1000000)),
      Write("methods.xml",
            Document("<VALUE.OBJECT><CLASS NAME=\"M\">" + Repeat("<METHOD>", 1000000))),
      Write("references.xml", Document("<VALUE.OBJECT><INSTANCE CLASSNAME=\"Knot\">"
                                       "<PROPERTY.REFERENCE NAME=\"Next\">" +
                                       Repeat(knot, 100000))),
      Write("duplicate.xml", Document(Class("A"))),
      Write("unknown.xml", Document(SubClass("C", "Missing"))),
      Write("keyless.xml", Document("<VALUE.OBJECT><INSTANCE CLASSNAME=\"A\"/></VALUE.OBJECT>")),
      Write("long.gz", WithLength(gzip, 1)),
      Write("large.gz", WithLength(gzip, kMaxDocumentSize + 1)),
      Write("trailer.gz", gzip.substr(0, gzip.size() - 8)),
      Write("members.gz", gzip + gzip),
      Write("magic.gz", "magic"),
      fDir.WriteGzipFile("bad.xml.gz", Document("<BAD/>")),
  };
  const std::string association =
      "<QUALIFIER.DECLARATION NAME=\"ASSOCIATION\" "
      "TYPE=\"boolean\"><SCOPE/></QUALIFIER.DECLARATION>";
  const std::string isTrue = "TYPE=\"boolean\"><VALUE>true</VALUE></QUALIFIER>";
  TContainer container;
  container.PopulateContainerFromFile(Write(
      "base.xml", Schema(association + Class("A") +
                         "<VALUE.OBJECT><CLASS NAME=\"Knot\"><QUALIFIER NAME=\"ASSOCIATION\" " +
                         isTrue + "<PROPERTY.REFERENCE NAME=\"Next\"><QUALIFIER NAME=\"KEY\" " +
                         isTrue + "</PROPERTY.REFERENCE></CLASS></VALUE.OBJECT>")));
  for (std::size_t i = 0; i < std::size(faults); ++i) {
    SCOPED_TRACE(faults[i]);
    RestartLog();
    EXPECT_NE("zelStatusOK", StatusOf([&] { container.PopulateContainerFromFile(faults[i]); }));
    EXPECT_FALSE(LogLines(zelLogError).empty());

    // A new class with an instance comes in, and is found.
    const std::string next = "B" + std::to_string(i);
    const std::string good = Write(
        "good.xml", Document(SubClass(next, "A") + "<VALUE.OBJECT><INSTANCE CLASSNAME=\"" + next +
                             "\"><PROPERTY NAME=\"Id\"><VALUE>x</VALUE></PROPERTY></INSTANCE>"
                             "</VALUE.OBJECT>"));
    EXPECT_EQ("zelStatusOK", StatusOf([&] { container.PopulateContainerFromFile(good); }));
    const TCIMClass* cls = container.FindClass(next);
    ASSERT_TRUE(cls);
    ASSERT_EQ(1u, cls->EnumerateInstances(false).size());
    EXPECT_EQ(next + ".Id=\"x\"", cls->EnumerateInstances(false)[0]->BuildPath().GetPath());
    EXPECT_EQ(i + 1, container.GetClass("A")->EnumerateInstances(true).size());
  }
  EXPECT_TRUE(container.GetClass("Knot")->EnumerateInstances(false).empty());
}

TEST_F(PopulateContainerFromFile, LetsOutWhatIsNoFailureOfTheDocument) {
#ifdef __SANITIZE_ADDRESS__
  GTEST_SKIP() << "the address space cannot be limited under AddressSanitizer";
#endif
  constexpr std::size_t kSize = 64 << 20;
  const std::string path = Write(
      "a.xml", Schema(Class("A") +
                      "<VALUE.OBJECT><INSTANCE CLASSNAME=\"A\"><PROPERTY "
                      "NAME=\"Id\"><VALUE>" +
                      std::string(kSize, 'x') + "</VALUE></PROPERTY></INSTANCE></VALUE.OBJECT>"));
  std::size_t pages = 0;
  std::ifstream("/proc/self/statm") >> pages;
  rlimit former{};
  getrlimit(RLIMIT_AS, &former);
  rlimit tight = former;
  tight.rlim_cur = pages * static_cast<std::size_t>(sysconf(_SC_PAGESIZE)) + kSize * 3 / 2;
  setrlimit(RLIMIT_AS, &tight);
  EXPECT_THROW(ReadClasses(path), std::bad_alloc);
  setrlimit(RLIMIT_AS, &former);
  EXPECT_THAT(LogLines(), IsEmpty());
}

TEST_F(PopulateContainerFromFile, FailsForAnAttributeValueThatNeverCloses) {
  const std::string document = Document("<VALUE.OBJECT><CLASS NAME=\"" + std::string(1000000, 'x'));
  const std::string open = document.substr(0, document.rfind('x') + 1);
  EXPECT_EQ("zelStatusInvalidSpecificationDocument", ReadStatus(Write("open.xml", open)));
  EXPECT_EQ("CIM-XML Parser line 3:Unexpected character in attribute value", LogLines().front());
}

TEST_F(PopulateContainerFromFile, GivesBackItsDescriptorsWhateverHappens) {
  const std::string gzip = Gzip(Schema(Class("A")));
  const std::string paths[] = {
      Write("good.xml", Schema(Class("A"))),
      Write("good.gz", gzip),
      Write("bad.xml", "bad"),
      Write("bad.gz", gzip.substr(0, gzip.size() - 9)),
      Write("short.gz", "\x1F\x8B"),
      Write("magic.gz", "magic"),
      Write("long.gz", WithLength(gzip, 1)),
      fDir.WriteGzipFile("bad.xml.gz", "bad"),
      Write("large.gz", WithLength(gzip, kMaxDocumentSize + 1)),
  };
  ReadStatus(paths[0]);
  const std::size_t before = CountOpenDescriptors();
  for (const std::string& path : paths) ReadStatus(path);
  EXPECT_EQ(before, CountOpenDescriptors());
}

}  // namespace
