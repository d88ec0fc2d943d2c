"""A repository with the next version of the real packages, and panels that have the present one."""

import contextlib
import shlex
import subprocess
import sys

from fleettest import FILES
from plant import CONTROL_ADDRESS

NEW = "1.1"


@contextlib.contextmanager
def serve_repository():
    """Serves it at http://CONTROL_ADDRESS/talmero."""
    command = [sys.executable, "-m", "http.server", "80", "--bind", CONTROL_ADDRESS]
    with subprocess.Popen(
        [*command, "--directory", FILES / "www"],
        stdout=subprocess.DEVNULL,
        stderr=subprocess.DEVNULL,
    ) as server:
        yield
        server.terminate()


def install_programs(panel):
    """Installs the present version of the packages, and stands in for what they depend on."""
    packages = sorted((FILES / "old").glob("*.deb"))
    for package in packages:
        panel.put(package, f"/root/{package.name}")
    names = " ".join(shlex.quote(f"/root/{package.name}") for package in packages)
    panel.shell(f"dpkg --install {names}; rm {names}")
