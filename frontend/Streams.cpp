#include "frontend/Streams.h"

#include <stdlib.h>
#include <string.h>
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

bool IsUtf8Locale() {
  for (const char* name : {"LC_ALL", "LC_CTYPE", "LANG"}) {
    const std::string locale = Environment(name);
    if (locale.empty()) continue;
    return strcasestr(locale.c_str(), "utf-8") || strcasestr(locale.c_str(), "utf8");
  }
  return false;
}

TTerminal FindTerminal() {
  if (isatty(STDOUT_FILENO) != 1) return {};
  return {Environment("NO_COLOR").empty() && Environment("TERM") != "dumb", WidthOf(STDOUT_FILENO),
          IsUtf8Locale()};
}

bool IsProgressWanted() { return isatty(STDERR_FILENO) == 1 && Environment("TERM") != "dumb"; }

}  // namespace zel
