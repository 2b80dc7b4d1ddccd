#!/usr/bin/python3
"""Reads the files of the office floor with other programs, where they are installed, and compares
them with what the floor's programs were given: the rooms of floor.dxf, and the tables of the
project database that say what a room needs.

    other_readers.py FOLDER

FOLDER is where scripts/demo.sh has put the files. Prints a line for each comparison, and for each
reader that is missing. The exit code is 1 when something differs.
"""

import hashlib
import math
import os
import shutil
import sys
import tempfile
import zipfile

from reading import Report, has_mdbtools, number, read_table, run

try:
    import ezdxf
except ImportError:
    ezdxf = None

HERE = os.path.dirname(os.path.abspath(__file__))


# --- What the floor must come to


class Room:
    def __init__(self, outline, numbers, names):
        points = [(x, y) for x, y, *_ in outline.get_points()]
        self.west, self.east = min(x for x, _ in points), max(x for x, _ in points)
        self.south, self.north = min(y for _, y in points), max(y for _, y in points)
        self.number, self.name = self.text_in(numbers), self.text_in(names)
        # The shoelace formula, in square metres.
        self.area = abs(sum(a[0] * b[1] - b[0] * a[1]
                            for a, b in zip(points, points[1:] + points[:1]))) / 2e6

    def text_in(self, texts):
        return next(text.dxf.text for text in texts
                    if self.west < text.dxf.insert.x < self.east
                    and self.south < text.dxf.insert.y < self.north)


def read_rooms(path):
    model = ezdxf.readfile(path).modelspace()
    texts = [list(model.query('TEXT[layer=="%s"]' % layer))
             for layer in ("A-AREA-NUMB", "A-AREA-NAME")]
    return [Room(outline, *texts) for outline in model.query('LWPOLYLINE[layer=="A-AREA"]')]


def setting(rows, key):
    return next(number(row["dNumber"]) for row in rows if row["sKey"] == key)


def rounded(point):
    """A point to compare: to a thousandth of a millimetre."""
    return tuple(round(value, 3) for value in point)


class Piece:
    """A piece of equipment that the floor must have."""

    def __init__(self, room, row, index, place):
        self.room, self.type, self.place = room.number, row["sType"], rounded(place)
        self.tag = "%s-%s-%d" % (row["sPrefix"], room.number, index + 1)
        self.air, self.power = number(row["dAirflow"]), number(row["dPower"])
        self.block = self.type.upper().replace(" ", "_").replace("/", "_")


def pieces_in(room, row, needed, rows, ceiling):
    columns = math.ceil(max(1, math.ceil(needed - 1e-9)) / rows)
    for index in range(rows * columns):
        across, up = index % columns, index // columns
        yield Piece(room, row, index,
                    (room.west + (room.east - room.west) * (across + 0.5) / columns,
                     room.south + (room.north - room.south) * (up + 0.5) / rows, ceiling))


def expected_equipment(rooms, uses, types, ceiling):
    uses = {row["sName"]: row for row in uses}
    types = {row["sType"]: row for row in types}
    pieces = []
    for room in rooms:
        use = uses.get(room.name, {})
        diffuser, luminaire = types.get(use.get("sDiffuser")), types.get(use.get("sLuminaire"))
        if diffuser:
            air = room.area * number(use["dAirPerArea"])
            pieces += pieces_in(room, diffuser, air / number(diffuser["dAirflow"]), 1,
                                ceiling)
        if luminaire:
            deep = room.north - room.south > 4000
            pieces += pieces_in(room, luminaire, room.area / number(use["dAreaPerLuminaire"]),
                                2 if deep else 1, ceiling)
    return pieces


# --- The readers


def check_database(report, pieces, folder):
    """The schedule, as mdbtools reads it."""
    rows = read_table(os.path.join(folder, "project.mdb"), "tblSchedule")
    report.check_items("mdbtools: pieces, with room, type and place",
                       [(piece.tag, piece.room, piece.type, *piece.place) for piece in pieces],
                       [(row["sTag"], row["sRoom"], row["sType"],
                         *rounded(number(row[name]) for name in ("dX", "dY", "dZ")))
                        for row in rows])
    report.check("mdbtools: sum of air, m3/h", sum(piece.air for piece in pieces),
                 sum(number(row["dAirflow"]) for row in rows))
    report.check("mdbtools: sum of power, W", sum(piece.power for piece in pieces),
                 sum(number(row["dPower"]) for row in rows))


def tag_of(reference):
    """The value behind "tag" in the extended data of a reference."""
    if not reference.has_xdata("QUILLON"):
        return None
    values = [value for _, value in reference.get_xdata("QUILLON")]
    return values[values.index("tag") + 1] if "tag" in values else None


def check_drawing(report, pieces, layers, folder):
    """The plain drawing, as ezdxf reads it."""
    drawing = ezdxf.readfile(os.path.join(folder, "plain.dxf"))
    model = drawing.modelspace()
    report.check("ezdxf: errors that its audit finds", 0, len(drawing.audit().errors))
    references = [reference for reference in model.query("INSERT") if tag_of(reference)]
    report.check_items("ezdxf: equipment, with tag, block and place",
                       [(piece.tag, piece.block, *piece.place) for piece in pieces],
                       [(tag_of(reference), reference.dxf.name,
                         *rounded(reference.dxf.insert)) for reference in references])
    texts = {text.text for text in model.query("MTEXT")}
    for what, value in (("air", sum(piece.air for piece in pieces)),
                        ("power", sum(piece.power for piece in pieces))):
        total = "%.0f" % value
        report.check("ezdxf: sum of %s in the drawn schedule" % what, total,
                     total if total in texts else "none")
    named = {row["sName"]: row for row in layers}
    found = [layer for layer in drawing.layers if layer.dxf.name in named]
    report.check_items(
        "ezdxf: layers, with colour and weight",
        [(name, int(named[name]["iColor"]), int(named[name]["sLineweight"] or -3))
         for name in (layer.dxf.name for layer in found)],
        [(layer.dxf.name, layer.color, layer.dxf.lineweight) for layer in found])


