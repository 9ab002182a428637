#!/usr/bin/env bash
# Builds and runs all tests, plain and under the sanitizers.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh

for preset in dev asan; do
  cmake --preset "$preset"
  cmake --build --preset "$preset"
  ctest --preset "$preset"
done
