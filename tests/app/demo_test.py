"""The demo as a whole, and that its checks find what is wrong."""

import os
import re
import shutil
import subprocess
import tempfile
import unittest

from program import BUILD, SWIFTGATE, ProgramTest

SOURCE = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
OFFICE = os.path.join(SOURCE, "examples", "office")

# Changes to the drawing, as a program that runs in it, and the check that must find each.
DAMAGED_DRAWINGS = [
    ('(entdel (ssname (ssget "_X" (list (cons 0 "INSERT") (cons 8 "E-LITE"))) 0))',
     "equipment, with extended data"),
    ('(progn (setq data (entget (ssname (ssget "_X" (list (cons 8 "M-DIFF-SUPP"))) 3)))'
     ' (entmod (subst (list 10 1.0 2.0 2700.0) (assoc 10 data) data)))',
     "equipment, with extended data"),
    ('(sg_xdput-list (ssname (ssget "_X" (list (cons 8 "M-DIFF-SUPP"))) 0) (list "tag" "none"))',
     "equipment, with extended data"),
    ('(entdel (ssname (ssget "_X" (list (cons 0 "QNLEADER"))) 5))', "leaders, by where they start"),
    ('(entdel (ssname (ssget "_X" (list (cons 0 "MTEXT"))) 9))', "texts in the schedules"),
    ('(entdel (ssname (ssget "_X" (list (cons 0 "QN_HVACSOLID"))) 7))', "solids, by handle"),
    ('(command "_.MOVE" (ssget "_X" (list (cons 0 "QN_HVACSOLID"))) "" "0,0,0" "0,0,1")',
     "straight pieces out of place"),
    ('(entdel (ssname (ssget "_X" (list (cons 0 "HATCH"))) 0))', "entities of the floor"),
    ('(command "_.-LAYER" "_Color" 3 "M-DUCT-SUPP" "")', "layers, as the standard has them"),
]

DAMAGED_DATABASES = [
    ("UPDATE tblSchedule SET dAirflow = 181 WHERE sTag = 'SD-1.01-1'", "sum of air, m3/h"),
    ("UPDATE tblSchedule SET dX = dX + 1 WHERE sTag = 'L-1.04-2'", "equipment in the schedule"),
    ("DELETE FROM tblSchedule WHERE sTag = 'L-1.04-2'", "equipment in the schedule"),
    ("UPDATE tblDuct SET dLength = dLength + 1 WHERE sKind = 'Straight'",
     "straight ducts, with lengths"),
    ("DELETE FROM tblDuct WHERE sKind = 'Takeoff' AND sServes = 'SD-1.01-1'",
     "takeoffs, by diffuser and place"),
]


