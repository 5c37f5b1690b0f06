#pragma once

#include <ostream>

namespace zel {

// What standard output can show.
struct TTerminal {
  bool colour = false;
  unsigned width = 0;  // in columns; 0: it is no terminal, lines may have any length
  bool isUtf8 = true;
};

// Where a command writes: data to `out`, everything else to `err`.
struct TStreams {
  std::ostream& out;
  std::ostream& err;
  TTerminal terminal = {};    // what `out` is
  bool showProgress = false;  // on `err`, while the work takes longer than a moment
};

// Whether the locale says that texts are UTF-8.
bool IsUtf8Locale();

// Of this process: colour on a terminal that knows more than TERM=dumb, unless NO_COLOR is set to
// something; the width of the terminal, or COLUMNS; the locale; progress when standard error is a
// terminal.
TTerminal FindTerminal();
bool IsProgressWanted();

}  // namespace zel
