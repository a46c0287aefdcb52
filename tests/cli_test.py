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
import struct
import sys
import tempfile
import unittest
import xml.etree.ElementTree as ET

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


SVG = "{http://www.w3.org/2000/svg}"
SQUARE_45 = ["--turn", "z:45deg", "0,0,10,10"]


def svg_groups(root):
    """The picture's panels: for each, the mapped region's rectangles, the quadrilaterals and the
    outline segments, in the region's own coordinates."""
    panels = []
    for g in root.findall(SVG + "g"):
        parts = {e.get("class"): e for e in g}
        rects = [[int(float(r.get(k))) for k in ("x", "y", "width", "height")] for r in parts["mapped-region"]]
        quads = [[[int(v) for v in p.split(",")] for p in q.get("points").split()] for q in parts["mapped-quadrilaterals"]]
        outline = {tuple(int(v) for v in m) for m in re.findall(r"M(-?\d+) (-?\d+)L(-?\d+) (-?\d+)", parts["region-outline"].get("d"))}
        panels.append(([[x, y, x + w, y + h] for x, y, w, h in rects], quads, outline))
    return panels


class RegionTest(Case):
    def test_rectangles_by_type(self):
        self.assertEqual(self.lines("region", "--move", "x:5", "10,20,30,40"), ["15,20,35,40"])
        # x times 1.45: 2.9 and -2.9 truncate to 2 and -2 through float and double, and go to the
        # nearest, 3 and -3, through guarddouble; 4.35 and -4.35 give 4 and -4 either way. The
        # second rectangle is given with left and right swapped.
        rects = ["2,0,3,1", "-2,4,-3,5"]
        for t in ["float", "double"]:
            self.assertEqual(self.lines("region", "--type", t, "--scale", "x:1.45", *rects), ["2,0,4,1", "-4,4,-2,5"])
        self.assertEqual(self.lines("region", "--type", "guarddouble", "--scale", "x:1.45", *rects), ["3,0,4,1", "-4,4,-3,5"])
        # Overlapping images are one region; an empty rectangle maps to nothing.
        self.assertEqual(self.lines("region", "--move", "y:1", "0,0,4,2", "2,0,6,2"), ["0,1,6,3"])
        self.assertEqual(self.lines("region", "0,0,0,5"), [])

    def test_turned_square_is_a_diamond(self):
        doc = json.loads(self.ok("region", "--json", *SQUARE_45))
        self.assertEqual(doc["region"], [[0, 0, 10, 10]])
        # 10 * cos 45 = 7.07..., 10 * (cos 45 + sin 45) = 14.14...: truncated corners.
        self.assertEqual(doc["quadrilaterals"], [[[0, 0], [7, 7], [0, 14], [-7, 7]]])
        rows = doc["result"]
        self.assertEqual([r[1] for r in rows], list(range(rows[0][1], rows[0][1] + len(rows))))  # one per row
        self.assertTrue(all(r[0] == -r[2] and r[3] == r[1] + 1 for r in rows))  # symmetric about x = 0
        widths = [r[2] - r[0] for r in rows]
        widest = widths.index(max(widths))
        self.assertTrue(widths[0] < max(widths) > widths[-1])  # not the bounding box
        self.assertEqual(widths[:widest + 1], sorted(widths[:widest + 1]))

    def test_rectangles_from_a_file_or_standard_input(self):
        expected = self.lines("region", "--move", "x:1", "0,0,2,2", "4,4,6,6")
        self.assertEqual(expected, ["1,0,3,2", "5,4,7,6"])
        self.assertEqual(self.lines("region", "--move", "x:1", stdin="# two\n0,0,2,2\n\n4,4,6,6\n"), expected)
        with tempfile.TemporaryDirectory() as d:
            path = os.path.join(d, "rects.txt")
            with open(path, "w") as f:
                f.write("0,0,2,2\n 4 , 4 , 6 , 6 \n")
            self.assertEqual(self.lines("region", "--move", "x:1", "--file", path), expected)

    def test_svg(self):
        with tempfile.TemporaryDirectory() as d:
            path = os.path.join(d, "turned.svg")
            doc = json.loads(self.ok("region", "--json", "--svg", path, *SQUARE_45))
            root = ET.parse(path).getroot()
            self.assertEqual(root.tag, SVG + "svg")
            self.assertEqual(len(root.get("viewBox").split()), 4)
            [(rects, quads, outline)] = svg_groups(root)
            self.assertEqual((rects, quads), (doc["result"], doc["quadrilaterals"]))
            self.assertEqual(outline, {(0, 0, 10, 0), (0, 10, 10, 10), (0, 0, 0, 10), (10, 0, 10, 10)})
            # The outline of an L of two rectangles: where the bands meet, only the step is drawn.
            self.ok("region", "--svg", path, "0,0,4,1", "0,1,1,4")
            [(_, _, outline)] = svg_groups(ET.parse(path).getroot())
            self.assertEqual(outline, {(0, 0, 4, 0), (1, 1, 4, 1), (0, 4, 1, 4), (0, 0, 0, 1), (4, 0, 4, 1),
                                       (0, 1, 0, 4), (1, 1, 1, 4)})
            self.assertEqual(sorted(os.listdir(d)), ["turned.svg"])  # no temporary file left


