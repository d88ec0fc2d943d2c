"""Changes single lines of the program and checks that a test notices. See mutation.sh."""

import argparse
import concurrent.futures
import json
import os
import pathlib
import queue
import random
import shlex
import subprocess
import sys
import time

import mutants
from reach import Reach

ROOT = pathlib.Path(__file__).resolve().parents[2]
BUILD = ROOT / "build-mutation"
REPORT = BUILD / "mutation" / "report.tsv"
FOLDERS = ("src/system", "src/packages", "src/shell")
NEEDED = 0.8  # of the changes that build


def show_tests():
    """Names and commands of the tests that run in a panel, from ctest."""
    shown = subprocess.run(["ctest", "--test-dir", str(BUILD), "--show-only=json-v1"],
                           check=True, capture_output=True, text=True)
    return {test["name"]: test["command"] for test in json.loads(shown.stdout)["tests"]
            if "--" in test["command"]}


def test_seconds():
    """Average duration of each test, from ctest's records of the coverage build."""
    seconds = {}
    text = (ROOT / "build-coverage/Testing/Temporary/CTestCostData.txt").read_text()
    for line in text.split("---")[0].splitlines():
        name, _, average = line.split()
        seconds[name] = float(average)
    return seconds


def link_command(library):
    """The command that links the library, as a list. It runs in BUILD."""
    commands = subprocess.run(["ninja", "-C", BUILD, "-t", "commands", "-s", f"src/lib{library}.so"],
                              check=True, capture_output=True, text=True).stdout
    words = shlex.split(commands.splitlines()[-1])
    return words[words.index("&&") + 1:][:-2]  # CMake puts ": &&" before it and "&& :" after it


class Worker:
    """A folder with a changed library, which replaces that of the build."""

    def __init__(self, number):
        self.folder = BUILD / "mutation" / f"worker{number}"
        self.folder.mkdir(parents=True, exist_ok=True)

    def clean(self):
        for file in self.folder.iterdir():
            file.unlink()

    def build(self, command, link, source, text):
        """Compiles the text instead of the source file and links the library. Returns None if that
        fails, False if the object file is unchanged, otherwise True."""
        self.clean()
        changed = self.folder / source.name
        changed.write_text(text)
        # a change that only causes a warning must be found by a test
        compile_words = [word for word in shlex.split(command) if word != "-Werror"] + ["-w"]
        original = BUILD / compile_words[compile_words.index("-o") + 1]
        made = self.folder / "changed.o"
        compile_words[compile_words.index("-o") + 1] = str(made)
        compile_words[compile_words.index("-c") + 1] = str(changed)
        if subprocess.run(compile_words, cwd=BUILD, stderr=subprocess.DEVNULL).returncode:
            return None
        if made.read_bytes() == original.read_bytes():
            return False
        link_words = [str(made) if BUILD / word == original else word for word in link]
        library = link_words.index("-o") + 1
        link_words[library] = str(self.folder / pathlib.Path(link_words[library]).name)
        if subprocess.run(link_words, cwd=BUILD, stderr=subprocess.DEVNULL).returncode:
            return None
        return True

    def fails(self, command, limit):
        """Runs a test with the changed library. Returns "failed", "timeout" or None."""
        environment = dict(os.environ, LD_LIBRARY_PATH=str(self.folder))
        with subprocess.Popen(command, cwd=BUILD / "tests", env=environment,
                              stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                              stderr=subprocess.DEVNULL) as process:
            try:
                return "failed" if process.wait(limit) else None
            except subprocess.TimeoutExpired:
                process.kill()  # also ends the panel
                return "timeout"


