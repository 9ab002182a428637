#!/usr/bin/env bash
# Installs the Debian packages that building, testing and the demo need, and those that are named, as far as they are
# missing.
set -euo pipefail

packages=(
  g++ cmake ninja-build ccache git python3
  libgtest-dev libgmock-dev libbenchmark-dev libcli11-dev libexpected-dev
  qt6-base-dev qt6-svg-dev libqcustomplot-dev xvfb xauth poppler-utils fonts-dejavu-core fonts-liberation
  clang-format clang-tidy
  "$@"
)

missing=()
for package in "${packages[@]}"; do
  dpkg-query -W -f='${db:Status-Abbrev}' "$package" 2>/dev/null | grep -q '^ii' || missing+=("$package")
done
[ ${#missing[@]} -eq 0 ] && exit 0

as_root=()
if [ "$(id -u)" -ne 0 ]; then
  command -v sudo >/dev/null || {
    echo "setup: missing: ${missing[*]}; install them as root: apt-get install ${missing[*]}" >&2
    exit 1
  }
  as_root=(sudo)
fi
echo "setup: installing ${missing[*]}"
export DEBIAN_FRONTEND=noninteractive
"${as_root[@]}" apt-get update -q
"${as_root[@]}" apt-get install -q -y --no-install-recommends "${missing[@]}"
