"""The db commands on real files: what they print, and their exit codes."""

import csv
import io
import os
import pty
import re
import select
import shutil
import signal
import struct
import subprocess
import unittest

from program import SWIFTGATE, ProgramTest

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
DATA = os.path.join(
    os.environ.get("SWIFTGATE_REAL_DATA") or os.path.join(ROOT, "..", "shared", "data"), "mdb")
FILES = ["compIndexTestV2000.mdb", "indexTestV1997.mdb", "indexTestV2000.mdb",
         "indexTestV2007.accdb", "nwind.mdb", "overflowTestV2003.mdb", "queryTestV2000.mdb"]


CORPUS = os.path.join(ROOT, "tests", "fuzz", "corpus", "jet_file")


def real(name):
    return os.path.join(DATA, name)


def rows_of(text):
    return list(csv.reader(io.StringIO(text, newline=""), strict=True))


class Usage(ProgramTest):
    def test_wrong_usage_answers_2(self):
        for words, said in [
            ([], "tables, schema, export, sql, import, queries, browse, check or compact"),
            (["tables"], "FILE"),
            (["tables", "a.mdb", "b.mdb"], "b.mdb"),
            (["compact", "a.mdb", "b.mdb", "c.mdb"], "c.mdb"),
            (["compact", "a.mdb", "b.mdb", "--backup", "c.mdb"], "OUT excludes --backup"),
            (["import", "a.mdb"], "CSV is required"),
            (["import", "a.mdb", "-"], "- requires --table"),
            (["import", "a.mdb", "a.csv", "--create", "--replace"], "--create excludes --replace"),
            (["sql", "a.mdb"], "TEXT is required"),
            (["sql", "a.mdb", "SELECT 1", "-p", "x"], "\"x\" is no parameter"),
            (["export", "a.mdb"], "TABLE or --all"),
            (["export", "a.mdb", "T", "--all", "-d", "x"], "TABLE excludes --all"),
            (["export", "a.mdb", "--all"], "--all requires --directory"),
            (["export", "a.mdb", "--all", "-d", "x", "-o", "y"], "--output excludes --all"),
            (["export", "a.mdb", "T", "-d", "x"], "--directory requires --all"),
        ]:
            with self.subTest(words=words):
                code, output, errors = self.run_program("db", *words)
                self.assertEqual((code, output), (2, ""))
                self.assertIn(said, errors)

    def test_help_offers_what_there_is(self):
        code, output, _ = self.run_program("db", "--help")
        self.assertEqual(code, 0)
        commands = re.findall("^  ([a-z]+) ", output.split("Subcommands:")[1], re.MULTILINE)
        self.assertEqual(commands, ["tables", "schema", "export", "sql", "import", "queries", "browse",
                                    "check", "compact"])

    def test_what_is_no_database_is_told_in_one_line(self):
        self.write("notes.txt", "not a database\n" * 500)
        self.write("empty.mdb", "")
        os.mkdir(self.path("folder.mdb"))
        with open(self.path("newer.accdb"), "wb") as file:
            file.write(b"\0\1\0\0Standard ACE DB\0\x20" + bytes(8192))
        for name, code in [("none.mdb", 3024), ("folder.mdb", 3051), ("notes.txt", 3343),
                           ("empty.mdb", "(3049|3343)"), ("newer.accdb", 3343)]:
            for words in [["tables", name], ["schema", name], ["export", name, "T"],
                          ["queries", name], ["check", name], ["compact", name],
                          ["compact", name, "out.mdb"], ["sql", name, "SELECT 1"],
                          ["sql", name, "DELETE FROM T"], ["import", name, "/dev/null", "-t", "T"]]:
                with self.subTest(words=words):
                    answer, output, errors = self.run_program("db", *words)
                    self.assertEqual((answer, output, errors.count("\n")), (3, "", 1), errors)
                    self.assertTrue(errors.startswith(f"swiftgate: {name}: "), errors)
                    self.assertRegex(errors, f"\\(error {code}\\)\n$")


