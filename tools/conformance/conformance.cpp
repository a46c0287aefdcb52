// SPDX-License-Identifier: MIT
// Conformance battery: a fixed, seeded run over every operation of the library and every
// combination of element types, printing a 64-bit digest of all result bits per family and one
// over all families. Two builds that print the same digests computed the same bits.
//
// Families fed through sin and cos ("trig" in their name) are the same in every build that uses
// the library's own sine and cosine; where rotations take the C library's (Quillon.dll, or a build
// with QUILLON_PLATFORM_TRIG), they differ in the last bit for a small share of angles. With
// --dump DIR each family's per-result hashes are written to DIR/<family>.txt so that two builds can
// count the results that differ.
//
// NaN payloads are not part of the contract (which NaN an operation returns depends on operand
// order the compiler may choose), so every NaN is hashed as one canonical NaN.
#include <quillon/Region>
#include <quillon/Transform>

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <limits>
#include <map>
#include <string>
#include <vector>

namespace {

// ---- Inputs: a small generator of our own, so that every platform draws the same numbers ----

struct Random {
    std::uint64_t state;
    std::uint64_t next()
    {
        std::uint64_t z = (state += 0x9E3779B97F4A7C15u);
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9u;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBu;
        return z ^ (z >> 31);
    }
    int below(int n) { return static_cast<int>(next() % static_cast<std::uint64_t>(n)); }
    double sign() { return (next() & 1) ? -1.0 : 1.0; }

