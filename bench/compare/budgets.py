"""Every budget, and what stands beside us where it is installed."""
from dataclasses import dataclass

from measuring import Benchmark, Process

MILLION = 1_000_000
ROWS = 200_000


@dataclass(frozen=True)
class Budget:
    """What may not be exceeded; all that is given must hold."""
    seconds: float | None = None
    rate: float | None = None  # pieces of work a second, at least
    share: float | None = None  # of the peer's time
    megabytes: float | None = None  # resident at the peak
    count: float | None = None  # of the benchmark's counter, with a unit
    unit: str = ""


@dataclass(frozen=True)
class Case:
    """Ours, and the same work of the peer."""
    ours: Process | Benchmark
    theirs: Process | Benchmark | None = None
    name: str = ""


@dataclass(frozen=True)
class Line:
    """A line of the table. Of several cases the one that is worst beside the peer is shown.

    `pieces` are the records, rows or calls that the work has, for those that count them a second.
    `memory` is the process whose peak counts where the time is measured in another way.
    """
    work: str
    budget: Budget
    cases: tuple[Case, ...]
    peer: str = ""
    pieces: int = 0
    memory: Process | None = None


def line(work, budget, ours, theirs=None, **more):
    return Line(work, budget, (Case(ours, theirs),), **more)


# ---- The language


def language(name, program):
    return line(f"LISP: {name}", Budget(share=1),
                Process(f"{{swiftgate}} run {{source}}/bench/compare/language.lsp -- {program}"),
                Process(f"{{python}} {{source}}/bench/compare/language.py {program}"),
                peer="CPython")


LANGUAGE = [
    line("A LISP call of a native function, guard and lock included", Budget(seconds=0.5e-6),
         Benchmark("bridge_bench", "million-native-calls", share=MILLION,
                   minus="million-turns-of-nothing")),
    language("`fib`, recursive", "fib"),
    language("lists of 300,000 made and reversed", "list"),
    language("200,000 strings of three pieces", "strings"),
    language("a `while` loop of a million additions", "while"),
    line("200,000 records of 6 fields as a LISP list", Budget(seconds=0.25),
         Benchmark("bridge_bench", "returnRecordList-200k-x-6")),
    line("LISP: the longest pause of the collector, a million live cells",
         Budget(count=10, unit="ms"),
         Benchmark("bridge_bench", "collector/iterations:1", counter="longest_pause_ms")),
    line("Start of `swiftgate run` with an empty program", Budget(seconds=0.06),
         Process("{swiftgate} run nothing.lsp", needs=("nothing.lsp",), rounds=15),
         Process("{python} -c pass", rounds=15), peer="CPython"),
]

# ---- The database engine

EXPORT = Process("{swiftgate} db export parts.mdb tblPart", needs=("parts.mdb",), rounds=7)
MDB_EXPORT = Process("mdb-export parts.mdb tblPart", needs=("parts.mdb",), rounds=7)


def engine(work, rate, name, pieces=ROWS):
    return line(f"Jet: {work}", Budget(rate=rate), Benchmark("jet_bench", name), pieces=pieces)


DATABASE = [
    engine("all values of 200,000 rows of 6 columns", 5 * MILLION, "scanAllValues"),
    line("Jet: those rows exported as CSV", Budget(rate=MILLION, share=0.25), EXPORT, MDB_EXPORT,
         peer="mdb-export", pieces=ROWS),
    engine("seek on a unique index of numbers", MILLION, "seekNumber", 1),
    engine("seek on an index of texts", None, "seekText", 1),
    engine("append, two indexes, one transaction", 400_000, "appendInOneTransaction"),
    engine("append, each row by itself", 30_000, "appendEachByItself", 1),
    line("Jet: opening a file of 1 GB", Budget(seconds=0.01),
         Benchmark("jet_bench", "openBigFile")),
]

# ---- SQL


def query(name):
    return Case(Benchmark("sql_bench", f"ours/{name}"), Benchmark("sql_bench", f"SQLite/{name}"),
                name)


def queries(work, *names, budget=Budget(share=3)):
    return Line(f"SQL, {work}", budget, tuple(query(name) for name in names), peer="SQLite")


SQL = [
    queries("filters", "all values", "filter: number", "filter: date and truth",
            "filter: text equal", "filter: text range", "filter: LIKE within"),
    queries("filters by an index", "index: equal, 1000 times", "index: range of numbers",
            "index: range of texts", "index: LIKE prefix", "index: IN list", "index: two columns"),
    queries("joins", "join on an index", "join on an index, outer", "join without an index",
            "join without an index, texts"),
    queries("groups", "group by a number", "group by a text", "group by a date", "aggregates"),
    queries("orders", "order by a number", "order by a text", "order by an indexed text",
            "order by an indexed number"),
    queries("`DELETE` with `NOT IN (SELECT ...)` over 20,000 rows", "delete, not in a query",
            budget=Budget(seconds=1)),
    queries("`DISTINCT`", "distinct number", "distinct text", budget=Budget()),
    queries("`TOP`", "top by a number", "top by an index", budget=Budget()),
    queries("`NOT IN (SELECT ...)`", "not in a query", budget=Budget()),
    queries("changes of every row", "update over a join", "update of every row",
            "insert of every row", budget=Budget()),
]

