#!/usr/bin/env bash
# Runs every fuzz target, one after the other, for SECONDS each.
#   fuzz/run.sh BUILD_DIR SECONDS          keeps what it learns in BUILD_DIR/corpus
#   fuzz/run.sh --smoke BUILD_DIR SECONDS  starts from the checked-in seeds only
# New inputs go to BUILD_DIR/corpus/<target>, never into fuzz/corpus; a
# failing input is saved as BUILD_DIR/artifacts/<target>-crash-... and the
# script stops with a failure.
set -euo pipefail

smoke=0
if [[ "${1:-}" == "--smoke" ]]; then
  smoke=1
  shift
fi
build_dir=${1:?build directory}
seconds=${2:?seconds per target}
source_dir=$(cd "$(dirname "$0")" && pwd)
targets=(line_handler translation_run element_decoders q931_message capture_input call_tracker frame_json pbx_dump
         router_dump hex_dump)

mkdir -p "$build_dir/artifacts"
summary=""
for target in "${targets[@]}"; do
  work="$build_dir/corpus/$target"
  [[ $smoke == 1 ]] && rm -rf "$work"
  mkdir -p "$work"
  options=(-max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 -print_final_stats=1
           -artifact_prefix="$build_dir/artifacts/$target-")
  case $target in
    line_handler | translation_run | frame_json) options+=(-dict="$source_dir/trace.dict" -max_len=8192) ;;
    pbx_dump | router_dump | hex_dump) options+=(-dict="$source_dir/dumps.dict" -max_len=8192) ;;
    capture_input) options+=(-max_len=16384) ;;
  esac
  log="$build_dir/fuzz_$target.log"
  echo "fuzz_$target: ${seconds}s"
  if ! "$build_dir/fuzz/fuzz_$target" "${options[@]}" "$work" "$source_dir/corpus/$target" >"$log" 2>&1; then
    tail -n 60 "$log"
    echo "fuzz_$target FAILED: reproducer in $build_dir/artifacts/ (log: $log)"
    exit 1
  fi
  runs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log")
  summary+="  fuzz_$target: ${runs:-?} executions in ${seconds}s, no failure"$'\n'
done
printf '%s' "$summary"
