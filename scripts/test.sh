#!/usr/bin/env bash
# Builds and runs all tests, plain and under the sanitizers; or as the presets say that are given.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh

[ $# -gt 0 ] || set -- dev asan
for preset; do
  cmake --preset "$preset"
  cmake --build --preset "$preset"
  ctest --preset "$preset"
done
