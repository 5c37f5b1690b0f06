#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdlib.h>

#include <chrono>
#include <filesystem>
#include <string>
#include <vector>

#include "frontend/ExitCode.h"
#include "frontend/FTPTarget.h"
#include "tests/frontend/Zel.h"
#include "tests/support/FTPServer.h"
#include "tests/support/ScriptedFTPServer.h"
#include "tests/support/TempDir.h"

namespace {

namespace fs = std::filesystem;
using testing::Contains;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

// A document with a run in it, after the classes that it needs.
std::string Collection(const std::string& redacted) {
  std::string text = ReadFile(kBase);
  const std::string end = "</DECLGROUP>";
  text.insert(text.rfind(end),
              "<VALUE.OBJECT><INSTANCE CLASSNAME=\"KVRSG_CollectionRun\">"
              "<PROPERTY NAME=\"InstanceID\"><VALUE>1</VALUE></PROPERTY>"
              "<PROPERTY NAME=\"IsRedacted\"><VALUE>" +
                  redacted + "</VALUE></PROPERTY></INSTANCE></VALUE.OBJECT>");
  return text;
}

class Upload : public testing::Test {
 protected:
  Upload() {
    // libcurl would send everything to these.
    for (const char* proxy : {"ftp_proxy", "FTP_PROXY", "all_proxy", "ALL_PROXY"}) unsetenv(proxy);
  }

  TResult Send(const std::string& url, std::vector<std::string> more = {}) const {
    more.insert(more.begin(), {"upload", fFile, "--to", url});
    return Zel(more);
  }

  const TempDir fDir;
  const std::string fFile = fDir.WriteGzipFile("host.xml.gz", Collection("true"));
  const std::string fContents = ReadFile(fFile);
};

TEST_F(Upload, StoresTheFileAndSaysWhere) {
  const FTPServer server;
  fs::create_directories(server.GetDir().PathOf("in/a b#1"));
  const std::string port = server.GetHost().substr(server.GetHost().find(':') + 1);
  struct {
    const char* directory;
    std::vector<std::string> more;
    const char* stored;
    const char* says;
  } const rows[] = {
      {"/in/",          {},                     "in/host.xml.gz",  "directory  in/\nname       host.xml.gz\n"              },
      {"/in",           {"--name", "rack7"},    "in/rack7.xml.gz", "directory  in/\nname       rack7.xml.gz\n"             },
      {"/in/",          {"--name", "x.xml.gz"}, "in/x.xml.gz",     "directory  in/\nname       x.xml.gz\n"                 },
      {"",              {},                     "host.xml.gz",     "directory  that of the login\nname       host.xml.gz\n"},
      {"/in/a%20b%231",
       {"--name", "50% #?é"},
       "in/a b#1/50% #?é.xml.gz",                                 "directory  in/a b#1/\nname       50% #?é.xml.gz\n"    },
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.stored);
    const TResult result = Send("ftp://" + server.GetHost() + row.directory, row.more);
    EXPECT_EQ(0, result.code);
    EXPECT_EQ("", result.err);
    EXPECT_THAT(result.out, StartsWith("file       " + fFile + " ("));
    EXPECT_THAT(result.out, HasSubstr(")\nhost       127.0.0.1, port " + port + "\n" + row.says));
    EXPECT_THAT(result.out, testing::EndsWith("\nsent\n"));
    EXPECT_TRUE(fContents == ReadFile(server.GetDir().PathOf(row.stored)));
  }
}

