#include <fmt/format.h>
#include <string.h>

#include <cstdint>
#include <filesystem>

#include "frontend/Commands.h"
#include "frontend/DocumentText.h"
#include "frontend/ExitCode.h"
#include "frontend/FTPTarget.h"
#include "frontend/Inventory.h"
#include "frontend/Log.h"
#include "frontend/Options.h"
#include "frontend/PluginHost.h"
#include "frontend/ValueText.h"
#include "zelcore/zelcore.h"

namespace zel {
namespace {

constexpr char kEnding[] = ".xml.gz";  // the library gives it to every name

struct THint {
  const char* reason;
  const char* hint;
};

// What to try, by a part of the reason; the last is for all others.
constexpr THint kHints[] = {
    {"curl library:",
     "install libcurl so that the loader finds libcurl.so (on Debian libcurl4-openssl-dev)"        },
    {"connecting",     "check the host and the port, and that a server listens there"              },
    {"did not answer", "try again, with a longer --timeout for a large file or a slow line"        },
    {"",               "check that the directory is there and that anonymous users may write to it"},
};

const char* HintFor(const std::string& reason) {
  const THint* row = kHints;
  while (reason.find(row->reason) == std::string::npos) ++row;
  return row->hint;
}

// Tells what a person should know before the file leaves the machine.
void Warn(const TInput& input, std::ostream& err) {
  const std::string file = Printable(input.GetTitle());
  if (!IsGzip(input.GetPath())) {
    err << fmt::format("zel: '{}' is not compressed, though its name on the server says so\n",
                       file);
  }
  try {
    const TInventory inventory = TInventory::Read(input);
    if (inventory.GetRun()) {
      if (!inventory.IsRedacted()) {
        err << fmt::format(
            "zel: '{}' is not redacted: it holds names, serial numbers and what else "
            "is sensitive; 'zel collect --redact' hides them\n",
            file);
      }
      return;
    }
  } catch (const TCommandError&) {
    // No document at all.
  }
  err << fmt::format("zel: '{}' is no saved collection: nothing tells whether it is redacted\n",
                     file);
}

class TUploadCommand : public TCommand {
 public:
  explicit TUploadCommand(CLI::App& options) {
    AddFile(options, "FILE", fFile, "A saved collection, - for standard input")->required();
    options.add_option("--to", fURL, "Where to: ftp://HOST[:PORT]/DIRECTORY/")
        ->type_name("URL")
        ->required();
    options.add_option("--name", fName, "Its name there (default: that of the file)")
        ->type_name("NAME");
    options.add_flag("--dry-run", fIsDryRun, "Do everything but send");
    AddSeconds(options, "--timeout", fDeadline, "Give up after this long (default 60)");
  }

  TExitCode Run(TStreams& streams) override {
    const TFTPTarget target = ParseFTPTarget(fURL);
    const std::string name = RemoteName();
    const TInput input(fFile);
    input.RequireFile("'zel collect -o FILE' saves a collection");
    const std::uintmax_t size = std::filesystem::file_size(input.GetPath());
    if (size == 0) {  // as when what should have written it has failed
      throw TCommandError(kExitBadInput,
                          fmt::format("'{}' is empty; nothing was sent", input.GetTitle()));
    }
    Warn(input, streams.err);
    streams.out << fmt::format(
        "file       {} ({})\n"
        "host       {}{}\n"
        "directory  {}\n"
        "name       {}\n",
        Printable(input.GetTitle()), BytesText(size), target.host,
        target.port.empty() ? "" : ", port " + target.port,
        target.directory.empty() ? "that of the login" : Printable(target.directory),
        Printable(name + kEnding));
    if (fIsDryRun) {
      streams.out << "not sent   --dry-run\n";
      return kExitDone;
    }
    streams.out.flush();
    Send(input.GetPath(), target, name);
    streams.out << "sent\n";
    return kExitDone;
  }

 private:
  // Without the ending that the library adds.
  std::string RemoteName() const {
    if (fFile == "-" && fName.empty()) {
      throw TCommandError(kExitUsage, "standard input has no name; give it one with --name");
    }
    std::string name = fName.empty() ? fFile.substr(fFile.rfind('/') + 1) : fName;
    for (const char* ending : {kEnding, ".xml", ".gz"}) {
      if (!EndsIn(name, ending)) continue;
      name.resize(name.size() - strlen(ending));
      break;
    }
    RequireFileName(name);
    return name;
  }

  // In a child process: the library waits as long as the server does.
  void Send(const std::string& path, const TFTPTarget& target, const std::string& name) const {
    StartLog("", zelLogStatus);
    const std::string port = target.port.empty() ? "" : ":" + target.port;
    TOSSpecific::SetFTPTarget(target.host + port, PercentEncoded(target.directory));
    std::string encoded = PercentEncoded(name);
    const TPluginOutcome outcome = RunInChild(
        path, fDeadline,
        [&](TPluginOutcome& answer) {
          TLogger::GetInstance()->ClearLog();
          try {
            TOSSpecific::FTPFile(path, encoded);
          } catch (const TZELException&) {
            answer.log.push_back({zelLogError, FirstLoggedError()});
            throw;
          }
        },
        [] {});
    if (outcome.fault.empty()) return;
    const std::string reason =
        outcome.log.empty() ? "the transfer " + outcome.fault : outcome.log.front().text;
    throw TCommandError(
        kExitNotSent, Printable(fmt::format("the upload failed: {}; {}", reason, HintFor(reason))));
  }

  std::string fFile;
  std::string fURL;
  std::string fName;
  bool fIsDryRun = false;
  std::chrono::milliseconds fDeadline{60000};
};

}  // namespace

std::unique_ptr<TCommand> MakeUploadCommand(CLI::App& options) {
  return std::make_unique<TUploadCommand>(options);
}

}  // namespace zel
