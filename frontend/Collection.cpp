#include "frontend/Collection.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <string.h>
#include <sys/mman.h>

#include <algorithm>
#include <cerrno>
#include <set>
#include <sstream>

#include "frontend/ExitCode.h"
#include "frontend/Locations.h"
#include "zelcore/zelcore.h"

namespace zel {
namespace {

// The text of the first error that the library logged since the log was cleared.
std::string FirstError() {
  for (const ILogger::TLogEntry& entry : TLogger::GetInstance()->GetLog()) {
    if (entry.severity <= zelLogError) return entry.message;
  }
  return "";
}

void StartLogger(const TCollectionOptions& options) {
  if (!TLogger::GetInstance()) TLogger::Initialize();
  TLogger::GetInstance()->SetLogThreshold(options.logLevel);
  if (options.logFile.empty()) return;
  try {
    TLogger::GetInstance()->SetLogFilename(options.logFile);
  } catch (const TZELException&) {
    throw TCommandError(kExitNotWritten,
                        fmt::format("cannot write the log file '{}': {}; name another with --log",
                                    options.logFile, strerror(errno)));
  }
}

void AddConcrete(TCIMClass* cls, std::vector<TCIMClass*>& classes) {
  if (!cls->IsAbstract() && std::find(classes.begin(), classes.end(), cls) == classes.end()) {
    classes.push_back(cls);
  }
}

void Stamp(TCIMClass& cls, const char* qualifier, const std::string& value) {
  const TCIMQualifierDecl* decl = cls.GetContainer()->FindQualifierDecl(qualifier);
  if (!decl || cls.FindQualifier(qualifier)) return;
  auto stamp = std::make_unique<TCIMQualifier>(*decl, TCIMValue(value));
  cls.AddQualifier(*stamp);
  stamp.release();
}

}  // namespace

TCollection::TCollection(const TCollectionOptions& options)
    : fOptions(options), fStart(std::chrono::steady_clock::now()) {
  StartLogger(options);
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
  const std::string handed = fmt::format("/proc/self/fd/{}", fDirectory.Get());
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
    const std::string why = FirstError();
    refuseBase(why.empty() ? error.what() : why);
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

std::vector<TCIMClass*> TCollection::Resolve(const std::vector<std::string>& names) const {
  std::vector<TCIMClass*> classes;
  for (const std::string& name : names) {
    TCIMClass* cls = nullptr;
    try {
      cls = name.empty() ? nullptr : fSchema->FindClass(name);
    } catch (const TZELException&) {
      // A text that cannot be a class name names no class.
    }
    if (!cls) {
      throw TCommandError(
          kExitUsage,
          fmt::format("no class '{}'; 'zel plugins' lists the classes there are", name));
    }
    AddConcrete(cls, classes);
    for (TCIMClass* sub : cls->EnumerateSubClasses(true)) AddConcrete(sub, classes);
  }
  return classes;
}

std::vector<TCIMClass*> TCollection::AllClasses() const {
  std::vector<TCIMClass*> classes;
  for (const TFoundPlugin& plugin : fPlugins) {
    for (TCIMClass* cls : plugin.classes) AddConcrete(cls, classes);
  }
  return classes;
}

void TCollection::Collect(const std::vector<TCIMClass*>& classes) {
  for (const TFoundPlugin& plugin : fPlugins) {
    std::vector<std::string> names;
    for (TCIMClass* cls : plugin.classes) {
      const bool wanted = std::find(classes.begin(), classes.end(), cls) != classes.end() ||
                          cls->GetName() == TCIMSchemaHelper::kSystemCreationClassName;
      if (wanted) names.push_back(cls->GetName());
    }
    // A plug-in without a document that could be read is run to learn what is wrong with it.
    if (names.empty() && !plugin.document.empty()) continue;
    Keep(plugin, RunInChild(plugin.display, fOptions.deadline,
                            [&](TPluginOutcome& outcome) { Work(plugin, names, outcome); }));
  }
  fDuration = std::chrono::duration_cast<std::chrono::microseconds>(
      std::chrono::steady_clock::now() - fStart);
}

void TCollection::Probe() {
  for (const TFoundPlugin& plugin : fPlugins) {
    Keep(plugin, RunInChild(plugin.display, fOptions.deadline,
                            [&](TPluginOutcome& outcome) { Work(plugin, {}, outcome); }));
  }
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
    if (FirstError().empty()) outcome.fault = fmt::format("its document: {}", error.what());
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
  const TDescriptor memory(memfd_create("zel-instances", MFD_CLOEXEC));
  const ssize_t written = write(memory.Get(), document.data(), document.size());
  if (written != static_cast<ssize_t>(document.size())) throw TZELException(zelStatusOutOfMemory);
  container.PopulateContainerFromFile(fmt::format("/proc/self/fd/{}", memory.Get()));
}

bool TCollection::IsPartial() const {
  return std::any_of(fOutcomes.begin(), fOutcomes.end(),
                     [](const TPluginOutcome& outcome) { return outcome.Failed(); });
}

}  // namespace zel
