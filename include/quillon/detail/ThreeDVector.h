// SPDX-License-Identifier: MIT
// Quillon ThreeDVector<T>: a point or direction of three components x, y, z, for T = int, float,
// double, guardint, guardfloat, guarddouble.
//
// A flat value: the three components and nothing else (the layout crosses the module boundary as
// the argument and result of Transform<T>::operator*). Each member is written once; what an element
// type makes of it comes from quillon::Element<T>.
#ifndef QUILLON_THREEDVECTOR
#define QUILLON_THREEDVECTOR

#include <quillon/Elements>

#include <cmath>

/// A point on the screen: two 32-bit signed integers, x then y. Project's result and its origin.
struct ScreenPoint {
    int x; ///< column
    int y; ///< row
};
static_assert(sizeof(ScreenPoint) == 8);

/// A point or direction of three components x, y, z; T is int, float, double, guardint, guardfloat
/// or guarddouble. Sums, products and geometry keep to T's working arithmetic; nothing traps.
template <class T>
class ThreeDVector {
    using E = quillon::Element<T>;

public:
    ThreeDVector() noexcept : x(0), y(0), z(0) {}
    ThreeDVector(T x_, T y_, T z_) noexcept : x(x_), y(y_), z(z_) {} ///< the three components as given
    ThreeDVector(const ThreeDVector<T>& other) noexcept = default;    ///< a copy
    /// The vector from a to b: b's components minus a's.
    ThreeDVector(const ThreeDVector<T>& a, const ThreeDVector<T>& b) noexcept
        : x(E::fromWork(E::work(b.x) - E::work(a.x))),
          y(E::fromWork(E::work(b.y) - E::work(a.y))),
          z(E::fromWork(E::work(b.z) - E::work(a.z))) {}
    ~ThreeDVector() = default;

    ThreeDVector<T>& operator=(const ThreeDVector<T>& other) noexcept = default; ///< copies other's components

    T GetX() const noexcept { return x; }         ///< the x component
    T GetY() const noexcept { return y; }         ///< the y component
    T GetZ() const noexcept { return z; }         ///< the z component
    T SetX(const T& v) noexcept { return x = v; } ///< sets x to v and returns it
    T SetY(const T& v) noexcept { return y = v; } ///< sets y to v and returns it
    T SetZ(const T& v) noexcept { return z = v; } ///< sets z to v and returns it

    /// Adds amount to the component named by 'X'/'x', 'Y'/'y' or 'Z'/'z'; any other char does nothing.
    void AddToAxis(char axis, T amount) noexcept
    {
        T* component = axis == 'X' || axis == 'x'   ? &x
                       : axis == 'Y' || axis == 'y' ? &y
                       : axis == 'Z' || axis == 'z' ? &z
                                                    : nullptr;
        if (!component) return;
        auto sum = E::work(*component);
        sum += E::work(amount);
        *component = E::fromWork(sum);
    }

    /// Exact comparison, component by component in x, y, z order; +0.0 equals -0.0.
    int operator==(const ThreeDVector<T>& b) const noexcept
    {
        return !(x != b.x) && !(y != b.y) && !(z != b.z);
    }
    /// 1 when a component differs (a NaN component always differs), else 0.
    int operator!=(const ThreeDVector<T>& b) const noexcept
    {
        return !(x == b.x) || !(y == b.y) || !(z == b.z);
    }

    // ---- Arithmetic. The vector is the left operand; every result is a new vector. ----

    /// Sum and difference: wrapping for int, double rounded once for float, the class's own
    /// operator+ and operator- for the guard types.
    ThreeDVector<T> operator+(const ThreeDVector<T>& b) const noexcept
    {
        return {E::fromWork(E::work(x) + E::work(b.x)), E::fromWork(E::work(y) + E::work(b.y)),
                E::fromWork(E::work(z) + E::work(b.z))};
    }
    /// Difference, component by component, by the same rules as the sum.
    ThreeDVector<T> operator-(const ThreeDVector<T>& b) const noexcept
    {
        return {E::fromWork(E::work(x) - E::work(b.x)), E::fromWork(E::work(y) - E::work(b.y)),
                E::fromWork(E::work(z) - E::work(b.z))};
    }

    // Every product below enters each component into the type the product is formed in, multiplies
    // with the component on the left, and stores the product back as T. Where the entry or the exit
    // goes through nint (a guard scalar with a plain vector, any plain scalar with a guardfloat or
    // guarddouble vector) the fraction is lost.

    /// Component-wise product, formed in double precision whatever T is.
    ThreeDVector<T> operator*(const ThreeDVector<T>& b) const noexcept
    {
        return {E::fromDouble(E::toDouble(x) * E::toDouble(b.x)),
                E::fromDouble(E::toDouble(y) * E::toDouble(b.y)),
                E::fromDouble(E::toDouble(z) * E::toDouble(b.z))};
    }
    /// Formed in double; a guardint component is rounded to float on the way in and its product on
    /// the way out, before guardint(float) limits and rounds it.
    ThreeDVector<T> operator*(float s) const noexcept
    {
        const double w = static_cast<double>(s);
        return {E::fromSingle(E::toFloatProduct(x) * w), E::fromSingle(E::toFloatProduct(y) * w),
                E::fromSingle(E::toFloatProduct(z) * w)};
    }
    /// Each component times s, formed in double and stored back as T.
    ThreeDVector<T> operator*(double s) const noexcept
    {
        return {E::fromDouble(E::toDouble(x) * s), E::fromDouble(E::toDouble(y) * s),
                E::fromDouble(E::toDouble(z) * s)};
    }
    /// Formed by guardfloat's operator*; a plain result comes back through nint.
    ThreeDVector<T> operator*(guardfloat s) const noexcept
    {
        return {E::fromGuardfloat(E::toGuardfloat(x) * s), E::fromGuardfloat(E::toGuardfloat(y) * s),
                E::fromGuardfloat(E::toGuardfloat(z) * s)};
    }
    /// Formed by guarddouble's operator*; a plain result comes back through nint.
    ThreeDVector<T> operator*(guarddouble s) const noexcept
    {
        return {E::fromGuarddouble(E::toGuarddouble(x) * s),
                E::fromGuarddouble(E::toGuarddouble(y) * s),
                E::fromGuarddouble(E::toGuarddouble(z) * s)};
    }

