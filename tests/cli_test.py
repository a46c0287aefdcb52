#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
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
        lines = "1,2,3\n\n# a comment\n 4 , 5 , 6 \n"
        self.assertEqual(self.lines("map", "--move", "y:1", stdin=lines), ["1,3,3", "4,6,6"])
        self.assertEqual(self.lines("map", "--move", "y:1", "-", stdin=lines), ["1,3,3", "4,6,6"])
        self.assertEqual(self.lines("map", "--move", "y:1", "--file", "-", stdin=lines), ["1,3,3", "4,6,6"])
        with tempfile.TemporaryDirectory() as d:
            path = os.path.join(d, "points.csv")
            with open(path, "w") as f:
                f.write(lines)
            self.assertEqual(self.lines("map", "--move", "y:1", "--file", path), ["1,3,3", "4,6,6"])

    def test_memory_does_not_grow_with_the_input(self):
        # 30,000 and 300,000 points through --json: held whole, the larger input's text alone would
        # take 40 MB more. The peak resident size of a child that only runs the tool is measured;
        # AddressSanitizer's quarantine of freed memory is turned off for it.
        probe = ("import resource, subprocess, sys\n"
                 "with open(sys.argv[2]) as i, open(sys.argv[3], 'w') as o:\n"
                 "    code = subprocess.run([sys.argv[1], 'map', '--json', '--move', 'x:1'], stdin=i, stdout=o).returncode\n"
                 "print(code, resource.getrusage(resource.RUSAGE_CHILDREN).ru_maxrss)\n")
        env = dict(os.environ, ASAN_OPTIONS=os.environ.get("ASAN_OPTIONS", "") +
                   ":quarantine_size_mb=0:thread_local_quarantine_size_kb=0")
        peaks = []
        with tempfile.TemporaryDirectory() as d:
            path, out = os.path.join(d, "points.csv"), os.path.join(d, "out.json")
            for count in [30000, 300000]:
                with open(path, "w") as f:
                    f.writelines(f"{k}.25,-{k}.5,{k % 977}\n" for k in range(count))
                code, kb = map(int, subprocess.run([sys.executable, "-c", probe, TOOL, path, out], capture_output=True,
                                                   text=True, check=True, env=env).stdout.split())
                self.assertEqual(code, 0)
                peaks.append(kb)
                with open(out) as f:
                    points = json.load(f)["points"]
                self.assertEqual(len(points), count)
                last = count - 1
                self.assertEqual(points[-1], {"in": [last + 0.25, -(last + 0.5), last % 977],
                                              "out": [last + 1.25, -(last + 0.5), last % 977]})
        self.assertLess(peaks[1], peaks[0] + 4 * 1024, peaks)
        with open(TOOL, "rb") as f:
            sanitized = b"libasan" in f.read()
        if not sanitized:  # the sanitizer's own memory is not the tool's
            self.assertLess(peaks[1], 20 * 1024)


class VersionTest(Case):
    def test_version_is_the_modules(self):
        version = json.loads(self.ok("info", "--json"))["version"]["FixedFileVersion"]
        self.assertEqual(self.ok("--version"), f"quillon {version}\n")
        self.assertEqual(self.ok("-V"), f"quillon {version}\n")


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


def rects_of(group):
    """The rectangles of a group of filled paths (M l t H r V b H l Z) or of <rect> elements."""
    if group is None:
        return []
    out = []
    for e in group:
        if e.tag == SVG + "path":
            out += [[int(v) for v in m] for m in re.findall(r"M(-?\d+) (-?\d+)H(-?\d+)V(-?\d+)H-?\d+Z", e.get("d"))]
        elif e.tag == SVG + "rect":
            x, y, w, h = (float(e.get(k)) for k in ("x", "y", "width", "height"))
            out.append([int(x), int(y), int(x + w), int(y + h)])
    return out


def svg_panels(root):
    """The picture's panels: title, subtitle, the rectangles of each kind of shape in region
    coordinates, the empty note, the tick labels with their screen positions, and the mapping from
    region coordinates to the screen."""
    panels = []
    for g in root.iter(SVG + "g"):
        if g.get("class") != "panel":
            continue
        find = lambda c: next((e for e in g.iter() if e.get("class") == c), None)
        text = lambda c: (find(c).text if find(c) is not None else None)
        shapes = find("shapes")
        a, b, scale, c, d = map(float, re.fullmatch(r"translate\((\S+) (\S+)\) scale\((\S+)\) translate\((\S+) (\S+)\)",
                                                      shapes.get("transform")).groups())
        panels.append({
            "title": text("title"), "subtitle": text("subtitle"),
            "mapped": rects_of(find("mapped-region")), "given": rects_of(find("given-rectangles")),
            "given-region": rects_of(find("given-region")), "marked": rects_of(find("marked-pixels")),
            "lacking": rects_of(find("lacking-pixels")), "empty": find("empty-note") is not None,
            "x-labels": [(float(e.text), float(e.get("x"))) for e in g.iter() if e.get("class") == "x-label"],
            "y-labels": [(float(e.text), float(e.get("y"))) for e in g.iter() if e.get("class") == "y-label"],
            "to-screen": lambda x, y, a=a, b=b, s=scale, c=c, d=d: (a + s * (x + c), b + s * (y + d)),
        })
    return panels


