// SPDX-License-Identifier: MIT
// Quillon Transform<T>: a 4x4 homogeneous matrix, T = float, double or guarddouble.
//
// Conventions every member relies on:
//  - elements[r][c] is row r, column c; e_k is the same element at linear index k = 4r + c.
//  - The matrix acts on column vectors from the left; rows 0-2 of column 3 are the translation.
//    In a product the right operand acts first. A mapped vector is a point: column 3 is added,
//    row 3 is never read and nothing is divided by a fourth coordinate.
//  - Working precision: Transform<float> widens every operand to double as it is read, evaluates
//    one expression in double and rounds to float only where a value is stored; Transform<double>
//    works in double; Transform<guarddouble> calls the guard operators for every operation.
//
// The members are defined here so that callers' compilers can inline them; libquillon exports
// the instantiations for the three element types, which are the library's binary interface.
// Members defined outside the class body are declared inline: the explicit instantiation
// declarations at the end of this header would otherwise send every call of them to the
// module's copy, out of reach of the caller's optimiser.
#ifndef QUILLON_TRANSFORM
#define QUILLON_TRANSFORM

#include <quillon/ThreeDVector>
#include <quillon/detail/Trigonometry.h>

#include <cmath>
#include <cstring>
#include <type_traits>

// Transform<float> maps a point with rows 0 and 1 side by side in the two halves of one SSE2
// register (see mapInLanes below) where the compiler has GCC's vector extensions and SSE2 is the
// widest vector unit it may use. Where AVX is enabled the plain row sums are kept in callers'
// code: in a loop over many points the compiler's loop vectorizer maps four or eight points at
// once from them, which a point-at-a-time form would prevent. The module's own copy of the member
// is never in a caller's loop and always takes the lanes.
#if (defined(__clang__) || (defined(__GNUC__) && __GNUC__ >= 12)) && defined(__SSE2__) && \
    (!defined(__AVX__) || defined(QUILLON_BUILDING_MODULE))
#  define QUILLON_MAP_LANES 1
#  include <emmintrin.h>
#endif

#if defined(_WIN32)
#  define QUILLON_API // Quillon.dll exports its members by name through its .def file
#else
#  define QUILLON_API __attribute__((visibility("default")))
#endif

template <class T>
class Transform;

// Region handles, as the platform's region functions declare them (see <quillon/Region>).
struct HRGN__;
typedef HRGN__* HRGN;

namespace quillon::detail {
struct PrivateAccess;
// Helpers of Transform stand outside the class: every member of the class is exported, and the
// export list is exactly the class's public interface plus its one private cofactor.
// Unrolled, so that a caller's compiler sees sixteen plain stores it can drop when they are
// overwritten or never read (the identity of a result about to be filled, the copy that
// operator= returns).
template <class T>
void setIdentity(T (&e)[4][4]) noexcept
{
#if defined(__GNUC__)
#  pragma GCC unroll 4
#endif
    for (int r = 0; r < 4; ++r)
#if defined(__GNUC__)
#  pragma GCC unroll 4
#endif
        for (int c = 0; c < 4; ++c) e[r][c] = T(r == c ? 1.0 : 0.0);
}
template <class T>
void copyElements(T (&to)[4][4], const T (&from)[4][4]) noexcept
{
#if defined(__GNUC__)
#  pragma GCC unroll 4
#endif
    for (int r = 0; r < 4; ++r)
#if defined(__GNUC__)
#  pragma GCC unroll 4
#endif
        for (int c = 0; c < 4; ++c) to[r][c] = from[r][c];
}
template <class A, class B>
inline ThreeDVector<B> mapPoint(const A (&e)[4][4], const ThreeDVector<B>& v) noexcept;
} // namespace quillon::detail

/// A 4x4 homogeneous matrix over float, double or guarddouble, acting on column vectors from the
/// left. The members keep their numbered names, the library's binary interface; <quillon/Names>
/// gives each a readable name.
template <class T>
class QUILLON_API Transform {
    using E = quillon::Element<T>;

public:
    /// Identity.
    Transform() noexcept { quillon::detail::setIdentity(elements); }
    Transform(const Transform<T>& other) noexcept { quillon::detail::copyElements(elements, other.elements); } ///< a copy
    /// Sixteen elements in linear order; a null pointer gives the identity.
    explicit Transform(const T* source) noexcept
    {
        quillon::detail::setIdentity(elements);
        if (!source) return;
        for (int k = 0; k < 16; ++k) elements[k / 4][k % 4] = source[k];
    }
    /// Argument k becomes e_k: the first four arguments are row 0.
    Transform(T e0, T e1, T e2, T e3, T e4, T e5, T e6, T e7, T e8, T e9, T e10, T e11, T e12,
              T e13, T e14, T e15) noexcept
        : elements{{e0, e1, e2, e3}, {e4, e5, e6, e7}, {e8, e9, e10, e11}, {e12, e13, e14, e15}} {}
    /// Rotation Rx(ax) Ry(ay) Rz(az) from three angles in radians: turns about z first, then y,
    /// then x, all about the fixed axes.
    Transform(double ax, double ay, double az) noexcept;
    ~Transform() {}

    /// Copies other into this object and returns a new copy, not a reference:
    /// (a = b) = c leaves a equal to b.
    Transform<T> operator=(const Transform<T>& other) noexcept
    {
        quillon::detail::copyElements(elements, other.elements);
        return *this;
    }

    /// Composition: (A * B) * v == A * (B * v).
    inline Transform<T> operator*(const Transform<T>& right) const noexcept;

