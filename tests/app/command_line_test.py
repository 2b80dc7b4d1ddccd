"""The command line: options, exit codes, files, help, and what the module exports."""

import fcntl
import os
import re
import shutil
import signal
import subprocess
import unittest

from program import BUILD, SWIFTGATE, ProgramTest


EMPTY_DRAWING = "  0\nSECTION\n  2\nENTITIES\n  0\nENDSEC\n  0\nEOF\n"


class Usage(ProgramTest):
    def test_wrong_usage_is_explained_and_answers_2(self):
        for words, said in [
            ([], "run, repl, convert, info, render, db or help"),
            (["no-such-command"], "no-such-command"),
            (["run"], "PROGRAM"),
            (["run", "a.lsp", "b.lsp"], "b.lsp"),
            (["run", "--no-such-option", "a.lsp"], "--no-such-option"),
            (["run", "a.lsp", "--drawing"], "--drawing"),
            (["run", "a.lsp", "--memory-limit", "0"], "no size"),
            (["run", "a.lsp", "--memory-limit", "12X"], "no size"),
            (["run", "a.lsp", "--memory-limit", "-1"], "no size"),
            (["run", "a.lsp", "--memory-limit", "99999999999999G"], "no size"),
            (["run", "a.lsp", "--locale", "qq"], "known languages are: cs, da, de, "),
            (["run", "a.lsp", "--locale", "de-QQ"], "de-AT, de-CH, de-DE"),
            (["repl", "--save", "x"], "--save"),
            (["help", "car", "cdr"], "cdr"),
        ]:
            with self.subTest(words=words):
                code, output, errors = self.run_program(*words)
                self.assertEqual((code, output), (2, ""))
                self.assertIn(said, errors)
                self.assertIn("--help", errors)

    def test_slips_are_answered_with_what_was_meant(self):
        for words, said in [
            (["rnu", "a.lsp"], 'no command "rnu"; did you mean: run\nRun swiftgate --help '),
            (["Plan.LSP"], 'no command "Plan.LSP"; did you mean: swiftgate run Plan.LSP\n'),
            (["db", "p.mdb"], "did you mean: swiftgate db tables p.mdb\nRun swiftgate db --help "),
            (["db", "tabels", "p.mdb"], 'no command "tabels"; did you mean: tables\n'),
            (["run", "a.lsp", "--drwing=a.dwg"],
             "swiftgate run has no option --drwing; did you mean: --drawing\n"),
            (["run", "a.lsp", "b.lsp"], 'swiftgate run has no place for "b.lsp"\n'),
            (["run", "--drawing"], "--drawing needs a value behind it\n"),
            (["render", "a.dwg", "a.png"],
             '--output is required: --output OUT; swiftgate render has no place for "a.png"\n'),
            (["qqqq"], 'no command "qqqq"\n'),
        ]:
            with self.subTest(words=words):
                code, output, errors = self.run_program(*words)
                self.assertEqual((code, output), (2, ""))
                self.assertIn(said, errors)

    def test_help_and_version_go_to_standard_output(self):
        for words, said in [
            (["--version"], "swiftgate "),
            (["--help"], "repl"),
            (["run", "--help"], "--memory-limit"),
            (["repl", "--help"], "--drawing"),
            (["help", "--help"], "--missing"),
        ]:
            with self.subTest(words=words):
                code, output, errors = self.run_program(*words)
                self.assertEqual((code, errors), (0, ""))
                self.assertIn(said, output)

    def test_options_that_are_accepted(self):
        for words in [["--memory-limit", "64M"], ["--memory-limit", "1g"], ["--memory-limit", "64"],
                      ["--memory-limit", "99999k"], ["--locale", "de"], ["--locale", "en-GB"],
                      ["--path", "x", "--path", "y"], ["--no-module"]]:
            with self.subTest(words=words):
                self.assertEqual(self.run_program("run", "--eval", "(princ 1)", *words)[:2],
                                 (0, "1"))


