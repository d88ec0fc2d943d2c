"""Folders of a stick that are hard to search, each with the number of listed packages."""
import dataclasses
import os
import socket

from archives import archive, folder, header, member
from packages import GOOD

PACKAGE = header() + GOOD


@dataclasses.dataclass
class Tree:
    name: str
    make: callable  # in the current folder
    rows: int  # applications that the panel lists


def write(name, data=PACKAGE):
    path = os.fsencode(name)
    os.makedirs(os.path.dirname(path) or b".", exist_ok=True)
    with open(path, "wb") as file:
        file.write(data)


def link_ring():
    write("a/x.kpc")
    for name, target in {"a/up": "..", "a/here": ".", "a/b": "c", "a/c": "b", "a/self": "self",
                         "root": "/", "a/x-link": "x.kpc"}.items():
        os.symlink(target, name)


def links_named_as_packages():
    write("x.bin")
    for name, target in {"file.kpc": "x.bin", "nothing.kpc": "none", "passwords.kpc": "/etc/passwd",
                         "device.kpc": "/dev/zero", "self.kpc": "self.kpc", "folder.kpc": "."}.items():
        os.symlink(target, name)


def no_plain_files():
    os.mkfifo("pipe.kpc")
    os.mkdir("folder.kpc")
    for name in ("socket.kpc", "folder.kpc/socket.kpc"):
        with socket.socket(socket.AF_UNIX) as server:
            server.bind(name)


def other_systems():
    write("x.kpc")
    for name in ("._x.kpc", ".x.kpc.swp", ".kpc", "X.KPC", "y.Kpc", "x.kpc~", "x.kpc.part",
                 "kpc", "xkpc", ".Trashes/501/x.kpc", ".fseventsd/x.kpc", "Thumbs.db", "desktop.ini",
                 ".Spotlight-V100/Store-V2/x.kpc", "$RECYCLE.BIN/S-1-5-21/$RX.kpc"):
        write(name)
    write("System Volume Information/IndexerVolumeGuid", b"{\0}\0")


def folders_named_as_packages():
    write("x.kpc/y.kpc/z.kpc")
    os.mkdir("x.kpc/empty.kpc")


def deep():
    """The path of the last package exceeds the limit of 4,095 bytes."""
    for depth in range(4000):
        if depth in (1, 1000, 2000, 3999):
            write("x.kpc")
        os.mkdir("d")
        os.chdir("d")


def mount_ring():
    """The test mounts the folder inside itself several times."""
    write("x.kpc")
    os.mkdir("again")


def hard_names():
    """Each package installs a different file."""
    names = ["n" * 251, "line\nfeed", "no\udcff\udcc3utf-8", "esc\x1b]0;x\x07", "-rf", "%s%n",
             "<b>&amp;<img src=x>", "'; touch evil; '"]
    for number, name in enumerate(names):
        write(name + ".kpc", header() + archive(folder("names"),
                                                member(f"names/{number}", b"new\n")))


def many_files():
    os.mkdir("a")
    for number in range(5000):
        write(f"a/{number:04}.kpc", b"")


def many_folders():
    for number in range(3000):
        os.mkdir(f"{number:04}")
    write("2999/x.kpc")


def sparse_files():
    for number in range(5):
        write(f"{number}.kpc")
        os.truncate(f"{number}.kpc", 1 << 40)


TREES = [
    Tree("link-ring", link_ring, 1),
    Tree("links-named-as-packages", links_named_as_packages, 0),
    Tree("no-plain-files", no_plain_files, 0),
    Tree("other-systems", other_systems, 2),
    Tree("folders-named-as-packages", folders_named_as_packages, 1),
    Tree("deep", deep, 3),
    Tree("mount-ring", mount_ring, 13),
    Tree("hard-names", hard_names, 8),
    Tree("many-files", many_files, 5000),
    Tree("many-folders", many_folders, 1),
    Tree("sparse-terabytes", sparse_files, 5),
]
