#!/usr/bin/env bash
# The completions complete, tried in the shells themselves; the manual pages hold every option and
# have no fault that mandoc knows.
set -euo pipefail
made=$BUILD_DIR/frontend/made
zel=$BUILD_DIR/zel
wrong=0
fail() { echo "$1"; wrong=1; }

# expect SHELL LINE FOUND WANTED...: every word WANTED is among those found, one a line.
expect() {
  local shell=$1 line=$2 found=$3 word
  shift 3
  for word in "$@"; do
    grep -qxF -- "$word" <<<"$found" || fail "$shell: '$line' completes to '$found', without $word"
  done
}

bash_completes() {
  bash -c '
    source "$1"
    compopt() { :; }
    read -ra COMP_WORDS <<<"$2"
    [[ $2 == *" " ]] && COMP_WORDS+=("")
    COMP_CWORD=$((${#COMP_WORDS[@]} - 1))
    _zel
    printf "%s\n" "${COMPREPLY[@]}"' - "$made/zel" "$1"
}
fish_completes() {
  fish --no-config -c 'source $argv[1]; complete -C $argv[2]' "$made/zel.fish" "$1" | cut -f1
}
# zsh completes only for somebody who types: a letter that is there already would hide the rest, so
# what it makes of the line is looked at.
zsh_completes() {
  /usr/bin/python3 - "$made" "$1" <<'PYTHON'
import os, pty, re, select, sys, time
made, line = sys.argv[1:]
pid, fd = pty.fork()
if pid == 0:
    os.environ.update(TERM="dumb", PS1="", COLUMNS="500")
    os.execlp("zsh", "zsh", "-f", "-i")

def read(until, seconds=20):
    text, end = "", time.time() + seconds
    while until not in text and time.time() < end:
        if select.select([fd], [], [], 0.1)[0]:
            text += os.read(fd, 65536).decode(errors="replace")
    return text

def say(text):
    os.write(fd, text.encode())

say("unsetopt zle_bracketed_paste; fpath=(%r $fpath); autoload -U compinit; compinit -u -D; "
    "PS1='>'; show() { print -r \"<$BUFFER\"'>'; }; zle -N show; bindkey '^X' show; print rea''dy\n"
    % made)
read("ready")
say(line + "\t\x18")
found = re.findall(r"<(zel [^>]*)>", read(">", 1) + read(" >", 5))
print(found[-1].split()[-1] if found else "nothing")
os.close(fd)
PYTHON
}

for shell in bash fish; do
  complete=${shell}_completes
  expect $shell 'zel ' "$($complete 'zel ')" collect plugins completion help
  expect $shell 'zel coll' "$($complete 'zel coll')" collect
  expect $shell 'zel collect --for' "$($complete 'zel collect --for')" --format
  expect $shell 'zel collect --format ' "$($complete 'zel collect --format ')" json text
  expect $shell 'zel collect --log-level ' "$($complete 'zel collect --log-level ')" error verbose
  expect $shell 'zel completion ' "$($complete 'zel completion ')" bash zsh fish
  expect $shell 'zel help pl' "$($complete 'zel help pl')" plugins
  (cd schema && expect $shell 'zel collect --base z' "$($complete 'zel collect --base z')" \
    zelcore.base.xml && exit $wrong) || wrong=1
done
expect zsh 'zel coll' "$(zsh_completes 'zel coll')" collect
expect zsh 'zel collect --for' "$(zsh_completes 'zel collect --for')" --format
expect zsh 'zel collect --format js' "$(zsh_completes 'zel collect --format js')" json
expect zsh 'zel help pl' "$(zsh_completes 'zel help pl')" plugins

for page in "$made"/man1/*.1; do
  mandoc -T lint -W error "$page" || fail "$page has faults"
  name=$(basename "$page" .1)
  command=${name#zel}
  text=$(mandoc -T ascii "$page" | col -b)
  "$zel" ${command:+"${command#-}"} --help | { grep -oE -- ' --[a-z-]+' || true; } | sort -u |
    while read -r option; do
      grep -qF -- "$option" <<<"$text" || { echo "$name(1) lacks $option"; exit 1; }
    done || wrong=1
done
exit $wrong
