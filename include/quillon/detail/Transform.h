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

// The cofactors four at a time, for float and double (QUILLON_LANES where the compiler has vector
// types): their own file, beside the one-element formulas above.
#include <quillon/detail/TransformLanes.h>

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
    if constexpr (quillon::detail::LaneForms<T>::present) return quillon::detail::LaneForms<T>::adjoint(elements);
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
    if constexpr (quillon::detail::LaneForms<T>::present) return quillon::detail::LaneForms<T>::inverse(elements);
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
    if constexpr (quillon::detail::LaneForms<T>::present)
        return quillon::detail::LaneForms<T>::compose(elements, right.elements);
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

// ---- Vector mapping: its own file ----
#include <quillon/detail/PointMapping.h>

#if !defined(QUILLON_BUILDING_MODULE)
extern template class Transform<float>;
extern template class Transform<double>;
extern template class Transform<guarddouble>;
#endif

#endif
