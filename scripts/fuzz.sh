#!/usr/bin/env bash
# Runs the libFuzzer targets of fuzz/ for a given time each, with their seeds and dictionaries from
# tests/data/fuzz, and prints the executions and findings of each.
#
#   scripts/fuzz.sh SECONDS [TARGET...]     (targets: the names after fuzz_; default: all)
#
# JOBS=N runs N targets at a time (default 1). The build is the "fuzz" preset (clang); it is made
# when missing. The corpus grows in build/fuzz/corpus/TARGET; findings (crash-*, timeout-*, oom-*,
# leak-*) land in build/fuzz/findings/TARGET, with the log of the run in build/fuzz/logs.
set -euo pipefail
cd "$(dirname "$0")/.."

SECONDS_EACH=${1:?usage: scripts/fuzz.sh SECONDS [TARGET...]}
shift
ALL=(schedule_file remote_document mail_document log connection_list table_map viewer_settings list_files
     multirun_file mx_reply rpt formula)
if [ $# -gt 0 ]; then TARGETS=("$@"); else TARGETS=("${ALL[@]}"); fi
JOBS=${JOBS:-1}
BUILD=build/fuzz

if [ ! -f "$BUILD/build.ninja" ]; then
  cmake --preset fuzz >/dev/null
fi
cmake --build "$BUILD" -j2 --target "${TARGETS[@]/#/fuzz_}"

run_one() {
  local target=$1
  # Absolute paths: some targets change their working folder.
  local seeds=$PWD/tests/data/fuzz/$target corpus=$PWD/$BUILD/corpus/$target findings=$PWD/$BUILD/findings/$target
  mkdir -p "$corpus" "$findings" "$BUILD/logs"
  # A leak check would report the objects Qt keeps for the whole process; the flag alone does not
  # stop the check at exit.
  ASAN_OPTIONS=detect_leaks=0 "$BUILD/fuzz/fuzz_$target" -max_total_time="$SECONDS_EACH" -timeout=10 -rss_limit_mb=2048 \
    -detect_leaks=0 -print_final_stats=1 -dict="$PWD/tests/data/fuzz/$target.dict" \
    -artifact_prefix="$findings/" "$corpus" "$seeds" >"$BUILD/logs/$target.log" 2>&1 || true
  local runs findings_count
  runs=$(grep -o 'stat::number_of_executed_units: [0-9]*' "$BUILD/logs/$target.log" | tail -1 | grep -o '[0-9]*$' || true)
  findings_count=$(find "$findings" -type f | wc -l)
  printf '%-18s %12s executions  %4d corpus files  %3d findings\n' "$target" "${runs:-?}" \
    "$(find "$corpus" -type f | wc -l)" "$findings_count"
}

printf 'Each target for %s s, %s at a time\n' "$SECONDS_EACH" "$JOBS"
running=0
for target in "${TARGETS[@]}"; do
  run_one "$target" &
  running=$((running + 1))
  if [ "$running" -ge "$JOBS" ]; then
    wait -n
    running=$((running - 1))
  fi
done
wait
