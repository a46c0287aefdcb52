// SPDX-License-Identifier: MIT
// Quillon.dll and "Guard Scalars.dll" as a program built with the platform's own compiler (or
// clang for the MSVC targets) sees them: the exported members of Transform<T> for float, double and
// guarddouble, the exported members of the guard classes, and the layout of ThreeDVector<T>.
//
// Link with Quillon.lib and "Guard Scalars.lib". Nothing here needs the C++ standard library;
// include <windows.h> before this header if you use it (HRGN is its region handle).
//
// The classes are declared as the DLLs compiled them: the guard classes, ThreeDVector<T> and
// Transform<T> have their own copy constructors and destructors, so values of them are passed
// through memory and returned through a hidden pointer, as the compiler does for such classes.
#ifndef QUILLON_MSVC_QUILLON_H
#define QUILLON_MSVC_QUILLON_H

#if defined(QUILLON_MSVC_BUILDING_GUARDSCALARS)
#  define QUILLON_MSVC_GUARD_API __declspec(dllexport)
#else
#  define QUILLON_MSVC_GUARD_API __declspec(dllimport)
#endif

// ---- "Guard Scalars.dll": saturating scalars (limits 2147483647, 2^126 and 2^1022) ----

class guardint;
class guardfloat;
class guarddouble;

class guarddouble {
public:
    QUILLON_MSVC_GUARD_API guarddouble();
    QUILLON_MSVC_GUARD_API guarddouble(int i);
    QUILLON_MSVC_GUARD_API guarddouble(double x);
    QUILLON_MSVC_GUARD_API guarddouble(const guarddouble& other);
    QUILLON_MSVC_GUARD_API guarddouble(guardint& source);
    QUILLON_MSVC_GUARD_API ~guarddouble();
    guarddouble& operator=(const guarddouble& other) { value_ = other.value_; return *this; }

    QUILLON_MSVC_GUARD_API int nint() const;
    QUILLON_MSVC_GUARD_API operator int() const;
    QUILLON_MSVC_GUARD_API guarddouble& operator+=(const guarddouble& right);
    QUILLON_MSVC_GUARD_API guarddouble& operator/=(const guarddouble& right);

private:
    double value_;
};

class guardfloat {
public:
    guardfloat() : value_(0.0f) {}
    QUILLON_MSVC_GUARD_API guardfloat(int i);
    QUILLON_MSVC_GUARD_API guardfloat(double x);
    QUILLON_MSVC_GUARD_API guardfloat(const guardfloat& other);
    QUILLON_MSVC_GUARD_API guardfloat(guardint& source);
    QUILLON_MSVC_GUARD_API ~guardfloat();
    guardfloat& operator=(const guardfloat& other) { value_ = other.value_; return *this; }

    QUILLON_MSVC_GUARD_API int nint() const;
    QUILLON_MSVC_GUARD_API operator int() const;
    QUILLON_MSVC_GUARD_API guardfloat& operator+=(const guardfloat& right);
    QUILLON_MSVC_GUARD_API guardfloat& operator/=(const guardfloat& right);

private:
    float value_;
};

class guardint {
public:
    guardint() : value_(0) {}
    QUILLON_MSVC_GUARD_API guardint(int i);
    QUILLON_MSVC_GUARD_API guardint(double x);
    QUILLON_MSVC_GUARD_API guardint(float x);
    QUILLON_MSVC_GUARD_API guardint(const guardint& other);
    QUILLON_MSVC_GUARD_API guardint(const guarddouble& source);
    QUILLON_MSVC_GUARD_API guardint(const guardfloat& source);
    QUILLON_MSVC_GUARD_API ~guardint();
    guardint& operator=(const guardint& other) { value_ = other.value_; return *this; }

    QUILLON_MSVC_GUARD_API operator double() const;
    QUILLON_MSVC_GUARD_API operator float() const;
    QUILLON_MSVC_GUARD_API guardint& operator+=(const guardint& right);

private:
    int value_;
};

QUILLON_MSVC_GUARD_API guarddouble operator+(const guarddouble& a, const guarddouble& b);
QUILLON_MSVC_GUARD_API guarddouble operator-(const guarddouble& a, const guarddouble& b);
QUILLON_MSVC_GUARD_API guarddouble operator-(const guarddouble& a, const double& b);
QUILLON_MSVC_GUARD_API guarddouble operator*(const guarddouble& a, const guarddouble& b);
QUILLON_MSVC_GUARD_API guarddouble operator*(const int& a, const guarddouble& b);
QUILLON_MSVC_GUARD_API guarddouble operator/(const guarddouble& a, const guarddouble& b);
QUILLON_MSVC_GUARD_API int operator==(const guarddouble& a, const guarddouble& b);
QUILLON_MSVC_GUARD_API int operator!=(const guarddouble& a, const guarddouble& b);
QUILLON_MSVC_GUARD_API int operator<(const guarddouble& a, const guarddouble& b);
QUILLON_MSVC_GUARD_API int operator>(const guarddouble& a, const guarddouble& b);

