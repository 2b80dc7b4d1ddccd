#!/usr/bin/python3
"""Reads what the sales example has made with other programs, where they are installed, and compares
it with the database as it was given.

    other_readers.py GIVEN.mdb nwind.mdb sales.dxf

Prints a line for each comparison; the exit code is 1 when something differs.
"""

import os
import sys
from collections import defaultdict

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "office"))

from reading import Report, has_mdbtools, number, read_table, run  # noqa: E402

try:
    import ezdxf
except ImportError:
    ezdxf = None


def sales_by_category(database):
    """What each category has sold, added up line by line of the orders."""
    names = {row["CategoryID"]: row["CategoryName"] for row in read_table(database, "Categories")}
    category = {row["ProductID"]: names[row["CategoryID"]]
                for row in read_table(database, "Products")}
    sums = defaultdict(float)
    for row in read_table(database, "Order Details"):
        sums[category[row["ProductID"]]] += (
            number(row["UnitPrice"]) * number(row["Quantity"]) * (1 - number(row["Discount"])))
    return dict(sums)


def check_tables(report, given, made):
    """Every table of the compacted database has the rows that it had."""
    tables = [name for name in run("mdb-tables", "-1", given).splitlines() if name]
    report.check_items("mdbtools: tables", tables, run("mdb-tables", "-1", made).split("\n")[:-1])
    different = [table for table in tables
                 if sorted(run("mdb-export", given, table).splitlines())
                 != sorted(run("mdb-export", made, table).splitlines())]
    report.check_items("mdbtools: tables with other rows", [], different)


def check_bars(report, sums, drawing):
    """The bars' extended data is what was sold."""
    document = ezdxf.readfile(drawing)
    report.check("ezdxf: errors that its audit finds", 0, len(document.audit().errors))
    found = {}
    for bar in document.modelspace().query('SOLID[layer=="SALES-BARS"]'):
        values = [value for _, value in bar.get_xdata("QUILLON")]
        found[values[values.index("category") + 1]] = values[values.index("sales") + 1]
    report.check_items("ezdxf: categories", sums, found)
    for category in sorted(set(sums) & set(found)):
        report.check("ezdxf: sales of " + category, sums[category], found[category], 0.01)


def main(given, made, drawing):
    report = Report()
    if has_mdbtools():
        check_tables(report, given, made)
    else:
        report.skip("mdb-export (mdbtools)", "the databases")
    if ezdxf is None:
        report.skip("ezdxf (python3-ezdxf)", "the drawing")
    else:
        check_bars(report, sales_by_category(given), drawing)
    return 1 if report.failed else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
