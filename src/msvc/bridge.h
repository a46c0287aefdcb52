// SPDX-License-Identifier: MIT
/* The seam between the MSVC-ABI entry points of Quillon.dll (compiled by clang for the MSVC
   target) and the library's one implementation (compiled by mingw-w64 g++). Plain C with pointer
   arguments: both compilers pass and return these the same way on i686 and x86_64.

   `type` is the transform's element type, `t` its 16 elements in row-major order (the layout of
   Transform<T> in both ABIs), and `which` the number of the member a call stands for (2412 ...).
   A result is written to `out`, which holds a constructed value of the result's type. */
#ifndef QUILLON_FRAME_MSVC_BRIDGE_H
#define QUILLON_FRAME_MSVC_BRIDGE_H

#include "kinds.h"

#ifdef __cplusplus
extern "C" {
#endif

void quillon_bridge_identity(int type, void* t);
void quillon_bridge_from_array(int type, void* t, const void* array); /* null: the identity */
void quillon_bridge_copy(int type, void* t, const void* from);
void quillon_bridge_euler(int type, void* t, double ax, double ay, double az);
void quillon_bridge_compose(int type, const void* t, const void* right, void* out);
void quillon_bridge_map(int type, const void* t, int vector_type, const void* v, void* out);
void* quillon_bridge_map_region(int type, const void* t, void* region);
void quillon_bridge_transform_of(int type, const void* t, int which, void* out); /* 2412 2415 2417 2421 */
void quillon_bridge_element_of(int type, const void* t, int which, void* out);   /* 2414 2418 2419 2420 */
void quillon_bridge_cofactor(int type, const void* t, unsigned row, unsigned col, void* out);
void quillon_bridge_copy_out(int type, const void* t, const void* destination);
void quillon_bridge_turn(int type, void* t, int which, double angle);              /* 2422 2423 2424 */
void quillon_bridge_scale(int type, void* t, int which, const void* factor);       /* 2425 2426 2427 */
void quillon_bridge_move(int type, void* t, char axis, const void* amount);
void quillon_bridge_edit(int type, void* t, int which);                            /* 2429 2430 2431 */

#ifdef __cplusplus
}
#endif

#endif
