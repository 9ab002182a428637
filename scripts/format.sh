#!/usr/bin/env bash
# Formats every source file; with --check it only tells which ones are off.
set -euo pipefail
cd "$(dirname "$0")/.."

mode=(-i)
[ "${1:-}" = --check ] && mode=(--dry-run --Werror)
find src tests examples benchmarks fuzz \( -name '*.cpp' -o -name '*.h' \) -print0 | xargs -0 -r clang-format "${mode[@]}"