class SmallFiles(ProgramTest):
    """Files made for tests of the engine, with two tables, of which one is linked."""

    def test_a_link_that_leads_nowhere_is_told_and_the_rest_is_exported(self):
        for name in ["jet3", "jet4", "ace"]:
            with self.subTest(name):
                file = name + ".mdb"
                shutil.copy(os.path.join(CORPUS, name), self.path(file))
                self.assertEqual(self.run_program("db", "tables", file),
                                 (0, "Rooms\nFar rooms\n", ""))
                self.assertIn("\n-- [Far rooms] is linked to [Far] in c:\\far.mdb\n",
                              self.run_program("db", "schema", file)[1])
                for words in [["far rooms"], ["--all", "-d", name]]:
                    code, output, errors = self.run_program("db", "export", file, *words)
                    self.assertEqual((code, output, errors.count("\n")), (3, "", 1))
                    self.assertIn("/c:/far.mdb: table Far rooms: ", errors)
                    self.assertIn("(error 3044)", errors)
                self.assertEqual(os.listdir(self.path(name)), ["Rooms.csv"])
                with open(self.path(name + "/Rooms.csv"), "rb") as written:
                    self.assertEqual(written.read().split(b"\r\n")[:2], [
                        b"Id,Heated,Level,Name,Area,Price,Kind,Built,Note,Key",
                        b"1,1,0,Room 0,0,0.0000,200,2000-01-01 06:00:00,inline,01020003"])

    def test_no_table_name_leads_out_of_the_folder(self):
        with open(os.path.join(CORPUS, "jet3"), "rb") as file:
            content = file.read()
        for name, exported in [(b"../xs", ".._xs.csv"), (b"..\\xs", ".._xs.csv"),
                               (b"/tmp/", "_tmp_.csv"), (b"a\nb\x1bc", "a b c.csv")]:
            with self.subTest(name):
                with open(self.path("plan.mdb"), "wb") as file:
                    file.write(content.replace(b"Rooms", name))
                self.run_program("db", "export", "plan.mdb", "--all", "-d", "out")
                self.assertEqual(os.listdir(self.path("out")), [exported])
                self.assertEqual(sorted(os.listdir(self.folder)), ["out", "plan.mdb"])
                shutil.rmtree(self.path("out"))

    def test_a_link_is_followed(self):
        os.mkdir(self.path("c:"))
        shutil.copy(os.path.join(CORPUS, "jet4"), self.path("c:/FAR.mdb"))
        shutil.copy(os.path.join(CORPUS, "jet4"), self.path("plan.mdb"))
        code, _, errors = self.run_program("db", "export", "plan.mdb", "Far rooms")
        self.assertEqual(code, 3)
        self.assertIn("c:/FAR.mdb: table Far rooms: ", errors)
        self.assertIn("'Far'", errors)
        self.assertIn("(error 3078)", errors)


class WritingTest(ProgramTest):
    """With plan.mdb, a sound Jet 4 file: Rooms with three rows, and Far rooms linked to Far in
    c:\\far.mdb."""

    def setUp(self):
        super().setUp()
        self.db("compact", os.path.join(CORPUS, "jet4"), "plan.mdb")

    def db(self, *words, typed=""):
        code, output, errors = self.run_program("db", *words, typed=typed)
        self.assertEqual((code, errors), (0, ""))
        return output

    def refused(self, *words, typed=""):
        """The line on standard error of a command that leaves plan.mdb as it was."""
        before = self.rooms()
        code, output, errors = self.run_program("db", *words, typed=typed)
        self.assertEqual((code, output, errors.count("\n")), (3, "", 1), errors)
        self.assertEqual(self.rooms(), before)
        self.assertEqual(self.db("check", "plan.mdb"), "")
        return errors[len("swiftgate: "):-1]

    def rooms(self):
        return self.db("export", "plan.mdb", "Rooms")

    def bytes(self, name, content):
        with open(self.path(name), "wb") as file:
            file.write(content)
        return name


class Browse(WritingTest):
    """The table window without anybody to look at it; tests/app/browse uses it."""

    def setUp(self):
        super().setUp()
        for name in ["DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"]:
            self.environment.pop(name, None)
        self.write("parts.csv", "Id,Name\n1,elbow\n2,duct\n")
        self.db("import", "plan.mdb", "parts.csv", "--create")

    def test_without_a_display_it_says_so(self):
        code, output, errors = self.run_program("db", "browse", "plan.mdb", "PARTS")
        self.assertEqual((code, output), (2, ""))
        self.assertEqual(errors, "swiftgate: there is no display to show parts on; --picture, "
                                 "--text and --pdf write files instead\n")

    def test_it_writes_files_instead_of_showing_the_window(self):
        code, output, errors = self.run_program(
            "db", "browse", "plan.mdb", "parts", "--picture", "a.png", "--text", "a.txt", "--pdf",
            "a.pdf")
        self.assertEqual((code, output, errors), (0, "", ""))
        with open(self.path("a.txt"), encoding="utf-8") as file:
            self.assertEqual(file.read(), "Id\tName\n1\telbow\n2\tduct\n")
        for name, begin in [("a.png", b"\x89PNG"), ("a.pdf", b"%PDF")]:
            with open(self.path(name), "rb") as file:
                self.assertEqual(file.read(4), begin)

    def test_what_cannot_be_shown_or_written_is_named(self):
        for words, code, said in [
            (["plan.mdb", "prats"], 2, 'no table "prats"'),
            (["none.mdb"], 3, "error 3024"),
            (["plan.mdb", "parts", "--text", "none/a.txt"], 3, "none/a.txt"),
            (["plan.mdb", "parts", "--picture", "none/a.png"], 3, "cannot write"),
            (["plan.mdb", "parts", "--pdf", "none/a.pdf"], 3, "cannot write"),
        ]:
            with self.subTest(words=words):
                answer, output, errors = self.run_program("db", "browse", *words)
                self.assertEqual((answer, output), (code, ""), errors)
                self.assertIn(said, errors)


