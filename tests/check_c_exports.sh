#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Checks that the C interface library's dynamic symbol table holds exactly the functions its header
# declares: a declaration left without a definition, or a helper let out, shows here.
# usage: check_c_exports.sh LIBRARY HEADER
set -euo pipefail
library=$1 header=$2
expected=$(sed -n 's/^QUILLON_C_API .*[ *]\(quillon_[A-Za-z0-9_]*\)(.*/\1/p' "$header" | sort -u)
actual=$(nm -D --defined-only "$library" | awk '$2 ~ /^[TtWwVvDdBbRr]$/ {print $3}' \
  | grep -v '^_init$\|^_fini$' | sort -u)
if [ -z "$expected" ] || [ "$expected" != "$actual" ]; then
  echo "exported names differ from the header's declarations (< declared, > exported):"
  diff <(printf '%s\n' "$expected") <(printf '%s\n' "$actual") || true
  exit 1
fi
echo "$(printf '%s\n' "$actual" | wc -l) exported names, as declared"
