#include "frontend/Inventory.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>

#include <algorithm>
#include <filesystem>
#include <new>
#include <optional>

#include "frontend/Descriptor.h"
#include "frontend/DocumentText.h"
#include "frontend/ExitCode.h"
#include "frontend/Log.h"
#include "frontend/NearMatch.h"
#include "frontend/RunRecord.h"
#include "frontend/ValueText.h"
#include "zelcore/zelcore.h"

namespace zel {
namespace {

constexpr const char* kFirstSections[] = {"System",           "Firmware",   "Boards", "Chassis",
                                          "Operating system", "Processors", "Memory"};
constexpr const char* kLastSections[] = {"Product", "Links", kCollectionSection};
constexpr char kNoSection[] = "Other";

// Where a section comes: the first ones, then those that have no place of their own, then the last.
std::ptrdiff_t PlaceOf(const std::string& section) {
  const auto first = std::find(std::begin(kFirstSections), std::end(kFirstSections), section);
  if (first != std::end(kFirstSections)) return first - std::begin(kFirstSections);
  const auto last = std::find(std::begin(kLastSections), std::end(kLastSections), section);
  return static_cast<std::ptrdiff_t>(std::size(kFirstSections)) +
         (last == std::end(kLastSections) ? 0 : 1 + (last - std::begin(kLastSections)));
}

std::string SectionOf(const TCIMClass& cls) {
  const std::string section = TextOf(cls.FindQualifier("SECTION"));
  return section.empty() ? kNoSection : section;
}

std::vector<TSection> SectionsOf(const TContainer& container) {
  std::map<std::pair<std::ptrdiff_t, std::string>, std::vector<TCIMClass*>> found;
  for (TCIMClass* cls : container.GetRootClass()->EnumerateSubClasses(true)) {
    if (cls->IsAbstract()) continue;
    const std::string section = SectionOf(*cls);
    found[{PlaceOf(section), section}].push_back(cls);
  }
  std::vector<TSection> sections;
  for (auto& [place, classes] : found) {
    std::sort(classes.begin(), classes.end(),
              [](const TCIMClass* a, const TCIMClass* b) { return a->GetName() < b->GetName(); });
    sections.push_back({place.second, std::move(classes)});
  }
  return sections;
}

void AddConcrete(TCIMClass* cls, std::vector<TCIMClass*>& classes) {
  if (!cls->IsAbstract() && std::find(classes.begin(), classes.end(), cls) == classes.end()) {
    classes.push_back(cls);
  }
}

std::vector<TCIMInstance*> InstancesOf(const TContainer& container, const char* className) {
  const TCIMClass* cls = container.FindClass(className);
  return cls ? cls->EnumerateInstances(false) : std::vector<TCIMInstance*>();
}

// Whether the plug-in answered.
bool IsAnswer(const TCIMInstance& status) { return TextOf(status, "Status") == "0"; }

// The library takes a document for compressed when ".gz" stands anywhere in its path. Opens one of
// which that is not true, so that it is read as what it is; none otherwise, and none when a name in
// .gz promises what it does not hold.
TDescriptor OpenAsItIs(const std::string& path) {
  const bool isGzip = IsGzip(path);
  const bool isTakenForGzip = path.find(".gz") != std::string::npos;
  if (isGzip == isTakenForGzip || EndsIn(path, ".gz")) return TDescriptor();
  if (!isGzip) return TDescriptor(open(path.c_str(), O_RDONLY | O_CLOEXEC));
  return KeepText(Unpack(path).text);
}

// Why the library could not read the document: in words what kept it from the text, else what it
// logged, or threw.
std::string WhyUnreadable(const std::string& path, const std::exception& error) {
  std::error_code failure;
  if (std::filesystem::file_size(path, failure) == 0) return "it is empty";
  if (EndsIn(path, ".gz") && !IsGzip(path)) return TextOf(TRule::kGzipName);
  const std::optional<TRule> fault = Unpack(path).fault;
  if (fault) return TextOf(*fault);
  const std::string why = WhyFailed(error);
  // What gzip itself forgives, such as bytes after the end.
  if (IsGzip(path) && why.rfind("Couldn't read file ", 0) == 0) return TextOf(TRule::kGzipDamaged);
  return why;
}

void ReadFile(TContainer& container, const TInput& input) {
  input.RequireFile("'zel collect -o FILE' saves a collection");
  const auto refuse = [&](const std::string& why) {
    throw TCommandError(kExitBadInput,
                        Printable(fmt::format("cannot read '{}': {}; 'zel validate' tells more",
                                              input.GetTitle(), why)));
  };
  TLogger::GetInstance()->ClearLog();
  try {
    const TDescriptor open = OpenAsItIs(input.GetPath());
    container.PopulateContainerFromFile(open ? PathOf(open) : input.GetPath());
  } catch (const std::bad_alloc& error) {
    refuse(WhyFailed(error));  // there is no room to find out more
  } catch (const std::exception& error) {
    refuse(WhyUnreadable(input.GetPath(), error));
  }
}

}  // namespace

TInventory::TInventory(std::unique_ptr<TContainer> read, std::unique_ptr<TCollection> collection,
                       std::string title)
    : fRead(std::move(read)),
      fCollection(std::move(collection)),
      fContainer(fRead ? fRead.get() : &fCollection->GetContainer()),
      fTitle(std::move(title)),
      fSections(SectionsOf(*fContainer)) {}

TInventory TInventory::Collect(const TCollectionOptions& options,
                               const std::vector<std::string>& names) {
  TInventory inventory(nullptr, std::make_unique<TCollection>(options), "this machine");
  inventory.fCollection->Collect(names.empty() ? inventory.AllClasses() : inventory.Resolve(names));
  inventory.FindRun();
  return inventory;
}

TInventory TInventory::Collect(const TCollectionOptions& options,
                               const std::function<bool(const TCIMClass&)>& isWanted) {
  TInventory inventory(nullptr, std::make_unique<TCollection>(options), "this machine");
  std::vector<TCIMClass*> classes = inventory.AllClasses();
  const auto isUnwanted = [&](const TCIMClass* cls) { return !isWanted(*cls); };
  classes.erase(std::remove_if(classes.begin(), classes.end(), isUnwanted), classes.end());
  inventory.fCollection->Collect(classes);
  inventory.FindRun();
  return inventory;
}

TInventory TInventory::Declare(const TCollectionOptions& options) {
  return TInventory(nullptr, std::make_unique<TCollection>(options), "this machine");
}

TInventory TInventory::Read(const TInput& input, const std::vector<std::string>& bases) {
  StartLog("", zelLogStatus);
  auto container = std::make_unique<TContainer>();
  for (const std::string& base : bases) ReadFile(*container, base);
  ReadFile(*container, input);
  TInventory inventory(std::move(container), nullptr, input.GetTitle());
  inventory.FindRun();
  return inventory;
}

TInventory TInventory::Open(const std::string& file, const TCollectionOptions& options,
                            const std::vector<std::string>& names) {
  if (file.empty()) return Collect(options, names);
  return options.baseSchema.empty() ? Read(file) : Read(file, {options.baseSchema});
}

void TInventory::FindRun() {
  const std::vector<TCIMInstance*> runs = InstancesOf(*fContainer, kRunClass);
  fRun = runs.empty() ? nullptr : runs.front();
  fStatuses.clear();
  fStatusOf.clear();
  for (const TCIMInstance* status : InstancesOf(*fContainer, kStatusClass)) {
    fStatuses.push_back(status);
    const TCIMProperty* asked = status->FindProperty("Classes");
    if (!asked || !asked->IsArray() || asked->GetValue().IsNull()) continue;
    const TCIMValue value = asked->GetValue();
    const std::vector<TCIMValue>& names = value;
    for (const TCIMValue& name : names) {
      if (name.IsNull()) continue;
      const TCIMInstance*& known = fStatusOf[Folded(name.ToString(10))];
      if (!known || IsAnswer(*status)) known = status;
    }
  }
  fIsRedacted = fRun && FlagOf(*fRun, "IsRedacted");
}

std::vector<TCIMClass*> TInventory::AllClasses() const {
  std::vector<TCIMClass*> all;
  for (const TSection& section : fSections) {
    all.insert(all.end(), section.classes.begin(), section.classes.end());
  }
  return all;
}

std::vector<TCIMClass*> TInventory::Resolve(const std::vector<std::string>& names) const {
  std::vector<TCIMClass*> classes;
  for (const std::string& name : names) {
    const auto section = std::find_if(fSections.begin(), fSections.end(), [&](const TSection& s) {
      return Folded(s.name) == Folded(name);
    });
    if (section != fSections.end()) {
      for (TCIMClass* cls : section->classes) AddConcrete(cls, classes);
    } else if (TCIMClass* cls = FindClass(*fContainer, name)) {
      AddConcrete(cls, classes);
      for (TCIMClass* sub : cls->EnumerateSubClasses(true)) AddConcrete(sub, classes);
    } else {
      throw TCommandError(kExitUsage, UnknownName(name));
    }
  }
  return classes;
}

std::string TInventory::UnknownName(const std::string& name) const {
  std::vector<std::string> names;
  for (const TSection& section : fSections) {
    names.push_back(section.name);
    for (const TCIMClass* cls : section.classes) names.push_back(cls->GetName());
  }
  const std::string meant = DidYouMean(name, names);
  return Printable(fmt::format("no class or section '{}'{} 'zel schema' lists them", name,
                               meant.empty() ? ";" : meant));
}

bool TInventory::IsPartial() const { return fRun && FlagOf(*fRun, "IsPartial"); }
bool TInventory::IsRedacted() const { return fIsRedacted; }

void TInventory::SetRedacted(std::string title) {
  fTitle = std::move(title);
  FindRun();
  fIsRedacted = true;
  const TCIMProperty* mark = fRun ? fRun->FindProperty("IsRedacted") : nullptr;
  if (mark && mark->GetType() == TCIMValue::TCIMType::TypeBoolean) {
    fRun->SetPropertyValue("IsRedacted", true);
  }
}

const TCIMInstance* TInventory::FindStatus(const TCIMClass& cls) const {
  const auto found = fStatusOf.find(Folded(cls.GetName()));
  return found == fStatusOf.end() ? nullptr : found->second;
}

bool TInventory::WasCollected(const TCIMClass& cls) const {
  const TCIMClass* own = FindClass(*fContainer, cls.GetName());
  if (!own) return false;
  const std::string& name = own->GetName();
  if (fStatuses.empty() || name == kRunClass || name == kStatusClass) return true;
  const TCIMInstance* status = FindStatus(cls);
  return status && IsAnswer(*status);
}

TCIMClass* FindClass(const TContainer& container, const std::string& name) {
  try {
    return name.empty() ? nullptr : container.FindClass(name);
  } catch (const TZELException&) {
    return nullptr;
  }
}

std::string Folded(const std::string& name) {
  std::string folded;
  for (const char c : name) {
    if (c != ' ') folded += 'A' <= c && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  }
  return folded;
}

void ReportFailures(const TInventory& inventory, std::ostream& err) {
  for (const TCIMInstance* status : inventory.GetStatuses()) {
    const std::string reason = TextOf(*status, "Message");
    if (reason.empty()) continue;
    const std::string name = TextOf(*status, "PluginName");
    err << "zel: "
        << Printable(
               inventory.IsSaved()
                   ? fmt::format("{}: plug-in {} failed: {}", inventory.GetTitle(), name, reason)
                   : fmt::format("plug-in {} failed: {}; 'zel plugins' tells its state", name,
                                 reason))
        << "\n";
  }
}

std::string TextOf(const TCIMInstance& instance, const char* property,
                   const std::string& otherwise) {
  const TCIMProperty* found = instance.FindProperty(property);
  return found && !found->GetValue().IsNull() ? found->GetValue().ToString(10) : otherwise;
}

bool FlagOf(const TCIMInstance& instance, const char* property) {
  const TCIMProperty* found = instance.FindProperty(property);
  if (!found || found->GetType() != TCIMValue::TCIMType::TypeBoolean) return false;
  const TCIMValue value = found->GetValue();
  return !value.IsNull() && !value.IsArray() && static_cast<bool>(value);
}

bool EndsIn(const std::string& text, const std::string& end) {
  return text.size() > end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

std::string TakeFile(std::vector<std::string>& arguments) {
  if (arguments.empty()) return "";
  const std::string first = arguments.front();
  struct stat status = {};
  const bool isFile = first == "-" || first.find('/') != std::string::npos ||
                      EndsIn(first, ".xml") || EndsIn(first, ".gz") ||
                      stat(first.c_str(), &status) == 0;
  if (!isFile) return "";
  arguments.erase(arguments.begin());
  return first;
}

}  // namespace zel