    // ---- Geometry. ----

    /// Right-handed vector product, this vector on the left. Each component is one expression in
    /// T's working arithmetic, stored once.
    ThreeDVector<T> Cross(const ThreeDVector<T>& b) const noexcept
    {
        return {E::fromWork(E::work(y) * E::work(b.z) - E::work(z) * E::work(b.y)),
                E::fromWork(E::work(z) * E::work(b.x) - E::work(x) * E::work(b.z)),
                E::fromWork(E::work(x) * E::work(b.y) - E::work(y) * E::work(b.x))};
    }

    /// Scalar product, summed as (x*bx + y*by) + z*bz in T's working arithmetic.
    T Dot(const ThreeDVector<T>& b) const noexcept
    {
        return E::fromWork((E::work(x) * E::work(b.x) + E::work(y) * E::work(b.y)) +
                           E::work(z) * E::work(b.z));
    }
    /// As above; a null b gives zero without reading anything.
    T Dot(const ThreeDVector<T>* b) const noexcept { return b ? Dot(*b) : T(0); }

    /// The root of the sum of the squares, formed in double so that no integer type overflows, and
    /// stored as T: cut down for int, to the nearest integer for guardint. The floating guard types
    /// see their components through nint, so their fractions take no part.
    T Length() const noexcept { return E::fromDouble(RootOfSquares()); }

    /// The vector divided by its length, in double. The length is the one Length gives, read back
    /// as a double (float keeps the unrounded root); so an int (1, 1, 0) divides by 1. A zero
    /// length gives the zero vector.
    ThreeDVector<double> Unit() const noexcept
    {
        const double n = E::lengthAsDouble(RootOfSquares());
        if (n == 0.0) return ThreeDVector<double>(0.0, 0.0, 0.0);
        return ThreeDVector<double>(E::toDouble(x) / n, E::toDouble(y) / n, E::toDouble(z) / n);
    }
    /// The vector divided by its length with guarddouble's operator/. The argument only selects this
    /// form. A guarddouble vector keeps its fractions here, unlike Unit(). A length that is not
    /// greater than zero gives the zero vector.
    ThreeDVector<guarddouble> Unit(guarddouble) const noexcept
    {
        const guarddouble n = E::lengthAsGuarddouble(RootOfSquares());
        if (!(n > guarddouble(0.0))) return ThreeDVector<guarddouble>();
        return ThreeDVector<guarddouble>(E::toGuarddouble(x) / n, E::toGuarddouble(y) / n,
                                         E::toGuarddouble(z) / n);
    }

    /// Divides x, y and z, in that order, by Length, with T's own division. A length that is zero as
    /// an int (truncated for float and double, so under 1; nint for the floating guard types) leaves
    /// the vector unchanged.
    ThreeDVector<T>& Normalise() noexcept
    {
        const T n = Length();
        if (E::toInt(n) == 0) return *this;
        E::divideInPlace(x, n);
        E::divideInPlace(y, n);
        E::divideInPlace(z, n);
        return *this;
    }

    // ---- Projection. ----

    /// Perspective projection onto the screen plane at depth d, the viewer at the origin looking
    /// along +y: screen x comes from x, screen y from z. A point nearer than the plane (y < d), a
    /// zero d or a zero y gives (0, 0), without the origin; these tests use T's own comparison.
    /// Otherwise the scaling runs in guarddouble, rounds to whole numbers with ties downward, and
    /// the origin is added with wrapping int addition.
    ScreenPoint Project(const T& d, const ScreenPoint& origin) const noexcept
    {
        if (y < d || d == T(0) || y == T(0)) return ScreenPoint{0, 0};
        const guarddouble r = E::toGuarddouble(d) / E::toGuarddouble(y);
        guarddouble sx = E::toGuarddouble(x) * r;
        sx.RoundToWhole();
        guarddouble sy = E::toGuarddouble(z) * r;
        sy.RoundToWhole();
        return ScreenPoint{quillon::guard::wrapAdd(sx.nint(), origin.x),
                           quillon::guard::wrapAdd(sy.nint(), origin.y)};
    }

private:
    // Steps shared by Length and both Units: each component as a double (through nint for the
    // floating guard types), squared and summed as (x*x + y*y) + z*z, and the root.
    double RootOfSquares() const noexcept
    {
        const double a = E::toDouble(x), b = E::toDouble(y), c = E::toDouble(z);
        return std::sqrt((a * a + b * b) + c * c);
    }

    T x;
    T y;
    T z;
};

static_assert(sizeof(ThreeDVector<int>) == 12 && sizeof(ThreeDVector<float>) == 12 &&
              sizeof(ThreeDVector<double>) == 24 && sizeof(ThreeDVector<guardint>) == 12 &&
              sizeof(ThreeDVector<guardfloat>) == 12 && sizeof(ThreeDVector<guarddouble>) == 24);

#endif
