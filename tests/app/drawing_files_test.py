"""Drawings that the program writes, looked at by another program's auditor."""

import glob
import json
import os
import subprocess
import unittest
from program import ProgramTest

AUDITOR = "/usr/bin/python3"  # Debian installs the auditor's library for its own interpreter only
AUDIT = """
import json, sys, ezdxf
for name in sys.argv[1:]:
    auditor = ezdxf.readfile(name).audit()
    print(json.dumps([name, [e.message for e in auditor.errors], [f.message for f in auditor.fixes]]))
"""
RELEASES = ["2000", "2007", "2013", "2018"]
PROGRAM = """
(regapp "MINE")
(entmake '((0 . "LAYER") (100 . "AcDbSymbolTableRecord") (100 . "AcDbLayerTableRecord")
           (2 . "Walls") (70 . 0) (62 . 3) (6 . "Continuous")))
(entmake '((0 . "LINE") (8 . "Walls") (10 0 0 0) (11 3 4 0) (-3 ("MINE" (1000 . "said") (1070 . 3)))))
(entmake '((0 . "CIRCLE") (62 . 1) (10 5 5 0) (40 . 2.5)))
(entmake '((0 . "ARC") (10 5 5 0) (40 . 3.5) (50 . 0.5) (51 . 2.0)))
(entmake '((0 . "TEXT") (10 1 1 0) (40 . 0.5) (1 . "Gr\\U+00FC\\U+00DFe ^ \\U+20AC") (50 . 0.5)))
(entmake '((0 . "MTEXT") (100 . "AcDbEntity") (100 . "AcDbMText") (10 1 3 0) (40 . 0.5) (41 . 5.0)
           (71 . 1) (1 . "One\\\\PTwo {\\\\H2x;big}")))
(entmake '((0 . "LWPOLYLINE") (100 . "AcDbEntity") (100 . "AcDbPolyline") (90 . 3) (70 . 1)
           (10 0 0) (42 . 0.5) (10 4 0) (10 4 4)))
(foreach list '(((0 . "POLYLINE") (70 . 1)) ((0 . "VERTEX") (10 0 0 0)) ((0 . "VERTEX") (10 5 0 0))
                ((0 . "SEQEND"))
                ((0 . "BLOCK") (2 . "Damper") (10 0 0 0) (70 . 2)) ((0 . "LINE") (10 0 0 0) (11 1 0 0))
                ((0 . "ATTDEF") (10 0 0 0) (40 . 0.2) (1 . "") (3 . "Number") (2 . "NR") (70 . 0))
                ((0 . "ENDBLK"))
                ((0 . "INSERT") (2 . "Damper") (66 . 1) (10 2 2 0) (50 . 1.0))
                ((0 . "ATTRIB") (10 2 2 0) (40 . 0.2) (1 . "17") (2 . "NR") (70 . 0))
                ((0 . "SEQEND")))
  (entmake list))
(dictadd (namedobjdict) "MINE"
         (entmakex '((0 . "XRECORD") (100 . "AcDbXrecord") (1 . "text") (10 1.0 2.0 3.0) (70 . 4))))
"""


def has_auditor():
    return subprocess.run([AUDITOR, "-c", "import ezdxf"], capture_output=True).returncode == 0


def real_files():
    folder = os.environ.get("SWIFTGATE_REAL_DATA", "../shared/data")
    return sorted(glob.glob(os.path.join(folder, "dxf", "*.dxf")))


@unittest.skipUnless(has_auditor(), "the auditor, python3-ezdxf, is not installed")
class Audit(ProgramTest):
    def audit(self, names):
        """The findings by name."""
        done = subprocess.run([AUDITOR, "-c", AUDIT] + names, capture_output=True, text=True)
        self.assertEqual(done.returncode, 0, done.stderr)
        return {name: errors + fixes for name, errors, fixes in map(json.loads, done.stdout.splitlines())}

    def converted(self, source, stem):
        names = []
        for release in RELEASES:
            for options in [[], ["--binary"]]:
                names.append(self.path(f"{stem}{release}{''.join(options)}.dxf"))
                code, _, errors = self.run_program("convert", source, names[-1], "--release", release,
                                                   *options)
                self.assertEqual(code, 0, errors)
        return names

    def test_new_drawings(self):
        self.assertEqual(self.run_program("run", "--eval", "(princ)", "--save", "empty.dxf")[0], 0)
        self.write("program.lsp", PROGRAM)
        code, _, errors = self.run_program("run", "program.lsp", "--save", "plan.dxf")
        self.assertEqual(code, 0, errors)
        names = self.converted(self.path("empty.dxf"), "empty") + self.converted(self.path("plan.dxf"), "plan")
        for name, findings in self.audit(names).items():
            self.assertEqual(findings, [], name)

    def test_drawings_of_other_programs(self):
        for source in real_files():
            before = self.audit([source])[source]
            for name, findings in self.audit(self.converted(source, "out")).items():
                self.assertEqual(findings, before, name)


if __name__ == "__main__":
    unittest.main()
