"""The support's dialogs through the executable: reports to a mail server on loopback and to the
desktop, the user's settings, and the small dialogs."""

import json
import os
import re
import subprocess
import sys
import unittest
import zipfile
from email import message_from_bytes, policy
from io import BytesIO

from program import ProgramTest

SUPPORT = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "support")
PYTHON = "/usr/bin/python3"  # Debian installs the mail server for its own interpreter only
ADDRESS = "support@quillon.invalid"
USER = "support-delivery@quillon.invalid:not-a-secret"
FILLED = "set 1030 Joe\nset 1029 joe@example.com\nset 1032 joe@example.com\nset 1031 It stops. Always\n"


class SupportDialogTest(ProgramTest):
    def setUp(self):
        super().setUp()
        self.environment["QT_QPA_PLATFORM"] = "offscreen"
        self.environment["TEMP"] = self.environment["TMPDIR"] = self.folder
        self.environment.update(SWIFTGATE_SMTP_HOST="127.0.0.1", SWIFTGATE_SMTP_PORT="1",
                                SWIFTGATE_SMTP_TIMEOUT="20")

    def dialog(self, program, script="", settings=None):
        """What the program prints, and standard error without the module's own lines. Settings
        are those of "Shared"; without any the section is there and empty."""
        self.write("script.in", script)
        make = "".join('(vl-registry-write shared "%s" "%s")' % each
                       for each in (settings or {}).items())
        text = ('(setq shared "HKEY_CURRENT_USER\\\\Software\\\\Quillon Software\\\\Shared")'
                '(vl-registry-write shared "Other" "")%s(princ "\\n----")\n%s\n(princ)\n'
                % (make, program))
        code, output, errors = self.run_program(
            "run", self.write("test.lsp", text), "--input", "script.in")
        self.assertEqual(code, 0, errors)
        return output.partition("----")[2], errors

    def shared(self):
        """The section's values, but for the one that makes it."""
        names = ("Name", "Email", "Phone", "bSendToDesktop2", "bZoomToSchedule", "bAutoUpdateDrawings")
        program = "".join('(prin1 (vl-registry-read "%s" "%s"))(princ "\\n")' % (
            "HKEY_CURRENT_USER\\\\Software\\\\Quillon Software\\\\Shared", name) for name in names)
        _, output, _ = self.run_program("run", "--eval", "(progn %s (princ))" % program)
        return {name: value.strip('"') for name, value in zip(names, output.split("\n"))
                if value != "nil"}

    def boxes(self, errors):
        """Caption, text and answer of each message box."""
        return re.findall(r'^message box "(.*?)": (.*?) \[answered: (\w+)\]$', errors, re.M | re.S)


def call(mode=1, suffix="Job 12", attachments=None):
    paths = "" if attachments is None else " (list %s)" % " ".join('"%s"' % a for a in attachments)
    return '(prin1 (qn_qn-submitBug %d "%s" "" "System 1"%s))' % (mode, suffix, paths)


