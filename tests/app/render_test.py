"""Pictures of drawings: the formats, the options, and what is said of what cannot be drawn."""

import glob
import os
import struct
import unittest
import xml.etree.ElementTree as ElementTree

from program import ProgramTest

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
DATA = os.path.join(
    os.environ.get("SWIFTGATE_REAL_DATA") or os.path.join(ROOT, "..", "shared", "data"), "dxf")


def drawing(*entities):
    """The text of a drawing with these entities, each a list of codes and values."""
    groups = [(0, "SECTION"), (2, "ENTITIES")]
    for entity in entities:
        groups += entity
    groups += [(0, "ENDSEC"), (0, "EOF")]
    return "".join(f"{code:3d}\n{value}\n" for code, value in groups)


def line(x1, y1, x2, y2):
    return [(0, "LINE"), (8, "0"), (10, x1), (20, y1), (11, x2), (21, y2)]


def png_size(file):
    with open(file, "rb") as stream:
        head = stream.read(24)
    return struct.unpack(">II", head[16:24]) if head[:8] == b"\x89PNG\r\n\x1a\n" else None


class Render(ProgramTest):
    def setUp(self):
        super().setUp()
        self.plan = self.write("plan.dxf", drawing(line(0, 0, 100, 50)))

    def test_formats(self):
        for name in ["plan.png", "plan.SVG", "plan.pdf"]:
            self.assertEqual(self.run_program("render", self.plan, "-o", name), (0, "", ""))
        self.assertEqual(png_size(self.path("plan.png")), (1600, 1200))
        ElementTree.parse(self.path("plan.SVG"))
        with open(self.path("plan.pdf"), "rb") as file:
            self.assertEqual(file.read(5), b"%PDF-")

    def test_options(self):
        code, _, errors = self.run_program(
            "render", self.plan, "-o", "a.png", "--size", "300x200", "--view", "iso", "--ground",
            "black", "--layers", "0,none*", "--window", "-5,-5,105,55", "--no-lineweights")
        self.assertEqual((code, errors), (2, f"swiftgate: {self.plan}: no such layer: none*\n"))
        code, _, errors = self.run_program(
            "render", self.plan, "-o", "a.png", "--size", "300x200", "--view", "iso", "--ground",
            "black", "--layers", "0", "--window", "-5,-5,105,55", "--no-lineweights")
        self.assertEqual((code, errors), (0, ""))
        self.assertEqual(png_size(self.path("a.png")), (300, 200))

    def test_wrong_usage_answers_2_and_writes_nothing(self):
        for words, said in [
            ([], "--output is required"),
            (["-o", "a.gif"], ".png, .svg or .pdf"),
            (["-o", "a.png", "--size", "300"], "WIDTHxHEIGHT"),
            (["-o", "a.png", "--size", "0x5"], "WIDTHxHEIGHT"),
            (["-o", "a.png", "--size", "99999x5"], "WIDTHxHEIGHT"),
            (["-o", "a.png", "--view", "back"], "back"),
            (["-o", "a.png", "--layout", "Sheet"], "no such layout: Sheet; there are: Model"),
        ]:
            with self.subTest(words=words):
                code, _, errors = self.run_program("render", self.plan, *words)
                self.assertEqual(code, 2)
                self.assertIn(said, errors)
                self.assertEqual(os.listdir(self.folder).count("a.png"), 0)

    def test_files_that_cannot_be_used_answer_3(self):
        for words, said in [
            (["nothing.dxf", "-o", "a.png"], "no such drawing"),
            ([self.write("text.dxf", "no drawing"), "-o", "a.png"], "text.dxf"),
            ([self.plan, "-o", "no/folder/a.png"], "no/folder/a.png"),
        ]:
            with self.subTest(words=words):
                code, _, errors = self.run_program("render", *words)
                self.assertEqual(code, 3)
                self.assertIn(said, errors)

    def test_what_cannot_be_drawn_is_named_and_counted(self):
        unknown = [(0, "ODDITY"), (8, "0"), (100, "Odd"), (10, 1.0)]
        plan = self.write("odd.dxf", drawing(unknown, line(0, 0, 1, 1), unknown))
        code, _, errors = self.run_program("render", plan, "-o", "a.svg")
        self.assertEqual(code, 0)
        self.assertIn("not in the picture: 2 ODDITY", errors)

    def test_images_are_looked_for_beside_the_drawing_and_on_the_path(self):
        image = [(0, "IMAGE"), (100, "AcDbEntity"), (8, "0"), (100, "AcDbRasterImage"), (10, 0),
                 (20, 0), (11, 1), (21, 0), (12, 0), (22, 1), (13, 4), (23, 2), (340, "40"),
                 (70, 7)]
        definition = [(0, "ENDSEC"), (0, "SECTION"), (2, "OBJECTS"), (0, "IMAGEDEF"), (5, "40"),
                      (100, "AcDbRasterImageDef"), (1, "C:\\photos\\Site.bmp"), (10, 4), (20, 2)]
        file = self.write("photo.dxf", drawing(image, definition))
        code, _, errors = self.run_program("render", file, "-o", "a.svg")
        self.assertEqual(code, 0)
        self.assertIn("C:\\photos\\Site.bmp: no such image file", errors)
        pixels = b"\x00\x00\xff" * 4 * 2
        head = struct.pack("<2sIHHIIiiHHIIIIII", b"BM", 54 + len(pixels), 0, 0, 54, 40, 4, 2, 1, 24,
                           0, len(pixels), 0, 0, 0, 0)
        for folder in ["photos", "elsewhere"]:
            os.mkdir(self.path(folder))
            with open(self.path(os.path.join(folder, "site.BMP")), "wb") as stream:
                stream.write(head + pixels)
            code, _, errors = self.run_program("render", file, "-o", "a.svg", "--path",
                                               self.path("elsewhere"))
            self.assertEqual((code, errors), (0, ""), folder)
            with open(self.path("a.svg"), encoding="utf-8") as stream:
                self.assertIn("data:image/png;base64,", stream.read())
            os.remove(self.path(os.path.join(folder, "site.BMP")))

    def test_drawings_made_by_others(self):
        files = sorted(glob.glob(os.path.join(DATA, "*.dxf")))
        if not files:
            self.skipTest("no drawings made by others on this machine")
        for file in files:
            with self.subTest(file=file):
                self.assertEqual(self.run_program("render", file, "-o", "a.png")[0], 0)
                self.assertGreater(os.path.getsize(self.path("a.png")), 1000)


if __name__ == "__main__":
    unittest.main()
