#!/usr/bin/env python3
"""Checks that every folder of src/ includes only folders above it, and that Qt stays in its rooms: qt/, widgets/, app/."""

import pathlib
import re
import sys

ORDER = ["text", "platform", "script", "shell", "widgets", "measure", "instruments", "editors", "documents", "run",
         "calibration", "testrun", "bench", "app"]
SIBLINGS = {("calibration", "testrun"), ("testrun", "calibration")}
BENCH_SEES = {"text", "platform", "measure", "bench"}
BENCH_HEADERS = re.compile(r"instruments/\w+Definition\.h$")
INCLUDE = re.compile(r'^\s*#include\s+(["<])([^">]+)[">]')


def allowed(path, header):
    folder, target = path.parts[0], header.split("/")[0]
    if target not in ORDER or (folder, target) in SIBLINGS:
        return False
    if target == "widgets" and not is_desktop(path):
        return False
    if (folder, target) == ("shell", "widgets"):  # widgets stand beside the shell: each knows the other's
        return True
    if (folder, target) == ("widgets", "measure"):  # values that it computes and they show
        return not header.startswith("measure/qt/")
    if folder == "bench":
        return target in BENCH_SEES | {"widgets"} or bool(BENCH_HEADERS.match(header))
    if folder != "app" and target == "bench":
        return False
    return ORDER.index(target) <= ORDER.index(folder)


def is_desktop(path):
    return "qt" in path.parts or path.parts[0] in {"widgets", "app"}


def main():
    source = pathlib.Path(__file__).resolve().parent.parent / "src"
    faults = []
    for path in sorted(source.rglob("*")):
        if path.suffix not in {".h", ".cpp"}:
            continue
        inside = path.relative_to(source)
        for number, line in enumerate(path.read_text(encoding="utf-8").splitlines(), 1):
            match = INCLUDE.match(line)
            if not match:
                continue
            quoted, header = match.group(1) == '"', match.group(2)
            if not quoted and header.startswith("Q") and not is_desktop(inside):
                faults.append(f"src/{inside}:{number}: Qt in the core: {header}")
            if quoted and "/" in header and not allowed(inside, header):
                faults.append(f"src/{inside}:{number}: {inside.parts[0]}/ may not include {header}")
    print("\n".join(faults) if faults else "layers: in order")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
