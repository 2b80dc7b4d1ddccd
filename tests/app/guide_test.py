"""The first steps of the guide, as a new user takes them: what its commands print is what it says."""

import os
import re
import subprocess
import unittest

from program import BUILD, LOADING, ProgramTest

GUIDE = os.path.join(BUILD, "share", "swiftgate", "guide.md")


class FirstSteps(ProgramTest):
    def test_commands_print_what_the_guide_says(self):
        with open(GUIDE, encoding="utf-8") as file:
            steps = file.read().partition("\n## First steps\n")[2].partition("\n## ")[0]
        blocks = re.findall(r"```(\w*)\n(.*?)```", steps, re.S)
        self.write("outlets.lsp", next(text for kind, text in blocks if kind == "lisp"))
        self.write("outlets.in", next(text for kind, text in blocks if kind == ""))
        commands = "".join(text for kind, text in blocks if kind == "console")
        shown = re.findall(r"^\$ (.*)\n((?:(?!\$ ).*\n)*)", commands, re.M)
        self.assertGreater(len(shown), 5)
        self.environment["PATH"] = os.path.join(BUILD, "bin") + ":" + os.environ["PATH"]
        for command, expected in shown:
            with self.subTest(command):
                done = subprocess.run(
                    command, shell=True, cwd=self.folder, env=self.environment, text=True,
                    stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
                printed = done.stdout.replace(LOADING, "").replace(self.folder, "<here>")
                self.assertEqual(printed.strip(), expected.strip())


if __name__ == "__main__":
    unittest.main()
