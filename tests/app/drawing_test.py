"""LISP programs on drawings: the examples of the manual answer as they say."""

import unittest

from program import ProgramTest


class Manual(ProgramTest):
    def test_functions_on_drawings(self):
        self.assertGreater(self.check_examples("drawing.md"), 29)

    def test_functions_on_entities(self):
        self.assertGreater(self.check_examples("entities.md"), 20)


if __name__ == "__main__":
    unittest.main()
