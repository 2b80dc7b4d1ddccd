"""The files that measured programs read. Each is the same in every run."""
import random


def plan(workshop, path):
    """300,000 lines and circles as a release 12 drawing of 28 MB."""
    with open(path, "w", encoding="ascii") as file:
        file.write("  0\nSECTION\n  2\nENTITIES\n")
        for i in range(300_000):
            x = i * 1.2503 + 0.3271
            if i % 3 == 0:
                file.write(f"  0\nCIRCLE\n  8\nLayer{i % 20}\n 62\n     3\n 10\n{x}\n"
                           f" 20\n{x / 3:.4f}\n 30\n0.0\n 40\n{x / 100 + 1:.4f}\n")
            else:
                file.write(f"  0\nLINE\n  8\nLayer{i % 20}\n 10\n{x}\n 20\n{x / 3:.4f}\n 30\n0.0\n"
                           f" 11\n{x + 1:.4f}\n 21\n{x / 7:.4f}\n 31\n0.0\n")
        file.write("  0\nENDSEC\n  0\nEOF\n")


def plan_dwg(workshop, path):
    """The same drawing as a DWG file of release 2018."""
    workshop.file("plan.dxf")
    workshop.run(f"{{swiftgate}} convert plan.dxf {path.name} --release 2018")


def parts(workshop, path):
    """A database with a table of 200,000 rows of 6 columns."""
    workshop.run(f"{{bench}}/jet_bench {path.name}")


def rooms(workshop, path):
    """A database with a table of 200,000 records that LISP appended."""
    workshop.run(f"{{swiftgate}} run {{source}}/bench/database.lsp -- make {path.name}")


def layers(workshop, path):
    """A database of 2,000 layers and 200 layer systems of 300 keys."""
    workshop.run(f"{{swiftgate}} run {{source}}/bench/dialogs.lsp --path {{source}}/tests/lisp"
                 f" -- make {path.name}")


def one_dialog(workshop, path):
    """A script that cancels the layers dialog."""
    path.write_text("row 1051 2\ncancel\n")


def many_systems(workshop, path):
    """A script that goes through 20 more layer systems before."""
    path.write_text("".join(f"row 1051 {row}\n" for row in range(2, 23)) + "cancel\n")


def documents(workshop, path):
    """1,000 files, 200 MB: half are texts, a quarter shrinks to a half, a quarter not at all."""
    chance = random.Random(1)
    letters = "abcdefghijklmnopqrstuvwxyz"
    words = ["".join(chance.choices(letters, k=chance.randint(2, 9))) for _ in range(4000)]
    text = " ".join(chance.choices(words, k=600_000)).encode()
    size = 200_000
    path.mkdir()
    for number in range(1000):
        if number % 4 < 2:
            start = chance.randrange(len(text) - size)
            data = text[start:start + size]
        elif number % 4 == 2:
            data = b"".join(chance.randbytes(50) + bytes(50) for _ in range(size // 100))
        else:
            data = chance.randbytes(size)
        (path / f"file{number:03}.dat").write_bytes(data)


def archive(workshop, path):
    """Those files in an archive."""
    workshop.file("documents")
    workshop.run(f"""{{swiftgate}} run --eval '(CreateZip "{path.name}" (list "documents/*"))'""")


def nothing(workshop, path):
    """A program that does nothing."""
    path.write_text("")


MAKERS = {
    "plan.dxf": plan,
    "plan.dwg": plan_dwg,
    "parts.mdb": parts,
    "rooms.mdb": rooms,
    "layers.qn": layers,
    "one-dialog.in": one_dialog,
    "many-systems.in": many_systems,
    "documents": documents,
    "documents.zip": archive,
    "nothing.lsp": nothing,
}
