// SPDX-License-Identifier: MIT
// The guard classes' C seam, written once and compiled on both sides of the ABI boundary:
//  - by mingw-w64 g++ into "Guard Scalars.dll" as quillon_guard_*, where it runs the library's own
//    guard members for the DLL's MSVC-ABI exports;
//  - by clang for the MSVC target into Quillon.dll as quillon_guard_import_*, where it calls the
//    members that Quillon.dll imports from "Guard Scalars.dll" by their MSVC names.
// Each function calls the class's own constructor, conversion or operator; nothing is computed here.
#if defined(QUILLON_GUARD_SEAM_IMPORTS)
#  include <quillon/msvc/Quillon.h>
#  define QUILLON_GUARD_SEAM(name) quillon_guard_import_##name
#else
#  include <quillon/GuardScalars>
#  define QUILLON_GUARD_SEAM(name) quillon_guard_##name
#endif
#include "guard_bridge.h"

namespace {

using quillon::seam::Is;
using quillon::seam::withKind;

template <class A, class B>
constexpr bool same = false;
template <class A>
constexpr bool same<A, A> = true;
template <class T>
constexpr bool isGuard = same<T, guardint> || same<T, guardfloat> || same<T, guarddouble>;

template <class T>
const T& in(const void* p) { return *static_cast<const T*>(p); }
template <class T>
T& at(void* p) { return *static_cast<T*>(p); }

} // namespace

extern "C" void QUILLON_GUARD_SEAM(convert)(int from, int to, const void* source, void* out)
{
    withKind(from, [&]<class F>(Is<F>) {
        withKind(to, [&]<class T>(Is<T>) {
            F value = in<F>(source); // a non-const copy: guarddouble(guardint&) takes one
            if constexpr (requires { T(value); }) at<T>(out) = T(value);
        });
    });
}

extern "C" void QUILLON_GUARD_SEAM(arith)(int type, char op, const void* a, const void* b, void* out)
{
    if (op == 'd') { at<guarddouble>(out) = in<guarddouble>(a) - in<double>(b); return; }
    if (op == 'i') { at<guarddouble>(out) = in<int>(a) * in<guarddouble>(b); return; }
    withKind(type, [&]<class G>(Is<G>) {
        if constexpr (isGuard<G>) {
            const G& x = in<G>(a);
            const G& y = in<G>(b);
            if (op == '+') at<G>(out) = x + y;
            if (op == '-') at<G>(out) = x - y;
            if (op == '*') at<G>(out) = x * y;
            if constexpr (same<G, guarddouble>) if (op == '/') at<G>(out) = x / y;
        }
    });
}

extern "C" void QUILLON_GUARD_SEAM(update)(int type, char op, void* a, const void* b)
{
    withKind(type, [&]<class G>(Is<G>) {
        if constexpr (isGuard<G>) {
            if (op == '+') at<G>(a) += in<G>(b);
            if constexpr (!same<G, guardint>) if (op == '/') at<G>(a) /= in<G>(b);
        }
    });
}

extern "C" int QUILLON_GUARD_SEAM(compare)(int type, char op, const void* a, const void* b)
{
    int result = 0;
    withKind(type, [&]<class G>(Is<G>) {
        if constexpr (isGuard<G>) {
            const G& x = in<G>(a);
            const G& y = in<G>(b);
            if (op == '=') result = x == y;
            if (op == '!') result = x != y;
            if (op == '<') result = x < y;
            if constexpr (same<G, guarddouble>) if (op == '>') result = x > y;
        }
    });
    return result;
}
