#!/usr/bin/env bash
# What zel writes, as a process among others: its output is closed early or full, it is interrupted,
# the file system cannot make files without a name, standard error is a terminal.
set -uo pipefail
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
zel=$BUILD_DIR/zel
base=$PWD/schema/zelcore.base.xml
faults=0
fault() { echo "$*"; faults=$((faults + 1)); }
expect() { [ "$2" = "$3" ] || fault "$1: expected '$2', got '$3'"; }

expect_death() {
  wait "$2" 2>/dev/null
  expect "$1: exit after SIG$3" "$3" "$(kill -l $?)"
}

mkdir "$work/quick" "$work/slow" "$work/out"
cp -r "$BUILD_DIR/tests/plugins/good" "$work/quick/"
cp -r "$BUILD_DIR/tests/plugins/hangs" "$work/slow/"
collect() { "$zel" collect --base "$base" --plugin-dir "$work/quick" "$@"; }
# To be run in the background, where a shell has SIGINT ignored, and where its process is to be ours.
interruptible() { exec env --default-signal "$@"; }
collect_slowly() { interruptible "$zel" collect --base "$base" --plugin-dir "$work/slow" "$@"; }

# Closed early: no word, and the death that the shell expects. A parent may have SIGPIPE ignored.
ignore_pipe() { trap '' PIPE; }
for prepare in true ignore_pipe; do
  for arguments in '' '--format json' '--class Good_Thing' '-o -'; do
    # shellcheck disable=SC2086  # several words
    said=$( ($prepare; collect $arguments; echo $? >"$work/code") 2>&1 >/dev/full | cat)
    expect "collect $arguments >/dev/full" 7 "$(cat "$work/code")"
    expect "lines of collect $arguments >/dev/full" 1 "$(wc -l <<<"$said")"
    for reader in 'head -1' true; do
      # shellcheck disable=SC2086
      ($prepare; sleep 0.2; collect $arguments) 2>"$work/err" | $reader >/dev/null
      code=${PIPESTATUS[0]}
      expect "standard error of collect $arguments | $reader" "" "$(cat "$work/err")"
      case "$reader:$code" in
        true:141 | head*:0 | head*:141) ;;
        *) fault "collect $arguments | $reader: exit $code" ;;
      esac
    done
  done
done

# Interrupted while a plug-in works: nothing is written, and no plug-in goes on.
children() { pgrep -P "$1" | wc -l; }
for signal in INT TERM HUP; do
  collect_slowly -o "$work/out/a.xml" 2>"$work/err" &
  pid=$!
  for _ in {1..100}; do [ "$(children $pid)" = 0 ] || break; sleep 0.1; done
  child=$(pgrep -P $pid)
  kill -s $signal $pid
  expect_death "a collection" $pid $signal
  for _ in {1..100}; do kill -0 "$child" 2>/dev/null || break; sleep 0.1; done
  kill -0 "$child" 2>/dev/null && fault "a plug-in goes on after SIG$signal"
  expect "files after SIG$signal" "" "$(ls -A "$work/out")"
done

# A library that comes first refuses files without a name, or makes a step take its time.
cat >"$work/shim.c" <<'TEXT'
#define _GNU_SOURCE
#include <dlfcn.h>
#include <errno.h>
#include <fcntl.h>
#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

static void Step(const char* name) {
  const char* slow = getenv("SLOW_STEP");
  if (!slow || strcmp(slow, name) != 0) return;
  dprintf(2, "at %s\n", name);
  for (int i = 0; i < 30; ++i) usleep(100000);
}

static int Open(const char* function, const char* path, int flags, mode_t mode) {
  if ((flags & O_TMPFILE) == O_TMPFILE && getenv("NO_TMPFILE")) {
    errno = EOPNOTSUPP;
    return -1;
  }
  int (*next)(const char*, int, ...) = dlsym(RTLD_NEXT, function);
  return next(path, flags, mode);
}

int open(const char* path, int flags, ...) {
  va_list list;
  va_start(list, flags);
  const mode_t mode = va_arg(list, mode_t);
  va_end(list);
  return Open("open", path, flags, mode);
}