    /// Vector mapping of a point; the result has the vector's element type.
    /// @{
    ThreeDVector<int> operator*(const ThreeDVector<int>& v) const noexcept { return quillon::detail::mapPoint(elements, v); }
    ThreeDVector<float> operator*(const ThreeDVector<float>& v) const noexcept { return quillon::detail::mapPoint(elements, v); }
    ThreeDVector<double> operator*(const ThreeDVector<double>& v) const noexcept { return quillon::detail::mapPoint(elements, v); }
    ThreeDVector<guardint> operator*(const ThreeDVector<guardint>& v) const noexcept { return quillon::detail::mapPoint(elements, v); }
    ThreeDVector<guardfloat> operator*(const ThreeDVector<guardfloat>& v) const noexcept { return quillon::detail::mapPoint(elements, v); }
    ThreeDVector<guarddouble> operator*(const ThreeDVector<guarddouble>& v) const noexcept { return quillon::detail::mapPoint(elements, v); }
    /// @}

    /// Region mapping: a new region, the union of the images of the region's rectangles (each one a
    /// four-sided polygon through the mapping of ThreeDVector<double>, corners truncated toward
    /// zero). Null for a null, unreadable or empty region. The argument is neither changed nor
    /// deleted; the caller owns the result and releases it with DeleteObject.
    HRGN operator*(HRGN const region) const noexcept;

    inline Transform<T> Function_2412() const noexcept; ///< adjoint: transpose of the cofactor matrix
    inline T Function_2414() const noexcept;     ///< determinant
    /// Inverse: each element a cofactor divided by the determinant. A singular matrix (determinant
    /// exactly 0) gives the identity, with nothing to tell the caller; ask Function_2414 first.
    inline Transform<T> Function_2415() const noexcept;
    /// Writes the 16 elements to destination in linear order (the array is written, not read).
    void Function_2416(const T* destination) const noexcept;
    Transform<T> Function_2417() const noexcept; ///< transpose as a new value

    T Function_2418() const noexcept { return elements[1][0]; } ///< e[1][0], row 1 of column 0
    T Function_2419() const noexcept { return elements[2][0]; } ///< e[2][0], row 2 of column 0
    T Function_2420() const noexcept { return elements[3][0]; } ///< e[3][0], row 3 of column 0

    /// Copy with the translation column cleared and e[3][3] set to 1.
    Transform<T> Function_2421() const noexcept;

    /// Turn about x, y or z (radians), multiplied on the left, in place: the turn acts after
    /// everything the transform did before, translation included.
    /// @{
    void Function_2422(double t) noexcept;
    void Function_2423(double t) noexcept;
    void Function_2424(double t) noexcept;
    /// @}

    void Function_2425(T factor) noexcept; ///< e[0][0] *= factor
    void Function_2426(T factor) noexcept; ///< e[1][1] *= factor
    void Function_2427(T factor) noexcept; ///< e[2][2] *= factor
    /// Adds amount to the translation named by 'X'/'x', 'Y'/'y', 'Z'/'z'; any other char does nothing.
    void Function_2428(char axis, T amount) noexcept;
    Transform<T>& Function_2429() noexcept; ///< transpose in place
    void Function_2430() noexcept;          ///< reset to the identity
    void Function_2431() noexcept;          ///< clear all sixteen elements to 0

private:
    T Function_2413(unsigned int row, unsigned int col) const noexcept; // signed cofactor
    friend struct quillon::detail::PrivateAccess;

    T elements[4][4];
};

namespace quillon::detail {
// The private cofactor, for code that must call every member as the binary interface has it:
// Quillon.dll's MSVC-ABI entry points and the test battery that checks them.
struct PrivateAccess {
    template <class T>
    static T cofactor(const Transform<T>& t, unsigned row, unsigned col) noexcept { return t.Function_2413(row, col); }
};
} // namespace quillon::detail

static_assert(sizeof(Transform<float>) == 64 && sizeof(Transform<double>) == 128 &&
              sizeof(Transform<guarddouble>) == 128);

// ---- Rotation ----

template <class T>
Transform<T>::Transform(double ax, double ay, double az) noexcept
{
    quillon::detail::setIdentity(elements);
    const quillon::SineCosine x = quillon::rotationSineCosine(ax), y = quillon::rotationSineCosine(ay),
                              z = quillon::rotationSineCosine(az);
    const double cx = x.cos, cy = y.cos, cz = z.cos, sx = x.sin, sy = y.sin, sz = z.sin;
    // Each element one double expression in exactly this grouping, stored by the element's rule.
    elements[0][0] = E::fromDouble(cy * cz);
    elements[0][1] = E::fromDouble((-cy) * sz);
    elements[0][2] = E::fromDouble(sy);
    elements[1][0] = E::fromDouble(((sy * cz) * sx) + (sz * cx));
    elements[1][1] = E::fromDouble((cx * cz) - ((sx * sy) * sz));
    elements[1][2] = E::fromDouble((-sx) * cy);
    elements[2][0] = E::fromDouble((sx * sz) - ((cz * cx) * sy));
    elements[2][1] = E::fromDouble(((sz * cx) * sy) + (sx * cz));
    elements[2][2] = E::fromDouble(cx * cy);
}

