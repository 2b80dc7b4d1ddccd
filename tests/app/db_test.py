"""The db commands on real files: what they print, and their exit codes."""

import csv
import io
import os
import re
import shutil
import struct
import unittest

from program import ProgramTest

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
            ([], "tables, schema, export, queries or check"),
            (["tables"], "FILE"),
            (["tables", "a.mdb", "b.mdb"], "b.mdb"),
            (["compact", "a.mdb", "b.mdb"], "compact"),
            (["import", "a.mdb"], "import"),
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
        self.assertEqual(commands, ["tables", "schema", "export", "queries", "check"])

    def test_what_is_no_database_is_told_in_one_line(self):
        self.write("notes.txt", "not a database\n" * 500)
        self.write("empty.mdb", "")
        os.mkdir(self.path("folder.mdb"))
        with open(self.path("newer.accdb"), "wb") as file:
            file.write(b"\0\1\0\0Standard ACE DB\0\x20" + bytes(8192))
        for name, code in [("none.mdb", 3024), ("folder.mdb", 3051), ("notes.txt", 3343),
                           ("empty.mdb", 3343), ("newer.accdb", 3343)]:
            for words in [["tables", name], ["schema", name], ["export", name, "T"],
                          ["queries", name], ["check", name]]:
                with self.subTest(words=words):
                    answer, output, errors = self.run_program("db", *words)
                    self.assertEqual((answer, output, errors.count("\n")), (3, "", 1), errors)
                    self.assertTrue(errors.startswith(f"swiftgate: {name}: "), errors)
                    self.assertIn(f"(error {code})", errors)


class SmallFiles(ProgramTest):
    """Files made for tests of the engine, with two tables, of which one is linked."""

    def test_a_link_that_leads_nowhere_is_told_and_the_rest_is_exported(self):
        for name in ["jet3", "jet4", "ace"]:
            with self.subTest(name):
                file = os.path.join(CORPUS, name)
                self.assertEqual(self.run_program("db", "tables", file),
                                 (0, "Rooms\nFar rooms\n", ""))
                self.assertIn("\n-- [Far rooms] is linked to [Far] in c:\\far.mdb\n",
                              self.run_program("db", "schema", file)[1])
                told = "swiftgate: c:/far.mdb: table Far rooms: Could not find file " \
                       "'c:/far.mdb'. (error 3024)\n"
                self.assertEqual(self.run_program("db", "export", file, "far rooms"),
                                 (3, "", told))
                self.assertEqual(self.run_program("db", "export", file, "--all", "-d", name),
                                 (3, "", told))
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
        code, _, errors = self.run_program(
            "db", "export", os.path.join(CORPUS, "jet4"), "Far rooms")
        self.assertEqual(code, 3)
        self.assertIn("c:/FAR.mdb: table Far rooms: ", errors)
        self.assertIn("'Far'", errors)
        self.assertIn("(error 3078)", errors)


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
        code, output, errors = self.run_program("db", "check", path)
        self.assertEqual((code, errors), (1, ""))
        self.assertIn(f"page {min(pages)}: ", output)

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


if __name__ == "__main__":
    unittest.main()