int open64(const char* path, int flags, ...) {
  va_list list;
  va_start(list, flags);
  const mode_t mode = va_arg(list, mode_t);
  va_end(list);
  return Open("open64", path, flags, mode);
}

int fsync(int fd) {
  int (*next)(int) = dlsym(RTLD_NEXT, "fsync");
  Step("fsync");
  return next(fd);
}

int linkat(int from, const char* path, int to, const char* name, int flags) {
  int (*next)(int, const char*, int, const char*, int) = dlsym(RTLD_NEXT, "linkat");
  const int result = next(from, path, to, name, flags);
  Step("linkat");
  return result;
}

int rename(const char* from, const char* to) {
  int (*next)(const char*, const char*) = dlsym(RTLD_NEXT, "rename");
  Step("rename");
  return next(from, to);
}
TEXT
"${CC:-cc}" -shared -fPIC -o "$work/shim.so" "$work/shim.c" -ldl || exit 1
with_shim() {
  local variables=$1
  shift
  # shellcheck disable=SC2086
  interruptible $variables LD_PRELOAD="$work/shim.so" ASAN_OPTIONS=verify_asan_link_order=0 \
    "$zel" collect --base "$base" --plugin-dir "$work/quick" "$@"
}

echo old >"$work/out/a.xml"
(with_shim NO_TMPFILE=1 -o "$work/out/a.xml" 2>"$work/err")
expect "exit without O_TMPFILE" 0 $?
grep -q '^saved ' "$work/err" || fault "without O_TMPFILE: $(cat "$work/err")"
grep -q Good_Thing "$work/out/a.xml" || fault "without O_TMPFILE nothing was saved"
expect "mode without O_TMPFILE" 600 "$(stat -c %a "$work/out/a.xml")"
expect "files without O_TMPFILE" a.xml "$(ls -A "$work/out")"

# Interrupted while it saves: the old file stays as it was, and nothing lies beside it. From the
# moment at which the new file has a name, an interruption waits until the step is over.
for variables in 'SLOW_STEP=fsync' 'SLOW_STEP=fsync NO_TMPFILE=1'; do
  for signal in INT TERM HUP; do
    echo old >"$work/out/a.xml"
    : >"$work/err"  # what the one before said does not count
    with_shim "$variables" -o "$work/out/a.xml" 2>"$work/err" &
    pid=$!
    for _ in {1..100}; do grep -q '^at ' "$work/err" && break; sleep 0.1; done
    kill -s $signal $pid
    expect_death "$variables" $pid $signal
    expect "$variables: file after SIG$signal" old "$(head -c 20 "$work/out/a.xml")"
    expect "$variables: files after SIG$signal" a.xml "$(ls -A "$work/out")"
  done
done
for step in linkat rename; do
  echo old >"$work/out/a.xml"
  : >"$work/err"
  with_shim "SLOW_STEP=$step" -o "$work/out/a.xml" 2>"$work/err" &
  pid=$!
  for _ in {1..100}; do grep -q '^at ' "$work/err" && break; sleep 0.1; done
  kill -s TERM $pid
  expect_death "$step" $pid TERM
  expect "$step: files after SIGTERM" a.xml "$(ls -A "$work/out")"
done

# Progress: on a terminal only, gone at the end.
on_terminal() { TERM=$1 script -qec "'$zel' collect --base '$base' --plugin-dir '$work/slow' --timeout 1 >/dev/null" /dev/null; }
erase=$'\r\033[K'
line='zel: plug-in hangs failed: did not answer within 1 s'
on_terminal xterm </dev/null >"$work/terminal"
grep -qF -- "${erase}collecting: hangs (1 of 1)${erase}$line" "$work/terminal" ||
  fault "no progress on a terminal: $(cat -v "$work/terminal")"
on_terminal dumb </dev/null >"$work/terminal"
grep -q "^$line" "$work/terminal" || fault "on a dumb terminal: $(cat -v "$work/terminal")"
(collect_slowly --timeout 1 >/dev/null 2>"$work/err")
grep -q "^$line" "$work/err" || fault "off a terminal: $(cat -v "$work/err")"

exit $((faults != 0))
