#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Runs every fuzz target for the given number of seconds each (default 300) and prints the
# executions and findings of each; findings are kept under BUILD_DIR/findings.
#   fuzz/run-long.sh [SECONDS] [BUILD_DIR]
set -uo pipefail
here=$(cd "$(dirname "$0")" && pwd)
exec "$here/run.sh" "${2:-$here/../build/fuzz}" seconds "${1:-300}"
