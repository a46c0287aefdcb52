// SPDX-License-Identifier: MIT
// The test's own declaration of Quillon.dll and "Guard Scalars.dll" for a program built for the
// MSVC ABI, written from the interface table (exported members, by value and by reference, with
// their qualifiers), independently of the library's header: the DLL check compares the names
// that clang decorates from this declaration with the DLLs' export tables.
#ifndef QUILLON_TEST_MSVC_INTERFACE_H
#define QUILLON_TEST_MSVC_INTERFACE_H

#define IMPORT __declspec(dllimport)

class guardint;

class guarddouble {
public:
    IMPORT guarddouble();
    IMPORT guarddouble(int);
    IMPORT guarddouble(double);
    IMPORT guarddouble(const guarddouble&);
    IMPORT guarddouble(guardint&);
    IMPORT ~guarddouble();
    guarddouble& operator=(const guarddouble& o) { v = o.v; return *this; }
    IMPORT int nint() const;
    IMPORT operator int() const;
    IMPORT guarddouble& operator+=(const guarddouble&);
    IMPORT guarddouble& operator/=(const guarddouble&);
private:
    double v;
};

class guardfloat {
public:
    guardfloat() : v(0) {}
    IMPORT guardfloat(int);
    IMPORT guardfloat(double);
    IMPORT guardfloat(const guardfloat&);
    IMPORT guardfloat(guardint&);
    IMPORT ~guardfloat();
    guardfloat& operator=(const guardfloat& o) { v = o.v; return *this; }
    IMPORT int nint() const;
    IMPORT operator int() const;
    IMPORT guardfloat& operator+=(const guardfloat&);
    IMPORT guardfloat& operator/=(const guardfloat&);
private:
    float v;
};

class guardint {
public:
    guardint() : v(0) {}
    IMPORT guardint(int);
    IMPORT guardint(double);
    IMPORT guardint(float);
    IMPORT guardint(const guardint&);
    IMPORT guardint(const guarddouble&);
    IMPORT guardint(const guardfloat&);
    IMPORT ~guardint();
    guardint& operator=(const guardint& o) { v = o.v; return *this; }
    IMPORT operator double() const;
    IMPORT operator float() const;
    IMPORT guardint& operator+=(const guardint&);
private:
    int v;
};

IMPORT guarddouble operator+(const guarddouble&, const guarddouble&);
IMPORT guarddouble operator-(const guarddouble&, const guarddouble&);
IMPORT guarddouble operator-(const guarddouble&, const double&);
IMPORT guarddouble operator*(const guarddouble&, const guarddouble&);
IMPORT guarddouble operator*(const int&, const guarddouble&);
IMPORT guarddouble operator/(const guarddouble&, const guarddouble&);
IMPORT int operator==(const guarddouble&, const guarddouble&);
IMPORT int operator!=(const guarddouble&, const guarddouble&);
IMPORT int operator<(const guarddouble&, const guarddouble&);
IMPORT int operator>(const guarddouble&, const guarddouble&);
IMPORT guardfloat operator+(const guardfloat&, const guardfloat&);
IMPORT guardfloat operator-(const guardfloat&, const guardfloat&);
IMPORT guardfloat operator*(const guardfloat&, const guardfloat&);
IMPORT int operator==(const guardfloat&, const guardfloat&);
IMPORT int operator!=(const guardfloat&, const guardfloat&);
IMPORT int operator<(const guardfloat&, const guardfloat&);
IMPORT guardint operator+(const guardint&, const guardint&);
IMPORT guardint operator-(const guardint&, const guardint&);
IMPORT guardint operator*(const guardint&, const guardint&);
IMPORT int operator==(const guardint&, const guardint&);
IMPORT int operator!=(const guardint&, const guardint&);
IMPORT int operator<(const guardint&, const guardint&);

template <class T>
class ThreeDVector {
public:
    ThreeDVector() : x(0), y(0), z(0) {}
    ThreeDVector(T a, T b, T c) : x(a), y(b), z(c) {}
    ThreeDVector(const ThreeDVector& o) : x(o.x), y(o.y), z(o.z) {}
    ~ThreeDVector() {}
    ThreeDVector& operator=(const ThreeDVector& o) { x = o.x; y = o.y; z = o.z; return *this; }
    T GetX() const { return x; }
    T GetY() const { return y; }
    T GetZ() const { return z; }
private:
    T x, y, z;
};

struct HRGN__;
typedef HRGN__* HRGN;
struct BatteryAccess;

template <class T>
class IMPORT Transform {
public:
    Transform();
    Transform(const Transform<T>&);
    Transform(const T*);
    Transform(T, T, T, T, T, T, T, T, T, T, T, T, T, T, T, T);
    Transform(double, double, double);
    ~Transform();
    Transform<T> operator=(const Transform<T>&);
    Transform<T> operator*(const Transform<T>&) const;
    ThreeDVector<int> operator*(const ThreeDVector<int>&) const;
    ThreeDVector<float> operator*(const ThreeDVector<float>&) const;
    ThreeDVector<double> operator*(const ThreeDVector<double>&) const;
    ThreeDVector<guardint> operator*(const ThreeDVector<guardint>&) const;
    ThreeDVector<guardfloat> operator*(const ThreeDVector<guardfloat>&) const;
    ThreeDVector<guarddouble> operator*(const ThreeDVector<guarddouble>&) const;
    HRGN const operator*(HRGN const) const;
    Transform<T> Function_2412() const;
    T Function_2414() const;
    Transform<T> Function_2415() const;
    void Function_2416(const T*) const;
    Transform<T> Function_2417() const;
    T Function_2418() const;
    T Function_2419() const;
    T Function_2420() const;
    Transform<T> Function_2421() const;
    void Function_2422(double);
    void Function_2423(double);
    void Function_2424(double);
    void Function_2425(T);
    void Function_2426(T);
    void Function_2427(T);
    void Function_2428(char, T);
    Transform<T>& Function_2429();
    void Function_2430();
    void Function_2431();
private:
    friend struct BatteryAccess; // the battery reaches the private cofactor
    T Function_2413(unsigned int, unsigned int) const;
    T elements[4][4];
};

extern template class IMPORT Transform<float>;
extern template class IMPORT Transform<double>;
extern template class IMPORT Transform<guarddouble>;

// The platform's region functions and the C runtime, as the caller imports them.
struct RgnRect { int left, top, right, bottom; };
extern "C" {
IMPORT HRGN __stdcall CreateRectRgn(int, int, int, int);
IMPORT int __stdcall CombineRgn(HRGN, HRGN, HRGN, int);
IMPORT unsigned long __stdcall GetRegionData(HRGN, unsigned long, void*);
IMPORT int __stdcall DeleteObject(void*);
int printf(const char*, ...);
void* fopen(const char*, const char*);
int fprintf(void*, const char*, ...);
int fclose(void*);
}

#endif
