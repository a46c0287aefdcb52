#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Checks the built Quillon.dll and "Guard Scalars.dll" against what a program built for the MSVC
ABI imports from them:
 - the names: clang decorates the test's own declaration of the two DLLs (tests/msvc/interface.h,
   compiled into CALLER_OBJ); Quillon.dll exports exactly its 105 names of Transform<T>, by name
   with ordinals 1..105 in the order of the export list, and "Guard Scalars.dll" exactly the names
   of the guard classes; on i686 every member is __thiscall;
 - the imports: only KERNEL32.dll, msvcrt.dll (sin and cos among them), GDI32.dll (the four region
   functions) and "Guard Scalars.dll", whose members Quillon.dll imports by names it exports;
 - the version resource of Quillon.dll: the library's record.

usage: check_dll.py OBJDUMP NM UNDNAME ARCH QUILLON_DLL GUARD_DLL MEMBER_LIST CALLER_OBJ"""
import os
import re
import struct
import subprocess
import sys

objdump, nm, undname, arch, dll, guard_dll, member_list, caller = sys.argv[1:9]
sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), '..', 'src', 'msvc'))
import msvc_names  # noqa: E402

failures = []


def table(path):
    """Exports by ordinal and imports by DLL, as objdump -p prints them."""
    dump = subprocess.run([objdump, '-p', path], check=True, capture_output=True, text=True).stdout
    names = dump.split('[Ordinal/Name Pointer] Table', 1)[1].split('\n\n', 1)[0] if 'Name Pointer' in dump else ''
    base = int(re.search(r'Ordinal Base\s+(\d+)', dump).group(1)) if 'Ordinal Base' in dump else 1
    exports = {int(i) + base: name for i, name in re.findall(r'\[\s*(\d+)\]\s+(\S+)', names)}
    if path == dll and (base != 1 or 'Export Address Table \t\t00000069' not in dump):
        failures.append(f'{path}: the export address table is not exactly ordinals 1..105 (base {base})')
    imports = {}
    for block in dump.split('DLL Name: ')[1:]:
        lines = block.split('\n\n', 1)[0].split('\n')
        imports[lines[0].strip()] = [l.split()[-1] for l in lines[2:] if l.strip()]
    return exports, imports


# --- the names a caller imports, decorated by clang from the test's own declaration -----------
undefined = subprocess.run([nm, '-u', caller], check=True, capture_output=True, text=True).stdout.split()
imported = {n[len('__imp_'):] for n in undefined if n.startswith('__imp_?')}
want_transform = {n for n in imported if '?$Transform@' in n}
want_guard = imported - want_transform

exports, imports = table(dll)
expected = msvc_names.expected_members(member_list)
if set(exports.values()) != want_transform:
    failures.append(f'Quillon.dll exports {len(exports)} names; missing {sorted(want_transform - set(exports.values()))[:5]}, '
                    f'extra {sorted(set(exports.values()) - want_transform)[:5]}')
if sorted(exports) != list(range(1, len(expected) + 1)):
    failures.append(f'ordinals are not 1..{len(expected)}: {sorted(exports)[:5]}... ({len(exports)} names)')
readable = msvc_names.undecorate(list(exports.values()), undname)
for ordinal, member in enumerate(expected, 1):
    if readable.get(exports.get(ordinal)) != member:
        failures.append(f'ordinal {ordinal}: expected {member}, found {exports.get(ordinal)}')
convention = 'thiscall' if arch.startswith('i') else 'cdecl'
plain = subprocess.run([undname], input=''.join(n + '\n' for n in exports.values()), check=True,
                       capture_output=True, text=True).stdout
wrong = [l for l in plain.split('\n') if 'Transform<' in l and msvc_names.calling_convention(l) != convention]
if wrong:
    failures.append(f'{len(wrong)} members are not __{convention}: {wrong[0]}')

guard_exports, _ = table(guard_dll)
if set(guard_exports.values()) != want_guard:
    failures.append(f'Guard Scalars.dll exports {len(guard_exports)} names; missing {sorted(want_guard - set(guard_exports.values()))[:5]}, '
                    f'extra {sorted(set(guard_exports.values()) - want_guard)[:5]}')

# --- imports ------------------------------------------------------------------------------------
allowed = {'KERNEL32.dll', 'msvcrt.dll', 'GDI32.dll', 'Guard Scalars.dll'}
for name in imports:
    if name not in allowed:
        failures.append(f'unexpected import library {name}')
from_guard = set(imports.get('Guard Scalars.dll', []))
if not from_guard or not from_guard <= set(guard_exports.values()):
    failures.append(f'Quillon.dll imports from Guard Scalars.dll names it does not export: {sorted(from_guard - set(guard_exports.values()))[:5]}')
if not {'sin', 'cos'} <= set(imports.get('msvcrt.dll', [])):
    failures.append('sin and cos are not imported from msvcrt.dll')
gdi = set(imports.get('GDI32.dll', []))
if gdi != {'GetRegionData', 'CreatePolygonRgn', 'CombineRgn', 'DeleteObject'}:
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
print(f'{len(exports)} + {len(guard_exports)} exports checked ({convention}), imports: {sorted(imports)}, '
      f'{len(from_guard)} of them from Guard Scalars.dll')
sys.exit(1 if failures else 0)
