#!/usr/bin/env bash
# Builds the release preset, runs the benchmarks and prints each figure beside its limit. Ends with 1 when one is missed.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh

cmake --preset release
cmake --build --preset release --target benchmarks
scripts/benchmark-table.py build/release/benchmarks/bench_*
