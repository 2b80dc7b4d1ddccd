"""LISP programs on database files: files of other programs, several users, and a writer's death."""

import os
import random
import shutil
import time
import unittest

from db_test import DATA, FILES, real, rows_of
from program import ProgramTest

ROOMS = """
(sg_create_db "plan.mdb")
(sg_connect "plan.mdb")
(sg_create_table "tblRoom"
  '(("ID" "LONG" nil nil "I" T T) ("Writer" "TEXT" 10 nil nil "X") ("Number" "LONG" nil nil)
    ("Note" "MEMO" nil nil)))
(princ)
"""

# Adds records until it is told to stop, and tells of each when it has been written.
WRITER = """
(sg_connect "plan.mdb")
(sg_table "tblRoom" "ID")
(setq number 0 note "" lines (open "%(writer)s.txt" "a"))
(repeat 40 (setq note (strcat note "a memo that goes on pages of its own ")))
(while (< number %(count)d)
  (setq number (1+ number))
  (if (sg_append (list (cons "Writer" "%(writer)s") (cons "Number" number)
                       (cons "Note" (if (= 0 (rem number 3)) note "short"))))
    (progn
      (write-line (itoa number) lines)
      (if (= 0 (rem number 20))
        (progn (close lines) (setq lines (open "%(writer)s.txt" "a")))))
    (princ (strcat "lost " (itoa number) "\\n"))))
(close lines)
(princ)
"""


class LispDatabaseTest(ProgramTest):
    def lisp(self, text, *words):
        code, output, errors = self.run_program("run", self.write("test.lsp", text), *words)
        self.assertEqual(code, 0, errors)
        return output

    def make_rooms(self):
        for name in os.listdir(self.folder):
            if name.startswith("plan."):
                os.remove(self.path(name))
        self.lisp(ROOMS)

    def check(self, name):
        code, output, errors = self.run_program("db", "check", name)
        self.assertEqual((code, errors), (0, ""), output)

    def rows(self, name, sql):
        code, output, errors = self.run_program("db", "sql", name, sql)
        self.assertEqual(code, 0, errors)
        return rows_of(output)[1:]


class Users(LispDatabaseTest):
    def start_writer(self, writer, count):
        program = self.write(writer + ".lsp", WRITER % {"writer": writer, "count": count})
        return self.popen("run", program, stdout=-1, stderr=-1)

    def test_two_writers_lose_nothing(self):
        self.make_rooms()
        writers = [self.start_writer(name, 400) for name in "ab"]
        for writer in writers:
            output, _ = writer.communicate(timeout=120)
            self.assertEqual((writer.returncode, output), (0, ""))
        rows = self.rows("plan.mdb", "SELECT ID, Writer, Number FROM tblRoom ORDER BY ID")
        self.assertEqual([int(row[0]) for row in rows], list(range(1, 801)))
        for name in "ab":
            self.assertEqual([int(row[2]) for row in rows if row[1] == name],
                             list(range(1, 401)), "in the order of writing")
        self.check("plan.mdb")

    def told(self, writer):
        """The numbers that a writer has told of; it may have died in the midst of a line."""
        try:
            with open(self.path(writer + ".txt"), encoding="ascii") as file:
                return [int(line) for line in file if line.endswith("\n")]
        except FileNotFoundError:
            return []

    def test_a_writer_that_is_killed_leaves_every_finished_record(self):
        random.seed(20)
        told_in_all = 0
        for trial in range(8):
            self.make_rooms()
            if os.path.exists(self.path("w.txt")):
                os.remove(self.path("w.txt"))
            writer = self.start_writer("w", 1000000)
            end = time.monotonic() + 60
            wanted = random.randint(20, 3000)
            while len(self.told("w")) < wanted and time.monotonic() < end:
                self.assertIsNone(writer.poll())
                time.sleep(0.005)
            writer.kill()
            writer.communicate()
            told = self.told("w")
            self.assertGreaterEqual(len(told), wanted, "trial %d" % trial)
            self.check("plan.mdb")
            numbers = [int(row[0]) for row in
                       self.rows("plan.mdb", "SELECT Number FROM tblRoom ORDER BY ID")]
            self.assertEqual(numbers, list(range(1, len(numbers) + 1)), "trial %d" % trial)
            self.assertGreaterEqual(len(numbers), told[-1])
            # The next program goes on where it was.
            again = self.lisp("""
(sg_connect "plan.mdb")
(sg_table "tblRoom" "ID")
(print (= (sg_count) (cdr (assoc "Number" (sg_bottom)))))
(print (= (1+ (sg_count)) (cdr (assoc "ID" (sg_append '(("Writer" . "next")))))))
(princ)""")
            self.assertEqual(again.split(), ["T", "T"])
            self.check("plan.mdb")
            told_in_all += len(told)
        self.assertGreater(told_in_all, 1000)


