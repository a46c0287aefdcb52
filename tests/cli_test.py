#!/usr/bin/env python3
"""End-to-end checks of the quillon tool: exact output for inputs worked out by hand, --json read
back, every kind of bad input, and the SVG pictures read with a real XML parser.

usage: cli_test.py QUILLON EXPORTED_MEMBERS_TXT
"""
import json
import math
import os
import re
import subprocess
import sys
import tempfile
import unittest

TOOL = None
MEMBERS = None


def run(*args, stdin=""):
    p = subprocess.run([TOOL, *args], input=stdin, capture_output=True, text=True, timeout=60)
    return p.returncode, p.stdout, p.stderr


class Case(unittest.TestCase):
    def ok(self, *args, stdin=""):
        code, out, err = run(*args, stdin=stdin)
        self.assertEqual((code, err), (0, ""), args)
        return out

    def lines(self, *args, stdin=""):
        return self.ok(*args, stdin=stdin).splitlines()


class MapTest(Case):
    def test_identity_by_element_types(self):
        for vector in ["int", "guardint"]:
            self.assertEqual(self.lines("map", "--vector", vector, "7,-8,9", "0,0,-2147483647"),
                             ["7,-8,9", "0,0,-2147483647"])
        for t, vector in [("double", "float"), ("double", "double"), ("float", "float"), ("guarddouble", "guarddouble")]:
            self.assertEqual(self.lines("map", "--type", t, "--vector", vector, "1.5,-2.5,0.25"), ["1.5,-2.5,0.25"])
        # A guardfloat or guarddouble enters any other type through nint: ties away from zero.
        for t, vector in [("double", "guardfloat"), ("double", "guarddouble"), ("float", "guarddouble"),
                          ("guarddouble", "guardfloat")]:
            self.assertEqual(self.lines("map", "--type", t, "--vector", vector, "1.5,-2.5,0.25"), ["2,-3,0"])

    def test_integer_results_truncate_or_round_by_type(self):
        # (1,0,0) moved by 0.75 is 1.75: int truncates, guardint takes the nearest integer.
        self.assertEqual(self.lines("map", "--vector", "int", "--move", "x:0.75", "1,0,0"), ["1,0,0"])
        self.assertEqual(self.lines("map", "--vector", "guardint", "--move", "x:0.75", "1,0,0"), ["2,0,0"])
        self.assertEqual(self.lines("map", "--vector", "int", "--move", "x:-0.75", "-1,0,0"), ["-1,0,0"])
        self.assertEqual(self.lines("map", "--vector", "guardint", "--move", "x:-0.75", "-1,0,0"), ["-2,0,0"])

    def test_turns_scales_and_moves_in_order(self):
        c = math.cos(math.pi / 2)  # the turn's elements are cos and sin of the double angle
        self.assertEqual(self.lines("map", "--turn", "z:90deg", "1,0,0"), [f"{c!r},1,0"])
        self.assertEqual(self.lines("map", "--vector", "int", "--turn", "z:90deg", "1,0,0"), ["0,1,0"])
        # Each option acts after the ones before: a move then a turn turns the move.
        self.assertEqual(self.lines("map", "--move", "x:1", "--turn", "z:90deg", "0,0,0"), [f"{c!r},1,0"])
        self.assertEqual(self.lines("map", "--turn", "z:90deg", "--move", "x:1", "0,0,0"), ["1,0,0"])
        self.assertEqual(self.lines("map", "--scale", "x:2", "--scale", "Y:3", "--move", "z:5", "1,1,1"), ["2,3,6"])
        # Degrees are radians times pi/180; an Euler rotation about z alone is the same turn.
        turned = self.lines("map", "--turn", "z:0.5235987755982988", "1,2,3", "-4,5,0.5")
        self.assertEqual(self.lines("map", "--turn", "z:30deg", "1,2,3", "-4,5,0.5"), turned)
        self.assertEqual(self.lines("map", "--euler", "0,0,30deg", "1,2,3", "-4,5,0.5"), turned)
        self.assertEqual(self.lines("map", "--turn", "x:90deg", "--vector", "int", "0,1,0"), ["0,0,1"])
        self.assertEqual(self.lines("map", "--turn", "y:90deg", "--vector", "int", "0,0,1"), ["1,0,0"])

    def test_matrix_option(self):
        m = "1,0,0,5,0,2,0,6,0,0,3,7,0,0,0,1"
        self.assertEqual(self.lines("map", "--matrix", m, "1,1,1"), ["6,8,10"])
        # A later --matrix acts after: the doubling of x also doubles the earlier move.
        self.assertEqual(self.lines("map", "--move", "x:1", "--matrix", "2,0,0,0,0,1,0,0,0,0,1,0,0,0,0,1", "1,0,0"),
                         ["4,0,0"])

    def test_exact_output_shows_the_working_precision(self):
        # 0.1 stored as float and widened is 0x1.99999ap-4; as double 0x1.999999999999ap-4.
        self.assertEqual(self.lines("map", "--exact", "--type", "float", "--vector", "double", "--move", "x:0.1", "0,0,0"),
                         ["0x1.99999ap-4,0x0p+0,0x0p+0"])
        self.assertEqual(self.lines("map", "--exact", "--move", "x:0.1", "0,0,0"), ["0x1.999999999999ap-4,0x0p+0,0x0p+0"])
        # guarddouble saturates: 1e308 squared is the limit 2^1022.
        self.assertEqual(self.lines("map", "--exact", "--type", "guarddouble", "--scale", "x:1e308", "--scale", "x:1e308",
                                    "1,0,0"), ["0x1p+1022,0x0p+0,0x0p+0"])
        self.assertEqual(self.lines("map", "--exact", "--vector", "int", "3,4,5"), ["3,4,5"])

    def test_points_from_standard_input(self):
        out = self.lines("map", "--move", "y:1", stdin="1,2,3\n\n# a comment\n 4 , 5 , 6 \n")
        self.assertEqual(out, ["1,3,3", "4,6,6"])

    def test_json(self):
        doc = json.loads(self.ok("map", "--json", "--type", "float", "--vector", "guardint", "--move", "x:0.75",
                                 "1,0,0", "-3,2,1"))
        self.assertEqual((doc["type"], doc["vector"]), ("float", "guardint"))
        self.assertEqual(doc["matrix"], [[1, 0, 0, 0.75], [0, 1, 0, 0], [0, 0, 1, 0], [0, 0, 0, 1]])
        self.assertEqual(doc["points"], [{"in": [1, 0, 0], "out": [2, 0, 0]}, {"in": [-3, 2, 1], "out": [-2, 2, 1]}])
        exact = json.loads(self.ok("map", "--json", "--exact", "--move", "z:0.1", "0.5,0,0"))
        self.assertEqual([float.fromhex(v) for v in exact["points"][0]["out"]], [0.5, 0.0, 0.1])
        self.assertEqual(exact["matrix"][2][3], "0x1.999999999999ap-4")
        self.assertEqual(json.loads(self.ok("map", "--json", stdin=""))["points"], [])


