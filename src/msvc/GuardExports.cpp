// SPDX-License-Identifier: MIT
// The exports of "Guard Scalars.dll" under the platform compiler's names and conventions (compiled
// by clang for the MSVC target). Copies, the default constructor and the destructors only move the
// stored value; everything else runs the library's own guard code through the C seam.
#define QUILLON_MSVC_BUILDING_GUARDSCALARS
#include <quillon/msvc/Quillon.h>

#include "guard_bridge.h"

extern "C" int _fltused = 0; // the MSVC ABI's marker of floating-point use

namespace {

template <class To, class From>
To convert(const From& value)
{
    To result;
    quillon_guard_convert(quillon::seam::kind<From>, quillon::seam::kind<To>, &value, &result);
    return result;
}
template <class To, class From>
void construct(To* self, const From& value)
{
    quillon_guard_convert(quillon::seam::kind<From>, quillon::seam::kind<To>, &value, self);
}
template <class G, class A, class B>
G arith(char op, const A& a, const B& b)
{
    G result;
    quillon_guard_arith(quillon::seam::kind<G>, op, &a, &b, &result);
    return result;
}
template <class G>
G& update(char op, G& a, const G& b)
{
    quillon_guard_update(quillon::seam::kind<G>, op, &a, &b);
    return a;
}
template <class G>
int compare(char op, const G& a, const G& b)
{
    return quillon_guard_compare(quillon::seam::kind<G>, op, &a, &b);
}

} // namespace

guarddouble::guarddouble() : value_(0.0) {}
guarddouble::guarddouble(int i) { construct(this, i); }
guarddouble::guarddouble(double x) { construct(this, x); }
guarddouble::guarddouble(const guarddouble& other) : value_(other.value_) {}
guarddouble::guarddouble(guardint& source) { construct(this, source); }
guarddouble::~guarddouble() {}
int guarddouble::nint() const { return convert<int>(*this); }
guarddouble::operator int() const { return convert<int>(*this); }
guarddouble& guarddouble::operator+=(const guarddouble& right) { return update('+', *this, right); }
guarddouble& guarddouble::operator/=(const guarddouble& right) { return update('/', *this, right); }

guardfloat::guardfloat(int i) { construct(this, i); }
guardfloat::guardfloat(double x) { construct(this, x); }
guardfloat::guardfloat(const guardfloat& other) : value_(other.value_) {}
guardfloat::guardfloat(guardint& source) { construct(this, source); }
guardfloat::~guardfloat() {}
int guardfloat::nint() const { return convert<int>(*this); }
guardfloat::operator int() const { return convert<int>(*this); }
guardfloat& guardfloat::operator+=(const guardfloat& right) { return update('+', *this, right); }
guardfloat& guardfloat::operator/=(const guardfloat& right) { return update('/', *this, right); }

guardint::guardint(int i) { construct(this, i); }
guardint::guardint(double x) { construct(this, x); }
guardint::guardint(float x) { construct(this, x); }
guardint::guardint(const guardint& other) : value_(other.value_) {}
guardint::guardint(const guarddouble& source) { construct(this, source); }
guardint::guardint(const guardfloat& source) { construct(this, source); }
guardint::~guardint() {}
guardint::operator double() const { return convert<double>(*this); }
guardint::operator float() const { return convert<float>(*this); }
guardint& guardint::operator+=(const guardint& right) { return update('+', *this, right); }

guarddouble operator+(const guarddouble& a, const guarddouble& b) { return arith<guarddouble>('+', a, b); }
guarddouble operator-(const guarddouble& a, const guarddouble& b) { return arith<guarddouble>('-', a, b); }
guarddouble operator-(const guarddouble& a, const double& b) { return arith<guarddouble>('d', a, b); }
guarddouble operator*(const guarddouble& a, const guarddouble& b) { return arith<guarddouble>('*', a, b); }
guarddouble operator*(const int& a, const guarddouble& b) { return arith<guarddouble>('i', a, b); }
guarddouble operator/(const guarddouble& a, const guarddouble& b) { return arith<guarddouble>('/', a, b); }
int operator==(const guarddouble& a, const guarddouble& b) { return compare('=', a, b); }
int operator!=(const guarddouble& a, const guarddouble& b) { return compare('!', a, b); }
int operator<(const guarddouble& a, const guarddouble& b) { return compare('<', a, b); }
int operator>(const guarddouble& a, const guarddouble& b) { return compare('>', a, b); }

guardfloat operator+(const guardfloat& a, const guardfloat& b) { return arith<guardfloat>('+', a, b); }
guardfloat operator-(const guardfloat& a, const guardfloat& b) { return arith<guardfloat>('-', a, b); }
guardfloat operator*(const guardfloat& a, const guardfloat& b) { return arith<guardfloat>('*', a, b); }
int operator==(const guardfloat& a, const guardfloat& b) { return compare('=', a, b); }
int operator!=(const guardfloat& a, const guardfloat& b) { return compare('!', a, b); }
int operator<(const guardfloat& a, const guardfloat& b) { return compare('<', a, b); }

guardint operator+(const guardint& a, const guardint& b) { return arith<guardint>('+', a, b); }
guardint operator-(const guardint& a, const guardint& b) { return arith<guardint>('-', a, b); }
guardint operator*(const guardint& a, const guardint& b) { return arith<guardint>('*', a, b); }
int operator==(const guardint& a, const guardint& b) { return compare('=', a, b); }
int operator!=(const guardint& a, const guardint& b) { return compare('!', a, b); }
int operator<(const guardint& a, const guardint& b) { return compare('<', a, b); }
