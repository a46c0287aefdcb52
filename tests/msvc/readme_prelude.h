// SPDX-License-Identifier: MIT
// Stands in for <windows.h> and <stdio.h> when the test suite builds the README's example of a
// program made with the platform's compiler (clang for the MSVC target has no Windows SDK here):
// the region functions and printf it uses, and an entry point without a C runtime start-up.
struct HRGN__;
typedef HRGN__* HRGN;
extern "C" __declspec(dllimport) HRGN __stdcall CreateRectRgn(int, int, int, int);
extern "C" __declspec(dllimport) int __stdcall DeleteObject(void*);
extern "C" int printf(const char*, ...);
extern "C" int _fltused = 0;
extern "C" __declspec(dllimport) void __cdecl exit(int);
int main();
extern "C" void start() { exit(main()); }