class DemoTest(Case):
    def test_bare_quillon_runs_the_demo(self):
        with tempfile.TemporaryDirectory() as d:
            p = subprocess.run([TOOL], cwd=d, capture_output=True, text=True, timeout=60)
            self.assertEqual((p.returncode, p.stderr), (0, ""))
            out = p.stdout.splitlines()
            self.assertEqual(out[:2], ["region of 3 rectangles (left,top,right,bottom)", "  10,10,50,20  10,20,20,50  30,30,45,45"])
            self.assertEqual([l for l in out if l.startswith("==")],
                             ["== Transform<float>", "== Transform<double>", "== Transform<guarddouble>"])
            self.assertEqual(out[-1], "picture: quillon-demo.svg")
            root = ET.parse(os.path.join(d, "quillon-demo.svg")).getroot()
            self.assertEqual([t.text for t in root.findall(SVG + "text")][:3],
                             ["Transform<float>", "Transform<double>", "Transform<guarddouble>"])

    def test_json_steps_and_pictures(self):
        with tempfile.TemporaryDirectory() as d:
            path = os.path.join(d, "demo.svg")
            doc = json.loads(self.ok("demo", "--json", "--svg", path))
            panels = svg_groups(ET.parse(path).getroot())
        self.assertEqual(doc["region"], [[10, 10, 50, 20], [10, 20, 20, 50], [30, 30, 45, 45]])
        c, s = math.cos(0.5235987755982988), math.sin(0.5235987755982988)
        as_float = lambda v: struct.unpack("f", struct.pack("f", v))[0]
        identity = [[1, 0, 0, 0], [0, 1, 0, 0], [0, 0, 1, 0], [0, 0, 0, 1]]
        for entry, panel, rounded in zip(doc["types"], panels, [as_float, float, float]):
            steps = [step["matrix"] for step in entry["steps"]]
            turned = [[rounded(c), rounded(-s), 0, 0], [rounded(s), rounded(c), 0, 0], [0, 0, 1, 0], [0, 0, 0, 1]]
            moved = [turned[0][:3] + [40]] + turned[1:]
            self.assertEqual(steps, [identity, turned, moved], entry["type"])
            self.assertEqual((panel[0], panel[1]), (entry["result"], entry["quadrilaterals"]))
            # The region command with the same steps gives the same region.
            region = json.loads(self.ok("region", "--json", "--type", entry["type"], "--turn", "z:0.5235987755982988",
                                        "--move", "x:40", "10,10,50,20", "10,20,20,50", "30,30,45,45"))
            self.assertEqual(region["result"], entry["result"])
        self.assertEqual([e["type"] for e in doc["types"]], ["float", "double", "guarddouble"])


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
        (["region", "1,2,3"], "", "rectangle '1,2,3': expected four integers L,T,R,B, got 3"),
        (["region", "0,0,1.5,2"], "", "malformed integer '1.5'"),
        (["region", "--move", "v:1", "0,0,1,1"], "", "unknown axis 'v'"),
        (["region", "--type", "int", "0,0,1,1"], "", "unknown element type 'int'"),
        (["region"], "\n# nothing\n", "no rectangles"),
        (["region"], "0,0,1,1\n0,0,1\n", "standard input, line 2: expected four integers"),
        (["region", "--file", "/nonexistent/rects.txt"], "", "cannot read /nonexistent/rects.txt"),
        (["region", "--file", "/"], "", "cannot read /"),
        (["map", "--bogus"], "", "--bogus"),
        (["nonsense"], "", "nonsense"),
    ]

    def test_each_gives_one_line_and_status_2(self):
        for args, stdin, message in self.CASES:
            with self.subTest(args=args):
                self.assertFails(args, stdin, message)

    def assertFails(self, args, stdin, message):
        code, out, err = run(*args, stdin=stdin)
        self.assertEqual(code, 2)
        self.assertEqual(out, "")  # nothing of the good lines before a bad one
        self.assertEqual(len(err.splitlines()), 1, err)
        self.assertTrue(err.startswith("quillon: "), err)
        self.assertIn(message, err)

    def test_no_picture_is_written_on_bad_input(self):
        with tempfile.TemporaryDirectory() as d:
            path = os.path.join(d, "out.svg")
            self.assertFails(["region", "--svg", path, "0,0,2,2", "1,x,2,2"], "", "malformed integer 'x'")
            self.assertFails(["region", "--svg", path, "--move", "x:y", "0,0,2,2"], "", "malformed number 'y'")
            self.assertFails(["region", "--svg", os.path.join(d, "missing", "out.svg"), "0,0,2,2"], "", "cannot write")
            self.assertFails(["demo", "--svg", os.path.join(d, "missing", "demo.svg")], "", "cannot write")
            self.assertEqual(os.listdir(d), [])

    def test_help(self):
        for command in ["map", "matrix", "info", "region", "demo"]:
            self.assertIn(f"Usage: quillon {command}", self.ok(command, "--help"))


if __name__ == "__main__":
    TOOL, MEMBERS = os.path.abspath(sys.argv[1]), sys.argv[2]
    unittest.main(argv=sys.argv[:1], verbosity=1)
