#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""The README's Python blocks and the given Python files pass mypy --strict against the module's
type stub (MYPYPATH names the folder holding quillon.pyi): the stub and the documented uses of the
module agree.

usage: check_types.py MYPY README.md [FILE.py ...]
"""
import os
import re
import subprocess
import sys
import tempfile

FENCE = re.compile(r"^```(\S*)\s*$")


def python_blocks(text):
    """(line number, body) of each ```python block."""
    out, current = [], None
    for number, line in enumerate(text.splitlines(), 1):
        m = FENCE.match(line)
        if current is None and m:
            current = (number, m.group(1), [])
        elif current is not None and line.rstrip() == "```":
            if current[1] == "python":
                out.append((current[0], "\n".join(current[2]) + "\n"))
            current = None
        elif current is not None:
            current[2].append(line)
    return out


def main():
    mypy, readme, files = sys.argv[1], sys.argv[2], sys.argv[3:]
    if not os.environ.get("MYPYPATH"):
        sys.exit("MYPYPATH must name the folder holding quillon.pyi")
    with open(readme, encoding="utf-8") as f:
        blocks = python_blocks(f.read())
    if not blocks:
        sys.exit(f"{readme}: no ```python blocks")
    with tempfile.TemporaryDirectory() as work:
        checked = []
        for number, body in blocks:
            # Each block is its own module, named by the README line it starts on.
            path = os.path.join(work, f"readme_line_{number}.py")
            with open(path, "w", encoding="utf-8") as f:
                f.write(body)
            checked.append(path)
        checked += files
        p = subprocess.run([mypy, "--strict", "--no-incremental", "--cache-dir", os.devnull, *checked],
                           capture_output=True, text=True)
        print(p.stdout + p.stderr, end="")
        return p.returncode


if __name__ == "__main__":
    sys.exit(main())
