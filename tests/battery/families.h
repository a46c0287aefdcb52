// SPDX-License-Identifier: MIT
// The battery's families, written once against the C++ interface and run by every surface that
// has it: the conformance tool (the library's headers), the MSVC-ABI caller and its GCC-ABI twin
// (tests/msvc/interface.h against the DLLs) and the C interface's program (tests/bindings/
// c_classes.h, the same classes over the C functions). tests/battery/battery.py runs the same
// families through the Python module. Each family is a template, so that a surface compiles only
// the families it runs; the lists at the end (dllFamilies, beyondDllFamilies, cFamilies) say which
// surfaces reach which. Adding a member to the battery is one line in a family here.
//
// QB_DLL_ONLY leaves out what the DLLs do not export, QB_C_ONLY what the C interface lacks.
// Before this header: the classes (guarddouble, guardfloat, guardint, ThreeDVector<T>,
// Transform<T>, ScreenPoint where vectors run), battery.h, and the surface's hooks:
//   rawOf(g)                          a guard value's stored value (double, float, int)
//   putRegion(f, t, ltrb, n)          puts the image under t of the union of n rectangles
//   cofactorOf(t, row, col)           the private cofactor (headers and DLLs only)
// One draw per statement: the order in which a compiler evaluates arguments is its own.
#ifndef QUILLON_TEST_BATTERY_FAMILIES_H
#define QUILLON_TEST_BATTERY_FAMILIES_H

