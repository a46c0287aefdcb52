#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Builds the fuzz targets with clang, libFuzzer, AddressSanitizer and UndefinedBehaviorSanitizer,
# the library sources compiled into each target.   usage: fuzz/build.sh BUILD_DIR [replay]
# With replay, builds the region targets instead as programs that run inputs given to them, -O2 and
# without sanitizers, under BUILD_DIR/replay (see fuzz/replay.sh).
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
root=$here/..
out=$1
replay=${2:-}
cxx=${CXX_FUZZ:-clang++}
flags=(-std=c++20 -I"$root/include" -ffp-contract=off -fno-fast-math -fno-builtin-sin -fno-builtin-cos)
if [ "$replay" = replay ]; then
  out=$out/replay
  flags+=(-O2)
  objectFlags=()
  targets=(ext_create_region polygons region_calls region_mapping)
else
  flags+=(-O1 -g -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
  objectFlags=(-fsanitize=fuzzer-no-link)
  targets=(ext_create_region polygons region_calls scalars region_mapping tool_parsers trig)
fi
mkdir -p "$out/obj"
pixman=$(pkg-config --cflags --libs pixman-1)
objects=()
build_object() { # source, defines...
  local src=$1 obj=$out/obj/$(basename "${1%.cpp}").o
  shift
  if [ ! -e "$obj" ] || [ "$src" -nt "$obj" ] ||
     [ -n "$(find "$root/src" "$root/include" "$root/tools/quillon" -newer "$obj" -print -quit)" ]; then
    "$cxx" "${flags[@]}" ${objectFlags[@]+"${objectFlags[@]}"} "$@" $(pkg-config --cflags pixman-1) -c "$src" -o "$obj"
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
for target in "${targets[@]}"; do
  if [ ! -e "$out/$target" ] || [ -n "$(find "$here" "${objects[@]}" -newer "$out/$target" -print -quit)" ]; then
    if [ "$replay" = replay ]; then
      "$cxx" "${flags[@]}" "$here/$target.cpp" "$here/replay.cpp" "${objects[@]}" $pixman -lmpfr -lgmp -o "$out/$target"
    else
      "$cxx" "${flags[@]}" -fsanitize=fuzzer "$here/$target.cpp" "${objects[@]}" $pixman -lmpfr -lgmp -o "$out/$target"
    fi
  fi
done
