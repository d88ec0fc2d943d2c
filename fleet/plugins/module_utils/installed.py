"""The application that a panel has: its record, and whether it is what its package holds."""

import hashlib
import json
import os
import tarfile

FOLDER = "/home/dest"

# Every installation of an application begins with removing this folder, also one from a stick.
# The record lies in it, so it never outlives the application that it describes.
REPLACED_FOLDER = "compile"
RECORD = f"{REPLACED_FOLDER}/.talmero-package"

RECORD_KEYS = ("digest", "file")

HEADER_SIZE = 36


def parse_record(text):
    """The record in a text: a dictionary with digest and file; empty if it is none."""
    try:
        record = json.loads(text)
    except ValueError:
        return {}
    if not isinstance(record, dict) or not all(
        isinstance(record.get(key), str) for key in RECORD_KEYS
    ):
        return {}
    return {key: record[key] for key in RECORD_KEYS}


def read_record(folder=FOLDER):
    """The record of the application in a folder; empty if nobody knows what it has."""
    try:
        with open(f"{folder}/{RECORD}", encoding="utf-8", errors="replace") as file:
            return parse_record(file.read(4096))
    except OSError:
        return {}


def write_record(record, folder=FOLDER):
    """Records an application, durably and in one step. Result: False if it left no folder for it."""
    path = f"{folder}/{RECORD}"
    if not os.path.isdir(os.path.dirname(path)):
        return False
    with open(f"{path}.new", "w", encoding="utf-8") as file:
        json.dump(record, file)
        file.flush()
        os.fsync(file.fileno())
    os.replace(f"{path}.new", path)
    return True


def digest_of(file):
    """The SHA-256 of an open file, as hexadecimal digits."""
    digest = hashlib.sha256()
    for piece in iter(lambda: file.read(1 << 16), b""):
        digest.update(piece)
    return digest.hexdigest()


def digest_of_path(path):
    """The SHA-256 of the file at a path."""
    with open(path, "rb") as file:
        return digest_of(file)


def expectation(archive, member):
    """What a member of an archive leaves on the disk, as a value that can be compared."""
    if member.isdir():
        return ("folder",)
    if member.issym():
        return ("link", member.linkname)
    if member.islnk():
        return ("file",)  # its contents are those of an earlier member
    return ("file", digest_of(archive.extractfile(member)))


def expectations(package):
    """What a package leaves on the disk, by path; a later member replaces an earlier one."""
    with open(package, "rb") as file:
        file.seek(HEADER_SIZE)
        with tarfile.open(fileobj=file, mode="r|gz") as archive:
            return {member.name: expectation(archive, member) for member in archive}


def is_met(expected, path):
    """Whether the disk has at a path what is expected."""
    if expected[0] == "link":
        return os.path.islink(path) and os.readlink(path) == expected[1]
    if expected[0] == "folder":
        return os.path.isdir(path)
    if not os.path.isfile(path) or os.path.islink(path):
        return False
    return len(expected) == 1 or digest_of_path(path) == expected[1]


def first_difference(package, folder=FOLDER):
    """The first path of a package that the folder does not have, or has with other contents.

    Result: None if it has them all. talmero-install does not notice when tar fails or is cut off.
    """
    for name, expected in expectations(package).items():
        if not is_met(expected, f"{folder}/{name}"):
            return name.encode("utf-8", "backslashreplace").decode()
    return None


def taken_space(folder):
    """The bytes that a folder takes on its disk."""
    total = 0
    for path, _, files in os.walk(folder):
        for name in [".", *files]:
            try:
                total += os.lstat(f"{path}/{name}").st_blocks * 512
            except OSError:
                pass  # removed meanwhile
    return total


def free_space(folder=FOLDER):
    """The bytes that an application may take: what is free, and what the old one gives back.

    Result: 0 if there is no such folder.
    """
    try:
        disk = os.statvfs(folder)
    except OSError:
        return 0
    return disk.f_bavail * disk.f_frsize + taken_space(f"{folder}/{REPLACED_FOLDER}")