TEST_F(Upload, SendsStandardInputUnderAName) {
  const FTPServer server;
  const std::string url = "ftp://" + server.GetHost() + "/";
  const TStandardInput input(ReadFile(fDir.WriteGzipFile("open.gz", Collection("false"))));
  const TResult nameless = Zel({"upload", "-", "--to", url});
  EXPECT_EQ(2, nameless.code);
  EXPECT_EQ("", nameless.out);
  EXPECT_EQ("zel: standard input has no name; give it one with --name\n", nameless.err);

  const TResult result = Zel({"upload", "-", "--to", url, "--name", "rack7"});
  EXPECT_EQ(0, result.code);
  EXPECT_THAT(result.err, StartsWith("zel: 'standard input' is not redacted: "));
  EXPECT_THAT(result.out, StartsWith("file       standard input ("));
  EXPECT_THAT(result.out, testing::EndsWith("\nsent\n"));
  EXPECT_TRUE(ReadFile(fDir.PathOf("open.gz")) == ReadFile(server.GetDir().PathOf("rack7.xml.gz")));
}

TEST_F(Upload, SendsNothingThatIsEmpty) {
  const TStandardInput input("");
  const TResult result = Zel({"upload", "-", "--to", "ftp://h/", "--name", "rack7", "--dry-run"});
  EXPECT_EQ(4, result.code);
  EXPECT_EQ("", result.out);
  EXPECT_EQ("zel: 'standard input' is empty; nothing was sent\n", result.err);
}

TEST_F(Upload, SendsNothingWhenItIsDry) {
  HeldPort port;
  port.Listen();  // and nobody answers
  const TResult result = Send("ftp://127.0.0.1:" + port.GetNumber() + "/in/", {"--dry-run"});
  EXPECT_EQ(0, result.code);
  EXPECT_EQ("", result.err);
  EXPECT_THAT(result.out, StartsWith("file       " + fFile + " ("));
  EXPECT_THAT(result.out, testing::EndsWith("\nname       host.xml.gz\nnot sent   --dry-run\n"));
}

TEST_F(Upload, WarnsOfWhatIsNotRedacted) {
  struct {
    std::string path;
    std::string warning;
  } const rows[] = {
      {fFile,                                                                  ""                  },
      {fDir.WriteGzipFile("open.xml.gz",                                       Collection("false")),
       "zel: '" + fDir.PathOf("open.xml.gz") +
           "' is not redacted: it holds names, serial numbers and what else is sensitive; 'zel "
           "collect --redact' hides them\n"},
      {fDir.WriteGzipFile("text.gz",                                                                      "text"),
       "zel: '" + fDir.PathOf("text.gz") +
           "' is no saved collection: nothing tells whether it is redacted\n"},
      {fDir.WriteFile("plain.xml", Collection("true")),
       "zel: '" + fDir.PathOf("plain.xml") +
           "' is not compressed, though its name on the server says so\n"},
      {kBase,                                                   "zel: '" + kBase +
                  "' is not compressed, though its name on the server says so\n"
                  "zel: '" +
                  kBase + "' is no saved collection: nothing tells whether it is redacted\n"                          },
  };
  for (const auto& row : rows) {
    const TResult result = Zel({"upload", row.path, "--to", "ftp://h/", "--dry-run"});
    EXPECT_EQ(0, result.code);
    EXPECT_EQ(row.warning, result.err);
  }
}

TEST_F(Upload, TellsWhyItFailedAndWhatToTry) {
  const HeldPort closed;
  TResult result = Send("ftp://127.0.0.1:" + closed.GetNumber() + "/");
  EXPECT_EQ(6, result.code);
  EXPECT_EQ(
      "zel: the upload failed: TOSSpecific|FTPFile: Error connecting to KVR Service; check the "
      "host "
      "and the port, and that a server listens there\n",
      result.err);
  EXPECT_THAT(result.out, testing::EndsWith("\nname       host.xml.gz\n"));

  ScriptedFTPServer refusing("STOR", "550 denied");
  result = Send("ftp://" + refusing.GetHost() + "/in/");
  EXPECT_EQ(6, result.code);
  EXPECT_THAT(result.err,
              StartsWith("zel: the upload failed: TOSSpecific|FTPFile: Error performing upload "
                         "command: "));
  EXPECT_THAT(result.err, HasSubstr("; check that the directory is there and that anonymous users "
                                    "may write to it\n"));
  EXPECT_THAT(refusing.GetCommands(), Contains("STOR host.xml.gz"));

  const FTPServer server;
  result = Send("ftp://" + server.GetHost() + "/nowhere/");
  EXPECT_EQ(6, result.code);
  EXPECT_THAT(result.err, HasSubstr("; check that the directory is there"));
  EXPECT_TRUE(fs::is_empty(server.GetDir().GetPath()));
}

