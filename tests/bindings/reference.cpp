// SPDX-License-Identifier: MIT
// The C++ side of the C interface's battery: the same steps as c_interface_test.c, through the C++
// members and operators, printing the same digests. The two outputs must be equal line for line.
#include <quillon/Region>
#include <quillon/ThreeDVector>
#include <quillon/Transform>

#include "battery.h"

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

namespace {

// Raw stored values: what the C interface carries.
double raw(const guarddouble& v) { return v.value(); }
float raw(const guardfloat& v) { return v.value(); }
std::int32_t raw(const guardint& v) { return v.value(); }

void put(qb_digest* g, double v) { qb_put_double(g, v); }
void put(qb_digest* g, float v) { qb_put_float(g, v); }
void put(qb_digest* g, std::int32_t v) { qb_put_int(g, v); }
template <class G>
void put(qb_digest* g, const G& v) { put(g, raw(v)); }

// A drawn element of each type, as its raw value entering the class's own conversion.
template <class T> struct Draw;
template <> struct Draw<int> { static int from(qb_rng* r) { return qb_int(r); } };
template <> struct Draw<float> { static float from(qb_rng* r) { return qb_float(r); } };
template <> struct Draw<double> { static double from(qb_rng* r) { return qb_double(r); } };
template <> struct Draw<guardint> { static guardint from(qb_rng* r) { return guardint(static_cast<int>(qb_int(r))); } };
template <> struct Draw<guardfloat> { static guardfloat from(qb_rng* r) { return guardfloat(static_cast<double>(qb_float(r))); } };
template <> struct Draw<guarddouble> { static guarddouble from(qb_rng* r) { return guarddouble(qb_double(r)); } };

template <class T>
void putTransform(qb_digest* g, const Transform<T>& t)
{
    T e[16]{};
    t.Function_2416(e);
    for (const T& v : e) put(g, v);
}

void guardFamilies()
{
    qb_rng r{QB_SEED + 1};
    qb_digest g;
    qb_start(&g);
    for (int k = 0; k < QB_GUARD_ROUNDS; ++k) {
        const double a = qb_double(&r), b = qb_double(&r);
        const int i = qb_int(&r);
        const guarddouble ga(a), gb(b);
        guardint gi(i);
        put(&g, guarddouble(i));
        put(&g, ga);
        put(&g, guarddouble(gi));
        put(&g, ga + gb);
        put(&g, ga - gb);
        put(&g, ga - b);
        put(&g, ga * gb);
        put(&g, i * gb);
        put(&g, ga / gb);
        guarddouble x = ga;
        x += gb;
        put(&g, x);
        x = ga;
        x /= gb;
        put(&g, x);
        put(&g, std::int32_t{ga.nint()});
        x = ga;
        x.RoundToWhole();
        put(&g, x);
        put(&g, std::int32_t{ga == gb});
        put(&g, std::int32_t{ga != gb});
        put(&g, std::int32_t{ga < gb});
        put(&g, std::int32_t{ga > gb});
    }
    qb_print("guard-double", &g);

    r.state = QB_SEED + 2;
    qb_start(&g);
    for (int k = 0; k < QB_GUARD_ROUNDS; ++k) {
        const float a = qb_float(&r), b = qb_float(&r);
        const double x = qb_double(&r);
        const int i = qb_int(&r);
        const guardfloat ga(static_cast<double>(a)), gb(static_cast<double>(b));
        guardint gi(i);
        put(&g, guardfloat(i));
        put(&g, guardfloat(x));
        put(&g, guardfloat(gi));
        put(&g, ga + gb);
        put(&g, ga - gb);
        put(&g, ga * gb);
        guardfloat y = ga;
        y /= gb;
        put(&g, y);
        y = ga;
        y += gb;
        put(&g, y);
        y = ga;
        y /= gb;
        put(&g, y);
        put(&g, std::int32_t{ga.nint()});
        put(&g, std::int32_t{ga == gb});
        put(&g, std::int32_t{ga != gb});
        put(&g, std::int32_t{ga < gb});
    }
    qb_print("guard-float", &g);

    r.state = QB_SEED + 3;
    qb_start(&g);
    for (int k = 0; k < QB_GUARD_ROUNDS; ++k) {
        const int a = qb_int(&r), b = qb_int(&r);
        const double x = qb_double(&r);
        const float f = qb_float(&r);
        const guardint ga(a), gb(b);
        put(&g, guardint(a));
        put(&g, guardint(x));
        put(&g, guardint(f));
        put(&g, guardint(guarddouble(x)));
        put(&g, guardint(guardfloat(static_cast<double>(f))));
        put(&g, static_cast<double>(ga));
        put(&g, static_cast<float>(ga));
        put(&g, ga + gb);
        put(&g, ga - gb);
        put(&g, ga * gb);
        guardint y = ga;
        y /= gb;
        put(&g, y);
        y = ga;
        y += gb;
        put(&g, y);
        y = ga;
        y /= gb;
        put(&g, y);
        put(&g, std::int32_t{ga == gb});
        put(&g, std::int32_t{ga != gb});
        put(&g, std::int32_t{ga < gb});
    }
    qb_print("guard-int", &g);
}

template <class T>
void transformFamily(const char* name, int index)
{
    qb_rng r{QB_SEED + index};
    qb_digest g;
    qb_start(&g);
    for (int round = 0; round < QB_TRANSFORM_ROUNDS; ++round) {
        T e[16];
        for (T& v : e) v = Draw<T>::from(&r);
        const double ax = qb_angle(&r), ay = qb_angle(&r), az = qb_angle(&r);
        const Transform<T> a(e);
        const Transform<T> b(ax, ay, az);
        putTransform(&g, a);
        putTransform(&g, b);
        putTransform(&g, a * b);
        putTransform(&g, b * a);
        putTransform(&g, a.Function_2412());
        put(&g, a.Function_2414());
        put(&g, b.Function_2414());
        putTransform(&g, a.Function_2415());
        putTransform(&g, b.Function_2415());
        putTransform(&g, a.Function_2417());
        putTransform(&g, a.Function_2421());
        put(&g, a.Function_2418());
        put(&g, a.Function_2419());
        put(&g, a.Function_2420());
        Transform<T> d(b);
        const double t1 = qb_angle(&r), t2 = qb_angle(&r), t3 = qb_angle(&r);
        d.Function_2422(t1);
        d.Function_2423(t2);
        d.Function_2424(t3);
        putTransform(&g, d);
        const T s1 = Draw<T>::from(&r), s2 = Draw<T>::from(&r), s3 = Draw<T>::from(&r);
        d.Function_2425(s1);
        d.Function_2426(s2);
        d.Function_2427(s3);
        putTransform(&g, d);
        const char axis1 = qb_axis(&r);
        const T m1 = Draw<T>::from(&r);
        const char axis2 = qb_axis(&r);
        const T m2 = Draw<T>::from(&r);
        d.Function_2428(axis1, m1);
        d.Function_2428(axis2, m2);
        putTransform(&g, d);
        d.Function_2429();
        putTransform(&g, d);
        putTransform(&g, d); // the element copy-out: the same sixteen values
        d.Function_2430();
        putTransform(&g, d);
        d.Function_2431();
        putTransform(&g, d);
    }
    qb_print(name, &g);
}

template <class A, class B>
void mapFamily(const char* name, int index)
{
    qb_rng r{QB_SEED + index};
    qb_digest g;
    qb_start(&g);
    for (int round = 0; round < QB_MAP_TRANSFORMS; ++round) {
        Transform<A> t;
        if (round % 2 == 0) {
            A e[16];
            for (A& v : e) v = Draw<A>::from(&r);
            t = Transform<A>(e);
        } else {
            const double ax = qb_angle(&r), ay = qb_angle(&r), az = qb_angle(&r);
            t = Transform<A>(ax, ay, az);
            A m = Draw<A>::from(&r);
            t.Function_2428('x', m);
            m = Draw<A>::from(&r);
            t.Function_2428('y', m);
            m = Draw<A>::from(&r);
            t.Function_2428('z', m);
        }
        std::vector<ThreeDVector<B>> points;
        for (int j = 0; j < QB_MAP_POINTS; ++j) {
            const B x = Draw<B>::from(&r), y = Draw<B>::from(&r), z = Draw<B>::from(&r);
            points.emplace_back(x, y, z);
        }
        for (const auto& p : points) {
            const ThreeDVector<B> image = t * p;
            put(&g, image.GetX());
            put(&g, image.GetY());
            put(&g, image.GetZ());
        }
    }
    qb_print(name, &g);
}

template <class A>
void mapFamilies(const char* prefix, int base)
{
    const std::string p = std::string("map-") + prefix + "-";
    mapFamily<A, int>((p + "i").c_str(), base + 0);
    mapFamily<A, float>((p + "f").c_str(), base + 1);
    mapFamily<A, double>((p + "d").c_str(), base + 2);
    mapFamily<A, guardint>((p + "gi").c_str(), base + 3);
    mapFamily<A, guardfloat>((p + "gf").c_str(), base + 4);
    mapFamily<A, guarddouble>((p + "gd").c_str(), base + 5);
}

// The rectangles as one region: their union, each normalised as CreateRectRgn does.
template <class T>
void rectFamily(const char* name, int index)
{
    qb_rng r{QB_SEED + index};
    qb_digest g;
    qb_start(&g);
    for (int round = 0; round < QB_RECT_ROUNDS; ++round) {
        const int n = 1 + static_cast<int>(qb_next(&r) % 6);
        HRGN region = CreateRectRgn(0, 0, 0, 0);
        for (int j = 0; j < n; ++j) {
            const int l = qb_pixel(&r), t = qb_pixel(&r), rr = qb_pixel(&r), b = qb_pixel(&r);
            HRGN piece = CreateRectRgn(l, t, rr, b);
            CombineRgn(region, region, piece, RGN_OR);
            DeleteObject(piece);
        }
        Transform<T> t;
        if (round % 2 == 0) {
            t.Function_2424(qb_unit(&r) * 7.0);
        } else {
            const T factor = static_cast<T>(0.25 + static_cast<double>(qb_next(&r) % 16) * 0.25);
            const T dx = static_cast<T>(qb_pixel(&r)), dy = static_cast<T>(qb_pixel(&r));
            t.Function_2425(factor);
            t.Function_2428('x', dx);
            t.Function_2428('y', dy);
        }
        HRGN image = t * region;
        std::vector<std::int32_t> rects;
        if (image) {
            const DWORD size = GetRegionData(image, 0, nullptr);
            std::vector<char> data(size);
            GetRegionData(image, size, reinterpret_cast<RGNDATA*>(data.data()));
            RGNDATAHEADER header;
            std::memcpy(&header, data.data(), sizeof header);
            for (DWORD k = 0; k < header.nCount; ++k) {
                RECT rc;
                std::memcpy(&rc, data.data() + header.dwSize + k * sizeof(RECT), sizeof rc);
                rects.insert(rects.end(), {rc.left, rc.top, rc.right, rc.bottom});
            }
            DeleteObject(image);
        }
        DeleteObject(region);
        qb_put_int(&g, static_cast<std::int32_t>(rects.size() / 4));
        for (std::int32_t v : rects) qb_put_int(&g, v);
    }
    qb_print(name, &g);
}

// A raw value of each element type drawn as the C test draws it, and how it enters the class.
template <class T> struct Kind;
template <> struct Kind<int> {
    using C = std::int32_t;
    static C draw(qb_rng* r) { return qb_int(r); }
    static int enter(C v) { return v; }
};
template <> struct Kind<float> {
    using C = float;
    static C draw(qb_rng* r) { return qb_float(r); }
    static float enter(C v) { return v; }
};
template <> struct Kind<double> {
    using C = double;
    static C draw(qb_rng* r) { return qb_double(r); }
    static double enter(C v) { return v; }
};
template <> struct Kind<guardint> {
    using C = std::int32_t;
    static C draw(qb_rng* r) { return qb_int(r); }
    static guardint enter(C v) { return guardint(static_cast<int>(v)); }
};
template <> struct Kind<guardfloat> {
    using C = float;
    static C draw(qb_rng* r) { return qb_float(r); }
    static guardfloat enter(C v) { return guardfloat(static_cast<double>(v)); }
};
template <> struct Kind<guarddouble> {
    using C = double;
    static C draw(qb_rng* r) { return qb_double(r); }
    static guarddouble enter(C v) { return guarddouble(v); }
};

template <class U>
void putVector(qb_digest* g, const ThreeDVector<U>& v)
{
    put(g, v.GetX());
    put(g, v.GetY());
    put(g, v.GetZ());
}

template <class T>
void vectorFamily(const char* prefix, int index)
{
    using K = Kind<T>;
    using C = typename K::C;
    using V = ThreeDVector<T>;
    qb_rng r{QB_SEED + index};
    qb_digest g, h;
    qb_start(&g);
    qb_start(&h);
    for (int round = 0; round < QB_VECTOR_ROUNDS; ++round) {
        C a[3 * QB_VECTORS], b[3 * QB_VECTORS];
        for (int j = 0; j < QB_VECTORS; ++j) {
            for (int k = 0; k < 3; ++k) a[3 * j + k] = K::draw(&r);
            if (qb_next(&r) % 4 == 0) {
                for (int k = 0; k < 3; ++k) b[3 * j + k] = a[3 * j + k] == 0 ? -a[3 * j + k] : a[3 * j + k];
            } else {
                for (int k = 0; k < 3; ++k) b[3 * j + k] = K::draw(&r);
            }
        }
        const float sf = qb_float(&r);
        const double sd = qb_double(&r);
        const float sgf = qb_float(&r);
        const double sgd = qb_double(&r);
        const C depth = K::draw(&r);
        const int ox = qb_int(&r), oy = qb_int(&r);
        const char axis = qb_axis(&r);
        const C amount = K::draw(&r);

        std::vector<V> va, vb;
        for (int j = 0; j < QB_VECTORS; ++j) {
            va.emplace_back(K::enter(a[3 * j]), K::enter(a[3 * j + 1]), K::enter(a[3 * j + 2]));
            vb.emplace_back(K::enter(b[3 * j]), K::enter(b[3 * j + 1]), K::enter(b[3 * j + 2]));
        }
        for (int j = 0; j < QB_VECTORS; ++j) putVector(&g, va[j] + vb[j]);
        for (int j = 0; j < QB_VECTORS; ++j) putVector(&g, va[j] - vb[j]);
        for (int j = 0; j < QB_VECTORS; ++j) putVector(&g, va[j] * vb[j]);
        for (int j = 0; j < QB_VECTORS; ++j) putVector(&g, va[j].operator*(sf));
        for (int j = 0; j < QB_VECTORS; ++j) putVector(&g, va[j].operator*(sd));
        for (int j = 0; j < QB_VECTORS; ++j) putVector(&g, va[j].operator*(guardfloat(static_cast<double>(sgf))));
        for (int j = 0; j < QB_VECTORS; ++j) putVector(&g, va[j].operator*(guarddouble(sgd)));
        for (int j = 0; j < QB_VECTORS; ++j) {
            putVector(&g, V(va[j], vb[j]));
            put(&g, std::int32_t{va[j] == vb[j]});
            put(&g, std::int32_t{va[j] != vb[j]});
            V moved(va[j]);
            moved.AddToAxis(axis, K::enter(amount));
            putVector(&g, moved);
        }

        for (int j = 0; j < QB_VECTORS; ++j) putVector(&h, va[j].Cross(vb[j]));
        for (int j = 0; j < QB_VECTORS; ++j) putVector(&h, vb[j].Cross(va[j]));
        for (int j = 0; j < QB_VECTORS; ++j) put(&h, va[j].Dot(vb[j]));
        for (int j = 0; j < QB_VECTORS; ++j) put(&h, va[j].Length());
        for (int j = 0; j < QB_VECTORS; ++j) putVector(&h, va[j].Unit());
        for (int j = 0; j < QB_VECTORS; ++j) putVector(&h, va[j].Unit(guarddouble()));
        for (int j = 0; j < QB_VECTORS; ++j) {
            V normalised(va[j]);
            putVector(&h, normalised.Normalise());
        }
        for (int j = 0; j < QB_VECTORS; ++j) {
            const ScreenPoint s = va[j].Project(K::enter(depth), ScreenPoint{ox, oy});
            put(&h, std::int32_t{s.x});
            put(&h, std::int32_t{s.y});
        }
    }
    qb_print((std::string("vectors-") + prefix).c_str(), &g);
    qb_print((std::string("geometry-") + prefix).c_str(), &h);
}

} // namespace

int main()
{
    guardFamilies();
    transformFamily<float>("transform-f", 4);
    transformFamily<double>("transform-d", 5);
    transformFamily<guarddouble>("transform-gd", 6);
    mapFamilies<float>("f", 7);
    mapFamilies<double>("d", 13);
    mapFamilies<guarddouble>("gd", 19);
    rectFamily<float>("rects-f", 25);
    rectFamily<double>("rects-d", 26);
    rectFamily<guarddouble>("rects-gd", 27);
    vectorFamily<int>("i", 28);
    vectorFamily<float>("f", 29);
    vectorFamily<double>("d", 30);
    vectorFamily<guardint>("gi", 31);
    vectorFamily<guardfloat>("gf", 32);
    vectorFamily<guarddouble>("gd", 33);
    return 0;
}
