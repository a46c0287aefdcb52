#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Checks the module's float mappings of Transform<float> and Transform<double> (x86-64): the
# ThreeDVector<float> result goes back in registers, x and y packed without a trip through the
# stack. Two 4-byte stores read back as one 8-byte load would stall every call until the stores
# reach the cache.
# usage: check_float_return.sh LIBRARY
set -euo pipefail
library=$1
code=$(objdump -d --no-show-raw-insn -C "$library")
for t in float double; do
  body=$(printf '%s\n' "$code" |
    awk -v name="<Transform<$t>::operator*(ThreeDVector<float> const&) const>:" 'index($0, name) {on = 1; next} on && /^$/ {on = 0} on')
  if [ -z "$body" ]; then echo "Transform<$t>: float mapping not found"; exit 1; fi
  if printf '%s\n' "$body" | grep -q '(%rsp)\|(%rbp)'; then
    echo "Transform<$t>: the float mapping goes through the stack:"
    printf '%s\n' "$body"
    exit 1
  fi
done
echo "float mappings return in registers"
