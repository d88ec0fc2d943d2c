import io
import os
import pathlib
import tarfile
import tempfile
import unittest

from modules import installed

RECORD = {"digest": "ab12", "file": "line1.kpc"}


def member(name, kind=tarfile.REGTYPE, content=b"", link=""):
    info = tarfile.TarInfo(name)
    info.type, info.size, info.linkname = kind, len(content), link
    return info, content


class Installed(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        (self.folder / "dest/compile/sub").mkdir(parents=True)
        self.dest = str(self.folder / "dest")

    def write(self, name, content):
        (self.folder / "dest" / name).write_bytes(content)

    def package(self, *members):
        archive = io.BytesIO()
        with tarfile.open(fileobj=archive, mode="w:gz") as writer:
            for info, content in members:
                writer.addfile(info, io.BytesIO(content))
        path = self.folder / "package.kpc"
        path.write_bytes(b"h" * 36 + archive.getvalue())
        return path

    def difference(self, *members):
        return installed.first_difference(self.package(*members), self.dest)

    def test_records(self):
        rows = [
            ('{"digest": "ab12", "file": "line1.kpc", "more": 1}', RECORD),
            ('{"digest": "ab12"}', {}),
            ('{"digest": 1, "file": "line1.kpc"}', {}),
            ("[]", {}),
            ('{"digest": "ab', {}),
            ("", {}),
        ]
        for text, record in rows:
            with self.subTest(text=text):
                self.assertEqual(installed.parse_record(text), record)

    def test_record_is_kept_with_the_application(self):
        self.assertEqual(installed.read_record(self.dest), {})
        self.assertTrue(installed.write_record(RECORD, self.dest))
        self.assertEqual(installed.read_record(self.dest), RECORD)
        self.assertEqual(os.listdir(f"{self.dest}/compile").count(".talmero-package.new"), 0)

    def test_no_record_without_the_folder_that_is_replaced(self):
        self.assertFalse(installed.write_record(RECORD, str(self.folder)))
        self.assertEqual(installed.read_record(str(self.folder)), {})

    def test_complete_application(self):
        self.write("compile/sub/main", b"1")
        self.write("other", b"of the panel")
        os.symlink("sub/main", f"{self.dest}/compile/link")
        os.link(f"{self.dest}/compile/sub/main", f"{self.dest}/compile/hard")
        self.assertIsNone(
            self.difference(
                member("compile", tarfile.DIRTYPE),
                member("./compile/sub/main", content=b"1"),
                member("compile/link", tarfile.SYMTYPE, link="sub/main"),
                member("compile/hard", tarfile.LNKTYPE, link="compile/sub/main"),
            )
        )

    def test_later_member_replaces_an_earlier_one(self):
        self.write("compile/a", b"second")
        self.assertIsNone(
            self.difference(
                member("compile/a", content=b"first"), member("compile/a", content=b"second")
            )
        )

    def test_differences(self):
        self.write("file", b"1")
        os.symlink("file", f"{self.dest}/link")
        rows = [
            ("missing", member("none", content=b"1")),
            ("other contents", member("file", content=b"2")),
            ("cut off", member("file", content=b"12")),
            ("a folder in the way", member("compile", content=b"1")),
            ("a file instead of a folder", member("file", tarfile.DIRTYPE)),
            ("a link to the right contents", member("link", content=b"1")),
            ("another link", member("link", tarfile.SYMTYPE, link="other")),
            ("a file instead of a link", member("file", tarfile.SYMTYPE, link="file")),
            ("a missing hard link", member("none", tarfile.LNKTYPE, link="file")),
        ]
        for name, wanted in rows:
            with self.subTest(name):
                self.assertEqual(
                    self.difference(member("file", content=b"1"), wanted), wanted[0].name
                )

    def test_space(self):
        self.write("compile/a", b"x" * 50000)
        os.symlink("nowhere", f"{self.dest}/compile/link")
        taken = installed.taken_space(f"{self.dest}/compile")
        self.assertGreaterEqual(taken, 50000)
        self.assertLess(taken, 100000)
        disk = os.statvfs(self.dest)
        free = disk.f_bavail * disk.f_frsize + taken
        self.assertLess(abs(installed.free_space(self.dest) - free), 500 << 20)
        self.assertEqual(installed.free_space(str(self.folder / "none")), 0)


if __name__ == "__main__":
    unittest.main()