namespace quillon::detail {
// Rows `first` and `second` become the rotation by (c, s) of their old values, read as doubles
// before anything is written. A guarddouble element is read through nint, so it enters as a
// whole number; the arithmetic is plain double for every element type.
//   plusFirst false: first = f*c - g*s, second = g*c + f*s  (turns about x and z)
//   plusFirst true:  first = f*c + g*s, second = g*c - f*s  (turn about y)
template <class T>
void turnRows(T (&e)[4][4], int first, int second, double t, bool plusFirst) noexcept
{
    using E = Element<T>;
    const SineCosine sc = rotationSineCosine(t);
    const double c = sc.cos, s = sc.sin;
    double f[4], g[4];
    for (int k = 0; k < 4; ++k) {
        f[k] = E::toDouble(e[first][k]);
        g[k] = E::toDouble(e[second][k]);
    }
    for (int k = 0; k < 4; ++k)
        e[first][k] = E::fromDouble(plusFirst ? (f[k] * c) + (g[k] * s) : (f[k] * c) - (g[k] * s));
    for (int k = 0; k < 4; ++k)
        e[second][k] = E::fromDouble(plusFirst ? (g[k] * c) - (f[k] * s) : (g[k] * c) + (f[k] * s));
}
} // namespace quillon::detail

template <class T>
void Transform<T>::Function_2422(double t) noexcept { quillon::detail::turnRows(elements, 1, 2, t, false); }
template <class T>
void Transform<T>::Function_2423(double t) noexcept { quillon::detail::turnRows(elements, 0, 2, t, true); }
template <class T>
void Transform<T>::Function_2424(double t) noexcept { quillon::detail::turnRows(elements, 0, 1, t, false); }

// ---- Scaling, translation, transpose in place, reset, clear ----

// The factor is the left operand of the product (it matters for the guard operator).
template <class T>
void Transform<T>::Function_2425(T factor) noexcept { elements[0][0] = E::fromWork(E::work(factor) * E::work(elements[0][0])); }
template <class T>
void Transform<T>::Function_2426(T factor) noexcept { elements[1][1] = E::fromWork(E::work(factor) * E::work(elements[1][1])); }
template <class T>
void Transform<T>::Function_2427(T factor) noexcept { elements[2][2] = E::fromWork(E::work(factor) * E::work(elements[2][2])); }

template <class T>
void Transform<T>::Function_2428(char axis, T amount) noexcept
{
    const int row = axis == 'X' || axis == 'x'   ? 0
                    : axis == 'Y' || axis == 'y' ? 1
                    : axis == 'Z' || axis == 'z' ? 2
                                                 : -1;
    if (row < 0) return;
    auto sum = E::work(elements[row][3]);
    sum += E::work(amount); // guarddouble: its += (a saturated amount leaves the element alone)
    elements[row][3] = E::fromWork(sum);
}

template <class T>
Transform<T>& Transform<T>::Function_2429() noexcept
{
    T copy[4][4];
    quillon::detail::copyElements(copy, elements);
    for (int r = 0; r < 4; ++r)
        for (int c = 0; c < 4; ++c) elements[r][c] = copy[c][r];
    return *this;
}

template <class T>
void Transform<T>::Function_2430() noexcept { quillon::detail::setIdentity(elements); }

template <class T>
void Transform<T>::Function_2431() noexcept
{
    for (int r = 0; r < 4; ++r)
        for (int c = 0; c < 4; ++c) elements[r][c] = T(0.0);
}

// ---- Cofactors, determinant, inverse, copies ----

namespace quillon::detail {
// Linear indices of the elements left when row r and column c are struck out, in row-major
// order: the minor of (r, c) is e[kMinorIndex[r][c][0]] ... e[kMinorIndex[r][c][8]].
struct MinorIndex {
    unsigned char at[4][4][9];
    constexpr MinorIndex() : at{}
    {
        for (int row = 0; row < 4; ++row)
            for (int col = 0; col < 4; ++col) {
                int next = 0;
                for (int k = 0; k < 16; ++k)
                    if (k / 4 != row && k % 4 != col) at[row][col][next++] = static_cast<unsigned char>(k);
            }
    }
    constexpr const unsigned char (&operator[](unsigned row) const)[4][9] { return at[row]; }
};
inline constexpr MinorIndex kMinorIndex{};

// Determinant of a 3x3 minor m_0..m_8, expanded along its first row in this grouping.
template <class T>
typename Element<T>::Work det3(const T (&m)[9]) noexcept
{
    using E = Element<T>;
    const auto t0 = E::work(m[4]) * E::work(m[8]) - E::work(m[5]) * E::work(m[7]);
    const auto t1 = E::work(m[3]) * E::work(m[8]) - E::work(m[5]) * E::work(m[6]);
    const auto t2 = E::work(m[3]) * E::work(m[7]) - E::work(m[4]) * E::work(m[6]);
    return (E::work(m[0]) * t0 - E::work(m[1]) * t1) + E::work(m[2]) * t2;
}

// The determinant in the working type; for float nothing is rounded before the caller stores it.
// A last row of exactly (0, 0, 0, 1) takes the short form of the upper left block.
template <class T>
typename Element<T>::Work determinant(const T (&e)[4][4]) noexcept
{
    using E = Element<T>;
    const auto w = [&e](int k) { return E::work(e[k / 4][k % 4]); };
    if (e[3][0] == T(0.0) && e[3][1] == T(0.0) && e[3][2] == T(0.0) && e[3][3] == T(1.0))
        return (w(0) * (w(5) * w(10) - w(6) * w(9)) - w(1) * (w(4) * w(10) - w(6) * w(8))) +
               w(2) * (w(4) * w(9) - w(5) * w(8));
    const auto a = w(10) * w(15) - w(11) * w(14);
    const auto b = w(9) * w(15) - w(11) * w(13);
    const auto c = w(9) * w(14) - w(10) * w(13);
    const auto d = w(8) * w(15) - w(11) * w(12);
    const auto f = w(8) * w(14) - w(10) * w(12);
    const auto g = w(8) * w(13) - w(9) * w(12);
    const auto m0 = (w(5) * a - w(6) * b) + w(7) * c;
    const auto m1 = (w(4) * a - w(6) * d) + w(7) * f;
    const auto m2 = (w(4) * b - w(5) * d) + w(7) * g;
    const auto m3 = (w(4) * c - w(5) * f) + w(6) * g;
    return ((w(0) * m0 - w(1) * m1) + w(2) * m2) - w(3) * m3;
}

// The unsigned 3x3 minors of all sixteen elements, each the det3 of the minor as the cofactor
// takes it, with the work shared. Every t0, t1, t2 of det3 is a 2x2 determinant of the minor's
// last two rows, which are two rows p < q of the matrix (2 and 3 for rows 0 and 1, 1 and 3 for row
// 2, 1 and 2 for row 3), over two columns a < b:
//   D(p, q; a, b) = e[p][a] e[q][b] - e[p][b] e[q][a]
// with the same operands in the same order as det3 forms it. There are eighteen of them; each is
// formed once and read by the three or six minors that share it, so every minor has the bits of
// det3, for every element type.
template <class T>
struct Minors {
    using Work = typename Element<T>::Work;
    Work at[4][4];

