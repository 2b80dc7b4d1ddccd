"""db sql: what it prints to a pipe and on a terminal, and its exit codes."""

import fcntl
import os
import shutil
import pty
import signal
import struct
import subprocess
import termios
import unittest

from program import SWIFTGATE, ProgramTest

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
EMPTY = os.path.join(ROOT, "tests", "fuzz", "corpus", "jet_file", "jet4")


class SqlTest(ProgramTest):
    """With plan.mdb, in which Parts has a row for each way in which a value is shown."""

    def setUp(self):
        super().setUp()
        # Other tests read the same file at the same time.
        shutil.copy(EMPTY, self.path("empty.mdb"))
        code, _, errors = self.run_program("db", "compact", "empty.mdb", "plan.mdb")
        self.assertEqual(code, 0, errors)
        self.sql("CREATE TABLE Parts (Id LONG PRIMARY KEY, Name TEXT(60), Price CURRENCY, "
                 "Share DOUBLE, Made DATETIME, Stock YESNO, Note MEMO)",
                 "INSERT INTO Parts VALUES (1, 'Duct, round', 12.5, 0.125, #2017-01-31#, True, '')",
                 "INSERT INTO Parts VALUES (20, '\u98a8\u9053', -3, 1e20, #2017-01-31 14:30:00#, "
                 "False, 'a' & Chr(10) & 'b')",
                 "INSERT INTO Parts (Id) VALUES (300)")

    def sql(self, *statements):
        code, output, errors = self.run_program("db", "sql", "plan.mdb", ";".join(statements))
        self.assertEqual(code, 0, errors)
        return output

    def failed(self, text, *words):
        """Exit code, standard output and the line on standard error."""
        code, output, errors = self.run_program("db", "sql", "plan.mdb", text, *words)
        self.assertTrue(errors.startswith("swiftgate: ") and errors.count("\n") == 1, errors)
        return code, output, errors[len("swiftgate: "):-1]

    def on_terminal(self, text, *words, columns=80, term="xterm"):
        """What is shown, with "\\n" for line ends."""
        master, slave = pty.openpty()
        fcntl.ioctl(slave, termios.TIOCSWINSZ, struct.pack("HHHH", 24, columns, 0, 0))
        process = subprocess.Popen(
            [SWIFTGATE, "db", "sql", "plan.mdb", text, *words], cwd=self.folder, stdin=slave,
            stdout=slave, stderr=subprocess.PIPE, env={**self.environment, "TERM": term})
        os.close(slave)
        shown = b""
        try:
            while data := os.read(master, 65536):
                shown += data
        except OSError:
            pass
        os.close(master)
        self.assertEqual(process.communicate()[1], b"")
        self.assertEqual(process.returncode, 0)
        return shown.decode("utf-8").replace("\r\n", "\n")


