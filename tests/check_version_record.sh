#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Checks the version record held in the module's .quillon.version section.
set -euo pipefail
record=$(readelf -p .quillon.version "$1" | sed -n 's/^ *\[ *[0-9a-f]*\] *//p')
status=0
for field in "FixedFileVersion=1.0.0.1" "FixedProductVersion=1.0.0.1" "Translation=040904b0" \
    "FileDescription=Quillon DLL" "FileVersion=1, 0, 0, 1" "InternalName=Quillon" \
    "OriginalFilename=Quillon.DLL" "ProductName=Quillon Dynamic Link Library" \
    "ProductVersion=1, 0, 0, 1" "Comments=" "LegalTrademarks=" "PrivateBuild=" "SpecialBuild="; do
  grep -qxF -- "$field" <<<"$record" || { echo "missing or wrong: $field"; status=1; }
done
soname=$(readelf -d "$1" | sed -n 's/.*Library soname: \[\(.*\)\]/\1/p')
[ "$soname" = libquillon.so.1 ] || { echo "soname is '$soname', not libquillon.so.1"; status=1; }
exit $status