class Files(ProgramTest):
    def test_files_that_cannot_be_read_or_written_answer_3(self):
        self.write("good.lsp", "(princ 1)")
        self.write("bad.script", "text one\nnonsense here\n")
        self.write("rubbish.dxf", "no drawing at all")
        self.write("rubbish.dwg", "AC1032\0\0\0")
        self.write("old.dwg", "AC1009\0" + "\0" * 500)
        self.write("plan.dxf", EMPTY_DRAWING)
        os.mkdir(self.path("folder.lsp"))
        for words, said in [
            (["run", "none.lsp"], f"no such program: none.lsp; looked for\n  {self.path('none.lsp')}"),
            (["run", "none", "--path", "/tmp"], "/tmp/none.lsp"),
            (["run", "folder"], "no such program: folder"),
            (["run", "good.lsp", "--drawing", "none.dwg"], self.path("none.dwg")),
            (["run", "good.lsp", "--input", "none.script"], "none.script"),
            (["run", "good.lsp", "--input", "bad.script"], "bad.script:2: "),
            (["repl", "--drawing", "none.dwg"], self.path("none.dwg")),
            (["run", "good.lsp", "--save", "none/out.dxf"], "none/out.dxf"),
            (["run", "good.lsp", "--save", "out.dwt"], "out.dwt: drawings are written as .dwg and .dxf"),
            (["run", "good.lsp", "--save", "none/out.dwg"], "none/out.dwg"),
            (["run", "good.lsp", "--drawing", "rubbish.dxf"], "rubbish.dxf: this is no drawing file"),
            (["run", "good.lsp", "--drawing", "rubbish.dwg"], "rubbish.dwg: the drawing file ends in its first bytes"),
            (["info", "none.dxf"], "no such drawing: " + self.path("none.dxf")),
            (["info", "rubbish.dxf"], "rubbish.dxf: this is no drawing file"),
            (["info", "old.dwg"], "old.dwg: drawing files of the version AC1009 are not read"),
            (["convert", "plan.dxf", "plan"], "plan: drawings are written as .dwg and .dxf; the name has"),
            (["convert", "plan.dxf", "none/plan.dxf"], "none/plan.dxf"),
        ]:
            with self.subTest(words=words):
                code, _, errors = self.run_program(*words)
                self.assertEqual(code, 3)
                self.assertTrue(errors.startswith("swiftgate: "), errors)
                self.assertIn(said, errors)

    def test_program_is_found(self):
        self.write("plans/Ducts.lsp", '(princ "found")')
        for words in [["plans/Ducts.lsp"], ["plans/Ducts"], ["plans\\DUCTS.LSP"], ["PLANS/ducts"],
                      [self.path("plans/Ducts.lsp")], ["ducts", "--path", "plans"],
                      ["Ducts.lsp", "--path", "none", "--path", self.path("plans")]]:
            with self.subTest(words=words):
                self.assertEqual(self.run_program("run", *words), (0, "found", ""))

    def test_program_from_standard_input(self):
        self.assertEqual(self.run_program("run", "-", typed='(princ (+ 1 2))'), (0, "3", ""))
        code, _, errors = self.run_program("run", "-", typed='(princ 1)\n(car 5)')
        self.assertEqual(code, 1)
        self.assertIn("standard input:2", errors)

    def test_encodings_of_programs(self):
        for name, content in [
            ("utf8", "(princ \"\u00fc\u20ac\")".encode("utf-8")),
            ("bom", "(princ \"\u00fc\u20ac\")".encode("utf-8-sig")),
            ("ansi", "(princ \"\u00fc\u20ac\")".encode("cp1252")),
            ("utf16", "(princ \"\u00fc\u20ac\")".encode("utf-16")),
            ("crlf", "; comment\r\n(princ\r\n \"\u00fc\u20ac\")\r\n\x1a".encode("utf-8")),
        ]:
            with self.subTest(name):
                with open(self.path("program.lsp"), "wb") as file:
                    file.write(content)
                self.assertEqual(self.run_program("run", "program"), (0, "\u00fc\u20ac", ""))

    def test_drawing_is_opened_and_saved(self):
        self.write("In.dxf", EMPTY_DRAWING)
        program = '(princ (getvar "DWGNAME"))'
        self.assertEqual(
            self.run_program("run", "--drawing", "in.DXF", "--eval", program, "--save", "out.dxf"),
            (0, "In.dxf", ""))
        code, told, _ = self.run_program("info", "out.dxf")
        self.assertEqual((code, told.splitlines()[0]), (0, "release 2000 (AC1015), text, ANSI_1252"))

    def test_a_dwg_file_is_known_by_its_content(self):
        program = "(entmake '((0 . \"LINE\") (8 . \"Ducts\") (10 0 0 0) (11 3 4 0)))"
        self.assertEqual(
            self.run_program("run", "--eval", program, "--save", "plan.dwg"), (0, "", ""))
        os.rename(self.path("plan.dwg"), self.path("plan.dxf"))
        count = "(princ (sslength (ssget \"_X\")))"
        self.assertEqual(
            self.run_program("run", "--drawing", "plan.dxf", "--eval", count, "--save", "next.dwg"),
            (0, "1", ""))
        self.assertEqual(
            self.run_program("run", "--drawing", "next.dwg", "--eval", count, "--save", "next.dwg"),
            (0, "1", ""))
        self.assertTrue(os.path.exists(self.path("next.bak")))

    def test_drawings_are_converted(self):
        program = "(entmake '((0 . \"LINE\") (8 . \"Ducts\") (10 0 0 0) (11 3 4 0)))"
        self.assertEqual(
            self.run_program("run", "--eval", program, "--save", "plan.dxf"), (0, "", ""))
        for words, first in [
            (["plan.dxf", "out.dxf"], "release 2018 (AC1032), text, ANSI_1252"),
            (["plan.dxf", "out.dxf", "--release", "2000"], "release 2000 (AC1015), text, ANSI_1252"),
            (["out.dxf", "out.dxf", "--binary"], "release 2000 (AC1015), binary, ANSI_1252"),
            (["out.dxf", "again.dxf", "--flatten"], "release 2000 (AC1015), text, ANSI_1252"),
            (["plan.dxf", "new.dwg"], "release 2018 (AC1032), DWG, ANSI_1252"),
            (["new.dwg", "old.dwg", "--release", "2000"], "release 2000 (AC1015), DWG, ANSI_1252"),
            (["old.dwg", "old.dwg"], "release 2000 (AC1015), DWG, ANSI_1252"),
            (["old.dwg", "back.dxf"], "release 2000 (AC1015), text, ANSI_1252"),
        ]:
            with self.subTest(words=words):
                self.assertEqual(self.run_program("convert", *words)[:2], (0, ""))
                code, told, _ = self.run_program("info", words[1])
                self.assertEqual((code, told.splitlines()[0]), (0, first))
                self.assertIn("extents 0,0,0 to 3,4,0\n", told)
                self.assertIn("\n  Ducts  1\n", told)
                self.assertIn("\nentities\n  LINE  1\n", told)
        self.assertEqual(self.run_program("convert", "plan.dxf", "out.dxf", "--release", "14")[0], 2)

    def test_a_drawing_that_another_process_has_is_read_only(self):
        self.write("plan.dxf", EMPTY_DRAWING)
        self.write("plan.dxf.lock", "process 17 of eve on moon")
        with open(self.path("plan.dxf.lock"), encoding="ascii") as lock:
            fcntl.flock(lock, fcntl.LOCK_EX)
            code, printed, errors = self.run_program(
                "run", "--no-module", "--drawing", "plan.dxf", "--eval",
                "(princ (getvar \"WRITESTAT\"))", "--save", "plan.dxf")
            self.assertEqual((code, printed), (3, "0"))
            self.assertIn("plan.dxf: the drawing is open in process 17 of eve on moon; it is opened "
                          "read-only", errors)
            self.assertIn("read-only here; save it under another name", errors)
            self.assertEqual(self.run_program("convert", "plan.dxf", "plan.dxf")[0], 3)
            self.assertEqual(self.read("plan.dxf"), EMPTY_DRAWING)
        self.assertEqual(
            self.run_program("run", "--no-module", "--drawing", "plan.dxf", "--eval", "(princ 1)",
                             "--save", "plan.dxf"), (0, "1", ""))
        self.assertEqual(self.read("plan.bak"), EMPTY_DRAWING)
        self.assertFalse(os.path.exists(self.path("plan.dxf.lock")))

    def test_exit_saves_and_an_error_does_not(self):
        self.assertEqual(
            self.run_program("run", "--eval", "(exit)", "--save", "left.dxf"), (0, "", ""))
        self.assertTrue(os.path.exists(self.path("left.dxf")))
        code, _, errors = self.run_program("run", "--eval", "(car 5)", "--save", "failed.dxf")
        self.assertEqual(code, 1)
        self.assertIn("failed.dxf is not written", errors)
        self.assertFalse(os.path.exists(self.path("failed.dxf")))

    def test_lost_output_answers_3(self):
        with open("/dev/full", "w", encoding="ascii") as full:
            process = self.popen("run", "--eval", "(princ 1)", stdout=full, stderr=subprocess.PIPE)
            self.assertIn("standard output cannot be written", process.communicate()[1])
            self.assertEqual(process.returncode, 3)
        reading, writing = os.pipe()
        os.close(reading)
        process = self.popen("run", "--eval", '(repeat 100000 (princ "some text"))',
                             stdout=writing, stderr=subprocess.PIPE)
        os.close(writing)
        self.assertIn("standard output cannot be written", process.communicate()[1])
        self.assertEqual(process.returncode, 3)


