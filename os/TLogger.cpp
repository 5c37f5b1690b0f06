#include "zelcore/TLogger.h"

#include <errno.h>

#include <iterator>
#include <locale>

#include "zelcore/IPlugin.h"
#include "zelcore/IPluginCallbacks.h"
#include "zelcore/TOSSpecific.h"
#include "zelcore/detail/Fail.h"

using zelcore::detail::Fail;

namespace {

constexpr const char* kTags[] = {"[Error] ", "[Warning] ", "[Status] ", "[Debug] ", "[Verbose] "};
constexpr const char* kOpenedBanner = "-- VNT Log Opened ----------------------------\n";
constexpr const char* kClosedBanner = "-- VNT Log Closed ----------------------------\n";
constexpr int kMaxDumpLength = 10240;

// What stands before the tag. A plug-in is asked for its name anew for every line; one that logs
// while it answers gets lines without a name instead of endless questions.
std::string Prefix(IPlugin const* plugin) {
  static bool asking = false;
  if (!plugin) return "ZEL_Core: ";
  IPluginCallbacks* callbacks = plugin->GetCallbacks();  // null after the plug-in was unloaded
  if (asking || !callbacks) return "ZEL_: ";

  struct TAsking {
    TAsking() { asking = true; }
    ~TAsking() { asking = false; }
  } scope;
  return "ZEL_" + callbacks->GetName() + ": ";
}

std::string Tag(zelLogSeverity severity) {
  if (static_cast<unsigned int>(severity) >= std::size(kTags)) Fail(zelStatusFail);
  return kTags[severity];
}

std::string Dump(void const* data, int length) {
  constexpr char kDigits[] = "0123456789abcdef";
  const auto* bytes = static_cast<const unsigned char*>(data);
  std::string dump;
  for (int i = 0; i < length; ++i) {
    dump += {kDigits[bytes[i] >> 4], kDigits[bytes[i] & 15], ' '};
  }
  return dump;
}

}  // namespace

TLogger* TLogger::fgInstance = nullptr;

int TLogger::Initialize() {
  fgInstance = new TLogger;
  return 0;
}

TLogger* TLogger::GetInstance() { return fgInstance; }

TLogger::TLogger() : fThreshold(zelLogStatus) { fLogFile.imbue(std::locale::classic()); }

TLogger::~TLogger() {
  if (!fLogFilename.empty()) fLogFile << kClosedBanner;
  if (fgInstance == this) fgInstance = nullptr;
}

void TLogger::OutputLogEntry(IPlugin const* plugin, zelLogSeverity severity,
                             const std::string& message) {
  if (severity != zelLogMemoryOnly && severity > fThreshold) return;
  Accept(plugin, severity, message);
}

void TLogger::OutputLogEntry(IPlugin const* plugin, zelLogSeverity severity, void const* data,
                             int length) {
  if (length > kMaxDumpLength) {
    OutputLogEntry(nullptr, zelLogError, "Too much data to log--10k limit!");
    return;
  }
  if (severity == zelLogMemoryOnly) return;  // sic: dumps are not kept in memory only, unlike texts
  if (severity > fThreshold) return;
  Accept(plugin, severity, Dump(data, length));
}

// Remembers and writes a message that has passed the threshold.
void TLogger::Accept(IPlugin const* plugin, zelLogSeverity severity, const std::string& message) {
  // sic: a negative severity is remembered before Tag() refuses it.
  if (severity <= zelLogDebug || severity == zelLogMemoryOnly) {
    fLog.push_back({plugin, severity, message, TOSSpecific::GetLocalTime()});
  }
  if (severity == zelLogMemoryOnly) return;

  std::string line = Prefix(plugin);
  line.append(Tag(severity)).append(message).append("\n");
  if (fLogFilename.empty()) {
    TOSSpecific::OutputLogString(line);
  } else {
    fLogFile << line << std::flush;
  }
}

std::list<ILogger::TLogEntry>& TLogger::GetLog() { return fLog; }

void TLogger::ClearLog() { fLog.clear(); }

void TLogger::SetLogThreshold(zelLogSeverity threshold) { fThreshold = threshold; }

zelLogSeverity TLogger::GetLogThreshold() { return fThreshold; }

void TLogger::SetLogFilename(const std::string& name) {
  fLogFilename = name;  // sic: kept when the file cannot be opened; lines are lost then
  if (fLogFile.is_open()) fLogFile.close();
  errno = 0;
  fLogFile.open(name, std::ios::out | std::ios::ate);
  if (!fLogFile) Fail(errno == EACCES ? zelStatusAccessDenied : zelStatusFileSystemError);
  fLogFile << kOpenedBanner << std::flush;
}
