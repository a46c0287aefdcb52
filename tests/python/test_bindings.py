# SPDX-License-Identifier: MIT
"""The Python module: hand-picked rules, and bad input raises TypeError or ValueError. (The battery's
families run through the module in tests/battery/battery.py.)"""
import numpy as np
import pytest

import quillon

gd, gf, gi = quillon.guarddouble, quillon.guardfloat, quillon.guardint

# ---- Hand-picked rules ----

def test_first_program_of_the_readme():
    t = quillon.Transform("float64").turn_z(0.5235987755982988).move("x", 10.0)
    p = t.map(np.array([[1.0, 0.0, 0.0]]))
    assert p[0, 0] == 10.866025403784439 and p[0, 1] == 0.49999999999999994 and p[0, 2] == 0.0
    # Moving by 0.75: an int point is truncated toward zero, a guardint point goes to nearest.
    u = quillon.Transform("float64").move("x", 0.75)
    one = np.array([[1, 0, 0]], dtype=np.int32)
    assert u.map(one)[0, 0] == 1
    assert u.map(one, dtype="guardint")[0, 0] == 2


def test_float_transform_rounds_what_it_stores():
    t = quillon.Transform(np.float32).move("x", 0.1)
    assert t.dtype == "float32" and t.elements.dtype == np.float32
    assert t.map(np.zeros((1, 3)))[0, 0] == float(np.float32(0.1)) != 0.1


def test_region_scale_in_guarddouble_and_double():
    rect = np.array([[2, 0, 3, 1]], dtype=np.int32)
    assert quillon.Transform("guarddouble").scale_x(1.45).map_rects(rect).tolist() == [[3, 0, 4, 1]]
    assert quillon.Transform("float64").scale_x(1.45).map_rects(rect).tolist() == [[2, 0, 4, 1]]
    turned = quillon.Transform().turn_z(0.7853981633974483).map_rects(np.array([[0, 0, 100, 100]], dtype=np.int32))
    assert len(turned) > 50  # a diamond, not a bounding box
    assert quillon.Transform().map_rects(np.zeros((0, 4), dtype=np.int32)).shape == (0, 4)


def test_singular_inverse_is_identity_and_composition_order():
    s = quillon.Transform().scale_y(0.0)
    assert s.determinant() == 0.0
    assert np.array_equal(s.inverse().elements, np.eye(4))
    move, turn = quillon.Transform().move("x", 1.0), quillon.Transform().turn_z(1.5707963267948966)
    p = (turn @ move).map(np.array([[0.0, 0.0, 0.0]]))  # moved first, then turned
    assert abs(p[0, 0]) < 1e-15 and p[0, 1] == 1.0


def test_elements_in_and_out():
    e = np.arange(16, dtype=np.float64).reshape(4, 4)
    t = quillon.Transform("float64", e)
    assert np.array_equal(t.elements, e) and t.e10 == 4.0 and t.e20 == 8.0 and t.e30 == 12.0
    assert np.array_equal(t.transpose().elements, e.T)
    g = quillon.Transform("guarddouble", [1e308] + [0.0] * 15)
    assert g.elements[0, 0] == 2.0**1022  # entered through guarddouble(double)
    t.elements = np.eye(4)
    assert np.array_equal(np.asarray(t), np.eye(4))
    assert np.asarray(quillon.Transform().move("x", 0.1), dtype=np.float32)[0, 3] == np.float32(0.1)


def test_guard_scalar_rules():
    assert (gd(1.0) / gd(0.0)).value == 2.0**1022
    assert (gd(0.0) / gd(0.0)).value == 0.0
    assert (gd(2.0**1022) * gd(-1e-300)).value == -2.0**1022
    assert gd(2.5).nint() == 3 and gd(-2.5).nint() == -3 and int(gd(1e300)) == 2147483647
    assert gd(2.5).round_to_whole().value == 2.0 and gd(-2.5).round_to_whole().value == -3.0
    assert (gi(2147483000) + gi(1000)).value == 2147483647
    assert (gi(0) - gi(-2147483648)).value == 2147483647
    assert (gi(7) / gi(0)).value == 2147483647 and (gi(-7) / gi(2)).value == -3
    assert gi(2.5).value == 2 and gi(2.51).value == 3 and gi(2**40).value == 2147483647
    assert (gf(2.0**126) + gf(-1.0)).value == 2.0**126
    assert (gf(1.0) / gf(3.0)).value == float(np.float32(1.0 / 3.0))
    assert gf(float("nan")) != gf(float("nan"))
    assert (gd(1.0) == 1.0) is False  # only guard values compare


