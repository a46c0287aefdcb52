#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# A long run of the sine and cosine against MPFR: COUNT arguments of the seeded battery, split
# over JOBS processes with seeds SEED, SEED + 1, ... (the same arguments on every machine).
#   tests/trig_long_run.sh BUILD_DIR COUNT SEED [JOBS]
#   tests/trig_long_run.sh build/native 100000000 7 2
# Prints each process's summary; exits non-zero if any argument disagrees.
set -uo pipefail
[ $# -ge 3 ] || { echo "usage: $0 BUILD_DIR COUNT SEED [JOBS]" >&2; exit 2; }
check=$1/tests/quillon_trig_check count=$2 seed=$3 jobs=${4:-$(nproc)}
[ -x "$check" ] || { echo "$0: $check not built (cmake --build $1 --target quillon_trig_check)" >&2; exit 2; }
pids=()
for ((j = 0; j < jobs; ++j)); do
  share=$((count / jobs + (j < count % jobs ? 1 : 0)))
  "$check" --count "$share" --seed $((seed + j)) > "${TMPDIR:-/tmp}/trig_long_run.$$.$j" 2>&1 &
  pids+=($!)
done
status=0
for ((j = 0; j < jobs; ++j)); do
  wait "${pids[$j]}" || status=1
  tail -n 2 "${TMPDIR:-/tmp}/trig_long_run.$$.$j"
  [ $status -eq 0 ] || head -n 20 "${TMPDIR:-/tmp}/trig_long_run.$$.$j"
  rm -f "${TMPDIR:-/tmp}/trig_long_run.$$.$j"
done
exit $status