def pixels(rects):
    return {(x, y) for l, t, r, b in rects for x in range(l, r) for y in range(t, b)}


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

    def test_an_empty_result_is_said_on_standard_error(self):
        # Turned a quarter about x, the square stands on edge: every corner has y = 0.
        self.assertEqual(run("region", "--turn", "x:90deg", "0,0,10,10"),
                         (0, "", "quillon: the mapped region is empty (the transform flattens it to no pixel)\n"))
        self.assertEqual(run("region", "0,0,0,5"), (0, "", "quillon: the mapped region is empty (the rectangles cover no pixel)\n"))
        # Not said when there is something: a quarter turn about z keeps the pixels.
        self.assertEqual(run("region", "--turn", "z:90deg", "0,0,10,10")[2], "")

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
        lines = "# two\n0,0,2,2\n\n4,4,6,6\n"
        self.assertEqual(self.lines("region", "--move", "x:1", stdin=lines), expected)
        self.assertEqual(self.lines("region", "--move", "x:1", "-", stdin=lines), expected)
        self.assertEqual(self.lines("region", "--move", "x:1", "--file", "-", stdin=lines), expected)
        with tempfile.TemporaryDirectory() as d:
            path = os.path.join(d, "rects.txt")
            with open(path, "w") as f:
                f.write("0,0,2,2\n 4 , 4 , 6 , 6 \n")
            self.assertEqual(self.lines("region", "--move", "x:1", "--file", path), expected)
            out = os.path.join(d, "out.txt")
            self.assertEqual(self.ok("region", "--move", "x:1", "--file", path, "-o", out), "")
            with open(out) as f:
                self.assertEqual(f.read().splitlines(), expected)

    def test_overlapping_rectangles_are_one_region_before_mapping(self):
        # Two overlapping rectangles and the one they make give the same result through a turn: the
        # region is joined first, so its rectangles (not the given ones) are what is mapped. Enough
        # of them to be joined in several batches.
        pieces = [f"{x},0,{x + 2},3" for x in range(0, 3000)]
        whole = self.lines("region", "--turn", "z:0.3", "0,0,3001,3")
        self.assertEqual(self.lines("region", "--turn", "z:0.3", stdin="\n".join(pieces) + "\n"), whole)

    def test_svg(self):
        with tempfile.TemporaryDirectory() as d:
            path = os.path.join(d, "turned.svg")
            doc = json.loads(self.ok("region", "--json", "--svg", path, *SQUARE_45))
            root = ET.parse(path).getroot()
            self.assertEqual(root.tag, SVG + "svg")
            [panel] = svg_panels(root)
            self.assertEqual(panel["title"], "Transform<double>: turn z:45deg")
            self.assertEqual(panel["mapped"], doc["result"])  # the mapped region, rectangle for rectangle
            self.assertEqual(panel["given"], [[0, 0, 10, 10]])  # the rectangle as given
            self.assertFalse(panel["empty"])
            # The tick labels sit where their coordinates are drawn; y grows downward.
            for labels, axis in [(panel["x-labels"], 0), (panel["y-labels"], 1)]:
                self.assertGreaterEqual(len(labels), 3)
                for value, place in labels:
                    point = (value, 0) if axis == 0 else (0, value)
                    self.assertAlmostEqual(panel["to-screen"](*point)[axis] + (4 if axis else 0), place, places=1)
            ys = [place for _, place in sorted(panel["y-labels"])]
            self.assertEqual(ys, sorted(ys))
            self.assertEqual(sorted(os.listdir(d)), ["turned.svg"])  # no temporary file left

    def test_svg_of_many_far_and_empty_results(self):
        with tempfile.TemporaryDirectory() as d:
            path = os.path.join(d, "out.svg")
            # Beyond 200 rectangles they are not outlined one by one; their union is drawn instead.
            many = [f"{k},{k % 7},{k + 3},{k % 7 + 2}" for k in range(0, 402, 2)]
            doc = json.loads(self.ok("region", "--json", "--svg", path, "--move", "y:1", *many))
            [panel] = svg_panels(ET.parse(path).getroot())
            self.assertEqual((panel["given"], panel["given-region"]), ([], doc["region"]))
            self.assertEqual(panel["mapped"], doc["result"])
            # Far from its input, the result gets a panel of its own, with its own axes.
            doc = json.loads(self.ok("region", "--json", "--svg", path, "--move", "x:100000", "0,0,40,30"))
            before, after = svg_panels(ET.parse(path).getroot())
            self.assertEqual((before["given"], before["mapped"]), ([[0, 0, 40, 30]], []))
            self.assertEqual((after["given"], after["mapped"]), ([], doc["result"]))
            self.assertTrue(all(-10 <= v <= 50 for v, _ in before["x-labels"]))
            self.assertTrue(all(99990 <= v <= 100050 for v, _ in after["x-labels"]))
            # An empty result is said in the picture too.
            self.assertEqual(run("region", "--svg", path, "--turn", "x:90deg", "0,0,10,10")[0], 0)
            [panel] = svg_panels(ET.parse(path).getroot())
            self.assertEqual((panel["empty"], panel["mapped"], panel["given"]), (True, [], [[0, 0, 10, 10]]))


