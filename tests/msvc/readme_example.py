#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Builds the README's example of a program made with the platform's compiler (the C++ block that
includes <quillon/msvc/Quillon.h>) for the MSVC ABI against Quillon.lib, runs it under Wine and
checks that it prints what its comment says.

usage: readme_example.py README CLANGXX LLD_LINK WINE BIN INCLUDE MINGW_LIB TRIPLE"""
import os
import re
import subprocess
import sys
import tempfile

readme, clang, lld_link, wine, bin_dir, include, mingw_lib, triple = sys.argv[1:9]
text = open(readme).read()
block = re.search(r'```cpp\n(#include <windows\.h>\n#include <quillon/msvc/Quillon\.h>.*?)```', text, re.S)
if not block:
    sys.exit('README: no example for the platform compiler')
source = block.group(1)
expected = re.search(r'printf\(.*?\); // (.*)', source).group(1).strip()
here = os.path.dirname(os.path.abspath(__file__))
# 32-bit x86: SSE2 arithmetic, as the DLLs have it; mingw-w64's objects carry no SEH table.
x86 = triple.startswith('i686')
compile_flags = ['-msse2', '-mfpmath=sse'] if x86 else []
link_flags = ['/machine:x86', '/safeseh:no'] if x86 else ['/machine:x64']
with tempfile.TemporaryDirectory() as tmp:
    app = os.path.join(tmp, 'app.cpp')
    with open(app, 'w') as f:
        f.write(re.sub(r'#include <(windows|stdio)\.h>\n', '', source))
    subprocess.run([clang, f'--target={triple}', '-O2', '-fno-exceptions', '-ffp-contract=off', *compile_flags,
                    '-I', include, '-include', os.path.join(here, 'readme_prelude.h'), '-c', app,
                    '-o', os.path.join(tmp, 'app.obj')], check=True)
    exe = os.path.join(bin_dir, 'quillon_readme_example.exe')
    subprocess.run([lld_link, '/nologo', *link_flags, '/subsystem:console', '/entry:start', f'/out:{exe}',
                    os.path.join(tmp, 'app.obj'), f'/libpath:{mingw_lib}', f'/libpath:{bin_dir}', 'Quillon.lib',
                    'Guard Scalars.lib', 'libmsvcrt.a', 'libgdi32.a', 'libkernel32.a'], check=True)
    out = subprocess.run([wine, exe], capture_output=True, text=True, env=dict(os.environ, WINEDEBUG='-all'))
printed = out.stdout.strip()
print(f'printed: {printed}')
if out.returncode != 0 or printed != expected:
    sys.exit(f'expected "{expected}", exit status {out.returncode}')