# ---- LISP programs on a database

OPEN_ROOMS = Process("{swiftgate} run {source}/bench/database.lsp -- open rooms.mdb",
                     needs=("rooms.mdb",))


def program(work, budget, word):
    command = f"{{swiftgate}} run {{source}}/bench/database.lsp -- {word} rooms.mdb"
    return line(work, budget, Process(command, needs=("rooms.mdb",), minus=OPEN_ROOMS),
                pieces=ROWS if budget.rate else 0)


PROGRAMS = [
    program("`sg_sql`: 200,000 rows of 6 columns to a LISP list",
            Budget(seconds=0.5, megabytes=800), "list"),
    program("`sg_top`, `sg_skip` over them", Budget(rate=400_000), "walk"),
    program("`sg_top`, `sg_skip` by the key", Budget(rate=400_000), "walk-by-key"),
    program("`sg_seek`, keys in order", Budget(rate=300_000), "seek"),
    program("`sg_seek`, keys far apart", Budget(rate=300_000), "seek-apart"),
    line("`sg_append`", Budget(rate=20_000),
         Process("{swiftgate} run {source}/bench/database.lsp -- make made.mdb",
                 makes="made.mdb"), pieces=ROWS),
]

# ---- Drawings

LOAD_DXF = Process("{swiftgate} info plan.dxf", needs=("plan.dxf",), rounds=1)
SAVE_DXF = Process("{swiftgate} convert plan.dxf saved.dxf --release 2018", needs=("plan.dxf",),
                   rounds=1)
LOAD_DWG = Process("{swiftgate} info plan.dwg", needs=("plan.dwg",), rounds=1)
SAVE_DWG = Process("{swiftgate} convert plan.dwg saved.dwg --release 2018", needs=("plan.dwg",),
                   rounds=1)
EZDXF_LOAD = Process("""{python} -c 'import ezdxf; ezdxf.readfile("plan.dxf")'""",
                     needs=("plan.dxf",), module="ezdxf", rounds=1)
EZDXF_SAVE = Process("""{python} -c 'import ezdxf; ezdxf.readfile("plan.dxf").saveas("r.dxf")'""",
                     needs=("plan.dxf",), module="ezdxf", minus=EZDXF_LOAD, rounds=1)
DWGREAD = Process("dwgread plan.dwg", needs=("plan.dwg",), rounds=1)


def file(name, thousands=300, release=""):
    turns = 3 if thousands == 300 else 1
    return Benchmark("drawing_files_bench", f"{name}/{thousands}{release}/iterations:{turns}")


def model(work, budget, name, **more):
    return line(work, budget, Benchmark("model_bench", name, **more))


DRAWINGS = [
    line("DXF: load 300,000 entities, 28 MB", Budget(seconds=0.6, megabytes=300),
         file("loadDxfPlain"), EZDXF_LOAD, peer="ezdxf", memory=LOAD_DXF),
    line("DXF: save them", Budget(seconds=0.6, megabytes=300), file("saveDxf"), EZDXF_SAVE,
         peer="ezdxf", memory=SAVE_DXF),
    line("DXF: load 3,000,000 entities", Budget(seconds=6), file("loadDxfPlain", 3000)),
    line("DWG: load 300,000 entities, release 2018", Budget(seconds=0.5, megabytes=300),
         file("loadDwg", release="/2018"), DWGREAD, peer="dwgread", memory=LOAD_DWG),
    line("DWG: save them, release 2018", Budget(seconds=0.8, megabytes=300),
         file("saveDwg", release="/2018"), memory=SAVE_DWG),
    line("DWG: load them, release 2000", Budget(seconds=0.5), file("loadDwg", release="/2000")),
    line("DWG: save them, release 2000", Budget(seconds=0.8), file("saveDwg", release="/2000")),
    model("A million lines with `entmake`", Budget(seconds=4), "makeFromLisp/iterations:1"),
    model("A line in the drawing", Budget(count=300, unit="bytes"), "makeLines/iterations:1",
          counter="bytes/line"),
    model("A million entities opened, read, closed", Budget(seconds=0.3), "openLines/iterations:3"),
    model("A million entities walked over with `entnext`", Budget(),
          "runOnLines/walk/iterations:3"),
    line("100,000 leaders from LISP", Budget(seconds=5),
         Process("{swiftgate} run {source}/bench/leaders.lsp", rounds=1)),
    line("100,000 leaders moved by their grips", Budget(seconds=1),
         Benchmark("leader_bench", "moveByGrips")),
]

# ---- The editor