class Pipe(SqlTest):
    def test_values_have_the_forms_of_an_export(self):
        exported = self.run_program("db", "export", "plan.mdb", "Parts")[1]
        self.assertEqual(self.sql("SELECT * FROM Parts ORDER BY Id"), exported)
        self.assertEqual(
            exported.splitlines()[:2],
            ["Id,Name,Price,Share,Made,Stock,Note",
             '1,"Duct, round",12.5000,0.125,2017-01-31 00:00:00,1,""'])

    def test_statements_run_in_order_and_counts_go_to_standard_error(self):
        code, output, errors = self.run_program(
            "db", "sql", "plan.mdb", "-", "-p", "n=300",
            typed="\ufeffUPDATE Parts SET Share = 2 WHERE Id > 1;\n"
                  "SELECT Id FROM Parts WHERE Share = 2 ORDER BY Id;\n"
                  "PARAMETERS n Long; DELETE FROM Parts WHERE Id = n;"
                  "SELECT Count(*) AS n FROM Parts;\n;\n")
        self.assertEqual((code, output.splitlines()), (0, ["Id", "20", "300", "", "n", "2"]))
        self.assertEqual(errors, "swiftgate: 2 records affected\nswiftgate: 1 record affected\n")

    def test_parameters(self):
        for given, expected in [("1", "1"), ("'20'", "20"), ("", ""), ("2e1", "20")]:
            self.assertEqual(
                self.run_program("db", "sql", "plan.mdb", "SELECT Id FROM Parts WHERE Id = [which]",
                                 "--parameter", "WHICH=" + given)[1].splitlines()[1:],
                [expected] if expected else [])
        self.assertEqual(
            self.run_program("db", "sql", "plan.mdb",
                             "SELECT Id FROM Parts WHERE Made = day OR Name = [a=b]",
                             "-p", "day=2017-01-31 14:30", "-p", "a=b=x")[0], 2)
        code, output, _ = self.run_program(
            "db", "sql", "plan.mdb", "SELECT Id, text FROM Parts WHERE Made = day",
            "-p", "day=2017-01-31 14:30", "-p", "text=a=b")
        self.assertEqual((code, output.splitlines()[1:]), (0, ["20,a=b"]))

    def test_explain_names_the_index(self):
        self.assertEqual(
            self.sql("EXPLAIN SELECT * FROM Parts WHERE Id = 1",
                     "EXPLAIN SELECT * FROM Parts WHERE Share = 1").splitlines(),
            ["Step", "SEARCH Parts USING INDEX PrimaryKey (Id=?)", "", "Step", "SCAN Parts"])


