// SPDX-License-Identifier: MIT
// The module frame. Loading and unloading run nothing of the geometry: there is no global object,
// no initialiser and no state. On Windows the entry point accepts every notification and does
// nothing, and the version record is the resource of Quillon.rc. Elsewhere the record is kept in a
// section of its own so that it can be read from the file itself:
//   readelf -p .quillon.version libquillon.so.1
// One string per field, "Name=Value", in the order of the record; the translation is language
// 0x0409 with code page 0x04b0 (string block 040904b0).
#if defined(_WIN32)
#include <windows.h>

extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD, LPVOID) { return TRUE; }
#else
#define QUILLON_FIELD(name, value) name "=" value "\0"

[[gnu::section(".quillon.version"), gnu::used]] static const char kVersionRecord[] =
    QUILLON_FIELD("FixedFileVersion", "1.0.0.1")
    QUILLON_FIELD("FixedProductVersion", "1.0.0.1")
    QUILLON_FIELD("FileType", "dynamic link library")
    QUILLON_FIELD("FileFlags", "none")
    QUILLON_FIELD("Translation", "040904b0")
    QUILLON_FIELD("CompanyName", "The Quillon developers")
    QUILLON_FIELD("FileDescription", "Quillon DLL")
    QUILLON_FIELD("FileVersion", "1, 0, 0, 1")
    QUILLON_FIELD("InternalName", "Quillon")
    QUILLON_FIELD("LegalCopyright", "Copyright (C) 2026 The Quillon developers")
    QUILLON_FIELD("OriginalFilename", "Quillon.DLL")
    QUILLON_FIELD("ProductName", "Quillon Dynamic Link Library")
    QUILLON_FIELD("ProductVersion", "1, 0, 0, 1")
    QUILLON_FIELD("Comments", "")
    QUILLON_FIELD("LegalTrademarks", "")
    QUILLON_FIELD("PrivateBuild", "")
    QUILLON_FIELD("SpecialBuild", "");
#endif
