"""An installation: what it holds, that it runs wherever it stands, its completion, its removal."""

import gzip
import os
import re
import subprocess
import unittest

from program import BUILD, SWIFTGATE, ProgramTest

SOURCE = os.path.abspath(os.path.join(os.path.dirname(__file__), "..", ".."))
MANIFEST = os.path.join(BUILD, "install_manifest.txt")
BASH_COMPLETION = "/usr/share/bash-completion/bash_completion"


class Installation(ProgramTest):
    """Installs below a folder whose name has a blank, and leaves the list of the build's own last
    installation as it was."""

    def setUp(self):
        super().setUp()
        if os.path.exists(MANIFEST):
            with open(MANIFEST, "rb") as file:
                self.addCleanup(self.put_back, file.read())
        else:
            self.addCleanup(lambda: os.path.exists(MANIFEST) and os.remove(MANIFEST))
        self.root = self.path("a root")
        self.cmake("--install", BUILD, "--prefix", "/opt/gate")

    @staticmethod
    def put_back(manifest):
        with open(MANIFEST, "wb") as file:
            file.write(manifest)

    def cmake(self, *words):
        return subprocess.run(["cmake", *words], check=True, capture_output=True, text=True,
                              env={**self.environment, "DESTDIR": self.root}).stdout

    def uninstall(self):
        self.cmake(f"-DMANIFEST={MANIFEST}", "-P", os.path.join(SOURCE, "cmake", "uninstall.cmake"))

    def files(self):
        return sorted(os.path.relpath(os.path.join(folder, name), self.root)
                      for folder, _, names in os.walk(self.root) for name in names)

    def test_files_of_ours_are_in_folders_of_ours(self):
        shared = [file for file in self.files()
                  if not re.match("opt/gate/(lib|share|share/doc)/swiftgate/", file)]
        self.assertEqual(shared, [
            "opt/gate/bin/swiftgate",
            "opt/gate/share/bash-completion/completions/swiftgate",
            "opt/gate/share/man/man1/swiftgate.1.gz",
            "opt/gate/share/zsh/site-functions/_swiftgate",
            "opt/gate/share/zsh/vendor-completions/_swiftgate",
        ])

    def test_every_library_of_the_build_is_installed_and_finds_the_others(self):
        installed = {os.path.basename(file): os.path.join(self.root, file)
                     for file in self.files() if re.match("opt/gate/(bin|lib)/", file)}
        for folder in ["bin", "lib", "modules"]:
            for name in os.listdir(os.path.join(BUILD, folder)):
                with self.subTest(name):
                    self.assertIn(name, installed)
                    linked = subprocess.run(["ldd", installed[name]], check=True,
                                            capture_output=True, text=True).stdout
                    self.assertNotIn("not found", linked)
                    self.assertNotIn(BUILD, linked)

    def test_it_runs_where_it_was_moved_to_and_through_a_link(self):
        moved = self.path("moved")
        os.rename(os.path.join(self.root, "opt/gate"), moved)
        os.symlink(os.path.join(moved, "bin/swiftgate"), self.path("gate"))
        gate = self.path("gate")
        code, output, errors = self.run_program(
            "run", "--eval", '(princ (length (arx))) (princ (findfile "acad.pat"))', executable=gate)
        self.assertEqual((code, output), (0, f"2{moved}/share/swiftgate/support/acad.pat"), errors)
        example = os.path.join(moved, "share/doc/swiftgate/examples/ducts.lsp")
        for words in [["run", example, "--save", "ducts.dwg"],
                      ["convert", "ducts.dwg", "ducts.step"],
                      ["render", "ducts.dwg", "-o", "ducts.png"]]:
            code, _, errors = self.run_program(*words, executable=gate)
            self.assertEqual(code, 0, errors)
        with open(self.path("ducts.step"), encoding="ascii") as file:
            self.assertIn("MANIFOLD_SOLID_BREP", file.read())
        self.assertEqual(self.run_program("help", "--missing", executable=gate),
                         (0, "", ""))

    def test_links_within_the_documents_lead_somewhere(self):
        documents = os.path.join(self.root, "opt/gate/share/swiftgate")
        for folder, _, names in os.walk(documents):
            for page in (os.path.join(folder, name) for name in names if name.endswith(".md")):
                with open(page, encoding="utf-8") as file:
                    links = re.findall(r"\]\(([^)#:\s]+)(?:#[^)]*)?\)", file.read())
                for link in links:
                    with self.subTest(page=page, link=link):
                        self.assertTrue(os.path.exists(os.path.join(folder, link)))

    def test_uninstalling_leaves_nothing_but_what_others_put_there(self):
        with open(os.path.join(self.root, "opt/gate/share/swiftgate/support/own.lsp"), "w",
                  encoding="utf-8"):
            pass
        self.uninstall()
        self.assertEqual(self.files(), ["opt/gate/share/swiftgate/support/own.lsp"])
        self.assertFalse(os.path.exists(os.path.join(self.root, "opt/gate/lib/swiftgate")))
        with self.assertRaises(subprocess.CalledProcessError) as second:
            self.uninstall()
        self.assertIn("Nothing has been installed", second.exception.stderr)

    def test_the_manual_page_is_complete(self):
        with gzip.open(os.path.join(self.root, "opt/gate/share/man/man1/swiftgate.1.gz"),
                       "rt", encoding="utf-8") as file:
            page = file.read()
        self.assertNotRegex(page, r"@[A-Z]+@")
        for said in [r"\-\-memory\-limit\fR \fISIZE", "swiftgate db compact [options] FILE [OUT]",
                     r"swiftgate render [options] FILE", r"\-p, \-\-parameter\fR \fINAME=VALUE"]:
            self.assertIn(said, page)


