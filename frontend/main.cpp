#include <signal.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <fstream>
#include <iostream>

#include "frontend/Main.h"

namespace {

// A document of a few kilobytes can describe gigabytes, and a plug-in can ask for them. Whichever
// does, ends itself and not the machine's other work.
void LimitMemory() {
  constexpr rlim_t kMost = rlim_t{2} << 30;
  const auto page = static_cast<rlim_t>(sysconf(_SC_PAGESIZE));
  const rlim_t most = std::min(kMost, static_cast<rlim_t>(sysconf(_SC_PHYS_PAGES)) * page / 4 * 3);
  rlim_t used = 0;  // far more than there is, under a sanitizer
  std::ifstream pages("/proc/self/statm");
  for (int field = 0; field < 6; ++field) pages >> used;
  rlimit limit{};
  if (!pages || used * page > most || getrlimit(RLIMIT_DATA, &limit) != 0) return;
  limit.rlim_cur = std::min(limit.rlim_cur, most);
  setrlimit(RLIMIT_DATA, &limit);
}

}  // namespace

int main(int argc, char** argv) {
  LimitMemory();
  // Who closes our output early wants no more and no message, whatever was inherited; a file that
  // gets too large is an error like a full disk.
  signal(SIGPIPE, SIG_DFL);
  signal(SIGXFSZ, SIG_IGN);
  std::ios::sync_with_stdio(false);
  return zel::Main(argc, argv,
                   {std::cout, std::cerr, zel::FindTerminal(), zel::IsProgressWanted()});
}
