// SPDX-License-Identifier: MIT
// quillon.guard: the guard scalars' operators and conversions over whole numpy arrays of raw stored
// values, elementwise with numpy's broadcasting. Each element is one call of the C interface's
// guard functions, so each is the C++ operator's own result.
#include "module_common.h"

#include <quillon/quillon.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace quillon_python {
namespace {

// numpy's name of a raw type, for messages.
template <class V>
std::string rawName()
{
    return py::str(py::dtype::of<V>().attr("name")).cast<std::string>();
}

template <class A>
py::array operandOf(const py::object& o, const std::string& fn, const std::string& what)
{
    py::array a = asArray(o, fn);
    if (!holds<A>(a))
        throw py::type_error(fn + ": " + what + " must be an array of " + rawName<A>() + ", not " + dtypeOf(a));
    return a;
}

std::vector<py::ssize_t> shapeOf(const py::array& a)
{
    return std::vector<py::ssize_t>(a.shape(), a.shape() + a.ndim());
}

// Applies f to every element; the result has a's shape. Out may differ from f's return type (the
// comparisons' int becomes bool).
template <class Out, class R, class A>
py::array unary(const py::object& a, R (*f)(A), const std::string& fn, const std::string& what)
{
    const auto x = contiguous<A>(operandOf<A>(a, fn, what), fn);
    py::array_t<Out, py::array::c_style> out(shapeOf(x));
    const A* from = x.data();
    Out* to = out.mutable_data();
    const py::ssize_t n = x.size();
    released(n, [&] {
        for (py::ssize_t k = 0; k < n; ++k) to[k] = static_cast<Out>(f(from[k]));
        return 0;
    });
    return out;
}

// Applies f to every pair of elements of a and b broadcast against each other, as numpy broadcasts.
template <class Out, class R, class A, class B>
py::array binary(const py::object& a, const py::object& b, R (*f)(A, B), const std::string& fn,
                 const std::string& whatA, const std::string& whatB)
{
    const py::array x0 = operandOf<A>(a, fn, whatA), y0 = operandOf<B>(b, fn, whatB);
    py::tuple both;
    try {
        both = py::module_::import("numpy").attr("broadcast_arrays")(x0, y0);
    } catch (const py::error_already_set& e) {
        if (!e.matches(PyExc_ValueError)) throw;
        throw py::value_error(fn + ": shapes " + shapeText(x0) + " and " + shapeText(y0) +
                              " do not broadcast together");
    }
    // The broadcast views repeat elements with stride 0; the copies made here are plain arrays.
    const auto x = contiguous<A>(both[0], fn);
    const auto y = contiguous<B>(both[1], fn);
    py::array_t<Out, py::array::c_style> out(shapeOf(x));
    const A* from = x.data();
    const B* with = y.data();
    Out* to = out.mutable_data();
    const py::ssize_t n = x.size();
    released(n, [&] {
        for (py::ssize_t k = 0; k < n; ++k) to[k] = static_cast<Out>(f(from[k], with[k]));
        return 0;
    });
    return out;
}

enum class Guard { Double, Float, Int };

Guard guardOf(const py::object& dtype, const std::string& fn)
{
    const std::string kind = dtypeName(dtype);
    if (kind == "guarddouble") return Guard::Double;
    if (kind == "guardfloat") return Guard::Float;
    if (kind == "guardint") return Guard::Int;
    throw py::type_error(fn + ": dtype must be 'guarddouble', 'guardfloat' or 'guardint', not " + kind);
}

const char* const kRaw = "guarddouble values (raw float64)";
const char* const kRawF = "guardfloat values (raw float32)";
const char* const kRawI = "guardint values (raw int32)";

// One operator of the three classes over raw values.
template <class FD, class FF, class FI>
py::array operatorOf(const char* name, const py::object& a, const py::object& b, const py::object& dtype, FD d,
                     FF f, FI i)
{
    const std::string fn = std::string("guard.") + name;
    switch (guardOf(dtype, fn)) {
    case Guard::Double: return binary<double>(a, b, d, fn, kRaw, kRaw);
    case Guard::Float: return binary<float>(a, b, f, fn, kRawF, kRawF);
    case Guard::Int: break;
    }
    return binary<std::int32_t>(a, b, i, fn, kRawI, kRawI);
}

template <class FD, class FF, class FI>
py::array comparisonOf(const char* name, const py::object& a, const py::object& b, const py::object& dtype, FD d,
                       FF f, FI i)
{
    const std::string fn = std::string("guard.") + name;
    switch (guardOf(dtype, fn)) {
    case Guard::Double: return binary<bool>(a, b, d, fn, kRaw, kRaw);
    case Guard::Float: return binary<bool>(a, b, f, fn, kRawF, kRawF);
    case Guard::Int: break;
    }
    return binary<bool>(a, b, i, fn, kRawI, kRawI);
}

[[noreturn]] void notFor(const std::string& fn, const py::object& dtype, const std::string& which)
{
    throw py::type_error(fn + ": only " + which + " has this operation, not " + dtypeName(dtype));
}

const char* const kBroadcast =
    "Operands are numpy arrays (or numpy scalars) of exactly the raw dtype, broadcast against each "
    "other as numpy broadcasts (ValueError when they do not; TypeError for any other dtype). Returns a "
    "new array of the broadcast shape. Without the interpreter lock from 4096 elements up.";
const char* const kElementwise =
    "The operand is a numpy array (or numpy scalar) of exactly the raw dtype (TypeError otherwise). "
    "Returns a new array of its shape. Without the interpreter lock from 4096 elements up.";

std::string doc(const std::string& what, bool two)
{
    return what + "\n\n" + (two ? kBroadcast : kElementwise);
}

} // namespace