class Failures(SqlTest):
    def test_what_is_wrong_with_the_text_answers_2(self):
        for text, number in [("SELEC 1", 3129), ("SELECT FROM Parts", 3141),
                             ("SELECT * FROM Nowhere", 3078), ("SELECT Nam FROM Parts", 3061),
                             ("SELECT Foo(1)", 3085), ("INSERT INTO Parts (X) VALUES (1)", 3127)]:
            with self.subTest(text):
                code, output, line = self.failed(text)
                self.assertEqual((code, output), (2, ""))
                self.assertTrue(line.endswith(f"(error {number})"), line)
        self.assertEqual(self.failed(" ; ")[0], 2)

    def test_what_the_database_refuses_answers_3(self):
        for text, number in [("INSERT INTO Parts (Id) VALUES (1)", 3022),
                             ("UPDATE Parts SET Price = Name WHERE Id = 1", 3464),
                             ("CREATE TABLE Parts (Id LONG)", 3010)]:
            with self.subTest(text):
                code, output, line = self.failed(text)
                self.assertEqual((code, output), (3, ""))
                self.assertTrue(line.endswith(f"(error {number})"), line)

    def test_the_first_statement_that_fails_ends_it(self):
        code, output, line = self.failed(
            "SELECT 1 AS a; INSERT INTO Parts SELECT Id - 19 AS Id FROM Parts WHERE Id = 20; "
            "DELETE FROM Parts")
        self.assertEqual((code, output.splitlines()), (3, ["a", "1"]))
        self.assertTrue(line.startswith("statement 2: ") and line.endswith("(error 3022)"), line)
        self.assertEqual(self.sql("SELECT Count(*) FROM Parts").splitlines()[1], "3")

    def test_nothing_runs_where_one_statement_cannot_be_read(self):
        code, output, line = self.failed("DELETE FROM Parts; SELECT 1; SELEC 1")
        self.assertEqual((code, output), (2, ""))
        self.assertTrue(line.startswith("statement 3: "), line)
        self.assertEqual(self.sql("SELECT Count(*) FROM Parts").splitlines()[1], "3")

    def test_a_file_that_is_only_read(self):
        older = os.path.join(os.path.dirname(EMPTY), "jet3")
        code, output, _ = self.run_program("db", "sql", older, "SELECT Id FROM Rooms WHERE Id = 1")
        self.assertEqual((code, output.splitlines()), (0, ["Id", "1"]))
        code, output, errors = self.run_program("db", "sql", older, "SELECT 1; DELETE FROM Rooms")
        self.assertEqual((code, output), (3, ""))
        self.assertIn("(error 3051)", errors)

    def test_an_interrupt_cancels_the_statement_and_those_behind_it(self):
        rows = ", ".join(f"Parts AS p{i}" for i in range(20))
        process = self.popen(
            "db", "sql", "plan.mdb",
            f"SELECT 1 AS a; DELETE FROM Parts WHERE Id < (SELECT Count(*) FROM {rows}); "
            "DELETE FROM Parts", stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        self.addCleanup(process.kill)
        self.assertEqual([process.stdout.readline() for _ in range(2)], ["a\n", "1\n"])
        process.send_signal(signal.SIGINT)
        output, errors = process.communicate(timeout=120)
        self.assertEqual((process.returncode, output), (3, ""))
        self.assertRegex(errors, r"^swiftgate: statement \d: .*\(error 3059\)\n$")
        self.assertEqual(self.sql("SELECT Count(*) FROM Parts").splitlines()[1], "3")

    def test_standard_output_that_cannot_be_written(self):
        with open("/dev/full", "w", encoding="utf-8") as full:
            done = subprocess.run([SWIFTGATE, "db", "sql", self.path("plan.mdb"), "SELECT 1"],
                                  stdout=full, stderr=subprocess.PIPE, check=False)
        self.assertEqual(done.returncode, 3)


class OnTerminal(SqlTest):
    def test_columns_are_aligned(self):
        self.assertEqual(
            self.on_terminal("SELECT Id, Name, Price, Made, Stock, Note FROM Parts ORDER BY Id",
                             columns=90, term="dumb"),
            " Id  Name           Price  Made                 Stock  Note\n"
            "---  -----------  -------  -------------------  -----  ------\n"
            "  1  Duct, round  12.5000  2017-01-31           True   \n"
            " 20  \u98a8\u9053         -3.0000  2017-01-31 14:30:00  False  a b\n"
            "300  <Null>        <Null>  <Null>               False  <Null>\n"
            "3 rows\n")

    def test_a_null_is_faint(self):
        self.assertEqual(self.on_terminal("SELECT Name, Price FROM Parts WHERE Id = 300"),
                         "Name  Price\n----  -----\n\x1b[2mNull\x1b[22m   \x1b[2mNull\x1b[22m\n"
                         "1 row\n")

    def test_texts_are_cut_to_the_width(self):
        self.sql("UPDATE Parts SET Name = 'abcdefghijklmnopqrst', Note = Name & '!'")
        self.assertEqual(
            self.on_terminal("SELECT Id, Name, Note FROM Parts WHERE Id < 300", columns=30),
            "Id  Name          Note\n"
            "--  ------------  ------------\n"
            " 1  abcdefghijk\u2026  Duct, round!\n"
            "20  abcdefghijk\u2026  \u98a8\u9053!\n"
            "2 rows\n")

    def test_rows_become_blocks_where_lines_have_no_room(self):
        self.sql("UPDATE Parts SET Note = 'abcdefghijklmnopqrst'")
        self.assertEqual(
            self.on_terminal("SELECT Id, Name, Made, Note FROM Parts WHERE Id = 1", columns=24),
            "-- 1\n"
            "Id    1\n"
            "Name  Duct, round\n"
            "Made  2017-01-31\n"
            "Note  abcdefghijklmnopq\u2026\n"
            "1 row\n")

    def test_results_are_told_apart(self):
        self.assertEqual(
            self.on_terminal("DELETE FROM Parts WHERE Id = 1; CREATE INDEX n ON Parts (Name); "
                             "SELECT Id FROM Parts WHERE Id = 1"),
            "1 record affected\n\nId\n--\n0 rows\n")

    def test_csv_where_it_is_asked_for(self):
        self.assertEqual(self.on_terminal("SELECT Id FROM Parts ORDER BY Id", "--csv"),
                         "Id\r\n1\r\n20\r\n300\r\n")


if __name__ == "__main__":
    unittest.main()
