#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Gives a linked DLL's export table the ordinal base 1. lld-link 14 writes base 0 and an empty slot
for ordinal 0, so the table claims one function more than the DLL exports; afterwards the table
holds exactly ordinals 1..N. The names keep their ordinals.

usage: ordinal_base.py DLL"""
import struct
import sys

path = sys.argv[1]
data = bytearray(open(path, 'rb').read())
pe = struct.unpack_from('<I', data, 0x3C)[0]
if data[pe:pe + 4] != b'PE\0\0':
    sys.exit(f'{path}: not a PE file')
sections, optional_size = struct.unpack_from('<H', data, pe + 6)[0], struct.unpack_from('<H', data, pe + 20)[0]
optional = pe + 24
directories = optional + (96 if struct.unpack_from('<H', data, optional)[0] == 0x10B else 112)
export_rva = struct.unpack_from('<I', data, directories)[0]


def offset(rva):
    for i in range(sections):
        virtual_size, address, raw_size, raw = struct.unpack_from('<IIII', data, optional + optional_size + 40 * i + 8)
        if address <= rva < address + max(virtual_size, raw_size):
            return rva - address + raw
    sys.exit(f'{path}: address {rva:#x} outside every section')


if export_rva:
    at = offset(export_rva) + 16  # Base, NumberOfFunctions, NumberOfNames, and the three tables
    base, functions, names, address_table, name_table, ordinal_table = struct.unpack_from('<6I', data, at)
    if base == 0 and functions and struct.unpack_from('<I', data, offset(address_table))[0] == 0:
        struct.pack_into('<6I', data, at, 1, functions - 1, names, address_table + 4, name_table, ordinal_table)
        ordinals = offset(ordinal_table)
        for i in range(names):
            index = struct.unpack_from('<H', data, ordinals + 2 * i)[0]
            struct.pack_into('<H', data, ordinals + 2 * i, index - 1)
        with open(path, 'wb') as f:
            f.write(data)
