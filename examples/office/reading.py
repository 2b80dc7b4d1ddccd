"""What the checks with other programs share: reports, programs, tables."""

import csv
import io
import math
import os
import shutil
import subprocess
from collections import Counter


class Report:
    """Says line by line what is equal and what is not."""

    def __init__(self):
        self.failed = 0

    def line(self, word, text):
        print("  %-8s %s" % (word, text))

    def check(self, what, expected, found, tolerance=0.001):
        if isinstance(expected, float):
            equal = math.isclose(expected, found, abs_tol=tolerance)
            shown = "%.3f" % found
        else:
            equal = expected == found
            shown = found
        self.result(equal, what, shown, expected)

    def check_items(self, what, expected, found):
        """Two lots of items that shall hold the same ones, in whatever order."""
        expected, found = Counter(list(expected)), Counter(list(found))
        missing, extra = expected - found, found - expected
        self.result(not missing and not extra, what, sum(found.values()),
                    "%s, and not %s" % (list(missing)[:3], list(extra)[:3]))

    def result(self, equal, what, found, expected):
        if equal:
            self.line("ok", "%s: %s" % (what, found))
        else:
            self.failed += 1
            self.line("DIFFERS", "%s: expected %s, found %s" % (what, expected, found))

    def skip(self, reader, what):
        self.line("skipped", "%s: %s is not installed" % (what, reader))


def run(*words, **options):
    """What a program prints; the words of its failure when it fails."""
    done = subprocess.run(words, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True,
                          errors="replace", **options)
    return done.stdout if done.returncode == 0 else "exit code %d: %s" % (
        done.returncode, done.stdout.strip()[-200:])


def has_mdbtools():
    return shutil.which("mdb-export") is not None


def read_table(database, table):
    """The rows of a table, as mdbtools reads them; where that is missing, as swiftgate (or the
    program that SWIFTGATE of the environment names) exports them."""
    reader = ["mdb-export"] if has_mdbtools() else [
        os.environ.get("SWIFTGATE", "swiftgate"), "db", "export"]
    return list(csv.DictReader(io.StringIO(run(*reader, database, table))))


def number(text):
    return float(text) if text else 0.0
