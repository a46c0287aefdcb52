#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Builds the fuzz targets with clang, libFuzzer, AddressSanitizer and UndefinedBehaviorSanitizer,
# the library sources compiled into each target.   usage: fuzz/build.sh BUILD_DIR
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
root=$here/..
out=$1
mkdir -p "$out/obj"
cxx=${CXX_FUZZ:-clang++}
flags=(-std=c++20 -O1 -g -I"$root/include" -ffp-contract=off -fno-fast-math -fno-builtin-sin -fno-builtin-cos
       -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
pixman=$(pkg-config --cflags --libs pixman-1)
objects=()
build_object() { # source, defines...
  local src=$1 obj=$out/obj/$(basename "${1%.cpp}").o
  shift
  if [ ! -e "$obj" ] || [ "$src" -nt "$obj" ] ||
     [ -n "$(find "$root/src" "$root/include" "$root/tools/quillon" -newer "$obj" -print -quit)" ]; then
    "$cxx" "${flags[@]}" -fsanitize=fuzzer-no-link "$@" $(pkg-config --cflags pixman-1) -c "$src" -o "$obj"
  fi
  objects+=("$obj")
}
for f in RegionFunctions RegionAlgebra ScanConversion PolygonBound EdgeLines UnionOfPieces; do
  build_object "$root/src/platform/$f.cpp" -DNDEBUG
done
for f in Sine Accurate Tables; do
  build_object "$root/src/trig/$f.cpp"
done
build_object "$root/src/scalars/GuardScalars.cpp" -DQUILLON_BUILDING_GUARDSCALARS
build_object "$root/src/transform/Transform.cpp" -DQUILLON_BUILDING_MODULE
build_object "$root/src/transform/RegionMapping.cpp" -DQUILLON_BUILDING_MODULE
build_object "$root/src/vector/ThreeDVector.cpp" -DQUILLON_BUILDING_MODULE
build_object "$root/tools/quillon/common.cpp" # the tool's readers and writers
for target in ext_create_region polygons region_calls scalars region_mapping tool_parsers trig; do
  if [ ! -e "$out/$target" ] || [ -n "$(find "$here" "${objects[@]}" -newer "$out/$target" -print -quit)" ]; then
    "$cxx" "${flags[@]}" -fsanitize=fuzzer "$here/$target.cpp" "${objects[@]}" $pixman -lmpfr -lgmp -o "$out/$target"
  fi
done
