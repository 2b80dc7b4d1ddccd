"""The program with a person at a terminal."""

import os
import pty
import select
import signal
import subprocess
import time
import unittest

from program import SWIFTGATE, ProgramTest

PROMPT = "swiftgate> "
CTRL_C, CTRL_D, UP = "\x03", "\x04", "\x1b[A"
PATIENCE = 60  # seconds that an answer may take on a busy machine


class Terminal:
    """A program on a pseudo-terminal; its standard error shows there too."""

    def __init__(self, test, *words):
        self.test = test
        self.master, slave = pty.openpty()
        self.process = subprocess.Popen(
            [SWIFTGATE, *words], stdin=slave, stdout=slave, stderr=slave, cwd=test.folder,
            env=test.environment, start_new_session=True,
            preexec_fn=lambda: __import__("fcntl").ioctl(0, __import__("termios").TIOCSCTTY, 0))
        os.close(slave)
        self.shown = ""
        test.addCleanup(self.close)

    def close(self):
        if self.process.poll() is None:
            self.process.kill()
            self.process.wait()
        os.close(self.master)

    def read(self, seconds):
        """Takes what is shown within the time; False at the end."""
        if not select.select([self.master], [], [], max(seconds, 0))[0]:
            return True
        try:
            data = os.read(self.master, 65536)
        except OSError:
            return False
        self.shown += data.decode("utf-8", "replace")
        return bool(data)

    def expect(self, text):
        """Waits until `text` is shown; answers what was shown before it."""
        end = time.monotonic() + PATIENCE
        while text not in self.shown:
            if not self.read(end - time.monotonic()) or time.monotonic() > end:
                self.test.fail(f"{text!r} is not shown; there is {self.shown!r}")
        before, self.shown = self.shown.split(text, 1)
        return before

    def type(self, text):
        os.write(self.master, text.encode("utf-8"))

    def enter(self, text):
        self.type(text + "\r")

    def finish(self):
        """The exit code and what was shown last."""
        end = time.monotonic() + PATIENCE
        while self.read(end - time.monotonic()) and time.monotonic() < end:
            pass
        return self.process.wait(timeout=PATIENCE), self.shown


