#!/usr/bin/env python3
"""Checks that every folder of src/ includes only folders above it, and that the core includes no Qt."""

import pathlib
import re
import sys

ORDER = ["text", "platform", "script", "shell", "measure", "instruments", "editors", "documents", "calibration",
         "testrun", "bench", "app"]
BENCH_SEES = {"text", "platform", "measure", "bench"}
BENCH_HEADERS = re.compile(r"instruments/\w+Definition\.h$")
INCLUDE = re.compile(r'^\s*#include\s+(["<])([^">]+)[">]')


def allowed(folder, header):
    target = header.split("/")[0]
    if target not in ORDER:
        return False
    if folder == "bench":
        return target in BENCH_SEES or bool(BENCH_HEADERS.match(header))
    if folder != "app" and target == "bench":
        return False
    return ORDER.index(target) <= ORDER.index(folder)


def is_desktop(path):
    return "qt" in path.parts or path.stem.startswith("frm") or path.stem == "TopMenu" or "app" in path.parts


def main():
    source = pathlib.Path(__file__).resolve().parent.parent / "src"
    faults = []
    for path in sorted(source.rglob("*")):
        if path.suffix not in {".h", ".cpp"}:
            continue
        folder = path.relative_to(source).parts[0]
        for number, line in enumerate(path.read_text(encoding="utf-8").splitlines(), 1):
            match = INCLUDE.match(line)
            if not match:
                continue
            quoted, header = match.group(1) == '"', match.group(2)
            if not quoted and header.startswith("Q") and not is_desktop(path.relative_to(source)):
                faults.append(f"{path.relative_to(source.parent)}:{number}: Qt in the core: {header}")
            if quoted and "/" in header and not allowed(folder, header):
                faults.append(f"{path.relative_to(source.parent)}:{number}: {folder}/ may not include {header}")
    print("\n".join(faults) if faults else "layers: in order")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