QUILLON_MSVC_GUARD_API guardfloat operator+(const guardfloat& a, const guardfloat& b);
QUILLON_MSVC_GUARD_API guardfloat operator-(const guardfloat& a, const guardfloat& b);
QUILLON_MSVC_GUARD_API guardfloat operator*(const guardfloat& a, const guardfloat& b);
QUILLON_MSVC_GUARD_API int operator==(const guardfloat& a, const guardfloat& b);
QUILLON_MSVC_GUARD_API int operator!=(const guardfloat& a, const guardfloat& b);
QUILLON_MSVC_GUARD_API int operator<(const guardfloat& a, const guardfloat& b);

QUILLON_MSVC_GUARD_API guardint operator+(const guardint& a, const guardint& b);
QUILLON_MSVC_GUARD_API guardint operator-(const guardint& a, const guardint& b);
QUILLON_MSVC_GUARD_API guardint operator*(const guardint& a, const guardint& b);
QUILLON_MSVC_GUARD_API int operator==(const guardint& a, const guardint& b);
QUILLON_MSVC_GUARD_API int operator!=(const guardint& a, const guardint& b);
QUILLON_MSVC_GUARD_API int operator<(const guardint& a, const guardint& b);

// ---- ThreeDVector<T>: three components x, y, z of int, float, double or a guard class ----

template <class T>
class ThreeDVector {
public:
    ThreeDVector() : x(0), y(0), z(0) {}
    ThreeDVector(T x0, T y0, T z0) : x(x0), y(y0), z(z0) {}
    ThreeDVector(const ThreeDVector<T>& other) : x(other.x), y(other.y), z(other.z) {}
    ~ThreeDVector() {}
    ThreeDVector<T>& operator=(const ThreeDVector<T>& other)
    {
        x = other.x;
        y = other.y;
        z = other.z;
        return *this;
    }
    T GetX() const { return x; }
    T GetY() const { return y; }
    T GetZ() const { return z; }
    T SetX(const T& v) { x = v; return x; }
    T SetY(const T& v) { y = v; return y; }
    T SetZ(const T& v) { z = v; return z; }

private:
    T x, y, z;
};

// ---- Quillon.dll: Transform<T>, a 4x4 matrix acting on column vectors ----

struct HRGN__; // the region handle of <windows.h>

template <class T>
class Transform {
public:
    Transform();
    Transform(const Transform<T>& other);
    Transform(const T* elements16);
    Transform(T e0, T e1, T e2, T e3, T e4, T e5, T e6, T e7, T e8, T e9, T e10, T e11, T e12,
              T e13, T e14, T e15);
    Transform(double ax, double ay, double az);
    ~Transform();
    Transform<T> operator=(const Transform<T>& other);

    Transform<T> operator*(const Transform<T>& right) const;
    ThreeDVector<int> operator*(const ThreeDVector<int>& v) const;
    ThreeDVector<float> operator*(const ThreeDVector<float>& v) const;
    ThreeDVector<double> operator*(const ThreeDVector<double>& v) const;
    ThreeDVector<guardint> operator*(const ThreeDVector<guardint>& v) const;
    ThreeDVector<guardfloat> operator*(const ThreeDVector<guardfloat>& v) const;
    ThreeDVector<guarddouble> operator*(const ThreeDVector<guarddouble>& v) const;
    // The result is declared `HRGN const`, as the DLL's name of it says.
    HRGN__* const operator*(HRGN__* const region) const;

    Transform<T> Function_2412() const; // adjoint
    T Function_2414() const;            // determinant
    Transform<T> Function_2415() const; // inverse (the identity for a singular matrix)
    void Function_2416(const T* destination) const; // the 16 elements, row by row
    Transform<T> Function_2417() const; // transpose
    T Function_2418() const;            // e[1][0]
    T Function_2419() const;            // e[2][0]
    T Function_2420() const;            // e[3][0]
    Transform<T> Function_2421() const; // without translation
    void Function_2422(double t);       // turn about x, in place
    void Function_2423(double t);       // turn about y, in place
    void Function_2424(double t);       // turn about z, in place
    void Function_2425(T factor);       // e[0][0] times factor
    void Function_2426(T factor);       // e[1][1] times factor
    void Function_2427(T factor);       // e[2][2] times factor
    void Function_2428(char axis, T amount); // add to the translation along 'x', 'y' or 'z'
    Transform<T>& Function_2429();      // transpose in place
    void Function_2430();               // identity
    void Function_2431();               // all zero

private:
    T Function_2413(unsigned int row, unsigned int col) const; // signed cofactor

    T elements[4][4];
};

#if !defined(QUILLON_MSVC_BUILDING_MODULE)
extern template class __declspec(dllimport) Transform<float>;
extern template class __declspec(dllimport) Transform<double>;
extern template class __declspec(dllimport) Transform<guarddouble>;
#endif

#endif
