"""A repository with the next version of the real packages, and panels that have the present one."""

import shlex
import subprocess
import sys

from fleettest import FILES
from plant import CONTROL_ADDRESS

OLD, NEW = "1.0", "1.1"


def serve_repository():
    """Serves it at http://CONTROL_ADDRESS/talmero. Result: the server's process."""
    server = subprocess.Popen(
        [
            sys.executable,
            "-m",
            "http.server",
            "80",
            "--bind",
            CONTROL_ADDRESS,
            "--directory",
            FILES / "www",
        ],
        stdout=subprocess.DEVNULL,
        stderr=subprocess.DEVNULL,
    )
    return server


def install_programs(panel):
    """Installs the present version of the packages, and stands in for what they depend on."""
    packages = sorted((FILES / "old").glob("*.deb"))
    for package in packages:
        panel.put(package, f"/root/{package.name}")
    names = " ".join(shlex.quote(f"/root/{package.name}") for package in packages)
    panel.shell(f"dpkg --install {names}; rm {names}")
