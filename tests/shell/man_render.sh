#!/bin/sh
# Each manual page (roff, or gzipped roff) renders without a warning, both
# through groff with every warning on and through man.
# usage: man_render.sh PAGE...
set -u
status=0
for page in "$@"; do
  case $page in
    *.gz) source="gzip -dc $page" ;;
    *) source="cat $page" ;;
  esac
  warnings=$($source | groff -ww -z -man 2>&1)
  rendered=$(MANWIDTH=80 LC_ALL=C.UTF-8 man --warnings -l "$page" 2>&1 >/dev/null)
  if [ -n "$warnings$rendered" ]; then
    printf '%s:\n%s\n%s\n' "$page" "$warnings" "$rendered"
    status=1
  fi
  if ! MANWIDTH=80 man -l "$page" 2>/dev/null | grep -q '^NAME'; then
    echo "$page: man shows no NAME section"
    status=1
  fi
done
exit $status
