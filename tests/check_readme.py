#!/usr/bin/env python3
"""The C++ programs of a Markdown file compile and print what the file says they print.

A ```cpp block with a main function is a program; the next fenced block must be a ```text block
with its exact output. Each program is compiled with the given compiler and flags, linked, run, and
its standard output compared with that block. Blocks without main are fragments and not checked.

usage: check_readme.py README.md WORK_DIR COMPILER [FLAG...]
"""
import os
import re
import subprocess
import sys

FENCE = re.compile(r"^```(\S*)\s*$")


def blocks(text):
    """(line number, info string, body) of each fenced block, in order."""
    out, current = [], None
    for number, line in enumerate(text.splitlines(), 1):
        m = FENCE.match(line)
        if current is None and m:
            current = (number, m.group(1), [])
        elif current is not None and line.rstrip() == "```":
            out.append((current[0], current[1], "\n".join(current[2]) + "\n"))
            current = None
        elif current is not None:
            current[2].append(line)
    if current is not None:
        raise SystemExit(f"line {current[0]}: a block that is never closed")
    return out


def main():
    readme, work, compiler, flags = sys.argv[1], sys.argv[2], sys.argv[3], sys.argv[4:]
    os.makedirs(work, exist_ok=True)
    found = blocks(open(readme, encoding="utf-8").read())
    failures, programs = [], 0
    for k, (line, info, body) in enumerate(found):
        if info != "cpp" or not re.search(r"\bint\s+main\s*\(", body):
            continue
        programs += 1
        where = f"{os.path.basename(readme)}, the program at line {line}"
        if k + 1 >= len(found) or found[k + 1][1] != "text":
            failures.append(f"{where}: no ```text block with its output after it")
            continue
        expected = found[k + 1][2]
        source = os.path.join(work, f"readme_{line}.cpp")
        program = os.path.join(work, f"readme_{line}")
        with open(source, "w", encoding="utf-8") as f:
            f.write(body)
        built = subprocess.run([compiler, source, "-o", program, *flags], capture_output=True, text=True)
        if built.returncode != 0:
            failures.append(f"{where} does not compile:\n{built.stderr}")
            continue
        ran = subprocess.run([program], capture_output=True, text=True, timeout=60)
        if ran.returncode != 0:
            failures.append(f"{where} exits with status {ran.returncode}:\n{ran.stderr}")
        elif ran.stdout != expected:
            failures.append(f"{where} prints\n{ran.stdout}where the text says\n{expected}")
    if programs == 0:
        failures.append(f"{readme}: no programs found")
    for f in failures:
        print(f, file=sys.stderr)
    print(f"{programs} programs, {len(failures)} failures")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
