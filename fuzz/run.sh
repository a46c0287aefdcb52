#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Runs every fuzz target (or the targets named after the amount) from its committed seeds.
#   fuzz/run.sh BUILD_DIR runs N     a fixed number of executions per target, from a fixed random
#                                    seed, each input limited to a minute: the test command's run,
#                                    which looks for crashes and undefined behaviour, not for speed,
#                                    and gives the same inputs on every machine
#   fuzz/run.sh BUILD_DIR seconds S  S seconds per target, each input limited to one second (long
#                                    runs by hand, which also look for slow inputs). The run goes on
#                                    past an input over the second; each is replayed without
#                                    sanitizers (fuzz/replay.sh), and counts as a finding unless it
#                                    made millions of rectangles at no more than 200 ns a rectangle.
# Prints executions per target and any finding; exits non-zero on a finding.
set -uo pipefail
here=$(cd "$(dirname "$0")" && pwd)
mkdir -p "$1"
out=$(cd "$1" && pwd) how=$2 amount=$3
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
    limit=(-max_total_time="$amount" -timeout=1 -fork=1 -ignore_timeouts=1 -ignore_ooms=0 -ignore_crashes=0)
  fi
  log=$work/log
  mkdir -p "$work/corpus"
  (cd "$work" && "$out/$target" "${limit[@]}" -rss_limit_mb=2560 -print_final_stats=1 -artifact_prefix="$work/" \
      "$work/corpus" "$here/seeds/$target" >"$log" 2>&1)
  rc=$?
  execs=$(grep -o 'stat::number_of_executed_units: *[0-9]*' "$log" | grep -o '[0-9]*$')
  rate=$(grep -o 'stat::average_exec_per_sec: *[0-9]*' "$log" | grep -o '[0-9]*$')
  if [ -z "$execs" ]; then # a forked run reports its progress lines only: #executions ... time: Ns
    last=$(grep -E '^#[0-9]+: cov' "$log" | tail -1)
    execs=$(echo "$last" | sed -E 's/^#([0-9]+):.*/\1/')
    seconds=$(echo "$last" | sed -E 's/.* time: ([0-9]+)s.*/\1/')
    [ -n "$execs" ] && [ -n "$seconds" ] && [ "$seconds" -gt 0 ] && rate=$((execs / seconds))
  fi
  slow=("$work"/timeout-*)
  [ -e "${slow[0]}" ] || slow=()
  if [ $rc -ne 0 ] && ! grep -q 'INFO: exiting: 70' "$log" && ! grep -q 'INFO: fuzzed for' "$log"; then
    echo "== $target: FINDING after ${execs:-?} executions"
    grep -E 'ERROR|SUMMARY|runtime error' "$log" | head -5
    mkdir -p "$out/findings" && cp "$work"/crash-* "$work"/leak-* "$work"/oom-* "$out/findings/" 2>/dev/null
    status=1
  else
    echo "== $target: ${execs:-?} executions (${rate:-?} per second), ${#slow[@]} inputs over one second"
  fi
  if [ ${#slow[@]} -gt 0 ]; then
    mkdir -p "$out/findings/$target" && cp "${slow[@]}" "$out/findings/$target/"
    if [ -x "$out/replay/$target" ] || [ -e "$here/$target.cpp" ] && grep -q readBack "$here/$target.cpp"; then
      "$here/replay.sh" "$out" "$target" "${slow[@]}" > "$work/replay" 2>&1
      # Slow for its size: a quarter of a second or more, at more than 200 ns a rectangle made.
      awk -v t="$target" '{ s = $2 + 0; r = $4 + 0; n++; if (s > worst) worst = s;
                             if (s >= 0.25 && (r == 0 || 1e9 * s / r > 200)) { bad++; print "   slow for its size: " $0 } }
                           END { printf "   %s: %d replayed without sanitizers, the slowest %.3f s, %d slow for their size\n", t, n, worst, bad;
                                 exit bad > 0 }' "$work/replay" || status=1
    fi
  fi
  rm -rf "$work"
done
exit $status
