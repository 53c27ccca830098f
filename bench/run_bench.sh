#!/usr/bin/env bash
# velmora against the I/O floor on a generated trace.
#   bench/run_bench.sh BUILD_DIR [SIZE_MB] [JOBS...]
# Environment: BENCH_DIR (where the trace and outputs go), BENCH_RUNS (runs
# per contender, default 5), BASELINE (another velmora binary: its decoding
# time is shown beside ours and its output compared with ours).
#
# The floor is what any program that reads the input and writes the output
# from user space pays anyway: `cat INPUT >/dev/null`, then `dd` writing a
# fresh file of the output's size from /dev/zero in the writer's block size.
# Every contender writes a fresh file (the old one is removed untimed), the
# contenders take turns within each round, and every figure is the median
# of the rounds. "to null" is velmora decoding to /dev/null: no write cost;
# its rounds (the baseline's taking turns with them) come first, before
# any file is written.
set -euo pipefail
[ -n "${EPOCHREALTIME:-}" ] || { echo "run_bench.sh needs bash 5 (EPOCHREALTIME)" >&2; exit 1; }
build=${1:?build directory}
size=${2:-128}
shift 2 || shift $#
jobs_list=("${@:-1}")
[ ${#jobs_list[@]} -gt 0 ] || jobs_list=(1)
runs=${BENCH_RUNS:-5}
baseline=${BASELINE:-}
block_kb=1024  # OutputWriter::kBehindCapacity, the block one thread writes a file in
work=${BENCH_DIR:-build/bench-data}
mkdir -p "$work"
input="$work/trace-${size}MB.txt"
output="$work/message.txt"
copy="$work/floor-copy"
[ -s "$input" ] || "$build/bench/velmora_gen_trace" "$size" "$input"

export LC_ALL=C
# Seconds that the command takes, read from the shell's own clock: a `date`
# on either side would add its own start-up to every contender.
timed() {
  local start=$EPOCHREALTIME
  "$@"
  local end=$EPOCHREALTIME
  echo "$end - $start" | bc -l
}
median() { printf '%s\n' "$@" | sort -g | awk '{ v[NR] = $1 } END { print (NR % 2) ? v[(NR + 1) / 2] : (v[NR / 2] + v[NR / 2 + 1]) / 2 }'; }
floor_run() {
  cat "$input" >/dev/null
  dd if=/dev/zero of="$copy" bs=${block_kb}K count="$1" status=none
}

frames=$(grep -c 'HDLC' "$input" || true)
in_bytes=$(stat -c %s "$input")
cat "$input" >/dev/null  # warm the page cache for every contender alike
rm -f "$output"
"$build/velmora" -q --jobs 1 "$input" "$output"
out_bytes=$(stat -c %s "$output")
blocks=$(((out_bytes + block_kb * 1024 - 1) / (block_kb * 1024)))

if [ -n "$baseline" ]; then
  rm -f "$output.baseline"
  "$baseline" -q --jobs 1 "$input" "$output.baseline"
  if cmp -s "$output" "$output.baseline"; then
    echo "output identical to the baseline's ($baseline)"
  else
    echo "OUTPUT DIFFERS from the baseline's ($baseline)"
  fi
  rm -f "$output.baseline"
fi

printf '%-5s %8s %9s %10s %8s %10s %8s %6s %10s' jobs "in MB/s" "out MB/s" "frames/s" "peak MB" "velmora s" "floor s" ratio "to null s"
[ -n "$baseline" ] && printf ' %11s %8s' "baseline s" speed-up
printf '\n'
for jobs in "${jobs_list[@]}"; do
  velmora_s=() floor_s=() null_s=() base_s=()
  peak_kb=0
  # The decoding alone first: the files' pages that the kernel writes back
  # after the other rounds would compete with it.
  sync
  for ((run = 0; run < runs; run++)); do
    null_s+=("$(timed "$build/velmora" -q --jobs "$jobs" "$input" /dev/null)")
    [ -n "$baseline" ] && base_s+=("$(timed "$baseline" -q --jobs "$jobs" "$input" /dev/null)")
  done
  for ((run = 0; run < runs; run++)); do
    rm -f "$output"
    velmora_s+=("$(timed /usr/bin/time -f '%M' -o "$work/rss" "$build/velmora" -q --jobs "$jobs" "$input" "$output")")
    peak_kb=$(awk -v a="$peak_kb" -v b="$(cat "$work/rss")" 'BEGIN { print (b > a) ? b : a }')
    rm -f "$copy"
    floor_s+=("$(timed floor_run "$blocks")")
  done
  rm -f "$copy"
  v=$(median "${velmora_s[@]}")
  fl=$(median "${floor_s[@]}")
  n=$(median "${null_s[@]}")
  awk -v j="$jobs" -v ib="$in_bytes" -v ob="$out_bytes" -v f="$frames" -v v="$v" -v fl="$fl" -v kb="$peak_kb" -v n="$n" \
    'BEGIN { printf "%-5s %8.1f %9.1f %10.0f %8.1f %10.3f %8.3f %6.2f %10.3f", j, ib/1e6/v, ob/1e6/v, f/v, kb/1024, v, fl, v/fl, n }'
  if [ -n "$baseline" ]; then
    b=$(median "${base_s[@]}")
    awk -v b="$b" -v n="$n" 'BEGIN { printf " %11.3f %7.2fx", b, b/n }'
  fi
  printf '\n'
done
echo "input $((in_bytes / 1000000)) MB, output $((out_bytes / 1000000)) MB, $frames frame lines; medians of $runs runs"