class Repl(ProgramTest):
    def start(self, *words):
        terminal = Terminal(self, "repl", *words)
        terminal.expect(PROMPT)
        return terminal

    def test_values_errors_and_the_end(self):
        terminal = self.start()
        terminal.enter("(strcat \"duct \" (itoa 12))")
        terminal.expect("\n\"duct 12\"")
        terminal.expect(PROMPT)
        terminal.enter("(car 5)")
        terminal.expect("; error: bad argument type: consp 5")
        terminal.expect(PROMPT)
        terminal.enter("(progn (princ \"no line end\") (princ))")
        terminal.expect("\nno line end\r\n")
        terminal.expect(PROMPT)
        terminal.type(CTRL_D)
        self.assertEqual(terminal.finish()[0], 0)

    def test_ctrl_d_typed_ahead_ends_it_too(self):
        terminal = self.start()
        terminal.enter("(progn (princ \"busy\\n\") (repeat 3000000 nil))")
        terminal.expect("busy\r\n")
        terminal.type(CTRL_D)
        self.assertEqual(terminal.finish()[0], 0)

    def test_an_expression_goes_over_several_lines(self):
        terminal = self.start()
        terminal.enter("(list 1")
        terminal.expect("...> ")
        terminal.enter("  \"two")
        terminal.expect("...> ")
        terminal.enter("lines\")")
        terminal.expect("(1 \"two\\nlines\")")
        terminal.expect(PROMPT)

    def test_ctrl_c_cancels_the_line(self):
        terminal = self.start()
        terminal.type("(princ \"not to be seen\"")
        terminal.expect("seen\"")
        terminal.type(CTRL_C)
        terminal.expect(PROMPT)
        terminal.enter("(list 1")
        terminal.expect("...> ")
        terminal.type(CTRL_C)
        terminal.expect(PROMPT)
        terminal.enter("(+ 40 2)")
        terminal.expect("\n42")

    def test_ctrl_c_cancels_the_running_expression(self):
        terminal = self.start()
        terminal.enter("(progn (princ \"run\") (princ \"ning\") (setq before 7) (while T))")
        terminal.expect("running")
        terminal.type(CTRL_C)
        terminal.expect("; error: Function cancelled")
        terminal.expect(PROMPT)
        terminal.enter("before")
        terminal.expect("Unknown command")
        terminal.expect(PROMPT)
        terminal.enter("!before")
        terminal.expect("\n7")

    def test_commands_ask_and_can_be_undone(self):
        terminal = self.start()
        terminal.enter("l 0,0")
        for answer in ["5,0", "@0,5", ""]:
            terminal.expect("Specify next point or [")
            terminal.enter(answer)
        terminal.expect(PROMPT)
        terminal.enter("(sslength (ssget \"_X\"))")
        terminal.expect("\n2")
        terminal.enter("circle")
        terminal.expect("Specify center point for circle or [3P/2P]: ")
        terminal.type(CTRL_C)
        terminal.expect("*Cancel*")
        terminal.expect(PROMPT)
        terminal.enter("(command \"_.CIRCLE\" \"2,2\" pause)")
        terminal.expect("Specify radius of circle or [Diameter]: ")
        terminal.enter("x")
        terminal.expect("Requires numeric distance or two points.")
        terminal.enter("4")
        terminal.expect("nil")
        terminal.enter("u")
        terminal.expect("\nCIRCLE")
        terminal.enter("u")
        terminal.expect("\nLINE")
        terminal.enter("(ssget \"_X\")")
        terminal.expect("\nnil")

    def test_tab_completes_symbols(self):
        terminal = self.start()
        terminal.enter("(defun my-own-function (x) (* 2 x))")
        terminal.expect(PROMPT)
        terminal.type("(my-own\t 21)\r")
        terminal.expect("\n42")
        terminal.expect(PROMPT)
        terminal.type("(vl-string-\t")
        terminal.expect("vl-string-trim")
        terminal.expect(PROMPT + "(vl-string-")
        terminal.type(CTRL_C)
        terminal.expect(PROMPT)
        terminal.type("(type sg_appe\t_with\t)\r")  # the common start of two, then the one
        terminal.expect("EXRXSUBR")

    def test_history_is_kept_between_sessions(self):
        terminal = self.start()
        terminal.enter("(+ 1000 234)")
        terminal.expect("\n1234")
        terminal.expect(PROMPT)
        terminal.type(UP + "\r")
        terminal.expect("\n1234")
        terminal.expect(PROMPT)
        terminal.enter("(quit)")
        self.assertEqual(terminal.finish()[0], 0)
        self.assertTrue(os.path.exists(self.path(".local/state/swiftgate/history")))
        terminal = self.start()
        terminal.type(UP + UP + "\r")
        terminal.expect("\n1234")

    def test_prompts_and_boxes_are_answered_at_the_terminal(self):
        terminal = self.start()
        terminal.enter("(getstring T \"\\nName: \")")
        terminal.expect("\nName: ")
        terminal.enter("Supply \u00e4ir")
        terminal.expect("\n\"Supply \u00e4ir\"")
        terminal.expect(PROMPT)
        terminal.enter("(getstring \"\\nCancel: \")")
        terminal.expect("\nCancel: ")
        terminal.type(CTRL_C)
        terminal.expect("; error: Function cancelled")
        terminal.expect(PROMPT)
        terminal.enter("(alert \"Look here\")")
        terminal.expect("Look here")
        terminal.expect("[OK] <OK>: ")
        terminal.enter("")
        terminal.expect("nil")
        terminal.expect(PROMPT)

    def test_drags_are_answered_at_the_terminal(self):
        terminal = self.start()
        terminal.enter("(qn_qn-createJigTimer 10)")  # runs while nothing is typed
        terminal.expect(PROMPT)
        terminal.enter("(RectangleJig 2.0 4.0 0 T)")
        place = "Specify insertion point or [Corner/Middle]: "
        for answer, told in ("c", ""), ("nowhere", ""), ("c", "Invalid point."), ("10,10", ""):
            self.assertIn(told, terminal.expect(place))
            terminal.enter(answer)
        terminal.expect("Specify rotation: ")
        terminal.enter("90")
        self.assertIn("((9.0 12.0 0.0) (10.0 10.0 0.0) (8.0 14.0 0.0) 1.5708 1)",
                      terminal.expect(PROMPT))
        terminal.enter("(qn_qn-lineJig)")
        terminal.expect("Specify start point: ")
        terminal.enter("1,1")
        terminal.expect("Specify next point: ")
        terminal.type(CTRL_C)
        self.assertIn("nil", terminal.expect(PROMPT))
        terminal.enter("(+ 1 2)")
        self.assertIn("3", terminal.expect(PROMPT))


