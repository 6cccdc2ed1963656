#!/usr/bin/env bash
# Summarises the counters a coverage build's tests left: an HTML report of src/ under
# BUILD/coverage and the line coverage as a figure.
set -euo pipefail
build=${1:?usage: coverage-report.sh BUILD}
root=$(cd "$(dirname "$0")/.." && pwd)
mkdir -p "$build/coverage"
gcovr --root "$root" --filter "$root/src/" --object-directory "$build" \
  --exclude-unreachable-branches \
  --html-details "$build/coverage/index.html" --json-summary "$build/coverage/summary.json" \
  --print-summary "$build" | tee "$build/coverage/summary.txt"
python3 - "$build/coverage/summary.json" <<'PY'
import json, sys
s = json.load(open(sys.argv[1]))
print(f"figure coverage.lines {s['line_percent']:.1f} %")
PY
