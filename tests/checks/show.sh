#!/usr/bin/env bash
# What other programs make of the output of 'zel show' and 'zel get': CSV and JSON are read back with
# Python, locales and terminals make no difference to files, and an output may be closed early.
set -uo pipefail
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
zel=$BUILD_DIR/zel
base=$PWD/schema/zelcore.base.xml
faults=0
expect() { [ "$2" = "$3" ] || { echo "$1: expected '$2', got '$3'"; faults=$((faults + 1)); }; }

cat >"$work/fans.xml" <<'TEXT'
<CIM CIMVERSION="2.0" DTDVERSION="2.0"><DECLARATION><DECLGROUP>
<VALUE.OBJECT><CLASS NAME="Acme_Fan">
<PROPERTY NAME="Id" TYPE="string"><QUALIFIER NAME="KEY" TYPE="boolean"><VALUE>true</VALUE></QUALIFIER></PROPERTY>
<PROPERTY NAME="Text" TYPE="string"/><PROPERTY NAME="Big" TYPE="uint64"/>
<PROPERTY.ARRAY NAME="Tags" TYPE="string"/>
</CLASS></VALUE.OBJECT>
<VALUE.OBJECT><INSTANCE CLASSNAME="Acme_Fan">
<PROPERTY NAME="Id" TYPE="string"><VALUE>a</VALUE></PROPERTY>
<PROPERTY NAME="Text" TYPE="string"><VALUE>Größe "1", &#10;=1+1 &#9;日本 &#27;[2J</VALUE></PROPERTY>
<PROPERTY NAME="Big" TYPE="uint64"><VALUE>18446744073709551615</VALUE></PROPERTY>
<PROPERTY.ARRAY NAME="Tags" TYPE="string"><VALUE.ARRAY><VALUE>x</VALUE><VALUE>y</VALUE></VALUE.ARRAY></PROPERTY.ARRAY>
</INSTANCE></VALUE.OBJECT>
<VALUE.OBJECT><INSTANCE CLASSNAME="Acme_Fan">
<PROPERTY NAME="Id" TYPE="string"><VALUE>b</VALUE></PROPERTY>
</INSTANCE></VALUE.OBJECT>
</DECLGROUP></DECLARATION></CIM>
TEXT
show() { "$zel" show --base "$base" "$work/fans.xml" "$@"; }

show Acme_Fan --format csv >"$work/fans.csv"
show Acme_Fan --format json --text >"$work/fans.json"
python3 - "$work" <<'TEXT' || faults=$((faults + 1))
import csv, json, sys
work = sys.argv[1]
text = 'Größe "1", \n=1+1 \t日本 \x1b[2J'
with open(work + '/fans.csv', newline='', encoding='utf-8') as file:
    rows = list(csv.reader(file, strict=True))
assert rows == [['Big', 'Id', 'Tags', 'Text'],
                ['18446744073709551615', 'a', 'x, y', text], ['', 'b', '', '']], rows
with open(work + '/fans.json', encoding='utf-8') as file:
    first, second = json.load(file)['classes']['Acme_Fan']
assert first['properties'] == {'Big': '18446744073709551615', 'Id': 'a', 'Tags': ['x', 'y'],
                               'Text': text}, first
assert first['text']['Text'] == 'Größe "1", \\x0A=1+1 \\x09日本 \\x1B[2J', first
assert second['properties'] == {'Big': None, 'Id': 'b', 'Tags': None, 'Text': None}, second
TEXT

# The same bytes in every locale, on no terminal without colour, cut to the width on one.
for locale in C C.UTF-8; do
  LC_ALL=$locale show Acme_Fan >"$work/$locale"
done
expect "the C locale" "" "$(cmp "$work/C" "$work/C.UTF-8" 2>&1)"
grep -q 'Größe' "$work/C" || expect "UTF-8" "Größe" "$(cat "$work/C")"
on_terminal() {
  env COLUMNS=40 "$@" script -qec "'$zel' show --base '$base' '$work/fans.xml' Acme_Fan --all" /dev/null
}
expect "colour" 4 "$(on_terminal TERM=xterm | grep -c $'\033\[')" # heading, heads, gaps, note
expect "TERM=dumb" 0 "$(on_terminal TERM=dumb | grep -c $'\033\\[')"
expect "NO_COLOR" 0 "$(on_terminal TERM=xterm NO_COLOR=1 | grep -c $'\033\\[')"
expect "too wide" "" "$(LC_ALL=C.UTF-8 on_terminal TERM=dumb | tr -d '\r' | grep -E '.{41}')"

LC_ALL=C on_terminal TERM=dumb | grep -qF '...' || expect "the cut in the C locale" ... none
expect "the ellipsis in the C locale" 0 "$(LC_ALL=C on_terminal TERM=dumb | grep -c $'\xe2\x80\xa6')"
LC_ALL=C.UTF-8 on_terminal TERM=dumb | grep -q $'\xe2\x80\xa6' || expect "the cut" … none

# Closed early: quiet.
for arguments in '--format json' '--format xml' '--format list' ''; do
  # shellcheck disable=SC2086  # several words
  (sleep 0.1; show $arguments) 2>"$work/err" | true
  expect "standard error of show $arguments | true" "" "$(cat "$work/err")"
done
"$zel" show --base "$base" "$work/fans.xml" --format xml 2>"$work/err" >/dev/full
expect "show >/dev/full" 7 $?
expect "lines of show >/dev/full" 1 "$(wc -l <"$work/err")"

expect "get" "a b" "$("$zel" get --base "$base" "$work/fans.xml" Acme_Fan.Id | xargs)"
"$zel" get --base "$base" - Acme_Fan.Nothing <"$work/fans.xml" 2>/dev/null
expect "get of no property" 2 $?
exit $((faults > 0))