class Run(ProgramTest):
    def test_the_last_line_is_finished(self):
        terminal = Terminal(self, "run", "--eval", "(princ \"the end\")")
        code, shown = terminal.finish()
        self.assertEqual(code, 0)
        self.assertTrue(shown.endswith("the end\r\n"), shown)

    def test_a_program_asks_at_the_terminal(self):
        terminal = Terminal(self, "run", "--eval", "(princ (strcase (getstring \"\\nName: \")))")
        terminal.expect("\nName: ")
        terminal.enter("duct")
        terminal.expect("\nDUCT\r\n")
        self.assertEqual(terminal.finish()[0], 0)

    def test_ctrl_c_ends_a_program(self):
        terminal = Terminal(self, "run", "--eval", "(progn (princ \"ready\") (while T))")
        terminal.expect("ready")
        terminal.type(CTRL_C)
        terminal.expect("; error: Function cancelled")
        self.assertEqual(terminal.finish()[0], 1)

    def test_a_second_ctrl_c_ends_the_process(self):
        # What a program starts is waited for here, and notices nothing.
        self.environment["SWIFTGATE_SHELL"] = self.write(
            "shell", "#!/bin/sh\ntouch started\nexec sleep 10\n")
        os.chmod(self.path("shell"), 0o755)
        terminal = Terminal(self, "run", "--eval", '(progn (princ "ready") (startapp "x"))')
        terminal.expect("ready")
        end = time.monotonic() + PATIENCE
        while not os.path.exists(self.path("started")) and time.monotonic() < end:
            terminal.read(0.05)
        while terminal.process.poll() is None and time.monotonic() < end:
            terminal.process.send_signal(signal.SIGINT)
            terminal.read(0.05)
        self.assertEqual(terminal.process.wait(timeout=PATIENCE), -signal.SIGINT)


class Dialogs(ProgramTest):
    def test_a_file_is_asked_for_until_there_is_one(self):
        self.write("jobs/plan.dxf", "")
        terminal = Terminal(self, "repl")
        terminal.expect(PROMPT)
        terminal.enter('(CFileDialog T "Open a job" "jobs" "dxf;dwg" T T)')
        terminal.expect("Open a job\r\nFolder: " + self.path("jobs") +
                        "\r\nDXF Files (*.dxf), DWG Files (*.dwg)\r\nFile name: ")
        terminal.enter("none")
        terminal.expect("none.dxf\r\nFile not found.\r\nCheck the file name and try again.\r\n[OK] <OK>: ")
        terminal.enter("")
        terminal.expect("File name: ")
        terminal.enter("PLAN")
        terminal.expect('"' + self.path("jobs/plan.dxf") + '"')
        terminal.expect(PROMPT)
        terminal.enter('(XFolderDialog "" "jobs")')
        terminal.expect("Select Folder\r\nFolder: jobs\r\nFolder name: ")
        terminal.type(CTRL_C)
        terminal.expect("nil")


class StatusBar(ProgramTest):
    PROGRAM = """
        (acedSetStatusBarProgressMeter "Ducts" 0 4)
        (setq step 0 start (getvar "MILLISECS"))
        (while (< step 4)
          (if (> (- (getvar "MILLISECS") start) (* (1+ step) 400))
            (acedSetStatusBarProgressMeterPos (setq step (1+ step)))))
        %s
        (qn_qn-setAcadWindowText "Job 12")
        (princ)
    """

    def test_a_bar_on_the_terminal_goes_before_text_comes(self):
        terminal = Terminal(self, "run", self.write("bar.lsp", self.PROGRAM % '(princ "done\\n")'))
        terminal.expect("\rDucts [##########")
        terminal.expect("] 100%\x1b[K")
        terminal.expect("\r\x1b[Kdone\r\n")
        terminal.expect("\x1b[22;2t\x1b]2;Job 12\x07")
        code, shown = terminal.finish()
        self.assertEqual((code, shown), (0, "\x1b[23;2t"))

    def test_no_bar_writes_over_text(self):
        terminal = Terminal(self, "run", self.write(
            "bar.lsp", '(princ "Working...")' + self.PROGRAM % ""))
        _, shown = terminal.finish()
        self.assertIn("Working...", shown)
        self.assertNotIn("Ducts", shown)

    def test_a_pipe_shows_nothing(self):
        self.assertEqual(self.run_program("run", self.write("bar.lsp", self.PROGRAM % "")), (0, "", ""))


if __name__ == "__main__":
    unittest.main()
