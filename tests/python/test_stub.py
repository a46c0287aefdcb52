# SPDX-License-Identifier: MIT
"""python/quillon.pyi names what the module has, no more and no less, and every function of the
module has a docstring of its own beyond pybind11's signature line."""
import ast
import pathlib

import quillon

STUB = pathlib.Path(__file__).resolve().parents[2] / "python" / "quillon.pyi"
# The stub's private classes describing the submodules, and the submodule each stands for.
SUBMODULES = {"_Vec": "vec", "_Guard": "guard"}


def stub_names():
    """{name: set of member names} for the stub's classes, and the module-level names under ''."""
    tree = ast.parse(STUB.read_text(encoding="utf-8"))
    names = {"": set()}
    for node in tree.body:
        if isinstance(node, ast.ClassDef):
            names[node.name] = {n.name for n in node.body if isinstance(n, ast.FunctionDef)}
        elif isinstance(node, ast.AnnAssign) and isinstance(node.target, ast.Name):
            names[""].add(node.target.id)
    names[""] |= {name for name in names if name and not name.startswith("_")}
    return names


def public(obj):
    return {n for n in dir(obj) if not n.startswith("_")}


def test_the_stub_names_the_modules_contents():
    names = stub_names()
    assert names.pop("") == public(quillon) | {"__version__"}
    for stub_class, submodule in SUBMODULES.items():
        assert names.pop(stub_class) == public(getattr(quillon, submodule)), submodule
    for cls, members in names.items():
        runtime = public(getattr(quillon, cls))
        assert {m for m in members if not m.startswith("_")} == runtime, cls
        # The operators the stub promises are there.
        for m in members:
            assert hasattr(getattr(quillon, cls), m), f"{cls}.{m}"


def own_doc(f):
    """The docstring without pybind11's signature lines."""
    lines = (getattr(f, "__doc__", None) or "").strip().splitlines()
    return "\n".join(line for line in lines if not line.startswith(f.__name__ + "(") and
                     not line.startswith("Overloaded function") and not line[:2].rstrip(".").isdigit()).strip()


def test_every_function_has_a_docstring():
    missing = []
    for name in ("vec", "guard"):
        module = getattr(quillon, name)
        missing += [f"{name}.{f}" for f in public(module) if not own_doc(getattr(module, f))]
    for cls in ("Transform", "guarddouble", "guardfloat", "guardint"):
        c = getattr(quillon, cls)
        missing += [f"{cls}.{m}" for m in public(c) if callable(getattr(c, m)) and not own_doc(getattr(c, m))]
    assert not missing


def test_docstrings_say_dtypes_shapes_rounding_and_the_lock():
    for name in public(quillon.vec):
        doc = quillon.vec.__dict__[name].__doc__
        assert "(n, 3)" in doc and "int32" in doc and "guardint" in doc and "interpreter lock" in doc, name
    for name in public(quillon.guard):
        doc = quillon.guard.__dict__[name].__doc__
        assert "interpreter lock" in doc and ("float64" in doc or "int32" in doc), name
    assert "cut toward zero" in quillon.vec.scale.__doc__ and "nint" in quillon.vec.scale.__doc__
    assert "ties" in quillon.guard.nint.__doc__ and "ties" in quillon.guard.round_to_whole.__doc__
    assert "interpreter lock" in quillon.Transform.map.__doc__
