#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Replays inputs of a region fuzz target (slow ones found by fuzz/run.sh, kept under
# BUILD_DIR/findings) in a build without sanitizers, printing each input's time, the rectangles of
# the regions it made and the time per rectangle: an input slow only for the many rectangles it makes
# takes a few hundred nanoseconds a rectangle; one slow for anything else stands out.
#   fuzz/replay.sh BUILD_DIR TARGET INPUT...
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
out=$1 target=$2
shift 2
"$here/build.sh" "$out" replay
exec "$out/replay/$target" "$@"