void addGuardArrays(py::module_& m)
{
    py::module_ g = m.def_submodule(
        "guard", "The guard scalars' operators and conversions over numpy arrays of raw stored values: "
                 "guarddouble as float64, guardfloat as float32, guardint as int32");
    using py::arg;
    const char* const types =
        " dtype 'guarddouble' (float64 raw values, limits +-2**1022), 'guardfloat' (float32, +-2**126) "
        "or 'guardint' (int32, +-2147483647); the result has the same dtype.";

    g.def("add", [](const py::object& a, const py::object& b, const py::object& dtype) {
            return operatorOf("add", a, b, dtype, quillon_gd_add, quillon_gf_add, quillon_gi_add);
        }, arg("a"), arg("b"), arg("dtype") = "guarddouble",
        doc(std::string("a + b, saturating at the limits.") + types, true).c_str());
    g.def("sub", [](const py::object& a, const py::object& b, const py::object& dtype) {
            return operatorOf("sub", a, b, dtype, quillon_gd_sub, quillon_gf_sub, quillon_gi_sub);
        }, arg("a"), arg("b"), arg("dtype") = "guarddouble",
        doc(std::string("a - b (a plus the negated b), saturating at the limits.") + types, true).c_str());
    g.def("mul", [](const py::object& a, const py::object& b, const py::object& dtype) {
            return operatorOf("mul", a, b, dtype, quillon_gd_mul, quillon_gf_mul, quillon_gi_mul);
        }, arg("a"), arg("b"), arg("dtype") = "guarddouble",
        doc(std::string("a * b, formed in double (64-bit integer for guardint) and limited; a limit times "
                        "any non-zero value is the limit with the product's sign, anything times zero is zero.") +
                types, true).c_str());
    g.def("div", [](const py::object& a, const py::object& b, const py::object& dtype) {
            return operatorOf("div", a, b, dtype, quillon_gd_div, quillon_gf_div, quillon_gi_div);
        }, arg("a"), arg("b"), arg("dtype") = "guarddouble",
        doc(std::string("a / b: x / 0 is the limit with x's sign, 0 / 0 is 0; guardint divides "
                        "toward zero.") + types, true).c_str());
    g.def("equal", [](const py::object& a, const py::object& b, const py::object& dtype) {
            return comparisonOf("equal", a, b, dtype, quillon_gd_eq, quillon_gf_eq, quillon_gi_eq);
        }, arg("a"), arg("b"), arg("dtype") = "guarddouble",
        doc(std::string("a == b by the stored values (IEEE for NaN), as bool.") + types, true).c_str());
    g.def("not_equal", [](const py::object& a, const py::object& b, const py::object& dtype) {
            return comparisonOf("not_equal", a, b, dtype, quillon_gd_ne, quillon_gf_ne, quillon_gi_ne);
        }, arg("a"), arg("b"), arg("dtype") = "guarddouble",
        doc(std::string("a != b by the stored values (a NaN differs from everything), as bool.") + types, true).c_str());
    g.def("less", [](const py::object& a, const py::object& b, const py::object& dtype) {
            return comparisonOf("less", a, b, dtype, quillon_gd_lt, quillon_gf_lt, quillon_gi_lt);
        }, arg("a"), arg("b"), arg("dtype") = "guarddouble",
        doc(std::string("a < b by the stored values, as bool.") + types, true).c_str());
    g.def("greater", [](const py::object& a, const py::object& b, const py::object& dtype) {
            if (guardOf(dtype, "guard.greater") != Guard::Double) notFor("guard.greater", dtype, "guarddouble");
            return binary<bool>(a, b, quillon_gd_gt, "guard.greater", kRaw, kRaw);
        }, arg("a"), arg("b"), arg("dtype") = "guarddouble",
        doc("a > b for guarddouble values (raw float64), as bool; the other classes have no >.", true).c_str());
    g.def("sub_float64", [](const py::object& a, const py::object& b) {
            return binary<double>(a, b, quillon_gd_sub_double, "guard.sub_float64", kRaw, "b (plain float64)");
        }, arg("a"), arg("b"),
        doc("guarddouble a minus the plain double b (b through guarddouble(double)); float64 result "
            "(raw guarddouble values).", true).c_str());
    g.def("mul_int", [](const py::object& a, const py::object& b) {
            return binary<double>(a, b, quillon_gd_mul_int, "guard.mul_int", "a (plain int32)", kRaw);
        }, arg("a"), arg("b"),
        doc("The plain int a times guarddouble b; float64 result (raw guarddouble values).", true).c_str());

    g.def("nint", [](const py::object& a, const py::object& dtype) {
            const std::string fn = "guard.nint";
            switch (guardOf(dtype, fn)) {
            case Guard::Double: return unary<std::int32_t>(a, quillon_gd_nint, fn, kRaw);
            case Guard::Float: return unary<std::int32_t>(a, quillon_gf_nint, fn, kRawF);
            case Guard::Int: break;
            }
            notFor(fn, dtype, "guarddouble or guardfloat");
        }, arg("a"), arg("dtype") = "guarddouble",
        doc("The nearest integer, ties away from zero (2.5 -> 3, -2.5 -> -3), limited to +-2147483647; "
            "NaN gives 0. dtype 'guarddouble' (float64 raw values) or 'guardfloat' (float32); int32 result.",
            false).c_str());
    g.def("round_to_whole", [](const py::object& a, const py::object& dtype) {
            if (guardOf(dtype, "guard.round_to_whole") != Guard::Double)
                notFor("guard.round_to_whole", dtype, "guarddouble");
            return unary<double>(a, quillon_gd_round_to_whole, "guard.round_to_whole", kRaw);
        }, arg("a"), arg("dtype") = "guarddouble",
        doc("The nearest whole number, ties downward (2.5 -> 2, -2.5 -> -3), for guarddouble values "
            "(raw float64); float64 result.", false).c_str());

    g.def("from_int", [](const py::object& a, const py::object& dtype) {
            const std::string fn = "guard.from_int";
            switch (guardOf(dtype, fn)) {
            case Guard::Double: return unary<double>(a, quillon_gd_from_int, fn, "a (int32)");
            case Guard::Float: return unary<float>(a, quillon_gf_from_int, fn, "a (int32)");
            case Guard::Int: break;
            }
            return unary<std::int32_t>(a, quillon_gi_from_int, fn, "a (int32)");
        }, arg("a"), arg("dtype") = "guarddouble",
        doc("The class's conversion from int, over an int32 array: the raw values of guarddouble "
            "(float64), guardfloat (float32, rounded to nearest) or guardint (int32, as it stands).", false).c_str());
    g.def("from_float64", [](const py::object& a, const py::object& dtype) {
            const std::string fn = "guard.from_float64";
            switch (guardOf(dtype, fn)) {
            case Guard::Double: return unary<double>(a, quillon_gd_from_double, fn, "a (float64)");
            case Guard::Float: return unary<float>(a, quillon_gf_from_double, fn, "a (float64)");
            case Guard::Int: break;
            }
            return unary<std::int32_t>(a, quillon_gi_from_double, fn, "a (float64)");
        }, arg("a"), arg("dtype") = "guarddouble",
        doc("The class's conversion from double, over a float64 array: beyond a limit gives the limit; "
            "guardfloat rounds to nearest float32; guardint goes to nearest with halves downward "
            "(2.5 -> 2). Result in the raw dtype.", false).c_str());
    g.def("from_float32", [](const py::object& a) {
            return unary<std::int32_t>(a, quillon_gi_from_float, "guard.from_float32", "a (float32)");
        }, arg("a"),
        doc("guardint(float) over a float32 array: int32 raw guardint values, limits at +-2**31 as the "
            "class's float conversion has them.", false).c_str());
    g.def("from_guardint", [](const py::object& a, const py::object& dtype) {
            const std::string fn = "guard.from_guardint";
            switch (guardOf(dtype, fn)) {
            case Guard::Double: return unary<double>(a, quillon_gd_from_gi, fn, kRawI);
            case Guard::Float: return unary<float>(a, quillon_gf_from_gi, fn, kRawI);
            case Guard::Int: break;
            }
            notFor(fn, dtype, "guarddouble or guardfloat");
        }, arg("a"), arg("dtype") = "guarddouble",
        doc("guarddouble(guardint) or guardfloat(guardint) over raw int32 guardint values; float64 or "
            "float32 result.", false).c_str());
    g.def("to_guardint", [](const py::object& a, const py::object& dtype) {
            const std::string fn = "guard.to_guardint";
            switch (guardOf(dtype, fn)) {
            case Guard::Double: return unary<std::int32_t>(a, quillon_gi_from_gd, fn, kRaw);
            case Guard::Float: return unary<std::int32_t>(a, quillon_gi_from_gf, fn, kRawF);
            case Guard::Int: break;
            }
            notFor(fn, dtype, "guarddouble or guardfloat");
        }, arg("a"), arg("dtype") = "guarddouble",
        doc("guardint(guarddouble) or guardint(guardfloat): raw values of the type dtype names (float64 "
            "or float32) to raw int32 guardint values.", false).c_str());
    g.def("to_float64", [](const py::object& a) {
            return unary<double>(a, quillon_gi_to_double, "guard.to_float64", kRawI);
        }, arg("a"), doc("double(guardint) over raw int32 guardint values; float64 result.", false).c_str());
    g.def("to_float32", [](const py::object& a) {
            return unary<float>(a, quillon_gi_to_float, "guard.to_float32", kRawI);
        }, arg("a"), doc("float(guardint) over raw int32 guardint values, rounded to nearest float32.", false).c_str());
}

} // namespace quillon_python
