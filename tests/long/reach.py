"""Tells which tests run which lines, from the counters of coverage.sh."""

import json
import os
import pathlib
import subprocess


class Reach:
    def __init__(self, root, tests, folders):
        self.root = root
        self.build = root / "build-coverage"
        self.folders = folders
        self.lines = {}  # (file, line): tests that run it
        self.code = {}  # file: lines with code
        for test in tests:
            self.count(test)

    def tests_of(self, file, line):
        """The tests that run a line. A line outside of functions, such as a constant, belongs to
        all tests that run any code of the file."""
        code = self.code.get(file, set())
        source = (self.root / file).read_text().splitlines()
        start = line
        while start > 0 and start not in code and source[start - 1] not in ("}", ""):
            start -= 1  # gcov counts the first line of a statement
        if start in code:
            return self.lines.get((file, start), set())
        return set().union(*(self.lines.get((file, other), set()) for other in code))

    def count(self, test):
        folder = self.build / "coverage" / test
        counters = [path for part in self.folders
                    for path in folder.glob(f"src/CMakeFiles/*.dir/{part.removeprefix('src/')}/**/*.gcda")]
        for counter in counters:
            note = counter.with_suffix(".gcno")
            if not note.exists():  # gcov expects it next to the counters
                os.link(self.build / note.relative_to(folder), note)
        if not counters:
            return
        shown = subprocess.run(["gcov", "--json-format", "--stdout", *map(str, counters)],
                               cwd=self.build, check=True, capture_output=True, text=True)
        for unit in shown.stdout.splitlines():
            for file in json.loads(unit)["files"]:
                self.add(test, file)

    def add(self, test, file):
        # with ccache, the name may be relative to the folder where the file was compiled
        path = (self.build / "src" / file["file"]).resolve()
        if not path.is_relative_to(self.root):
            return
        name = str(path.relative_to(self.root))
        for line in file["lines"]:
            number = line["line_number"]
            self.code.setdefault(name, set()).add(number)
            if line["count"] > 0:
                self.lines.setdefault((name, number), set()).add(test)
