#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Runs the conformance battery of several builds and compares their result bits.

usage: compare.py NAME=TRIG:COMMAND [NAME=TRIG:COMMAND ...]
  TRIG names where the build's rotations take sin and cos: "quillon" for the library's own, or the
  C library whose functions it calls ("glibc", "msvcrt").
  e.g. gcc=quillon:build/native/tests/quillon_conformance
       mingw-x64=quillon:"wine64 build/mingw-x64/bin/quillon_conformance.exe"

Every family must agree between all builds, except the families fed through sin and cos ("trig"):
those must agree between builds that take sin and cos from the same place, and otherwise the number
of differing results is reported. Exit status 1 on any disagreement that is not allowed."""
import os
import shlex
import subprocess
import sys
import tempfile

builds = []
for arg in sys.argv[1:]:
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
            print(f'{name}: the battery failed to run: {proc.stderr.strip()[:500]}')
            sys.exit(1)
        families = {}
        for entry in sorted(os.listdir(out)):
            with open(os.path.join(out, entry)) as f:
                families[entry[:-4]] = f.read().split()
        results[name] = (trig_source, families, proc.stdout)

reference, (ref_source, ref_families, ref_digests) = next(iter(results.items()))
print(f'conformance digests of {reference}:')
print(ref_digests.rstrip())
failed = False
for name, (source, families, _) in list(results.items())[1:]:
    for family, hashes in ref_families.items():
        other = families.get(family)
        if other is None or len(other) != len(hashes):
            print(f'{name}: family {family} missing or of another size')
            failed = True
            continue
        differing = sum(1 for a, b in zip(hashes, other) if a != b)
        trig = 'trig' in family
        if differing == 0:
            continue
        if trig and source != ref_source:
            print(f'{name} ({source}) vs {reference} ({ref_source}): {family}: {differing} of {len(hashes)} '
                  f'results differ, from their sin and cos')
        else:
            print(f'{name} vs {reference}: {family}: {differing} of {len(hashes)} results DIFFER')
            failed = True
    if not failed:
        print(f'{name} ({source}): every other family agrees bit for bit with {reference}')
sys.exit(1 if failed else 0)
