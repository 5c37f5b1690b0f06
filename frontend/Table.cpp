#include "frontend/Table.h"

#include <algorithm>

#include "frontend/Utf8.h"

namespace zel {
namespace {

constexpr std::size_t kGap = 2;     // before each column
constexpr std::size_t kLeast = 16;  // no column is cut to less

// The most that a column may have so that all fit into `width`: narrow ones have what they need,
// the others share the rest.
std::size_t WidestOf(std::vector<std::size_t> widths, std::size_t width) {
  std::sort(widths.begin(), widths.end());
  std::size_t columns = widths.size();
  std::size_t rest = width - std::min(width, columns * kGap);
  for (const std::size_t needed : widths) {
    if (needed > rest / columns) return rest / columns;
    rest -= needed;
    --columns;
  }
  return width;
}

}  // namespace

std::vector<std::size_t> TTable::WidthsOn(const TTerminal& terminal) const {
  std::vector<std::size_t> widths;
  for (std::size_t i = 0; i < fColumns.size(); ++i) {
    std::size_t width = WidthOf(fColumns[i].head);
    for (const auto& row : fRows) width = std::max(width, WidthOf(row[i].text));
    widths.push_back(width);
  }
  if (terminal.width == 0) return widths;
  std::size_t fitting = 0;
  std::size_t least = 0;
  for (const std::size_t width : widths) {
    least += kGap + std::min(width, kLeast);
    if (fitting > 0 && least > terminal.width) break;  // the first is always there
    ++fitting;
  }
  widths.resize(fitting);
  const std::size_t widest = WidestOf(widths, terminal.width);
  for (std::size_t& width : widths) width = std::min(width, widest);
  return widths;
}

std::size_t TTable::Print(std::ostream& out, const TTerminal& terminal) const {
  const std::vector<std::size_t> widths = WidthsOn(terminal);
  const auto printRow = [&](const std::vector<TCell>& cells) {
    std::string line;
    std::size_t owed = 0;  // blanks; none stand at the end of a line
    for (std::size_t i = 0; i < widths.size(); ++i) {
      const std::string text = Fitted(cells[i].text, widths[i], terminal.isUtf8);
      const std::size_t rest = widths[i] - WidthOf(text);
      const bool isRight = fColumns[i].isRight;
      line.append(owed + kGap + (isRight ? rest : 0), ' ');
      line += Styled(cells[i].look, text, terminal);
      owed = isRight ? 0 : rest;
    }
    out << line.erase(line.find_last_not_of(' ') + 1) << "\n";
  };
  std::vector<TCell> heads;
  for (const TColumn& column : fColumns) heads.push_back({column.head, TLook::kColumnHead});
  printRow(heads);
  for (const auto& row : fRows) printRow(row);
  return fColumns.size() - widths.size();
}

}  // namespace zel