TEST_F(Upload, GivesUpOnAServerThatSaysNothing) {
  HeldPort silent;
  silent.Listen();
  const auto start = std::chrono::steady_clock::now();
  const TResult result = Send("ftp://127.0.0.1:" + silent.GetNumber() + "/", {"--timeout", "0.5"});
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20));
  EXPECT_EQ(6, result.code);
  EXPECT_EQ(
      "zel: the upload failed: the transfer did not answer within 0.5 s; try again, with a longer "
      "--timeout for "
      "a large file or a slow line\n",
      result.err);
}

TEST_F(Upload, NeedsAFileThatCanBeRead) {
  for (const TUnreadable& row : UnreadableIn(fDir)) {
    const TResult result = Zel({"upload", row.path, "--to", "ftp://h/"});
    EXPECT_EQ(4, result.code);
    EXPECT_EQ("", result.out);
    EXPECT_EQ("zel: cannot read '" + row.path + "': " + row.reason +
                  "; 'zel collect -o FILE' saves a collection\n",
              result.err);
  }
}

TEST_F(Upload, RefusesNamesThatAreNone) {
  for (const std::string name : {"..", ".", "a/b", "a\nb", "../x.xml.gz"}) {
    const TResult result = Send("ftp://h/", {"--name", name});
    EXPECT_EQ(2, result.code);
    EXPECT_EQ("", result.out);
    EXPECT_THAT(result.err, HasSubstr("' is no place to upload to: "));
  }
}

std::string RefusalOf(const std::string& url) {
  try {
    zel::ParseFTPTarget(url);
    return "none";
  } catch (const zel::TCommandError& error) {
    EXPECT_EQ(zel::kExitUsage, error.GetExitCode());
    const std::string text = error.what();
    const std::string start = "'" + url + "' is no place to upload to: ";
    return text.compare(0, start.size(), start) == 0
               ? text.substr(start.size(), text.rfind("; see 'zel upload --help'") - start.size())
               : text;
  }
}

TEST(ParseFTPTarget, TakesHostPortAndDirectory) {
  struct {
    const char* url;
    const char* host;
    const char* port;
    const char* directory;
  } const rows[] = {
      {"ftp://h",                     "h",                 "",      ""             },
      {"ftp://h/",                    "h",                 "",      ""             },
      {"FTP://Ftp.Example-1.org/in",  "Ftp.Example-1.org", "",      "in/"          },
      {"ftp://10.0.0.1:21/in/deep/",  "10.0.0.1",          "21",    "in/deep/"     },
      {"ftp://h:65535/a%20b/%C3%A9",  "h",                 "65535", "a b/\xC3\xA9/"},
      {"ftp://h:1/%41",               "h",                 "1",     "A/"           },
      {"ftp://[::1]/x/",              "[::1]",             "",      "x/"           },
      {"ftp://[2001:db8::7]:2121/x/", "[2001:db8::7]",     "2121",  "x/"           },
      {"ftp://h/a..b/...",            "h",                 "",      "a..b/.../"    },
      {"ftp://h/a@b:c/",              "h",                 "",      "a@b:c/"       },
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.url);
    ASSERT_EQ("none", RefusalOf(row.url));
    const zel::TFTPTarget target = zel::ParseFTPTarget(row.url);
    EXPECT_EQ(row.host, target.host);
    EXPECT_EQ(row.port, target.port);
    EXPECT_EQ(row.directory, target.directory);
  }
}

