#!/usr/bin/env bash
# Every public header compiles alone, and zel.h also as C99.
set -euo pipefail
warnings=(-Wall -Wextra -Wpedantic -Wshadow -Werror -Iinclude -fsyntax-only)
for header in include/zelcore/*.h include/zelcore/detail/*.h; do
  echo "#include \"${header#include/}\"" |
    "${CXX:-c++}" -std=c++17 "${warnings[@]}" -x c++ - || { echo "$header"; exit 1; }
done
echo '#include "zelcore/zel.h"' | "${CC:-cc}" -std=c99 -pedantic-errors "${warnings[@]}" -x c -
