#!/usr/bin/env bash
# velmora against the I/O floor on a generated trace.
#   bench/run_bench.sh BUILD_DIR [SIZE_MB] [JOBS...]
# Prints input and output MB/s, frames/s, peak resident memory and, measured
# in the same run on the same files, the time of `cat INPUT >/dev/null` plus
# `cp OUTPUT copy`: the floor that reading the input and writing the output
# cost anyway. The ratio velmora / floor is the figure to watch.
set -euo pipefail
build=${1:?build directory}
size=${2:-256}
shift 2 || shift $#
jobs_list=("${@:-1}")
[ ${#jobs_list[@]} -gt 0 ] || jobs_list=(1)
work=${BENCH_DIR:-build/bench-data}
mkdir -p "$work"
input="$work/trace-${size}MB.txt"
output="$work/message.txt"
[ -s "$input" ] || "$build/bench/velmora_gen_trace" "$size" "$input"

now() { date +%s.%N; }
frames=$(grep -c 'HDLC' "$input" || true)
in_bytes=$(stat -c %s "$input")
cat "$input" >/dev/null  # warm the page cache for every contender alike

printf '%-6s %9s %9s %11s %8s %10s %8s %7s %11s\n' jobs "in MB/s" "out MB/s" "frames/s" "peak MB" "velmora s" "floor s" ratio "to null s"
for jobs in "${jobs_list[@]}"; do
  rm -f "$output" "$output.copy"
  start=$(now)
  /usr/bin/time -f '%M' -o "$work/rss" "$build/velmora" -q --jobs "$jobs" "$input" "$output"
  end=$(now)
  velmora_s=$(echo "$end - $start" | bc -l)
  out_bytes=$(stat -c %s "$output")
  peak_kb=$(cat "$work/rss")
  start=$(now)
  cat "$input" >/dev/null
  cp "$output" "$output.copy"
  sync -f "$output.copy" 2>/dev/null || true
  end=$(now)
  floor_s=$(echo "$end - $start" | bc -l)
  rm -f "$output.copy"
  # The decoder alone: output to /dev/null, no write cost.
  start=$(now)
  "$build/velmora" -q --jobs "$jobs" "$input" /dev/null
  end=$(now)
  null_s=$(echo "$end - $start" | bc -l)
  awk -v j="$jobs" -v ib="$in_bytes" -v ob="$out_bytes" -v f="$frames" -v v="$velmora_s" -v fl="$floor_s" -v kb="$peak_kb" -v n="$null_s" \
    'BEGIN { printf "%-6s %9.1f %9.1f %11.0f %8.1f %10.3f %8.3f %7.2f %11.3f\n", j, ib/1e6/v, ob/1e6/v, f/v, kb/1024, v, fl, v/fl, n }'
done
echo "input $((in_bytes / 1000000)) MB, output $((out_bytes / 1000000)) MB, $frames frame lines"
