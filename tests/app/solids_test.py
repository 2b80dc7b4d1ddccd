"""Duct solids on their way through the program: pictures, plain drawings, and exact shapes."""

import os
import unittest

from program import ProgramTest

LIBRARY = "libswiftgate-solids.so"

PIECE = """
(setq section '(0 0 0 100 0 0 0 0.0 0.0 12.0 8.0 "RC" 0.0 0.0 "" "" 0 1.0)
      made (qn_qn-drawTripleCenter nil 0 section))
(princ (cdr (assoc 0 (entget made))))
"""


class Solids(ProgramTest):
    def setUp(self):
        super().setUp()
        self.program = self.write("piece.lsp", PIECE)
        code, printed, _ = self.run_program("run", self.program, "--save", "piece.dxf")
        self.assertEqual((code, printed), (0, "QN_HVACSOLID"))

    def test_step_has_each_solid_with_layer_and_name(self):
        code, _, errors = self.run_program("convert", "piece.dxf", "piece.step")
        self.assertEqual((code, errors.replace("\nLoading Quillon Swift Gate (Direct)", "")),
                         (0, ""))
        text = self.read("piece.step")
        self.assertEqual(text.count("MANIFOLD_SOLID_BREP("), 1)
        self.assertRegex(text, r"PRODUCT\('QN_HVACSOLID [0-9A-F]+'")
        self.assertRegex(text, r"PRESENTATION_LAYER_ASSIGNMENT\('0'")
        self.assertIn("'INCH'", text)
        # Coordinates are those of the drawing.
        self.assertRegex(text, r"CARTESIAN_POINT\('',\(100\.,6\.,4\.\)\)")

    def test_step_of_a_drawing_without_solids_is_an_error(self):
        self.write("empty.dxf", "  0\nSECTION\n  2\nENTITIES\n  0\nENDSEC\n  0\nEOF\n")
        code, _, errors = self.run_program("convert", "empty.dxf", "empty.step")
        self.assertEqual(code, 3)
        self.assertIn("empty.step: the drawing has no solids to write", errors)
        self.assertFalse(os.path.exists(self.path("empty.step")))

    def test_flat_drawings_have_faces(self):
        code, _, _ = self.run_program("convert", "piece.dxf", "flat.dxf", "--flatten")
        self.assertEqual(code, 0)
        text = self.read("flat.dxf")
        self.assertEqual(text.count("3DFACE\n"), 6)
        self.assertNotIn("\nQN_HVACSOLID\n", text[text.index("ENTITIES"):])

    def test_pictures(self):
        for view in ["top", "front", "iso"]:
            code, _, errors = self.run_program(
                "render", "piece.dxf", "-o", view + ".svg", "--view", view)
            self.assertEqual(code, 0, errors)
        lines = {view: self.read(view + ".svg") for view in ["top", "iso"]}
        self.assertGreater(lines["iso"].count("fill=\"#"), lines["top"].count("fill=\"#"))

    def test_modelling_is_opened_on_first_use(self):
        self.environment["LD_DEBUG"] = "files"
        _, _, errors = self.run_program("run", "--eval", "(princ 1)")
        self.assertIn("qn_qn-solid2017.dbx", errors)
        self.assertNotIn(LIBRARY, errors)
        self.assertNotIn("libTK", errors)
        _, _, errors = self.run_program("run", self.program)
        self.assertIn(LIBRARY, errors)


if __name__ == "__main__":
    unittest.main()
