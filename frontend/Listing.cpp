#include "frontend/Listing.h"

#include <fmt/format.h>

#include <algorithm>

#include "frontend/Table.h"
#include "frontend/Titles.h"
#include "frontend/ValueText.h"
#include "zelcore/zelcore.h"

namespace zel {
namespace {

TTable::TCell CellOf(const TCIMProperty& property, bool isRaw) {
  const TCIMValue value = property.GetValue();
  if (value.IsNull()) return {MissingText(property), TLook::kMissing};
  return {isRaw ? ValueText(value) : PropertyText(property)};
}

// In a table, where an object path is too long to be read, what it names.
TTable::TCell TableCellOf(const TCIMProperty& property, bool isRaw) {
  const std::string target = isRaw ? "" : TargetOf(property.GetValue());
  return target.empty() ? CellOf(property, isRaw) : TTable::TCell{target};
}

// Numbers that stay numbers are aligned to the right.
TTable::TColumn ColumnOf(const TCIMPropertyDecl& property, bool isRaw) {
  using TType = TCIMValue::TCIMType;
  const bool isNumber =
      TType::TypeUint8 <= property.GetType() && property.GetType() <= TType::TypeReal64;
  const std::string display = TextOf(property.FindQualifier("DISPLAYNAME"));
  return {Printable(display.empty() ? property.GetName() : display),
          isNumber && (isRaw || !property.FindQualifier("VALUES"))};
}

bool PrintNothing(const TSelection& selection, std::ostream& out) {
  if (!selection.instances.empty()) return false;
  out << fmt::format("{}: {}\n\n", selection.cls->GetName(),
                     selection.wasCollected ? "no instances" : "not collected");
  return true;
}

}  // namespace

void PrintList(const TSelection& selection, const TPresentation& presentation, std::ostream& out) {
  if (PrintNothing(selection, out)) return;
  const TTerminal& terminal = presentation.terminal;
  std::size_t width = 0;
  for (const TCIMPropertyDecl* property : selection.properties) {
    width = std::max(width, property->GetName().size());
  }
  for (const TCIMInstance* instance : selection.instances) {
    const std::string path = Printable(instance->BuildPath().GetPath());
    out << Styled(TLook::kHeading, path, terminal) << "\n";
    for (const TCIMPropertyDecl* property : selection.properties) {
      const std::string key = fmt::format("{:<{}}", property->GetName(), width);
      const TTable::TCell cell =
          CellOf(*instance->GetProperty(property->GetName()), presentation.isRaw);
      out << "  " << Styled(TLook::kKey, key, terminal) << "  "
          << Styled(cell.look, cell.text, terminal) << "\n";
    }
    out << "\n";
  }
}

void PrintTable(const TSelection& selection, const TPresentation& presentation, std::ostream& out) {
  if (PrintNothing(selection, out)) return;
  std::vector<TTable::TColumn> columns;
  for (const TCIMPropertyDecl* property : selection.properties) {
    columns.push_back(ColumnOf(*property, presentation.isRaw));
  }
  TTable table(std::move(columns));
  for (const TCIMInstance* instance : selection.instances) {
    std::vector<TTable::TCell> cells;
    for (const TCIMPropertyDecl* property : selection.properties) {
      cells.push_back(TableCellOf(*instance->GetProperty(property->GetName()), presentation.isRaw));
    }
    table.AddRow(std::move(cells));
  }
  const std::size_t count = selection.instances.size();
  const std::string heading =
      fmt::format("{}: {} instance{}", selection.cls->GetName(), count, count == 1 ? "" : "s");
  out << Styled(TLook::kHeading, heading, presentation.terminal) << "\n";
  const std::size_t hidden = table.Print(out, presentation.terminal);
  if (hidden > 0) {
    const std::string note =
        fmt::format("({} more column{} in --format list)", hidden, hidden == 1 ? "" : "s");
    out << "  " << Styled(TLook::kMissing, note, presentation.terminal) << "\n";
  }
  out << "\n";
}

}  // namespace zel
