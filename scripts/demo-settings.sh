#!/usr/bin/env bash
# demo-settings.sh STATION-DIRECTORY: the settings of a program that works on the simulated bench with the station in
# this directory; every kind of file lives there.
set -euo pipefail
station=$1
printf '[Gpib]\r\nDriver=bench\r\nBench=%s\r\n' "$station/bench.txt"
for kind in Equip Calibrations Test_Setups Test_Results Cables Factors Probes FreqList Insertion_Loss; do
  printf '[%s]\r\nDir=%s\r\n' "$kind" "$station"
done
