"""Makes USB sticks as files: a partition table and one partition. Nothing is mounted."""

import pathlib
import struct
import subprocess

ROOT = pathlib.Path(__file__).resolve().parents[2]
MKPACKAGE = ROOT / "build/bin/talmero-mkpackage"
MEBIBYTE = 1 << 20
SIZE = 64  # MiB, of a stick
SECTOR = 512
# Type codes of partitions
FAT, LINUX, EXFAT = "c", "83", "7"


def _run(*command):
    subprocess.run([str(word) for word in command], check=True, stdout=subprocess.DEVNULL)


def _make_disk(path, kind):
    """Makes an empty disk with a partition of that type, from 1 MiB to its end."""
    with open(path, "wb") as file:
        file.truncate(SIZE * MEBIBYTE)
    subprocess.run(["sfdisk", "--quiet", str(path)], input=f"start=2048, type={kind}\n", text=True,
                   check=True)


def make_vfat(path, contents):
    """Makes a stick with the contents of a folder, as Windows formats it."""
    _make_disk(path, FAT)
    _run("mformat", "-i", f"{path}@@1M", "-T", (SIZE - 1) * MEBIBYTE // SECTOR, "::")
    for entry in sorted(contents.iterdir()):
        _run("mcopy", "-s", "-i", f"{path}@@1M", entry, "::")


def make_ext4(path, contents):
    _make_disk(path, LINUX)
    _run("mke2fs", "-q", "-F", "-t", "ext4", "-d", contents, "-E", "offset=1048576", path,
         f"{SIZE - 1}M")


def make_exfat(path, contents):
    """Makes a stick with the files of a folder. Folders in it are left out."""
    _make_disk(path, EXFAT)
    volume = path.with_suffix(".volume")
    with open(volume, "wb") as file:
        file.truncate((SIZE - 1) * MEBIBYTE)
    _run("mkfs.exfat", volume)
    filled = _fill_exfat(bytearray(volume.read_bytes()),
                         {entry.name: entry.read_bytes() for entry in sorted(contents.iterdir())
                          if entry.is_file()})
    with open(path, "r+b") as disk:
        disk.seek(MEBIBYTE)
        disk.write(filled)
    volume.unlink()


def _fill_exfat(volume, files):
    """Adds files to the root folder of a new exFAT volume, each in consecutive clusters."""
    heap, root = struct.unpack_from("<I", volume, 88)[0], struct.unpack_from("<I", volume, 96)[0]
    sector = 1 << volume[108]
    cluster = sector << volume[109]

    def offset(number):
        return heap * sector + (number - 2) * cluster

    entry, bitmap = offset(root), None
    while volume[entry]:
        if volume[entry] == 0x81:
            bitmap = offset(struct.unpack_from("<I", volume, entry + 20)[0])
        entry += 32
    free = root + 1  # the root folder is the last that formatting allocates
    for name, data in files.items():
        count = -(-len(data) // cluster)
        for number in range(free, free + count):
            volume[bitmap + (number - 2) // 8] |= 1 << (number - 2) % 8
        volume[offset(free):offset(free) + len(data)] = data
        entries = _exfat_entries(name, free, len(data))
        volume[entry:entry + len(entries)] = entries
        entry += len(entries)
        free += count
    return volume


def _exfat_entries(name, first_cluster, length):
    """The entries of a file in its folder: the file, its data and its name."""
    letters = name.encode("utf-16-le")
    parts = [letters[start:start + 30].ljust(30, b"\0") for start in range(0, len(letters), 30)]
    date = (2026 - 1980) << 25 | 1 << 21 | 1 << 16
    entries = bytearray(struct.pack("<BBHHHIII12x", 0x85, 1 + len(parts), 0, 0x20, 0, date, date, date))
    # Flags: clusters may be allocated, and are consecutive. An empty file has none.
    flags, first_cluster = (3, first_cluster) if length else (1, 0)
    entries += struct.pack("<BBBBHHQIIQ", 0xC0, flags, 0, len(name), _exfat_hash(name.upper()), 0,
                           length, 0, first_cluster, length)
    for part in parts:
        entries += b"\xc1\0" + part
    checksum = 0
    for position, byte in enumerate(entries):
        if position not in (2, 3):  # the checksum itself
            checksum = ((checksum << 15) | (checksum >> 1)) + byte & 0xFFFF
    struct.pack_into("<H", entries, 2, checksum)
    return entries


def _exfat_hash(name):
    value = 0
    for byte in name.encode("utf-16-le"):
        value = ((value << 15) | (value >> 1)) + byte & 0xFFFF
    return value


def make_package(path, contents, *, kind="application", version, target=""):
    """Packs a folder for a panel. kind: application, firmware or bios."""
    subprocess.run([MKPACKAGE, "make", "--kind", kind, "--version", str(version), "--target", target,
                    "--output", str(path), str(contents)], check=True, stderr=subprocess.DEVNULL)
