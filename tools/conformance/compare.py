#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Runs the battery (tests/battery/families.h) through several builds or surfaces and compares
their result bits, and with --expect the digests recorded in a file.

usage: compare.py [--expect FILE] NAME=TRIG:COMMAND [NAME=TRIG:COMMAND ...]
  TRIG names where the build's rotations take sin and cos: "quillon" for the library's own, or the
  C library whose functions it calls ("glibc", "msvcrt").
  e.g. gcc=quillon:build/native/tools/conformance/quillon_conformance
       mingw-x64=quillon:"wine64 build/mingw-x64/bin/quillon_conformance.exe"
       python=quillon:"python3 tests/battery/battery.py"

A surface prints only the families it reaches; the families two of them both print are compared,
and which were is said. Every family must agree, except those fed through sin and cos ("trig"):
they must agree between builds that take sin and cos from the same place, and otherwise the number
of differing results is reported. The recorded digests hold for builds with the library's own sin
and cos. Exit status 1 on any disagreement that is not allowed."""
import os
import shlex
import subprocess
import sys
import tempfile


def digests(text):
    """{family: (count, digest)} from the lines a battery prints."""
    return {w[0]: (w[1], w[2]) for w in (line.split() for line in text.splitlines()) if len(w) == 3 and w[0][0] != "#"}


args = sys.argv[1:]
expected = {}
if args[:1] == ['--expect']:
    with open(args[1]) as f:
        expected = digests(f.read())
    args = args[2:]
builds = []
for arg in filter(None, args):  # an empty argument: a surface this build lacks
    name, rest = arg.split('=', 1)
    trig_source, command = rest.split(':', 1)
    builds.append((name, trig_source, command))

results = {}
with tempfile.TemporaryDirectory() as tmp:
    for name, trig_source, command in builds:
        out = os.path.join(tmp, name)
        os.mkdir(out)
        argv = shlex.split(command)
        dump = out
        # The program itself, after any 'env NAME=value' in front of it.
        program = next((a for a in argv if a != 'env' and '=' not in a), argv[0])
        if program.endswith(('wine', 'wine64')):
            dump = 'Z:' + out.replace('/', '\\')
        env = dict(os.environ, WINEDEBUG='-all')
        proc = subprocess.run(argv + ['--dump', dump], capture_output=True, text=True, env=env)
        if proc.returncode != 0:
            print(f'{name}: the battery failed: {(proc.stderr or proc.stdout).strip()[:500]}')
            sys.exit(1)
        families = {}
        for entry in sorted(os.listdir(out)):
            with open(os.path.join(out, entry)) as f:
                families[entry[:-4]] = f.read().split()
        results[name] = (trig_source, families, digests(proc.stdout))

failed = False
for name, (source, families, printed) in results.items():
    if not families:
        print(f'{name}: printed no family')
        failed = True
    recorded = [family for family in printed if family in expected and (source == 'quillon' or 'trig' not in family)]
    wrong = [family for family in recorded if printed[family] != expected[family]]
    for family in wrong:
        print(f'{name}: {family}: {printed[family][1]} ({printed[family][0]} results), '
              f'recorded {expected[family][1]} ({expected[family][0]}): DIFFERS')
    if expected:
        print(f'{name} ({source}): {len(recorded) - len(wrong)} of {len(recorded)} families as recorded')
    failed |= bool(wrong)

reference, (ref_source, ref_families, ref_printed) = next(iter(results.items()))
for name, (source, families, _) in list(results.items())[1:]:
    common = [family for family in ref_families if family in families]
    agreed = 0
    for family in common:
        hashes, other = ref_families[family], families[family]
        differing = sum(1 for a, b in zip(hashes, other) if a != b) + abs(len(hashes) - len(other))
        if differing == 0:
            agreed += 1
        elif 'trig' in family and source != ref_source:
            print(f'{name} ({source}) vs {reference} ({ref_source}): {family}: {differing} of {len(hashes)} '
                  f'results differ, from their sin and cos')
        else:
            print(f'{name} vs {reference}: {family}: {differing} of {len(hashes)} results DIFFER')
            failed = True
    only = sorted(set(ref_families) ^ set(families))
    print(f'{name} vs {reference}: {agreed} of {len(common)} shared families agree bit for bit'
          + (f'; not shared: {" ".join(only)}' if only else ''))
    if not common:
        failed = True
sys.exit(1 if failed else 0)