class Reports(SupportDialogTest):
    def serve(self, *options):
        os.makedirs(self.path("mail"), exist_ok=True)
        server = subprocess.Popen(
            [PYTHON, "-B", os.path.join(SUPPORT, "smtp_server.py"), self.path("mail"), *options],
            stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True)
        self.addCleanup(server.wait)
        self.addCleanup(server.stdout.close)
        self.addCleanup(server.stdin.close)
        self.environment["SWIFTGATE_SMTP_PORT"] = server.stdout.readline().strip()

    def mail(self, number=1):
        with open(self.path("mail/%d.eml" % number), "rb") as file:
            return message_from_bytes(file.read(), policy=policy.default)

    def sent(self):
        return sorted(name for name in os.listdir(self.path("mail")) if name.endswith(".eml"))

    def desktop(self):
        folder = self.path("Desktop")
        return sorted(os.listdir(folder)) if os.path.isdir(folder) else []

    def test_a_report_is_delivered_with_its_files_in_one_archive(self):
        subprocess.run([os.path.join(SUPPORT, "make_certificates.sh"), self.folder], check=True,
                       capture_output=True)
        self.environment["SWIFTGATE_SMTP_CA"] = self.path("ca.pem")
        self.serve("--certificate", self.path("server"), "--auth", USER)
        files = [self.write("b plan.qn", "plan"), self.write("a.dwg", "drawing")]
        output, errors = self.dialog(
            call(0, attachments=files + [""]),
            FILLED + "set 1028  555 \nkey 1031 End Return x\nshow\nok\n")
        self.assertEqual(self.boxes(errors), [("Quillon", "Message sent successfully.", "OK")])
        self.assertIn("(2 files)", output)
        self.assertIn('text 1061: Quillon Support (%s)' % ADDRESS, output)
        self.assertTrue(output.endswith("nil"), output)
        message = self.mail()
        self.assertEqual(message["Subject"], "QN Project: It stops")
        self.assertEqual(message["From"], "Joe <joe@example.com>")
        self.assertEqual(message["To"], ADDRESS)
        text, archive = message.iter_parts()
        self.assertEqual(text.get_content().replace("\r\n", "\n").rstrip("\n"),
                         "555\n\nIt stops. Always\nx\n\nSystem 1")
        self.assertEqual(archive.get_filename(), "Joe Job 12.zip")
        with zipfile.ZipFile(BytesIO(archive.get_content())) as content:
            self.assertEqual(sorted(content.namelist()), ["a.dwg", "b plan.qn"])
        with open(self.path("mail/1.json"), encoding="utf-8") as file:
            self.assertEqual(json.load(file)["user"], USER.partition(":")[0])
        self.assertEqual(self.shared(), {"Name": "Joe", "Email": "joe@example.com", "Phone": "555",
                                         "bSendToDesktop2": "0"})

    def test_a_report_without_files_goes_out_as_text(self):
        self.serve()
        _, errors = self.dialog(call(4), FILLED + "ok\n")
        self.assertEqual(self.boxes(errors), [("Quillon", "Message sent successfully.", "OK")])
        self.assertEqual(self.mail()["Subject"], "QN Email: It stops")
        self.assertEqual(list(self.mail().iter_attachments()), [])

    def test_a_failure_leaves_the_dialog_open_with_everything_in_it(self):
        subprocess.run([os.path.join(SUPPORT, "make_certificates.sh"), self.folder], check=True,
                       capture_output=True)
        self.environment["SWIFTGATE_SMTP_CA"] = self.path("ca.pem")
        refusing = ("--certificate", self.path("server"), "--auth", "somebody:else")
        by_hand = "You will need to send an email manually to \"%s\"." % ADDRESS
        for server, error, has_file in [
                (None, "Could not connect to the SMTP server.", True),
                (refusing, "Could not connect to the SMTP server.", True),
                (("--close-at", "DATA DATA"),
                 "An error occurred while sending the email and was unable to finish.", False)]:
            with self.subTest(server=server):
                if server:
                    self.serve(*server)
                output, errors = self.dialog(call(), FILLED + "ok\nbox ok\nshow\ncancel\n")
                self.assertEqual(self.boxes(errors), [("Quillon", error + by_hand, "OK")])
                for kept in ('1030 "Name:": "Joe"', '1032 "Re-enter Email Address:": "joe@example.com"',
                             '"It stops. Always"'):
                    self.assertIn(kept, output)
                self.assertEqual(os.path.exists(self.path("qn_submiterror.xml")), has_file)
                if has_file:
                    os.remove(self.path("qn_submiterror.xml"))
                self.assertEqual(self.desktop(), [])

    def test_a_failure_with_files_leads_to_the_desktop(self):
        shell = self.write("shell", '#!/bin/sh\necho "$@" >>"%s"\n' % self.path("opened"))
        os.chmod(shell, 0o755)
        self.environment["SWIFTGATE_SHELL"] = shell
        question = ("Could not connect to the SMTP server.\nWould you like to save the report to the "
                    'Desktop and manually send it to "%s"?' % ADDRESS)
        files = [self.write("plan.qn", "plan")]
        _, errors = self.dialog(call(0, attachments=files), FILLED + "ok\nbox no\ncancel\n")
        self.assertEqual(self.boxes(errors), [("Quillon", question, "No")])
        self.assertEqual(self.shared()["bSendToDesktop2"], "0")
        self.assertEqual(self.desktop(), [])

        output, errors = self.dialog(call(0, attachments=files),
                                     FILLED + "set 1031 100% of 5%s %% gone\nok\nbox yes\nbox ok\nshow\ncancel\n")
        archive = "Send to %s--Joe Job 12.zip" % ADDRESS
        told = ('EMAIL NOT SENT!\n\nFile "%s" was saved to the desktop but has not been sent.\n\n'
                'Manually send the file to "%s".' % (archive, ADDRESS))
        self.assertEqual(self.boxes(errors)[1:], [("EMAIL NOT SENT!", told, "OK")])
        self.assertEqual(self.desktop(), [archive])
        with zipfile.ZipFile(os.path.join(self.path("Desktop"), archive)) as content:
            self.assertEqual(sorted(content.namelist()), ["plan.qn", "qn_error.txt"])
            self.assertEqual(content.read("qn_error.txt").decode().splitlines()[1], "100f 5 % gone")
        self.assertEqual(self.read("opened"), "open %s\n" % self.path("Desktop"))
        self.assertEqual(self.shared()["bSendToDesktop2"], "1")
        # The next report starts there.
        output, errors = self.dialog(call(attachments=files), "show\nset 1029\nset 1030 ?:*\nok\n")
        self.assertIn('check box 1023 "Save to desktop (check if sending fails or crashes)": on', output)
        self.assertIn('text 1061: Quillon Support (%s) (disabled)' % ADDRESS, output)
        self.assertIn("Send to %s--QN Attachment Job 12.zip" % ADDRESS, self.desktop())
        self.assertEqual(self.shared()["Email"], "joe@example.com")

    def test_files_that_are_gone(self):
        self.serve()
        error = "There was an error creating the mail attachments."
        _, errors = self.dialog(call(0, attachments=[self.path("gone.qn")]),
                                FILLED + "ok\nbox yes\nbox ok\ncancel\n")
        self.assertTrue(self.boxes(errors)[0][1].startswith(error))
        self.assertEqual(self.boxes(errors)[1:],
                         [("Quillon", "An error occurred while compressing attachments.", "OK")])
        self.assertTrue(os.path.exists(self.path("qn_submiterror.xml")))
        self.assertTrue(os.path.exists(self.path("qn_ziperror.xml")))
        self.assertEqual((self.sent(), self.desktop()), ([], []))

    def test_archives_that_cannot_be_made_on_the_desktop(self):
        self.write("Desktop", "a file where the folder would be")
        for suffix, text in [("x", "Unable to locate desktop path."), ("a|b", None)]:
            _, errors = self.dialog(call(suffix=suffix), "check 1023 on\nok\nbox ok\n")
            self.assertEqual(self.boxes(errors), [
                ("Quillon", text or "Failed to create new zip folder.", "OK")])
            self.assertIn("[answered: OK]", errors.splitlines()[-1])
            if os.path.isfile(self.path("Desktop")):
                os.remove(self.path("Desktop"))

    def test_addresses_that_are_refused(self):
        invalid, missing = "Invalid e-mail address.", "An e-mail address is needed."
        differ = "The e-mail addresses do not match."
        support = "Enter your email address. We will use this email address to reply to you."
        cases = [("", "", missing), ("joe", "joe", invalid), ("a@b@c.d", "a@b@c.d", invalid),
                 ("a.b@c", "a.b@c", invalid), ("a+b@c.d", "a+b@c.d", invalid),
                 ("Joe@c.d", "joe@c.d", differ), ("joe@Quillon.INVALID", "", support)]
        script = "".join("set 1029 %s\nset 1032 %s\nset 1031 kept\nok\nbox ok\nkey 1029 End\n" % case[:2]
                         for case in cases)
        output, errors = self.dialog(call(), "set 1030  Joe \n" + script + "show\ncancel\n",
                                     {"Email": "old@example.com", "bSendToDesktop2": "2"})
        self.assertEqual(self.boxes(errors), [("Quillon", case[2], "OK") for case in cases])
        self.assertIn('"kept"', output)
        self.assertEqual(self.shared(), {"Name": "Joe", "Email": "old@example.com", "Phone": "",
                                         "bSendToDesktop2": "0"})

    def test_the_modes(self):
        for mode, title, enabled in [
                (0, "Send Project to Quillon Support", True), (1, "Send Bug to Quillon Support", False),
                (4, "Send Master and Standards Databases to Quillon Support", False),
                (5, "Send Standards Databases to Quillon Support", False),
                (-3, "Send to Quillon Support", False)]:
            with self.subTest(mode=mode):
                output, errors = self.dialog(call(mode, attachments=["x"]), "show\npress 1010\ncancel\n")
                self.assertIn('Dialog "%s"\n' % title, output)
                self.assertIn("(1 file)", output)
                self.assertEqual("1010" in errors, not enabled)

    def test_the_list_of_attachments(self):
        files = [self.write(name, name) for name in ("b.qn", "C.dwg", "a.ies", "new.dwg")]
        new = "press Add\nfile new.dwg\n"  # in the folder of the last one
        script = ("press 1010\nshow\n" + new + new + "choose 1062 1\npress Remove\npress Remove\nshow\n%s\n"
                  "show\npress 1010\nshow\ncancel\ncancel\n")
        paths = ["", *files[:3]]
        output, _ = self.dialog(call(0, attachments=paths), script % "ok")
        lists = [[os.path.basename(line.split()[-1]) for line in shown.splitlines()
                  if re.match(r" +\d+ ", line)] for shown in output.split('Dialog "')]
        self.assertEqual(lists, [[], ["a.ies", "b.qn", "C.dwg"], ["a.ies", "C.dwg", "new.dwg"], [],
                                 ["a.ies", "C.dwg", "new.dwg"]])
        output, _ = self.dialog(call(0, attachments=paths), script % "cancel")
        self.assertIn("(3 files)", output)
        output, _ = self.dialog(call(0, attachments=files[:1]),
                                "press 1010\nchoose 1062 0\npress 4\nok\nshow\ncancel\n")
        self.assertNotIn("file)", output)

    def test_the_list_of_attachments_by_keyboard_alone(self):
        files = [self.write(name, name) for name in ("a.ies", "b.qn", "c.dwg")]
        output, errors = self.dialog(
            call(0, attachments=files),
            "key 1010 Space\nkey 1062 Down Down Tab\nkey 1063 Tab\nkey 4 Return\n"
            "key 1063 Return\nfile a.ies\nkey 1062 Home End Tab\nkey 4 Space\nkey 1 Return\nshow\n"
            "key 1010 Return\nshow\nkey 4 Tab\nkey 1 Tab\nkey 2 Return\nkey 2 Return\n")
        self.assertIn("(1 file)", output)
        self.assertEqual(re.findall(r"^ +\d+ .*/(\S+)", output, re.M), ["a.ies"])
        self.assertEqual(re.findall(r'^dialog "(.*?)".*?answered: (\w+)\]$', errors, re.M | re.S),
                         [("Quillon Attachments", "OK"), ("Quillon Attachments", "Cancel"),
                          ("Send Project to Quillon Support", "Cancel")])

    def test_by_keyboard_alone(self):
        self.serve()
        _, errors = self.dialog(
            call(), "key 1030 J Tab\nkey 1029 j @ x . y Tab\nkey 1032 j @ x . y Tab\nkey 1028 5 Tab\n"
            "key 1031 H i Return ! Tab\nkey 1023 Space Space Tab\nkey 1 Return\nbox ok\n")
        self.assertIn("Message sent successfully.", errors)
        self.assertEqual(self.mail()["Subject"], "QN Bug: Hi")

    def test_a_text_of_a_megabyte(self):
        self.serve()
        long = "word " * 200000
        _, errors = self.dialog(call(), FILLED + "set 1031 %s\nok\nbox ok\n" % long.strip())
        self.assertIn("Message sent successfully.", errors)
        self.assertIn(long.strip(), self.mail().get_body().get_content().replace("\r\n", "\n"))

    def test_wrong_arguments_show_nothing(self):
        for wrong in ('', '"a" "b" "c" "d"', '1 "b" "c"', '1 2 "c" "d"', '1 "b" nil "d"'):
            output, errors = self.dialog("(vl-catch-all-apply '(lambda () (qn_qn-submitBug %s)) nil)" % wrong)
            self.assertIn("Wrong type of arguments passed", output)
            self.assertNotIn("dialog", errors)
        _, errors = self.dialog('(qn_qn-submitBug 1 "" "" "" 7)')
        self.assertIn('dialog "Send Bug to Quillon Support":', errors)