namespace battery {

// ---- Drawn values of each element type ----
template <class T> struct Draw;
template <> struct Draw<int> { static int from(qb_rng* r) { return qb_int(r); } };
template <> struct Draw<float> { static float from(qb_rng* r) { return qb_float(r); } };
template <> struct Draw<double> { static double from(qb_rng* r) { return qb_real(r); } };
template <> struct Draw<guardint> {
    static guardint from(qb_rng* r)
    {
        if (qb_next(r) & 1) return guardint(qb_int(r));
        return guardint(qb_real(r));
    }
};
template <> struct Draw<guardfloat> { static guardfloat from(qb_rng* r) { return guardfloat(qb_real(r)); } };
template <> struct Draw<guarddouble> { static guarddouble from(qb_rng* r) { return guarddouble(qb_real(r)); } };
template <class T> T draw(qb_rng* r) { return Draw<T>::from(r); }

template <class T>
ThreeDVector<T> drawVector(qb_rng* r)
{
    const T x = draw<T>(r);
    const T y = draw<T>(r);
    const T z = draw<T>(r);
    return ThreeDVector<T>(x, y, z);
}
// Sixteen drawn elements; half the time the bottom row is made affine.
template <class T>
Transform<T> drawTransform(qb_rng* r)
{
    T e[16];
    for (int k = 0; k < 16; ++k) e[k] = draw<T>(r);
    if (qb_next(r) & 1) { e[12] = T(0.0); e[13] = T(0.0); e[14] = T(0.0); e[15] = T(1.0); }
    return Transform<T>(e);
}

// ---- Results into the digest ----
inline void put(qb_family& f, int v) { qb_put_int(&f, v); }
inline void put(qb_family& f, float v) { qb_put_float(&f, v); }
inline void put(qb_family& f, double v) { qb_put_double(&f, v); }
inline void put(qb_family& f, const guardint& v) { qb_put_int(&f, rawOf(v)); }
inline void put(qb_family& f, const guardfloat& v) { qb_put_float(&f, rawOf(v)); }
inline void put(qb_family& f, const guarddouble& v) { qb_put_double(&f, rawOf(v)); }
template <class T>
void put(qb_family& f, const ThreeDVector<T>& v)
{
    put(f, v.GetX());
    put(f, v.GetY());
    put(f, v.GetZ());
}
template <class T>
void put(qb_family& f, const Transform<T>& t)
{
    T e[16] = {};
    t.Function_2416(e);
    for (int k = 0; k < 16; ++k) put(f, e[k]);
}
// One result of several values.
template <class... V>
void result(qb_family& f, const V&... values)
{
    (put(f, values), ...);
    qb_end(&f);
}

// ---- Guard scalars: what every surface reaches ----
template <class D, class F, class I>
void guards(qb_family& f)
{
    qb_rng* r = &f.rng;
    for (int i = 0; i < 400; ++i) {
        const D a = draw<D>(r);
        const D b = draw<D>(r);
        const double plain = qb_real(r);
        const int whole = qb_int(r);
        const float single = qb_float(r);
        const F p = draw<F>(r);
        const F q = draw<F>(r);
        const I k = draw<I>(r);
        const I m = draw<I>(r);
        I kk = k; // the conversions from guardint take it by non-const reference
        D sum = a, quotient = a;
        sum += b;
        quotient /= b;
        result(f, a + b, a - b, a * b, a / b, sum, quotient, a - plain, whole * b, D(plain), D(whole), D(kk),
               int(a == b), int(a != b), int(a < b), int(a > b), a.nint());
        F fsum = p, fquotient = p;
        fsum += q;
        fquotient /= q;
        result(f, p + q, p - q, p * q, fsum, fquotient, F(plain), F(whole), F(kk), int(p == q), int(p != q),
               int(p < q), p.nint());
        I isum = k;
        isum += m;
        result(f, k + m, k - m, k * m, isum, I(plain), I(single), I(whole), I(a), I(p), int(k == m), int(k != m),
               int(k < m), static_cast<double>(k), static_cast<float>(m));
    }
}
#if !defined(QB_C_ONLY)
// The members the C++ classes and the DLLs have and the C and Python surfaces do not.
template <class D, class F>
void guardMembers(qb_family& f)
{
    for (int i = 0; i < 200; ++i) {
        const D a = draw<D>(&f.rng);
        const F p = draw<F>(&f.rng);
        result(f, static_cast<int>(a), static_cast<int>(p), D(a), F(p));
    }
}
#endif
// The members the C++ classes, C and Python have and the DLLs do not export.
template <class D, class I>
void guardMore(qb_family& f)
{
    for (int i = 0; i < 200; ++i) {
        D a = draw<D>(&f.rng);
        I k = draw<I>(&f.rng);
        const I m = draw<I>(&f.rng);
        a.RoundToWhole();
        k /= m;
        result(f, a, k);
    }
}

// ---- Transforms ----
template <class T>
void algebra(qb_family& f)
{
    for (int i = 0; i < 150; ++i) {
        const Transform<T> a = drawTransform<T>(&f.rng);
        const Transform<T> b = drawTransform<T>(&f.rng);
        result(f, a * b);
        result(f, b * a);
        result(f, a.Function_2412(), a.Function_2414());
        result(f, a.Function_2415());
        result(f, a.Function_2417(), a.Function_2421(), a.Function_2418(), a.Function_2419(), a.Function_2420());
        const Transform<T> copy(a);
        Transform<T> assigned;
        assigned = b;
        result(f, copy, assigned);
    }
}
template <class T>
void edits(qb_family& f)
{
    qb_rng* r = &f.rng;
    for (int i = 0; i < 150; ++i) {
        Transform<T> m = drawTransform<T>(r);
        const T s1 = draw<T>(r), s2 = draw<T>(r), s3 = draw<T>(r); // declarators are sequenced
        const char axis1 = qb_axis(r);
        const T m1 = draw<T>(r);
        const char axis2 = qb_axis(r);
        const T m2 = draw<T>(r);
        m.Function_2425(s1);
        m.Function_2426(s2);
        m.Function_2427(s3);
        result(f, m);
        m.Function_2428(axis1, m1);
        m.Function_2428(axis2, m2);
        result(f, m);
        result(f, m.Function_2429());
        m.Function_2430();
        result(f, m);
        m.Function_2431();
        result(f, m);
    }
}
#if !defined(QB_C_ONLY)
// Construction by sixteen values and from a null array, a negative char as the axis, a null
// region, and the private cofactor.
template <class T>
void members(qb_family& f)
{
    for (int i = 0; i < 100; ++i) {
        T e[16];
        for (int k = 0; k < 16; ++k) e[k] = draw<T>(&f.rng);
        const Transform<T> b(e[0], e[1], e[2], e[3], e[4], e[5], e[6], e[7], e[8], e[9], e[10], e[11], e[12],
                             e[13], e[14], e[15]);
        b.Function_2416(static_cast<const T*>(nullptr)); // ignored
        Transform<T> moved(b);
        moved.Function_2428(static_cast<char>(-3), e[0]); // a negative char names no axis
        const int none = Transform<T>() * static_cast<HRGN>(nullptr) == nullptr;
        result(f, b, moved, Transform<T>(static_cast<const T*>(nullptr)), Transform<T>(), none);
        for (unsigned k = 0; k < 16; ++k) put(f, cofactorOf(b, k / 4, k % 4));
        qb_end(&f);
    }
}
#endif
template <class T>
void turns(qb_family& f)
{
    qb_rng* r = &f.rng;
    for (int i = 0; i < 150; ++i) {
        const double ax = qb_angle(r), ay = qb_angle(r), az = qb_angle(r);
        result(f, Transform<T>(ax, ay, az));
        Transform<T> m = drawTransform<T>(r);
        const double t1 = qb_angle(r), t2 = qb_angle(r), t3 = qb_angle(r);
        m.Function_2422(t1);
        m.Function_2423(t2);
        m.Function_2424(t3);
        result(f, m);
        result(f, m * drawVector<double>(r)); // the turn's sine and cosine carried into a mapping
    }
}
template <class T, class V>
void mapping(qb_family& f)
{
    for (int i = 0; i < 60; ++i) {
        const Transform<T> t = drawTransform<T>(&f.rng);
        result(f, t * drawVector<V>(&f.rng));
    }
}

// ---- Regions: a few rectangles mapped near the identity, turned, and far away ----
inline int drawPieces(qb_rng* r, int* ltrb, int reach, int size, int least)
{
    const int n = 1 + qb_below(r, 4);
    for (int k = 0; k < n; ++k) {
        const int left = qb_below(r, 2 * reach) - reach, top = qb_below(r, 2 * reach) - reach;
        const int width = least + qb_below(r, size), height = least + qb_below(r, size);
        ltrb[4 * k] = left;
        ltrb[4 * k + 1] = top;
        ltrb[4 * k + 2] = left + width;
        ltrb[4 * k + 3] = top + height;
    }
    return n;
}
template <class T>
void regions(qb_family& f)
{
    qb_rng* r = &f.rng;
    for (int i = 0; i < 40; ++i) {
        int ltrb[16];
        const int n = drawPieces(r, ltrb, 200, 120, 0);
        T e[16];
        for (int k = 0; k < 16; ++k) {
            const int step = qb_below(r, 41) - 20; // near the identity, fractions in every element
            e[k] = T(k % 5 == 0 ? 1.0 + step / 16.0 : step / 8.0);
        }
        putRegion(f, Transform<T>(e), ltrb, n);
        qb_end(&f);
    }
}
template <class T>
void turnedRegions(qb_family& f)
{
    qb_rng* r = &f.rng;
    for (int i = 0; i < 40; ++i) {
        int ltrb[16];
        const int n = drawPieces(r, ltrb, 100, 60, 1);
        const double angle = qb_angle(r);
        const int move = qb_below(r, 100);
        Transform<T> turn;
        turn.Function_2424(angle);
        turn.Function_2428('x', T(move + 0.5));
        putRegion(f, turn, ltrb, n);
        qb_end(&f);
    }
}
// Corners far away: stretches of 2^20 to 2^30 along x, shears that move a row by up to 2^22,
// moves to the 32-bit limits and past them, 2^22 to 2^27 rows per row. Rows stay few.
template <class T>
void farRegions(qb_family& f)
{
    qb_rng* r = &f.rng;
    for (int i = 0; i < 30; ++i) {
        int ltrb[16];
        const int n = drawPieces(r, ltrb, 32, 16, 1);
        const int kind = qb_below(r, 5);
        const int mantissa = qb_below(r, 8), power = qb_below(r, 11), shear = qb_below(r, 13);
        const int move = qb_below(r, 100), tall = qb_below(r, 6), tilt = qb_below(r, 5), back = qb_below(r, 3);
        const double sign = (qb_next(r) & 1) ? -1.0 : 1.0;
        const double side = (qb_next(r) & 1) ? -1.0 : 1.0;
        const double stretch = (1.0 + mantissa / 8.0) * static_cast<double>(1ll << (20 + power));
        const double toward = side * 0x1p31 - back * 0x1p20;
        T e[16] = {T(1.0), T(0.0), T(0.0), T(0.0), T(0.0), T(1.0), T(0.0), T(0.0),
                   T(0.0), T(0.0), T(1.0), T(0.0), T(0.0), T(0.0), T(0.0), T(1.0)};
        switch (kind) {
        case 0: e[0] = T(sign * stretch); break;
        case 1: e[1] = T(sign * static_cast<double>(1ll << (10 + shear))); break;
        case 2: e[3] = T(toward); e[7] = T(move - 50.0); break;
        case 3: e[5] = T(sign * static_cast<double>(1ll << (22 + tall))); break;
        default: e[0] = T(sign * stretch); e[3] = T(toward / 2); e[4] = T(tilt - 2.0); break;
        }
        putRegion(f, Transform<T>(e), ltrb, n);
        qb_end(&f);
    }
}

#if !defined(QB_DLL_ONLY)
// ---- Vectors (not exported by the DLLs) ----
template <class T>
void vectors(qb_family& f)
{
    using V = ThreeDVector<T>;
    qb_rng* r = &f.rng;
    for (int i = 0; i < 150; ++i) {
        const V a = drawVector<T>(r);
        const V b = qb_below(r, 4) == 0 ? a : drawVector<T>(r);
        const float sf = qb_float(r);
        const double sd = qb_real(r);
        const guardfloat sgf = draw<guardfloat>(r);
        const guarddouble sgd = draw<guarddouble>(r);
        const T depth = draw<T>(r);
        const int ox = qb_int(r), oy = qb_int(r);
        const char axis = qb_axis(r);
        const T amount = draw<T>(r);
        result(f, a + b, a - b, a * b, V(a, b), int(a == b), int(a != b));
        result(f, a * sf, a * sd, a * sgf, a * sgd);
        V moved = a;
        moved.AddToAxis(axis, amount);
        V normalised = a;
        normalised.Normalise();
        result(f, moved, normalised, a.Cross(b), b.Cross(a), a.Dot(b), a.Length());
        result(f, a.Unit(), a.Unit(guarddouble()));
        const ScreenPoint s = a.Project(depth, ScreenPoint{ox, oy});
        result(f, int(s.x), int(s.y));
    }
}
#endif

// ---- Running ----
// Runs one family: "<a><b><c>" names it and seeds its generator.
template <class Body>
void run(const char* dump, Body body, const char* a, const char* b = "", const char* c = "")
{
    char name[64];
    int at = 0;
    const char* parts[3] = {a, b, c};
    for (const char* part : parts)
        for (const char* p = part; *p && at < 63; ++p) name[at++] = *p;
    name[at] = 0;
    qb_family f;
    qb_begin(&f, name, dump);
    body(f);
    qb_finish(&f);
}

// The families every surface with transforms runs, for element type T ("float", "double",
// "guarddouble"); families named with "trig" are fed by sin and cos.
template <class T>
void transformFamilies(const char* dump, const char* type)
{
    run(dump, algebra<T>, type, "-algebra");
    run(dump, edits<T>, type, "-edits");
    run(dump, turns<T>, type, "-trig-turns");
    run(dump, mapping<T, int>, type, "-map-int");
    run(dump, mapping<T, float>, type, "-map-float");
    run(dump, mapping<T, double>, type, "-map-double");
    run(dump, mapping<T, guardint>, type, "-map-guardint");
    run(dump, mapping<T, guardfloat>, type, "-map-guardfloat");
    run(dump, mapping<T, guarddouble>, type, "-map-guarddouble");
    run(dump, regions<T>, type, "-regions");
    run(dump, turnedRegions<T>, type, "-trig-regions");
    run(dump, farRegions<T>, type, "-regions-far");
}

#if !defined(QB_C_ONLY)
// What the DLLs reach (and the headers too).
inline void dllFamilies(const char* dump)
{
    run(dump, guards<guarddouble, guardfloat, guardint>, "guards");
    run(dump, guardMembers<guarddouble, guardfloat>, "guards-members");
    transformFamilies<float>(dump, "float");
    transformFamilies<double>(dump, "double");
    transformFamilies<guarddouble>(dump, "guarddouble");
    run(dump, members<float>, "float-members");
    run(dump, members<double>, "double-members");
    run(dump, members<guarddouble>, "guarddouble-members");
}
#endif

#if !defined(QB_DLL_ONLY)
// What the C interface and Python reach and the DLLs do not (the headers reach everything).
inline void beyondDllFamilies(const char* dump)
{
    run(dump, guardMore<guarddouble, guardint>, "guards-more");
    run(dump, vectors<int>, "vector-int");
    run(dump, vectors<float>, "vector-float");
    run(dump, vectors<double>, "vector-double");
    run(dump, vectors<guardint>, "vector-guardint");
    run(dump, vectors<guardfloat>, "vector-guardfloat");
    run(dump, vectors<guarddouble>, "vector-guarddouble");
}

// What the C interface reaches.
inline void cFamilies(const char* dump)
{
    run(dump, guards<guarddouble, guardfloat, guardint>, "guards");
    transformFamilies<float>(dump, "float");
    transformFamilies<double>(dump, "double");
    transformFamilies<guarddouble>(dump, "guarddouble");
    beyondDllFamilies(dump);
}
#endif

// "--dump DIR" among the arguments, or null.
inline const char* dumpFolder(int argc, char** argv)
{
    for (int i = 1; i + 1 < argc; ++i) {
        const char* a = argv[i];
        if (a[0] == '-' && a[1] == '-' && a[2] == 'd' && a[3] == 'u' && a[4] == 'm' && a[5] == 'p' && !a[6])
            return argv[i + 1];
    }
    return nullptr;
}

} // namespace battery

#endif
