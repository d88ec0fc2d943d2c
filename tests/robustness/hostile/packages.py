"""Hostile packages, each with its expected result and changes.

Results are those of the installation. Changes are the differences on the disk afterwards: "+"
for a new entry, "-" for a removed one, "~" for a changed one; "*" for any below the folder that
the package is unpacked in. After the name follow its type as in "ls -F" ("%" for a device),
special bits of the mode in brackets, and for a folder the number of entries below it.
"""
import bz2
import dataclasses
import io
import lzma
import struct
import zipfile

import archives
from archives import (APPLICATION, BIOS_IMAGE, BIOS_VERSION, FIRMWARE, HEADER_SIZE, OEM,
                      RUNTIME_VERSION, archive, folder, gz, header, member, symlink)

KEPT = "+/tmp/*"  # a temporary file stays
STRIPPED = "-/home/dest/compile/(1)"  # the old application is removed, nothing is installed
INSTALLED = "+/home/dest/compile/new -/home/dest/compile/old"
STAYS = "the temporary file stays"
TOO_EARLY = "the old application is removed before the archive is unpacked"
RAISED = "the version is raised although nothing was unpacked"
FIRMWARE_RAISED = "-/homde/dest/(1) ~/opt/talmero/bios/fwver"
FIRMWARE_IN = "+/home/hostile/(1) " + FIRMWARE_RAISED
BIOS_IN = "~/opt/talmero/bios/bios.version"

GOOD = archive(folder("compile"), member("compile/new", b"new\n"))
GOOD_FIRMWARE = archive(folder("hostile"), member("hostile/new", b"new\n"))
GOOD_BIOS = archive(member("bios.version", b"4\n"))


@dataclasses.dataclass
class Case:
    group: str
    name: str
    packages: list  # installed one after the other
    results: list
    changes: str
    extension: str = "kpc"
    setup: str = "-"
    hazard: str = "-"  # the known hazard


def refused(group, name, package, result, extension="kpc"):
    return Case(group, name, [package], [result], "", extension)


def application(group, name, payload, added="", **fields):
    """An application that passes the header check."""
    changes = f"{STRIPPED} {added}".strip()
    return Case(group, name, [header() + payload], [0], changes, **fields)


def headers():
    whole = header() + GOOD
    for size in range(HEADER_SIZE):
        yield refused("header", f"{size:02}-bytes", whole[:size], 1)
    yield application("header", "36-bytes", b"", hazard=TOO_EARLY)
    yield application("header", "37-bytes", GOOD[:1], hazard=TOO_EARLY)


def kinds():
    for kind in (2, 3, 4, 5, 256, 0x01000000, 0x80000000, 0xFFFFFFFF):
        yield Case("kind", f"{kind:#x}", [header(kind) + GOOD], [0], KEPT, hazard=STAYS)
    yield refused("kind", "firmware-for-a-model", header(FIRMWARE) + GOOD, 4)
    yield Case("kind", "firmware-named-as-application",
               [header(FIRMWARE, 13, OEM) + GOOD_FIRMWARE], [0], FIRMWARE_IN)
    yield Case("kind", "application-named-as-firmware", [header() + GOOD], [0], INSTALLED, "fmw")
    yield refused("kind", "application-named-as-image", header() + GOOD, -1, "mo")
    yield refused("kind", "image-of-35-bytes", header(BIOS_IMAGE, 4)[:35], -1, "mo")


def versions():
    swapped = int.from_bytes(RUNTIME_VERSION.to_bytes(4, "big"), "little")
    for version in (0, 11, 13, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFF, RUNTIME_VERSION + 0x10000,
                    RUNTIME_VERSION + 0x80000000, swapped):
        yield refused("version", f"application-{version:#x}", header(0, version) + GOOD, 2)
    for version in (0, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFF):
        yield Case("version", f"firmware-{version:#x}",
                   [header(FIRMWARE, version, OEM) + GOOD_FIRMWARE], [0], FIRMWARE_IN, "fmw")
    for version in (0, BIOS_VERSION):
        yield refused("version", f"image-{version:#x}",
                      header(BIOS_IMAGE, version) + GOOD_BIOS, -2, "mo")
    for version in (BIOS_VERSION + 1, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFF):
        yield Case("version", f"image-{version:#x}",
                   [header(BIOS_IMAGE, version) + GOOD_BIOS], [1], BIOS_IN, "mo")


