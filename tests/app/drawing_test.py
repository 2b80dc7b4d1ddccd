"""LISP programs on drawings: the examples of the manual."""

import unittest

from program import ProgramTest


class Manual(ProgramTest):
    def test_the_examples_answer_as_they_say(self):
        self.assertGreater(self.check_examples("drawing.md"), 29)
        self.assertGreater(self.check_examples("entities.md"), 20)


if __name__ == "__main__":
    unittest.main()
