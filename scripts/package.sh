#!/usr/bin/env bash
# Builds the Debian package, build/package/hylden_VERSION_ARCH.deb, and looks it over.
# With --try (as root or with sudo) also installs it, takes the installed demo station through a calibration and a test as
# an ordinary user, removes it, and looks for what it left behind.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh help2man lintian desktop-file-utils appstream shared-mime-info

build=build/release
cmake --preset release
cmake --build --preset release --target hylden hylden-run hylden-bench manuals
mkdir -p build/package
rm -f build/package/*.deb
(cd "$build" && cpack -B ../package)
package=$(echo "$PWD"/build/package/hylden_*.deb)

desktop-file-validate packaging/hylden.desktop
appstreamcli validate --no-net packaging/*.metainfo.xml
lintian --fail-on error "$package"
echo "package: $package"
[ "${1:-}" = --try ] || exit 0

as_root=()
[ "$(id -u)" -eq 0 ] || as_root=(sudo)
before=$(mktemp) after=$(mktemp) user=hylden-try
trap '"${as_root[@]}" userdel -r "$user" 2>/dev/null || true; rm -f "$before" "$after"' EXIT
system_files() { find /etc /usr /opt /srv /var/lib -xdev -path /var/lib/dpkg -prune -o -path /var/lib/apt -prune -o -print | sort; }
"${as_root[@]}" useradd --create-home "$user"
system_files >"$before"
"${as_root[@]}" apt-get install -q -y "$package"
"${as_root[@]}" runuser -l "$user" -c '
  set -e
  hylden --version
  cp -r /usr/share/hylden/station demo && cd demo
  hylden-run --equipment station.eqp --bench bench.txt --virtual-time --yes --calibrate cdn-10v.csu --output cdn-10v.cal | tail -1
  hylden-run --equipment station.eqp --bench bench.txt --virtual-time --yes --test substitution-am.tst --output am.run | tail -1
  QT_QPA_PLATFORM=offscreen timeout --preserve-status 5 hylden station.eqp && echo "hylden: started and ended in order"
'
"${as_root[@]}" apt-get purge -q -y hylden
system_files >"$after"
# Of the system's own caches only the names count.
if ! diff "$before" "$after"; then
  echo "package: the lines above came, or went" >&2
  exit 1
fi
echo "package: installed, tried and removed; nothing is left but the user's files"