@unittest.skipUnless(os.path.exists(BASH_COMPLETION), "bash-completion is not installed")
class Completion(ProgramTest):
    def complete(self, *words):
        """What is offered for the last word."""
        script = """
            source "$1"; source "$2"; shift 2
            COMP_WORDS=(swiftgate "$@") COMP_CWORD=$# COMP_TYPE=9
            COMP_LINE="${COMP_WORDS[*]}" COMP_LINE=${COMP_LINE// :: /::} COMP_POINT=${#COMP_LINE}
            _swiftgate
            printf '%s\\n' "${COMPREPLY[@]}" """
        done = subprocess.run(
            ["bash", "-c", script, "bash", BASH_COMPLETION,
             os.path.join(BUILD, "generated", "swiftgate.bash"), *words],
            cwd=self.folder, capture_output=True, text=True, check=True,
            env={**self.environment, "PATH": os.path.dirname(SWIFTGATE) + ":" + os.environ["PATH"]})
        return sorted(word for word in done.stdout.split() if not word.startswith("."))

    def test_words_are_completed(self):
        for name in ["a.lsp", "b.dwg", "c.dxf", "d.mdb", "e.csv"]:
            self.write(name, "")
        self.run_program("run", "--eval", '(sg_create_db "p.mdb" "x")')
        for words, offered in [
            (["r"], ["render", "repl", "run"]),
            (["run", ""], ["a.lsp"]),
            (["run", "--d"], ["--drawing"]),
            (["run", "--drawing", ""], ["b.dwg", "c.dxf"]),
            (["run", "a.lsp", "--", "d"], ["d.mdb"]),
            (["render", "--view", ""], ["front", "iso", "top"]),
            (["convert", "b.dwg", "--release", "20", "c"], ["c.dxf"]),
            (["db", "c"], ["check", "compact"]),
            (["db", "import", "--table", "x", ""], ["d.mdb", "p.mdb"]),
            (["db", "import", "d.mdb", ""], ["e.csv"]),
            (["help", "SG_CLOSEA"], ["sg_closeall_tables"]),
            (["help", "AcDbCurve", "::", "getLen"], ["getLength"]),
            (["no-such", ""], []),
        ]:
            with self.subTest(words=words):
                self.assertEqual(self.complete(*words), offered)


if __name__ == "__main__":
    unittest.main()
