#!/usr/bin/env bash
# Takes a short calibration and a short test of the demo station over every way to the bus, in real time: hylden-bench
# serves the simulated bench, and hylden-run drives it through a GPIB adapter on a socket, one on a serial line, and a
# socket for each instrument. Prints how far the rows are from those of the bench inside the program, and fails where
# that is more than the noise. Leaves the files in build/demo-bus/. HYLDEN_PRESET names another build than dev.
set -euo pipefail
cd "$(dirname "$0")/.."
preset=${HYLDEN_PRESET:-dev}
programs=$PWD/build/$preset/bin
out=$PWD/build/demo-bus
most_db=0.3 # six times the noise of a reading
seed=7

cmake --preset "$preset" >/dev/null
cmake --build --preset "$preset" --target hylden-run hylden-bench
rm -rf "$out"
mkdir -p "$out"
cp -r examples/station/. "$out"
cd "$out"

# 20 to 40 MHz in steps of 30 %; the test by net power with short dwells, the probe read at each of them
sed -i -e '1s/^.*/ 20\r/' -e '2s/^.*/ 40\r/' -e '5s/^.*/ 30\r/' cdn-10v.csu
sed -i -e '2s/^.*/ 20\r/' -e '3s/^.*/ 40\r/' -e '7s/^.*/ 30\r/' -e '8s/^.*/ .2\r/' -e '27s/^.*/True\r/' net-power-fm.tst
declare -A job=([cal]='--calibrate cdn-10v.csu' [run]='--test net-power-fm.tst') place=([cal]=port [run]=probe)

# drive WAY KIND options...: the job, its output in WAY.KIND
drive() {
  local way=$1 kind=$2
  shift 2
  # shellcheck disable=SC2086
  HYLDEN_HOME=$out/home-$way-$kind HYLDEN_LOCK=demo-bus-$$-$way-$kind timeout 300 "$programs/hylden-run" \
    --equipment station.eqp ${job[$kind]} --output "$way.$kind" --yes "$@" >"$way-$kind.log" 2>&1 </dev/null
}

# settings WAY WAYS-FILE: Hylden.ini for it
settings() {
  case $1 in
    network) printf '[Gpib]\nDriver=adapter\n' && grep '^Adapter=tcp:' "$2" ;;
    serial) printf '[Gpib]\nDriver=adapter\n' && grep '^Adapter=serial:' "$2" ;;
    sockets) printf '[Devices]\n' && grep '=socket:' "$2" ;;
  esac
}

# over WAY KIND: the job over this way to a bench of its own, whose meter is plugged as the job needs
over() {
  local way=$1 kind=$2 ways=$1-$2.ways began=$SECONDS
  "$programs/hylden-bench" --equipment station.eqp --bench bench.txt --seed $seed --meter-at "${place[$kind]}" \
    >"$ways" 2>"$way-$kind.bench.log" &
  local bench=$!
  # shellcheck disable=SC2064
  trap "kill $bench 2>/dev/null || true" EXIT
  for _ in $(seq 100); do grep -q '^ready' "$ways" && break || sleep 0.1; done
  mkdir -p "home-$way-$kind"
  settings "$way" "$ways" >"home-$way-$kind/Hylden.ini"
  drive "$way" "$kind"
  kill "$bench"
  wait "$bench"
  trap - EXIT
  echo $((SECONDS - began)) >"$way-$kind.seconds"
}

# distance A B: rows, and the largest difference of their numbers; nothing where they are not the same steps
distance() {
  paste -d '\n' <(tr -d '\r' <"$1") <(tr -d '\r' <"$2") | awk -F, '
    function is_number(text) { return text ~ /^ *-?[0-9]/ }
    NR % 2 { line = $0; n = split($0, a, ","); next }
    !is_number(line) && line == $0 { next }
    n != NF || a[1] != $1 { exit failed = 1 }
    { rows++
      for (i = 2; i <= n; i++) {
        if (is_number(a[i]) && is_number($i)) { d = a[i] - $i; if (d < 0) d = -d; if (d > most) most = d }
        else if (a[i] != $i) exit failed = 1
      } }
    END { if (!failed && rows > 0) printf "%d %.3f", rows, most }'
}

for kind in cal run; do
  drive inside "$kind" --bench bench.txt --seed $seed --virtual-time
  for way in network serial sockets; do over "$way" "$kind" & done
done
wait

row='%-10s %-6s %6s %12s %9s\n'
# shellcheck disable=SC2059
printf "$row" way job rows difference 'real, s'
failed=
for kind in cal run; do
  for way in network serial sockets; do
    rows='' most=''
    read -r rows most < <(distance "inside.$kind" "$way.$kind" 2>/dev/null) || true
    # shellcheck disable=SC2059
    printf "$row" $way $kind "${rows:--}" "${most:--}" "$(cat "$way-$kind.seconds" 2>/dev/null || echo -)"
    awk -v most="${most:-9}" -v limit=$most_db 'BEGIN { exit !(most <= limit) }' || { failed=1; cat "$way-$kind.log"; }
    grep -q '^stopped: RF is off' "$way-$kind.ways" || { failed=1; echo "demo-bus: RF was left on" >&2; }
  done
done
[ -z "$failed" ] || { echo "demo-bus: not the rows of the bench inside the program" >&2; exit 1; }
