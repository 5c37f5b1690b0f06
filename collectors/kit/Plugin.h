#pragma once

#include <algorithm>
#include <new>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "collectors/kit/Record.h"
#include "zelcore/zel.h"

// Makes a plug-in of a class that scans and a table of functions that publish:
//
//   struct TFans {
//     static constexpr const char* kName = "fans";
//     using TFindings = std::vector<TFan>;
//     static TFindings Scan(const kit::TLog& log);
//     static constexpr kit::TPublisher<TFindings> kPublishers[] = {
//         {"KVRSG_Fan", PublishFans},
//     };
//   };
//   const kit::TPlugin<TFans> fans;  // registers while the library is being loaded
namespace kit {

// The plug-in's voice in the log.
class TLog {
 public:
  explicit TLog(TCPluginCallbacks* plugin) : fPlugin(plugin) {}

  void Error(const std::string& text) const { Write(zelLogError, text); }
  void Warning(const std::string& text) const { Write(zelLogWarning, text); }
  void Debug(const std::string& text) const { Write(zelLogDebug, text); }

 private:
  void Write(zelLogSeverity severity, const std::string& text) const {
    zelWriteLog(fPlugin, severity, text.c_str());
  }

  TCPluginCallbacks* fPlugin;
};

// Adds all instances of one class.
template <class TFindings>
struct TPublisher {
  const char* className;
  zelStatusCode (*publish)(zelIOHandle* out, const TFindings& findings);
};

template <class TCollector>
class TPlugin {
 public:
  TPlugin() {
    zelPluginCallbacks callbacks = {nullptr, Succeed, Succeed, GetData, GetInfo, Succeed};
    TCPluginCallbacks* plugin = nullptr;  // every callback is given it again
    zelRegisterPlugin(&callbacks, &plugin);
  }

 private:
  using TFindings = typename TCollector::TFindings;

  static zelStatusCode Succeed(TCPluginCallbacks*) { return zelStatusOK; }

  static zelPluginInfo GetInfo(TCPluginCallbacks*) {
    return {TCollector::kName, ZEL_VERSION, "1.0", 0, 0};
  }

  // No exception may pass into the library's C frames.
  static zelStatusCode GetData(TCPluginCallbacks* plugin, zelIOHandle* handle,
                               const char** classNames, int count) {
    const TLog log(plugin);
    try {
      return Publish(log, handle, std::vector<std::string>(classNames, classNames + count));
    } catch (const std::bad_alloc&) {
      return zelStatusOutOfMemory;
    } catch (const std::exception& failure) {
      log.Error(failure.what());
    } catch (...) {
      log.Error("unknown exception");
    }
    return zelStatusFail;
  }

  static zelStatusCode Publish(const TLog& log, zelIOHandle* handle,
                               const std::vector<std::string>& classNames) {
    for (const std::string& name : classNames) {
      for (const TPublisher<TFindings>& publisher : TCollector::kPublishers) {
        if (name != publisher.className) continue;
        const zelStatusCode status = publisher.publish(handle, FindingsFor(name, log));
        if (status != zelStatusOK) return status;
      }
    }
    return zelStatusOK;
  }

  // One scan serves every class once, ordinary classes and associations. A class that is asked for
  // again belongs to a new collection.
  static const TFindings& FindingsFor(const std::string& className, const TLog& log) {
    static std::optional<TFindings> findings;
    static std::vector<std::string> served;
    if (!findings || std::find(served.begin(), served.end(), className) != served.end()) {
      served.clear();
      findings = TCollector::Scan(log);
    }
    served.push_back(className);
    return *findings;
  }
};

}  // namespace kit
