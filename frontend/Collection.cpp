#include "frontend/Collection.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <string.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <set>
#include <sstream>

#include "frontend/ExitCode.h"
#include "frontend/Input.h"
#include "frontend/Locations.h"
#include "frontend/Log.h"
#include "frontend/Progress.h"
#include "frontend/RunRecord.h"
#include "zelcore/zelcore.h"

namespace zel {
namespace {

namespace fs = std::filesystem;
using TSteady = std::chrono::steady_clock;

void Stamp(TCIMClass& cls, const char* qualifier, const std::string& value) {
  const TCIMQualifierDecl* decl = cls.GetContainer()->FindQualifierDecl(qualifier);
  if (!decl || cls.FindQualifier(qualifier)) return;
  auto stamp = std::make_unique<TCIMQualifier>(*decl, TCIMValue(value));
  cls.AddQualifier(*stamp);
  stamp.release();
}

}  // namespace

TCollection::TCollection(const TCollectionOptions& options)
    : fOptions(options), fStart(std::chrono::system_clock::now()), fSteadyStart(TSteady::now()) {
  StartLog(options.logFile, options.logLevel);
  const TLocations defaults = DefaultLocations();
  fBaseSchema = options.baseSchema.empty() ? defaults.baseSchema : options.baseSchema;
  FindPlugins(options.pluginDirectory.empty() ? defaults.pluginDirectory : options.pluginDirectory);
  ReadDocuments();
  PutSystemFirst();
}

TCollection::~TCollection() = default;

void TCollection::FindPlugins(const std::string& directory) {
  fDirectory = TDescriptor(open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (!fDirectory) {
    throw TCommandError(kExitBadInput,
                        fmt::format("cannot read the plug-in directory '{}': {}; name another with "
                                    "--plugin-dir",
                                    directory, strerror(errno)));
  }
  // A document's name is made by taking "lib" out of the whole path of its plug-in, so the library
  // is given a path to the directory in which there is none.
  const std::string handed = PathOf(fDirectory);
  for (const std::string& path : TOSSpecific::FindPlugins(handed)) {
    fPlugins.push_back({path, directory + path.substr(handed.size()), "", {}});
  }
  if (fPlugins.empty()) {
    throw TCommandError(kExitNoPlugins,
                        fmt::format("no plug-ins in '{}': it needs <name>/lib<name>.pi.so; name "
                                    "another directory with --plugin-dir",
                                    directory));
  }
  std::sort(fPlugins.begin(), fPlugins.end(),
            [](const TFoundPlugin& a, const TFoundPlugin& b) { return a.path < b.path; });
  TPluginManager::Initialize(handed);
  fManager.reset(TPluginManager::GetInstance());
  if (!TQueryManager::GetInstance()) TQueryManager::Initialize();
  fSchema = fManager->GetSchema();
}

void TCollection::ReadDocuments() {
  ILogger& log = *TLogger::GetInstance();
  const auto refuseBase = [this](const std::string& why) {
    throw TCommandError(
        kExitBadInput, fmt::format("cannot read the base schema '{}': {}; name another with --base",
                                   fBaseSchema, why));
  };
  if (access(fBaseSchema.c_str(), R_OK) != 0) refuseBase(strerror(errno));
  log.ClearLog();
  try {
    fSchema->PopulateContainerFromFile(fBaseSchema);
  } catch (const std::exception& error) {
    refuseBase(WhyFailed(error));
  }
  std::set<std::string> read;
  for (TFoundPlugin& plugin : fPlugins) {
    try {
      plugin.document = TOSSpecific::BuildSpecificationPath(plugin.path);
      if (read.insert(plugin.document).second) {
        plugin.classes = fSchema->PopulateContainerFromFile(plugin.document);
      }
    } catch (const std::exception&) {
      plugin.document.clear();  // the plug-in's own process meets the same fault and reports it
    }
  }
  for (const char* name : {kRunClass, kStatusClass}) {
    if (!fSchema->FindClass(name)) refuseBase(fmt::format("it does not declare {}", name));
  }
  log.ClearLog();
}

void TCollection::PutSystemFirst() {
  const auto system = std::find_if(fPlugins.begin(), fPlugins.end(), [](const TFoundPlugin& p) {
    return std::any_of(p.classes.begin(), p.classes.end(), [](const TCIMClass* cls) {
      return cls->GetName() == TCIMSchemaHelper::kSystemCreationClassName;
    });
  });
  if (system != fPlugins.end()) std::rotate(fPlugins.begin(), system, system + 1);
}

void TCollection::Collect(const std::vector<TCIMClass*>& classes) {
  std::vector<TQuestion> questions;
  for (const TFoundPlugin& plugin : fPlugins) {
    std::vector<std::string> names;
    for (TCIMClass* cls : plugin.classes) {
      const bool wanted = std::find(classes.begin(), classes.end(), cls) != classes.end() ||
                          cls->GetName() == TCIMSchemaHelper::kSystemCreationClassName;
      if (wanted) names.push_back(cls->GetName());
    }
    // A plug-in without a document that could be read is run to learn what is wrong with it.
    if (names.empty() && !plugin.document.empty()) continue;
    questions.push_back({&plugin, std::move(names)});
  }
  AskAll("collecting", questions);
  RecordRun(*fSchema, fOutcomes, fStart,
            std::chrono::duration_cast<std::chrono::microseconds>(TSteady::now() - fSteadyStart));
}

void TCollection::Probe() {
  std::vector<TQuestion> questions;
  for (const TFoundPlugin& plugin : fPlugins) questions.push_back({&plugin, {}});
  AskAll("loading", questions);
}

void TCollection::AskAll(const char* what, const std::vector<TQuestion>& questions) {
  TProgress progress(fOptions.progress);
  for (const TQuestion& question : questions) {
    const std::string name = fs::path(question.plugin->display).parent_path().filename();
    const std::string line = fmt::format("{}: {} ({} of {})", what, name,
                                         &question - questions.data() + 1, questions.size());
    Ask(question, [&] { progress.Show(line); });
  }
}

void TCollection::Ask(const TQuestion& question, const std::function<void()>& tick) {
  const TSteady::time_point start = TSteady::now();
  TPluginOutcome outcome = RunInChild(
      question.plugin->display, fOptions.deadline,
      [&](TPluginOutcome& answer) { Work(*question.plugin, question.classNames, answer); }, tick);
  outcome.classes = question.classNames;
  outcome.duration = std::chrono::duration_cast<std::chrono::microseconds>(TSteady::now() - start);
  Keep(*question.plugin, std::move(outcome));
}

// In the child: loads the plug-in into a manager of its own, which knows the other documents and
// the system, and asks it for `classNames`.
void TCollection::Work(const TFoundPlugin& plugin, const std::vector<std::string>& classNames,
                       TPluginOutcome& outcome) {
  ILogger& log = *TLogger::GetInstance();
  TPluginManager::Initialize(fManager->GetPluginManagerPath());
  TPluginManager& manager = *TPluginManager::GetInstance();
  TContainer& schema = *manager.GetSchema();
  schema.PopulateContainerFromFile(fBaseSchema);
  for (const TFoundPlugin& other : fPlugins) {
    if (!other.classes.empty() && other.document != plugin.document) {
      schema.PopulateContainerFromFile(other.document);
    }
  }
  if (!fSystem.empty()) ReadInstances(schema, fSystem);
  log.ClearLog();

  try {
    manager.LoadPlugin(plugin.path);
  } catch (const TZELException& error) {
    if (FirstLoggedError().empty()) outcome.fault = fmt::format("its document: {}", error.what());
  }
  if (!classNames.empty()) TQueryManager::GetInstance()->RunQuery(&schema, classNames);

  std::vector<TCIMInstance*> instances;
  for (const boost::shared_ptr<IPlugin>& record : manager.GetPluginsContainer()) {
    IPluginCallbacks* callbacks = record->GetCallbacks();
    if (!callbacks) continue;
    TPluginRecord said{
        callbacks->GetName(), callbacks->GetVersion(), callbacks->GetInterfaceVersion(),
        callbacks->GetType(), record->IsInitialized(), false};
    try {
      for (const TCIMClass* cls : record->GetClassesCollected()) {
        const std::vector<TCIMInstance*> found = cls->EnumerateInstances(false);
        instances.insert(instances.end(), found.begin(), found.end());
      }
      said.documentRead = true;
    } catch (const TZELException&) {
      // No document was read; the record says so.
    }
    outcome.records.push_back(said);
  }
  for (const ILogger::TLogEntry& entry : log.GetLog()) {
    outcome.log.push_back({entry.severity, entry.message});
  }
  if (!classNames.empty()) {
    std::ostringstream document;
    TCIMXMLWriter(document).WriteInstances(instances);
    outcome.instances = document.str();
  }
}

// In the parent: takes over what the child found.
void TCollection::Keep(const TFoundPlugin& plugin, TPluginOutcome outcome) {
  if (!outcome.records.empty()) {
    for (TCIMClass* cls : plugin.classes) {
      Stamp(*cls, "PLUGINNAME", outcome.records.front().name);
      Stamp(*cls, "PLUGINVERSION", outcome.records.front().version);
    }
  }
  if (!outcome.instances.empty()) {
    try {
      ReadInstances(*fSchema, outcome.instances);
      if (&plugin == &fPlugins.front()) fSystem = outcome.instances;
      for (const TCIMClass* cls : plugin.classes) {
        outcome.instanceCount += cls->EnumerateInstances(false).size();
      }
    } catch (const std::exception& error) {
      outcome.fault = fmt::format("its instances cannot be read back: {}", error.what());
    }
  }
  outcome.instances.clear();
  if (!outcome.fault.empty()) {
    TLogger::GetInstance()->OutputLogEntry(
        nullptr, zelLogError, fmt::format("Plugin {} {}", outcome.Name(), outcome.fault));
  }
  fOutcomes.push_back(std::move(outcome));
}

void TCollection::ReadInstances(TContainer& container, const std::string& document) const {
  container.PopulateContainerFromFile(PathOf(KeepText(document)));
}

bool TCollection::IsPartial() const {
  return std::any_of(fOutcomes.begin(), fOutcomes.end(),
                     [](const TPluginOutcome& outcome) { return outcome.Failed(); });
}

}  // namespace zel
