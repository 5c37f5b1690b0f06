#include <iostream>

#include "frontend/Main.h"

int main(int argc, char** argv) {
  std::ios::sync_with_stdio(false);
  return zel::Main(argc, argv,
                   {std::cout, std::cerr, zel::FindTerminal(), zel::IsProgressWanted()});
}
