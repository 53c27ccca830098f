#!/usr/bin/env bash
# The call report of a generated trace of short calls: its size, the time
# and peak memory to write it, and how soon headless Chromium shows it.
#   bench/report_bench.sh BUILD_DIR [SIZE_MB] [distinct]
# SIZE_MB 150 gives about 100,000 calls. With "distinct", every SETUP gets
# calling and called numbers of its own (the generator repeats one pair), so
# that each call brings new decoded lines to the report.
set -euo pipefail
build=${1:?build directory}
size=${2:-150}
distinct=${3:-}
work=${BENCH_DIR:-build/bench-data}
mkdir -p "$work"
trace="$work/calls-${size}MB${distinct:+-distinct}.txt"
report="$work/report.html"
if [ ! -s "$trace" ]; then
  "$build/bench/velmora_gen_trace" "$size" "$trace.tmp" calls
  if [ -n "$distinct" ]; then
    # The digits 1234567 that both numbers end in, as the SETUP's serial number.
    awk '/0x31 0x32 0x33 0x34 0x35 0x36 0x37/ {
           serial = sprintf("%07d", ++n); cells = ""
           for (i = 1; i <= 7; ++i) cells = cells (i > 1 ? " " : "") sprintf("0x%02x", 48 + substr(serial, i, 1))
           gsub(/0x31 0x32 0x33 0x34 0x35 0x36 0x37/, cells)
         } { print }' "$trace.tmp" >"$trace"
    rm "$trace.tmp"
  else
    mv "$trace.tmp" "$trace"
  fi
fi
cat "$trace" >/dev/null  # a warm page cache
/usr/bin/time -f '%e %M' -o "$work/time" "$build/velmora" -q --to report "$trace" "$report"
read -r seconds peak_kb <"$work/time"
echo "$(basename "$trace"): $(("$(stat -c %s "$trace")" / 1000000)) MB; report written in $seconds s," \
  "peak resident memory $((peak_kb / 1024)) MB"
python3 "$(dirname "$0")/../tests/browser/report_browser.py" measure "$report"
