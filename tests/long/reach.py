"""Which tests run which lines, from the counters that coverage.sh has left."""

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
        self.code = {}  # file: lines that there is code of
        for test in tests:
            self.count(test)

    def tests_of(self, file, line):
        """The tests that run LINE. What belongs to no function, such as a constant, is reached by
        all tests that run anything of the file."""
        code = self.code.get(file, set())
        source = (self.root / file).read_text().splitlines()
        start = line
        while start > 0 and start not in code and source[start - 1] not in ("}", ""):
            start -= 1  # counters belong to the first line of a statement
        if start in code:
            return self.lines.get((file, start), set())
        return set().union(*(self.lines.get((file, other), set()) for other in code))

    def count(self, test):
        folder = self.build / "coverage" / test
        counters = [path for part in self.folders
                    for path in folder.glob(f"src/CMakeFiles/*.dir/{part.removeprefix('src/')}/*.gcda")]
        for counter in counters:
            note = counter.with_suffix(".gcno")
            if not note.exists():  # gcov looks for it there
                os.link(self.build / note.relative_to(folder), note)
        if not counters:
            return
        shown = subprocess.run(["gcov", "--json-format", "--stdout", *map(str, counters)],
                               cwd=self.build, check=True, capture_output=True, text=True)
        for unit in shown.stdout.splitlines():
            for file in json.loads(unit)["files"]:
                self.add(test, file)

    def add(self, test, file):
        # ccache may have made the name relative to the folder in which the file was compiled
        path = (self.build / "src" / file["file"]).resolve()
        if not path.is_relative_to(self.root):
            return
        name = str(path.relative_to(self.root))
        for line in file["lines"]:
            number = line["line_number"]
            self.code.setdefault(name, set()).add(number)
            if line["count"] > 0:
                self.lines.setdefault((name, number), set()).add(test)