    // A double from one of the classes where the rules bite. Every draw is its own statement:
    // the order in which operands are evaluated differs between compilers.
    double real()
    {
        const int kind = below(10);
        const double s = sign();
        const int k = below(201);
        const int j = below(4);
        const std::uint64_t bits = next();
        switch (kind) {
        case 0: return k - 100;                                             // small whole
        case 1: return s * ((k % 100) + 0.25 * (1 + j % 3));                // .25, .5, .75
        case 2: return s * static_cast<double>(bits >> 11) * 0x1p-43;       // about +-1000
        case 3: return s * std::ldexp(1.0 + j * 0x1p-52, 1021 + k % 2) * (k % 3 ? 1.0 : 1.5); // guarddouble limit
        case 4: return s * (0x1p24 + k % 5 - 2);                            // float rounding
        case 5: return s * (2147483647.0 + 0.25 * (k % 9) - 1.0);           // int limits
        case 6: return s * std::ldexp(1.0, 125 + j % 3);                    // guardfloat limit
        case 7: return s * std::ldexp(1.0 + 0.5 * (k % 2), -1023 + j);     // tiny
        case 8: { double d; std::memcpy(&d, &bits, 8); return d; }          // any bits
        default: return s * 0.0;
        }
    }
    int integer()
    {
        const int kind = below(4);
        const int s = (next() & 1) ? -1 : 1;
        const int k = below(201);
        const std::uint64_t bits = next();
        switch (kind) {
        case 0: return k - 100;
        case 1: return s * (2147483647 - k % 3);
        case 2: return INT32_MIN + k % 2;
        default: return static_cast<int>(static_cast<std::uint32_t>(bits));
        }
    }
    double angle() // |a| < 8
    {
        const double s = sign();
        return s * static_cast<double>(next() >> 11) * 0x1p-50;
    }
};

template <class T> T draw(Random& r);
template <> int draw<int>(Random& r) { return r.integer(); }
template <> float draw<float>(Random& r) { return static_cast<float>(r.real()); }
template <> double draw<double>(Random& r) { return r.real(); }
template <> guardint draw<guardint>(Random& r) { return r.below(2) ? guardint(r.integer()) : guardint(r.real()); }
template <> guardfloat draw<guardfloat>(Random& r) { return guardfloat(r.real()); }
template <> guarddouble draw<guarddouble>(Random& r) { return guarddouble(r.real()); }

template <class T>
ThreeDVector<T> drawVector(Random& r)
{
    // One draw per statement: the order of evaluation of arguments differs between compilers.
    const T x = draw<T>(r);
    const T y = draw<T>(r);
    const T z = draw<T>(r);
    return ThreeDVector<T>(x, y, z);
}

template <class T>
Transform<T> drawTransform(Random& r)
{
    T e[16];
    for (T& v : e) v = draw<T>(r);
    if (r.below(2)) { e[12] = T(0.0); e[13] = T(0.0); e[14] = T(0.0); e[15] = T(1.0); } // affine half the time
    return Transform<T>(e);
}

// ---- Digests ----
//
// Values are hashed, not the bytes that hold them: each one is fed to the hash a byte at a time,
// least significant first, so that every byte order gives the same digest.

std::uint64_t fnv(std::uint64_t value, int bytes, std::uint64_t h = 0xCBF29CE484222325u)
{
    for (int i = 0; i < bytes; ++i) h = (h ^ ((value >> (8 * i)) & 0xFF)) * 0x100000001B3u;
    return h;
}

std::uint64_t hashOf(double v)
{
    if (v != v) v = std::numeric_limits<double>::quiet_NaN();
    std::uint64_t bits;
    std::memcpy(&bits, &v, 8);
    return fnv(bits, 8);
}
std::uint64_t hashOf(float v)
{
    if (v != v) v = std::numeric_limits<float>::quiet_NaN();
    std::uint32_t bits;
    std::memcpy(&bits, &v, 4);
    return fnv(bits, 4);
}
std::uint64_t hashOf(int v) { return fnv(static_cast<std::uint32_t>(v), 4); }
std::uint64_t hashOf(const guardint& v) { return hashOf(v.value()); }
std::uint64_t hashOf(const guardfloat& v) { return hashOf(v.value()); }
std::uint64_t hashOf(const guarddouble& v) { return hashOf(v.value()); }
std::uint64_t hashOf(const ScreenPoint& p) { return hashOf(p.x) * 31 + hashOf(p.y); }
template <class T>
std::uint64_t hashOf(const ThreeDVector<T>& v) { return (hashOf(v.GetX()) * 31 + hashOf(v.GetY())) * 31 + hashOf(v.GetZ()); }
template <class T>
std::uint64_t hashOf(const Transform<T>& t)
{
    T e[16]{};
    t.Function_2416(e);
    std::uint64_t h = 0;
    for (const T& v : e) h = h * 31 + hashOf(v);
    return h;
}

struct Family {
    std::vector<std::uint64_t> results;
    template <class V> void add(const V& v) { results.push_back(hashOf(v)); }
};
std::map<std::string, Family> families;

constexpr int kCases = 2000;

// ---- The battery ----

template <class G>
void guardRules(Random& r, Family& f)
{
    for (int i = 0; i < kCases; ++i) {
        const G a = draw<G>(r);
        const G b = draw<G>(r);
        G sum = a; sum += b; f.add(sum);
        f.add(a + b); f.add(a - b); f.add(a * b);
        f.add(a == b); f.add(a != b); f.add(a < b);
        f.add(G(r.real())); f.add(G(r.integer()));
        if constexpr (!std::is_same_v<G, guardint>) {
            G q = a; q /= b; f.add(q);
            f.add(a.nint());
            f.add(guardint(a));
        } else {
            G q = a; q /= b; f.add(q);
            f.add(guardint(static_cast<float>(r.real())));
            guardint copy = a;
            f.add(guarddouble(copy)); f.add(guardfloat(copy));
            f.add(static_cast<double>(a)); f.add(static_cast<float>(a));
        }
        if constexpr (std::is_same_v<G, guarddouble>) {
            f.add(a / b); f.add(a > b); f.add(a - r.real()); f.add(r.integer() * b);
            G w = a; w.RoundToWhole(); f.add(w);
        }
    }
}

template <class T>
void vectorRules(Random& r)
{
    Family& arith = families["vector-arithmetic"];
    Family& geometry = families["vector-geometry"];
    Family& projection = families["vector-projection"];
    for (int i = 0; i < kCases; ++i) {
        const ThreeDVector<T> a = drawVector<T>(r);
        const ThreeDVector<T> b = drawVector<T>(r);
        arith.add(a + b); arith.add(a - b); arith.add(a * b);
        arith.add(a * static_cast<float>(r.real())); arith.add(a * r.real());
        arith.add(a * guardfloat(r.real())); arith.add(a * guarddouble(r.real()));
        arith.add(ThreeDVector<T>(a, b));
        const char axis = "xYzq"[r.below(4)];
        ThreeDVector<T> c = a; c.AddToAxis(axis, draw<T>(r)); arith.add(c);
        arith.add(a == b); arith.add(a != a);
        geometry.add(a.Cross(b)); geometry.add(a.Dot(b)); geometry.add(a.Dot(&b));
        geometry.add(a.Dot(static_cast<const ThreeDVector<T>*>(nullptr)));
        geometry.add(a.Length()); geometry.add(a.Unit()); geometry.add(a.Unit(guarddouble(1.0)));
        ThreeDVector<T> n = a; geometry.add(n.Normalise());
        const T depth = draw<T>(r);
        const int ox = r.integer() % 4096;
        const int oy = r.integer() % 4096;
        projection.add(a.Project(depth, ScreenPoint{ox, oy}));
    }
}

template <class A, class B>
void mapping(Random& r, Family& f)
{
    for (int i = 0; i < kCases / 4; ++i) {
        const Transform<A> t = drawTransform<A>(r);
        f.add(t * drawVector<B>(r));
    }
}

template <class A>
void transformRules(Random& r)
{
    Family& maps = families["transform-mapping"];
    mapping<A, int>(r, maps); mapping<A, float>(r, maps); mapping<A, double>(r, maps);
    mapping<A, guardint>(r, maps); mapping<A, guardfloat>(r, maps); mapping<A, guarddouble>(r, maps);

    Family& algebra = families["transform-algebra"];
    Family& trig = families["transform-trig"];
    for (int i = 0; i < kCases; ++i) {
        const Transform<A> m = drawTransform<A>(r);
        const Transform<A> n = drawTransform<A>(r);
        algebra.add(m * n); algebra.add(m.Function_2412()); algebra.add(m.Function_2414());
        algebra.add(m.Function_2415()); algebra.add(m.Function_2417()); algebra.add(m.Function_2421());
        algebra.add(m.Function_2418()); algebra.add(m.Function_2419()); algebra.add(m.Function_2420());
        Transform<A> t = m;
        t.Function_2425(draw<A>(r)); t.Function_2426(draw<A>(r)); t.Function_2427(draw<A>(r));
        const char axis = "xYzw"[r.below(4)];
        t.Function_2428(axis, draw<A>(r));
        algebra.add(t); algebra.add(t.Function_2429());
        t.Function_2431(); algebra.add(t); t.Function_2430(); algebra.add(t);

        const double ax = r.angle(), ay = r.angle(), az = r.angle(); // declarators are sequenced
        trig.add(Transform<A>(ax, ay, az));
        Transform<A> turned = m;
        turned.Function_2422(r.angle()); turned.Function_2423(r.angle()); turned.Function_2424(r.angle());
        trig.add(turned);
        // A turned transform fed onward: the sin/cos differences travel into what it maps.
        trig.add(turned * drawVector<double>(r));
    }
}

// Regions: a few hundred regions of several rectangles, each mapped by a transform made of
// moves, scales and shears (the exact family) or with a turn added (through sin and cos).
std::uint64_t hashOfRegion(HRGN region)
{
    if (!region) return 0;
    const DWORD size = GetRegionData(region, 0, nullptr);
    std::vector<char> buffer(size);
    auto* data = reinterpret_cast<RGNDATA*>(buffer.data());
    std::uint64_t h = 1;
    if (size >= sizeof(RGNDATAHEADER) && GetRegionData(region, size, data) != 0) {
        h = 0xCBF29CE484222325u;
        for (DWORD i = 0; i < data->rdh.nCount; ++i) {
            RECT rect;
            std::memcpy(&rect, buffer.data() + data->rdh.dwSize + i * sizeof(RECT), sizeof rect);
            for (const LONG v : {rect.left, rect.top, rect.right, rect.bottom})
                h = fnv(static_cast<std::uint32_t>(v), 4, h);
        }
    }
    DeleteObject(region);
    return h;
}

template <class T>
void regionRules(Random& r)
{
    Family& exact = families["region-mapping"];
    Family& trig = families["region-mapping-trig"];
    for (int i = 0; i < kCases / 20; ++i) {
        HRGN region = CreateRectRgn(0, 0, 0, 0);
        const int pieces = 1 + r.below(4);
        for (int k = 0; k < pieces; ++k) {
            const int left = r.below(400) - 200, top = r.below(400) - 200;
            const int width = r.below(120), height = r.below(120);
            HRGN piece = CreateRectRgn(left, top, left + width, top + height);
            CombineRgn(region, region, piece, RGN_OR);
            DeleteObject(piece);
        }
        T e[16];
        for (int k = 0; k < 16; ++k) {
            const int n = r.below(41) - 20;
            e[k] = T(k % 5 == 0 ? 1.0 + n / 16.0 : n / 8.0); // near the identity, fractions in every element
        }
        Transform<T> t(e);
        exact.results.push_back(hashOfRegion(t * region));
        t.Function_2424(r.angle());
        trig.results.push_back(hashOfRegion(t * region));
        DeleteObject(region);
    }
}


// Regions mapped where the corners land far away: stretches of 2^20 to 2^30 along x, shears that
// move a row by up to 2^22, moves to the 32-bit limits and past them (a corner out of range is
// truncated to -2^31), and stretches along y that make pieces of 2^27 rows or more (which the
// platform does not make, so they are left out). Rows stay few, so that results stay small.
template <class T>
void regionExtremes(Random& r)
{
    Family& distant = families["region-mapping-far"];
    for (int i = 0; i < kCases / 40; ++i) {
        HRGN region = CreateRectRgn(0, 0, 0, 0);
        const int pieces = 1 + r.below(4);
        for (int k = 0; k < pieces; ++k) {
            const int left = r.below(64) - 32, top = r.below(64) - 32;
            const int width = 1 + r.below(16), height = 1 + r.below(16);
            HRGN piece = CreateRectRgn(left, top, left + width, top + height);
            CombineRgn(region, region, piece, RGN_OR);
            DeleteObject(piece);
        }
        T e[16] = {T(1), T(0), T(0), T(0), T(0), T(1), T(0), T(0), T(0), T(0), T(1), T(0), T(0), T(0), T(0), T(1)};
        // Every draw is its own statement, so that the draws stay aligned between compilers.
        const int kind = r.below(5);
        const int mantissa = r.below(8);
        const int power = r.below(11);
        const double sign = r.sign();
        const double side = r.sign();
        const int back = r.below(3);
        const int shear = r.below(13);
        const int move = r.below(100);
        const int tall = r.below(6);
        const int tilt = r.below(5);
        const double stretch = std::ldexp(1.0 + mantissa / 8.0, 20 + power);
        const double toward = side * std::ldexp(1.0, 31) - back * std::ldexp(1.0, 20);
        switch (kind) {
        case 0: e[0] = T(sign * stretch); break;                            // wide
        case 1: e[1] = T(sign * std::ldexp(1.0, 10 + shear)); break;        // each row moved far
        case 2: e[3] = T(toward); e[7] = T(move - 50); break;               // to the limits and past
        case 3: e[5] = T(sign * std::ldexp(1.0, 22 + tall)); break;         // 2^22 to 2^27 per row
        default: e[0] = T(sign * stretch); e[3] = T(toward / 2); e[4] = T(tilt - 2); break;
        }
        distant.results.push_back(hashOfRegion(Transform<T>(e) * region));
        DeleteObject(region);
    }
}
} // namespace

