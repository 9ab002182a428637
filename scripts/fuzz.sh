#!/usr/bin/env bash
# fuzz.sh [SECONDS [TARGET...]]: lets every fuzzer, or those that are named, run for so long (10 s), from the demo
# station's files and what earlier runs have found. Ends at the first finding, whose input is left in build/fuzz.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh clang libclang-rt-14-dev
seconds=${1:-10}
shift || true

cmake --preset fuzz >/dev/null
cmake --build --preset fuzz --target fuzzers
[ $# -gt 0 ] || set -- $(cd fuzz && ls ./*.cpp | sed 's,./,,; s,\.cpp,,')

# The files that a reader starts from.
seeds() {
  case $1 in
    definitions) ls examples/station/*.{sg,mtr,pm} ;;
    documents) ls examples/station/*.{eqp,csu,tst,hyinfo} ;;
    factor_table) ls examples/station/*.{los,fac,prb,pwr,lev} ;;
    frequency_list) ls examples/station/*.lst ;;
    calibration_record) ls examples/station/*.cal ;;
    bench_file) ls examples/station/bench*.txt ;;
    *) ls "fuzz/seeds/$1"/* 2>/dev/null || true ;;
  esac
}

export TMPDIR
TMPDIR=$(mktemp -d /dev/shm/hylden-fuzz.XXXXXX)
trap 'rm -rf "$TMPDIR"' EXIT
for target in "$@"; do
  corpus=build/fuzz/corpus/$target
  mkdir -p "$corpus"
  for file in $(seeds "$target"); do cp -n "$file" "$corpus/$(basename "$file")"; done
  log=build/fuzz/$target.log
  if ! "build/fuzz/fuzz/fuzz_$target" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 -max_len=8192 \
    -print_final_stats=1 -artifact_prefix="build/fuzz/$target-" "$corpus" >"$log" 2>&1; then
    tail -40 "$log"
    echo "fuzz: $target has a finding" >&2
    exit 1
  fi
  printf '%-20s %8s inputs per second, %9s in all\n' "$target" \
    "$(awk '/average_exec_per_sec/{print $2}' "$log")" "$(awk '/number_of_executed_units/{print $2}' "$log")"
done