    explicit Minors(const T (&e)[4][4]) noexcept
    {
        using E = Element<T>;
        // Column pairs in a fixed order: pair[a][b] is the slot of (a, b), a < b.
        constexpr int pair[4][4] = {{-1, 0, 1, 2}, {-1, -1, 3, 4}, {-1, -1, -1, 5}, {-1, -1, -1, -1}};
        constexpr int rowPair[3][2] = {{2, 3}, {1, 3}, {1, 2}};
        for (int rp = 0; rp < 3; ++rp) {
            const int p = rowPair[rp][0], q = rowPair[rp][1];
            Work d2[6];
            for (int a = 0; a < 3; ++a)
                for (int b = a + 1; b < 4; ++b)
                    d2[pair[a][b]] = E::work(e[p][a]) * E::work(e[q][b]) - E::work(e[p][b]) * E::work(e[q][a]);
            // The rows whose minors have p and q as their last two rows, and their first row.
            const int rows[2] = {rp == 0 ? 0 : rp + 1, rp == 0 ? 1 : -1};
            for (int row : rows) {
                if (row < 0) continue;
                const int first = row == 0 ? 1 : 0;
                for (int col = 0; col < 4; ++col) {
                    int c[3], n = 0;
                    for (int k = 0; k < 4; ++k)
                        if (k != col) c[n++] = k;
                    // det3: (m_0 t0 - m_1 t1) + m_2 t2
                    const Work& t0 = d2[pair[c[1]][c[2]]];
                    const Work& t1 = d2[pair[c[0]][c[2]]];
                    const Work& t2 = d2[pair[c[0]][c[1]]];
                    at[row][col] = (E::work(e[first][c[0]]) * t0 - E::work(e[first][c[1]]) * t1) +
                                   E::work(e[first][c[2]]) * t2;
                }
            }
        }
    }

    // The determinant as determinant() gives it: the short form is the minor of (3, 3), the full
    // expansion along row 0 takes the minors of row 0, which are its M0 to M3.
    Work determinant(const T (&e)[4][4]) const noexcept
    {
        using E = Element<T>;
        if (e[3][0] == T(0.0) && e[3][1] == T(0.0) && e[3][2] == T(0.0) && e[3][3] == T(1.0)) return at[3][3];
        return ((E::work(e[0][0]) * at[0][0] - E::work(e[0][1]) * at[0][1]) + E::work(e[0][2]) * at[0][2]) -
               E::work(e[0][3]) * at[0][3];
    }

    // The signed cofactor of (row, col) stored as T, as Function_2413 gives it.
    T cofactor(int row, int col) const noexcept
    {
        const int sign = ((row + col) % 2) ? -1 : 1;
        return Element<T>::fromWork(sign * at[row][col]); // the integer sign is the left operand
    }
};
} // namespace quillon::detail

