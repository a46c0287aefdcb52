#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Runs every fuzz target (or the targets named after the amount) from its committed seeds.
#   fuzz/run.sh BUILD_DIR runs N     a fixed number of executions per target, from a fixed random
#                                    seed, each input limited to a minute: the test command's run,
#                                    which looks for crashes and undefined behaviour, not for speed,
#                                    and gives the same inputs on every machine
#   fuzz/run.sh BUILD_DIR seconds S  S seconds per target, each input limited to one second (long
#                                    runs by hand, which also look for slow inputs)
# Prints executions per target and any finding; exits non-zero on a finding.
set -uo pipefail
here=$(cd "$(dirname "$0")" && pwd)
out=$1 how=$2 amount=$3
shift 3
targets=("$@")
[ ${#targets[@]} -gt 0 ] || targets=(ext_create_region polygons region_calls scalars region_mapping tool_parsers trig)
"$here/build.sh" "$out" || exit 1
status=0
for target in "${targets[@]}"; do
  work=$(mktemp -d)
  if [ "$how" = runs ]; then
    limit=(-runs="$amount" -seed=1 -timeout=60)
  else
    limit=(-max_total_time="$amount" -timeout=1)
  fi
  log=$work/log
  (cd "$work" && "$out/$target" "${limit[@]}" -rss_limit_mb=2560 -print_final_stats=1 \
      "$work" "$here/seeds/$target" >"$log" 2>&1)
  rc=$?
  execs=$(grep -o 'stat::number_of_executed_units: *[0-9]*' "$log" | grep -o '[0-9]*$')
  rate=$(grep -o 'stat::average_exec_per_sec: *[0-9]*' "$log" | grep -o '[0-9]*$')
  if [ $rc -ne 0 ]; then
    echo "== $target: FINDING after ${execs:-?} executions"
    grep -E 'ERROR|SUMMARY|runtime error' "$log" | head -5
    mkdir -p "$out/findings" && cp "$work"/crash-* "$work"/timeout-* "$work"/leak-* "$work"/oom-* "$out/findings/" 2>/dev/null
    status=1
  else
    echo "== $target: ${execs:-?} executions (${rate:-?} per second), no finding"
  fi
  rm -rf "$work"
done
exit $status