def selection(work, budget, name):
    return line(work, budget, Benchmark("selection_bench", name))


def drag(work, name, counter=""):
    budget = Budget(seconds=0.001, count=0, unit="allocations") if counter else \
        Budget(seconds=0.01)
    return line(work, budget, Benchmark("jig_bench", name, counter=counter))


EDITOR = [
    selection("`ssgetX-all` over 300,000 entities", Budget(seconds=0.06), "program/ssgetX_all"),
    selection("`ssgetX-block` over them", Budget(seconds=0.04), "program/ssgetX_block"),
    selection("A window that touches 1,024 of them", Budget(seconds=0.02), "window"),
    selection("The first window of a drawing", Budget(seconds=0.02), "windowWithoutIndex/first"),
    selection("The second window of a drawing", Budget(seconds=0.02), "windowWithoutIndex/second"),
    drag("A drag step over 1,000 clones, moved", "moveStep", "allocations"),
    drag("A drag step over 1,000 clones, turned", "rotateStep", "allocations"),
    drag("A drag step over 1,000 clones, drawn", "moveStepDrawn"),
]

# ---- Solids


def fitting(work, budget, name):
    return Line(work, budget, tuple(Case(Benchmark("solids_bench", f"{name}/{shape}"),
                                         name="rectangular" if shape else "round")
                                    for shape in (0, 1)))


def pieces(work, budget, name):
    return line(work, budget, Benchmark("solids_bench", name))


SOLIDS = [
    fitting("A straight piece", Budget(seconds=0.002), "straight"),
    fitting("A radius elbow", Budget(seconds=0.01), "radiusElbow"),
    fitting("A square elbow", Budget(seconds=0.01), "squareElbow"),
    fitting("A takeoff with one branch", Budget(seconds=0.02), "takeoff"),
    fitting("A wye", Budget(seconds=0.03), "wye"),
    pieces("10,000 straight pieces", Budget(seconds=20, megabytes=1000),
           "tenThousandPieces/iterations:1"),
    pieces("The first drawing of them, facets included", Budget(),
           "drawPiecesFirst/0/iterations:1"),
    pieces("Drawing them again from above", Budget(seconds=1), "drawPieces/0/iterations:3"),
    pieces("Drawing them again isometric, shaded", Budget(seconds=1), "drawPieces/2/iterations:3"),
]

# ---- The grid, dialogs, archives


def grid(work, budget, *names, counter=""):
    return Line(work, budget, tuple(Case(Benchmark("grid_bench", name, counter=counter))
                                    for name in names))


def dialog(word, script):
    return Process(f"{{swiftgate}} run {{source}}/bench/dialogs.lsp --input {script}"
                   f" -- {word} layers.qn", needs=("layers.qn", script), rounds=2)


ONE_DIALOG = dialog("show", "one-dialog.in")

SUPPORT = [
    grid("Grid: set up 100,000 rows of 10 columns", Budget(seconds=1), "setUpRows"),
    grid("Grid: a screen of them painted, wherever", Budget(seconds=0.008), "paintScreen/1",
         "paintScreen/50000", "paintScreen/100000"),
    grid("Grid: a plain cell beside its text", Budget(count=160, unit="bytes"), "bytesOfPlainCell",
         counter="bytes"),
    grid("Grid: 100,000 rows sorted", Budget(seconds=0.5), "sortRows"),
    grid("Grid: all of them selected and copied", Budget(seconds=1), "selectAllAndCopy"),
    grid("Grid: a tree of 20,000 rows folded and unfolded", Budget(seconds=0.05), "foldTree"),
    line("The layers dialog on 2,000 layers and 200 systems of 300 keys, opened",
         Budget(seconds=0.5), ONE_DIALOG),
    line("Another 20 of those systems shown in it", Budget(seconds=2),
         Process(dialog("show", "many-systems.in").command, minus=ONE_DIALOG,
                 needs=("layers.qn", "many-systems.in"))),
    line("An archive of 1,000 files, 200 MB", Budget(share=1.2),
         Process("""{swiftgate} run --eval '(CreateZip "ours.zip" (list "documents/*"))'""",
                 needs=("documents",), makes="ours.zip", rounds=2),
         Process("zip -6 -q -j -r theirs.zip documents", needs=("documents",), makes="theirs.zip",
                 rounds=2), peer="zip"),
    line("The archive unpacked", Budget(),
         Process("""{swiftgate} run --eval '(ExtractZip "documents.zip" "ours")'""",
                 needs=("documents.zip",), makes="ours", rounds=2),
         Process("unzip -q documents.zip -d theirs", needs=("documents.zip",), makes="theirs",
                 rounds=2), peer="unzip"),
    line("A signature with a given key", Budget(seconds=0.005),
         Benchmark("cryptography_bench", "signText")),
]

LINES = LANGUAGE + DATABASE + SQL + PROGRAMS + DRAWINGS + EDITOR + SOLIDS + SUPPORT
