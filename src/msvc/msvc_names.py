# SPDX-License-Identifier: MIT
"""The platform compiler's decorated names of the members of Transform<T>, read back into the form
of the export list (src/frame/exported_members.txt): `Transform<double>::Function_2424(double)`.
Used to write Quillon.def and, by the DLL check, to read the export table back."""
import os
import re
import subprocess

ELEMENT_TYPES = ('float', 'double', 'guarddouble')


def expected_members(member_list):
    """The export list, one entry per member and element type, in ordinal order."""
    members = [l.strip() for l in open(member_list) if l.strip() and not l.startswith('#')]
    return [re.sub(r'\bT\b', t, m) for m in members for t in ELEMENT_TYPES]


def undecorate(names, undname='llvm-undname'):
    """Maps each decorated name to its export-list form (None where it is no member of Transform)."""
    out = subprocess.run([undname], input=''.join(n + '\n' for n in names), check=True,
                         capture_output=True, text=True).stdout
    lines = [l for l in out.split('\n') if l.strip()]
    readable = dict(zip(lines[0::2], lines[1::2]))  # the tool echoes each name, then reads it
    return {n: normalize(readable.get(n, '')) for n in names}


def normalize(text):
    s = re.sub(r'^(public|private|protected): ', '', text)
    s = re.sub(r'\b(class|struct) ', '', s)
    if not re.search(r'__(thiscall|cdecl) Transform<', s):
        return None
    s = re.sub(r'^.*?__(thiscall|cdecl) ', '', s)        # the result type and calling convention
    s = re.sub(r'\(void\)', '()', s)
    s = re.sub(r' ([*&])', r'\1', s)
    s = re.sub(r'\*const([,)])', r'*\1', s)              # a top-level const of a parameter
    s = re.sub(r'::(~?)Transform<[^>]*>\(', r'::\1Transform(', s)
    return s


def calling_convention(text):
    m = re.search(r'__(thiscall|cdecl|stdcall|fastcall)\b', text)
    return m.group(1) if m else None


def write_def(nm, undname, member_list, output, objects):
    """Quillon.def: the members defined in the entry objects, by name, ordinals 1..N in list order."""
    listing = subprocess.run([nm, '--defined-only', *objects], check=True, capture_output=True,
                             text=True).stdout
    names = sorted({f[2] for f in (l.split() for l in listing.split('\n')) if len(f) == 3 and f[1] == 'T'})
    by_member = {member: name for name, member in undecorate(names, undname).items() if member}
    lines = ['LIBRARY Quillon.dll', 'EXPORTS']
    for ordinal, member in enumerate(expected_members(member_list), 1):
        if member not in by_member:
            raise SystemExit(f'msvc_names.py: no compiled entry point for {member}')
        lines.append(f'  {by_member[member]} @{ordinal}')
    with open(output + '.tmp', 'w') as f:
        f.write('\n'.join(lines) + '\n')
    os.replace(output + '.tmp', output)


if __name__ == '__main__':
    import sys
    # usage: msvc_names.py NM UNDNAME MEMBER_LIST OUTPUT OBJECT...
    write_def(sys.argv[1], sys.argv[2], sys.argv[3], sys.argv[4], sys.argv[5:])
