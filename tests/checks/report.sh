#!/usr/bin/env bash
# The report page does in a browser what it promises. Skipped where there is no browser to ask.
set -euo pipefail
python=/usr/bin/python3  # for which Debian packages its modules
skip() { echo "SKIPPED: no $1"; exit 77; }
for tool in chromium chromedriver; do command -v $tool >/dev/null || skip $tool; done
$python -c 'import selenium' 2>/dev/null || skip python3-selenium

zel=$BUILD_DIR/zel
made=$(mktemp -d)
trap 'rm -rf "$made"' EXIT
machine=$made/machine
cp -r tests/testdata/machines/qemu-q35 "$machine"
ZEL_SYSROOT=$machine "$zel" collect -o "$made/old.xml" 2>/dev/null
sed -i 's/^MemTotal:.*/MemTotal: 4040404 kB/' "$machine/proc/meminfo"
ZEL_SYSROOT=$machine "$zel" collect -o "$made/new.xml" 2>/dev/null
"$zel" report "$made/new.xml" --diff "$made/old.xml" -o "$made/page.html" 2>/dev/null

# xmllint knows the elements of HTML 4 only.
wrong=$(xmllint --html --noout "$made/page.html" 2>&1 | grep 'error :' |
        grep -vE 'Tag [a-z]+ invalid' || true)
[[ -z $wrong ]] || { echo "$wrong"; exit 1; }
HOME=$made timeout 150 $python tests/checks/report.py "$made/page.html" "$made"
