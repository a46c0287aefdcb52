// SPDX-License-Identifier: MIT
// The Python module quillon: Transform over float32, float64 and guarddouble, point and region
// mapping over numpy arrays, and the guard scalars as small value types.
//
// The members run as the C++ library runs them (the header's members, compiled with the exactness
// flags). Arrays of points and rectangles go through the C interface's n-point and region calls,
// so Python, C and C++ share one loop. Bad input raises TypeError or ValueError; nothing crashes.
#include <pybind11/numpy.h>
#include <pybind11/operators.h>
#include <pybind11/pybind11.h>

#include <quillon/Transform>
#include <quillon/quillon.h>

#include "module_common.h"

#include <cstddef>
#include <cstdint>
#include <new>
#include <string>
#include <variant>

namespace py = pybind11;
using namespace quillon_python;

namespace {

// How each transform element type meets numpy and the C interface: its plain stored value enters
// through the class's own conversion and leaves as it is stored.
template <class T> struct Stored {
    using Raw = typename quillon::Stored<T>::Plain;
    static T enter(Raw v) { return T(v); }
    static Raw leave(const T& v) { return quillon::Stored<T>::of(v); }
};
template <class T> struct Kind;
template <> struct Kind<float> : Stored<float> {
    using C = quillon_f_transform;
    static constexpr const char* name = "float32";
};
template <> struct Kind<double> : Stored<double> {
    using C = quillon_d_transform;
    static constexpr const char* name = "float64";
};
template <> struct Kind<guarddouble> : Stored<guarddouble> {
    using C = quillon_gd_transform;
    static constexpr const char* name = "guarddouble";
};

// The n-point calls of the C interface, by transform type and point type.
template <class P> struct MapCalls;
template <> struct MapCalls<quillon_f_transform> {
    static constexpr auto i = quillon_f_map_i_n, f = quillon_f_map_f_n, d = quillon_f_map_d_n;
    static constexpr auto gi = quillon_f_map_gi_n, gf = quillon_f_map_gf_n, gd = quillon_f_map_gd_n;
    static constexpr auto rects = quillon_f_map_rects;
};
template <> struct MapCalls<quillon_d_transform> {
    static constexpr auto i = quillon_d_map_i_n, f = quillon_d_map_f_n, d = quillon_d_map_d_n;
    static constexpr auto gi = quillon_d_map_gi_n, gf = quillon_d_map_gf_n, gd = quillon_d_map_gd_n;
    static constexpr auto rects = quillon_d_map_rects;
};
template <> struct MapCalls<quillon_gd_transform> {
    static constexpr auto i = quillon_gd_map_i_n, f = quillon_gd_map_f_n, d = quillon_gd_map_d_n;
    static constexpr auto gi = quillon_gd_map_gi_n, gf = quillon_gd_map_gf_n, gd = quillon_gd_map_gd_n;
    static constexpr auto rects = quillon_gd_map_rects;
};

// The element type of a Transform<T> (or of a reference to one).
template <class X> struct ElementOfImpl;
template <class T> struct ElementOfImpl<Transform<T>> { using type = T; };
template <class X> using ElementOf = typename ElementOfImpl<std::decay_t<X>>::type;

using AnyTransform = std::variant<Transform<float>, Transform<double>, Transform<guarddouble>>;

AnyTransform transformOfKind(const std::string& kind)
{
    if (kind == "float32") return Transform<float>();
    if (kind == "float64") return Transform<double>();
    if (kind == "guarddouble") return Transform<guarddouble>();
    throw py::type_error("Transform: dtype must be float32, float64 or 'guarddouble', not " + kind);
}

class PyTransform {
public:
    explicit PyTransform(AnyTransform t) : t_(std::move(t)) {}

    static PyTransform make(const py::object& dtype, const py::object& elements)
    {
        PyTransform result(transformOfKind(dtypeName(dtype)));
        if (!elements.is_none()) result.setElements(elements);
        return result;
    }

    static PyTransform fromAngles(double ax, double ay, double az, const py::object& dtype)
    {
        PyTransform result(transformOfKind(dtypeName(dtype)));
        std::visit([&](auto& t) { t = std::decay_t<decltype(t)>(ax, ay, az); }, result.t_);
        return result;
    }

    std::string dtype() const
    {
        return std::visit([](const auto& t) { return std::string(Kind<ElementOf<decltype(t)>>::name); }, t_);
    }

