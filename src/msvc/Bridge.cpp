// SPDX-License-Identifier: MIT
// The library's side of Quillon.dll's MSVC-ABI entry points (compiled by mingw-w64 g++): each
// function runs the one member of Transform<T> that an entry point stands for, on storage that the
// entry point owns and that has the layout of Transform<T> and ThreeDVector<B> in both ABIs.
#include <quillon/Region>
#include <quillon/Transform>

#include <new>
#include <type_traits>

#include "bridge.h"

namespace {

using quillon::seam::Is;
using quillon::seam::withKind;

// Calls f(Is<T>{}) for the transform element type that `type` names.
template <class F>
void withElement(int type, F&& f) noexcept
{
    withKind(type, [&]<class T>(Is<T> is) {
        if constexpr (std::is_same_v<T, float> || std::is_same_v<T, double> || std::is_same_v<T, guarddouble>) f(is);
    });
}

template <class T>
const Transform<T>& as(const void* t) noexcept { return *static_cast<const Transform<T>*>(t); }
template <class T>
Transform<T>& as(void* t) noexcept { return *static_cast<Transform<T>*>(t); }

} // namespace

extern "C" {

void quillon_bridge_identity(int type, void* t)
{
    withElement(type, [&]<class T>(Is<T>) { new (t) Transform<T>(); });
}

void quillon_bridge_from_array(int type, void* t, const void* array)
{
    withElement(type, [&]<class T>(Is<T>) { new (t) Transform<T>(static_cast<const T*>(array)); });
}

void quillon_bridge_copy(int type, void* t, const void* from)
{
    withElement(type, [&]<class T>(Is<T>) { new (t) Transform<T>(as<T>(from)); });
}

void quillon_bridge_euler(int type, void* t, double ax, double ay, double az)
{
    withElement(type, [&]<class T>(Is<T>) { new (t) Transform<T>(ax, ay, az); });
}

void quillon_bridge_compose(int type, const void* t, const void* right, void* out)
{
    withElement(type, [&]<class T>(Is<T>) { new (out) Transform<T>(as<T>(t) * as<T>(right)); });
}

void quillon_bridge_map(int type, const void* t, int vector_type, const void* v, void* out)
{
    withElement(type, [&]<class A>(Is<A>) {
        withKind(vector_type, [&]<class B>(Is<B>) {
            new (out) ThreeDVector<B>(as<A>(t) * *static_cast<const ThreeDVector<B>*>(v));
        });
    });
}

void* quillon_bridge_map_region(int type, const void* t, void* region)
{
    HRGN result = nullptr;
    withElement(type, [&]<class T>(Is<T>) { result = as<T>(t) * static_cast<HRGN>(region); });
    return result;
}

void quillon_bridge_transform_of(int type, const void* t, int which, void* out)
{
    withElement(type, [&]<class T>(Is<T>) {
        const Transform<T>& m = as<T>(t);
        switch (which) {
        case 2412: new (out) Transform<T>(m.Function_2412()); break;
        case 2415: new (out) Transform<T>(m.Function_2415()); break;
        case 2417: new (out) Transform<T>(m.Function_2417()); break;
        case 2421: new (out) Transform<T>(m.Function_2421()); break;
        default: break;
        }
    });
}

void quillon_bridge_element_of(int type, const void* t, int which, void* out)
{
    withElement(type, [&]<class T>(Is<T>) {
        const Transform<T>& m = as<T>(t);
        switch (which) {
        case 2414: new (out) T(m.Function_2414()); break;
        case 2418: new (out) T(m.Function_2418()); break;
        case 2419: new (out) T(m.Function_2419()); break;
        case 2420: new (out) T(m.Function_2420()); break;
        default: break;
        }
    });
}

void quillon_bridge_cofactor(int type, const void* t, unsigned row, unsigned col, void* out)
{
    withElement(type, [&]<class T>(Is<T>) {
        new (out) T(quillon::detail::PrivateAccess::cofactor(as<T>(t), row, col));
    });
}

void quillon_bridge_copy_out(int type, const void* t, const void* destination)
{
    withElement(type, [&]<class T>(Is<T>) { as<T>(t).Function_2416(static_cast<const T*>(destination)); });
}

void quillon_bridge_turn(int type, void* t, int which, double angle)
{
    withElement(type, [&]<class T>(Is<T>) {
        Transform<T>& m = as<T>(t);
        switch (which) {
        case 2422: m.Function_2422(angle); break;
        case 2423: m.Function_2423(angle); break;
        case 2424: m.Function_2424(angle); break;
        default: break;
        }
    });
}

void quillon_bridge_scale(int type, void* t, int which, const void* factor)
{
    withElement(type, [&]<class T>(Is<T>) {
        Transform<T>& m = as<T>(t);
        const T& f = *static_cast<const T*>(factor);
        switch (which) {
        case 2425: m.Function_2425(f); break;
        case 2426: m.Function_2426(f); break;
        case 2427: m.Function_2427(f); break;
        default: break;
        }
    });
}

void quillon_bridge_move(int type, void* t, char axis, const void* amount)
{
    withElement(type, [&]<class T>(Is<T>) { as<T>(t).Function_2428(axis, *static_cast<const T*>(amount)); });
}

void quillon_bridge_edit(int type, void* t, int which)
{
    withElement(type, [&]<class T>(Is<T>) {
        Transform<T>& m = as<T>(t);
        switch (which) {
        case 2429: m.Function_2429(); break;
        case 2430: m.Function_2430(); break;
        case 2431: m.Function_2431(); break;
        default: break;
        }
    });
}

} // extern "C"
