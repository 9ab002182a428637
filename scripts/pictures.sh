#!/usr/bin/env bash
# Drives the real windows under a virtual screen and leaves a picture of each in docs/pictures/, the printed reports too.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh

cmake --preset dev -DHYLDEN_TESTS=ON >/dev/null
cmake --build --preset dev --target hylden-pictures
reports=build/demo/reports
mkdir -p docs/pictures "$reports"
xvfb-run -a -s "-screen 0 1280x1024x24" build/dev/bin/hylden-pictures examples/station docs/pictures
mv docs/pictures/*.pdf "$reports"
for report in brief detailed threshold; do
  pdftoppm -r 60 -png -f 1 -l 1 -singlefile "$reports/report-$report.pdf" "docs/pictures/report-$report"
done
echo "pictures: docs/pictures; reports: $reports"
