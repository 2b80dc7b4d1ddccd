"""Archives and downloads through the executable: read and made by other programs, from a server on
loopback, and on a full disk."""

import os
import resource
import shutil
import signal
import subprocess
import sys
import time
import unittest
import zipfile

from program import SWIFTGATE, ProgramTest

SERVER = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "host", "system",
                      "download_server.py")


class SupportTest(ProgramTest):
    def value(self, expression, **options):
        """What a LISP expression prints as."""
        done = subprocess.run(
            [SWIFTGATE, "run", "--eval", f"(prin1 {expression})"], cwd=self.folder,
            env=self.environment, text=True, encoding="utf-8", capture_output=True, timeout=120,
            **options)
        self.assertEqual(done.returncode, 0, done.stderr)
        return done.stdout

    def files(self, *folder):
        """Every file below the folder, hidden ones too, but for the user's registry."""
        root = os.path.join(self.folder, *folder)
        settings = self.path(".config")
        return sorted(os.path.relpath(os.path.join(at, name), root)
                      for at, _, names in os.walk(root) for name in names
                      if not at.startswith(settings))

    def content(self, name):
        with open(self.path(name), "rb") as file:
            return file.read()


class Archives(SupportTest):
    def test_other_programs_read_what_we_make(self):
        big = os.urandom(300000) + b"\0" * 300000
        os.mkdir(self.path("in"))
        for name, data in [("in/empty.txt", b""), ("in/Größe 中文.txt", b"text"), ("in/big", big)]:
            with open(self.path(name), "wb") as file:
                file.write(data)
        os.utime(self.path("in/big"), (1e9, 1234567890))
        self.assertEqual(self.value('(CreateZip "x.zip" (list "in/*"))'), "T")
        with zipfile.ZipFile(self.path("x.zip")) as archive:
            self.assertIsNone(archive.testzip())
            self.assertEqual(sorted(archive.namelist()), ["Größe 中文.txt", "big", "empty.txt"])
            self.assertEqual(archive.read("big"), big)
            self.assertEqual(archive.getinfo("big").date_time[:5],
                             time.localtime(1234567890)[:5])
        if shutil.which("unzip"):
            tested = subprocess.run(["unzip", "-t", self.path("x.zip")], capture_output=True)
            self.assertEqual(tested.returncode, 0, tested.stdout)

    def test_we_read_what_other_programs_make(self):
        os.mkdir(self.path("in"))
        self.write("in/a ü.txt", "text")
        with zipfile.ZipFile(self.path("python.zip"), "w") as archive:
            archive.write(self.path("in/a ü.txt"), "sub/a ü.txt")
            archive.writestr("packed", "x" * 100000, zipfile.ZIP_DEFLATED)
        with open(self.path("stream.zip"), "wb") as file:  # sizes stand behind the data
            file.seekable = lambda: False
            with zipfile.ZipFile(file, "w", zipfile.ZIP_DEFLATED) as archive:
                archive.writestr("streamed", "y" * 1000)
        with zipfile.ZipFile(self.path("zip64.zip"), "w") as archive:
            with archive.open("large", "w", force_zip64=True) as entry:
                entry.write(b"z" * 1000)
        for name in ["python", "stream", "zip64"]:
            self.assertEqual(self.value(f'(ExtractZip "{name}.zip" "out/{name}")'), "T", name)
        self.assertEqual(self.files("out"),
                         ["python/packed", "python/sub/a ü.txt", "stream/streamed", "zip64/large"])
        self.assertEqual(self.content("out/python/packed"), b"x" * 100000)
        if shutil.which("zip"):
            subprocess.run(["zip", "-qr", "info.zip", "in"], cwd=self.folder, check=True)
            self.assertEqual(self.value('(ExtractZip "info.zip" "out/info")'), "T")
            self.assertEqual(self.content("out/info/in/a ü.txt"), b"text")

    def test_other_methods_are_refused(self):
        for method in [zipfile.ZIP_BZIP2, zipfile.ZIP_LZMA]:
            with zipfile.ZipFile(self.path("x.zip"), "w", method) as archive:
                archive.writestr("a", "text")
            self.assertEqual(self.value('(ExtractZip "x.zip" "out")'), "nil")
        self.assertFalse(os.path.exists(self.path("out")))

    def test_too_many_entries_are_refused(self):
        with zipfile.ZipFile(self.path("x.zip"), "w") as archive:
            for number in range(0x10000):
                archive.writestr(str(number), "")
        self.assertEqual(self.value('(ExtractZip "x.zip" "out")'), "nil")
        self.assertEqual(self.files(), ["x.zip"])

    def test_nothing_leaves_the_folder(self):
        for name in ["../evil", "a/../../evil", "/tmp/swiftgate-evil", "..\\evil", "C:\\evil"]:
            with zipfile.ZipFile(self.path("x.zip"), "w") as archive:
                archive.writestr("fine", "text")
                archive.writestr(name, "evil")
            self.assertEqual(self.value('(ExtractZip "x.zip" "deep/out")'), "nil", name)
        self.assertEqual(self.files(), ["x.zip"])
        self.assertFalse(os.path.exists("/tmp/swiftgate-evil"))

    def full_disk(self, folder, **options):
        """Fills the disk at a folder that holds less than 300,000 bytes more."""
        with open(self.path("noise"), "wb") as file:
            file.write(os.urandom(300000))
        with zipfile.ZipFile(self.path("noise.zip"), "w") as archive:
            archive.writestr("first", "text")
            archive.write(self.path("noise"), "noise")
        # A write that fails is not told; the answer is T.
        self.assertEqual(self.value(f'(CreateZip "{folder}/x.zip" (list "noise"))', **options), "T")
        self.assertEqual(self.files(folder), [])
        self.value(f'(DownloadFile "file://{self.folder}/noise" "{folder}/got")', **options)
        self.assertEqual(self.files(folder), [])
        self.assertEqual(self.value(f'(ExtractZip "noise.zip" "{folder}")', **options), "nil")
        self.assertNotIn("noise", self.files(folder))
        self.assertEqual([name for name in self.files(folder) if name != "first"], [])

    def test_files_that_may_not_grow(self):
        def limit():
            signal.signal(signal.SIGXFSZ, signal.SIG_IGN)
            resource.setrlimit(resource.RLIMIT_FSIZE, (200000, 200000))

        os.mkdir(self.path("limited"))
        self.full_disk("limited", preexec_fn=limit)

    def test_a_disk_that_is_full(self):
        os.mkdir(self.path("small"))
        mounted = subprocess.run(
            ["mount", "-t", "tmpfs", "-o", "size=200k", "tmpfs", self.path("small")],
            capture_output=True)
        if mounted.returncode != 0:
            self.skipTest("a small file system cannot be mounted")
        self.addCleanup(subprocess.run, ["umount", self.path("small")], check=True)
        self.full_disk("small")


