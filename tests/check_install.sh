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
"$work/prefix/bin/quillon" info | grep "105 exported names" >/dev/null # not -q: with pipefail, an early exit of grep fails the tool by SIGPIPE

cmake -S "$source/examples/consumer" -B "$work/cmake" -G Ninja -DCMAKE_PREFIX_PATH="$work/prefix" >/dev/null
cmake --build "$work/cmake" >/dev/null
LD_LIBRARY_PATH="$work/prefix/lib" "$work/cmake/consumer"

export PKG_CONFIG_PATH="$work/prefix/lib/pkgconfig"
# shellcheck disable=SC2046
c++ -std=c++17 "$source/examples/consumer/main.cpp" -o "$work/pc-consumer" $(pkg-config --cflags --libs quillon)
LD_LIBRARY_PATH="$work/prefix/lib" "$work/pc-consumer"

# The C interface: libquillon_c.so.1 and <quillon/quillon.h> serve a C99 program; the Python module
# imports from the prefix's Python path.
soname=$(readelf -d "$work/prefix/lib/libquillon_c.so.1" | sed -n 's/.*Library soname: \[\(.*\)\]/\1/p')
[ "$soname" = "libquillon_c.so.1" ] || { echo "libquillon_c: soname '$soname'"; exit 1; }
cc -std=c99 -Wall -Wextra -pedantic -Werror "$source/examples/example.c" -I"$work/prefix/include" \
  -L"$work/prefix/lib" -lquillon_c -o "$work/c-example"
c_output=$(LD_LIBRARY_PATH="$work/prefix/lib" "$work/c-example")
grep -q "^int point: *10, 0, 0$" <<<"$c_output"
module=$(find "$work/prefix" -path '*-packages/quillon*.so' | head -n 1)
if compgen -G "$build/python/site/quillon*.so" >/dev/null; then
  [ -n "$module" ] || { echo "the Python module was built but not installed"; exit 1; }
  python=$(command -v /usr/bin/python3 || command -v python3)
  PYTHONPATH=$(dirname "$module") /usr/bin/env -u LD_LIBRARY_PATH "$python" \
    -c 'import quillon, numpy; assert quillon.Transform().move("x", 2.0).map(numpy.zeros((1, 3)))[0, 0] == 2.0'
fi