class DemoTest(Case):
    def test_bare_quillon_runs_the_demo(self):
        with tempfile.TemporaryDirectory() as d:
            p = subprocess.run([TOOL], cwd=d, capture_output=True, text=True, timeout=60)
            self.assertEqual((p.returncode, p.stderr), (0, ""))
            out = p.stdout.splitlines()
            self.assertEqual(out[:2], ["region of 3 rectangles (left,top,right,bottom)", "  10,10,50,20  10,20,20,50  30,30,45,45"])
            self.assertEqual([l for l in out if l.startswith("==")],
                             ["== Transform<float>", "== Transform<double>", "== Transform<guarddouble>"])
            self.assertEqual(out[-1], "no picture (quillon demo --svg FILE draws one)")
            self.assertEqual(os.listdir(d), [])  # no file unless asked
            # Given only the demo's options, quillon runs the demo.
            p = subprocess.run([TOOL, "--svg", "demo.svg"], cwd=d, capture_output=True, text=True, timeout=60)
            self.assertEqual((p.returncode, p.stderr, p.stdout.splitlines()[-1]), (0, "", "picture: demo.svg"))
            self.assertEqual(p.stdout.splitlines()[:-1], out[:-1])
            root = ET.parse(os.path.join(d, "demo.svg")).getroot()
            self.assertEqual([p["title"] for p in svg_panels(root)],
                             [f"Transform<{t}>: turn z 30deg, move x 40" for t in ["float", "double", "guarddouble"]])

    def test_json_steps_and_pictures(self):
        with tempfile.TemporaryDirectory() as d:
            path = os.path.join(d, "demo.svg")
            doc = json.loads(self.ok("demo", "--json", "--svg", path))
            panels = svg_panels(ET.parse(path).getroot())
        # The pixels on which the element types disagree are marked in every panel: filled where that
        # type's result has them, outlined where it lacks them.
        results = [pixels(entry["result"]) for entry in doc["types"]]
        disagree = set().union(*results) - set.intersection(*results)
        self.assertTrue(disagree)
        for panel, own in zip(panels, results):
            self.assertEqual(pixels(panel["marked"]), disagree & own)
            self.assertEqual(pixels(panel["lacking"]), disagree - own)
        self.assertEqual(doc["region"], [[10, 10, 50, 20], [10, 20, 20, 50], [30, 30, 45, 45]])
        c, s = math.cos(0.5235987755982988), math.sin(0.5235987755982988)
        as_float = lambda v: struct.unpack("f", struct.pack("f", v))[0]
        identity = [[1, 0, 0, 0], [0, 1, 0, 0], [0, 0, 1, 0], [0, 0, 0, 1]]
        for entry, panel, rounded in zip(doc["types"], panels, [as_float, float, float]):
            steps = [step["matrix"] for step in entry["steps"]]
            turned = [[rounded(c), rounded(-s), 0, 0], [rounded(s), rounded(c), 0, 0], [0, 0, 1, 0], [0, 0, 0, 1]]
            moved = [turned[0][:3] + [40]] + turned[1:]
            self.assertEqual(steps, [identity, turned, moved], entry["type"])
            self.assertEqual(panel["mapped"], entry["result"])
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
        (["map", "--move", "x:1"], "1,2,x\n", "standard input, line 1: malformed number 'x'"),
        # The first bad field is named, read from left to right.
        (["map"], "a,b,c\n", "line 1: malformed number 'a'"),
        (["map", "1,b,c"], "", "point '1,b,c': malformed number 'b'"),
        (["map", "--vector", "int", "1,2.5,x"], "", "malformed integer '2.5'"),
        (["region", "0,a,b,c"], "", "malformed integer 'a'"),
        # Arguments that would be ignored.
        (["region", "--file", "rects.csv", "1,1,2,2"], "", "from the arguments or from --file, not both"),
        (["map", "--file", "points.csv", "1,1,2"], "", "from the arguments or from --file, not both"),
        (["map", "-", "1,2,3"], "", "'-' (standard input) cannot stand beside other points"),
        (["info", "extra"], "", "info takes no arguments; got 'extra'"),
        (["demo", "extra"], "", "demo takes no arguments; got 'extra'"),
        (["map", "--file", "/nonexistent/points.csv"], "", "cannot read /nonexistent/points.csv"),
        (["region", "1,2,3"], "", "rectangle '1,2,3': expected four integers L,T,R,B, got 3"),
        (["region", "0,0,1.5,2"], "", "malformed integer '1.5'"),
        (["region", "--move", "v:1", "0,0,1,1"], "", "unknown axis 'v'"),
        (["region", "--type", "int", "0,0,1,1"], "", "unknown element type 'int'"),
        (["region"], "\n# nothing\n", "no rectangles"),
        (["region"], "0,0,1,1\n0,0,1\n", "standard input, line 2: expected four integers"),
        (["region", "--file", "/nonexistent/rects.txt"], "", "cannot read /nonexistent/rects.txt"),
        (["region", "--file", "/"], "", "cannot read /"),
        (["map", "--bogus"], "", "unknown option '--bogus' for map"),
        (["nonsense"], "", "unknown command 'nonsense'"),
        (["mpa", "1,2,3"], "", "unknown command 'mpa' (did you mean map?)"),
        (["map", "--move"], "", "option --move needs a value (AXIS:AMOUNT)"),
        (["region", "--turn", "--json", "0,0,1,1"], "", "option --turn needs a value (AXIS:ANGLE)"),
    ]

    def test_option_errors_in_the_tools_own_words(self):
        self.assertEqual(run("map", "--mvoe", "x:1", "1,2,3"),
                         (2, "", "quillon: unknown option '--mvoe' (did you mean --move?)\n"))
        self.assertEqual(run("region", "--jsno", "0,0,1,1"), (2, "", "quillon: unknown option '--jsno' (did you mean --json?)\n"))
        # An option of another command, given where the demo runs.
        self.assertEqual(run("--scael", "x:2"), (2, "", "quillon: unknown option '--scael' (did you mean map --scale?)\n"))
        # Values that begin with a minus are points, not options.
        self.assertEqual(self.lines("map", "-1,2,3", "-.5,0,0"), ["-1,2,3", "-0.5,0,0"])

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

    def test_map_streams_and_a_bad_line_stops_it(self):
        # The points before a bad line are written as they come; to --output, nothing is.
        self.assertEqual(run("map", "--move", "x:1", stdin="0,0,0\n1,2,x\n"),
                         (2, "1,0,0\n", "quillon: standard input, line 2: malformed number 'x'\n"))
        with tempfile.TemporaryDirectory() as d:
            out = os.path.join(d, "out.txt")
            self.assertEqual(run("map", "-o", out, "--move", "x:1", stdin="0,0,0\n1,2,x\n")[0], 2)
            self.assertEqual(run("region", "--output", out, stdin="0,0,1,1\n1,2,x\n")[0], 2)
            self.assertEqual(os.listdir(d), [])
            self.assertEqual(self.ok("map", "-o", out, "--move", "x:1", "-", stdin="0,0,0\n1,2,3\n"), "")
            with open(out) as f:
                self.assertEqual(f.read(), "1,0,0\n2,2,3\n")
            self.assertEqual(os.listdir(d), ["out.txt"])

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