class Demo(ProgramTest):
    @classmethod
    def setUpClass(cls):
        cls.files = os.path.realpath(tempfile.mkdtemp())
        cls.addClassCleanup(shutil.rmtree, cls.files)
        cls.demo = subprocess.run(
            [os.path.join(SOURCE, "scripts", "demo.sh"), BUILD, cls.files], text=True,
            capture_output=True, timeout=280, stdin=subprocess.DEVNULL,
            env=dict(os.environ, HOME=cls.files))

    def setUp(self):
        super().setUp()
        self.environment["QT_QPA_PLATFORM"] = "offscreen"
        for name in ("floor.dxf", "project.mdb", "office.dwg", "ducts.step", "job.sha256",
                     "job.sha256.signature"):
            shutil.copy(os.path.join(self.files, name), self.path(name))

    def office(self, name, *words):
        program = os.path.join(OFFICE, name + ".lsp")
        return self.run_program("run", program, "--path", OFFICE, *words)

    def check(self, *files):
        code, printed, _ = self.office(
            "check", "--drawing", "floor.dxf", "--", "project.mdb", *files)
        return code, [line.split(":")[0].split(None, 1)[1] for line in printed.splitlines()
                      if line.startswith("  DIFFERS ")]

    def test_all_checks_pass(self):
        self.assertEqual((self.demo.returncode, self.demo.stderr), (0, ""), self.demo.stdout)
        self.assertIn("All of it is as it should be.", self.demo.stdout)
        self.assertNotIn("DIFFERS", self.demo.stdout)
        self.assertNotIn("\r", self.demo.stdout)
        self.assertGreater(self.demo.stdout.count("  ok  "), 30)

    def test_files_are_named_with_their_sizes(self):
        named = self.demo.stdout.partition("== Files made")[2]
        for name in os.listdir(self.files):
            path = os.path.join(self.files, name)
            if os.path.isfile(path) and not name.startswith("."):
                self.assertRegex(named, r"\b%s +%.1f KB" % (name, os.path.getsize(path) / 1024))

    def test_the_dialog_has_changed_the_standard(self):
        _, printed, _ = self.run_program(
            "db", "sql", "project.mdb", "SELECT sLineweight FROM tblLayer WHERE sName = 'M-TEXT'")
        self.assertEqual(printed, "sLineweight\n18\n")

    def test_damaged_drawings_are_found(self):
        for change, found in DAMAGED_DRAWINGS:
            with self.subTest(change=change):
                code, _, errors = self.run_program(
                    "run", "--eval", change, "--drawing", "office.dwg", "--save", "damaged.dwg")
                self.assertEqual(code, 0, errors)
                code, differing = self.check("damaged.dwg")
                self.assertEqual(code, 1)
                self.assertIn(found, differing)

    def test_damaged_databases_are_found(self):
        for statement, found in DAMAGED_DATABASES:
            with self.subTest(statement=statement):
                shutil.copy(os.path.join(self.files, "project.mdb"), self.path("project.mdb"))
                self.assertEqual(self.run_program("db", "sql", "project.mdb", statement)[0], 0)
                code, differing = self.check()
                self.assertEqual(code, 1)
                self.assertIn(found, differing)

    def test_a_solid_that_lacks_in_the_exchange_is_found(self):
        text = self.read("ducts.step").replace("QN_HVACSOLID ", "OTHER ", 2)
        self.write("ducts.step", text)
        self.assertEqual(self.check("ducts.step")[0], 1)

    def test_another_checksum_is_not_the_signed_one(self):
        self.write("job.sha256", self.read("job.sha256").replace("job", "jab"))
        code, _, errors = self.office("signature", "--", "verify", "job.sha256")
        self.assertEqual(code, 1)
        self.assertIn("job.sha256: the signature is not that of the file", errors)

    def commands_of(self, page, heading):
        """The commands of the first block of commands behind a heading."""
        with open(os.path.join(SOURCE, page), encoding="utf-8") as file:
            text = file.read().partition("\n## %s\n" % heading)[2]
        blocks = re.findall(r"```(\w*)\n(.*?)```", text, re.S)
        return next(block for language, block in blocks if not language).splitlines()

    def run_commands(self, lines):
        done = subprocess.run(
            ["sh", "-euc", "\n".join(lines)], cwd=self.folder, capture_output=True, text=True,
            timeout=120, env=dict(self.environment, office=OFFICE,
                                  PATH=os.path.dirname(SWIFTGATE) + ":" + os.environ["PATH"]))
        self.assertEqual(done.returncode, 0, done.stdout + done.stderr)
        return done.stdout

    def test_the_tour_is_as_the_readme_tells(self):
        for name in ("floor.dxf", "project.mdb", "office.dwg"):
            os.remove(self.path(name))
        enter, *lines = self.commands_of("README.md", "Five minutes")
        self.assertIn("office=../../examples/office", enter)
        self.assertIn("  ok       ", self.run_commands(lines))

    def test_the_first_program_is_as_the_guide_tells(self):
        with open(os.path.join(SOURCE, "docs", "guide.md"), encoding="utf-8") as file:
            section = file.read().partition("\n## A program of one's own\n")[2]
            shown = section.partition("```lisp\n")[2].partition("```")[0]
        with open(os.path.join(SOURCE, "examples", "lamps.lsp"), encoding="utf-8") as file:
            self.assertEqual(file.read(), shown)
        printed = self.run_commands(
            line.replace("../../examples", os.path.join(SOURCE, "examples"))
            for line in self.commands_of("docs/guide.md", "A program of one's own"))
        self.assertRegex(printed, r"\bE-TEXT +13\n")

    def test_mistakes_are_named(self):
        for name, words, message in [
                ("make_project", [], "Name the database to make behind --"),
                ("make_project", ["--", "project.mdb"], "project.mdb is there already"),
                ("office", ["--", "none.mdb"], "There is no file none.mdb"),
                ("office", ["--", "floor.dxf"], "floor.dxf cannot be opened"),
                ("office", ["--", "project.mdb"], "The drawing has no rooms"),
                ("archive", ["--", "job.zip", "unpacked", "none.dwg"], "There is no file none.dwg"),
                ("signature", [], "Name sign or verify, and a file, behind --")]:
            with self.subTest(name=name, words=words):
                code, printed, errors = self.office(name, *words)
                self.assertEqual(code, 1)
                self.assertIn(message, printed + errors)


if __name__ == "__main__":
    unittest.main()
