#!/bin/sh
# Writes the demo station, examples/station, afresh. Needed when the bench's defaults, a file format or the level
# calibration have changed.
set -e
root=$(cd "$(dirname "$0")/.." && pwd)
build=${1:-$root/build/dev}
cmake --build "$build" --target hylden-make-station
cd "$root/examples/station"
"$build/bin/hylden-make-station"