# ---- Arrays ----

def test_large_arrays_match_small_ones_and_inputs_are_untouched():
    rng = np.random.default_rng(7)
    t = quillon.Transform.from_angles(0.3, -1.1, 2.0).move("z", 3.5)
    points = rng.normal(scale=1000.0, size=(10000, 3))
    before = points.copy()
    whole = t.map(points)  # without the interpreter lock
    pieces = np.concatenate([t.map(points[k:k + 100]) for k in range(0, len(points), 100)])
    assert whole.tobytes() == pieces.tobytes()
    assert np.array_equal(points, before) and whole is not points


@pytest.mark.parametrize("dtype", [np.int32, np.float32, np.float64])
def test_strided_and_fortran_arrays_are_copied(dtype):
    t = quillon.Transform().turn_x(0.4).move("y", 2.25)
    base = (np.arange(60).reshape(20, 3) * 7 - 150).astype(dtype)
    expected = t.map(np.ascontiguousarray(base[::2]))
    assert t.map(base[::2]).tobytes() == expected.tobytes()
    assert t.map(np.asfortranarray(base)).tobytes() == t.map(base).tobytes()
    wide = np.zeros((20, 6), dtype=dtype)
    wide[:, ::2] = base
    assert t.map(wide[:, ::2]).tobytes() == t.map(base).tobytes()


def test_misaligned_and_read_only_arrays():
    t = quillon.Transform().turn_y(0.25).move("x", 1.5)
    points = np.arange(30, dtype=np.float64).reshape(10, 3) - 7.5
    raw = b"\0" * 4 + points.tobytes()
    shifted = np.frombuffer(raw, dtype=np.float64, offset=4).reshape(10, 3)
    assert not shifted.flags.aligned and not shifted.flags.writeable
    assert t.map(shifted).tobytes() == t.map(points).tobytes()


@pytest.mark.parametrize("points, dtype, error", [
    (np.zeros((4, 2)), None, ValueError),
    (np.zeros(3), None, ValueError),
    (np.zeros((2, 3, 3)), None, ValueError),
    (np.zeros((4, 3), dtype=np.int64), None, TypeError),
    (np.zeros((4, 3), dtype=np.float16), None, TypeError),
    (np.zeros((4, 3), dtype=bool), None, TypeError),
    (np.zeros((4, 3), dtype=">f8"), None, TypeError),
    (np.zeros((4, 3), dtype=object), None, TypeError),
    (np.zeros((4, 3)), "guardint", TypeError),
    (np.zeros((4, 3), dtype=np.int32), "guarddouble", TypeError),
    (np.zeros((4, 3)), "guardquad", TypeError),
    ("points", None, TypeError),
])
def test_bad_points_raise(points, dtype, error):
    with pytest.raises(error, match="map"):
        quillon.Transform().map(points, dtype=dtype)


def test_other_bad_input_raises():
    t = quillon.Transform()
    with pytest.raises(TypeError, match="int32"):
        t.map_rects(np.zeros((2, 4)))
    with pytest.raises(ValueError, match=r"\(n, 4\)"):
        t.map_rects(np.zeros((2, 3), dtype=np.int32))
    with pytest.raises(ValueError, match="16 elements"):
        quillon.Transform("float64", np.zeros(15))
    with pytest.raises(TypeError, match="dtype"):
        quillon.Transform("int16")
    with pytest.raises(TypeError):
        quillon.Transform("no such type")
    with pytest.raises(ValueError, match="axis"):
        t.move("", 1.0)
    with pytest.raises(TypeError, match="one dtype"):
        t @ quillon.Transform("float32")
    t.move("w", 5.0)  # not an axis: nothing happens, as in C++
    assert np.array_equal(t.elements, np.eye(4))