class Import(WritingTest):
    def test_forms_of_values(self):
        for column, forms in {
            "Heated": [("1", "1"), ("TRUE", "1"), (" yes ", "1"), ("-1", "1"), ("0", "0"),
                       ("False", "0"), ("off", "0"), ("", "0")],
            "Kind": [("255", "255"), ("0", "0"), ("2e2", "200"), ("", "")],
            "Level": [("-32768", "-32768"), ("7.0", "7")],
            "Id": [("-2147483648", "-2147483648"), (" 2147483647 ", "2147483647"), ("007", "7")],
            "Area": [("0.1", "0.1"), ("1.5e-07", "1.5e-07"), ("-0", "-0"), ("1E3", "1000"),
                     ("inf", "inf"), ("1e300", "1e+300")],
            "Price": [("922337203685477.5807", "922337203685477.5807"), ("-0.05", "-0.0500"),
                      ("1e3", "1000.0000"), ("0.00005", "0.0000"), ("0.00015", "0.0002")],
            "Built": [("2017-01-31", "2017-01-31 00:00:00"),
                      ("2017-01-31T14:30", "2017-01-31 14:30:00"),
                      ("0100-01-01 23:59:59", "0100-01-01 23:59:59"),
                      ("14:30:00", "1899-12-30 14:30:00")],
            "Name": [('""', '""'), (" a b ", " a b "), ("\u00fc\u20ac\U0001f600", None),
                     ('"a,""b"""', None), ('"two\nlines"', None)],
            "Note": [("x" * 70000, None), ("", "")],
            "Key": [("00fFA1", "00FFA1"), ('""', '""'), ("", "")],
        }.items():
            with self.subTest(column):
                self.db("import", "plan.mdb", "-", "-t", "rooms", "--replace",
                        typed=column + "\n" + "\n".join(form for form, _ in forms) + "\n")
                place = rows_of(self.rooms())[0].index(column)
                exported = [row[place] for row in rows_of(self.rooms())[1:]]
                wanted = rows_of("\n".join(form if shown is None else shown
                                           for form, shown in forms) + "\n")
                self.assertEqual(exported, [(row or [""])[0] for row in wanted])
        self.assertEqual(self.db("check", "plan.mdb"), "")

    def test_what_is_no_value_of_a_column(self):
        for column, forms in {
            "Heated": ["2", "ja", '""'],
            "Kind": ["256", "-1", "1.5", "1,000", "0x10", '""', "nan"],
            "Id": ["2147483648", "1e10", "+1", "1.", ".5", "--1", "12a"],
            "Area": ["1e999", "1.5.5", "$1", "(1)", "infinity", "1 2"],
            "Price": ["922337203685477.5808", "1e99999", "&H10", "inf", "1" * 5000],
            "Built": ["31.1.2017", "1/31/2017", "2017-02-29", "2017-1-31", "17-01-31", "12",
                      "2017-01-31 25:00", "10000-01-01", "2017-01-31x"],
            "Key": ["0", "0g", "0x00", "00" * 17],
            "Name": ["x" * 51],
        }.items():
            for form in forms:
                with self.subTest(column=column, form=form[:20]):
                    quoted = form if form == '""' else f'"{form}"'
                    told = self.refused("import", "plan.mdb", "-", "-t", "Rooms",
                                        typed=f"Id,{column}\n" .replace("Id,Id", "Level,Id") +
                                        f"1,\n2,{quoted}\n")
                    self.assertTrue(told.startswith(f"standard input:3: column {column}: "), told)
                    self.assertRegex(told, r"\(error (3421|3163)\)$")

    def test_columns_are_found_by_name(self):
        self.write("rooms.csv", "name,ID\nAtrium,7\n")
        self.assertEqual(self.db("import", "plan.mdb", "rooms.csv"), "1 row imported into Rooms\n")
        self.assertEqual(rows_of(self.rooms())[-1],
                         ["7", "0", "", "Atrium", "", "", "", "", "", ""])
        for header, told in [
            ("Id,Nmae", 'table Rooms has no column "Nmae"; did you mean: Name'),
            ("Id,", "column 2 has no name"),
            ("Id,Name,id", "column id is named twice"),
            ("Id; Name", 'table Rooms has no column "Id; Name"'),
        ]:
            with self.subTest(header):
                self.write("rooms.csv", header + "\n")
                self.assertEqual(self.refused("import", "plan.mdb", "rooms.csv"),
                                 "rooms.csv:1: " + told)
        self.write("rooms.csv", "")
        self.assertIn("rooms.csv:1: there is no line with the names",
                      self.refused("import", "plan.mdb", "rooms.csv"))

    def test_without_a_header_fields_come_in_the_order_of_the_columns(self):
        lines = self.rooms().split("\n", 1)
        self.db("import", "plan.mdb", "-", "-t", "Rooms", "--no-header", typed=lines[1])
        self.assertEqual(self.rooms(), lines[0] + "\n" + 2 * lines[1])
        self.assertEqual(self.refused("import", "plan.mdb", "-", "-t", "Rooms", "--no-header",
                                      typed="1,2\n"),
                         "standard input:1: the number of fields is 2 where 10 are expected")

    def test_lines_and_quotes(self):
        wanted = "Name,Id\nA,1\n\"B\nC\",2\n"
        for content in [b"Name,Id\r\nA,1\r\n\"B\nC\",2\r\n", b"Name,Id\nA,1\n\"B\nC\",2",
                        b"\xef\xbb\xbfName,Id\rA,1\r\"B\nC\",2\r",
                        b'\xef\xbb\xbf"Name","Id"\n\n"A","1"\r\n\r\n"B\nC",2\n\n']:
            with self.subTest(content):
                self.db("import", "plan.mdb", self.bytes("a.csv", content), "-t", "Rooms",
                        "--replace")
                self.assertEqual([row[3] + row[0] for row in rows_of(self.rooms())[1:]],
                                 [row[0] + row[1] for row in rows_of(wanted)[1:]])

    def test_what_is_wrong_with_the_file(self):
        for content, line, told in [
            (b"Id\n1\n\"2\n3\n", 3, "the quote at the field's end is missing"),
            (b"Id,Name\n1,\"a\nb\"c\n", 3, "behind a quote"),
            (b"Id,Name\r\n1,\"a\r\nb\"\r\n2,a\"b\n", 4, "quote inside of a field"),
            (b"Id,Name\n1,a\n2,\xfc\n", 3, "not UTF-8"),
            (b"Id,Name\n1,\xed\xa0\x80\n", 2, "not UTF-8"),
            (b"\xff\xfeI\0d\0", 1, "UTF-16"),
            (b"Id,Name\n1,a\n2\n", 3, "the number of fields is 1 where 2 are expected"),
            (b"Id,Name\n1,a\n2,b,c\n", 3, "the number of fields is 3 where 2 are expected"),
            (b"," * 5000, 1, "more than 4096 fields"),
        ]:
            with self.subTest(content[:30]):
                error = self.refused("import", "plan.mdb", self.bytes("a.csv", content),
                                     "-t", "Rooms")
                self.assertTrue(error.startswith(f"a.csv:{line}: "), error)
                self.assertIn(told, error)
        self.assertIn("cannot read none.csv", self.refused("import", "plan.mdb", "none.csv"))
        self.assertEqual(".:1: Is a directory",
                         self.refused("import", "plan.mdb", ".", "-t", "Rooms"))

    def test_records_that_cross_the_buffer(self):
        rows = [[str(i), "x" * (i * 37 % 3000), "\u00e4,\"\r\n" * (i % 50), "y" * (i // 290 * 400000)]
                for i in range(1, 300)]
        with open(self.path("long.csv"), "w", encoding="utf-8", newline="") as file:
            csv.writer(file).writerows([["a", "b", "c", "d"], *rows])
        self.db("import", "plan.mdb", "long.csv", "--create")
        self.db("export", "plan.mdb", "long", "-o", "again.csv")
        csv.field_size_limit(1 << 20)
        with open(self.path("again.csv"), encoding="utf-8", newline="") as file:
            self.assertEqual(list(csv.reader(file))[1:], rows)

    def test_create_finds_the_types(self):
        columns = [
            (["true", "FALSE"], "YESNO"), (["true", ""], "TEXT(255)"),
            (["1", "0"], "LONG"), (["-2147483648", ""], "LONG"), (["2147483648", "1"], "DOUBLE"),
            (["007", "8"], "TEXT(255)"), (["1.5000", "-20.0001"], "CURRENCY"),
            (["1.5000", "2"], "DOUBLE"), (["0.30000000000000004", "1e-07"], "DOUBLE"),
            (["123456789012345", "0"], "DOUBLE"), (["1234567890123456", "0"], "TEXT(255)"),
            (["2017-01-31", "2017-01-31 14:30:00"], "DATETIME"), (["2017-02-31", ""], "TEXT(255)"),
            (["{00112233-4455-6677-8899-AABBCCDDEEFF}", ""], "GUID"), (["", ""], "TEXT(255)"),
            (["x" * 255, '""'], "TEXT(255)"), (["x" * 256, ""], "MEMO"), (["1,5", "2"], "TEXT(255)"),
        ]
        names = [f"c{i}" for i in range(len(columns))]
        lines = [names] + [[f'"{values[row]}"' if "," in values[row] else values[row]
                            for values, _ in columns] for row in range(2)]
        text = "".join(",".join(line) + "\n" for line in lines)
        output = self.db("import", "plan.mdb", "-", "-t", "New", "--create", typed=text)
        types = re.findall(r"^    \[c\d+\] (\S+?),?(?: WITH COMPRESSION,?)?$", output, re.MULTILINE)
        self.assertEqual(types, [kind for _, kind in columns])
        self.assertTrue(output.endswith("\n2 rows imported into New\n"), output)
        self.assertIn("CREATE TABLE [New] (", self.db("schema", "plan.mdb", "New"))
        self.assertIn("(error 3010)", self.refused("import", "plan.mdb", "-", "-t", "new",
                                                   "--create", typed=text))
        self.assertIn("[Field2] LONG\n", self.db("import", "plan.mdb", "-", "-t", "Bare", "--create",
                                                 "--no-header", typed="a,1\nb,2\n"))
        self.assertEqual(self.db("export", "plan.mdb", "Bare"), "Field1,Field2\na,1\nb,2\n")
        self.assertIn("(error 3125)", self.refused("import", "plan.mdb", "-", "-t", "Other",
                                                   "--create", typed="a.b\n1\n"))
        self.assertEqual(self.db("check", "plan.mdb"), "")

    def test_a_dry_run_changes_nothing(self):
        before = self.rooms()
        for words in [["-t", "New", "--create"], ["-t", "Rooms", "--replace"]]:
            self.assertIn("1 row can be imported into " + words[1], self.db(
                "import", "plan.mdb", "-", *words, "--dry-run", typed="Id\n1\n"))
        self.assertEqual(self.rooms(), before)
        self.assertEqual(self.db("tables", "plan.mdb"), "Rooms\nFar rooms\n")
        self.assertEqual(sorted(os.listdir(self.folder)), ["plan.mdb"])

    def test_a_link_is_followed(self):
        self.write("far.csv", "Id\n1\n")
        told = self.refused("import", "plan.mdb", "far.csv", "-t", "far rooms")
        self.assertIn("c:/far.mdb: table Far rooms: ", told)
        os.mkdir(self.path("c:"))
        shutil.copy(self.path("plan.mdb"), self.path("c:/FAR.mdb"))
        self.db("import", "c:/far.mdb", "far.csv", "--create", "-t", "Far")
        self.db("import", "plan.mdb", "far.csv", "-t", "far rooms")
        self.assertEqual(self.db("export", "plan.mdb", "Far rooms"), "Id\n1\n1\n")

    def test_tables_that_cannot_be_filled(self):
        self.write("a.csv", "Id\n1\n")
        code, _, errors = self.run_program("db", "import", "plan.mdb", "a.csv", "-t", "Room")
        self.assertEqual(code, 2)
        self.assertIn("did you mean: Rooms", errors)
        self.assertIn("MSysObjects is the engine's own",
                      self.refused("import", "plan.mdb", "a.csv", "-t", "MSysObjects"))
        for name in ["jet3", "ace"]:
            shutil.copy(os.path.join(CORPUS, name), self.path(name))
            self.assertIn("(error 3051)",
                          self.refused("import", name, "a.csv", "-t", "Rooms"))

    def test_a_lock_file_of_another_program_is_told(self):
        with open(self.path("Plan.ldb"), "wb") as file:
            for machine in [b"DESK7", b"DESK8"]:
                file.write(machine.ljust(32, b"\0") + b"Admin".ljust(32, b"\0"))
        self.write("Rooms.csv", "Id\n1\n")
        for words in [["import", "plan.mdb", "Rooms.csv"], ["compact", "plan.mdb"]]:
            code, _, errors = self.run_program("db", *words)
            self.assertEqual((code, errors.count("\n")), (0, 1))
            self.assertRegex(errors, "^swiftgate: plan.mdb: .*Plan.ldb, with the entries "
                                     "DESK7, DESK8$")

    def test_the_bar_comes_and_an_interrupt_leaves_the_table_as_it_was(self):
        before = self.rooms()
        master, slave = pty.openpty()
        self.addCleanup(os.close, master)
        process = self.popen("db", "import", "plan.mdb", "-", "-t", "Rooms", stderr=slave,
                             stdin=subprocess.PIPE, stdout=subprocess.PIPE)
        os.close(slave)
        shown = ""
        try:
            process.stdin.write("Id\n")
            while process.poll() is None:
                process.stdin.write("1\n" * 5000)
                while select.select([master], [], [], 0)[0]:
                    shown += os.read(master, 4096).decode("utf-8")
                    if "Importing standard input" in shown:
                        process.send_signal(signal.SIGINT)
        except (BrokenPipeError, OSError):
            pass
        output, _ = process.communicate(timeout=120)
        try:
            while text := os.read(master, 4096):
                shown += text.decode("utf-8")
        except OSError:
            pass
        self.assertIn("\r\x1b[Kswiftgate: ", shown)
        self.assertIn("(error 3059)", shown)
        self.assertEqual((process.returncode, output), (3, ""))
        self.assertEqual(self.rooms(), before)


class Compact(WritingTest):
    def test_into_a_new_file(self):
        self.assertRegex(self.db("compact", "plan.mdb", "new.mdb"),
                         r"^new.mdb: \d+ bytes before, \d+ bytes now\n$")
        self.assertEqual(self.db("export", "new.mdb", "Rooms"), self.rooms())
        self.assertIn("new.mdb: Database already exists. (error 3204)",
                      self.refused("compact", "plan.mdb", "new.mdb"))

    def test_in_place(self):
        before = self.rooms()
        self.db("import", "plan.mdb", "-", "-t", "Rooms",
                typed="Id,Name\n" + "1,some text of a room\n" * 20000)
        self.db("import", "plan.mdb", "-", "-t", "Rooms", "--replace", typed=before)
        sizes = re.findall(r"(\d+) bytes", self.db("compact", "plan.mdb", "--backup", "old.mdb"))
        self.assertGreater(int(sizes[0]), 4 * int(sizes[1]))
        self.assertEqual([os.path.getsize(self.path(name)) for name in ["old.mdb", "plan.mdb"]],
                         [int(size) for size in sizes])
        self.assertEqual((self.rooms(), self.db("export", "old.mdb", "Rooms")), (before, before))
        self.assertIn("there is a old.mdb",
                      self.refused("compact", "plan.mdb", "--backup", "old.mdb"))
        self.assertEqual(sorted(os.listdir(self.folder)), ["old.mdb", "plan.mdb"])

    def test_other_versions_need_a_new_file(self):
        for name in ["jet3", "ace"]:
            shutil.copy(os.path.join(CORPUS, name), self.path(name))
            self.assertIn("name a new file", self.refused("compact", name))
            self.db("compact", name, name + ".mdb")
            self.assertIn("(Jet 4)\n", self.db("schema", name + ".mdb"))
            self.assertEqual(self.db("check", name + ".mdb"), "")

    def test_a_damaged_file_is_repaired_and_kept(self):
        self.db("import", "plan.mdb", "-", "-t", "Rooms",
                typed="Id,Name\n" + "".join(f"{i},a room\n" for i in range(1000)))
        with open(self.path("plan.mdb"), "r+b") as file:
            page = file.read().index("a room".encode("utf-16-le")) // 4096
            file.seek(page * 4096)
            file.write(b"\xff" * 4096)
            file.seek(0)
            damaged = file.read()
        code, _, errors = self.run_program("db", "compact", "plan.mdb")
        self.assertEqual((code, errors.count("\n")), (3, 1))
        self.assertIn(f"page {page}: ", errors)
        self.assertEqual(os.listdir(self.folder), ["plan.mdb"])
        code, output, errors = self.run_program("db", "compact", "plan.mdb", "--repair")
        self.assertEqual(code, 1)
        self.assertIn("plan.mdb as it was: plan.mdb.bak\n", output)
        self.assertTrue(all(line.startswith("swiftgate: plan.mdb: ")
                            for line in errors.splitlines()), errors)
        self.assertIn(f"page {page}: ", errors)
        with open(self.path("plan.mdb.bak"), "rb") as file:
            self.assertEqual(file.read(), damaged)
        self.assertEqual(self.db("check", "plan.mdb"), "")
        self.assertGreater(len(rows_of(self.rooms())), 500)
        self.assertIn("plan.mdb.bak2\n", self.db("compact", "plan.mdb", "--repair"))


@unittest.skipUnless(os.path.isdir(DATA), f"there is no folder {DATA}")
class RealFiles(ProgramTest):
    def db(self, *words):
        """Standard output of a command that succeeds without a word on standard error."""
        code, output, errors = self.run_program("db", *words)
        self.assertEqual((code, errors), (0, ""))
        return output

    def copy(self, name):
        shutil.copy(real(name), self.path(name))
        os.chmod(self.path(name), 0o644)
        return self.path(name)

    def test_tables(self):
        self.assertEqual(
            sorted(self.db("tables", real("nwind.mdb")).splitlines()),
            ["Categories", "Customers", "Employees", "Order Details", "Orders", "Products",
             "Shippers", "Suppliers", "Ums\u00e4tze"])
        self.assertEqual(self.db("tables", real("compIndexTestV2000.mdb")), "Table1\n")

    def test_file_names_are_found_as_everywhere(self):
        os.mkdir(self.path("Plans"))
        shutil.copy(real("compIndexTestV2000.mdb"), self.path("Plans/Index.mdb"))
        self.assertEqual(self.db("tables", "plans\\INDEX.mdb"), "Table1\n")

    def test_every_table_of_every_file_is_exported(self):
        for name in FILES:
            with self.subTest(name):
                folder = self.path(name + ".csv")
                self.assertEqual(self.db("export", real(name), "--all", "-d", folder), "")
                tables = self.db("tables", real(name)).splitlines()
                self.assertEqual(sorted(os.listdir(folder)), sorted(t + ".csv" for t in tables))
                for table in tables:
                    with open(os.path.join(folder, table + ".csv"), "rb") as file:
                        written = file.read()
                    self.assertTrue(written.endswith(b"\r\n"))
                    rows = rows_of(written.decode("utf-8"))
                    self.assertEqual({len(row) for row in rows}, {len(rows[0])})
                    self.assertEqual(self.db("export", real(name), table.upper()),
                                     written.decode("utf-8").replace("\r\n", "\n"))

    def test_values(self):
        orders = rows_of(self.db("export", real("nwind.mdb"), "Orders"))
        self.assertEqual(len(orders), 831)
        self.assertEqual(
            next(row for row in orders if row[0] == "10248"),
            ["10248", "VINET", "5", "1994-08-04 00:00:00", "1994-09-01 00:00:00",
             "1994-08-16 00:00:00", "3", "32.3800", "Vins et alcools Chevalier",
             "59 rue de l'Abbaye", "Reims", "", "51100", "France"])
        details = rows_of(self.db("export", real("nwind.mdb"), "Order Details"))
        self.assertEqual(len(details), 2156)
        self.assertIn("0.15", {row[4] for row in details})
        products = rows_of(self.db("export", real("nwind.mdb"), "Products"))
        self.assertEqual({row[9] for row in products[1:]}, {"0", "1"})
        pictures = rows_of(self.db("export", real("nwind.mdb"), "Categories"))
        self.assertRegex(pictures[1][3], "^151C2F00[0-9A-F]{20000,}$")
        identifiers = self.db("export", real("indexTestV2000.mdb"), "MSysNameMap")
        self.assertIn("{8F096CA0-FC16-4288-801E-119F26C0B6FC}", identifiers)

    def test_numbers_and_dates_at_their_ends(self):
        """Each put in the place of the same value of order 10248."""
        ends = [
            ("<q", 323800, 7, [(0, "0.0000"), (5, "0.0005"), (-5, "-0.0005"),
                               (-323800, "-32.3800"), (9999, "0.9999"), (10000, "1.0000"),
                               (2**63 - 1, "922337203685477.5807"),
                               (-2**63, "-922337203685477.5808")]),
            ("<d", 34550.0, 3, [(0.0, "1899-12-30 00:00:00"), (-1.25, "1899-12-29 06:00:00"),
                                (42766 + 0.604166666667, "2017-01-31 14:30:00"),
                                (34549.999999, "1994-08-04 00:00:00"),
                                (-657434.0, "0100-01-01 00:00:00"),
                                (2958465.99999, "9999-12-31 23:59:59")]),
        ]
        path = self.copy("nwind.mdb")
        with open(path, "rb") as file:
            content = file.read()
        for form, value, column, others in ends:
            # The row begins with the count of its columns and its number.
            row = content.index(struct.pack("<BI", 14, 10248))
            place = content.index(struct.pack(form, value), row, row + 60)
            for other, shown in others:
                bytes_ = struct.pack(form, other)
                with open(path, "wb") as file:
                    file.write(content[:place] + bytes_ + content[place + len(bytes_):])
                with self.subTest(shown):
                    fields = [row[column] for table in ["Orders", "Ums\u00e4tze"]
                              for row in rows_of(self.db("export", path, table))
                              if row[0] == "10248"]
                    self.assertIn(shown, fields)

    def test_floating_numbers_are_the_shortest_that_read_back(self):
        path = self.copy("nwind.mdb")
        with open(path, "rb") as file:
            content = file.read()
        # The count of columns, two numbers, a price and a quantity stand before the discount.
        place = content.index(struct.pack("<BI", 5, 10248)) + 19
        for value, shown in [(0.1, "0.1"), (-0.0, "-0"), (100000.0, "100000"), (1e-5, "0.00001"),
                             (1.5e-7, "1.5e-07"), (16777216.0, "16777216"), (3.4e38, "3.4e+38"),
                             (1e20, "1e+20"), (float("inf"), "inf"), (float("nan"), "nan")]:
            with open(path, "wb") as file:
                file.write(content[:place] + struct.pack("<f", value) + content[place + 4:])
            with self.subTest(shown):
                rows = rows_of(self.db("export", path, "Order Details"))
                self.assertIn(shown, {row[4] for row in rows if row[0] == "10248"})

    def test_quotes_stand_where_they_are_needed(self):
        output = self.db("export", real("nwind.mdb"), "Suppliers")
        self.assertIn("1,Exotic Liquids,Charlotte Cooper,", output)
        self.assertIn('"3400 - 8th Avenue\nSuite 210"', output.replace("\r", ""))
        objects = self.db("export", real("compIndexTestV2000.mdb"), "MSysObjects")
        self.assertRegex(objects, '(?m)^.*,,.*$')

    def test_the_database_is_not_written_over(self):
        path = self.copy("compIndexTestV2000.mdb")
        os.link(path, self.path("other.csv"))
        for target in [path, self.path("other.csv")]:
            code, _, errors = self.run_program("db", "export", path, "Table1", "-o", target)
            self.assertEqual(code, 3)
            self.assertIn("it is the database itself", errors)
        with open(path, "rb") as kept, open(real("compIndexTestV2000.mdb"), "rb") as original:
            self.assertEqual(kept.read(), original.read())

    def test_files_that_cannot_be_written(self):
        for words in [["Table1", "-o", "none/out.csv"], ["--all", "-d", "none/folder"],
                      ["Table1", "-o", "/dev/full"]]:
            with self.subTest(words=words):
                code, output, errors = self.run_program(
                    "db", "export", real("compIndexTestV2000.mdb"), *words)
                self.assertEqual((code, output, errors.count("\n")), (3, "", 1))
                self.assertTrue(errors.startswith("swiftgate: "), errors)

    def test_an_unknown_table_has_suggestions(self):
        for command in ["schema", "export"]:
            code, output, errors = self.run_program("db", command, real("nwind.mdb"), "Custmers")
            self.assertEqual((code, output), (2, ""))
            self.assertEqual(errors, f'swiftgate: no table "Custmers" in {real("nwind.mdb")}; '
                                     "did you mean: Customers\n")

    def test_schema(self):
        output = self.db("schema", real("nwind.mdb"), "order details")
        for said in ["(Jet 3)\n",
                     "CREATE TABLE [Order Details] (\n",
                     "    -- Description: Same as Order ID in Orders table.\n",
                     "    -- ValidationRule: >=0\n",
                     "    [UnitPrice] CURRENCY NOT NULL DEFAULT 0,\n",
                     "    [Discount] SINGLE NOT NULL DEFAULT 0\n);\n",
                     "CREATE UNIQUE INDEX [PrimaryKey] ON [Order Details] ([OrderID], [ProductID]) "
                     "WITH PRIMARY;\n",
                     "ADD CONSTRAINT [OrdersOrder Details] FOREIGN KEY ([OrderID]) REFERENCES "
                     "[Orders] ([OrderID]) ON DELETE CASCADE;\n"]:
            self.assertIn(said, output)
        self.assertNotIn("CREATE TABLE [Orders]", output)
        self.assertNotIn("[CustomersOrders]", output)
        self.assertIn("([CD_AGENTE] DESC);\n",
                      self.db("schema", real("compIndexTestV2000.mdb")))
        self.assertIn("    [CustomerID] TEXT(5),\n", self.db("schema", real("nwind.mdb")))
        self.assertIn("    [data] TEXT(50) WITH COMPRESSION,\n",
                      self.db("schema", real("indexTestV2000.mdb")))

    def test_queries(self):
        output = self.db("queries", real("queryTestV2000.mdb"))
        self.assertEqual(
            re.findall("^-- (.*)$", output, re.MULTILINE),
            ["SelectQuery", "UpdateQuery", "AppendQuery", "DeleteQuery", "MakeTableQuery",
             "CrosstabQuery", "UnionQuery", "PassthroughQuery", "DataDefinitionQuery"])
        self.assertIn("-- DeleteQuery\nDELETE Table1.col1, Table1.col2, Table1.col3\nFROM Table1\n"
                      'WHERE (((Table1.col1)>"blah"));\n\n-- MakeTableQuery\n', output)
        self.assertEqual(self.db("queries", real("compIndexTestV2000.mdb")), "")

    def test_check_finds_nothing(self):
        for name in FILES:
            with self.subTest(name):
                self.assertEqual(self.db("check", real(name)), "")

    def test_damage_is_told_and_the_rest_is_exported(self):
        path = self.copy("nwind.mdb")
        before = rows_of(self.db("export", path, "Orders"))
        with open(path, "r+b") as file:
            content = file.read()
            # Every page that has a row of this order: those of two tables.
            pages = {match.start() // 2048 for match in re.finditer(b"Chop-suey Chinese", content)}
            for page in pages:
                file.seek(page * 2048)
                file.write(b"\xff" * 2048)
        code, output, errors = self.run_program("db", "export", path, "Orders")
        self.assertEqual(code, 3)
        for line in errors.splitlines():
            place = re.match(r"swiftgate: (.*): table Orders: page (\d+): ", line)
            self.assertEqual(place[1], path)
            self.assertIn(int(place[2]), pages)
        after = rows_of(output)
        self.assertGreater(len(after), 100)
        self.assertLess(len(after), len(before))
        self.assertTrue({tuple(row) for row in after} <= {tuple(row) for row in before})
        code, output, _ = self.run_program("db", "check", path)
        self.assertEqual(code, 1)
        self.assertRegex(output, f"page ({'|'.join(map(str, pages))}): ")

    def test_a_file_that_is_cut_off_is_read_as_far_as_it_goes(self):
        path = self.copy("nwind.mdb")
        whole = os.path.getsize(path)
        for size, exported in [(whole // 2, True), (2048, False), (5, False)]:
            os.truncate(path, size)
            with self.subTest(size):
                folder = self.path(str(size))
                code, output, errors = self.run_program("db", "export", path, "--all", "-d", folder)
                self.assertEqual((code, output), (3, ""))
                self.assertTrue(errors.startswith(f"swiftgate: {path}: "), errors)
                self.assertEqual(os.path.isdir(folder), exported)

    def test_every_table_of_every_file_is_imported_again(self):
        # Tables whose rows are referred to come after those that refer to them.
        emptied = {"indexTestV2000.mdb": ["Table1", "Table2", "Table3"]}
        for name in FILES:
            if "2000" not in name and "2003" not in name:
                continue
            with self.subTest(name):
                path = self.copy(name)
                tables = self.db("tables", path).splitlines()
                order = emptied.get(name, tables)
                self.assertEqual(sorted(order), sorted(tables))
                exports = {table: self.db("export", path, table) for table in tables}
                for table in order:
                    self.db("import", path, "-t", table, "/dev/null", "--no-header", "--replace")
                    self.assertEqual(len(rows_of(self.db("export", path, table))), 1)
                for table in reversed(order):
                    self.write("table.csv", exports[table])
                    self.db("import", path, self.path("table.csv"), "-t", table)
                self.assertEqual({table: self.db("export", path, table) for table in tables},
                                 exports)
                self.assertEqual(self.db("check", path), "")

    def test_what_indexes_and_relations_refuse(self):
        path = self.path("nwind.mdb")
        self.db("compact", real("nwind.mdb"), path)
        before = self.db("export", path, "Orders")
        for table, text, options, code, told in [
            ("Customers", "CustomerID,CompanyName\nNEWCO,New\nALFKI,Old\n", [], 3022, ":3: "),
            ("Orders", "CustomerID\nALFKI\nXXXXX\n", [], 3201, "'Customers'"),
            ("Order Details", "OrderID,ProductID,UnitPrice,Quantity,Discount\n10248,1,1,-1,0\n", [],
             3316, "Quantity must be greater than 0"),
            ("Customers", "CompanyName,CustomerID\n\n,NEWCO\n", [], 3314, ":3: column CompanyName: "),
            ("Customers", "CustomerID\nNEWCO\n", ["--replace"], 3200, "'Orders'"),
            ("Orders", "CustomerID\nALFKI\n", ["--replace"], None, "Order Details too"),
        ]:
            with self.subTest(table=table, code=code):
                answer, output, errors = self.run_program(
                    "db", "import", path, "-", "-t", table, *options, typed=text)
                self.assertEqual((answer, output, errors.count("\n")), (3, "", 1))
                self.assertIn(told, errors)
                if code:
                    self.assertIn(f"(error {code})\n", errors)
        self.assertEqual(self.db("export", path, "Orders"), before)
        # A counter goes on behind the number that is given; a column that is left out gets its
        # default.
        for text in ["OrderID,CustomerID\n20000,ALFKI\n", "CustomerID\nALFKI\n"]:
            self.db_import(path, "Orders", text)
        orders = rows_of(self.db("export", path, "Orders"))
        self.assertEqual([(row[0], row[7]) for row in orders[-2:]],
                         [("20000", "0.0000"), ("20001", "0.0000")])
        self.assertEqual(self.db("check", path), "")

    def db_import(self, path, table, text):
        self.write("rows.csv", text)
        return self.db("import", path, self.path("rows.csv"), "-t", table)

    def test_compacted_files_have_the_same_rows(self):
        for name in FILES:
            with self.subTest(name):
                path = self.path(name + ".mdb")
                code, _, _ = self.run_program("db", "compact", real(name), path)
                self.assertEqual(code, 1 if name.endswith("accdb") else 0)
                self.assertEqual(self.db("check", path), "")
                for table in self.db("tables", real(name)).splitlines():
                    self.assertEqual(self.db("export", path, table),
                                     self.db("export", real(name), table))


if __name__ == "__main__":
    unittest.main()
