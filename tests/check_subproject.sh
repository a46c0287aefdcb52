#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Builds examples/consumer with this source tree as its subproject, once by add_subdirectory and
# once by FetchContent from the local path, with GoogleTest, CLI11, Google Benchmark, Eigen, glm,
# Python and pybind11 hidden from CMake. As a subproject Quillon must configure and build its
# libraries with nothing but the compiler and pixman, define no test, tool, benchmark or module of
# its own, and hand the consumer's code the exactness flags; the consumer must run.
# usage: check_subproject.sh SOURCE_DIR CXX
set -euo pipefail
source=$1 cxx=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
fail() { echo "check_subproject: $*" >&2; exit 1; }
hidden=()
for package in GTest CLI11 benchmark Eigen3 glm Python3 pybind11; do
  hidden+=("-DCMAKE_DISABLE_FIND_PACKAGE_$package=ON")
done
for how in subdirectory fetchcontent; do
  build=$work/$how
  cmake -S "$source/examples/consumer" -B "$build" -G Ninja -DCMAKE_CXX_COMPILER="$cxx" \
    -DQUILLON_CONSUMER_FROM=$how -DQUILLON_SOURCE="$source" -DCMAKE_EXPORT_COMPILE_COMMANDS=ON \
    "${hidden[@]}" >"$work/$how.log" 2>&1 || { cat "$work/$how.log" >&2; fail "$how: configuring fails"; }
  targets=$(ninja -C "$build" -t targets all | cut -d: -f1)
  for unwanted in quillon_tests quillon-cli quillon_bench quillon_python quillon_conformance doxygen; do
    ! grep -qx "$unwanted" <<<"$targets" || fail "$how: the subproject defines $unwanted"
  done
  grep -qx consumer <<<"$targets" || fail "$how: no consumer target"
  cmake --build "$build" --target consumer >"$work/$how.build" 2>&1 ||
    { tail -n 40 "$work/$how.build" >&2; fail "$how: building fails"; }
  python3 - "$build/compile_commands.json" "$how" <<'PY' || exit 1
import json, sys
entries = [e for e in json.load(open(sys.argv[1])) if e["file"].endswith("consumer/main.cpp")]
command = entries[0]["command"] if entries else ""
if "-ffp-contract=off" not in command:
    sys.exit(f"check_subproject: {sys.argv[2]}: the consumer is compiled without the exactness flags: {command}")
PY
  "$build/consumer" || fail "$how: the consumer fails"
done
echo "check_subproject: add_subdirectory and FetchContent build the libraries alone, and the consumer runs"
