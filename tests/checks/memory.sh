#!/usr/bin/env bash
# Small documents that describe far more than fits into memory end zel with a word, and zel takes no
# more of the machine's memory than it has said it would.
set -eu
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
zel=$BUILD_DIR/zel
faults=0
expect() { [ "$2" = "$3" ] || { echo "$1: expected '$2', got '$3'"; faults=1; }; }
if grep -q __asan_init "$zel"; then echo "SKIPPED: the sanitizer takes all memory itself"; exit 77; fi

start='<CIM CIMVERSION="2.0" DTDVERSION="2.0"><DECLARATION><DECLGROUP><QUALIFIER.DECLARATION
NAME="Key" TYPE="boolean"><SCOPE PROPERTY="true"/><VALUE>false</VALUE></QUALIFIER.DECLARATION>'
end='</DECLGROUP></DECLARATION></CIM>'
key='<QUALIFIER NAME="Key"><VALUE>true</VALUE></QUALIFIER>'

# Thousands of instances, each with thousands of properties.
{
  echo "$start<VALUE.OBJECT><CLASS NAME=\"Wide\"><PROPERTY NAME=\"K\" TYPE=\"uint32\">$key</PROPERTY>"
  seq 3000 | sed 's|.*|<PROPERTY NAME="P&" TYPE="uint8"/>|'
  echo '</CLASS></VALUE.OBJECT>'
  seq 12000 | sed 's|.*|<VALUE.OBJECT><INSTANCE CLASSNAME="Wide"><PROPERTY NAME="K"><VALUE>&</VALUE></PROPERTY></INSTANCE></VALUE.OBJECT>|'
  echo "$end"
} >"$work/wide.xml"
# Every class has the properties of all before it.
{
  echo "$start<VALUE.OBJECT><CLASS NAME=\"C0\"><PROPERTY NAME=\"P0\" TYPE=\"uint32\">$key</PROPERTY></CLASS></VALUE.OBJECT>"
  seq 8000 | awk '{printf "<VALUE.OBJECT><CLASS NAME=\"C%d\" SUPERCLASS=\"C%d\"><PROPERTY NAME=\"P%d\" TYPE=\"uint8\"/></CLASS></VALUE.OBJECT>\n", $1, $1 - 1, $1}'
  echo "$end"
} >"$work/deep.xml"

for document in wide deep; do
  for command in show validate 'diff -'; do
    code=0
    # shellcheck disable=SC2086  # several words
    (ulimit -d 200000; "$zel" $command "$work/$document.xml" <"$work/$document.xml") \
      >"$work/out" 2>&1 || code=$?
    expect "exit of $command $document.xml" 4 $code
    grep -q memory "$work/out" || { echo "$command $document.xml: $(head -3 "$work/out")"; faults=1; }
  done
done

# Standard input is kept in memory as far as it can be a document.
code=0
head -c 200000000 /dev/zero | "$zel" show - >"$work/out" 2>&1 || code=$?
expect "exit of show - </dev/zero" 4 $code
expect "its word" "zel: cannot read standard input: it is longer than 100 MiB" "$(cat "$work/out")"

# What it allows itself: 2 GiB, or three quarters of a smaller machine's memory.
mkfifo "$work/input"
"$zel" show - <"$work/input" >/dev/null 2>&1 &
exec 3>"$work/input"
limit=
for _ in {1..50}; do
  limit=$(awk '/^Max data size/ {print $4}' /proc/$!/limits)
  [ "$limit" = unlimited ] || break
  sleep 0.1
done
exec 3>&-
wait $! || true
memory=$(($(getconf _PHYS_PAGES) * $(getconf PAGESIZE) / 4 * 3))
most=$((memory < 2147483648 ? memory : 2147483648))
expect "the limit" "$most" "$limit"
exit $faults