TEST(ParseFTPTarget, RefusesEverythingElse) {
  const std::string scheme = "it must begin with ftp://";
  const std::string host = "it names no host";
  const std::string port = "the port must be a number from 1 to 65535";
  const std::string user = "uploads are anonymous: leave the user and the password out of --to";
  const std::string query =
      "'?', '#' and ';' have no meaning in it; as part of a name write %3F, %23, %3B";
  const std::string percent = "'%' must be followed by two hexadecimal digits";
  const std::string dots = "'.' and '..' are no names";
  const std::string empty = "a name in it is empty";
  const std::string slash = "a name in it holds a '/'";
  struct {
    const char* url;
    std::string refusal;
  } const rows[] = {
      {"",                      scheme                                  },
      {"h/in/",                 scheme                                  },
      {"ftps://h/",             scheme                                  },
      {"http://h/",             scheme                                  },
      {"ftp:/h/",               scheme                                  },
      {"ftp://",                host                                    },
      {"ftp:///in/",            host                                    },
      {"ftp://:21/",            host                                    },
      {"ftp://-h/",             host                                    },
      {"ftp://h h/",            host                                    },
      {"ftp://h%41/",           host                                    },
      {"ftp://[::1/",           host                                    },
      {"ftp://[::g]/",          host                                    },
      {"ftp://[]/",             host                                    },
      {"ftp://[127.0.0.1]/",    host                                    },
      {"ftp://h:/",             port                                    },
      {"ftp://h:0/",            port                                    },
      {"ftp://h:65536/",        port                                    },
      {"ftp://h:21x/",          port                                    },
      {"ftp://h:99999999999/",  port                                    },
      {"ftp://[::1]21/",        port                                    },
      {"ftp://me@h/",           user                                    },
      {"ftp://me:secret@h/in/", user                                    },
      {"ftp://h/in?x",          query                                   },
      {"ftp://h?x",             query                                   },
      {"ftp://h/in#x",          query                                   },
      {"ftp://h/in;type=a",     query                                   },
      {"ftp://h/%",             percent                                 },
      {"ftp://h/%4",            percent                                 },
      {"ftp://h/%4g/",          percent                                 },
      {"ftp://h/../",           dots                                    },
      {"ftp://h/a/%2e%2E/",     dots                                    },
      {"ftp://h/./",            dots                                    },
      {"ftp://h//in/",          empty                                   },
      {"ftp://h/in//",          empty                                   },
      {"ftp://h/a%2Fb/",        slash                                   },
      {"ftp://h/a%0Ab/",        "a name in it holds a control character"},
      {"ftp://h/a%00b/",        "a name in it holds a control character"},
      {"ftp://h/a%7F/",         "a name in it holds a control character"},
  };
  for (const auto& row : rows) EXPECT_EQ(row.refusal, RefusalOf(row.url)) << row.url;
  // The longest that a name can be in the DNS.
  EXPECT_EQ("none", RefusalOf("ftp://" + std::string(253, 'h')));
  EXPECT_EQ(host, RefusalOf("ftp://" + std::string(254, 'h')));
}

TEST(ParseFTPTarget, RepeatsNoPassword) {
  for (const char* url : {"http://me:secret@h/", "ftp://me:secret?x@h/", "ftp://me:secret#x@h/",
                          "ftp://me:secret/x@h/", "ftp://me:%secret@h/", "secret@h/"}) {
    EXPECT_THAT(RefusalOf(url), Not(HasSubstr("secret"))) << url;
  }
  EXPECT_EQ("'...@h/' is no place to upload to: it must begin with ftp://; see 'zel upload --help'",
            RefusalOf("http://me:secret@h/"));
}

TEST(PercentEncoded, LeavesWhatMeansItselfEverywhere) {
  EXPECT_EQ("aZ09-._~/", zel::PercentEncoded("aZ09-._~/"));
  EXPECT_EQ("%20%25%23%3F%3B%40%3A%C3%A9%2B", zel::PercentEncoded(" %#?;@:\xC3\xA9+"));
}

}  // namespace