class Run:
    def __init__(self, options):
        self.options = options
        self.tests = show_tests()
        self.seconds = test_seconds()
        self.reach = Reach(ROOT, sorted(self.tests), FOLDERS)
        commands = json.loads((BUILD / "compile_commands.json").read_text())
        # the fuzz targets compile some of the files, too
        self.commands = {entry["file"]: entry["command"] for entry in commands
                         if " -o src/" in entry["command"]}
        self.links = {name: link_command(name) for name in ("panel_core", "panel_ui")}
        self.workers = queue.SimpleQueue()
        for number in range(options.jobs):
            self.workers.put(Worker(number))

    def order(self, mutant):
        """The tests that reach a change: the one named after the file first, then the fastest."""
        own = f"tst_{mutant.path.stem}"
        tests = self.reach.tests_of(str(mutant.path), mutant.line)
        return sorted(tests, key=lambda test: (test != own, self.seconds.get(test, 60)))

    def try_mutant(self, mutant):
        worker = self.workers.get()
        try:
            return self.outcome(worker, mutant)
        finally:
            self.workers.put(worker)

    def outcome(self, worker, mutant):
        source = ROOT / mutant.path
        command = self.commands[str(source)]
        library = "panel_core" if "panel_core.dir" in command else "panel_ui"
        built = worker.build(command, self.links[library], source, mutant.text(source))
        if not built:
            return "does not build" if built is None else "same program"
        spent = 0
        for test in self.order(mutant):
            if spent > self.options.budget:
                return "survived the budget"
            usual = self.seconds.get(test, 60)
            started = time.monotonic()
            failure = worker.fails(self.tests[test], 20 + 4 * usual)
            spent += time.monotonic() - started
            if failure:
                return f"{failure}: {test}"
        return "survived"

    def candidates(self):
        found = []
        for folder in FOLDERS:
            for path in sorted((ROOT / folder).rglob("*.cpp")):
                found += mutants.of_file(path.relative_to(ROOT), path.read_text())
        random.Random(self.options.seed).shuffle(found)
        return found

    def results(self):
        """Yields changes with their outcomes, until enough of them have been built."""
        if self.options.again:
            report = mutants.read_report(self.options.again)
            known = [entry for entry in report if not entry[1].startswith("survived")]
            waiting = iter([mutant for mutant, outcome in report if outcome.startswith("survived")])
        else:
            known = []
            waiting = iter(self.candidates())
        yield from known
        tried = len(known)
        with concurrent.futures.ThreadPoolExecutor(self.options.jobs) as pool:
            running = {}
            while True:
                while tried + len(running) < self.options.count and len(running) < self.options.jobs:
                    mutant = next(waiting, None)
                    if mutant is None:
                        break
                    running[pool.submit(self.try_mutant, mutant)] = mutant
                if not running:
                    return
                done, _ = concurrent.futures.wait(
                    running, return_when=concurrent.futures.FIRST_COMPLETED)
                for future in done:
                    outcome = future.result()
                    mutant = running.pop(future)
                    if outcome not in ("does not build", "same program"):
                        tried += 1
                        yield mutant, outcome


def main():
    parser = argparse.ArgumentParser(prog="tests/long/mutation.sh", add_help=False)
    parser.add_argument("--count", type=int, default=200)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--budget", type=int, default=60)
    parser.add_argument("--jobs", type=int, default=os.cpu_count())
    parser.add_argument("--again", type=pathlib.Path)
    run = Run(parser.parse_args())
    survived = timeouts = total = 0
    REPORT.parent.mkdir(exist_ok=True)
    text = REPORT.with_suffix(".new")
    with text.open("w") as report:
        for mutant, outcome in run.results():
            total += 1
            survived += outcome.startswith("survived")
            timeouts += outcome.startswith("timeout")
            print(f"{total:4} {outcome:32.32} {mutant}", flush=True)
            report.write(mutant.row(outcome))
            report.flush()
    text.rename(REPORT)
    noticed = total - survived
    print(f"{noticed} of {total} changes noticed, {timeouts} of them because a test hung")
    return 0 if total and noticed >= NEEDED * total else 1


sys.exit(main())
