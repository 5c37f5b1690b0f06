#!/usr/bin/env bash
# libzelcore.so exports the C API, CoreInit and the marked classes, and nothing else: no symbol of a
# library that it uses, no helper of its own.
set -euo pipefail
library=$BUILD_DIR/libzelcore.so
exported=$(nm -D --defined-only "$library" | awk '{print $3}')

for name in $(grep -oE '\bzel[A-Z][A-Za-z0-9]+\(' include/zelcore/zel.h | tr -d '(' | sort -u); do
  grep -qx "$name" <<<"$exported" || { echo "not exported: $name"; exit 1; }
done
grep -qx CoreInit <<<"$exported"
grep -qx kZELErrorMessages <<<"$exported"

foreign=$(grep -E '^(zel|[a-z]|k[A-Z])' <<<"$exported" |
  grep -vE '^(zel[A-Z]|kZELErrorMessages$|__|_)' || true)
[ -z "$foreign" ] || { echo "exported by mistake:"; echo "$foreign"; exit 1; }
