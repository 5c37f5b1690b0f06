#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "frontend/Descriptor.h"
#include "frontend/PluginHost.h"
#include "zelcore/TContainer.h"
#include "zelcore/TPluginManager.h"
#include "zelcore/zel.h"

namespace zel {

struct TStreams;

struct TCollectionOptions {
  std::string pluginDirectory;  // empty: the default
  std::string baseSchema;       // empty: the default
  std::string logFile;          // empty: none
  zelLogSeverity logLevel = zelLogStatus;
  std::chrono::milliseconds deadline{30000};  // for each plug-in
  TStreams* progress = nullptr;               // where to tell how far it is; null: nowhere
};

// A plug-in as found on disk.
struct TFoundPlugin {
  std::string path;     // for the library: without "lib" in the directories
  std::string display;  // for people
  std::string document;
  std::vector<TCIMClass*> classes;  // what the document declares
};

// What to ask a plug-in for.
struct TQuestion {
  const TFoundPlugin* plugin;
  std::vector<std::string> classNames;
};

// One collection of this machine: the schema, the instances, and what came of every plug-in.
//
// Each plug-in works in a child process with a deadline, in the order of its name; the one that
// collects the system comes first, so that the others can ask for the system's name. One that
// crashes, hangs or fails costs its own classes and nothing else.
class TCollection {
 public:
  // Starts the library and reads the base schema and every plug-in's document. Throws
  // TCommandError.
  explicit TCollection(const TCollectionOptions& options);
  ~TCollection();

  TContainer& GetContainer() const { return *fSchema; }
  const std::vector<TFoundPlugin>& GetPlugins() const { return fPlugins; }
  const std::vector<TPluginOutcome>& GetOutcomes() const { return fOutcomes; }

  // Collects `classes` from the plug-ins that declare them, and the system with them, and puts the
  // run and the outcomes into the container.
  void Collect(const std::vector<TCIMClass*>& classes);

  // Only loads each plug-in, to see what it says of itself.
  void Probe();

  // Whether any plug-in failed.
  bool IsPartial() const;

 private:
  void FindPlugins(const std::string& directory);
  void ReadDocuments();
  void PutSystemFirst();
  void AskAll(const char* what, const std::vector<TQuestion>& questions);
  void Ask(const TQuestion& question, const std::function<void()>& tick);
  void Work(const TFoundPlugin& plugin, const std::vector<std::string>& classNames,
            TPluginOutcome& outcome);
  void Keep(const TFoundPlugin& plugin, TPluginOutcome outcome);
  void ReadInstances(TContainer& container, const std::string& document) const;

  TCollectionOptions fOptions;
  std::string fBaseSchema;
  TDescriptor fDirectory;
  std::unique_ptr<TPluginManager> fManager;
  TContainer* fSchema = nullptr;  // the manager's
  std::vector<TFoundPlugin> fPlugins;
  std::vector<TPluginOutcome> fOutcomes;
  std::string fSystem;  // the instances that the first plug-in collected
  std::chrono::system_clock::time_point fStart;
  std::chrono::steady_clock::time_point fSteadyStart;
};

}  // namespace zel
