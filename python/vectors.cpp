// SPDX-License-Identifier: MIT
// quillon.vec: ThreeDVector<T>'s operations over numpy arrays of vectors for the six element types,
// through the C interface's vector calls, so that Python, C and C++ share one loop and one set of
// bits. A (3,) vector pairs with every row of an (n, 3) array.
#include "module_common.h"

#include <quillon/quillon.h>

#include <climits>
#include <cstddef>
#include <cstdint>
#include <string>
#include <type_traits>
#include <vector>

namespace quillon_python {
namespace {

// The C interface's vector calls of one element type V (the raw stored type for the guard types).
template <class V>
struct VecCalls {
    const char* kind;
    int (*add)(const V*, const V*, V*, std::size_t);
    int (*sub)(const V*, const V*, V*, std::size_t);
    int (*mul)(const V*, const V*, V*, std::size_t);
    int (*scaleF)(const V*, float, V*, std::size_t);
    int (*scaleD)(const V*, double, V*, std::size_t);
    int (*scaleGf)(const V*, float, V*, std::size_t);
    int (*scaleGd)(const V*, double, V*, std::size_t);
    int (*cross)(const V*, const V*, V*, std::size_t);
    int (*dot)(const V*, const V*, V*, std::size_t);
    int (*length)(const V*, V*, std::size_t);
    int (*unit)(const V*, double*, std::size_t);
    int (*unitGd)(const V*, double*, std::size_t);
    int (*normalise)(const V*, V*, std::size_t);
    int (*project)(const V*, V, quillon_screen_point, quillon_screen_point*, std::size_t);
    void (*fromPoints)(const V*, const V*, V*);
    void (*addToAxis)(V*, char, V);
    int (*equal)(const V*, const V*);
    int (*notEqual)(const V*, const V*);
};

#define QUILLON_PY_VEC_CALLS(P, V, KIND)                                                                  \
    VecCalls<V>{KIND, quillon_##P##_vec_add, quillon_##P##_vec_sub, quillon_##P##_vec_mul,              \
                quillon_##P##_vec_scale_f, quillon_##P##_vec_scale_d, quillon_##P##_vec_scale_gf,       \
                quillon_##P##_vec_scale_gd, quillon_##P##_vec_cross, quillon_##P##_vec_dot,             \
                quillon_##P##_vec_length, quillon_##P##_vec_unit, quillon_##P##_vec_unit_gd,           \
                quillon_##P##_vec_normalise, quillon_##P##_vec_project, quillon_##P##_vec_from_points, \
                quillon_##P##_vec_add_to_axis, quillon_##P##_vec_equal, quillon_##P##_vec_not_equal}

// The element type named by dtype, or by the first operand's dtype when dtype is None; f is called
// with the calls of that type.
template <class F>
py::object withKind(const std::string& fn, const py::array& first, const py::object& dtype, F f)
{
    const std::string kind = dtype.is_none() ? dtypeOf(first) : dtypeName(dtype);
    if (kind == "int32") return f(QUILLON_PY_VEC_CALLS(i, std::int32_t, "int32"));
    if (kind == "float32") return f(QUILLON_PY_VEC_CALLS(f, float, "float32"));
    if (kind == "float64") return f(QUILLON_PY_VEC_CALLS(d, double, "float64"));
    if (kind == "guardint") return f(QUILLON_PY_VEC_CALLS(gi, std::int32_t, "guardint"));
    if (kind == "guardfloat") return f(QUILLON_PY_VEC_CALLS(gf, float, "guardfloat"));
    if (kind == "guarddouble") return f(QUILLON_PY_VEC_CALLS(gd, double, "guarddouble"));
    throw py::type_error(fn + ": vectors of dtype " + kind +
                         " are not supported; use int32, float32 or float64, or dtype='guardint', "
                         "'guardfloat' or 'guarddouble' over int32, float32 or float64 raw values");
}

// An operand: n vectors as a C-contiguous (n, 3) array; single when it was given as one (3,) vector.
template <class V>
struct Operand {
    py::array_t<V, py::array::c_style> rows;
    py::ssize_t n;
    bool single;
};

template <class V>
Operand<V> operandOf(const py::array& a, const std::string& fn, const char* kind)
{
    if (!holds<V>(a))
        throw py::type_error(fn + ": " + kind + " vectors must be an array of " +
                             py::str(py::dtype::of<V>().attr("name")).cast<std::string>() + ", not " + dtypeOf(a));
    const bool single = a.ndim() == 1 && a.shape(0) == 3;
    if (!single && (a.ndim() != 2 || a.shape(1) != 3))
        throw py::value_error(fn + ": expected an (n, 3) array of vectors or one (3,) vector, got shape " +
                              shapeText(a));
    auto rows = contiguous<V>(single ? py::array(a.attr("reshape")(1, 3)) : a, fn);
    return {rows, rows.shape(0), single};
}

// The one vector of an operand, repeated n times.
template <class V>
py::array_t<V, py::array::c_style> repeated(const py::array_t<V, py::array::c_style>& one, py::ssize_t n)
{
    py::array_t<V, py::array::c_style> out({n, py::ssize_t{3}});
    const V* from = one.data();
    V* to = out.mutable_data();
    for (py::ssize_t k = 0; k < 3 * n; ++k) to[k] = from[k % 3];
    return out;
}

// Two operands of one length: a single vector (a (3,) or a (1, 3) array) is paired with every row
// of the other; otherwise both must have the same number of rows.
template <class V>
void pairUp(Operand<V>& a, Operand<V>& b, const std::string& fn)
{
    if (a.n == b.n) return;
    if (a.n == 1) {
        a.rows = repeated(a.rows, b.n);
        a.n = b.n;
    } else if (b.n == 1) {
        b.rows = repeated(b.rows, a.n);
        b.n = a.n;
    } else {
        throw py::value_error(fn + ": cannot pair " + std::to_string(a.n) + " vectors with " +
                              std::to_string(b.n) + "; give as many of each, or one (3,) vector");
    }
}

// A result of `width` values per vector: (3,) or (n, 3) for vectors, () or (n,) for one value,
// (2,) or (n, 2) for screen points.
template <class Out>
py::array_t<Out, py::array::c_style> resultOf(py::ssize_t n, bool single, py::ssize_t width)
{
    std::vector<py::ssize_t> shape;
    if (!single) shape.push_back(n);
    if (width > 1) shape.push_back(width);
    return py::array_t<Out, py::array::c_style>(shape);
}

void check(int status, const std::string& fn)
{
    if (status != QUILLON_OK) throw py::value_error(fn + ": the vectors could not be processed");
}

// A scalar argument as the raw value of V: an integer within int32 for int32 and guardint (a float
// is refused rather than cut), any real number rounded as numpy rounds it for float32.
template <class V>
V rawScalar(const py::handle& value, const std::string& fn, const char* what)
{
    if constexpr (std::is_integral_v<V>) {
        py::object index = py::reinterpret_steal<py::object>(PyNumber_Index(value.ptr()));
        if (!index) {
            PyErr_Clear();
            throw py::type_error(fn + ": " + what + " must be an integer for int32 and guardint vectors");
        }
        int overflow = 0;
        const long long v = PyLong_AsLongLongAndOverflow(index.ptr(), &overflow);
        if (overflow || v < INT32_MIN || v > INT32_MAX)
            throw py::value_error(fn + ": " + what + " must lie within int32");
        return static_cast<V>(v);
    } else {
        const double v = PyFloat_AsDouble(value.ptr());
        if (v == -1.0 && PyErr_Occurred()) {
            PyErr_Clear();
            throw py::type_error(fn + ": " + what + " must be a real number");
        }
        return static_cast<V>(v);
    }
}

char axisOf(const std::string& axis, const std::string& fn)
{
    if (axis.size() != 1) throw py::value_error(fn + ": the axis is one letter, 'x', 'y' or 'z', not '" + axis + "'");
    return axis[0];
}

template <class X> struct ElementOfCalls;
template <class V> struct ElementOfCalls<VecCalls<V>> { using type = V; };
template <class X> using RawOf = typename ElementOfCalls<std::decay_t<X>>::type;

// Two operands of one element type, paired up; f(calls, a, b, n, single) makes the result.
template <class F>
py::object twoOperands(const char* name, const py::object& a, const py::object& b, const py::object& dtype, F f)
{
    const std::string fn = std::string("vec.") + name;
    const py::array x = asArray(a, fn), y = asArray(b, fn);
    return withKind(fn, x, dtype, [&](const auto& calls) -> py::object {
        using V = RawOf<decltype(calls)>;
        Operand<V> p = operandOf<V>(x, fn, calls.kind), q = operandOf<V>(y, fn, calls.kind);
        pairUp(p, q, fn);
        return f(calls, fn, p.rows.data(), q.rows.data(), p.n, p.single && q.single);
    });
}

// One operand; f(calls, fn, a, n, single) makes the result.
template <class F>
py::object oneOperand(const char* name, const py::object& a, const py::object& dtype, F f)
{
    const std::string fn = std::string("vec.") + name;
    const py::array x = asArray(a, fn);
    return withKind(fn, x, dtype, [&](const auto& calls) -> py::object {
        using V = RawOf<decltype(calls)>;
        const Operand<V> p = operandOf<V>(x, fn, calls.kind);
        return f(calls, fn, p.rows.data(), p.n, p.single);
    });
}

// An n-vector C call writing `width` values of type Out per vector.
template <class Out, class Call>
py::object nCall(const std::string& fn, py::ssize_t n, bool single, py::ssize_t width, Call call)
{
    auto out = resultOf<Out>(n, single, width);
    Out* to = out.mutable_data();
    check(released(n, [&] { return call(to, static_cast<std::size_t>(n)); }), fn);
    return out;
}

// The element-type result of a pairwise n-vector call, chosen by pick(calls).
template <class Pick>
py::object pairwise(const char* name, const py::object& a, const py::object& b, const py::object& dtype,
                    py::ssize_t width, Pick pick)
{
    return twoOperands(name, a, b, dtype, [&](const auto& calls, const std::string& fn, const auto* x,
                                              const auto* y, py::ssize_t n, bool single) {
        using V = RawOf<decltype(calls)>;
        const auto call = pick(calls);
        return nCall<V>(fn, n, single, width, [&](V* to, std::size_t count) { return call(x, y, to, count); });
    });
}

// The scale factor's type: which of the class's four scalar products runs.
enum class ScalarKind { Float, Double, Guardfloat, Guarddouble };

ScalarKind scalarKindOf(const py::object& scalar)
{
    const std::string kind = dtypeName(scalar);
    if (kind == "float32") return ScalarKind::Float;
    if (kind == "float64") return ScalarKind::Double;
    if (kind == "guardfloat") return ScalarKind::Guardfloat;
    if (kind == "guarddouble") return ScalarKind::Guarddouble;
    throw py::type_error("vec.scale: scalar must be float32, float64, 'guardfloat' or 'guarddouble', not " + kind);
}

py::object scale(const py::object& a, const py::object& s, const py::object& dtype, const py::object& scalar)
{
    const ScalarKind sk = scalarKindOf(scalar);
    return oneOperand("scale", a, dtype, [&](const auto& calls, const std::string& fn, const auto* x, py::ssize_t n,
                                              bool single) {
        using V = RawOf<decltype(calls)>;
        const double factor = rawScalar<double>(s, fn, "the scale factor");
        return nCall<V>(fn, n, single, 3, [&](V* to, std::size_t count) {
            switch (sk) {
            case ScalarKind::Float: return calls.scaleF(x, static_cast<float>(factor), to, count);
            case ScalarKind::Double: return calls.scaleD(x, factor, to, count);
            case ScalarKind::Guardfloat: return calls.scaleGf(x, static_cast<float>(factor), to, count);
            case ScalarKind::Guarddouble: break;
            }
            return calls.scaleGd(x, factor, to, count);
        });
    });
}

py::object project(const py::object& a, const py::object& depth, std::pair<std::int32_t, std::int32_t> origin,
                   const py::object& dtype)
{
    return oneOperand("project", a, dtype, [&](const auto& calls, const std::string& fn, const auto* x, py::ssize_t n,
                                                bool single) {
        using V = RawOf<decltype(calls)>;
        const V d = rawScalar<V>(depth, fn, "depth");
        const quillon_screen_point at{origin.first, origin.second};
        static_assert(sizeof(quillon_screen_point) == 2 * sizeof(std::int32_t));
        return nCall<std::int32_t>(fn, n, single, 2, [&](std::int32_t* to, std::size_t count) {
            return calls.project(x, d, at, reinterpret_cast<quillon_screen_point*>(to), count);
        });
    });
}

py::object fromPoints(const py::object& a, const py::object& b, const py::object& dtype)
{
    return twoOperands("from_points", a, b, dtype, [](const auto& calls, const std::string& fn, const auto* x,
                                                       const auto* y, py::ssize_t n, bool single) {
        using V = RawOf<decltype(calls)>;
        return nCall<V>(fn, n, single, 3, [&](V* to, std::size_t count) {
            for (std::size_t k = 0; k < count; ++k) calls.fromPoints(x + 3 * k, y + 3 * k, to + 3 * k);
            return int{QUILLON_OK};
        });
    });
}

py::object addToAxis(const py::object& a, const std::string& axis, const py::object& amount, const py::object& dtype)
{
    return oneOperand("add_to_axis", a, dtype, [&](const auto& calls, const std::string& fn, const auto* x,
                                                    py::ssize_t n, bool single) {
        using V = RawOf<decltype(calls)>;
        const char letter = axisOf(axis, fn);
        const V by = rawScalar<V>(amount, fn, "amount");
        return nCall<V>(fn, n, single, 3, [&](V* to, std::size_t count) {
            for (std::size_t k = 0; k < 3 * count; ++k) to[k] = x[k];
            for (std::size_t k = 0; k < count; ++k) calls.addToAxis(to + 3 * k, letter, by);
            return int{QUILLON_OK};
        });
    });
}

template <class Pick>
py::object comparison(const char* name, const py::object& a, const py::object& b, const py::object& dtype, Pick pick)
{
    return twoOperands(name, a, b, dtype, [&](const auto& calls, const std::string& fn, const auto* x,
                                              const auto* y, py::ssize_t n, bool single) {
        const auto compare = pick(calls);
        return nCall<bool>(fn, n, single, 1, [&](bool* to, std::size_t count) {
            for (std::size_t k = 0; k < count; ++k) to[k] = compare(x + 3 * k, y + 3 * k) != 0;
            return int{QUILLON_OK};
        });
    });
}

// Each one-operand call: the element-type result of normalise and length, the double one of unit.
template <class Out, class Pick>
py::object single(const char* name, const py::object& a, const py::object& dtype, py::ssize_t width, Pick pick)
{
    return oneOperand(name, a, dtype, [&](const auto& calls, const std::string& fn, const auto* x, py::ssize_t n,
                                          bool one) {
        using V = RawOf<decltype(calls)>;
        using R = std::conditional_t<std::is_void_v<Out>, V, Out>;
        const auto call = pick(calls);
        return nCall<R>(fn, n, one, width, [&](R* to, std::size_t count) { return call(x, to, count); });
    });
}

const char* const kTypes =
    "The element type is the first operand's dtype (int32, float32 or float64), or dtype='guardint', "
    "'guardfloat' or 'guarddouble' over int32, float32 or float64 raw stored values; every operand must "
    "have that dtype exactly (TypeError otherwise). Operands are (n, 3) arrays or one (3,) vector, "
    "which pairs with every row of the other operand (ValueError for any other shape).";
const char* const kRules =
    "int wraps around, float is formed in double and rounded once to float32, the guard types saturate "
    "at their limits. Without the interpreter lock from 4096 vectors up. Returns a new array.";

std::string doc(const std::string& what, const std::string& shape)
{
    return what + "\n\n" + kTypes + "\n\n" + shape + " " + kRules;
}

} // namespace

void addVectors(py::module_& m)
{
    py::module_ v = m.def_submodule(
        "vec", "ThreeDVector's operations over numpy arrays of vectors, for the six element types, with "
               "the C++ members' bits");
    using py::arg;
    const py::object none = py::none();
    v.def("add", [](const py::object& a, const py::object& b, const py::object& dtype) {
            return pairwise("add", a, b, dtype, 3, [](const auto& c) { return c.add; });
        }, arg("a"), arg("b"), arg("dtype") = none,
        doc("a + b, vector by vector.", "Returns (n, 3), or (3,) for two (3,) vectors, of the element type.").c_str());
    v.def("sub", [](const py::object& a, const py::object& b, const py::object& dtype) {
            return pairwise("sub", a, b, dtype, 3, [](const auto& c) { return c.sub; });
        }, arg("a"), arg("b"), arg("dtype") = none,
        doc("a - b, vector by vector.", "Returns (n, 3), or (3,) for two (3,) vectors, of the element type.").c_str());
    v.def("mul", [](const py::object& a, const py::object& b, const py::object& dtype) {
            return pairwise("mul", a, b, dtype, 3, [](const auto& c) { return c.mul; });
        }, arg("a"), arg("b"), arg("dtype") = none,
        doc("The component-wise product of a and b (each product formed in double, then stored as the "
            "element type: int cut toward zero, guardint to nearest).",
            "Returns (n, 3), or (3,) for two (3,) vectors, of the element type.").c_str());
    v.def("cross", [](const py::object& a, const py::object& b, const py::object& dtype) {
            return pairwise("cross", a, b, dtype, 3, [](const auto& c) { return c.cross; });
        }, arg("a"), arg("b"), arg("dtype") = none,
        doc("a x b, right-handed, a on the left: cross(x, y) is z, cross(y, x) is -z.",
            "Returns (n, 3), or (3,) for two (3,) vectors, of the element type.").c_str());
    v.def("dot", [](const py::object& a, const py::object& b, const py::object& dtype) {
            return pairwise("dot", a, b, dtype, 1, [](const auto& c) { return c.dot; });
        }, arg("a"), arg("b"), arg("dtype") = none,
        doc("a . b, one value per vector.", "Returns (n,), or a 0-d array for two (3,) vectors, of the element type.").c_str());
    v.def("scale", &scale, arg("a"), arg("s"), arg("dtype") = none, arg("scalar") = "float64",
        doc("a times the number s, by the class's product with a scalar of type `scalar`: float32 or "
            "'guardfloat' (s first rounded to float32, as numpy rounds), float64 or 'guarddouble' (s as "
            "it is; a guard scalar enters through its class's conversion, so beyond the limit it is the "
            "limit). The product comes back to an int element cut toward zero for a plain scalar and to "
            "nearest (nint) for a guard scalar.",
            "Returns (n, 3), or (3,) for a (3,) vector, of the element type.").c_str());
    v.def("length", [](const py::object& a, const py::object& dtype) {
            return single<void>("length", a, dtype, 1, [](const auto& c) { return c.length; });
        }, arg("a"), arg("dtype") = none,
        doc("The length of each vector, stored as the element type (cut down for int, to nearest for guardint).",
            "Returns (n,), or a 0-d array for a (3,) vector, of the element type.").c_str());
    v.def("unit", [](const py::object& a, const py::object& dtype) {
            return single<double>("unit", a, dtype, 3, [](const auto& c) { return c.unit; });
        }, arg("a"), arg("dtype") = none,
        doc("Each vector divided by its length, as a float64 vector; a zero length gives the zero vector.",
            "Returns float64 (n, 3), or (3,) for a (3,) vector.").c_str());
    v.def("unit_gd", [](const py::object& a, const py::object& dtype) {
            return single<double>("unit_gd", a, dtype, 3, [](const auto& c) { return c.unitGd; });
        }, arg("a"), arg("dtype") = none,
        doc("unit with guarddouble's division: the raw stored guarddouble values.",
            "Returns float64 (n, 3), or (3,) for a (3,) vector.").c_str());
    v.def("normalise", [](const py::object& a, const py::object& dtype) {
            return single<void>("normalise", a, dtype, 3, [](const auto& c) { return c.normalise; });
        }, arg("a"), arg("dtype") = none,
        doc("Each vector divided by its length in the element type's own arithmetic (an int (3, 4, 0) "
            "becomes (0, 0, 0)); a vector under 1 long is left as it is.",
            "Returns (n, 3), or (3,) for a (3,) vector, of the element type.").c_str());
    v.def("project", &project, arg("points"), arg("depth"), arg("origin") = std::pair<std::int32_t, std::int32_t>{0, 0},
          arg("dtype") = none,
          doc("Perspective projection onto the screen plane at `depth` (the viewer at the origin looking "
              "along +y), plus `origin` (x, y); halves go downward. A point nearer than the plane, a zero "
              "depth or a zero y gives (0, 0). depth is the element type's raw value: an integer within "
              "int32 for int32 and guardint, else a number rounded as numpy rounds it.",
              "Returns int32 (n, 2) screen points (x, y), or (2,) for a (3,) vector.").c_str());
    v.def("from_points", &fromPoints, arg("a"), arg("b"), arg("dtype") = none,
          doc("The vector from point a to point b: b - a.",
              "Returns (n, 3), or (3,) for two (3,) vectors, of the element type.").c_str());
    v.def("add_to_axis", &addToAxis, arg("a"), arg("axis"), arg("amount"), arg("dtype") = none,
          doc("A copy of a with amount added to component 'x', 'y' or 'z' (either case; any other one "
              "letter does nothing) of every vector. amount is a raw value as for project's depth.",
              "Returns (n, 3), or (3,) for a (3,) vector, of the element type.").c_str());
    v.def("equal", [](const py::object& a, const py::object& b, const py::object& dtype) {
            return comparison("equal", a, b, dtype, [](const auto& c) { return c.equal; });
        }, arg("a"), arg("b"), arg("dtype") = none,
        doc("Whether every component is equal (+0.0 equals -0.0, NaN equals nothing).",
            "Returns bool (n,), or a 0-d array for two (3,) vectors.").c_str());
    v.def("not_equal", [](const py::object& a, const py::object& b, const py::object& dtype) {
            return comparison("not_equal", a, b, dtype, [](const auto& c) { return c.notEqual; });
        }, arg("a"), arg("b"), arg("dtype") = none,
        doc("Whether some component differs (a NaN always differs).",
            "Returns bool (n,), or a 0-d array for two (3,) vectors.").c_str());
}

} // namespace quillon_python