class MatrixTest(Case):
    # Diagonal 2, 4, 8, 1 with a move of 1 along x: determinant 64, inverse scales by 1/2, 1/4,
    # 1/8 and moves by -1/2; the adjoint is the determinant times the inverse.
    M = ["2,0,0,1", "0,4,0,0", "0,0,8,0", "0,0,0,1"]

    def test_results_by_type(self):
        for t in ["float", "double", "guarddouble"]:
            doc = json.loads(self.ok("matrix", "--json", "--type", t, *self.M))
            self.assertEqual(doc["type"], t)
            self.assertEqual((doc["determinant"], doc["singular"]), (64, False))
            self.assertEqual(doc["inverse"], [[0.5, 0, 0, -0.5], [0, 0.25, 0, 0], [0, 0, 0.125, 0], [0, 0, 0, 1]])
            self.assertEqual(doc["adjoint"], [[32, 0, 0, -32], [0, 16, 0, 0], [0, 0, 8, 0], [0, 0, 0, 64]])
            self.assertEqual(doc["transpose"], [[2, 0, 0, 0], [0, 4, 0, 0], [0, 0, 8, 0], [1, 0, 0, 1]])

    def test_singular_inverse_is_the_identity(self):
        doc = json.loads(self.ok("matrix", "--json", *[str(k) for k in range(1, 17)]))
        self.assertEqual((doc["determinant"], doc["singular"]), (0, True))
        self.assertEqual(doc["inverse"], [[1, 0, 0, 0], [0, 1, 0, 0], [0, 0, 1, 0], [0, 0, 0, 1]])
        self.assertIn("inverse (singular: the identity)", self.lines("matrix", *[str(k) for k in range(1, 17)]))

    def test_text_and_exact(self):
        out = self.lines("matrix", "--type", "float", *self.M)
        self.assertEqual(out[:6], ["matrix (float)", "  [  2  0  0  1 ]", "  [  0  4  0  0 ]", "  [  0  0  8  0 ]",
                                   "  [  0  0  0  1 ]", "determinant 64"])
        self.assertEqual(out[out.index("transpose") + 4], "  [  1  0  0  1 ]")
        # A third as float and as double, and its determinant with three more ones.
        third = "0.333333333333333333"
        self.assertIn("determinant 0x1.555556p-2", self.lines("matrix", "--exact", "--type", "float", third,
                                                              "0,0,0,0,1,0,0,0,0,1,0,0,0,0,1"))
        self.assertIn("determinant 0x1.5555555555555p-2", self.lines("matrix", "--exact", third,
                                                                     "0,0,0,0,1,0,0,0,0,1,0,0,0,0,1"))


