#!/usr/bin/env bash
# Runs each fuzz target for a while: run.sh <build dir> <seconds per target> [targets...]
# New inputs go to <build dir>/corpus/<target> (the seeds in fuzz/corpus stay as
# written); a crash, hang, leak or sanitizer report is saved in <build dir>/findings/<target>
# and makes the run fail. The last line of each target gives its executions and coverage.
set -uo pipefail

build=$1
seconds=$2
shift 2
here=$(cd "$(dirname "$0")" && pwd)
targets=("$@")
[[ ${#targets[@]} -eq 0 ]] && targets=(fuzz_engine fuzz_regression_file fuzz_stereo_import fuzz_csv_problem)

failed=()
for t in "${targets[@]}"; do
  if [[ ! -x $build/$t ]]; then
    echo "== $t: not built, skipped"
    continue
  fi
  mkdir -p "$build/corpus/$t" "$build/findings/$t"
  log=$build/$t.log
  echo "== $t for ${seconds}s (log: $log)"
  "$build/$t" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 -print_final_stats=1 \
    -artifact_prefix="$build/findings/$t/" "$build/corpus/$t" "$here/corpus/$t" >"$log" 2>&1
  status=$?
  edges=$(grep -o 'Loaded 1 modules *([0-9]* inline 8-bit counters)' "$log" | grep -o '[0-9]* inline' | grep -o '[0-9]*')
  last=$(grep -E '(DONE|NEW|REDUCE|pulse|INITED) +cov:' "$log" | tail -1)
  runs=$(grep 'stat::number_of_executed_units' "$log" | grep -o '[0-9]*$')
  cov=$(grep -o 'cov: [0-9]*' <<<"$last" | grep -o '[0-9]*')
  ft=$(grep -o 'ft: [0-9]*' <<<"$last" | grep -o '[0-9]*')
  corp=$(grep -o 'corp: [0-9]*' <<<"$last" | grep -o '[0-9]*')
  echo "   executions ${runs:-?}, edges covered ${cov:-?} of ${edges:-?}, features ${ft:-?}, corpus ${corp:-?}"
  if [[ $status -ne 0 ]]; then
    grep -E 'ERROR|SUMMARY|Test unit written' "$log" | head -5 | sed 's/^/   /'
    failed+=("$t")
  fi
done
if [[ ${#failed[@]} -gt 0 ]]; then
  echo "Findings in: ${failed[*]}" >&2
  exit 1
fi
