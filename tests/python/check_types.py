#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""The README's Python blocks and the given Python files pass mypy --strict against the module's
type stub (MYPYPATH names the folder holding quillon.pyi): the stub and the documented uses of the
module agree.

usage: check_types.py MYPY README.md [FILE.py ...]
"""
import os
import subprocess
import sys
import tempfile

# The README's fenced blocks, read as the README check reads them.
sys.path.insert(0, os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
from check_readme import blocks  # noqa: E402


def python_blocks(text):
    """(line number, body) of each ```python block."""
    return [(line, body) for line, info, body in blocks(text) if info == "python"]


def main():
    mypy, readme, files = sys.argv[1], sys.argv[2], sys.argv[3:]
    if not os.environ.get("MYPYPATH"):
        sys.exit("MYPYPATH must name the folder holding quillon.pyi")
    with open(readme, encoding="utf-8") as f:
        found = python_blocks(f.read())
    if not found:
        sys.exit(f"{readme}: no ```python blocks")
    with tempfile.TemporaryDirectory() as work:
        checked = []
        for number, body in found:
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