class InfoTest(Case):
    def test_record_and_exports_from_the_module(self):
        doc = json.loads(self.ok("info", "--json"))
        self.assertTrue(os.path.basename(doc["module"]).startswith("libquillon.so"), doc["module"])
        record = doc["version"]
        for name, value in [("FixedFileVersion", "1.0.0.1"), ("FileDescription", "Quillon DLL"),
                            ("FileVersion", "1, 0, 0, 1"), ("InternalName", "Quillon"),
                            ("OriginalFilename", "Quillon.DLL"), ("ProductName", "Quillon Dynamic Link Library"),
                            ("ProductVersion", "1, 0, 0, 1"), ("Comments", ""), ("SpecialBuild", "")]:
            self.assertEqual(record[name], value, name)
        with open(MEMBERS) as f:
            members = [line.strip() for line in f if line.strip() and not line.startswith("#")]
        expected = sorted(re.sub(r"\bT\b", t, m) for m in members for t in ["float", "double", "guarddouble"])
        self.assertEqual(sorted(doc["exports"]), expected)
        text = self.lines("info")
        self.assertEqual(text[0], "module " + doc["module"])
        self.assertIn("  FileVersion          1, 0, 0, 1", text)
        self.assertIn(f"{len(expected)} exported names", text)


class BadInputTest(Case):
    CASES = [
        (["map", "--type", "long", "1,2,3"], "", "unknown element type 'long' for --type"),
        (["map", "--vector", "short", "1,2,3"], "", "unknown element type 'short' for --vector"),
        (["matrix", "--type", "int"] + ["0"] * 16, "", "unknown element type 'int'"),
        (["map", "1,2"], "", "expected three numbers X,Y,Z, got 2"),
        (["map", "1,2,3,4"], "", "got 4"),
        (["map", "1,2,abc"], "", "malformed number 'abc'"),
        (["map", "1,,3"], "", "malformed number ''"),
        (["map", "--vector", "int", "1.5,2,3"], "", "malformed integer '1.5'"),
        (["map", "--vector", "guardint", "3000000000,0,0"], "", "integer out of range"),
        (["map", "--type", "float", "--move", "x:1e39", "0,0,0"], "", "out of range"),
        (["map", "--move", "w:1", "0,0,0"], "", "unknown axis 'w' in --move"),
        (["map", "--turn", "xy:1", "0,0,0"], "", "unknown axis 'xy' in --turn"),
        (["map", "--scale", "2", "0,0,0"], "", "--scale takes AXIS:VALUE"),
        (["map", "--turn", "z:1rad", "0,0,0"], "", "malformed angle '1rad'"),
        (["map", "--euler", "1,2", "0,0,0"], "", "three angles"),
        (["map", "--matrix", "1,0,0,1", "0,0,0"], "", "needs 16 numbers"),
        (["matrix"] + ["1"] * 15, "", "needs 16 numbers, row by row; got 15"),
        (["matrix", "1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16,17"], "", "got 17"),
        (["matrix"] + ["1"] * 15 + ["x"], "", "malformed number 'x'"),
        (["map", "--move", "x:1"], "0,0,0\n1,2,x\n", "standard input, line 2: malformed number 'x'"),
        (["map", "--bogus"], "", "--bogus"),
        (["nonsense"], "", "nonsense"),
    ]

    def test_each_gives_one_line_and_status_2(self):
        for args, stdin, message in self.CASES:
            with self.subTest(args=args):
                code, out, err = run(*args, stdin=stdin)
                self.assertEqual(code, 2)
                self.assertEqual(out, "")  # nothing of the good lines before a bad one
                self.assertEqual(len(err.splitlines()), 1, err)
                self.assertTrue(err.startswith("quillon: "), err)
                self.assertIn(message, err)

    def test_help(self):
        for command in ["map", "matrix", "info"]:
            self.assertIn(f"Usage: quillon {command}", self.ok(command, "--help"))


if __name__ == "__main__":
    TOOL, MEMBERS = os.path.abspath(sys.argv[1]), sys.argv[2]
    unittest.main(argv=sys.argv[:1], verbosity=1)