class Downloads(SupportTest):
    def setUp(self):
        super().setUp()
        self.environment["no_proxy"] = "*"
        server = subprocess.Popen([sys.executable, "-B", SERVER], stdin=subprocess.PIPE,
                                  stdout=subprocess.PIPE, text=True)
        self.addCleanup(server.wait)
        self.addCleanup(server.stdout.close)
        self.addCleanup(server.stdin.close)
        self.address = f"http://127.0.0.1:{int(server.stdout.readline())}"

    def fetch(self, path, file="got"):
        return self.value(f'(DownloadFile "{self.address}/{path}" "{file}")')

    def test_files_arrive_whole_or_not_at_all(self):
        self.assertEqual(self.fetch("redirect/3"), "nil")
        self.assertEqual(self.content("got"), b"content")
        for path in ["status/404", "status/500", "short", "chunks", "redirect/11",
                     "to/file:///etc/passwd"]:
            self.assertEqual(self.fetch(path), "nil")
            self.assertEqual(self.fetch(path, "new"), "nil")
        self.assertEqual(self.content("got"), b"content")
        self.assertEqual(self.files(), ["got"])

    def test_an_old_copy_is_never_served(self):
        self.fetch("counted")
        first = self.content("got")
        self.fetch("counted")
        self.assertNotEqual(self.content("got"), first)

    def test_ctrl_c_ends_a_download(self):
        program = self.popen("run", "--eval", f'(DownloadFile "{self.address}/hang" "got")',
                             "--eval", '(progn (repeat 9 T) (princ "went on"))',
                             stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                             stdin=subprocess.DEVNULL)
        while not self.has_sockets(program.pid):
            self.assertIsNone(program.poll())
        program.send_signal(signal.SIGINT)
        output, errors = program.communicate(timeout=20)
        self.assertEqual(output, "")
        self.assertIn("Function cancelled", errors)
        self.assertEqual(self.files(), [])

    @staticmethod
    def has_sockets(process):
        """Whether a program that by itself has none has begun to use the network."""
        folder = f"/proc/{process}/fd"
        try:
            return any(os.readlink(os.path.join(folder, name)).startswith("socket:")
                       for name in os.listdir(folder))
        except OSError:  # closed meanwhile
            return False


if __name__ == "__main__":
    unittest.main()
