#!/usr/bin/env python3
"""Checks a built Quillon.dll: its export table holds exactly the listed members of Transform<T>
for float, double and guarddouble, by name, with ordinals 1..N and no gap; it imports only from
the expected DLLs (the guard members from "Guard Scalars.dll", the region functions from GDI32.dll,
sin and cos from the C runtime);
its version resource is the library's record.

usage: check_dll.py OBJDUMP DLL MEMBER_LIST"""
import re
import struct
import subprocess
import sys

objdump, dll, member_list = sys.argv[1:4]
failures = []

# --- exports -------------------------------------------------------------------------------
members = [l.strip() for l in open(member_list) if l.strip() and not l.startswith('#')]
expected = [re.sub(r'\bT\b', t, m) for m in members for t in ('float', 'double', 'guarddouble')]
dump = subprocess.run([objdump, '-p', dll], check=True, capture_output=True, text=True).stdout
table = dump.split('[Ordinal/Name Pointer] Table', 1)[1].split('\n\n', 1)[0]
exports = {int(i) + 1: name for i, name in re.findall(r'\[\s*(\d+)\]\s+(\S+)', table)}
demangled = subprocess.run(['c++filt'], input='\n'.join(exports[o] for o in sorted(exports)),
                           check=True, capture_output=True, text=True).stdout.split('\n')
by_ordinal = dict(zip(sorted(exports), demangled))
if sorted(by_ordinal) != list(range(1, len(expected) + 1)):
    failures.append(f'ordinals are not 1..{len(expected)}: {sorted(by_ordinal)[:5]}... ({len(by_ordinal)} names)')
for ordinal, name in enumerate(expected, 1):
    if by_ordinal.get(ordinal) != name:
        failures.append(f'ordinal {ordinal}: expected {name}, found {by_ordinal.get(ordinal)}')

# --- imports -------------------------------------------------------------------------------
imports = {}
for block in dump.split('DLL Name: ')[1:]:
    lines = block.split('\n\n', 1)[0].split('\n')
    imports[lines[0].strip()] = [l.split()[-1] for l in lines[2:] if l.strip()]
allowed = {'KERNEL32.dll', 'msvcrt.dll', 'GDI32.dll', 'Guard Scalars.dll'}
for name in imports:
    if name not in allowed:
        failures.append(f'unexpected import library {name}')
if 'Guard Scalars.dll' not in imports:
    failures.append('Guard Scalars.dll is not imported')
if not {'sin', 'cos'} <= set(imports.get('msvcrt.dll', [])):
    failures.append('sin and cos are not imported from msvcrt.dll')
gdi = set(imports.get('GDI32.dll', []))
if gdi and gdi != {'GetRegionData', 'CreatePolygonRgn', 'CombineRgn', 'DeleteObject'}:
    failures.append(f'GDI32.dll imports {sorted(gdi)}')

# --- version resource ----------------------------------------------------------------------
raw = subprocess.run(['wrestool', '-x', '--raw', '--type=16', dll], check=True, capture_output=True).stdout
fixed = raw.find(struct.pack('<I', 0xFEEF04BD))
if fixed < 0:
    failures.append('no fixed version information')
else:
    (_, _, fms, fls, pms, pls, _, flags, os_, ftype) = struct.unpack_from('<10I', raw, fixed)
    if (fms, fls, pms, pls) != (0x10000, 1, 0x10000, 1):
        failures.append(f'fixed versions {fms:#x}.{fls:#x} / {pms:#x}.{pls:#x}, not 1.0.0.1')
    if flags != 0 or ftype != 2:  # VFT_DLL
        failures.append(f'file flags {flags:#x}, file type {ftype}')

def blocks(buf, off, end, path=()):
    """Walks the version resource's nested blocks, yielding (path, key, value) for each."""
    while off + 6 <= end:
        length, value_length, kind = struct.unpack_from('<HHH', buf, off)
        if length == 0:
            break
        key_end = buf.index(b'\0\0', off + 6)
        while (key_end - off) % 2:
            key_end = buf.index(b'\0\0', key_end + 1)
        key = buf[off + 6:key_end].decode('utf-16-le')
        value_at = (key_end + 2 + 3) & ~3
        if kind == 1:
            value = buf[value_at:value_at + 2 * value_length].decode('utf-16-le').rstrip('\0')
            children = value_at + 2 * value_length
        else:
            value = buf[value_at:value_at + value_length]
            children = value_at + value_length
        yield path, key, value
        yield from blocks(buf, (children + 3) & ~3, off + length, path + (key,))
        off = (off + length + 3) & ~3

strings = {key: value for path, key, value in blocks(raw, 0, len(raw))
           if path[-1:] == ('040904b0',)}
record = {
    'FileDescription': 'Quillon DLL', 'FileVersion': '1, 0, 0, 1', 'InternalName': 'Quillon',
    'OriginalFilename': 'Quillon.DLL', 'ProductName': 'Quillon Dynamic Link Library',
    'ProductVersion': '1, 0, 0, 1', 'Comments': '', 'LegalTrademarks': '', 'PrivateBuild': '',
    'SpecialBuild': '',
}
if not strings:
    failures.append('no string block 040904b0')
for key, value in record.items():
    if strings.get(key) != value:
        failures.append(f'{key}: expected "{value}", found "{strings.get(key)}"')
translation = raw.find('Translation'.encode('utf-16-le'))
if translation < 0 or struct.pack('<HH', 0x0409, 0x04b0) not in raw[translation:]:
    failures.append('translation is not 0x0409 / 0x04b0')

for f in failures:
    print(f)
print(f'{len(by_ordinal)} exports checked, imports: {sorted(imports)}')
sys.exit(1 if failures else 0)
