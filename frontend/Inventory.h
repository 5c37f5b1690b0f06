#pragma once

#include <functional>
#include <map>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "frontend/Collection.h"
#include "frontend/Input.h"

class TCIMClass;
class TCIMInstance;
class TContainer;

namespace zel {

// The section of what tells about the collection itself.
inline constexpr char kCollectionSection[] = "Collection";

// A heading for people and the classes below it.
struct TSection {
  std::string name;
  std::vector<TCIMClass*> classes;
};

// What the commands work on: a schema with instances, of this machine or from a file. Everything
// known about the collection itself stands in its KVRSG_CollectionRun and KVRSG_CollectionStatus
// instances; a document of others may have none.
class TInventory {
 public:
  // Collects the classes and sections that `names` stand for, or everything when there are none.
  // Throws TCommandError.
  static TInventory Collect(const TCollectionOptions& options,
                            const std::vector<std::string>& names = {});

  // Collects those of all classes that are wanted. Throws TCommandError.
  static TInventory Collect(const TCollectionOptions& options,
                            const std::function<bool(const TCIMClass&)>& isWanted);

  // The classes that are collected here; nothing is. Throws TCommandError.
  static TInventory Declare(const TCollectionOptions& options);

  // Reads a saved collection after the documents that it builds on.
  // Throws TCommandError (kExitBadInput) that names the file, the reason, and the line of an error
  // in the document.
  static TInventory Read(const TInput& input, const std::vector<std::string>& bases = {});

  // Reads the file, after the base schema if one is named, or collects when `file` is empty.
  static TInventory Open(const std::string& file, const TCollectionOptions& options,
                         const std::vector<std::string>& names);

  TContainer& GetContainer() const { return *fContainer; }
  bool IsSaved() const { return fRead != nullptr; }
  // Null for a file.
  const TCollection* GetCollection() const { return fCollection.get(); }
  // "this machine", or the file.
  const std::string& GetTitle() const { return fTitle; }

  // All concrete classes: the sections of the machine in the order of the summary, then others by
  // name, then "Links" and the collection itself; in a section by name.
  const std::vector<TSection>& GetSections() const { return fSections; }
  std::vector<TCIMClass*> AllClasses() const;

  // The concrete classes that `names` stand for, in the order given and each once: a class stands
  // for itself and its subclasses, a section (in any case, blanks or not: "operatingsystem") for
  // its classes. Throws TCommandError (kExitUsage) for a name that is neither.
  std::vector<TCIMClass*> Resolve(const std::vector<std::string>& names) const;

  // The instance of the run; null when the document has none.
  const TCIMInstance* GetRun() const { return fRun; }
  // The outcome of every plug-in, in the order in which they were asked.
  const std::vector<const TCIMInstance*>& GetStatuses() const { return fStatuses; }
  bool IsPartial() const;
  bool IsRedacted() const;
  // After other instances, and a title, took the place of those that told too much: marks the run.
  void SetRedacted(std::string title);

  // The outcome of the plug-in that was asked for the class; null when none was or nobody knows.
  const TCIMInstance* FindStatus(const TCIMClass& cls) const;

  // Whether the class was asked for and its plug-in answered; when the document does not say,
  // whether the class is there at all. What tells about the collection itself always was.
  bool WasCollected(const TCIMClass& cls) const;

 private:
  TInventory(std::unique_ptr<TContainer> read, std::unique_ptr<TCollection> collection,
             std::string title);
  void FindRun();
  std::string UnknownName(const std::string& name) const;

  std::unique_ptr<TContainer> fRead;         // null for this machine
  std::unique_ptr<TCollection> fCollection;  // null for a file
  TContainer* fContainer;                    // of the one that is not null
  std::string fTitle;
  std::vector<TSection> fSections;
  TCIMInstance* fRun = nullptr;
  std::vector<const TCIMInstance*> fStatuses;
  std::map<std::string, const TCIMInstance*> fStatusOf;  // by lower-case class name
  bool fIsRedacted = false;
};

// A line for each plug-in that failed.
void ReportFailures(const TInventory& inventory, std::ostream& err);

// The property's value, `otherwise` when there is none or it is NULL.
std::string TextOf(const TCIMInstance& instance, const char* property,
                   const std::string& otherwise = "");
bool FlagOf(const TCIMInstance& instance, const char* property);

// Whether `text` is something and then `end`.
bool EndsIn(const std::string& text, const std::string& end);

// The class of that name; null, too, for a text that cannot be a class name.
TCIMClass* FindClass(const TContainer& container, const std::string& name);

// A name as people may write it: lower case, without blanks.
std::string Folded(const std::string& name);

// Takes the first of `arguments` away when it names a file rather than a class or section: when it
// is "-", holds a '/', ends in ".xml" or ".gz", or is there. Empty when it does not.
std::string TakeFile(std::vector<std::string>& arguments);

}  // namespace zel