class Interrupts(ProgramTest):
    def interrupted(self, program):
        """Sends Ctrl-C once the program has reported a box."""
        process = self.popen("run", "--no-module", "--eval", program, stdin=subprocess.DEVNULL,
                             stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        self.addCleanup(process.kill)
        while "ready" not in process.stderr.readline():
            self.assertIsNone(process.poll())
        process.send_signal(signal.SIGINT)
        output, errors = process.communicate(timeout=60)
        return process.returncode, output, errors

    def test_ctrl_c_ends_an_endless_loop(self):
        for program in ['(progn (alert "ready") (while T))',
                        '(progn (alert "ready") (while T (+ 1 2)))',
                        '(progn (alert "ready") (repeat 2147483647 (list 1 2)))']:
            with self.subTest(program):
                code, output, errors = self.interrupted(program)
                self.assertEqual((code, output), (1, ""), errors)
                self.assertIn("; error: Function cancelled", errors)

    def test_the_handler_of_the_program_sees_it(self):
        code, output, _ = self.interrupted(
            '(progn (defun *error* (m) (princ (strcat "stopped: " m))) (alert "ready") (while T))')
        self.assertEqual((code, output), (1, "stopped: Function cancelled"))


class Lines(ProgramTest):
    """repl, with standard input that is no terminal."""

    def test_lines_are_run_by_the_rule_of_the_command_line(self):
        for typed, code, output in [
            ("(+ 1 2)\n", 0, "3\n"),
            ("(+ 1 2)", 0, "3\n"),
            ("", 0, ""),
            ("\n; a comment\n  (list 1\n\n  \"a)\" ; not the end )\n 2)\n", 0, '(1 "a)" 2)\n'),
            (";| over (\nlines |; (+ 1 1)\n;|| |;\n;\n(+ 1 2)", 0, "2\n3\n"),
            ("(setq a 1) (setq b 2)\n!(+ a b)\n!a\n", 0, "1\n2\n3\n1\n"),
            ('(princ "text")\n', 0, 'text\n"text"\n'),
            ("(princ)\n", 0, ""),
            ("(defun c:hello () (princ (getstring)) (princ))\nhello World\n", 0,
             "C:HELLO\nWorld"),
            ("(exit)\n(princ 1)\n", 0, ""),
            ("(car 5)\n(+ 1 1)\n", 1, "2\n"),
            ("nosuchcommand\n", 1, 'Unknown command "NOSUCHCOMMAND".\n'),
            ("(list 1\n", 1, ""),
        ]:
            with self.subTest(typed):
                self.assertEqual(self.run_program("repl", typed=typed)[:2], (code, output))

    def test_input_script_answers(self):
        self.write("answers", "text from the script\n")
        self.assertEqual(
            self.run_program("repl", "--input", "answers", typed='(getstring T "?")\n'),
            (0, '"from the script"\n', ""))


class Mistakes(ProgramTest):
    def test_a_file_of_another_kind_is_named_as_what_it_is(self):
        self.write("empty.dwg", "")
        self.write("own.lsp", "(princ 1)")
        os.mkdir(self.path("folder"))
        self.run_program("run", "--eval", '(sg_create_db "p.mdb")', "--save", "plan.dwg")
        self.write("plan.dxf", EMPTY_DRAWING)
        for words, said in [
            (["run", "plan.dwg"], "plan.dwg is a drawing, no program; --drawing opens it"),
            (["run", "plan.dxf"], "plan.dxf is a drawing, no program"),
            (["run", "p.mdb"], "p.mdb is a database, no program; swiftgate db tables"),
            (["run", "folder"], "folder is a folder, no program"),
            (["run", "own.lsp", "--drawing", "folder"], "folder, but a folder"),
            (["run", "own.lsp", "--input", "folder"], "folder: Is a directory"),
            (["info", "own.lsp"], "own.lsp: this is no drawing file, but a program"),
            (["info", "p.mdb"], "p.mdb: this is no drawing file, but a database"),
            (["info", "empty.dwg"], "empty.dwg: this is no drawing file: it is empty"),
        ]:
            with self.subTest(words=words):
                code, output, errors = self.run_program(*words)
                self.assertEqual((code, output), (3, ""))
                self.assertIn(said, errors)

    def test_what_may_help_stands_behind_the_backtrace(self):
        self.write("a folder.fas", "FAS4-FILE ; no text")
        for form, hint in [
            ('(strca "a" "b")', "; did you mean: STRCAT, STRCASE, XSTRCASE\n"),
            ('(load "none")',
             "; there is no such file in the current folder and on the support path\n"),
            ('(load "a folder.fas")', f"; {self.path('a folder.fas')} is no readable program\n"),
            ("(qqqqqqqq)", ";   top-level form at --eval:1\n"),
        ]:
            with self.subTest(form):
                code, _, errors = self.run_program("run", "--eval", form)
                self.assertEqual(code, 1)
                self.assertTrue(errors.endswith(hint), errors)
        # A program that handles its errors sees the message alone.
        caught = "(princ (vl-catch-all-error-message (vl-catch-all-apply 'strca '(1))))"
        self.assertEqual(self.run_program("run", "--eval", caught),
                         (0, "no function definition: STRCA", ""))


class Help(ProgramTest):
    def test_no_function_of_the_module_is_missing(self):
        for words in [[], ["--no-module"]]:
            self.assertEqual(self.run_program("help", "--missing", *words), (0, "", ""))

    def test_a_function_is_explained(self):
        for name, said in [("car", "car\n\n"), ("caddr", "cdr\n\n"), ("CAR", "car\n\n"), ("host-send", "host-send\n\n"),
                           ("SG_APPEND", "sg_append\n\n"),
                           ("QN_QN-LINEJIG", "qn_qn-lineJig\n\n"),
                           ("acdbcurve::getlength", "length of a curve")]:
            with self.subTest(name):
                code, output, errors = self.run_program("help", name)
                self.assertEqual((code, errors), (0, ""))
                self.assertIn(said, output)

    def test_an_unknown_function_has_suggestions(self):
        for name, suggestion in [("sg_apend", "sg_append"), ("host-sned", "host-send"),
                                 ("getLength", "AcDbCurve::getLength")]:
            with self.subTest(name):
                code, output, errors = self.run_program("help", name)
                self.assertEqual((code, output), (2, ""))
                self.assertIn(f'swiftgate: no function "{name}"; did you mean: ', errors)
                self.assertIn(suggestion, errors)
        self.assertEqual(self.run_program("help", "qqqqqqqqqqqq")[2],
                         'swiftgate: no function "qqqqqqqqqqqq"; swiftgate help lists them all\n')

    def test_commands_are_explained_too(self):
        self.assertEqual(self.run_program("help", "render"), self.run_program("render", "--help"))
        code, output, _ = self.run_program("help", "_line")
        self.assertEqual((code, output[:15]), (0, "LINE: a command"))

    def test_every_function_has_a_page(self):
        """Every symbol that a new drawing has a value for, but for constants."""
        code, output, _ = self.run_program("help")
        self.assertEqual(code, 0)
        shown = {word.upper() for line in output.splitlines() if line.startswith("  ")
                 for word in line.split()}
        _, symbols, _ = self.run_program(
            "run", "--eval", "(foreach s (atoms-family 1) (princ s) (terpri))")
        undocumented = {name for name in symbols.split() if not re.fullmatch("C[AD]{2,4}R", name)}
        undocumented -= shown | {"PI", "PAUSE", "T", "S"}
        self.assertEqual(sorted(undocumented), [])


    def test_the_names_of_all_functions_are_those_that_exist(self):
        code, output, errors = self.run_program("help", "--names")
        self.assertEqual((code, errors), (0, ""))
        names = output.splitlines()
        self.assertEqual(len(names), len(set(names)))
        _, symbols, _ = self.run_program(
            "run", "--eval", "(foreach s (atoms-family 1) (princ s) (terpri))")
        self.assertEqual(sorted({name.upper() for name in names} - set(symbols.split())), [])


class Module(ProgramTest):
    def test_the_module_exports_its_two_symbols_only(self):
        for module in ["modules/SwiftGate2017.arx", "examples/marshalling.arx"]:
            with self.subTest(module):
                listed = subprocess.run(
                    ["nm", "-D", "--defined-only", os.path.join(BUILD, module)],
                    capture_output=True, text=True, check=True).stdout
                names = sorted(line.split()[-1] for line in listed.splitlines())
                self.assertEqual(names, ["acrxEntryPoint", "acrxGetApiVersion"])

    def test_a_missing_module_is_reported_and_the_program_runs(self):
        os.makedirs(self.path("bin"))
        os.makedirs(self.path("lib"))
        shutil.copy(SWIFTGATE, self.path("bin"))
        shutil.copy(os.path.join(BUILD, "lib", "libswiftgate-host.so"), self.path("lib"))
        code, output, errors = self.run_program(
            "run", "--eval", "(princ (arx))", executable=self.path("bin/swiftgate"))
        self.assertEqual((code, output), (0, "nil"))
        self.assertIn("SwiftGate2017.arx", errors)
        self.assertIn(self.path("modules"), errors)


if __name__ == "__main__":
    unittest.main()