    // The 16 elements as a new (4, 4) array: float32, or float64 (raw values for guarddouble).
    py::array elements() const
    {
        return std::visit([](const auto& t) -> py::array {
            using T = ElementOf<decltype(t)>;
            using K = Kind<T>;
            py::array_t<typename K::Raw> out({4, 4});
            T e[16]{};
            t.Function_2416(e);
            auto* to = out.mutable_data();
            for (int k = 0; k < 16; ++k) to[k] = K::leave(e[k]);
            return out;
        }, t_);
    }

    // 16 values (any shape with 16 elements), converted to the element type as numpy converts.
    void setElements(const py::object& values)
    {
        std::visit([&](auto& t) {
            using T = ElementOf<decltype(t)>;
            using K = Kind<T>;
            auto a = py::array_t<typename K::Raw, py::array::c_style | py::array::forcecast>::ensure(values);
            if (!a) throw py::type_error("Transform: the elements must be 16 numbers");
            if (a.size() != 16)
                throw py::value_error("Transform: expected 16 elements (shape (16,) or (4, 4)), got shape " + shapeText(a));
            T e[16];
            for (int k = 0; k < 16; ++k) e[k] = K::enter(a.data()[k]);
            t = std::decay_t<decltype(t)>(e);
        }, t_);
    }

    template <class F>
    PyTransform& inPlace(F f)
    {
        std::visit(f, t_);
        return *this;
    }

    template <class F>
    PyTransform derived(F f) const
    {
        return PyTransform(std::visit([&](const auto& t) -> AnyTransform { return f(t); }, t_));
    }

    py::object scalar(int which) const
    {
        return std::visit([&](const auto& t) -> py::object {
            using T = ElementOf<decltype(t)>;
            const T v = which == 0 ? t.Function_2414() : which == 1 ? t.Function_2418()
                                 : which == 2 ? t.Function_2419() : t.Function_2420();
            return py::float_(static_cast<double>(Kind<T>::leave(v)));
        }, t_);
    }

    // Factor or amount given as a Python number: rounded to float for float32, through
    // guarddouble(double) for guarddouble.
    template <class Step>
    PyTransform& withElement(double value, Step step)
    {
        std::visit([&](auto& t) {
            using T = ElementOf<decltype(t)>;
            step(t, Kind<T>::enter(static_cast<typename Kind<T>::Raw>(value)));
        }, t_);
        return *this;
    }

    PyTransform compose(const PyTransform& right) const
    {
        if (t_.index() != right.t_.index())
            throw py::type_error("Transform @ Transform: both must have one dtype, not " + dtype() + " and " + right.dtype());
        return derived([&](const auto& t) { return t * std::get<std::decay_t<decltype(t)>>(right.t_); });
    }

    py::array map(const py::object& points, const py::object& dtype) const
    {
        const py::array a = asArray(points, "map");
        std::string kind = dtype.is_none() ? a.dtype().attr("name").cast<std::string>() : dtypeName(dtype);
        return std::visit([&](const auto& t) -> py::array {
            using T = ElementOf<decltype(t)>;
            typename Kind<T>::C c;
            toC(t, c);
            using Calls = MapCalls<typename Kind<T>::C>;
            if (kind == "int32") return mapRows<std::int32_t, quillon_i_point>(c, a, Calls::i, "int32");
            if (kind == "float32") return mapRows<float, quillon_f_point>(c, a, Calls::f, "float32");
            if (kind == "float64") return mapRows<double, quillon_d_point>(c, a, Calls::d, "float64");
            if (kind == "guardint") return mapRows<std::int32_t, quillon_gi_point>(c, a, Calls::gi, "guardint");
            if (kind == "guardfloat") return mapRows<float, quillon_gf_point>(c, a, Calls::gf, "guardfloat");
            if (kind == "guarddouble") return mapRows<double, quillon_gd_point>(c, a, Calls::gd, "guarddouble");
            throw py::type_error("map: points of dtype " + kind +
                                 " are not supported; use int32, float32 or float64, or dtype='guardint', "
                                 "'guardfloat' or 'guarddouble' over int32, float32 or float64 raw values");
        }, t_);
    }

