#!/usr/bin/env bash
# The plug-in of docs/plugin-authors.md: the page shows the very files, and they build, run and pass
# their own test against an installed library, with CMake and without.
set -euo pipefail
example=docs/examples/uptime
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

for file in uptime.c uptime.properties.xml CMakeLists.txt; do
  awk -v name="$file" '/^```$/ {shown = 0} shown; $0 ~ "^```[a-z]+ " name "$" {shown = 1}' \
    docs/plugin-authors.md >"$work/shown"
  diff -u "$example/$file" "$work/shown" || { echo "docs/plugin-authors.md: $file differs"; exit 1; }
done

DESTDIR="" cmake --install "$BUILD_DIR" --prefix "$work/installed" >"$work/log" 2>&1 ||
  { cat "$work/log"; exit 1; }
PATH=$work/installed/bin:$PATH
LD_LIBRARY_PATH=$(dirname "$(find "$work/installed" -name 'libzelcore.so' | head -1)")
export LD_LIBRARY_PATH

# With CMake, in a directory whose path holds blanks and "lib".
build="$work/my lib/build"
cmake -S "$example" -B "$build" -DCMAKE_PREFIX_PATH="$work/installed" \
  -DCMAKE_C_COMPILER="${CC:-cc}" -DCMAKE_C_FLAGS='-Wall -Wextra -Wpedantic -Werror' >"$work/log" 2>&1 &&
  cmake --build "$build" >>"$work/log" 2>&1 &&
  ctest --test-dir "$build" --output-on-failure >>"$work/log" 2>&1 || { cat "$work/log"; exit 1; }

# Without CMake.
export PKG_CONFIG_PATH=$LD_LIBRARY_PATH/pkgconfig
flags=$(pkg-config --define-variable=prefix="$work/installed" --cflags --libs zelcore)
mkdir -p "$work/plugins/uptime"
# shellcheck disable=SC2086  # several flags
"${CC:-cc}" -std=gnu99 -shared -fPIC -fvisibility=hidden "$example/uptime.c" $flags \
  -o "$work/plugins/uptime/libuptime.pi.so"
cp "$example/uptime.properties.xml" "$work/plugins/uptime/"
exported=$(nm -D --defined-only "$work/plugins/uptime/libuptime.pi.so")
[ -z "$exported" ] || { echo "the example exports: $exported"; exit 1; }

# A captured machine: every value, and the association that ties them together.
collect() {
  zel collect --plugin-dir "$work/plugins" --format json \
    --class ACME_Uptime ACME_LoadAverage ACME_UptimeLoad
}
expect() { grep -qF -- "$2" <<<"$1" || { echo "not collected: $2"; echo "$1"; exit 1; }; }
captured=$(ZEL_SYSROOT=$PWD/$example/captured collect)
for value in '"Seconds": 350735' '"Hundredths": 75' '"Hundredths": 135' '"Hundredths": 1205' \
             '"Minutes": 15' 'ACME_UptimeLoad.Antecedent='; do
  expect "$captured" "$value"
done

# The live machine.
expect "$(collect)" '"Name": "uptime"'

# A machine without the sources: no instance, no failure.
none=$(ZEL_SYSROOT=$work collect)
expect "$none" '"ACME_Uptime": []'
