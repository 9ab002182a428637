#!/usr/bin/env bash
# On a screen: builds, and opens the program on the simulated bench, with a copy of the demo station (build/demo/desk) and
# a demo test loaded; what is changed there stays.
# Without one (or with --console): takes a copy of the demo station through its whole work on the bench, on a virtual
# clock: measures the meter's cable, calibrates the levels with it and with the IFI amplifiers, and runs every test on
# these records, with a report of each. Leaves the files and a table of what was applied in build/demo/, and takes
# pictures of the windows (unless --console --no-pictures). HYLDEN_PRESET names another build than dev.
set -euo pipefail
cd "$(dirname "$0")/.."
root=$PWD
scripts/setup.sh
preset=${HYLDEN_PRESET:-dev}

out=$root/build/demo
mkdir -p "$out"
cmake --preset "$preset" >/dev/null

if [ "${1:-}" != --console ] && [ -n "${DISPLAY:-}${WAYLAND_DISPLAY:-}" ]; then
  cmake --build --preset "$preset" --target hylden
  mkdir -p "$out/home" "$out/desk"
  cp -ru examples/station/. "$out/desk"
  scripts/demo-settings.sh "$out/desk" >"$out/home/Hylden.ini"
  cp help/hylden.md "$out/home/hylden.hlp"
  cd "$out/desk"
  HYLDEN_HOME=$out/home exec "$root/build/$preset/bin/hylden" "/e:station.eqp" "/t:forward-power-constant-peak.tst"
fi

cmake --build --preset "$preset" --target hylden-run hylden

# the station of each calibration and test; the others are on station.eqp
declare -A station=([ifi-10v]=ifi-station.eqp [ifi-band-change]=ifi-station.eqp)

# run NAME arguments...: one job on the bench, with its log; every progress line stays there
run() {
  local name=$1
  shift
  echo "== $name"
  "$root/build/$preset/bin/hylden-run" --equipment "${station[$name]:-station.eqp}" --bench bench.txt --virtual-time --yes \
    "$@" | tee "$name.log" | grep -vE '^step ' || true
  grep -q '^Finished: ' "$name.log" || { echo "demo: $name did not finish" >&2; exit 1; }
}

rm -rf "$out/station"
cp -r examples/station "$out/station"
cd "$out/station"
run meter-cable --cable-loss --start 0.1 --stop 230 --log-step 5 --level -10 --output meter-cable.los
for setup in *.csu; do
  run "${setup%.csu}" --calibrate "$setup" --output "${setup%.csu}.cal"
done

row='%-32s %6s %6s %21s %16s %9s\n'
table=$(printf "$row" 'test' 'steps' 'rows' 'frequency, MHz' 'generator, dBm' 'real time')
for test in *.tst; do
  name=${test%.tst}
  run "$name" --test "$test" --output "$name.run"
  "$root/build/$preset/bin/hylden" --report "$name.run" --pdf "$name.pdf" --all-steps --paper a4

  read -r steps minutes < <(awk '/^Finished: /{print $4, $7}' "$name.log")
  applied=$(tr -d '\r' <"$name.run" | awk -F', ' 'NR > 3 && $2 !~ /^T/ {
      n++; level = $2 + 0
      if (n == 1) { first = $1; low = high = level }
      last = $1; if (level < low) low = level; if (level > high) high = level
    } END { printf "%d %s..%s %.1f..%.1f", n, first, last, low, high }')
  read -r rows range levels <<<"$applied"
  [ "$rows" = "$steps" ] || { echo "demo: $name has $rows rows for $steps steps" >&2; exit 1; }
  table+=$'\n'$(printf "$row" "$name" "$steps" "$rows" "$range" "$levels" "$minutes")
done
printf '\n%s\n\nCable loss, calibration records, run data and reports: build/demo/station\n' "$table"
cd "$root"
[ "${2:-}" = --no-pictures ] || scripts/pictures.sh