namespace quillon::detail {
#if defined(__clang__) || (defined(__GNUC__) && __GNUC__ >= 12)
#  define QUILLON_LANES 1
// Four doubles side by side, as two pairs (the width every x86-64 processor has). The float and
// double members below use them to do four elements' work at once. Each lane is one element's own
// sequence of products, sums and quotients, in the order and grouping of the one-element formula:
// lanes never mix, and with contraction off no multiply and add fuse, so every lane has the bits
// of the formula.
typedef double LanePair __attribute__((vector_size(16)));
typedef float LanePairFloat __attribute__((vector_size(8)));
struct Quad {
    LanePair lo, hi;
    double operator[](int k) const noexcept { return k < 2 ? lo[k] : hi[k - 2]; }
};
inline Quad quad(double a, double b, double c, double d) noexcept { return {LanePair{a, b}, LanePair{c, d}}; }
inline Quad quad(double a) noexcept { return quad(a, a, a, a); }
inline Quad operator+(const Quad& a, const Quad& b) noexcept { return {a.lo + b.lo, a.hi + b.hi}; }
inline Quad operator-(const Quad& a, const Quad& b) noexcept { return {a.lo - b.lo, a.hi - b.hi}; }
inline Quad operator*(const Quad& a, const Quad& b) noexcept { return {a.lo * b.lo, a.hi * b.hi}; }
inline Quad operator/(const Quad& a, const Quad& b) noexcept { return {a.lo / b.lo, a.hi / b.hi}; }
// Each lane stored as T and read back: rounded to float for float, unchanged for double.
template <class T>
Quad stored(const Quad& a) noexcept
{
    if constexpr (std::is_same_v<T, float>)
        return {__builtin_convertvector(__builtin_convertvector(a.lo, LanePairFloat), LanePair),
                __builtin_convertvector(__builtin_convertvector(a.hi, LanePairFloat), LanePair)};
    else
        return a;
}
template <class T>
Quad row(const T (&r)[4]) noexcept { return quad(r[0], r[1], r[2], r[3]); }

template <class T>
Transform<T> fromLinear(const T (&a)[16]) noexcept
{
    return Transform<T>(a[0], a[1], a[2], a[3], a[4], a[5], a[6], a[7], a[8], a[9], a[10], a[11], a[12], a[13],
                        a[14], a[15]);
}

// The product, a row at a time: row i is the sum over k of l[i][k] times row k of m, from zero in
// the order k = 0, 1, 2, 3, each step stored as T.
template <class T>
Transform<T> composeInLanes(const T (&l)[4][4], const T (&m)[4][4]) noexcept
{
    const Quad rows[4] = {row(m[0]), row(m[1]), row(m[2]), row(m[3])};
    T out[16];
#  pragma GCC unroll 4
    for (int i = 0; i < 4; ++i) {
        Quad acc = quad(0.0);
#  pragma GCC unroll 4
        for (int k = 0; k < 4; ++k) acc = stored<T>(acc + quad(static_cast<double>(l[i][k])) * rows[k]);
#  pragma GCC unroll 4
        for (int j = 0; j < 4; ++j) out[4 * i + j] = static_cast<T>(acc[j]);
    }
    return fromLinear(out);
}

// The unsigned minors of Minors, a row of four at a time. With c0 < c1 < c2 the columns other
// than c, lane c of minor row r is det3's (m_0 t0 - m_1 t1) + m_2 t2, where m_0, m_1, m_2 are
// the first row's elements in columns c0, c1, c2 and t0, t1, t2 the 2x2 determinants
// D(c1, c2), D(c0, c2), D(c0, c1) of the last two rows p < q. Across the lanes c = 0..3:
//   m_0 = first row at (1, 0, 0, 0)     t0 = (D23, D23, D13, D12)
//   m_1 = first row at (2, 2, 1, 1)     t1 = (D13, D03, D03, D02)
//   m_2 = first row at (3, 3, 3, 2)     t2 = (D12, D02, D01, D01)
// The six D(a, b) = p[a] q[b] - p[b] q[a] of a pair of rows are formed once, two at a time, with
// det3's operands, and then dealt out to the lanes that read them.
template <class T>
struct MinorsInLanes {
    Quad at[4];

    // Always inlined: called once per member, and the members' callers gain most from seeing it.
    __attribute__((always_inline)) explicit MinorsInLanes(const T (&e)[4][4]) noexcept
    {
        LanePair left[4], right[4]; // columns 0 and 1, columns 2 and 3
#  pragma GCC unroll 4
        for (int k = 0; k < 4; ++k) {
            left[k] = LanePair{static_cast<double>(e[k][0]), static_cast<double>(e[k][1])};
            right[k] = LanePair{static_cast<double>(e[k][2]), static_cast<double>(e[k][3])};
        }
        // Row k at columns (a, b), for the pairs the determinants need.
        const auto at20 = [&](int k) { return __builtin_shufflevector(right[k], left[k], 0, 2); };
        const auto at21 = [&](int k) { return __builtin_shufflevector(right[k], left[k], 0, 3); };
        const auto at10 = [&](int k) { return __builtin_shufflevector(left[k], left[k], 1, 0); };
        const auto at32 = [&](int k) { return __builtin_shufflevector(right[k], right[k], 1, 0); };
        const auto at33 = [&](int k) { return __builtin_shufflevector(right[k], right[k], 1, 1); };
        const auto minorRow = [&](int first, int p, int q) {
            const LanePair u = at20(p) * at33(q) - at33(p) * at20(q); // D23, D03
            const LanePair v = at10(p) * at32(q) - at32(p) * at10(q); // D13, D02
            const LanePair w = at10(p) * at21(q) - at21(p) * at10(q); // D12, D01
            const Quad t0 = {__builtin_shufflevector(u, u, 0, 0), __builtin_shufflevector(v, w, 0, 2)};
            const Quad t1 = {__builtin_shufflevector(v, u, 0, 3), __builtin_shufflevector(u, v, 1, 3)};
            const Quad t2 = {__builtin_shufflevector(w, v, 0, 3), __builtin_shufflevector(w, w, 1, 1)};
            const LanePair l = left[first], r = right[first];
            const Quad m0 = {__builtin_shufflevector(l, l, 1, 0), __builtin_shufflevector(l, l, 0, 0)};
            const Quad m1 = {__builtin_shufflevector(r, r, 0, 0), __builtin_shufflevector(l, l, 1, 1)};
            const Quad m2 = {__builtin_shufflevector(r, r, 1, 1), __builtin_shufflevector(r, r, 1, 0)};
            return (m0 * t0 - m1 * t1) + m2 * t2;
        };
        // The rows the determinant reads first (row 0 for the full expansion, the minor (3, 3)
        // for the short form), so that the inverse's divisions can start while the rest is formed.
        at[0] = minorRow(1, 2, 3);
        at[3] = minorRow(0, 1, 2);
        at[1] = minorRow(0, 2, 3);
        at[2] = minorRow(0, 1, 3);
    }