    py::array mapRects(const py::object& rects) const
    {
        const py::array a = asArray(rects, "map_rects");
        if (!a.dtype().is(py::dtype::of<std::int32_t>()))
            throw py::type_error("map_rects: rectangles must be int32 (left, top, right, bottom), not " +
                                 a.dtype().attr("name").cast<std::string>());
        const auto rows = rowsOf<std::int32_t>(a, 4, "map_rects");
        return std::visit([&](const auto& t) -> py::array {
            using T = ElementOf<decltype(t)>;
            typename Kind<T>::C c;
            toC(t, c);
            std::int32_t* out = nullptr;
            std::size_t count = 0;
            const int status = MapCalls<typename Kind<T>::C>::rects(
                &c, rows.data(), static_cast<std::size_t>(rows.shape(0)), &out, &count);
            if (status == QUILLON_TOO_LARGE) throw py::value_error("map_rects: too many rectangles");
            if (status != QUILLON_OK) throw std::bad_alloc();
            py::array_t<std::int32_t> result({static_cast<py::ssize_t>(count), py::ssize_t{4}});
            if (count) std::copy(out, out + 4 * count, result.mutable_data());
            quillon_free_rects(out);
            return result;
        }, t_);
    }

    std::string repr() const
    {
        std::string s = "quillon.Transform('" + dtype() + "', ";
        const py::array e = elements();
        s += py::str(e.attr("tolist")()).cast<std::string>();
        return s + ")";
    }

private:
    template <class T>
    static void toC(const Transform<T>& t, typename Kind<T>::C& c)
    {
        T e[16]{};
        t.Function_2416(e);
        for (int k = 0; k < 16; ++k) c.e[k] = Kind<T>::leave(e[k]);
    }

    template <class V, class Point, class CT, class Call>
    static py::array mapRows(const CT& c, const py::array& a, Call call, const char* kind)
    {
        if (!a.dtype().is(py::dtype::of<V>()))
            throw py::type_error(std::string("map: ") + kind + " points must be an array of " +
                                 std::string(py::str(py::dtype::of<V>().attr("name"))) + ", not " +
                                 a.dtype().attr("name").cast<std::string>());
        const auto rows = rowsOf<V>(a, 3, "map");
        const py::ssize_t n = rows.shape(0);
        py::array_t<V> out({n, py::ssize_t{3}});
        const auto* in = reinterpret_cast<const Point*>(rows.data());
        auto* to = reinterpret_cast<Point*>(out.mutable_data());
        int status;
        if (n >= kReleaseLockAt) {
            py::gil_scoped_release unlocked;
            status = call(&c, in, to, static_cast<std::size_t>(n));
        } else {
            status = call(&c, in, to, static_cast<std::size_t>(n));
        }
        if (status != QUILLON_OK) throw py::value_error("map: the points could not be mapped");
        return out;
    }

    AnyTransform t_;
};

char axisOf(const std::string& axis)
{
    if (axis.size() != 1) throw py::value_error("move: the axis is one letter, 'x', 'y' or 'z', not '" + axis + "'");
    return axis[0];
}

// Guard scalars from Python numbers: an int within 32 bits takes the class's int constructor,
// any other number its double constructor.
template <class G>
void guardConstructors(py::class_<G>& c)
{
    c.def(py::init([](int i) { return G(i); }), py::arg("value"))
     .def(py::init([](double x) { return G(x); }), py::arg("value"));
}

} // namespace

