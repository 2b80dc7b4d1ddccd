"""The module's dialogs through the executable: bad input, keys, places, and the pages' examples."""

import os
import shutil
import unittest

from db_test import real, rows_of
from program import SWIFTGATE, ProgramTest

HELPERS = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "lisp", "helpers")


class DialogTest(ProgramTest):
    def setUp(self):
        super().setUp()
        self.environment["QT_QPA_PLATFORM"] = "offscreen"
        self.environment["TEMP"] = self.environment["TMPDIR"] = self.folder
        shutil.copy(os.path.join(HELPERS, "standards.lsp"), self.folder)

    def dialog(self, program, script="", prepare="(make-standards) (fill-standards)"):
        """Standard output behind the preparation, and standard error, of a program with a script."""
        self.write("script.in", script)
        text = '(load "standards")\n%s\n(princ "\\n----")\n%s\n(princ)\n' % (prepare, program)
        code, output, errors = self.run_program(
            "run", self.write("test.lsp", text), "--input", "script.in")
        self.assertEqual(code, 0, errors)
        return output.partition("----")[2], errors

    def rows(self, sql):
        code, output, errors = self.run_program("db", "sql", "standards.qn", sql)
        self.assertEqual(code, 0, errors)
        return rows_of(output)[1:]


class BadInput(DialogTest):
    def test_files_that_cannot_be_opened(self):
        for path in ('"none.qn"', '""', '"standards.lsp"'):
            output, errors = self.dialog("(qn_qn-customizeLayers %s)" % path)
            self.assertIn("Database Error: ", output)
            self.assertNotIn("dialog", errors)

    # A file of an older version is read here and never written.
    @unittest.skipUnless(os.path.exists(real("indexTestV1997.mdb")), "the file is not there")
    def test_a_file_that_may_not_be_written(self):
        shutil.copy(real("indexTestV1997.mdb"), self.path("standards.qn"))
        for call in ("(qn_qn-customizeLayers standards)", "(qn_qn-LayerSystemOptionsHVAC standards 1)",
                     "(qn_qn-customizeTextStyles standards nil)",
                     '(qn_qn-customizeLabelGroup "a" "b" standards nil)'):
            _, errors = self.dialog(call, prepare="")
            self.assertIn("Database is read-only. Cannot be viewed at this time. [answered: OK]", errors)
            self.assertNotIn("dialog", errors)

    def test_a_display_that_does_not_answer_is_none(self):
        del self.environment["QT_QPA_PLATFORM"]
        self.environment["DISPLAY"] = ":9731"
        _, errors = self.dialog("(qn_qn-customizeLayers)")
        self.assertIn('dialog "Layers": [answered: Cancel]', errors)

    def test_missing_tables_are_told_and_the_dialog_can_be_left(self):
        for table in ("tblLayer", "tblLayerKey", "tblLayerSystem"):
            with self.subTest(table=table):
                if os.path.exists(self.path("standards.qn")):
                    os.remove(self.path("standards.qn"))
                output, errors = self.dialog(
                    '(sg_command "drop table %s")\n(qn_qn-customizeLayers)' % table,
                    "press New Layer\npress Delete All Unused Layers\nbox yes\nrow 1051 1\nok\n")
                self.assertIn("Database Error: ", output)
                self.assertIn('dialog "Layers": [answered: ', errors)

    def test_missing_columns(self):
        output, errors = self.dialog(
            '(sg_command "alter table tblLayer drop column sPlotstyle")\n(qn_qn-customizeLayers)',
            "cell 1050 1 Color 9\nok\n")
        self.assertIn("[answered: OK]", errors)
        self.assertEqual(self.rows("SELECT iColor FROM tblLayer WHERE sName = 'A'"), [["1"]])

    def test_a_database_that_vanishes_meanwhile(self):
        program = """
(defun util-importLayerSystem-noName (system path) (vl-file-delete path) T)
(qn_qn-customizeLayers standards)"""
        _, errors = self.dialog(
            program, "press 1064\npress New Layer\nrow 1051 2\npress Delete System\nbox yes\nok\n")
        self.assertIn('dialog "Layers": [answered: ', errors)

    def test_callbacks_that_fail_or_answer_nonsense(self):
        program = """
(defun util-showLayerKey (key) (if (= key "DUCT_2") (/ 1 0) 0))
(defun util-LayerkeyRename (key) 12)
(defun util-createLayerKeySortText (key) (list key))
(defun util-layersystemoptions (system path) (exit))
(defun util-importLayerSystem-noName (system path) nil)
(defun util-exportLayerSystem-noName (system path) (car 1))
(defun util-checkObjectsforLayersystem (system) "It is\nin use.")
(defun acad_colordlg (color flag) "red")
(qn_qn-customizeLayers)"""
        output, errors = self.dialog(
            program,
            "show\nrow 1051 2\npress 1062\npress 1064\npress 1053\npress 1059\nbox ok\n"
            "cell 1050 1 Color Select color. . .\nshow\ncancel\n")
        # The key whose test fails is left out; a name that is no text is a blank.
        self.assertIn("    > 1:   | (2) | ( ) | (2) | B\n", output)
        self.assertIn("1: (1) | A | 1 | Continuous", output)
        self.assertIn("It is\nin use. [answered: OK]", errors)

    def test_a_callback_that_replaces_the_drawings_connection(self):
        for what in ('(sg_close_db)', '(sg_connect "other.qn")', '(sg_table "tblTextStyle") (sg_bottom)'):
            program = """
(sg_create_db "other.qn")
(defun util-showTextStyle (key) %s T)
(qn_qn-customizeTextStyles nil nil)""" % what
            _, errors = self.dialog(program, "show\ncell 1048 1 Text Style X\nok\n", """
(make-standards)
(run-all '("insert into tblTextStyle (sKey, sStyleName, dHeight) values ('Default', 'S', 1)"
           "insert into tblTextStyle (sKey) values ('Note')"))""")
            self.assertIn("[answered: OK]", errors)
            for name in ("other.qn", "standards.qn"):
                os.remove(self.path(name))

    def test_names_with_quotes_and_sql_in_them(self):
        nasty = "x' or 1=1 --"
        self.dialog(
            '(qn_qn-LayerSystemOptionsPlumb 1)\n(qn_qn-customizeTextStyles nil nil)',
            "set 1056 %s\nok\ncell 1048 1 Text Style %s\nok\n" % (nasty, nasty),
            '(make-standards) (fill-standards) (run-all \'("insert into tblTextStyle (sKey) '
            'values (\'\'\'; delete from tblLayer\')"))')
        self.assertEqual(self.rows("SELECT sDescription FROM tblLayerSystem WHERE ixLayerSystem = 1"),
                         [[nasty]])
        self.assertEqual(self.rows("SELECT sStyleName FROM tblTextStyle"), [[nasty]])
        self.assertEqual(self.rows("SELECT COUNT(*) FROM tblLayer"), [["3"]])

    def test_wrong_arguments(self):
        for call in ('(qn_qn-customizeLabelGroup)', '(qn_qn-customizeLabelGroup "a" 1)',
                     '(qn_qn-customizeLabelGroup nil "a")'):
            output, errors = self.dialog("(vl-catch-all-apply '(lambda () %s) nil)" % call)
            self.assertIn("Wrong type of arguments passed.", output)
            self.assertNotIn("dialog", errors)


