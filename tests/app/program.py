"""Runs the built executable for the tests of this folder."""

import os
import re
import shutil
import subprocess
import sys
import tempfile
import unittest

BUILD = os.path.abspath(sys.argv.pop(1)) if len(sys.argv) > 1 else ""
SWIFTGATE = os.path.join(BUILD, "bin", "swiftgate")
PAGES = os.path.join(BUILD, "share", "swiftgate", "functions")
LOADING = "Loading Quillon Swift Gate (Direct)"


class ProgramTest(unittest.TestCase):
    """A test with a folder of its own, in which the program runs and which is its home too."""

    maxDiff = None

    def setUp(self):
        self.folder = os.path.realpath(tempfile.mkdtemp())
        self.addCleanup(shutil.rmtree, self.folder)
        self.environment = {
            name: value for name, value in os.environ.items()
            if not name.startswith(("XDG_", "LC_"))
        }
        self.environment.update(
            HOME=self.folder, LANG="C.UTF-8", TERM="vt100", SWIFTGATE_SHELL="false")

    def path(self, name):
        return os.path.join(self.folder, name)

    def write(self, name, text):
        os.makedirs(os.path.dirname(self.path(name)), exist_ok=True)
        with open(self.path(name), "w", encoding="utf-8") as file:
            file.write(text)
        return self.path(name)

    def read(self, name):
        with open(self.path(name), encoding="utf-8") as file:
            return file.read()

    def popen(self, *words, **options):
        return subprocess.Popen(
            [SWIFTGATE, *words], cwd=self.folder, env=self.environment, text=True,
            encoding="utf-8", **options)

    def run_program(self, *words, typed="", executable=SWIFTGATE):
        """The exit code, standard output, and standard error without the line about loading."""
        done = subprocess.run(
            [executable, *words], cwd=self.folder, env=self.environment, input=typed, text=True,
            encoding="utf-8", capture_output=True, timeout=120)
        errors = done.stderr.replace("\n" + LOADING, "", 1).lstrip("\n")
        return done.returncode, done.stdout, errors

    def check_examples(self, page):
        """Runs the examples of a page of functions, each behind the first one, and compares what
        they tell; answers how many there are."""
        with open(os.path.join(PAGES, page), encoding="utf-8") as file:
            first, *examples = re.findall(r"```lisp\n(.*?)```", file.read(), re.S)
        for number, example in enumerate(examples):
            with self.subTest(example=example):
                self.environment["TMPDIR"] = self.environment["TEMP"] = self.path(str(number))
                os.mkdir(self.environment["TMPDIR"])
                lines = [line.partition("  ; => ") for line in example.splitlines()]
                program = first + "".join(
                    '(setq answer %s) (princ "\\n=> ") (prin1 answer)\n' % form if told else form + "\n"
                    for form, told, _ in lines) + "(princ)"
                code, output, errors = self.run_program("run", self.write("example.lsp", program))
                self.assertEqual(code, 0, errors)
                self.assertEqual(
                    [line[3:] for line in output.splitlines() if line.startswith("=> ")],
                    [value for _, told, value in lines if told])
        return len(examples)
