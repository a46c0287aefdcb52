#!/usr/bin/env bash
# Writes the module's .def file: every member of the export list, for float, double and
# guarddouble, by name, with ordinals 1, 2, 3, ... in the order of the list. The mangled names are
# read from the compiled objects (the complete-object constructor and destructor stand for their
# variants).
# usage: make_def.sh NM MEMBER_LIST OUTPUT OBJECT...
set -euo pipefail
nm_tool=$1 list=$2 output=$3
shift 3
declare -A mangled
while read -r name; do
  case "$name" in _ZN9TransformI*C2E*|_ZN9TransformI*D2Ev|_ZN9TransformI*D0Ev) continue ;; esac
  demangled=$(c++filt "$name")
  mangled["$demangled"]=$name
done < <("$nm_tool" --defined-only -g "$@" | awk 'NF == 3 {print $3}' | sed 's/^__Z/_Z/' | grep -E '^_ZNK?9TransformI' | sort -u)

{
  echo "LIBRARY Quillon.dll"
  echo "EXPORTS"
  ordinal=0
  grep -v '^#' "$list" | grep . | while IFS= read -r line; do
    for t in float double guarddouble; do
      member=$(printf '%s\n' "$line" | sed -E "s/\\bT\\b/$t/g")
      name=${mangled["$member"]:-}
      [ -n "$name" ] || { echo "make_def.sh: no compiled member for: $member" >&2; exit 1; }
      ordinal=$((ordinal + 1))
      echo "  $name @$ordinal"
    done
  done
} > "$output.tmp"
mv "$output.tmp" "$output"
