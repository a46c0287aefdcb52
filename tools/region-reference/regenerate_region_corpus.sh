#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Regenerates tests/data/region_corpus.txt: builds the reference program for Windows, runs the
# cases of make_region_cases.py through the platform's region functions and records the results.
# Where 32-bit Wine runs (tools/wine32/setup.sh), also records them in a 32-bit process and writes
# the cases whose transcript differs to tests/data/region_corpus_i686.txt.
#
# Needs g++-mingw-w64-x86-64 and wine64 (Debian packages), and python3; for the 32-bit recording
# g++-mingw-w64-i686 and wine32:i386. Not part of the test run: the tests read the committed corpus.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
corpus=$here/../../tests/data/region_corpus.txt
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

x86_64-w64-mingw32-g++ -std=c++17 -O2 -Wall -static "$here/region_reference.cpp" \
  -o "$work/region_reference.exe" -lgdi32
wine=$(command -v wine64 || true)
[ -n "$wine" ] || wine=/usr/lib/wine/wine64

{
  echo "# Region reference corpus: each command of tools/region-reference/region_script.h is followed by"
  echo "# what the platform's region functions returned (lines starting with '= ')."
  echo "# Made by tools/region-reference/regenerate_region_corpus.sh; do not edit by hand."
  python3 "$here/make_region_cases.py" |
    WINEDEBUG=-all WINEPREFIX="$work/prefix" "$wine" "$work/region_reference.exe" | tr -d '\r'
} > "$work/corpus.txt"
mv "$work/corpus.txt" "$corpus"
echo "$(grep -c '^case ' "$corpus") cases written to $corpus"

if [ -x /usr/lib/wine/wine ] && /usr/lib/wine/wine --version >/dev/null 2>&1; then
  i686-w64-mingw32-g++ -std=c++17 -O2 -Wall -static "$here/region_reference.cpp" \
    -o "$work/region_reference32.exe" -lgdi32
  python3 "$here/make_region_cases.py" |
    WINEDEBUG=-all WINEARCH=win32 WINEPREFIX="$work/prefix32" /usr/lib/wine/wine "$work/region_reference32.exe" |
    tr -d '\r' > "$work/corpus32.txt"
  {
    echo "# The cases that 32-bit programs see otherwise under Wine: each command of"
    echo "# tools/region-reference/region_script.h followed by what the platform's region functions returned"
    echo "# in a 32-bit process, for the cases whose transcript differs from region_corpus.txt's."
    echo "# Made by tools/region-reference/regenerate_region_corpus.sh; do not edit by hand."
    python3 "$here/differing_cases.py" "$corpus" "$work/corpus32.txt"
  } > "${corpus%.txt}_i686.txt"
  echo "$(grep -c '^case ' "${corpus%.txt}_i686.txt") cases differ in a 32-bit process: ${corpus%.txt}_i686.txt"
fi
