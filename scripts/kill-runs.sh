#!/usr/bin/env bash
# kill-runs.sh [N [M]]: kills hylden-run N times (200) at random moments of a test, a level calibration and an insertion
# loss on the bench in virtual time, recovers each journal, and compares what comes back with an undisturbed run: every
# step that was told to be done has to be there, to the byte. Then kills hylden, in real time, with an operator of its own
# (tests/operated), M times (20) in a test and M times in a level calibration: the same, and the next start continues the
# run to its end. Prints a summary; ends with 1 when a row is missing or differs. HYLDEN_PRESET names another build than
# dev.
set -euo pipefail
cd "$(dirname "$0")/.."
root=$PWD
run=$root/build/${HYLDEN_PRESET:-dev}/bin/hylden-run
times=${1:-200}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export HYLDEN_HOME=$work/home HYLDEN_LOCK=kill-runs-$$
cp -r examples/station "$work/station"
mkdir "$HYLDEN_HOME"
cd "$work/station"
# finer steps, so that a run lasts a while
sed -i '7s/.*/ .1\r/' substitution-am.tst
sed -i '5s/.*/ .2 \r/' cdn-10v.csu

declare -A job=([run]="--test substitution-am.tst" [cal]="--calibrate cdn-10v.csu"
                [los]="--cable-loss --start 0.15 --stop 230 --level -10 --log-step 0.5")
# start KIND OUTPUT
start() {
  # shellcheck disable=SC2086
  exec "$run" ${job[$1]} --equipment station.eqp --bench bench.txt --virtual-time --yes --seed 7 --output "$2"
}
# rows KIND FILE: the rows of a file, without what stands before them
rows() {
  declare -A head=([run]=3 [cal]=0 [los]=12)
  tail -n "+$((${head[$1]} + 1))" "$2"
}

declare -A lines
for kind in run cal los; do
  (start $kind "$work/whole.$kind") >"$work/whole.log"
  lines[$kind]=$(wc -l <"$work/whole.log")
done

declare -A count=([recovered]=0 [finished]=0 [early]=0 [failed]=0)
total=0
for ((i = 1; i <= times; ++i)); do
  kinds=(run cal los)
  kind=${kinds[i % 3]}
  rm -f "$work"/back.* "$work"/killed.*
  (start $kind "$work/killed.$kind") >"$work/log" 2>&1 &
  child=$!
  # a random line of what it says, and a moment later
  moment=$(((RANDOM * 32768 + RANDOM) % lines[$kind]))
  while kill -0 $child 2>/dev/null && [ "$(wc -l <"$work/log")" -lt $moment ]; do :; done
  kill -KILL $child 2>/dev/null || true
  wait $child 2>/dev/null || true
  # of an insertion loss the steps of the second pass count
  done=$(sed '1,/^Insert pass/{/^Insert pass/!{/^step/d}}' "$work/log" | grep -c '^step ' || true)
  [ $kind != los ] || grep -q '^Insert pass' "$work/log" || done=0
  name=$("$run" --recover | sed -n '/^No journal/!s/ .*//p')
  if [ -z "$name" ]; then
    [ -s "$work/killed.$kind" ] && outcome=finished || outcome=early
    [ $outcome = finished ] || [ "$done" = 0 ] || outcome=failed
  elif ! "$run" --recover "$name" --output "$work/back.$kind" >"$work/back.log" 2>&1; then
    outcome=early
    { grep -q 'too little' "$work/back.log" && [ "$done" -lt 2 ]; } || outcome=failed
    rm -f "$HYLDEN_HOME"/journals/*
  else
    outcome=recovered
    got=$(rows $kind "$work/back.$kind" | wc -l)
    total=$((total + got))
    cmp -s <(rows $kind "$work/back.$kind") <(rows $kind "$work/whole.$kind" | head -n "$got") || outcome=failed
    [ "$got" -ge "$done" ] || outcome=failed
  fi
  [ $outcome != failed ] || echo "run $i ($kind): $done steps told, $(cat "$work/back.log" 2>/dev/null || true)"
  count[$outcome]=$((count[$outcome] + 1))
done
echo "hylden-run, $times killed: ${count[recovered]} recovered ($total rows), ${count[finished]} had saved theirs," \
  "${count[early]} had too little for a file, ${count[failed]} failed"
[ "${count[failed]}" = 0 ] || exit 1

# The windows: fewer steps, since a step takes half a second, and no noise, so that two runs are alike.
cp -r "$root/examples/station/." .
sed -i '7s/.*/ 80\r/; 8s/.*/ .02\r/' substitution-am.tst
sed -i '5s/.*/ 100 \r/; 18s/.*/ .02 \r/' cdn-10v.csu
sed -i 's/^noise_db = .*/noise_db = 0/' bench.txt
export HYLDEN_HOME=$work/windows QT_QPA_PLATFORM=offscreen
mkdir "$HYLDEN_HOME"
printf '[Gpib]\r\nDriver=bench\r\nBench=%s\r\n' "$PWD/bench.txt" >"$HYLDEN_HOME/Hylden.ini"
# window KIND OUTPUT: hylden, with an operator who runs, or continues what was left, and saves
window() {
  [ "$1" = run ] && set -- "$@" /t:substitution-am.tst || export HYLDEN_OPERATED_SETUP=cdn-10v.csu
  HYLDEN_OPERATED_SAVE=$2 exec "$root/build/${HYLDEN_PRESET:-dev}/tests/hylden_operated" /e:station.eqp "${@:3}" 2>&1
}
# alike KIND ONE OTHER: behind a seam a calibration comes from another level, and ends anywhere within the tolerance
alike() {
  [ "$1" = cal ] || { cmp -s "$2" "$3" && return || return 1; }
  paste -d, "$2" "$3" | awk -F, '{ d = $2 - $8; if ($1 != $7 || d > 0.5 || d < -0.5) bad = 1 } END { exit bad }' &&
    [ "$(wc -l <"$2")" = "$(wc -l <"$3")" ]
}

