#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Installs the build into a temporary prefix, or with "deb" makes the Debian package and extracts
# it into a scratch root (dpkg -x), and builds a separate consumer against it, once with CMake's
# find_package and once with pkg-config. Both programs must run with an empty environment (no
# LD_LIBRARY_PATH: the installed libraries find each other), and both ways must hand the compiler
# the same exactness flags.
# usage: check_install.sh BUILD_DIR SOURCE_DIR [deb]
set -euo pipefail
build=$1 source=$2 how=${3:-install}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
fail() { echo "check_install: $*" >&2; exit 1; }

if [ "$how" = deb ]; then
  (cd "$work" && cpack -G DEB --config "$build/CPackConfig.cmake" -B "$work/package" >/dev/null)
  version=$(sed -n 's/^CMAKE_PROJECT_VERSION:[A-Z]*=//p' "$build/CMakeCache.txt")
  deb=$work/package/quillon_${version}_$(dpkg --print-architecture).deb
  [ -f "$deb" ] || fail "no $(basename "$deb"): $(ls "$work/package")"
  [ "$(dpkg-deb -f "$deb" Package Version | tr '\n' ' ')" = "Package: quillon Version: $version " ] ||
    fail "package fields: $(dpkg-deb -f "$deb" Package Version)"
  dpkg -x "$deb" "$work/root"
  prefix=$work/root/usr
else
  cmake --install "$build" --prefix "$work/prefix" >/dev/null
  prefix=$work/prefix
fi
test -f "$prefix/include/quillon/Transform" || fail "no include/quillon/Transform"
test -f "$prefix/lib/pkgconfig/quillon.pc" || fail "no lib/pkgconfig/quillon.pc"
grep -q "MIT License" "$prefix/share/doc/quillon/LICENSE" || fail "no MIT license in share/doc/quillon"
for lib in quillon guardscalars quillon_region; do
  soname=$(readelf -d "$prefix/lib/lib$lib.so.1" | sed -n 's/.*Library soname: \[\(.*\)\]/\1/p')
  [ "$soname" = "lib$lib.so.1" ] || fail "lib$lib: soname '$soname'"
done
# The installed tool reads the version record and the export list from the installed module.
info=$(env -i "$prefix/bin/quillon" info) || fail "quillon info does not run from the installed tree"
grep -q "105 exported names" <<<"$info" || fail "quillon info: no 105 exported names"

# Its manual page, with a section for each command, and its bash completion.
grep -q '^\.SS "quillon region"' "$prefix/share/man/man1/quillon.1" || fail "no manual page with the commands"
grep -q "complete -F _quillon quillon" "$prefix/share/bash-completion/completions/quillon" || fail "no bash completion"

# Moved elsewhere, the tree still works: nothing in it names the prefix it was installed to.
mv "$prefix" "$work/moved"
prefix=$work/moved
[ "$(env -i "$prefix/bin/quillon" map --move x:1 1,2,3)" = "2,2,3" ] || fail "quillon from a moved tree"

cmake -S "$source/examples/consumer" -B "$work/cmake" -G Ninja -DCMAKE_PREFIX_PATH="$prefix" \
  -DCMAKE_EXPORT_COMPILE_COMMANDS=ON >/dev/null
cmake --build "$work/cmake" >/dev/null
env -i "$work/cmake/consumer" || fail "the CMake consumer does not run with an empty environment"

export PKG_CONFIG_PATH="$prefix/lib/pkgconfig"
# shellcheck disable=SC2046
c++ -std=c++17 "$source/examples/consumer/main.cpp" -o "$work/pc-consumer" $(pkg-config --cflags --libs quillon)
env -i "$work/pc-consumer" || fail "the pkg-config consumer does not run with an empty environment"

# The exactness flags (-f..., -m...) that each way passes to the compiler of the consumer.
cmake_flags=$(python3 -c '
import json, sys
for entry in json.load(open(sys.argv[1])):
    if entry["file"].endswith("main.cpp"):
        print("\n".join(a for a in entry["command"].split() if a.startswith(("-f", "-m"))))
' "$work/cmake/compile_commands.json" | sort -u)
pc_flags=$(pkg-config --cflags quillon | tr ' ' '\n' | grep -E '^-(f|m)' | sort -u || true)
[ -n "$cmake_flags" ] || fail "the CMake package passes no exactness flags"
grep -qx -- "-ffp-contract=off" <<<"$cmake_flags" || fail "the CMake package does not pass -ffp-contract=off"
if [ "$cmake_flags" != "$pc_flags" ]; then
  echo "CMake package: $cmake_flags" >&2
  echo "quillon.pc:    $pc_flags" >&2
  fail "the CMake package and quillon.pc pass different exactness flags"
fi

# The C interface: libquillon_c.so.1 and <quillon/quillon.h> serve a C99 program; the Python module
# imports from the prefix's Python path.
soname=$(readelf -d "$prefix/lib/libquillon_c.so.1" | sed -n 's/.*Library soname: \[\(.*\)\]/\1/p')
[ "$soname" = "libquillon_c.so.1" ] || fail "libquillon_c: soname '$soname'"
cc -std=c99 -Wall -Wextra -pedantic -Werror "$source/examples/example.c" -I"$prefix/include" \
  -L"$prefix/lib" -lquillon_c -Wl,-rpath,"$prefix/lib" -o "$work/c-example"
c_output=$(env -i "$work/c-example") || fail "the C example does not run with an empty environment"
grep -q "^int point: *10, 0, 0$" <<<"$c_output" || fail "the C example printed: $c_output"
module=$(find "$prefix" -path '*-packages/quillon*.so' | head -n 1)
if compgen -G "$build/python/site/quillon*.so" >/dev/null; then
  [ -n "$module" ] || fail "the Python module was built but not installed"
  python=$(command -v /usr/bin/python3 || command -v python3)
  PYTHONPATH=$(dirname "$module") /usr/bin/env -u LD_LIBRARY_PATH "$python" \
    -c 'import quillon, numpy; assert quillon.Transform().move("x", 2.0).map(numpy.zeros((1, 3)))[0, 0] == 2.0' ||
    fail "the installed Python module"
fi
