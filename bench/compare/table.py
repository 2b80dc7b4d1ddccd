"""The table of all lines, as text and as Markdown."""
from dataclasses import dataclass

from budgets import Case, Line
from measuring import Failed, Figure, Missing

HEADER = ("work", "budget", "ours", "memory", "peer", "theirs", "ratio", "met")


@dataclass(frozen=True)
class Result:
    """What a line came to. `memory` is there when the budget names it, `error` says what did not
    work."""
    line: Line
    case: Case | None = None
    ours: Figure | None = None
    theirs: Figure | None = None
    memory: float | None = None
    error: str = ""

    @property
    def ratio(self):
        """Our time in the peer's."""
        return self.ours.cpu / self.theirs.cpu if self.theirs else None

    def keeps(self, seconds):
        """Whether the budget is kept, a figure's time being what `seconds` answers of it."""
        budget = self.line.budget
        took = seconds(self.ours)
        kept = [budget.seconds is None or took <= budget.seconds,
                budget.rate is None or took * budget.rate <= self.line.pieces,
                budget.megabytes is None or self.memory <= budget.megabytes * 1e6,
                budget.count is None or self.ours.count <= budget.count]
        if budget.share is not None and self.theirs:
            kept.append(took <= budget.share * seconds(self.theirs))
        return all(kept)


def measure(line, workshop):
    """The result of a line, of its worst case."""
    try:
        results = [_measure_case(line, case, workshop) for case in line.cases]
    except (Failed, Missing) as error:
        return Result(line, error=str(error))
    return max(results, key=lambda result: result.ratio or result.ours.cpu)


def _measure_case(line, case, workshop):
    theirs = None
    try:
        ours, theirs = workshop.take(case.ours, case.theirs or case.ours)
        theirs = theirs if case.theirs else None
    except Missing:  # the peer; if it is ours, that is told now
        [ours] = workshop.take(case.ours)
    memory = None
    if line.budget.megabytes is not None:
        memory = (workshop.take(line.memory)[0] if line.memory else ours).peak
    return Result(line, case, ours, theirs, memory)


def rows(results):
    """The cells of the table."""
    return [_row(result) for result in results]


def as_text(table):
    table = [[cell.replace("`", "") for cell in row] for row in table]
    widths = [max(len(row[column]) for row in [HEADER, *table]) for column in range(len(HEADER))]
    lines = [[cell.ljust(width) for cell, width in zip(row, widths)] for row in [HEADER, *table]]
    lines.insert(1, ["-" * width for width in widths])
    return "".join("  ".join(cells).rstrip() + "\n" for cells in lines)


def as_markdown(table):
    lines = [HEADER, ["---"] * len(HEADER), *table]
    return "".join("| " + " | ".join(cells) + " |\n" for cells in lines)


def _row(result):
    line = result.line
    if result.error:
        return [line.work, _budget(line), "failed", "", line.peer, "", "", "no"]
    work = f"{line.work}: {result.case.name}" if result.case.name else line.work
    return [work, _budget(line), _figure(result.ours, line),
            "" if result.memory is None else f"{result.memory / 1e6:.0f} MB", line.peer,
            _theirs(result), "" if result.ratio is None else f"{result.ratio:.2f}", _met(result)]


def _theirs(result):
    if result.theirs:
        return _figure(result.theirs, result.line)
    return "-" if result.line.peer else ""


def _met(result):
    budget = result.line.budget
    if all(limit is None for limit in (budget.seconds, budget.rate, budget.share,
                                       budget.megabytes, budget.count)):
        return ""
    if budget.share is not None and not result.theirs:
        return "-" if result.keeps(lambda figure: figure.wall) else "no"
    in_wall, in_cpu = result.keeps(lambda f: f.wall), result.keeps(lambda f: f.cpu)
    if in_wall == in_cpu:
        return "yes" if in_wall else "no"
    return "by CPU" if in_cpu else "by the clock"


def _budget(line):
    budget = line.budget
    limits = []
    if budget.rate is not None:
        limits.append(_rate(budget.rate))
    if budget.seconds is not None:
        limits.append(_time(budget.seconds))
    if budget.share is not None:
        limits.append(f"{budget.share:g} × {line.peer}")
    if budget.megabytes is not None:
        limits.append(f"{budget.megabytes:g} MB")
    if budget.count is not None:
        limits.append(f"{budget.count:g} {budget.unit}")
    return ", ".join(limits)


def _figure(figure, line):
    """Time by the clock is told too where it differs from the processor's."""
    budget = line.budget
    counted = [] if figure.count is None else [f"{figure.count:.3g} {budget.unit}"]
    if counted and budget.seconds is None:
        return counted[0]
    told = (lambda seconds: _rate(line.pieces / seconds)) if line.pieces else _time
    parts = [told(figure.cpu)]
    if abs(figure.wall - figure.cpu) > 0.1 * figure.cpu:
        parts = [f"{told(figure.cpu)} CPU, {told(figure.wall)} clock"]
    return ", ".join(parts + counted)


def _time(seconds):
    for size, unit in ((1, "s"), (1e-3, "ms"), (1e-6, "µs")):
        if seconds >= size:
            return f"{_rounded(seconds / size)} {unit}"
    return f"{_rounded(seconds * 1e9)} ns"


def _rate(per_second):
    for size, unit in ((1e6, " M/s"), (1e3, " k/s")):
        if per_second >= size:
            return f"{_rounded(per_second / size)}{unit}"
    return f"{_rounded(per_second)}/s"


def _rounded(number):
    return f"{number:.0f}" if number >= 100 else f"{number:.3g}"