declare -A length windows=([recovered]=0 [finished]=0 [early]=0 [failed]=0)
total=0
for kind in run cal; do
  rm -f "$work/whole.$kind"
  begun=$(date +%s%N)
  (window $kind "$work/whole.$kind") >"$work/whole.log"
  length[$kind]=$((($(date +%s%N) - begun) / 1000000))
done
for ((i = 0; i < 2 * ${2:-20}; ++i)); do
  kinds=(run cal)
  kind=${kinds[i % 2]}
  rm -f "$work"/back.* "$work"/killed.*
  (window $kind "$work/killed.$kind") >"$work/log" &
  child=$!
  moment=$(((RANDOM * 32768 + RANDOM) % length[$kind]))
  sleep "$((moment / 1000)).$(printf %03d $((moment % 1000)))"
  kill -KILL $child 2>/dev/null || true
  wait $child 2>/dev/null || true
  done=$(sed -n 's/^step //p' "$work/log" | tail -1)
  name=$("$run" --recover | sed -n '/^No journal/!s/ .*//p')
  if [ -z "$name" ]; then
    [ -s "$work/killed.$kind" ] && outcome=finished || outcome=early
    [ $outcome = finished ] || [ "${done:-0}" = 0 ] || outcome=failed
  else
    outcome=recovered
    cp "$HYLDEN_HOME/journals/$name.journal" "$work/kept"
    got=0
    if "$run" --recover "$name" --output "$work/back.$kind" >"$work/back.log" 2>&1; then
      got=$(rows $kind "$work/back.$kind" | wc -l)
      cmp -s <(rows $kind "$work/back.$kind") <(rows $kind "$work/whole.$kind" | head -n "$got") || outcome=failed
    else
      grep -q 'too little' "$work/back.log" && got=1 || outcome=failed
    fi
    total=$((total + got))
    [ "$got" -ge "${done:-0}" ] || outcome=failed
    cp "$work/kept" "$HYLDEN_HOME/journals/$name.journal"
    (window $kind "$work/back2.$kind") >"$work/back.log" || outcome=failed
    alike $kind "$work/back2.$kind" "$work/whole.$kind" || outcome=failed
    [ -z "$(ls "$HYLDEN_HOME/journals")" ] || outcome=failed
    rm -f "$work"/back2.*
  fi
  [ $outcome != failed ] || { echo "window $i ($kind): ${done:-0} steps told, at $moment ms" && cat "$work/back.log"; }
  rm -f "$HYLDEN_HOME"/journals/*
  windows[$outcome]=$((windows[$outcome] + 1))
done
echo "hylden, $i killed: ${windows[recovered]} recovered ($total rows) and continued to the end," \
  "${windows[finished]} had saved theirs, ${windows[early]} had no row yet, ${windows[failed]} failed"
[ "${windows[failed]}" = 0 ]
