#!/bin/bash
# The options that `velmora --help` lists (read as the bash completion reads
# them) and those of the OPTIONS section of velmora(1) are the same set.
# usage: help_man_options.sh VELMORA MAN_PAGE COMPLETION
set -eu
velmora=$1 page=$2 completion=$3
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
source "$completion"

_velmora_help_options "$velmora" | LC_ALL=C sort -u >"$work/help"
# velmora(1): the tag line after each .TP of the OPTIONS section, roff escapes
# and font changes taken out.
sed -n '/^\.SH OPTIONS/,/^\.SH /p' "$page" | sed -n '/^\.TP/{n;p;}' |
  sed 's/\\f[BIRP]//g; s/\\-/-/g; s/^\.[A-Z]* //' |
  grep -oE '(^|[ ,"])--?[A-Za-z][A-Za-z0-9-]*' | tr -d ' ,"' | LC_ALL=C sort -u >"$work/man"

if [ ! -s "$work/help" ]; then
  echo "no option found in velmora --help"
  exit 1
fi
if ! diff -u --label "velmora --help" --label "$(basename "$page")" "$work/help" "$work/man"; then
  echo "velmora --help and velmora(1) list different options"
  exit 1
fi
