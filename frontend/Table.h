#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "frontend/Style.h"

namespace zel {

// Rows of text under column heads. Columns are as wide as what they hold; on a terminal, wide ones
// are cut, and when that is not enough the last ones are left out. Texts must be printable.
class TTable {
 public:
  struct TColumn {
    std::string head;
    bool isRight = false;  // aligned to the right, as numbers are
  };
  struct TCell {
    std::string text;
    TLook look = TLook::kPlain;
  };

  explicit TTable(std::vector<TColumn> columns) : fColumns(std::move(columns)) {}

  // One cell for each column.
  void AddRow(std::vector<TCell> cells) { fRows.push_back(std::move(cells)); }

  // Returns how many columns did not fit.
  std::size_t Print(std::ostream& out, const TTerminal& terminal) const;

 private:
  std::vector<std::size_t> WidthsOn(const TTerminal& terminal) const;

  std::vector<TColumn> fColumns;
  std::vector<std::vector<TCell>> fRows;
};

}  // namespace zel
