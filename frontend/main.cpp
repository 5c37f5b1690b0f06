#include <signal.h>

#include <iostream>

#include "frontend/Main.h"

int main(int argc, char** argv) {
  // Who closes our output early wants no more and no message, whatever was inherited; a file that
  // gets too large is an error like a full disk.
  signal(SIGPIPE, SIG_DFL);
  signal(SIGXFSZ, SIG_IGN);
  std::ios::sync_with_stdio(false);
  return zel::Main(argc, argv,
                   {std::cout, std::cerr, zel::FindTerminal(), zel::IsProgressWanted()});
}