    // As Minors::determinant.
    double determinant(const T (&e)[4][4]) const noexcept
    {
        if (e[3][0] == T(0.0) && e[3][1] == T(0.0) && e[3][2] == T(0.0) && e[3][3] == T(1.0)) return at[3][3];
        const double w0 = e[0][0], w1 = e[0][1], w2 = e[0][2], w3 = e[0][3];
        return ((w0 * at[0][0] - w1 * at[0][1]) + w2 * at[0][2]) - w3 * at[0][3];
    }

    // Row r of signed cofactors, each stored as T: the integer sign, as a double, times the minor.
    Quad cofactors(int r) const noexcept
    {
        const double s = (r % 2) ? -1.0 : 1.0;
        return stored<T>(quad(s, -s, s, -s) * at[r]);
    }
};
#endif
} // namespace quillon::detail

template <class T>
T Transform<T>::Function_2413(unsigned int row, unsigned int col) const noexcept
{
    if (row > 3 || col > 3) return T(0.0);
    T minor[9];
    for (int k = 0; k < 9; ++k) {
        const int at = quillon::detail::kMinorIndex[row][col][k];
        minor[k] = elements[at / 4][at % 4];
    }
    const int sign = ((row + col) % 2) ? -1 : 1;
    return E::fromWork(sign * quillon::detail::det3(minor)); // the integer sign is the left operand
}

// The adjoint and the inverse take their cofactors from the shared minors: the same bits as
// Function_2413 gives for each, for a fraction of the work.
template <class T>
Transform<T> Transform<T>::Function_2412() const noexcept
{
#if defined(QUILLON_LANES)
    if constexpr (std::is_same_v<T, float> || std::is_same_v<T, double>) {
        const quillon::detail::MinorsInLanes<T> minors(elements);
        T work[16];
        for (int r = 0; r < 4; ++r) {
            const quillon::detail::Quad cofactors = minors.cofactors(r);
            for (int c = 0; c < 4; ++c) work[c * 4 + r] = static_cast<T>(cofactors[c]);
        }
        return quillon::detail::fromLinear(work);
    }
#endif
    const quillon::detail::Minors<T> minors(elements);
    T work[16];
    for (int r = 0; r < 4; ++r)
        for (int c = 0; c < 4; ++c) work[c * 4 + r] = minors.cofactor(r, c);
    return Transform<T>(work);
}

template <class T>
T Transform<T>::Function_2414() const noexcept { return E::fromWork(quillon::detail::determinant(elements)); }

template <class T>
Transform<T> Transform<T>::Function_2415() const noexcept
{
#if defined(QUILLON_LANES)
    if constexpr (std::is_same_v<T, float> || std::is_same_v<T, double>) {
        using quillon::detail::Quad;
        const quillon::detail::MinorsInLanes<T> minors(elements);
        const T d = static_cast<T>(minors.determinant(elements)); // float: rounded here
        if (!(d != T(0.0))) return Transform<T>();
        // The cofactor's sign moves to the divisor: (-m) / d and m / (-d) round alike, and a
        // float minor rounds to the negation of its negation's rounding, so each quotient keeps
        // its bits and four multiplications by -1 go.
        const double dd = static_cast<double>(d);
        const Quad divisors[2] = {quillon::detail::quad(dd, -dd, dd, -dd), quillon::detail::quad(-dd, dd, -dd, dd)};
        T work[16];
#  pragma GCC unroll 4
        for (int r = 0; r < 4; ++r) {
            // Quotients, never products with 1/d; for float, of the float cofactor and determinant.
            const Quad quotients = quillon::detail::stored<T>(quillon::detail::stored<T>(minors.at[r]) / divisors[r % 2]);
#  pragma GCC unroll 4
            for (int c = 0; c < 4; ++c) work[c * 4 + r] = static_cast<T>(quotients[c]);
        }
        return quillon::detail::fromLinear(work);
    }
#endif
    const quillon::detail::Minors<T> minors(elements);
    const T d = E::fromWork(minors.determinant(elements)); // float: rounded here
    if (!(d != T(0.0))) return Transform<T>();
    T work[16];
    for (int r = 0; r < 4; ++r)
        for (int c = 0; c < 4; ++c)
            work[c * 4 + r] = E::fromWork(E::work(minors.cofactor(r, c)) / E::work(d)); // a quotient, never a product with 1/d
    return Transform<T>(work);
}

// The argument is the destination, whatever its declared constness says. A null destination is
// ignored rather than written through.
template <class T>
void Transform<T>::Function_2416(const T* destination) const noexcept
{
    if (destination) std::memcpy(const_cast<T*>(destination), elements, sizeof elements);
}

template <class T>
Transform<T> Transform<T>::Function_2417() const noexcept
{
    Transform<T> result;
    for (int r = 0; r < 4; ++r)
        for (int c = 0; c < 4; ++c) result.elements[r][c] = elements[c][r];
    return result;
}

template <class T>
Transform<T> Transform<T>::Function_2421() const noexcept
{
    Transform<T> result(*this);
    result.elements[0][3] = result.elements[1][3] = result.elements[2][3] = T(0.0);
    result.elements[3][3] = T(1.0);
    return result;
}

// ---- Composition ----

// Full 4x4 product. The accumulator is the element itself, so it takes T's precision after each
// of the four steps: for float, each step's sum is rounded to float when it is stored.

