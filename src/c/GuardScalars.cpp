// SPDX-License-Identifier: MIT
// The guard scalar operations on raw stored values, as C functions: each raw value enters its
// class through the class's own conversion from its plain type (see Interface.h), the C++ operator
// runs, and the stored value of the result is returned.
#include "Interface.h"

using quillon::c::Raw;

namespace {

guarddouble gd(double v) noexcept { return Raw<guarddouble>::enter(v); }
guardfloat gf(float v) noexcept { return Raw<guardfloat>::enter(v); }
guardint gi(std::int32_t v) noexcept { return Raw<guardint>::enter(v); }

} // namespace

extern "C" {

double quillon_gd_from_int(int32_t i) { return guarddouble(static_cast<int>(i)).value(); }
double quillon_gd_from_double(double x) { return guarddouble(x).value(); }
double quillon_gd_from_gi(int32_t source)
{
    guardint g = gi(source);
    return guarddouble(g).value();
}
double quillon_gd_add(double a, double b) { return (gd(a) + gd(b)).value(); }
double quillon_gd_sub(double a, double b) { return (gd(a) - gd(b)).value(); }
double quillon_gd_sub_double(double a, double b) { return (gd(a) - b).value(); }
double quillon_gd_mul(double a, double b) { return (gd(a) * gd(b)).value(); }
double quillon_gd_mul_int(int32_t a, double b) { return (static_cast<int>(a) * gd(b)).value(); }
double quillon_gd_div(double a, double b) { return (gd(a) / gd(b)).value(); }
void quillon_gd_add_assign(double* target, double b)
{
    if (!target) return;
    guarddouble g = gd(*target);
    g += gd(b);
    *target = g.value();
}
void quillon_gd_div_assign(double* target, double b)
{
    if (!target) return;
    guarddouble g = gd(*target);
    g /= gd(b);
    *target = g.value();
}
int32_t quillon_gd_nint(double a) { return gd(a).nint(); }
double quillon_gd_round_to_whole(double a)
{
    guarddouble g = gd(a);
    g.RoundToWhole();
    return g.value();
}
int quillon_gd_eq(double a, double b) { return gd(a) == gd(b); }
int quillon_gd_ne(double a, double b) { return gd(a) != gd(b); }
int quillon_gd_lt(double a, double b) { return gd(a) < gd(b); }
int quillon_gd_gt(double a, double b) { return gd(a) > gd(b); }

float quillon_gf_from_int(int32_t i) { return guardfloat(static_cast<int>(i)).value(); }
float quillon_gf_from_double(double x) { return guardfloat(x).value(); }
float quillon_gf_from_gi(int32_t source)
{
    guardint g = gi(source);
    return guardfloat(g).value();
}
float quillon_gf_add(float a, float b) { return (gf(a) + gf(b)).value(); }
float quillon_gf_sub(float a, float b) { return (gf(a) - gf(b)).value(); }
float quillon_gf_mul(float a, float b) { return (gf(a) * gf(b)).value(); }
// The class has no free operator/; a / b is /= on a copy of a, as for the other classes.
float quillon_gf_div(float a, float b)
{
    guardfloat g = gf(a);
    g /= gf(b);
    return g.value();
}
void quillon_gf_add_assign(float* target, float b)
{
    if (!target) return;
    guardfloat g = gf(*target);
    g += gf(b);
    *target = g.value();
}
void quillon_gf_div_assign(float* target, float b)
{
    if (!target) return;
    guardfloat g = gf(*target);
    g /= gf(b);
    *target = g.value();
}
int32_t quillon_gf_nint(float a) { return gf(a).nint(); }
int quillon_gf_eq(float a, float b) { return gf(a) == gf(b); }
int quillon_gf_ne(float a, float b) { return gf(a) != gf(b); }
int quillon_gf_lt(float a, float b) { return gf(a) < gf(b); }

int32_t quillon_gi_from_int(int32_t i) { return guardint(static_cast<int>(i)).value(); }
int32_t quillon_gi_from_double(double x) { return guardint(x).value(); }
int32_t quillon_gi_from_float(float x) { return guardint(x).value(); }
int32_t quillon_gi_from_gd(double source) { return guardint(gd(source)).value(); }
int32_t quillon_gi_from_gf(float source) { return guardint(gf(source)).value(); }
double quillon_gi_to_double(int32_t a) { return static_cast<double>(gi(a)); }
float quillon_gi_to_float(int32_t a) { return static_cast<float>(gi(a)); }
int32_t quillon_gi_add(int32_t a, int32_t b) { return (gi(a) + gi(b)).value(); }
int32_t quillon_gi_sub(int32_t a, int32_t b) { return (gi(a) - gi(b)).value(); }
int32_t quillon_gi_mul(int32_t a, int32_t b) { return (gi(a) * gi(b)).value(); }
// The class has no free operator/; a / b is /= on a copy of a.
int32_t quillon_gi_div(int32_t a, int32_t b)
{
    guardint g = gi(a);
    g /= gi(b);
    return g.value();
}
void quillon_gi_add_assign(int32_t* target, int32_t b)
{
    if (!target) return;
    guardint g = gi(*target);
    g += gi(b);
    *target = g.value();
}
void quillon_gi_div_assign(int32_t* target, int32_t b)
{
    if (!target) return;
    guardint g = gi(*target);
    g /= gi(b);
    *target = g.value();
}
int quillon_gi_eq(int32_t a, int32_t b) { return gi(a) == gi(b); }
int quillon_gi_ne(int32_t a, int32_t b) { return gi(a) != gi(b); }
int quillon_gi_lt(int32_t a, int32_t b) { return gi(a) < gi(b); }

} // extern "C"
