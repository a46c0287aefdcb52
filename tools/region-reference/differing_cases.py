#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Prints the cases of a second recording whose transcript differs from the first one's, whole.

usage: differing_cases.py FIRST SECOND"""
import sys


def cases(path):
    found, name = {}, None
    for line in open(path, encoding='utf-8'):
        line = line.rstrip('\r\n')
        if not line or line.startswith('#'):
            continue
        if line.startswith('case '):
            name = line[5:]
            found[name] = []
        elif name is not None:
            found[name].append(line)
    return found


first, second = cases(sys.argv[1]), cases(sys.argv[2])
if first.keys() != second.keys():
    sys.exit('differing_cases.py: the two recordings hold different cases')
for name, transcript in second.items():
    if transcript != first[name]:
        print(f'case {name}')
        print('\n'.join(transcript))
