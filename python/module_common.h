// SPDX-License-Identifier: MIT
// What the parts of the Python module share: how an argument becomes a numpy array of the wanted
// element type and shape, how a dtype argument is read, and when the interpreter lock is let go.
#ifndef QUILLON_PYTHON_MODULE_COMMON_H
#define QUILLON_PYTHON_MODULE_COMMON_H

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>

#include <string>

namespace quillon_python {

namespace py = pybind11;

// Above this many points (vectors, values) the work runs without the interpreter lock.
constexpr py::ssize_t kReleaseLockAt = 4096;

inline std::string shapeText(const py::array& a)
{
    std::string s = "(";
    for (py::ssize_t k = 0; k < a.ndim(); ++k) s += (k ? ", " : "") + std::to_string(a.shape(k));
    return s + (a.ndim() == 1 ? ",)" : ")");
}

inline py::array asArray(const py::object& o, const std::string& what)
{
    py::array a = py::array::ensure(o);
    if (!a) throw py::type_error(what + ": expected a numpy array or a sequence of numbers");
    return a;
}

// A C-contiguous, aligned array of exactly this element type, shape as given: a strided or
// misaligned array (numpy.frombuffer at an odd offset) is copied, so every element is read at its
// own alignment. The caller has checked the dtype.
template <class V>
py::array_t<V, py::array::c_style> contiguous(const py::array& a, const std::string& what)
{
    auto c = py::array_t<V, py::array::c_style>::ensure(a);
    if (!c) throw py::type_error(what + ": could not read the array");
    if (!c.attr("flags").attr("aligned").template cast<bool>())
        c = py::array_t<V, py::array::c_style>::ensure(c.attr("copy")());
    return c;
}

// An (n, width) array of exactly this element type; any other shape is refused.
template <class V>
py::array_t<V, py::array::c_style> rowsOf(const py::array& a, py::ssize_t width, const std::string& what)
{
    if (a.ndim() != 2 || a.shape(1) != width)
        throw py::value_error(what + ": expected an (n, " + std::to_string(width) + ") array, got shape " +
                              shapeText(a));
    return contiguous<V>(a, what);
}

// "guarddouble" (any "guard..." name) as it is; anything else as numpy reads a dtype (np.float32,
// "float64", "f8", ...).
inline std::string dtypeName(const py::object& dtype)
{
    if (py::isinstance<py::str>(dtype)) {
        const std::string s = dtype.cast<std::string>();
        if (s.rfind("guard", 0) == 0) return s;
    }
    return py::dtype::from_args(dtype).attr("name").cast<std::string>();
}

inline std::string dtypeOf(const py::array& a) { return a.dtype().attr("name").cast<std::string>(); }

// Whether the array holds exactly V in the machine's byte order (numpy's own dtype equality).
template <class V>
bool holds(const py::array& a)
{
    return a.dtype().attr("__eq__")(py::dtype::of<V>()).template cast<bool>();
}

// Runs call() (a C interface call or a loop of them, which throw nothing) without the interpreter
// lock when there are many elements; the arrays it reads are owned by the caller's frame.
template <class Call>
auto released(py::ssize_t count, Call call)
{
    if (count >= kReleaseLockAt) {
        py::gil_scoped_release unlocked;
        return call();
    }
    return call();
}

void addVectors(py::module_& m);
void addGuardArrays(py::module_& m);

} // namespace quillon_python

#endif
