#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""The programs and the example commands of a Markdown file print what the file says they print.

A ```cpp block with a main function is a program; the next fenced block must be a ```text block
with its exact output (a program that includes <windows.h> is for the platform's compiler and is
built by the Windows test suite instead). Each program is compiled with the given compiler and flags, linked, run, and
its standard output compared with that block. A ```c block with a main function is a C program,
checked the same way with the C compiler and flags given after --c. Blocks without main are
fragments and not checked. A ```python block followed at once by a ```text block is a Python
program, run with the interpreter $QUILLON_PYTHON (this one if unset) and the module found in
$QUILLON_PYTHON_SITE.

A block whose first line starts with "$ quillon" is a session: each "$ quillon ..." line is run
with the given tool and must print the lines under it (standard output, then standard error); a
trailing "# comment" is not part of a line, and "# exit status N" is the status it must give.

usage: check_readme.py README.md WORK_DIR QUILLON COMPILER [FLAG...] [--c C_COMPILER [FLAG...]]
"""
import os
import re
import shlex
import subprocess
import sys

COMMENT = re.compile(r"\s{2,}#\s*(.*)$")


def check_session(body, tool, where):
    """Failures of the commands of one session block."""
    failures, command, expected, status = [], None, [], 0

    def finish():
        if command is None:
            return
        p = subprocess.run([tool, *command[1:]], capture_output=True, text=True, timeout=60)
        got = (p.stdout + p.stderr).splitlines()
        if (p.returncode, got) != (status, expected):
            failures.append(f"{where}: $ {shlex.join(command)}\n  gives status {p.returncode} and\n    " +
                            "\n    ".join(got) + f"\n  where the text says status {status} and\n    " +
                            "\n    ".join(expected))

    for line in body.splitlines():
        comment = COMMENT.search(line)
        text = line[:comment.start()] if comment else line
        if text.startswith("$ "):
            finish()
            command, expected, status = shlex.split(text[2:]), [], 0
        else:
            expected.append(text)
        m = comment and re.fullmatch(r"exit status (\d+)", comment.group(1))
        if m:
            status = int(m.group(1))
    finish()
    return failures

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


def check_python(body, expected, where):
    site = os.environ.get("QUILLON_PYTHON_SITE")
    if not site:
        return [f"{where}: QUILLON_PYTHON_SITE does not say where the module is"]
    env = dict(os.environ, PYTHONPATH=site)
    python = os.environ.get("QUILLON_PYTHON") or sys.executable
    ran = subprocess.run([python, "-c", body], capture_output=True, text=True, timeout=60, env=env)
    if ran.returncode != 0:
        return [f"{where} exits with status {ran.returncode}:\n{ran.stderr}"]
    if ran.stdout != expected:
        return [f"{where} prints\n{ran.stdout}where the text says\n{expected}"]
    return []


def main():
    readme, work, tool = sys.argv[1], sys.argv[2], sys.argv[3]
    rest = sys.argv[4:]
    cut = rest.index("--c") if "--c" in rest else len(rest)
    # The compiler and flags for each language of program: the C ones may be absent.
    builders = {"cpp": (rest[0], rest[1:cut], "cpp")}
    if cut + 1 < len(rest):
        builders["c"] = (rest[cut + 1], rest[cut + 2:], "c")
    os.makedirs(work, exist_ok=True)
    found = blocks(open(readme, encoding="utf-8").read())
    failures, programs, sessions = [], 0, 0
    for k, (line, info, body) in enumerate(found):
        if body.startswith("$ quillon"):
            sessions += 1
            failures += check_session(body, tool, f"{os.path.basename(readme)}, the session at line {line}")
            continue
        if info == "python" and k + 1 < len(found) and found[k + 1][1] == "text":
            programs += 1
            failures += check_python(body, found[k + 1][2], f"{os.path.basename(readme)}, the Python program at line {line}")
            continue
        if info not in ("cpp", "c") or not re.search(r"\bint\s+main\s*\(", body) or "#include <windows.h>" in body:
            continue
        programs += 1
        where = f"{os.path.basename(readme)}, the program at line {line}"
        if info not in builders:
            failures.append(f"{where}: a C program, and no C compiler given (--c)")
            continue
        compiler, flags, suffix = builders[info]
        if k + 1 >= len(found) or found[k + 1][1] != "text":
            failures.append(f"{where}: no ```text block with its output after it")
            continue
        expected = found[k + 1][2]
        source = os.path.join(work, f"readme_{line}.{suffix}")
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
    if programs == 0 or sessions == 0:
        failures.append(f"{readme}: {programs} programs and {sessions} sessions found")
    for f in failures:
        print(f, file=sys.stderr)
    print(f"{programs} programs, {sessions} sessions, {len(failures)} failures")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