class Settings(SupportDialogTest):
    def rows(self, output):
        """Name and value of each row that is shown."""
        return [tuple(line.split(":", 1)[1].split(" | ")[:2])
                for line in output.splitlines() if re.match(r"[ >]+\d+:", line)]

    def test_what_is_shown_where(self):
        alert = "Alert me when updates are available"
        overload, photo = ("Warn if distribution equipment is overloaded",
                           "Recalculate illuminance levels after query")
        for arguments, groups in [
                ('"ELEC"', ["Electrical", alert, overload, photo]), ('"ELEC" "Vantor"', ["Electrical", alert]),
                ('"PHOTO"', ["Photometrics", alert, photo]), ('"HVAC" "x"', ["HVAC", alert]),
                ('"PLUMB"', ["Plumbing", alert]), ('"elec"', [])]:
            with self.subTest(arguments=arguments):
                output, _ = self.dialog("(EditUserOptions %s)" % arguments, "show\ncancel\n")
                names = [name.strip() for name, _ in self.rows(output)]
                drawing = names.index("Drawing Options")
                kept = 2 if "Vantor" in arguments else 3
                self.assertEqual(names[drawing + kept:], groups)

    def test_values_come_from_the_registry_and_go_there(self):
        stored = {"Name": " Joe ", "bZoomToSchedule": "2", "bAutoUpdateDrawings": "0"}
        output, _ = self.dialog('(EditUserOptions "x")',
                                "show\ncell 1048 3 Value joe@x.y\ncell 1048 8 Value Yes\ncell 1048 5 1 No\nok\n",
                                stored)
        shown = {name.strip(): value for name, value in self.rows(output)}
        self.assertEqual((shown["Name"], shown["Email"], shown["Zoom to schedule after insertion"],
                          shown["Automatically open drawings that need to be updated"]),
                         (" Joe ", "", "Yes", "No"))
        self.assertIn("at 2 1", output)
        self.assertEqual(self.shared(), {"Name": " Joe ", "Email": "joe@x.y", "Phone": "",
                                         "bSendToDesktop2": "0", "bZoomToSchedule": "1",
                                         "bAutoUpdateDrawings": "1"})

    def test_a_missing_switch_is_yes_here_and_clear_in_a_report(self):
        output, _ = self.dialog(call() + '(EditUserOptions "x")' + call(),
                                "show\ncancel\nok\nshow\ncancel\n")
        self.assertEqual(re.findall(r"crashes\)\": (on|off)", output), ["off", "on"])

    def test_cancel_labels_and_missing_sections(self):
        _, errors = self.dialog('(EditUserOptions "HVAC")', "cell 1048 2 Name x\ncell 1048 1 0 x\n"
                                "cell 1048 2 Value x\ncancel\n")
        self.assertEqual(errors.count("refuses to edit"), 2, errors)
        self.assertEqual(self.shared(), {})
        output, _ = self.dialog('(EditUserOptions "HVAC")\n(vl-registry-delete shared)(EditUserOptions "HVAC")'
                                '(prin1 (vl-registry-read shared "Name"))', "ok\nok\n")
        self.assertTrue(output.endswith("nil"))