int main(int argc, char** argv)
{
    const char* dump = nullptr;
    for (int i = 1; i + 1 < argc; ++i)
        if (std::strcmp(argv[i], "--dump") == 0) dump = argv[i + 1];

    Random r{20261123};
    guardRules<guardint>(r, families["guard-int"]);
    guardRules<guardfloat>(r, families["guard-float"]);
    guardRules<guarddouble>(r, families["guard-double"]);
    vectorRules<int>(r); vectorRules<float>(r); vectorRules<double>(r);
    vectorRules<guardint>(r); vectorRules<guardfloat>(r); vectorRules<guarddouble>(r);
    // The trig draws come last in each transform pass, so the draws stay aligned between builds.
    transformRules<float>(r); transformRules<double>(r); transformRules<guarddouble>(r);
    regionRules<float>(r); regionRules<double>(r); regionRules<guarddouble>(r);
    regionExtremes<float>(r); regionExtremes<double>(r); regionExtremes<guarddouble>(r);

    std::uint64_t all = 0xCBF29CE484222325u, exact = all;
    for (const auto& [name, family] : families) {
        std::uint64_t digest = 0xCBF29CE484222325u;
        for (const std::uint64_t h : family.results) digest = fnv(h, 8, digest);
        std::printf("%-20s %016llx %zu\n", name.c_str(), static_cast<unsigned long long>(digest), family.results.size());
        all = fnv(digest, 8, all);
        if (name.find("trig") == std::string::npos) exact = fnv(digest, 8, exact);
        if (dump) {
            const std::string path = std::string(dump) + "/" + name + ".txt";
            if (std::FILE* out = std::fopen(path.c_str(), "wb")) {
                for (std::uint64_t h : family.results) std::fprintf(out, "%016llx\n", static_cast<unsigned long long>(h));
                std::fclose(out);
            }
        }
    }
    std::printf("%-20s %016llx\n", "all-but-trig", static_cast<unsigned long long>(exact));
    std::printf("%-20s %016llx\n", "all", static_cast<unsigned long long>(all));
    return 0;
}