class Leaving(DialogTest):
    def test_esc_and_the_end_of_the_script_leave_every_dialog(self):
        calls = ("(qn_qn-customizeLayers)", "(qn_qn-LayerSystemOptionsElec 1)",
                 "(qn_qn-LayerSystemOptionsPlumb standards 1)", "(qn_qn-LayerSystemOptionsHVAC 1)",
                 "(qn_qn-customizeTextStyles nil nil)", '(qn_qn-customizeLabelGroup "G" "T")',
                 "(acad_colordlg 1)")
        _, errors = self.dialog("\n".join(calls), "ESC\ncancel\nESC\n")
        self.assertEqual(errors.count("[answered: Cancel]"), len(calls), errors)

    def test_dialogs_inside_are_left_before_those_around_them(self):
        _, errors = self.dialog(
            "(qn_qn-customizeLayers)",
            "press New System\nESC\nrow 1051 2\npress Edit System\nESC\n"
            "cell 1050 1 Linetype Select linetype. . .\n")
        titles = [line.split('"')[1] for line in errors.splitlines() if line.startswith("dialog")]
        self.assertEqual(titles, ["New Layer System", "Layer System Options", "Select Linetype", "Layers"])

    def test_by_keyboard_alone(self):
        _, errors = self.dialog(
            "(qn_qn-customizeLayers)",
            # Down to the first system; Alt and the letters of the buttons.
            "key 1051 Down\nkey 1051 Ctrl+Tab\nkey 1054 Space\nkey 1049 Right F2 Return\n"
            "key 1050 End Return\nkey 1050 Esc\nkey 1050 Ctrl+Home Down Right Right Right Space\n"
            "key 1 Return\n")
        self.assertIn("[answered: OK]", errors)
        self.assertEqual(self.rows("SELECT bPlot FROM tblLayer WHERE sName = 'B'"), [["1"]])