class SmallDialogs(SupportDialogTest):
    def test_a_text_of_several_lines(self):
        for text, script, told in [
                ("a\\nb", "ok", "a\\nb"), ("a\\r\\nb", "ok", "a\\r\\nb"), ("a\\nb", "cancel", None),
                ("a\\nb", "key 1021 Ctrl+End Return c\\nok", "a\\nb\\nc"), ("old", "set 1021 new\\nok", "new"),
                ("old", "key 1021 x Tab\\nkey 1 Return", "x"), ("a\u00a0b\\tc", "ok", "a\u00a0b\\tc"),
                ("", "ok", "")]:
            with self.subTest(text=text, script=script):
                output, _ = self.dialog('(prin1 (ed_editMultilineText "%s"))' % text,
                                        script.replace("\\n", "\n") + "\n")
                self.assertEqual(output.strip(), "nil" if told is None else '"%s"' % told)

    def test_its_title_and_its_place(self):
        output, errors = self.dialog('(ed_editMultilineText "a" "Note") (ed_editMultilineText "a" "")')
        self.assertIn('dialog "Note":', errors)
        self.assertIn('dialog "Edit Text":', errors)

    def test_a_word_is_asked_for(self):
        for script, told in [("set 1036 delete\nok", "T"), ("set 1036 delet\nok\ncancel", "nil"),
                             ("ok\ncancel", "nil"), ("key 1036 d e l e t e Return", "T"),
                             ("set 1036 delete\nset 1036 delete it\nok\ncancel", "nil"), ("ESC", "nil")]:
            with self.subTest(script=script):
                output, _ = self.dialog('(prin1 (qn_qn-safeContinue "Caption" "It will go." "Delete"))',
                                        script + "\n")
                self.assertEqual(output.strip(), told)

    def test_an_empty_word_wants_a_change(self):
        output, errors = self.dialog('(prin1 (qn_qn-safeContinue "" "" ""))',
                                     "ok\nset 1036 x\nok\nset 1036\nok\n")
        self.assertEqual((output.strip(), errors.count("is disabled")), ("T", 2))

    def test_the_prompt_is_wrapped_and_letters_are_capitals(self):
        output, _ = self.dialog('(qn_qn-safeContinue "Remove" "%s" "x")' % ("one two " * 10),
                                "set 1036 straße\nshow\ncancel\n")
        self.assertIn('Dialog "Remove"', output)
        self.assertIn(("one two " * 9 + "one \\ntwo").rstrip(), output.replace("\n", "\\n"))
        self.assertIn('"STRASSE"' if '"STRASSE"' in output else '"STRAßE"', output)

    def test_wrong_arguments_show_nothing(self):
        for wrong in ("(ed_editMultilineText)", "(ed_editMultilineText 1)", "(EditUserOptions nil)",
                      '(qn_qn-safeContinue "a" "b")', '(qn_qn-safeContinue "a" 1 "c")'):
            output, errors = self.dialog("(vl-catch-all-apply '(lambda () %s) nil)" % wrong)
            self.assertIn("Wrong type of arguments passed", output)
            self.assertNotIn("dialog", errors)


class Examples(SupportDialogTest):
    def test_the_examples_of_the_page_run(self):
        self.assertEqual(self.check_examples("support.md"), 4)


if __name__ == "__main__":
    unittest.main()
