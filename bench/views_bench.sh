#!/usr/bin/env bash
# Every view of the benchmark trace against the message file, on one thread:
# each view's time to a fresh file, its ratio to the message file's and the
# goal beside it, and its peak resident memory.
#   bench/views_bench.sh BUILD_DIR [SIZE_MB]
# Environment: BENCH_DIR (where the trace and outputs go), BENCH_RUNS (runs
# per view, default 5). The views take turns within each round and every
# figure is the median of the rounds, so that a noisy, shared machine
# bends them alike; the ratios are what to compare between machines.
set -euo pipefail
[ -n "${EPOCHREALTIME:-}" ] || { echo "views_bench.sh needs bash 5 (EPOCHREALTIME)" >&2; exit 1; }
build=${1:?build directory}
size=${2:-128}
runs=${BENCH_RUNS:-5}
work=${BENCH_DIR:-build/bench-data}
mkdir -p "$work"
input="$work/trace-${size}MB.txt"
output="$work/view.out"
[ -s "$input" ] || "$build/bench/velmora_gen_trace" "$size" "$input"
export LC_ALL=C

# name, options, the goal as a largest ratio to the message file (- for none)
views=(
  "message||-"
  "--detail full|--detail full|1.35"
  "--to json|--to json|2.00"
  "--to calls|--to calls|0.60"
  "--to report|--to report|0.80"
)
declare -A times peaks
median() { printf '%s\n' "$@" | sort -g | awk '{ v[NR] = $1 } END { print (NR % 2) ? v[(NR + 1) / 2] : (v[NR / 2] + v[NR / 2 + 1]) / 2 }'; }

cat "$input" >/dev/null  # a warm page cache for every view alike
for ((run = 0; run < runs; run++)); do
  for view in "${views[@]}"; do
    IFS='|' read -r name options goal <<<"$view"
    rm -f "$output"
    start=$EPOCHREALTIME
    # shellcheck disable=SC2086 # the options are words
    /usr/bin/time -f '%M' -o "$work/rss" "$build/velmora" -q --jobs 1 $options "$input" "$output"
    end=$EPOCHREALTIME
    times[$name]+="$(echo "$end - $start" | bc -l) "
    peaks[$name]=$(awk -v a="${peaks[$name]:-0}" -v b="$(cat "$work/rss")" 'BEGIN { print (b > a) ? b : a }')
  done
done
rm -f "$output"

# shellcheck disable=SC2086 # the times are words
message=$(median ${times[message]})
printf '%-15s %9s %7s %7s %8s %9s\n' view seconds ratio goal "peak MB" "goal MB"
for view in "${views[@]}"; do
  IFS='|' read -r name options goal <<<"$view"
  # shellcheck disable=SC2086
  seconds=$(median ${times[$name]})
  awk -v n="$name" -v s="$seconds" -v m="$message" -v g="$goal" -v kb="${peaks[$name]}" 'BEGIN {
    ratio = s / m
    verdict = g == "-" ? "" : (ratio <= g + 0 ? "  met" : "  missed")
    printf "%-15s %9.3f %7.2f %7s %8.1f %9s%s%s\n", n, s, ratio, (g == "-" ? "-" : "<=" g), kb / 1024, "<16", \
      (kb / 1024 < 16 ? "" : "  memory missed"), verdict }'
done
echo "input $((size)) MB, one thread, each view to a file; medians of $runs runs"

# Each debug dump reader on a dump of the same size, the hand-written test
# dump over and over (the PBX dump's one cut-off message made whole), read
# into the message file.
for reader in pbx router hex; do
  dump="$work/${reader}-${size}MB.txt"
  if [ ! -s "$dump" ]; then
    sed 's/^> \[08 02 80$/> [08 02 80 90]/' "$(dirname "$0")/../tests/data/dumps/$reader.txt" >"$dump.one"
    copies=$((size * 1024 * 1024 / $(stat -c %s "$dump.one")))
    for ((c = 0; c < copies; c++)); do cat "$dump.one"; done >"$dump"
    rm -f "$dump.one"
  fi
  cat "$dump" >/dev/null
  dump_s=()
  for ((run = 0; run < runs; run++)); do
    rm -f "$output"
    start=$EPOCHREALTIME
    "$build/velmora" -q --jobs 1 --from "$reader" "$dump" "$output"
    end=$EPOCHREALTIME
    dump_s+=("$(echo "$end - $start" | bc -l)")
  done
  rm -f "$output"
  awk -v r="$reader" -v s="$(median "${dump_s[@]}")" -v b="$(stat -c %s "$dump")" 'BEGIN {
    mbs = b / 1e6 / s
    printf "%s dump reader: %.0f MB/s of input to a file (goal >= 300)%s\n", r, mbs, (mbs >= 300 ? "  met" : "  missed") }'
done
