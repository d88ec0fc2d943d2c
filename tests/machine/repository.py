"""A signed repository with a newer version of the panel's packages."""

import pathlib
import re
import subprocess
import tempfile

from machine import MachineError

ROOT = pathlib.Path(__file__).resolve().parents[2]
RELEASE = "bookworm"
KEY_NAME = "maker@talmero.example"


def _repack(package, folder, old, new):
    """Makes a package of the same files with another version."""
    with tempfile.TemporaryDirectory() as contents:
        subprocess.run(["dpkg-deb", "--raw-extract", package, contents], check=True)
        control = pathlib.Path(contents, "DEBIAN/control")
        text = control.read_text()
        text = re.sub(rf"^Version: {re.escape(old)}$", f"Version: {new}", text, flags=re.MULTILINE)
        control.write_text(text.replace(f"(= {old})", f"(= {new})"))
        subprocess.run(["dpkg-deb", "--root-owner-group", "--build", contents, folder],
                       check=True, stdout=subprocess.DEVNULL)


def make_repository(folder, old, new):
    """Makes a repository in FOLDER of the packages in dist/, as if their version were "new".

    Result: the names of the packages
    """
    packages = sorted(path for path in (ROOT / "dist").glob(f"talmero-*_{old}_*.deb")
                      if "-dbgsym_" not in path.name)
    if not packages:
        raise MachineError(f"dist/ has no packages of version {old}; ./package.sh makes them")
    with tempfile.TemporaryDirectory() as scratch:
        build = pathlib.Path(scratch, "dist", f"{RELEASE}-amd64")
        build.mkdir(parents=True)
        for package in packages:
            _repack(package, build, old, new)
        keys = pathlib.Path(scratch, "keys")
        keys.mkdir(mode=0o700)
        environment = {"GNUPGHOME": str(keys), "PATH": "/usr/sbin:/usr/bin:/sbin:/bin"}
        for command in (["gpg", "--batch", "--quiet", "--passphrase", "", "--quick-generate-key",
                         KEY_NAME, "ed25519", "sign", "never"],
                        [ROOT / "scripts/repository", folder, KEY_NAME, build.parent],
                        ["gpgconf", "--kill", "all"]):
            subprocess.run(command, env=environment, check=True, stdout=subprocess.DEVNULL)
    return [package.name.split("_")[0] for package in packages]
