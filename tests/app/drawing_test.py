"""LISP programs on drawings: the examples of the manual, and arguments of every kind."""

import os
import unittest

from program import ProgramTest

HELPERS = os.path.join(
    os.path.dirname(os.path.dirname(os.path.abspath(__file__))), "lisp", "helpers")


class Manual(ProgramTest):
    def test_functions_on_drawings(self):
        self.assertGreater(self.check_examples("drawing.md"), 29)

    def test_functions_that_run_commands(self):
        self.assertGreater(self.check_examples("commands.md"), 2)

    def test_functions_on_selections_and_prompts(self):
        self.assertGreater(self.check_examples("selection.md"), 12)

    def test_functions_on_entities(self):
        self.assertGreater(self.check_examples("entities.md"), 20)

    def test_functions_on_curves(self):
        self.assertGreater(self.check_examples("curves.md"), 17)

    def test_functions_of_the_shell(self):
        self.assertGreater(self.check_examples("shell.md"), 10)

    def test_functions_on_solids(self):
        self.assertGreater(self.check_examples("solids.md"), 9)


class Arguments(ProgramTest):
    def test_no_argument_and_no_group_stops_a_program(self):
        """The program tells that it has come through its calls, and through its entities."""
        code, output, errors = self.run_program(
            "run", os.path.join(HELPERS, "drawing_arguments.lsp"))
        self.assertEqual((code, errors), (0, ""))
        self.assertEqual([line.strip() for line in output.splitlines() if line.startswith("(")],
                         ["(CALLED T)", "(MADE T)"])

    def test_no_section_stops_a_program_or_leaves_a_piece_of_a_fitting(self):
        code, output, errors = self.run_program(
            "run", os.path.join(HELPERS, "odd_sections.lsp"), "--path", os.path.dirname(HELPERS))
        self.assertEqual((code, errors), (0, ""))
        self.assertEqual([line.strip() for line in output.splitlines() if line.startswith("(")],
                         ["(CALLED T)", "(MADE T)", "(WRONG nil)"])


if __name__ == "__main__":
    unittest.main()