class CompletionTest(Case):
    SCRIPT = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "tools", "quillon", "quillon.bash")

    def complete(self, *words):
        probe = ('source "$0"; COMP_WORDS=("$@"); COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); _quillon; '
                 'printf "%s\\n" "${COMPREPLY[@]}"')
        p = subprocess.run(["bash", "-c", probe, self.SCRIPT, "quillon", *words], capture_output=True, text=True)
        self.assertEqual(p.returncode, 0, p.stderr)
        return sorted(filter(None, p.stdout.splitlines()))

    def test_each_commands_options_are_those_of_its_help(self):
        for command in ["map", "matrix", "region", "info", "demo"]:
            helped = sorted(set(re.findall(r"--[a-z]+", self.ok(command, "--help").split("Options:")[1].split("\n\n")[0])))
            self.assertEqual(self.complete(command, "--"), helped, command)
        self.assertEqual(self.complete("re"), ["region"])
        self.assertEqual(self.complete("map", "--vector", "guard"), ["guarddouble", "guardfloat", "guardint"])
        self.assertEqual(self.complete("region", "--type", ""), ["double", "float", "guarddouble"])


if __name__ == "__main__":
    TOOL, MEMBERS = os.path.abspath(sys.argv[1]), sys.argv[2]
    unittest.main(argv=sys.argv[:1], verbosity=1)
