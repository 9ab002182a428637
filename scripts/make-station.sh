#!/bin/sh
# Writes the demo station, examples/station, afresh. Needed when the bench's defaults, a file format or the level
# calibration have changed.
set -e
root=$(cd "$(dirname "$0")/.." && pwd)
build=${1:-$root/build/dev}
cmake --build "$build" --target hylden-make-station hylden-run
cd "$root/examples/station"
"$build/bin/hylden-make-station"

# The records hold what the path needs: the bench has no reading noise while they are made.
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
sed 's/^noise_db = .*/noise_db = 0/' bench.txt >"$scratch/bench.txt"

# calibrate EQUIPMENT NAME: the record of a setup
calibrate() {
  HYLDEN_HOME=$scratch "$build/bin/hylden-run" --equipment "$1" --calibrate "$2.csu" --output "$2.cal" \
    --bench "$scratch/bench.txt" --virtual-time --yes >"$scratch/log" || { cat "$scratch/log" >&2; exit 1; }
}
calibrate station.eqp cdn-10v
calibrate ifi-station.eqp ifi-10v