@unittest.skipUnless(os.path.isdir(DATA), "the real databases are not here")
class RealFiles(LispDatabaseTest):
    def test_every_table_is_walked_in_every_order(self):
        for name in FILES:
            shutil.copy(real(name), self.path(name))
            _, tables, _ = self.run_program("db", "tables", name)
            for table in tables.splitlines():
                with self.subTest(file=name, table=table):
                    _, rows, _ = self.run_program("db", "export", name, table)
                    count = len(rows_of(rows)) - 1
                    answer = self.lisp("""
(sg_connect "%s" "r")
(defun walk (/ n) (setq n 0) (if (sg_top) (progn (setq n 1) (while (sg_skip) (setq n (1+ n))))) n)
(defun back (/ n) (setq n 0) (if (sg_bottom) (progn (setq n 1) (while (sg_skip -1) (setq n (1+ n))))) n)
(princ (sg_table "%s"))
(terpri)
(princ (list (fix (sg_count)) (walk) (back)))
(foreach index (sg_list_indexes)
  (sg_table "%s" index)
  (princ (list (walk) (back))))
(princ)""" % (name, table, table))
                    if answer.startswith("\nSwift Gate Error: "):
                        continue  # a linked table has no cursor of its own
                    numbers = answer.split("\n")[-1].replace("(", " ").replace(")", " ").split()
                    self.assertEqual(set(map(int, numbers)), {count}, answer)

    def test_every_table_is_queried(self):
        """sg_list_tables and sg_sql tell what the command line tells of the same files."""
        for name in FILES:
            shutil.copy(real(name), self.path(name))
            _, listed, _ = self.run_program("db", "tables", name)
            tables = [table for table in listed.splitlines() if not table.startswith("MS")]
            with self.subTest(file=name):
                answer = self.lisp("""
(sg_connect "%s" "r")
(foreach table (sg_list_tables)
  (if (not (wcmatch table "MS*"))
    (princ (strcat "\n" table "\t" (itoa (length (sg_sql-nil (strcat "SELECT * FROM [" table "]"))))))))
(princ)""" % name)
                told = dict(line.split("\t") for line in answer.splitlines() if "\t" in line)
                for table in tables:
                    code, rows, _ = self.run_program("db", "export", name, table)
                    if code == 0:
                        self.assertEqual(int(told[table]), len(rows_of(rows)) - 1, table)

    def test_their_records_are_written_and_stay_sound(self):
        for name, table, field in [
            ("indexTestV2000.mdb", "Table1", "data"),
            ("compIndexTestV2000.mdb", "Table1", "RS_AGENTE"),
            ("overflowTestV2003.mdb", "Table1", "data1"),
        ]:
            with self.subTest(file=name):
                shutil.copy(real(name), self.path(name))
                code, before, _ = self.run_program("db", "export", name, table)
                self.assertEqual(code, 0)
                header = rows_of(before)[0]
                self.assertIn(field, header)
                answer = self.lisp("""
(sg_connect "%(file)s")
(print (sg_readonly))
(sg_table "%(table)s")
(setq count (sg_count) kept (sg_bottom))
(print (cdr (assoc "%(field)s" (sg_replace '(("%(field)s" . "changed"))))))
(print (cdr (assoc "%(field)s" (sg_replace (list (assoc "%(field)s" kept))))))
(princ)""" % {"file": name, "table": table, "field": field})
                self.assertIn('"changed"', answer)
                self.check(name)
                _, after, _ = self.run_program("db", "export", name, table)
                self.assertEqual(sorted(rows_of(after)), sorted(rows_of(before)))

    def test_older_and_newer_files_are_only_read(self):
        for name, table in [("nwind.mdb", "Customers"), ("indexTestV2007.accdb", "Table1")]:
            shutil.copy(real(name), self.path(name))
            with open(self.path(name), "rb") as file:
                before = file.read()
            answer = self.lisp("""
(print (sg_connect "%s" "w"))
(print (sg_readonly))
(print (sg_table "%s"))
(print (sg_delete))
(print (sg_append '(("a" . 1))))
(princ)""" % (name, table))
            self.assertEqual(answer.split(), ["T", "T", '"%s"' % table, "nil", "nil"])
            with open(self.path(name), "rb") as file:
                self.assertEqual(file.read(), before)


class Manual(LispDatabaseTest):
    def test_the_examples_answer_as_they_say(self):
        self.assertGreater(self.check_examples("database.md"), 20)


if __name__ == "__main__":
    unittest.main()
