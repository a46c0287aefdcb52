#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Every source file of the project names its license (MIT) in an SPDX line at its top.

usage: check_license.py SOURCE_DIR"""
import os
import subprocess
import sys

root = sys.argv[1]
files = subprocess.run(['git', 'ls-files'], cwd=root, capture_output=True, text=True, check=True).stdout.split()
sources = [f for f in files
           if f.endswith(('.cpp', '.h', '.c', '.py', '.sh', '.cmake', '.in', '.bash'))
           or os.path.basename(f) in ('CMakeLists.txt', 'dev')
           or (f.startswith('include/quillon/') and '.' not in os.path.basename(f))]
missing = [f for f in sources
           if 'SPDX-License-Identifier: MIT' not in ''.join(open(os.path.join(root, f), errors='replace').readlines()[:3])]
for f in missing:
    print(f'{f}: no SPDX-License-Identifier line at its top')
print(f'{len(sources)} source files checked')
sys.exit(1 if missing or len(sources) < 50 else 0)
