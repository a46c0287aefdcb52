#!/usr/bin/env bash
# Installs the build into a temporary prefix and builds a separate consumer against it, once with
# CMake's find_package and once with pkg-config; both programs must run and pass their checks.
# usage: check_install.sh BUILD_DIR SOURCE_DIR
set -euo pipefail
build=$1 source=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cmake --install "$build" --prefix "$work/prefix" >/dev/null
test -f "$work/prefix/include/quillon/Transform"
test -f "$work/prefix/lib/pkgconfig/quillon.pc"
for lib in quillon guardscalars quillon_region; do
  soname=$(readelf -d "$work/prefix/lib/lib$lib.so.1" | sed -n 's/.*Library soname: \[\(.*\)\]/\1/p')
  [ "$soname" = "lib$lib.so.1" ] || { echo "lib$lib: soname '$soname'"; exit 1; }
done
# The installed tool reads the version record and the export list from the installed module.
# (Read from a file: grep -q leaving a pipe early would make the writer fail under pipefail.)
"$work/prefix/bin/quillon" info > "$work/info.txt"
grep -q "105 exported names" "$work/info.txt"

cmake -S "$source/examples/consumer" -B "$work/cmake" -G Ninja -DCMAKE_PREFIX_PATH="$work/prefix" >/dev/null
cmake --build "$work/cmake" >/dev/null
LD_LIBRARY_PATH="$work/prefix/lib" "$work/cmake/consumer"

export PKG_CONFIG_PATH="$work/prefix/lib/pkgconfig"
# shellcheck disable=SC2046
c++ -std=c++17 "$source/examples/consumer/main.cpp" -o "$work/pc-consumer" $(pkg-config --cflags --libs quillon)
LD_LIBRARY_PATH="$work/prefix/lib" "$work/pc-consumer"
