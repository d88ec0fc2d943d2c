"""The computer that looks after the panels: its folder, and running Ansible there."""

import json
import os
import pathlib
import re
import resource
import shutil
import subprocess
import tempfile
import threading
import time

from plant import ROOT

RECAP = re.compile(
    r"^(\S+)\s+: ok=\d+\s+changed=(\d+)\s+unreachable=(\d+)\s+failed=(\d+)", re.MULTILINE
)
SAMPLING_PAUSE = 0.2


class Run:
    """What a run of Ansible did. changed: the names of the panels with changes."""

    def __init__(self, status, output, named, cost):
        self.status = status
        self.output = output
        self.named = named  # those that failed or did not answer
        self.cost = cost
        recap = [match.groups() for match in RECAP.finditer(output)]
        self.visited = [name for name, *_ in recap]
        self.changed = [name for name, changed, *_ in recap if changed != "0"]


class Cost:
    """Time, processor time and peak memory of a process and everything below it.

    It must be the first process of a process namespace.
    """

    def __init__(self, process):
        self.peak = 0  # MB
        self.process = process
        self.ours = os.readlink("/proc/self/ns/pid")
        self.started = time.monotonic()
        self.before = resource.getrusage(resource.RUSAGE_CHILDREN)
        self.sampler = threading.Thread(target=self.sample)
        self.sampler.start()

    def namespace(self):
        return os.readlink(f"/proc/{self.process.pid}/ns/pid_for_children")

    def memory_of(self, process, namespace):
        """The process's share of the memory in kB; 0 if it is no process of the namespace."""
        try:
            if os.readlink(f"/proc/{process}/ns/pid") != namespace:
                return 0
            rollup = pathlib.Path(f"/proc/{process}/smaps_rollup").read_text()
        except OSError:
            return 0
        return int(re.search(r"^Pss:\s+(\d+)", rollup, re.MULTILINE)[1])

    def memory(self):
        """In kB; 0 until the namespace has a process."""
        try:
            namespace = self.namespace()
        except OSError:
            return 0
        if namespace == self.ours:
            return 0
        return sum(
            self.memory_of(entry, namespace) for entry in os.listdir("/proc") if entry.isdigit()
        )

    def sample(self):
        while self.process.poll() is None:
            self.peak = max(self.peak, self.memory() / 1000)
            time.sleep(SAMPLING_PAUSE)

    def end(self):
        self.seconds = time.monotonic() - self.started
        self.sampler.join()
        after = resource.getrusage(resource.RUSAGE_CHILDREN)
        self.processor = (
            after.ru_utime + after.ru_stime - self.before.ru_utime - self.before.ru_stime
        )


class Desk:
    """A copy of the example folder with an inventory of simulated panels."""

    keeps_retry_files = False

    def __init__(self, folder, panels, build, key):
        self.folder = pathlib.Path(folder)
        self.environment = {
            "HOME": str(self.folder),
            "LC_ALL": "C.UTF-8",
            "PATH": f"{build}/bin:/usr/bin:/bin:/usr/sbin:/sbin",
        }
        shutil.copy(ROOT / "fleet/example/ansible.cfg", self.folder)
        shutil.copy(key, self.folder / "panels_key")
        self.write_inventory(panels)

    def write_inventory(self, panels):
        """The variables of the example, and two halls with these panels."""
        example = (ROOT / "fleet/example/inventory.yml").read_text()
        half = (len(panels) + 1) // 2
        lines = [example.partition("  children:")[0] + "  children:"]
        for hall, some in (("hall_1", panels[:half]), ("hall_2", panels[half:])):
            lines += [f"    {hall}:", "      hosts:"]
            lines += [f"        {panel.name}: {{ansible_host: {panel.address}}}" for panel in some]
        (self.folder / "inventory.yml").write_text("\n".join(lines) + "\n")

    def run(self, *command):
        """Runs a command here. What it leaves running, such as shared connections, ends with it."""
        for retry in () if self.keeps_retry_files else self.folder.glob("*.retry"):
            retry.unlink()
        apart = ["unshare", "--pid", "--fork", "--kill-child", "--mount-proc"]
        with tempfile.TemporaryFile("w+") as output:
            process = subprocess.Popen(
                [*apart, *command], cwd=self.folder, env=self.environment,
                stdin=subprocess.DEVNULL, stdout=output, stderr=subprocess.STDOUT,
            )
            cost = Cost(process)
            status = process.wait()
            cost.end()
            output.seek(0)
            text = output.read()
        named = [
            name for retry in self.folder.glob("*.retry") for name in retry.read_text().split()
        ]
        return Run(status, text, sorted(named), cost)

    def play(self, role, *arguments, **variables):
        """Runs a playbook of the collection."""
        extra = ["-e", json.dumps(variables)] if variables else []
        return self.run("ansible-playbook", f"talmero.panels.{role}", *arguments, *extra)

    def make_package(self, name, contents=(), kind="application"):
        """Makes a package whose compile/project says its name.

        contents: more files, as pairs of path and bytes.
        """
        folder = self.folder / name
        for path, content in [("compile/project", name.encode()), *contents]:
            (folder / path).parent.mkdir(parents=True, exist_ok=True)
            (folder / path).write_bytes(content)
        package = self.folder / f"{name}.kpc"
        options = f"--kind {kind} --version 12 --target RV-K21T --output {package}"
        make = ["talmero-mkpackage", "make", *options.split(), folder]
        subprocess.run(make, env=self.environment, check=True, capture_output=True)
        return package
