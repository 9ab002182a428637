#!/usr/bin/env bash
# kill-runs.sh [N]: kills hylden-run N times (200) at random moments of a test, a level calibration and an insertion
# loss on the bench in virtual time, recovers each journal, and compares what comes back with an undisturbed run: every
# step that was told to be done has to be there, to the byte. Prints a summary; ends with 1 when a row is missing or
# differs. HYLDEN_PRESET names another build than dev.
set -euo pipefail
cd "$(dirname "$0")/.."
run=$PWD/build/${HYLDEN_PRESET:-dev}/bin/hylden-run
times=${1:-200}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export HYLDEN_HOME=$work/home HYLDEN_LOCK=kill-runs-$$
cp -r examples/station "$work/station"
mkdir "$HYLDEN_HOME"
cd "$work/station"
# finer steps, so that a run lasts a while
sed -i '6s/.*/ .1\r/' substitution-am.tst
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
echo "$times runs killed: ${count[recovered]} recovered ($total rows), ${count[finished]} had saved theirs," \
  "${count[early]} had too little for a file, ${count[failed]} failed"
[ "${count[failed]}" = 0 ]