def targets():
    wrong = {
        "16-bytes-without-end": b"RV-K21TRV-K21TRV", "empty": b"", "small-letters": b"rv-k21t",
        "blank-before": b" RV-K21T", "line-feed-behind": b"RV-K21T\n", "all-ones": b"\xff" * 16,
        "no-utf-8": b"RV-K21\xc3", "oem": OEM, "cut": b"RV-K21", "format": b"%s%n%s%n%s%n%s%n",
    }
    for name, target in wrong.items():
        yield refused("target", name, header(target=target) + GOOD, 3)
    right = {"short-code": b"K21T", "rest-behind-end": b"RV-K21T\0\xff\xff\xff\xff\xff\xff\xff\xff"}
    for name, target in right.items():
        yield Case("target", name, [header(target=target) + GOOD], [0], INSTALLED)
    for name, target in {"without-end": OEM + b"X" * 9, "small-letters": OEM.lower(),
                         "empty": b""}.items():
        yield refused("target", f"firmware-{name}",
                      header(FIRMWARE, 13, target) + GOOD_FIRMWARE, 4, "fmw")


def zipped(data):
    stream = io.BytesIO()
    with zipfile.ZipFile(stream, "w", zipfile.ZIP_DEFLATED) as file:
        file.writestr(zipfile.ZipInfo("archive"), data, zipfile.ZIP_DEFLATED)
    return stream.getvalue()


def cuts(random):
    files = [member(f"part-{number}", random.randbytes(20000)) for number in range(3)]
    whole = gz(folder("compile") + b"".join(files) + archives.END)
    for number in range(20):
        size = 1 + number * (len(whole) - 2) // 19  # from the first byte to all but one
        yield Case("cut", f"after-{size}", [header() + whole[:size]], [0], "*")


def streams(random):
    tar = folder("compile") + member("compile/new", b"new\n") + archives.END
    gone = {
        "random-1": random.randbytes(1), "random-100": random.randbytes(100),
        "random-100000": random.randbytes(100000), "gzip-head-alone": GOOD[:10],
        "random-inside": gz(random.randbytes(5000)), "nothing-inside": gz(b""),
        "gzip-inside": gz(GOOD), "bzip2": bz2.compress(tar), "xz": lzma.compress(tar),
        "plain-tar": tar, "reserved-flags": GOOD[:3] + b"\xe0" + GOOD[4:],
        "other-method": GOOD[:2] + b"\x07" + GOOD[3:],
    }
    for name, payload in gone.items():
        yield application("gzip", name, payload, hazard=TOO_EARLY)
    # These are unpacked: tar has written the files before gzip reports the error.
    come = {
        "wrong-checksum": GOOD[:-8] + bytes(4) + GOOD[-4:], "wrong-size": GOOD[:-4] + bytes(4),
        "rest-behind": GOOD + random.randbytes(100), "two-streams": gz(tar[:700]) + gz(tar[700:]),
        "no-tar-end": gz(tar[:-len(archives.END)]), "zip": zipped(tar),
    }
    for name, payload in come.items():
        yield Case("gzip", name, [header() + payload], [0], INSTALLED)
    yield Case("gzip", "damaged-firmware",
               [header(FIRMWARE, 13, OEM) + GOOD_FIRMWARE[:20]], [0],
               FIRMWARE_RAISED, "fmw", hazard=RAISED)
    yield Case("gzip", "damaged-image", [header(BIOS_IMAGE, 4) + GOOD_BIOS[:20]], [1], "", "mo")
    yield application("gzip", "bomb", archives.zeros(384), "+/home/dest/zeros", setup="small-target")
    yield Case("gzip", "endless-file", [header()], [1], "", setup="small-temporary")


def large():
    """tar needs longer than its time limit."""
    yield application("large", "longer-than-30-s", archives.zeros(64 << 10), "+/home/dest/zeros",
                      setup="small-target")


def flip(name, package, bit):
    data = bytearray(package)
    data[bit // 8] ^= 1 << bit % 8
    kind, version, target = struct.unpack("<II12x16s", data[:HEADER_SIZE])
    result, changes = 0, "*"
    if kind == FIRMWARE:
        result, changes = 4, ""
    elif kind != APPLICATION:
        changes = KEPT
    elif version != RUNTIME_VERSION:
        result, changes = 2, ""
    elif target.split(b"\0")[0] not in (archives.MODEL, b"K21T"):
        result, changes = 3, ""
    return Case("flip", name, [bytes(data)], [result], changes)


def flips(random, count=1000):
    """Flips single bits: all of a header, and a sample of two archives. One of the archives is
    stored uncompressed in its gzip stream, so that flips reach the tar headers."""
    files = (folder("compile") + member("compile/new", random.randbytes(300)) + symlink("l", "x")
             + member("bin/run", b"run\n", mode=0o755))
    head = 8 * HEADER_SIZE
    for level, first, bits in ((9, 0, head), (9, head, (count - head) // 2),
                               (0, head, (count - head) // 2)):
        package = header() + gz(files + archives.END, level)
        end = head if first == 0 else 8 * min(len(package), HEADER_SIZE + 30 + len(files))
        for bit in sorted(random.sample(range(first, end), bits)):
            yield flip(f"level-{level}-bit-{bit:05}", package, bit)
