#include "frontend/Streams.h"

#include <stdlib.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <string>

namespace zel {
namespace {

constexpr unsigned kUsualWidth = 80;

std::string Environment(const char* name) {
  const char* value = getenv(name);
  return value ? value : "";
}

unsigned WidthOf(int fd) {
  const int columns = atoi(Environment("COLUMNS").c_str());
  if (columns > 0) return static_cast<unsigned>(columns);
  winsize size = {};
  return ioctl(fd, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : kUsualWidth;
}

}  // namespace

TTerminal FindTerminal() {
  if (isatty(STDOUT_FILENO) != 1) return {};
  return {Environment("NO_COLOR").empty() && Environment("TERM") != "dumb", WidthOf(STDOUT_FILENO)};
}

bool IsProgressWanted() { return isatty(STDERR_FILENO) == 1 && Environment("TERM") != "dumb"; }

}  // namespace zel
