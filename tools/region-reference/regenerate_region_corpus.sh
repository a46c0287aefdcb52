#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Regenerates tests/data/region_corpus.txt: builds the reference program for Windows, runs the
# cases of make_region_cases.py through the platform's region functions and records the results.
#
# Needs g++-mingw-w64-x86-64 and wine64 (Debian packages), and python3. Not part of the test
# run: the tests read the committed corpus.
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
