#!/usr/bin/env bash
# Every property and class that a collector publishes is declared in its document or in the base
# document, and no collector exports a symbol.
set -euo pipefail
wrong=0

for plugin in collectors/*/plugin.cpp; do
  folder=$(dirname "$plugin")
  name=$(basename "$folder")
  document=$folder/$name.properties.xml
  for property in $(grep -oE '\.Set(Text)?\("[A-Za-z0-9_]+"' "$plugin" | cut -d'"' -f2 | sort -u); do
    grep -qE "<PROPERTY[A-Z.]* NAME=\"$property\"" "$document" schema/zelcore.base.xml ||
      { echo "$plugin sets $property, which $document does not declare"; wrong=1; }
  done
  for class in $(grep -oE '"KVRSG_[A-Za-z0-9_]+"' "$plugin" | tr -d '"' | sort -u); do
    grep -qE "<CLASS NAME=\"$class\"" "$document" ||
      { echo "$plugin publishes $class, which $document does not declare"; wrong=1; }
  done
  built=$BUILD_DIR/plugins/$name/lib$name.pi.so
  if [[ -e $built ]]; then
    exported=$(nm -D --defined-only "$built" | grep -v ' [aA] ' || true)
    [[ -z $exported ]] || { echo "$name exports: $exported"; wrong=1; }
  fi
done
exit $wrong
