"""How work is measured: a program from its start to its end, or one of our benchmarks."""
import json
import os
import shlex
import shutil
import subprocess
import time
from collections import defaultdict
from dataclasses import dataclass, replace


class Failed(Exception):
    """What was measured did not work; the text says what and how."""


class Missing(Exception):
    """The program or library to be measured is not installed."""


@dataclass(frozen=True)
class Figure:
    """What a piece of work took. The peak is the whole process's, a count what a benchmark counts
    beside time."""
    cpu: float  # seconds of processor time
    wall: float  # seconds by the clock
    peak: float  # most resident bytes
    count: float | None = None

    def minus(self, other):
        return replace(self, cpu=max(self.cpu - other.cpu, 1e-9),
                       wall=max(self.wall - other.wall, 1e-9))


@dataclass(frozen=True)
class Process:
    """A whole process in the working folder, its start and end included.

    The command may name {swiftgate}, {python}, {bench} and {source}; `needs` are files that must be
    there before, `makes` a file or folder that must not, `module` a Python module without which it
    is missing, and `minus` the process whose time does not belong to the work.
    """
    command: str
    needs: tuple[str, ...] = ()
    makes: str = ""
    module: str = ""
    minus: "Process | None" = None
    rounds: int = 3


@dataclass(frozen=True)
class Benchmark:
    """One benchmark of a program in build/release/bench.

    `share` is how many pieces of work one turn does, `minus` the benchmark whose time does not
    belong to the work, and `counter` the one of its counters that is of interest.
    """
    program: str
    name: str
    share: int = 1
    minus: str = ""
    counter: str = ""


_SECONDS = {"ns": 1e-9, "us": 1e-6, "ms": 1e-3, "s": 1.0}


class Workshop:
    """Measures, each thing once, in a folder for files that come and go."""

    def __init__(self, folder, places, makers):
        """`places` says what stands for the names in commands, `makers` how files are made."""
        self.folder = folder
        self.places = places
        self._makers = makers
        self._known = {}
        self._results = {}  # by program: by name of the benchmark
        self._peaks = {}  # by program
        self._wanted = defaultdict(set)
        self._environment = os.environ | {"TMPDIR": str(folder), "TEMP": str(folder),
                                          "QT_QPA_PLATFORM": "offscreen"}

    def expect(self, measure):
        """Says that a benchmark will be asked for, so that its program runs once for all."""
        if isinstance(measure, Benchmark):
            self._wanted[measure.program] |= {measure.name, measure.minus} - {""}

    def take(self, *measures):
        """The figures of these, processes by turns; the best of the rounds counts."""
        missing = [each for each in measures if each not in self._known]
        best = {}
        for turn in range(max((getattr(each, "rounds", 1) for each in missing), default=0)):
            for each in missing:
                if turn < getattr(each, "rounds", 1):
                    figure = self._take_once(each)
                    if each not in best or figure.cpu < best[each].cpu:
                        best[each] = figure
        self._known.update(best)
        return [self._known[each] for each in measures]

    def file(self, name):
        """The path of a file that a measured process needs; made when it is asked for first."""
        path = self.folder / name
        if not path.exists():
            self._makers[name](self, path)
        return path

    def run(self, command):
        """Runs a command line in the folder; what it prints is of no interest."""
        words = [self._in_place(word) for word in shlex.split(command)]
        if shutil.which(words[0]) is None:
            raise Missing(f"{words[0]} is not installed")
        errors = self.folder / "errors"
        with open(self.folder / "output", "wb") as out, open(errors, "wb") as err:
            start = time.perf_counter()
            child = subprocess.Popen(words, cwd=self.folder, env=self._environment,
                                     stdin=subprocess.DEVNULL, stdout=out, stderr=err)
            try:
                _, status, usage = os.wait4(child.pid, 0)
            except BaseException:
                child.kill()
                raise
            wall = time.perf_counter() - start
        child.returncode = os.waitstatus_to_exitcode(status)
        if child.returncode != 0:
            last = (errors.read_text(errors="replace").split("\n") or [""])[-2:]
            raise Failed(f"{shlex.join(words)}: exit code {child.returncode}: {' '.join(last)}")
        return Figure(usage.ru_utime + usage.ru_stime, wall, usage.ru_maxrss * 1024)

    def _in_place(self, word):
        for name, place in self.places.items():
            word = word.replace("{" + name + "}", str(place))
        return word

    def _take_once(self, measure):
        if isinstance(measure, Benchmark):
            return self._benchmark(measure)
        if measure.module:
            self._require_module(measure.module)
        for name in measure.needs:
            self.file(name)
        if measure.makes:
            _remove(self.folder / measure.makes)
        figure = self.run(measure.command)
        return figure.minus(self.take(measure.minus)[0]) if measure.minus else figure

    def _require_module(self, module):
        command = [self.places["python"], "-c", f"import {module}"]
        if subprocess.run(command, stderr=subprocess.DEVNULL, check=False).returncode != 0:
            raise Missing(f"the Python module {module} is not installed")

    def _benchmark(self, measure):
        self.expect(measure)
        if measure.program not in self._results:
            self._results[measure.program] = self._run_benchmarks(measure.program)
        figure = self._result(measure.program, measure.name, measure.counter)
        if measure.minus:
            figure = figure.minus(self._result(measure.program, measure.minus, ""))
        return replace(figure, cpu=figure.cpu / measure.share, wall=figure.wall / measure.share)

    def _run_benchmarks(self, program):
        report = self.folder / f"{program}.json"
        names = "|".join(_escaped(name) for name in sorted(self._wanted[program]))
        whole = self.run(f"{{bench}}/{program} --benchmark_filter='^({names})$'"
                         f" --benchmark_min_time=0.2 --benchmark_out={report}"
                         " --benchmark_out_format=json")
        self._peaks[program] = whole.peak
        text = report.read_text()
        return {each["name"]: each for each in json.loads(text)["benchmarks"]} if text else {}

    def _result(self, program, name, counter):
        result = self._results[program].get(name)
        if result is None:
            raise Failed(f"{program} has no benchmark {name}")
        if result.get("error_occurred"):
            raise Failed(f"{program}: {name}: {result['error_message']}")
        unit = _SECONDS[result["time_unit"]]
        return Figure(result["cpu_time"] * unit, result["real_time"] * unit,
                      self._peaks[program], count=result[counter] if counter else None)


def _remove(path):
    if path.is_dir():
        shutil.rmtree(path)
    else:
        path.unlink(missing_ok=True)


def _escaped(name):
    """For an extended regular expression within quotes of a command line."""
    return "".join("[" + c + "]" if c in ".+*?()|[{$" else c for c in name)
