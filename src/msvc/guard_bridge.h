// SPDX-License-Identifier: MIT
/* The seams of the guard classes between the MSVC ABI and the library's implementation, as plain
   C with pointer arguments (both compilers pass these the same way).

   quillon_guard_*: the implementation inside "Guard Scalars.dll", called by its MSVC-ABI exports.
   quillon_guard_import_*: inside Quillon.dll, the guard members imported from "Guard Scalars.dll"
   by their MSVC names, called by the library's own code.

   `from`, `to` and `type` are QUILLON_KIND_* values; `out` holds a value of the result's type.
     convert   constructors from int, float, double and the other classes; operator int (nint),
               operator double and operator float
     arith     a op b for '+', '-', '*', '/' on two values of the class; 'd' is a guarddouble minus
               a plain double, 'i' a plain int times a guarddouble
     update    a += b ('+') and a /= b ('/')
     compare   a == b ('='), a != b ('!'), a < b ('<'), a > b ('>'), 1 or 0 */
#ifndef QUILLON_SCALARS_MSVC_GUARD_BRIDGE_H
#define QUILLON_SCALARS_MSVC_GUARD_BRIDGE_H

#include "kinds.h"

#ifdef __cplusplus
extern "C" {
#endif

void quillon_guard_convert(int from, int to, const void* in, void* out);
void quillon_guard_arith(int type, char op, const void* a, const void* b, void* out);
void quillon_guard_update(int type, char op, void* a, const void* b);
int quillon_guard_compare(int type, char op, const void* a, const void* b);

void quillon_guard_import_convert(int from, int to, const void* in, void* out);
void quillon_guard_import_arith(int type, char op, const void* a, const void* b, void* out);
void quillon_guard_import_update(int type, char op, void* a, const void* b);
int quillon_guard_import_compare(int type, char op, const void* a, const void* b);

#ifdef __cplusplus
}
#endif

#endif
