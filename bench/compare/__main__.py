"""Measures every budget, and the same work of other programs where they are installed.

Prints one table. A peer that is not installed is a dash. For a quiet machine; with the system's
Python, which sees the system's packages: /usr/bin/python3 bench/compare
"""
import argparse
import sys
import tempfile
from pathlib import Path

import inputs
import machine
import table
from budgets import LINES
from measuring import Workshop

SOURCE = Path(__file__).resolve().parents[2]
BUILD = SOURCE / "build/release"

PAGE = """# Performance

What `make bench WRITE=docs/performance.md` measured, each line in a process of its own or by a
program of `bench/`. Times are processor time; where the time by the clock differs by more than a
tenth both are given. Rates are pieces of work a second. Memory is the most that was resident, of
the whole program. The ratio is our processor time to the peer's: under 1 we are faster; a dash
stands for a peer that was not there. Of a line with several cases the one that is worst beside the
peer, or longest, is shown and named. A budget is met when both times keep it; "by CPU" says that
only the processor time does, as on a busy machine.

{machine}
{table}"""


def main():
    options = arguments()
    about = machine.describe(BUILD)
    lines = [line for line in LINES
             if not options.only or any(word in line.work for word in options.only)]
    with tempfile.TemporaryDirectory(prefix="sg_compare") as folder:
        results = run(lines, workshop(Path(folder)))
    cells = table.rows(results)
    print("".join(f"{what + ':':13}{which}\n" for what, which in about))
    print(table.as_text(cells), end="")
    failures = [f"{result.line.work}: {result.error}" for result in results if result.error]
    for failure in failures:
        print(failure, file=sys.stderr)
    if options.write and not failures:
        listed = "".join(f"- {what}: {which}\n" for what, which in about)
        options.write.write_text(PAGE.format(machine=listed, table=table.as_markdown(cells)))
    return 1 if failures else 0


def arguments():
    parser = argparse.ArgumentParser(prog="bench/compare", description=__doc__.splitlines()[0])
    parser.add_argument("--write", metavar="FILE", type=Path,
                        help="write the table as Markdown, too, unless something failed")
    parser.add_argument("only", metavar="WORD", nargs="*",
                        help="measure only lines that have one of these words")
    return parser.parse_args()


def workshop(folder):
    places = {"swiftgate": BUILD / "bin/swiftgate", "bench": BUILD / "bench", "source": SOURCE,
              "python": sys.executable}
    return Workshop(folder, places, inputs.MAKERS)


def run(lines, shop):
    for line in lines:
        for case in line.cases:
            shop.expect(case.ours)
            shop.expect(case.theirs)
    results = []
    for number, line in enumerate(lines, 1):
        if sys.stderr.isatty():
            print(f"\r\033[K{number}/{len(lines)} {line.work}", end="\r", file=sys.stderr)
        results.append(table.measure(line, shop))
    if sys.stderr.isatty():
        print("\r\033[K", end="", file=sys.stderr)
    return results


if __name__ == "__main__":
    sys.exit(main())
