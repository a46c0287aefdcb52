// SPDX-License-Identifier: MIT
// Inside Quillon.dll, whose code is built with QUILLON_GUARD_OUT_OF_LINE: the guard operations
// that <quillon/GuardScalars> then only declares, each one forwarded to the member that Quillon.dll
// imports from "Guard Scalars.dll" by its MSVC name, so that the module runs beside any build of
// that library (ours, or one made by the platform's compiler).
#include <quillon/GuardScalars>

#include "guard_bridge.h"

namespace {

template <class To, class From>
To convert(const From& value) noexcept
{
    To result{};
    quillon_guard_import_convert(quillon::seam::kind<From>, quillon::seam::kind<To>, &value, &result);
    return result;
}
template <class G, class A, class B>
G arith(char op, const A& a, const B& b) noexcept
{
    G result;
    quillon_guard_import_arith(quillon::seam::kind<G>, op, &a, &b, &result);
    return result;
}
template <class G>
int compare(char op, const G& a, const G& b) noexcept
{
    return quillon_guard_import_compare(quillon::seam::kind<G>, op, &a, &b);
}

} // namespace

guarddouble::guarddouble(guardint& source) noexcept : value_(convert<guarddouble>(source).value()) {}
guardfloat::guardfloat(guardint& source) noexcept : value_(convert<guardfloat>(source).value()) {}
guardint::guardint(const guarddouble& source) noexcept : value_(convert<guardint>(source).value()) {}
guardint::guardint(const guardfloat& source) noexcept : value_(convert<guardint>(source).value()) {}
int guarddouble::nint() const noexcept { return convert<int>(*this); }
int guardfloat::nint() const noexcept { return convert<int>(*this); }

guarddouble operator+(const guarddouble& a, const guarddouble& b) noexcept { return arith<guarddouble>('+', a, b); }
guarddouble operator-(const guarddouble& a, const guarddouble& b) noexcept { return arith<guarddouble>('-', a, b); }
guarddouble operator-(const guarddouble& a, const double& b) noexcept { return arith<guarddouble>('d', a, b); }
guarddouble operator*(const guarddouble& a, const guarddouble& b) noexcept { return arith<guarddouble>('*', a, b); }
guarddouble operator*(const int& a, const guarddouble& b) noexcept { return arith<guarddouble>('i', a, b); }
guarddouble operator/(const guarddouble& a, const guarddouble& b) noexcept { return arith<guarddouble>('/', a, b); }
int operator==(const guarddouble& a, const guarddouble& b) noexcept { return compare('=', a, b); }
int operator!=(const guarddouble& a, const guarddouble& b) noexcept { return compare('!', a, b); }
int operator<(const guarddouble& a, const guarddouble& b) noexcept { return compare('<', a, b); }
int operator>(const guarddouble& a, const guarddouble& b) noexcept { return compare('>', a, b); }

guardfloat operator+(const guardfloat& a, const guardfloat& b) noexcept { return arith<guardfloat>('+', a, b); }
guardfloat operator-(const guardfloat& a, const guardfloat& b) noexcept { return arith<guardfloat>('-', a, b); }
guardfloat operator*(const guardfloat& a, const guardfloat& b) noexcept { return arith<guardfloat>('*', a, b); }
int operator==(const guardfloat& a, const guardfloat& b) noexcept { return compare('=', a, b); }
int operator!=(const guardfloat& a, const guardfloat& b) noexcept { return compare('!', a, b); }
int operator<(const guardfloat& a, const guardfloat& b) noexcept { return compare('<', a, b); }

guardint operator+(const guardint& a, const guardint& b) noexcept { return arith<guardint>('+', a, b); }
guardint operator-(const guardint& a, const guardint& b) noexcept { return arith<guardint>('-', a, b); }
guardint operator*(const guardint& a, const guardint& b) noexcept { return arith<guardint>('*', a, b); }
int operator==(const guardint& a, const guardint& b) noexcept { return compare('=', a, b); }
int operator!=(const guardint& a, const guardint& b) noexcept { return compare('!', a, b); }
int operator<(const guardint& a, const guardint& b) noexcept { return compare('<', a, b); }