template <class T>
Transform<T> Transform<T>::operator*(const Transform<T>& right) const noexcept
{
#if defined(QUILLON_LANES)
    if constexpr (std::is_same_v<T, float> || std::is_same_v<T, double>)
        return quillon::detail::composeInLanes(elements, right.elements);
#endif
    Transform<T> product;
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 4; ++j) {
            T& acc = product.elements[i][j];
            acc = T(0.0);
            for (int k = 0; k < 4; ++k) {
                auto sum = E::work(acc);
                sum += E::work(elements[i][k]) * E::work(right.elements[k][j]);
                acc = E::fromWork(sum);
            }
        }
    return product;
}

// ---- Vector mapping ----

namespace quillon {
// How a Transform<A> takes a vector component of type B into its working local (enter) and
// stores a row's sum back as B (leave). The six cells of each row of the entry and exit tables
// are the six Element<B> functions named here.
template <class A>
struct MapRule;
template <>
struct MapRule<float> {
    template <class B> static float enter(const B& p) noexcept { return Element<B>::toFloat(p); }
    template <class B> static B leave(double s) noexcept { return Element<B>::fromSingle(s); }
};
template <>
struct MapRule<double> {
    template <class B> static double enter(const B& p) noexcept { return Element<B>::toDouble(p); }
    template <class B> static B leave(double s) noexcept { return Element<B>::fromDouble(s); }
};
template <>
struct MapRule<guarddouble> {
    template <class B> static guarddouble enter(const B& p) noexcept { return Element<B>::toGuarddouble(p); }
    template <class B> static B leave(const guarddouble& s) noexcept { return Element<B>::fromGuarddouble(s); }
};

namespace detail {
#if defined(__GNUC__)
#  define QUILLON_MAP_COLD __attribute__((noinline, cold, pure))
#else
#  define QUILLON_MAP_COLD
#endif
// Whether every operand of a guarddouble mapping lies within 2^500 in magnitude (so no infinity and
// no NaN). Then no product reaches 2^1000 and no sum 2^1002: no operand is at the limit, no sum or
// product saturates, and a zero product has the IEEE sign, so each guard operation of the rows
// gives exactly the IEEE result and the rows can be summed in plain double, in the same order.
// The elements are tested apart from the point, so that a caller's loop tests them once.
inline constexpr double kPlainBound = 0x1p500;
inline bool guardElementsArePlain(const guarddouble (&e)[4][4]) noexcept
{
    // Written out, with no loop, so that a caller's compiler sees twelve tests it can move out of
    // its own loop; a NaN compares false.
    const auto within = [](const guarddouble& g) { return std::fabs(g.value()) <= kPlainBound; };
    return within(e[0][0]) & within(e[0][1]) & within(e[0][2]) & within(e[0][3]) & within(e[1][0]) &
           within(e[1][1]) & within(e[1][2]) & within(e[1][3]) & within(e[2][0]) & within(e[2][1]) &
           within(e[2][2]) & within(e[2][3]);
}
// The point by the sum of its magnitudes: each is no larger than the sum as rounded (and a NaN or
// an infinity makes it fail), so a sum within the bound puts all three within it. A point whose
// components are within the bound but whose sum is not takes the guard rules, which give the same
// bits.
inline bool guardPointIsPlain(double x, double y, double z) noexcept
{
    return (std::fabs(x) + std::fabs(y)) + std::fabs(z) <= kPlainBound;
}

// s_r = (((e[r][0] x + e[r][1] y) + e[r][2] z) + e[r][3]): the element is the left operand of
// each product, the translation comes last, row 3 is never read. x, y and z are the components
// as the transform's work type holds them (double for float and double, guarddouble for guarddouble).
template <class A, class X>
inline X rowSum(const A (&e)[4][4], int r, const X& x, const X& y, const X& z) noexcept
{
    using W = Element<A>;
    return ((W::work(e[r][0]) * x + W::work(e[r][1]) * y) + W::work(e[r][2]) * z) + W::work(e[r][3]);
}

// The three row sums stored as B.
template <class A, class B, class S>
inline ThreeDVector<B> leaveRows(const S& s0, const S& s1, const S& s2) noexcept
{
    using R = MapRule<A>;
    ThreeDVector<B> result;
#if defined(__GNUC__) && defined(__x86_64__)
    if constexpr (std::is_same_v<B, float>) {
        // A ThreeDVector<float> is returned with x and y packed in one register. Written as two
        // components, x and y go to the stack one at a time and come back as one 8-byte load,
        // which cannot take its value from two 4-byte stores and waits for them to reach the
        // cache; packed here, the pair goes straight to the register. The values are the same.
        typedef float Pair __attribute__((vector_size(8)));
        const Pair xy = {R::template leave<B>(s0), R::template leave<B>(s1)};
        std::memcpy(static_cast<void*>(&result), &xy, sizeof xy);
        result.SetZ(R::template leave<B>(s2));
        return result;
    }
#endif
    result.SetX(R::template leave<B>(s0));
    result.SetY(R::template leave<B>(s1));
    result.SetZ(R::template leave<B>(s2));
    return result;
}

// A guarddouble mapping with an operand beyond 2^500: every operation by the guard rules. Kept out
// of line, so that the plain path of the caller's loop stays small; it reads and writes nothing
// but its arguments and result.
template <class B>
QUILLON_MAP_COLD ThreeDVector<B> mapGuarded(const guarddouble (&e)[4][4], guarddouble x, guarddouble y,
                                            guarddouble z) noexcept
{
    return leaveRows<guarddouble, B>(rowSum(e, 0, x, y, z), rowSum(e, 1, x, y, z), rowSum(e, 2, x, y, z));
}

#if defined(QUILLON_MAP_LANES)
// Transform<float> on one point, with the row sums of rowSum and the exits of leaveRows: rows 0
// and 1 side by side, lane r of each step being row r's own product or sum in rowSum's order and
// grouping, and row 2 alone in plain doubles. Lanes never mix and nothing fuses, so every row has
// the bits of rowSum; what changes is the number of instructions. Widening a float to double is
// exact, so two floats at a time are widened by one cvtps2pd (the components of a
// ThreeDVector<float> straight from memory, x with y and y with z), and the elements of rows 0
// and 1 are paired column by column before they are widened. Rows 0 and 1 leave through
// leaveRows, where the compiler rounds both lanes of a float result with one cvtpd2ps, which also
// leaves x and y packed in the register a ThreeDVector<float> is returned in. (SSE2 intrinsics:
// GCC 12 splits a conversion of its own two-float vectors into two scalar ones.)
template <class B>
inline ThreeDVector<B> mapInLanes(const float (&e)[4][4], const ThreeDVector<B>& v) noexcept
{
    using R = MapRule<float>;
    // (x, y) and (y, z) in double.
    LanePair xy, yz;
    if constexpr (std::is_same_v<B, float>) {
        static_assert(std::is_standard_layout_v<ThreeDVector<float>> && sizeof(ThreeDVector<float>) == 12);
        const char* at = reinterpret_cast<const char*>(&v);
        xy = LanePair(_mm_cvtps_pd(_mm_castsi128_ps(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(at)))));
        yz = LanePair(_mm_cvtps_pd(_mm_castsi128_ps(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(at + 4)))));
    } else {
        const double x = R::enter(v.GetX()), y = R::enter(v.GetY()), z = R::enter(v.GetZ());
        xy = LanePair{x, y};
        yz = LanePair{y, z};
    }
    // Column c of rows 0 and 1 as (e[0][c], e[1][c]); row 2 as (e[2][0], e[2][1]), (e[2][2], e[2][3]).
    __m128 r0, r1, r2;
    std::memcpy(&r0, e[0], sizeof r0);
    std::memcpy(&r1, e[1], sizeof r1);
    std::memcpy(&r2, e[2], sizeof r2);
    const __m128 left = _mm_unpacklo_ps(r0, r1), right = _mm_unpackhi_ps(r0, r1);
    const LanePair c0 = LanePair(_mm_cvtps_pd(left)), c1 = LanePair(_mm_cvtps_pd(_mm_movehl_ps(left, left)));
    const LanePair c2 = LanePair(_mm_cvtps_pd(right)), c3 = LanePair(_mm_cvtps_pd(_mm_movehl_ps(right, right)));
    const LanePair d01 = LanePair(_mm_cvtps_pd(r2)), d23 = LanePair(_mm_cvtps_pd(_mm_movehl_ps(r2, r2)));
    const LanePair x = __builtin_shufflevector(xy, xy, 0, 0);
    const LanePair y = __builtin_shufflevector(yz, yz, 0, 0);
    const LanePair z = __builtin_shufflevector(yz, yz, 1, 1);
    const LanePair rows01 = ((c0 * x + c1 * y) + c2 * z) + c3;
    const double row2 = ((d01[0] * x[0] + d01[1] * y[0]) + d23[0] * z[0]) + d23[1];
    return leaveRows<float, B>(rows01[0], rows01[1], row2);
}
#endif

