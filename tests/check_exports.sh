#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Checks that the distinct demangled names in the module's dynamic symbol table are exactly the
# listed members of Transform<T>, for T = float, double and guarddouble, and nothing else.
# usage: check_exports.sh LIBRARY MEMBER_LIST
set -euo pipefail
library=$1 list=$2
expected=$(grep -v '^#' "$list" | grep . | while IFS= read -r line; do
  for t in float double guarddouble; do printf '%s\n' "$line" | sed -E "s/\\bT\\b/$t/g"; done
done | sort -u)
actual=$(nm -D --defined-only "$library" | awk '$2 ~ /^[TtWwVv]$/ || $2 ~ /^[DdBbRr]$/ {print $3}' \
  | grep -v '^_init$\|^_fini$' | c++filt | sort -u)
if [ "$expected" != "$actual" ]; then
  echo "exported names differ from the member list (< expected, > exported):"
  diff <(printf '%s\n' "$expected") <(printf '%s\n' "$actual") || true
  exit 1
fi
echo "$(printf '%s\n' "$actual" | wc -l) exported names, as listed"