def expected_volume(row):
    """Of a straight piece, from its size and length."""
    width, height = number(row["dWidth"]), number(row["dHeight"])
    area = math.pi * width ** 2 / 4 if row["sSize"].startswith("D") else width * height
    return area * number(row["dLength"])


def expected_box(row):
    """About a straight piece: its ends, and half its size to the sides."""
    ends = [[number(row["d%s%d" % (axis, end)]) for axis in "XYZ"] for end in (1, 2)]
    sizes = [number(row["dWidth"]), number(row["dWidth"]), number(row["dHeight"])]
    half = [size / 2 if math.isclose(a, b, abs_tol=0.001) else 0
            for a, b, size in zip(*ends, sizes)]
    return ([min(a, b) - size for a, b, size in zip(*ends, half)]
            + [max(a, b) + size for a, b, size in zip(*ends, half)])


def is_measured(row, solids):
    """Whether one of the measured solids has the volume of a straight piece, and stands there."""
    box, volume = expected_box(row), expected_volume(row)
    return any(math.isclose(solid[1], volume, rel_tol=1e-5)
               and all(math.isclose(a, b, abs_tol=0.01) for a, b in zip(solid[2:], box))
               for solid in solids)


def check_solids(report, ducts, folder):
    """The solids, as FreeCAD reads them: their number, volumes and places."""
    with tempfile.TemporaryDirectory() as home:  # FreeCAD keeps settings there
        text = run("freecadcmd", os.path.join(HERE, "measure_step.py"),
                   env=dict(os.environ, HOME=home,
                            STEP_FILE=os.path.abspath(os.path.join(folder, "ducts.step"))))
    solids = [[float(value) for value in line.split()[1:]] for line in text.splitlines()
              if line.startswith("solid ")]
    report.check("FreeCAD: solids", len(ducts), len(solids))
    report.check("FreeCAD: solids that are not closed and valid", 0,
                 sum(solid[0] != 1 for solid in solids))
    straight = [row for row in ducts if row["sKind"] == "Straight"]
    report.check("FreeCAD: straight pieces of their volume and in their place", len(straight),
                 sum(is_measured(row, solids) for row in straight))


def check_archive(report, folder):
    """The archive, as unzip and Python read it."""
    path = os.path.join(folder, "job.zip")
    if shutil.which("unzip"):
        report.check("unzip: the archive", "No errors detected in compressed data of %s." % path,
                     run("unzip", "-tq", path).strip())
    else:
        report.skip("unzip", "the archive")
    with zipfile.ZipFile(path) as archive:
        different = []
        for name in archive.namelist():
            with open(os.path.join(folder, name), "rb") as file:
                if file.read() != archive.read(name):
                    different.append(name)
        report.check_items("zipfile: files of the archive that are not those of the job", [],
                           different)


def key_bytes(text):
    """The bytes of a key or signature: their number, and the value of each."""
    count, *values = [int(part) for part in text.split(",")]
    assert count == len(values)
    return bytes(values)


def check_signature(report, folder):
    """The checksum, as Python computes it, and its signature, as OpenSSL verifies it."""
    checksum_file = os.path.join(folder, "job.sha256")
    with open(checksum_file, encoding="ascii") as file:
        line = file.readline().rstrip("\n")
    with open(os.path.join(folder, "job.zip"), "rb") as file:
        report.check("hashlib: the archive's checksum", hashlib.sha256(file.read()).hexdigest(),
                     line.split()[0])
    if not shutil.which("openssl"):
        report.skip("openssl", "the signature")
        return
    with open(checksum_file + ".signature", encoding="ascii") as file:
        key, signature = [key_bytes(text) for text in file.read().split()]
    with tempfile.TemporaryDirectory() as temporary:
        # The lowest byte of a signature stands first here, and last for OpenSSL.
        for name, data in (("key", key), ("signature", signature[::-1]), ("text", line.encode())):
            with open(os.path.join(temporary, name), "wb") as file:
                file.write(data)
        run("openssl", "rsa", "-pubin", "-inform", "MSBLOB", "-in", "key", "-out", "key.pem",
            cwd=temporary)
        report.check("openssl: the signature", "Verified OK",
                     run("openssl", "dgst", "-md5", "-verify", "key.pem", "-signature", "signature",
                         "text", cwd=temporary).strip())


def main(folder):
    report = Report()
    tables = {name: read_table(os.path.join(folder, "project.mdb"), name)
              for name in ("tblGlobal", "tblRoomUse", "tblEquipment", "tblLayer", "tblDuct")}
    if ezdxf is None:
        report.skip("ezdxf (python3-ezdxf)", "the database and the drawing")
    else:
        pieces = expected_equipment(read_rooms(os.path.join(folder, "floor.dxf")),
                                    tables["tblRoomUse"], tables["tblEquipment"],
                                    setting(tables["tblGlobal"], "CeilingHeight"))
        if has_mdbtools():
            check_database(report, pieces, folder)
        else:
            report.skip("mdb-export (mdbtools)", "the database")
        check_drawing(report, pieces, tables["tblLayer"], folder)
    if shutil.which("freecadcmd"):
        check_solids(report, tables["tblDuct"], folder)
    else:
        report.skip("freecadcmd (FreeCAD)", "the solids")
    check_archive(report, folder)
    check_signature(report, folder)
    return 1 if report.failed else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1]))
