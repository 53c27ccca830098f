#!/bin/bash
# The bash completion of velmora: options from its --help, thread counts
# after -j, output kinds after --to, file names for paths (also ones that
# begin with a dash after "--").
# usage: completion.sh VELMORA COMPLETION
set -u
velmora=$1 completion=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
source "$completion"
cd "$work" && mkdir traces && touch trace.txt traces/a.txt -- -odd.txt

failures=0
# expect "WORDS ..." "EXPECTED": completes the last word of WORDS.
expect() {
  COMP_WORDS=("$velmora" $1)
  [[ $1 == *" " || -z $1 ]] && COMP_WORDS+=("")
  COMP_CWORD=$((${#COMP_WORDS[@]} - 1))
  _velmora
  local got
  got=$(printf '%s\n' "${COMPREPLY[@]}" | LC_ALL=C sort | tr '\n' ' ')
  if [[ "${got% }" != "$2" ]]; then
    echo "velmora $1<TAB>: expected [$2], got [${got% }]"
    failures=$((failures + 1))
  fi
}

[[ $(complete -p velmora) == *"-F _velmora"* ]] || { echo "no completion registered for velmora"; failures=1; }
expect "--j" "--jobs"
expect "--v" "--version"
expect "-" "--call --cause --detail --failed --from --help --jobs --message --tei --to --version -j -q"
expect "--from p" "pbx pcap"
expect "--detail " "description full"
expect "--tei " ""
expect "-j 1" "1"
expect "--jobs " "$(seq 1 "$(nproc)" | LC_ALL=C sort | tr '\n' ' ' | sed 's/ $//')"
expect "--to m" "message"
expect "trac" "trace.txt traces"
expect "traces/" "traces/a.txt"
expect "-q trace.txt " "-odd.txt trace.txt traces"
expect "-- -o" "-odd.txt"
expect "--help " ""
exit $((failures > 0))
