#!/usr/bin/env bash
# Every #include "..." must point along the arrows of docs/architecture.md: folders meet only through
# include/zelcore/, and a private header is included in its own folder.
set -euo pipefail

# allowed FOLDER INCLUDED: whether a file in FOLDER may include INCLUDED.
allowed() {
  case "$1:$2" in
    collectors:zelcore/zel.h) return 0 ;;
    collectors:zelcore/*) return 1 ;;
    collectors:collectors/*) return 0 ;;
    # The container's reader is a member of the container but needs the parser.
    xml/ReadContainer.cpp:cim/TContainerImpl.h) return 0 ;;
    cim:zelcore/TPluginManager.h | cim:zelcore/TQueryManager.h | cim:zelcore/IPlugin*.h) return 1 ;;
    os:zelcore/TPluginManager.h | os:zelcore/TQueryManager.h) return 1 ;;
    frontend:zelcore/detail/*) return 1 ;;
    *:zelcore/*) return 0 ;;
    *) [[ $2 == "$1"/* ]] ;;
  esac
}

wrong=0
while IFS=: read -r file include; do
  included=${include#*\"}
  included=${included%%\"*}
  folder=${file%%/*}
  [[ $folder == include ]] && folder=zelcore
  if ! allowed "$folder" "$included" && ! allowed "$file" "$included"; then
    echo "$file must not include \"$included\""
    wrong=1
  fi
done < <(grep -rHE '^#include "' include cim xml plugin os frontend collectors \
           --include='*.h' --include='*.cpp' | sed 's/^\([^:]*\):/\1:/')
exit $wrong
