#!/usr/bin/env python3
"""Runs the given benchmark programs and prints their figures against their limits, the median of several repetitions.

A benchmark states its limits itself: the counter time_limit_ns limits its time per iteration, X_limit the counter X.
Times are processor times, which other work on the machine lengthens little; real_time_limit_ns limits the elapsed time
of one that starts other processes.
"""

import json
import os
import subprocess
import sys

REPETITIONS = 5
LONGEST_SECONDS = 600  # the longest one takes a minute or two; one that waits for something must not hold up the rest
NANOSECONDS = {"ns": 1, "us": 1e3, "ms": 1e6, "s": 1e9}


def results(program):
    """The median rows, those of benchmarks that ask for one repetition only, and those of benchmarks that failed."""
    command = [program, "--benchmark_format=json", f"--benchmark_repetitions={REPETITIONS}"]
    try:
        output = subprocess.run(command, stdout=subprocess.PIPE, check=True, text=True, timeout=LONGEST_SECONDS).stdout
    except subprocess.TimeoutExpired:
        return [{"run_name": os.path.basename(program), "error_occurred": True,
                 "error_message": f"> {LONGEST_SECONDS} s"}]
    rows = json.loads(output)["benchmarks"]
    wanted = [row for row in rows if row.get("aggregate_name") == "median" or row["repetitions"] == 1]
    return [row for row in rows if row.get("error_occurred")] + wanted


def time_text(nanoseconds):
    for unit in ("s", "ms", "us"):
        if nanoseconds >= NANOSECONDS[unit]:
            return f"{nanoseconds / NANOSECONDS[unit]:.3g} {unit}"
    return f"{nanoseconds:.3g} ns"


def figures(row):
    """What the row tells: (figure, value, limit or None, whether it is within)."""
    if row.get("error_occurred"):
        return [("time", row.get("error_message", "failed"), "", False)]
    real = "real_time_limit_ns" in row
    time = row["real_time" if real else "cpu_time"] * NANOSECONDS[row["time_unit"]]
    limit = row.get("real_time_limit_ns" if real else "time_limit_ns")
    found = []
    if limit or not any(name.endswith("_limit") for name in row):
        found.append(("time", time_text(time), time_text(limit) if limit else "", limit is None or time <= limit))
    for name in row:
        if name.endswith("_limit"):
            figure = name[: -len("_limit")]
            found.append((figure, f"{row[figure]:.3g}", f"{row[name]:.3g}", row[figure] <= row[name]))
    return found


def main():
    missed = 0
    print(f"{'benchmark':<34} {'figure':<24} {'measured':>12} {'limit':>12}")
    for program in sys.argv[1:]:
        for row in results(program):
            name = row["run_name"].split("/iterations:")[0].split("/repeats:")[0]
            for figure, value, limit, within in figures(row):
                missed += not within
                print(f"{name:<34} {figure:<24} {value:>12} {limit or '-':>12}{'' if within else '   MISSED'}", flush=True)
    if missed:
        print(f"{missed} missed")
    return 1 if missed or len(sys.argv) < 2 else 0


if __name__ == "__main__":
    sys.exit(main())