template <class A, class B>
inline ThreeDVector<B> mapPoint(const A (&e)[4][4], const ThreeDVector<B>& v) noexcept
{
    using W = Element<A>;
    using R = MapRule<A>;
    const auto x = W::work(R::enter(v.GetX()));
    const auto y = W::work(R::enter(v.GetY()));
    const auto z = W::work(R::enter(v.GetZ()));
    if constexpr (std::is_same_v<A, guarddouble>) {
        const double px = x.value(), py = y.value(), pz = z.value();
        if (!(guardElementsArePlain(e) && guardPointIsPlain(px, py, pz))) return mapGuarded<B>(e, x, y, z);
        // The same sums in plain double: every guard operation would give the IEEE result. No sum
        // comes near the limit, so each is kept as it is, as guarddouble(double) would keep it.
        const auto kept = [](double sum) {
            guarddouble g;
            static_assert(std::is_trivially_copyable_v<guarddouble> && sizeof(guarddouble) == sizeof(double));
            std::memcpy(static_cast<void*>(&g), &sum, sizeof sum);
            return g;
        };
        const auto plain = [&](int r) {
            return ((e[r][0].value() * px + e[r][1].value() * py) + e[r][2].value() * pz) + e[r][3].value();
        };
#if defined(QUILLON_LANES)
        // Rows 0 and 1 side by side, each lane its own row's products and sums in plain's order.
        const auto column = [&](int c) { return LanePair{e[0][c].value(), e[1][c].value()}; };
        const LanePair rows01 = ((column(0) * LanePair{px, px} + column(1) * LanePair{py, py}) +
                                 column(2) * LanePair{pz, pz}) + column(3);
        return leaveRows<A, B>(kept(rows01[0]), kept(rows01[1]), kept(plain(2)));
#else
        return leaveRows<A, B>(kept(plain(0)), kept(plain(1)), kept(plain(2)));
#endif
    } else {
#if defined(QUILLON_MAP_LANES)
        if constexpr (std::is_same_v<A, float>) return mapInLanes(e, v);
#endif
        return leaveRows<A, B>(rowSum(e, 0, x, y, z), rowSum(e, 1, x, y, z), rowSum(e, 2, x, y, z));
    }
}
} // namespace detail
} // namespace quillon


#if !defined(QUILLON_BUILDING_MODULE)
extern template class Transform<float>;
extern template class Transform<double>;
extern template class Transform<guarddouble>;
#endif

#endif