PYBIND11_MODULE(quillon, m)
{
    m.doc() = "Exact 4x4 transforms, point and region mapping over numpy arrays, and the saturating "
              "guard scalars, with the same bits as the C++ library";
    m.attr("__version__") = quillon_version();
    addVectors(m);
    addGuardArrays(m);

    py::class_<PyTransform>(m, "Transform", "A 4x4 homogeneous matrix over float32, float64 or guarddouble")
        .def(py::init(&PyTransform::make), py::arg("dtype") = "float64", py::arg("elements") = py::none(),
             "The identity, or 16 elements row by row (shape (16,) or (4, 4)); for guarddouble the raw "
             "float64 values, each through guarddouble(double)")
        .def_static("from_angles", &PyTransform::fromAngles, py::arg("ax"), py::arg("ay"), py::arg("az"),
                    py::arg("dtype") = "float64",
                    "Rotation Rx(ax) Ry(ay) Rz(az) in radians: turns about z first, then y, then x, about the fixed axes")
        .def_property_readonly("dtype", &PyTransform::dtype, "'float32', 'float64' or 'guarddouble'")
        .def_property("elements", &PyTransform::elements, &PyTransform::setElements,
                      "The 16 elements as a new (4, 4) array (float64 raw values for guarddouble)")
        .def("__array__", [](const PyTransform& t, py::object dtype, py::kwargs) -> py::object {
                 py::object e = t.elements();
                 return dtype.is_none() ? e : e.attr("astype")(dtype);
             }, py::arg("dtype") = py::none())
        .def("copy", [](const PyTransform& t) { return t; }, "A new transform with the same elements")
        .def("__copy__", [](const PyTransform& t) { return t; })
        .def("__deepcopy__", [](const PyTransform& t, py::object) { return t; })
        .def("turn_x", [](PyTransform& t, double a) -> PyTransform& { return t.inPlace([a](auto& v) { v.Function_2422(a); }); },
             py::arg("angle"), "Turns about x by angle radians, after everything the transform did before; returns self")
        .def("turn_y", [](PyTransform& t, double a) -> PyTransform& { return t.inPlace([a](auto& v) { v.Function_2423(a); }); },
             py::arg("angle"), "Turns about y; returns self")
        .def("turn_z", [](PyTransform& t, double a) -> PyTransform& { return t.inPlace([a](auto& v) { v.Function_2424(a); }); },
             py::arg("angle"), "Turns about z (+x toward +y); returns self")
        .def("scale_x", [](PyTransform& t, double f) -> PyTransform& { return t.withElement(f, [](auto& v, auto e) { v.Function_2425(e); }); },
             py::arg("factor"), "Multiplies e[0][0] by factor; returns self")
        .def("scale_y", [](PyTransform& t, double f) -> PyTransform& { return t.withElement(f, [](auto& v, auto e) { v.Function_2426(e); }); },
             py::arg("factor"), "Multiplies e[1][1] by factor; returns self")
        .def("scale_z", [](PyTransform& t, double f) -> PyTransform& { return t.withElement(f, [](auto& v, auto e) { v.Function_2427(e); }); },
             py::arg("factor"), "Multiplies e[2][2] by factor; returns self")
        .def("move", [](PyTransform& t, const std::string& axis, double amount) -> PyTransform& {
                 const char a = axisOf(axis);
                 return t.withElement(amount, [a](auto& v, auto e) { v.Function_2428(a, e); });
             }, py::arg("axis"), py::arg("amount"),
             "Adds amount to the translation along 'x', 'y' or 'z' (either case; any other letter does nothing); returns self")
        .def("transpose", [](const PyTransform& t) { return t.derived([](const auto& v) { return v.Function_2417(); }); },
             "A new transform, rows and columns exchanged")
        .def("transpose_in_place", [](PyTransform& t) -> PyTransform& { return t.inPlace([](auto& v) { v.Function_2429(); }); },
             "Exchanges rows and columns; returns self")
        .def("reset", [](PyTransform& t) -> PyTransform& { return t.inPlace([](auto& v) { v.Function_2430(); }); },
             "Back to the identity; returns self")
        .def("clear", [](PyTransform& t) -> PyTransform& { return t.inPlace([](auto& v) { v.Function_2431(); }); },
             "All sixteen elements 0; returns self")
        .def("adjoint", [](const PyTransform& t) { return t.derived([](const auto& v) { return v.Function_2412(); }); },
             "A new transform: the adjoint (transposed cofactors), in the element type's arithmetic")
        .def("determinant", [](const PyTransform& t) { return t.scalar(0); },
             "The determinant, as a Python float (the raw value for guarddouble)")
        .def("inverse", [](const PyTransform& t) { return t.derived([](const auto& v) { return v.Function_2415(); }); },
             "The inverse; a singular matrix (determinant exactly 0) gives the identity")
        .def("without_translation", [](const PyTransform& t) { return t.derived([](const auto& v) { return v.Function_2421(); }); },
             "A copy with the translation cleared and e[3][3] = 1")
        .def_property_readonly("e10", [](const PyTransform& t) { return t.scalar(1); }, "Element e[1][0], as a Python float")
        .def_property_readonly("e20", [](const PyTransform& t) { return t.scalar(2); }, "Element e[2][0], as a Python float")
        .def_property_readonly("e30", [](const PyTransform& t) { return t.scalar(3); }, "Element e[3][0], as a Python float")
        .def("__matmul__", &PyTransform::compose, "Composition: (a @ b) maps as a after b")
        .def("map", &PyTransform::map, py::arg("points"), py::arg("dtype") = py::none(),
             "Maps an (n, 3) array of points to a new array of the same type: int32, float32, float64, or "
             "dtype='guardint', 'guardfloat', 'guarddouble' over int32, float32, float64 raw values. Each "
             "image is stored as the point type: int cut toward zero, guardint to nearest, float rounded "
             "once. A wrong shape raises ValueError, a wrong dtype TypeError; strided arrays are copied. "
             "Without the interpreter lock from 4096 points up.")
        .def("map_rects", &PyTransform::mapRects, py::arg("rects"),
             "Maps the region that is the union of an (n, 4) int32 array of rectangles (left, top, right, "
             "bottom); returns the mapped region's rectangles as an (m, 4) int32 array")
        .def("__repr__", &PyTransform::repr);

    py::class_<guarddouble> gd(m, "guarddouble", "Saturating double: limits +-2**1022");
    py::class_<guardfloat> gf(m, "guardfloat", "Saturating float: limits +-2**126");
    py::class_<guardint> gi(m, "guardint", "Saturating 32-bit integer: limits +-2147483647");

    gd.def(py::init([](guardint& i) { return guarddouble(i); }), py::arg("value"));
    guardConstructors(gd);
    gd.def_property_readonly("value", &guarddouble::value, "The stored double")
        .def("nint", &guarddouble::nint, "Nearest integer, ties away from zero, limited to +-2147483647; NaN gives 0")
        .def("__int__", &guarddouble::nint)
        .def("round_to_whole", [](guarddouble g) { g.RoundToWhole(); return g; },
             "Nearest whole number, ties downward (2.5 -> 2, -2.5 -> -3)")
        .def(py::self + py::self)
        .def(py::self - py::self)
        .def("__sub__", [](const guarddouble& a, double b) { return a - b; }, py::is_operator())
        .def(py::self * py::self)
        .def("__rmul__", [](const guarddouble& b, int a) { return a * b; }, py::is_operator())
        .def(py::self / py::self)
        .def("__eq__", [](const guarddouble& a, const guarddouble& b) { return bool(a == b); }, py::is_operator())
        .def("__ne__", [](const guarddouble& a, const guarddouble& b) { return bool(a != b); }, py::is_operator())
        .def("__lt__", [](const guarddouble& a, const guarddouble& b) { return bool(a < b); }, py::is_operator())
        .def("__gt__", [](const guarddouble& a, const guarddouble& b) { return bool(a > b); }, py::is_operator())
        .def("__repr__", [](const guarddouble& g) { return "guarddouble(" + py::repr(py::float_(g.value())).cast<std::string>() + ")"; });

    gf.def(py::init([](guardint& i) { return guardfloat(i); }), py::arg("value"));
    guardConstructors(gf);
    gf.def_property_readonly("value", [](const guardfloat& g) { return static_cast<double>(g.value()); },
                             "The stored float, as a Python float")
        .def("nint", &guardfloat::nint, "Nearest integer, ties away from zero, limited to +-2147483647; NaN gives 0")
        .def("__int__", &guardfloat::nint)
        .def(py::self + py::self)
        .def(py::self - py::self)
        .def(py::self * py::self)
        .def("__truediv__", [](guardfloat a, const guardfloat& b) { return a /= b; }, py::is_operator())
        .def("__eq__", [](const guardfloat& a, const guardfloat& b) { return bool(a == b); }, py::is_operator())
        .def("__ne__", [](const guardfloat& a, const guardfloat& b) { return bool(a != b); }, py::is_operator())
        .def("__lt__", [](const guardfloat& a, const guardfloat& b) { return bool(a < b); }, py::is_operator())
        .def("__repr__", [](const guardfloat& g) { return "guardfloat(" + py::repr(py::float_(g.value())).cast<std::string>() + ")"; });

    gi.def(py::init([](const guarddouble& g) { return guardint(g); }), py::arg("value"))
        .def(py::init([](const guardfloat& g) { return guardint(g); }), py::arg("value"));
    guardConstructors(gi);
    gi.def_static("from_float32", [](float x) { return guardint(x); }, py::arg("value"),
                  "guardint(float): the value rounded to float32 first, limits at +-2**31")
        .def_property_readonly("value", &guardint::value, "The stored int32")
        .def("__int__", &guardint::value)
        .def("__float__", [](const guardint& g) { return static_cast<double>(g); })
        .def("to_float32", [](const guardint& g) { return static_cast<double>(static_cast<float>(g)); },
             "The value rounded to float32, as a Python float")
        .def(py::self + py::self)
        .def(py::self - py::self)
        .def(py::self * py::self)
        .def("__truediv__", [](guardint a, const guardint& b) { return a /= b; }, py::is_operator())
        .def("__eq__", [](const guardint& a, const guardint& b) { return bool(a == b); }, py::is_operator())
        .def("__ne__", [](const guardint& a, const guardint& b) { return bool(a != b); }, py::is_operator())
        .def("__lt__", [](const guardint& a, const guardint& b) { return bool(a < b); }, py::is_operator())
        .def("__repr__", [](const guardint& g) { return "guardint(" + std::to_string(g.value()) + ")"; });
}
