#!/bin/sh
# Lets a built zel write its manual pages and completions: make_pages.sh ZEL DIRECTORY
set -eu
zel=$1
mkdir -p "$2/man1"
cd "$2"
"$zel" help --man > man1/zel.1
for command in $("$zel" help | sed -n '/^Subcommands:/,/^$/s/^  \([a-z]*\) .*/\1/p'); do
  "$zel" help --man "$command" > "man1/zel-$command.1"
done
"$zel" completion bash > zel
"$zel" completion zsh > _zel
"$zel" completion fish > zel.fish
touch stamp