class Csv(DialogTest):
    ROAD = '(defun util-layerSystem-file (saves path) (strcat (getenv "TEMP") "/layers.csv"))\n'

    def test_a_system_goes_out_and_comes_back(self):
        self.dialog(self.ROAD + '(sg_command "update tblLayer set sName = \'B, \\"b\\"\' where sName = \'B\'")'
                    "(qn_qn-customizeLayers standards)", "row 1051 2\npress 1053\ncancel\n")
        self.assertEqual(self.read("layers.csv").splitlines(), [
            "Layer Key,Layer Name,Color,Linetype,Plot,Lineweight,Plot Style",
            'DUCT_10,"B, ""b""",2,HIDDEN,0,,',
            'DUCT_2,"B, ""b""",2,HIDDEN,0,,'])
        self.write("layers.csv", "Layer Key,Layer Name,Color,Linetype,Plot,Lineweight,Plot Style\n"
                   "DUCT_10,New's,9,,1,35,\nDUCT_2,a,300,DASHED,0,,fine\nNOKEY,C,1,x,1,,\n\n")
        output, _ = self.dialog(self.ROAD + "(qn_qn-customizeLayers standards)",
                                "row 1051 2\npress 1064\nshow\ncancel\n", prepare="(sg_connect standards)")
        self.assertIn("DUCT 10 | (4) | (DUCT_00000010) | (4) | New's", output)
        self.assertEqual(
            self.rows("SELECT sName, iColor, sLinetype, bPlot, sLineweight, sPlotstyle FROM tblLayer "
                      "ORDER BY ixLayer"),
            [["A", "", "DASHED", "0", "", "fine"], ['B, "b"', "2", "HIDDEN", "0", "", ""],
             ["C", "1", "x", "1", "", ""], ["New's", "9", "Continuous", "1", "35", ""]])
        self.assertEqual(
            self.rows("SELECT sKey, ixLayer FROM tblLayerKey WHERE ixLayerSystem = 1 ORDER BY sKey"),
            [["DUCT_10", "4"], ["DUCT_2", "1"]])

    def test_the_file_is_asked_for(self):
        _, errors = self.dialog(
            "(qn_qn-customizeLayers standards)",
            "press 1053\nfile out\npress 1053\nfile CANCEL\npress 1064\nfile CANCEL\ncancel\n")
        self.assertIn('file dialog "Export Layers": standards-layers.csv', errors)
        self.assertEqual(self.read("out.csv").splitlines()[1:],
                         ["DUCT_10,B,2,HIDDEN,0,,", "DUCT_2,A,1,Continuous,1,25,"])

    def test_nothing_is_done_where_the_file_is_none(self):
        for text in ("", "Layer Key\n", "a,b\n,,\n"):
            self.write("layers.csv", text)
            _, errors = self.dialog(self.ROAD + "(qn_qn-customizeLayers standards)",
                                    "press 1064\nbox ok\ncancel\n")
            self.assertIn("The file holds no layer keys", errors)


class Start(DialogTest):
    def test_the_toolkit_is_opened_by_the_first_dialog(self):
        output, _ = self.dialog("""
(defun toolkit (/ maps line found)
  (setq maps (open "/proc/self/maps" "r"))
  (while (setq line (read-line maps)) (if (wcmatch line "*Qt6Widgets*") (setq found T)))
  (close maps)
  found)
(print (toolkit))
(qn_qn-LayerSystemOptionsPlumb 1)
(print (toolkit))""")
        self.assertEqual(output.split(), ["nil", "T"])


class Examples(DialogTest):
    def test_the_examples_of_the_page_run(self):
        self.assertGreater(self.check_examples("standards.md"), 6)


if __name__ == "__main__":
    unittest.main()
