import pathlib
import tempfile
import unittest

from modules import panel, report


class Report(unittest.TestCase):
    def test_packages(self):
        rows = [
            ("installed talmero-bios 1.0", {"talmero-bios": "1.0"}),
            ("unpacked talmero-bios 1.1", {"talmero-bios": "1.1 unpacked"}),
            ("half-installed talmero-bios ", {"talmero-bios": "half-installed"}),
            ("config-files talmero-bios 0.9", {}),
            ("not-installed talmero-bios ", {}),
            ("no packages", {}),
            ("", {}),
        ]
        for output, packages in rows:
            with self.subTest(output=output):
                self.assertEqual(report.parse_packages(output + "\n"), packages)

    def test_summary_leaves_out_what_is_ok(self):
        doctor = {
            "status": 2,
            "findings": [
                {"level": "ok", "check": "tools", "found": "all"},
                {
                    "level": "warning",
                    "check": "space",
                    "found": "12 MiB",
                    "advice": "remove something",
                },
                {"level": "error", "check": "touch", "found": "none", "advice": "plug it in"},
            ],
        }
        self.assertEqual(
            report.summary(doctor),
            {"status": 2, "errors": ["touch: none"], "warnings": ["space: 12 MiB"]},
        )

    def test_first_lines(self):
        rows = [
            (b"12\n", "12"),
            (b"12", "12"),
            (b"", ""),
            (b"\nx", ""),
            (b"a\r\nb", "a"),
            (b"\xff\n", "\ufffd"),
        ]
        for text, line in rows:
            with self.subTest(text=text):
                self.assertEqual(panel.first_line(text), line)

    def test_versions_of_a_panel(self):
        with tempfile.TemporaryDirectory() as folder:
            pathlib.Path(folder, "model").write_text("RV-K21T\n")
            pathlib.Path(folder, "fwver").mkdir()
            self.assertEqual(
                panel.read_versions(folder),
                {"model": "RV-K21T", "oem": "", "runtime": "", "bios": ""},
            )

    def test_reasons(self):
        rows = [
            ("talmero-settings: a: refused\n", "", "a: refused"),
            ("", "talmero-install: no\n\n", "no"),
            ("first\nlast: line", "", "last: line"),
            (" \n", "", "no message"),
        ]
        for errors, output, reason in rows:
            with self.subTest(errors=errors, output=output):
                self.assertEqual(panel.last_line(errors, output), reason)


if __name__ == "__main__":
    unittest.main()
