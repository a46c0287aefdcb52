#!/bin/sh
# SPDX-License-Identifier: MIT
# Writes the manual page of the quillon tool with help2man, from the tool's own --help and
# --version, with each command's --help as a section of its own.
# usage: make_manpage.sh QUILLON HELP2MAN OUTPUT
set -eu
tool=$1 help2man=$2 out=$3
include=$(mktemp)
trap 'rm -f "$include"' EXIT
{
  echo "[COMMANDS]"
  for command in map matrix region info demo; do
    echo ".SS \"quillon $command\""
    echo ".nf"
    # Backslashes and leading dots are roff's; quote them.
    "$tool" "$command" --help | sed -e 's/\\/\\e/g' -e 's/^\([.'"'"']\)/\\\&\1/'
    echo ".fi"
  done
  echo "[EXIT STATUS]"
  echo "0 when the command succeeds, 2 for bad input (one line on standard error, and no file"
  echo "written), 1 for any other failure."
  echo "[SEE ALSO]"
  echo "The README of Quillon, installed with its license under share/doc/quillon."
} >"$include"
"$help2man" --no-info --section 1 --name "exact 4x4 transforms, points and regions" \
  --include "$include" --output "$out" "$tool"
