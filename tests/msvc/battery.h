// SPDX-License-Identifier: MIT
// A seeded battery over every exported member of Transform<T> (float, double, guarddouble) and
// every export of the guard classes, written once and built twice: against the library's own
// headers (battery.cpp, any compiler) and, as a program built for the MSVC ABI, against the test's
// own declaration of the two DLLs (caller.cpp). Both print one digest per family and, with
// --dump DIR, write each family's per-result hashes to DIR/<family>.txt, the format that
// tools/conformance/compare.py compares (families fed through sin and cos have "trig" in their
// name). Before this header: the classes, the region functions, printf/fopen/fprintf/fclose,
// BatteryAccess::cofactor (the private cofactor) and regionBytes (GetRegionData into a buffer).
#ifndef QUILLON_TEST_MSVC_BATTERY_H
#define QUILLON_TEST_MSVC_BATTERY_H

typedef unsigned long long u64;

namespace battery {

struct Random {
    u64 state;
    u64 next()
    {
        u64 z = (state += 0x9E3779B97F4A7C15ull);
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
        return z ^ (z >> 31);
    }
    int below(int n) { return static_cast<int>(next() % static_cast<u64>(n)); }
    // A double from the classes where the rules bite: ties, 2^24, the guard limits and their
    // neighbours, int limits, tiny and non-finite values, or any bits.
    double real()
    {
        static const double edges[] = {
            0.0, -0.0, 1.0, -1.0, 0.5, -0.5, 2.5, -2.5, 0.75, 2.9, -2.9, 16777216.0, 16777217.0,
            16777219.0, 0x1p1022, -0x1p1022, 0x1.8p1021, 1.0e308, 0x1p126, -0x1p126, 3.0e38,
            2147483647.0, 2147483646.5, -2147483648.0, 2147483520.0, 1.0e-300, 0x1p-1022, 0x1p-1074,
            0.1, 1.0 / 3.0, 1.0e300, 0x1.fffffffffffffp1021};
        const int kind = below(6);
        const u64 bits = next();
        const double sign = (bits & 1) ? -1.0 : 1.0;
        switch (kind) {
        case 0: return edges[bits % (sizeof edges / sizeof edges[0])];
        case 1: return sign * static_cast<double>(bits >> 11) * 0x1p-43; // about +-1000
        case 2: { double d; __builtin_memcpy(&d, &bits, 8); return d; }  // any bits
        case 3: return static_cast<double>(static_cast<int>(bits % 2001) - 1000);
        case 4: return sign * (static_cast<double>(bits >> 40) + 0.25 * static_cast<double>(bits % 4));
        default: return sign * 1.0 / 0.0 * static_cast<double>(bits % 3 == 0); // inf or NaN
        }
    }
    int integer()
    {
        const u64 bits = next();
        switch (below(3)) {
        case 0: return static_cast<int>(bits % 201) - 100;
        case 1: return static_cast<int>(0x7FFFFFFFu - static_cast<unsigned>(bits % 3)) * ((bits & 8) ? -1 : 1);
        default: return static_cast<int>(static_cast<unsigned>(bits));
        }
    }
    double angle() // |a| < 8
    {
        const u64 bits = next();
        return ((bits & 1) ? -1.0 : 1.0) * static_cast<double>(bits >> 11) * 0x1p-50;
    }
};

template <class T> T draw(Random& r);
template <> inline int draw<int>(Random& r) { return r.integer(); }
template <> inline float draw<float>(Random& r) { return static_cast<float>(r.real()); }
template <> inline double draw<double>(Random& r) { return r.real(); }
template <> inline guardint draw<guardint>(Random& r) { return (r.next() & 1) ? guardint(r.integer()) : guardint(r.real()); }
template <> inline guardfloat draw<guardfloat>(Random& r) { return guardfloat(r.real()); }
template <> inline guarddouble draw<guarddouble>(Random& r) { return guarddouble(r.real()); }

// ---- Hashes of results; every NaN counts as one ----

inline u64 fnv(const void* data, unsigned n, u64 h)
{
    const unsigned char* p = static_cast<const unsigned char*>(data);
    for (unsigned i = 0; i < n; ++i) h = (h ^ p[i]) * 0x100000001B3ull;
    return h;
}
// Width of the floating component of a value, for the NaN rule (0: integers).
template <class T> struct Width { static const unsigned value = 0; };
template <> struct Width<float> { static const unsigned value = 4; };
template <> struct Width<double> { static const unsigned value = 8; };
template <> struct Width<guardfloat> { static const unsigned value = 4; };
template <> struct Width<guarddouble> { static const unsigned value = 8; };

template <class T>
u64 hashOf(const T& value)
{
    unsigned char bytes[sizeof(T)];
    __builtin_memcpy(bytes, &value, sizeof(T));
    const unsigned w = Width<T>::value;
    if (w == 4) {
        for (unsigned at = 0; at + 4 <= sizeof(T); at += 4) {
            float f;
            __builtin_memcpy(&f, bytes + at, 4);
            if (f != f) { f = __builtin_nanf(""); __builtin_memcpy(bytes + at, &f, 4); }
        }
    } else if (w == 8) {
        for (unsigned at = 0; at + 8 <= sizeof(T); at += 8) {
            double d;
            __builtin_memcpy(&d, bytes + at, 8);
            if (d != d) { d = __builtin_nan(""); __builtin_memcpy(bytes + at, &d, 8); }
        }
    }
    return fnv(bytes, sizeof(T), 0xCBF29CE484222325ull);
}
template <class T>
u64 hashOf(const ThreeDVector<T>& v)
{
    const T parts[3] = {v.GetX(), v.GetY(), v.GetZ()};
    return hashOf(parts[0]) ^ (hashOf(parts[1]) * 3) ^ (hashOf(parts[2]) * 7);
}
template <class T>
u64 hashOf(const Transform<T>& t)
{
    T e[16] = {};
    t.Function_2416(e);
    u64 h = 0;
    for (int k = 0; k < 16; ++k) h = h * 31 + hashOf(e[k]);
    return h;
}
inline u64 hashRegion(HRGN region)
{
    if (!region) return 1;
    static unsigned char buffer[1 << 16];
    const unsigned long size = regionBytes(region, sizeof buffer, buffer);
    DeleteObject(region);
    if (size == 0 || size > sizeof buffer) return 2;
    unsigned header, count;
    __builtin_memcpy(&header, buffer, 4);
    __builtin_memcpy(&count, buffer + 8, 4);
    return fnv(buffer + header, count * 16, 0xCBF29CE484222325ull) ^ count;
}

// ---- Families ----

struct Family {
    char name[48];
    u64 hashes[4096];
    int count;
    void add(u64 h) { if (count < 4096) hashes[count++] = h; }
};

struct Run {
    Family families[64];
    int used;
    const char* dump;
    // The family "<type>-<what>"; names with "trig" are fed through sin and cos.
    Family& family(const char* type, const char* what)
    {
        Family& f = families[used++];
        int n = 0;
        for (const char* p = type; *p && n < 20; ++p) f.name[n++] = *p;
        f.name[n++] = '-';
        for (const char* p = what; *p && n < 46; ++p) f.name[n++] = *p;
        f.name[n] = 0;
        f.count = 0;
        return f;
    }
};

template <class T>
Transform<T> drawTransform(Random& r)
{
    T e[16];
    for (int k = 0; k < 16; ++k) e[k] = draw<T>(r);
    if (r.next() & 1) { e[12] = T(0); e[13] = T(0); e[14] = T(0); e[15] = T(1); }
    return Transform<T>(e);
}
// A transform with small, whole-ish elements, for regions (images stay near the rectangles).
template <class T>
Transform<T> drawRegionTransform(Random& r)
{
    T e[16];
    for (int k = 0; k < 16; ++k) e[k] = T(static_cast<double>(r.below(9) - 4) * 0.375);
    e[0] = T(1.0 + 0.125 * r.below(8));
    e[5] = T(1.0 - 0.125 * r.below(8));
    return Transform<T>(e);
}

template <class T, class B>
void mapFamily(Run& run, const char* type, const char* what, Random& r)
{
    Family& f = run.family(type, what);
    for (int i = 0; i < 300; ++i) {
        const Transform<T> t = drawTransform<T>(r);
        const B x = draw<B>(r);
        const B y = draw<B>(r);
        const B z = draw<B>(r);
        f.add(hashOf(t * ThreeDVector<B>(x, y, z)));
    }
}

template <class T>
void transformFamilies(Run& run, Random& r, const char* type)
{
    Family& construct = run.family(type, "construct");
    for (int i = 0; i < 100; ++i) {
        T e[16];
        for (int k = 0; k < 16; ++k) e[k] = draw<T>(r);
        const Transform<T> a(e);
        const Transform<T> b(e[0], e[1], e[2], e[3], e[4], e[5], e[6], e[7], e[8], e[9], e[10],
                             e[11], e[12], e[13], e[14], e[15]);
        const Transform<T> c(a);
        Transform<T> d;
        const Transform<T> copy = (d = b);
        const Transform<T> identity(static_cast<const T*>(0));
        construct.add(hashOf(a) ^ hashOf(b) * 3 ^ hashOf(c) * 5 ^ hashOf(d) * 7 ^ hashOf(copy) * 11 ^
                      hashOf(identity) * 13 ^ hashOf(Transform<T>()) * 17);
        construct.add(hashOf(a.Function_2418()) ^ hashOf(a.Function_2419()) * 3 ^ hashOf(a.Function_2420()) * 5);
        a.Function_2416(static_cast<const T*>(0)); // ignored
    }
    Family& compose = run.family(type, "compose");
    Family& algebra = run.family(type, "algebra");
    Family& inverse = run.family(type, "inverse");
    Family& edits = run.family(type, "edits");
    for (int i = 0; i < 300; ++i) {
        const Transform<T> a = drawTransform<T>(r);
        const Transform<T> b = drawTransform<T>(r);
        compose.add(hashOf(a * b));
        u64 h = hashOf(a.Function_2414()) ^ hashOf(a.Function_2412()) * 3 ^ hashOf(a.Function_2417()) * 5 ^
                hashOf(a.Function_2421()) * 7;
        for (unsigned k = 0; k < 20; ++k) h = h * 31 + hashOf(BatteryAccess::cofactor(a, k / 4, k % 5));
        algebra.add(h);
        inverse.add(hashOf(a.Function_2415()));
        Transform<T> m = a;
        m.Function_2425(draw<T>(r));
        m.Function_2426(draw<T>(r));
        m.Function_2427(draw<T>(r));
        static const char axes[] = {'x', 'X', 'y', 'Y', 'z', 'Z', 'w', '[', 'a', '{', '0', 0, '\xFD'};
        for (int k = 0; k < 2; ++k) { // one draw per statement: argument order differs by compiler
            const char axis = axes[r.below(sizeof axes)];
            const T amount = draw<T>(r);
            m.Function_2428(axis, amount);
        }
        edits.add(hashOf(m) ^ hashOf(m.Function_2429()) * 3);
        m.Function_2430();
        const u64 reset = hashOf(m);
        m.Function_2431();
        edits.add(reset ^ hashOf(m) * 5);
    }
    Family& euler = run.family(type, "trig-euler");
    Family& turns = run.family(type, "trig-turns");
    for (int i = 0; i < 200; ++i) {
        const double ax = r.angle(), ay = r.angle(), az = r.angle();
        euler.add(hashOf(Transform<T>(ax, ay, az)));
        Transform<T> m = drawTransform<T>(r);
        m.Function_2422(r.angle());
        m.Function_2423(r.angle());
        m.Function_2424(r.angle());
        turns.add(hashOf(m));
    }
    Family& regions = run.family(type, "regions");
    Family& turnedRegions = run.family(type, "trig-regions");
    for (int i = 0; i < 60; ++i) {
        const int left = r.below(200) - 100, top = r.below(200) - 100;
        const int width = 1 + r.below(60), height = 1 + r.below(60), reach = r.below(40);
        HRGN source = CreateRectRgn(left, top, left + width, top + height);
        HRGN second = CreateRectRgn(left + 20, top - 15, left + 50 + reach, top + 30);
        CombineRgn(source, source, second, 2); // RGN_OR
        DeleteObject(second);
        regions.add(hashRegion(drawRegionTransform<T>(r) * source));
        Transform<T> turn;
        turn.Function_2424(r.angle());
        turn.Function_2428('x', T(static_cast<double>(r.below(100)) + 0.5));
        turnedRegions.add(hashRegion(turn * source));
        DeleteObject(source);
    }
    regions.add(hashRegion(Transform<T>() * static_cast<HRGN>(0)));
    // The 18 mappings: this transform type against each vector type.
    mapFamily<T, int>(run, type, "map-int", r);
    mapFamily<T, float>(run, type, "map-float", r);
    mapFamily<T, double>(run, type, "map-double", r);
    mapFamily<T, guardint>(run, type, "map-guardint", r);
    mapFamily<T, guardfloat>(run, type, "map-guardfloat", r);
    mapFamily<T, guarddouble>(run, type, "map-guarddouble", r);
}

// Every export of the guard classes on drawn operands.
inline void guardFamilies(Run& run, Random& r)
{
    Family& d = run.family("guarddouble", "rules");
    Family& f = run.family("guardfloat", "rules");
    Family& n = run.family("guardint", "rules");
    for (int i = 0; i < 600; ++i) {
        const guarddouble a = draw<guarddouble>(r);
        const guarddouble b = draw<guarddouble>(r);
        const double plain = r.real();
        const int whole = r.integer();
        guarddouble sum(a), quotient(a);
        sum += b;
        quotient /= b;
        d.add(hashOf(a + b) ^ hashOf(a - b) * 3 ^ hashOf(a * b) * 5 ^ hashOf(a / b) * 7 ^ hashOf(sum) * 11 ^
              hashOf(quotient) * 13 ^ hashOf(a - plain) * 17 ^ hashOf(whole * b) * 19 ^ hashOf(guarddouble(plain)) * 23 ^
              hashOf(guarddouble(whole)) * 29);
        d.add(static_cast<u64>((a == b) + 2 * (a != b) + 4 * (a < b) + 8 * (a > b)) ^
              static_cast<u64>(static_cast<unsigned>(a.nint())) << 8 ^ static_cast<u64>(static_cast<unsigned>(int(b))) << 40);

        const guardfloat p = draw<guardfloat>(r);
        const guardfloat q = draw<guardfloat>(r);
        guardfloat fsum(p), fquotient(p);
        fsum += q;
        fquotient /= q;
        f.add(hashOf(p + q) ^ hashOf(p - q) * 3 ^ hashOf(p * q) * 5 ^ hashOf(fsum) * 7 ^ hashOf(fquotient) * 11 ^
              hashOf(guardfloat(plain)) * 13 ^ hashOf(guardfloat(whole)) * 17);
        f.add(static_cast<u64>((p == q) + 2 * (p != q) + 4 * (p < q)) ^
              static_cast<u64>(static_cast<unsigned>(p.nint())) << 8 ^ static_cast<u64>(static_cast<unsigned>(int(q))) << 40);

        guardint k = draw<guardint>(r);
        const guardint m = draw<guardint>(r);
        const float single = static_cast<float>(r.real());
        guardint isum(k);
        isum += m;
        n.add(hashOf(k + m) ^ hashOf(k - m) * 3 ^ hashOf(k * m) * 5 ^ hashOf(isum) * 7 ^ hashOf(guardint(plain)) * 11 ^
              hashOf(guardint(single)) * 13 ^ hashOf(guardint(whole)) * 17 ^ hashOf(guardint(a)) * 19 ^
              hashOf(guardint(p)) * 23 ^ hashOf(guarddouble(k)) * 29 ^ hashOf(guardfloat(k)) * 31);
        n.add(static_cast<u64>((k == m) + 2 * (k != m) + 4 * (k < m)) ^ hashOf(double(k)) * 3 ^ hashOf(float(m)) * 5);
    }
}

// Sixteen hex digits (the Windows C runtime's printf may not know %llx).
inline const char* hex(u64 v, char (&text)[17])
{
    for (int i = 15; i >= 0; --i, v >>= 4) text[i] = "0123456789abcdef"[v & 15];
    text[16] = 0;
    return text;
}

// Runs every family with one seed, prints "<family> <count> <digest>" per family and, with
// --dump DIR, writes each family's hashes to DIR/<family>.txt. Exit status 0.
inline int runAll(int argc, char** argv)
{
    static Run run;
    run.used = 0;
    Random r = {20261123};
    guardFamilies(run, r);
    transformFamilies<float>(run, r, "float");
    transformFamilies<double>(run, r, "double");
    transformFamilies<guarddouble>(run, r, "guarddouble");
    const char* dump = (argc == 3 && argv[1][0] == '-' && argv[1][2] == 'd') ? argv[2] : 0;
    for (int i = 0; i < run.used; ++i) {
        const Family& f = run.families[i];
        u64 digest = 0xCBF29CE484222325ull;
        for (int k = 0; k < f.count; ++k) digest = fnv(&f.hashes[k], 8, digest);
        char text[17];
        printf("%-28s %5d %s\n", f.name, f.count, hex(digest, text));
        if (!dump) continue;
        char path[512];
        int at = 0;
        for (const char* p = dump; *p && at < 400; ++p) path[at++] = *p;
        path[at++] = dump[0] == '/' ? '/' : '\\';
        for (const char* p = f.name; *p; ++p) path[at++] = *p;
        for (const char* p = ".txt"; *p; ++p) path[at++] = *p;
        path[at] = 0;
        auto* out = fopen(path, "w");
        if (!out) { printf("cannot write %s\n", path); return 1; }
        for (int k = 0; k < f.count; ++k) fprintf(out, "%s\n", hex(f.hashes[k], text));
        fclose(out);
    }
    return 0;
}

} // namespace battery

#endif
