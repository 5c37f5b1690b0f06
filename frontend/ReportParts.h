#pragma once

#include <ostream>
#include <string>
#include <unordered_map>

#include "frontend/Html.h"

// The parts of the report page, which Report.cpp puts together.

class TCIMClass;
class TCIMInstance;
class TCIMProperty;
class TCIMPropertyDecl;
class TCIMReference;

namespace zel {

class TInventory;
struct TComparison;
struct TSection;

// "captured.xml.gz, collected 2026-11-21 12:19:01"
std::string NameOf(const TInventory& inventory);

// "1 instance", "2 instances".
std::string Counted(std::size_t count, const std::string& what);

// Where the instances stand on the page: an anchor for each, made of its object path.
class TAnchors {
 public:
  explicit TAnchors(const TInventory& inventory);

  // The instance must be one of the inventory.
  const std::string& Of(const TCIMInstance& instance) const { return fAnchors.at(&instance); }

  // What `path` names, as a link when it is on the page, else as the path.
  TMarkup LinkTo(const TCIMReference& path) const;
  TMarkup LinkTo(const TCIMInstance& instance) const;

 private:
  std::unordered_map<const TCIMInstance*, std::string> fAnchors;
};

// A section of the page, to be closed with "</section>".
void OpenSection(const std::string& anchor, const std::string& title, std::ostream& out);

std::string AnchorOf(const TSection& section);
// How many instances its classes have.
std::size_t CountOf(const TSection& section);

// The property's value as it is shown, or why there is none.
TMarkup ValueMarkup(const TCIMProperty& property, const TAnchors& anchors);

// The section's classes: a list of facts for one instance, a table for several. What links others
// comes last, folded away.
void WriteSection(const TSection& section, const TInventory& inventory, const TAnchors& anchors,
                  std::ostream& out);

// Why sections are empty that are.
void WriteEmptySections(const TInventory& inventory, std::ostream& out);
inline constexpr char kEmptyAnchor[] = "empty";
inline constexpr char kEmptyTitle[] = "Empty sections";

// What differs between `before` and the inventory on the page.
void WriteChanges(const TInventory& before, const TComparison& comparison, const TAnchors& anchors,
                  std::ostream& out);
inline constexpr char kChangesAnchor[] = "changes";

}  // namespace zel
